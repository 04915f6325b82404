// kzgis info on an elevation model: the report of the classic reader, and what the elevations
// are in truth.

#include "tools/info/dem_info.h"

#include <kzgis/dem.h>
#include <kzgis/elevation.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

#include "tools/dem/grid_file.h"
#include "tools/support/command_error.h"
#include "tools/support/input_file.h"
#include "tools/support/number_text.h"
#include "tools/support/output_file.h"

namespace kzgis::tools {

namespace {

/// What a compressed file holds, as a file: the classic reader takes nothing else.
class UncompressedCopy {
 public:
  explicit UncompressedCopy(const std::string& file) {
    const std::string bytes = read_gzip(file);
    path_ = (std::filesystem::temp_directory_path() / "kzgis_XXXXXX").string();
    const int descriptor = mkstemp(path_.data());
    if (descriptor < 0) throw CommandError(path_ + ": cannot be written");
    close(descriptor);
    std::ofstream out(path_, std::ios::binary);
    out << bytes;
    if (!out.flush()) {
      std::remove(path_.c_str());
      throw CommandError(path_ + ": cannot be written");
    }
  }
  ~UncompressedCopy() { std::remove(path_.c_str()); }
  UncompressedCopy(const UncompressedCopy&) = delete;
  UncompressedCopy& operator=(const UncompressedCopy&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

/// One line: the grid, its ground, and the range of what is in it.
std::string summary(const ElevationGrid& grid) {
  const char* const ground = grid.ground_unit == GroundUnit::degrees  ? " degrees"
                             : grid.ground_unit == GroundUnit::feet   ? " feet"
                             : grid.ground_unit == GroundUnit::metres ? " metres"
                                                                      : "";
  const char* const height = grid.elevation_unit == ElevationUnit::feet     ? " feet"
                             : grid.elevation_unit == ElevationUnit::metres ? " metres"
                                                                            : "";
  const std::size_t elevations = grid.elevations.size() - grid.empty_cells;
  std::array<char, 320> text{};
  std::snprintf(text.data(), text.size(),
                ": %s and %s, %.9g by %.9g%s apart, x %.10g to %.10g, y %.10g to "
                "%.10g; %s",
                counted(static_cast<std::uint64_t>(grid.columns), "column").c_str(),
                counted(static_cast<std::uint64_t>(grid.rows), "row").c_str(), grid.step_x,
                grid.step_y, ground, grid.x(0), grid.x(grid.columns - 1), grid.y(grid.rows - 1),
                grid.y(0), counted(elevations, "elevation").c_str());
  std::string line = grid.name + text.data();
  if (elevations == 0) return line;
  std::snprintf(text.data(), text.size(), " from %.9g to %.9g%s", static_cast<double>(grid.lowest),
                static_cast<double>(grid.highest), height);
  return line + text.data();
}

}  // namespace

int print_dem_info(const std::string& file) {
  const std::string path = expanded(file);
  const std::string why = why_not_readable(path);
  if (!why.empty()) throw CommandError(why);
  std::unique_ptr<UncompressedCopy> copy;
  if (path.ends_with(".gz")) copy = std::make_unique<UncompressedCopy>(path);
  DEM_LRA record(UtString(copy ? copy->path() : path));
  if (record.ingest() == 1) std::cout << record;
  std::cout << summary(read_grid(file)) << '\n';
  OutputFile("-").commit();
  return 0;
}

}  // namespace kzgis::tools
