#include "platform/real_from_chars.h"

#ifndef __cpp_lib_to_chars

#include <locale.h>
#include <stdlib.h>
#ifdef __APPLE__
#include <xlocale.h>
#endif

#include <cerrno>
#include <cmath>
#include <string>
#include <string_view>

namespace kzgis {

std::from_chars_result real_from_chars(const char* first, const char* last, double& value,
                                       std::chars_format format) {
  // Made once and kept.
  static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);

  // strtod skips blanks and takes a plus sign, from_chars neither.
  const std::string_view given(first, static_cast<std::size_t>(last - first));
  if (c_locale == nullptr || given.empty() ||
      std::string_view(" \t\n\v\f\r+").find(given.front()) != std::string_view::npos) {
    return {first, std::errc::invalid_argument};
  }
  // strtod takes digits for hexadecimal ones behind "0x" alone.
  const std::size_t sign = given.front() == '-' ? 1 : 0;
  std::string text(given);
  std::size_t added = 0;
  if (format == std::chars_format::hex) {
    text.insert(sign, "0x");
    added = 2;
  }

  const int former_errno = errno;
  errno = 0;
  char* stop = nullptr;
  const double number = strtod_l(text.c_str(), &stop, c_locale);
  // A subnormal number is out of strtod's range, but not of a double's.
  const bool out_of_range = errno == ERANGE && (number == 0.0 || std::isinf(number));
  errno = former_errno;

  const auto length = static_cast<std::size_t>(stop - text.c_str());
  if (length <= sign + added) return {first, std::errc::invalid_argument};
  const char* const end = first + (length - added);
  if (out_of_range) return {end, std::errc::result_out_of_range};
  value = number;
  return {end, std::errc()};
}

}  // namespace kzgis

#endif
