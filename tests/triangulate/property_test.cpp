// Every family, in every size, scale and direction: the triangles tile the polygon.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "kzgis/triangulate.h"
#include "support/capture.h"
#include "support/sanitized.h"
#include "triangulate/tiling.h"

namespace {

using kzgis::triangulation::Point;

#ifdef KZGIS_SANITIZED
constexpr bool kSlow = true;
#else
constexpr bool kSlow = false;
#endif

/// As it is, turned by a quarter, turned by 45 degrees, and sheared into slivers.
IntPolygon placed(const IntPolygon& polygon, int way) {
  switch (way % 4) {
    case 1:
      return transformed(polygon, 0, -1, 1, 0);
    case 2:
      return transformed(polygon, 1, -1, 1, 1);
    case 3:
      return transformed(polygon, 1000, 999, 1001, 1000);
    default:
      return polygon;
  }
}

std::string flaw_in_classic(const IntPolygon& polygon) {
  std::vector<double> xy(2);
  for (const auto& p : polygon.points()) xy.insert(xy.end(), {p.x, p.y});
  const std::vector<kz_long> counts = polygon.vertex_counts();
  Triangles triangles(static_cast<std::size_t>(polygon.triangle_count()));
  triangulate_polygon(static_cast<kz_long>(counts.size()), counts.data(),
                      reinterpret_cast<const double(*)[2]>(xy.data()),
                      reinterpret_cast<kz_long(*)[3]>(triangles.front().data()));
  return flaw_of(polygon, triangles, 1);
}

class Tiling : public testing::TestWithParam<Family> {};

TEST_P(Tiling, OfSmallPolygons) {
  StderrCapture err;
  for (int round = 0; round < (kSlow ? 500 : 2000); ++round) {
    std::mt19937_64 random(static_cast<std::uint64_t>(round) + 1'000'000);
    const int n = 3 + static_cast<int>(random() % 60);
    const IntPolygon polygon = placed(GetParam().make(n, random), round);
    ASSERT_EQ(flaw_in_classic(polygon), "") << polygon.label << ", round " << round;
  }
  release_tables();
  EXPECT_EQ(err.text(), "");
}

// One order in some thousands uses the table of trapezoids up before it is done with a spiral,
// unless those are used again that merging has given back.
TEST(ClassicOrder, ThatTakesEveryTrapezoidIsSeenThrough) {
  const kz_long order[] = {27, 21, 30, 5,  41, 59, 55, 26, 45, 53, 15, 49, 44, 11, 14, 35,
                           3,  33, 28, 6,  37, 34, 51, 9,  25, 20, 62, 61, 22, 42, 47, 46,
                           12, 40, 8,  52, 29, 39, 2,  56, 24, 10, 18, 31, 54, 19, 4,  13,
                           43, 50, 7,  23, 38, 16, 57, 58, 32, 60, 17, 36, 48, 1};
  const auto n = static_cast<kz_long>(std::size(order));
  const auto family = std::find_if(families().begin(), families().end(), [](const Family& f) {
    return std::string_view(f.name) == "spiral";
  });
  std::mt19937_64 random;  // which a spiral does not use
  const IntPolygon polygon = family->make(n, random);
  const std::vector<Point> points = polygon.points();
  ASSERT_EQ(points.size(), std::size(order));

  ASSERT_EQ(initilize(n + 1), 0);
  ASSERT_EQ(generate_random_ordering(n), 0);  // starts choose_segment
  for (kz_long i = 1; i <= n; ++i) {
    permute[i] = order[i - 1];
    seg[i].start = points[static_cast<std::size_t>(i - 1)];
    seg[i].end = points[static_cast<std::size_t>(i % n)];
    seg[i].next_seg = i % n + 1;
    seg[i].prev_seg = (i + n - 2) % n + 1;
  }
  const StderrCapture err;
  construct_trapezoids(n);
  Triangles triangles(static_cast<std::size_t>(polygon.triangle_count()));
  const kz_long count = triangulate_monotone_polygons(
      n, monotonate_trapezoids(n), reinterpret_cast<kz_long(*)[3]>(triangles.front().data()));
  release_tables();
  EXPECT_EQ(count, n - 2);
  EXPECT_EQ(flaw_of(polygon, triangles, 1), "");
  EXPECT_EQ(err.text(), "");
}

// In an order that is far from random searches grow with the number of vertices; polygons of some
// thousands are seen through all the same.
TEST(ClassicOrder, AsTheVerticesFollowEachOtherIsSeenThrough) {
  constexpr kz_long n = 2000;
  std::mt19937_64 random;  // which the family does not use
  const IntPolygon polygon = convex(n, random);
  const std::vector<Point> points = polygon.points();
  ASSERT_EQ(points.size(), static_cast<std::size_t>(n));
  ASSERT_EQ(initilize(n + 1), 0);
  ASSERT_EQ(generate_random_ordering(n), 0);  // starts choose_segment
  for (kz_long i = 1; i <= n; ++i) {
    permute[i] = i;
    seg[i].start = points[static_cast<std::size_t>(i - 1)];
    seg[i].end = points[static_cast<std::size_t>(i % n)];
    seg[i].next_seg = i % n + 1;
    seg[i].prev_seg = (i + n - 2) % n + 1;
  }
  const StderrCapture err;
  construct_trapezoids(n);
  Triangles triangles(static_cast<std::size_t>(polygon.triangle_count()));
  triangulate_monotone_polygons(n, monotonate_trapezoids(n),
                                reinterpret_cast<kz_long(*)[3]>(triangles.front().data()));
  release_tables();
  EXPECT_EQ(flaw_of(polygon, triangles, 1), "");
  EXPECT_EQ(err.text(), "");
}

TEST_P(Tiling, OfLargerPolygons) {
  StderrCapture err;
  for (const int n : {100, 1000, 10'000}) {
    for (int way = 0; way < 4; ++way) {
      std::mt19937_64 random(static_cast<std::uint64_t>(n + way));
      const IntPolygon polygon = placed(GetParam().make(n, random), way);
      ASSERT_EQ(flaw_in_classic(polygon), "") << polygon.label << ", way " << way;
    }
  }
  release_tables();
  EXPECT_EQ(err.text(), "");
}

#ifndef KZGIS_SANITIZED  // too slow under sanitizers
TEST_P(Tiling, OfAHundredThousandVertices) {
  std::mt19937_64 random(1);
  const IntPolygon polygon = GetParam().make(100'000, random);
  StderrCapture err;
  EXPECT_EQ(flaw_in_classic(polygon), "") << polygon.label;
  EXPECT_EQ(err.text(), "");
  release_tables();
}

#endif

INSTANTIATE_TEST_SUITE_P(Families, Tiling, testing::ValuesIn(families()),
                         [](const auto& family) { return std::string(family.param.name); });

#ifndef KZGIS_SANITIZED
TEST(Tiling, OfAMillionVertices) {
  std::mt19937_64 random(1);
  StderrCapture err;
  EXPECT_EQ(flaw_in_classic(star(1'000'000, random)), "");
  EXPECT_EQ(err.text(), "");
  release_tables();
}
#endif

}  // namespace
