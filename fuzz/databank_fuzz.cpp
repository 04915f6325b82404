// Fuzzes the readers of World DataBank II files: the map, whole segments, the look into one
// file; and the writer, with the segments that come.
//
// Input: the box as four int16, south, west, north, east, in hundredths of a degree; the
// precision in arc-seconds as uint16, all little-endian; the rest is the ".cbd".

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <sstream>

#include "fuzz/harness.h"
#include "fuzz/scratch.h"
#include "kzgis/databank.h"
#include "kzgis/worldmap.h"

namespace {

int int16_at(const std::uint8_t* bytes) {
  return static_cast<std::int16_t>(bytes[0] | bytes[1] << 8);
}

/// What a load promises of any file: points on the globe, lines of at least two of them, and
/// no more of all than the file accounts for.
void check(WorldMap& map, std::size_t file_size) {
  std::size_t points = 0;
  for (UtVector<LatLon*>* line : map.fetchPolygonCollection(Coastal)) {
    require(line->size() >= 2);
    points += line->size();
    for (const LatLon* point : *line) {
      require(std::abs(point->fetchLat()) <= 90.0);
      require(point->fetchLon() >= 0.0 && point->fetchLon() < 360.0);
    }
  }
  // A crossing of longitude 0 adds two points to the one that crosses.
  require(points <= 3 * (file_size + 65536 + 1));
}

bool same(const kzgis::Segment& a, const kzgis::Segment& b) {
  return a.continent == b.continent && a.theme == b.theme && a.level == b.level && a.lat == b.lat &&
         a.lon == b.lon;
}

/// What whole segments promise: places on the globe, no more than the
/// file accounts for; and that the writer's file of them gives them back.
void check_whole_segments(const std::string& directory, const kzgis::Box& box,
                          const std::string& copy, std::size_t file_size) {
  const auto bank = kzgis::read_databank(directory);
  require(bank.has_value());
  kzgis::DatabankWriter writer;
  std::size_t points = 0;
  for (const kzgis::Segment& segment : bank->segments) {
    points += segment.lat.size();
    require(!writer.add(segment));
  }
  require(points <= file_size + 65536);
  const auto file = kzgis::inspect_databank_file(directory + "/africa.Map/cil.cbd");
  require(file ? file->flaws.empty() == bank->damaged.empty() : bank->damaged.size() == 1);

  if (!bank->segments.empty()) {
    require(!writer.write(copy));
    const auto again = kzgis::read_databank(copy);
    require(again && again->damaged.empty());
    require(std::equal(again->segments.begin(), again->segments.end(), bank->segments.begin(),
                       bank->segments.end(), same));
  }
  const auto in_box = kzgis::read_databank(directory, {{kzgis::Theme::coasts}, {}, box});
  if (in_box) require(in_box->segments.size() <= bank->segments.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ScratchDirectory scratch;
  static const bool ready = std::filesystem::create_directory(scratch.path() + "/africa.Map");
  constexpr std::size_t kSettings = 10;
  if (!ready || size < kSettings) return 0;
  silence();
  scratch.write("africa.Map/cil.cbd", data + kSettings, size - kSettings);

  WorldMap map(scratch.path());
  for (infoLevels level = Level0; level != NumInfoLevels; increment(level)) {
    map.setPOI(Coastal, level, 1);
  }
  map.setPrecision(data[8] | data[9] << 8);
  *map.fetchLowLeftBoundary() = LatLon(int16_at(data) / 100.0, int16_at(data + 2) / 100.0);
  *map.fetchUpRightBoundary() = LatLon(int16_at(data + 4) / 100.0, int16_at(data + 6) / 100.0);
  map.readData();
  check(map, size - kSettings);
  std::ostringstream report;
  report << map;

  const kzgis::Box box{int16_at(data + 2) / 100.0, int16_at(data) / 100.0,
                       int16_at(data + 6) / 100.0, int16_at(data + 4) / 100.0};
  static const ScratchDirectory copy;
  check_whole_segments(scratch.path(), box, copy.path(), size - kSettings);
  return 0;
}
