#include "polytree/arrangement.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kzgis/exact.h"

namespace kzgis::polytree {

namespace {

/// A side of a ring, from its left to its right site.
struct Segment {
  std::uint32_t left, right;
  std::uint32_t ring;
  kz_ulong vertex;     // the caller's, which the ring comes from here
  bool rightward;      // the ring runs from left to right here
  std::uint32_t next;  // in the same bundle
};

/// Segments that run on top of each other from `left` on, the sweep line crossing all.
struct Bundle {
  std::uint32_t left;
  std::uint32_t reach;  // the farthest right site
  std::uint32_t first;  // of its segments
  std::uint32_t edge;   // its boundary edge; kNone where an even number cancels
  std::uint32_t kept;   // the nearest boundary edge, its own or below it
  bool inside_above;
  std::uint32_t innermost;  // ring around what lies just above; kNone outside all
};

class Sweep {
 public:
  explicit Sweep(const Rings& rings) : rings_(rings), status_(Below{this}) {}

  Arrangement run() {
    if (check_input() && find_sites()) {
      for (std::size_t ring = 0; ring < rings_.starts.size(); ++ring) take_ring(ring);
      if (!result_.flaw) sweep();
    }
    return std::move(result_);
  }

 private:
  /// A site to look for on the sweep line.
  struct OnLine {
    std::uint32_t site;
  };

  /// Order along the sweep line, from below.
  struct Below {
    const Sweep* sweep;
    using is_transparent = void;

    bool operator()(std::uint32_t a, std::uint32_t b) const {
      const Bundle& p = sweep->bundles_[a];
      const Bundle& q = sweep->bundles_[b];
      if (p.left == q.left) return sweep->turn(p.left, p.reach, q.reach) > 0;
      if (p.left < q.left) return sweep->turn(p.left, p.reach, q.left) > 0;
      return sweep->turn(q.left, q.reach, p.left) < 0;
    }
    bool operator()(std::uint32_t a, OnLine b) const {
      return sweep->turn(sweep->bundles_[a].left, sweep->bundles_[a].reach, b.site) > 0;
    }
  };
  using Status = std::set<std::uint32_t, Below>;

  /// What is known of a ring while the sweep goes on.
  struct RingState {
    std::size_t first_side = 0;  // of its segments, which follow each other
    std::size_t sides = 0;
    double area = 0.0;  // twice, and about
    kz_ulong depth = 0;
    bool apart = false;     // somewhere it runs without its parent
    std::size_t count = 0;  // of its segments in the bundle at hand
  };

  int turn(std::uint32_t a, std::uint32_t b, std::uint32_t c) const {
    const Site& p = result_.sites[a];
    const Site& q = result_.sites[b];
    const Site& r = result_.sites[c];
    return exact::orientation(p.x, p.y, q.x, q.y, r.x, r.y);
  }

  void refuse(ErrorKind kind, std::string message, kz_long ring, kz_long vertex) {
    result_.flaw.kind = kind;
    result_.flaw.message = std::move(message);
    result_.flaw.ring = ring;
    result_.flaw.vertex = vertex;
  }

  std::size_t end_of(std::size_t ring) const {
    return ring + 1 < rings_.starts.size() ? static_cast<std::size_t>(rings_.starts[ring + 1])
                                           : rings_.x.size();
  }

