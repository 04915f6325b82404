#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <random>
#include <set>
#include <vector>

#include "kzgis/polytree.h"
#include "polytree/rings.h"
#include "support/capture.h"

namespace {

/// The smallest and largest index of a stretch of the triangles.
std::pair<kz_ulong, kz_ulong> range(const Triangulation& mesh, std::size_t from, std::size_t to) {
  const auto begin = mesh.indices.begin();
  const auto [low, high] = std::minmax_element(begin + static_cast<std::ptrdiff_t>(from),
                                               begin + static_cast<std::ptrdiff_t>(to));
  return {*low, *high};
}
using Range = std::pair<kz_ulong, kz_ulong>;

TEST(Triangulate, EmptyTreeTouchesNothing) {
  const Triangulation mesh = triangulate(KZ_GIS_PolygonTree_c(), 0);
  EXPECT_EQ(mesh.status, 1u);
  EXPECT_EQ(mesh.count, kUntouched);
}

TEST(Triangulate, NoRingsGiveNoTriangles) {
  const Triangulation mesh = triangulate(Rings{}.tree());
  EXPECT_EQ(mesh.status, 1u);
  EXPECT_EQ(mesh.count, 0u);
}

TEST(Triangulate, OneTriangleIsTurnedCounterClockwise) {
  const Rings rings{{{0.0, 0.0}, {0.0, 1.0}, {1.0, 0.0}}};
  const Triangulation mesh = triangulate(rings.tree());
  EXPECT_EQ(mesh.status, 1u);
  ASSERT_EQ(mesh.count, 3u);
  EXPECT_EQ(std::set<kz_ulong>(mesh.indices.begin(), mesh.indices.end()),
            (std::set<kz_ulong>{0, 1, 2}));
  EXPECT_EQ(twice_area(rings, mesh), 1.0);
}

TEST(Triangulate, Square) {
  for (const Points& square :
       {boundary(0.0, 0.0, 3.0, 2.0), closed(boundary(0.0, 0.0, 3.0, 2.0))}) {
    const Rings rings{square};
    const Triangulation mesh = triangulate(rings.tree());
    EXPECT_EQ(mesh.status, 1u);
    ASSERT_EQ(mesh.count, 6u);
    // A closing vertex, number 4, is never among them.
    EXPECT_EQ(std::set<kz_ulong>(mesh.indices.begin(), mesh.indices.end()),
              (std::set<kz_ulong>{0, 1, 2, 3}));
    EXPECT_EQ(twice_area(rings, mesh), 12.0);
  }
}

TEST(Triangulate, SquareWithAHoleInEitherOrder) {
  const Points square = boundary(0.0, 0.0, 9.0, 9.0);
  const Points in_it = hole(3.0, 3.0, 6.0, 6.0);
  for (const Rings& rings :
       {Rings{square, in_it}, Rings{in_it, square}, Rings{closed(in_it), closed(square)}}) {
    const Triangulation mesh = triangulate(rings.tree());
    EXPECT_EQ(mesh.status, 1u);
    EXPECT_EQ(mesh.count, 24u);
    EXPECT_EQ(twice_area(rings, mesh), 144.0);
  }
}

TEST(Triangulate, DisjointSquaresOneAfterTheOther) {
  const Rings rings{boundary(5.0, 0.0, 6.0, 1.0), boundary(0.0, 0.0, 2.0, 2.0)};
  const Triangulation mesh = triangulate(rings.tree());
  EXPECT_EQ(mesh.status, 1u);
  ASSERT_EQ(mesh.count, 12u);
  EXPECT_EQ(range(mesh, 0, 6), Range(0, 3));
  EXPECT_EQ(range(mesh, 6, 12), Range(4, 7));
  EXPECT_EQ(twice_area(rings, mesh), 10.0);
}

TEST(Triangulate, IslandsInAHoleComeBeforeTheBoundaryAround) {
  const Rings rings{boundary(0.0, 0.0, 19.0, 9.0), hole(1.0, 1.0, 18.0, 8.0),
                    boundary(2.0, 2.0, 7.0, 7.0), boundary(10.0, 2.0, 15.0, 7.0),
                    boundary(30.0, 0.0, 31.0, 1.0)};
  const Triangulation mesh = triangulate(rings.tree());
  EXPECT_EQ(mesh.status, 1u);
  ASSERT_EQ(mesh.count, 42u);
  EXPECT_EQ(range(mesh, 0, 6), Range(8, 11));
  EXPECT_EQ(range(mesh, 6, 12), Range(12, 15));
  EXPECT_EQ(range(mesh, 12, 36), Range(0, 7));
  EXPECT_EQ(range(mesh, 36, 42), Range(16, 19));
  // 171 - 119 + 25 + 25 + 1, doubled.
  EXPECT_EQ(twice_area(rings, mesh), 206.0);
}

TEST(Triangulate, SixRingsDeep) {
  Rings rings;
  double expected = 0.0;
  for (int i = 0; i < 6; ++i) {
    const double side = 2.0 * (10 - i);
    rings.add(i % 2 == 0 ? boundary(i, i, i + side, i + side) : hole(i, i, i + side, i + side));
    expected += (i % 2 == 0 ? 2.0 : -2.0) * side * side;
  }
  const Triangulation mesh = triangulate(rings.tree());
  EXPECT_EQ(mesh.status, 1u);
  EXPECT_EQ(mesh.count, 72u);
  EXPECT_EQ(twice_area(rings, mesh), expected);
}

TEST(Triangulate, RepeatedVerticesBecomeFlatTriangles) {
  // Also behind the first and before the closing vertex, and one that is there four times.
  const Rings rings{{{0.0, 0.0},
                     {0.0, 0.0},
                     {0.0, 9.0},
                     {9.0, 9.0},
                     {9.0, 9.0},
                     {9.0, 9.0},
                     {9.0, 9.0},
                     {9.0, 0.0},
                     {0.0, 0.0},
                     {0.0, 0.0}},
                    closed({{3.0, 3.0}, {6.0, 3.0}, {6.0, 6.0}, {3.0, 6.0}, {3.0, 6.0}})};
  const KZ_GIS_PolygonTree_c tree = rings.tree();
  EXPECT_EQ(connections(tree), 42u);
  const Triangulation mesh = triangulate(tree);
  EXPECT_EQ(mesh.status, 1u);
  ASSERT_EQ(mesh.count, 42u);
  EXPECT_EQ(twice_area(rings, mesh), 144.0);
  const std::set<kz_ulong> used(mesh.indices.begin(), mesh.indices.end());
  EXPECT_EQ(used, (std::set<kz_ulong>{0, 1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 12, 13, 14}));
}

TEST(Triangulate, SmallCoordinates) {
  // Closer than the tolerance of the classic triangulator.
  Rings rings{boundary(0.0, 0.0, 9.0, 9.0), hole(3.0, 3.0, 6.0, 6.0)};
  for (double& v : rings.x) v = std::ldexp(v, -40);
  for (double& v : rings.y) v = std::ldexp(v, -40);
  StderrCapture err;
  const Triangulation mesh = triangulate(rings.tree());
  EXPECT_EQ(mesh.status, 1u);
  EXPECT_EQ(mesh.count, 24u);
  EXPECT_EQ(twice_area(rings, mesh), std::ldexp(144.0, -80));
  EXPECT_EQ(err.text(), "");  // of the attempt that failed before, too
}

// What cannot be triangulated.

/// Expects status 2 with nothing written.
void expect_refused(const Rings& rings) {
  StderrCapture err;
  const Triangulation mesh = triangulate(rings.tree());
  EXPECT_EQ(mesh.status, 2u);
  EXPECT_EQ(mesh.count, 0u);
  EXPECT_EQ(err.text(), "");
}

TEST(TriangulateRefuses, WrongWinding) {
  expect_refused({hole(0.0, 0.0, 3.0, 2.0)});
  expect_refused({closed(hole(0.0, 0.0, 3.0, 2.0))});
  expect_refused({boundary(0.0, 0.0, 9.0, 9.0), boundary(3.0, 3.0, 6.0, 6.0)});
  expect_refused({hole(0.0, 0.0, 9.0, 9.0), boundary(3.0, 3.0, 6.0, 6.0)});
}

TEST(TriangulateRefuses, ALoopThatRunsTheWrongWayHoweverSmall) {
  // A square of 1e6 each way, and in its far corner a loop of an area of 1.5 that touches it.
  const double r = 1e6;
  expect_refused({{{0, 0}, {0, r}, {r, r}, {r + 2, r + 1}, {r + 1, r + 2}, {r, r}, {r, 0}}});
  const Rings right_way{{{0, 0}, {0, r}, {r, r}, {r + 1, r + 2}, {r + 2, r + 1}, {r, r}, {r, 0}}};
  const Triangulation mesh = triangulate(right_way.tree());
  EXPECT_EQ(mesh.status, 1u);
  EXPECT_EQ(twice_area(right_way, mesh), 2 * r * r + 3.0);
}

TEST(TriangulateRefuses, ABowTie) {
  expect_refused({{{0.0, 0.0}, {2.0, 2.0}, {2.0, 0.0}, {0.0, 2.0}}});
}

TEST(TriangulateRefuses, AHoleThatReachesOut) {
  expect_refused({boundary(0.0, 0.0, 9.0, 9.0), hole(3.0, 3.0, 12.0, 6.0)});
}

TEST(TriangulateRefuses, ASmallHoleThatReachesOutThroughVertices) {
  expect_refused({{{0, 0}, {0, 1e6}, {1e6, 1e6}, {1e6, 500001}, {1e6, 500000}, {1e6, 0}},
                  {{1e6, 500000}, {1e6 + 1, 500000.5}, {1e6, 500001}, {999999, 500000.5}}});
}

TEST(TriangulateRefuses, HolesThatOverlap) {
  // The second's first vertex lies outside the first, so that both are holes.
  expect_refused({boundary(0.0, 0.0, 19.0, 19.0),
                  hole(4.0, 4.0, 8.0, 8.0),
                  {{2.0, 2.0}, {6.0, 3.0}, {6.0, 6.0}, {3.0, 6.0}}});
}

// The hole's sides cross so often that one passes through a trapezoid that has been merged
// away, and overwrites the link by which it was to be found again.
TEST(TriangulateRefuses, AHoleThatComesBackToMergedTrapezoids) {
  expect_refused(
      {{{1, 1}, {14, 1}, {14, 14}, {1, 14}},
       {{10, 1}, {14, 4}, {1, 3},  {0, 3},  {15, 5}, {15, 5}, {3, 6},  {8, 7},  {8, 7},  {1, 6},
        {2, 6},  {9, 6},  {6, 7},  {13, 7}, {13, 7}, {13, 7}, {13, 7}, {13, 7}, {13, 7}, {13, 7},
        {13, 7}, {13, 7}, {13, 7}, {13, 7}, {13, 7}, {13, 7}, {10, 1}, {10, 1}, {10, 1}, {10, 1},
        {10, 1}, {10, 1}, {10, 1}, {13, 7}, {13, 7}, {13, 7}, {13, 7}, {13, 7}, {13, 7}, {1, 3},
        {2, 3},  {2, 3},  {9, 6},  {10, 1}, {10, 1}, {10, 1}, {10, 1}, {10, 1}, {10, 1}, {10, 1},
        {10, 1}, {10, 1}, {10, 1}, {10, 1}, {10, 1}, {10, 1}, {14, 4}, {1, 3},  {10, 1}, {10, 1},
        {10, 1}, {10, 1}, {10, 1}, {10, 1}, {10, 1}, {10, 1}, {10, 1}, {10, 1}, {10, 1}, {10, 1},
        {10, 1}, {1, 10}, {10, 1}, {10, 1}, {10, 1}, {10, 1}, {1, 1},  {3, 3},  {3, 4}}});
}

TEST(TriangulateRefuses, CoordinatesThatAreNoNumbers) {
  for (const double stray : {static_cast<double>(NAN), static_cast<double>(INFINITY)}) {
    expect_refused({{{0.0, 0.0}, {0.0, 1.0}, {stray, 1.0}, {1.0, 0.0}}});
    expect_refused({{{stray, stray}, {stray, 1.0}, {1.0, stray}}});
  }
}

TEST(TriangulateRefuses, RingsOfLessThanThreeDistinctVertices) {
  expect_refused({{{1.0, 1.0}, {2.0, 2.0}, {2.0, 2.0}}});
  expect_refused({{{1.0, 1.0}, {1.0, 1.0}, {1.0, 1.0}, {1.0, 1.0}, {1.0, 1.0}}});
}

TEST(TriangulateRefuses, HolesThatCameBeforeTheirBoundary) {
  // One of them is left outside as a boundary, and turns the wrong way.
  expect_refused(
      {hole(1.0, 1.0, 2.0, 2.0), hole(3.0, 3.0, 4.0, 4.0), boundary(0.0, 0.0, 9.0, 9.0)});
}

TEST(TriangulateRefuses, ToWriteWhereTheAnnouncedCountWrapped) {
  const Points square = boundary(5.0, 5.0, 6.0, 6.0);
  // A ring of one vertex takes 6 from the announced count, of two equal ones 3.
  for (const Points& nothing : {Points{{1.0, 1.0}}, Points{{1.0, 1.0}, {1.0, 1.0}}}) {
    for (const Rings& rings : {Rings{nothing}, Rings{nothing, square}, Rings{square, nothing},
                               Rings{square, nothing, nothing, boundary(8.0, 8.0, 9.0, 9.0)}}) {
      const Triangulation mesh = triangulate(rings.tree(), 0);
      EXPECT_EQ(mesh.status, 2u);
      EXPECT_EQ(mesh.count, 0u);
    }
  }
}

TEST(Triangulate, TwoVerticesHaveNoTriangles) {
  const Rings rings{{{1.0, 1.0}, {2.0, 2.0}}, boundary(5.0, 5.0, 6.0, 6.0)};
  const Triangulation mesh = triangulate(rings.tree());
  EXPECT_EQ(mesh.status, 1u);
  EXPECT_EQ(mesh.count, 6u);
}

TEST(Triangulate, AHoleBehindOneWithoutAnInsideIsTaken) {
  const Rings rings{
      boundary(0.0, 0.0, 9.0, 9.0), {{1.0, 1.0}, {2.0, 2.0}, {2.0, 2.0}}, hole(3.0, 3.0, 6.0, 6.0)};
  const Triangulation mesh = triangulate(rings.tree());
  EXPECT_EQ(mesh.status, 1u);
  EXPECT_EQ(twice_area(rings, mesh), 144.0);
}

TEST(Triangulate, ABoundaryWithoutAnInsideHasFlatTriangles) {
  const Points flat[] = {{{0.0, 0.0}, {1.0, 1.0}, {4.0, 4.0}},
                         {{0.0, 3.0}, {3.0, 3.0}, {1.0, 3.0}, {2.0, 3.0}, {1.0, 3.0}},
                         {{0.0, 0.0}, {5.0, 5.0}, {0.0, 0.0}, {5.0, 0.0}}};
  for (const Points& ring : flat) {
    const Rings rings{ring};
    const Triangulation mesh = triangulate(rings.tree());
    EXPECT_EQ(mesh.status, 1u);
    EXPECT_EQ(mesh.count, 3 * (ring.size() - 2));
    EXPECT_EQ(twice_area(rings, mesh), 0.0);
  }
}

TEST(Triangulate, AHoleWithoutAnInsideTakesNothing) {
  const Points square = boundary(0.0, 0.0, 9.0, 9.0);
  const Points nothings[] = {{{3.0, 3.0}, {3.0, 3.0}},
                             {{3.0, 3.0}, {4.0, 4.0}},
                             {{3.0, 3.0}, {4.0, 4.0}, {3.0, 3.0}},
                             {{3.0, 3.0}, {3.0, 3.0}, {3.0, 3.0}},
                             {{3.0, 3.0}, {4.0, 4.0}, {5.0, 5.0}},
                             {{3.0, 3.0}, {4.0, 4.0}, {4.0, 4.0}, {3.0, 3.0}, {4.0, 4.0}}};
  // How many indices are announced: 3 (V + 2 h - 2), a vertex at the end that closes a ring
  // not counted.
  const kz_ulong announced[] = {15, 18, 18, 18, 21, 27};
  for (std::size_t i = 0; i < std::size(nothings); ++i) {
    SCOPED_TRACE(i);
    StderrCapture err;
    const Rings rings{square, nothings[i]};
    const Triangulation mesh = triangulate(rings.tree());
    EXPECT_EQ(mesh.status, 1u);
    EXPECT_EQ(mesh.count, announced[i]);
    EXPECT_EQ(twice_area(rings, mesh), 162.0);

    const Rings with_another{square, hole(1.0, 1.0, 2.0, 2.0), nothings[i]};
    const Triangulation holed = triangulate(with_another.tree());
    EXPECT_EQ(holed.status, 1u);
    EXPECT_EQ(holed.count, announced[i] + 18u);
    EXPECT_EQ(twice_area(with_another, holed), 160.0);
  }
}

TEST(Triangulate, AFailureLeavesTheBoundariesBeforeIt) {
  const Rings rings{boundary(0.0, 0.0, 1.0, 1.0), hole(5.0, 5.0, 6.0, 6.0),
                    boundary(8.0, 8.0, 9.0, 9.0)};
  StderrCapture err;
  const Triangulation mesh = triangulate(rings.tree());
  EXPECT_EQ(mesh.status, 2u);
  EXPECT_EQ(mesh.count, 6u);
  EXPECT_EQ(twice_area(rings, mesh), 2.0);
}

// Depth.

/// Squares one inside the other, innermost first, filled and hole by turns.
Rings deep_rings(int depth) {
  Rings rings;
  for (int level = depth; level >= 1; --level) {
    const double r = depth + 1 - level;
    rings.add(level % 2 == 1 ? boundary(-r, -r, r, r) : hole(-r, -r, r, r));
  }
  return rings;
}

TEST(PolygonTree, AHundredThousandDeep) {
  const int depth = 100000;
  const Rings rings = deep_rings(depth);
  const KZ_GIS_PolygonTree_c tree = rings.tree();
  ASSERT_EQ(connections(tree), 1200000u);  // 50000 boundaries with one hole, 8 triangles each
  const KZ_GIS_PolygonTree_c copy(tree);
  const Triangulation mesh = triangulate(copy);
  ASSERT_EQ(mesh.status, 1u);
  ASSERT_EQ(mesh.count, 1200000u);
  // The sum of 4 (r^2 - (r - 1)^2) for r = 2, 4, ..., depth, doubled: 8 (2r - 1) each.
  const double half = depth / 2;
  EXPECT_EQ(twice_area(rings, mesh), 16.0 * half * (half + 1) - 8.0 * half);
  // Innermost first.
  EXPECT_EQ(range(mesh, 0, 24), Range(0, 7));
  EXPECT_EQ(range(mesh, 1200000 - 24, 1200000), Range(399992, 399999));
}

/// Squares around the origin, the i-th of them at the level `levels[i]` from the outermost.
Rings squares_in_each_other(const std::vector<int>& levels) {
  Rings rings;
  const auto depth = static_cast<int>(levels.size());
  for (const int level : levels) {
    const double r = depth - level;
    rings.add(level % 2 == 0 ? boundary(-r, -r, r, r) : hole(-r, -r, r, r));
  }
  return rings;
}

constexpr int kDepth = 100000;

TEST(PolygonTree, DeepFromTheOutsideIn) {
  std::vector<int> levels(kDepth);
  std::iota(levels.begin(), levels.end(), 0);
  const Rings rings = squares_in_each_other(levels);
  const KZ_GIS_PolygonTree_c tree = rings.tree();
  EXPECT_EQ(connections(tree), 1200000u);
  const Triangulation mesh = triangulate(tree);
  EXPECT_EQ(mesh.status, 1u);
  EXPECT_EQ(range(mesh, 0, 24), Range(4 * 99998, 4 * 99999 + 3));
}

TEST(PolygonTree, DeepFromBothEndsInTurn) {
  std::vector<int> levels(kDepth);
  for (int i = 0; i < kDepth; ++i) {
    levels[static_cast<std::size_t>(i)] = i % 2 == 0 ? i / 2 : kDepth - 1 - i / 2;
  }
  EXPECT_EQ(connections(squares_in_each_other(levels).tree()), 1200000u);
}

TEST(PolygonTree, DeepFromTheMiddleInAndOut) {
  std::vector<int> levels(kDepth);
  for (int i = 0; i < kDepth; ++i) {
    levels[static_cast<std::size_t>(i)] = kDepth / 2 + (i % 2 == 0 ? i / 2 : -1 - i / 2);
  }
  EXPECT_EQ(connections(squares_in_each_other(levels).tree()), 1200000u);
}

TEST(PolygonTree, DeepInAnyOrder) {
  std::vector<int> levels(kDepth);
  std::iota(levels.begin(), levels.end(), 0);
  std::mt19937_64 random(68);
  std::shuffle(levels.begin(), levels.end(), random);
  EXPECT_EQ(connections(squares_in_each_other(levels).tree()), 1200000u);
}

TEST(PolygonTree, DeepWithASecondChildOnEveryLevelThatComesLate) {
  // They cut the row of rings one by one, from the outermost in.
  Rings rings;
  for (int level = 0; level < 2 * kDepth / 10; ++level) {
    const double r = 10.0 * (2 * kDepth - level);
    rings.add(boundary(-r, -r, r, r));
  }
  const kz_ulong before = connections(rings.tree());
  EXPECT_EQ(before, 240000u);
  for (int level = 0; level < 50; ++level) {
    const double r = 10.0 * (2 * kDepth - level);
    rings.add(hole(r - 3.0, 0.0, r - 2.0, 1.0));
  }
  // Twenty-five more holes, and as many boundaries inside holes.
  EXPECT_EQ(connections(rings.tree()), before + 25u * 18u + 25u * 6u);
}

TEST(PolygonTree, AHundredThousandSideBySide) {
  Rings rings;
  for (int i = 0; i < 100000; ++i) {
    const double x = 3.0 * (i % 317);
    const double y = 3.0 * (i / 317);
    rings.add(hole(x + 1.0, y + 1.0, x + 2.0, y + 2.0));
  }
  EXPECT_EQ(connections(rings.tree()), 600000u);
}

TEST(PolygonTree, AHundredThousandInOne) {
  Rings rings{boundary(0.0, 0.0, 1000.0, 1000.0)};
  for (int i = 0; i < 100000; ++i) {
    const double x = 3.0 * (i % 317);
    const double y = 3.0 * (i / 317);
    rings.add(hole(x + 1.0, y + 1.0, x + 2.0, y + 2.0));
  }
  // V + 2 (h - 1), V with the boundary's own four.
  EXPECT_EQ(connections(rings.tree()), 3u * (400004u + 2u * 99999u));
}

// Properties.

/// A ring around (cx, cy) whose vertices lie at whole coordinates within r, clockwise, and
/// star-shaped: simple.
Points star(std::mt19937_64& random, double cx, double cy, double r, int vertices) {
  Points ring;
  std::uniform_real_distribution<double> reach(0.5, 1.0);
  for (int i = 0; i < vertices; ++i) {
    const double angle = -2.0 * 3.14159265358979 * i / vertices;
    const double length = r * reach(random);
    ring.emplace_back(std::round(cx + length * std::cos(angle)),
                      std::round(cy + length * std::sin(angle)));
  }
  return ring;
}

/// Twice the signed area of a ring, clockwise positive; exact for whole coordinates.
double twice_clockwise_area(const Points& ring) {
  double sum = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const auto& [ax, ay] = ring[i];
    const auto& [bx, by] = ring[(i + 1) % ring.size()];
    sum += ay * bx - ax * by;
  }
  return sum;
}

