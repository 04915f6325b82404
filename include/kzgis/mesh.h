#ifndef KZGIS_MESH_H
#define KZGIS_MESH_H

#include <span>
#include <vector>

#include "kzgis/result.h"
#include "kzgis/export.h"
#include "kzgis/types.h"

// Polygons as they come in real files, nested and triangulated.  Nothing here is shared:
// any number of threads may call at once.  Without memory the flaw is of kind
// `ErrorKind::out_of_memory`; nothing throws.

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
  std::span<const double> y;        ///< as many as x; any unit
  std::span<const kz_long> starts;  ///< each >= 0, not decreasing, within the coordinates
};

/// Where the input is not a polygon: ring and vertex are numbers in the caller's arrays,
/// counted from 0; -1 when the flaw has no place.
struct Flaw : Error {
  kz_long ring = -1;
  kz_long vertex = -1;
};

/// Triangles that tile a polygon, or the reason why there are none.
struct Mesh {
  /// Three vertex numbers each, in the caller's numbering from 0, counter-clockwise, never
  /// on one line.  Where vertices coincide the first of them stands for all.  Empty when
  /// there is a flaw.
  std::vector<kz_ulong> triangles;
  /// Nothing: the triangles are proved, in exact arithmetic, to tile the polygon.
  Flaw flaw;
};

/// Which ring lies in which.
struct Nesting {
  std::vector<kz_long> parent;  ///< of each ring the smallest one around it; -1 outermost
  std::vector<kz_long> depth;   ///< 1 outermost, 2 a hole in one of those, 3 an island in it
  Flaw flaw;                    ///< when set, the others are empty
};

/// Cuts a polygon into triangles, without adding vertices.
///
/// Rings may touch themselves and each other, in a vertex or along edges, and have repeated
/// vertices, spikes without area and runs of vertices on one line.  They may not cross or
/// overlap, nor repeat one another; nothing else is refused, however close to each other
/// vertices and sides lie.  The same input gives the same triangles.  At its peak it takes no
/// more than 300 bytes per vertex of a polygon of a million, and no deep stack.
///
/// The plane sweep is that of M. I. Shamos and D. Hoey, "Geometric intersection problems"
/// (1976), in exact arithmetic; the triangles are those of S. Hertel and K. Mehlhorn, "Fast
/// triangulation of simple polygons" (1983).
KZGIS_EXPORT Mesh triangulate(const Rings& rings);

/// Finds the true containment of the rings, touching ones included.
///
/// A ring of fewer than three different vertices has no inside: its depth is 0 and its
/// parent -1.  At its peak it takes no more than 200 bytes per vertex of a polygon of a
/// million.
KZGIS_EXPORT Nesting nest(const Rings& rings);

}  // namespace kzgis

#endif
