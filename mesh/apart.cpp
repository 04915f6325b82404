// Most polygons are records of rings that have no point in common.  For them a sweep has little to
// do: a ring is cut where it turns back into chains that run from left to right, and the line stops
// only where two chains of a ring begin or end together, twice for a convex ring however many
// vertices it has.
//
// Where a chain begins, the order of the chains along the line tells the ring around it.  That the
// order is right is proved afterwards: as long as two chains are neighbours, each vertex of one
// must lie on its side of the other.  Neighbours are looked at when they cease to be neighbours,
// from where they became so, a vertex at a time, so that each vertex is looked at twice.  If all
// neighbours keep their order at all times, no chain meets another, and the order was the true one
// at every stop.  If any do not, what was found out on the way is worth nothing, and nothing is
// handed out.
//
// After M. I. Shamos and D. Hoey, "Geometric intersection problems" (1976), by monotone chains.
// The line leans a hair to the left, as in mesh/sites.h: at the same x the lower point comes first.

#include "mesh/apart.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <utility>

#include "exact/predicates.h"
#include "mesh/rings.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

namespace {

using exact::orientation;
using exact::Point;

bool comes_before(const Point& a, const Point& b) { return a.x < b.x || (a.x == b.x && a.y < b.y); }

class ApartSweep {
 public:
  explicit ApartSweep(const Rings& rings) : rings_(rings), status_(Below{this}) {
    extents_.reserve(rings.starts.size());
    stops_.reserve(2 * rings.starts.size());  // as for convex rings
  }

  /// @return false where a ring is not apart
  bool run() {
    for (std::uint32_t ring = 0; ring < rings_.starts.size(); ++ring) {
      if (!find_stops(ring)) return false;
    }
    make_chains();
    std::sort(stops_.begin(), stops_.end(),
              [](const Stop& a, const Stop& b) { return comes_before(a.place, b.place); });
    parents_.assign(rings_.starts.size(), kNotMet);
    for (std::size_t i = 0; i < stops_.size(); ++i) {
      if (i > 0 && !comes_before(stops_[i - 1].place, stops_[i].place)) return false;
      if (!(stops_[i].begins ? begin(stops_[i]) : end(stops_[i]))) return false;
    }
    return true;
  }

  std::vector<std::uint32_t> take_parents() { return std::move(parents_); }

  /// Whether it ended at a vertex that repeats the one before it.
  bool repeats_vertex() const { return repeats_vertex_; }

 private:
  static constexpr std::uint32_t kNotMet = kNone - 1;  // a ring whose parent is not yet known

  struct Below {
    const ApartSweep* sweep;
    using is_transparent = void;
    // Chains are never compared with each other, so that one goes where a hint has it.
    bool operator()(std::uint32_t, std::uint32_t) const { return false; }
    bool operator()(std::uint32_t chain, const Point& place) const {
      return sweep->runs_below(chain, place);
    }
  };
  using Status = std::multiset<std::uint32_t, Below>;

  /// A part of a ring that runs from left to right.
  struct Chain {
    std::uint32_t at = kNone;    // the right end of the side that the line crosses, a vertex
    std::uint32_t last = kNone;  // the right end of the last side
    std::uint32_t ring = kNone;
    bool forward = false;  // whether the ring runs along it from left to right
    bool inside_above = false;
    // Where this chain and its upper neighbour were when they became neighbours.
    std::uint32_t from = kNone, upper_from = kNone;
    Status::iterator place{};
  };

  /// Where two chains of a ring begin or end.
  struct Stop {
    Point place;
    std::uint32_t vertex;
    std::uint32_t one, other;
    bool begins;
  };

  /// A ring: its vertices, and its first stop before they are sorted.
  struct Extent {
    std::uint32_t begin, end;
    std::uint32_t first_stop;
  };

  Point point(std::uint32_t vertex) const { return {rings_.x[vertex], rings_.y[vertex]}; }

  std::uint32_t next(std::uint32_t ring, std::uint32_t vertex, bool forward) const {
    const Extent& e = extents_[ring];
    if (forward) return vertex + 1 < e.end ? vertex + 1 : e.begin;
    return vertex > e.begin ? vertex - 1 : e.end - 1;
  }
  std::uint32_t right_of(const Chain& chain, std::uint32_t vertex) const {
    return next(chain.ring, vertex, chain.forward);
  }
  std::uint32_t left_of(const Chain& chain, std::uint32_t vertex) const {
    return next(chain.ring, vertex, !chain.forward);
  }

