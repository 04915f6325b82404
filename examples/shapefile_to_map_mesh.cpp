#include <kzgis/chart.h>
#include <kzgis/mesh.h>
#include <kzgis/outline.h>
#include <kzgis/shapefile.h>

#include <cstddef>
#include <fstream>
#include <iostream>
#include <vector>

int main(int argc, char** argv) {
  auto file = kzgis::Shapefile::open(argc > 1 ? argv[1] : "countries.shp").value();
  std::ofstream obj(argc > 2 ? argv[2] : "map.obj");
  // Equal areas about 150 E: Greenland and Antarctica are cut, at 30 W.
  const auto chart = kzgis::Chart::make(SansonFlamsteedProj, {.base_lon = 150}).value();
  constexpr double kTolerance = 2000;  // metres, as the radius is: sides become curves on the map
  std::size_t triangles = 0, vertices = 0;
  for (const auto& record : file) {
    if (!record) continue;  // damaged: the others come all the same
    const auto outline = kzgis::project_area(chart, record->rings(), kTolerance);
    if (!outline) continue;  // no numbers
    kzgis::MeshOptions options;
    options.delaunay = true;
    options.longest_side = 1'000'000;
    const auto mesh = kzgis::triangulate(outline->rings(), options);
    if (!mesh) continue;
    const auto write = [&obj](const std::vector<double>& x, const std::vector<double>& y) {
      for (std::size_t i = 0; i < x.size(); ++i) obj << "v " << x[i] << ' ' << y[i] << " 0\n";
    };
    write(outline->x, outline->y);
    write(mesh->new_x, mesh->new_y);
    for (std::size_t i = 0; i < mesh->triangles.size(); ++i) {
      obj << (i % 3 == 0 ? "f " : " ") << vertices + mesh->triangles[i] + 1
          << (i % 3 == 2 ? "\n" : "");
    }
    vertices += outline->x.size() + mesh->new_x.size();
    triangles += mesh->triangles.size() / 3;
  }
  std::cout << triangles << " triangles, " << vertices << " vertices\n";
}
