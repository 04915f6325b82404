// The nesting rule of the polygon tree.
//
// The rule itself is in the header, and a few lines long (insert, find_contained, first_around,
// settle).  Everything else is there to find the same answers in less time, and falls back on
// asking each child in turn wherever its conditions do not hold: boxes in an index, stretches of
// edges that are passed over, chains that are bisected.
//
// Between two insertions this holds: a level's children are linked in the order in which they came
// to it, and `order` grows along them; a level that is indexed has a box in the index for each of
// them, and for some that have left; the rings of a chain follow each other as only children,
// but where the chain was cut, and each is clear of the next.

#include "polytree/ring_tree.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

#include "exact/predicates.h"
#include "polytree/corners.h"

namespace kzgis::polytree {

namespace {

constexpr kz_ulong kRoot = 0;
constexpr kz_ulong kNoRing = 0;         // nothing links to the root as a child or sibling
constexpr kz_ulong kManyChildren = 64;  // from here on an index beats looking at each
constexpr kz_ulong kStretch = 64;       // edges passed over at once
constexpr std::size_t kLongChain = 8;   // from here on it is looked for a level to skip to
// Pairs of edges of two rings that are to be found clear of each other: rings of more do not
// come in such numbers that walking past them takes long.
constexpr std::uint64_t kMostPairs = 1 << 17;
constexpr double kLargest = 0x1p+400;  // what is known of rounding errors holds up to here

}  // namespace

RingTree::RingTree(std::span<KZ_GIS_PolygonNode_c> nodes)
    : nodes_(nodes), rings_(nodes.size()), links_(nodes.size()) {
  for (kz_ulong ring = 1; ring < nodes.size(); ++ring) {
    describe(ring);
    insert(ring);
  }
}

/// Notes what the tests will ask of a ring, so that none of them walks round it for that.
void RingTree::describe(kz_ulong ring) {
  KZ_GIS_PolygonNode_c& node = nodes_[ring];
  Ring& own = rings_[ring];
  if (node.BoxIsPoint()) node.ComputeBounds();
  node.GetBounds(&own.box.x_min, &own.box.y_min, &own.box.x_max, &own.box.y_max);
  own.edges = node.NumberOfEdges();
  own.numbers = true;
  own.largest = 0.0;
  own.first_stretch = stretches_.size();
  const kz_ulong count = node.NumberOfVertices();
  if (count == 0) return;
  const auto corners = node.ListCorners();
  own.first_x = corners.At(0).x;
  own.first_y = corners.At(0).y;
  for (kz_ulong begin = 0; begin < own.edges; begin += kStretch) {
    Stretch heights{corners.At(begin).y, corners.At(begin).y};
    const kz_ulong end = std::min(own.edges - begin, kStretch) + begin;
    for (kz_ulong i = begin; i <= end; ++i) {
      const auto v = corners.At(i < count ? i : 0);
      heights.low = std::min(heights.low, v.y);
      heights.high = std::max(heights.high, v.y);
      if (std::isnan(v.x) || std::isnan(v.y)) own.numbers = false;
      for (const double c : {v.x, v.y}) {
        own.largest = exact::in_range(c) ? std::max(own.largest, std::fabs(c))
                                         : std::numeric_limits<double>::infinity();
      }
    }
    stretches_.push_back(heights);
  }
}

/// `nodes_[inner].Inside(nodes_[outer])`, for two different rings whose boxes overlap.
bool RingTree::inside(kz_ulong inner, kz_ulong outer) const {
  const KZ_GIS_PolygonNode_c& ring = nodes_[outer];
  const Ring& around = rings_[outer];
  if (nodes_[inner].NumberOfVertices() == 0) return true;  // every index is shared
  const double x = rings_[inner].first_x;
  const double y = rings_[inner].first_y;
  if (!around.numbers || std::isnan(x) || std::isnan(y)) return ring.PointInPolygon(x, y) == 1;
  // Below, above and to the right no edge is crossed, and to the left an even number: a point
  // outside the box needs no test.
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

/// Takes a ring down from the root to its level.
///
/// No ring is moved but by settling, so that a ring which goes on down has changed nothing.
void RingTree::insert(kz_ulong ring) {
  kz_ulong level = kRoot;
  for (;;) {
    find_overlapping(level, ring);
    find_contained(ring);
    if (!contained_.empty()) break;
    const kz_ulong around = first_around(ring);
    if (around == kNoRing) break;
    // Within a chain there is nothing to skip to, or it would have been done at its start.
    const bool known = chained(level);
    level = around;
    if (!known) level = skip_levels(level, ring);
  }
  settle(level, ring);
}

/// Puts the ring on the level, with the children that it takes below it.
void RingTree::settle(kz_ulong level, kz_ulong ring) {
  if (contained_.size() == 1 && chained(level)) {
    const kz_ulong child = contained_[0];
    if (clear(level, ring) && clear(ring, child)) {
      // The chain stays whole.
      const kz_ulong chain = links_[level].chain;
      links_[ring].chain = chain;
      chains_[chain].insert(ring);
    } else {
      cut_chain(level);
    }
  }
  for (const kz_ulong child : contained_) {
    unlink(child);
    append(ring, child);
  }
  append(level, ring);
}

/// Collects the level's children whose boxes overlap the ring's, in no order.
void RingTree::find_overlapping(kz_ulong level, kz_ulong ring) {
  overlapping_.clear();
  const Box& box = rings_[ring].box;
  if (!links_[level].indexed) {
    for (kz_ulong child = links_[level].first_child; child != kNoRing; child = links_[child].next) {
      if (rings_[child].box.overlaps(box)) overlapping_.push_back(child);
    }
    return;
  }
  indices_.at(level).find(box, overlapping_);
  // An index keeps the children that have moved away since.
  std::erase_if(overlapping_, [&](kz_ulong child) { return links_[child].parent != level; });
}

/// Collects the children that the ring takes, in sibling order.
void RingTree::find_contained(kz_ulong ring) {
  contained_.clear();
  std::copy_if(overlapping_.begin(), overlapping_.end(), std::back_inserter(contained_),
               [&](kz_ulong child) { return inside(child, ring); });
  std::sort(contained_.begin(), contained_.end(),
            [this](kz_ulong a, kz_ulong b) { return links_[a].order < links_[b].order; });
  std::size_t taken = 0;
  kz_ulong passed_over = kNoRing;
  for (const kz_ulong child : contained_) {
    if (child == passed_over) continue;
    contained_[taken++] = child;
    passed_over = links_[child].next;
  }
  contained_.resize(taken);
}

/// The first of the level's children that the ring lies in.
kz_ulong RingTree::first_around(kz_ulong ring) {
  kz_ulong first = kNoRing;
  for (const kz_ulong child : overlapping_) {
    if (first != kNoRing && links_[first].order < links_[child].order) continue;
    if (inside(ring, child)) first = child;
  }
  return first;
}

/// Makes the ring the level's last child.
void RingTree::append(kz_ulong level, kz_ulong ring) {
  Links& up = links_[level];
  Links& own = links_[ring];
  if (chained(level)) cut_chain(level);
  own.parent = level;
  own.previous = up.last_child;
  own.next = kNoRing;
  own.order = appended_++;
  (up.last_child == kNoRing ? up.first_child : links_[up.last_child].next) = ring;
  up.last_child = ring;
  ++up.children;

  if (up.indexed) {
    indices_.at(level).insert(rings_[ring].box, ring);
  } else if (up.children == kManyChildren) {
    up.indexed = true;
    BoxIndex& fresh = indices_[level];
    for (kz_ulong child = up.first_child; child != kNoRing; child = links_[child].next) {
      fresh.insert(rings_[child].box, child);
    }
  }
  if (up.children == 1 && level != kRoot) extend_chain(level, ring);
}

/// Takes the ring from its level's children; its box stays in an index there.
void RingTree::unlink(kz_ulong ring) {
  const Links& own = links_[ring];
  Links& up = links_[own.parent];
  (own.previous == kNoRing ? up.first_child : links_[own.previous].next) = own.next;
  (own.next == kNoRing ? up.last_child : links_[own.next].previous) = own.previous;
  --up.children;
}

// Chains.

/// Whether one ring's box lies within the other's, and its first vertex in the other ring.
bool RingTree::surrounds(kz_ulong outer, kz_ulong inner) const {
  const Box& around = rings_[outer].box;
  const Box& box = rings_[inner].box;
  return around.x_min < box.x_min && around.y_min < box.y_min && box.x_max < around.x_max &&
         box.y_max < around.y_max && inside(inner, outer);
}

/// Whether `inner` lies in `outer` and keeps clear of it.
bool RingTree::clear(kz_ulong outer, kz_ulong inner) {
  // What made a level be skipped to is asked again when the ring is linked there.
  if (outer == last_clear_.outer && inner == last_clear_.inner) return true;
  const Ring& around = rings_[outer];
  const Ring& own = rings_[inner];
  const std::uint64_t pairs = std::uint64_t{around.edges} * own.edges;
  if (pairs == 0 || pairs > kMostPairs) return false;
  if (around.largest > kLargest || own.largest > kLargest) return false;
  if (!surrounds(outer, inner)) return false;
  list_sides(outer, outer_sides_);
  list_sides(inner, inner_sides_);
  if (!keep_apart(outer_sides_, inner_sides_, around.largest)) return false;
  last_clear_ = {outer, inner};
  return true;
}

/// The ring's sides, as the test for clearance wants them.
void RingTree::list_sides(kz_ulong ring, std::vector<Side>& sides) const {
  sides.clear();
  const KZ_GIS_PolygonNode_c& node = nodes_[ring];
  const auto corners = node.ListCorners();
  const kz_ulong edges = rings_[ring].edges;
  const kz_ulong count = node.NumberOfVertices();
  for (kz_ulong i = 0; i < edges; ++i) {
    const auto a = corners.At(i);
    const auto b = corners.At(i + 1 < count ? i + 1 : 0);
    const bool rightward = a.x != b.x ? a.x < b.x : a.y < b.y;
    sides.push_back(rightward ? Side{a.x, a.y, b.x, b.y} : Side{b.x, b.y, a.x, a.y});
  }
}

/// Whether a level and its only child follow each other in a chain.
bool RingTree::chained(kz_ulong level) const {
  const Links& up = links_[level];
  return up.chain != 0 && up.children == 1 && links_[up.first_child].chain == up.chain;
}

/// Puts a level and its only child into one chain if they are clear of each other.  Two
/// chains stay two: had they anything in common, the ring that came between would be.
void RingTree::extend_chain(kz_ulong level, kz_ulong ring) {
  kz_ulong& up = links_[level].chain;
  kz_ulong& own = links_[ring].chain;
  if ((up != 0 && own != 0) || !clear(level, ring)) return;
  if (up == 0 && own == 0) {
    own = static_cast<kz_ulong>(chains_.size());
    chains_.emplace_back(Inward{this});
    chains_.back().insert(ring);
  }
  if (up == 0) {
    up = own;
    chains_[up].insert(level);
  } else {
    own = up;
    chains_[own].insert(chains_[own].end(), ring);  // most come last
  }
}

/// Parts a chain between a level and its only child.
void RingTree::cut_chain(kz_ulong level) {
  Chain& chain = chains_[links_[level].chain];
  const auto cut = std::next(chain.find(level));
  // The shorter part goes into a chain of its own: all cuts of a chain together then take
  // no more than its length times the logarithm of it.
  auto front = chain.begin();
  auto back = chain.end();
  while (front != cut && back != cut) {
    ++front;
    --back;
  }
  auto from = front == cut ? chain.begin() : cut;
  const auto to = front == cut ? cut : chain.end();
  const auto number = static_cast<kz_ulong>(chains_.size());
  Chain part(Inward{this});
  while (from != to) {
    links_[*from].chain = number;
    part.insert(part.end(), chain.extract(from++));
  }
  chains_.push_back(std::move(part));
}

/// The level that a ring comes to which goes down from the first of a chain: a ring of the
/// chain around it, the levels down to which have nothing to decide, or the first itself.
kz_ulong RingTree::skip_levels(kz_ulong level, kz_ulong ring) {
  if (!chained(level) || rings_[ring].largest > kLargest) return level;
  const Chain& chain = chains_[links_[level].chain];
  if (chain.size() < kLongChain) return level;
  // Rings that come in order, from the outermost in, belong into the innermost.
  if (clear(*chain.rbegin(), ring)) return *chain.rbegin();
  // A ring that touches the innermost around it may be clear of the next one.
  auto around = chain.lower_bound(Inward::Other{ring});
  for (int tries = 0; tries < 2 && around != chain.begin(); ++tries) {
    --around;
    if (clear(*around, ring)) return *around;
  }
  return level;
}

}  // namespace kzgis::polytree