  /// Finds where a ring turns back.
  bool find_stops(std::uint32_t ring) {
    const auto begin = static_cast<std::uint32_t>(rings_.starts[ring]);
    auto end = static_cast<std::uint32_t>(end_of_ring(rings_, ring));
    const auto same = [this](std::uint32_t a, std::uint32_t b) {
      return rings_.x[a] == rings_.x[b] && rings_.y[a] == rings_.y[b];
    };
    if (end - begin > 1 && same(begin, end - 1)) --end;
    if (end - begin < 3) return false;
    extents_.push_back({begin, end, static_cast<std::uint32_t>(stops_.size())});
    bool rising = comes_before(point(end - 1), point(begin));
    for (std::uint32_t v = begin; v < end; ++v) {
      const std::uint32_t after = v + 1 < end ? v + 1 : begin;
      if (same(v, after)) {
        repeats_vertex_ = true;
        return false;
      }
      const bool rises = comes_before(point(v), point(after));
      if (rises != rising) stops_.push_back({point(v), v, kNone, kNone, rises});
      rising = rises;
    }
    return true;
  }

  /// Makes the chains: each lies between two stops that follow each other along a ring.
  void make_chains() {
    chains_.resize(stops_.size());
    for (std::uint32_t ring = 0; ring < extents_.size(); ++ring) {
      const std::uint32_t first = extents_[ring].first_stop;
      const auto end = ring + 1 < extents_.size() ? extents_[ring + 1].first_stop
                                                  : static_cast<std::uint32_t>(stops_.size());
      for (std::uint32_t i = first; i < end; ++i) {
        Stop& stop = stops_[i];
        Stop& after = stops_[i + 1 < end ? i + 1 : first];
        Chain& chain = chains_[i];
        chain.ring = ring;
        chain.forward = stop.begins;
        chain.last = stop.begins ? after.vertex : stop.vertex;
        chain.at = next(ring, stop.begins ? stop.vertex : after.vertex, chain.forward);
        stop.other = i;
        after.one = i;
      }
    }
  }

  /// Lets a chain's side be the one that the line crosses at a place, or the last one.
  void advance(Chain& chain, const Point& place) const {
    while (chain.at != chain.last && comes_before(point(chain.at), place)) {
      chain.at = right_of(chain, chain.at);
    }
  }

  bool runs_below(std::uint32_t number, const Point& place) const {
    Chain& chain = chains_[number];
    advance(chain, place);
    return orientation(point(left_of(chain, chain.at)), point(chain.at), place) > 0;
  }

  /// The smallest ring around the points just above a chain.
  std::uint32_t ring_above(std::uint32_t number) const {
    const Chain& chain = chains_[number];
    return chain.inside_above ? chain.ring : parents_[chain.ring];
  }

  bool begin(const Stop& stop) {
    const auto above = status_.lower_bound(stop.place);
    const std::uint32_t upper = above != status_.end() ? *above : kNone;
    const std::uint32_t lower = above != status_.begin() ? *std::prev(above) : kNone;
    if (!kept_order(lower, upper, stop.place)) return false;
    const std::uint32_t around = lower != kNone ? ring_above(lower) : kNone;
    const std::uint32_t ring = chains_[stop.one].ring;
    if (parents_[ring] == kNotMet) parents_[ring] = around;
    std::uint32_t one = stop.one;
    std::uint32_t other = stop.other;
    if (orientation(stop.place, point(chains_[one].at), point(chains_[other].at)) < 0) {
      std::swap(one, other);
    }
    chains_[one].inside_above = around != ring;
    chains_[other].inside_above = around == ring;
    chains_[other].place = status_.emplace_hint(above, other);
    chains_[one].place = status_.emplace_hint(chains_[other].place, one);
    become_neighbours(lower, one, stop.place);
    become_neighbours(one, other, stop.place);
    become_neighbours(other, upper, stop.place);
    return true;
  }

