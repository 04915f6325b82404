#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <vector>

#include "kzgis/polytree.h"
#include "polytree/rings.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();

kz_ulong connections(const Rings& rings) { return connections(rings.tree()); }

TEST(PolygonTree, CanBeDestroyedThroughItsBase) {
  EXPECT_TRUE(std::has_virtual_destructor_v<KZ_GIS_PolygonTree_c>);
}

TEST(PolygonTree, EmptyLeavesTheCountAlone) {
  const KZ_GIS_PolygonTree_c tree;
  kz_ulong count = kUntouched;
  EXPECT_EQ(tree.NumberOfConnections(&count), 1u);
  EXPECT_EQ(count, kUntouched);
}

TEST(PolygonTree, OfNoRingsCountsNone) {
  EXPECT_EQ(connections(Rings{}), 0u);
  Rings unused{boundary(0.0, 0.0, 1.0, 1.0)};
  unused.starts.clear();
  EXPECT_EQ(connections(unused), 0u);
}

TEST(NumberOfConnections, OneRing) {
  EXPECT_EQ(connections({{{0.0, 0.0}, {0.0, 1.0}, {1.0, 0.0}}}), 3u);
  EXPECT_EQ(connections({boundary(0.0, 0.0, 1.0, 1.0)}), 6u);
  EXPECT_EQ(connections({{{0.0, 0.0}, {0.0, 1.0}, {1.0, 2.0}, {2.0, 1.0}, {2.0, 0.0}}}), 9u);
}

TEST(NumberOfConnections, AClosingVertexDoesNotCount) {
  EXPECT_EQ(connections({closed(boundary(0.0, 0.0, 1.0, 1.0))}), 6u);
  EXPECT_EQ(connections({closed(boundary(0.0, 0.0, 9.0, 9.0)), closed(hole(3.0, 3.0, 6.0, 6.0))}),
            24u);
}

TEST(NumberOfConnections, VerticesBeforeTheFirstStartDoNotCount) {
  Rings rings{{{7.0, 7.0}, {8.0, 8.0}}, boundary(0.0, 0.0, 1.0, 1.0)};
  rings.starts.erase(rings.starts.begin());
  EXPECT_EQ(connections(rings), 6u);
}

TEST(NumberOfConnections, HolesInEitherOrder) {
  const Points square = boundary(0.0, 0.0, 9.0, 9.0);
  const Points in_it = hole(3.0, 3.0, 6.0, 6.0);
  EXPECT_EQ(connections({square, in_it}), 24u);
  EXPECT_EQ(connections({in_it, square}), 24u);
}

TEST(NumberOfConnections, TwoHoles) {
  const Points square = boundary(0.0, 0.0, 9.0, 9.0);
  const Points a = hole(1.0, 1.0, 2.0, 2.0);
  const Points b = hole(3.0, 3.0, 4.0, 4.0);
  EXPECT_EQ(connections({square, a, b}), 42u);
  EXPECT_EQ(connections({a, square, b}), 42u);
  // The rule's scan passes over b: it stays outside, a boundary of its own.
  EXPECT_EQ(connections({a, b, square}), 30u);
}

TEST(NumberOfConnections, DisjointSquares) {
  EXPECT_EQ(connections({boundary(0.0, 0.0, 1.0, 1.0), boundary(2.0, 0.0, 3.0, 1.0)}), 12u);
}

TEST(NumberOfConnections, AnIslandInAHoleCountsByItself) {
  const Points square = boundary(0.0, 0.0, 9.0, 9.0);
  const Points lake = hole(1.0, 1.0, 8.0, 8.0);
  const Points island = boundary(2.0, 2.0, 7.0, 7.0);
  EXPECT_EQ(connections({square, lake, island}), 30u);
  EXPECT_EQ(connections({island, square, lake}), 30u);
  EXPECT_EQ(connections({lake, island, square}), 30u);
}

TEST(NumberOfConnections, AnswersAgain) {
  const Rings rings{boundary(0.0, 0.0, 1.0, 1.0)};
  const KZ_GIS_PolygonTree_c tree = rings.tree();
  EXPECT_EQ(connections(tree), 6u);
  EXPECT_EQ(connections(tree), 6u);
}

TEST(NumberOfConnections, TheBoundsAreIgnored) {
  const Rings rings{boundary(0.0, 0.0, 1.0, 1.0)};
  const KZ_GIS_PolygonTree_c tree(9.0, kNaN, -9.0, 3.0, 1, rings.starts.data(), 4, rings.x.data(),
                                  rings.y.data());
  EXPECT_EQ(connections(tree), 6u);
}

// Rings that are none.  The count is unsigned, modulo 2^32.

TEST(NumberOfConnections, OfOneVertexWraps) {
  // A lone vertex equals the ring's first: it goes as a closing one.
  EXPECT_EQ(connections({{{1.0, 1.0}}}), 4294967290u);
  EXPECT_EQ(connections({{{1.0, 1.0}, {1.0, 1.0}}}), 4294967293u);
  EXPECT_EQ(connections({{{kNaN, 1.0}}}), 4294967293u);
  EXPECT_EQ(connections({{{1.0, 1.0}}, boundary(5.0, 5.0, 6.0, 6.0)}), 0u);
}

