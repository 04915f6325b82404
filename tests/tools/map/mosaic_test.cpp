#include "tools/map/mosaic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "lines.h"

namespace kzgis::map {
namespace {

constexpr unsigned kSeed = 7;

Outline square(double lon, double lat, bool clockwise) {
  Line ring{{lon, lat}, {lon, lat + 1}, {lon + 1, lat + 1}, {lon + 1, lat}, {lon, lat}};
  if (!clockwise) std::reverse(ring.begin(), ring.end());
  return outline({ring});
}

std::size_t edges(const Outline& lines) { return lines.x.size() - lines.starts.size(); }

TEST(TakeMosaic, FindsASharedEdgeWhicheverWayTheRingsRun) {
  for (const bool clockwise : {true, false}) {
    std::vector<Outline> shapes{square(0, 0, true), square(1, 0, clockwise)};
    const Mosaic mosaic = take_mosaic(shapes);
    const std::vector<Line> borders = lines(mosaic.borders);
    ASSERT_EQ(borders.size(), 1u);
    ASSERT_EQ(borders[0].size(), 2u);
    EXPECT_EQ(borders[0][0].first, 1.0);
    EXPECT_EQ(borders[0][1].first, 1.0);
    EXPECT_EQ(edges(shapes[0]), 3u);
    EXPECT_EQ(edges(shapes[1]), 3u);
    EXPECT_EQ(mosaic.neighbours[0], std::vector<std::size_t>{1});
    EXPECT_EQ(mosaic.neighbours[1], std::vector<std::size_t>{0});
  }
}

TEST(TakeMosaic, ACommonCornerMakesNoNeighbours) {
  std::vector<Outline> shapes{square(0, 0, true), square(1, 1, true)};
  const Mosaic mosaic = take_mosaic(shapes);
  EXPECT_EQ(edges(mosaic.borders), 0u);
  EXPECT_TRUE(mosaic.neighbours[0].empty());
  EXPECT_EQ(edges(shapes[0]), 4u);
}

TEST(TakeMosaic, AnEdgeOfThreeShapesIsDrawnOnce) {
  std::vector<Outline> shapes{square(0, 0, true), square(0, 0, true), square(0, 0, false)};
  const Mosaic mosaic = take_mosaic(shapes);
  EXPECT_EQ(edges(mosaic.borders), 4u);
  for (const Outline& shape : shapes) EXPECT_EQ(edges(shape), 0u);
}

TEST(AssignTints, NeighboursDifferAndEveryTintIsUsed) {
  // A shuffled chess board: no square has more than four neighbours.
  constexpr int kSide = 12;
  constexpr std::size_t kTints = 5;
  std::vector<Outline> shapes;
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
  std::vector<Outline> shapes{square(0, 0, true), square(1, 0, true)};
  EXPECT_EQ(assign_tints(take_mosaic(shapes), 1), (std::vector<std::size_t>{0, 0}));
}

}  // namespace
}  // namespace kzgis::map
