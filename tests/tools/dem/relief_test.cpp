#include "tools/dem/relief.h"

#include <gtest/gtest.h>

#include "small_grid.h"

namespace {

using kzgis::ElevationGrid;
using kzgis::tools::cell_size;
using kzgis::tools::refine;
using kzgis::tools::shade;

constexpr double kSin45 = 0.70710678118654752;

TEST(CellSize, TakesFeetForWhatTheyAre) {
  ElevationGrid grid = small_grid(2, 2, [](kz_long, kz_long) { return 0.0; });
  EXPECT_EQ(cell_size(grid).x_m, 10.0);
  grid.ground_unit = kzgis::GroundUnit::feet;
  EXPECT_DOUBLE_EQ(cell_size(grid).y_m, 3.048);
}

// A degree of the sphere of 6371 km is 111194.93 m; at 60 N one of longitude is half of it.
TEST(CellSize, ShrinksDegreesOfLongitude) {
  ElevationGrid grid = small_grid(1, 1, [](kz_long, kz_long) { return 0.0; });
  grid.ground_unit = kzgis::GroundUnit::degrees;
  grid.north = 60.0;
  grid.step_x = grid.step_y = 1.0;
  EXPECT_NEAR(cell_size(grid).x_m, 55597.46, 0.01);
  EXPECT_NEAR(cell_size(grid).y_m, 111194.93, 0.01);
}

TEST(Shade, LevelGroundHasTheSineOfTheSunsAltitude) {
  const ElevationGrid grid = small_grid(3, 4, [](kz_long, kz_long) { return 500.0; });
  for (const float light : shade(grid, {315.0, 45.0})) EXPECT_NEAR(light, kSin45, 1e-6);
  for (const float light : shade(grid, {10.0, 30.0})) EXPECT_NEAR(light, 0.5, 1e-6);
}

TEST(Shade, APlaneFacingTheSunIsBrightest) {
  // Falls by 45 degrees to the west: the sun there, 45 degrees high, shines straight on it.
  const ElevationGrid west =
      small_grid(3, 3, [](kz_long, kz_long column) { return 10.0 * column; });
  for (const float light : shade(west, {270.0, 45.0})) EXPECT_NEAR(light, 1.0, 1e-6);
  for (const float light : shade(west, {90.0, 45.0})) EXPECT_NEAR(light, 0.0, 1e-6);
  const ElevationGrid north = small_grid(3, 3, [](kz_long row, kz_long) { return 10.0 * row; });
  for (const float light : shade(north, {0.0, 45.0})) EXPECT_NEAR(light, 1.0, 1e-6);
  for (const float light : shade(north, {180.0, 30.0})) EXPECT_EQ(light, 0.0F);
}

TEST(Shade, ElevationsInFeetAreLessSteep) {
  ElevationGrid grid = small_grid(3, 3, [](kz_long, kz_long column) { return 10.0 * column; });
  grid.elevation_unit = kzgis::ElevationUnit::feet;
  // A slope of 0.3048: (sin 45 + 0.3048 cos 45) / sqrt(1 + 0.3048 squared)
  EXPECT_NEAR(shade(grid, {270.0, 45.0})[4], 0.882548, 1e-6);
}

TEST(Shade, WeighsNeighboursAsHornDoes) {
  // One neighbour raised by 8 m: a corner counts once, a side twice.
  const auto light = [](kz_long row, kz_long column) {
    const ElevationGrid grid =
        small_grid(3, 3, [&](kz_long r, kz_long c) { return r == row && c == column ? 8.0 : 0.0; });
    return static_cast<double>(shade(grid, {270.0, 45.0})[4]);
  };
  const auto expected = [](double slope_east, double slope_north) {
    return kSin45 * (1.0 + slope_east) /
           std::sqrt(1.0 + slope_east * slope_east + slope_north * slope_north);
  };
  EXPECT_NEAR(light(1, 2), expected(0.2, 0.0), 1e-6);
  EXPECT_NEAR(light(0, 2), expected(0.1, 0.1), 1e-6);
  EXPECT_NEAR(light(0, 1), expected(0.0, 0.2), 1e-6);
  EXPECT_NEAR(light(2, 0), expected(-0.1, -0.1), 1e-6);
}

TEST(Shade, CellsWithoutElevationHaveNone) {
  const ElevationGrid grid =
      small_grid(3, 3, [](kz_long row, kz_long) { return row == 1 ? double{kNone} : 7.0; });
  const auto light = shade(grid, {});
  for (std::size_t i = 0; i < 9; ++i) {
    if (i / 3 == 1) {
      EXPECT_TRUE(std::isnan(light[i]));
    } else {
      EXPECT_NEAR(light[i], kSin45, 1e-6);
    }
  }
}

TEST(Refine, KeepsPlanesAndPlaces) {
  const auto plane = [](double x, double y) { return 0.3 * x - 0.2 * y; };
  const ElevationGrid grid = small_grid(
      6, 7, [&](kz_long row, kz_long column) { return plane(10.0 * column, -10.0 * row); });
  const ElevationGrid fine = refine(grid, 3);
  ASSERT_EQ(fine.columns, 21);
  ASSERT_EQ(fine.rows, 18);
  ASSERT_EQ(fine.elevations.size(), 378U);
  EXPECT_DOUBLE_EQ(fine.x(1), grid.x(0));
  EXPECT_DOUBLE_EQ(fine.y(1), grid.y(0));
  EXPECT_DOUBLE_EQ(fine.x(19), grid.x(6));
  for (kz_long row = 4; row < 14; ++row) {
    for (kz_long column = 4; column < 17; ++column) {
      EXPECT_NEAR(fine.at(row, column), plane(fine.x(column) - grid.west, fine.y(row) - grid.north),
                  1e-4);
    }
  }
}

TEST(Refine, KeepsTheElevationsThemselves) {
  const ElevationGrid grid = small_grid(
      4, 4, [](kz_long row, kz_long column) { return (row * 7 + column * column * 3) % 11; });
  const ElevationGrid fine = refine(grid, 5);
  for (kz_long row = 0; row < 4; ++row) {
    for (kz_long column = 0; column < 4; ++column) {
      EXPECT_NEAR(fine.at(5 * row + 2, 5 * column + 2), grid.at(row, column), 1e-5);
    }
  }
}

TEST(Refine, LeavesCellsEmptyAndTheirNeighboursInRange) {
  const ElevationGrid grid = small_grid(4, 4, [](kz_long row, kz_long column) {
    return row == 1 && column == 2 ? double{kNone} : 100.0 * (row % 2);
  });
  const ElevationGrid fine = refine(grid, 2);
  EXPECT_EQ(fine.empty_cells, 4U);
  for (kz_long row = 0; row < 8; ++row) {
    for (kz_long column = 0; column < 8; ++column) {
      const bool empty = row / 2 == 1 && column / 2 == 2;
      EXPECT_EQ(std::isnan(fine.at(row, column)), empty);
    }
  }
  EXPECT_GE(fine.at(2, 3), 0.0F);
  EXPECT_LE(fine.at(2, 3), 100.0F);
}

}  // namespace
