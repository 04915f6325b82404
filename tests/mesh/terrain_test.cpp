// Elevations as triangles: small grids to the last number, random ones by their promises.

#include "kzgis/terrain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/sanitized.h"
#include "support/terrain_judge.h"

namespace {

using kzgis::ElevationGrid;
using kzgis::ErrorKind;
using kzgis::Terrain;
using kzgis::triangulate_terrain;

constexpr std::uint64_t kSeed = 19950505;
#ifdef KZGIS_SANITIZED
constexpr std::uint64_t kGrids = 150;  // everything takes so many times longer
#else
constexpr std::uint64_t kGrids = 1500;
#endif
constexpr float kVoid = std::numeric_limits<float>::quiet_NaN();

/// A grid of 10 by 20 m, south-western corner at (500000, 4000000).
ElevationGrid grid_of(kz_long columns, std::vector<float> elevations) {
  ElevationGrid grid;
  grid.columns = columns;
  grid.rows = static_cast<kz_long>(elevations.size()) / columns;
  grid.west = 500000.0;
  grid.step_x = 10.0;
  grid.step_y = 20.0;
  grid.north = 4000000.0 + 20.0 * (grid.rows - 1);
  grid.elevations = std::move(elevations);
  return grid;
}

ElevationGrid made_grid(kz_long rows, kz_long columns,
                        const std::function<double(kz_long, kz_long)>& elevation) {
  std::vector<float> elevations;
  for (kz_long row = 0; row < rows; ++row) {
    for (kz_long column = 0; column < columns; ++column) {
      elevations.push_back(static_cast<float>(elevation(row, column)));
    }
  }
  return grid_of(columns, std::move(elevations));
}

std::size_t triangles_of(const ElevationGrid& grid, double tolerance) {
  return triangulate_terrain(grid, tolerance).value().triangles.size() / 3;
}

using Numbers = std::vector<double>;
using Corners = std::vector<std::uint32_t>;

TEST(Terrain, IsTwoTrianglesOverOneSquare) {
  const Terrain terrain = triangulate_terrain(grid_of(2, {1, 2, 3, 7}), 0.0).value();
  EXPECT_EQ(terrain.x, (Numbers{500000, 500010, 500000, 500010}));
  EXPECT_EQ(terrain.y, (Numbers{4000020, 4000020, 4000000, 4000000}));
  EXPECT_EQ(terrain.z, (Numbers{1, 2, 3, 7}));
  EXPECT_EQ(terrain.triangles, (Corners{0, 2, 3, 0, 3, 1}));
}

TEST(Terrain, LeavesAPeakOutThatIsAsHighAsTheTolerance) {
  const ElevationGrid peak = grid_of(3, {0, 0, 0, 0, 10, 0, 0, 0, 0});
  EXPECT_EQ(triangulate_terrain(peak, 10.0).value().z, (Numbers{0, 0, 0, 0}));
  const Terrain terrain = triangulate_terrain(peak, std::nextafter(10.0, 0.0)).value();
  EXPECT_EQ(terrain.x, (Numbers{500000, 500020, 500010, 500000, 500020}));
  EXPECT_EQ(terrain.y, (Numbers{4000040, 4000040, 4000020, 4000000, 4000000}));
  EXPECT_EQ(terrain.z, (Numbers{0, 0, 10, 0, 0}));
  EXPECT_EQ(terrain.triangles.size(), 3U * 4);
  const ElevationGrid pit = grid_of(3, {0, 0, 0, 0, -10, 0, 0, 0, 0});
  EXPECT_EQ(triangulate_terrain(pit, 9.5).value().z, (Numbers{0, 0, -10, 0, 0}));
}

TEST(Terrain, KeepsOnABorderWhatTheElevationsAlongItAskFor) {
  const ElevationGrid edge = grid_of(5, {0, 4, 8, 4, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(triangulate_terrain(edge, 1.0).value().z, (Numbers{0, 8, 0, 0, 0}));
  EXPECT_EQ(triangulate_terrain(edge, 8.0).value().z, (Numbers{0, 0, 0, 0}));
}

TEST(Terrain, TakesTheWorstPointFirst) {
  // With the point of 5 first, that of 6 would still be wanted; not the other way round.
  const ElevationGrid slope = grid_of(4, {0, 5, 6, 0, 0, 5, 6, 0});
  EXPECT_EQ(triangulate_terrain(slope, 2.0).value().z, (Numbers{0, 6, 0, 0, 6, 0}));
}

TEST(Terrain, OfAPlaneIsTwoTriangles) {
  const ElevationGrid plane =
      made_grid(40, 50, [](kz_long row, kz_long column) { return 0.5 * row - 3.25 * column; });
  for (const double tolerance : {5e-324, 1e-9, 1.0, 1e300, std::numeric_limits<double>::max()}) {
    EXPECT_EQ(triangles_of(plane, tolerance), 2U) << tolerance;
  }
  EXPECT_EQ(triangles_of(plane, 0.0), 2U * 39 * 49);
  EXPECT_EQ(triangles_of(made_grid(9, 7, [](kz_long, kz_long) { return 0.1; }), 5e-324), 2U);
}

TEST(Terrain, HasTheTwoTrianglesOfEverySquareWithoutTolerance) {
  const auto noise = [random = std::mt19937_64(kSeed)](kz_long, kz_long) mutable {
    return static_cast<double>(random() % 1000);
  };
  const ElevationGrid grid = made_grid(30, 20, noise);
  const Terrain terrain = triangulate_terrain(grid, 0.0).value();
  EXPECT_EQ(terrain.x.size(), 600U);
  EXPECT_EQ(terrain.triangles.size(), 3U * 2 * 29 * 19);
  TerrainJudge(grid, terrain).expect_kept(0.0);
}

TEST(Terrain, HasNoTriangleOverAVoid) {
  // o o . o o     Two squares in the west, none at all in the narrow place, one in the east.
  // o o o o o
  // o o . . o
  const ElevationGrid grid = grid_of(5, {1, 1, kVoid, 1, 1, 1, 1, 1, 1, 1, 1, 1, kVoid, kVoid, 1});
  for (const double tolerance : {0.0, 1.0}) {
    const Terrain terrain = triangulate_terrain(grid, tolerance).value();
    EXPECT_EQ(terrain.triangles.size(), tolerance == 0.0 ? 3U * 6 : 3U * 4);
    EXPECT_EQ(terrain.x.size(), tolerance == 0.0 ? 10U : 8U);
    TerrainJudge(grid, terrain).expect_kept(tolerance);
  }
}

TEST(Terrain, TakesInfiniteElevationsForNone) {
  const float infinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(triangles_of(grid_of(3, {1, 1, infinity, 1, 1, 1}), 0.0), 2U);
  EXPECT_EQ(triangles_of(grid_of(3, {-infinity, 1, 1, 1, 1, 1}), 1.0), 2U);
}

TEST(Terrain, KeepsHolesThatTouch) {
  // Voids on a diagonal: their holes meet in the point between them.
  const ElevationGrid grid = made_grid(10, 10, [](kz_long row, kz_long column) {
    return row == column && row % 2 == 1 && row > 1 && row < 8 ? kVoid : 3.0;
  });
  const Terrain terrain = triangulate_terrain(grid, 1.0).value();
  TerrainJudge judge(grid, terrain);
  judge.expect_kept(1.0);
  judge.expect_delaunay();
}

TEST(Terrain, IsEmptyWhereNoSquareIsCovered) {
  const std::vector<ElevationGrid> grids{{},
                                         grid_of(1, {1, 2, 3}),
                                         grid_of(3, {1, 2, 3}),
                                         grid_of(1, {1}),
                                         grid_of(2, {1, 2, 3, kVoid}),
                                         grid_of(2, {kVoid, kVoid, kVoid, kVoid})};
  for (const ElevationGrid& grid : grids) {
    for (const double tolerance : {0.0, 5.0}) {
      const auto terrain = triangulate_terrain(grid, tolerance);
      ASSERT_TRUE(terrain);
      EXPECT_TRUE(terrain->x.empty() && terrain->triangles.empty());
    }
  }
}

std::string refusal(const ElevationGrid& grid, double tolerance) {
  const auto terrain = triangulate_terrain(grid, tolerance);
  if (terrain) return "none";
  EXPECT_EQ(terrain.error().kind, ErrorKind::bad_argument);
  return terrain.error().message;
}

TEST(TerrainRefuses, TolerancesThatAreNone) {
  const ElevationGrid grid = grid_of(2, {1, 2, 3, 4});
  EXPECT_EQ(refusal(grid, -1.5),
            "triangulate_terrain: a tolerance of -1.5 is none: it is finite and not below 0");
  EXPECT_EQ(refusal(grid, std::numeric_limits<double>::infinity()),
            "triangulate_terrain: a tolerance of inf is none: it is finite and not below 0");
  EXPECT_EQ(refusal(grid, std::numeric_limits<double>::quiet_NaN()),
            "triangulate_terrain: a tolerance of nan is none: it is finite and not below 0");
  EXPECT_EQ(refusal(grid, -0.0), "none");
}

TEST(TerrainRefuses, GridsWithAnotherNumberOfElevations) {
  ElevationGrid grid = grid_of(2, {1, 2, 3, 4});
  grid.rows = 3;
  EXPECT_EQ(refusal(grid, 0.0),
            "triangulate_terrain: 2 columns and 3 rows do not have 4 elevations");
  grid.rows = grid.columns = -2;
  EXPECT_EQ(refusal(grid, 0.0),
            "triangulate_terrain: -2 columns and -2 rows do not have 4 elevations");
  grid.rows = grid.columns = 0x7FFFFFFF;
  EXPECT_NE(refusal(grid, 0.0), "none");
}

TEST(TerrainRefuses, CoordinatesThatRoundingTurnsOver) {
  const std::string reason =
      "triangulate_terrain: columns or rows lie too close together for their coordinates";
  ElevationGrid grid = grid_of(2, {1, 2, 3, 4});
  grid.west = 1e18;
  EXPECT_EQ(refusal(grid, 0.0), reason);
  grid = grid_of(2, {1, 2, 3, 4});
  grid.step_y = -20.0;
  EXPECT_EQ(refusal(grid, 0.0), reason);
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(), 1e200, 1e-200}) {
    grid = grid_of(2, {1, 2, 3, 4});
    grid.north = bad;
    EXPECT_EQ(refusal(grid, 1.0), reason) << bad;
  }
}

/// A grid of hills, of a few levels or of as many as floats have, with void cells or not.
ElevationGrid random_grid(std::mt19937_64& random) {
  const auto below = [&random](std::uint64_t end) { return random() % end; };
  const auto size = [&below] { return static_cast<kz_long>(2 + below(below(4) == 0 ? 30 : 12)); };
  const std::uint64_t kind = below(5);
  const std::uint64_t voids = below(3) == 0 ? 2 + below(20) : 0;
  const kz_long rows = size();
  return made_grid(rows, size(), [&](kz_long row, kz_long column) -> double {
    if (voids != 0 && below(voids) == 0) return kVoid;
    switch (kind) {
      case 0:
        return static_cast<double>(below(3));
      case 1:
        return std::round(100.0 * std::sin(0.4 * row) * std::cos(0.3 * column));
      case 2:
        return static_cast<double>(row * row - column * row);
      case 3:
        return row == column || below(8) == 0 ? 50.0 : 0.0;
      default:
        // Small and large ones together, so that doubles cannot hold what is compared.
        return std::ldexp(static_cast<double>(below(1U << 24)), -45 + static_cast<int>(below(34)));
    }
  });
}

TEST(Terrain, IsWithinItsToleranceOfEveryPoint) {
  for (std::uint64_t seed = kSeed; seed < kSeed + kGrids; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937_64 random(seed);
    const ElevationGrid grid = random_grid(random);
    const double tolerance =
        std::ldexp(static_cast<double>(random() % 64), static_cast<int>(random() % 40) - 38);
    const auto terrain = triangulate_terrain(grid, tolerance);
    ASSERT_TRUE(terrain) << terrain.error().message;
    TerrainJudge judge(grid, *terrain);
    judge.expect_kept(tolerance);
    if (tolerance > 0.0) judge.expect_delaunay();
    if (testing::Test::HasFailure()) return;
  }
}

// Always the worst point of all comes next: so a smaller tolerance only goes on from where a larger
// one has stopped.
TEST(Terrain, KeepsTheVerticesOfALargerTolerance) {
  for (std::uint64_t seed = kSeed; seed < kSeed + kGrids / 5; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937_64 random(seed);
    const ElevationGrid grid = random_grid(random);
    std::set<std::pair<double, double>> last;
    for (const double tolerance : {100.0, 30.0, 10.0, 1.0, 0.25, 0.0}) {
      const Terrain terrain = triangulate_terrain(grid, tolerance).value();
      std::set<std::pair<double, double>> places;
      for (std::size_t i = 0; i < terrain.x.size(); ++i) {
        places.emplace(terrain.x[i], terrain.y[i]);
      }
      ASSERT_TRUE(std::includes(places.begin(), places.end(), last.begin(), last.end()))
          << tolerance;
      last = std::move(places);
    }
  }
}

TEST(Terrain, GoesWithElevationsOfAnySize) {
  const float largest = std::numeric_limits<float>::max();
  const float least = std::numeric_limits<float>::denorm_min();
  const ElevationGrid grid = grid_of(3, {largest, -largest, least, 0, 1, -least, largest, 1, -1});
  EXPECT_EQ(triangles_of(grid, 0.0), 8U);
  EXPECT_EQ(triangles_of(grid, 1.0), 8U);  // below what rounding comes to
  EXPECT_EQ(triangles_of(grid, 1e300), 2U);
}

TEST(Terrain, IsTheSameEveryTime) {
  std::mt19937_64 random(kSeed);
  const ElevationGrid grid = random_grid(random);
  const Terrain one = triangulate_terrain(grid, 0.5).value();
  const Terrain other = triangulate_terrain(grid, 0.5).value();
  EXPECT_EQ(one.x, other.x);
  EXPECT_EQ(one.triangles, other.triangles);
}

}  // namespace
