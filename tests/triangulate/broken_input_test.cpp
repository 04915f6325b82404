// Input that breaks the preconditions: nothing undefined and nothing endless.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "kzgis/triangulate.h"
#include "support/capture.h"
#include "triangulate/tiling.h"

namespace {

using kzgis::triangulation::Point;

struct Broken {
  std::vector<kz_long> counts;
  std::vector<Point> points;
};

Broken broken(const IntPolygon& polygon) { return {polygon.vertex_counts(), polygon.points()}; }

/// Runs the classic entry, on an array of exactly the size it may fill, and checks that it
/// names vertices only.
void expect_clean(const Broken& input) {
  StderrCapture err;
  std::vector<double> xy(2);
  kz_long n = 0;
  for (const kz_long count : input.counts) n += count;
  for (const Point& p : input.points) xy.insert(xy.end(), {p.x, p.y});
  const auto contours = static_cast<kz_long>(input.counts.size());
  const auto room = static_cast<std::size_t>(std::max(n + 2 * (contours - 1) - 2, 0));
  std::vector<kz_long> numbers(3 * room, 0);
  EXPECT_EQ(triangulate_polygon(contours, input.counts.data(),
                                reinterpret_cast<const double(*)[2]>(xy.data()),
                                reinterpret_cast<kz_long(*)[3]>(numbers.data())),
            0);
  for (const kz_long v : numbers) ASSERT_TRUE(v >= 0 && v <= n) << v;
  const double somewhere[] = {1, 1};
  is_point_inside_polygon(somewhere);
  release_tables();
}

class BrokenInput : public testing::TestWithParam<Family> {
 protected:
  /// `rounds` polygons of the family, each spoilt by `spoil`.
  template <class Spoil>
  void spoil_each(Spoil spoil) {
    for (std::uint64_t seed = 0; seed < 150; ++seed) {
      std::mt19937_64 random(seed);
      IntPolygon polygon = GetParam().make(4 + static_cast<int>(random() % 40), random);
      spoil(polygon, random);
      expect_clean(broken(polygon));
    }
  }
};

IntRing& some_ring(IntPolygon& polygon, std::mt19937_64& random) {
  return polygon.rings[random() % polygon.rings.size()];
}
IntPoint& some_vertex(IntPolygon& polygon, std::mt19937_64& random) {
  IntRing& ring = some_ring(polygon, random);
  return ring[random() % ring.size()];
}

TEST_P(BrokenInput, ClockwiseRings) {
  spoil_each([](IntPolygon& polygon, std::mt19937_64& random) {
    IntRing& ring = some_ring(polygon, random);
    std::reverse(ring.begin(), ring.end());
  });
}

TEST_P(BrokenInput, RingsClosedExplicitly) {
  spoil_each([](IntPolygon& polygon, std::mt19937_64& random) {
    IntRing& ring = some_ring(polygon, random);
    ring.push_back(ring.front());
  });
}

TEST_P(BrokenInput, RepeatedVertices) {
  spoil_each([](IntPolygon& polygon, std::mt19937_64& random) {
    some_vertex(polygon, random) = some_vertex(polygon, random);
  });
}

TEST_P(BrokenInput, CrossingEdges) {
  spoil_each([](IntPolygon& polygon, std::mt19937_64& random) {
    for (int i = 0; i < 3; ++i)
      std::swap(some_vertex(polygon, random), some_vertex(polygon, random));
  });
}

TEST_P(BrokenInput, VerticesInAnyOrder) {
  spoil_each([](IntPolygon& polygon, std::mt19937_64& random) {
    IntRing& ring = some_ring(polygon, random);
    std::shuffle(ring.begin(), ring.end(), random);
  });
}

TEST_P(BrokenInput, TheSameRingTwice) {
  spoil_each([](IntPolygon& polygon, std::mt19937_64& random) {
    IntRing ring = some_ring(polygon, random);
    if (random() % 2 == 0) std::reverse(ring.begin(), ring.end());
    polygon.rings.push_back(std::move(ring));
  });
}

TEST_P(BrokenInput, AHoleThatTouches) {
  spoil_each([](IntPolygon& polygon, std::mt19937_64& random) {
    const IntPoint p = some_vertex(polygon, random);
    polygon.rings.push_back({p, {p.x + 1, p.y + 2}, {p.x + 2, p.y - 1}});
  });
}

TEST_P(BrokenInput, EverythingOnOneLine) {
  spoil_each([](IntPolygon& polygon, std::mt19937_64& random) {
    const bool upright = random() % 2 == 0;
    for (IntRing& ring : polygon.rings) {
      for (IntPoint& p : ring) (upright ? p.x : p.y) = 0;
    }
  });
}

TEST_P(BrokenInput, NumbersThatAreNone) {
  constexpr double kOdd[] = {
      std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
      -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::max(),
      -std::numeric_limits<double>::max(),      std::numeric_limits<double>::denorm_min()};
  for (std::uint64_t seed = 0; seed < 150; ++seed) {
    std::mt19937_64 random(seed);
    Broken input = broken(GetParam().make(4 + static_cast<int>(random() % 40), random));
    for (std::uint64_t i = 0; i <= seed % 4; ++i) {
      Point& p = input.points[random() % input.points.size()];
      (random() % 2 == 0 ? p.x : p.y) = kOdd[random() % std::size(kOdd)];
    }
    expect_clean(input);
  }
}

TEST_P(BrokenInput, CountsThatCutRingsAnywhere) {
  for (std::uint64_t seed = 0; seed < 150; ++seed) {
    std::mt19937_64 random(seed);
    Broken input = broken(GetParam().make(4 + static_cast<int>(random() % 40), random));
    auto left = static_cast<kz_long>(input.points.size());
    input.counts.clear();
    while (left > 0) {
      const auto count = std::min(left, static_cast<kz_long>(random() % 9));
      input.counts.push_back(count);
      left -= count;
    }
    expect_clean(input);
  }
}

INSTANTIATE_TEST_SUITE_P(Families, BrokenInput, testing::ValuesIn(families()),
                         [](const auto& family) { return std::string(family.param.name); });

TEST(BrokenInput, RandomPointsOfATinyGrid) {
  for (std::uint64_t seed = 0; seed < 20000; ++seed) {
    std::mt19937_64 random(seed);
    IntPolygon polygon;
    polygon.label = "random points";
    for (std::uint64_t r = 0; r <= random() % 3; ++r) {
      IntRing ring(3 + random() % 8);
      for (IntPoint& p : ring) {
        p = {static_cast<std::int64_t>(random() % 5), static_cast<std::int64_t>(random() % 5)};
      }
      polygon.rings.push_back(ring);
    }
    expect_clean(broken(polygon));
  }
}

// Found by fuzzing: the searches for the places of these vertices grow with their number, and ten
// thousand of them took minutes under the sanitizers.
TEST(BrokenInput, ThousandsOfVerticesInTwoPlacesAreGivenUp) {
  const double far = -7.845912203937713e298;
  const double near = -6.794487711402243e159;
  constexpr kz_long kRings = 1428;
  constexpr kz_long kCorners = 7;
  std::vector<double> xy(2);
  for (kz_long ring = 0; ring < kRings; ++ring) {
    for (kz_long i = 0; i < kCorners; ++i) {
      xy.insert(xy.end(), {far, i + 1 < kCorners ? far : near});
    }
  }
  const std::vector<kz_long> counts(kRings, kCorners);
  std::vector<kz_long> numbers(3 * kRings * (kCorners + 2), -7);
  StderrCapture err;
  EXPECT_EQ(
      triangulate_polygon(kRings, counts.data(), reinterpret_cast<const double(*)[2]>(xy.data()),
                          reinterpret_cast<kz_long(*)[3]>(numbers.data())),
      0);
  release_tables();
  const std::string overflow = "newnode: Query-table overflow\n";
  ASSERT_GE(err.text().size(), overflow.size());
  // The last line, and not there a second time: nothing goes on behind it.
  EXPECT_EQ(err.text().find(overflow), err.text().size() - overflow.size());
  EXPECT_EQ(std::count(numbers.begin(), numbers.end(), -7), std::ssize(numbers));
}

}  // namespace
