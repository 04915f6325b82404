// `std::from_chars` for double, which libc++ has not had for long.

#ifndef KZGIS_PLATFORM_REAL_FROM_CHARS_H
#define KZGIS_PLATFORM_REAL_FROM_CHARS_H

#include <charconv>
#include <system_error>

namespace kzgis {

#ifdef __cpp_lib_to_chars

inline std::from_chars_result real_from_chars(const char* first, const char* last, double& value,
                                              std::chars_format format) {
  return std::from_chars(first, last, value, format);
}

#else

/// What `std::from_chars` does with digits, by the host's `strtod` in the locale "C": in the
/// general format nothing may begin with "0x", in the hexadecimal one nothing be infinite or no
/// number. Takes memory for a copy of the text, and throws `std::bad_alloc` without.
std::from_chars_result real_from_chars(const char* first, const char* last, double& value,
                                       std::chars_format format);

#endif

}  // namespace kzgis

#endif
