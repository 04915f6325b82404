// Whole numbers of any size: the pencil-and-paper methods of D. E. Knuth, "The Art of Computer
// Programming", volume 2, section 4.3.1.  The numbers here have some dozens of digits at most,
// for which nothing faster pays.

#include "exact/whole_number.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace kzgis::exact {

namespace {

// A product of two digits and two carries fit 64 bits: (2^32 - 1)^2 + 2 (2^32 - 1) = 2^64 - 1.
constexpr int kDigitBits = 32;
constexpr int kMantissaBits = std::numeric_limits<double>::digits;

}  // namespace

int last_bit(double value) {
  // A double is its mantissa, a whole number of 53 bits, times a power of two.
  int exponent = 0;
  std::frexp(value, &exponent);
  return exponent - kMantissaBits;
}

WholeNumber::WholeNumber(double value, int exponent) : negative_(value < 0.0) {
  if (value == 0.0) return;
  int own_exponent = 0;
  const double fraction = std::frexp(std::fabs(value), &own_exponent);
  auto mantissa = static_cast<std::uint64_t>(std::ldexp(fraction, kMantissaBits));
  int places = own_exponent - kMantissaBits - exponent;
  if (places < 0) {  // the bits below are zero, since the number is whole
    mantissa >>= -places;
    places = 0;
  }
  const auto shift = static_cast<unsigned>(places);
  digits_.assign(shift / kDigitBits, 0);
  const unsigned within = shift % kDigitBits;
  // The mantissa, shifted, may touch three digits.
  digits_.push_back(static_cast<std::uint32_t>(mantissa << within));
  digits_.push_back(static_cast<std::uint32_t>(mantissa << within >> kDigitBits));
  if (within > 0) {
    digits_.push_back(static_cast<std::uint32_t>(mantissa >> (2 * kDigitBits - within)));
  }
  while (digits_.back() == 0) digits_.pop_back();
}

WholeNumber::WholeNumber(bool negative, Digits digits)
    : negative_(negative), digits_(std::move(digits)) {
  while (!digits_.empty() && digits_.back() == 0) digits_.pop_back();
}

int WholeNumber::sign() const {
  if (digits_.empty()) return 0;
  return negative_ ? -1 : 1;
}

/// The order of two magnitudes: without digits in front that are zero the longer is larger.
int WholeNumber::compare(const Digits& a, const Digits& b) {
  if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  for (std::size_t i = a.size(); i-- > 0;) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return 0;
}

/// a + b, digit by digit from the least, with room for a last carry.
WholeNumber::Digits WholeNumber::sum(const Digits& a, const Digits& b) {
  const Digits& longer = a.size() < b.size() ? b : a;
  const Digits& shorter = a.size() < b.size() ? a : b;
  Digits result(longer.size() + 1);
  std::uint64_t carry = 0;
  for (std::size_t i = 0; i < longer.size(); ++i) {
    carry += std::uint64_t{longer[i]} + (i < shorter.size() ? shorter[i] : 0);
    result[i] = static_cast<std::uint32_t>(carry);
    carry >>= kDigitBits;
  }
  result.back() = static_cast<std::uint32_t>(carry);
  return result;
}

/// a - b, for a no smaller than b.
WholeNumber::Digits WholeNumber::difference(const Digits& a, const Digits& b) {
  Digits result(a.size());
  std::uint64_t borrow = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const std::uint64_t taken = borrow + (i < b.size() ? b[i] : 0);
    borrow = a[i] < taken ? 1 : 0;
    result[i] = static_cast<std::uint32_t>(a[i] - taken);
  }
  return result;
}

// Numbers of one sign are added; of two signs the smaller magnitude is taken from the larger,
// whose sign the result has.
WholeNumber operator+(const WholeNumber& a, const WholeNumber& b) {
  if (a.negative_ == b.negative_) {
    return {a.negative_, WholeNumber::sum(a.digits_, b.digits_)};
  }
  if (WholeNumber::compare(a.digits_, b.digits_) >= 0) {
    return {a.negative_, WholeNumber::difference(a.digits_, b.digits_)};
  }
  return {b.negative_, WholeNumber::difference(b.digits_, a.digits_)};
}

WholeNumber operator-(const WholeNumber& a, const WholeNumber& b) {
  return a + WholeNumber(!b.negative_, b.digits_);
}

WholeNumber operator*(const WholeNumber& a, const WholeNumber& b) {
  WholeNumber::Digits product(a.digits_.size() + b.digits_.size());
  for (std::size_t i = 0; i < a.digits_.size(); ++i) {
    std::uint64_t carry = 0;
    for (std::size_t j = 0; j < b.digits_.size(); ++j) {
      carry += std::uint64_t{a.digits_[i]} * b.digits_[j] + product[i + j];
      product[i + j] = static_cast<std::uint32_t>(carry);
      carry >>= kDigitBits;
    }
    product[i + b.digits_.size()] = static_cast<std::uint32_t>(carry);
  }
  return {a.negative_ != b.negative_, std::move(product)};
}

}  // namespace kzgis::exact
