// reference DATA: what the library itself says, for the Python module to say again bit for bit.
//
// A line for each array: its name and its numbers, doubles in hexadecimal.

#include <kzgis/chart.h>
#include <kzgis/elevation.h>
#include <kzgis/mesh.h>
#include <kzgis/outline.h>
#include <kzgis/shapefile.h>
#include <kzgis/terrain.h>

#include <cstdio>
#include <span>
#include <string>
#include <vector>

namespace {

void print(const std::string& name, std::span<const double> values) {
  std::printf("%s", name.c_str());
  for (const double value : values) std::printf(" %a", value);
  std::printf("\n");
}

template <class Integer>
void print_whole(const std::string& name, std::span<const Integer> values) {
  std::printf("%s", name.c_str());
  for (const Integer value : values) std::printf(" %lld", static_cast<long long>(value));
  std::printf("\n");
}

/// Points all over the globe, in steps that meet no round number of degrees.
void print_charts() {
  std::vector<double> lat, lon;
  for (int i = 0; i < 40; ++i) {
    lat.push_back(-90.0 + 4.5 * i + 0.125);
    lon.push_back(-200.0 + 10.0625 * i);
  }
  print("lat", lat);
  print("lon", lon);
  std::vector<double> alt(lat.size(), 1500.0), x(lat.size()), y(x), z(x), back(x), back_lon(x);
  for (int type = CartesianProj; type <= GlobeProj; ++type) {
    kzgis::ChartParameters parameters;
    parameters.base_lat = 47.5;
    parameters.base_lon = 13.25;
    const auto projection = static_cast<projType>(type);
    const auto chart = kzgis::Chart::make(projection, parameters).value();
    const std::string name = "chart" + std::to_string(type);
    chart.project(lat, lon, alt, x, y, z);
    print(name + ".x", x);
    print(name + ".y", y);
    print(name + ".z", z);
    chart.unproject(x, y, z, back, back_lon, alt);
    print(name + ".lat", back);
    print(name + ".lon", back_lon);
    alt.assign(alt.size(), 1500.0);
  }
}

void print_records(const std::string& path) {
  auto file = kzgis::Shapefile::open(path).value();
  const auto chart = kzgis::Chart::make(OrthographicProj, {.base_lat = 45, .base_lon = 10}).value();
  for (std::uint32_t i = 0; i < file.size(); ++i) {
    const auto record = file.read(i).value();
    const std::string name = "record" + std::to_string(i);
    print(name + ".x", record.x);
    print(name + ".y", record.y);
    print_whole<std::int32_t>(name + ".parts", record.parts);
    const auto mesh = kzgis::triangulate(record.rings(), {.delaunay = true, .least_angle_deg = 15});
    print_whole<std::uint32_t>(name + ".triangles", mesh.value().triangles);
    print(name + ".new_x", mesh.value().new_x);
    print(name + ".new_y", mesh.value().new_y);
    const auto nesting = kzgis::nest(record.rings()).value();
    print_whole<std::int32_t>(name + ".depth", nesting.depth);
    const auto outline = kzgis::project_area(chart, record.rings(), 3000.0).value();
    print(name + ".area_x", outline.x);
    print(name + ".area_y", outline.y);
    print_whole<std::int32_t>(name + ".area_starts", outline.starts);
  }
}

void print_terrain(const std::string& path) {
  const auto grid = kzgis::read_dem(path).value();
  print("grid", std::vector<double>(grid.elevations.begin(), grid.elevations.end()));
  const auto terrain = kzgis::triangulate_terrain(grid, 5.0).value();
  print("terrain.x", terrain.x);
  print("terrain.y", terrain.y);
  print("terrain.z", terrain.z);
  print_whole<std::uint32_t>("terrain.triangles", terrain.triangles);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string data = argv[1];
  print_charts();
  print_records(data + "/ne/ne_50m_lakes_with_islands.shp");
  print_terrain(data + "/dem/st_helens_crater.dem");
  return 0;
}
