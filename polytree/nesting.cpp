// The nesting rule of the polygon tree.

#include "polytree/nesting.h"

#include <algorithm>
#include <cmath>

namespace kzgis::polytree {

namespace {

constexpr kz_ulong kRoot = 0;
constexpr kz_ulong kNone = 0;           // nothing links to the root as a child or sibling
constexpr kz_ulong kManyChildren = 64;  // from here on an index beats looking at each
constexpr kz_ulong kStretch = 64;       // edges passed over at once

}  // namespace

Nesting::Nesting(std::span<KZ_GIS_PolygonNode_c> nodes)
    : nodes_(nodes), rings_(nodes.size()), links_(nodes.size()) {
  for (kz_ulong ring = 1; ring < nodes.size(); ++ring) {
    describe(ring);
    insert(ring);
  }
}

void Nesting::describe(kz_ulong ring) {
  KZ_GIS_PolygonNode_c& node = nodes_[ring];
  Ring& own = rings_[ring];
  if (node.BoxIsPoint()) node.ComputeBounds();
  node.GetBounds(&own.box.x_min, &own.box.y_min, &own.box.x_max, &own.box.y_max);
  own.edges = node.NumberOfEdges();
  own.numbers = true;
  own.first_stretch = stretches_.size();
  const kz_ulong count = node.NumberOfVertices();
  if (count == 0) return;
  own.first_x = node.At(0).x;
  own.first_y = node.At(0).y;
  for (kz_ulong begin = 0; begin < own.edges; begin += kStretch) {
    Stretch heights{node.At(begin).y, node.At(begin).y};
    const kz_ulong end = std::min(own.edges - begin, kStretch) + begin;
    for (kz_ulong i = begin; i <= end; ++i) {
      const auto v = node.At(i < count ? i : 0);
      heights.low = std::min(heights.low, v.y);
      heights.high = std::max(heights.high, v.y);
      if (std::isnan(v.x) || std::isnan(v.y)) own.numbers = false;
    }
    stretches_.push_back(heights);
  }
}

/// `nodes_[inner].Inside(nodes_[outer])`, for two different rings whose boxes overlap.
bool Nesting::inside(kz_ulong inner, kz_ulong outer) const {
  const KZ_GIS_PolygonNode_c& ring = nodes_[outer];
  const Ring& around = rings_[outer];
  if (nodes_[inner].NumberOfVertices() == 0) return true;  // every index is shared
  const double x = rings_[inner].first_x;
  const double y = rings_[inner].first_y;
  if (!around.numbers || std::isnan(x) || std::isnan(y)) return ring.PointInPolygon(x, y) == 1;
  // Below, above and to the right no edge is crossed, and to the left an even number.
  const Box& box = around.box;
  if (x < box.x_min || x > box.x_max || y < box.y_min || y > box.y_max) return false;
  kz_ulong parity = 0;
  const Stretch* heights = stretches_.data() + around.first_stretch;
  for (kz_ulong begin = 0; begin < around.edges; begin += kStretch, ++heights) {
    if (y < heights->low || y > heights->high) continue;
    const kz_ulong end = std::min(around.edges - begin, kStretch) + begin;
    if (ring.CrossEdges(x, y, begin, end, &parity)) return true;
  }
  return parity == 1;
}

void Nesting::insert(kz_ulong ring) {
  kz_ulong level = kRoot;
  for (;;) {
    find_overlapping(level, ring);
    find_contained(ring);
    if (!contained_.empty()) {
      for (const kz_ulong child : contained_) {
        unlink(child);
        append(ring, child);
      }
      break;
    }
    const kz_ulong around = first_around(ring);
    if (around == kNone) break;
    level = around;
  }
  append(level, ring);
}

/// Collects the level's children whose boxes overlap the ring's, in sibling order.
void Nesting::find_overlapping(kz_ulong level, kz_ulong ring) {
  overlapping_.clear();
  const Box& box = rings_[ring].box;
  if (!links_[level].indexed) {
    for (kz_ulong child = links_[level].first_child; child != kNone; child = links_[child].next) {
      if (rings_[child].box.overlaps(box)) overlapping_.push_back(child);
    }
    return;
  }
  indices_.at(level).find(box, overlapping_);
  // An index keeps the children that have moved away since.
  std::erase_if(overlapping_, [&](kz_ulong child) { return links_[child].parent != level; });
  std::ranges::sort(overlapping_, {}, [this](kz_ulong child) { return links_[child].order; });
}

/// Collects the children that the ring takes.
void Nesting::find_contained(kz_ulong ring) {
  contained_.clear();
  kz_ulong passed_over = kNone;
  for (const kz_ulong child : overlapping_) {
    if (child != passed_over && inside(child, ring)) {
      contained_.push_back(child);
      passed_over = links_[child].next;
    }
  }
}

kz_ulong Nesting::first_around(kz_ulong ring) {
  for (const kz_ulong child : overlapping_) {
    if (inside(ring, child)) return child;
  }
  return kNone;
}

void Nesting::append(kz_ulong level, kz_ulong ring) {
  Links& up = links_[level];
  Links& own = links_[ring];
  own.parent = level;
  own.previous = up.last_child;
  own.next = kNone;
  own.order = appended_++;
  (up.last_child == kNone ? up.first_child : links_[up.last_child].next) = ring;
  up.last_child = ring;
  ++up.children;

  if (up.indexed) {
    indices_.at(level).insert(rings_[ring].box, ring);
  } else if (up.children == kManyChildren) {
    up.indexed = true;
    BoxIndex& fresh = indices_[level];
    for (kz_ulong child = up.first_child; child != kNone; child = links_[child].next) {
      fresh.insert(rings_[child].box, child);
    }
  }
}

void Nesting::unlink(kz_ulong ring) {
  const Links& own = links_[ring];
  Links& up = links_[own.parent];
  (own.previous == kNone ? up.first_child : links_[own.previous].next) = own.next;
  (own.next == kNone ? up.last_child : links_[own.next].previous) = own.previous;
  --up.children;
}

}  // namespace kzgis::polytree
