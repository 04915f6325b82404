// From the plane of a projection to the page.

#ifndef KZGIS_TOOLS_MAP_PAGE_H
#define KZGIS_TOOLS_MAP_PAGE_H

#include <cmath>

#include "tools/map/geo.h"
#include "tools/map/plane.h"

namespace kzgis::map {

/// Where a position lands on the page.
struct PagePoint {
  Pixel at;
  bool visible;  ///< and then finite

  bool finite() const { return std::isfinite(at.x) && std::isfinite(at.y); }
};

/// Width over height of what a plane shows.
double aspect(const Plane& plane);

/// A plane fitted into a rectangle of the page and centred there.
class Page {
 public:
  /// @param plane  borrowed
  Page(const Plane& plane, double left, double top, double width, double height);

  const Plane& plane() const { return plane_; }

  PagePoint place(const Geo& position) const {
    const PlanePoint p = plane_.place(position);
    const PagePoint placed{to_page(p.x, p.y), p.visible};
    return {placed.at, placed.visible && placed.finite()};
  }

  /// The middle of a disc map, and its limb's radius in pixels.
  Pixel centre() const { return to_page(0.0, 0.0); }
  double limb_radius() const { return plane_.limb_radius() * scale_; }

 private:
  Pixel to_page(double x, double y) const { return {left_ + x * scale_, top_ - y * scale_}; }

  const Plane& plane_;
  double scale_;  // pixels per globe radius
  double left_;
  double top_;
};

}  // namespace kzgis::map

#endif
