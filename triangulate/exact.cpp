#include "kzgis/exact.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace kzgis::exact {

namespace {

/// Grows `parts`, doubles that share no bits, by growing magnitude, by the products; there
/// is room for two parts to each.  Then the largest part outweighs the rest.
int sign_of_sum(std::span<const Product> products, std::span<double> parts) {
  std::size_t count = 0;
  // Shewchuk's Grow-Expansion, parts that come out as zero left out.
  const auto add = [&parts, &count](double term) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
      // D. E. Knuth's two-sum: the sum and what rounding took from it.
      const double sum = term + parts[i];
      const double part = sum - term;
      const double error = (term - (sum - part)) + (parts[i] - part);
      if (error != 0.0) parts[kept++] = error;
      term = sum;
    }
    if (term != 0.0) parts[kept++] = term;
    count = kept;
  };
  for (const auto& [a, b] : products) {
    const double product = a * b;
    add(std::fma(a, b, -product));
    add(product);
  }
  if (count == 0) return 0;
  const double largest = parts[count - 1];
  return largest > 0.0 ? 1 : largest < 0.0 ? -1 : 0;  // no number is neither
}

}  // namespace

bool in_range(double v) {
  const double magnitude = std::fabs(v);
  return v == 0.0 || (magnitude >= 0x1p-480 && magnitude <= 0x1p+500);
}

int orientation(double ax, double ay, double bx, double by, double cx, double cy) {
  const double left = (ax - cx) * (by - cy);
  const double right = (ay - cy) * (bx - cx);
  const double determinant = left - right;
  // Shewchuk's ccwerrboundA; his epsilon is half of the language's.
  constexpr double epsilon = std::numeric_limits<double>::epsilon() / 2;
  constexpr double bound = (3.0 + 16.0 * epsilon) * epsilon;
  const double error = bound * (std::fabs(left) + std::fabs(right));
  if (determinant > error) return 1;
  if (-determinant > error) return -1;

  const std::array<Product, 6> products{
      {{ax, by}, {-ay, bx}, {bx, cy}, {-by, cx}, {cx, ay}, {-cy, ax}}};
  std::array<double, 12> parts{};
  return sign_of_sum(products, parts);
}

int sign_of_sum(std::span<const Product> products) {
  std::vector<double> parts(2 * products.size());
  return sign_of_sum(products, parts);
}

}  // namespace kzgis::exact
