// Light and shade on a grid of elevations: B. K. P. Horn, "Hill shading and the reflectance map",
// Proceedings of the IEEE 69 (1981), over a surface that E. Catmull and R. Rom's splines (1974)
// make smooth where the picture is larger than the grid.

#include "tools/dem/relief.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace kzgis::tools {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kFoot_m = 0.3048;

double radians(double degrees) { return degrees * kPi / 180.0; }

/// A cell and its eight neighbours, row by row from the north-west.
using Window = std::array<double, 9>;

Window window_at(const ElevationGrid& grid, std::int32_t row, std::int32_t column) {
  Window window{};
  for (std::int32_t i = 0; i < 9; ++i) {
    window.at(static_cast<std::size_t>(i)) = grid.at(row + i / 3 - 1, column + i % 3 - 1);
  }
  // Across the cell lies the neighbour that says how the slope goes on; where that is missing
  // too, at a side the ground is level, at a corner the two sides next to it say.
  const double centre = window[4];
  const Window known = window;
  for (const std::size_t side : {1U, 3U, 5U, 7U}) {
    if (!std::isnan(known.at(side))) continue;
    const double across = known.at(8 - side);
    window.at(side) = std::isnan(across) ? centre : 2.0 * centre - across;
  }
  for (const std::size_t corner : {0U, 2U, 6U, 8U}) {
    if (!std::isnan(known.at(corner))) continue;
    const double across = known.at(8 - corner);
    const double vertical = window.at(corner < 3 ? 1 : 7);
    const double horizontal = window.at(corner % 3 == 0 ? 3 : 5);
    window.at(corner) = std::isnan(across) ? vertical + horizontal - centre : 2.0 * centre - across;
  }
  return window;
}

/// The weights of four neighbours for a place `t` of the way from the second to the third.
using Weights = std::array<double, 4>;

Weights cubic_weights(double t) {
  return {0.5 * t * (-1.0 + t * (2.0 - t)), 0.5 * (2.0 + t * t * (-5.0 + 3.0 * t)),
          0.5 * t * (1.0 + t * (4.0 - 3.0 * t)), 0.5 * t * t * (t - 1.0)};
}

Weights linear_weights(double t) { return {0.0, 1.0 - t, t, 0.0}; }

/// The weighted mean of those of 16 cells, the first at (row, column), that have an
/// elevation; NaN when they have no weight.
double mean(const ElevationGrid& grid, std::int32_t row, std::int32_t column, const Weights& down,
            const Weights& right, bool& complete) {
  double sum = 0.0;
  double total = 0.0;
  complete = true;
  for (std::int32_t i = 0; i < 4; ++i) {
    for (std::int32_t j = 0; j < 4; ++j) {
      const double weight =
          down.at(static_cast<std::size_t>(i)) * right.at(static_cast<std::size_t>(j));
      // Beyond the edge the last cells go on.
      const double elevation = grid.at(std::clamp(row + i, std::int32_t{0}, grid.rows - 1),
                                       std::clamp(column + j, std::int32_t{0}, grid.columns - 1));
      if (std::isnan(elevation)) {
        complete = false;
      } else {
        sum += weight * elevation;
        total += weight;
      }
    }
  }
  return total > 0.0 ? sum / total : std::nan("");
}

/// Where the centre of a fine cell lies among the coarse ones: the cell before it, and how
/// far on.
struct Place {
  std::int32_t before;
  double on;
};

Place place_of(std::int32_t fine, std::int32_t times) {
  const double at = (static_cast<double>(fine) + 0.5) / static_cast<double>(times) - 0.5;
  const double before = std::floor(at);
  return {static_cast<std::int32_t>(before), at - before};
}

}  // namespace

ElevationGrid refine(const ElevationGrid& grid, std::int32_t times) {
  ElevationGrid fine = grid;
  if (times <= 1) return fine;
  fine.columns = grid.columns * times;
  fine.rows = grid.rows * times;
  fine.step_x = grid.step_x / static_cast<double>(times);
  fine.step_y = grid.step_y / static_cast<double>(times);
  // The elevations stand for the middles of cells: the rim of both grids is the same, and their
  // first middles are not.
  fine.west = grid.west - 0.5 * grid.step_x + 0.5 * fine.step_x;
  fine.north = grid.north + 0.5 * grid.step_y - 0.5 * fine.step_y;
  fine.elevations.clear();
  fine.elevations.reserve(static_cast<std::size_t>(fine.rows) *
                          static_cast<std::size_t>(fine.columns));
  fine.empty_cells = 0;
  for (std::int32_t row = 0; row < fine.rows; ++row) {
    const Place y = place_of(row, times);
    for (std::int32_t column = 0; column < fine.columns; ++column) {
      const Place x = place_of(column, times);
      double elevation = grid.at(row / times, column / times);
      if (std::isnan(elevation)) {
        ++fine.empty_cells;
      } else {
        bool complete = false;
        elevation = mean(grid, y.before - 1, x.before - 1, cubic_weights(y.on), cubic_weights(x.on),
                         complete);
        if (!complete) {
          elevation = mean(grid, y.before - 1, x.before - 1, linear_weights(y.on),
                           linear_weights(x.on), complete);
        }
      }
      fine.elevations.push_back(static_cast<float>(elevation));
    }
  }
  return fine;
}

CellSize cell_size(const ElevationGrid& grid) {
  switch (grid.ground_unit) {
    case GroundUnit::degrees: {
      constexpr double kDegree_m = 6371000.0 * kPi / 180.0;
      const double middle = grid.y(grid.rows / 2);
      return {grid.step_x * kDegree_m * std::cos(radians(middle)), grid.step_y * kDegree_m};
    }
    case GroundUnit::feet:
      return {grid.step_x * kFoot_m, grid.step_y * kFoot_m};
    default:
      return {grid.step_x, grid.step_y};
  }
}

double elevation_unit_m(const ElevationGrid& grid) {
  return grid.elevation_unit == ElevationUnit::feet ? kFoot_m : 1.0;
}

std::vector<float> shade(const ElevationGrid& grid, const Sun& sun) {
  const CellSize cell = cell_size(grid);
  const double unit_m = elevation_unit_m(grid);
  // Towards the sun: east, north, up.
  const double east = std::cos(radians(sun.altitude_deg)) * std::sin(radians(sun.azimuth_deg));
  const double north = std::cos(radians(sun.altitude_deg)) * std::cos(radians(sun.azimuth_deg));
  const double up = std::sin(radians(sun.altitude_deg));
  std::vector<float> light;
  light.reserve(grid.elevations.size());
  for (std::int32_t row = 0; row < grid.rows; ++row) {
    for (std::int32_t column = 0; column < grid.columns; ++column) {
      // Horn's differences: the row or column through the cell counts twice.
      const Window z = window_at(grid, row, column);
      const double rise_east = (z[2] + 2.0 * z[5] + z[8] - z[0] - 2.0 * z[3] - z[6]) * unit_m;
      const double rise_north = (z[0] + 2.0 * z[1] + z[2] - z[6] - 2.0 * z[7] - z[8]) * unit_m;
      const double slope_east = rise_east / (8.0 * cell.x_m);
      const double slope_north = rise_north / (8.0 * cell.y_m);
      const double length = std::sqrt(1.0 + slope_east * slope_east + slope_north * slope_north);
      const double brightness = (up - east * slope_east - north * slope_north) / length;
      light.push_back(static_cast<float>(brightness < 0.0 ? 0.0 : brightness));
    }
  }
  return light;
}

}  // namespace kzgis::tools
