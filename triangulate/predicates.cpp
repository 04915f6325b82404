// Orientation of three points, exactly.
//
// After J. R. Shewchuk, "Adaptive Precision Floating-Point Arithmetic and Fast Robust
// Geometric Predicates", Discrete & Computational Geometry 18 (1997): the plain
// determinant where its rounding error cannot reach the sign, else a sum of doubles that
// holds the value without error.

#include "triangulate/predicates.h"

#include <cmath>

namespace kzgis::triangulation {

namespace {

/// A value held exactly, as a sum of doubles of growing size that share no bits.
class ExactSum {
 public:
  /// Adds a * b, exactly.
  void add_product(double a, double b) {
    const double product = a * b;
    add(std::fma(a, b, -product));
    add(product);
  }

  int sign() const {
    for (int i = count_ - 1; i >= 0; --i) {
      if (part_[i] > 0.0) return 1;
      if (part_[i] < 0.0) return -1;
    }
    return 0;
  }

 private:
  void add(double value) {
    for (int i = 0; i < count_; ++i) {
      const double sum = value + part_[i];
      const double part = sum - value;
      part_[i] = (value - (sum - part)) + (part_[i] - part);
      value = sum;
    }
    part_[count_++] = value;
  }

  double part_[12] = {};  // six products of two parts each
  int count_ = 0;
};

int exact_orientation(const Point& a, const Point& b, const Point& c) {
  ExactSum determinant;
  determinant.add_product(a.x, b.y);
  determinant.add_product(-a.y, b.x);
  determinant.add_product(b.x, c.y);
  determinant.add_product(-b.y, c.x);
  determinant.add_product(c.x, a.y);
  determinant.add_product(-c.y, a.x);
  return determinant.sign();
}

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

int orientation(const Point& a, const Point& b, const Point& c) {
  const double left = (a.x - c.x) * (b.y - c.y);
  const double right = (a.y - c.y) * (b.x - c.x);
  const double determinant = left - right;
  // (3 + 16 eps) eps with eps = 2^-53, Shewchuk's bound for this expression.
  constexpr double kErrorBound = 3.3306690738754716e-16;
  const double error = kErrorBound * (std::fabs(left) + std::fabs(right));
  if (determinant > error) return 1;
  if (-determinant > error) return -1;
  return exact_orientation(a, b, c);
}

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
