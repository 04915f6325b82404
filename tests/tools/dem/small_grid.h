#ifndef KZGIS_TESTS_TOOLS_DEM_SMALL_GRID_H
#define KZGIS_TESTS_TOOLS_DEM_SMALL_GRID_H

#include <kzgis/elevation.h>

#include <cmath>
#include <functional>
#include <limits>

inline constexpr float kNone = std::numeric_limits<float>::quiet_NaN();

/// A grid of 10 m cells in UTM zone 33 whose elevations are a function of row and column.
inline kzgis::ElevationGrid small_grid(kz_long rows, kz_long columns,
                                       const std::function<double(kz_long, kz_long)>& elevation) {
  kzgis::ElevationGrid grid;
  grid.name = "TEST";
  grid.plan = kzgis::GroundPlan::utm;
  grid.zone = 33;
  grid.ground_unit = kzgis::GroundUnit::metres;
  grid.elevation_unit = kzgis::ElevationUnit::metres;
  grid.rows = rows;
  grid.columns = columns;
  grid.west = 500000.0;
  grid.north = 4000090.0;
  grid.step_x = grid.step_y = 10.0;
  for (kz_long row = 0; row < rows; ++row) {
    for (kz_long column = 0; column < columns; ++column) {
      const auto z = static_cast<float>(elevation(row, column));
      if (std::isnan(z)) ++grid.empty_cells;
      grid.elevations.push_back(z);
    }
  }
  return grid;
}

#endif
