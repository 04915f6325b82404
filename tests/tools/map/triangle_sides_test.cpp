#include "tools/map/triangle_sides.h"

#include <gtest/gtest.h>

#include <cmath>

#include "lines.h"

namespace kzgis::map {
namespace {

TEST(TriangleSides, AreTheDiagonalsOfAPolygon) {
  const TriangleSides square =
      triangle_sides(outline({{{0, 0}, {0, 2}, {2, 2}, {2, 0}, {0, 0}}}).rings());
  EXPECT_FALSE(square.flaw);
  const std::vector<Line> sides = lines(square.lines);
  ASSERT_EQ(sides.size(), 1U);
  ASSERT_EQ(sides[0].size(), 2U);
  EXPECT_EQ(std::abs(sides[0][0].first - sides[0][1].first), 2.0);
  EXPECT_EQ(std::abs(sides[0][0].second - sides[0][1].second), 2.0);
}

TEST(TriangleSides, OfARingWithAHoleLeadFromOneToTheOther) {
  // 8 vertices and a hole make 8 triangles, which share 8 sides.
  const TriangleSides ring = triangle_sides(
      outline({{{0, 0}, {0, 3}, {3, 3}, {3, 0}, {0, 0}}, {{1, 1}, {2, 1}, {2, 2}, {1, 2}, {1, 1}}})
          .rings());
  EXPECT_EQ(ring.lines.starts.size(), 8U);
}

// A side goes where the triangles lie, over all of a ring that goes round the globe.
TEST(TriangleSides, AreNeverTakenTheShortWay) {
  const TriangleSides band =
      triangle_sides(outline({{{-170, 0}, {170, 0}, {170, 5}, {-170, 5}, {-170, 0}}}).rings());
  const std::vector<Line> sides = lines(band.lines);
  ASSERT_EQ(sides.size(), 1U);
  ASSERT_EQ(sides[0].size(), 3U);
  EXPECT_EQ(sides[0][1], (Position{0.0, 2.5}));
}

TEST(TriangleSides, AreNoneWhereRingsCross) {
  const TriangleSides bow =
      triangle_sides(outline({{{0, 0}, {2, 2}, {2, 0}, {0, 2}, {0, 0}}}).rings());
  EXPECT_TRUE(bow.lines.x.empty());
  EXPECT_EQ(bow.flaw.message, "ring 0 crosses itself (sides from vertices 0 and 2)");
}

}  // namespace
}  // namespace kzgis::map
