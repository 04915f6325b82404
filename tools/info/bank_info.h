// kzgis info on outline files and data banks.

#ifndef KZGIS_TOOLS_INFO_BANK_INFO_H
#define KZGIS_TOOLS_INFO_BANK_INFO_H

#include <string>

namespace kzgis::tools {

/// Prints what an outline file (".cbd") holds, level by level, and reports what is wrong
/// with it.
///
/// @param each_segment  a line for every segment as well
/// @return the exit code: 0 when the file is sound
int print_bank_file_info(const std::string& file, bool each_segment);

/// Prints the report of a whole data bank, and the polylines and points of each theme's
/// levels.  Throws `CommandError` when the directory holds no outline file.
///
/// @return the exit code: 0 when every file is sound
int print_bank_info(const std::string& directory);

}  // namespace kzgis::tools

#endif
