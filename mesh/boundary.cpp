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

#include "mesh/faces.h"

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
  outline.x.reserve(vertices);
  outline.y.reserve(vertices);
  outline.starts.reserve(rings.size());
  for (const Contour& ring : rings) {
    outline.starts.push_back(static_cast<std::int32_t>(outline.x.size()));
    for (const std::uint32_t site : ring) {
      outline.x.push_back(arrangement.sites[site].x);
      outline.y.push_back(arrangement.sites[site].y);
    }
  }
  return outline;
}

}  // namespace kzgis::mesh
