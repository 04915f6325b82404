// Windings of contours against a cover of triangles, side by side.
//
// A side adds one to the windings of all points to its left, as seen from a point to its right
// that does not move.  Contours and triangles, which wind once round their inside, therefore
// give every point the same number exactly when, on every piece of every line, as many sides of
// contours run one way as sides of triangles: when all sides cancel, the triangles' turned
// round.  (In topology: two 1-cycles of the plane that are equal bound equal 2-chains.)

#include "polytree/winding.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

#include "exact/stretches.h"

namespace kzgis::polytree {

namespace {

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

  std::span<const exact::Point> places() const { return places_; }

 private:
  std::vector<std::uint32_t> site_of_;
  std::vector<exact::Point> places_;
};

/// Adds `weight` sides from one site to another.
void add_side(std::vector<exact::Stretch>& stretches, std::uint32_t from, std::uint32_t to,
              int weight) {
  if (from < to) stretches.push_back({from, to, weight});
  if (from > to) stretches.push_back({to, from, -weight});
}

}  // namespace

bool wind_as_covered(std::span<const std::uint32_t> contour_sizes,
                     std::span<const exact::Point> vertices,
                     std::span<const std::uint32_t> triangles) {
  const Sites sites(vertices);
  std::vector<exact::Stretch> stretches;
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
  return exact::cancel(sites.places(), std::move(stretches), exact::Cancel::to_zero);
}

}  // namespace kzgis::polytree
