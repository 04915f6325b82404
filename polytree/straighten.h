// Turns triangles round that came out clockwise by a hair.

#ifndef KZGIS_POLYTREE_STRAIGHTEN_H
#define KZGIS_POLYTREE_STRAIGHTEN_H

#include <span>

#include "kzgis/types.h"

namespace kzgis::polytree {

/// Exchanges diagonals until no triangle is clockwise, or until that leads nowhere.
///
/// Triangles found for vertices that were moved a little may be clockwise where the
/// vertices really lie: three that are almost on one line.  In the quadrilateral that such
/// a triangle makes with a neighbour the other diagonal is right as a rule.
///
/// @param vertices   x and y of each vertex, from `vertices[1]`
/// @param triangles  three vertex numbers each, counted from 1, that tile a polygon
///                   combinatorially: no two have the same edge in the same direction
void straighten(const double (*vertices)[2], std::span<kz_long[3]> triangles);

}  // namespace kzgis::polytree

#endif
