// Rings arranged by containment, counted and cut into triangles.
//
// All nodes stand in one array, and the boundaries in the order in which a walk meets them,
// so that nothing here recurses, however deep the rings lie in each other.  The links between
// nodes are those of tree_node.cpp; they are made once, from a nesting that
// was found without them (ring_tree.cpp), and nobody but the tree can get at its nodes to change
// them.
//
// Which ring is a boundary is a matter of its depth alone: odd depths are.  The order in which
// boundaries are triangulated, and in which their triangles stand in the caller's array, is that
// of `boundaries_`: islands before the boundary around them.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <span>

#include "kzgis/polytree.h"
#include "polytree/region.h"
#include "polytree/ring_tree.h"

using namespace kzgis;

namespace {

/// Where ring p of `count` ends, the closing vertex included.
kz_ulong ring_end(kz_ulong p, kz_ulong count, const kz_ulong* starts, kz_ulong total) {
  return p + 1 < count ? starts[p + 1] : total;
}

/// Whether the starts do not decrease, and stay within the vertices.
bool starts_fit(kz_ulong count, const kz_ulong* starts, kz_ulong total) {
  if (count > 0 && starts == nullptr) return false;
  for (kz_ulong p = 0; p < count; ++p) {
    const kz_ulong end = ring_end(p, count, starts, total);
    if (starts[p] > end || end > total) return false;
  }
  return true;
}

/// The boundaries below the root, each behind those inside it: the order in which a walk leaves
/// them that visits children first.
std::vector<kz_ulong> list_boundaries(const polytree::RingTree& nesting) {
  // Down to a ring without children, then on to the next sibling of it or of the first ring
  // above it that has one: the links alone say where to go on, and nothing is kept of the way.
  std::vector<kz_ulong> boundaries;
  kz_ulong ring = 0;
  bool odd_depth = false;
  for (;;) {
    while (nesting.first_child(ring) != 0) {
      ring = nesting.first_child(ring);
      odd_depth = !odd_depth;
    }
    // All that lies below this ring is listed; so it is whenever this loop goes up.
    for (;;) {
      if (ring == 0) return boundaries;
      if (odd_depth) boundaries.push_back(ring);
      if (nesting.next_sibling(ring) != 0) break;
      ring = nesting.parent(ring);
      odd_depth = !odd_depth;
    }
    ring = nesting.next_sibling(ring);
  }
}

}  // namespace

KZ_GIS_PolygonTree_c::KZ_GIS_PolygonTree_c() = default;

KZ_GIS_PolygonTree_c::KZ_GIS_PolygonTree_c(double /*xMin*/, double /*yMin*/, double /*xMax*/,
                                           double /*yMax*/, kz_ulong numPolygons,
                                           const kz_ulong* polygonStarts, kz_ulong totalVertices,
                                           const double* x, const double* y) {
  if (BuildTree(numPolygons, polygonStarts, totalVertices, x, y) != status::success) Clear();
}

KZ_GIS_PolygonTree_c::KZ_GIS_PolygonTree_c(const KZ_GIS_PolygonTree_c& other) {
  if (!CopyFrom(other)) Clear();
}

KZ_GIS_PolygonTree_c& KZ_GIS_PolygonTree_c::operator=(const KZ_GIS_PolygonTree_c& other) {
  if (this == &other) return *this;
  Clear();
  if (!CopyFrom(other)) Clear();
  return *this;
}

KZ_GIS_PolygonTree_c::~KZ_GIS_PolygonTree_c() = default;

void KZ_GIS_PolygonTree_c::Clear() {
  boundaries_.clear();
  nodes_.clear();
  vertex_list_.reset();
}

/// Fills an empty tree; a failure leaves it in part filled.
kz_ulong KZ_GIS_PolygonTree_c::BuildTree(kz_ulong numPolygons, const kz_ulong* polygonStarts,
                                         kz_ulong totalVertices, const double* x, const double* y) {
  if (totalVertices > 0 && (x == nullptr || y == nullptr)) return status::refused;
  if (!starts_fit(numPolygons, polygonStarts, totalVertices)) return status::refused;
  try {
    vertex_list_ = std::make_unique<KZ_GIS_VertexList_c>(totalVertices, x, y);
    nodes_.reserve(std::size_t{numPolygons} + 1);
    constexpr double largest = std::numeric_limits<double>::max();
    nodes_.emplace_back(*vertex_list_, 0, nullptr, -largest, -largest, largest, largest);
    const kz_ulong added = AddRings(numPolygons, polygonStarts);
    return added == status::success ? Nest() : added;
  } catch (const std::bad_alloc&) {
    return status::out_of_memory;
  }
}

