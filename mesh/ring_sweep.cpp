// Most polygons have rings without a point in common.  No side of theirs need be cut, no two lie on
// top of each other, and every site is one vertex with two sides.  So the sweep that cuts the
// inside into triangles may run over the rings as they are, and looks on its way whether they are
// apart: whenever two sides become neighbours along the line, it asks whether they will meet.  If
// any two sides meet, those that do so first are neighbours shortly before; until then the order
// along the line is the true one, and nothing is handed out if any do.
//
// Where a vertex comes up from which two sides begin, its place between the sides that the line
// crosses tells whether it lies inside, by the odd-even rule; that is all that need be known of
// which way a ring runs and which rings lie around it.
//
// The test of neighbours is M. I. Shamos and D. Hoey's, "Geometric intersection problems" (1976).

#include "mesh/ring_sweep.h"

#include <cstddef>
#include <utility>

#include "mesh/chains.h"
#include "mesh/line_order.h"
#include "mesh/rings.h"
#include "mesh/sweep_line.h"

namespace kzgis::mesh {

namespace {

class RingSweep {
 public:
  explicit RingSweep(const Sites& sites)
      : sites_(sites), corners_(sites.size()), chains_(sites, result_.triangles) {}

  /// @return false where the rings are not apart
  bool run(const Rings& rings) {
    if (!link(rings)) return false;
    // Two less than corners, and two more for a hole.
    result_.triangles.reserve(3 * (corners_.size() + 2 * rings.starts.size()));
    chains_.reserve(corners_.size() + corners_.size() / 2);
    intervals_.reserve(kFewIntervals);
    free_.reserve(kFewIntervals);
    for (std::uint32_t site = 0; site < sites_.size(); ++site) {
      if (!pass(site)) return false;
    }
    return true;
  }

  CutRings take() {
    result_.sides.reserve(corners_.size());
    for (std::uint32_t site = 0; site < sites_.size(); ++site) {
      // The inside lies above a lower side, which has it on its left on the way to the right.
      const Corner& c = corners_[site];
      const bool to_right = site < c.after;
      result_.sides.push_back(to_right == c.above ? exact::Side{site, c.after}
                                                  : exact::Side{c.after, site});
    }
    return std::move(result_);
  }

 private:
  static constexpr std::size_t kFewIntervals = 8;  // enough for most small polygons

  /// A vertex of a ring, and the side from it to the next one, which has its site as number.
  struct Corner {
    std::uint32_t before = kNone, after = kNone;
    std::uint32_t interval = kNone;  // that the side bounds
    bool above = false;              // whether the interval lies above the side
  };
  /// A stretch of the sweep line inside, from a side to the next one.
  struct Interval {
    Span lower, upper;
    std::uint32_t upper_side = kNone;
    std::uint32_t below = kNone, above = kNone;  // the next intervals; kNone at the ends
    Chains::Chain chain;
  };

  /// Lets every site know its neighbours along its ring.
  bool link(const Rings& rings) {
    std::size_t linked = 0;
    for (std::size_t ring = 0; ring < rings.starts.size(); ++ring) {
      const auto begin = static_cast<std::size_t>(rings.starts[ring]);
      const std::size_t end = end_of_ring(rings, ring);
      if (end - begin < 3) return false;
      std::uint32_t before = sites_.of(end - 1);
      std::size_t linked_before = linked;
      for (std::size_t i = begin; i < end; ++i) {
        const std::uint32_t site = sites_.of(i);
        if (site == before) continue;
        corners_[before].after = site;
        corners_[site].before = before;
        before = site;
        ++linked;
      }
      if (linked - linked_before < 3) return false;
    }
    // With more corners than sites, some have come together.
    return linked == sites_.size();
  }

  /// Moves the sweep line over a site.
  bool pass(std::uint32_t site) {
    const Corner& c = corners_[site];
    if (c.before < site) {
      return c.after < site ? end(site, c.before, site) : go_on(site, c.before, site, c.after);
    }
    return c.after < site ? go_on(site, site, c.before, c.before) : begin(site);
  }

  /// One side ends at the site and another takes its place.
  bool go_on(std::uint32_t site, std::uint32_t ended, std::uint32_t begun, std::uint32_t right) {
    const std::uint32_t number = corners_[ended].interval;
    const bool above = corners_[ended].above;
    Interval& interval = intervals_[number];
    bound(begun, number, above);
    if (above) {
      interval.lower = {site, right};
      chains_.put_at_bottom(interval.chain, site);
      return stay_apart(interval.lower, interval.upper) && apart_from_below(number);
    }
    interval.upper = {site, right};
    interval.upper_side = begun;
    chains_.put_on_top(interval.chain, site);
    return stay_apart(interval.lower, interval.upper) &&
           (interval.above == kNone || apart_from_below(interval.above));
  }

