// What of a shape lies inside the window of a map.

#ifndef KZGIS_TOOLS_MAP_CLIP_H
#define KZGIS_TOOLS_MAP_CLIP_H

#include <optional>
#include <utility>

#include "tools/map/geo.h"

namespace kzgis::map {

/// A rectangle in degrees: what a map shows, in longitudes relative to its middle meridian.
struct Window {
  double west;
  double east;
  double south;
  double north;

  /// Tells whether the point lies in the window or on its border.
  bool holds(const Geo& p) const {
    return west <= p.lon && p.lon <= east && south <= p.lat && p.lat <= north;
  }
};

/// The part of a closed ring inside the window, as one ring; fewer than three points when
/// nothing is left.
///
/// Where several pieces are left they stay connected along the window's border, there and
/// back: that encloses nothing.
/// After I. Sutherland and G. Hodgman, "Reentrant Polygon Clipping", CACM 17 (1974).
GeoLine clip_ring(const GeoLine& ring, const Window& window);

/// The part of a segment inside the window; nothing when it misses the window or only runs
/// along its border.
/// After Y. Liang and B. Barsky, "A New Concept and Method for Line Clipping" (1984).
std::optional<std::pair<Geo, Geo>> clip_segment(const Geo& a, const Geo& b, const Window& window);

/// The smallest window that holds every point; the line must not be empty.
Window bounds(const GeoLine& line);

}  // namespace kzgis::map

#endif
