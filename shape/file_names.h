// The names that the files of one shapefile have.

#ifndef KZGIS_SHAPE_FILE_NAMES_H
#define KZGIS_SHAPE_FILE_NAMES_H

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace kzgis::shape_fields {

inline constexpr std::size_t kExtensionLength = 4;

enum class Case { lower, any };

/// A name without the extension of one of the three files of a shapefile.
///
/// @param letters  which case the extension must have to be taken for one
inline std::string_view without_extension(std::string_view name, Case letters) {
  const auto same = [letters](char in_name, char lower) {
    if (letters == Case::any && in_name >= 'A' && in_name <= 'Z') in_name += 'a' - 'A';
    return in_name == lower;
  };
  if (name.size() < kExtensionLength) return name;
  const std::string_view ending = name.substr(name.size() - kExtensionLength);
  for (const std::string_view extension : {".shp", ".shx", ".dbf"}) {
    if (std::equal(ending.begin(), ending.end(), extension.begin(), same)) {
      return name.substr(0, name.size() - kExtensionLength);
    }
  }
  return name;
}

}  // namespace kzgis::shape_fields

#endif
