// Every question about positions that the triangulator asks.

#ifndef KZGIS_TRIANGULATE_PREDICATES_H
#define KZGIS_TRIANGULATE_PREDICATES_H

#include <cmath>

#include "exact/predicates.h"
#include "kzgis/triangulate.h"

namespace kzgis::triangulation {

inline bool level(double y, double other_y, double tolerance) {
  return std::fabs(y - other_y) <= tolerance;
}

inline bool equal_to(const Point& a, const Point& b, double tolerance) {
  return level(a.y, b.y, tolerance) && level(a.x, b.x, tolerance);
}

// The sweep order: y decides, and x, exactly, between points level within the tolerance.
// No two vertices rank the same, and a horizontal edge rises from left to right: the map
// of trapezoids knows no special case for it.

inline bool greater_than(const Point& a, const Point& b, double tolerance) {
  if (a.y > b.y + tolerance) return true;
  if (b.y - tolerance > a.y) return false;
  return a.x > b.x;
}

inline bool greater_than_equal_to(const Point& a, const Point& b, double tolerance) {
  if (a.y > b.y + tolerance) return true;
  if (b.y - tolerance > a.y) return false;
  return a.x >= b.x;
}

inline bool less_than(const Point& a, const Point& b, double tolerance) {
  if (b.y - tolerance > a.y) return true;
  if (a.y > b.y + tolerance) return false;
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
