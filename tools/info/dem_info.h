// kzgis info on an elevation model.

#ifndef KZGIS_TOOLS_INFO_DEM_INFO_H
#define KZGIS_TOOLS_INFO_DEM_INFO_H

#include <string>

namespace kzgis::tools {

/// Prints the classic report of a DEM's header, which takes some numbers wrong, and a line
/// on what the elevations are.
///
/// @return the exit code: 0 when the whole file can be read
int print_dem_info(const std::string& file);

}  // namespace kzgis::tools

#endif
