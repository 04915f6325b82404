// Exact orientation of three points, after J. R. Shewchuk, "Adaptive Precision
// Floating-Point Arithmetic and Fast Robust Geometric Predicates", Discrete &
// Computational Geometry 18 (1997): double arithmetic where its error bound settles the
// sign, an exact sum of the rounding errors where it does not.

#ifndef KZGIS_POLYTREE_EXACT_H
#define KZGIS_POLYTREE_EXACT_H

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace kzgis::exact {

/// A value and the error that rounding made in it: together they are exact.
struct Rounded {
  double value, error;
};

/// a + b, for any two magnitudes (D. E. Knuth's two-sum).
inline Rounded sum(double a, double b) {
  const double value = a + b;
  const double b_virtual = value - a;
  const double a_virtual = value - b_virtual;
  return {value, (a - a_virtual) + (b - b_virtual)};
}

/// a * b.
inline Rounded product(double a, double b) {
  const double value = a * b;
  return {value, std::fma(a, b, -value)};
}

/// A sum of doubles without error: components that do not overlap, by growing magnitude.
/// `capacity` is the largest number of terms it takes.
template <std::size_t capacity>
class Expansion {
 public:
  /// Adds one term (Shewchuk's Grow-Expansion, zero components left out).
  void add(double term) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < size_; ++i) {
      const Rounded s = sum(term, components_[i]);
      if (s.error != 0.0) components_[kept++] = s.error;
      term = s.value;
    }
    if (term != 0.0) components_[kept++] = term;
    size_ = kept;
  }

  /// -1, 0 or 1: the largest component outweighs the rest.
  int sign() const {
    if (size_ == 0) return 0;
    return components_[size_ - 1] > 0.0 ? 1 : -1;
  }

 private:
  std::array<double, capacity> components_{};
  std::size_t size_ = 0;
};

/// A sum of any number of doubles and products without error; see `Expansion`.
class LongSum {
 public:
  void add(double term) {
    std::size_t kept = 0;
    for (const double component : components_) {
      const Rounded s = sum(term, component);
      if (s.error != 0.0) components_[kept++] = s.error;
      term = s.value;
    }
    components_.resize(kept);
    if (term != 0.0) components_.push_back(term);
  }
  void add_product(double a, double b) {
    const Rounded r = product(a, b);
    add(r.error);
    add(r.value);
  }

  /// -1, 0 or 1.
  int sign() const {
    if (components_.empty()) return 0;
    return components_.back() > 0.0 ? 1 : -1;
  }

 private:
  std::vector<double> components_;
};

/// Whether a coordinate lies where no step below can overflow or lose bits to underflow:
/// 0, or a magnitude from 2^-480 to 2^500.
inline bool in_range(double v) {
  const double magnitude = std::fabs(v);
  return v == 0.0 || (magnitude >= 0x1p-480 && magnitude <= 0x1p+500);
}

/// The turn from a over b to c, the sign of
///   (ax - cx) (by - cy) - (ay - cy) (bx - cx).
///
/// @return 1 to the left (counter-clockwise), -1 to the right, 0 when the three points lie
///         on a line; exact for all coordinates `in_range`
inline int orientation(double ax, double ay, double bx, double by, double cx, double cy) {
  const double left = (ax - cx) * (by - cy);
  const double right = (ay - cy) * (bx - cx);
  const double det = left - right;
  // Shewchuk's ccwerrboundA; his epsilon is half of the language's.
  constexpr double epsilon = std::numeric_limits<double>::epsilon() / 2;
  constexpr double bound = (3.0 + 16.0 * epsilon) * epsilon;
  const double error = bound * (std::fabs(left) + std::fabs(right));
  if (det > error) return 1;
  if (-det > error) return -1;

  Expansion<12> exact;
  const auto add_product = [&exact](double p, double q) {
    const Rounded r = product(p, q);
    exact.add(r.error);
    exact.add(r.value);
  };
  add_product(ax, by);
  add_product(-ax, cy);
  add_product(-cx, by);
  add_product(-ay, bx);
  add_product(ay, cx);
  add_product(cy, bx);
  return exact.sign();
}

}  // namespace kzgis::exact

#endif
