// Numbers of a shapefile in their two byte orders, right on every host.

#ifndef KZGIS_SHAPE_BYTE_ORDER_H
#define KZGIS_SHAPE_BYTE_ORDER_H

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace kzgis::shape_fields {

/// The number that stands at `bytes` with its lowest byte first.
template <class T>
T little_endian(const char* bytes) {
  char ordered[sizeof(T)];
  std::memcpy(ordered, bytes, sizeof(T));
  if constexpr (std::endian::native != std::endian::little) {
    std::reverse(ordered, ordered + sizeof(T));
  }
  T value;
  std::memcpy(&value, ordered, sizeof(T));
  return value;
}

/// The number that stands in four bytes with its highest byte first.
inline std::uint32_t big_endian(const char* bytes) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return value;
}

}  // namespace kzgis::shape_fields

#endif
