// Triangles that fit a height field, and such that were broken on purpose.

#include "mesh/terrain_proof.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace {

using kzgis::mesh::Border;
using kzgis::mesh::HeightField;
using kzgis::mesh::Judge;
using kzgis::mesh::kNone;

/// Three rows of four points: 0 to 3, 4 to 7, 8 to 11.
kzgis::ElevationGrid grid_of(std::vector<float> elevations) {
  kzgis::ElevationGrid grid;
  grid.columns = 4;
  grid.rows = 3;
  grid.elevations = std::move(elevations);
  return grid;
}

class TerrainProof : public testing::Test {
 protected:
  bool proved(const std::vector<std::uint32_t>& triangles, double tolerance) const {
    return kzgis::mesh::proved(field_, Judge(field_, tolerance), triangles);
  }

  const kzgis::ElevationGrid grid_ = grid_of({0, 0, 0, 0,  //
                                              0, 6, 0, 0,  //
                                              0, 0, 0, 0});
  const HeightField field_{grid_};
};

TEST_F(TerrainProof, HoldsOfTrianglesThatFit) {
  EXPECT_TRUE(proved({0, 8, 11, 0, 11, 3}, 6.0));
  EXPECT_TRUE(proved({0, 8, 9, 0, 9, 11, 0, 11, 3}, 6.0));
  EXPECT_TRUE(proved(field_.all_triangles(), 0.0));
}

TEST_F(TerrainProof, FailsWhereThePeakIsTooHigh) {
  EXPECT_FALSE(proved({0, 8, 11, 0, 11, 3}, 5.99));
  EXPECT_FALSE(proved({0, 8, 11, 0, 11, 3}, 0.0));
}

TEST_F(TerrainProof, FailsOfTrianglesThatDoNotTile) {
  EXPECT_FALSE(proved({}, 6.0));
  EXPECT_FALSE(proved({0, 8, 11}, 6.0));
  EXPECT_FALSE(proved({0, 11, 8, 0, 11, 3}, 6.0));
  EXPECT_FALSE(proved({0, 8, 11, 0, 11, 3, 0, 11, 3}, 6.0));
  EXPECT_FALSE(proved({0, 8, 10, 0, 10, 3}, 6.0));
  EXPECT_FALSE(proved({0, 8, 9, 0, 11, 3}, 6.0));
}

TEST(TerrainProofWithAVoid, FailsOfTrianglesOverIt) {
  const kzgis::ElevationGrid grid =
      grid_of({std::numeric_limits<float>::quiet_NaN(), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  const HeightField field(grid);
  const Judge judge(field, 1.0);
  EXPECT_FALSE(kzgis::mesh::proved(field, judge, std::vector<std::uint32_t>{4, 8, 11, 4, 11, 3}));
  EXPECT_TRUE(kzgis::mesh::proved(
      field, judge, std::vector<std::uint32_t>{4, 8, 5, 5, 8, 11, 5, 11, 3, 5, 3, 1}));
}

TEST(BorderSides, RunFromCornerToCorner) {
  const kzgis::ElevationGrid grid = grid_of(std::vector<float>(12));
  const HeightField field(grid);
  std::vector<bool> kept(12);
  EXPECT_EQ(Border(field).sides(kept).size(), 4U);
  kept[5] = true;  // not on the border
  kept[7] = true;
  EXPECT_EQ(Border(field).sides(kept).size(), 5U);
}

TEST(Judge, FindsTheWorstPointOfATriangleAndItsEdges) {
  const kzgis::ElevationGrid grid = grid_of({0, 0, 0, 0, 0, 2, 0, 0, 0, 3, 4, 0});
  const HeightField field(grid);
  const Judge judge(field, 1.0);
  // The lower left half: points 5, 9 and 10 in it and on its edges.
  const auto worst = judge.worst(0, 8, 11);
  EXPECT_EQ(worst.point, 10U);
  EXPECT_EQ(worst.height, 4.0);
  EXPECT_EQ(judge.worst(3, 0, 4).point, kNone);
  EXPECT_EQ(judge.worst(0, 8, 5).point, kNone);
}

TEST(Judge, DoesNotRoundTheToleranceUp) {
  // The triangle's middle is a third above the point there; the double nearest to a third is less,
  // but three times that rounds to 1.
  const kzgis::ElevationGrid grid = grid_of({0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0});
  const HeightField field(grid);
  constexpr double kThird = 1.0 / 3.0;
  EXPECT_EQ(Judge(field, kThird).worst(8, 6, 1).point, 5U);
  EXPECT_EQ(Judge(field, std::nextafter(kThird, 1.0)).worst(8, 6, 1).point, kNone);
}

TEST(Judge, LeavesRoomForRounding) {
  // Elevations of 24 digits each, far apart: doubles do not hold their products.
  const kzgis::ElevationGrid grid =
      grid_of({0x1.fffffep+20F, 0, 0, 0, 0, 0x1.234566p-20F, 0, 0, 0, 0, 0, 0});
  const HeightField field(grid);
  EXPECT_TRUE(Judge(field, 1e-9).wants_all());
  EXPECT_FALSE(Judge(field, 1e-6).wants_all());
  EXPECT_TRUE(Judge(field, 0.0).wants_all());
}

}  // namespace