  bool check_input() {
    if (rings_.x.size() != rings_.y.size() || rings_.x.size() >= 0x40000000) {
      refuse(ErrorKind::bad_argument, "x and y differ in length, or hold a billion values", -1, -1);
      return false;
    }
    for (std::size_t ring = 0; ring < rings_.starts.size(); ++ring) {
      const std::int64_t start = rings_.starts[ring];
      if (start < 0 || start > static_cast<std::int64_t>(rings_.x.size()) ||
          (ring > 0 && start < rings_.starts[ring - 1])) {
        refuse(ErrorKind::bad_argument,
               "ring " + std::to_string(ring) + " starts at vertex " + std::to_string(start) +
                   ", before the ring in front of it or outside the coordinates",
               static_cast<kz_long>(ring), -1);
        return false;
      }
    }
    for (std::size_t ring = 0; ring < rings_.starts.size(); ++ring) {
      for (auto i = static_cast<std::size_t>(rings_.starts[ring]); i < end_of(ring); ++i) {
        if (!exact::in_range(rings_.x[i]) || !exact::in_range(rings_.y[i])) {
          refuse(ErrorKind::bad_data,
                 "ring " + std::to_string(ring) + ", vertex " + std::to_string(i) +
                     ": a coordinate is no number or out of range",
                 static_cast<kz_long>(ring), static_cast<kz_long>(i));
          return false;
        }
      }
    }
    return true;
  }

  /// Numbers the places of all vertices from left to right.
  bool find_sites() {
    const std::size_t first =
        rings_.starts.empty() ? rings_.x.size() : static_cast<std::size_t>(rings_.starts[0]);
    std::vector<std::uint32_t> order(rings_.x.size() - first);
    std::iota(order.begin(), order.end(), static_cast<std::uint32_t>(first));
    std::sort(order.begin(), order.end(), [this](std::uint32_t a, std::uint32_t b) {
      if (rings_.x[a] != rings_.x[b]) return rings_.x[a] < rings_.x[b];
      if (rings_.y[a] != rings_.y[b]) return rings_.y[a] < rings_.y[b];
      return a < b;
    });
    site_of_.assign(rings_.x.size(), kNone);
    for (const std::uint32_t vertex : order) {
      const bool new_place = result_.sites.empty() || result_.sites.back().x != rings_.x[vertex] ||
                             result_.sites.back().y != rings_.y[vertex];
      if (new_place) result_.sites.push_back({rings_.x[vertex], rings_.y[vertex], vertex, kNone});
      site_of_[vertex] = static_cast<std::uint32_t>(result_.sites.size() - 1);
    }
    states_.resize(rings_.starts.size());
    result_.parents.assign(rings_.starts.size(), kNone);
    result_.has_inside.assign(rings_.starts.size(), false);
    return true;
  }

  /// True when the way a, b, c turns back on itself at b.
  bool folds(std::uint32_t a, std::uint32_t b, std::uint32_t c) const {
    return a == c || ((a < b) == (c < b) && turn(a, b, c) == 0);
  }

  /// Takes a ring's sides, without repeated vertices and without spikes.
  void take_ring(std::size_t ring) {
    std::vector<std::uint32_t> path;  // caller's vertices
    const auto site = [this](std::uint32_t vertex) { return site_of_[vertex]; };
    const auto settle = [&] {
      while (path.size() >= 2) {
        const std::size_t n = path.size();
        if (site(path[n - 1]) == site(path[n - 2])) {
          path.pop_back();
        } else if (n >= 3 && folds(site(path[n - 3]), site(path[n - 2]), site(path[n - 1]))) {
          path.erase(path.end() - 2);
        } else {
          break;
        }
      }
    };
    for (auto i = static_cast<std::size_t>(rings_.starts[ring]); i < end_of(ring); ++i) {
      path.push_back(static_cast<std::uint32_t>(i));
      settle();
    }
    // The same across the place where the ring closes.
    std::size_t begin = 0;
    while (path.size() - begin >= 2) {
      const std::size_t n = path.size();
      const std::uint32_t first = site(path[begin]);
      const std::uint32_t last = site(path[n - 1]);
      if (first == last || folds(site(path[n - 2]), last, first)) {
        path.pop_back();
      } else if (folds(last, first, site(path[begin + 1]))) {
        ++begin;
      } else {
        break;
      }
    }
    path.erase(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(begin));
    if (path.size() < 3) return;
    result_.has_inside[ring] = true;
    add_sides(ring, path);
  }

