// Writing elevations row by row, so that no more than a row of text is in memory, and stopping
// where the output can take no more.

#include "tools/dem/grid_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

namespace kzgis::tools {

namespace {

constexpr const char* kNoData = "-32767";

/// The shortest text that reads back as the same number, without an exponent: not every
/// reader of grids takes one.
template <typename Number>
void append_plain(std::string& line, Number value) {
  std::array<char, 400> text{};  // what is longer is as good as 0
  const auto [end, error] =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  if (error == std::errc()) {
    line.append(text.data(), end);
  } else {
    line += '0';
  }
}

/// One line of the header.
void append_field(std::string& header, const char* name, double value) {
  header += name;
  header += ' ';
  append_plain(header, value);
  header += '\n';
}

}  // namespace

void write_ascii_grid(std::ostream& out, const ElevationGrid& grid) {
  std::string line;
  append_field(line, "ncols", static_cast<double>(grid.columns));
  append_field(line, "nrows", static_cast<double>(grid.rows));
  append_field(line, "xllcorner", grid.west - grid.step_x / 2.0);
  append_field(line, "yllcorner", grid.y(grid.rows - 1) - grid.step_y / 2.0);
  if (grid.step_x == grid.step_y) {
    append_field(line, "cellsize", grid.step_x);
  } else {
    append_field(line, "dx", grid.step_x);
    append_field(line, "dy", grid.step_y);
  }
  line += std::string("NODATA_value ") + kNoData + '\n';
  out << line;
  for (std::int32_t row = 0; row < grid.rows && out; ++row) {
    line.clear();
    for (std::int32_t column = 0; column < grid.columns; ++column) {
      if (column > 0) line += ' ';
      const float elevation = grid.at(row, column);
      if (std::isnan(elevation)) {
        line += kNoData;
      } else {
        append_plain(line, elevation);
      }
    }
    line += '\n';
    out << line;
  }
}

void write_points(std::ostream& out, const ElevationGrid& grid) {
  out << "x,y,z\n";
  std::string line;
  for (std::int32_t row = 0; row < grid.rows && out; ++row) {
    line.clear();
    for (std::int32_t column = 0; column < grid.columns; ++column) {
      const float elevation = grid.at(row, column);
      if (std::isnan(elevation)) continue;
      append_plain(line, grid.x(column));
      line += ',';
      append_plain(line, grid.y(row));
      line += ',';
      append_plain(line, elevation);
      line += '\n';
    }
    out << line;
  }
}

}  // namespace kzgis::tools
