// Rounds of sweeping and cutting.

#include "mesh/splitting.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "exact/predicates.h"
#include "mesh/proof.h"
#include "mesh/rings.h"

namespace kzgis::mesh {

namespace {

/// How far an edge goes out of its way, in every round, to a vertex that is there already rather
/// than to a new one: in units of the last place of the largest coordinate.
///
/// What crosses in the first round was meant to.  What crosses later does so because pieces have
/// moved, and has a vertex close by: if that is taken, edges that run almost on top of each other
/// become one, where new vertices would let them move and cross for ever.  All together come to
/// 118, and the first round's rounding to two at most.
constexpr int kSnaps[] = {0, 2, 2, 2, 4, 4, 4, 4, 8, 8, 8, 8, 16, 16, 16, 16};

/// A place in which an edge is to be cut.
struct Cut {
  std::uint32_t edge;
  exact::Point place;
};

class Cutter {
 public:
  /// @param snap  a length
  Cutter(const Overlay& overlay, double snap) : overlay_(overlay), snap_(snap) {}

  /// Where the edges are to be cut, edge by edge, in the order in which a way along the edge comes
  /// to the places.
  std::vector<Cut> cuts() {
    for (const Crossing& crossing : overlay_.crossings) {
      // What crosses sides that cancel crosses nothing.
      if (crossing.edge == kNone || crossing.other_edge == kNone) continue;
      if (!cut_at_vertices(crossing.edge, crossing.other_edge)) {
        const exact::Point place = exact::crossing(line(crossing.edge), line(crossing.other_edge));
        cuts_.push_back({crossing.edge, place});
        cuts_.push_back({crossing.other_edge, place});
      }
    }
    std::sort(cuts_.begin(), cuts_.end(), [this](const Cut& a, const Cut& b) {
      if (a.edge != b.edge) return a.edge < b.edge;
      const double along_a = along(line(a.edge), a.place);
      const double along_b = along(line(a.edge), b.place);
      if (along_a != along_b) return along_a < along_b;
      return a.place.x != b.place.x ? a.place.x < b.place.x : a.place.y < b.place.y;
    });
    return std::move(cuts_);
  }

 private:
  exact::Line line(std::uint32_t edge) const {
    return {overlay_.sites[overlay_.edges[edge].left], overlay_.sites[overlay_.edges[edge].right]};
  }

  /// How far a place lies along a line, as the larger of the line's two extents has it.
  static double along(const exact::Line& line, const exact::Point& place) {
    const double width = line.b.x - line.a.x;
    const double height = line.b.y - line.a.y;
    if (std::fabs(width) >= std::fabs(height)) return place.x;
    return height > 0.0 ? place.y : -place.y;
  }

  /// Leads one of two edges that cross, or both, over ends of the other that are near.
  ///
  /// Where the edges cross a hair before their ends, one end above the other, just one edge is led
  /// over the other's end: a new vertex would come to lie a hair beside both ends, and so on, and
  /// if both were led they would cross again.
  bool cut_at_vertices(std::uint32_t edge, std::uint32_t other) {
    // An end that is on the other edge has cut that edge before.
    if (snap_ == 0.0) return false;
    const std::size_t before = cuts_.size();
    for (const bool beside : {false, true}) {
      for (const auto& [cut, through] : {std::pair{edge, other}, std::pair{other, edge}}) {
        for (const exact::Point& end : {line(through).a, line(through).b}) {
          if (!is_near(end, line(cut), beside)) continue;
          cuts_.push_back({cut, end});
          if (beside) return true;
        }
      }
      if (cuts_.size() > before) return true;
    }
    return false;
  }

  /// Whether a place lies within the snapping distance of a line, between the line's ends; or
  /// beside one of these.
  bool is_near(const exact::Point& place, const exact::Line& line, bool beside) const {
    const double length = std::hypot(line.b.x - line.a.x, line.b.y - line.a.y);
    if (!(std::fabs(exact::doubled_area(line.a, line.b, place)) <= snap_ * length)) return false;
    const double at = along(line, place);
    const double first = along(line, line.a);
    const double last = along(line, line.b);
    return (first < at && at < last) || (beside && (first == at || at == last));
  }

  const Overlay& overlay_;
  double snap_;
  std::vector<Cut> cuts_;
};

/// The unit in the last place of the largest coordinate.
double last_place(const Sites& sites) {
  double largest = 0.0;
  for (const exact::Point& point : sites.points()) {
    largest = std::max({largest, std::fabs(point.x), std::fabs(point.y)});
  }
  return std::nextafter(largest, std::numeric_limits<double>::infinity()) - largest;
}

/// The edges, cut.
std::vector<Side> pieces_of(const Overlay& overlay, const std::vector<Cut>& cuts,
                            const Sites& sites) {
  std::vector<Side> pieces;
  pieces.reserve(overlay.edges.size() + cuts.size());
  auto cut = cuts.begin();
  for (std::uint32_t e = 0; e < overlay.edges.size(); ++e) {
    std::uint32_t from = sites.at(overlay.sites[overlay.edges[e].left]);
    const auto go_to = [&](std::uint32_t to) {
      if (to != from) pieces.push_back({std::min(from, to), std::max(from, to), 0, 0});
      from = to;
    };
    for (; cut != cuts.end() && cut->edge == e; ++cut) go_to(sites.at(cut->place));
    go_to(sites.at(overlay.sites[overlay.edges[e].right]));
  }
  return pieces;
}

}  // namespace

Result<Arrangement, Flaw> split(const Rings& rings, Sites sites, std::size_t most) {
  // All numbers are to fit 32 bits, as those of the rings do.
  most = std::min(most, kMostVertices - rings.x.size());
  std::vector<Side> sides = take_sides(rings, sites);
  const std::uint32_t own = sites.size();
  const double unit = last_place(sites);
  for (const int snap : kSnaps) {
    Overlay overlaid = overlay(std::move(sites), std::move(sides), most);
    if (overlaid.crossings.size() > most || overlaid.sites.size() - own > most) {
      return make_flaw(ErrorKind::bad_argument,
                       "the sides cross in more than " + std::to_string(most) + " places");
    }
    if (overlaid.crossings.empty()) {
      return Arrangement{std::move(overlaid.sites), std::move(overlaid.sides),
                         std::move(overlaid.edges), std::move(overlaid.below), Containment(0)};
    }
    // The last round is proved with its triangles.
    if (!same_modulo_2(overlaid.sites, overlaid.sides, overlaid.edges)) break;
    const std::vector<Cut> cuts = Cutter(overlaid, snap * unit).cuts();
    std::vector<exact::Point> places;
    places.reserve(cuts.size());
    for (const Cut& cut : cuts) places.push_back(cut.place);
    sites = Sites(overlaid.sites, std::move(places),
                  static_cast<std::uint32_t>(rings.x.size() + overlaid.sites.size() - own));
    sides = pieces_of(overlaid, cuts, sites);
  }
  return make_flaw(ErrorKind::unproved,
                   "the sides could not be cut where they cross: an error of this library");
}

}  // namespace kzgis::mesh
