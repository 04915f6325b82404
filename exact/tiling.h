// The proof that triangles tile a region of the plane.

#ifndef KZGIS_EXACT_TILING_H
#define KZGIS_EXACT_TILING_H

#include <cstdint>
#include <span>
#include <vector>

#include "exact/predicates.h"

namespace kzgis::exact {

/// A directed side of a region, between two vertices; the region lies on its left.
struct Side {
  std::uint32_t from, to;
};

/// Triangles whose corners lie on one line: some tilings have them, to make up a number.
enum class Flat { taken, refused };

/// What is asked of an edge between two triangles: nothing, or that it is locally Delaunay.
enum class Inner { any, delaunay };

/// Whether triangles tile the region with the given sides.
///
/// Two things are asked, and nothing else: no triangle is clockwise, and when the edges of
/// all triangles are put together, each cancelling one that runs the other way between the
/// same two vertices, what is left are the sides, each once.
///
/// That is more than equal areas.  Going across an edge that has cancelled, the number of
/// triangles over a point does not change; across a side it changes by one, to the higher on
/// its left.  So every point off the edges lies in as many triangles as the sides wind around
/// it, and in none where they do not.  For sides with the region on their left that is one
/// inside and none outside.
///
/// An edge between two triangles is locally Delaunay when the corner of the one that lies off the
/// edge is not within the circle through the corners of the other.  Where all are, the triangles
/// are a constrained Delaunay triangulation (D. T. Lee and A. K. Lin, "Generalized Delaunay
/// triangulation for planar graphs", Discrete & Computational Geometry 1 (1986)).
///
/// Memory and time grow with the number of edges.  Throws `std::bad_alloc` without memory.
///
/// @param vertices   the places that sides and triangles number, from 0
/// @param triangles  three vertices each; any numbers are looked at, and one that is no
///                   vertex fails
/// @return false also when a corner of a triangle is not `in_range`, and for 2^32 edges and more
bool tiles(std::span<const Point> vertices, std::span<const Side> sides,
           std::span<const std::uint32_t> triangles, Flat flat, Inner inner = Inner::any);

/// The sides of contours that are laid end to end over vertices numbered from 0.
///
/// @param sizes  number of vertices of each contour
std::vector<Side> sides_of_contours(std::span<const std::uint32_t> sizes);

}  // namespace kzgis::exact

#endif
