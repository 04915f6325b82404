// The proof that edges are the sides of the rings, and no others.

#ifndef KZGIS_MESH_BOUNDARY_H
#define KZGIS_MESH_BOUNDARY_H

#include <span>

#include "mesh/arrangement.h"
#include "mesh/rings.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

/// Whether the edges cover the same points of the plane as the sides do, each point modulo 2:
/// where two sides lie on top of each other there is to be no edge, where one or three do,
/// one.
///
/// Nothing is asked of how the edges were found.  Take all sides and edges that lie on one
/// straight line.  Counted together, modulo 2, they leave no point of it covered just if no
/// point of it is an end of an odd number of them: what is left would be pieces of the line, and
/// a piece has two ends.  So it is enough to look at every site, and at the ends that lie
/// there, line by line.
///
/// O(n log n) for n sides and edges together; throws `std::bad_alloc` without memory.
bool same_modulo_2(const Sites& sites, std::span<const Side> sides, std::span<const Edge> edges);

}  // namespace kzgis::mesh

#endif
