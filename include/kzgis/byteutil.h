// The byte order of the host, for readers of files that have one of their own.

#ifndef KZGIS_BYTEUTIL_H
#define KZGIS_BYTEUTIL_H

#include "kzgis/export.h"
#include "kzgis/types.h"

/// Tells the host's byte order, and reverses the bytes of values in place.
///
/// Every count is a number of bytes, not of values: one 32-bit integer is
/// `SwapBytes4(4, &value)`, one double `SwapBytes8(8, &value)`.  The operations only
/// read the object, so one object may serve several threads at once whose buffers differ.
class KZGIS_EXPORT GIS_ByteUtil_c {
 public:
  /// The first byte in memory of a 32-bit 1: 1 on a little-endian host, 0 on a
  /// big-endian one.
  unsigned char ByteOrder() const;

  /// Exchanges the two bytes of each consecutive pair in `buffer`.
  ///
  /// @param count   length of `buffer` in bytes, even; 0 changes nothing
  /// @param buffer  the caller's, of any alignment
  /// @return `buffer`; null, with nothing changed, when `count` is odd or `buffer` null
  void* SwapBytes2(kz_ulong count, void* buffer) const;

  /// Reverses each consecutive group of four bytes, as `SwapBytes2` does pairs;
  /// refuses a count that is not a multiple of 4.
  void* SwapBytes4(kz_ulong count, void* buffer) const;

  /// Reverses each consecutive group of eight bytes, as `SwapBytes2` does pairs;
  /// refuses a count that is not a multiple of 8.
  void* SwapBytes8(kz_ulong count, void* buffer) const;

 private:
  kz_ulong probe_ = 1;
};

/// The same service under the name that readers of attribute (".dbf") files use:
/// a type of its own, with the operations of `GIS_ByteUtil_c` and nothing else.
class KZGIS_EXPORT DBF_ByteUtil_c : private GIS_ByteUtil_c {
 public:
  using GIS_ByteUtil_c::ByteOrder;
  using GIS_ByteUtil_c::SwapBytes2;
  using GIS_ByteUtil_c::SwapBytes4;
  using GIS_ByteUtil_c::SwapBytes8;
};

#endif
