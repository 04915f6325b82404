// A sweep line goes over the plane from the left to the right and stops at every site.  It
// knows the sides that it crosses, in their order from below.
//
// Sides that run on top of each other make one bundle.  Between two sites no bundle begins or
// ends, none crosses another, and of any two that are neighbours it is known that they will not
// cross before the next site of either, unless in a site.  The first crossing that is in no
// site would be one of two neighbours; so it is found before the line comes to it.
//
// Where crossings are looked for rather than refused, two neighbours that will cross change places
// just before the first site behind their crossing.  Between two sites, it does not matter in which
// order neighbours do that: whatever the order, each pair does it once, and at the next site all
// are in the order that they have there.  So crossings need not be compared with each other.
//
// At a site, bundles that end there go, others begin.  One that goes on through the site stays
// what it is, however many sides it has: sides that end in it are taken out, sides that
// begin in its direction join it.  Taking it apart would make the time quadratic where
// thousands of sides lie on one line.

#include "mesh/arrangement.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <numeric>
#include <optional>
#include <queue>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "mesh/sweep_line.h"

namespace kzgis::mesh {

namespace {

/// A polygon that cannot be taken, with a place to look at.
Flaw flaw(std::string message, std::uint32_t ring, std::uint32_t vertex) {
  return make_flaw(ErrorKind::bad_data, std::move(message), ring, vertex);
}

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

class Sweep {
 public:
  /// @param rings           how many there are: none where containment does not count
  /// @param most_crossings  as many are taken, and one more ends the sweep; without a number the
  ///                        first one that is foreseen does
  Sweep(Sites sites, std::vector<Side> sides, std::size_t rings,
        std::optional<std::size_t> most_crossings)
      : sites_(std::move(sites)),
        sides_(std::move(sides)),
        containment_(rings),
        most_crossings_(most_crossings),
        links_(sides_.size()),
        by_left_(sorted_by(&Side::left)),
        by_right_(sorted_by(&Side::right)),
        status_(Upward{this}),
        times_(rings, 0) {}

  void run() {
    below_.assign(sites_.size(), kNone);
    const SideNumbers by_left = by_left_;
    const SideNumbers by_right = by_right_;
    std::size_t beginning = 0;
    std::size_t ending = 0;
    for (std::uint32_t site = 0; site < sites_.size() && !has_too_many_crossings(); ++site) {
      const std::size_t first_beginning = beginning;
      while (beginning < by_left.size() && sides_[by_left[beginning]].left == site) ++beginning;
      const std::size_t first_ending = ending;
      while (ending < by_right.size() && sides_[by_right[ending]].right == site) ++ending;
      change_places(site);
      pass(site, by_left.subspan(first_beginning, beginning - first_beginning),
           by_right.subspan(first_ending, ending - first_ending));
    }
  }

  Result<Arrangement, Flaw> arrangement(const Rings& rings) {
    if (!crossings_.empty()) return crossing_flaw(sides_, crossings_.front());
    if (containment_.overlap()) return overlap();
    if (const auto repetition = containment_.repetition()) {
      return flaw("ring " + std::to_string(repetition->other) + " repeats ring " +
                      std::to_string(repetition->ring),
                  repetition->other, static_cast<std::uint32_t>(rings.starts[repetition->other]));
    }
    return Arrangement{std::move(sites_), std::move(sides_), std::move(edges_), std::move(below_),
                       std::move(containment_)};
  }

  Overlay overlay() {
    return {std::move(sites_), std::move(sides_), std::move(edges_), std::move(below_),
            std::move(crossings_)};
  }

 private:
  using SideNumbers = std::span<const std::uint32_t>;

  /// A place in the order along the sweep line, which a bundle takes.
  struct Slot {
    mutable std::uint32_t bundle;
    Slot(std::uint32_t number) : bundle(number) {}     // NOLINT(google-explicit-constructor)
    operator std::uint32_t() const { return bundle; }  // NOLINT(google-explicit-constructor)
  };

  /// Order along the sweep line, from below.
  struct Upward {
    const Sweep* sweep;
    using is_transparent = void;
    struct At {
      std::uint32_t site;
    };
    bool operator()(std::uint32_t a, std::uint32_t b) const {
      return runs_below(sweep->sites_, sweep->bundles_[a].line, sweep->bundles_[b].line);
    }
    bool operator()(std::uint32_t a, At b) const {
      return side_of(sweep->sites_, sweep->bundles_[a].line, b.site) > 0;
    }
  };
  using Status = std::set<Slot, Upward>;

