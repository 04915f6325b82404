// Angles, and how near is near, for all families of projections.

#ifndef KZGIS_CHART_ANGLES_H
#define KZGIS_CHART_ANGLES_H

#include <algorithm>
#include <cmath>

namespace kzgis::chart {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kHalfPi = 1.57079632679489661923;
inline constexpr double kDegree = 0.01745329251994329577;   // in radians
inline constexpr double kRadian = 57.29577951308232087680;  // in degrees

/// Edges of maps, horizons and antipodes are taken to within this, in radians: rounding moves a
/// point by a millionth of it, and nobody's coordinates are as good.
inline constexpr double kEdge = 1e-10;

/// A finite longitude brought into [-180, 180).
inline double wrap(double lon_deg) {
  double lon = lon_deg;
  if (!(std::fabs(lon) < 720.0)) lon = std::remainder(lon, 360.0);
  while (lon >= 180.0) lon -= 360.0;
  while (lon < -180.0) lon += 360.0;
  return lon;
}

}  // namespace kzgis::chart

#endif
