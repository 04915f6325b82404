#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "kzgis/polytree.h"
#include "polytree/rings.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kLargest = 1.7976931348623157e308;

/// A ring with coordinates and indices that no other ring shares, whose box is computed on
/// first use.
struct Ring {
  explicit Ring(const Points& points) : list(0, nullptr, nullptr) {
    static kz_ulong used = 1;
    x.assign(used, kNaN);
    y.assign(used, kNaN);
    std::vector<kz_ulong> indices;
    for (const auto& [px, py] : points) {
      x.push_back(px);
      y.push_back(py);
      indices.push_back(used++);
    }
    list.SetVertices(used, x.data(), y.data());
    node.VertexList(list);
    node.SetVertices(static_cast<kz_ulong>(indices.size()), indices.data());
  }
  Ring(const Ring&) = delete;
  Ring& operator=(const Ring&) = delete;

  std::vector<double> x, y;
  KZ_GIS_VertexList_c list;
  KZ_GIS_PolygonNode_c node;
};

/// What the point test of the ring says: boxes that overlap everything leave it the word.
kz_ulong holds(const Points& points, double px, double py) {
  Ring ring(points);
  Ring probe({{px, py}});
  for (Ring* r : {&ring, &probe}) r->node.SetBounds(-kLargest, -kLargest, kLargest, kLargest);
  return ring.node.Contains(probe.node);
}

std::vector<kz_ulong> indices(const KZ_GIS_PolygonNode_c& node) {
  kz_ulong count = 99;
  const kz_ulong* first = nullptr;
  EXPECT_EQ(node.GetVertices(&count, &first), 1u);
  EXPECT_EQ(node.NumberOfVertices(), count);
  return {first, first + count};
}
using Indices = std::vector<kz_ulong>;

void expect_box(const KZ_GIS_PolygonNode_c& node, double x_min, double y_min, double x_max,
                double y_max) {
  double got[4] = {};
  node.GetBounds(&got[0], &got[1], &got[2], &got[3]);
  EXPECT_EQ(got[0], x_min);
  EXPECT_EQ(got[1], y_min);
  EXPECT_EQ(got[2], x_max);
  EXPECT_EQ(got[3], y_max);
}

const double kX[] = {0.0, 4.0, 4.0, 0.0, 0.0};
const double kY[] = {0.0, 0.0, 4.0, 4.0, 0.0};

TEST(PolygonNode, StartsEmpty) {
  const KZ_GIS_PolygonNode_c node;
  EXPECT_EQ(node.NumberOfChildren(), 0u);
  EXPECT_EQ(indices(node), Indices{});
  EXPECT_EQ(node.VertexList().NumberOfVertices(), 0u);
}

TEST(PolygonNode, WithoutVertexListOffersAnEmptyOneEveryTime) {
  const KZ_GIS_PolygonNode_c node;
  node.VertexList().SetVertices(5, kX, kY);
  EXPECT_EQ(node.VertexList().NumberOfVertices(), 0u);
  EXPECT_EQ(node.VertexList().XVertices(), nullptr);
}

TEST(PolygonNode, CopiesTheIndicesAndStoresTheBoxAsGiven) {
  KZ_GIS_VertexList_c list(5, kX, kY);
  kz_ulong ring[] = {3, 1, 2};
  const KZ_GIS_PolygonNode_c node(list, 3, ring, 9.0, 8.0, 7.0, kLargest);
  ring[0] = 0;
  EXPECT_EQ(indices(node), (Indices{3, 1, 2}));
  EXPECT_EQ(&node.VertexList(), &list);
  expect_box(node, 9.0, 8.0, 7.0, kLargest);
}

TEST(PolygonNode, VertexListGivesBackTheOneItSets) {
  KZ_GIS_VertexList_c list(5, kX, kY);
  KZ_GIS_PolygonNode_c node;
  EXPECT_EQ(&node.VertexList(list), &list);
  EXPECT_EQ(&node.VertexList(), &list);
}

TEST(PolygonNode, SetVerticesReplacesTheIndices) {
  KZ_GIS_PolygonNode_c node;
  const kz_ulong ring[] = {7, 8, 9};
  EXPECT_EQ(node.SetVertices(3, ring), 1u);
  EXPECT_EQ(node.SetVertices(2, ring + 1), 1u);
  EXPECT_EQ(indices(node), (Indices{8, 9}));
  EXPECT_EQ(node.SetVertices(0, ring), 1u);
  EXPECT_EQ(indices(node), Indices{});
}

