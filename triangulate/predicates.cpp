// Order of directions around a point.
//
// The interface orders them by a measure made of cosines, falling counter-clockwise from 1 to -3,
// and tells nothing apart where two cosines round to the same number.  What the algorithm asks is
// which of two directions comes first, and that is a matter of signs.

#include "triangulate/predicates.h"

#include <cmath>

namespace kzgis::triangulation {

namespace {

/// Where on the scale of angle_measure the direction from p to q lies: 0 along r, 1 before
/// the opposite of it, 2 opposite, 3 beyond.
int quarter(const Point& p, const Point& q, const Point& r) {
  const int side = orientation(p, q, r);
  if (side > 0) return 1;
  if (side < 0) return 3;
  const double along = (q.x - p.x) * (r.x - p.x) + (q.y - p.y) * (r.y - p.y);
  return along > 0.0 ? 0 : 2;
}

}  // namespace

double angle_measure(const Point& p, const Point& q, const Point& r) {
  const Point u{q.x - p.x, q.y - p.y};
  const Point w{r.x - p.x, r.y - p.y};
  const double dot = u.x * w.x + u.y * w.y;
  const double u_length = std::sqrt(u.x * u.x + u.y * u.y);
  const double w_length = std::sqrt(w.x * w.x + w.y * w.y);
  if (u.x * w.y - u.y * w.x >= 0.0) return dot / u_length / w_length;
  return -1.0 * dot / u_length / w_length - 2.0;
}

bool ranks_above(const Point& p, const Point& q1, const Point& q2, const Point& r) {
  const int quarter1 = quarter(p, q1, r);
  const int quarter2 = quarter(p, q2, r);
  if (quarter1 != quarter2) return quarter1 < quarter2;
  // Both on one side of the line through r: the one nearer to r, counter-clockwise, is to
  // the left of the other.  Along that line neither ranks above the other.
  return (quarter1 == 1 || quarter1 == 3) && orientation(p, q2, q1) > 0;
}

}  // namespace kzgis::triangulation
