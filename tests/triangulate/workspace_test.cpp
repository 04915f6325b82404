// The triangulator on tables of its own.

#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <utility>
#include <vector>

#include "kzgis/triangulate.h"
#include "support/capture.h"
#include "triangulate/tiling.h"

namespace {

using kzgis::triangulation::Outcome;
using kzgis::triangulation::Point;
using kzgis::triangulation::Result;
using kzgis::triangulation::Workspace;

const std::vector<Point> kFrame{{0, 0}, {6, 0}, {6, 6}, {0, 6}, {2, 2}, {2, 4}, {4, 4}, {4, 2}};
const std::vector<kz_long> kFrameCounts{4, 4};
const IntPolygon kFrameExactly{{{{0, 0}, {6, 0}, {6, 6}, {0, 6}}, {{2, 2}, {2, 4}, {4, 4}, {4, 2}}},
                               "frame"};

Triangles as_list(const std::vector<kz_long>& numbers) {
  Triangles list;
  for (std::size_t i = 0; i + 2 < numbers.size(); i += 3) {
    list.push_back({numbers[i], numbers[i + 1], numbers[i + 2]});
  }
  return list;
}

TEST(Workspace, TriangulatesASquareWithAHole) {
  Workspace workspace;
  std::vector<kz_long> out(24);
  const Result result = workspace.run(kFrameCounts, kFrame, 0.0, 1, out);
  EXPECT_EQ(result.outcome, Outcome::complete);
  EXPECT_EQ(result.triangles, 8);
  EXPECT_EQ(flaw_of(kFrameExactly, as_list(out), 0), "");
}

TEST(Workspace, GivesTheSameTrianglesForTheSameSeed) {
  std::mt19937_64 random(3);
  const IntPolygon polygon = star(500, random);
  const auto points = polygon.points();
  const auto counts = polygon.vertex_counts();
  std::vector<kz_long> first(3 * 498);
  std::vector<kz_long> second(3 * 498);
  std::vector<kz_long> third(3 * 498);
  Workspace workspace;
  ASSERT_EQ(workspace.run(counts, points, 0.0, 42, first).outcome, Outcome::complete);
  ASSERT_EQ(workspace.run(counts, points, 0.0, 43, second).outcome, Outcome::complete);
  ASSERT_EQ(workspace.run(counts, points, 0.0, 42, third).outcome, Outcome::complete);
  EXPECT_EQ(first, third);
  EXPECT_NE(first, second);
}

TEST(Workspace, LeavesTheRestOfTheArrayAlone) {
  Workspace workspace;
  std::vector<kz_long> out(27, -7);
  ASSERT_EQ(workspace.run(kFrameCounts, kFrame, 0.0, 1, out).outcome, Outcome::complete);
  EXPECT_EQ(std::vector<kz_long>(out.begin() + 24, out.end()), (std::vector<kz_long>{-7, -7, -7}));
}

TEST(Workspace, RefusesSizesThatDoNotFit) {
  Workspace workspace;
  std::vector<kz_long> out(24);
  const auto outcome = [&](const std::vector<kz_long>& counts, std::size_t vertices,
                           std::size_t numbers) {
    const Result result = workspace.run(counts, std::span(kFrame).first(vertices), 0.0, 1,
                                        std::span(out).first(numbers));
    EXPECT_EQ(result.triangles, 0);
    return result.outcome;
  };
  EXPECT_EQ(outcome({}, 0, 24), Outcome::bad_input);
  EXPECT_EQ(outcome({0}, 0, 24), Outcome::bad_input);
  EXPECT_EQ(outcome({2}, 2, 24), Outcome::bad_input);
  EXPECT_EQ(outcome({6, 2}, 8, 24), Outcome::bad_input);
  EXPECT_EQ(outcome({-4}, 8, 24), Outcome::bad_input);
  EXPECT_EQ(outcome({4, 4}, 7, 24), Outcome::bad_input);
  EXPECT_EQ(outcome({4}, 8, 24), Outcome::bad_input);
  EXPECT_EQ(outcome({4, 4}, 8, 23), Outcome::bad_input);
  EXPECT_EQ(outcome({2147483647, 2147483647}, 8, 24), Outcome::bad_input);
}

TEST(Workspace, RefusesWhatIsNoFiniteNumber) {
  Workspace workspace;
  std::vector<kz_long> out(24);
  for (const double odd :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity()}) {
    auto vertices = kFrame;
    vertices[5].x = odd;
    EXPECT_EQ(workspace.run(kFrameCounts, vertices, 0.0, 1, out).outcome, Outcome::bad_input);
    vertices = kFrame;
    vertices[7].y = odd;
    EXPECT_EQ(workspace.run(kFrameCounts, vertices, 0.0, 1, out).outcome, Outcome::bad_input);
  }
  EXPECT_EQ(workspace.run(kFrameCounts, kFrame, -1.0, 1, out).outcome, Outcome::bad_input);
  EXPECT_EQ(workspace.run(kFrameCounts, kFrame, std::nan(""), 1, out).outcome, Outcome::bad_input);
}