TEST(PolygonNode, SetVerticesTakesThoseOfTheNodeItself) {
  KZ_GIS_PolygonNode_c node;
  const kz_ulong ring[] = {6, 7, 8, 9};
  node.SetVertices(4, ring);
  kz_ulong count = 0;
  const kz_ulong* own = nullptr;
  node.GetVertices(&count, &own);
  EXPECT_EQ(node.SetVertices(3, own + 1), 1u);
  EXPECT_EQ(indices(node), (Indices{7, 8, 9}));
}

TEST(PolygonNode, SetVerticesWithoutAnArrayIsRefused) {
  KZ_GIS_PolygonNode_c node;
  const kz_ulong ring[] = {1, 2};
  node.SetVertices(2, ring);
  EXPECT_EQ(node.SetVertices(3, nullptr), 2u);
  EXPECT_EQ(indices(node), Indices{});
  EXPECT_EQ(node.SetVertices(0, nullptr), 1u);
}

TEST(PolygonNode, CopyHasItsOwnIndicesAndNoLinks) {
  KZ_GIS_VertexList_c list(5, kX, kY);
  const kz_ulong ring[] = {0, 1, 2};
  KZ_GIS_PolygonNode_c top;
  KZ_GIS_PolygonNode_c below;
  KZ_GIS_PolygonNode_c node(list, 3, ring, 1.0, 2.0, 3.0, 4.0);
  top.InsertChild(node);
  node.InsertChild(below);

  KZ_GIS_PolygonNode_c copy(node);
  node.SwapVertexOrder();
  EXPECT_EQ(indices(copy), (Indices{0, 1, 2}));
  EXPECT_EQ(&copy.VertexList(), &list);
  expect_box(copy, 1.0, 2.0, 3.0, 4.0);
  EXPECT_EQ(copy.NumberOfChildren(), 0u);
  EXPECT_EQ(&copy.Parent(), &copy);
}

TEST(PolygonNode, AssignmentKeepsTheTargetsLinks) {
  KZ_GIS_VertexList_c list(5, kX, kY);
  const kz_ulong ring[] = {0, 1, 2};
  const KZ_GIS_PolygonNode_c source(list, 3, ring, 1.0, 2.0, 3.0, 4.0);
  KZ_GIS_PolygonNode_c top;
  KZ_GIS_PolygonNode_c below;
  KZ_GIS_PolygonNode_c target;
  target.SetVertices(1, ring);
  top.InsertChild(target);
  target.InsertChild(below);

  target = source;
  KZ_GIS_PolygonNode_c& self = target;
  target = self;
  EXPECT_EQ(indices(target), (Indices{0, 1, 2}));
  EXPECT_EQ(&target.VertexList(), &list);
  expect_box(target, 1.0, 2.0, 3.0, 4.0);
  EXPECT_EQ(&target.Parent(), &top);
  ASSERT_EQ(target.NumberOfChildren(), 1u);
  EXPECT_EQ(&target.Child(0), &below);
}

TEST(PolygonNode, SwapVertexOrderReverses) {
  KZ_GIS_PolygonNode_c node;
  node.SwapVertexOrder();
  EXPECT_EQ(indices(node), Indices{});
  const kz_ulong ring[] = {1, 2, 3, 4, 5};
  node.SetVertices(5, ring);
  node.SwapVertexOrder();
  EXPECT_EQ(indices(node), (Indices{5, 4, 3, 2, 1}));
  node.SetVertices(4, ring);
  node.SwapVertexOrder();
  EXPECT_EQ(indices(node), (Indices{4, 3, 2, 1}));
  node.SetVertices(1, ring);
  node.SwapVertexOrder();
  EXPECT_EQ(indices(node), (Indices{1}));
}

// The box.

