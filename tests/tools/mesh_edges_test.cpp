#include "tools/support/mesh_edges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace kzgis::tools {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(MeshEdges, PartsInnerOnesFromTheBorder) {
  const std::vector<std::uint32_t> square{0, 1, 2, 2, 3, 0};
  const MeshEdges edges = mesh_edges(square);
  EXPECT_THAT(edges.inner, ElementsAre(MeshEdge(0, 2)));
  EXPECT_THAT(edges.border,
              ElementsAre(MeshEdge(0, 1), MeshEdge(0, 3), MeshEdge(1, 2), MeshEdge(2, 3)));
}

TEST(MeshEdges, AreNoneWithoutTriangles) {
  EXPECT_THAT(mesh_edges({}).inner, IsEmpty());
  EXPECT_THAT(mesh_edges({}).border, IsEmpty());
}

}  // namespace
}  // namespace kzgis::tools
