// The fast arithmetic beside the exact one.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <vector>

#include "chart/support.h"
#include "kzgis/chart.h"

using namespace chart_test;
using kzgis::Arithmetic;
using kzgis::Chart;

namespace {

constexpr double kMicrometre = 1e-6;
constexpr std::size_t kPoints = 500;

/// Where a projection stretches without end, in degrees: around what, how far, and not farther
/// than it stretches twentyfold anywhere else.
bool is_near_singularity(const Chart& chart, double lat, double lon) {
  const kzgis::ChartParameters& p = chart.parameters();
  const double up = cosine_between(p.base_lat, p.base_lon, lat, lon);
  switch (chart.type()) {
    case GnomonicProj:
      return std::fabs(up) < 0.05;
    case OrthographicProj:  // on the way back
      return std::fabs(up) < 0.05;
    case StereographicProj:
    case PostelProj:
    case LambertAzimuthalProj:
      return up < -0.95;
    case MercatorProj:
    case LambertConicProj:
    case LambertCylindricalProj:
    case AlbersProj:
      return std::fabs(lat) > 85.0;
    case CassiniSoldnerProj:
      return std::fabs(std::cos(lat * kDegree) * std::sin(turned(lon - p.base_lon) * kDegree)) >
             0.99;
    default:
      return std::fabs(lat) > 89.9;
  }
}

TEST(FastArithmetic, IsWithinAMicrometreOfTheExactOne) {
  Random random(77);
  for (const projType type : kFlat) {
    for (int round = 0; round < 60; ++round) {
      const Chart chart = made(type, parameters_for(type, random));
      SCOPED_TRACE(told(chart));
      std::vector<double> lat(kPoints);
      std::vector<double> lon(kPoints);
      for (std::size_t i = 0; i < kPoints; ++i) {
        lat[i] = random.between(-90.0, 90.0);
        lon[i] = random.between(-360.0, 360.0);
      }
      std::array<std::vector<double>, 4> exact;
      std::array<std::vector<double>, 4> fast;
      for (auto* each : {&exact, &fast}) {
        for (std::vector<double>& v : *each) v.resize(kPoints);
      }
      ASSERT_EQ(chart.project(lat, lon, exact[0], exact[1], Arithmetic::exact),
                chart.project(lat, lon, fast[0], fast[1], Arithmetic::fast));
      ASSERT_EQ(chart.unproject(exact[0], exact[1], exact[2], exact[3], Arithmetic::exact),
                chart.unproject(exact[0], exact[1], fast[2], fast[3], Arithmetic::fast));
      for (std::size_t i = 0; i < kPoints; ++i) {
        for (std::size_t k = 0; k < 4; ++k) {
          ASSERT_EQ(std::isnan(exact[k][i]), std::isnan(fast[k][i])) << lat[i] << ' ' << lon[i];
        }
        if (std::isnan(exact[0][i]) || is_near_singularity(chart, lat[i], lon[i])) continue;
        ASSERT_LT(std::hypot(exact[0][i] - fast[0][i], exact[1][i] - fast[1][i]), kMicrometre)
            << lat[i] << ' ' << lon[i];
        if (std::isnan(exact[2][i])) continue;
        ASSERT_LT(apart_deg(exact[2][i], exact[3][i], fast[2][i], fast[3][i]) * kDegree * kEarth,
                  kMicrometre)
            << lat[i] << ' ' << lon[i];
      }
    }
  }
}

TEST(FastArithmetic, AltitudesAndTheGlobe) {
  const Chart globe = made(GlobeProj);
  Random random(78);
  std::vector<double> lat(kPoints);
  std::vector<double> lon(kPoints);
  std::vector<double> alt(kPoints);
  for (std::size_t i = 0; i < kPoints; ++i) {
    lat[i] = random.between(-90.0, 90.0);
    lon[i] = random.between(-180.0, 180.0);
    alt[i] = random.between(-1e4, 1e4);
  }
  std::vector<double> x(kPoints);
  std::vector<double> y(kPoints);
  std::vector<double> z(kPoints);
  EXPECT_EQ(globe.project(lat, lon, alt, x, y, z, Arithmetic::fast), 0U);
  for (std::size_t i = 0; i < kPoints; ++i) {
    const double r = kEarth + alt[i];
    EXPECT_NEAR(x[i], r * std::cos(lat[i] * kDegree) * std::cos(lon[i] * kDegree), kMicrometre);
    EXPECT_NEAR(y[i], r * std::cos(lat[i] * kDegree) * std::sin(lon[i] * kDegree), kMicrometre);
    EXPECT_NEAR(z[i], r * std::sin(lat[i] * kDegree), kMicrometre);
  }
  EXPECT_EQ(globe.unproject(x, y, z, x, y, z, Arithmetic::fast), 0U);
  for (std::size_t i = 0; i < kPoints; ++i) {
    EXPECT_NEAR(x[i], lat[i], 1e-13);
    EXPECT_NEAR(y[i], lon[i], 1e-12);
    EXPECT_NEAR(z[i], alt[i], 1e-8);
  }
}

}  // namespace
