// The walk through the trapezoids, one trapezoid at a time.
//
// The trapezoid under test is built by hand, with up to four neighbours that each draw a
// diagonal of their own when the walk comes to them.  Where these diagonals land in the
// chains tells the order of the visits, their direction and the piece each was made in.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "kzgis/triangulate.h"

namespace {

using kzgis::triangulation::Point;

constexpr kz_long kVertices = 60;

// Segments, and with them vertices, of the trapezoid under test and of its neighbours.  They
// are far enough from each other for every diagonal to have vertices of its own.
constexpr kz_long kLeft = 2;
constexpr kz_long kRight = 5;
enum Number : kz_long { kHere = 1, kA0, kA1, kB0, kB1 };
constexpr kz_long left_of(kz_long trapezoid) { return 8 * trapezoid; }
constexpr kz_long right_of(kz_long trapezoid) { return 8 * trapezoid + 4; }

enum class Top { elsewhere, start_of_left, end_of_right };
enum class Bottom { elsewhere, end_of_left, start_of_right };

struct Visit {
  kz_long trapezoid;
  bool in_new_piece;
};

struct TraversalCase {
  const char* name;
  std::vector<kz_long> neighbours;
  Top top;
  Bottom bottom;
  kz_long from, dir;
  kz_long a, b;  ///< the diagonal; 0: none
  std::vector<Visit> visits;
};

class TraverseTrapezoids : public testing::TestWithParam<TraversalCase> {
 protected:
  void SetUp() override {
    ASSERT_EQ(initilize(kVertices + 1), 0);
    for (kz_long i = 1; i <= kVertices; ++i) {
      seg[i].next_seg = i % kVertices + 1;
      seg[i].prev_seg = (i + kVertices - 2) % kVertices + 1;
      seg[i].start = {static_cast<double>(i), static_cast<double>(i * i)};
    }
    for (kz_long i = 1; i <= kVertices; ++i) seg[i].end = seg[seg[i].next_seg].start;
    ASSERT_EQ(monotonate_trapezoids(kVertices), 1);  // no trapezoids yet: chains only
    for (kz_long t = kHere; t <= kB1; ++t) ASSERT_EQ(newtrap(), t);
  }
  void TearDown() override { release_tables(); }

