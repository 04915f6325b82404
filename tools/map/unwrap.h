// Shapes in degrees without the antimeridian.

#ifndef KZGIS_TOOLS_MAP_UNWRAP_H
#define KZGIS_TOOLS_MAP_UNWRAP_H

#include <cstddef>
#include <vector>

#include "tools/map/geo.h"

namespace kzgis::map {

/// Makes the longitudes of a line run on across the antimeridian.
///
/// An edge of more than 180 degrees crosses the antimeridian and is taken the short way
/// round, unless both its ends lie on a pole: such an edge follows the map's border.
/// Vertices that are not finite are dropped.
GeoLine unwrap_line(const GeoLine& line);

/// A ring whose longitudes run on, without a repeated last point.
struct Ring {
  GeoLine points;
  /// Edges from this point on were added to close the ring by way of a pole.
  std::size_t first_added_edge = 0;
};

/// Unwraps a ring as `unwrap_line` does and closes it.
///
/// A ring that has gone once round the globe when it meets itself holds a pole: it is
/// closed by way of the pole of its own hemisphere.  Fewer than three usable points give
/// an empty ring.
Ring unwrap_ring(const GeoLine& ring);

/// One polygon record, ready for the map.
struct Shape {
  std::vector<GeoLine> rings;     ///< closed, for filling with the even-odd rule
  std::vector<GeoLine> outlines;  ///< what is really there: coasts and borders
  std::vector<GeoLine> seams;     ///< edges that only close rings at the antimeridian or a pole
};

/// Prepares a polygon record; longitudes come out relative to `base_lon`.
Shape prepare_polygon(const std::vector<GeoLine>& parts, double base_lon);

/// Makes longitudes relative to `base_lon`.
void shift_longitudes(std::vector<GeoLine>& lines, double base_lon);

/// Prepares an arc record; longitudes come out relative to `base_lon`.
std::vector<GeoLine> prepare_lines(const std::vector<GeoLine>& parts, double base_lon);

}  // namespace kzgis::map

#endif
