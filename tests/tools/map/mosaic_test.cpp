#include "tools/map/mosaic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace kzgis::map {
namespace {

constexpr unsigned kSeed = 7;

Shape square(double lon, double lat, bool clockwise) {
  GeoLine ring{{lon, lat}, {lon, lat + 1}, {lon + 1, lat + 1}, {lon + 1, lat}};
  if (!clockwise) ring = {ring[3], ring[2], ring[1], ring[0]};
  return prepare_polygon({ring}, 0.0);
}

std::size_t edges(const std::vector<GeoLine>& lines) {
  std::size_t count = 0;
  for (const GeoLine& line : lines) count += line.size() - 1;
  return count;
}

TEST(TakeMosaic, FindsASharedEdgeWhicheverWayTheRingsRun) {
  for (const bool clockwise : {true, false}) {
    std::vector<Shape> shapes{square(0, 0, true), square(1, 0, clockwise)};
    const Mosaic mosaic = take_mosaic(shapes);
    ASSERT_EQ(mosaic.borders.size(), 1u);
    ASSERT_EQ(mosaic.borders[0].size(), 2u);
    EXPECT_EQ(mosaic.borders[0][0].lon, 1.0);
    EXPECT_EQ(mosaic.borders[0][1].lon, 1.0);
    EXPECT_EQ(edges(shapes[0].outlines), 3u);
    EXPECT_EQ(edges(shapes[1].outlines), 3u);
    EXPECT_EQ(mosaic.neighbours[0], std::vector<std::size_t>{1});
    EXPECT_EQ(mosaic.neighbours[1], std::vector<std::size_t>{0});
  }
}

TEST(TakeMosaic, ACommonCornerMakesNoNeighbours) {
  std::vector<Shape> shapes{square(0, 0, true), square(1, 1, true)};
  const Mosaic mosaic = take_mosaic(shapes);
  EXPECT_TRUE(mosaic.borders.empty());
  EXPECT_TRUE(mosaic.neighbours[0].empty());
  EXPECT_EQ(edges(shapes[0].outlines), 4u);
}

TEST(TakeMosaic, AnEdgeOfThreeShapesIsDrawnOnce) {
  std::vector<Shape> shapes{square(0, 0, true), square(0, 0, true), square(0, 0, false)};
  const Mosaic mosaic = take_mosaic(shapes);
  EXPECT_EQ(edges(mosaic.borders), 4u);
  for (const Shape& shape : shapes) EXPECT_TRUE(shape.outlines.empty());
}

TEST(AssignTints, NeighboursDifferAndEveryTintIsUsed) {
  // A shuffled chess board: no square has more than four neighbours.
  constexpr int kSide = 12;
  constexpr std::size_t kTints = 5;
  std::vector<Shape> shapes;
  for (int i = 0; i < kSide * kSide; ++i)
    shapes.push_back(square(i % kSide, i / kSide, i % 3 == 0));
  std::shuffle(shapes.begin(), shapes.end(), std::mt19937(kSeed));
  const Mosaic mosaic = take_mosaic(shapes);
  EXPECT_EQ(edges(mosaic.borders), std::size_t{2 * kSide * (kSide - 1)});

  const std::vector<std::size_t> tint = assign_tints(mosaic, kTints);
  std::vector<int> used(kTints, 0);
  for (std::size_t i = 0; i < shapes.size(); ++i) {
    ASSERT_LT(tint[i], kTints);
    ++used[tint[i]];
    for (const std::size_t other : mosaic.neighbours[i]) {
      EXPECT_NE(tint[i], tint[other]) << "seed " << kSeed << " shape " << i;
    }
  }
  for (const int count : used) EXPECT_GT(count, kSide * kSide / 10);
}

TEST(AssignTints, MakesDoWithTooFewTints) {
  std::vector<Shape> shapes{square(0, 0, true), square(1, 0, true)};
  EXPECT_EQ(assign_tints(take_mosaic(shapes), 1), (std::vector<std::size_t>{0, 0}));
}

}  // namespace
}  // namespace kzgis::map
