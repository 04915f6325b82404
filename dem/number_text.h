// Numbers out of text fields, as C's `atoi` and `atof` take them in the locale "C".

#ifndef KZGIS_DEM_NUMBER_TEXT_H
#define KZGIS_DEM_NUMBER_TEXT_H

#include <cstddef>
#include <string_view>

namespace kzgis::dem {

/// A number that a text begins with, and how much of the text it takes.
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

}  // namespace kzgis::dem

#endif