  void add_sides(std::size_t ring, const std::vector<std::uint32_t>& path) {
    RingState& state = states_[ring];
    const std::size_t n = path.size();
    state.first_side = segments_.size();
    state.sides = n;
    const Site& origin = result_.sites[site_of_[path[0]]];
    for (std::size_t i = 0; i < n; ++i) {
      const std::uint32_t here = site_of_[path[i]];
      const std::uint32_t after = site_of_[path[(i + 1) % n]];
      const bool rightward = here < after;
      segments_.push_back({rightward ? here : after, rightward ? after : here,
                           static_cast<std::uint32_t>(ring), path[i], rightward, kNone});
      const Site& p = result_.sites[here];
      const Site& q = result_.sites[after];
      state.area += (p.x - origin.x) * (q.y - origin.y) - (q.x - origin.x) * (p.y - origin.y);
    }
    state.area = std::fabs(state.area);
  }

  void sweep() {
    // Segments by their left sites, rings by their smallest.
    std::vector<std::uint32_t> by_left(segments_.size());
    std::iota(by_left.begin(), by_left.end(), 0U);
    std::sort(by_left.begin(), by_left.end(), [this](std::uint32_t a, std::uint32_t b) {
      return segments_[a].left != segments_[b].left ? segments_[a].left < segments_[b].left : a < b;
    });
    auto next_segment = by_left.begin();
    for (std::uint32_t site = 0; site < result_.sites.size(); ++site) {
      starting_.clear();
      for (; next_segment != by_left.end() && segments_[*next_segment].left == site;
           ++next_segment) {
        starting_.push_back(*next_segment);
      }
      pass(site);
      if (result_.flaw) return;
    }
    refuse_repetitions();
  }

  /// Moves the sweep line over a site: what comes in from the left ends there, and goes on
  /// in bundles that begin there.
  void pass(std::uint32_t site) {
    auto high = status_.lower_bound(OnLine{site});
    bool boundary_from_left = false;
    while (high != status_.end() && turn(bundles_[*high].left, bundles_[*high].reach, site) == 0) {
      const Bundle& bundle = bundles_[*high];
      if (bundle.edge != kNone) {
        result_.edges[bundle.edge].right = site;
        boundary_from_left = true;
      }
      for (std::uint32_t s = bundle.first; s != kNone;) {
        const std::uint32_t following = segments_[s].next;
        if (segments_[s].right != site) starting_.push_back(s);
        s = following;
      }
      free_.push_back(*high);
      high = status_.erase(high);
    }
    const bool has_lower = high != status_.begin();
    const std::uint32_t lower = has_lower ? *std::prev(high) : kNone;
    const std::uint32_t upper = high != status_.end() ? *high : kNone;
    if (!boundary_from_left) result_.sites[site].below = has_lower ? bundles_[lower].kept : kNone;

    group_from(site);
    std::uint32_t under = lower;
    for (const std::uint32_t bundle : group_) {
      settle_bundle(bundle, under);
      status_.insert(high, bundle);
      under = bundle;
    }
    if (group_.empty()) {
      check_crossing(lower, upper);
    } else {
      check_crossing(lower, group_.front());
      check_crossing(group_.back(), upper);
    }
  }

  /// Puts the segments that start at a site into bundles, the lowest first.
  void group_from(std::uint32_t site) {
    group_.clear();
    std::sort(starting_.begin(), starting_.end(), [this, site](std::uint32_t a, std::uint32_t b) {
      const int t = turn(site, segments_[a].right, segments_[b].right);
      return t != 0 ? t > 0 : a < b;
    });
    for (const std::uint32_t s : starting_) {
      Segment& segment = segments_[s];
      const bool same =
          !group_.empty() && turn(site, bundles_[group_.back()].reach, segment.right) == 0;
      if (!same) {
        if (free_.empty()) {
          free_.push_back(static_cast<std::uint32_t>(bundles_.size()));
          bundles_.emplace_back();
        }
        bundles_[free_.back()] = {site, segment.right, kNone, kNone, kNone, false, kNone};
        group_.push_back(free_.back());
        free_.pop_back();
      }
      Bundle& bundle = bundles_[group_.back()];
      bundle.reach = std::max(bundle.reach, segment.right);
      segment.next = bundle.first;
      bundle.first = s;
    }
  }

