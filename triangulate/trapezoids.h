// The map of trapezoids and the search structure over it.

#ifndef KZGIS_TRIANGULATE_TRAPEZOIDS_H
#define KZGIS_TRIANGULATE_TRAPEZOIDS_H

#include "triangulate/tables.h"

namespace kzgis::triangulation {

enum NodeKind : kz_long { kXNode = 1, kYNode = 2, kSink = 3 };
enum Side : kz_long { kLeft = 1, kRight = 2 };
enum TrapezoidStatus : kz_long { kValid = 1, kInvalid = 2 };

/// A record that was never used, or, once there is none, one that merging has given back.
/// @return -1 when there is none of these either; the line that says so is printed
kz_long newnode(Tables& t);
kz_long newtrap(Tables& t);

/// Starts the map with segment s.
///
/// Before: the tables of nodes and trapezoids are zero.
///
/// @return false when there is no such segment or no room
bool create_initial_structure(Tables& t, kz_long s);

bool is_left_of_segment(const Tables& t, kz_long s, const Point& v);

/// The trapezoid that holds `v`, searched from `node` downwards.
///
/// A vertex touches several trapezoids, so `v` alone does not name one.  `toward`, the
/// other end of the segment, decides: the answer is the trapezoid that the segment enters
/// as it leaves `v`.
///
/// Before: `node` lies above v's sink; node 1, the root, always does.
/// @return 0 when the search does not end in a sink, or a construction has no steps left; the
///         line that says so is printed
kz_long locate(Tables& t, const Point& v, const Point& toward, kz_long node);

/// Adds segment s to the map.
/// @return false when it cannot be completed: the map is of no further use
bool add_segment(Tables& t, kz_long s);

void merge_trapezoid_run(Tables& t, kz_long s, kz_long first, kz_long last, kz_long side);

/// @return false when the search fails
bool refresh_segment_roots(Tables& t, kz_long s);

/// Builds the map of segments 1 to n in the order of `permute`.
///
/// Before: as for `create_initial_structure`.
///
/// @return false when it cannot be completed, for want of records or of steps
bool construct_trapezoids(Tables& t, kz_long n);

}  // namespace kzgis::triangulation

#endif
