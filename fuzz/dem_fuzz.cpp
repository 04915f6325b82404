// Fuzzes the USGS DEM readers: the classic ones, profile after profile with their reports, and
// the grid, from memory and from a file.  The input is the file; fuzz/corpus/dem has some.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <sstream>
#include <string>

#include "fuzz/harness.h"
#include "fuzz/scratch.h"
#include "kzgis/dem.h"
#include "kzgis/elevation.h"

namespace {

/// Reads every profile; a loop over any file must end.
void read_classic(const std::string& path, std::size_t size) {
  DEM_LogicalRecord record{UtString(path)};
  std::ostringstream report;
  report << static_cast<const DEM_LRA&>(record);
  std::size_t profiles = 0;
  int result = 1;
  while (result == 1) {
    result = record.readRecord();
    // A profile takes 144 bytes at least.
    require(++profiles <= size / 144 + 1);
    require(record.fetchElevationCount() <= size / 6);
    report << record;
    // Have the sanitizer see each elevation.
    int highest = 0;
    for (std::size_t i = 0; i < record.fetchElevationCount(); ++i) {
      highest = std::max(highest, record.fetchElevations()[i]);
    }
    const int rows = record.fetchElevRows();
    const int columns = record.fetchElevCols();
    highest = std::max(highest, record.fetchElevation(rows - 1, columns - 1));
    highest = std::max(highest, record.ElevIndex(rows, columns));
    [[maybe_unused]] volatile const int sink = highest;
  }
}

bool same(float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); }

void check(const kzgis::Result<kzgis::ElevationGrid>& result, std::size_t size) {
  if (!result) {
    require(static_cast<bool>(result.error()) && !result.error().message.empty());
    require(result.error().message.find('\n') == std::string::npos);
    return;
  }
  const kzgis::ElevationGrid& grid = *result;
  require(!grid.elevations.empty());
  const auto cells =
      static_cast<std::uint64_t>(grid.rows) * static_cast<std::uint64_t>(grid.columns);
  require(grid.elevations.size() == cells && cells <= size);
  std::size_t empty = 0;
  for (const float elevation : grid.elevations) {
    require(!(elevation < grid.lowest) && !(elevation > grid.highest));
    if (std::isnan(elevation)) ++empty;
  }
  require(empty == grid.empty_cells);
  require(std::isfinite(grid.x(grid.columns)) && std::isfinite(grid.y(grid.rows)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ScratchDirectory scratch;
  silence();
  scratch.write("quadrangle.dem", data, size);
  const std::string path = scratch.path() + "/quadrangle.dem";
  read_classic(path, size);

  const auto from_memory = kzgis::read_dem({reinterpret_cast<const char*>(data), size}, path);
  check(from_memory, size);
  const auto from_file = kzgis::read_dem(path);
  require(from_file.has_value() == from_memory.has_value());
  if (!from_file) {
    require(from_file.error().message == from_memory.error().message);
    return 0;
  }
  check(from_file, size);
  require(std::equal(from_file->elevations.begin(), from_file->elevations.end(),
                     from_memory->elevations.begin(), from_memory->elevations.end(), same));
  return 0;
}
