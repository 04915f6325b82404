// A mesh of each record in degrees, of which the sides between two triangles are drawn.

#include "tools/map/triangle_sides.h"

#include <utility>

#include "tools/map/coasts.h"
#include "tools/support/mesh_edges.h"

namespace kzgis::map {

// A side of a triangle is straight in degrees, however long.
TriangleSides triangle_sides(const Rings& rings) {
  TriangleSides sides;
  auto mesh = triangulate(rings);
  if (!mesh) {
    sides.flaw = std::move(mesh).error();
    return sides;
  }
  for (const auto& [from, to] : tools::mesh_edges(mesh->triangles).inner) {
    begin_line(sides.lines, rings.x[from], rings.y[from]);
    go_all_the_way_to(sides.lines, rings.x[to], rings.y[to]);
  }
  return sides;
}

}  // namespace kzgis::map