TEST(PolygonNodeBox, IsComputedOnFirstUseWhenItIsAPoint) {
  Ring ring({{-1.0, 2.0}, {5.0, -3.0}, {4.0, 7.0}});
  Ring other({{10.0, 10.0}, {11.0, 10.0}, {11.0, 12.0}});
  ring.node.SetBounds(6.0, 7.0, 6.0, 7.0);
  EXPECT_EQ(ring.node.Inside(other.node), 0u);
  expect_box(ring.node, -1.0, -3.0, 5.0, 7.0);
  expect_box(other.node, 10.0, 10.0, 11.0, 12.0);
}

TEST(PolygonNodeBox, IsComputedByContainsToo) {
  Ring ring({{-1.0, 2.0}, {5.0, -3.0}, {4.0, 7.0}});
  Ring other({{10.0, 10.0}, {11.0, 10.0}, {11.0, 12.0}});
  EXPECT_EQ(ring.node.Contains(other.node), 0u);
  expect_box(ring.node, -1.0, -3.0, 5.0, 7.0);
  expect_box(other.node, 10.0, 10.0, 11.0, 12.0);
}

TEST(PolygonNodeBox, IsTrustedWhenItIsNotAPoint) {
  Ring ring(hole(0.0, 0.0, 4.0, 4.0));
  Ring inner(hole(1.0, 1.0, 2.0, 2.0));
  ring.node.SetBounds(100.0, 0.0, 100.0, 1.0);  // a line is no point
  EXPECT_EQ(inner.node.Inside(ring.node), 0u);
  expect_box(ring.node, 100.0, 0.0, 100.0, 1.0);
}

TEST(PolygonNodeBox, OfNothingIsInverted) {
  Ring ring(Points{});
  Ring other(hole(0.0, 0.0, 1.0, 1.0));
  EXPECT_EQ(ring.node.Inside(other.node), 0u);
  expect_box(ring.node, kLargest, kLargest, -kLargest, -kLargest);
}

TEST(PolygonNodeBox, PassesOverWhatIsNotANumber) {
  Ring ring({{kNaN, 1.0}, {2.0, kNaN}, {3.0, 4.0}});
  ring.node.Inside(ring.node);
  expect_box(ring.node, 2.0, 1.0, 3.0, 4.0);
}

TEST(PolygonNodeBox, StaysWhereTheVertexListCannotCoverTheIndices) {
  const kz_ulong ring[] = {0, 1, 2, 3};
  KZ_GIS_VertexList_c shorter(3, kX, kY);
  KZ_GIS_VertexList_c without_x(4, nullptr, kY);
  KZ_GIS_VertexList_c without_y(4, kX, nullptr);
  for (KZ_GIS_VertexList_c* list : {&shorter, &without_x, &without_y}) {
    KZ_GIS_PolygonNode_c node(*list, 4, ring, 5.0, 5.0, 5.0, 5.0);
    node.Inside(node);
    expect_box(node, 5.0, 5.0, 5.0, 5.0);
  }
  KZ_GIS_PolygonNode_c without_list;
  without_list.SetVertices(4, ring);
  without_list.SetBounds(5.0, 5.0, 5.0, 5.0);
  without_list.Inside(without_list);
  expect_box(without_list, 5.0, 5.0, 5.0, 5.0);
}

// Inside and Contains.

TEST(PolygonNodeInside, AsksOneRingAboutAnother) {
  Ring outer(hole(0.0, 0.0, 4.0, 4.0));
  Ring inner(hole(1.0, 1.0, 2.0, 2.0));
  EXPECT_EQ(inner.node.Inside(outer.node), 1u);
  EXPECT_EQ(outer.node.Contains(inner.node), 1u);
  EXPECT_EQ(outer.node.Inside(inner.node), 0u);
  EXPECT_EQ(inner.node.Contains(outer.node), 0u);
}

TEST(PolygonNodeInside, DisjointBoxesSayNo) {
  Ring a(hole(0.0, 0.0, 1.0, 1.0));
  for (const Points& elsewhere : {hole(2.0, 0.0, 3.0, 1.0), hole(-3.0, 0.0, -2.0, 1.0),
                                  hole(0.0, 2.0, 1.0, 3.0), hole(0.0, -3.0, 1.0, -2.0)}) {
    Ring b(elsewhere);
    EXPECT_EQ(a.node.Inside(b.node), 0u);
    EXPECT_EQ(b.node.Inside(a.node), 0u);
  }
}