TEST(NumberOfConnections, OfTwoVerticesIsNone) {
  EXPECT_EQ(connections({{{1.0, 1.0}, {2.0, 2.0}}}), 0u);
  EXPECT_EQ(connections({{{1.0, 1.0}, {2.0, 2.0}, {1.0, 1.0}}}), 0u);
}

TEST(NumberOfConnections, AHoleOfOneVertexCountsAsAHole) {
  // (4 + 1 + 2 (1 - 1)) 3
  EXPECT_EQ(connections({boundary(0.0, 0.0, 9.0, 9.0), {{3.0, 3.0}, {3.0, 3.0}}}), 15u);
}

TEST(PolygonTree, RepeatedStartsAreRingsOfNothing) {
  Rings rings{boundary(0.0, 0.0, 1.0, 1.0)};
  rings.starts = {0, 0};
  EXPECT_EQ(connections(rings), 0u);  // -6 + 6
  rings.starts = {0, 4};
  EXPECT_EQ(connections(rings), 0u);
  rings.starts = {0, 4, 4};
  EXPECT_EQ(connections(rings), 4294967290u);  // 6 - 6 - 6
  rings.starts = {4, 4};
  EXPECT_EQ(connections(rings), 4294967284u);
  // Without arrays a ring has no box, not even an inverted one: the second holds the first.
  Rings nothing;
  nothing.starts = {0, 0};
  EXPECT_EQ(connections(nothing), 0u);
}

TEST(PolygonTree, StaysEmptyWhenStartsDoNotFit) {
  Rings rings{boundary(0.0, 0.0, 1.0, 1.0), boundary(2.0, 0.0, 3.0, 1.0)};
  for (const std::vector<kz_ulong>& starts : std::vector<std::vector<kz_ulong>>{{9},
                                                                                {0, 9},
                                                                                {4, 0},
                                                                                {0, 8, 4},
                                                                                {0, 4294967295u},
                                                                                {4294967295u},
                                                                                {0, 9, 4},
                                                                                {4294967295u, 0}}) {
    rings.starts = starts;
    EXPECT_EQ(connections(rings), kUntouched) << testing::PrintToString(starts);
  }
}

TEST(PolygonTree, StaysEmptyWithoutItsArrays) {
  const Rings rings{boundary(0.0, 0.0, 1.0, 1.0)};
  const kz_ulong* const starts = rings.starts.data();
  const double* const x = rings.x.data();
  const double* const y = rings.y.data();
  const auto count = [](const kz_ulong* s, const double* px, const double* py) {
    return connections(KZ_GIS_PolygonTree_c(0.0, 0.0, 1.0, 1.0, 1, s, 4, px, py));
  };
  EXPECT_EQ(count(starts, x, y), 6u);
  EXPECT_EQ(count(nullptr, x, y), kUntouched);
  EXPECT_EQ(count(starts, nullptr, y), kUntouched);
  EXPECT_EQ(count(starts, x, nullptr), kUntouched);
}

TEST(PolygonTree, NestsWhatIsNoNumber) {
  const double infinity = std::numeric_limits<double>::infinity();
  const Rings rings{boundary(0.0, 0.0, 9.0, 9.0),
                    {{kNaN, kNaN}, {kNaN, kNaN}, {kNaN, kNaN}},
                    {{-infinity, 0.0}, {infinity, 9.0}, {0.0, infinity}},
                    {{1.0, kNaN}, {2.0, 2.0}, {kNaN, 1.0}}};
  const KZ_GIS_PolygonTree_c tree = rings.tree();
  EXPECT_NE(connections(tree), kUntouched);
}

// Copies.

TEST(PolygonTree, CopiesAreDeep) {
  const Rings rings{boundary(0.0, 0.0, 9.0, 9.0), hole(1.0, 1.0, 8.0, 8.0),
                    boundary(2.0, 2.0, 7.0, 7.0), boundary(20.0, 0.0, 21.0, 1.0)};
  auto* const source = new KZ_GIS_PolygonTree_c(rings.tree());
  const Triangulation expected = triangulate(*source);
  KZ_GIS_PolygonTree_c copy(*source);
  KZ_GIS_PolygonTree_c assigned = Rings{boundary(0.0, 0.0, 1.0, 1.0)}.tree();
  assigned = *source;
  delete source;
  for (const KZ_GIS_PolygonTree_c* tree : {&copy, &assigned}) {
    EXPECT_EQ(connections(*tree), 36u);
    const Triangulation mesh = triangulate(*tree);
    EXPECT_EQ(mesh.status, 1u);
    // 81 - 49 + 25 + 1, doubled.
    EXPECT_EQ(twice_area(rings, mesh), 116.0);
    EXPECT_EQ(mesh.count, expected.count);
  }
}

TEST(PolygonTree, AssignmentReplacesWhatWasThere) {
  const Rings one{boundary(0.0, 0.0, 1.0, 1.0)};
  const Rings two{boundary(0.0, 0.0, 1.0, 1.0), boundary(2.0, 0.0, 3.0, 1.0)};
  KZ_GIS_PolygonTree_c tree = one.tree();
  tree = two.tree();
  EXPECT_EQ(connections(tree), 12u);
  KZ_GIS_PolygonTree_c& self = tree;
  tree = self;
  EXPECT_EQ(connections(tree), 12u);
  tree = KZ_GIS_PolygonTree_c();
  EXPECT_EQ(connections(tree), kUntouched);
  tree = one.tree();
  EXPECT_EQ(connections(tree), 6u);
}

}  // namespace
