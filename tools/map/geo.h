// The two kinds of point that the map code deals in.

#ifndef KZGIS_TOOLS_MAP_GEO_H
#define KZGIS_TOOLS_MAP_GEO_H

#include <vector>

namespace kzgis::map {

/// A position in degrees.  Longitudes run on without wrapping: 190 and -170 are the same
/// meridian, but an edge from 179 to 190 is 11 degrees long.
struct Geo {
  double lon;
  double lat;
};
using GeoLine = std::vector<Geo>;

/// A point on the page, x to the right and y down, in pixels (points in a PDF).
struct Pixel {
  double x;
  double y;
};

/// Pieces of line on the page; a piece to be filled closes on itself.
using PagePath = std::vector<std::vector<Pixel>>;

}  // namespace kzgis::map

#endif
