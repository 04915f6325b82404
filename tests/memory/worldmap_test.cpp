// The world map's settings and report without memory.  Its loading is tested with its other
// failures, in tests/worldmap.

#include "kzgis/worldmap.h"

#include <set>
#include <string>
#include <vector>

#include "kzgis/databank.h"
#include "kzgis/utvector.h"
#include "memory/failing.h"

namespace {

/// Which corners of the box are there: 3 for both.
long corners(const WorldMap& map) {
  return (map.fetchLowLeftBoundary() != nullptr ? 1 : 0) +
         (map.fetchUpRightBoundary() != nullptr ? 2 : 0);
}

/// A map with long names in it.
WorldMap& named_map() {
  static WorldMap map;
  map.setCIADirectory(kText);
  map.setContinentDir(Asia, kText);
  map.setOverlaysFile(River, kText);
  return map;
}

std::vector<Operation> operations() {
  static WorldMap& map = named_map();
  static const UtString other("another name that is longer than a string keeps inside itself");
  static LatLon point(1.0, 1.0);
  return {
      {"WorldMap", 8, {kThrew, 1, 2}, [] { return corners(WorldMap()); }},
      {"WorldMap_Directory", 8, {kThrew, 1, 2}, [] { return corners(WorldMap(kText)); }},
      {"fetchCIADirectory",
       1,
       {kThrew},
       [] { return static_cast<long>(map.fetchCIADirectory().size()); }},
      {"fetchContinentDir",
       1,
       {kThrew},
       [] { return static_cast<long>(map.fetchContinentDir(Asia).size()); }},
      {"fetchOverlaysFile",
       1,
       {kThrew},
       [] { return static_cast<long>(map.fetchOverlaysFile(River).size()); }},
      {"Settings",
       0,
       {},
       [] {
         map.setPOI(Coastal, Level1, 0);
         map.setPrecision(60);
         map.readData();  // nothing is requested
         map.clearMaps();
         return long{map.insideBoundary(LatLon(50.0, 250.0)) + map.fetchPOI(Coastal, Level1)};
       }},
      {"Report",
       0,
       {},
       [] {
         nowhere() << map;
         return 1L;
       }},
      {"databank_file_name",
       1,
       {kThrew},
       [] {
         return static_cast<long>(
             kzgis::databank_file_name(kzgis::Continent::africa, kzgis::Theme::coasts).size());
       }},
      {"UtVector",
       6,  // room for 1, 2, 4, 8, 16 and 32
       {kThrew},
       [] {
         UtVector<LatLon*> line;
         for (int i = 0; i < 20; ++i) line.push_back(&point);
         return static_cast<long>(line.size());
       }},
      {"UtVector_Of_Lines",
       6,
       {kThrew},
       [] {
         UtVector<UtVector<LatLon*>*> lines;
         for (int i = 0; i < 20; ++i) lines.push_back(nullptr);
         return static_cast<long>(lines.size());
       }},
  };
}

INSTANTIATE_TEST_SUITE_P(WorldMap, FailingMemory, testing::ValuesIn(operations()), name_of);

}  // namespace
