// Most polygons have rings without a point in common, or with one here and there in which they
// touch. No side of theirs need be cut, no two lie on top of each other, and most sites are one
// vertex with two sides.  So the sweep that cuts the inside into triangles may run over the rings
// as they are, and looks on its way whether they are apart: whenever two sides become neighbours
// along the line, it asks whether they will meet but in a common end.  If any two do, those that do
// so first are neighbours shortly before; until then the order along the line is the true one, and
// nothing is handed out if any do.
//
// Where a vertex comes up from which two sides begin, its place between the sides that the line
// crosses tells whether it lies inside, by the odd-even rule; that is all that need be known of
// which way a ring runs and which rings lie around it.
//
// Where several corners share a site, inside and outside alternate round it.  Each wedge of the
// inside is entered by nothing, and treated as a corner of its own; those that end at the site come
// before those that begin there.
//
// The test of neighbours is M. I. Shamos and D. Hoey's, "Geometric intersection problems" (1976).

#include "mesh/ring_sweep.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <utility>
#include <vector>

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
    std::size_t next = 0;  // of those that are shared
    for (std::uint32_t site = 0; site < sites_.size(); ++site) {
      const std::size_t first = next;
      while (next < shared_.size() && shared_[next].site == site) ++next;
      if (next == first) {
        if (!pass(site)) return false;
        continue;
      }
      if (!pass_shared(site, std::span(shared_).subspan(first, next - first))) return false;
    }
    return true;
  }

  CutRings take() {
    result_.sides.reserve(corners_.size());
    for (std::uint32_t corner = 0; corner < corners_.size(); ++corner) {
      // The inside lies above a lower side, which has it on its left on the way to the right.
      const std::uint32_t from = site_of(corner);
      const std::uint32_t to = site_of(corners_[corner].after);
      result_.sides.push_back((from < to) == corners_[corner].above ? exact::Side{from, to}
                                                                    : exact::Side{to, from});
    }
    return std::move(result_);
  }

 private:
  static constexpr std::size_t kFewIntervals = 8;  // enough for most small polygons

  /// A vertex of a ring, and the side from it to the next one, which has the same number.
  ///
  /// The first corner of each site has its number; all others come behind.
  struct Corner {
    std::uint32_t before = kNone, after = kNone;  // corners
    std::uint32_t interval = kNone;               // that the side bounds
    bool above = false;                           // whether the interval lies above the side
  };
  /// A corner besides the first one of its site.
  struct Shared {
    std::uint32_t site, corner;
  };
  /// A side at a site: its number, its other end, and the corner here that it belongs to.
  struct Spoke {
    std::uint32_t side, far, corner;
  };
  /// Where a site lies that no side on the line leads to.
  struct Place {
    std::uint32_t below;  // the last interval that begins below it
    bool inside;          // whether it lies in that one
  };
  /// A stretch of the sweep line inside, from a side to the next one.
  struct Interval {
    Span lower, upper;
    std::uint32_t upper_side = kNone;
    std::uint32_t below = kNone, above = kNone;  // the next intervals; kNone at the ends
    Chains::Chain chain;
  };

  /// Lets every corner know its neighbours along its ring.
  bool link(const Rings& rings) {
    for (std::size_t ring = 0; ring < rings.starts.size(); ++ring) {
      const auto begin = static_cast<std::size_t>(rings.starts[ring]);
      std::size_t end = end_of_ring(rings, ring);
      while (end - begin > 1 && sites_.of(begin) == sites_.of(end - 1)) --end;
      if (end - begin < 3) return false;
      const std::uint32_t first = new_corner(sites_.of(begin));
      std::uint32_t before = first;
      std::size_t linked = 1;
      for (std::size_t i = begin + 1; i < end; ++i) {
        if (sites_.of(i) == site_of(before)) continue;
        const std::uint32_t corner = new_corner(sites_.of(i));
        corners_[before].after = corner;
        corners_[corner].before = before;
        before = corner;
        ++linked;
      }
      if (linked < 3) return false;
      corners_[before].after = first;
      corners_[first].before = before;
    }
    list_shared();
    return true;
  }

  std::uint32_t new_corner(std::uint32_t site) {
    if (corners_[site].before == kNone && corners_[site].after == kNone) return site;
    corners_.emplace_back();
    more_sites_.push_back(site);
    return static_cast<std::uint32_t>(corners_.size() - 1);
  }

  std::uint32_t site_of(std::uint32_t corner) const {
    return corner < sites_.size() ? corner : more_sites_[corner - sites_.size()];
  }

  /// Lists all corners but the first ones of their sites, by these.
  void list_shared() {
    for (std::uint32_t i = 0; i < more_sites_.size(); ++i) {
      shared_.push_back({more_sites_[i], sites_.size() + i});
    }
    std::sort(shared_.begin(), shared_.end(), [](const Shared& a, const Shared& b) {
      return a.site != b.site ? a.site < b.site : a.corner < b.corner;
    });
  }

  /// Moves the sweep line over a site.
  bool pass(std::uint32_t site) {
    const Corner& c = corners_[site];
    const std::uint32_t before = site_of(c.before);
    const std::uint32_t after = site_of(c.after);
    if (before < site) {
      return after < site ? end(site, c.before, site) : go_on(site, c.before, site, after);
    }
    return after < site ? go_on(site, site, c.before, before) : begin(site, before, after);
  }

  /// One side ends at the site and another takes its place.
  bool go_on(std::uint32_t site, std::uint32_t ended, std::uint32_t begun, std::uint32_t right) {
    const std::uint32_t number = corners_[ended].interval;
    const bool above = corners_[ended].above;
    replace(site, ended, begun, right);
    const Interval& interval = intervals_[number];
    if (!stay_apart(interval.lower, interval.upper)) return false;
    return above ? apart_from_below(number)
                 : interval.above == kNone || apart_from_below(interval.above);
  }

  void replace(std::uint32_t site, std::uint32_t ended, std::uint32_t begun, std::uint32_t right) {
    const std::uint32_t number = corners_[ended].interval;
    const bool above = corners_[ended].above;
    Interval& interval = intervals_[number];
    bound(begun, number, above);
    if (above) {
      interval.lower = {site, right};
      chains_.put_at_bottom(interval.chain, site);
    } else {
      interval.upper = {site, right};
      interval.upper_side = begun;
      chains_.put_on_top(interval.chain, site);
    }
  }

  /// Two sides begin at the site.
  bool begin(std::uint32_t site, std::uint32_t before, std::uint32_t after) {
    Spoke lower{site, after, site};
    Spoke upper{corners_[site].before, before, site};
    const int turn = sites_.turn(site, after, before);
    if (turn == 0) return false;
    if (turn < 0) std::swap(lower, upper);
    const std::optional<Place> place = find(site);
    if (!place) return false;
    if (place->inside) {
      const Interval& part = intervals_[split(site, place->below, lower, upper)];
      return stay_apart(intervals_[place->below].lower, {site, lower.far}) &&
             stay_apart(part.lower, part.upper);
    }
    const std::uint32_t number = open(site, place->below, lower, upper);
    const std::uint32_t above = intervals_[number].above;
    return apart_from_below(number) && (above == kNone || apart_from_below(above));
  }

  /// The place of a site; nothing if the site lies on a side.
  std::optional<Place> find(std::uint32_t site) const {
    const std::uint32_t below = status_.last(
        [this, site](std::uint32_t i) { return side_of(sites_, intervals_[i].lower, site) > 0; });
    const std::uint32_t above = below != kNone ? intervals_[below].above : status_.first();
    if (above != kNone && side_of(sites_, intervals_[above].lower, site) == 0) return std::nullopt;
    const int seen = below != kNone ? side_of(sites_, intervals_[below].upper, site) : 1;
    if (seen == 0) return std::nullopt;
    return Place{below, seen < 0};
  }

  /// Begins an interval behind another one, or in front of all (kNone).
  std::uint32_t open(std::uint32_t site, std::uint32_t below, const Spoke& lower,
                     const Spoke& upper) {
    const std::uint32_t above = below != kNone ? intervals_[below].above : status_.first();
    const std::uint32_t number = new_interval();
    intervals_[number] = {{site, lower.far}, {site, upper.far}, upper.side, below, above,
                          chains_.open(site)};
    bound(lower.side, number, true);
    bound(upper.side, number, false);
    put_between(number);
    return number;
  }

  /// Parts an interval in two, between which two sides begin.
  /// @return the upper part; the lower one has the interval's number
  std::uint32_t split(std::uint32_t site, std::uint32_t below, const Spoke& lower,
                      const Spoke& upper) {
    const std::uint32_t number = new_interval();
    Interval& parted = intervals_[below];
    intervals_[number] = {{site, upper.far}, parted.upper,
                          parted.upper_side, below,
                          parted.above,      chains_.split(parted.chain, site)};
    bound(upper.side, number, true);
    bound(parted.upper_side, number, false);
    parted.upper = {site, lower.far};
    parted.upper_side = lower.side;
    bound(lower.side, below, false);
    put_between(number);
    return number;
  }

  /// Two sides end at the site.
  bool end(std::uint32_t site, std::uint32_t one, std::uint32_t other) {
    std::uint32_t below = corners_[one].interval;
    std::uint32_t above = corners_[other].interval;
    if (below == above) {
      above = intervals_[below].above;
      close(site, below);
      return above == kNone || apart_from_below(above);
    }
    if (corners_[one].above) std::swap(below, above);
    merge(site, below, above);
    return stay_apart(intervals_[below].lower, intervals_[below].upper);
  }

  void close(std::uint32_t site, std::uint32_t number) {
    chains_.close(intervals_[number].chain, site);
    take_out(number);
  }

  /// Makes two intervals one, which has the number of the lower one.
  void merge(std::uint32_t site, std::uint32_t below, std::uint32_t above) {
    Interval& rest = intervals_[below];
    chains_.merge(rest.chain, intervals_[above].chain, site);
    rest.upper = intervals_[above].upper;
    rest.upper_side = intervals_[above].upper_side;
    bound(rest.upper_side, below, false);
    take_out(above);
  }

  /// Moves the sweep line over a site of several corners, the first of which is not among `others`.
  bool pass_shared(std::uint32_t site, std::span<const Shared> others) {
    if (!list_spokes(site, others)) return false;
    std::uint32_t below = kNone;  // the interval just below the site, or the next one
    bool inside_below = false;
    bool inside_above = false;
    if (left_.empty()) {
      const std::optional<Place> place = find(site);
      if (!place) return false;
      below = place->below;
      inside_below = inside_above = place->inside;
    } else {
      const Corner& lowest = corners_[left_.front().side];
      inside_below = !lowest.above;
      below = inside_below ? lowest.interval : intervals_[lowest.interval].below;
      inside_above = corners_[left_.back().side].above;
    }
    for (const Spoke& spoke : std::span(left_).first(left_.empty() ? 0 : left_.size() - 1)) {
      if (corners_[spoke.side].above) close(site, corners_[spoke.side].interval);
    }
    if (left_.empty()) {
      if (inside_below) split(site, below, right_.front(), right_.back());
    } else if (right_.empty()) {
      if (inside_below) merge(site, below, corners_[left_.back().side].interval);
    } else {
      if (inside_below) replace(site, left_.front().side, right_.front().side, right_.front().far);
      if (inside_above) replace(site, left_.back().side, right_.back().side, right_.back().far);
    }
    bool inside = inside_below;
    std::uint32_t last = below;
    for (std::size_t i = 0; i + 1 < right_.size(); ++i) {
      inside = !inside;
      if (inside) last = open(site, last, right_[i], right_[i + 1]);
    }
    // What has changed lies between the interval below and the second one behind the last.
    std::uint32_t number = below != kNone ? below : status_.first();
    for (std::size_t i = 0; i < right_.size() / 2 + 3 && number != kNone; ++i) {
      const Interval& interval = intervals_[number];
      if (!stay_apart(interval.lower, interval.upper) || !apart_from_below(number)) return false;
      number = interval.above;
    }
    return true;
  }

  /// Lists the sides at a site of several corners, from below.
  /// @return false where two lie on top of each other, or rings cross
  bool list_spokes(std::uint32_t site, std::span<const Shared> others) {
    left_.clear();
    right_.clear();
    const auto add = [&](std::uint32_t corner) {
      const auto [before, after] = std::pair(corners_[corner].before, corners_[corner].after);
      (site_of(before) < site ? left_ : right_).push_back({before, site_of(before), corner});
      (site_of(after) < site ? left_ : right_).push_back({corner, site_of(after), corner});
    };
    add(site);
    for (const Shared& other : others) add(other.corner);
    // Counter-clockwise round the site, from its lowest side on the right to that on the left.
    around_.clear();
    for (std::vector<Spoke>* spokes : {&right_, &left_}) {
      const auto turn = [this, site](const Spoke& a, const Spoke& b) {
        return sites_.turn(site, a.far, b.far);
      };
      std::sort(spokes->begin(), spokes->end(),
                [&turn](const Spoke& a, const Spoke& b) { return turn(a, b) > 0; });
      for (std::size_t i = 0; i + 1 < spokes->size(); ++i) {
        if (turn((*spokes)[i], (*spokes)[i + 1]) == 0) return false;
      }
      // Where corners do not cross, each is closed before those that began before it.
      for (const Spoke& spoke : *spokes) {
        if (!around_.empty() && around_.back() == spoke.corner) {
          around_.pop_back();
        } else {
          around_.push_back(spoke.corner);
        }
      }
    }
    std::reverse(left_.begin(), left_.end());
    return around_.empty();
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
    status_.insert_behind(below, number);
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
  std::vector<Corner> corners_;
  std::vector<std::uint32_t> more_sites_;  // of corners behind the first ones of all sites
  std::vector<Shared> shared_;             // those corners, by their sites
  Chains chains_;
  std::vector<Interval> intervals_;
  std::vector<std::uint32_t> free_;  // numbers of intervals that have ended
  LineOrder status_;                 // intervals
  // Of a site of several corners.
  std::vector<Spoke> left_, right_;    // from below
  std::vector<std::uint32_t> around_;  // corners of which one side has been met
};

}  // namespace

std::optional<CutRings> cut_rings(const Rings& rings, const Sites& sites) {
  RingSweep sweep(sites);
  if (!sweep.run(rings)) return std::nullopt;
  return sweep.take();
}

}  // namespace kzgis::mesh
