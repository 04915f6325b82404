#include "tools/map/triangle_sides.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kzgis::map {
namespace {

TEST(TriangleSides, AreTheDiagonalsOfAPolygon) {
  const TriangleSides square = triangle_sides({{{0, 0}, {0, 2}, {2, 2}, {2, 0}, {0, 0}}});
  EXPECT_FALSE(square.flaw);
  ASSERT_EQ(square.lines.size(), 1U);
  ASSERT_EQ(square.lines[0].size(), 2U);
  const Geo& a = square.lines[0][0];
  const Geo& b = square.lines[0][1];
  EXPECT_TRUE(std::abs(a.lon - b.lon) == 2.0 && std::abs(a.lat - b.lat) == 2.0);
}

TEST(TriangleSides, OfARingWithAHoleLeadFromOneToTheOther) {
  // 8 vertices and a hole make 8 triangles, which share 8 sides.
  const TriangleSides ring = triangle_sides(
      {{{0, 0}, {0, 3}, {3, 3}, {3, 0}, {0, 0}}, {{1, 1}, {2, 1}, {2, 2}, {1, 2}, {1, 1}}});
  EXPECT_EQ(ring.lines.size(), 8U);
}

TEST(TriangleSides, AreNoneWhereRingsCross) {
  const TriangleSides bow = triangle_sides({{{0, 0}, {2, 2}, {2, 0}, {0, 2}, {0, 0}}});
  EXPECT_TRUE(bow.lines.empty());
  EXPECT_EQ(bow.flaw.message, "ring 0 crosses itself (sides from vertices 0 and 2)");
}

}  // namespace
}  // namespace kzgis::map
