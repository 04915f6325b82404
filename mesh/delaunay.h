// Triangles made constrained Delaunay.

#ifndef KZGIS_MESH_DELAUNAY_H
#define KZGIS_MESH_DELAUNAY_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "exact/predicates.h"
#include "exact/tiling.h"
#include "mesh/triangulation.h"

namespace kzgis::mesh {

/// Whether an edge between two triangles is locally Delaunay: no apex of the one lies within the
/// circle through the corners of the other.
///
/// Of four points on one circle, the diagonal that begins at the first of them is taken, which is
/// what the criterion would say had every point been moved by a hair, the first ones by far more
/// than the later ones.  So there is one answer, and flipping comes to an end.
bool is_delaunay(std::span<const exact::Point> points, const Triangulation& triangles,
                 std::uint32_t half_edge);

/// Flips edges that may not be locally Delaunay, and those that their flips put in question.
///
/// C. L. Lawson, "Software for C1 surface interpolation", Mathematical Software III (1977): every
/// flip lowers the surface that the triangles make once their corners are lifted to a paraboloid.
/// So no edge comes back once it is gone.
///
/// @param questioned  comes back empty, unless there were as many flips as there may be
/// @return the number of flips
std::size_t restore_delaunay(std::span<const exact::Point> points, Triangulation& triangles,
                             std::vector<std::uint32_t>& questioned,
                             std::size_t most = std::numeric_limits<std::size_t>::max());

/// Makes triangles of a region Delaunay; O(n log n), but for what it takes to force sides in.
///
/// Flipping gets from any triangulation of real outlines to this one in two flips a triangle or so.
/// Where it takes many, as along smooth curves, whose triangles from the sweep are all wrong, the
/// region is triangulated from scratch: all points first, then the sides forced in.
///
/// @param points     ordered as sites
/// @param sides      of the region, which meet in points only
/// @param triangles  three points each, proved or not
std::vector<std::uint32_t> make_delaunay(std::span<const exact::Point> points,
                                         std::span<const exact::Side> sides,
                                         std::vector<std::uint32_t> triangles);

}  // namespace kzgis::mesh

#endif
