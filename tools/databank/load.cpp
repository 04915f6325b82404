#include "tools/databank/load.h"

#include <filesystem>

#include "tools/databank/names.h"
#include "tools/support/command_error.h"

namespace kzgis::databank {

void request_globe(WorldMap& map) {
  // 360 degrees would be kept as 0.  The map cuts a box off to whole arc-seconds, so this
  // is 1295999 to it, the last there is.
  constexpr double kLastLongitude = 360.0 - 0.5 / 3600.0;
  *map.fetchLowLeftBoundary() = LatLon(-90.0, 0.0);
  *map.fetchUpRightBoundary() = LatLon(90.0, kLastLongitude);
}

void request_everything(WorldMap& map) {
  request_globe(map);
  for (overlaySections theme = Geographic; theme != Plates; increment(theme)) {
    for (infoLevels level = Level0; level != NumInfoLevels; increment(level)) {
      map.setPOI(theme, level, 1);
    }
  }
}

std::vector<std::string> files_of(const std::string& directory, overlaySections theme) {
  std::vector<std::string> files;
  for (mapSections continent = Africa; continent != NumMapSections; increment(continent)) {
    const auto file =
        std::filesystem::path(directory) / continent_directory(continent) / theme_file(theme);
    // Where it cannot be told whether there is one, reading it will complain.
    std::error_code error;
    if (std::filesystem::exists(file, error) || error) files.push_back(file.string());
  }
  return files;
}

void check_is_bank(const std::string& directory) {
  for (overlaySections theme = Geographic; theme != Plates; increment(theme)) {
    for (const std::string& file : files_of(directory, theme)) {
      std::error_code error;
      if (std::filesystem::exists(file, error)) return;
    }
  }
  throw tools::CommandError(directory +
                            ": holds no data bank: there is no africa.Map/cil.cbd in it, nor any "
                            "other of its files");
}

}  // namespace kzgis::databank
