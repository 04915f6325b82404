#include "polytree/tiling.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using kzgis::polytree::tiles;
using Triangle = kz_long[3];

// Vertices 1 to 4: a square, counter-clockwise; 5 to 8: a hole in it, clockwise.
const double kVertices[][2] = {{NAN, NAN}, {0.0, 0.0}, {9.0, 0.0}, {9.0, 9.0}, {0.0, 9.0},
                               {3.0, 3.0}, {3.0, 6.0}, {6.0, 6.0}, {6.0, 3.0}};
const std::vector<kz_long> kSquare{4};
const std::vector<kz_long> kFrame{4, 4};

bool square_tiled(std::span<const Triangle> triangles) {
  return tiles(kSquare, kVertices, triangles);
}

TEST(Tiles, ASquareInTwo) {
  const Triangle one_diagonal[] = {{1, 2, 3}, {1, 3, 4}};
  const Triangle the_other[] = {{4, 1, 2}, {3, 4, 2}};
  EXPECT_TRUE(square_tiled(one_diagonal));
  EXPECT_TRUE(square_tiled(the_other));
}

TEST(Tiles, ASquareLessASquare) {
  const Triangle ring[] = {{1, 2, 5}, {2, 8, 5}, {2, 3, 8}, {3, 7, 8},
                           {3, 4, 7}, {4, 6, 7}, {4, 1, 6}, {1, 5, 6}};
  EXPECT_TRUE(tiles(kFrame, kVertices, ring));
  EXPECT_FALSE(tiles(kFrame, kVertices, std::span(ring).first(7)));
}

TEST(Tiles, NotWhenOneIsMissingOrTwice) {
  EXPECT_FALSE(square_tiled({}));
  const Triangle missing[] = {{1, 2, 3}};
  EXPECT_FALSE(square_tiled(missing));
  const Triangle twice[] = {{1, 2, 3}, {1, 2, 3}};
  EXPECT_FALSE(square_tiled(twice));
  const Triangle too_many[] = {{1, 2, 3}, {1, 3, 4}, {1, 2, 3}};
  EXPECT_FALSE(square_tiled(too_many));
}

TEST(Tiles, NotWhenTheyOverlap) {
  const Triangle equal_area[] = {{1, 2, 3}, {1, 2, 4}};
  EXPECT_FALSE(square_tiled(equal_area));
}

TEST(Tiles, NotWhenOneIsClockwise) {
  const Triangle clockwise[] = {{1, 3, 2}, {1, 4, 3}};
  EXPECT_FALSE(square_tiled(clockwise));
  // Edges that fit, one triangle turned over: a dart, its reflex vertex 4 cut off wrongly.
  const double dart[][2] = {{0.0, 0.0}, {0.0, 0.0}, {9.0, 0.0}, {0.0, 9.0}, {2.0, 2.0}};
  const Triangle wrong[] = {{1, 2, 3}, {1, 3, 4}};
  const Triangle right[] = {{1, 2, 4}, {2, 3, 4}};
  EXPECT_FALSE(tiles(kSquare, dart, wrong));
  EXPECT_TRUE(tiles(kSquare, dart, right));
}

TEST(Tiles, NotAClockwiseContour) {
  const double clockwise[][2] = {{0.0, 0.0}, {0.0, 0.0}, {0.0, 9.0}, {9.0, 9.0}, {9.0, 0.0}};
  const Triangle turned[] = {{1, 3, 2}, {1, 4, 3}};
  const Triangle straight[] = {{1, 2, 3}, {1, 3, 4}};
  EXPECT_FALSE(tiles(kSquare, clockwise, turned));
  EXPECT_FALSE(tiles(kSquare, clockwise, straight));
}

TEST(Tiles, WithFlatTrianglesWhereThreeVerticesLieOnALine) {
  const double on_edge[][2] = {{0.0, 0.0}, {0.0, 0.0}, {4.0, 0.0}, {9.0, 0.0}, {0.0, 9.0}};
  const Triangle fan[] = {{1, 2, 4}, {2, 3, 4}};
  const Triangle flat[] = {{1, 2, 3}, {1, 3, 4}};
  EXPECT_TRUE(tiles(kSquare, on_edge, fan));
  EXPECT_TRUE(tiles(kSquare, on_edge, flat));
}

TEST(Tiles, NotWithACornerUsedTwice) {
  const Triangle pinched[] = {{1, 2, 3}, {1, 3, 4}, {2, 2, 3}};
  EXPECT_FALSE(square_tiled(pinched));
}

TEST(Tiles, NotWithNumbersThatAreNoVertices) {
  for (const kz_long stray : {0, -1, 5, 2147483647, -2147483647 - 1}) {
    SCOPED_TRACE(stray);
    const Triangle wild[] = {{1, 2, 3}, {1, 3, stray}};
    EXPECT_FALSE(square_tiled(wild));
  }
}

TEST(Tiles, NotWithCoordinatesThatCannotBeJudged) {
  for (const double stray :
       {static_cast<double>(NAN), static_cast<double>(INFINITY), 1e200, 1e-200}) {
    SCOPED_TRACE(stray);
    const double wild[][2] = {{0.0, 0.0}, {0.0, 0.0}, {9.0, 0.0}, {9.0, 9.0}, {stray, 9.0}};
    const Triangle fan[] = {{1, 2, 3}, {1, 3, 4}};
    EXPECT_FALSE(tiles(kSquare, wild, fan));
  }
}

TEST(Tiles, NothingTilesAContourOfTwo) {
  const std::vector<kz_long> two{2};
  EXPECT_TRUE(tiles(two, kVertices, {}));
}

}  // namespace
