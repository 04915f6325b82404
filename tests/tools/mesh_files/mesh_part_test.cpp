#include "tools/mesh_files/mesh_part.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace kzgis::tools {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<double> xs(const MeshPart& mesh) {
  std::vector<double> result;
  for (const WorldPoint& vertex : mesh.vertices) result.push_back(vertex.x);
  return result;
}

TEST(MakeMeshPart, KeepsTheUsedPointsInTheirOrder) {
  const std::vector<WorldPoint> points{{10, 0, 0}, {11, 0, 0}, {12, 5, 0}, {13, 0, 0}, {14, 9, 0}};
  const std::vector<std::uint32_t> triangles{4, 1, 2, 2, 1, 0};
  const MeshPart mesh = make_mesh_part(7, points, triangles);
  EXPECT_EQ(mesh.record, 7);
  EXPECT_THAT(xs(mesh), ElementsAre(10, 11, 12, 14));
  EXPECT_THAT(mesh.triangles, ElementsAre(3U, 1U, 2U, 2U, 1U, 0U));
  EXPECT_EQ(mesh.triangle_count(), 2U);
}

TEST(MakeMeshPart, IsEmptyWithoutTriangles) {
  const std::vector<WorldPoint> points{{1, 2, 0}, {3, 4, 0}};
  const MeshPart mesh = make_mesh_part(1, points, {});
  EXPECT_THAT(mesh.vertices, IsEmpty());
  EXPECT_EQ(mesh.triangle_count(), 0U);
}

TEST(Area, SumsTheTriangles) {
  const std::vector<WorldPoint> points{{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {0, 3, 0}};
  EXPECT_EQ(area(points, std::vector<std::uint32_t>{0, 1, 2}), 6.0);
  EXPECT_EQ(area(points, std::vector<std::uint32_t>{0, 1, 2, 0, 2, 3}), 12.0);
  EXPECT_EQ(area(points, {}), 0.0);
}

TEST(TwiceArea, IsNegativeForAClockwiseTriangle) {
  EXPECT_EQ(twice_area({0, 0, 0}, {4, 0, 0}, {0, 3, 0}), 12.0);
  EXPECT_EQ(twice_area({0, 0, 0}, {0, 3, 0}, {4, 0, 0}), -12.0);
}

}  // namespace
}  // namespace kzgis::tools
