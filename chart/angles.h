// Angles, and how near is near, for all families of projections.

#ifndef KZGIS_CHART_ANGLES_H
#define KZGIS_CHART_ANGLES_H

#include <algorithm>
#include <cmath>

namespace kzgis::chart {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kHalfPi = 1.57079632679489661923;
inline constexpr double kDegree = 0.01745329251994329577;  // in radians

/// Edges of maps, horizons and antipodes are taken to within this, in radians: rounding moves a
/// point by a millionth of it, and nobody's coordinates are as good.
inline constexpr double kEdge = 1e-10;

struct SinCos {
  double sin;
  double cos;
};

/// Sine and cosine of an angle in degrees of up to a turn.
///
/// The whole quarters are taken off before degrees become radians, and that subtraction is
/// exact: multiples of 90 degrees give 1 and 0 themselves, and the cosine of a latitude keeps its
/// digits up to the pole.  A 0 is never -0, which would take points of the far equator or a pole
/// to the other end of a map.
inline SinCos sin_cos(double angle_deg) {
  const double quarters = std::nearbyint(angle_deg / 90.0);
  const double rest = (angle_deg - 90.0 * quarters) * kDegree;
  const double s = std::sin(rest);
  const double c = std::cos(rest);
  switch (static_cast<int>(quarters) & 3) {
    case 0:
      return {s, c};
    case 1:
      return {c, 0.0 - s};
    case 2:
      return {0.0 - s, -c};
    default:
      return {-c, s};
  }
}

/// A finite longitude brought into [-180, 180).
inline double wrap(double lon_deg) {
  double lon = lon_deg;
  if (!(std::fabs(lon) < 720.0)) lon = std::remainder(lon, 360.0);
  while (lon >= 180.0) lon -= 360.0;
  while (lon < -180.0) lon += 360.0;
  return lon;
}

/// Brings a value that rounding took out of -limit to limit back to it.
/// @return false when it lies farther outside
inline bool fit(double& value, double limit, double tolerance = kEdge) {
  if (!(std::fabs(value) <= limit + tolerance)) return false;
  value = std::clamp(value, -limit, limit);
  return true;
}

}  // namespace kzgis::chart

#endif
