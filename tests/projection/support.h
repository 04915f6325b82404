// What the projection tests share: a look inside the object, and short ways to set it up.

#ifndef KZGIS_TESTS_PROJECTION_SUPPORT_H
#define KZGIS_TESTS_PROJECTION_SUPPORT_H

#include <cmath>
#include <limits>
#include <numbers>

#include "kzgis/projection.h"

/// Reaches what no public operation shows or sets.
struct ProjectionTestAccess {
  static bool has_world(const Projection& p) { return p.has_world_; }
  /// Sets the parallels without the limits of setFirstPar and setSecondPar.
  static void setParallels(Projection& p, double first_deg, double second_deg) {
    p.first_par_.setLon(first_deg);
    p.second_par_.setLon(second_deg);
    p.forgetSettled();
  }
  static void setReferenceLon(Projection& p, double lon_deg) {
    p.reference_.setLon(lon_deg);
    p.forgetSettled();
  }
};

namespace projection_test {

inline constexpr double kEarth = 6378000.0;
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInf = std::numeric_limits<double>::infinity();
inline constexpr double kShortPi = 3.141592652589793;

inline double rad(double angle_deg) { return angle_deg / 180.0 * kShortPi; }

/// The world coordinates, zeros without any.
inline WorldPoint world_of(const Projection& p) {
  WorldPoint w{};
  p.fetchWorldCoordinates(&w.x, &w.y, &w.z);
  return w;
}

/// Runs one forward operation on one point.
inline WorldPoint run(Projection& p, int (Projection::*forward)(), double lat_deg, double lon_deg,
                      double altitude = 0.0) {
  p.setLLCoordinates(lat_deg, lon_deg, altitude);
  (p.*forward)();
  return world_of(p);
}

/// Runs one inverse operation on one point; the result is the object's own point.
inline const LatLon& run_inverse(Projection& p, int (Projection::*inverse)(), double x, double y,
                                 double z = 0.0) {
  p.setWorldCoordinates(x, y, z);
  (p.*inverse)();
  return *p.fetchLLCoordinates();
}

/// `n` units in the last place of `value`: what sine, logarithm and the like may differ
/// by from host to host.
inline double ulps(double value, double n) {
  const double magnitude = std::fabs(value);
  return n * (std::nextafter(magnitude, kInf) - magnitude);
}

}  // namespace projection_test

#endif