  bool end(const Stop& stop) {
    auto first = chains_[stop.one].place;
    auto second = chains_[stop.other].place;
    if (std::next(first) != second) std::swap(first, second);
    if (std::next(first) != second) return false;
    const auto above = std::next(second);
    const std::uint32_t upper = above != status_.end() ? *above : kNone;
    const std::uint32_t lower = first != status_.begin() ? *std::prev(first) : kNone;
    if (!kept_order(lower, *first, stop.place) || !kept_order(*first, *second, stop.place) ||
        !kept_order(*second, upper, stop.place)) {
      return false;
    }
    status_.erase(first);
    status_.erase(second);
    become_neighbours(lower, upper, stop.place);
    return true;
  }

  void become_neighbours(std::uint32_t lower, std::uint32_t upper, const Point& place) {
    if (lower == kNone || upper == kNone) return;
    advance(chains_[lower], place);
    advance(chains_[upper], place);
    chains_[lower].from = chains_[lower].at;
    chains_[lower].upper_from = chains_[upper].at;
  }

  /// Whether two neighbours have kept their order, without touching, until a place.
  ///
  /// Two sides do not meet, the one above the other, just if that is so at both ends of what they
  /// have in common: where the later one begins, and where the earlier one ends.  A pair of sides
  /// may reach beyond the place; where rings are apart, they do not meet there either.
  bool kept_order(std::uint32_t lower_number, std::uint32_t upper_number,
                  const Point& place) const {
    if (lower_number == kNone || upper_number == kNone) return true;
    const Chain& lower = chains_[lower_number];
    const Chain& upper = chains_[upper_number];
    std::uint32_t a = lower.from;
    std::uint32_t b = lower.upper_from;
    std::uint32_t a_left = left_of(lower, a);
    std::uint32_t b_left = left_of(upper, b);
    if (a_left == b_left) {
      if (orientation(point(a_left), point(a), point(b)) <= 0) return false;
    } else if (comes_before(point(a_left), point(b_left))) {
      if (orientation(point(a_left), point(a), point(b_left)) <= 0) return false;
    } else {
      if (orientation(point(b_left), point(b), point(a_left)) >= 0) return false;
    }
    while (a != b) {
      const bool a_ends = comes_before(point(a), point(b));
      const std::uint32_t end = a_ends ? a : b;
      if (a_ends ? orientation(point(b_left), point(b), point(a)) >= 0
                 : orientation(point(a_left), point(a), point(b)) <= 0) {
        return false;
      }
      // No chain ends before the place, or it would have been taken out there.
      if (!comes_before(point(end), place)) return true;
      if (a_ends) {
        a_left = a;
        a = right_of(lower, a);
      } else {
        b_left = b;
        b = right_of(upper, b);
      }
    }
    // They end together.
    return true;
  }

  Rings rings_;
  std::vector<Extent> extents_;        // of the rings
  mutable std::vector<Chain> chains_;  // looking for a place advances those that are asked
  std::vector<Stop> stops_;
  std::vector<std::uint32_t> parents_;
  bool repeats_vertex_ = false;
  Status status_;
};

/// The rings without vertices that repeat the one before.
Outline without_repeats(const Rings& rings) {
  Outline cleaned;
  for (std::size_t ring = 0; ring < rings.starts.size(); ++ring) {
    const std::size_t first = cleaned.x.size();
    cleaned.starts.push_back(static_cast<std::int32_t>(first));
    for (auto i = static_cast<std::size_t>(rings.starts[ring]); i < end_of_ring(rings, ring); ++i) {
      if (cleaned.x.size() > first && rings.x[i] == cleaned.x.back() &&
          rings.y[i] == cleaned.y.back()) {
        continue;
      }
      cleaned.x.push_back(rings.x[i]);
      cleaned.y.push_back(rings.y[i]);
    }
  }
  return cleaned;
}

}  // namespace

std::optional<Apart> parents_apart(const Rings& rings) {
  Apart result;
  ApartSweep sweep(rings);
  if (sweep.run()) {
    result.parents = sweep.take_parents();
    return result;
  }
  if (!sweep.repeats_vertex()) return std::nullopt;
  result.cleaned = without_repeats(rings);
  ApartSweep again(result.cleaned->rings());
  if (!again.run()) return std::nullopt;
  result.parents = again.take_parents();
  return result;
}

}  // namespace kzgis::mesh