  /// Sides that run on top of each other.
  struct Bundle {
    Span line;                       // from where it began to the farthest end of its sides
    std::uint32_t first = kNone;     // of its sides; none when all have ended
    std::uint32_t farthest = kNone;  // the side that ends there
    std::uint32_t count = 0;         // of its sides; where it is odd, they do not cancel
    bool inside_above = false;
    std::uint32_t edge = kNone;  // since the last site, if odd
    // An edge that has the same piece of plane above it as the bundle has.
    std::uint32_t kept = kNone;
    Containment::Chain chain = kNone;  // of the points just above
    std::uint32_t rank = kNone;        // among those that come to a site, from below
    bool on_line = false;              // whether it has a slot
    Status::iterator slot{};
  };
  /// A side's bundle, and its neighbours there.
  struct Link {
    std::uint32_t bundle = kNone, next = kNone, previous = kNone;
  };
  /// Two neighbours that cross before a site.
  struct Change {
    std::uint32_t site;
    std::uint32_t lower, upper;
    bool operator<(const Change& other) const { return site > other.site; }  // the next one on top
  };

  bool has_too_many_crossings() const { return crossings_.size() > most_crossings_.value_or(0); }

  /// The numbers of all sides, in the order of their left or right sites.
  std::vector<std::uint32_t> sorted_by(std::uint32_t Side::*end) const {
    std::vector<std::size_t> next(std::size_t{sites_.size()} + 1, 0);
    for (const Side& side : sides_) ++next[std::size_t{side.*end} + 1];
    std::partial_sum(next.begin(), next.end(), next.begin());
    std::vector<std::uint32_t> sorted(sides_.size());
    for (std::uint32_t i = 0; i < sides_.size(); ++i) sorted[next[sides_[i].*end]++] = i;
    return sorted;
  }

  /// Moves the sweep line over a site.
  ///
  /// Before and after, the status is the order of the bundles just left and just right of the
  /// site.  What each bundle knows of the plane above it (inside or outside, which edge bounds it,
  /// which rings lie around it) is brought up to date from below.
  void pass(std::uint32_t site, SideNumbers beginning, SideNumbers ending) {
    const auto above = come_in(site);
    const bool has_lower = lower_ != kNone;
    const bool edge_from_left = std::any_of(coming_in_.begin(), coming_in_.end(),
                                            [this](auto b) { return bundles_[b].edge != kNone; });
    if (!edge_from_left && has_lower) below_[site] = bundles_[lower_].kept;
    for (const std::uint32_t b : coming_in_) {
      if (bundles_[b].edge != kNone) edges_[bundles_[b].edge].right = site;
    }
    for (const std::uint32_t side : ending) take_out(side);
    go_out(site, beginning);
    if (!times_.empty() && !containment_.overlap()) {
      settle_chains(ending);
      if (containment_.overlap()) overlap_site_ = site;
    }
    settle_edges(site);
    replace(site, above);
    if (going_out_.empty()) {
      check_crossing(site, lower_, upper_);
    } else {
      check_crossing(site, lower_, going_out_.front());
      check_crossing(site, going_out_.back(), upper_);
    }
  }

  /// Finds the bundles that come to the site, and their neighbours.
  /// @return what follows them in the status
  Status::iterator come_in(std::uint32_t site) {
    coming_in_.clear();
    const auto first = status_.lower_bound(Upward::At{site});
    auto next = first;
    for (; next != status_.end() && side_of(sites_, bundles_[*next].line, site) == 0; ++next) {
      bundles_[*next].rank = static_cast<std::uint32_t>(coming_in_.size());
      coming_in_.push_back(*next);
    }
    lower_ = first != status_.begin() ? std::prev(first)->bundle : kNone;
    upper_ = next != status_.end() ? next->bundle : kNone;
    return next;
  }

  /// Adds a side that begins here to a bundle, whose line it lies on.
  void put_in(std::uint32_t bundle, std::uint32_t side) {
    Bundle& b = bundles_[bundle];
    links_[side] = {bundle, b.first, kNone};
    if (b.first != kNone) links_[b.first].previous = side;
    b.first = side;
    ++b.count;
    if (b.farthest == kNone || sides_[side].right > b.line.right) {
      b.farthest = side;
      b.line.right = sides_[side].right;
    }
  }

  /// Takes a side that ends here out of its bundle.  The farthest end of the bundle stays right:
  /// the sides that reach it are the last to be taken out, all together.
  void take_out(std::uint32_t side) {
    const Link& link = links_[side];
    Bundle& b = bundles_[link.bundle];
    (link.previous != kNone ? links_[link.previous].next : b.first) = link.next;
    if (link.next != kNone) links_[link.next].previous = link.previous;
    --b.count;
  }

