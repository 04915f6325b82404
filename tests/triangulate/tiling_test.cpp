// The judge itself: it must find every kind of flaw, and the families must be polygons.

#include "triangulate/tiling.h"

#include <gtest/gtest.h>

namespace {

const IntPolygon kSquare{{{{0, 0}, {4, 0}, {4, 4}, {0, 4}}}, "square"};

TEST(FlawOf, FindsNoneInATiling) { EXPECT_EQ(flaw_of(kSquare, {{1, 2, 3}, {1, 3, 4}}, 1), ""); }

TEST(FlawOf, CountsTheTriangles) {
  EXPECT_EQ(flaw_of(kSquare, {{1, 2, 3}}, 1), "1 triangles instead of 2");
}

TEST(FlawOf, ChecksTheNumbers) {
  EXPECT_EQ(flaw_of(kSquare, {{1, 2, 3}, {1, 3, 5}}, 1), "triangle 1 names vertex 5");
  EXPECT_EQ(flaw_of(kSquare, {{0, 2, 3}, {1, 3, 4}}, 1), "triangle 0 names vertex 0");
}

TEST(FlawOf, ChecksTheWinding) {
  EXPECT_EQ(flaw_of(kSquare, {{1, 2, 3}, {1, 4, 3}}, 1), "triangle 1 is not counter-clockwise");
}

TEST(FlawOf, SumsTheAreas) {
  const IntPolygon kite{{{{0, 0}, {4, 0}, {9, 9}, {0, 4}}}, "kite"};
  EXPECT_EQ(flaw_of(kite, {{1, 2, 3}, {1, 2, 4}}, 1), "the areas do not sum up");
}

TEST(FlawOf, FindsTheSameTriangleTwice) {
  EXPECT_EQ(flaw_of(kSquare, {{1, 2, 3}, {1, 2, 3}}, 1),
            "two triangles lie on one side of an edge");
}

TEST(FlawOf, FindsAnUncoveredEdge) {
  // Vertices 3 and 4 lie equally far from the edge between 5 and 1.
  const IntPolygon house{{{{0, 0}, {2, -1}, {4, 0}, {4, 4}, {0, 4}}}, "house"};
  EXPECT_EQ(flaw_of(house, {{1, 2, 3}, {1, 3, 4}, {1, 4, 5}}, 1), "");
  EXPECT_EQ(flaw_of(house, {{1, 2, 4}, {1, 3, 5}, {2, 3, 4}}, 1),
            "an edge of the polygon is missing");
}

TEST(FlawOf, FindsTrianglesThatDoNotMeet) {
  const IntPolygon hexagon{{{{2, 0}, {1, 2}, {-1, 2}, {-2, 0}, {-1, -2}, {1, -2}}}, "hexagon"};
  EXPECT_EQ(flaw_of(hexagon, {{1, 2, 3}, {3, 4, 5}, {5, 6, 1}, {1, 3, 5}}, 1), "");
  EXPECT_EQ(flaw_of(hexagon, {{1, 2, 3}, {3, 4, 5}, {5, 6, 1}, {2, 4, 6}}, 1),
            "a diagonal has one side only");
}

TEST(Families, AreSimplePolygons) {
  for (const Family& family : families()) {
    for (unsigned seed = 0; seed < 40; ++seed) {
      std::mt19937_64 random(seed);
      const IntPolygon polygon = family.make(3 + static_cast<int>(seed) * 3, random);
      EXPECT_TRUE(is_simple(polygon)) << polygon.label << ", seed " << seed;
      EXPECT_GT(doubled_area(polygon.rings[0]), 0) << polygon.label;
      for (std::size_t r = 1; r < polygon.rings.size(); ++r) {
        EXPECT_LT(doubled_area(polygon.rings[r]), 0) << polygon.label << ", ring " << r;
      }
    }
  }
}

TEST(IsSimple, RefusesWhatCrossesOrTouches) {
  EXPECT_TRUE(is_simple(kSquare));
  EXPECT_FALSE(is_simple({{{{0, 0}, {4, 4}, {4, 0}, {0, 4}}}, "bow tie"}));
  EXPECT_FALSE(is_simple({{{{0, 0}, {4, 0}, {2, 0}, {2, 4}}}, "spike"}));
  EXPECT_FALSE(is_simple({{{{0, 0}, {4, 0}, {4, 4}, {2, 0}, {0, 4}}}, "vertex on an edge"}));
}

TEST(PlaceOf, TellsInsideOutsideAndBoundary) {
  IntPolygon ring = kSquare;
  ring.rings.push_back({{1, 1}, {1, 3}, {3, 3}, {3, 1}});
  EXPECT_EQ(place_of(ring, {1, 1}), Place::inside);
  EXPECT_EQ(place_of(ring, {4, 4}), Place::outside);
  EXPECT_EQ(place_of(ring, {9, 4}), Place::outside);
  EXPECT_EQ(place_of(ring, {2, 4}), Place::boundary);
  EXPECT_EQ(place_of(ring, {8, 8}), Place::boundary);
}

}  // namespace