TEST(PolygonNodeInside, TouchingBoxesAreLookedInto) {
  Ring left(hole(0.0, 0.0, 1.0, 1.0));
  Ring right({{1.0, 1.0}, {2.0, 0.0}, {2.0, 1.0}});
  EXPECT_EQ(right.node.Inside(left.node), 1u);  // its first vertex is left's corner
}

TEST(PolygonNodeInside, OneVertexStandsForAll) {
  Ring square(hole(0.0, 0.0, 4.0, 4.0));
  Ring crossing({{2.0, 2.0}, {9.0, 2.0}, {9.0, 3.0}});
  Ring same_from_outside({{9.0, 2.0}, {9.0, 3.0}, {2.0, 2.0}});
  EXPECT_EQ(crossing.node.Inside(square.node), 1u);
  EXPECT_EQ(same_from_outside.node.Inside(square.node), 0u);
}

TEST(PolygonNodeInside, ARingLiesInItselfWithoutAPointTest) {
  Ring bow({{0.0, 0.0}, {1.0, 1.0}, {1.0, 0.0}, {0.0, 1.0}});
  EXPECT_EQ(bow.node.Inside(bow.node), 1u);
  KZ_GIS_PolygonNode_c copy(bow.node);
  EXPECT_EQ(copy.Inside(bow.node), 1u);
  EXPECT_EQ(copy.Contains(bow.node), 1u);
}

TEST(PolygonNodeInside, TheFirstVertexNotSharedByPositionDecides) {
  const double x[] = {0.0, 4.0, 4.0, 0.0, 9.0, 1.0};
  const double y[] = {0.0, 0.0, 4.0, 4.0, 1.0, 1.0};
  KZ_GIS_VertexList_c list(6, x, y);
  const kz_ulong square[] = {0, 1, 2, 3};
  const kz_ulong leaves[] = {0, 1, 4, 5};
  const kz_ulong stays[] = {0, 1, 5, 4};
  KZ_GIS_PolygonNode_c outer(list, 4, square, 0.0, 0.0, 0.0, 0.0);
  KZ_GIS_PolygonNode_c out(list, 4, leaves, 0.0, 0.0, 0.0, 0.0);
  KZ_GIS_PolygonNode_c in(list, 4, stays, 0.0, 0.0, 0.0, 0.0);
  EXPECT_EQ(out.Inside(outer), 0u);
  EXPECT_EQ(in.Inside(outer), 1u);
}

TEST(PolygonNodeInside, SharedIndicesThatEndTheInnerRingSayYes) {
  KZ_GIS_VertexList_c list(5, kX, kY);
  const kz_ulong square[] = {0, 1, 2, 3};
  KZ_GIS_PolygonNode_c whole(list, 4, square, 0.0, 0.0, 0.0, 0.0);
  KZ_GIS_PolygonNode_c part(list, 3, square, 0.0, 0.0, 0.0, 0.0);
  EXPECT_EQ(part.Inside(whole), 1u);
}

TEST(PolygonNodeInside, SharedIndicesThatEndTheOuterRingLeaveTheNextVertexToDecide) {
  const double x[] = {0.0, 4.0, 4.0, 0.0, 9.0};
  const double y[] = {0.0, 0.0, 4.0, 4.0, 3.0};
  KZ_GIS_VertexList_c list(5, x, y);
  const kz_ulong ring[] = {0, 1, 2, 3, 4};
  KZ_GIS_PolygonNode_c triangle(list, 3, ring, 0.0, 0.0, 0.0, 0.0);
  KZ_GIS_PolygonNode_c square(list, 4, ring, 0.0, 0.0, 0.0, 0.0);
  KZ_GIS_PolygonNode_c beyond(list, 5, ring, 0.0, 0.0, 0.0, 0.0);
  EXPECT_EQ(square.Inside(triangle), 0u);  // (0, 4)
  EXPECT_EQ(beyond.Inside(square), 0u);    // (9, 3)
}

TEST(PolygonNodeInside, EmptyRings) {
  Ring nothing(Points{});
  Ring square(hole(0.0, 0.0, 4.0, 4.0));
  nothing.node.SetBounds(0.0, 0.0, 4.0, 4.0);
  EXPECT_EQ(nothing.node.Inside(square.node), 1u);  // it has no vertex that differs
  EXPECT_EQ(square.node.Inside(nothing.node), 0u);
}

