// The map of trapezoids: its first four, the search, and what each segment adds.

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "kzgis/triangulate.h"
#include "support/capture.h"

namespace {

using kzgis::triangulation::Point;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Tables that hold one contour, inserted in the order of its vertices.
void make_contour(const std::vector<Point>& vertices) {
  const auto n = static_cast<kz_long>(vertices.size());
  ASSERT_EQ(initilize(n + 1), 0);
  ASSERT_EQ(generate_random_ordering(n), 0);
  for (kz_long i = 1; i <= n; ++i) {
    permute[i] = i;
    seg[i].start = vertices[static_cast<std::size_t>(i) - 1];
    seg[i].end = vertices[static_cast<std::size_t>(i % n)];
    seg[i].next_seg = i % n + 1;
    seg[i].prev_seg = (i + n - 2) % n + 1;
    seg[i].start_root = seg[i].end_root = 1;
  }
}

void expect_point(const Point& point, double x, double y) {
  EXPECT_EQ(point.x, x);
  EXPECT_EQ(point.y, y);
}

kz_long locate(Point v, Point toward, kz_long root = 1) {
  return locate_endpoint(&v, &toward, root);
}

bool left_of(kz_long s, Point v) { return is_left_of_segment(s, &v) == 1; }

struct TrapezoidMap : testing::Test {
  void TearDown() override { release_tables(); }
};

using CreateInitialStructure = TrapezoidMap;
using LocateEndpoint = TrapezoidMap;
using IsLeftOfSegment = TrapezoidMap;
using AddSegment = TrapezoidMap;
using MergeTrapezoidRun = TrapezoidMap;
using RefreshSegmentRoots = TrapezoidMap;
using ConstructTrapezoids = TrapezoidMap;
using Newnode = TrapezoidMap;
using Newtrap = TrapezoidMap;

TEST_F(Newnode, CountsUpToTheTableAndSaysWhenItIsFull) {
  ASSERT_EQ(initilize(1), 0);
  for (kz_long node = 1; node < 10; ++node) EXPECT_EQ(newnode(), node);
  StderrCapture err;
  EXPECT_EQ(newnode(), -1);
  EXPECT_EQ(newnode(), -1);
  EXPECT_EQ(err.text(), "newnode: Query-table overflow\nnewnode: Query-table overflow\n");
}

TEST_F(Newtrap, GivesValidUnboundedTrapezoidsUntilTheTableIsFull) {
  ASSERT_EQ(initilize(1), 0);
  for (kz_long t = 1; t < 6; ++t) {
    EXPECT_EQ(newtrap(), t);
    EXPECT_EQ(tr[t].left_seg, -1);
    EXPECT_EQ(tr[t].right_seg, -1);
    EXPECT_EQ(tr[t].status, 1);
  }
  StderrCapture err;
  EXPECT_EQ(newtrap(), -1);
  EXPECT_EQ(err.text(), "newtrap: Trapezoid-table overflow\n");
}

TEST_F(CreateInitialStructure, LaysOutTheSevenNodes) {
  make_contour({{0, 0}, {4, 0}, {1, 5}});
  ASSERT_EQ(create_initial_structure(3), 1);  // from (1, 5) down to (0, 0)

  EXPECT_EQ(qs[1].kind, 2);
  expect_point(qs[1].y_key, 1, 5);
  EXPECT_EQ(qs[1].right_child, 2);
  EXPECT_EQ(qs[1].left_child, 3);
  EXPECT_EQ(qs[2].kind, 3);
  EXPECT_EQ(qs[2].trap_no, 4);
  EXPECT_EQ(qs[2].parent, 1);
  EXPECT_EQ(qs[3].kind, 2);
  expect_point(qs[3].y_key, 0, 0);
  EXPECT_EQ(qs[3].parent, 1);
  EXPECT_EQ(qs[3].left_child, 4);
  EXPECT_EQ(qs[3].right_child, 5);
  EXPECT_EQ(qs[4].kind, 3);
  EXPECT_EQ(qs[4].trap_no, 3);
  EXPECT_EQ(qs[4].parent, 3);
  EXPECT_EQ(qs[5].kind, 1);
  EXPECT_EQ(qs[5].seg_no, 3);
  EXPECT_EQ(qs[5].parent, 3);
  EXPECT_EQ(qs[5].left_child, 6);
  EXPECT_EQ(qs[5].right_child, 7);
  EXPECT_EQ(qs[6].kind, 3);
  EXPECT_EQ(qs[6].trap_no, 1);
  EXPECT_EQ(qs[6].parent, 5);
  EXPECT_EQ(qs[7].kind, 3);
  EXPECT_EQ(qs[7].trap_no, 2);
  EXPECT_EQ(qs[7].parent, 5);
  EXPECT_EQ(newnode(), 8);
}

TEST_F(CreateInitialStructure, LaysOutTheFourTrapezoids) {
  make_contour({{0, 0}, {4, 0}, {1, 5}});
  ASSERT_EQ(create_initial_structure(3), 1);

  for (const kz_long middle : {1, 2}) {
    expect_point(tr[middle].top, 1, 5);
    expect_point(tr[middle].bottom, 0, 0);
    EXPECT_EQ(tr[middle].above0, 4);
    EXPECT_EQ(tr[middle].above1, 0);
    EXPECT_EQ(tr[middle].below0, 3);
    EXPECT_EQ(tr[middle].below1, 0);
  }
  EXPECT_EQ(tr[1].left_seg, -1);
  EXPECT_EQ(tr[1].right_seg, 3);
  EXPECT_EQ(tr[1].sink_node, 6);
  EXPECT_EQ(tr[2].left_seg, 3);
  EXPECT_EQ(tr[2].right_seg, -1);
  EXPECT_EQ(tr[2].sink_node, 7);

  expect_point(tr[3].top, 0, 0);
  expect_point(tr[3].bottom, -kInfinity, -kInfinity);
  EXPECT_EQ(tr[3].above0, 1);
  EXPECT_EQ(tr[3].above1, 2);
  EXPECT_EQ(tr[3].below0, 0);
  EXPECT_EQ(tr[3].sink_node, 4);

  expect_point(tr[4].top, kInfinity, kInfinity);
  expect_point(tr[4].bottom, 1, 5);
  EXPECT_EQ(tr[4].below0, 1);
  EXPECT_EQ(tr[4].below1, 2);
  EXPECT_EQ(tr[4].above0, 0);
  EXPECT_EQ(tr[4].sink_node, 2);

  for (kz_long t = 1; t <= 4; ++t) EXPECT_EQ(tr[t].status, 1);
  EXPECT_EQ(seg[3].inserted, 1);
  EXPECT_EQ(newtrap(), 5);
}

TEST_F(CreateInitialStructure, TakesTheRightEndOfALevelSegmentForTheHigher) {
  make_contour({{0, 5.0e-8}, {4, 0}, {1, 5}});
  ASSERT_EQ(create_initial_structure(1), 1);
  expect_point(qs[1].y_key, 4, 0);
  expect_point(qs[3].y_key, 0, 5.0e-8);
}

TEST_F(CreateInitialStructure, ClearsWhatTheLastOneLeft) {
  make_contour({{0, 0}, {4, 0}, {1, 5}});
  ASSERT_EQ(construct_trapezoids(3), 0);
  ASSERT_EQ(create_initial_structure(3), 1);
  for (kz_long node = 8; node < QSIZE; ++node) EXPECT_EQ(qs[node].kind, 0) << node;
  for (kz_long t = 5; t < TRSIZE; ++t) EXPECT_EQ(tr[t].status, 0) << t;
}

TEST_F(CreateInitialStructure, RefusesWhatIsNoSegment) {
  make_contour({{0, 0}, {4, 0}, {1, 5}});
  for (const kz_long s : {-1, 0, 4, 1000000}) EXPECT_EQ(create_initial_structure(s), 0) << s;
}

TEST_F(IsLeftOfSegment, UpwardSegment) {
  make_contour({{0, 0}, {4, 8}, {-9, 9}});
  EXPECT_TRUE(left_of(1, {1, 4}));
  EXPECT_FALSE(left_of(1, {3, 4}));
  EXPECT_FALSE(left_of(1, {2, 4}));  // on it
  EXPECT_TRUE(left_of(1, {3.9, 8}));
  EXPECT_FALSE(left_of(1, {4, 8}));
  EXPECT_FALSE(left_of(1, {4.1, 8}));
  EXPECT_TRUE(left_of(1, {-0.1, 0}));
  EXPECT_FALSE(left_of(1, {0, 0}));
  // Level within the tolerance: x alone decides, even across the segment's line.
  EXPECT_TRUE(left_of(1, {-1.0e-9, -9.0e-8}));
  EXPECT_FALSE(left_of(1, {1.0e-9, 9.0e-8}));
}

TEST_F(IsLeftOfSegment, DownwardSegment) {
  make_contour({{4, 8}, {0, 0}, {9, 1}});
  EXPECT_TRUE(left_of(1, {1, 4}));
  EXPECT_FALSE(left_of(1, {3, 4}));
  EXPECT_FALSE(left_of(1, {2, 4}));
  EXPECT_TRUE(left_of(1, {3.9, 8}));
  EXPECT_FALSE(left_of(1, {4.1, 8}));
  EXPECT_TRUE(left_of(1, {-0.1, 0}));
  EXPECT_FALSE(left_of(1, {0.1, 0}));
}

TEST_F(IsLeftOfSegment, TheEndDecidesBeforeTheStart) {
  make_contour({{0, 3}, {4, 3}, {1, 9}});
  EXPECT_TRUE(left_of(1, {2, 3}));
  make_contour({{4, 3}, {0, 3}, {1, -9}});
  EXPECT_FALSE(left_of(1, {2, 3}));
}

TEST_F(IsLeftOfSegment, IsExactNextToTheSegment) {
  // The diagonal through (12, 12) and (24, 24), and points a few units in the last place
  // away from (0.5, 0.5): rounded cross products get half of these wrong (L. Kettner et al.,
  // "Classroom examples of robustness problems in geometric computations", 2008).
  make_contour({{12, 12}, {24, 24}, {-9, 99}});
  for (int i = 0; i < 64; ++i) {
    for (int j = 0; j < 64; ++j) {
      const Point point{0.5 + i * 0x1p-53, 0.5 + j * 0x1p-53};
      EXPECT_EQ(left_of(1, point), point.y > point.x) << i << ' ' << j;
    }
  }
}

TEST_F(IsLeftOfSegment, RefusesWhatIsNoSegment) {
  make_contour({{0, 0}, {4, 8}, {-9, 9}});
  for (const kz_long s : {-1, 0, 4, 1000000}) EXPECT_FALSE(left_of(s, {-5, 4})) << s;
}

TEST_F(LocateEndpoint, GoesLeftRightAboveAndBelow) {
  make_contour({{0, 0}, {4, 8}, {-9, 9}});
  ASSERT_EQ(create_initial_structure(1), 1);
  EXPECT_EQ(locate({0, 4}, {0, 4}), 1);
  EXPECT_EQ(locate({9, 4}, {9, 4}), 2);
  EXPECT_EQ(locate({2, -1}, {2, -1}), 3);
  EXPECT_EQ(locate({2, 9}, {2, 9}), 4);
  EXPECT_EQ(locate({0, 4}, {0, 4}, 5), 1);  // from the X node
  EXPECT_EQ(locate({0, 4}, {0, 4}, 2), 4);  // a sink is the answer, whatever the point
}

TEST_F(LocateEndpoint, APointLevelWithAKeyIsRankedByX) {
  make_contour({{0, 0}, {4, 8}, {-9, 9}});
  ASSERT_EQ(create_initial_structure(1), 1);
  EXPECT_EQ(locate({5, 8}, {5, 8}), 4);
  EXPECT_EQ(locate({3, 8}, {3, 8}), 1);
}

TEST_F(LocateEndpoint, AVertexGoesToTheSideOfItsPartner) {
  make_contour({{0, 0}, {4, 8}, {-9, 9}});
  ASSERT_EQ(create_initial_structure(1), 1);
  EXPECT_EQ(locate({4, 8}, {5, 9}), 4);
  EXPECT_EQ(locate({4, 8}, {0, 4}), 1);
  EXPECT_EQ(locate({4, 8}, {9, 4}), 2);
  EXPECT_EQ(locate({4, 8}, {3, 8}), 1);  // level
  EXPECT_EQ(locate({0, 0}, {-1, -1}), 3);
  EXPECT_EQ(locate({0, 0}, {-1, 4}), 1);
  EXPECT_EQ(locate({0, 0}, {9, 4}), 2);
  EXPECT_EQ(locate({0, 0}, {1, 0}), 2);  // level
}

TEST_F(LocateEndpoint, AnUnknownNodeGivesTheLengthOfItsMessage) {
  make_contour({{0, 0}, {4, 8}, {-9, 9}});
  ASSERT_EQ(create_initial_structure(1), 1);
  StderrCapture err;
  EXPECT_EQ(locate({0, 4}, {0, 4}, 8), 12);
  EXPECT_EQ(err.text(), "Haggu !!!!!\n");
  for (const kz_long node : {-1, 0, QSIZE, 2147483647}) {
    EXPECT_EQ(locate({0, 4}, {0, 4}, node), 12) << node;
  }
}

TEST_F(LocateEndpoint, ASearchInCirclesEnds) {
  make_contour({{0, 0}, {4, 8}, {-9, 9}});
  ASSERT_EQ(create_initial_structure(1), 1);
  qs[5].left_child = 1;
  StderrCapture err;
  EXPECT_EQ(locate({0, 4}, {0, 4}), 12);
}

/// Every fact that the neighbours and sinks of a map owe each other.
void expect_consistent_map() {
  for (kz_long i = 1; i < TRSIZE; ++i) {
    if (tr[i].status != 1) continue;
    SCOPED_TRACE(i);
    EXPECT_EQ(qs[tr[i].sink_node].kind, 3);
    EXPECT_EQ(qs[tr[i].sink_node].trap_no, i);
    for (const kz_long below : {tr[i].below0, tr[i].below1}) {
      if (below <= 0) continue;
      EXPECT_EQ(tr[below].status, 1);
      EXPECT_TRUE(tr[below].above0 == i || tr[below].above1 == i) << below;
      expect_point(tr[below].top, tr[i].bottom.x, tr[i].bottom.y);
    }
    for (const kz_long above : {tr[i].above0, tr[i].above1}) {
      if (above <= 0) continue;
      EXPECT_EQ(tr[above].status, 1);
      EXPECT_TRUE(tr[above].below0 == i || tr[above].below1 == i) << above;
    }
  }
}

/// Number of valid trapezoids.
kz_long live_trapezoids() {
  kz_long count = 0;
  for (kz_long i = 1; i < TRSIZE; ++i) count += tr[i].status == 1 ? 1 : 0;
  return count;
}

TEST_F(AddSegment, SplitsAtItsNewEndAndAlongItsWay) {
  // The second segment leaves (4, 8) downwards, to a new vertex on the right.
  make_contour({{0, 0}, {4, 8}, {7, 2}});
  ASSERT_EQ(create_initial_structure(1), 1);
  EXPECT_EQ(add_segment(2), 0);
  EXPECT_EQ(seg[2].inserted, 1);
  expect_consistent_map();
  EXPECT_EQ(live_trapezoids(), 6);
  const kz_long between = locate({3, 4}, {3, 4});
  EXPECT_EQ(tr[between].left_seg, 1);
  EXPECT_EQ(tr[between].right_seg, 2);
  EXPECT_EQ(tr[between].above0, -1);  // it narrows to the common vertex
  expect_point(tr[between].top, 4, 8);
  expect_point(tr[between].bottom, 7, 2);
  const kz_long right = locate({9, 4}, {9, 4});
  EXPECT_EQ(tr[right].left_seg, 2);
  EXPECT_EQ(tr[right].right_seg, -1);
}

TEST_F(AddSegment, ClosesATriangle) {
  make_contour({{0, 0}, {4, 8}, {7, 2}});
  ASSERT_EQ(create_initial_structure(1), 1);
  add_segment(2);
  EXPECT_EQ(add_segment(3), 0);
  expect_consistent_map();
  EXPECT_EQ(live_trapezoids(), 7);
  const kz_long lower = locate({3, 1}, {3, 1});
  EXPECT_EQ(tr[lower].left_seg, 1);
  EXPECT_EQ(tr[lower].right_seg, 3);
  EXPECT_LE(tr[lower].below0, 0);  // it narrows to (0, 0)
  EXPECT_LE(tr[lower].below1, 0);
}

TEST_F(AddSegment, MarksASegmentWhoseWayIsLostAndSaysSo) {
  make_contour({{0, 0}, {4, 8}, {7, 2}});
  ASSERT_EQ(create_initial_structure(1), 1);
  tr[2].below0 = 0;  // the trapezoid that segment 3 crosses, down to (0, 0)
  StderrCapture err;
  EXPECT_EQ(add_segment(3), 0);
  EXPECT_EQ(err.text(), "add_segment: error\n");
  EXPECT_EQ(seg[3].inserted, 1);
}

TEST_F(AddSegment, RefusesWhatIsNoSegment) {
  make_contour({{0, 0}, {4, 8}, {7, 2}});
  ASSERT_EQ(create_initial_structure(1), 1);
  for (const kz_long s : {-1, 0, 4, 1000000}) EXPECT_EQ(add_segment(s), 0) << s;
  EXPECT_EQ(newtrap(), 5);
}

TEST_F(MergeTrapezoidRun, GivesTheSinkOfTheUpperToTheParentOfTheLower) {
  // Two trapezoids one above the other, between the same segments, 1 and 2.
  make_contour({{0, 0}, {4, 8}, {7, 2}});
  for (kz_long t = 1; t <= 3; ++t) ASSERT_EQ(newtrap(), t);
  const kz_long node = newnode();
  const kz_long upper_sink = newnode();
  const kz_long lower_sink = newnode();
  qs[node].left_child = lower_sink;
  qs[node].right_child = 99;
  qs[lower_sink].parent = node;
  for (const kz_long t : {1, 2}) {
    tr[t].left_seg = 1;
    tr[t].right_seg = 2;
  }
  tr[1].sink_node = upper_sink;
  tr[1].bottom = {2, 6};
  tr[1].below0 = 2;
  tr[2].sink_node = lower_sink;
  tr[2].bottom = {3, 4};
  tr[2].above0 = 1;
  tr[2].below0 = 0;
  tr[2].below1 = 3;
  tr[3].above0 = 7;
  tr[3].above1 = 2;

  EXPECT_EQ(merge_trapezoid_run(2, 1, 2, 1), 0);  // left of segment 2
  EXPECT_EQ(qs[node].left_child, upper_sink);
  EXPECT_EQ(qs[node].right_child, 99);
  EXPECT_EQ(tr[1].below0, 0);
  EXPECT_EQ(tr[1].below1, 3);
  EXPECT_EQ(tr[3].above0, 7);
  EXPECT_EQ(tr[3].above1, 1);
  expect_point(tr[1].bottom, 3, 4);
  EXPECT_EQ(tr[1].status, 1);
  EXPECT_EQ(tr[2].status, 2);
}

TEST_F(MergeTrapezoidRun, LeavesOtherSidesAndOtherBoundsAlone) {
  make_contour({{0, 0}, {4, 8}, {7, 2}});
  for (kz_long t = 1; t <= 2; ++t) ASSERT_EQ(newtrap(), t);
  tr[1].left_seg = tr[2].left_seg = 1;
  tr[1].right_seg = tr[2].right_seg = 2;
  tr[1].bottom = {2, 6};
  tr[2].bottom = {3, 4};
  tr[1].below0 = 2;
  merge_trapezoid_run(2, 1, 2, 2);  // segment 2 is not on their left
  EXPECT_EQ(tr[2].status, 1);
  tr[2].left_seg = 3;
  merge_trapezoid_run(2, 1, 2, 1);  // left bounds differ
  EXPECT_EQ(tr[2].status, 1);
}

/// Trapezoids 1 and 2, whose sinks are the nodes 2 and 3.
void merge_the_second_into_the_first() {
  tr[1].sink_node = 2;
  tr[2].sink_node = 3;
  tr[1].right_seg = tr[2].right_seg = 2;
  tr[1].bottom = {2, 6};
  tr[2].bottom = {3, 4};
  tr[1].below0 = 2;
  merge_trapezoid_run(2, 1, 2, 1);
  ASSERT_EQ(tr[2].status, 2);
}

TEST_F(Newnode, HandsOrphanedNodesOutOnceTheTableIsFull) {
  ASSERT_EQ(initilize(4), 0);
  for (kz_long t = 1; t <= 2; ++t) ASSERT_EQ(newtrap(), t);
  for (kz_long node = 1; node < 40; ++node) ASSERT_EQ(newnode(), node);
  qs[1].left_child = 3;
  qs[3].parent = 1;
  qs[3].kind = 3;
  merge_the_second_into_the_first();

  StderrCapture err;
  EXPECT_EQ(newnode(), 3);
  EXPECT_EQ(qs[3].kind, 0);
  EXPECT_EQ(err.text(), "");
  EXPECT_EQ(newnode(), -1);
  EXPECT_EQ(err.text(), "newnode: Query-table overflow\n");
}

TEST_F(Newtrap, HandsMergedTrapezoidsOutOnceTheTableIsFull) {
  ASSERT_EQ(initilize(1), 0);
  for (kz_long t = 1; t < 6; ++t) ASSERT_EQ(newtrap(), t);
  for (kz_long node = 1; node <= 3; ++node) ASSERT_EQ(newnode(), node);
  qs[3].parent = 1;
  merge_the_second_into_the_first();

  StderrCapture err;
  EXPECT_EQ(newtrap(), 2);
  EXPECT_EQ(tr[2].status, 1);
  EXPECT_EQ(tr[2].right_seg, -1);
  EXPECT_EQ(err.text(), "");
  EXPECT_EQ(newtrap(), -1);
  EXPECT_EQ(err.text(), "newtrap: Trapezoid-table overflow\n");
}

TEST_F(RefreshSegmentRoots, StoresTheSinksOfBothEnds) {
  make_contour({{0, 0}, {4, 8}, {7, 2}});
  ASSERT_EQ(create_initial_structure(1), 1);
  refresh_segment_roots(2);
  EXPECT_EQ(seg[2].start_root, 7);  // right of segment 1
  EXPECT_EQ(seg[2].end_root, 7);
  refresh_segment_roots(3);
  EXPECT_EQ(seg[3].start_root, 7);
  EXPECT_EQ(seg[3].end_root, 7);
}

TEST_F(ConstructTrapezoids, InsertsEverySegment) {
  make_contour({{0, 0}, {7, 2}, {4, 8}});
  EXPECT_EQ(construct_trapezoids(3), 0);
  for (kz_long s = 1; s <= 3; ++s) EXPECT_EQ(seg[s].inserted, 1) << s;
  EXPECT_EQ(choose_segment(), 0);
  expect_consistent_map();
}

TEST_F(ConstructTrapezoids, GivesTwoPerVertexAndOne) {
  // Level edges, collinear vertices and all: the sweep order knows no ties.
  make_contour({{0, 0}, {1, 0}, {2, 0}, {2, 1}, {2, 2}, {1, 2}, {0, 2}, {0, 1}});
  EXPECT_EQ(construct_trapezoids(8), 0);
  expect_consistent_map();
  // Every vertex adds one, every segment one.
  EXPECT_EQ(live_trapezoids(), 2 * 8 + 1);
}

TEST_F(ConstructTrapezoids, RefreshesRootsBetweenPhasesOnly) {
  // Four segments: two phases, up to segments 2 and 4 of the order.
  make_contour({{0, 0}, {9, 1}, {8, 9}, {1, 8}});
  ASSERT_EQ(math_N(4, 1), 2);
  ASSERT_EQ(math_N(4, 2), 4);
  EXPECT_EQ(construct_trapezoids(4), 0);
  EXPECT_EQ(seg[1].start_root, 1);
  EXPECT_EQ(seg[2].start_root, 1);
  EXPECT_NE(seg[3].start_root, 1);
  EXPECT_NE(seg[4].start_root, 1);
}

TEST_F(ConstructTrapezoids, OfNothingDoesNothing) {
  ASSERT_EQ(initilize(1), 0);
  StderrCapture err;
  EXPECT_EQ(construct_trapezoids(0), 0);
  EXPECT_EQ(construct_trapezoids(-5), 0);
  EXPECT_EQ(construct_trapezoids(2147483647), 0);
  EXPECT_EQ(err.text(), "");
}

// The tables are open: what a caller puts there by hand is found.
TEST_F(LocateEndpoint, SearchesAMapMadeByHand) {
  ASSERT_EQ(initilize(5), 0);
  qs[1].kind = 2;
  qs[1].y_key = {0.0, 1.0};
  qs[1].left_child = 2;
  qs[1].right_child = 3;
  qs[2].kind = qs[3].kind = 3;
  qs[2].trap_no = 7;
  qs[3].trap_no = 9;
  const Point low{0.0, 0.0};
  const Point high{0.0, 2.0};
  EXPECT_EQ(locate_endpoint(&high, &high, 1), 9);
  EXPECT_EQ(locate_endpoint(&low, &low, 1), 7);
  release_tables();
}

TEST_F(CreateInitialStructure, ClearsTheWholeTables) {
  make_contour({{0.0, 0.0}, {2.0, 1.0}, {1.0, 3.0}});
  tr[TRSIZE - 1].status = 99;
  qs[QSIZE - 1].kind = 9;
  EXPECT_EQ(create_initial_structure(1), 1);
  EXPECT_EQ(tr[TRSIZE - 1].status, 0);
  EXPECT_EQ(qs[QSIZE - 1].kind, 0);
  release_tables();
}

}  // namespace
