// One ring of indices into shared coordinates, and whether it lies inside another.
//
// The point test casts a ray towards greater x and counts the edges that it crosses, as
// in M. Shimrat, "Algorithm 112: Position of point relative to polygon", Communications of
// the ACM 5 (1962).  No tolerance is used; the height of an edge at the point is computed in
// doubles, in the order of operations that docs/classic.md keeps.
//
// A ring that repeats its first vertex at the end has one edge less than vertices.  That is all
// that the closing vertex changes: everything below counts edges, and takes the vertex behind the
// last for the first.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

#include "kzgis/polytree.h"
#include "polytree/corners.h"

using namespace kzgis;

KZ_GIS_PolygonNode_c::KZ_GIS_PolygonNode_c(KZ_GIS_VertexList_c& list, kz_ulong count,
                                           const kz_ulong* indices, double xMin, double yMin,
                                           double xMax, double yMax)
    : list_(&list), x_min_(xMin), y_min_(yMin), x_max_(xMax), y_max_(yMax) {
  SetVertices(count, indices);
}

KZ_GIS_PolygonNode_c::KZ_GIS_PolygonNode_c(const KZ_GIS_PolygonNode_c& other)
    : KZ_GIS_PolygonNode_c() {
  *this = other;
}

KZ_GIS_PolygonNode_c& KZ_GIS_PolygonNode_c::operator=(const KZ_GIS_PolygonNode_c& other) {
  if (this == &other) return *this;
  list_ = other.list_;
  SetBounds(other.x_min_, other.y_min_, other.x_max_, other.y_max_);
  SetVertices(other.count_, other.indices_);
  return *this;
}

KZ_GIS_PolygonNode_c::~KZ_GIS_PolygonNode_c() { std::free(indices_); }

kz_ulong KZ_GIS_PolygonNode_c::SetVertices(kz_ulong count, const kz_ulong* indices) {
  kz_ulong* copy = nullptr;
  kz_ulong result = status::success;
  if (count > 0 && indices == nullptr) {
    result = status::refused;
  } else if (count > 0) {
    copy = static_cast<kz_ulong*>(std::malloc(std::size_t{count} * sizeof(kz_ulong)));
    if (copy != nullptr) {
      std::copy_n(indices, count, copy);
    } else {
      result = status::out_of_memory;
    }
  }
  // Only now: `indices` may lie in the old array.
  std::free(indices_);
  indices_ = copy;
  count_ = copy != nullptr ? count : 0;
  return result;
}

kz_ulong KZ_GIS_PolygonNode_c::GetVertices(kz_ulong* count, const kz_ulong** indices) const {
  *count = count_;
  *indices = indices_;
  return status::success;
}

kz_ulong KZ_GIS_PolygonNode_c::NumberOfVertices() const { return count_; }

KZ_GIS_VertexList_c& KZ_GIS_PolygonNode_c::VertexList(KZ_GIS_VertexList_c& list) {
  list_ = &list;
  return list;
}

KZ_GIS_VertexList_c& KZ_GIS_PolygonNode_c::VertexList() const {
  if (list_ != nullptr) return *list_;
  // Made anew each time, whatever the last one asked has made of it, and never destroyed:
  // arranging for that at a thread's end takes memory, without which glibc ends the program.
  alignas(KZ_GIS_VertexList_c) thread_local std::byte room[sizeof(KZ_GIS_VertexList_c)];
  return *new (room) KZ_GIS_VertexList_c(0, nullptr, nullptr);
}

void KZ_GIS_PolygonNode_c::SetBounds(double xMin, double yMin, double xMax, double yMax) {
  x_min_ = xMin;
  y_min_ = yMin;
  x_max_ = xMax;
  y_max_ = yMax;
}

void KZ_GIS_PolygonNode_c::GetBounds(double* xMin, double* yMin, double* xMax, double* yMax) const {
  *xMin = x_min_;
  *yMin = y_min_;
  *xMax = x_max_;
  *yMax = y_max_;
}

bool KZ_GIS_PolygonNode_c::BoxIsPoint() const { return x_min_ == x_max_ && y_min_ == y_max_; }

kz_ulong KZ_GIS_PolygonNode_c::Inside(KZ_GIS_PolygonNode_c& other) { return Inside(*this, other); }

kz_ulong KZ_GIS_PolygonNode_c::Contains(KZ_GIS_PolygonNode_c& other) {
  return Inside(other, *this);
}

void KZ_GIS_PolygonNode_c::SwapVertexOrder() { std::reverse(indices_, indices_ + count_); }

KZ_GIS_PolygonNode_c::Corners KZ_GIS_PolygonNode_c::ListCorners() const {
  if (list_ == nullptr) return {indices_, nullptr, nullptr, 0};
  const Corners all{indices_, list_->XVertices(), list_->YVertices(), list_->NumberOfVertices()};
  return all.x != nullptr && all.y != nullptr ? all : Corners{indices_, nullptr, nullptr, 0};
}

/// The vertex at a position of the ring, which must be below the count.
KZ_GIS_PolygonNode_c::Vertex KZ_GIS_PolygonNode_c::At(kz_ulong position) const {
  return ListCorners().At(position);
}

