// Numbers as binary mesh files hold them: little-endian, floats after IEEE 754.

#ifndef KZGIS_TOOLS_MESH_FILES_BINARY_H
#define KZGIS_TOOLS_MESH_FILES_BINARY_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

namespace kzgis::tools {

static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);

inline void append_bits(std::string& bytes, std::uint64_t bits, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) bytes += static_cast<char>(bits >> 8U * i & 255U);
}

inline void append_binary(std::string& bytes, std::uint32_t value) { append_bits(bytes, value, 4); }

inline void append_binary(std::string& bytes, float value) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  append_bits(bytes, bits, sizeof bits);
}

inline void append_binary(std::string& bytes, double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  append_bits(bytes, bits, sizeof bits);
}

}  // namespace kzgis::tools

#endif