double twice_clockwise_area(const Rings& rings) {
  double sum = 0.0;
  for (std::size_t p = 0; p < rings.starts.size(); ++p) {
    const std::size_t end = p + 1 < rings.starts.size() ? rings.starts[p + 1] : rings.x.size();
    Points ring;
    for (std::size_t i = rings.starts[p]; i < end; ++i) ring.emplace_back(rings.x[i], rings.y[i]);
    sum += twice_clockwise_area(ring);
  }
  return sum;
}

TEST(Triangulate, TilesStarsWithinStars) {
  constexpr std::uint64_t kSeed = 6464;
  std::mt19937_64 random(kSeed);
  for (int run = 0; run < 150; ++run) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " run " << run);
    // A star of 8 vertices or more keeps clear of 0.46 times its radius.
    std::vector<Points> parts;
    double expected = 0.0;
    kz_ulong expected_count = 0;
    const int columns = 1 + static_cast<int>(random() % 4);
    for (int c = 0; c < columns; ++c) {
      double radius = 1e6;
      const int levels = 1 + static_cast<int>(random() % 5);
      for (int level = 1; level <= levels; ++level, radius *= 0.4) {
        Points ring = star(random, 3e6 * c, 1e5 * c, radius, 8 + static_cast<int>(random() % 60));
        const double area = twice_clockwise_area(ring);
        const auto vertices = static_cast<kz_ulong>(ring.size());
        if (level % 2 == 1) {
          expected += area;
          expected_count += 3 * (vertices - 2);
        } else {
          expected -= area;
          expected_count += 3 * (vertices + 2);
          std::reverse(ring.begin(), ring.end());
        }
        parts.push_back(random() % 2 == 0 ? ring : closed(ring));
      }
    }
    Rings rings;
    for (const Points& part : parts) rings.add(part);
    const KZ_GIS_PolygonTree_c tree = rings.tree();
    ASSERT_EQ(connections(tree), expected_count);
    const Triangulation mesh = triangulate(tree);
    ASSERT_EQ(mesh.status, 1u);
    ASSERT_EQ(mesh.count, expected_count);
    ASSERT_EQ(twice_area(rings, mesh), expected);
  }
}

