// Whole numbers of any size, for signs that doubles cannot settle.

#ifndef KZGIS_EXACT_WHOLE_NUMBER_H
#define KZGIS_EXACT_WHOLE_NUMBER_H

#include <cstdint>
#include <vector>

namespace kzgis::exact {

/// A whole number with as many digits as it needs, so that sums, differences and products are
/// what they are in mathematics.
///
/// Finite doubles become whole numbers when all of them are multiplied by one power of two,
/// which changes no sign of a homogeneous polynomial in them.
class WholeNumber {
 public:
  WholeNumber() = default;

  /// value * 2^-exponent, which must be whole: with `last_bit` of the value it is.
  WholeNumber(double value, int exponent);

  /// -1, 0 or 1.
  int sign() const;

  friend WholeNumber operator+(const WholeNumber& a, const WholeNumber& b);
  friend WholeNumber operator-(const WholeNumber& a, const WholeNumber& b);
  friend WholeNumber operator*(const WholeNumber& a, const WholeNumber& b);

 private:
  using Digits = std::vector<std::uint32_t>;

  WholeNumber(bool negative, Digits digits);
  static int compare(const Digits& a, const Digits& b);
  static Digits sum(const Digits& a, const Digits& b);
  static Digits difference(const Digits& a, const Digits& b);

  bool negative_ = false;
  Digits digits_;  // to the base 2^32, the least first, none in front; zero has none
};

/// An exponent that a finite double's last bit does not fall below: the value is a whole
/// multiple of 2 to this power.
int last_bit(double value);

}  // namespace kzgis::exact

#endif
