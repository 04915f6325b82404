// The triangulator without memory: entry points, stages.

#include "kzgis/triangulate.h"

#include <array>
#include <string>
#include <vector>

#include "memory/failing.h"
#include "support/capture.h"

namespace {

using kzgis::triangulation::Point;

// A square with a square hole, vertices from 1.
constexpr std::array<kz_long, 2> kContours{4, 4};
constexpr kz_long kVertices = 8;
constexpr kz_long kTriangles = 8;
constexpr double kXy[][2] = {{0, 0}, {0, 0}, {9, 0}, {9, 9}, {0, 9},
                             {3, 3}, {3, 6}, {6, 6}, {6, 3}};

// The stages, each with those before it; segments are inserted as they are numbered.

void prepare_segments() {
  initilize(kVertices + 1);
  kz_long first = 1;
  for (const kz_long count : kContours) {
    for (kz_long i = 0; i < count; ++i) {
      const kz_long next = first + (i + 1) % count;
      kzgis::triangulation::Segment& segment = seg[first + i];
      segment.start = {kXy[first + i][0], kXy[first + i][1]};
      segment.end = {kXy[next][0], kXy[next][1]};
      segment.next_seg = next;
      segment.prev_seg = first + (i + count - 1) % count;
    }
    first += count;
  }
  for (kz_long i = 1; i <= kVertices; ++i) permute[i] = i;
}

void prepare_trapezoids() {
  prepare_segments();
  construct_trapezoids(kVertices);
}

kz_long pieces = 0;

void prepare_pieces() {
  prepare_trapezoids();
  pieces = monotonate_trapezoids(kVertices);
}

/// Chains alone, and two trapezoids that a walk can visit.
void prepare_walk() {
  prepare_segments();
  monotonate_trapezoids(kVertices);
  for (const kz_long t : {newtrap(), newtrap()}) {
    tr[t].left_seg = 4;
    tr[t].right_seg = 2;
  }
  tr[1].below0 = 2;
  tr[2].above0 = 1;
}

/// A square, standing on a corner, as one monotone piece.
void prepare_piece() {
  constexpr Point kSlanted[] = {{0, 0}, {5, 1}, {4, 6}, {-1, 5}};
  initilize(5);
  for (kz_long i = 1; i <= 4; ++i) {
    seg[i].start = kSlanted[i - 1];
    seg[i].next_seg = i % 4 + 1;
    seg[i].prev_seg = (i + 2) % 4 + 1;
  }
  monotonate_trapezoids(4);
}

/// Releases the tables behind a result.
long released(long result) {
  release_tables();
  return result;
}

std::vector<Operation> operations() {
  return {
      {"triangulate_polygon",
       10,  // the tables, the scratch of the order, of the walk and of the sweep
       {0},
       [] {
         const kz_long contour = 4;
         kz_long triangles[2][3] = {};
         triangulate_polygon(1, &contour, kXy, triangles);
         return released(triangles[0][0] == 0 ? 0 : triangles[1][0] == 0 ? 1 : 2);
       }},
      {"initilize", 8, {1}, [] { return released(initilize(kVertices + 1)); }},
      {"generate_random_ordering",
       1,
       {1},
       [] { return released(generate_random_ordering(kVertices)); },
       prepare_segments},
      {"construct_trapezoids",
       0,
       {},
       [] { return released(construct_trapezoids(kVertices)); },
       prepare_segments},
      {"monotonate_trapezoids",
       1,
       {0},
       [] { return released(monotonate_trapezoids(kVertices)); },
       prepare_trapezoids},
      {"traverse_trapezoids",
       1,
       {0},
       [] {
         const kz_long result = traverse_trapezoids(0, 1, 0, 1);
         return released(result == 0 ? visited[1] + visited[2] : -1);
       },
       prepare_walk},
      {"triangulate_monotone_polygons",
       1,
       {0, 4},  // without all pieces, or without one
       [] {
         kz_long triangles[kTriangles][3];
         return released(triangulate_monotone_polygons(kVertices, pieces, triangles));
       },
       prepare_pieces},
      {"triangulate_monotone_piece",
       1,
       {1},
       [] {
         kz_long triangles[2][3];
         return released(triangulate_monotone_piece(4, 3, 2, triangles));
       },
       prepare_piece},
      {"Others",
       0,
       {},
       [] {
         const Point a{1, 2};
         const Point b{3, 4};
         const double inside[] = {1, 1};
         kz_long slots[2];
         refresh_segment_roots(1);
         split_monotone_polygon(0, 1, 7);
         vertex_chain_positions(1, 7, &slots[0], &slots[1]);
         merge_trapezoid_run(1, 1, 1, 1);
         newnode();
         newtrap();
         return released(choose_segment() + math_N(8, 1) + math_logstar_n(8) + _equal_to(&a, &b) +
                         _greater_than(&a, &b) + _greater_than_equal_to(&a, &b) +
                         _less_than(&a, &b) + is_left_of_segment(1, &a) +
                         locate_endpoint(&a, &b, 1) + (angle_measure(&a, &b, &a) > 0 ? 1 : 0) +
                         is_point_inside_polygon(inside));
       },
       prepare_pieces},
      {"create_initial_structure",
       0,
       {},
       [] {
         const kz_long root = create_initial_structure(1);
         return released(root + add_segment(2));
       },
       prepare_segments},
      {"print_error_Short", 0, {}, [] { return long{print_error("no table %d\n", 7)}; }},
      {"print_error_Long", 1, {}, [] { return long{print_error("%300d\n", 7)}; }},
  };
}

INSTANTIATE_TEST_SUITE_P(Triangulate, FailingMemory, testing::ValuesIn(operations()), name_of);

TEST(PrintErrorWithoutMemory, PrintsTheFirst255Characters) {
  const FixedCapture err;
  failing_memory::fail_from(0, true);
  const kz_long length = print_error("%s%300d\n", "begin", 7);
  EXPECT_TRUE(failing_memory::succeed());
  EXPECT_EQ(length, 306);
  EXPECT_EQ(err.text(), "begin" + std::string(250, ' '));
}

}  // namespace
