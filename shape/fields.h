// How this folder reads fields from a file: bytes with a status, and their decoding.
//
// The format mixes byte orders: what manages the file (file code, lengths, offsets, record
// numbers) is big-endian, what describes shapes is little-endian.  Integers are 32 bits wide
// and signed, doubles are IEEE 754.  After "ESRI Shapefile Technical Description" (1998).

#ifndef KZGIS_SHAPE_FIELDS_H
#define KZGIS_SHAPE_FIELDS_H

#include <cstdint>
#include <cstring>
#include <fstream>
#include <istream>

#include "kzgis/byteutil.h"
#include "kzgis/types.h"
#include "shape/byte_order.h"
#include "shape/window_buffer.h"

namespace kzgis::shape_fields {

/// Bytes of one record of the index: an offset and a length.
inline constexpr kz_ulong kIndexRecordSize = 8;

inline constinit const GIS_ByteUtil_c byte_util;

/// Reads `count` bytes; every read of this folder gets its status here.
///
/// The streams of this library set their fail flag whenever bytes are missing, so that
/// a short read without it would be a fault of the stream buffer.
inline kz_ulong read_bytes(std::istream& stream, void* bytes, std::streamsize count) {
  stream.read(static_cast<char*>(bytes), count);
  if (stream.fail()) return stream.eof() ? status::end_of_file : status::read_failed;
  return stream.gcount() < count ? status::short_read : status::success;
}

/// An open file of the classic reader.
struct Input {
  std::ifstream& stream;
  WindowBuffer& window;  ///< the stream's buffer

  /// Whether that many bytes can be taken from the window: the stream reads the others, and keeps
  /// their flags.
  bool holds(std::int64_t count) const {
    return stream.good() && static_cast<std::int64_t>(window.held()) >= count;
  }
};

/// The same.  Most fields lie in the window, and most of the time to read a small record went into
/// asking the stream how it is.
inline kz_ulong read_bytes(const Input& in, void* bytes, std::streamsize count) {
  if (!in.holds(count)) return read_bytes(in.stream, bytes, count);
  if (count == 0) return status::success;  // of an array that there need not be
  std::memcpy(bytes, in.window.next(), static_cast<std::size_t>(count));
  in.window.pass(static_cast<std::size_t>(count));
  return status::success;
}

// The classic classes ask for byte orders as "swap unless ...": `ByteOrder()` is 1 on a
// little-endian host and never 2, so that their big-endian fields are reversed on every host,
// which those of byte_order.h are not.
inline bool swaps_big_endian(const GIS_ByteUtil_c& bytes) { return bytes.ByteOrder() != 2; }
inline bool swaps_little_endian(const GIS_ByteUtil_c& bytes) { return bytes.ByteOrder() != 1; }

// Decoding copies the field first: it may lie at any address, and a pointer of the wanted type
// to it would be undefined.

inline kz_long big_endian_long(const GIS_ByteUtil_c& bytes, const char* field) {
  kz_long value = 0;
  std::memcpy(&value, field, sizeof value);
  if (swaps_big_endian(bytes)) bytes.SwapBytes4(sizeof value, &value);
  return value;
}

/// Turns a file's count of 16-bit words into bytes.  A count of 2^30 or more wraps, as
/// all 32-bit arithmetic of this folder does, through unsigned.
inline kz_long words_to_bytes(kz_long words) {
  return static_cast<kz_long>(static_cast<kz_ulong>(words) * 2);
}

}  // namespace kzgis::shape_fields

#endif
