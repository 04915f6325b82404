// Whether a polygon means the same by the odd-even rule and by the direction of its rings.

#ifndef KZGIS_POLYTREE_WINDING_H
#define KZGIS_POLYTREE_WINDING_H

#include <cstdint>
#include <span>

#include "exact/predicates.h"

namespace kzgis::polytree {

/// Whether the contours wind round every point off the edges as often as triangles cover it.
///
/// The triangles may be cut otherwise than the contours: a vertex on a side cuts it or not, and
/// of vertices in one place any may stand for all.  That is the case where rings touch, which
/// `exact::tiles` cannot judge.  For triangles that are known to tile what lies inside by the
/// odd-even rule the answer says that the contours wind once round all of that and round nothing
/// else: that boundaries run counter-clockwise, holes clockwise, and no loop of a ring that
/// touches itself the other way.  Every decision is exact.
///
/// Before: no triangle is clockwise; coordinates are `exact::in_range`.
///
/// @param contour_sizes  number of vertices of each contour
/// @param vertices       contour after contour
/// @param triangles      three vertex numbers each, counted from 0; flat ones change nothing
bool wind_as_covered(std::span<const std::uint32_t> contour_sizes,
                     std::span<const exact::Point> vertices,
                     std::span<const std::uint32_t> triangles);

}  // namespace kzgis::polytree

#endif
