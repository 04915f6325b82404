// Loads maps as told on standard input and prints all there is to see of each load.
//
// One load per line: directory, south, west, north, east (degrees), precision (arc-seconds),
// then overlay:level pairs to request.  Messages of both streams and progress reports
// ("@ percent label") come in their order, then a line "overlay: lat lon, lat lon" per
// polyline, in degrees that read back exactly.
//
// The same themes, levels and box are then asked of read_databank: a line "whole continent
// theme level: lat lon, lat lon" per segment, in arc-seconds, and "damaged path" per damaged
// file.  "done" ends a load.

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>

#include "kzgis/databank.h"
#include "kzgis/status.h"
#include "kzgis/worldmap.h"

namespace {

void print_progress(int percent, const char* label, void* /*context*/) {
  std::cout << "@ " << percent << ' ' << label << '\n';
}

void print_lines(WorldMap& map) {
  for (overlaySections o = Geographic; o != NumOverlaySections; increment(o)) {
    for (UtVector<LatLon*>* line : map.fetchPolygonCollection(o)) {
      std::cout << o << ':';
      const char* separator = " ";
      for (const LatLon* point : *line) {
        char text[64];
        std::snprintf(text, sizeof text, "%.17g %.17g", point->fetchLat(), point->fetchLon());
        std::cout << separator << text;
        separator = ", ";
      }
      std::cout << '\n';
    }
  }
}

void print_whole_segments(const std::string& directory, const kzgis::DatabankQuery& query) {
  const auto bank = kzgis::read_databank(directory, query);
  if (!bank) {
    std::cout << bank.error().message << '\n';
    return;
  }
  for (const kzgis::Segment& segment : bank->segments) {
    std::cout << "whole " << static_cast<int>(segment.continent) << ' '
              << static_cast<int>(segment.theme) << ' ' << segment.level << ':';
    for (std::size_t i = 0; i < segment.lat.size(); ++i) {
      std::cout << (i == 0 ? " " : ", ") << segment.lat[i] << ' ' << segment.lon[i];
    }
    std::cout << '\n';
  }
  for (const kzgis::DamagedFile& file : bank->damaged) std::cout << "damaged " << file.path << '\n';
}

}  // namespace

int main() {
  std::cerr.rdbuf(std::cout.rdbuf());
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream job(line);
    std::string directory;
    double south = 0, west = 0, north = 0, east = 0;
    kz_long precision = 0;
    if (!(job >> directory >> south >> west >> north >> east >> precision)) return 1;
    WorldMap map(directory);
    *map.fetchLowLeftBoundary() = LatLon(south, west);
    *map.fetchUpRightBoundary() = LatLon(north, east);
    map.setPrecision(precision);
    kzgis::DatabankQuery query;
    query.box = kzgis::Box{west, south, east, north};
    int overlay = 0, level = 0;
    for (char colon = 0; job >> overlay >> colon >> level;) {
      map.setPOI(static_cast<overlaySections>(overlay), static_cast<infoLevels>(level), 1);
      query.themes.push_back(static_cast<kzgis::Theme>(overlay));
      if (level < kzgis::kLevelCount) query.levels.push_back(level);
    }
    OMstatus_set_handler(&print_progress, nullptr);
    map.setVerbose(1);
    map.readData();
    map.setVerbose(0);
    OMstatus_set_handler(nullptr, nullptr);
    print_lines(map);
    print_whole_segments(directory, query);
    std::cout << "done\n";
  }
  return 0;
}