TEST(PolygonNodeInside, IndicesThatNameNoVertexReadNothing) {
  KZ_GIS_VertexList_c list(4, kX, kY);
  const kz_ulong wild[] = {4294967295u, 4, 17};
  const kz_ulong square[] = {0, 1, 2, 3};
  KZ_GIS_PolygonNode_c stray(list, 3, wild, -1.0, -1.0, 9.0, 9.0);
  KZ_GIS_PolygonNode_c sound(list, 4, square, -1.0, -1.0, 9.0, 9.0);
  EXPECT_LE(stray.Inside(sound), 1u);
  EXPECT_LE(sound.Inside(stray), 1u);
  const kz_ulong backwards[] = {3, 2, 1, 0};
  KZ_GIS_PolygonNode_c no_list;
  no_list.SetVertices(4, backwards);
  no_list.SetBounds(-1.0, -1.0, 9.0, 9.0);
  EXPECT_LE(no_list.Inside(sound), 1u);
  EXPECT_EQ(sound.Inside(no_list), 0u);
  KZ_GIS_VertexList_c null_arrays(4, nullptr, nullptr);
  no_list.VertexList(null_arrays);
  EXPECT_EQ(sound.Inside(no_list), 0u);
}

// The point test, step by step.

TEST(PointInPolygon, SquareInsideAndOutside) {
  for (const Points& square :
       {hole(0.0, 0.0, 4.0, 4.0), boundary(0.0, 0.0, 4.0, 4.0), closed(hole(0.0, 0.0, 4.0, 4.0)),
        closed(boundary(0.0, 0.0, 4.0, 4.0))}) {
    EXPECT_EQ(holds(square, 1.0, 2.0), 1u);
    EXPECT_EQ(holds(square, 5.0, 2.0), 0u);
    EXPECT_EQ(holds(square, -1.0, 2.0), 0u);
    EXPECT_EQ(holds(square, 1.0, 5.0), 0u);
    EXPECT_EQ(holds(square, 1.0, -1.0), 0u);
    // To the left, level with an edge or a vertex.
    EXPECT_EQ(holds(square, -1.0, 0.0), 0u);
    EXPECT_EQ(holds(square, -1.0, 4.0), 0u);
  }
}

TEST(PointInPolygon, VerticesAndLevelEdgesAreInside) {
  for (const Points& square : {hole(0.0, 0.0, 4.0, 4.0), closed(boundary(0.0, 0.0, 4.0, 4.0))}) {
    EXPECT_EQ(holds(square, 2.0, 0.0), 1u);
    EXPECT_EQ(holds(square, 2.0, 4.0), 1u);
    EXPECT_EQ(holds(square, 0.0, 0.0), 1u);
    EXPECT_EQ(holds(square, 4.0, 0.0), 1u);
    EXPECT_EQ(holds(square, 4.0, 4.0), 1u);
    EXPECT_EQ(holds(square, 0.0, 4.0), 1u);
  }
}

TEST(PointInPolygon, VerticesOfATriangleAreInside) {
  const Points triangle{{0.0, 0.0}, {5.0, 1.0}, {2.0, 7.0}};
  EXPECT_EQ(holds(triangle, 0.0, 0.0), 1u);
  EXPECT_EQ(holds(triangle, 5.0, 1.0), 1u);
  EXPECT_EQ(holds(triangle, 2.0, 7.0), 1u);
}

TEST(PointInPolygon, SlopedEdgesAreInside) {
  const Points diamond{{2.0, 0.0}, {4.0, 2.0}, {2.0, 4.0}, {0.0, 2.0}};
  EXPECT_EQ(holds(diamond, 3.0, 1.0), 1u);
  EXPECT_EQ(holds(diamond, 3.0, 3.0), 1u);
  EXPECT_EQ(holds(diamond, 1.0, 3.0), 1u);
  EXPECT_EQ(holds(diamond, 1.0, 1.0), 1u);
  // Beside each of them, within the edge's own box.
  EXPECT_EQ(holds(diamond, 3.0, 0.5), 0u);
  EXPECT_EQ(holds(diamond, 3.5, 3.5), 0u);
  EXPECT_EQ(holds(diamond, 0.5, 3.5), 0u);
  EXPECT_EQ(holds(diamond, 0.5, 0.5), 0u);
  EXPECT_EQ(holds(diamond, 2.5, 1.0), 1u);
  EXPECT_EQ(holds(diamond, 1.5, 1.0), 1u);
}

