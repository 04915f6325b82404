#ifndef KZGIS_MESH_H
#define KZGIS_MESH_H

#include <cstdint>
#include <span>
#include <vector>

#include "kzgis/export.h"
#include "kzgis/result.h"

// Polygons as they come in real files, nested and triangulated.

namespace kzgis {

/// Rings laid end to end, as in a polygon record of a shapefile; borrowed from the caller.
///
/// Ring r runs from `starts[r]` up to the start of the next, the last one to the end of the
/// coordinates.  Rings may run either way, repeat their first vertex at the end or not, and
/// come in any order.  A point is inside the polygon when a ray from it crosses an odd number
/// of sides: holes and islands need no marking.  Coordinates are 0 or have magnitudes from
/// 2^-480 to 2^500.
struct Rings {
  std::span<const double> x;
  std::span<const double> y;             ///< as many as x; any unit
  std::span<const std::int32_t> starts;  ///< each >= 0, not decreasing, within the coordinates
};

/// Where the input is not a polygon: ring and vertex are numbers in the caller's arrays,
/// counted from 0; -1 when the flaw has no place.
struct Flaw : Error {
  std::int32_t ring = -1;
  std::int32_t vertex = -1;
};

/// Triangles that tile a polygon.
struct Mesh {
  /// Three vertex numbers each, in the caller's numbering from 0, counter-clockwise, never
  /// on one line.  Where vertices coincide the first of them stands for all.
  std::vector<std::uint32_t> triangles;
};

/// Which ring lies in which.
struct Nesting {
  std::vector<std::int32_t> parent;  ///< of each ring the smallest one around it; -1 outermost
  /// 1 outermost, 2 a hole in one of those, 3 an island in it; 0 for a ring without an inside.
  std::vector<std::int32_t> depth;
};

/// Cuts a polygon into triangles, without adding vertices.
///
/// Rings may touch themselves and each other, in a vertex or along edges, cross in a place
/// where the polygon has a vertex, and have repeated vertices, spikes without area and runs of
/// vertices on one line.  Refused, with `ErrorKind::bad_data`, are two sides that cross where
/// no vertex is, two rings that overlap or repeat one another, and a coordinate out of range;
/// with `bad_argument`, arrays that do not fit each other or hold more than 2^28 values.
/// Nothing else is, however close to each other vertices and sides lie.  `docs/polygons.md` says
/// what these words mean and what is proved of the triangles before they are handed out.
///
/// The same input gives the same triangles.  Time grows as n log n for n vertices, however many
/// sides lie on top of each other; but where bundles of many sides cross one another in a
/// vertex, the crossing counts as often as all of them but the largest have sides.  At its peak a
/// call takes no more than 300 bytes per vertex of a polygon of a million, and no deep stack.
///
/// The plane sweep is that of M. I. Shamos and D. Hoey, "Geometric intersection problems"
/// (1976), in exact arithmetic; the triangles are those of S. Hertel and K. Mehlhorn, "Fast
/// triangulation of simple polygons" (1983).
KZGIS_EXPORT Result<Mesh, Flaw> triangulate(const Rings& rings);

/// Finds the true containment of the rings, touching ones included; refuses what
/// `triangulate` refuses.
///
/// A ring lies in another when all of its inside does, by the odd-even rule for each.  A ring
/// without an inside, such as one of fewer than three different vertices or one traced twice,
/// lies in none: its depth is 0 and its parent -1.  At its peak a call takes no more than 200
/// bytes per vertex of a polygon of a million.
KZGIS_EXPORT Result<Nesting, Flaw> nest(const Rings& rings);

}  // namespace kzgis

#endif
