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

/// The number in a field of six characters that holds nothing but blanks and then digits, as
/// nearly all elevations do: eight bytes at a time, after D. Lemire, "Quickly parsing eight
/// digits" (2018).  The two bytes before the field must be readable.
/// @return -1 for any other field, and on hosts whose lowest byte is not the first
inline int plain_elevation(const char* field) {
  if constexpr (std::endian::native == std::endian::little) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, field - 2, sizeof bytes);
    bytes >>= 16;  // the first character lowest
    // A blank is 0x20 and becomes '0', 0x30; digits are 0x30 to 0x39 and stay.  `zeroed` has
    // their values, and `digits` is true when each is 0 to 9 and every byte without bit 4 was a
    // blank, not another of that sort such as '!'.
    constexpr std::uint64_t kBit4 = 0x101010101010;
    const std::uint64_t blanks = ~bytes & kBit4;
    const int leading = std::countr_zero(bytes & kBit4) & ~7;
    const std::uint64_t zeroed = (bytes | kBit4) ^ 0x303030303030;
    const bool digits = ((zeroed | (zeroed + 0x060606060606)) & 0xF0F0F0F0F0F0) == 0 &&
                        (zeroed & (blanks >> 4) * 0xF) == 0;
    // Blanks nowhere but in front, and not everywhere.
    if (digits && leading < 48 && blanks == (kBit4 & ((std::uint64_t{1} << leading) - 1))) {
      // Neighbours are joined three times: digits to pairs, pairs to fours, fours to the number.
      std::uint64_t v = zeroed << 16;  // two zeros in front make eight
      v = v * 10 + (v >> 8);
      v = ((v & 0x000000FF000000FF) * 0x000F424000000064 +
           ((v >> 16) & 0x000000FF000000FF) * 0x0000271000000001) >>
          32;
      return static_cast<int>(static_cast<std::uint32_t>(v));
    }
  }
  return -1;
}

}  // namespace kzgis::dem

#endif
