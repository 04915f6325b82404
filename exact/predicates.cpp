// The exact halves of the predicates, for the few signs that doubles leave open.

#include "exact/predicates.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>

#include "exact/whole_number.h"

namespace kzgis::exact {

namespace {

/// The sign of a sum of six products.
///
/// The sum is kept as doubles that share no bits, by growing magnitude: the largest then
/// outweighs all the others together, and has the sign of the sum.
class SumOfProducts {
 public:
  void add_product(double a, double b) {
    const double product = a * b;
    add(std::fma(a, b, -product));  // what rounding took from the product
    add(product);
  }

  int sign() const {
    if (count_ == 0) return 0;
    const double largest = parts_[count_ - 1];
    return largest > 0.0 ? 1 : largest < 0.0 ? -1 : 0;  // what is no number is neither
  }

 private:
  /// Shewchuk's Grow-Expansion, parts that come out as zero left out.
  void add(double term) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count_; ++i) {
      // D. E. Knuth's two-sum: the sum and what rounding took from it.
      const double sum = term + parts_[i];
      const double part = sum - term;
      const double error = (term - (sum - part)) + (parts_[i] - part);
      if (error != 0.0) parts_[kept++] = error;
      term = sum;
    }
    if (term != 0.0) parts_[kept++] = term;
    count_ = kept;
  }

  std::array<double, 12> parts_{};  // two for each product
  std::size_t count_ = 0;
};

/// The crossing point's x is one.a.x + (one.b.x - one.a.x) * along / whole, where `along` and
/// `whole` are cross products of the lines' directions.  Compared with x, after multiplication
/// by `whole`, that is the sign of
///   (x - one.a.x) * whole - along * (one.b.x - one.a.x)
/// and the sign of `whole`.
struct Terms {
  double value, error;
};

/// A cross product, and a bound for its rounding error.
Terms cross(double ux, double uy, double vx, double vy) {
  // Each difference and each product is wrong by half an ulp at most, the difference of the
  // products once more: less than 4 epsilon of what is subtracted.
  constexpr double bound = 4.0 * std::numeric_limits<double>::epsilon();
  return {ux * vy - uy * vx, bound * (std::fabs(ux * vy) + std::fabs(uy * vx))};
}

}  // namespace

int exact_orientation(const Point& a, const Point& b, const Point& c) {
  SumOfProducts sum;
  sum.add_product(a.x, b.y);
  sum.add_product(-a.y, b.x);
  sum.add_product(b.x, c.y);
  sum.add_product(-b.y, c.x);
  sum.add_product(c.x, a.y);
  sum.add_product(-c.y, a.x);
  return sum.sign();
}

int compare_with_crossing(double x, const Line& one, const Line& other) {
  const double ux = one.b.x - one.a.x;
  const double uy = one.b.y - one.a.y;
  const double vx = other.b.x - other.a.x;
  const double vy = other.b.y - other.a.y;
  const Terms whole = cross(ux, uy, vx, vy);
  const Terms along = cross(other.a.x - one.a.x, other.a.y - one.a.y, vx, vy);
  const double way = x - one.a.x;
  const double value = way * whole.value - along.value * ux;
  const double magnitude = std::fabs(way * whole.value) + std::fabs(along.value * ux);
  const double error = 2.0 * (std::fabs(way) * whole.error + along.error * std::fabs(ux)) +
                       8.0 * std::numeric_limits<double>::epsilon() * magnitude;
  // Where numbers come near the ends of the doubles, the bounds do not hold.
  constexpr double smallest = 0x1p-900;
  const bool usual = error > smallest && error < std::numeric_limits<double>::max() &&
                     whole.error > smallest && along.error > smallest;
  if (usual && std::fabs(whole.value) > whole.error && std::fabs(value) > error) {
    return (value > 0.0) == (whole.value > 0.0) ? 1 : -1;
  }

  int exponent = INT_MAX;
  for (const double v :
       {x, one.a.x, one.a.y, one.b.x, one.b.y, other.a.x, other.a.y, other.b.x, other.b.y}) {
    if (v != 0.0) exponent = std::min(exponent, last_bit(v));
  }
  const auto whole_number = [exponent](double v) { return WholeNumber(v, exponent); };
  const WholeNumber x0 = whole_number(one.a.x);
  const WholeNumber y0 = whole_number(one.a.y);
  const WholeNumber exact_ux = whole_number(one.b.x) - x0;
  const WholeNumber exact_uy = whole_number(one.b.y) - y0;
  const WholeNumber exact_vx = whole_number(other.b.x) - whole_number(other.a.x);
  const WholeNumber exact_vy = whole_number(other.b.y) - whole_number(other.a.y);
  const WholeNumber exact_whole = exact_ux * exact_vy - exact_uy * exact_vx;
  const WholeNumber exact_along =
      (whole_number(other.a.x) - x0) * exact_vy - (whole_number(other.a.y) - y0) * exact_vx;
  const WholeNumber exact_value = (whole_number(x) - x0) * exact_whole - exact_along * exact_ux;
  return exact_value.sign() * exact_whole.sign();
}

}  // namespace kzgis::exact
