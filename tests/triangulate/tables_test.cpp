// Sizes, order of points, insertion order and phases, segments from contours.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <numeric>
#include <vector>

#include "kzgis/triangulate.h"
#include "support/capture.h"

namespace {

using kzgis::triangulation::Point;

constexpr kz_long kNoNumber = std::numeric_limits<kz_long>::min();

TEST(Initilize, SetsTheSizes) {
  EXPECT_EQ(initilize(5), 0);
  EXPECT_EQ(SEGSIZE, 5);
  EXPECT_EQ(QSIZE, 50);
  EXPECT_EQ(TRSIZE, 30);
  release_tables();
}

TEST(Initilize, AllocatesEveryTable) {
  ASSERT_EQ(initilize(5), 0);
  for (const void* table :
       {static_cast<void*>(seg), static_cast<void*>(qs), static_cast<void*>(tr),
        static_cast<void*>(permute), static_cast<void*>(mchain), static_cast<void*>(vert),
        static_cast<void*>(mon), static_cast<void*>(visited)}) {
    EXPECT_NE(table, nullptr);
  }
  // The last record of each may be written.
  seg[4].next_seg = 1;
  qs[49].kind = 1;
  tr[29].status = 1;
  permute[4] = 1;
  mchain[29].marked = 1;
  vert[4].free_slot = 1;
  mon[9] = 1;
  visited[29] = 1;
  release_tables();
}

TEST(Initilize, RefusesANegativeSize) {
  StderrCapture err;
  EXPECT_EQ(initilize(-1), 1);
  EXPECT_EQ(err.text(), "initilize:  Error allocating space for seg\n");
  EXPECT_EQ(seg, nullptr);
}

TEST(Initilize, NeedsNoReleaseBetweenTwoCalls) {
  EXPECT_EQ(initilize(100), 0);
  EXPECT_EQ(initilize(3), 0);
  EXPECT_EQ(SEGSIZE, 3);
  release_tables();
}

TEST(ReleaseTables, AnswersZeroAndMayBeRepeated) {
  ASSERT_EQ(initilize(5), 0);
  EXPECT_EQ(release_tables(), 0);
  EXPECT_EQ(release_tables(), 0);
}

TEST(ReleaseTables, LeavesThePointersAndSizes) {
  ASSERT_EQ(initilize(5), 0);
  const auto before = reinterpret_cast<std::uintptr_t>(seg);
  release_tables();
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(seg), before);
  EXPECT_EQ(SEGSIZE, 5);
}

TEST(ReleaseTables, LeavesNothingToWorkOn) {
  ASSERT_EQ(initilize(5), 0);
  release_tables();
  StderrCapture err;
  const Point point{0, 0};
  const double inside[2] = {0, 0};
  kz_long triangle[1][3];
  kz_long slot = 7;
  EXPECT_EQ(choose_segment(), 0);
  EXPECT_EQ(generate_random_ordering(4), 0);
  EXPECT_EQ(construct_trapezoids(4), 0);
  EXPECT_EQ(create_initial_structure(1), 0);
  EXPECT_EQ(add_segment(1), 0);
  EXPECT_EQ(is_left_of_segment(1, &point), 0);
  EXPECT_EQ(merge_trapezoid_run(1, 1, 2, 1), 0);
  refresh_segment_roots(1);
  EXPECT_EQ(traverse_trapezoids(0, 1, 2, 1), 0);
  EXPECT_EQ(split_monotone_polygon(0, 1, 2), -1);
  EXPECT_EQ(vertex_chain_positions(1, 2, &slot, &slot), 0);
  EXPECT_EQ(slot, 7);
  EXPECT_EQ(monotonate_trapezoids(4), 1);
  EXPECT_EQ(triangulate_monotone_polygons(4, 1, triangle), 0);
  EXPECT_EQ(triangulate_monotone_piece(4, 1, 1, triangle), 0);
  EXPECT_EQ(is_point_inside_polygon(inside), 0);
  EXPECT_EQ(err.text(), "");
  EXPECT_EQ(newnode(), -1);
  EXPECT_EQ(newtrap(), -1);
  EXPECT_EQ(locate_endpoint(&point, &point, 1), 12);
  EXPECT_EQ(err.text(),
            "newnode: Query-table overflow\nnewtrap: Trapezoid-table overflow\nHaggu !!!!!\n");
}

/// Triangulates an octagon: merging gives query nodes back, which are linked in the table.
void leave_orphans() {
  const double octagon[9][2] = {{0, 0}, {3, 0}, {6, 1},  {8, 4}, {7, 7},
                                {4, 9}, {1, 8}, {-1, 5}, {-2, 2}};
  const kz_long count = 8;
  kz_long triangles[6][3];
  triangulate_polygon(1, &count, octagon, triangles);
}

// What was given back belongs to the tables, and is gone with them.
TEST(OrphanedNodes, AreGoneWithReleasedTables) {
  leave_orphans();
  release_tables();
  StderrCapture err;
  EXPECT_EQ(newnode(), -1);
  EXPECT_EQ(err.text(), "newnode: Query-table overflow\n");
}

