// Corner after corner: each joins the first copy of its vertex that looks its way.

#include "tools/mesh_files/normals.h"

#include <cstddef>
#include <limits>

#include "tools/mesh_files/float_point.h"

namespace kzgis::tools {

namespace {

constexpr double kSameWay = 0.766;  // the cosine of 40 degrees
constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

double product(const WorldPoint& a, const WorldPoint& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}

}  // namespace

// Between the steps: the copies of vertex v are first[v], next[first[v]] and so on up to kNone;
// `faces` holds the direction of the first triangle of each, and `normals` the sum so far.
ShadedPart with_normals(const MeshPart& part) {
  ShadedPart shaded;
  std::vector<std::uint32_t> first(part.vertices.size(), kNone);
  std::vector<std::uint32_t> next;
  std::vector<WorldPoint> faces;
  const auto copy_for = [&](std::uint32_t vertex, const WorldPoint& face) {
    std::uint32_t copy = first[vertex];
    while (copy != kNone && product(faces[copy], face) < kSameWay) copy = next[copy];
    if (copy != kNone) return copy;
    copy = static_cast<std::uint32_t>(shaded.source.size());
    shaded.source.push_back(vertex);
    shaded.normals.push_back({});
    faces.push_back(face);
    next.push_back(first[vertex]);
    first[vertex] = copy;
    return copy;
  };
  shaded.triangles.reserve(part.triangles.size());
  for (std::size_t i = 0; i < part.triangles.size(); i += 3) {
    const std::uint32_t* const t = &part.triangles[i];
    const WorldPoint twice_area =
        cross_product(part.vertices[t[0]], part.vertices[t[1]], part.vertices[t[2]]);
    const WorldPoint face = direction_of(twice_area);
    for (std::size_t k = 0; k < 3; ++k) {
      const std::uint32_t copy = copy_for(t[k], face);
      WorldPoint& sum = shaded.normals[copy];
      sum = {sum.x + twice_area.x, sum.y + twice_area.y, sum.z + twice_area.z};
      shaded.triangles.push_back(copy);
    }
  }
  for (WorldPoint& normal : shaded.normals) normal = direction_of(normal);
  return shaded;
}

}  // namespace kzgis::tools
