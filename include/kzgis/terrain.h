// Elevations as triangles: few where the ground is even, many where it is not.

#ifndef KZGIS_TERRAIN_H
#define KZGIS_TERRAIN_H

#include <cstdint>
#include <vector>

#include "kzgis/elevation.h"
#include "kzgis/export.h"
#include "kzgis/result.h"

namespace kzgis {

/// A surface of triangles over the ground.
struct Terrain {
  /// The vertices: points of the grid, from its north-western corner row after row.  x and y are
  /// those of `ElevationGrid::x` and `y`, z is the elevation, in the unit of the grid.
  std::vector<double> x, y, z;
  /// Three vertices each, numbered from 0, counter-clockwise seen from above.
  std::vector<std::uint32_t> triangles;
};

/// Covers a grid of elevations with triangles that are nowhere farther than a tolerance above or
/// below it.
///
/// What is covered: the squares of the grid, between four neighbouring points each, of which all
/// four have an elevation; a point has none when it is NaN or infinite.  The covered region is the
/// same for every tolerance, so that holes stay holes.  Points that are no corner of a covered
/// square are left out.
///
/// What the tolerance means: at every point of the grid in the covered region, its border
/// included, the height of the triangle there differs from the elevation by no more.  That height
/// is interpolated between the corners over column and row.  Where doubles hold the range of the
/// elevations, lowest to highest, times twice the number of points with all digits, as they do for
/// whole metres, the comparison is exact.  Elsewhere 2^-49 of the range is taken off the
/// tolerance for rounding, which is more than rounding can come to; and a tolerance that is not
/// above 2^-48 of the range counts as 0.
///
/// With tolerance 0 every point is a vertex and every covered square makes two triangles, with the
/// diagonal from the north-west.  With a larger one the triangles are a constrained Delaunay
/// triangulation of their vertices in columns and rows.  A straight border keeps its vertices where
/// the elevations along it ask for them, and at its ends.
///
/// That the triangles tile the covered region and that each keeps the tolerance is proved before
/// they are handed out.  The same grid gives the same triangles, and what is a vertex at one
/// tolerance is one at every smaller one.
///
/// For n points, m of them vertices, the time grows as n with tolerance 0, else about as n log m:
/// each new vertex has the triangles around it looked at again, which hold n / m points each, give
/// or take.  Elevations can be thought up that make it n m, on grids a few rows high.  At its peak
/// a call takes no more than 300 bytes per point.
///
/// After M. Garland and P. S. Heckbert, "Fast polygonal approximation of terrains and height
/// fields", Carnegie Mellon University, CMU-CS-95-181 (1995): the point that is worst of all
/// becomes a vertex, until none is too far off.
///
/// @param grid  any number of columns and rows, up to 2^28 points; those with less than two of
///              either are covered nowhere, which is no error
/// @param tolerance  in the unit of the elevations; >= 0
/// @return `bad_argument` when the tolerance is negative or not finite, when there are not columns
///         times rows elevations, or when columns or rows lie so close together that x and y,
///         which are rounded, would turn a triangle over; `out_of_memory`
KZGIS_EXPORT Result<Terrain> triangulate_terrain(const ElevationGrid& grid, double tolerance);

}  // namespace kzgis

#endif
