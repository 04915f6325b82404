// Polygons made valid: rings that are simple, of the right hand, and bound the odd-even region.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kzgis/mesh.h"

namespace {

constexpr std::uint64_t kSeed = 20061005;

using Ring = std::vector<std::pair<double, double>>;

kzgis::Outline laid_out(const std::vector<Ring>& rings) {
  kzgis::Outline outline;
  for (const Ring& ring : rings) {
    outline.starts.push_back(static_cast<std::int32_t>(outline.x.size()));
    for (const auto& [x, y] : ring) {
      outline.x.push_back(x);
      outline.y.push_back(y);
    }
  }
  return outline;
}

std::vector<Ring> rings_of(const kzgis::Outline& outline) {
  std::vector<Ring> rings;
  for (std::size_t i = 0; i < outline.x.size(); ++i) {
    while (rings.size() < outline.starts.size() &&
           outline.starts[rings.size()] == static_cast<std::int32_t>(i)) {
      rings.emplace_back();
    }
    rings.back().emplace_back(outline.x[i], outline.y[i]);
  }
  return rings;
}

std::vector<Ring> made_valid(const std::vector<Ring>& rings) {
  const kzgis::Outline given = laid_out(rings);
  const auto outline = kzgis::make_valid(given.rings());
  if (!outline) {
    ADD_FAILURE() << outline.error().message;
    return {};
  }
  return rings_of(*outline);
}

/// Positive for a ring that runs counter-clockwise.
double signed_area(const Ring& ring) {
  double sum = 0.0;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
    sum += ring[j].first * ring[i].second - ring[i].first * ring[j].second;
  }
  return 0.5 * sum;
}

TEST(MakeValid, ABowTieBecomesTwoTriangles) {
  const std::vector<Ring> expected{{{0, 0}, {2, 2}, {0, 4}}, {{2, 2}, {4, 0}, {4, 4}}};
  EXPECT_EQ(made_valid({{{0, 0}, {4, 4}, {4, 0}, {0, 4}}}), expected);
}

TEST(MakeValid, RunsRoundBoundariesToTheLeftAndRoundHolesToTheRight) {
  const std::vector<Ring> expected{{{0, 0}, {9, 0}, {9, 9}, {0, 9}},
                                   {{3, 3}, {3, 6}, {6, 6}, {6, 3}}};
  EXPECT_EQ(made_valid({{{3, 3}, {6, 3}, {6, 6}, {3, 6}}, {{9, 9}, {9, 0}, {0, 0}, {0, 9}}}),
            expected);
}

// One ring round both, as shapefiles have it that know no holes: it comes back to (0, 0).
TEST(MakeValid, TakesAHoleOffTheBoundaryThatItTouches) {
  const std::vector<Ring> expected{{{0, 0}, {2, 4}, {4, 2}}, {{0, 0}, {9, 0}, {9, 9}, {0, 9}}};
  EXPECT_EQ(made_valid({{{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {2, 4}, {4, 2}}}), expected);
}

TEST(MakeValid, AHoleThatTouchesTwiceCutsThePolygonInTwo) {
  const std::vector<Ring> expected{{{0, 0}, {8, 0}, {8, 4}, {4, 2}, {0, 4}},
                                   {{0, 4}, {4, 6}, {8, 4}, {8, 8}, {0, 8}}};
  EXPECT_EQ(made_valid({{{0, 0}, {8, 0}, {8, 4}, {8, 8}, {0, 8}, {0, 4}},
                        {{0, 4}, {4, 2}, {8, 4}, {4, 6}}}),
            expected);
}

TEST(MakeValid, KeepsNothingThatBoundsNothing) {
  // A spike, a vertex twice, and the same ring three times: a square with a vertex on a side.
  const Ring square{{0, 0}, {2, 0}, {4, 0}, {9, 0}, {4, 0}, {4, 4}, {4, 4}, {0, 4}};
  const std::vector<Ring> expected{{{0, 0}, {2, 0}, {4, 0}, {4, 4}, {0, 4}}};
  EXPECT_EQ(made_valid({square, square, square}), expected);
  EXPECT_TRUE(made_valid({square, square}).empty());
  EXPECT_TRUE(made_valid({}).empty());
  EXPECT_TRUE(made_valid({{{0, 0}, {5, 5}}, {{7, 7}}}).empty());
}

TEST(MakeValid, CountsThePlacesWhereSidesCrossed) {
  // Three sides cross in (2, 2), the last one and the third in (8/3, 4/3).
  const kzgis::Outline star = laid_out({{{0, 0}, {4, 4}, {4, 0}, {0, 4}, {0, 2}, {4, 2}}});
  EXPECT_EQ(kzgis::make_valid(star.rings()).value().crossings, 2U);
  const kzgis::Outline touching =
      laid_out({{{0, 0}, {4, 0}, {4, 4}, {0, 4}}, {{1, 0}, {3, 0}, {2, 2}}});
  EXPECT_EQ(kzgis::make_valid(touching.rings()).value().crossings, 0U);
  const kzgis::Outline apart = laid_out({{{0, 0}, {4, 0}, {4, 4}}, {{3, 1}, {3.5, 1}, {3.5, 2}}});
  EXPECT_EQ(kzgis::make_valid(apart.rings()).value().crossings, 0U);
}

TEST(MakeValid, RefusesWhatIsNoNumber) {
  const kzgis::Outline given =
      laid_out({{{0, 0}, {4, 0}, {std::numeric_limits<double>::quiet_NaN(), 4}}});
  const auto refused = kzgis::make_valid(given.rings());
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().kind, kzgis::ErrorKind::bad_data);
  EXPECT_EQ(refused.error().vertex, 2);
}

