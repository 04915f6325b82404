// The half of the proof that triangles tile a polygon which goes back to the polygon's sides.
//
// Two proofs together: the triangles tile what the edges bound, none of them flat (`exact::tiles`),
// and the edges cover the same points as the sides do, modulo 2.  The first covers the whole mesh
// at once, so that no face can be missing; the second goes back to the sides that the caller gave,
// so that no edge can.  It follows that a point off the sides lies in an odd number of triangles if
// it is inside by the odd-even rule, in an even number if it is not, and that these numbers are one
// and none as long as the sweep was right about which hand of each edge the inside lies on: that
// alone is taken on its word.

#ifndef KZGIS_MESH_PROOF_H
#define KZGIS_MESH_PROOF_H

#include <span>

#include "mesh/arrangement.h"
#include "mesh/rings.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

/// Whether the edges cover the same points of the plane as the sides do, each point modulo 2:
/// where two sides lie on top of each other there is to be no edge, where one or three do,
/// one.
///
/// Nothing is asked of how the edges were found, nor where sides were cut: `exact::cancel` looks
/// at sides and edges together, line by line through every site.
bool same_modulo_2(const Sites& sites, std::span<const Side> sides, std::span<const Edge> edges);

}  // namespace kzgis::mesh

#endif
