// Numbers out of text fields, as C's `atoi` and `atof` read them in the locale "C".

#ifndef KZGIS_DEM_NUMBER_TEXT_H
#define KZGIS_DEM_NUMBER_TEXT_H

#include <array>
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

/// What six characters are compared with, the first one lowest, of which so many are blanks.
struct PlainField {
  std::uint64_t zero;    ///< the blanks, and '0' for each digit
  std::uint64_t excess;  ///< added to what differs, sets bit 7 of a byte that may not differ so
};

/// By the number of blanks.  Six of them are no number, and none other than these is reached.
inline constexpr std::array<PlainField, 9> kPlainFields = [] {
  std::array<PlainField, 9> fields{};
  for (std::size_t blanks = 0; blanks != fields.size(); ++blanks) {
    for (std::size_t i = 0; i < 6; ++i) {
      const bool is_blank = i < blanks;
      fields[blanks].zero |= std::uint64_t{is_blank ? 0x20U : 0x30U} << (8 * i);
      // A blank differs in nothing, a digit from '0' in 9 at most.
      const std::uint64_t excess = blanks >= 6 ? 0x80 : is_blank ? 0x7F : 0x76;
      fields[blanks].excess |= excess << (8 * i);
    }
  }
  return fields;
}();

/// The number in a field of six characters that holds nothing but blanks and then digits, as
/// nearly all elevations do: eight bytes at a time, after D. Lemire, "Quickly parsing eight
/// digits" (2018).  The two bytes before the field must be readable.
/// @return -1 for any other field, and on hosts whose lowest byte is not the first
inline int plain_elevation(const char* field) {
  if constexpr (std::endian::native == std::endian::little) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, field - 2, sizeof bytes);
    bytes >>= 16;  // the first character lowest
    // Bit 4 tells a digit, 0x30 to 0x39, from a blank, 0x20.  Where the first one is set the
    // digits must begin, and what is in front of it must be blanks.
    const auto blanks = static_cast<std::size_t>(std::countr_zero(bytes & 0x101010101010)) / 8;
    const PlainField& plain = kPlainFields[blanks];
    const std::uint64_t zeroed = bytes ^ plain.zero;  // the values of the digits
    if (((zeroed | (zeroed + plain.excess)) & 0x808080808080) == 0) {
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
