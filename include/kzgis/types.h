// Integers of one size on every host, and the statuses of the classic operations by name.

#ifndef KZGIS_TYPES_H
#define KZGIS_TYPES_H

#include <cstdint>
#include <limits>

/// What the interfaces call `long` and `unsigned long`: 32 bits on every host.
using kz_long = std::int32_t;
using kz_ulong = std::uint32_t;

/// The statuses that shapefile and polygon operations return.
///
/// The numbers are those of the classic half (docs/classic.md), and the names are for reading.
/// 3 and 12 are not used.
namespace kzgis::status {
inline constexpr kz_ulong success = 1;
inline constexpr kz_ulong wrong_kind = 2;        ///< not the kind of record or file asked for
inline constexpr kz_ulong refused = 2;           ///< polygons: not what nodes and trees can take
inline constexpr kz_ulong read_failed = 4;       ///< a read failed before the end of the file
inline constexpr kz_ulong short_read = 5;        ///< a read returned fewer bytes than needed
inline constexpr kz_ulong bad_file_code = 6;     ///< the header's file code is not 9994
inline constexpr kz_ulong bad_version = 7;       ///< the header's version is not 1000
inline constexpr kz_ulong bad_shape_type = 8;    ///< the header's shape type is not 0, 1, 3, 5 or 8
inline constexpr kz_ulong bad_bounding_box = 9;  ///< the header's box is empty or inverted
inline constexpr kz_ulong seek_failed = 10;
inline constexpr kz_ulong end_of_file = 11;  ///< the file ended during a read
inline constexpr kz_ulong not_open = 13;
inline constexpr kz_ulong out_of_memory = 14;  ///< an output array could not be allocated
}  // namespace kzgis::status

namespace kzgis {

/// A double as a 32-bit integer: truncated towards zero; what does not fit, NaN included,
/// becomes the smallest number.
inline kz_long truncate_to_int32(double value) {
  if (value > -2147483649.0 && value < 2147483648.0) return static_cast<kz_long>(value);
  return std::numeric_limits<kz_long>::min();
}

}  // namespace kzgis

#endif
