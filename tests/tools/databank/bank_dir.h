// A data bank in a directory of its own, for as long as a test needs it.

#ifndef KZGIS_TESTS_TOOLS_DATABANK_BANK_DIR_H
#define KZGIS_TESTS_TOOLS_DATABANK_BANK_DIR_H

#include <gtest/gtest.h>
#include <kzgis/worldmap.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/temporary_directory.h"
#include "tools/databank/bank_writer.h"
#include "tools/databank/load.h"

class BankTest : public testing::Test {
 protected:
  std::string directory() const { return directory_.path().string(); }

  std::string write(const std::string& name, const std::string& bytes) const {
    const std::filesystem::path path = directory_.path() / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
    return path.string();
  }

 private:
  TemporaryDirectory directory_;
};

namespace kzgis::databank {
inline void PrintTo(const ArcPoint& point, std::ostream* out) {
  *out << point.lat << ' ' << point.lon;
}
}  // namespace kzgis::databank

using Line = std::vector<kzgis::databank::ArcPoint>;

/// What a map holds of a theme, in whole arc-seconds.
inline std::vector<Line> lines_of(WorldMap& map, overlaySections theme) {
  std::vector<Line> lines;
  for (UtVector<LatLon*>* const polyline : map.fetchPolygonCollection(theme)) {
    Line line;
    for (const LatLon* const point : *polyline) {
      // The degrees that a point keeps are the nearest to its whole arc-seconds.
      line.push_back({static_cast<int>(std::lround(point->fetchLat() * 3600.0)),
                      static_cast<int>(std::lround(point->fetchLon() * 3600.0))});
    }
    lines.push_back(line);
  }
  return lines;
}

/// Reads every point of one theme in a bank.
inline std::vector<Line> read_lines(const std::string& directory, overlaySections theme) {
  WorldMap map(directory.c_str());
  kzgis::databank::request_everything(map);
  map.setPrecision(0);
  map.readData();
  return lines_of(map, theme);
}

#endif
