// What the tests of charts share: charts of every kind, single points, ways to compare.

#ifndef KZGIS_TESTS_CHART_SUPPORT_H
#define KZGIS_TESTS_CHART_SUPPORT_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <random>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "kzgis/chart.h"

namespace chart_test {

inline constexpr double kEarth = 6378000.0;
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInf = std::numeric_limits<double>::infinity();
inline constexpr double kDegree = std::numbers::pi / 180.0;

inline constexpr projType kFlat[] = {CartesianProj, MercatorProj,         LambertCylindricalProj,
                                     GnomonicProj,  StereographicProj,    OrthographicProj,
                                     PostelProj,    LambertAzimuthalProj, LambertConicProj,
                                     AlbersProj,    CassiniSoldnerProj,   BonneProj,
                                     WernerProj,    SansonFlamsteedProj};

inline kzgis::ChartParameters based(double lat, double lon, double radius = kEarth) {
  kzgis::ChartParameters parameters;
  parameters.base_lat = lat;
  parameters.base_lon = lon;
  parameters.radius = radius;
  return parameters;
}

inline kzgis::Chart made(projType type, const kzgis::ChartParameters& parameters = {}) {
  return std::move(kzgis::Chart::make(type, parameters)).value();
}

/// Two coordinates, in the order in which the functions take them.
struct Pair {
  double a = 0.0;
  double b = 0.0;
  bool placed = false;
};

inline Pair projected(const kzgis::Chart& chart, double lat, double lon) {
  Pair p;
  p.placed = chart.project({&lat, 1}, {&lon, 1}, {&p.a, 1}, {&p.b, 1}) == 0;
  EXPECT_EQ(p.placed, std::isfinite(p.a) && std::isfinite(p.b));
  EXPECT_EQ(p.placed, !(std::isnan(p.a) && std::isnan(p.b)));
  return p;
}

inline Pair unprojected(const kzgis::Chart& chart, double x, double y) {
  Pair p;
  p.placed = chart.unproject({&x, 1}, {&y, 1}, {&p.a, 1}, {&p.b, 1}) == 0;
  EXPECT_EQ(p.placed, std::isfinite(p.a) && std::isfinite(p.b));
  EXPECT_EQ(p.placed, !(std::isnan(p.a) && std::isnan(p.b)));
  return p;
}

inline std::string name_of(projType type) {
  std::string text;
  const UtString name = Projection(type).fetchProjectionName();
  for (const char c : name.str()) {
    if (std::isalpha(static_cast<unsigned char>(c))) text += c;
  }
  return text;
}

inline std::string told(const kzgis::Chart& chart) {
  const kzgis::ChartParameters& p = chart.parameters();
  std::ostringstream os;
  os.precision(17);
  os << name_of(chart.type()) << " base " << p.base_lat << ' ' << p.base_lon << " parallels "
     << p.first_parallel.value_or(kNaN) << ' ' << p.second_parallel.value_or(kNaN);
  return os.str();
}

/// A longitude difference in [-180, 180].
inline double turned(double lon) { return std::remainder(lon, 360.0); }

/// How far apart two points are along the globe, in degrees; good for short ways.
inline double apart_deg(double lat1, double lon1, double lat2, double lon2) {
  const double s = std::sin(0.5 * (lat1 - lat2) * kDegree);
  const double t = std::sin(0.5 * turned(lon1 - lon2) * kDegree);
  const double h = s * s + std::cos(lat1 * kDegree) * std::cos(lat2 * kDegree) * t * t;
  return 2.0 * std::asin(std::sqrt(h)) / kDegree;
}

/// The cosine of the angle between two points of the globe.
inline double cosine_between(double lat1, double lon1, double lat2, double lon2) {
  return std::sin(lat1 * kDegree) * std::sin(lat2 * kDegree) +
         std::cos(lat1 * kDegree) * std::cos(lat2 * kDegree) *
             std::cos(turned(lon1 - lon2) * kDegree);
}

/// Numbers that are the same on every host.
class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  double between(double a, double b) {
    return a + (b - a) * (static_cast<double>(engine_()) / 4294967296.0);
  }
  unsigned below(unsigned n) { return static_cast<unsigned>(engine_()) % n; }

 private:
  std::mt19937 engine_;
};

/// Parameters that `type` takes: bases at the poles, on the equator, at the antimeridian and
/// anywhere; parallels of both hemispheres, one or two.
inline kzgis::ChartParameters parameters_for(projType type, Random& random) {
  constexpr double kLats[] = {0.0, 90.0, -90.0, 45.0, -30.0};
  constexpr double kLons[] = {0.0, 180.0, -180.0, 179.5, 350.0};
  kzgis::ChartParameters p;
  p.base_lat = random.below(3) == 0 ? kLats[random.below(5)] : random.between(-89.0, 89.0);
  p.base_lon = random.below(3) == 0 ? kLons[random.below(5)] : random.between(-180.0, 360.0);
  if (type == BonneProj && std::fabs(p.base_lat) < 1.0) p.base_lat = -20.0;
  if (type == MercatorProj) p.first_parallel = random.between(-70.0, 70.0);
  if (type == LambertConicProj || type == AlbersProj) {
    p.first_parallel = random.between(-80.0, 80.0);
    if (std::fabs(*p.first_parallel) < 2.0) p.first_parallel = 25.0;
    if (random.below(3) > 0) {
      do {
        p.second_parallel = random.between(-80.0, 80.0);
      } while (std::fabs(*p.first_parallel + *p.second_parallel) < 5.0);
    }
    const double side = *p.first_parallel + p.second_parallel.value_or(*p.first_parallel);
    // Not near the pole that the Lambert conic has no place for.
    if (p.base_lat * side < 0.0) p.base_lat = std::clamp(p.base_lat, -60.0, 60.0);
  }
  return p;
}

}  // namespace chart_test

#endif
