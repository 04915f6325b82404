// Rings and lines in degrees, side by side, on the cylinder of longitudes and latitudes.

#ifndef KZGIS_CHART_SIDES_H
#define KZGIS_CHART_SIDES_H

#include <cstdint>
#include <span>
#include <vector>

namespace kzgis::chart {

/// A side, straight in degrees.
///
/// It begins at the end that comes first by latitude and then by longitude, whatever the direction
/// of its ring: what is calculated of it is the same for both polygons that it parts.
struct Side {
  double lon, lat;          ///< where it begins; longitudes count from the base, in [-180, 180)
  double end_lon, end_lat;  ///< likewise
  std::int32_t turns;       ///< whole turns that its end lies beyond `end_lon`
  bool reversed;            ///< its ring goes along it from the end
  std::uint32_t from, to;   ///< the vertices of its ring, in the ring's direction

  double end() const { return end_lon + 360.0 * turns; }
};

/// A ring or a line on the cylinder.
struct Course {
  std::vector<double> lon, lat;  ///< of its vertices, as in `Side`
  std::vector<Side> sides;
  int pole =
      0;  ///< 1 or -1 for a ring that goes round the globe: the north or south pole is inside
};

/// @param lon, lat  finite; the first vertex of a ring may be repeated at its end
Course ring_course(std::span<const double> lon, std::span<const double> lat, double base_lon);
Course line_course(std::span<const double> lon, std::span<const double> lat, double base_lon);

}  // namespace kzgis::chart

#endif