  /// A bundle without sides that begins at a site, under a number that is free again if possible:
  /// memory follows the sides that the line crosses, not all that there are.
  std::uint32_t new_bundle(std::uint32_t site) {
    if (free_.empty()) {
      free_.push_back(static_cast<std::uint32_t>(bundles_.size()));
      bundles_.emplace_back();
    }
    const std::uint32_t bundle = free_.back();
    free_.pop_back();
    bundles_[bundle] = {};
    bundles_[bundle].line = {site, site};
    return bundle;
  }

  /// Lists the bundles that leave the site to the right, from below: those that go on
  /// through it, which change places with each other, and new ones between them.
  void go_out(std::uint32_t site, SideNumbers beginning) {
    beginning_.assign(beginning.begin(), beginning.end());
    std::sort(beginning_.begin(), beginning_.end(), [this, site](std::uint32_t a, std::uint32_t b) {
      const int turn = sites_.turn(site, sides_[a].right, sides_[b].right);
      return turn != 0 ? turn > 0 : a < b;
    });
    going_out_.clear();
    through_ = 0;
    largest_ = kNone;
    joined_ = 0;
    auto side = beginning_.begin();
    const auto turn_to = [this, site](std::uint32_t far, std::uint32_t s) {
      return sites_.turn(site, far, sides_[s].right);
    };
    const auto begin_bundle = [&] {
      const std::uint32_t bundle = new_bundle(site);
      const std::uint32_t far = sides_[*side].right;
      for (; side != beginning_.end() && turn_to(far, *side) == 0; ++side) put_in(bundle, *side);
      going_out_.push_back(bundle);
    };
    for (auto b = coming_in_.rbegin(); b != coming_in_.rend(); ++b) {
      if (bundles_[*b].first == kNone) continue;
      const std::uint32_t far = bundles_[*b].line.right;
      while (side != beginning_.end() && turn_to(far, *side) < 0) begin_bundle();
      for (; side != beginning_.end() && turn_to(far, *side) == 0; ++side) put_in(*b, *side);
      ++through_;
      if (largest_ == kNone || bundles_[*b].count > bundles_[largest_].count) {
        largest_ = *b;
        joined_ = static_cast<std::size_t>(side - beginning_.begin());
      }
      going_out_.push_back(*b);
    }
    while (side != beginning_.end()) begin_bundle();
  }

  /// The rings that an odd number of the sides belongs to, which `add` has listed.
  std::span<const std::uint32_t> odd_rings() {
    std::size_t kept = 0;
    for (const std::uint32_t ring : crossed_) {
      if (times_[ring] % 2 != 0) crossed_[kept++] = ring;
      times_[ring] = 0;
    }
    crossed_.resize(kept);
    return crossed_;
  }
  void add(std::uint32_t side) {
    const std::uint32_t ring = sides_[side].ring;
    if (times_[ring]++ == 0) crossed_.push_back(ring);
  }

  /// Finds the chain of rings around the points above each bundle that goes out.
  ///
  /// Between these points and those below the bundle lie its own sides.  But the largest bundle
  /// that goes through the site, which may have thousands, is not looked into: the points above
  /// it on the left of the site are known, and the way from there to the right leads below the
  /// site across all that comes in or goes out at it or lower down.
  void settle_chains(SideNumbers ending) {
    Containment::Chain under = lower_ != kNone ? bundles_[lower_].chain : kNone;
    for (const std::uint32_t number : going_out_) {
      Bundle& bundle = bundles_[number];
      crossed_.clear();
      Containment::Chain from = under;
      if (number == largest_) {
        from = bundle.chain;
        add_way_below(bundle, ending);
      } else {
        add_sides(bundle);
      }
      const auto rings = odd_rings();
      bundle.chain = rings.empty() ? from : containment_.across(from, rings);
      under = bundle.chain;
    }
  }

  void add_sides(const Bundle& bundle) {
    for (std::uint32_t s = bundle.first; s != kNone; s = links_[s].next) add(s);
  }

  /// Adds the sides that the way below the site crosses, from above the largest bundle on the
  /// left to above it on the right.
  void add_way_below(const Bundle& largest, SideNumbers ending) {
    const auto goes_through = [this](std::uint32_t bundle) {
      return bundle != largest_ && bundles_[bundle].rank != kNone && bundles_[bundle].count > 0;
    };
    for (const std::uint32_t side : ending) {
      if (bundles_[links_[side].bundle].rank <= largest.rank) add(side);
    }
    for (const std::uint32_t side : std::span(beginning_).first(joined_)) add(side);
    // Any other bundle that goes through lies below the largest either on the left or on the
    // right, and is crossed once: with the sides that end in it and without those that begin, or
    // the other way round.  Above, those that begin were left out or taken just wrongly.
    for (const std::uint32_t bundle : going_out_) {
      if (goes_through(bundle)) add_sides(bundles_[bundle]);
    }
    for (const std::uint32_t side : beginning_) {
      if (goes_through(links_[side].bundle)) add(side);
    }
  }