  /// Two sides begin at the site.
  bool begin(std::uint32_t site) {
    std::uint32_t lower_side = site;
    std::uint32_t upper_side = corners_[site].before;
    Span lower{site, corners_[site].after};
    Span upper{site, upper_side};
    const int turn = sites_.turn(site, lower.right, upper.right);
    if (turn == 0) return false;
    if (turn < 0) {
      std::swap(lower_side, upper_side);
      std::swap(lower, upper);
    }
    const std::uint32_t below = status_.last(
        [this, site](std::uint32_t i) { return side_of(sites_, intervals_[i].lower, site) > 0; });
    const std::uint32_t above = below != kNone ? intervals_[below].above : status_.first();
    if (above != kNone && side_of(sites_, intervals_[above].lower, site) == 0) return false;
    const int seen = below != kNone ? side_of(sites_, intervals_[below].upper, site) : 1;
    if (seen == 0) return false;
    const std::uint32_t number = new_interval();
    status_.insert_behind(below, number);
    if (seen > 0) {
      bound(lower_side, number, true);
      bound(upper_side, number, false);
      intervals_[number] = {lower, upper, upper_side, below, above, chains_.open(site)};
      put_between(number);
      return apart_from_below(number) && (above == kNone || apart_from_below(above));
    }
    Interval& parted = intervals_[below];
    const Interval part{upper, parted.upper, parted.upper_side,
                        below, above,        chains_.split(parted.chain, site)};
    parted.upper = lower;
    parted.upper_side = lower_side;
    const bool apart = stay_apart(parted.lower, lower) && stay_apart(upper, part.upper);
    bound(lower_side, below, false);
    bound(upper_side, number, true);
    bound(part.upper_side, number, false);
    intervals_[number] = part;
    put_between(number);
    return apart;
  }

  /// Two sides end at the site.
  bool end(std::uint32_t site, std::uint32_t one, std::uint32_t other) {
    std::uint32_t below = corners_[one].interval;
    std::uint32_t above = corners_[other].interval;
    if (below == above) {
      chains_.close(intervals_[below].chain, site);
      above = intervals_[below].above;
      take_out(below);
      return above == kNone || apart_from_below(above);
    }
    if (corners_[one].above) std::swap(below, above);
    Interval& rest = intervals_[below];
    chains_.merge(rest.chain, intervals_[above].chain, site);
    rest.upper = intervals_[above].upper;
    rest.upper_side = intervals_[above].upper_side;
    bound(rest.upper_side, below, false);
    take_out(above);
    return stay_apart(rest.lower, rest.upper);
  }

  /// Takes an interval off the line.
  void take_out(std::uint32_t number) {
    status_.erase(number);
    free_.push_back(number);
    const auto [below, above] = std::pair(intervals_[number].below, intervals_[number].above);
    if (below != kNone) intervals_[below].above = above;
    if (above != kNone) intervals_[above].below = below;
  }

  /// A number that is free again if possible: memory follows the intervals that the line crosses,
  /// not all that there are.
  std::uint32_t new_interval() {
    if (free_.empty()) {
      intervals_.emplace_back();
      return static_cast<std::uint32_t>(intervals_.size() - 1);
    }
    const std::uint32_t number = free_.back();
    free_.pop_back();
    return number;
  }

  void put_between(std::uint32_t number) {
    const auto [below, above] = std::pair(intervals_[number].below, intervals_[number].above);
    if (below != kNone) intervals_[below].above = number;
    if (above != kNone) intervals_[above].below = number;
  }

  void bound(std::uint32_t side, std::uint32_t interval, bool above) {
    corners_[side].interval = interval;
    corners_[side].above = above;
  }

  /// Whether two neighbours along the line, the first one below, will not meet, unless in a site
  /// where both end: just if the one that ends first ends on its side of the other.
  bool stay_apart(const Span& lower, const Span& upper) const {
    if (lower.right == upper.right) return true;
    return lower.right < upper.right ? side_of(sites_, upper, lower.right) < 0
                                     : side_of(sites_, lower, upper.right) > 0;
  }
  bool apart_from_below(std::uint32_t number) const {
    const Interval& interval = intervals_[number];
    return interval.below == kNone || stay_apart(intervals_[interval.below].upper, interval.lower);
  }

  const Sites& sites_;
  CutRings result_;
  std::vector<Corner> corners_;  // by their sites
  Chains chains_;
  std::vector<Interval> intervals_;
  std::vector<std::uint32_t> free_;  // numbers of intervals that have ended
  LineOrder status_;                 // intervals
};

}  // namespace

std::optional<CutRings> cut_apart(const Rings& rings, const Sites& sites) {
  RingSweep sweep(sites);
  if (!sweep.run(rings)) return std::nullopt;
  return sweep.take();
}

}  // namespace kzgis::mesh
