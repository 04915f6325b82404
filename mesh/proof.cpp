// Edges against the sides that were given.

#include "mesh/proof.h"

#include <utility>
#include <vector>

#include "exact/stretches.h"

namespace kzgis::mesh {

bool same_modulo_2(const Sites& sites, std::span<const Side> sides, std::span<const Edge> edges) {
  std::vector<exact::Stretch> stretches;
  stretches.reserve(sides.size() + edges.size());
  for (const Side& side : sides) stretches.push_back({side.left, side.right, 1});
  for (const Edge& edge : edges) stretches.push_back({edge.left, edge.right, 1});
  return exact::cancel(sites.points(), std::move(stretches), exact::Cancel::modulo_2);
}

}  // namespace kzgis::mesh
