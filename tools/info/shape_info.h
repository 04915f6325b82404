// kzgis info on a shapefile.

#ifndef KZGIS_TOOLS_INFO_SHAPE_INFO_H
#define KZGIS_TOOLS_INFO_SHAPE_INFO_H

#include <string>

namespace kzgis::tools {

/// Prints the header report of a shapefile, the verdict on its headers, and what it holds.
///
/// @param each_record  a line for every record as well
/// @return the exit code: 0 when the file is sound
int print_shape_info(const std::string& file, bool each_record);

}  // namespace kzgis::tools

#endif
