// What tiles a square, a square with a hole, and what does not.

#include "exact/tiling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

using kzgis::exact::Flat;
using kzgis::exact::Point;
using Triangles = std::vector<std::uint32_t>;

// Vertices 0 to 3: a square, counter-clockwise; 4 to 7: a hole in it, clockwise.
const std::vector<Point> kVertices{{0.0, 0.0}, {9.0, 0.0}, {9.0, 9.0}, {0.0, 9.0},
                                   {3.0, 3.0}, {3.0, 6.0}, {6.0, 6.0}, {6.0, 3.0}};
const std::vector<std::uint32_t> kSquare{4};
const std::vector<std::uint32_t> kFrame{4, 4};

bool tiles(const std::vector<std::uint32_t>& contours, const std::vector<Point>& vertices,
           const Triangles& triangles, Flat flat = Flat::taken) {
  const auto sides = kzgis::exact::sides_of_contours(contours);
  const bool result = kzgis::exact::tiles(vertices, sides, triangles, flat);
  // Edges are counted in another way among many vertices: some that nothing uses change nothing.
  std::vector<Point> many(100);
  std::copy(vertices.begin(), vertices.end(), many.begin());
  EXPECT_EQ(kzgis::exact::tiles(many, sides, triangles, flat), result);
  return result;
}

bool square_tiled(const Triangles& triangles) { return tiles(kSquare, kVertices, triangles); }

TEST(Tiles, ASquareInTwo) {
  EXPECT_TRUE(square_tiled({0, 1, 2, 0, 2, 3}));
  EXPECT_TRUE(square_tiled({3, 0, 1, 2, 3, 1}));
}

TEST(Tiles, ASquareLessASquare) {
  Triangles ring{0, 1, 4, 1, 7, 4, 1, 2, 7, 2, 6, 7, 2, 3, 6, 3, 5, 6, 3, 0, 5, 0, 4, 5};
  EXPECT_TRUE(tiles(kFrame, kVertices, ring));
  ring.resize(ring.size() - 3);
  EXPECT_FALSE(tiles(kFrame, kVertices, ring));
}

TEST(Tiles, NotWhenOneIsMissingOrTwice) {
  EXPECT_FALSE(square_tiled({}));
  EXPECT_FALSE(square_tiled({0, 1, 2}));
  EXPECT_FALSE(square_tiled({0, 1, 2, 0, 1, 2}));
  EXPECT_FALSE(square_tiled({0, 1, 2, 0, 2, 3, 0, 1, 2}));
}

TEST(Tiles, NotWhenTheyOverlap) { EXPECT_FALSE(square_tiled({0, 1, 2, 0, 1, 3})); }

TEST(Tiles, NotWhenOneIsClockwise) {
  EXPECT_FALSE(square_tiled({0, 2, 1, 0, 3, 2}));
  // Edges that fit, one triangle turned over: a dart, its reflex vertex 3 cut off wrongly.
  const std::vector<Point> dart{{0.0, 0.0}, {9.0, 0.0}, {0.0, 9.0}, {2.0, 2.0}};
  const std::vector<Point> turned{{0.0, 0.0}, {9.0, 0.0}, {2.0, 2.0}, {0.0, 9.0}};
  EXPECT_FALSE(tiles(kSquare, turned, {0, 1, 3, 1, 2, 3}));
  EXPECT_TRUE(tiles(kSquare, turned, {0, 1, 2, 0, 2, 3}));
  EXPECT_FALSE(tiles(kSquare, dart, {0, 1, 2, 0, 2, 3}));
}

TEST(Tiles, NotAClockwiseContour) {
  const std::vector<Point> clockwise{{0.0, 0.0}, {0.0, 9.0}, {9.0, 9.0}, {9.0, 0.0}};
  EXPECT_FALSE(tiles(kSquare, clockwise, {0, 2, 1, 0, 3, 2}));
  EXPECT_FALSE(tiles(kSquare, clockwise, {0, 1, 2, 0, 2, 3}));
}

TEST(Tiles, WithFlatTrianglesOnlyWhereTheyAreTaken) {
  const std::vector<Point> on_edge{{0.0, 0.0}, {4.0, 0.0}, {9.0, 0.0}, {0.0, 9.0}};
  const Triangles fan{0, 1, 3, 1, 2, 3};
  const Triangles flat{0, 1, 2, 0, 2, 3};
  EXPECT_TRUE(tiles(kSquare, on_edge, fan, Flat::taken));
  EXPECT_TRUE(tiles(kSquare, on_edge, fan, Flat::refused));
  EXPECT_TRUE(tiles(kSquare, on_edge, flat, Flat::taken));
  EXPECT_FALSE(tiles(kSquare, on_edge, flat, Flat::refused));
}

TEST(Tiles, NotWithACornerUsedTwice) { EXPECT_FALSE(square_tiled({0, 1, 2, 0, 2, 3, 1, 1, 2})); }

TEST(Tiles, NotWithASideWithoutALength) {
  EXPECT_FALSE(tiles({1}, kVertices, {}));
  EXPECT_FALSE(square_tiled({0, 1, 2, 0, 2, 3, 1, 1, 1}));
}

TEST(Tiles, NotWithNumbersThatAreNoVertices) {
  for (const std::uint32_t stray : {8U, 9U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
    SCOPED_TRACE(stray);
    EXPECT_FALSE(square_tiled({0, 1, 2, 0, 2, stray}));
    EXPECT_FALSE(kzgis::exact::tiles(kVertices, std::vector<kzgis::exact::Side>{{0, stray}}, {},
                                     Flat::taken));
  }
  EXPECT_FALSE(square_tiled({0, 1, 2, 0, 2}));
}

TEST(Tiles, NotWithCoordinatesThatCannotBeJudged) {
  for (const double stray :
       {static_cast<double>(NAN), static_cast<double>(INFINITY), 1e200, 1e-200}) {
    SCOPED_TRACE(stray);
    const std::vector<Point> wild{{0.0, 0.0}, {9.0, 0.0}, {9.0, 9.0}, {stray, 9.0}};
    EXPECT_FALSE(tiles(kSquare, wild, {0, 1, 2, 0, 2, 3}));
  }
}

TEST(Tiles, NothingTilesAContourOfTwo) { EXPECT_TRUE(tiles({2}, kVertices, {})); }

// A kite: the short diagonal is Delaunay, the long one is not, and where all four corners lie on a
// circle both are.
TEST(Tiles, DelaunayWhereNoCornerIsInTheCircleOfTheNext) {
  const std::vector<Point> kite{{0.0, 0.0}, {5.0, -1.0}, {10.0, 0.0}, {5.0, 1.0}};
  const std::vector<Point> square{{0.0, 0.0}, {2.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}};
  const auto sides = kzgis::exact::sides_of_contours(kSquare);
  const auto delaunay = [&sides](const std::vector<Point>& places, const Triangles& triangles) {
    return kzgis::exact::tiles(places, sides, triangles, Flat::refused,
                               kzgis::exact::Inner::delaunay);
  };
  EXPECT_TRUE(delaunay(kite, {0, 1, 3, 1, 2, 3}));
  EXPECT_FALSE(delaunay(kite, {0, 1, 2, 0, 2, 3}));
  EXPECT_TRUE(tiles(kSquare, kite, {0, 1, 2, 0, 2, 3}));
  EXPECT_TRUE(delaunay(square, {0, 1, 3, 1, 2, 3}));
  EXPECT_TRUE(delaunay(square, {0, 1, 2, 0, 2, 3}));
  EXPECT_FALSE(delaunay(square, {0, 1, 3}));
}

}  // namespace
