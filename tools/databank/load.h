// Data banks through `WorldMap`.

#ifndef KZGIS_TOOLS_DATABANK_LOAD_H
#define KZGIS_TOOLS_DATABANK_LOAD_H

#include <kzgis/worldmap.h>

#include <string>
#include <vector>

namespace kzgis::databank {

/// Opens the box of a map to the whole globe, the last arc-second of longitude included.
void request_globe(WorldMap& map);

/// Requests every level of the four themes, on the whole globe.
void request_everything(WorldMap& map);

/// The paths of the files that a bank has of one theme, in the order of the continents.
std::vector<std::string> files_of(const std::string& directory, overlaySections theme);

/// Throws `tools::CommandError` when the directory has no file of any theme.
void check_is_bank(const std::string& directory);

}  // namespace kzgis::databank

#endif
