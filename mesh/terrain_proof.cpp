// Tiling first: only of triangles within the covered squares can points be looked at.

#include "mesh/terrain_proof.h"

#include <cstddef>

#include "exact/tiling.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

std::vector<bool> vertices_of(const HeightField& field, std::span<const std::uint32_t> triangles) {
  std::vector<bool> is_vertex(field.size());
  for (const std::uint32_t corner : triangles) is_vertex[corner] = true;
  return is_vertex;
}

bool proved(const HeightField& field, const Judge& judge,
            std::span<const std::uint32_t> triangles) {
  const std::vector<exact::Side> sides = Border(field).sides(vertices_of(field, triangles));
  if (!exact::tiles(field.points(), sides, triangles, exact::Flat::refused)) return false;
  for (std::size_t i = 0; i < triangles.size(); i += 3) {
    if (judge.worst(triangles[i], triangles[i + 1], triangles[i + 2]).point != kNone) return false;
  }
  return true;
}

}  // namespace kzgis::mesh