TEST(OrphanedNodes, EndWhereACallerHasOverwrittenTheLinks) {
  leave_orphans();
  for (kz_long i = 1; i < QSIZE; ++i) qs[i].left_child = 1 << 30;
  StderrCapture err;
  int handed_out = 0;
  while (newnode() > 0) ASSERT_LT(++handed_out, QSIZE);
  EXPECT_EQ(err.text(), "newnode: Query-table overflow\n");
  release_tables();
}

TEST(EqualTo, AllowsTheToleranceInBothCoordinates) {
  const Point origin{0, 0};
  for (const auto& [point, equal] : {std::pair{Point{5.0e-8, -5.0e-8}, 1},
                                     {Point{1.0e-7, -1.0e-7}, 1},
                                     {Point{1.1e-7, 0}, 0},
                                     {Point{0, -1.1e-7}, 0}}) {
    EXPECT_EQ(_equal_to(&origin, &point), equal) << point.x << ' ' << point.y;
    EXPECT_EQ(_equal_to(&point, &origin), equal) << point.x << ' ' << point.y;
  }
}

TEST(PointOrder, HeightDecidesBeyondTheTolerance) {
  const Point high{-5, 2.0e-7};
  const Point low{5, 0};
  EXPECT_EQ(_greater_than(&high, &low), 1);
  EXPECT_EQ(_greater_than(&low, &high), 0);
  EXPECT_EQ(_greater_than_equal_to(&high, &low), 1);
  EXPECT_EQ(_greater_than_equal_to(&low, &high), 0);
  EXPECT_EQ(_less_than(&high, &low), 0);
  EXPECT_EQ(_less_than(&low, &high), 1);
}

TEST(PointOrder, XDecidesWithinTheToleranceExactly) {
  const Point right{1.0e-9, 0};
  const Point left{0, 5.0e-8};
  EXPECT_EQ(_greater_than(&right, &left), 1);
  EXPECT_EQ(_greater_than(&left, &right), 0);
  EXPECT_EQ(_greater_than_equal_to(&right, &left), 1);
  EXPECT_EQ(_greater_than_equal_to(&left, &right), 0);
  EXPECT_EQ(_less_than(&right, &left), 0);
  EXPECT_EQ(_less_than(&left, &right), 1);
}

TEST(PointOrder, AnUnlevelTieInXIsNoneInHeight) {
  const Point a{1, 5.0e-8};
  const Point b{1, 0};
  EXPECT_EQ(_greater_than(&a, &b), 0);
  EXPECT_EQ(_less_than(&a, &b), 0);
  EXPECT_EQ(_greater_than_equal_to(&a, &b), 1);
  EXPECT_EQ(_greater_than_equal_to(&b, &a), 1);
}

TEST(PointOrder, NumbersThatAreNoneNeverCompare) {
  const Point nan{std::nan(""), std::nan("")};
  const Point origin{0, 0};
  EXPECT_EQ(_equal_to(&nan, &origin), 0);
  EXPECT_EQ(_greater_than(&nan, &origin), 0);
  EXPECT_EQ(_greater_than_equal_to(&nan, &origin), 0);
  EXPECT_EQ(_less_than(&nan, &origin), 0);
}

TEST(GenerateRandomOrdering, GivesAPermutation) {
  for (const kz_long n : {1, 2, 3, 10, 1000, 40000}) {
    ASSERT_EQ(initilize(n + 1), 0);
    ASSERT_EQ(generate_random_ordering(n), 0);
    std::vector<kz_long> order(permute + 1, permute + n + 1);
    std::sort(order.begin(), order.end());
    std::vector<kz_long> all(static_cast<std::size_t>(n));
    std::iota(all.begin(), all.end(), 1);
    EXPECT_EQ(order, all);
  }
  release_tables();
}

TEST(GenerateRandomOrdering, DrawsFromRandSeededByTheClock) {
  ASSERT_EQ(initilize(101), 0);
  // Should the second change between the two readings, the next round meets it.
  for (int round = 0; round < 3; ++round) {
    const auto seed = static_cast<unsigned>(std::time(nullptr));
    generate_random_ordering(100);
    std::srand(seed);
    std::vector<kz_long> left(100);
    std::iota(left.begin(), left.end(), 1);
    std::vector<kz_long> expected;
    while (!left.empty()) {
      const auto m = static_cast<std::size_t>(std::rand()) % left.size();
      expected.push_back(left[m]);
      left[m] = left.front();
      left.erase(left.begin());
    }
    if (expected == std::vector<kz_long>(permute + 1, permute + 101)) {
      release_tables();
      return;
    }
  }
  FAIL() << "three orders, and none is the one that the clock gives";
}

TEST(ChooseSegment, HandsTheOrderOutOneByOne) {
  ASSERT_EQ(initilize(4), 0);
  ASSERT_EQ(generate_random_ordering(3), 0);
  permute[1] = 3;
  permute[2] = 1;
  permute[3] = 2;
  EXPECT_EQ(choose_segment(), 3);
  EXPECT_EQ(choose_segment(), 1);
  EXPECT_EQ(choose_segment(), 2);
  EXPECT_EQ(choose_segment(), 0);
  ASSERT_EQ(generate_random_ordering(3), 0);
  EXPECT_EQ(choose_segment(), permute[1]);
  release_tables();
}

