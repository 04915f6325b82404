// Triangulation and nesting of polygons as they come: the sides are arranged, the faces between
// them taken and cut, and the triangles proved before anybody sees them.

#include "kzgis/mesh.h"

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

#include "mesh/arrangement.h"
#include "mesh/face_sweep.h"
#include "mesh/faces.h"
#include "mesh/proof.h"
#include "mesh/rings.h"

namespace kzgis {

namespace {

using mesh::Arrangement;
using mesh::kNone;

/// What every operation here answers to an allocation that failed, in words that are short enough
/// for a string to keep inside itself.
Flaw no_memory() { return mesh::make_flaw(ErrorKind::out_of_memory, "out of memory"); }

/// Cuts a polygon into triangles, over sites until the last step: in sites, places are the same
/// when their numbers are, which is what the proof counts by.
Result<Mesh, Flaw> cut(const Rings& rings) {
  const Result<Arrangement, Flaw> arranged = mesh::arrange(rings);
  if (!arranged) return arranged.error();
  Mesh result;
  for (const mesh::Face& face : mesh::take_faces(*arranged)) {
    mesh::sweep_face(arranged->sites, face, result.triangles);
  }
  if (!mesh::proved(*arranged, result.triangles)) {
    return mesh::make_flaw(ErrorKind::unproved,
                           "the triangles found do not tile the polygon: an error of this library");
  }
  for (std::uint32_t& corner : result.triangles) corner = arranged->sites.vertex(corner);
  return result;
}

/// Parents and depths as the caller knows them.
///
/// Depths are counted along chains of parents, each ring once: rings may lie in each other a
/// hundred thousand deep, in any order.
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
