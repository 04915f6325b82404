// Which rings one sweep takes, judged pair of sides by pair of sides, and what it cuts
// them into.

#include "mesh/ring_sweep.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "exact/tiling.h"
#include "mesh/line_order.h"
#include "mesh/sites.h"
#include "triangulate/polygons.h"
#include "triangulate/tiling.h"

namespace {

using kzgis::mesh::LineOrder;

bool comes_first(IntPoint a, IntPoint b) { return a.x != b.x ? a.x < b.x : a.y < b.y; }

/// Whether two different sides have nothing in common but an end.
bool are_apart(IntPoint a, IntPoint b, IntPoint c, IntPoint d) {
  if (a == d || b == d) std::swap(c, d);
  if (b == c) std::swap(a, b);
  if (a == c) {  // on one line, they must lead to different sides of the end
    const bool same_way = comes_first(a, b) == comes_first(c, d);
    return turn(a, b, d) != 0 || !same_way;
  }
  const auto within = [](IntPoint p, IntPoint q, IntPoint v) {
    return turn(p, q, v) == 0 && comes_first(p, v) == comes_first(v, q) && v != p && v != q;
  };
  if (within(a, b, c) || within(a, b, d) || within(c, d, a) || within(c, d, b)) return false;
  return turn(a, b, c) * turn(a, b, d) >= 0 || turn(c, d, a) * turn(c, d, b) >= 0;
}

/// Whether v lies in the wedge on the left of the way p, q, r, seen from q; on no side of it.
bool is_on_left(IntPoint p, IntPoint q, IntPoint r, IntPoint v) {
  const int first = turn(p, q, v);
  const int second = turn(q, r, v);
  if (turn(p, q, r) > 0) return first > 0 && second > 0;
  if (turn(p, q, r) == 0) return first > 0;
  return first >= 0 || second >= 0;
}

/// Whether rings have nothing in common, with themselves or each other, but vertices in which they
/// do not cross.
bool touch_at_most(const std::vector<IntRing>& rings) {
  struct Corner {
    IntPoint before, here, after;
  };
  std::vector<Corner> corners;
  for (const IntRing& ring : rings) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      corners.push_back(
          {ring[(i + ring.size() - 1) % ring.size()], ring[i], ring[(i + 1) % ring.size()]});
    }
  }
  for (std::size_t i = 0; i < corners.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const Corner& a = corners[i];
      const Corner& b = corners[j];
      if (!are_apart(a.here, a.after, b.here, b.after)) return false;
      if (a.here == b.here && is_on_left(a.before, a.here, a.after, b.before) !=
                                  is_on_left(a.before, a.here, a.after, b.after)) {
        return false;
      }
    }
  }
  return true;
}

/// Twice the area inside by the odd-even rule, of rings that touch at most.
Int128 doubled_area_inside(const std::vector<IntRing>& rings) {
  Int128 sum = 0;
  for (const IntRing& ring : rings) {
    bool inside = false;
    for (const IntRing& other : rings) {
      const IntPoint doubled{ring[0].x + ring[1].x, ring[0].y + ring[1].y};
      inside ^= &other != &ring && place_of({{other}, ""}, doubled) == Place::inside;
    }
    const Int128 area = doubled_area(ring);
    sum += (area < 0 ? -area : area) * (inside ? -1 : 1);
  }
  return sum;
}

/// Expects rings to be taken just if they touch at most, and to be tiled then; whether they are.
bool expect_cut(const std::vector<IntRing>& rings) {
  std::vector<double> x;
  std::vector<double> y;
  std::vector<std::int32_t> starts;
  for (const IntRing& ring : rings) {
    starts.push_back(static_cast<std::int32_t>(x.size()));
    for (const IntPoint& p : ring) {
      x.push_back(static_cast<double>(p.x));
      y.push_back(static_cast<double>(p.y));
    }
  }
  const kzgis::mesh::Sites sites({x, y, starts});
  const auto cut = kzgis::mesh::cut_rings({x, y, starts}, sites);
  const bool touch = touch_at_most(rings);
  EXPECT_EQ(cut.has_value(), touch);
  if (!cut || !touch) return false;
  EXPECT_EQ(cut->sides.size(), x.size());
  EXPECT_TRUE(
      kzgis::exact::tiles(sites.points(), cut->sides, cut->triangles, kzgis::exact::Flat::refused));
  Int128 area = 0;
  const auto at = [&](std::size_t i) {
    const kzgis::exact::Point& p = sites[cut->triangles[i]];
    return IntPoint{static_cast<std::int64_t>(p.x), static_cast<std::int64_t>(p.y)};
  };
  for (std::size_t i = 0; i < cut->triangles.size(); i += 3) {
    area += doubled_area({at(i), at(i + 1), at(i + 2)});
  }
  EXPECT_TRUE(area == doubled_area_inside(rings));
  return true;
}