TEST(PointInPolygon, VerticalEdgeIsACrossing) {
  const Points square = hole(0.0, 0.0, 4.0, 4.0);
  EXPECT_EQ(holds(square, 4.0, 2.0), 1u);  // one crossing
  EXPECT_EQ(holds(square, 0.0, 2.0), 0u);  // two
}

TEST(PointInPolygon, VertexAtTheHeightOfThePoint) {
  // A spike that only touches the ray, a vertex where the ring passes through it, and a
  // level run on which it passes, at height 2.
  const Points spike{{0.0, 0.0}, {9.0, 0.0}, {9.0, 6.0}, {6.0, 2.0}, {3.0, 6.0}, {0.0, 6.0}};
  EXPECT_EQ(holds(spike, 1.0, 2.0), 1u);
  EXPECT_EQ(holds(spike, -1.0, 2.0), 0u);
  const Points bent{{0.0, 0.0}, {6.0, 0.0}, {8.0, 2.0}, {6.0, 4.0}, {0.0, 4.0}};
  EXPECT_EQ(holds(bent, 1.0, 2.0), 1u);
  EXPECT_EQ(holds(bent, -1.0, 2.0), 0u);
  const Points step{{0.0, 0.0}, {8.0, 0.0}, {8.0, 2.0}, {7.0, 2.0},
                    {6.0, 2.0}, {6.0, 4.0}, {0.0, 4.0}};
  EXPECT_EQ(holds(step, 1.0, 2.0), 1u);
  EXPECT_EQ(holds(step, -1.0, 2.0), 0u);
}

TEST(PointInPolygon, TheVertexBeforeTheFirstIsFoundRoundTheRing) {
  // The first vertex lies at the height of the ray; before it comes a level run.
  const Points ring{{6.0, 2.0}, {6.0, 4.0}, {0.0, 4.0}, {0.0, 0.0},
                    {8.0, 0.0}, {8.0, 2.0}, {7.0, 2.0}};
  for (const Points& form : {ring, closed(ring)}) {
    EXPECT_EQ(holds(form, 1.0, 2.0), 1u);
    EXPECT_EQ(holds(form, -1.0, 2.0), 0u);
  }
  const Points peak{{6.0, 2.0}, {3.0, 6.0}, {0.0, 6.0}, {0.0, 0.0}, {9.0, 0.0}, {9.0, 6.0}};
  for (const Points& form : {peak, closed(peak)}) {
    EXPECT_EQ(holds(form, 1.0, 2.0), 1u);
    EXPECT_EQ(holds(form, -1.0, 2.0), 0u);
  }
}

TEST(PointInPolygon, RingsWithoutAnInside) {
  EXPECT_EQ(holds(Points{}, 1.0, 1.0), 0u);
  EXPECT_EQ(holds({{1.0, 1.0}}, 1.0, 1.0), 0u);              // closed, no edge
  EXPECT_EQ(holds({{1.0, 1.0}, {1.0, 1.0}}, 1.0, 1.0), 1u);  // one level edge of no length
  EXPECT_EQ(holds({{0.0, 0.0}, {2.0, 0.0}}, 1.0, 0.0), 1u);
  EXPECT_EQ(holds({{0.0, 0.0}, {2.0, 2.0}}, 1.0, 1.0), 1u);
  EXPECT_EQ(holds({{0.0, 0.0}, {2.0, 2.0}}, 0.0, 1.0), 0u);
  EXPECT_EQ(holds({{0.0, 1.0}, {1.0, 1.0}, {2.0, 1.0}}, 3.0, 1.0), 0u);
}

TEST(PointInPolygon, CoordinatesThatAreNoNumbersEndQuietly) {
  const Points square{{0.0, 0.0}, {kNaN, 0.0}, {4.0, kNaN}, {0.0, 4.0}};
  for (const double px : {1.0, kNaN}) {
    for (const double py : {0.0, 1.0, kNaN}) EXPECT_LE(holds(square, px, py), 1u);
  }
}

}  // namespace
