// Rings, trees of them, and meshes without memory.

#include "kzgis/polytree.h"

#include <new>
#include <numeric>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "kzgis/triangulate.h"
#include "memory/failing.h"
#include "support/meshed.h"

namespace {

using kzgis::ErrorKind;

// Squares: a boundary with a hole, then an island; boundaries clockwise.
constexpr double kX[] = {0, 0, 9, 9, 1, 8, 8, 1, 3, 3, 6, 6};
constexpr double kY[] = {0, 9, 9, 0, 1, 1, 8, 8, 3, 6, 6, 3};
constexpr kz_ulong kStarts[] = {0, 4, 8};
constexpr kz_long kRingStarts[] = {0, 4, 8};
constexpr kz_ulong kIndices[] = {0, 1, 2, 3};

KZ_GIS_PolygonTree_c tree() { return {0, 0, 0, 0, 3, kStarts, 12, kX, kY}; }

/// 0 for an empty tree.
long corners(const KZ_GIS_PolygonTree_c& t) {
  kz_ulong count = 0;
  t.NumberOfConnections(&count);
  return static_cast<long>(count);
}

/// Inserts children until the array has grown more than once.
template <typename Insert>
long insert_all(Insert insert) {
  static std::vector<KZ_GIS_PolygonNode_c> nodes(30);
  for (KZ_GIS_PolygonNode_c& node : nodes) {
    const kz_ulong status = insert(node);
    if (status != 1) return static_cast<long>(status);
  }
  return 1;
}

// A node tells by its number of indices whether it has them.

std::vector<Operation> nodes() {
  static KZ_GIS_VertexList_c list(12, kX, kY);
  static KZ_GIS_PolygonNode_c ring(list, 4, kIndices, 0, 0, 9, 9);
  return {
      {"VertexList",
       0,
       {},
       [] {
         KZ_GIS_VertexList_c copy(list);
         copy = list;
         return long{copy.NumberOfVertices()};
       }},
      {"PolygonNode",
       1,
       {0},
       [] {
         const KZ_GIS_PolygonNode_c node(list, 4, kIndices, 0, 0, 9, 9);
         return long{node.NumberOfVertices()};
       }},
      {"PolygonNode_Copy",
       1,
       {0},
       [] {
         const KZ_GIS_PolygonNode_c copy(ring);
         return long{copy.NumberOfVertices()};
       }},
      {"PolygonNode_Assign",
       1,
       {0},
       [] {
         KZ_GIS_PolygonNode_c copy;
         copy = ring;
         return long{copy.NumberOfVertices()};
       }},
      {"SetVertices",
       1,
       {14},
       [] {
         KZ_GIS_PolygonNode_c node;
         const kz_ulong status = node.SetVertices(4, kIndices);
         return node.NumberOfVertices() == (status == 1 ? 4 : 0) ? long{status} : -1;
       }},
      {"PolygonNode_Others",
       0,
       {},
       [] {
         KZ_GIS_PolygonNode_c node;
         node.VertexList(list);
         kz_ulong count = 0;
         const kz_ulong* indices = nullptr;
         ring.GetVertices(&count, &indices);
         ring.SwapVertexOrder();
         ring.SwapVertexOrder();
         return long{node.VertexList().NumberOfVertices() + ring.Inside(ring) +
                     ring.Contains(node) + count};
       }},
      {"InsertChild",
       3,
       {14},
       [] {
         KZ_GIS_PolygonNode_c parent;
         return insert_all([&](KZ_GIS_PolygonNode_c& node) { return parent.InsertChild(node); });
       }},
      {"InsertSibling",
       3,
       {14},
       [] {
         KZ_GIS_PolygonNode_c parent;
         KZ_GIS_PolygonNode_c first;
         const kz_ulong status = parent.InsertChild(first);
         if (status != 1) return long{status};
         return insert_all([&](KZ_GIS_PolygonNode_c& node) { return first.InsertSibling(node); });
       }},
      {"Reparent",
       2,
       {14},
       [] {
         KZ_GIS_PolygonNode_c old_parent;
         KZ_GIS_PolygonNode_c new_parent;
         KZ_GIS_PolygonNode_c node;
         KZ_GIS_PolygonNode_c other;
         if (old_parent.InsertChild(node) != 1) return 14L;
         old_parent.InsertChild(other);
         const kz_ulong status = node.Reparent(new_parent);
         if (status == 1) return 1L;
         // Refused: the last child of its old parent, as the header says.
         const bool back = &node.Parent() == &old_parent && old_parent.NumberOfChildren() == 2 &&
                           &old_parent.Child(1) == &node && new_parent.NumberOfChildren() == 0;
         return back ? long{status} : -1;
       }},
      {"RemoveChild",
       0,
       {},
       [] {
         static KZ_GIS_PolygonNode_c parent;
         static KZ_GIS_PolygonNode_c child;
         parent.InsertChild(child);
         return long{parent.RemoveChild(child)};
       }},
  };
}

/// A node that only copies its links.
class Links : public KZ_GIS_TreeNode_c {
 public:
  Links() = default;
};

std::vector<Operation> trees() {
  static Links parent;
  static Links child;
  parent.InsertChild(child);
  static const KZ_GIS_PolygonTree_c whole = tree();
  return {
      {"TreeNode_Copy",
       1,
       {0},
       [] {
         const Links copy(parent);
         return long{copy.NumberOfChildren()};
       }},
      {"TreeNode_Assign",
       1,
       {0},
       [] {
         Links copy;
         copy = parent;
         return long{copy.NumberOfChildren()};
       }},
      {"PolygonTree", 8, {0}, [] { return corners(tree()); }},
      {"PolygonTree_Copy",
       8,
       {0},
       [] {
         const KZ_GIS_PolygonTree_c copy(whole);
         return corners(copy);
       }},
      {"PolygonTree_Assign",
       8,
       {0},
       [] {
         KZ_GIS_PolygonTree_c copy;
         copy = whole;
         return corners(copy);
       }},
      {"PolygonTree_Triangulate",
       20,
       {14},
       [] {
         kz_ulong connections[64];
         kz_ulong count = 0;
         const kz_ulong status = whole.Triangulate(&count, connections);
         release_tables();  // which stay otherwise
         return status == 1 && count != 30 ? -1 : long{status};
       }},
  };
}

long kind_of(const kzgis::Rings& rings, const kzgis::MeshOptions& options = {}) {
  const Meshed mesh = meshed(rings, options);
  if (mesh.flaw) return static_cast<long>(mesh.flaw.kind);
  return 100 + static_cast<long>(mesh.triangles.size());
}

long kind_of_nesting(const kzgis::Rings& rings) {
  const Nested nesting = nested(rings);
  if (nesting.flaw) return static_cast<long>(nesting.flaw.kind);
  return 100 + nesting.depth.back();
}

long kind_of_mended(const kzgis::Rings& rings) {
  const auto mesh = kzgis::triangulate(rings, {.delaunay = true, .split_crossings = true});
  if (!mesh) return static_cast<long>(mesh.error().kind);
  return 100 + static_cast<long>(mesh->triangles.size() + mesh->new_x.size());
}

/// A list has no room for the news that there is no memory for it.
long count_flaws(const kzgis::Rings& rings) {
  try {
    return 100 + static_cast<long>(kzgis::find_flaws(rings).size());
  } catch (const std::bad_alloc&) {
    return static_cast<long>(kzgis::ErrorKind::out_of_memory);
  }
}

std::vector<Operation> meshes() {
  static const kzgis::Rings rings{kX, kY, kRingStarts};
  // A bow tie: its sides cross.
  static constexpr double kTieX[] = {0, 9, 9, 0};
  static constexpr double kTieY[] = {0, 9, 0, 9};
  static constexpr kz_long kTieStart[] = {0};
  static const kzgis::Rings tie{kTieX, kTieY, kTieStart};
  // Two triangles with a vertex in common: not apart.
  static constexpr double kPairX[] = {0, 2, 1, 1, 2, 0};
  static constexpr double kPairY[] = {0, 0, 1, 1, 2, 2};
  static constexpr kz_long kPairStarts[] = {0, 3};
  static const kzgis::Rings pair{kPairX, kPairY, kPairStarts};
  // So smooth that its triangles are not flipped one by one.
  static const std::vector<double> curve_x = [] {
    std::vector<double> x(500);
    std::iota(x.begin(), x.end(), 0.0);
    return x;
  }();
  static const std::vector<double> curve_y = [] {
    std::vector<double> y;
    for (const double x : curve_x) y.push_back(x * x);
    return y;
  }();
  static const kzgis::Rings curve{curve_x, curve_y, kTieStart};
  const long no_memory = static_cast<long>(ErrorKind::out_of_memory);
  return {
      {"triangulate", 10, {no_memory}, [] { return kind_of(rings); }},
      {"triangulate_Refused", 5, {no_memory}, [] { return kind_of(tie); }},
      {"triangulate_Mended", 20, {no_memory}, [] { return kind_of_mended(tie); }},
      {"triangulate_FromScratch", 20, {no_memory}, [] { return kind_of_mended(curve); }},
      {"find_flaws", 5, {no_memory}, [] { return count_flaws(tie); }},
      {"triangulate_Refined",
       60,
       {no_memory},
       [] { return kind_of(rings, {.longest_side = 2, .least_angle_deg = 25}); }},
      {"triangulate_RefinedTooFar",
       30,
       {no_memory},
       [] { return kind_of(rings, {.longest_side = 2, .most_triangles = 40}); }},
      {"nest", 5, {no_memory}, [] { return kind_of_nesting(rings); }},
      {"nest_Touching", 20, {no_memory}, [] { return kind_of_nesting(pair); }},
      {"nest_Refused", 5, {no_memory}, [] { return kind_of_nesting(tie); }},
  };
}

INSTANTIATE_TEST_SUITE_P(Nodes, FailingMemory, testing::ValuesIn(nodes()), name_of);
INSTANTIATE_TEST_SUITE_P(Trees, FailingMemory, testing::ValuesIn(trees()), name_of);
INSTANTIATE_TEST_SUITE_P(Meshes, FailingMemory, testing::ValuesIn(meshes()), name_of);

TEST(PolygonNodeWithoutMemory, HasAVertexListInAThreadOfItsOwn) {
  // Nothing that is made once per thread may need memory: glibc ends the program without.
  kz_ulong vertices = 1;
  std::thread([&vertices] {
    KZ_GIS_PolygonNode_c node;
    failing_memory::fail_from(0, true);
    vertices = node.VertexList().NumberOfVertices();
    EXPECT_FALSE(failing_memory::succeed());
  }).join();
  EXPECT_EQ(vertices, 0U);
}

}  // namespace
