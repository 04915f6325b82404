// Sides of rings without what has no area.

#include "mesh/rings.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <utility>
#include <vector>

namespace {

using kzgis::mesh::Side;
using kzgis::mesh::Sites;

using Points = std::vector<std::pair<double, double>>;
using Vertices = std::set<std::uint32_t>;

/// The caller's vertices at which the sides begin.
Vertices vertices_of(const Points& ring) {
  std::vector<double> x, y;
  for (const auto& [px, py] : ring) {
    x.push_back(px);
    y.push_back(py);
  }
  const std::vector<std::int32_t> starts{0};
  const kzgis::Rings rings{x, y, starts};
  const Sites sites(rings);
  Vertices vertices;
  for (const Side& side : kzgis::mesh::take_sides(rings, sites)) {
    EXPECT_LT(side.left, side.right);
    EXPECT_TRUE(sites.of(side.vertex) == side.left || sites.of(side.vertex) == side.right);
    vertices.insert(side.vertex);
  }
  return vertices;
}

TEST(Sites, AreNumberedFromTheLeftAndFromBelow) {
  const std::vector<double> x{9, 2, 2, 0, 2};
  const std::vector<double> y{9, 5, 1, 7, 5};
  const std::vector<std::int32_t> starts{1};  // vertex 0 belongs to no ring
  const Sites sites(kzgis::Rings{x, y, starts});
  ASSERT_EQ(sites.size(), 3U);
  EXPECT_EQ(sites[0].x, 0.0);
  EXPECT_EQ(sites[1].y, 1.0);
  EXPECT_EQ(sites[2].y, 5.0);
  EXPECT_EQ(sites.vertex(2), 1U);
  EXPECT_EQ(sites.of(4), 2U);
  EXPECT_EQ(sites.of(3), 0U);
}

TEST(TakeSides, LeavesOutRepeatedVertices) {
  EXPECT_EQ(vertices_of({{0, 0}, {0, 0}, {4, 0}, {4, 4}, {4, 4}, {4, 4}, {0, 0}}),
            (Vertices{0, 2, 3}));
}

TEST(TakeSides, KeepsVerticesOnAStraightLine) {
  EXPECT_EQ(vertices_of({{0, 0}, {2, 0}, {4, 0}, {4, 4}}), (Vertices{0, 1, 2, 3}));
}

TEST(TakeSides, LeavesOutSpikes) {
  // Out and back to where it left, beyond it, and not so far.
  EXPECT_EQ(vertices_of({{0, 0}, {4, 0}, {9, 0}, {4, 0}, {4, 4}}), (Vertices{0, 1, 4}));
  EXPECT_EQ(vertices_of({{0, 0}, {9, 0}, {4, 0}, {4, 4}}), (Vertices{0, 2, 3}));
  EXPECT_EQ(vertices_of({{0, 0}, {4, 0}, {4, -3}, {4, 4}}), (Vertices{0, 1, 3}));
}

TEST(TakeSides, LeavesOutSpikesOnSpikes) {
  EXPECT_EQ(vertices_of({{0, 0}, {4, 0}, {6, 2}, {8, 2}, {6, 2}, {4, 0}, {4, 4}}),
            (Vertices{0, 1, 6}));
}

TEST(TakeSides, LeavesOutSpikesWhereTheRingCloses) {
  EXPECT_EQ(vertices_of({{9, 0}, {4, 0}, {4, 4}, {0, 0}}), (Vertices{1, 2, 3}));
  EXPECT_EQ(vertices_of({{0, 0}, {4, 0}, {4, 4}, {0, 0}, {-1, -5}, {0, 0}}), (Vertices{0, 1, 2}));
}

TEST(TakeSides, LeavesNothingOfARingWithoutArea) {
  EXPECT_EQ(vertices_of({}), Vertices{});
  EXPECT_EQ(vertices_of({{1, 1}, {1, 1}, {1, 1}}), Vertices{});
  EXPECT_EQ(vertices_of({{0, 0}, {3, 3}, {1, 1}, {2, 2}}), Vertices{});
  EXPECT_EQ(vertices_of({{0, 0}, {4, 0}, {4, 4}, {4, 0}, {0, 0}}), Vertices{});
}

}  // namespace
