// Rings that touch in vertices at most: one sweep over them shows that they do, and cuts the
// inside.

#ifndef KZGIS_MESH_RING_SWEEP_H
#define KZGIS_MESH_RING_SWEEP_H

#include <cstdint>
#include <optional>
#include <vector>

#include "exact/tiling.h"
#include "kzgis/mesh.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

/// What is inside the rings, cut up.
struct CutRings {
  std::vector<std::uint32_t> triangles;  ///< three sites each, as of `sweep_face`
  std::vector<exact::Side> sides;        ///< of the rings, with the inside on the left
};

/// Cuts up what is inside rings that have nothing in common, with themselves or one another, but
/// vertices in which they do not cross; nothing of other rings, or where one has fewer than three
/// different vertices: `arrange` knows what that means.
///
/// A vertex that repeats the one before it, or the first one at the end, is none.  O(n log n).
///
/// @param sites  of the rings, which have no flaw of `check_rings`
std::optional<CutRings> cut_rings(const Rings& rings, const Sites& sites);

}  // namespace kzgis::mesh

#endif
