// kzgis::nest on random rings of whole coordinates, against containment computed ring by
// ring in whole numbers.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "support/meshed.h"
#include "triangulate/polygons.h"
#include "triangulate/tiling.h"

namespace {

constexpr std::uint64_t kSeed = 1976;

/// What kzgis::nest has to answer when `inside(a, b)` tells whether ring a lies in ring b.
template <typename Inside>
void expect_nested(const std::vector<IntRing>& rings, const Inside& inside,
                   std::mt19937_64& random) {
  std::vector<double> x;
  std::vector<double> y;
  std::vector<kz_long> starts;
  for (IntRing ring : rings) {
    if (random() % 2 == 0) std::reverse(ring.begin(), ring.end());
    if (random() % 2 == 0) ring.push_back(ring.front());
    starts.push_back(static_cast<kz_long>(x.size()));
    for (const IntPoint& p : ring) {
      x.push_back(static_cast<double>(p.x));
      y.push_back(static_cast<double>(p.y));
    }
  }
  const Nested nesting = nested({x, y, starts});
  ASSERT_EQ(nesting.flaw.message, "");
  ASSERT_EQ(nesting.parent.size(), rings.size());
  ASSERT_EQ(nesting.depth.size(), rings.size());
  for (std::size_t ring = 0; ring < rings.size(); ++ring) {
    std::vector<std::size_t> around;
    for (std::size_t other = 0; other < rings.size(); ++other) {
      if (other != ring && inside(ring, other)) around.push_back(other);
    }
    EXPECT_EQ(nesting.depth[ring], static_cast<kz_long>(around.size()) + 1) << "ring " << ring;
    // The smallest around it is the one that lies in all the others.
    kz_long parent = -1;
    for (const std::size_t candidate : around) {
      if (std::all_of(around.begin(), around.end(), [&](std::size_t other) {
            return other == candidate || inside(candidate, other);
          })) {
        parent = static_cast<kz_long>(candidate);
      }
    }
    EXPECT_EQ(nesting.parent[ring], parent) << "ring " << ring;
  }
}

/// Whether no vertex of the ring lies to the right of the convex one's sides.
bool holds(const IntRing& convex, const IntRing& ring) {
  for (std::size_t i = 0; i < convex.size(); ++i) {
    for (const IntPoint& p : ring) {
      if (turn(convex[i], convex[(i + 1) % convex.size()], p) < 0) return false;
    }
  }
  return true;
}

/// Whether one of the convex ring's sides has all of the other on its right, or on it.
bool parts(const IntRing& convex, const IntRing& ring) {
  for (std::size_t i = 0; i < convex.size(); ++i) {
    const auto right = [&](const IntPoint& p) {
      return turn(convex[i], convex[(i + 1) % convex.size()], p) <= 0;
    };
    if (std::all_of(ring.begin(), ring.end(), right)) return true;
  }
  return false;
}

TEST(NestProperty, OfConvexRingsThatTouch) {
  std::mt19937_64 random(kSeed);
  std::size_t touching = 0;
  kz_long deepest = 0;
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " round " << round);
    std::vector<IntRing> rings;
    for (int attempt = 0; attempt < 80; ++attempt) {
      // On a small grid, and often within one of those there are: they touch and lie deep.
      const auto anywhere = [&] {
        return IntPoint{static_cast<std::int64_t>(random() % 33),
                        static_cast<std::int64_t>(random() % 33)};
      };
      IntRing around{{0, 0}, {32, 0}, {32, 32}, {0, 32}};
      if (!rings.empty() && random() % 4 != 0) around = rings[random() % rings.size()];
      IntRing ring;
      for (auto n = 3 + random() % 2; n > 0; --n) {
        IntPoint p = anywhere();
        while (!holds(around, {p})) p = anywhere();
        ring.push_back(p);
      }
      if (doubled_area(ring) < 0) std::reverse(ring.begin(), ring.end());
      const bool repeats =
          std::adjacent_find(ring.begin(), ring.end()) != ring.end() || ring.front() == ring.back();
      if (repeats || doubled_area(ring) <= 0 || !holds(ring, ring)) continue;
      // Equal rings hold each other.
      if (std::all_of(rings.begin(), rings.end(), [&](const IntRing& other) {
            const bool nested = holds(ring, other) != holds(other, ring);
            return nested || (!holds(ring, other) && (parts(ring, other) || parts(other, ring)));
          })) {
        rings.push_back(ring);
      }
    }
    std::shuffle(rings.begin(), rings.end(), random);
    const auto inside = [&](std::size_t a, std::size_t b) { return holds(rings[b], rings[a]); };
    expect_nested(rings, inside, random);
    ASSERT_FALSE(HasFailure());
    IntPolygon all;
    all.rings = rings;
    if (!is_simple(all)) ++touching;
    for (std::size_t a = 0; a < rings.size(); ++a) {
      kz_long depth = 1;
      for (std::size_t b = 0; b < rings.size(); ++b) depth += a != b && inside(a, b) ? 1 : 0;
      deepest = std::max(deepest, depth);
    }
  }
  EXPECT_GT(touching, 250U);
  EXPECT_GE(deepest, 5);
}

TEST(NestProperty, OfRingsOfAnyShapeThatKeepApart) {
  std::mt19937_64 random(kSeed);
  std::size_t nested = 0;
  for (int round = 0; round < 150; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " round " << round);
    IntPolygon all;
    for (int attempt = 0; attempt < 30; ++attempt) {
      const Family& family = families()[random() % families().size()];
      const IntPolygon made = family.make(3 + static_cast<int>(random() % 20), random);
      // The family's own size, divided at random and put anywhere.
      const auto divisor = static_cast<std::int64_t>(1 + random() % 12);
      const auto shift_x = static_cast<std::int64_t>(random() % 2000) - 1000;
      const auto shift_y = static_cast<std::int64_t>(random() % 2000) - 1000;
      IntPolygon with_it = all;
      IntRing ring = made.rings[0];
      for (IntPoint& p : ring) p = {p.x / divisor + shift_x, p.y / divisor + shift_y};
      with_it.rings.push_back(ring);
      if (doubled_area(ring) != 0 && is_simple(with_it)) all = with_it;
    }
    const auto inside = [&](std::size_t a, std::size_t b) {
      IntPolygon outer;
      outer.rings = {all.rings[b]};
      const IntPoint p = all.rings[a][0];
      return place_of(outer, {2 * p.x, 2 * p.y}) == Place::inside;
    };
    expect_nested(all.rings, inside, random);
    ASSERT_FALSE(HasFailure());
    for (std::size_t a = 0; a < all.rings.size(); ++a) {
      for (std::size_t b = 0; b < all.rings.size(); ++b) nested += a != b && inside(a, b) ? 1 : 0;
    }
  }
  EXPECT_GT(nested, 300U);
}

}  // namespace