TEST(Triangulate, NeverLiesAboutWhatIsNoPolygon) {
  constexpr std::uint64_t kSeed = 6465;
  std::mt19937_64 random(kSeed);
  std::uniform_int_distribution<int> at(0, 12);
  StderrCapture err;
  int done = 0;
  for (int run = 0; run < 3000; ++run) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " run " << run);
    Rings rings;
    const int count = 1 + static_cast<int>(random() % 4);
    for (int r = 0; r < count; ++r) {
      Points ring;
      const int vertices = static_cast<int>(random() % 9);
      for (int v = 0; v < vertices; ++v) ring.emplace_back(at(random), at(random));
      rings.add(ring);
    }
    if (run % 3 == 0) {
      for (kz_ulong& start : rings.starts) start += static_cast<kz_ulong>(random() % 3);
    }
    const KZ_GIS_PolygonTree_c tree = rings.tree();
    const kz_ulong announced = connections(tree);
    if (announced == kUntouched) continue;  // the starts did not fit
    const Triangulation mesh = triangulate(tree, announced < 10000 ? announced : 0);
    ASSERT_TRUE(mesh.status == 1 || mesh.status == 2);
    ASSERT_GE(twice_area(rings, mesh), 0.0);
    if (mesh.status == 1) {
      ++done;
      ASSERT_EQ(mesh.count, announced);
      ASSERT_EQ(twice_area(rings, mesh), twice_clockwise_area(rings));
    }
  }
  EXPECT_GT(done, 50);
}

}  // namespace
