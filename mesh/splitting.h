// Sides cut where they cross.

#ifndef KZGIS_MESH_SPLITTING_H
#define KZGIS_MESH_SPLITTING_H

#include <cstddef>

#include "kzgis/mesh.h"
#include "kzgis/result.h"
#include "mesh/arrangement.h"

namespace kzgis::mesh {

/// The sides of rings that may cross, overlap and repeat one another, cut at vertices and
/// crossings; new vertices are numbered behind those of the rings.
///
/// The sides are swept, and cut where they cross, at points that doubles can hold.  A piece is not
/// quite where its side was, and may cross others that the side did not: so the pieces are swept
/// again, until nothing crosses.  From the second round on, a piece that would be cut near an end
/// of what it crosses is led over that end instead; how near, in units of the last place of the
/// largest coordinate, grows from 2 to 16 in sixteen rounds.  In practice one round does, or two;
/// of tens of thousands of tangles made of lines a few such units apart none took more than seven.
/// What still crosses at the end is refused as `unproved`.
///
/// In every round a piece moves by no more than the distance of that round, in the first one by
/// what rounding takes: a unit in x and in y.  So no piece is ever farther than 128 units from
/// its side.
///
/// After V. Milenkovic, "Verifiable implementations of geometric algorithms using finite precision
/// arithmetic", Artificial Intelligence 37 (1988), whose hidden variables the uncut sides are.
/// Rounding to a grid (J. D. Hobby, "Practical segment intersection with finite precision output",
/// Computational Geometry 13 (1999)) would need one round, but move the vertices of the rings.
///
/// @param rings  without a flaw of `check_rings`
/// @param sites  of the rings
/// @param most   crossings that are bearable
/// @return the arrangement without containment
Result<Arrangement, Flaw> split(const Rings& rings, Sites sites, std::size_t most);

}  // namespace kzgis::mesh

#endif
