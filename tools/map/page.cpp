// How large a map is on its plane, and where on the page that lies.

#include "tools/map/page.h"

#include <algorithm>
#include <limits>

namespace kzgis::map {
namespace {

/// The rectangle about the points added; without one, an empty one.
struct Extent {
  double left = std::numeric_limits<double>::infinity();
  double right = -std::numeric_limits<double>::infinity();
  double bottom = std::numeric_limits<double>::infinity();
  double top = -std::numeric_limits<double>::infinity();

  void add(const PlanePoint& p) {
    left = std::min(left, p.x);
    right = std::max(right, p.x);
    bottom = std::min(bottom, p.y);
    top = std::max(top, p.y);
  }
};

// A projection takes the window's border to the border of the map, so the border alone
// gives the extent.
Extent extent_of(const Plane& plane) {
  if (plane.is_disc()) {
    const double r = plane.limb_radius();
    return {-r, r, -r, r};
  }
  constexpr int kSteps = 360;
  const Window& w = plane.window();
  Extent extent;
  for (int i = 0; i <= kSteps; ++i) {
    const double t = static_cast<double>(i) / kSteps;
    const double lon = w.west + t * (w.east - w.west);
    const double lat = w.south + t * (w.north - w.south);
    extent.add(plane.place({lon, w.south}));
    extent.add(plane.place({lon, w.north}));
    extent.add(plane.place({w.west, lat}));
    extent.add(plane.place({w.east, lat}));
  }
  return extent;
}

}  // namespace

double aspect(const Plane& plane) {
  const Extent e = extent_of(plane);
  return (e.right - e.left) / (e.top - e.bottom);
}

Page::Page(const Plane& plane, double left, double top, double width, double height)
    : plane_(plane) {
  const Extent e = extent_of(plane);
  scale_ = std::min(width / (e.right - e.left), height / (e.top - e.bottom));
  left_ = left + 0.5 * width - 0.5 * (e.left + e.right) * scale_;
  top_ = top + 0.5 * height + 0.5 * (e.top + e.bottom) * scale_;
}

}  // namespace kzgis::map
