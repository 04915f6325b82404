// A mesh of each record in degrees, of which the sides between two triangles are drawn.

#include "tools/map/triangle_sides.h"

#include <utility>

#include "tools/support/mesh_edges.h"

namespace kzgis::map {

// Rings go into one array each for x and y, as the library takes them.
TriangleSides triangle_sides(const Parts& rings) {
  std::vector<double> x;
  std::vector<double> y;
  std::vector<std::int32_t> starts;
  for (const GeoLine& ring : rings) {
    starts.push_back(static_cast<std::int32_t>(x.size()));
    for (const Geo& p : ring) {
      x.push_back(p.lon);
      y.push_back(p.lat);
    }
  }
  TriangleSides sides;
  auto mesh = triangulate({x, y, starts});
  if (!mesh) {
    sides.flaw = std::move(mesh).error();
    return sides;
  }
  for (const auto& [from, to] : tools::mesh_edges(mesh->triangles).inner) {
    sides.lines.push_back({{x[from], y[from]}, {x[to], y[to]}});
  }
  return sides;
}

}  // namespace kzgis::map
