// Diagonals, chains and the sweep.

#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

#include "kzgis/triangulate.h"
#include "triangulate/tiling.h"

namespace {

using kzgis::triangulation::Point;

double measure(Point p, Point q, Point r) { return angle_measure(&p, &q, &r); }

/// Tables with the chains of one contour, before any diagonal.
void make_chains(const std::vector<Point>& vertices) {
  const auto n = static_cast<kz_long>(vertices.size());
  ASSERT_EQ(initilize(n + 1), 0);
  for (kz_long i = 1; i <= n; ++i) {
    seg[i].start = vertices[static_cast<std::size_t>(i) - 1];
    seg[i].end = vertices[static_cast<std::size_t>(i % n)];
    seg[i].next_seg = i % n + 1;
    seg[i].prev_seg = (i + n - 2) % n + 1;
  }
  ASSERT_EQ(monotonate_trapezoids(n), 1);
}

Triangles as_list(const kz_long (*triangles)[3], kz_long count) {
  Triangles list;
  for (kz_long i = 0; i < count; ++i) {
    list.push_back({triangles[i][0], triangles[i][1], triangles[i][2]});
  }
  return list;
}

struct MonotonePieces : testing::Test {
  void TearDown() override { release_tables(); }
};

using MonotonateTrapezoids = MonotonePieces;
using SplitMonotonePolygon = MonotonePieces;
using VertexChainPositions = MonotonePieces;
using TriangulateMonotonePolygons = MonotonePieces;
using TriangulateMonotonePiece = MonotonePieces;

TEST(AngleMeasure, FallsFromOneToMinusThreeCounterClockwise) {
  const Point p{1, 1};
  const Point q{3, 1};
  EXPECT_EQ(measure(p, q, {2, 1}), 1.0);
  EXPECT_EQ(measure(p, q, {1, 5}), 0.0);
  EXPECT_EQ(measure(p, q, {0, 1}), -1.0);
  EXPECT_EQ(measure(p, q, {1, -5}), -2.0);
  EXPECT_DOUBLE_EQ(measure(p, q, {2, 2}), 0.70710678118654752);
  EXPECT_DOUBLE_EQ(measure(p, q, {0, 0}), -1.29289321881345248);
  EXPECT_DOUBLE_EQ(measure(p, q, {2, 0}), -2.70710678118654752);
}

TEST_F(MonotonateTrapezoids, StartsWithOneChainPerContour) {
  make_chains({{0, 0}, {4, 0}, {4, 4}});
  EXPECT_EQ(mon[0], 1);
  for (kz_long i = 1; i <= 3; ++i) {
    EXPECT_EQ(mchain[i].vertex_no, i);
    EXPECT_EQ(mchain[i].next_link, i % 3 + 1);
    EXPECT_EQ(mchain[i].prev_link, (i + 1) % 3 + 1);
    EXPECT_EQ(mchain[i].marked, 0);
    EXPECT_EQ(vert[i].point.x, seg[i].start.x);
    EXPECT_EQ(vert[i].point.y, seg[i].start.y);
    EXPECT_EQ(vert[i].next_vertex[0], i % 3 + 1);
    EXPECT_EQ(vert[i].next_vertex[1], 0);
    EXPECT_EQ(vert[i].chain_pos[0], i);
    EXPECT_EQ(vert[i].free_slot, 1);
  }
}

TEST_F(MonotonateTrapezoids, ClearsWhatTheLastOneLeft) {
  make_chains({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
  ASSERT_EQ(split_monotone_polygon(0, 1, 3), 1);
  ASSERT_EQ(monotonate_trapezoids(4), 1);
  EXPECT_EQ(mchain[5].vertex_no, 0);
  EXPECT_EQ(mchain[6].vertex_no, 0);
  EXPECT_EQ(mon[1], 0);
  EXPECT_EQ(vert[1].free_slot, 1);
}

TEST_F(MonotonateTrapezoids, GivesOnePieceForATriangle) {
  const kz_long counts[] = {3};
  const double vertices[][2] = {{0, 0}, {0, 0}, {7, 2}, {4, 8}};
  kz_long triangles[1][3];
  triangulate_polygon(1, counts, vertices, triangles);
  EXPECT_EQ(monotonate_trapezoids(3), 1);
  EXPECT_EQ(triangulate_monotone_polygons(3, 1, triangles), 1);
}

TEST_F(MonotonateTrapezoids, CutsAtEveryCusp) {
  // A W: one cusp from above inside, at (4, 3), and none from below.
  const kz_long counts[] = {5};
  const double vertices[][2] = {{0, 0}, {0, 0}, {4, 3}, {9, 1}, {7, 9}, {2, 8}};
  kz_long triangles[3][3];
  triangulate_polygon(1, counts, vertices, triangles);
  const kz_long pieces = monotonate_trapezoids(5);
  EXPECT_GE(pieces, 2);
  EXPECT_EQ(triangulate_monotone_polygons(5, pieces, triangles), 3);
}

TEST_F(SplitMonotonePolygon, DoublesBothEndsAndSplitsTheChain) {
  make_chains({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
  EXPECT_EQ(split_monotone_polygon(0, 1, 3), 1);

  // The old links of 1 and 3 are neighbours now, around 1 3 4 ...
  EXPECT_EQ(mchain[1].next_link, 3);
  EXPECT_EQ(mchain[3].prev_link, 1);
  EXPECT_EQ(mchain[3].next_link, 4);
  EXPECT_EQ(mchain[4].next_link, 1);
  // ... and the new ones, 5 and 6, around 1 2 3.
  EXPECT_EQ(mchain[5].vertex_no, 1);
  EXPECT_EQ(mchain[5].next_link, 2);
  EXPECT_EQ(mchain[5].prev_link, 6);
  EXPECT_EQ(mchain[2].prev_link, 5);
  EXPECT_EQ(mchain[2].next_link, 6);
  EXPECT_EQ(mchain[6].vertex_no, 3);
  EXPECT_EQ(mchain[6].next_link, 5);
  EXPECT_EQ(mchain[6].prev_link, 2);

  EXPECT_EQ(vert[1].next_vertex[0], 3);
  EXPECT_EQ(vert[1].next_vertex[1], 2);
  EXPECT_EQ(vert[1].chain_pos[1], 5);
  EXPECT_EQ(vert[1].free_slot, 2);
  EXPECT_EQ(vert[3].next_vertex[0], 4);
  EXPECT_EQ(vert[3].next_vertex[1], 1);
  EXPECT_EQ(vert[3].chain_pos[1], 6);
  EXPECT_EQ(vert[3].free_slot, 2);
  EXPECT_EQ(mon[0], 1);
  EXPECT_EQ(mon[1], 5);
}

TEST_F(SplitMonotonePolygon, RefusesAFifthChain) {
  make_chains({{0, 0}, {9, 0}, {8, 3}, {6, 6}, {3, 8}, {0, 9}});
  vert[1].free_slot = 4;
  EXPECT_EQ(split_monotone_polygon(0, 1, 3), -1);
  EXPECT_EQ(split_monotone_polygon(0, 3, 1), -1);
  EXPECT_EQ(vert[3].free_slot, 1);
  EXPECT_EQ(mchain[7].vertex_no, 0);
  EXPECT_EQ(split_monotone_polygon(0, 2, 4), 1);
}

TEST_F(SplitMonotonePolygon, RefusesWhatIsNoVertexOrNoPiece) {
  make_chains({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
  for (const kz_long v : {-1, 0, 5, 1000000}) {
    EXPECT_EQ(split_monotone_polygon(0, v, 2), -1) << v;
    EXPECT_EQ(split_monotone_polygon(0, 2, v), -1) << v;
  }
  EXPECT_EQ(split_monotone_polygon(0, 2, 2), -1);
  EXPECT_EQ(split_monotone_polygon(1, 1, 3), -1);
  EXPECT_EQ(split_monotone_polygon(-1, 1, 3), -1);
}

TEST_F(VertexChainPositions, TakesTheChainThatLeavesNextClockwise) {
  make_chains({{0, 0}, {9, 0}, {8, 3}, {6, 6}, {3, 8}, {0, 9}});
  // Three chains leave vertex 1: towards 2, 3 and 5.
  vert[1].next_vertex[1] = 3;
  vert[1].next_vertex[2] = 5;
  kz_long slot_a = -1;
  kz_long slot_b = -1;
  EXPECT_EQ(vertex_chain_positions(1, 4, &slot_a, &slot_b), 0);
  EXPECT_EQ(slot_a, 1);
  EXPECT_EQ(slot_b, 0);
  EXPECT_EQ(vertex_chain_positions(6, 1, &slot_a, &slot_b), 0);
  EXPECT_EQ(slot_a, 0);
  EXPECT_EQ(slot_b, 2);
}

TEST_F(VertexChainPositions, TellsDirectionsApartThatNoCosineCan) {
  // Towards vertices 2 and 3 it is 1e-9 rad from the way to 4, on the same side: both
  // cosines are 1.
  make_chains({{0, 0}, {1e9, 0}, {1e9, 1}, {1e9, 2}, {-1, 1}});
  ASSERT_EQ(measure(vert[1].point, vert[2].point, vert[4].point),
            measure(vert[1].point, vert[3].point, vert[4].point));
  vert[1].next_vertex[1] = 3;
  kz_long slot_a = -1;
  kz_long slot_b = -1;
  vertex_chain_positions(1, 4, &slot_a, &slot_b);
  EXPECT_EQ(slot_a, 1);
}

TEST_F(VertexChainPositions, AgreesWithTheAngleMeasure) {
  constexpr unsigned kSeed = 20240501;
  std::mt19937 random(kSeed);
  const auto coordinate = [&] { return static_cast<double>(random() % 201) - 100.0; };
  for (int round = 0; round < 20000; ++round) {
    std::vector<Point> points;
    for (int i = 0; i < 6; ++i) points.push_back({coordinate(), coordinate()});
    make_chains(points);
    for (kz_long slot = 0; slot < 4; ++slot) vert[1].next_vertex[slot] = slot + 2;
    kz_long expected = -1;
    double best = -4.0;
    double second = -4.0;
    for (kz_long slot = 0; slot < 4; ++slot) {
      const double value = measure(vert[1].point, vert[slot + 2].point, vert[6].point);
      if (value > best) {
        second = best;
        best = value;
        expected = slot;
      } else if (value > second) {
        second = value;
      }
    }
    // Directions so close that rounding ranks them are left to the orientation; so are
    // points that coincide.
    if (!(best - second > 1e-9)) continue;
    kz_long slot_a = -1;
    kz_long slot_b = -1;
    vertex_chain_positions(1, 6, &slot_a, &slot_b);
    ASSERT_EQ(slot_a, expected) << "seed " << kSeed << ", round " << round;
  }
}

TEST_F(TriangulateMonotonePolygons, WritesATriangleFromWhereTheWalkStopped) {
  make_chains({{0, 0}, {7, 2}, {4, 8}});
  kz_long triangles[1][3];
  EXPECT_EQ(triangulate_monotone_polygons(3, 1, triangles), 1);
  EXPECT_EQ(as_list(triangles, 1), (Triangles{{1, 2, 3}}));
}

TEST_F(TriangulateMonotonePolygons, DoesAPieceReachedTwiceOnce) {
  make_chains({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
  ASSERT_EQ(split_monotone_polygon(0, 1, 3), 1);
  mon[1] = 3;  // piece 0 once more
  kz_long triangles[2][3];
  EXPECT_EQ(triangulate_monotone_polygons(4, 2, triangles), 1);
}

TEST_F(TriangulateMonotonePolygons, EndsAtAPieceOfFewerThanThreeVertices) {
  make_chains({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
  ASSERT_EQ(split_monotone_polygon(0, 1, 2), 1);  // along an edge: a piece of two
  std::swap(mon[0], mon[1]);
  kz_long triangles[2][3];
  EXPECT_EQ(triangulate_monotone_polygons(4, 2, triangles), 0);
}

TEST_F(TriangulateMonotonePolygons, WritesNoMoreThanThePolygonHas) {
  make_chains({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
  ASSERT_EQ(split_monotone_polygon(0, 1, 3), 1);
  ASSERT_EQ(split_monotone_polygon(0, 2, 4), 2);
  // Damaged chains: three triangles in a polygon of two.
  for (kz_long piece = 0; piece < 3; ++piece) {
    for (kz_long k = 0; k < 3; ++k) {
      const kz_long first = 3 * piece + 1;
      mchain[first + k] = {k + 1, first + (k + 1) % 3, first + (k + 2) % 3, 0};
    }
    mon[piece] = 3 * piece + 1;
  }
  kz_long triangles[3][3] = {{-7, -7, -7}, {-7, -7, -7}, {-7, -7, -7}};
  EXPECT_EQ(triangulate_monotone_polygons(4, 3, triangles), 2);
  EXPECT_EQ(as_list(triangles, 3), (Triangles{{1, 2, 3}, {1, 2, 3}, {-7, -7, -7}}));
}

TEST_F(TriangulateMonotonePiece, SweepsAPieceWhoseLowestVertexFollowsTheHighest) {
  // All other vertices on the right of the edge from 4 down to 1.
  const IntPolygon piece{{{{0, 0}, {5, 3}, {6, 6}, {1, 9}}}, "right of an edge"};
  make_chains(piece.points());
  kz_long triangles[2][3];
  EXPECT_EQ(triangulate_monotone_piece(4, 4, 1, triangles), 0);
  EXPECT_EQ(as_list(triangles, 2), (Triangles{{1, 2, 3}, {1, 3, 4}}));
}

TEST_F(TriangulateMonotonePiece, SweepsAPieceWithALeftChain) {
  // All other vertices on the left of the edge from 1 up to 2.
  const IntPolygon piece{{{{0, 0}, {1, 9}, {-4, 6}, {-5, 3}}}, "left of an edge"};
  make_chains(piece.points());
  kz_long triangles[2][3];
  EXPECT_EQ(triangulate_monotone_piece(4, 2, 2, triangles), 0);
  EXPECT_EQ(as_list(triangles, 2), (Triangles{{2, 3, 4}, {2, 4, 1}}));
}

TEST_F(TriangulateMonotonePiece, WaitsWhereTheChainBendsAway) {
  const IntPolygon bent{{{{0, 0}, {9, 4}, {5, 6}, {2, 9}}}, "bent"};
  make_chains(bent.points());
  kz_long triangles[2][3];
  EXPECT_EQ(triangulate_monotone_piece(4, 4, 1, triangles), 0);
  EXPECT_EQ(flaw_of(bent, as_list(triangles, 2), 1), "");
}

TEST_F(TriangulateMonotonePiece, StopsAtTheEndOfAPieceThatIsNone) {
  make_chains({{0, 0}, {1, 9}, {5, 6}, {6, 3}});  // clockwise
  kz_long triangles[2][3] = {{-7, -7, -7}, {-7, -7, -7}};
  for (const kz_long side : {1, 2}) {
    for (const kz_long pos : {1, 2, 3, 4}) {
      EXPECT_EQ(triangulate_monotone_piece(4, pos, side, triangles), 0);
    }
  }
}

TEST_F(TriangulateMonotonePiece, TakesNForAnEndVertexZero) {
  make_chains({{0, 0}, {1, 9}, {-4, 6}, {-5, 3}});
  mchain[1].vertex_no = 0;  // before the highest vertex
  kz_long triangles[2][3] = {{-7, -7, -7}, {-7, -7, -7}};
  EXPECT_EQ(triangulate_monotone_piece(4, 2, 2, triangles), 0);
  EXPECT_EQ(as_list(triangles, 2), (Triangles{{2, 3, 4}, {-7, -7, -7}}));
}

TEST_F(TriangulateMonotonePiece, RefusesPlacesOutsideTheChains) {
  make_chains({{0, 0}, {7, 2}, {4, 8}, {1, 7}});
  kz_long triangles[2][3] = {{-7, -7, -7}, {-7, -7, -7}};
  for (const kz_long pos : {-1, 0, 5, 1000000}) {
    EXPECT_EQ(triangulate_monotone_piece(4, pos, 1, triangles), 0) << pos;
  }
  EXPECT_EQ(triangles[0][0], -7);
}

TEST_F(TriangulateMonotonePolygons, AConvexChainIsOnePiece) {
  std::mt19937_64 random(1);
  const IntPolygon polygon = convex(50, random);
  std::vector<double> xy(2);
  for (const Point& p : polygon.points()) xy.insert(xy.end(), {p.x, p.y});
  const kz_long counts[] = {50};
  kz_long triangles[48][3];
  triangulate_polygon(1, counts, reinterpret_cast<const double(*)[2]>(xy.data()), triangles);
  EXPECT_EQ(monotonate_trapezoids(50), 1);
  EXPECT_EQ(triangulate_monotone_polygons(50, 1, triangles), 48);
  EXPECT_EQ(flaw_of(polygon, as_list(triangles, 48), 1), "");
}

TEST_F(TriangulateMonotonePolygons, TakesPiecesMadeByHand) {
  // Two triangles, each a chain of three links of its own.
  ASSERT_EQ(initilize(7), 0);
  const double x[] = {0.0, 1.0, 0.0, 5.0, 6.0, 5.0};
  const double y[] = {0.0, 0.0, 1.0, 0.0, 0.0, 1.0};
  for (kz_long v = 1; v <= 6; ++v) {
    const kz_long first = v <= 3 ? 1 : 4;
    vert[v].point = {x[v - 1], y[v - 1]};
    mchain[v].vertex_no = v;
    mchain[v].next_link = first + (v - first + 1) % 3;
    mchain[v].prev_link = first + (v - first + 2) % 3;
  }
  mon[0] = 1;
  mon[1] = 4;
  kz_long triangles[4][3] = {};
  EXPECT_EQ(triangulate_monotone_polygons(6, 2, triangles), 2);
  // A chain that leaves the tables ends the cutting.
  for (kz_long v = 1; v <= 6; ++v) mchain[v].marked = 0;
  mchain[2].next_link = 1000000;
  EXPECT_EQ(triangulate_monotone_polygons(6, 2, triangles), 0);
  release_tables();
}

}  // namespace
