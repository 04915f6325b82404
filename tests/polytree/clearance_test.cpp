#include "polytree/clearance.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace {

using kzgis::polytree::keep_apart;
using kzgis::polytree::Side;

bool apart(const Side& a, const Side& b) {
  const std::vector<Side> one{a};
  const std::vector<Side> other{b};
  const bool result = keep_apart(one, other, 16.0);
  EXPECT_EQ(keep_apart(other, one, 16.0), result);
  return result;
}

TEST(KeepApart, SidesBesideOrAboveEachOther) {
  EXPECT_TRUE(apart({0, 0, 1, 1}, {2, 0, 3, 1}));
  EXPECT_TRUE(apart({0, 0, 4, 4}, {0, 1, 4, 5}));
  EXPECT_TRUE(apart({0, 0, 4, 4}, {1, 4, 2, 3}));
  EXPECT_TRUE(apart({0, 0, 0, 4}, {0, 5, 0, 6}));
  EXPECT_TRUE(apart({0, 0, 8, 8}, {4, 5, 4, 9}));
}

TEST(KeepApart, NotSidesThatCrossOrTouch) {
  EXPECT_FALSE(apart({0, 0, 4, 4}, {0, 4, 4, 0}));
  EXPECT_FALSE(apart({0, 0, 4, 4}, {2, 2, 4, 0}));
  EXPECT_FALSE(apart({0, 0, 4, 4}, {4, 4, 5, 4}));
  EXPECT_FALSE(apart({0, 0, 4, 4}, {1, 1, 3, 3}));
  EXPECT_FALSE(apart({0, 0, 8, 8}, {4, 3, 4, 9}));
  EXPECT_FALSE(apart({0, 0, 0, 4}, {0, 4, 0, 6}));
}

TEST(KeepApart, NotSidesAFewRoundingErrorsFromEachOther) {
  EXPECT_FALSE(apart({0, 1, 4, 1}, {1, std::nextafter(1.0, 2.0), 2, 3}));
  EXPECT_FALSE(apart({0, 0, 9, 3}, {3, 1 + 0x1p-45, 3, 5}));
  EXPECT_TRUE(apart({0, 0, 9, 3}, {3, 1 + 0x1p-39, 3, 5}));
  // Beside each other any distance will do: it is compared, not computed.
  EXPECT_TRUE(apart({0, 0, 1, 4}, {std::nextafter(1.0, 2.0), 0, 2, 4}));
}

TEST(KeepApart, LooksAtEveryPair) {
  const std::vector<Side> ring{{0, 0, 9, 0}, {9, 0, 9, 9}, {0, 9, 9, 9}, {0, 0, 0, 9}};
  std::vector<Side> other{{3, 3, 6, 3}, {3, 3, 4, 6}, {4, 6, 6, 3}};
  EXPECT_TRUE(keep_apart(ring, other, 9.0));
  EXPECT_TRUE(keep_apart({}, other, 9.0));
  other[2].x1 = 9.0;
  EXPECT_FALSE(keep_apart(ring, other, 9.0));
}

TEST(KeepApart, LooksAtEveryPairOfLongRings) {
  // Two circles of a hundred sides, and the inner one's sides moved out in turn.
  const auto circle = [](double radius) {
    std::vector<Side> sides;
    for (int i = 0; i < 100; ++i) {
      const double from = 6.283185307179586 * i / 100;
      const double to = 6.283185307179586 * (i + 1) / 100;
      const double x0 = radius * std::cos(from);
      const double y0 = radius * std::sin(from);
      const double x1 = radius * std::cos(to);
      const double y1 = radius * std::sin(to);
      sides.push_back(x0 < x1 ? Side{x0, y0, x1, y1} : Side{x1, y1, x0, y0});
    }
    return sides;
  };
  const std::vector<Side> outer = circle(10.0);
  std::vector<Side> inner = circle(9.9);
  EXPECT_TRUE(keep_apart(outer, inner, 10.0));
  const std::vector<Side> wide = circle(10.001);
  for (std::size_t i = 0; i < inner.size(); ++i) {
    const Side before = std::exchange(inner[i], {wide[i].x0, wide[i].y0, 0.0, 0.0});
    if (inner[i].x0 > 0.0) inner[i] = {0.0, 0.0, wide[i].x1, wide[i].y1};
    EXPECT_FALSE(keep_apart(outer, inner, 10.0)) << i;
    EXPECT_FALSE(keep_apart(inner, outer, 10.0)) << i;
    inner[i] = before;
  }
}

}  // namespace
