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
#include <sstream>

#include "tools/dem/grid_file.h"
#include "tools/support/command_error.h"
#include "tools/support/input_file.h"
#include "tools/support/number_text.h"

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

/// Empty when it is unknown.
const char* name_of(GroundUnit unit) {
  return unit == GroundUnit::degrees  ? "degrees"
         : unit == GroundUnit::feet   ? "feet"
         : unit == GroundUnit::metres ? "metres"
                                      : "";
}

/// Empty when it is unknown.
const char* name_of(ElevationUnit unit) {
  return unit == ElevationUnit::feet ? "feet" : unit == ElevationUnit::metres ? "metres" : "";
}

/// One line: the grid, its ground, and the range of what is in it.
std::string summary(const ElevationGrid& grid) {
  const auto unit_text = [](const char* unit) {
    return std::string(unit).empty() ? std::string() : std::string(" ") + unit;
  };
  const std::string ground = unit_text(name_of(grid.ground_unit));
  const std::string height = unit_text(name_of(grid.elevation_unit));
  const std::size_t elevations = grid.elevations.size() - grid.empty_cells;
  std::array<char, 320> text{};
  std::snprintf(text.data(), text.size(),
                ": %s and %s, %.9g by %.9g%s apart, x %.10g to %.10g, y %.10g to "
                "%.10g; %s",
                counted(static_cast<std::uint64_t>(grid.columns), "column").c_str(),
                counted(static_cast<std::uint64_t>(grid.rows), "row").c_str(), grid.step_x,
                grid.step_y, ground.c_str(), grid.x(0), grid.x(grid.columns - 1),
                grid.y(grid.rows - 1), grid.y(0), counted(elevations, "elevation").c_str());
  std::string line = grid.name + text.data();
  if (elevations == 0) return line;
  std::snprintf(text.data(), text.size(), " from %.9g to %.9g%s", static_cast<double>(grid.lowest),
                static_cast<double>(grid.highest), height.c_str());
  return line + text.data();
}

/// Prints the classic report, which names the file that the user has.
void print_header(const std::string& file) {
  const std::string path = expanded(file);
  const std::string why = why_not_readable(path);
  if (!why.empty()) throw CommandError(why);
  std::unique_ptr<UncompressedCopy> copy;
  if (path.ends_with(".gz")) copy = std::make_unique<UncompressedCopy>(path);
  DEM_LRA record(UtString(copy ? copy->path() : path));
  if (record.ingest() != 1) return;
  std::ostringstream report;
  report << record;
  std::string text = report.str();
  if (copy) text.replace(text.find(copy->path()), copy->path().size(), path);
  std::cout << text;
}

const char* plan_name(GroundPlan plan) {
  switch (plan) {
    case GroundPlan::geographic:
      return "geographic";
    case GroundPlan::utm:
      return "utm";
    case GroundPlan::state_plane:
      return "state plane";
    default:
      return "other";
  }
}

void describe(const ElevationGrid& grid, InfoReport::Json& document) {
  document["name"] = grid.name;
  document["ground_plan"] = plan_name(grid.plan);
  document["zone"] = grid.zone;
  document["ground_unit"] = name_of(grid.ground_unit);
  document["elevation_unit"] = name_of(grid.elevation_unit);
  document["columns"] = grid.columns;
  document["rows"] = grid.rows;
  document["step_x"] = grid.step_x;
  document["step_y"] = grid.step_y;
  document["box"] =
      box_object({grid.x(0), grid.y(grid.rows - 1), grid.x(grid.columns - 1), grid.y(0)});
  document["elevations"] = grid.elevations.size() - grid.empty_cells;
  document["lowest"] = grid.lowest;
  document["highest"] = grid.highest;
  document["left_out"] = grid.left_out;
}

}  // namespace

void report_dem(InfoReport& info) {
  if (info.json()) {
    describe(read_grid(info.file()), info.document());
    return;
  }
  print_header(info.file());
  std::cout << summary(read_grid(info.file())) << '\n';
}

}  // namespace kzgis::tools
