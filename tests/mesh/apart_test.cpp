// Which rings the fast way to their nesting takes, and which it leaves to the general sweep.

#include "mesh/apart.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "kzgis/types.h"
#include "mesh/sites.h"

namespace {

using kzgis::mesh::kNone;
using Numbers = std::vector<std::uint32_t>;
using Ring = std::vector<std::pair<double, double>>;

/// Each ring from every of its vertices on and in both windings; `expect` is told the answer.
template <class Expect>
void for_every_way(const std::vector<Ring>& rings, const Expect& expect) {
  for (std::size_t turned = 0; turned < rings.size(); ++turned) {
    for (std::size_t way = 0; way < 2 * rings[turned].size(); ++way) {
      std::vector<double> x;
      std::vector<double> y;
      std::vector<kz_long> starts;
      for (std::size_t i = 0; i < rings.size(); ++i) {
        Ring ring = rings[i];
        if (i == turned) {
          std::rotate(ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(way / 2),
                      ring.end());
          if (way % 2 != 0) std::reverse(ring.begin(), ring.end());
        }
        starts.push_back(static_cast<kz_long>(x.size()));
        for (const auto& [px, py] : ring) {
          x.push_back(px);
          y.push_back(py);
        }
      }
      SCOPED_TRACE("ring " + std::to_string(turned) + ", way " + std::to_string(way));
      expect(kzgis::mesh::parents_apart({x, y, starts}));
    }
  }
}

void expect_parents(const std::vector<Ring>& rings, const Numbers& parents) {
  for_every_way(rings, [&](const auto& found) {
    ASSERT_TRUE(found);
    EXPECT_EQ(found->parents, parents);
  });
}

void expect_left_to_others(const std::vector<Ring>& rings) {
  for_every_way(rings, [](const auto& found) { EXPECT_FALSE(found); });
}

Ring square(double left, double low, double side) {
  return {{left, low}, {left + side, low}, {left + side, low + side}, {left, low + side}};
}

// Rings that open to the left and to the right, with two bays each.
const Ring kFork{{9, 0}, {9, 9}, {0, 9}, {5, 6}, {0, 5}, {6, 3}, {0, 0}};
const Ring kComb{{0, 0}, {0, 9}, {9, 9}, {4, 6}, {9, 5}, {3, 3}, {9, 0}};

TEST(Apart, SquaresInSquaresAndBesideThem) {
  expect_parents({square(3, 3, 1), square(0, 0, 9), square(2, 2, 5), square(20, 0, 1)},
                 {2, kNone, 1, kNone});
}

TEST(Apart, RingsInTheBaysOfAnother) {
  expect_parents({kFork, square(1, 5.5, 0.5), square(1, 4, 0.25), square(7, 4, 1)},
                 {kNone, kNone, kNone, 0});
  expect_parents({square(-9, -9, 99), kFork, square(1, 5.5, 0.25), square(7, 4, 1)},
                 {kNone, 0, 0, 1});
  expect_parents({kComb, square(7.5, 6, 0.5), square(5.5, 4.5, 0.5), square(8, 3, 1)},
                 {kNone, kNone, 0, kNone});
}

TEST(Apart, ARingThatClosesWithItsFirstVertex) {
  const auto found = kzgis::mesh::parents_apart(
      {std::vector<double>{0, 1, 0, 0}, std::vector<double>{0, 0, 1, 0}, std::vector<kz_long>{0}});
  ASSERT_TRUE(found);
  EXPECT_EQ(found->parents, Numbers{kNone});
  EXPECT_FALSE(found->cleaned);
}

TEST(Apart, NoRingsHaveNoParents) {
  const auto found = kzgis::mesh::parents_apart({});
  ASSERT_TRUE(found);
  EXPECT_EQ(found->parents, Numbers{});
}

TEST(Apart, RepeatedVerticesAreTakenOnce) {
  const std::vector<double> x{9, 1, 1, 1, 5, 5, 5, 1, 3, 4, 4, 4};
  const std::vector<double> y{9, 0, 0, 0, 0, 0, 4, 0, 1, 1, 1, 2};
  const std::vector<kz_long> starts{1, 8};
  const auto found = kzgis::mesh::parents_apart({x, y, starts});
  ASSERT_TRUE(found);
  EXPECT_EQ(found->parents, (Numbers{kNone, 0}));
  ASSERT_TRUE(found->cleaned);
  EXPECT_EQ(found->cleaned->x, (std::vector<double>{1, 5, 5, 1, 3, 4, 4}));
  EXPECT_EQ(found->cleaned->y, (std::vector<double>{0, 0, 4, 0, 1, 1, 2}));
  EXPECT_EQ(found->cleaned->starts, (std::vector<kz_long>{0, 4}));
}

TEST(Apart, WhateverTouchesIsLeftToOthers) {
  expect_left_to_others({square(0, 0, 2), square(2, 2, 2)});                  // in a vertex
  expect_left_to_others({square(0, 0, 4), {{4, 1}, {6, 0}, {6, 2}}});         // on a side
  expect_left_to_others({square(0, 0, 4), {{0, 1}, {3, 1}, {3, 2}}});         // from within
  expect_left_to_others({square(0, 0, 4), square(4, 1, 2)});                  // along a side
  expect_left_to_others({square(0, 0, 4), {{1, 0}, {3, 0}, {2, 1}}});         // below
  expect_left_to_others({square(0, 0, 4), square(0, 0, 4)});                  // everywhere
  expect_left_to_others({{{0, 0}, {4, 0}, {4, 4}, {2, 0}, {0, 4}}});          // itself
  expect_left_to_others({{{0, 0}, {2, 2}, {4, 0}, {4, 4}, {2, 2}, {0, 4}}});  // in a vertex
}

TEST(Apart, WhateverCrossesIsLeftToOthers) {
  expect_left_to_others({square(0, 0, 2), square(1, 1, 2)});
  expect_left_to_others({{{0, 0}, {2, 2}, {2, 0}, {0, 2}}});
  expect_left_to_others({square(0, 0, 9), {{1, 4}, {8, 3}, {20, 4}, {8, 5}}});
  expect_left_to_others({kFork, {{1, 4.5}, {1, 5.5}, {2, 5.5}, {2, 4.5}}});
  // Twice, before another ring comes between them.
  expect_left_to_others({{{0, 0}, {20, 0}, {20, 1}, {0, 1}},
                         {{-1, 2}, {5, 0.5}, {6, 2}, {21, 2}, {21, 5}, {-1, 5}},
                         {{8, 1.2}, {9, 1.2}, {8.5, 1.5}}});
  // A crossing far from every stop.
  expect_left_to_others({{{0, 0}, {4, 1}, {5, -1}, {9, 0}, {5, 9}},
                         {{-1, -1}, {4, -0.5}, {5, 0.5}, {10, -1}, {5, -9}}});
}

TEST(Apart, SpikesAndRingsOfFewVerticesAreLeftToOthers) {
  expect_left_to_others({{{0, 0}, {4, 0}, {6, 0}, {4, 0}, {4, 4}}});
  expect_left_to_others({{{0, 0}, {4, 0}, {4, 0}, {4, 0}, {0, 0}}});
  expect_left_to_others({{{0, 0}, {4, 0}, {2, 0}}});
  expect_left_to_others({{{0, 0}, {4, 0}}});
  expect_left_to_others({square(0, 0, 4), {{1, 1}}});
}

TEST(Apart, ARingWithoutVerticesIsLeftToOthers) {
  EXPECT_FALSE(kzgis::mesh::parents_apart(
      {std::vector<double>{0, 1, 0}, std::vector<double>{0, 0, 1}, std::vector<kz_long>{0, 3}}));
}

}  // namespace
