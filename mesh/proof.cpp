// Triangles against the edges of an arrangement, and edges against the sides that were given.

#include "mesh/proof.h"

#include <utility>
#include <vector>

#include "exact/stretches.h"
#include "exact/tiling.h"

namespace kzgis::mesh {

bool same_modulo_2(const Sites& sites, std::span<const Side> sides, std::span<const Edge> edges) {
  std::vector<exact::Stretch> stretches;
  stretches.reserve(sides.size() + edges.size());
  for (const Side& side : sides) stretches.push_back({side.left, side.right, 1});
  for (const Edge& edge : edges) stretches.push_back({edge.left, edge.right, 1});
  return exact::cancel(sites.points(), std::move(stretches), exact::Cancel::modulo_2);
}

bool proved(const Arrangement& arrangement, std::span<const std::uint32_t> triangles,
            exact::Inner inner) {
  std::vector<exact::Side> bounds;
  bounds.reserve(arrangement.edges.size());
  for (const Edge& edge : arrangement.edges) {
    bounds.push_back(edge.inside_above ? exact::Side{edge.left, edge.right}
                                       : exact::Side{edge.right, edge.left});
  }
  return exact::tiles(arrangement.sites.points(), bounds, triangles, exact::Flat::refused, inner) &&
         same_modulo_2(arrangement.sites, arrangement.sides, arrangement.edges);
}

bool proved_refined(const Arrangement& arrangement, std::span<const exact::Point> points,
                    std::span<const exact::Side> cut, std::span<const std::uint32_t> triangles) {
  return exact::tiles(points, cut, triangles, exact::Flat::refused, exact::Inner::delaunay) &&
         same_modulo_2(arrangement.sites, arrangement.sides, arrangement.edges);
}

}  // namespace kzgis::mesh
