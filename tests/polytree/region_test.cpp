// What becomes of a triangulator's answer, with triangulators that misbehave.

#include "polytree/region.h"

#include <gtest/gtest.h>

#include <vector>

#include "polytree/rings.h"

namespace {

using kzgis::polytree::triangle_count;
using kzgis::polytree::triangulate_region;

int calls = 0;
bool fails = false;

/// Counts its calls, and fails if it is to, by doing nothing.
kz_long reluctant(kz_long contours, const kz_long* sizes, const double (*vertices)[2],
                  kz_long (*triangles)[3]) {
  ++calls;
  if (fails) return 0;
  return triangulate_polygon(contours, sizes, vertices, triangles);
}

/// Triangulates, and says that it failed.
kz_long pessimist(kz_long contours, const kz_long* sizes, const double (*vertices)[2],
                  kz_long (*triangles)[3]) {
  ++calls;
  triangulate_polygon(contours, sizes, vertices, triangles);
  return 1;
}

class RegionTest : public testing::Test {
 protected:
  /// A square with one hole as nodes of a tree, in the triangulator's orientation.
  RegionTest()
      : list(8, x, y),
        outer(list, 4, kOuter, 0.0, 0.0, 0.0, 0.0),
        inner(list, 4, kInner, 0.0, 0.0, 0.0, 0.0) {
    outer.InsertChild(inner);
    calls = 0;
    fails = false;
  }
  double area() {
    Rings rings;
    rings.x.assign(x, x + 8);
    rings.y.assign(y, y + 8);
    return twice_area(rings, {1, static_cast<kz_ulong>(corners.size()), corners});
  }

  static constexpr kz_ulong kOuter[] = {0, 1, 2, 3};
  static constexpr kz_ulong kInner[] = {4, 5, 6, 7};
  double x[8] = {1.0, 9.0, 8.0, 0.0, 3.0, 3.0, 6.0, 6.0};
  double y[8] = {0.0, 0.0, 9.0, 9.0, 3.0, 6.0, 6.0, 3.0};
  KZ_GIS_VertexList_c list;
  KZ_GIS_PolygonNode_c outer, inner;
  std::vector<kz_ulong> corners = std::vector<kz_ulong>(24, kUntouched);
};

TEST_F(RegionTest, CountsTriangles) {
  EXPECT_EQ(triangle_count(outer), 8);
  EXPECT_EQ(triangle_count(inner), 2);
  EXPECT_EQ(triangle_count(KZ_GIS_PolygonNode_c()), -2);
}

TEST_F(RegionTest, TakesTheFirstRightAnswer) {
  EXPECT_EQ(triangulate_region(outer, corners.data(), &reluctant), 1u);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(area(), 2 * (72.0 - 9.0));
}

TEST_F(RegionTest, SweepsWhereTheTriangulatorFails) {
  fails = true;
  EXPECT_EQ(triangulate_region(outer, corners.data(), &reluctant), 1u);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(area(), 2 * (72.0 - 9.0));
}

TEST_F(RegionTest, DoesNotUseAnAnswerThatWasReportedAsAFailure) {
  EXPECT_EQ(triangulate_region(outer, corners.data(), &pessimist), 1u);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(area(), 2 * (72.0 - 9.0));
}

TEST_F(RegionTest, RefusesAHoleThatRunsTheWrongWayAndWritesNothing) {
  inner.SwapVertexOrder();
  EXPECT_EQ(triangulate_region(outer, corners.data()), 2u);
  EXPECT_EQ(corners, std::vector<kz_ulong>(24, kUntouched));
  // Nor is a triangulator asked that might cover the hole twice.
  EXPECT_EQ(triangulate_region(outer, corners.data(), &reluctant), 2u);
  EXPECT_EQ(calls, 0);
}

TEST_F(RegionTest, FillsUpTheNumberWhereAHoleTouchesTheBoundary) {
  x[4] = 1.0;  // the hole's first vertex onto the boundary's first
  y[4] = 0.0;
  ASSERT_EQ(triangulate_region(outer, corners.data()), 1u);
  for (const kz_ulong corner : corners) EXPECT_LT(corner, 8u);
  // The hole is (1, 0), (3, 6), (6, 6), (6, 3) now.
  EXPECT_EQ(area(), 2 * (72.0 - 16.5));
}

TEST_F(RegionTest, RefusesAHoleOutsideTheBoundaryAndWritesNothing) {
  for (int i = 4; i < 8; ++i) x[i] += 100.0;
  EXPECT_EQ(triangulate_region(outer, corners.data()), 2u);
  EXPECT_EQ(corners, std::vector<kz_ulong>(24, kUntouched));
}

TEST_F(RegionTest, RefusesAHoleThatCrossesTheBoundaryAndWritesNothing) {
  x[6] = 20.0;
  EXPECT_EQ(triangulate_region(outer, corners.data()), 2u);
  EXPECT_EQ(corners, std::vector<kz_ulong>(24, kUntouched));
}

TEST_F(RegionTest, DoesNotAskAboutRingsOfFewerThanThreeVertices) {
  outer.SetVertices(2, kOuter);
  EXPECT_EQ(triangulate_region(outer, corners.data(), &reluctant), 2u);
  EXPECT_EQ(corners, std::vector<kz_ulong>(24, kUntouched));
  outer.SetVertices(4, kOuter);
  inner.SetVertices(2, kInner);
  EXPECT_EQ(triangle_count(outer), 6);
  EXPECT_EQ(triangulate_region(outer, corners.data(), &reluctant), 1u);
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(std::vector<kz_ulong>(corners.begin() + 18, corners.end()),
            std::vector<kz_ulong>(6, kUntouched));
  corners.resize(18);
  EXPECT_EQ(area(), 2 * 72.0);
}

TEST_F(RegionTest, OfTwoVerticesIsDoneWithoutAsking) {
  inner.SetVertices(2, kInner);
  EXPECT_EQ(triangle_count(inner), 0);
  EXPECT_EQ(triangulate_region(inner, nullptr, &reluctant), 1u);
  EXPECT_EQ(calls, 0);
}

}  // namespace
