// Signs that rounding cannot make wrong.
//
// After J. R. Shewchuk, "Adaptive Precision Floating-Point Arithmetic and Fast Robust
// Geometric Predicates", Discrete & Computational Geometry 18 (1997): arithmetic in doubles
// where its error bound settles the sign, exact arithmetic where it does not.  The filters
// stand in this header, so that the loops which ask millions of times need no call.

#ifndef KZGIS_EXACT_PREDICATES_H
#define KZGIS_EXACT_PREDICATES_H

#include <cmath>
#include <limits>

namespace kzgis::exact {

/// A point of the plane.
struct Point {
  double x, y;
};

/// Whether a coordinate lies where nothing below can overflow or lose bits to underflow: 0,
/// or a magnitude from 2^-480 to 2^500.
inline bool in_range(double v) {
  const double magnitude = std::fabs(v);
  return v == 0.0 || (magnitude >= 0x1p-480 && magnitude <= 0x1p+500);
}

#ifdef KZGIS_COUNT_PREDICATES
/// How often predicates were asked: for tests of just that, which compile the sources that ask.
struct Asked {
  long orientation = 0, in_circle = 0;
};
inline Asked asked;
#endif

/// `orientation`, summed without any rounding.
int exact_orientation(const Point& a, const Point& b, const Point& c);

/// The turn from a over b to c: 1 to the left (counter-clockwise), -1 to the right, 0 when
/// the three points lie on one line, or when a coordinate is no finite number.
///
/// Exact for all coordinates `in_range`.
inline int orientation(const Point& a, const Point& b, const Point& c) {
#ifdef KZGIS_COUNT_PREDICATES
  ++asked.orientation;
#endif
  const double left = (a.x - c.x) * (b.y - c.y);
  const double right = (a.y - c.y) * (b.x - c.x);
  const double determinant = left - right;
  // Shewchuk's ccwerrboundA; his epsilon is half of the language's.
  constexpr double epsilon = std::numeric_limits<double>::epsilon() / 2;
  constexpr double bound = (3.0 + 16.0 * epsilon) * epsilon;
  const double error = bound * (std::fabs(left) + std::fabs(right));
  if (determinant > error) return 1;
  if (-determinant > error) return -1;
  // Products of differences in range do not underflow: each of these has a factor that is zero.
  if (left == 0.0 && right == 0.0) return 0;
  return exact_orientation(a, b, c);
}

/// `in_circle`, in whole numbers.
int exact_in_circle(const Point& a, const Point& b, const Point& c, const Point& d);

/// Where d lies, seen from the circle through a, b and c, which turn to the left: 1 inside, -1
/// outside, 0 on it.
///
/// Exact for all coordinates `in_range`.  Throws `std::bad_alloc` where numbers grow long and
/// there is no memory for them.
inline int in_circle(const Point& a, const Point& b, const Point& c, const Point& d) {
#ifdef KZGIS_COUNT_PREDICATES
  ++asked.in_circle;
#endif
  const double ax = a.x - d.x;
  const double ay = a.y - d.y;
  const double bx = b.x - d.x;
  const double by = b.y - d.y;
  const double cx = c.x - d.x;
  const double cy = c.y - d.y;
  const double a2 = ax * ax + ay * ay;
  const double b2 = bx * bx + by * by;
  const double c2 = cx * cx + cy * cy;
  const double determinant =
      a2 * (bx * cy - by * cx) + b2 * (cx * ay - cy * ax) + c2 * (ax * by - ay * bx);
  const double magnitude = a2 * (std::fabs(bx * cy) + std::fabs(by * cx)) +
                           b2 * (std::fabs(cx * ay) + std::fabs(cy * ax)) +
                           c2 * (std::fabs(ax * by) + std::fabs(ay * bx));
  // Shewchuk's iccerrboundA, and more than products lose that are too small for doubles.
  constexpr double epsilon = std::numeric_limits<double>::epsilon() / 2;
  constexpr double bound = (10.0 + 96.0 * epsilon) * epsilon;
  const double error = bound * magnitude + 0x1p-600;
  if (determinant > error) return 1;
  if (-determinant > error) return -1;
  return exact_in_circle(a, b, c, d);
}

/// Two points, and the straight line between them.
struct Line {
  Point a, b;
};

/// Where x lies along the x axis, seen from the point in which two lines cross: -1 to the left
/// of it, 1 to the right, 0 when it is that point's own x.
///
/// Exact for all coordinates `in_range`.  The crossing point itself is never computed: it is
/// a quotient that doubles cannot hold.  Throws `std::bad_alloc` where numbers grow long and
/// there is no memory for them.
///
/// Before: the lines are not parallel.
int compare_with_crossing(double x, const Line& one, const Line& other);

/// Twice the area of the triangle a, b, c, positive where it turns left: off by no more than one
/// unit in its last place.
double doubled_area(const Point& a, const Point& b, const Point& c);

/// The point in which two stretches cross, rounded: neither coordinate is off by more than one unit
/// in the last place of the largest coordinate, and the point lies between the ends of both
/// stretches, in x as in y.
///
/// For all coordinates `in_range`, also where the stretches are almost parallel; the outcome is in
/// range too.
///
/// Before: the stretches cross.
Point crossing(const Line& one, const Line& other);

}  // namespace kzgis::exact

#endif