TEST(MathLogstarN, CountsTheBinaryExponents) {
  EXPECT_EQ(math_logstar_n(-5), -1);
  EXPECT_EQ(math_logstar_n(0), -1);
  EXPECT_EQ(math_logstar_n(1), 0);
  EXPECT_EQ(math_logstar_n(2), 1);
  EXPECT_EQ(math_logstar_n(3), 1);
  EXPECT_EQ(math_logstar_n(4), 2);
  EXPECT_EQ(math_logstar_n(15), 2);
  EXPECT_EQ(math_logstar_n(16), 3);
  EXPECT_EQ(math_logstar_n(65535), 3);
  EXPECT_EQ(math_logstar_n(65536), 4);
  EXPECT_EQ(math_logstar_n(2147483647), 3 + 1);
}

TEST(MathN, DividesByTheRepeatedExponent) {
  EXPECT_EQ(math_N(10, -1), 1);
  EXPECT_EQ(math_N(10, 0), 1);
  EXPECT_EQ(math_N(10, 1), 4);
  EXPECT_EQ(math_N(10, 2), 10);
  EXPECT_EQ(math_N(3, 1), 3);
  EXPECT_EQ(math_N(1000, 1), 112);  // 1000 / 9
  EXPECT_EQ(math_N(1000, 2), 334);  // 1000 / 3
  EXPECT_EQ(math_N(1000, 3), 1000);
}

TEST(MathN, HasNoNumberWhereTheExponentIsZero) {
  EXPECT_EQ(math_N(1, 1), kNoNumber);
  EXPECT_EQ(math_N(10, 3), kNoNumber);
  EXPECT_EQ(math_N(0, 0), kNoNumber);
  // Past zero come minus infinity, which gives -0, and infinity for good.
  EXPECT_EQ(math_N(10, 4), 0);
  EXPECT_EQ(math_N(10, 5), 0);
  EXPECT_EQ(math_N(10, 2147483647), 0);
}

TEST(PrintError, FormatsToStandardError) {
  StderrCapture err;
  EXPECT_EQ(print_error("%s %d\n", "segment", 42), 11);
  EXPECT_EQ(print_error("plain"), 5);
  EXPECT_EQ(err.text(), "segment 42\nplain");
}

TEST(SegmentsFromContours, LinkEveryContourIntoARing) {
  const kz_long counts[] = {4, 3};
  const double vertices[][2] = {{9, 9}, {0, 0}, {8, 0}, {8, 8}, {0, 8}, {2, 2}, {2, 4}, {4, 2}};
  kz_long triangles[7][3];
  ASSERT_EQ(triangulate_polygon(2, counts, vertices, triangles), 0);
  EXPECT_EQ(SEGSIZE, 8);
  const kz_long next[] = {0, 2, 3, 4, 1, 6, 7, 5};
  const kz_long prev[] = {0, 4, 1, 2, 3, 7, 5, 6};
  for (kz_long i = 1; i <= 7; ++i) {
    EXPECT_EQ(seg[i].start.x, vertices[i][0]) << i;
    EXPECT_EQ(seg[i].start.y, vertices[i][1]) << i;
    EXPECT_EQ(seg[i].next_seg, next[i]) << i;
    EXPECT_EQ(seg[i].prev_seg, prev[i]) << i;
    EXPECT_EQ(seg[i].end.x, vertices[next[i]][0]) << i;
    EXPECT_EQ(seg[i].end.y, vertices[next[i]][1]) << i;
    EXPECT_EQ(seg[i].inserted, 1) << i;
  }
  release_tables();
}

TEST(SegmentsFromContours, AContourOfOneVertexIsItsOwnNext) {
  const kz_long counts[] = {3, 1};
  const double vertices[][2] = {{9, 9}, {0, 0}, {8, 0}, {0, 8}, {2, 2}};
  kz_long triangles[4][3];
  StderrCapture err;
  ASSERT_EQ(triangulate_polygon(2, counts, vertices, triangles), 0);
  EXPECT_EQ(seg[4].next_seg, 4);
  EXPECT_EQ(seg[4].prev_seg, 3);
  EXPECT_EQ(seg[3].end.x, 2);
  EXPECT_EQ(seg[3].end.y, 2);
  release_tables();
}

TEST(SegmentsFromContours, AContourOfTwoVerticesGoesThereAndBack) {
  const kz_long counts[] = {2};
  const double vertices[][2] = {{9, 9}, {0, 0}, {8, 0}};
  kz_long triangles[1][3];
  StderrCapture err;
  ASSERT_EQ(triangulate_polygon(1, counts, vertices, triangles), 0);
  EXPECT_EQ(seg[1].next_seg, 2);
  EXPECT_EQ(seg[1].prev_seg, 2);
  EXPECT_EQ(seg[2].next_seg, 1);
  EXPECT_EQ(seg[2].prev_seg, 1);
  release_tables();
}

}  // namespace
