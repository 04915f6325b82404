// Meshes without the vertices that no triangle uses.

#include "tools/triangulate/record_mesh.h"

#include <limits>

#include "tools/support/areas.h"

namespace kzgis::tools {

RecordMesh make_record_mesh(std::uint32_t record, std::span<const WorldPoint> points,
                            std::span<const std::uint32_t> triangles) {
  constexpr std::uint32_t kUnused = std::numeric_limits<std::uint32_t>::max();
  std::vector<std::uint32_t> renumbered(points.size(), kUnused);
  for (const std::uint32_t vertex : triangles) renumbered[vertex] = 0;
  RecordMesh mesh;
  mesh.record = record;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (renumbered[i] == kUnused) continue;
    renumbered[i] = static_cast<std::uint32_t>(mesh.vertices.size());
    mesh.vertices.push_back(points[i]);
  }
  mesh.triangles.reserve(triangles.size());
  for (const std::uint32_t vertex : triangles) mesh.triangles.push_back(renumbered[vertex]);
  return mesh;
}

double twice_area(const WorldPoint& a, const WorldPoint& b, const WorldPoint& c) {
  return twice_area(a.x, a.y, b.x, b.y, c.x, c.y);
}

double area(std::span<const WorldPoint> points, std::span<const std::uint32_t> triangles) {
  double twice = 0.0;
  for (std::size_t i = 0; i + 2 < triangles.size(); i += 3) {
    twice += twice_area(points[triangles[i]], points[triangles[i + 1]], points[triangles[i + 2]]);
  }
  return 0.5 * twice;
}

}  // namespace kzgis::tools
