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
/// again, until nothing crosses.  That comes to an end: a piece never leaves the upright rectangle
/// of what it was cut from, which holds so many doubles and no more.  In practice two or three
/// rounds do.  What rounds remain after 64 is refused as `unproved`; no input is known that comes
/// near, and every round moves a piece by less than two units in the last place of the largest
/// coordinate (one in x and one in y), so that 128 such units are a bound.
///
/// After V. Milenkovic, "Verifiable implementations of geometric algorithms using finite precision
/// arithmetic", Artificial Intelligence 37 (1988), whose hidden variables the uncut sides are.
/// Rounding to a grid (J. D. Hobby, "Practical segment intersection with finite precision output",
/// Computational Geometry 13 (1999)) would need one round, but move the vertices of the rings.
///
/// @param most  crossings, vertices or triangles that are bearable
/// @return the arrangement without containment; `check_rings` says what is refused
Result<Arrangement, Flaw> split(const Rings& rings, std::size_t most);

}  // namespace kzgis::mesh

#endif