TEST(Workspace, DoesNotCompleteAClockwiseRing) {
  Workspace workspace;
  std::vector<kz_long> out(6);
  StderrCapture err;
  const std::vector<Point> triangle{{0, 0}, {4, 8}, {7, 2}};
  const std::vector<Point> square{{0, 0}, {0, 4}, {4, 4}, {4, 0}};
  EXPECT_EQ(workspace.run(std::vector{3}, triangle, 0.0, 1, out).outcome, Outcome::not_completed);
  EXPECT_EQ(workspace.run(std::vector{4}, square, 0.0, 1, out).outcome, Outcome::not_completed);
  EXPECT_EQ(err.text(), "");
}

TEST(Workspace, IsAsGoodAsNewAfterAFailureAndAfterLargerInput) {
  Workspace workspace;
  std::mt19937_64 random(5);
  const IntPolygon large = star(2000, random);
  std::vector<kz_long> out(3 * 1998);
  std::vector<kz_long> small(24);
  std::vector<kz_long> fresh(24);
  ASSERT_EQ(Workspace().run(kFrameCounts, kFrame, 0.0, 9, fresh).outcome, Outcome::complete);

  ASSERT_EQ(workspace.run(large.vertex_counts(), large.points(), 0.0, 9, out).outcome,
            Outcome::complete);
  const std::vector<Point> clockwise{{0, 0}, {0, 4}, {4, 4}, {4, 0}};
  ASSERT_EQ(workspace.run(std::vector{4}, clockwise, 0.0, 9, small).outcome,
            Outcome::not_completed);
  ASSERT_EQ(workspace.run(kFrameCounts, kFrame, 0.0, 9, small).outcome, Outcome::complete);
  EXPECT_EQ(small, fresh);
  ASSERT_EQ(workspace.run(large.vertex_counts(), large.points(), 0.0, 9, out).outcome,
            Outcome::complete);
}

TEST(Workspace, MayBeMoved) {
  Workspace first;
  std::vector<kz_long> out(24);
  ASSERT_EQ(first.run(kFrameCounts, kFrame, 0.0, 1, out).outcome, Outcome::complete);
  Workspace second(std::move(first));
  EXPECT_EQ(second.run(kFrameCounts, kFrame, 0.0, 1, out).outcome, Outcome::complete);
  first = std::move(second);
  EXPECT_EQ(first.run(kFrameCounts, kFrame, 0.0, 1, out).outcome, Outcome::complete);
}

TEST(Workspace, LeavesTheTablesOfTheProcessAlone) {
  const kz_long counts[] = {3};
  const double vertices[][2] = {{0, 0}, {100, 100}, {107, 102}, {104, 108}};
  kz_long triangle[1][3];
  triangulate_polygon(1, counts, vertices, triangle);
  std::vector<kz_long> out(24);
  ASSERT_EQ(Workspace().run(kFrameCounts, kFrame, 0.0, 1, out).outcome, Outcome::complete);
  const double point[] = {104, 104};
  EXPECT_EQ(is_point_inside_polygon(point), 1);
  EXPECT_EQ(SEGSIZE, 4);
  release_tables();
}

TEST(Workspace, RunsInManyThreadsAtOnce) {
  std::vector<std::string> flaws(4);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < flaws.size(); ++i) {
    threads.emplace_back([&flaws, i] {
      Workspace workspace;
      for (std::uint64_t seed = 0; seed < 20 && flaws[i].empty(); ++seed) {
        std::mt19937_64 random(seed);
        const IntPolygon polygon = families()[i + 1].make(300, random);
        std::vector<kz_long> out(3 * static_cast<std::size_t>(polygon.triangle_count()));
        workspace.run(polygon.vertex_counts(), polygon.points(), 0.0, seed, out);
        flaws[i] = flaw_of(polygon, as_list(out), 0);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& flaw : flaws) EXPECT_EQ(flaw, "");
}

TEST(BoundedBy, TrianglesThatHaveTheContoursForTheirEdge) {
  using kzgis::triangulation::bounded_by;
  using Numbers = std::vector<kz_long>;
  const Numbers square{4};
  EXPECT_TRUE(bounded_by(square, Numbers{0, 1, 2, 0, 2, 3}));
  EXPECT_TRUE(bounded_by(square, Numbers{1, 2, 3, 3, 0, 1}));
  EXPECT_FALSE(bounded_by(square, Numbers{0, 1, 2}));
  EXPECT_FALSE(bounded_by(square, Numbers{0, 1, 2, 0, 3, 2}));
  EXPECT_FALSE(bounded_by(square, Numbers{0, 1, 2, 0, 2, 3, 0, 1, 2}));
  EXPECT_FALSE(bounded_by(Numbers{3, 3}, Numbers{0, 1, 2}));
  EXPECT_TRUE(bounded_by(Numbers{3, 3}, Numbers{0, 1, 2, 4, 5, 3}));
  EXPECT_FALSE(bounded_by(square, Numbers{0, 1, 2, 0, 2, 4}));
  EXPECT_FALSE(bounded_by(square, Numbers{0, 1, 2, 0, 2, -1}));
  EXPECT_FALSE(bounded_by(square, Numbers{0, 1, 2, 0, 2}));
}

}  // namespace
