// Byte order of the host, and reversal of runs of 2-, 4- or 8-byte values.
//
// Shapefiles mix both byte orders.  Their readers ask an object of this class for the host's
// order and decide by the answer which fields to reverse (shape/fields.h).

#include "kzgis/byteutil.h"

#include <algorithm>
#include <cstring>

namespace {

/// Reverses each group of `group` bytes; `count` is the number of bytes of all groups.
/// @return `buffer`; null, with nothing changed, when `count` is no multiple of `group` or
///         `buffer` is null
void* reverse_groups(kz_ulong count, void* buffer, kz_ulong group) {
  if (count % group != 0 || buffer == nullptr) return nullptr;
  auto* bytes = static_cast<unsigned char*>(buffer);
  for (kz_ulong start = 0; start < count; start += group) {
    std::reverse(bytes + start, bytes + start + group);
  }
  return buffer;
}

}  // namespace

unsigned char GIS_ByteUtil_c::ByteOrder() const {
  unsigned char first = 0;
  std::memcpy(&first, &probe_, 1);
  return first;
}

void* GIS_ByteUtil_c::SwapBytes2(kz_ulong count, void* buffer) const {
  return reverse_groups(count, buffer, 2);
}

void* GIS_ByteUtil_c::SwapBytes4(kz_ulong count, void* buffer) const {
  return reverse_groups(count, buffer, 4);
}

void* GIS_ByteUtil_c::SwapBytes8(kz_ulong count, void* buffer) const {
  return reverse_groups(count, buffer, 8);
}
