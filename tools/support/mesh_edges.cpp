// The sides of all triangles, sorted, so that those of one edge stand together.

#include "tools/support/mesh_edges.h"

#include <algorithm>
#include <cstddef>

namespace kzgis::tools {

MeshEdges mesh_edges(std::span<const std::uint32_t> triangles) {
  std::vector<MeshEdge> sides;
  sides.reserve(triangles.size());
  for (std::size_t t = 0; t + 2 < triangles.size(); t += 3) {
    for (std::size_t k = 0; k < 3; ++k) {
      sides.push_back(std::minmax({triangles[t + k], triangles[t + (k + 1) % 3]}));
    }
  }
  std::sort(sides.begin(), sides.end());
  MeshEdges edges;
  for (auto side = sides.begin(); side != sides.end();) {
    // Of a mesh that tiles, an edge has one triangle or two.
    const auto next = std::find_if(side, sides.end(), [side](const auto& s) { return s != *side; });
    (next - side > 1 ? edges.inner : edges.border).push_back(*side);
    side = next;
  }
  return edges;
}

}  // namespace kzgis::tools
