// What no mesh of a polygon is; closed_test.py shows the rest.

#include "tools/triangulate/extrusion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace kzgis::tools {
namespace {

TEST(IsClosed, ATetrahedronIs) {
  EXPECT_TRUE(is_closed(std::vector<std::uint32_t>{0, 2, 1, 0, 1, 3, 1, 2, 3, 2, 0, 3}));
}

TEST(IsClosed, NeitherWithoutASideNorWithOneTurnedNorWithOneTwice) {
  EXPECT_FALSE(is_closed(std::vector<std::uint32_t>{0, 2, 1, 0, 1, 3, 1, 2, 3}));
  EXPECT_FALSE(is_closed(std::vector<std::uint32_t>{0, 2, 1, 0, 1, 3, 1, 2, 3, 0, 2, 3}));
  EXPECT_FALSE(
      is_closed(std::vector<std::uint32_t>{0, 2, 1, 0, 1, 3, 1, 2, 3, 2, 0, 3, 2, 0, 3, 0, 2, 3}));
}

TEST(Extrude, RaisesATriangle) {
  MeshPart triangle{7, {{0, 0, 1}, {4, 0, 1}, {0, 3, 1}}, {0, 1, 2}};
  triangle.attributes["NAME"] = "a";
  const MeshPart prism = extrude(triangle, 2.0, false);
  EXPECT_EQ(prism.record, 7U);
  EXPECT_EQ(prism.attributes, triangle.attributes);
  ASSERT_EQ(prism.vertices.size(), 6U);
  EXPECT_EQ(prism.vertices[2].z, 1.0);
  EXPECT_EQ(prism.vertices[5].z, 3.0);
  EXPECT_EQ(prism.vertices[5].y, 3.0);
  EXPECT_EQ(prism.triangle_count(), 8U);
  EXPECT_TRUE(is_closed(prism.triangles));
}

TEST(Extrude, OnAGlobeUpIsOutwards) {
  const MeshPart prism = extrude({1, {{3, 0, 4}, {0, 5, 0}, {-3, 0, 4}}, {0, 1, 2}}, 2.5, true);
  EXPECT_EQ(prism.vertices[3].x, 4.5);
  EXPECT_EQ(prism.vertices[3].z, 6.0);
  EXPECT_EQ(prism.vertices[4].y, 7.5);
}

TEST(Extrude, NothingStaysNothing) {
  EXPECT_EQ(extrude({1, {}, {}}, 1.0, false).triangle_count(), 0U);
}

// Three triangles at one edge tile nothing; each has walls of its own.
TEST(Extrude, ClosesWhatTilesNothing) {
  const MeshPart body = extrude(
      {1, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 2, 0}}, {0, 1, 2, 0, 1, 3, 0, 1, 4}},
      1.0, false);
  EXPECT_EQ(body.vertices.size(), 18U);
  EXPECT_TRUE(is_closed(body.triangles));
}

}  // namespace
}  // namespace kzgis::tools
