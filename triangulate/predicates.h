// Every question about positions that the triangulator asks.
//
// Heights are compared with a tolerance, which decides the tables (docs/classic.md); on which
// side of a line a point lies is decided exactly (exact/), so that rounding cannot lead the
// search for a point astray.

#ifndef KZGIS_TRIANGULATE_PREDICATES_H
#define KZGIS_TRIANGULATE_PREDICATES_H

#include <cmath>

#include "exact/predicates.h"
#include "kzgis/triangulate.h"

namespace kzgis::triangulation {

/// What is no further apart than this is level, and in x and y both, the same point.
inline constexpr double kTolerance = 1.0e-7;

inline bool level(double y, double other_y) { return std::fabs(y - other_y) <= kTolerance; }

inline bool equal_to(const Point& a, const Point& b) { return level(a.y, b.y) && level(a.x, b.x); }

// The sweep order: y decides, and x, exactly, between points that are level.  No two vertices
// rank the same, and a horizontal edge rises from left to right: the map of trapezoids knows
// no special case for it.  Being level does not carry over from one pair of points to the next:
// where vertices crowd together within the tolerance this is no order, and the map no map.

inline bool greater_than(const Point& a, const Point& b) {
  if (a.y > b.y + kTolerance) return true;
  if (b.y - kTolerance > a.y) return false;
  return a.x > b.x;
}

inline bool greater_than_equal_to(const Point& a, const Point& b) {
  if (a.y > b.y + kTolerance) return true;
  if (b.y - kTolerance > a.y) return false;
  return a.x >= b.x;
}

inline bool less_than(const Point& a, const Point& b) {
  if (b.y - kTolerance > a.y) return true;
  if (a.y > b.y + kTolerance) return false;
  return a.x < b.x;
}

/// 1 when c lies to the left of the way from a to b, -1 to the right, 0 on that line.
inline int orientation(const Point& a, const Point& b, const Point& c) {
  return exact::orientation({a.x, a.y}, {b.x, b.y}, {c.x, c.y});
}

/// How the direction from p to q compares with that from p to r, on the scale that the
/// public header describes.
double angle_measure(const Point& p, const Point& q, const Point& r);

/// Whether q1 ranks above q2 on that scale.
///
/// The cosines cannot tell directions apart that differ by less than 1e-8; signs of cross
/// products can.  Where the cosines differ, the answer is theirs
/// (VertexChainPositions.AgreesWithTheAngleMeasure).
bool ranks_above(const Point& p, const Point& q1, const Point& q2, const Point& r);

}  // namespace kzgis::triangulation

#endif