const std::vector<double> kClosedX{0, 1, 0, 0};
const std::vector<double> kClosedY{0, 0, 1, 0};
const std::vector<std::int32_t> kStarts{0};

TEST(RingSweep, CutsRingsInRingsWhicheverWayTheyRun) {
  const IntRing outer{{0, 0}, {9, 0}, {9, 9}, {0, 9}};
  const IntRing hole{{2, 2}, {7, 2}, {7, 7}, {2, 7}};
  const IntRing island{{4, 4}, {4, 5}, {5, 5}};
  EXPECT_TRUE(expect_cut({outer}));
  EXPECT_TRUE(expect_cut({island, hole, outer}));
  EXPECT_TRUE(expect_cut({outer, {{20, 0}, {21, 0}, {20, 1}}}));
  EXPECT_TRUE(expect_cut({}));
}

TEST(RingSweep, TakesARingThatClosesWithItsFirstVertex) {
  const kzgis::Rings rings{kClosedX, kClosedY, kStarts};
  const auto cut = kzgis::mesh::cut_rings(rings, kzgis::mesh::Sites(rings));
  ASSERT_TRUE(cut);
  EXPECT_EQ(cut->triangles.size(), 3U);
  EXPECT_EQ(cut->sides.size(), 3U);
}

TEST(RingSweep, TakesRepeatedVerticesOnce) {
  const std::vector<double> x{0, 0, 4, 4, 4, 0, 0};
  const std::vector<double> y{0, 0, 0, 0, 4, 0, 0};
  const kzgis::Rings rings{x, y, kStarts};
  const auto cut = kzgis::mesh::cut_rings(rings, kzgis::mesh::Sites(rings));
  ASSERT_TRUE(cut);
  EXPECT_EQ(cut->triangles.size(), 3U);
  EXPECT_EQ(cut->sides.size(), 3U);
  const std::vector<double> thin_x{0, 0, 4, 4};
  const std::vector<double> thin_y{0, 0, 4, 4};
  const kzgis::Rings thin{thin_x, thin_y, kStarts};
  EXPECT_FALSE(kzgis::mesh::cut_rings(thin, kzgis::mesh::Sites(thin)));
}

TEST(RingSweep, CutsRingsThatTouchInVertices) {
  const IntRing outer{{0, 0}, {9, 0}, {9, 9}, {0, 9}};
  EXPECT_TRUE(expect_cut({outer, {{9, 9}, {12, 9}, {12, 12}}}));               // outside
  EXPECT_TRUE(expect_cut({outer, {{0, 0}, {3, 4}, {4, 3}}}));                  // inside
  EXPECT_TRUE(expect_cut({outer, {{9, 9}, {5, 6}, {6, 5}}}));                  // on the right
  EXPECT_TRUE(expect_cut({outer, {{0, 0}, {5, 6}, {6, 6}, {9, 9}, {6, 5}}}));  // in two
  EXPECT_FALSE(expect_cut({outer, {{0, 0}, {2, 1}, {1, 2}}, {{2, 1}, {1, 2}, {9, 9}}}));
  EXPECT_TRUE(expect_cut({outer, {{2, 2}, {4, 3}, {4, 4}}, {{2, 2}, {3, 4}, {2, 4}}}));
  EXPECT_TRUE(expect_cut({outer, {{5, 5}, {2, 3}, {2, 4}}, {{5, 5}, {7, 5}, {7, 6}}}));
  EXPECT_TRUE(expect_cut({{{0, 0}, {4, 4}, {8, 0}, {8, 8}, {4, 4}, {0, 8}}}));   // itself
  EXPECT_TRUE(expect_cut({{{0, 0}, {9, 0}, {9, 9}, {0, 0}, {5, 6}, {0, 9}}}));   // at its first
  EXPECT_FALSE(expect_cut({{{0, 0}, {4, 4}, {8, 8}, {8, 0}, {4, 4}, {0, 8}}}));  // and crosses
  EXPECT_FALSE(expect_cut({outer, {{9, 9}, {12, 9}, {12, 12}, {5, 9}}}));
}

