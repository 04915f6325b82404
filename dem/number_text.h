// Numbers out of text fields, as C's `atoi` and `atof` read them in the locale "C".

#ifndef KZGIS_DEM_NUMBER_TEXT_H
#define KZGIS_DEM_NUMBER_TEXT_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kzgis::dem {

/// A number that a text begins with, and how much of the text it occupies.
template <class T>
struct NumberText {
  T value = 0;             ///< 0 when there is none
  std::size_t length = 0;  ///< leading blanks included; 0 when there is none
};

/// Leading blanks, a sign, digits.  Too large a number becomes the nearest int, where C
/// leaves `atoi` undefined.
NumberText<int> integer_of(std::string_view text);

/// Leading blanks, a sign, then a decimal or hexadecimal number, "inf", "infinity", "nan" or
/// "nan(...)" in any case.  Too large is an infinity, too small a zero.
NumberText<double> real_of(std::string_view text);

/// True when nothing but blanks is behind the number, or in the whole text when there is none.
template <class T>
bool is_whole(const NumberText<T>& number, std::string_view text) {
  return text.find_first_not_of(' ', number.length) == std::string_view::npos;
}

/// What six characters say that are blanks and then digits, as nearly all elevations do.
struct PlainNumber {
  int value;
  std::uint64_t odd;  ///< 0, or the characters are no such number and the value is none
};

/// Reads them without a branch, eight bytes at a time, after D. Lemire, "Quickly parsing eight
/// digits" (2018).  The two bytes before the field must be readable.  On hosts whose lowest byte is
/// not the first every field is odd.
inline PlainNumber plain_number(const char* field) {
  if constexpr (std::endian::native != std::endian::little) return {0, 1};
  constexpr std::uint64_t kField = 0xFFFFFFFFFFFF0000;  // the first character lowest
  const auto each = [](std::uint64_t byte) { return byte * 0x0101010101010101 & kField; };
  std::uint64_t bytes = 0;
  std::memcpy(&bytes, field - 2, sizeof bytes);
  // Bit 4 tells a digit, 0x30 to 0x39, from a blank, 0x20, which then counts as a 0.
  const std::uint64_t blank = ~bytes & each(0x10);
  const std::uint64_t digits = (bytes ^ each(0x30)) & kField & ~blank;
  const std::uint64_t odd = ((digits | (digits + each(0x76))) & each(0x80))  // beyond 9
                            | (digits & (blank - (blank >> 4)))  // in the place of a blank, not one
                            | ((blank >> 8) & ~blank & each(0x10))  // a blank behind a digit
                            | (blank & 0x1000000000000000);         // blanks only
  // Neighbours are joined three times: digits to pairs, pairs to fours, fours to the number; two
  // zeros in front make eight digits.
  std::uint64_t v = digits * 10 + (digits >> 8);
  v = ((v & 0x000000FF000000FF) * 0x000F424000000064 +
       ((v >> 16) & 0x000000FF000000FF) * 0x0000271000000001) >>
      32;
  return {static_cast<int>(static_cast<std::uint32_t>(v)), odd};
}

/// Reads fields of six characters, end to end.  The two bytes before them must be readable.
/// @return whether all of them are plain; where not, some of `values` are none
bool plain_numbers(const char* fields, std::size_t count, int* values);

}  // namespace kzgis::dem

#endif
