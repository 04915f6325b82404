#include "tools/mesh_files/normals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace kzgis::tools {
namespace {

using testing::ElementsAre;

/// Two triangles with a common side along y, the second inclined to the first.
MeshPart bent(double angle_deg) {
  const double angle_rad = angle_deg * std::acos(-1.0) / 180.0;
  return {1,
          {{0, 0, 0}, {0, 2, 0}, {-1, 0, 0}, {std::cos(angle_rad), 0, std::sin(angle_rad)}},
          {0, 1, 2, 1, 0, 3}};
}

TEST(WithNormals, ABentSurfaceKeepsItsVertices) {
  const ShadedPart shaded = with_normals(bent(39.0));
  EXPECT_EQ(shaded.source.size(), 4U);
  // On the fold half way between both sides, which are equally large: 19.5 degrees.
  EXPECT_NEAR(shaded.normals[0].x, -std::sin(19.5 * std::acos(-1.0) / 180.0), 1e-12);
  EXPECT_NEAR(shaded.normals[0].z, std::cos(19.5 * std::acos(-1.0) / 180.0), 1e-12);
}

TEST(WithNormals, AnEdgeHasVerticesForBothSides) {
  const ShadedPart shaded = with_normals(bent(41.0));
  EXPECT_THAT(shaded.source, ElementsAre(0U, 1U, 2U, 1U, 0U, 3U));
  EXPECT_THAT(shaded.triangles, ElementsAre(0U, 1U, 2U, 3U, 4U, 5U));
  EXPECT_NEAR(shaded.normals[0].z, 1.0, 1e-12);
  EXPECT_NEAR(shaded.normals[4].x, -std::sin(41.0 * std::acos(-1.0) / 180.0), 1e-12);
}

TEST(WithNormals, LargerTrianglesWeighMore) {
  MeshPart part{1, {{0, 0, 0}, {0, 1, 0}, {-3, 0, 0}, {1, 0, 0.5}}, {0, 1, 2, 1, 0, 3}};
  const WorldPoint normal = with_normals(part).normals[0];
  // Their cross products are (0, 0, 3) and (-0.5, 0, 1).
  EXPECT_NEAR(normal.x / normal.z, -0.5 / 4.0, 1e-12);
}

TEST(WithNormals, ATriangleWithoutAreaLooksUp) {
  const ShadedPart shaded = with_normals({1, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {0, 1, 2}});
  for (const WorldPoint& normal : shaded.normals) EXPECT_EQ(normal.z, 1.0);
}

}  // namespace
}  // namespace kzgis::tools
