// Elevation models as people keep them: plain or compressed by gzip.

#ifndef KZGIS_TOOLS_DEM_GRID_FILE_H
#define KZGIS_TOOLS_DEM_GRID_FILE_H

#include <kzgis/elevation.h>

#include <string>

namespace kzgis::tools {

/// Reads a DEM, compressed by gzip or not.  Throws `CommandError` when it is refused.
ElevationGrid read_grid(const std::string& file);

/// The bytes of a file that gzip compressed.  Throws `CommandError`, also when they come to
/// more than 16 MiB and more than 32 times its size.
std::string read_gzip(const std::string& file);

}  // namespace kzgis::tools

#endif
