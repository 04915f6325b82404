// Doubles as 32-bit integers, without anything undefined.
//
// The language leaves the conversion of a double that does not fit undefined.  The smallest
// integer in its place is what the processors of the x86 family answer by themselves.

#ifndef KZGIS_PLATFORM_INT32_H
#define KZGIS_PLATFORM_INT32_H

#include <cstdint>
#include <limits>

namespace kzgis {

/// Truncates toward zero to 32 bits; what does not fit, NaN included, becomes the smallest number.
///
/// The bounds are those of what still fits after the truncation, and doubles hold both exactly.
inline std::int32_t truncate_to_int32(double value) {
  if (value > -2147483649.0 && value < 2147483648.0) return static_cast<std::int32_t>(value);
  return std::numeric_limits<std::int32_t>::min();
}

}  // namespace kzgis

#endif
