// Parts of mesh files, and what the formats need to know of them.

#include "tools/mesh_files/mesh_part.h"

#include <algorithm>
#include <limits>

#include "tools/support/areas.h"
#include "tools/support/attributes.h"

namespace kzgis::tools {

std::string name_of(const MeshPart& part) {
  return part.record > 0 ? "record_" + std::to_string(part.record) : "surface";
}

nlohmann::ordered_json properties_of(const MeshPart& part) {
  return part.record > 0 ? properties_of(part.record, part.attributes) : part.attributes;
}

MeshPart make_mesh_part(std::uint32_t record, std::span<const WorldPoint> points,
                        std::span<const std::uint32_t> triangles) {
  constexpr std::uint32_t kUnused = std::numeric_limits<std::uint32_t>::max();
  std::vector<std::uint32_t> renumbered(points.size(), kUnused);
  for (const std::uint32_t vertex : triangles) renumbered[vertex] = 0;
  MeshPart part;
  part.record = record;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (renumbered[i] == kUnused) continue;
    renumbered[i] = static_cast<std::uint32_t>(part.vertices.size());
    part.vertices.push_back(points[i]);
  }
  part.triangles.reserve(triangles.size());
  for (const std::uint32_t vertex : triangles) part.triangles.push_back(renumbered[vertex]);
  return part;
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

void Extent::add(const MeshPart& part) {
  for (const WorldPoint& p : part.vertices) {
    if (empty_) low_ = high_ = p;
    empty_ = false;
    low_ = {std::min(low_.x, p.x), std::min(low_.y, p.y), std::min(low_.z, p.z)};
    high_ = {std::max(high_.x, p.x), std::max(high_.y, p.y), std::max(high_.z, p.z)};
  }
}

// Halved before they are added: the sum of two large coordinates may be too large.
WorldPoint Extent::middle() const {
  return {0.5 * low_.x + 0.5 * high_.x, 0.5 * low_.y + 0.5 * high_.y, 0.5 * low_.z + 0.5 * high_.z};
}

}  // namespace kzgis::tools
