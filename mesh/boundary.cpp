// Contours of faces, cut into simple rings.
//
// A contour has the inside of one face on its left all the way, and may come through a site more
// than once, where the face touches itself.  Between two visits of a site it goes round a loop, and
// a loop that visits no site twice is a ring: it is taken off, and the rest is still a contour.
// Where two rings touched each other in two sites, the inside would fall apart into two faces: so
// those of one face meet in one site at most, as standards for polygons want it.

#include "mesh/boundary.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "exact/predicates.h"
#include "mesh/faces.h"
#include "mesh/rings.h"

namespace kzgis::mesh {

namespace {

class Cutter {
 public:
  explicit Cutter(std::uint32_t sites) : place_(sites, kNone) {}

  /// Takes the loops off a contour.
  void cut(const Contour& contour) {
    for (const std::uint32_t site : contour) {
      if (place_[site] != kNone) take_off(place_[site] + 1);
      // What is left of the way ends at its site, which is this one if a loop was taken off.
      if (place_[site] == kNone) {
        place_[site] = static_cast<std::uint32_t>(way_.size());
        way_.push_back(site);
      }
    }
    take_off(0);
  }

  std::vector<Contour> rings() { return std::move(rings_); }

 private:
  /// Makes a ring of the way from a place on it to its end; `first` is 0, or one past the site
  /// at which the loop closes, which is a site of both the ring and the rest.
  void take_off(std::size_t first) {
    Contour ring(way_.begin() + static_cast<std::ptrdiff_t>(first == 0 ? 0 : first - 1),
                 way_.end());
    for (const std::uint32_t site : std::span(way_).subspan(first)) place_[site] = kNone;
    way_.resize(first);
    std::rotate(ring.begin(), std::min_element(ring.begin(), ring.end()), ring.end());
    rings_.push_back(std::move(ring));
  }

  std::vector<std::uint32_t> place_;  // of each site on the way, or kNone
  Contour way_;
  std::vector<Contour> rings_;
};

bool comes_before(const exact::Point& a, const exact::Point& b) {
  return a.x < b.x || (a.x == b.x && a.y < b.y);
}

void reserve(Outline& outline, std::size_t vertices, std::size_t rings) {
  outline.x.reserve(vertices);
  outline.y.reserve(vertices);
  outline.starts.reserve(rings);
}

}  // namespace

Outline boundary_of(const Arrangement& arrangement) {
  Cutter cutter(arrangement.sites.size());
  for (const Face& face : take_faces(arrangement)) {
    for (const Contour& contour : face) cutter.cut(contour);
  }
  std::vector<Contour> rings = cutter.rings();
  // By their smallest sites, and then in an order that does not depend on how faces are found.
  std::sort(rings.begin(), rings.end());
  Outline outline;
  std::size_t vertices = 0;
  for (const Contour& ring : rings) vertices += ring.size();
  reserve(outline, vertices, rings.size());
  for (const Contour& ring : rings) {
    outline.starts.push_back(static_cast<std::int32_t>(outline.x.size()));
    for (const std::uint32_t site : ring) {
      outline.x.push_back(arrangement.sites[site].x);
      outline.y.push_back(arrangement.sites[site].y);
    }
  }
  return outline;
}

Outline boundary_of(const Rings& rings, std::span<const std::int32_t> depths) {
  struct Start {
    exact::Point place;
    std::size_t ring, vertex;
  };
  const auto point = [&rings](std::size_t i) { return exact::Point{rings.x[i], rings.y[i]}; };
  std::vector<Start> starts;
  for (std::size_t ring = 0; ring < rings.starts.size(); ++ring) {
    Start start{point(static_cast<std::size_t>(rings.starts[ring])), ring,
                static_cast<std::size_t>(rings.starts[ring])};
    for (std::size_t i = start.vertex; i < end_of_ring(rings, ring); ++i) {
      if (comes_before(point(i), start.place)) start = {point(i), ring, i};
    }
    starts.push_back(start);
  }
  std::sort(starts.begin(), starts.end(),
            [](const Start& a, const Start& b) { return comes_before(a.place, b.place); });
  Outline outline;
  reserve(outline, rings.x.size(), starts.size());
  for (const Start& start : starts) {
    const auto first = static_cast<std::size_t>(rings.starts[start.ring]);
    std::size_t end = end_of_ring(rings, start.ring);
    if (rings.x[first] == rings.x[end - 1] && rings.y[first] == rings.y[end - 1]) --end;
    const std::size_t n = end - first;
    // The leftmost vertex repeated as the last one is the first.
    const std::size_t at = start.vertex < end ? start.vertex - first : 0;
    const int turn = exact::orientation(point(first + (at + n - 1) % n), point(first + at),
                                        point(first + (at + 1) % n));
    const bool backwards = (turn > 0) != (depths[start.ring] % 2 != 0);
    outline.starts.push_back(static_cast<std::int32_t>(outline.x.size()));
    for (std::size_t i = 0; i < n; ++i) {
      const std::size_t vertex = first + (backwards ? at + n - i : at + i) % n;
      outline.x.push_back(rings.x[vertex]);
      outline.y.push_back(rings.y[vertex]);
    }
  }
  return outline;
}

}  // namespace kzgis::mesh
