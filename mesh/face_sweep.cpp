// One face cut into triangles by a plane sweep, after Hertel and Mehlhorn (1983).
//
// What an interval of the sweep line leaves behind is mesh/chains.h's.
//
// Where a face touches itself each of its corners still has a wedge of the inside that
// nothing enters.  So no two corners of one site come into the same interval, and it does
// not matter that their places are the same.

#include "mesh/face_sweep.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <set>

#include "mesh/chains.h"
#include "mesh/sweep_line.h"

namespace kzgis::mesh {

namespace {

class FaceSweep {
 public:
  FaceSweep(const Sites& sites, const Face& face, std::vector<std::uint32_t>& triangles)
      : sites_(sites), chains_(sites, triangles), status_(Upward{this}) {
    for (const Contour& contour : face) {
      const auto first = static_cast<std::uint32_t>(corners_.size());
      const auto size = static_cast<std::uint32_t>(contour.size());
      for (std::uint32_t i = 0; i < size; ++i) {
        corners_.push_back({contour[i], first + (i + size - 1) % size, first + (i + 1) % size});
      }
    }
    interval_below_.assign(corners_.size(), kNone);
    interval_above_.assign(corners_.size(), kNone);
  }

  void run() {
    // Of the corners of one site, those that have a side on the left come first.
    std::vector<std::uint32_t> order(corners_.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [this](std::uint32_t a, std::uint32_t b) {
      if (site(a) != site(b)) return site(a) < site(b);
      const bool a_opens = opens(a);
      const bool b_opens = opens(b);
      return a_opens != b_opens ? b_opens : a < b;
    });
    for (const std::uint32_t corner : order) pass(corner);
  }

 private:
  /// A corner, and those before and after it.  The side that starts there has its number.
  struct Corner {
    std::uint32_t site, before, after;
  };
  struct Interval {
    std::uint32_t lower, upper;  // sides
    Chains::Chain chain;
  };
  /// Order of intervals along the sweep line: that of their lower sides.
  struct Upward {
    const FaceSweep* sweep = nullptr;
    using is_transparent = void;

    bool operator()(std::uint32_t a, std::uint32_t b) const {
      return runs_below(sweep->sites_, sweep->lower_line(a), sweep->lower_line(b));
    }
    /// Whether the lower side runs below a corner.
    struct At {
      std::uint32_t corner;
    };
    bool operator()(std::uint32_t a, At b) const {
      return side_of(sweep->sites_, sweep->lower_line(a), sweep->site(b.corner)) > 0;
    }
  };

  std::uint32_t site(std::uint32_t corner) const { return corners_[corner].site; }

  int turn(std::uint32_t p, std::uint32_t q, std::uint32_t r) const {
    return sites_.turn(site(p), site(q), site(r));
  }

  Span lower_line(std::uint32_t interval) const {
    const std::uint32_t side = intervals_[interval].lower;
    return {site(side), site(corners_[side].after)};
  }

  /// Whether both sides at a corner lead to the right.
  bool opens(std::uint32_t corner) const {
    const Corner& c = corners_[corner];
    return site(c.before) > c.site && site(c.after) > c.site;
  }

  // The inside lies on the left of every side: above one that leads to the right, the lower
  // side of an interval, and below one that leads to the left.

  void pass(std::uint32_t corner) {
    const Corner& c = corners_[corner];
    const bool from_left = site(c.before) < c.site;
    const bool to_left = site(c.after) < c.site;
    const bool convex = turn(c.before, corner, c.after) > 0;
    if (from_left && !to_left) {
      const std::uint32_t i = interval_above_[c.before];
      chains_.put_at_bottom(intervals_[i].chain, c.site);
      set_lower(i, corner);
    } else if (!from_left && to_left) {
      const std::uint32_t i = interval_below_[corner];
      chains_.put_on_top(intervals_[i].chain, c.site);
      set_upper(i, c.before);
    } else if (to_left) {
      convex ? close(corner) : merge(corner);
    } else {
      convex ? open(corner) : split(corner);
    }
  }

  void open(std::uint32_t corner) {
    const std::uint32_t i = add_interval({kNone, kNone, chains_.open(site(corner))});
    set_lower(i, corner);
    set_upper(i, corners_[corner].before);
    places_[i] = status_.insert(i).first;
  }

  void close(std::uint32_t corner) {
    const std::uint32_t i = interval_above_[corners_[corner].before];
    chains_.close(intervals_[i].chain, site(corner));
    end(i);
  }

  /// The corner comes into the middle of an interval from the right.
  void split(std::uint32_t corner) {
    const std::uint32_t i = *std::prev(status_.lower_bound(Upward::At{corner}));
    const std::uint32_t upper =
        add_interval({kNone, kNone, chains_.split(intervals_[i].chain, site(corner))});
    set_upper(upper, intervals_[i].upper);
    set_lower(upper, corner);
    set_upper(i, corners_[corner].before);
    places_[upper] = status_.insert(upper).first;
  }

  /// Two intervals end at the corner, which lies between them, and go on as one.
  void merge(std::uint32_t corner) {
    const std::uint32_t below = interval_below_[corner];
    const std::uint32_t above = interval_above_[corners_[corner].before];
    chains_.merge(intervals_[below].chain, intervals_[above].chain, site(corner));
    set_upper(below, intervals_[above].upper);
    end(above);
  }

  /// Takes an interval off the line; nothing refers to its place from then on.
  void end(std::uint32_t interval) {
    status_.erase(places_[interval]);
    places_[interval] = status_.end();
  }

  std::uint32_t add_interval(const Interval& interval) {
    intervals_.push_back(interval);
    places_.push_back(status_.end());
    return static_cast<std::uint32_t>(intervals_.size() - 1);
  }

  void set_lower(std::uint32_t interval, std::uint32_t side) {
    intervals_[interval].lower = side;
    interval_above_[side] = interval;
  }
  void set_upper(std::uint32_t interval, std::uint32_t side) {
    intervals_[interval].upper = side;
    interval_below_[side] = interval;
  }

  const Sites& sites_;
  Chains chains_;
  std::vector<Corner> corners_;
  std::vector<Interval> intervals_;
  std::vector<std::uint32_t> interval_below_;  // of each side that leads to the left
  std::vector<std::uint32_t> interval_above_;  // of each side that leads to the right
  using Status = std::set<std::uint32_t, Upward>;
  Status status_;
  std::vector<Status::iterator> places_;  // of each interval, whose sides may end now
};

}  // namespace

void sweep_face(const Sites& sites, const Face& face, std::vector<std::uint32_t>& triangles) {
  FaceSweep(sites, face, triangles).run();
}

}  // namespace kzgis::mesh