TEST(RingSweep, LeavesWhatTouchesSidesToOthers) {
  const IntRing outer{{0, 0}, {9, 0}, {9, 9}, {0, 9}};
  EXPECT_FALSE(expect_cut({outer, {{0, 3}, {3, 4}, {3, 6}}}));   // begins on a side
  EXPECT_FALSE(expect_cut({outer, {{3, 3}, {9, 4}, {3, 6}}}));   // ends on one
  EXPECT_FALSE(expect_cut({outer, {{3, 3}, {4, 0}, {5, 3}}}));   // passes one
  EXPECT_FALSE(expect_cut({outer, {{3, 3}, {11, 4}, {3, 6}}}));  // crosses one
  EXPECT_FALSE(expect_cut({outer, outer}));                      // repeats
  EXPECT_FALSE(expect_cut({{{0, 0}, {9, 0}, {5, 0}, {9, 9}}}));  // a spike
  EXPECT_FALSE(expect_cut({{{0, 0}, {6, 6}, {3, 3}}}));          // nothing but one
  EXPECT_FALSE(expect_cut({{{0, 0}, {9, 9}, {9, 0}, {0, 9}}}));  // crosses itself
}

TEST(RingSweep, AgreesWithEveryPairOfSides) {
  constexpr std::uint64_t kSeed = 1976;
  std::mt19937_64 random(kSeed);
  int taken = 0;
  for (int run = 0; run < 20000; ++run) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " run " << run);
    const std::uint64_t grid = 3 + random() % 12;
    std::vector<IntRing> rings(1 + random() % 3);
    for (IntRing& ring : rings) {
      ring.resize(3 + random() % 4);
      const auto number = [&] { return static_cast<std::int64_t>(random() % grid); };
      // Without vertices that repeat the one before, or the first at the end, which are none.
      for (std::size_t i = 0; i < ring.size(); ++i) {
        const IntPoint& before = ring[i > 0 ? i - 1 : 0];
        do {
          ring[i] = {number(), number()};
        } while (i > 0 && (ring[i] == before || (i + 1 == ring.size() && ring[i] == ring[0])));
      }
    }
    taken += expect_cut(rings) ? 1 : 0;
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GT(taken, 1000);
}

TEST(RingSweep, CutsEveryFamily) {
  constexpr std::uint64_t kSeed = 1977;
  std::mt19937_64 random(kSeed);
  for (int run = 0; run < 600; ++run) {
    const Family& family = families()[static_cast<std::size_t>(run) % families().size()];
    IntPolygon polygon = family.make(3 + static_cast<int>(random() % 100), random);
    // A quarter turn, so that teeth that stood lie.
    if (random() % 2 == 0) polygon = transformed(std::move(polygon), 0, -1, 1, 0);
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " run " << run << ", " << polygon.label);
    expect_cut(polygon.rings);
    ASSERT_FALSE(HasFailure());
  }
}

TEST(LineOrder, KeepsNumbersInOrderThroughManyBlocks) {
  constexpr std::uint32_t kNumbers = 3000;
  LineOrder order;
  const auto last_below = [&order](std::uint32_t number) {
    return order.last([number](std::uint32_t other) { return other < number; });
  };
  const auto expect_all = [&](std::uint32_t step) {
    std::uint32_t before = kzgis::mesh::kNone;
    for (std::uint32_t i = 0; i < kNumbers; i += step) {
      EXPECT_EQ(last_below(i), before);
      before = i;
    }
    EXPECT_EQ(last_below(kNumbers), before);
    EXPECT_EQ(order.first(), 0U);
  };
  EXPECT_EQ(order.first(), kzgis::mesh::kNone);
  const auto insert = [&](std::uint32_t number) {
    order.insert_behind(last_below(number), number);
  };
  for (std::uint32_t i = 0; i < kNumbers; ++i) insert(1009 * i % kNumbers);
  expect_all(1);
  for (std::uint32_t i = 0; i < kNumbers; ++i) {
    if (1013 * i % kNumbers % 1000 != 0) order.erase(1013 * i % kNumbers);
  }
  expect_all(1000);
  for (std::uint32_t i = 0; i < kNumbers; ++i) {
    if (1013 * i % kNumbers % 1000 != 0) insert(1013 * i % kNumbers);
  }
  expect_all(1);
  for (std::uint32_t i = 0; i < kNumbers; ++i) order.erase(i);
  EXPECT_EQ(order.first(), kzgis::mesh::kNone);
  EXPECT_EQ(last_below(kNumbers), kzgis::mesh::kNone);
  insert(5);
  EXPECT_EQ(order.first(), 5U);
}

}  // namespace