  /// Finds on which side of a new bundle the inside lies, and in which ring, from what is
  /// next below it.
  void settle_bundle(std::uint32_t number, std::uint32_t under) {
    Bundle& bundle = bundles_[number];
    bool odd = false;
    for (std::uint32_t s = bundle.first; s != kNone; s = segments_[s].next) odd = !odd;
    const bool inside_below = under != kNone && bundles_[under].inside_above;
    bundle.inside_above = inside_below != odd;
    bundle.kept = under != kNone ? bundles_[under].kept : kNone;
    if (odd) {
      bundle.edge = static_cast<std::uint32_t>(result_.edges.size());
      bundle.kept = bundle.edge;
      result_.edges.push_back({bundle.left, kNone, bundle.inside_above});
    }
    nest(bundle, under != kNone ? bundles_[under].innermost : kNone);
  }

  /// Refuses the rings when two neighbours on the sweep line will cross.
  ///
  /// `a` is below `b` now; they cross when the one that ends first ends on the wrong side.
  /// Ending on the other is a touch, which is cut there when the sweep comes to it.
  void check_crossing(std::uint32_t a, std::uint32_t b) {
    if (a == kNone || b == kNone || result_.flaw) return;
    const Bundle& p = bundles_[a];
    const Bundle& q = bundles_[b];
    const bool crosses =
        p.reach < q.reach ? turn(q.left, q.reach, p.reach) > 0 : turn(p.left, p.reach, q.reach) < 0;
    if (!crosses) return;
    const Segment& one = farthest(p);
    const Segment& other = farthest(q);
    refuse(ErrorKind::bad_data,
           "ring " + std::to_string(one.ring) + " crosses " +
               (one.ring == other.ring ? "itself" : "ring " + std::to_string(other.ring)) +
               " (sides from vertices " + std::to_string(one.vertex) + " and " +
               std::to_string(other.vertex) + ")",
           static_cast<kz_long>(one.ring), static_cast<kz_long>(one.vertex));
  }

  const Segment& farthest(const Bundle& bundle) const {
    std::uint32_t s = bundle.first;
    while (segments_[s].right != bundle.reach) s = segments_[s].next;
    return segments_[s];
  }

  /// Goes up across a bundle: out of the rings that are left there, from the innermost on,
  /// and into those that are entered.  A ring entered for the first time gets its parent;
  /// one that is entered within another parent overlaps it.
  void nest(Bundle& bundle, std::uint32_t inside) {
    crossed_.clear();
    for (std::uint32_t s = bundle.first; s != kNone; s = segments_[s].next) {
      if (states_[segments_[s].ring].count++ == 0) crossed_.push_back(segments_[s].ring);
    }
    // A ring that runs back and forth here is not crossed.
    const auto crossed = [this](std::uint32_t ring) {
      return ring != kNone && states_[ring].count % 2 != 0;
    };
    for (const std::uint32_t ring : crossed_) {
      const bool known = states_[ring].depth != 0;
      if (known && crossed(ring) && !crossed(result_.parents[ring])) states_[ring].apart = true;
    }
    for (; crossed(inside); inside = result_.parents[inside]) states_[inside].count = 0;

    std::sort(crossed_.begin(), crossed_.end(), [this](std::uint32_t a, std::uint32_t b) {
      const RingState& p = states_[a];
      const RingState& q = states_[b];
      // What was entered before began further to the left, and lies around the others.
      if ((p.depth == 0) != (q.depth == 0)) return q.depth == 0;
      if (p.depth != q.depth) return p.depth < q.depth;
      return p.depth == 0 ? larger(a, b) : a < b;
    });
    bool entered = false;
    for (const std::uint32_t ring : crossed_) {
      RingState& state = states_[ring];
      if (crossed(ring)) {
        if (state.depth == 0) {
          result_.parents[ring] = inside;
          state.depth = inside == kNone ? 1 : states_[inside].depth + 1;
          state.apart = !entered;
        } else if (result_.parents[ring] != inside && !result_.flaw) {
          // Outside its parent it overlaps that, inside a ring within its parent this one.
          std::uint32_t around = inside;
          while (around != kNone && around != result_.parents[ring]) {
            around = result_.parents[around];
          }
          const std::uint32_t other =
              around == result_.parents[ring] ? inside : result_.parents[ring];
          const kz_ulong vertex = segments_[state.first_side].vertex;
          refuse(ErrorKind::bad_data,
                 "ring " + std::to_string(ring) + " overlaps ring " + std::to_string(other),
                 static_cast<kz_long>(ring), static_cast<kz_long>(vertex));
        }
        inside = ring;
        entered = true;
      }
      state.count = 0;
    }
    bundle.innermost = inside;
  }