/// Computes the box from the vertices; a coordinate that is not a number changes nothing,
/// and a ring without vertices has an inverted box.
/// @return 1; 2, with the box as it was, when the vertex list cannot cover the indices
kz_ulong KZ_GIS_PolygonNode_c::ComputeBounds() {
  if (list_ == nullptr || list_->NumberOfVertices() < count_ || list_->XVertices() == nullptr ||
      list_->YVertices() == nullptr) {
    return status::refused;
  }
  constexpr double largest = std::numeric_limits<double>::max();
  SetBounds(largest, largest, -largest, -largest);
  const Corners corners = ListCorners();
  for (kz_ulong i = 0; i < count_; ++i) {
    const Vertex v = corners.At(i);
    if (v.x < x_min_) x_min_ = v.x;
    if (v.y < y_min_) y_min_ = v.y;
    if (v.x > x_max_) x_max_ = v.x;
    if (v.y > y_max_) y_max_ = v.y;
  }
  return status::success;
}

kz_ulong KZ_GIS_PolygonNode_c::Inside(KZ_GIS_PolygonNode_c& inner, KZ_GIS_PolygonNode_c& outer) {
  if (inner.BoxIsPoint()) inner.ComputeBounds();
  if (outer.BoxIsPoint()) outer.ComputeBounds();
  // Touching boxes overlap.
  if (inner.x_min_ > outer.x_max_ || outer.x_min_ > inner.x_max_ || inner.y_min_ > outer.y_max_ ||
      outer.y_min_ > inner.y_max_) {
    return 0;
  }
  // The first vertex that the rings do not share by position decides.
  kz_ulong position = 0;
  while (position < inner.count_ && position < outer.count_ &&
         inner.indices_[position] == outer.indices_[position]) {
    ++position;
  }
  if (position == inner.count_) return 1;
  const Vertex v = inner.At(position);
  return outer.PointInPolygon(v.x, v.y);
}

/// How many edges the ring has: a closing vertex adds none.
kz_ulong KZ_GIS_PolygonNode_c::NumberOfEdges() const {
  if (count_ == 0) return 0;
  const Corners corners = ListCorners();
  const Vertex first = corners.At(0);
  const Vertex last = corners.At(count_ - 1);
  return last.x == first.x && last.y == first.y ? count_ - 1 : count_;
}

/// 1 when the point lies inside the ring or on its boundary, else 0.
kz_ulong KZ_GIS_PolygonNode_c::PointInPolygon(double px, double py) const {
  if (list_ == nullptr || list_->XVertices() == nullptr || list_->YVertices() == nullptr) return 0;
  kz_ulong parity = 0;
  return CrossEdges(px, py, 0, NumberOfEdges(), &parity) ? 1 : parity;
}

/// Flips `*parity` for each of the edges from number `begin` to before `end` that the ray
/// from the point crosses; edge i starts at vertex i.
///
/// An edge that starts at the height of the ray answers for the whole level run before it.
/// A point exactly on a vertical edge is not seen as on the boundary: it counts as a
/// crossing (PointInPolygon.VerticalEdgeIsACrossing).
///
/// @return true, with the parity of no further use, when the point is on one of them
bool KZ_GIS_PolygonNode_c::CrossEdges(double px, double py, kz_ulong begin, kz_ulong end,
                                      kz_ulong* parity) const {
  if (begin == end) return false;
  const Corners corners = ListCorners();
  Vertex b = corners.At(begin);
  for (kz_ulong i = begin; i < end; ++i) {
    const Vertex a = b;
    b = corners.At(i + 1 < count_ ? i + 1 : 0);
    const bool falls = a.y >= b.y;
    const Vertex& low = falls ? b : a;
    const Vertex& high = falls ? a : b;
    // Both ends belong to the edge: a vertex at the ray's height is on two edges, and the one
    // that starts there answers for it, below.
    if (py < low.y || py > high.y) continue;
    const double min_x = std::min(a.x, b.x);
    const double max_x = std::max(a.x, b.x);
    if (px > max_x) continue;
    if (high.y == low.y) {
      if (min_x <= px && px <= max_x) return true;
      continue;
    }
    if (a.y != py) {
      if (px >= min_x && high.x != low.x) {
        const double slope = (high.y - low.y) / (high.x - low.x);
        const double edge_y = (px - low.x) * slope + low.y;
        if (edge_y == py) return true;
        if (edge_y > py ? slope < 0.0 : edge_y < py && slope > 0.0) *parity ^= 1;
      } else {
        *parity ^= 1;
      }
      continue;
    }
    if (px > a.x) continue;
    if (px == a.x) return true;
    const double in = a.y - HeightBefore(i);
    const double out = b.y - a.y;
    if ((in <= 0.0 && out > 0.0) || (in > 0.0 && out <= 0.0)) *parity ^= 1;
  }
  return false;
}

/// The height of the nearest vertex before `position` at another height, going round the
/// ring; the height there when the whole ring is level.
double KZ_GIS_PolygonNode_c::HeightBefore(kz_ulong position) const {
  const Corners corners = ListCorners();
  const double here = corners.At(position).y;
  // A closing vertex on the way has the first one's height, and changes nothing.
  kz_ulong at = position;
  for (kz_ulong step = 0; step < count_; ++step) {
    at = at == 0 ? count_ - 1 : at - 1;
    const double y = corners.At(at).y;
    if (!(y == here)) return y;
  }
  return here;
}