TEST(MakeValid, TakesAsManyCrossingsAsItMayAndNoMore) {
  // Three teeth across three others, with two sides each.
  std::vector<Ring> given;
  for (int i = 0; i < 3; ++i) {
    const double at = 2 * i;
    given.push_back({{at, -1}, {at + 1, -1}, {at + 1, 6}, {at, 6}});
    given.push_back({{-1, at}, {6, at}, {6, at + 1}, {-1, at + 1}});
  }
  const kzgis::Outline outline = laid_out(given);
  EXPECT_TRUE(kzgis::make_valid(outline.rings(), 36));
  const auto refused = kzgis::make_valid(outline.rings(), 35);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().kind, kzgis::ErrorKind::bad_argument);
  EXPECT_EQ(refused.error().message, "the sides cross in more than 35 places");
}

// A hundred million crossings, of which a hundredth is enough to know.
TEST(MakeValid, RefusesATangleEarly) {
  std::mt19937_64 random(kSeed);
  Ring ring;
  for (int i = 0; i < 25000; ++i) {
    ring.emplace_back(static_cast<double>(random() % 1000003),
                      static_cast<double>(random() % 1000003));
  }
  const kzgis::Outline outline = laid_out({ring});
  const auto refused = kzgis::make_valid(outline.rings(), 1000);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().message, "the sides cross in more than 1000 places");
}

// Upright and level sides cross in whole places only, and whether a cell between them belongs to
// the region is counted in the rings.
TEST(MakeValidProperty, RectangularTanglesCellByCell) {
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 1500; ++i) {
    SCOPED_TRACE("seed " + std::to_string(kSeed) + " case " + std::to_string(i));
    constexpr int kSize = 9;
    std::vector<Ring> given;
    std::array<std::array<int, kSize>, kSize> covered{};
    for (int r = 0; r < 1 + i % 5; ++r) {
      std::vector<std::array<int, 2>> turns(2 + random() % 4);
      for (auto& turn : turns) {
        turn = {static_cast<int>(random() % (kSize + 1)), static_cast<int>(random() % (kSize + 1))};
      }
      Ring& ring = given.emplace_back();
      for (std::size_t k = 0; k < turns.size(); ++k) {
        const auto [x, y] = turns[k];
        const auto [next_x, next_y] = turns[(k + 1) % turns.size()];
        ring.emplace_back(x, y);
        ring.emplace_back(next_x, y);
        // An upright side flips all cells to its right in its rows.
        for (int row = std::min(y, next_y); row < std::max(y, next_y); ++row) {
          for (int column = next_x; column < kSize; ++column) {
            covered[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] ^= 1;
          }
        }
      }
    }
    int expected = 0;
    for (const auto& row : covered) {
      expected += static_cast<int>(std::count(row.begin(), row.end(), 1));
    }
    const std::vector<Ring> rings = made_valid(given);
    double area = 0.0;
    for (const Ring& ring : rings) {
      area += signed_area(ring);
      ASSERT_EQ(std::set(ring.begin(), ring.end()).size(), ring.size());
      ASSERT_EQ(*std::min_element(ring.begin(), ring.end()), ring.front());
    }
    ASSERT_EQ(area, expected);
    const kzgis::Outline outline = laid_out(rings);
    const auto nesting = kzgis::nest(outline.rings());
    ASSERT_TRUE(nesting) << nesting.error().message;
    for (std::size_t r = 0; r < rings.size(); ++r) {
      ASSERT_NE(nesting->depth[r], 0);
      ASSERT_EQ(signed_area(rings[r]) > 0.0, nesting->depth[r] % 2 == 1);
    }
    ASSERT_EQ(made_valid(rings), rings);
  }
}

}  // namespace