  /// Refuses a ring that has no side where its parent has none: it is the same ring.
  void refuse_repetitions() {
    for (std::size_t ring = 0; ring < states_.size(); ++ring) {
      const std::uint32_t parent = result_.parents[ring];
      if (!result_.has_inside[ring] || parent == kNone || states_[ring].apart) continue;
      const std::uint32_t first = std::min(static_cast<std::uint32_t>(ring), parent);
      const std::uint32_t second = std::max(static_cast<std::uint32_t>(ring), parent);
      refuse(ErrorKind::bad_data,
             "ring " + std::to_string(second) + " repeats ring " + std::to_string(first),
             static_cast<kz_long>(second), rings_.starts[second]);
      return;
    }
  }

  /// Whether a ring encloses more than another one, exactly; the lower number of two equal
  /// ones counts as larger.
  bool larger(std::uint32_t a, std::uint32_t b) const {
    const double p = states_[a].area;
    const double q = states_[b].area;
    if (std::fabs(p - q) > 1e-6 * (p + q)) return p > q;
    const int difference = compare_exactly(a, b);
    return difference != 0 ? difference > 0 : a < b;
  }

  /// The sign of the difference of two areas.
  int compare_exactly(std::uint32_t a, std::uint32_t b) const {
    std::vector<exact::Product> difference;
    add_area(a, 1.0, difference);
    // Twice the signed areas of the rings; what runs clockwise is turned round.
    if (exact::sign_of_sum(difference) < 0) turn_round(difference);
    std::vector<exact::Product> other;
    add_area(b, -1.0, other);
    if (exact::sign_of_sum(other) > 0) turn_round(other);
    difference.insert(difference.end(), other.begin(), other.end());
    return exact::sign_of_sum(difference);
  }

  void add_area(std::uint32_t ring, double factor, std::vector<exact::Product>& sum) const {
    const RingState& state = states_[ring];
    for (std::size_t i = 0; i < state.sides; ++i) {
      const Segment& side = segments_[state.first_side + i];
      const Site& p = result_.sites[side.rightward ? side.left : side.right];
      const Site& q = result_.sites[side.rightward ? side.right : side.left];
      sum.push_back({factor * p.x, q.y});
      sum.push_back({-factor * q.x, p.y});
    }
  }

  static void turn_round(std::vector<exact::Product>& sum) {
    for (exact::Product& product : sum) product.a = -product.a;
  }

  const Rings& rings_;
  Arrangement result_;
  std::vector<std::uint32_t> site_of_;  // of each vertex
  std::vector<RingState> states_;
  std::vector<Segment> segments_;
  std::vector<Bundle> bundles_;
  std::vector<std::uint32_t> free_;  // numbers of bundles that have ended
  Status status_;
  // Kept between sites for their memory.
  std::vector<std::uint32_t> starting_;
  std::vector<std::uint32_t> group_;
  std::vector<std::uint32_t> crossed_;
};

}  // namespace

Arrangement arrange(const Rings& rings) { return Sweep(rings).run(); }

}  // namespace kzgis::polytree
