// Allocations that fail, in a child process whose memory has been used up.

#include <gtest/gtest.h>

#include "kzgis/polytree.h"
#include "polytree/rings.h"
#include "support/memory_limit.h"

#ifdef KZGIS_CAN_LIMIT_MEMORY
#include <cstdlib>
#include <vector>

namespace {

/// Leaves this process without a free block of any size.
void use_up_memory() {
  const rlimit limits{0, 0};
  setrlimit(RLIMIT_AS, &limits);
  void* volatile block = nullptr;
  const auto take_all = [&block](std::size_t size) {
    do {
      block = std::malloc(size);
    } while (block != nullptr);
  };
  for (std::size_t size = std::size_t{1} << 24; size > 1024; size /= 2) take_all(size);
  // Small blocks that were freed wait for requests of just their size.
  for (std::size_t size = 1040; size >= 8; size -= 8) take_all(size);
}

void fill_a_node() {
  std::vector<KZ_GIS_PolygonNode_c> nodes(12);
  KZ_GIS_PolygonNode_c full;
  KZ_GIS_PolygonNode_c other;
  for (int i = 0; i < 10; ++i) full.InsertChild(nodes[static_cast<std::size_t>(i)]);
  other.InsertChild(nodes[10]);
  other.InsertChild(nodes[11]);
  use_up_memory();
  check(nodes[10].Reparent(full) == 14, 1);
  check(other.NumberOfChildren() == 2 && &other.Child(0) == &nodes[11], 2);
  check(&other.Child(1) == &nodes[10] && &nodes[10].Parent() == &other, 3);
  check(full.NumberOfChildren() == 10 && &full.Child(9) == &nodes[9], 4);
  check(full.RemoveChild(nodes[0]) == 1 && nodes[10].Reparent(full) == 1, 5);
  std::_Exit(0);
}
TEST(PolytreeMemoryDeathTest, AFullNodeRefusesAChildAndKeepsTheOthers) {
  EXPECT_EXIT(fill_a_node(), testing::ExitedWithCode(0), "");
}

/// Shows the copying that the class offers to those that derive from it.
class Node : public KZ_GIS_TreeNode_c {};

void copy_a_node() {
  Node source, child, target;
  source.InsertChild(child);
  use_up_memory();
  Node copy(source);
  target = source;
  check(copy.NumberOfChildren() == 0 && target.NumberOfChildren() == 0, 1);
  check(copy.InsertChild(child) == 14 && copy.NumberOfChildren() == 0, 2);
  check(source.NumberOfChildren() == 1, 3);
  std::_Exit(0);
}
TEST(PolytreeMemoryDeathTest, ACopiedNodeWithoutMemoryHasNoChildren) {
  EXPECT_EXIT(copy_a_node(), testing::ExitedWithCode(0), "");
}

void set_a_ring() {
  const std::vector<kz_ulong> ring(1000, 0);
  KZ_GIS_PolygonNode_c node;
  use_up_memory();
  check(node.SetVertices(1000, ring.data()) == 14, 1);
  check(node.NumberOfVertices() == 0, 2);
  std::_Exit(0);
}
TEST(PolytreeMemoryDeathTest, ARingWithoutMemoryIsEmpty) {
  EXPECT_EXIT(set_a_ring(), testing::ExitedWithCode(0), "");
}

void build_and_copy_a_tree() {
  const Rings rings{boundary(0.0, 0.0, 9.0, 9.0), hole(3.0, 3.0, 6.0, 6.0)};
  const KZ_GIS_PolygonTree_c source = rings.tree();
  use_up_memory();
  check(connections(rings.tree()) == kUntouched, 1);
  KZ_GIS_PolygonTree_c copy(source);
  check(connections(copy) == kUntouched, 2);
  check(connections(source) == 24, 3);
  std::_Exit(0);
}
TEST(PolytreeMemoryDeathTest, ATreeWithoutMemoryIsEmpty) {
  EXPECT_EXIT(build_and_copy_a_tree(), testing::ExitedWithCode(0), "");
}

void triangulate_a_tree() {
  const Rings rings{boundary(0.0, 0.0, 9.0, 9.0), hole(3.0, 3.0, 6.0, 6.0)};
  const KZ_GIS_PolygonTree_c tree = rings.tree();
  kz_ulong indices[24] = {};
  kz_ulong count = kUntouched;
  use_up_memory();
  check(tree.Triangulate(&count, indices) == 14, 1);
  check(count == 0, 2);
  std::_Exit(0);
}
TEST(PolytreeMemoryDeathTest, TriangulateWithoutMemoryGives14) {
  EXPECT_EXIT(triangulate_a_tree(), testing::ExitedWithCode(0), "");
}

}  // namespace

#endif
