// is_point_inside_polygon against exact counting of crossings.

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "kzgis/triangulate.h"
#include "support/capture.h"
#include "support/sanitized.h"
#include "triangulate/polygons.h"

namespace {

#ifdef KZGIS_SANITIZED
constexpr int kPoints = 100'000;
#else
constexpr int kPoints = 1'000'000;
#endif

void triangulate(const IntPolygon& polygon) {
  std::vector<double> xy(2);
  for (const auto& p : polygon.points()) xy.insert(xy.end(), {p.x, p.y});
  const std::vector<kz_long> counts = polygon.vertex_counts();
  std::vector<kz_long> numbers(3 * static_cast<std::size_t>(polygon.triangle_count()));
  triangulate_polygon(static_cast<kz_long>(counts.size()), counts.data(),
                      reinterpret_cast<const double(*)[2]>(xy.data()),
                      reinterpret_cast<kz_long(*)[3]>(numbers.data()));
}

TEST(IsPointInsidePolygon, TellsInsideFromHoleAndOutside) {
  triangulate({{{{0, 0}, {6, 0}, {6, 6}, {0, 6}}, {{2, 2}, {2, 4}, {4, 4}, {4, 2}}}, "frame"});
  const auto inside = [](double x, double y) {
    const double point[] = {x, y};
    return is_point_inside_polygon(point);
  };
  EXPECT_EQ(inside(1, 1), 1);
  EXPECT_EQ(inside(5, 3), 1);
  EXPECT_EQ(inside(3, 5), 1);
  EXPECT_EQ(inside(3, 3), 0);
  EXPECT_EQ(inside(-1, 3), 0);
  EXPECT_EQ(inside(7, 3), 0);
  EXPECT_EQ(inside(3, -1), 0);
  EXPECT_EQ(inside(3, 7), 0);
  release_tables();
}

TEST(IsPointInsidePolygon, HasNothingInsideWithoutTables) {
  release_tables();
  const double point[] = {0, 0};
  EXPECT_EQ(is_point_inside_polygon(point), 0);
  ASSERT_EQ(initilize(5), 0);
  StderrCapture err;
  EXPECT_EQ(is_point_inside_polygon(point), 0);
  EXPECT_EQ(err.text(), "");
  release_tables();
}

TEST(IsPointInsidePolygon, AnswersForNumbersThatAreNone) {
  triangulate({{{{0, 0}, {6, 0}, {6, 6}, {0, 6}}}, "square"});
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double odd : {kInfinity, -kInfinity}) {
    const double points[][2] = {{odd, 3}, {3, odd}, {odd, odd}};
    for (const auto& point : points) EXPECT_EQ(is_point_inside_polygon(point), 0);
  }
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double points[][2] = {{nan, 3}, {3, nan}, {nan, nan}};
  for (const auto& point : points) is_point_inside_polygon(point);  // any answer will do
  release_tables();
}

TEST(IsPointInsidePolygon, AgreesWithCountingCrossings) {
  constexpr unsigned kSeed = 77;
  std::mt19937_64 random(kSeed);
  int asked = 0;
  int inside = 0;
  for (int round = 0; asked < kPoints; ++round) {
    const Family& family = families()[static_cast<std::size_t>(round) % families().size()];
    const IntPolygon polygon = family.make(20 + static_cast<int>(random() % 60), random);
    triangulate(polygon);
    IntPoint low{polygon.rings[0][0]};
    IntPoint high = low;
    for (const IntPoint& p : polygon.rings[0]) {
      low = {std::min(low.x, p.x), std::min(low.y, p.y)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    for (int i = 0; i < 5000; ++i) {
      // Halves, so that points level with vertices and points between them both come up.
      const auto within = [&](std::int64_t from, std::int64_t to) {
        const auto width = static_cast<std::uint64_t>(2 * (to - from) + 5);
        return 2 * from - 2 + static_cast<std::int64_t>(random() % width);
      };
      const IntPoint doubled{within(low.x, high.x), within(low.y, high.y)};
      const Place place = place_of(polygon, doubled);
      if (place == Place::boundary) continue;
      const double point[] = {static_cast<double>(doubled.x) / 2,
                              static_cast<double>(doubled.y) / 2};
      ++asked;
      inside += place == Place::inside;
      ASSERT_EQ(is_point_inside_polygon(point), place == Place::inside ? 1 : 0)
          << polygon.label << ", seed " << kSeed << ", round " << round << ", point " << point[0]
          << ' ' << point[1];
    }
  }
  EXPECT_GT(inside, asked / 5);
  EXPECT_LT(inside, asked * 4 / 5);
  release_tables();
}

}  // namespace
