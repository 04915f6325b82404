// Proof that triangles tile a polygon with holes.

#ifndef KZGIS_POLYTREE_TILING_H
#define KZGIS_POLYTREE_TILING_H

#include <span>

#include "kzgis/types.h"

namespace kzgis::polytree {

/// Whether the triangles tile the polygon: each is counter-clockwise or flat, and together
/// they have exactly the contours for their edge.
///
/// The second part (`triangulation::bounded_by`) is stronger than equal areas.  When the edges
/// of all triangles, each in its direction, cancel in pairs but for the contours' edges,
/// every point off the edges lies in as many triangles as the contours wind round it,
/// since none counts negatively.  For a polygon with its boundary counter-clockwise and
/// its holes clockwise that is once inside and never outside, and by Green's theorem the
/// areas are equal, without any being added up.
///
/// Memory and time grow with the number of edges.
///
/// @param contours   number of vertices of each contour
/// @param vertices   x and y of each vertex, contour after contour, from `vertices[1]`
/// @param triangles  three vertex numbers each, counted from 1; a triangle may hold any
///                   numbers, and one that is no vertex's fails
/// @return false also when a coordinate of a triangle is outside `exact::in_range`
bool tiles(std::span<const kz_long> contours, const double (*vertices)[2],
           std::span<const kz_long[3]> triangles);

}  // namespace kzgis::polytree

#endif
