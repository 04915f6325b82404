// dump_grid FILE.dem ELEVATIONS writes a grid for gdal_test.py: one line of JSON on standard
// output, and the elevations as 32-bit floats of the host, NaN as GDAL's -32767.

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>

#include "kzgis/elevation.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  auto result = kzgis::read_dem(std::string(argv[1]));
  if (!result) {
    std::cerr << result.error().message << '\n';
    return 1;
  }
  kzgis::ElevationGrid& grid = *result;
  std::printf(
      "{\"size\": [%d, %d], \"west\": %.17g, \"north\": %.17g, \"step\": [%.17g, %.17g], "
      "\"feet\": %s, \"empty\": %zu, \"left_out\": %zu, \"lowest\": %.17g, \"highest\": %.17g}\n",
      grid.columns, grid.rows, grid.west, grid.north, grid.step_x, grid.step_y,
      grid.elevation_unit == kzgis::ElevationUnit::feet ? "true" : "false", grid.empty_cells,
      grid.left_out, static_cast<double>(grid.lowest), static_cast<double>(grid.highest));
  for (float& elevation : grid.elevations) {
    if (std::isnan(elevation)) elevation = -32767.0F;
  }
  std::ofstream(argv[2], std::ios::binary)
      .write(reinterpret_cast<const char*>(grid.elevations.data()),
             static_cast<std::streamsize>(grid.elevations.size() * sizeof(float)));
  return 0;
}