  /// A trapezoid with its upper vertex on the right and its lower one on the left, whose
  /// only neighbours are the one under test, done already.
  static void make_neighbour(kz_long t) {
    tr[t].left_seg = left_of(t);
    tr[t].right_seg = right_of(t);
    tr[t].top = seg[right_of(t)].end;
    tr[t].bottom = seg[left_of(t)].end;
    tr[t].above0 = tr[t].below0 = kHere;
  }
};

TEST_P(TraverseTrapezoids, DrawsTheDiagonalAndVisitsInOrder) {
  const TraversalCase& given = GetParam();
  tr[kHere].left_seg = kLeft;
  tr[kHere].right_seg = kRight;
  tr[kHere].top = given.top == Top::start_of_left  ? seg[kLeft].start
                  : given.top == Top::end_of_right ? seg[kRight].end
                                                   : Point{-1, 1e6};
  tr[kHere].bottom = given.bottom == Bottom::end_of_left      ? seg[kLeft].end
                     : given.bottom == Bottom::start_of_right ? seg[kRight].start
                                                              : Point{-1, -1e6};
  for (const kz_long t : given.neighbours) {
    make_neighbour(t);
    (t == kA0   ? tr[kHere].above0
     : t == kA1 ? tr[kHere].above1
     : t == kB0 ? tr[kHere].below0
                : tr[kHere].below1) = t;
  }

  EXPECT_EQ(traverse_trapezoids(0, kHere, given.from, given.dir), 0);

  // Every diagonal doubles its ends at the next two places of the chains, leaves the old
  // place of its first end with the piece it was drawn in and gives the new one a number.
  std::vector<std::pair<kz_long, kz_long>> diagonals;
  std::vector<kz_long> pieces{1};
  const auto expect_diagonal = [&](kz_long piece, kz_long a, kz_long b) {
    diagonals.emplace_back(a, b);
    pieces[static_cast<std::size_t>(piece)] = a;
    const auto new_piece = static_cast<kz_long>(pieces.size());
    pieces.push_back(kVertices + 2 * new_piece - 1);
    return new_piece;
  };
  const kz_long new_piece = given.a == 0 ? 0 : expect_diagonal(0, given.a, given.b);
  for (const Visit& visit : given.visits) {
    const kz_long left_next = left_of(visit.trapezoid) + 1;
    const kz_long right_next = right_of(visit.trapezoid) + 1;
    const kz_long piece = visit.in_new_piece ? new_piece : 0;
    const bool below = visit.trapezoid == kB0 || visit.trapezoid == kB1;
    if (below) {
      expect_diagonal(piece, left_next, right_next);
    } else {
      expect_diagonal(piece, right_next, left_next);
    }
  }

  EXPECT_EQ(visited[kHere], 1);
  for (std::size_t k = 0; k < diagonals.size(); ++k) {
    const auto place = kVertices + 2 * static_cast<kz_long>(k) + 1;
    EXPECT_EQ(mchain[place].vertex_no, diagonals[k].first) << "diagonal " << k;
    EXPECT_EQ(mchain[place + 1].vertex_no, diagonals[k].second) << "diagonal " << k;
  }
  EXPECT_EQ(mchain[kVertices + 2 * diagonals.size() + 1].vertex_no, 0) << "one diagonal more";
  EXPECT_EQ(std::vector<kz_long>(mon, mon + pieces.size()), pieces);
}

constexpr kz_long kLeftNext = kLeft + 1;
constexpr kz_long kRightNext = kRight + 1;
constexpr kz_long kAboveCusp = right_of(kA0);
constexpr kz_long kBelowCusp = left_of(kB1);

// m: in the piece the walk came in; w: in the new one.
constexpr Visit m(kz_long t) { return {t, false}; }
constexpr Visit w(kz_long t) { return {t, true}; }

const TraversalCase kCases[] = {
    {"Case1FromB1",
     {kB0, kB1},
     Top::elsewhere,
     Bottom::elsewhere,
     kB1,
     2,
     kLeft,
     kBelowCusp,
     {m(kB1), w(kB0)}},
    {"Case1Otherwise",
     {kB0, kB1},
     Top::elsewhere,
     Bottom::elsewhere,
     kB0,
     2,
     kBelowCusp,
     kLeft,
     {m(kB0), w(kB1)}},
    {"Case2OneBelow", {kB0}, Top::elsewhere, Bottom::elsewhere, kB0, 2, 0, 0, {m(kB0)}},
    {"Case2NoNeighbour", {}, Top::elsewhere, Bottom::elsewhere, 0, 1, 0, 0, {}},
    {"Case3FromA1",
     {kA0, kA1},
     Top::elsewhere,
     Bottom::elsewhere,
     kA1,
     1,
     kAboveCusp,
     kRight,
     {m(kA1), w(kA0)}},
    {"Case3Otherwise",
     {kA0, kA1},
     Top::elsewhere,
     Bottom::elsewhere,
     kA0,
     1,
     kRight,
     kAboveCusp,
     {m(kA0), w(kA1)}},
    {"Case4OneAbove", {kA1}, Top::elsewhere, Bottom::elsewhere, kA1, 1, 0, 0, {m(kA1)}},
    {"Case5FromB1",
     {kA0, kA1, kB0, kB1},
     Top::elsewhere,
     Bottom::elsewhere,
     kB1,
     2,
     kAboveCusp,
     kBelowCusp,
     {m(kA1), m(kB1), w(kA0), w(kB0)}},
    {"Case5FromA1",
     {kA0, kA1, kB0, kB1},
     Top::elsewhere,
     Bottom::elsewhere,
     kA1,
     1,
     kAboveCusp,
     kBelowCusp,
     {m(kA1), m(kB1), w(kA0), w(kB0)}},
    {"Case5FromA0",
     {kA0, kA1, kB0, kB1},
     Top::elsewhere,
     Bottom::elsewhere,
     kA0,
     1,
     kBelowCusp,
     kAboveCusp,
     {m(kA0), m(kB0), w(kA1), w(kB1)}},
    {"Case5FromB0",
     {kA0, kA1, kB0, kB1},
     Top::elsewhere,
     Bottom::elsewhere,
     kB0,
     2,
     kBelowCusp,
     kAboveCusp,
     {m(kA0), m(kB0), w(kA1), w(kB1)}},
    {"Case6FromA1",
     {kA0, kA1, kB0},
     Top::elsewhere,
     Bottom::start_of_right,
     kA1,
     1,
     kAboveCusp,
     kRight,
     {m(kA1), w(kB0), w(kA0)}},
    {"Case6FromA1WithB1",
     {kA0, kA1, kB1},
     Top::elsewhere,
     Bottom::start_of_right,
     kA1,
     1,
     kAboveCusp,
     kRight,
     {m(kA1), w(kB1), w(kA0)}},
    {"Case6FromA0",
     {kA0, kA1, kB0},
     Top::elsewhere,
     Bottom::start_of_right,
     kA0,
     1,
     kRight,
     kAboveCusp,
     {m(kA0), m(kB0), w(kA1)}},
    {"Case6FromBelow",
     {kA0, kA1, kB1},
     Top::elsewhere,
     Bottom::start_of_right,
     kB1,
     2,
     kRight,
     kAboveCusp,
     {m(kA0), m(kB1), w(kA1)}},
    {"Case7FromA0",
     {kA0, kA1, kB0},
     Top::elsewhere,
     Bottom::end_of_left,
     kA0,
     1,
     kLeftNext,
     kAboveCusp,
     {m(kA0), w(kB0), w(kA1)}},
    {"Case7FromA0WithB1",
     {kA0, kA1, kB1},
     Top::elsewhere,
     Bottom::end_of_left,
     kA0,
     1,
     kLeftNext,
     kAboveCusp,
     {m(kA0), w(kA1), w(kB1)}},
    {"Case7FromA1",
     {kA0, kA1, kB0},
     Top::elsewhere,
     Bottom::end_of_left,
     kA1,
     1,
     kAboveCusp,
     kLeftNext,
     {m(kA1), m(kB0), w(kA0)}},
    {"Case7FromBelow",
     {kA0, kA1, kB1},
     Top::elsewhere,
     Bottom::end_of_left,
     kB1,
     2,
     kAboveCusp,
     kLeftNext,
     {m(kA1), m(kB1), w(kA0)}},
    {"Case8FromB1",
     {kA0, kB0, kB1},
     Top::end_of_right,
     Bottom::elsewhere,
     kB1,
     2,
     kRightNext,
     kBelowCusp,
     {m(kB1), w(kA0), w(kB0)}},
    {"Case8FromB1WithA1",
     {kA1, kB0, kB1},
     Top::end_of_right,
     Bottom::elsewhere,
     kB1,
     2,
     kRightNext,
     kBelowCusp,
     {m(kB1), w(kA1), w(kB0)}},
    {"Case8FromB0",
     {kA0, kB0, kB1},
     Top::end_of_right,
     Bottom::elsewhere,
     kB0,
     2,
     kBelowCusp,
     kRightNext,
     {m(kA0), m(kB0), w(kB1)}},
    {"Case8FromAbove",
     {kA1, kB0, kB1},
     Top::end_of_right,
     Bottom::elsewhere,
     kA1,
     1,
     kBelowCusp,
     kRightNext,
     {m(kB0), m(kA1), w(kB1)}},
    {"Case9FromB0",
     {kA0, kB0, kB1},
     Top::start_of_left,
     Bottom::elsewhere,
     kB0,
     2,
     kBelowCusp,
     kLeft,
     {m(kB0), w(kA0), w(kB1)}},
    {"Case9FromB1",
     {kA0, kB0, kB1},
     Top::start_of_left,
     Bottom::elsewhere,
     kB1,
     2,
     kLeft,
     kBelowCusp,
     {m(kB1), m(kA0), w(kB0)}},
    {"Case9FromAbove",
     {kA1, kB0, kB1},
     Top::start_of_left,
     Bottom::elsewhere,
     kA1,
     1,
     kLeft,
     kBelowCusp,
     {m(kA1), m(kB1), w(kB0)}},
    {"Case10FromBelow",
     {kA0, kB0},
     Top::start_of_left,
     Bottom::start_of_right,
     kB0,
     2,
     kRight,
     kLeft,
     {m(kB0), w(kA0)}},
    {"Case10FromAbove",
     {kA1, kB1},
     Top::start_of_left,
     Bottom::start_of_right,
     kA1,
     1,
     kLeft,
     kRight,
     {m(kA1), w(kB1)}},
    {"Case11FromBelow",
     {kA0, kB1},
     Top::end_of_right,
     Bottom::end_of_left,
     kB1,
     2,
     kRightNext,
     kLeftNext,
     {m(kB1), w(kA0)}},
    {"Case11FromAbove",
     {kA1, kB0},
     Top::end_of_right,
     Bottom::end_of_left,
     kA1,
     1,
     kLeftNext,
     kRightNext,
     {m(kA1), w(kB0)}},
    {"Case12BothOnTheLeft",
     {kA0, kB0},
     Top::start_of_left,
     Bottom::end_of_left,
     kA0,
     1,
     0,
     0,
     {m(kA0), m(kB0)}},
    {"Case12BothOnTheRight",
     {kA1, kB0},
     Top::end_of_right,
     Bottom::start_of_right,
     kB0,
     2,
     0,
     0,
     {m(kB0), m(kA1)}},
    {"Case12Elsewhere",
     {kA1, kB1},
     Top::elsewhere,
     Bottom::elsewhere,
     kB1,
     2,
     0,
     0,
     {m(kA1), m(kB1)}},
};

INSTANTIATE_TEST_SUITE_P(Table, TraverseTrapezoids, testing::ValuesIn(kCases),
                         [](const auto& given) { return std::string(given.param.name); });

TEST_F(TraverseTrapezoids, ReturnsAtOnceFromATrapezoidSeenBefore) {
  make_neighbour(kA0);
  visited[kA0] = 1;
  EXPECT_EQ(traverse_trapezoids(0, kA0, kHere, 2), 0);
  EXPECT_EQ(mchain[kVertices + 1].vertex_no, 0);
}

TEST_F(TraverseTrapezoids, ReturnsAtOnceWhereThereIsNoTrapezoid) {
  for (const kz_long t : {0, -1, kB1 + 1, 1000000}) {
    EXPECT_EQ(traverse_trapezoids(0, t, kHere, 2), 0) << t;
  }
  EXPECT_EQ(mchain[kVertices + 1].vertex_no, 0);
}

TEST_F(TraverseTrapezoids, StopsOutsideThePolygon) {
  make_neighbour(kA0);
  tr[kA0].left_seg = -1;
  EXPECT_EQ(traverse_trapezoids(0, kA0, kHere, 2), 0);
  EXPECT_EQ(mchain[kVertices + 1].vertex_no, 0);
}

}  // namespace
