#include "tools/dem/terrain_file.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "small_grid.h"

namespace kzgis::tools {
namespace {

std::string obj_of(const ElevationGrid& grid, const std::vector<double>& x,
                   const std::vector<double>& y, const std::vector<double>& z) {
  std::ostringstream out;
  write_terrain(out, MeshFormat::obj, grid, x, y, z, std::vector<std::uint32_t>{0, 1, 2});
  return out.str();
}

ElevationGrid flat_grid() {
  return small_grid(2, 2, [](kz_long, kz_long) { return 0.0; });
}

TEST(WriteTerrain, KeepsMetres) {
  EXPECT_EQ(
      obj_of(flat_grid(), {500000, 500010.1, 500000}, {4000080, 4000080, 4000090.3}, {0.1, 7, 8}),
      "o surface\n"
      "v 5e+05 4000080 0.1\n"
      "v 500010.1 4000080 7\n"
      "v 5e+05 4000090.3 8\n"
      "f 1 2 3\n");
}

TEST(WriteTerrain, TurnsFeetIntoMetres) {
  ElevationGrid grid = flat_grid();
  grid.ground_unit = GroundUnit::feet;
  grid.elevation_unit = ElevationUnit::feet;
  EXPECT_EQ(obj_of(grid, {0, 10, 0}, {0, 0, 100}, {1000, 0, 0}),
            "o surface\n"
            "v 0 0 304.8\n"
            "v 3.048 0 0\n"
            "v 0 30.48 0\n"
            "f 1 2 3\n");
}

TEST(WriteTerrain, TurnsDegreesIntoMetres) {
  ElevationGrid grid = flat_grid();
  grid.ground_unit = GroundUnit::degrees;
  grid.step_x = grid.step_y = 0.5;
  grid.west = 10.0;
  grid.north = 60.5;
  std::istringstream lines(obj_of(grid, {0, 1, 0}, {0, 0, 1}, {2, 0, 0}));
  std::vector<double> numbers;
  for (std::string word; lines >> word;) {
    if (word.find_first_not_of("0123456789.e+-") == std::string::npos) {
      numbers.push_back(std::stod(word));
    }
  }
  ASSERT_GE(numbers.size(), 9U);
  EXPECT_EQ(numbers[2], 2.0);
  // A degree of a circle of 6371 km, half as long at 60 north.
  EXPECT_NEAR(numbers[3], 55597.463, 0.001);
  EXPECT_NEAR(numbers[7], 111194.927, 0.001);
}

}  // namespace
}  // namespace kzgis::tools
