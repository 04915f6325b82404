// Windings of contours against a cover of triangles, side by side.
//
// A side adds one to the windings of all points to its left, as seen from a point to its right
// that does not move.  Contours and triangles, which wind once round their inside, therefore
// give every point the same number exactly when, on every piece of every line, as many sides of
// contours run one way as sides of triangles: when all sides cancel, the triangles' turned
// round.  (In topology: two 1-cycles of the plane that are equal bound equal 2-chains.)
//
// Sides that have both ends in common cancel by counting.  What is left are sides of contours
// that have a vertex of others on them, and the pieces they are cut into.  Of those on one line
// it is enough to look at the ends: where sides do not cancel, a stretch of the line is left on
// which their number is not zero, and where that stretch ends, more of them end than begin.

#include "polytree/winding.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <vector>

namespace kzgis::polytree {

namespace {

/// A stretch between two sites, and how many sides lie on it: those from left to right less
/// those from right to left.
struct Stretch {
  std::uint32_t left, right;
  std::int64_t sides;
};

/// The places of the vertices, numbered from the left and, at the same x, from below.
class Sites {
 public:
  explicit Sites(std::span<const exact::Point> vertices) : site_of_(vertices.size()) {
    std::vector<std::uint32_t> order(vertices.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<std::uint32_t>(i);
    std::sort(order.begin(), order.end(), [vertices](std::uint32_t a, std::uint32_t b) {
      return std::tie(vertices[a].x, vertices[a].y) < std::tie(vertices[b].x, vertices[b].y);
    });
    for (const std::uint32_t v : order) {
      const exact::Point& place = vertices[v];
      if (places_.empty() || place.x != places_.back().x || place.y != places_.back().y) {
        places_.push_back(place);
      }
      site_of_[v] = static_cast<std::uint32_t>(places_.size() - 1);
    }
  }

  std::uint32_t of(std::uint32_t vertex) const { return site_of_[vertex]; }

  /// The turn from site a over b to c.
  int turn(std::uint32_t a, std::uint32_t b, std::uint32_t c) const {
    return exact::orientation(places_[a], places_[b], places_[c]);
  }

 private:
  std::vector<std::uint32_t> site_of_;
  std::vector<exact::Point> places_;
};

/// Adds `weight` sides from one site to another.
void add_side(std::vector<Stretch>& stretches, std::uint32_t from, std::uint32_t to, int weight) {
  if (from < to) stretches.push_back({from, to, weight});
  if (from > to) stretches.push_back({to, from, -weight});
}

/// Makes stretches with both ends in common one, and leaves out what cancels.
void count_together(std::vector<Stretch>& stretches) {
  std::sort(stretches.begin(), stretches.end(), [](const Stretch& a, const Stretch& b) {
    return std::tie(a.left, a.right) < std::tie(b.left, b.right);
  });
  std::size_t kept = 0;
  for (std::size_t i = 0; i < stretches.size();) {
    Stretch sum = stretches[i++];
    for (; i < stretches.size() && stretches[i].left == sum.left && stretches[i].right == sum.right;
         ++i) {
      sum.sides += stretches[i].sides;
    }
    if (sum.sides != 0) stretches[kept++] = sum;
  }
  stretches.resize(kept);
}

/// The end of a stretch at a site.
struct End {
  std::uint32_t site, other;
  std::int64_t sides;  ///< those that end here, to the right, less those that begin
};

/// Whether all sides cancel: whether at every site, on every line through it, as many of them
/// end as begin.
bool cancel(const Sites& sites, const std::vector<Stretch>& stretches) {
  std::vector<End> ends;
  ends.reserve(2 * stretches.size());
  for (const Stretch& s : stretches) {
    ends.push_back({s.left, s.right, -s.sides});
    ends.push_back({s.right, s.left, s.sides});
  }
  // How the line of b turns from that of a, both taken to the right.
  const auto turn = [&sites](const End& a, const End& b) {
    const int seen = sites.turn(a.site, a.other, b.other);
    return (a.other < a.site) == (b.other < b.site) ? seen : -seen;
  };
  std::sort(ends.begin(), ends.end(), [&turn](const End& a, const End& b) {
    return a.site != b.site ? a.site < b.site : turn(a, b) > 0;
  });
  for (std::size_t begin = 0, end = 0; begin < ends.size(); begin = end) {
    std::int64_t sum = 0;
    for (end = begin; end < ends.size() && ends[end].site == ends[begin].site &&
                      turn(ends[begin], ends[end]) == 0;
         ++end) {
      sum += ends[end].sides;
    }
    if (sum != 0) return false;
  }
  return true;
}

}  // namespace

bool wind_as_covered(std::span<const std::uint32_t> contour_sizes,
                     std::span<const exact::Point> vertices,
                     std::span<const std::uint32_t> triangles) {
  const Sites sites(vertices);
  std::vector<Stretch> stretches;
  stretches.reserve(vertices.size() + triangles.size());
  const auto add_ring = [&](std::uint32_t count, auto vertex, int weight) {
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::uint32_t next = i + 1 < count ? i + 1 : 0;
      add_side(stretches, sites.of(vertex(i)), sites.of(vertex(next)), weight);
    }
  };
  std::uint32_t first = 0;
  for (const std::uint32_t size : contour_sizes) {
    add_ring(
        size, [first](std::uint32_t i) { return first + i; }, 1);
    first += size;
  }
  for (std::size_t t = 0; t < triangles.size(); t += 3) {
    add_ring(
        3, [&triangles, t](std::uint32_t i) { return triangles[t + i]; }, -1);
  }
  count_together(stretches);
  return cancel(sites, stretches);
}

}  // namespace kzgis::polytree
