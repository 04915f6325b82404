// Triangulation and nesting of polygons as they come: the sides are arranged, the faces between
// them taken and cut, and the triangles proved before anybody sees them.

#include "kzgis/mesh.h"

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

#include "exact/tiling.h"
#include "mesh/arrangement.h"
#include "mesh/boundary.h"
#include "mesh/face_sweep.h"
#include "mesh/faces.h"

namespace kzgis {

namespace {

using mesh::Arrangement;
using mesh::kNone;

/// Whether the triangles, over sites, tile the polygon: they tile what the edges bound, and
/// the edges are the polygon's own sides.
bool proved(const Arrangement& arrangement, std::span<const std::uint32_t> triangles) {
  std::vector<exact::Side> bounds;
  bounds.reserve(arrangement.edges.size());
  for (const mesh::Edge& edge : arrangement.edges) {
    bounds.push_back(edge.inside_above ? exact::Side{edge.left, edge.right}
                                       : exact::Side{edge.right, edge.left});
  }
  return exact::tiles(arrangement.sites.points(), bounds, triangles, exact::Flat::refused) &&
         mesh::same_modulo_2(arrangement.sites, arrangement.sides, arrangement.edges);
}

Flaw no_memory() {
  Flaw flaw;
  flaw.kind = ErrorKind::out_of_memory;
  try {
    flaw.message = "there is not enough memory";
  } catch (const std::bad_alloc&) {
    // Not even for that: the kind says it.
  }
  return flaw;
}

Result<Mesh, Flaw> cut(const Rings& rings) {
  const Result<Arrangement, Flaw> arranged = mesh::arrange(rings);
  if (!arranged) return arranged.error();
  Mesh result;
  for (const mesh::Face& face : mesh::take_faces(*arranged)) {
    mesh::sweep_face(arranged->sites, face, result.triangles);
  }
  if (!proved(*arranged, result.triangles)) {
    Flaw flaw;
    flaw.kind = ErrorKind::unproved;
    flaw.message = "the triangles found do not tile the polygon: an error of this library";
    return flaw;
  }
  for (std::uint32_t& corner : result.triangles) corner = arranged->sites.vertex(corner);
  return result;
}

Nesting nesting_of(const mesh::Containment& containment) {
  const std::vector<std::uint32_t> parents = containment.parents();
  Nesting nesting;
  nesting.parent.assign(parents.size(), -1);
  nesting.depth.assign(parents.size(), 0);
  std::vector<std::uint32_t> path;
  for (std::uint32_t ring = 0; ring < parents.size(); ++ring) {
    if (!containment.has_inside(ring)) continue;
    if (parents[ring] != kNone) nesting.parent[ring] = static_cast<std::int32_t>(parents[ring]);
    // Up to a ring whose depth is known, and down again.
    std::uint32_t known = ring;
    for (; known != kNone && nesting.depth[known] == 0; known = parents[known]) {
      path.push_back(known);
    }
    std::int32_t depth = known != kNone ? nesting.depth[known] : 0;
    for (; !path.empty(); path.pop_back()) nesting.depth[path.back()] = ++depth;
  }
  return nesting;
}

}  // namespace

Result<Mesh, Flaw> triangulate(const Rings& rings) {
  try {
    return cut(rings);
  } catch (const std::bad_alloc&) {
    return no_memory();
  }
}

Result<Nesting, Flaw> nest(const Rings& rings) {
  try {
    const Result<Arrangement, Flaw> arranged = mesh::arrange(rings);
    if (!arranged) return arranged.error();
    return nesting_of(arranged->containment);
  } catch (const std::bad_alloc&) {
    return no_memory();
  }
}

}  // namespace kzgis