  /// Finds on which side of each bundle that goes out the inside lies, and begins its edge.
  void settle_edges(std::uint32_t site) {
    bool inside = lower_ != kNone && bundles_[lower_].inside_above;
    std::uint32_t kept = lower_ != kNone ? bundles_[lower_].kept : kNone;
    for (const std::uint32_t number : going_out_) {
      Bundle& bundle = bundles_[number];
      bundle.edge = kNone;
      if (bundle.count % 2 != 0) {
        inside = !inside;
        kept = bundle.edge = static_cast<std::uint32_t>(edges_.size());
        edges_.push_back({site, kNone, inside});
      }
      bundle.inside_above = inside;
      bundle.kept = kept;
    }
  }

  /// Puts those that go out into the status, in the place of those that came in.
  ///
  /// A bundle that alone goes through stays where it is.  Several have changed places: each
  /// begins anew here, or the order would be that on the left of the site.
  void replace(std::uint32_t site, Status::iterator above) {
    auto place = above;
    for (std::size_t i = 0; i < coming_in_.size(); ++i) --place;
    auto stays = above;
    for (const std::uint32_t number : coming_in_) {
      Bundle& bundle = bundles_[number];
      if (bundle.first != kNone && through_ == 1) {
        stays = place++;
      } else {
        place = status_.erase(place);
        bundle.on_line = false;
      }
      if (bundle.first == kNone) {
        free_.push_back(number);
      } else if (through_ > 1) {
        bundle.line.left = site;
      }
    }
    auto next = stays;
    for (const std::uint32_t number : going_out_) {
      const bool came_in = bundles_[number].rank != kNone;
      bundles_[number].rank = kNone;
      if (came_in && through_ == 1) {
        next = above;
      } else {
        bundles_[number].slot = status_.insert(next, number);
        bundles_[number].on_line = true;
      }
    }
  }

  /// Lets neighbours change places that cross before a site.
  void change_places(std::uint32_t site) {
    while (!changes_.empty() && changes_.top().site <= site && !has_too_many_crossings()) {
      const std::uint32_t a = changes_.top().lower;
      const std::uint32_t b = changes_.top().upper;
      changes_.pop();
      // Since this was foreseen, something may have come between them, or one of them ended and
      // its number gone to another.
      if (!bundles_[a].on_line || !bundles_[b].on_line) continue;
      const auto lower = bundles_[a].slot;
      const auto upper = bundles_[b].slot;
      double crossing_x = kUnknown;
      if (std::next(lower) != upper || !will_cross(a, b) ||
          seen_from_crossing(bundles_[a].line, bundles_[b].line, site, crossing_x) <= 0) {
        continue;
      }
      crossings_.push_back(
          {bundles_[a].farthest, bundles_[b].farthest, bundles_[a].edge, bundles_[b].edge});
      std::swap(lower->bundle, upper->bundle);
      std::swap(bundles_[a].slot, bundles_[b].slot);
      if (lower != status_.begin()) check_crossing(site - 1, *std::prev(lower), b);
      if (std::next(upper) != status_.end()) check_crossing(site - 1, a, *std::next(upper));
    }
  }

  /// Whether two bundles, `a` below `b` now, will change places: just if the one that ends first
  /// ends on the wrong side of the other.
  bool will_cross(std::uint32_t a, std::uint32_t b) const {
    const Span& p = bundles_[a].line;
    const Span& q = bundles_[b].line;
    return p.right < q.right ? side_of(sites_, q, p.right) > 0 : side_of(sites_, p, q.right) < 0;
  }

  /// Foresees whether two neighbours on the sweep line, `a` below `b`, will cross where no site is.
  ///
  /// @param site  the last one that the line has passed
  void check_crossing(std::uint32_t site, std::uint32_t a, std::uint32_t b) {
    if (a == kNone || b == kNone || has_too_many_crossings() || !will_cross(a, b)) return;
    const auto behind = first_site_behind_crossing(bundles_[a].line, bundles_[b].line, site);
    if (!behind) return;
    if (most_crossings_) {
      changes_.push({*behind, a, b});
    } else {
      crossings_.push_back({bundles_[a].farthest, bundles_[b].farthest, kNone, kNone});
    }
  }

