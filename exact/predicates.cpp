// The exact halves of the predicates, for the few signs that doubles leave open.

#include "exact/predicates.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>

#include "exact/whole_number.h"

namespace kzgis::exact {

namespace {

/// A sum that is not rounded, of `kMost` doubles at most.
///
/// It is kept as doubles that share no bits, by growing magnitude: the largest then
/// outweighs all the others together, and has the sign of the sum.
template <std::size_t kMost>
class Sum {
 public:
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

  void add_product(double a, double b) {
    const double product = a * b;
    add(std::fma(a, b, -product));  // what rounding took from the product
    add(product);
  }

  /// Adds the product of two sums.
  template <std::size_t m, std::size_t n>
  void add_product(const Sum<m>& a, const Sum<n>& b) {
    for (const double p : a.parts()) {
      for (const double q : b.parts()) add_product(p, q);
    }
  }

  /// The double next to the sum, or one beside that.
  double value() const {
    double sum = 0.0;
    for (const double part : parts()) sum += part;
    return sum;
  }

  std::span<const double> parts() const { return std::span(parts_).first(count_); }

  int sign() const {
    if (count_ == 0) return 0;
    const double largest = parts_[count_ - 1];
    return largest > 0.0 ? 1 : largest < 0.0 ? -1 : 0;  // what is no number is neither
  }