/// Makes the nodes of all rings, with their vertices in reversed order.
kz_ulong KZ_GIS_PolygonTree_c::AddRings(kz_ulong numPolygons, const kz_ulong* polygonStarts) {
  // A shapefile's boundaries run clockwise, and the triangulator's the other way.
  const double* const x = vertex_list_->XVertices();
  const double* const y = vertex_list_->YVertices();
  std::vector<kz_ulong> indices;
  for (kz_ulong p = 0; p < numPolygons; ++p) {
    const kz_ulong start = polygonStarts[p];
    kz_ulong end = ring_end(p, numPolygons, polygonStarts, vertex_list_->NumberOfVertices());
    if (start < end && x[end - 1] == x[start] && y[end - 1] == y[start]) --end;
    indices.clear();
    for (kz_ulong i = end; i > start; --i) indices.push_back(i - 1);
    const kz_ulong count = end - start;
    // A box of zeros is computed when it is first asked for, before the ring is nested.
    nodes_.emplace_back(*vertex_list_, count, indices.data(), 0.0, 0.0, 0.0, 0.0);
    if (nodes_.back().NumberOfVertices() != count) return status::out_of_memory;
  }
  return status::success;
}

/// Links the nodes.
kz_ulong KZ_GIS_PolygonTree_c::Nest() {
  const polytree::RingTree nesting(nodes_);
  for (kz_ulong ring = 0; ring < nodes_.size(); ++ring) {
    for (kz_ulong child = nesting.first_child(ring); child != 0;
         child = nesting.next_sibling(child)) {
      if (nodes_[ring].Append(nodes_[child]) != status::success) return status::refused;
    }
  }
  boundaries_ = list_boundaries(nesting);
  return status::success;
}

/// Fills an empty tree with copies of the other's nodes, linked in the same way.
/// @return false when memory runs out
bool KZ_GIS_PolygonTree_c::CopyFrom(const KZ_GIS_PolygonTree_c& other) {
  if (other.vertex_list_ == nullptr) return true;
  try {
    vertex_list_ = std::make_unique<KZ_GIS_VertexList_c>(*other.vertex_list_);
    nodes_.reserve(other.nodes_.size());
    for (const KZ_GIS_PolygonNode_c& node : other.nodes_) {
      nodes_.emplace_back(node).VertexList(*vertex_list_);
      if (nodes_.back().NumberOfVertices() != node.NumberOfVertices()) return false;
    }
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      const KZ_GIS_PolygonNode_c& node = other.nodes_[i];
      for (kz_ulong c = 0; c < node.NumberOfChildren(); ++c) {
        const auto& child = static_cast<const KZ_GIS_PolygonNode_c&>(node.Child(c));
        const auto place = static_cast<std::size_t>(&child - other.nodes_.data());
        if (nodes_[i].Append(nodes_[place]) != status::success) return false;
      }
    }
    boundaries_ = other.boundaries_;
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

kz_ulong KZ_GIS_PolygonTree_c::NumberOfConnections(kz_ulong* count) const {
  if (vertex_list_ == nullptr) return status::success;
  *count = 0;
  for (const kz_ulong boundary : boundaries_) {
    *count += static_cast<kz_ulong>(3 * polytree::triangle_count(nodes_[boundary]));
  }
  return status::success;
}

kz_ulong KZ_GIS_PolygonTree_c::Triangulate(kz_ulong* count, kz_ulong* connections) const {
  if (vertex_list_ == nullptr) return status::success;
  *count = 0;
  // Rings too short for a triangle, and more corners than fit 32 bits, make the announced
  // number wrap: then nobody knows how much room there is.
  std::int64_t total = 0;
  for (const kz_ulong boundary : boundaries_) {
    const std::int64_t triangles = polytree::triangle_count(nodes_[boundary]);
    if (triangles < 0) return status::refused;
    total += 3 * triangles;
  }
  if (total > std::numeric_limits<kz_ulong>::max()) return status::refused;

  for (const kz_ulong boundary : boundaries_) {
    const kz_ulong result = polytree::triangulate_region(nodes_[boundary], connections + *count);
    if (result != status::success) return result;
    *count += static_cast<kz_ulong>(3 * polytree::triangle_count(nodes_[boundary]));
  }
  return status::success;
}
