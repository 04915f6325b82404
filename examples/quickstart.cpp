#include <kzgis/chart.h>
#include <kzgis/mesh.h>
#include <kzgis/shapefile.h>

#include <cstddef>
#include <iostream>
#include <vector>

int main(int argc, char** argv) {
  auto file = kzgis::Shapefile::open(argc > 1 ? argv[1] : "countries.shp").value();
  // Seen from above 45 N, 10 E; a radius in metres makes world coordinates metres.
  const kzgis::ChartParameters base{.base_lat = 45, .base_lon = 10, .radius = 6371000};
  const auto chart = kzgis::Chart::make(OrthographicProj, base).value();
  std::size_t triangles = 0, hidden = 0;
  for (const auto& record : file) {
    if (!record) {  // damaged: the others come all the same
      std::cerr << record.error().message << '\n';
      continue;
    }
    const auto mesh = kzgis::triangulate(record->rings());
    if (!mesh) {  // no polygon: which ring and vertex, and why
      std::cerr << "record " << record->number << ": " << mesh.error().message << '\n';
      continue;
    }
    std::vector<double> x(record->x.size()), y(x.size());
    hidden += chart.project(record->y, record->x, x, y);  // latitudes, longitudes
    triangles += mesh->triangles.size() / 3;              // of vertices in x and y
  }
  std::cout << triangles << " triangles, " << hidden << " vertices behind the horizon\n";
}
