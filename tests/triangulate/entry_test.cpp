// triangulate_polygon from outside: literal polygons, and what it leaves behind.

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include "kzgis/triangulate.h"
#include "support/capture.h"
#include "triangulate/tiling.h"

namespace {

constexpr kz_long kUntouched = -7;

/// The triangles that the plain entry point writes into an array of exactly the right size,
/// as far as it wrote them.
Triangles triangulate_plainly(const IntPolygon& polygon, double scale = 1.0) {
  std::vector<double> xy(2);
  for (const auto& p : polygon.points(scale)) xy.insert(xy.end(), {p.x, p.y});
  const std::vector<kz_long> counts = polygon.vertex_counts();
  std::vector<kz_long> numbers(3 * static_cast<std::size_t>(polygon.triangle_count()), kUntouched);
  EXPECT_EQ(triangulate_polygon(static_cast<kz_long>(counts.size()), counts.data(),
                                reinterpret_cast<const double(*)[2]>(xy.data()),
                                reinterpret_cast<kz_long(*)[3]>(numbers.data())),
            0);
  Triangles triangles;
  for (std::size_t i = 0; i < numbers.size() && numbers[i] != kUntouched; i += 3) {
    triangles.push_back({numbers[i], numbers[i + 1], numbers[i + 2]});
  }
  return triangles;
}

struct TriangulatePolygon : testing::Test {
  void TearDown() override { release_tables(); }
};

TEST_F(TriangulatePolygon, GivesATriangleBack) {
  const IntPolygon triangle{{{{0, 0}, {7, 2}, {4, 8}}}, "triangle"};
  EXPECT_EQ(flaw_of(triangle, triangulate_plainly(triangle), 1), "");
}

TEST_F(TriangulatePolygon, CutsASquareInTwo) {
  const IntPolygon square{{{{0, 0}, {4, 0}, {4, 4}, {0, 4}}}, "square"};
  EXPECT_EQ(flaw_of(square, triangulate_plainly(square), 1), "");
}

TEST_F(TriangulatePolygon, CutsASquareWithASquareHoleInEight) {
  const IntPolygon frame{{{{0, 0}, {6, 0}, {6, 6}, {0, 6}}, {{2, 2}, {2, 4}, {4, 4}, {4, 2}}},
                         "frame"};
  ASSERT_EQ(frame.triangle_count(), 8);
  EXPECT_EQ(flaw_of(frame, triangulate_plainly(frame), 1), "");
}

TEST_F(TriangulatePolygon, DoesNotReadPairZero) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const kz_long counts[] = {3};
  const double vertices[][2] = {{kNan, kNan}, {0, 0}, {7, 2}, {4, 8}};
  kz_long triangle[1][3];
  triangulate_polygon(1, counts, vertices, triangle);
  EXPECT_EQ((std::set<kz_long>{triangle[0][0], triangle[0][1], triangle[0][2]}),
            (std::set<kz_long>{1, 2, 3}));
}

TEST_F(TriangulatePolygon, AcceptsNoContours) {
  StderrCapture err;
  EXPECT_EQ(triangulate_polygon(0, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(SEGSIZE, 1);
  EXPECT_EQ(triangulate_polygon(-3, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(err.text(), "");
}

TEST_F(TriangulatePolygon, AcceptsContoursWithoutVertices) {
  const kz_long counts[] = {0, 4, 0};
  const double vertices[][2] = {{9, 9}, {0, 0}, {4, 0}, {4, 4}, {0, 4}};
  kz_long triangles[6][3];
  StderrCapture err;
  EXPECT_EQ(triangulate_polygon(3, counts, vertices, triangles), 0);
  EXPECT_EQ(err.text(), "");
}

TEST_F(TriangulatePolygon, RefusesCountsThatAreNone) {
  StderrCapture err;
  const kz_long negative[] = {4, -1};
  EXPECT_EQ(triangulate_polygon(2, negative, nullptr, nullptr), 0);
  const kz_long too_many[] = {2147483647, 2147483647};
  EXPECT_EQ(triangulate_polygon(2, too_many, nullptr, nullptr), 0);
  EXPECT_EQ(err.text(), "");
}

TEST_F(TriangulatePolygon, KeepsItsTablesUntilTheNextCall) {
  const IntPolygon square{{{{0, 0}, {4, 0}, {4, 4}, {0, 4}}}, "square"};
  const IntPolygon far_square{{{{10, 0}, {14, 0}, {14, 4}, {10, 4}}}, "square"};
  const double centre[] = {2, 1.5};
  triangulate_plainly(square);
  EXPECT_EQ(SEGSIZE, 5);
  EXPECT_EQ(is_point_inside_polygon(centre), 1);
  EXPECT_EQ(is_point_inside_polygon(centre), 1);
  triangulate_plainly(far_square);
  EXPECT_EQ(is_point_inside_polygon(centre), 0);
}

TEST_F(TriangulatePolygon, HasRoomForEveryDiagonalOfManyHoles) {
  // Triangular holes: 3h + 3 vertices, and more diagonals than vertices.
  IntPolygon polygon{{{{-1, -5}, {401, -5}, {200, 4000}}}, "triangular holes"};
  for (std::int64_t i = 0; i < 60; ++i) {
    polygon.rings.push_back({{5 * i + 50, 0}, {5 * i + 51, 3}, {5 * i + 53, 1 + i % 2}});
  }
  ASSERT_TRUE(is_simple(polygon));
  EXPECT_EQ(flaw_of(polygon, triangulate_plainly(polygon), 1), "");
}

TEST_F(TriangulatePolygon, GoesOnWithOrphanedQueryNodesWhereTheTableIsFull) {
  // A spiral of 3000 vertices needs 10 nodes per vertex, give or take: some of 40 orders
  // need more than there are.
  std::mt19937_64 random(1);
  const IntPolygon polygon = spiral(3000, random);
  StderrCapture err;
  for (int order = 0; order < 40; ++order) {
    const std::vector<kz_long> counts = polygon.vertex_counts();
    const auto n = counts[0];
    ASSERT_EQ(initilize(n + 1), 0);
    const auto points = polygon.points();
    for (kz_long i = 1; i <= n; ++i) {
      seg[i].start = points[static_cast<std::size_t>(i) - 1];
      seg[i].end = points[static_cast<std::size_t>(i % n)];
      seg[i].next_seg = i % n + 1;
      seg[i].prev_seg = (i + n - 2) % n + 1;
    }
    generate_random_ordering(n);
    std::shuffle(permute + 1, permute + n + 1, random);
    construct_trapezoids(n);
    std::vector<kz_long> numbers(3 * static_cast<std::size_t>(n - 2));
    auto* triangles = reinterpret_cast<kz_long(*)[3]>(numbers.data());
    ASSERT_EQ(triangulate_monotone_polygons(n, monotonate_trapezoids(n), triangles), n - 2);
    Triangles list;
    for (kz_long i = 0; i < n - 2; ++i) {
      list.push_back({triangles[i][0], triangles[i][1], triangles[i][2]});
    }
    ASSERT_EQ(flaw_of(polygon, list, 1), "") << "order " << order;
  }
  EXPECT_EQ(err.text(), "");
}

TEST_F(TriangulatePolygon, CoordinatesCloserThanTheToleranceEndCleanly) {
  // 100 vertices within 1e-8: nothing can be told apart, and nothing may go wrong.
  std::mt19937_64 random(1);
  StderrCapture err;
  triangulate_plainly(star(100, random), 0x1p-57);
}

}  // namespace