  /// Where a site lies in the order of all sites, seen from the crossing of two lines: -1 before
  /// it, 1 behind it, 0 in it.
  ///
  /// @param crossing_x  of the crossing, once a site has turned out to have it: sites above each
  ///                    other share the answer, which may be costly
  int seen_from_crossing(const Span& p, const Span& q, std::uint32_t site,
                         double& crossing_x) const {
    const exact::Line one{sites_[p.left], sites_[p.right]};
    const exact::Line other{sites_[q.left], sites_[q.right]};
    if (sites_[site].x != crossing_x) {
      const int order = exact::compare_with_crossing(sites_[site].x, one, other);
      if (order != 0) return order;
      crossing_x = sites_[site].x;
    }
    return side_of(sites_, one.a.x != one.b.x ? p : q, site);
  }

  /// The first site behind the crossing of two lines that cross to the right of a site; nothing
  /// if they do so in another site.
  std::optional<std::uint32_t> first_site_behind_crossing(const Span& p, const Span& q,
                                                          std::uint32_t site) const {
    double crossing_x = kUnknown;
    std::uint32_t first = site + 1;
    std::uint32_t last = std::min(p.right, q.right);
    while (first < last) {
      const std::uint32_t middle = first + (last - first) / 2;
      const int order = seen_from_crossing(p, q, middle, crossing_x);
      if (order == 0) return std::nullopt;
      (order < 0 ? first : last) = order < 0 ? middle + 1 : middle;
    }
    return first;
  }

  Flaw overlap() const {
    const auto [one, other] = *containment_.overlap();
    return flaw("ring " + std::to_string(std::max(one, other)) + " overlaps ring " +
                    std::to_string(std::min(one, other)),
                std::max(one, other), sites_.vertex(overlap_site_));
  }

  Sites sites_;
  std::vector<Side> sides_;
  std::vector<Edge> edges_;
  std::vector<std::uint32_t> below_;
  Containment containment_;
  std::optional<std::size_t> most_crossings_;
  std::vector<Crossing> crossings_;
  std::priority_queue<Change> changes_;
  std::uint32_t overlap_site_ = kNone;

  std::vector<Link> links_;  // of each side
  std::vector<std::uint32_t> by_left_, by_right_;
  std::vector<Bundle> bundles_;
  std::vector<std::uint32_t> free_;  // numbers of bundles that have ended
  Status status_;

  // Of the site at hand, kept for their memory.
  std::vector<std::uint32_t> coming_in_, going_out_;  // bundles, from below
  std::uint32_t lower_ = kNone, upper_ = kNone;       // their neighbours
  std::vector<std::uint32_t> beginning_;              // sides, by direction from below
  std::size_t through_ = 0;                           // how many came in and go on
  std::uint32_t largest_ = kNone;                     // of those, that with the most sides
  std::size_t joined_ = 0;              // how many of beginning_ lie below that, or in it
  std::vector<std::uint32_t> crossed_;  // rings
  std::vector<std::uint32_t> times_;    // of each ring
};

}  // namespace

Flaw crossing_flaw(std::span<const Side> sides, const Crossing& crossing) {
  const Side& one = sides[crossing.side];
  const Side& other = sides[crossing.other_side];
  return flaw("ring " + std::to_string(one.ring) + " crosses " +
                  (one.ring == other.ring ? "itself" : "ring " + std::to_string(other.ring)) +
                  " (sides from vertices " + std::to_string(one.vertex) + " and " +
                  std::to_string(other.vertex) + ")",
              one.ring, one.vertex);
}

Result<Arrangement, Flaw> arrange(const Rings& rings) {
  if (auto flaw = check_rings(rings)) return std::move(*flaw);
  return arrange(rings, Sites(rings));
}

Result<Arrangement, Flaw> arrange(const Rings& rings, Sites sites) {
  std::vector<Side> sides = take_sides(rings, sites);
  Sweep sweep(std::move(sites), std::move(sides), rings.starts.size(), std::nullopt);
  sweep.run();
  return sweep.arrangement(rings);
}

std::vector<exact::Side> bounds_of(const Arrangement& arrangement) {
  std::vector<exact::Side> bounds;
  bounds.reserve(arrangement.edges.size());
  for (const Edge& edge : arrangement.edges) {
    bounds.push_back(edge.inside_above ? exact::Side{edge.left, edge.right}
                                       : exact::Side{edge.right, edge.left});
  }
  return bounds;
}

Overlay overlay(Sites sites, std::vector<Side> sides, std::size_t most) {
  Sweep sweep(std::move(sites), std::move(sides), 0, most);
  sweep.run();
  return sweep.overlay();
}

}  // namespace kzgis::mesh