 private:
  std::array<double, kMost> parts_{};
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

Sum<12> exact_doubled_area(const Point& a, const Point& b, const Point& c) {
  Sum<12> sum;  // two for each product
  sum.add_product(a.x, b.y);
  sum.add_product(-a.y, b.x);
  sum.add_product(b.x, c.y);
  sum.add_product(-b.y, c.x);
  sum.add_product(c.x, a.y);
  sum.add_product(-c.y, a.x);
  return sum;
}

/// The lowest exponent among the last bits of some numbers: multiplied by 2 to the opposite power,
/// all of them are whole.
int common_last_bit(std::initializer_list<double> numbers) {
  int exponent = INT_MAX;
  for (const double v : numbers) {
    if (v != 0.0) exponent = std::min(exponent, last_bit(v));
  }
  return exponent;
}

/// a - b, if doubles can hold it and its fourth power with all bits.
std::optional<double> exact_difference(double a, double b) {
  const double difference = a - b;
  if (difference == 0.0) return difference;
  // D. E. Knuth's two-sum again.
  const double part = difference - a;
  if ((a - (difference - part)) + (-b - part) != 0.0) return std::nullopt;
  const double magnitude = std::fabs(difference);
  if (magnitude < 0x1p-150 || magnitude > 0x1p+250) return std::nullopt;
  return difference;
}

/// The sign of the determinant in `in_circle` where all coordinates are whole, as on grids, and so
/// near to each other that doubles hold every product and sum.
std::optional<int> in_circle_of_near_grid_points(const Point& a, const Point& b, const Point& c,
                                                 const Point& d) {
  const auto is_whole = [](double v) { return std::trunc(v) == v; };
  for (const Point& p : {a, b, c}) {
    // Products of four differences, a dozen of them, stay below 2^53.
    if (!is_whole(p.x) || !is_whole(p.y) || std::fabs(p.x - d.x) > 0x1p+12 ||
        std::fabs(p.y - d.y) > 0x1p+12) {
      return std::nullopt;
    }
  }
  if (!is_whole(d.x) || !is_whole(d.y)) return std::nullopt;
  const double ax = a.x - d.x;
  const double ay = a.y - d.y;
  const double bx = b.x - d.x;
  const double by = b.y - d.y;
  const double cx = c.x - d.x;
  const double cy = c.y - d.y;
  const double determinant = (ax * ax + ay * ay) * (bx * cy - by * cx) +
                             (bx * bx + by * by) * (cx * ay - cy * ax) +
                             (cx * cx + cy * cy) * (ax * by - ay * bx);
  return determinant > 0.0 ? 1 : determinant < 0.0 ? -1 : 0;
}

/// The sign of the determinant in `in_circle` where the differences of all coordinates are doubles:
/// so with grids, and with whole coordinates.
std::optional<int> in_circle_of_differences(const Point& a, const Point& b, const Point& c,
                                            const Point& d) {
  const auto ax = exact_difference(a.x, d.x);
  const auto ay = exact_difference(a.y, d.y);
  const auto bx = exact_difference(b.x, d.x);
  const auto by = exact_difference(b.y, d.y);
  const auto cx = exact_difference(c.x, d.x);
  const auto cy = exact_difference(c.y, d.y);
  if (!ax || !ay || !bx || !by || !cx || !cy) return std::nullopt;
  const auto sum_of_two = [](double p, double q, double r, double s) {
    Sum<4> sum;
    sum.add_product(p, q);
    sum.add_product(r, s);
    return sum;
  };
  Sum<96> determinant;  // thrice 4 by 4 products
  determinant.add_product(sum_of_two(*ax, *ax, *ay, *ay), sum_of_two(*bx, *cy, -*by, *cx));
  determinant.add_product(sum_of_two(*bx, *bx, *by, *by), sum_of_two(*cx, *ay, -*cy, *ax));
  determinant.add_product(sum_of_two(*cx, *cx, *cy, *cy), sum_of_two(*ax, *by, -*ay, *bx));
  return determinant.sign();
}

}  // namespace

int exact_orientation(const Point& a, const Point& b, const Point& c) {
  return exact_doubled_area(a, b, c).sign();
}

double doubled_area(const Point& a, const Point& b, const Point& c) {
  return exact_doubled_area(a, b, c).value();
}

int exact_in_circle(const Point& a, const Point& b, const Point& c, const Point& d) {
  if (const auto sign = in_circle_of_near_grid_points(a, b, c, d)) return *sign;
  if (const auto sign = in_circle_of_differences(a, b, c, d)) return *sign;
  const int exponent = common_last_bit({a.x, a.y, b.x, b.y, c.x, c.y, d.x, d.y});
  const auto whole_number = [exponent](double v) { return WholeNumber(v, exponent); };
  const WholeNumber dx = whole_number(d.x);
  const WholeNumber dy = whole_number(d.y);
  const WholeNumber ax = whole_number(a.x) - dx;
  const WholeNumber ay = whole_number(a.y) - dy;
  const WholeNumber bx = whole_number(b.x) - dx;
  const WholeNumber by = whole_number(b.y) - dy;
  const WholeNumber cx = whole_number(c.x) - dx;
  const WholeNumber cy = whole_number(c.y) - dy;
  const WholeNumber determinant = (ax * ax + ay * ay) * (bx * cy - by * cx) +
                                  (bx * bx + by * by) * (cx * ay - cy * ax) +
                                  (cx * cx + cy * cy) * (ax * by - ay * bx);
  return determinant.sign();
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

  const int exponent = common_last_bit(
      {x, one.a.x, one.a.y, one.b.x, one.b.y, other.a.x, other.a.y, other.b.x, other.b.y});
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

namespace {

/// a - b with all bits.
Sum<2> difference(double a, double b) {
  Sum<2> sum;
  sum.add(a);
  sum.add(-b);
  return sum;
}

/// ux * vy - uy * vx with all bits.
Sum<16> exact_cross(const Sum<2>& ux, const Sum<2>& uy, const Sum<2>& vx, const Sum<2>& vy) {
  Sum<16> sum;
  sum.add_product(ux, vy);
  for (const double p : uy.parts()) {
    for (const double q : vx.parts()) sum.add_product(-p, q);
  }
  return sum;
}

/// One coordinate of a crossing: start + (end - start) * way, where `way` is a sum of two.
double coordinate(double start, const Sum<2>& length, std::array<double, 2> way) {
  Sum<9> sum;
  sum.add(start);
  for (const double p : length.parts()) {
    for (const double q : way) sum.add_product(p, q);
  }
  return sum.value();
}

/// Between the ends of both stretches, and zero rather than too small for the functions here.
double between(double value, double a, double b, double c, double d) {
  const double low = std::max(std::min(a, b), std::min(c, d));
  const double high = std::min(std::max(a, b), std::max(c, d));
  return std::clamp(in_range(value) ? value : 0.0, low, high);
}

}  // namespace

Point crossing(const Line& one, const Line& other) {
  // Scaled by a power of two, so that nothing that counts is lost where products grow small.
  double largest = 0.0;
  for (const Point& p : {one.a, one.b, other.a, other.b}) {
    largest = std::max({largest, std::fabs(p.x), std::fabs(p.y)});
  }
  int exponent = 0;
  std::frexp(largest, &exponent);
  const auto scaled = [exponent](double v) { return std::ldexp(v, -exponent); };
  const Point a{scaled(one.a.x), scaled(one.a.y)};
  const Point c{scaled(other.a.x), scaled(other.a.y)};
  const Sum<2> ux = difference(scaled(one.b.x), a.x);
  const Sum<2> uy = difference(scaled(one.b.y), a.y);
  const Sum<2> vx = difference(scaled(other.b.x), c.x);
  const Sum<2> vy = difference(scaled(other.b.y), c.y);
  const Sum<16> whole = exact_cross(ux, uy, vx, vy);
  const Sum<16> along = exact_cross(difference(c.x, a.x), difference(c.y, a.y), vx, vy);
  // The quotient of the two, and what is left, divided again.
  const double way = along.value() / whole.value();
  Sum<48> rest;
  for (const double p : along.parts()) rest.add(p);
  for (const double p : whole.parts()) rest.add_product(-way, p);
  const std::array<double, 2> ways{way, rest.value() / whole.value()};
  return {between(std::ldexp(coordinate(a.x, ux, ways), exponent), one.a.x, one.b.x, other.a.x,
                  other.b.x),
          between(std::ldexp(coordinate(a.y, uy, ways), exponent), one.a.y, one.b.y, other.a.y,
                  other.b.y)};
}

}  // namespace kzgis::exact
