// What has no place becomes NaN and is counted: along every edge of the header's table.

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <vector>

#include "chart/support.h"
#include "kzgis/chart.h"

using namespace chart_test;
using kzgis::Chart;
using kzgis::ChartParameters;

namespace {

// Beyond what counts as the edge itself, 1e-10 radians, and well within a millimetre or two.
constexpr double kJust_deg = 2e-8;
constexpr double kJust = 3e-10 * kEarth;

constexpr double kBases[][2] = {{0, 0}, {90, 0}, {-90, 30}, {45, 180}, {-33.3, -77.7}, {1e-9, 200}};

/// The point `c_deg` away from the base in a direction.
Pair at_distance(double base_lat, double base_lon, double c_deg, double azimuth_deg) {
  const double sin0 = std::sin(base_lat * kDegree);
  const double cos0 = std::cos(base_lat * kDegree);
  const double up = std::cos(c_deg * kDegree);
  const double east = std::sin(c_deg * kDegree) * std::sin(azimuth_deg * kDegree);
  const double north = std::sin(c_deg * kDegree) * std::cos(azimuth_deg * kDegree);
  const double toward_pole = up * sin0 + north * cos0;
  const double toward_base = up * cos0 - north * sin0;
  return {std::atan2(toward_pole, std::hypot(toward_base, east)) / kDegree,
          base_lon + std::atan2(east, toward_base) / kDegree, true};
}

bool is_placed(const Chart& chart, const Pair& point) {
  return projected(chart, point.a, point.b).placed;
}

/// Whether a point of the map is one of the globe.
bool is_on_map(const Chart& chart, double x, double y) { return unprojected(chart, x, y).placed; }

TEST(ChartEdges, WhatIsNoPointIsCountedAndTheOthersArePlaced) {
  const double beyond = std::nextafter(90.0, 91.0);
  const std::vector<double> lat{10, kNaN, 10, beyond, 20, -beyond, kInf, -kInf, 10, 10, 1e300, 15};
  const std::vector<double> lon{10, 0, kNaN, 0, 15, 0, 0, 0, kInf, -kInf, 0, 10};
  const std::vector<double> alt(lat.size(), 0.0);
  for (int type = CartesianProj; type <= GlobeProj; ++type) {
    const Chart chart = made(static_cast<projType>(type), based(12, 13));
    std::vector<double> x(lat.size());
    std::vector<double> y(lat.size());
    std::vector<double> z(lat.size());
    EXPECT_EQ(chart.project(lat, lon, alt, x, y, z), 9U) << told(chart);
    for (std::size_t i = 0; i < lat.size(); ++i) {
      const bool placed = i == 0 || i == 4 || i == 11;
      EXPECT_EQ(std::isfinite(x[i]), placed) << told(chart) << ' ' << i;
      EXPECT_EQ(std::isnan(x[i]), !placed) << told(chart) << ' ' << i;
      EXPECT_EQ(std::isnan(y[i]), !placed) << told(chart) << ' ' << i;
      EXPECT_EQ(std::isnan(z[i]), !placed) << told(chart) << ' ' << i;
    }
    std::vector<double> a{x[0], kNaN, 0, kInf, 0, x[4]};
    std::vector<double> b{y[0], 0, kNaN, 0, -kInf, y[4]};
    std::vector<double> c{z[0], 0, 0, 0, 0, z[4]};
    EXPECT_EQ(chart.unproject(a, b, c, a, b, c), 4U) << told(chart);
    EXPECT_NEAR(a[0], 10, 1e-12) << told(chart);
    EXPECT_NEAR(b[5], 15, 1e-12) << told(chart);
    for (const std::size_t i : {1U, 2U, 3U, 4U}) {
      EXPECT_TRUE(std::isnan(a[i]) && std::isnan(b[i]) && std::isnan(c[i])) << told(chart);
    }
  }
}

TEST(ChartEdges, ResultsThatAreNotFiniteAreNone) {
  const Chart large = made(CartesianProj, based(0, 0, std::numeric_limits<double>::max()));
  EXPECT_FALSE(is_placed(large, {0, 90}));
  EXPECT_FALSE(is_placed(large, {89, 0}));
  EXPECT_TRUE(is_placed(large, {50, 50}));
  const Chart small = made(MercatorProj, based(0, 0, 5e-324));
  EXPECT_FALSE(is_on_map(small, 0, 1));
}

TEST(ChartEdges, MercatorHasNoPoles) {
  for (const double first : {0.0, 60.0}) {
    ChartParameters parameters = based(0, 20);
    parameters.first_parallel = first;
    const Chart chart = made(MercatorProj, parameters);
    for (double lon = -180; lon <= 180; lon += 7.5) {
      for (const double side : {1.0, -1.0}) {
        EXPECT_FALSE(is_placed(chart, {side * 90, lon}));
        EXPECT_TRUE(is_placed(chart, {side * std::nextafter(90.0, 0.0), lon}));
      }
    }
  }
}

TEST(ChartEdges, GnomonicHasNoHorizonAndOrthographicHas) {
  for (const auto& base : kBases) {
    const double lat = base[0];
    const double lon = base[1];
    const Chart gnomonic = made(GnomonicProj, based(lat, lon));
    const Chart orthographic = made(OrthographicProj, based(lat, lon));
    for (double azimuth = 0; azimuth < 360; azimuth += 5) {
      const auto at = [&](double c_deg) { return at_distance(lat, lon, c_deg, azimuth); };
      EXPECT_TRUE(is_placed(gnomonic, at(90 - kJust_deg))) << told(gnomonic) << azimuth;
      EXPECT_TRUE(is_placed(orthographic, at(90 - kJust_deg))) << told(gnomonic) << azimuth;
      EXPECT_FALSE(is_placed(gnomonic, at(90))) << told(gnomonic) << azimuth;
      EXPECT_TRUE(is_placed(orthographic, at(90))) << told(gnomonic) << azimuth;
      for (const double c_deg : {90 + kJust_deg, 91.0, 135.0, 179.0, 180.0}) {
        EXPECT_FALSE(is_placed(gnomonic, at(c_deg))) << told(gnomonic) << azimuth;
        EXPECT_FALSE(is_placed(orthographic, at(c_deg))) << told(gnomonic) << azimuth;
      }
    }
  }
}

TEST(ChartEdges, AntipodesHaveNoPlace) {
  for (const projType type : {StereographicProj, PostelProj, LambertAzimuthalProj}) {
    for (const auto& [lat, lon] : kBases) {
      const Chart chart = made(type, based(lat, lon));
      EXPECT_FALSE(is_placed(chart, {-lat, lon + 180})) << told(chart);
      EXPECT_FALSE(is_placed(chart, {-lat, lon - 180})) << told(chart);
      for (double azimuth = 0; azimuth < 360; azimuth += 5) {
        EXPECT_TRUE(is_placed(chart, at_distance(lat, lon, 180 - kJust_deg, azimuth)));
      }
    }
  }
}

TEST(ChartEdges, ThePoleThatALambertConeOpensTowardsHasNoPlace) {
  for (const double side : {1.0, -1.0}) {
    ChartParameters parameters = based(side * 30, 10);
    parameters.first_parallel = side * 60;
    parameters.second_parallel = side * -10;
    const Chart lambert = made(LambertConicProj, parameters);
    const Chart albers = made(AlbersProj, parameters);
    for (double lon = -180; lon < 180; lon += 7.5) {
      EXPECT_FALSE(is_placed(lambert, {side * -90, lon}));
      EXPECT_TRUE(is_placed(lambert, {side * -89.9999, lon}));
      EXPECT_TRUE(is_placed(albers, {side * -90, lon}));
      // The apex is one point, whatever the longitude.
      const Pair apex = projected(lambert, side * 90, lon);
      EXPECT_NEAR(apex.a, 0, 1e-6);
      EXPECT_NEAR(apex.b, projected(lambert, side * 90, 10).b, 1e-6);
    }
  }
}

TEST(ChartEdges, TheGlobeHasNoPointBelowItsCentre) {
  const Chart globe = made(GlobeProj, based(0, 0, 10));
  std::vector<double> lat{0, 0, 0, 0, 50};
  std::vector<double> lon{0, 0, 0, 0, 50};
  std::vector<double> alt{-9.999, -10, -11, kNaN, -10};
  EXPECT_EQ(globe.project(lat, lon, alt, lat, lon, alt), 4U);
  EXPECT_TRUE(std::isfinite(lat[0]));
  EXPECT_TRUE(std::isnan(lat[1]) && std::isnan(lon[2]) && std::isnan(alt[4]));
  std::vector<double> x{0.0, 1e-300};
  std::vector<double> y{0.0, 0.0};
  std::vector<double> z{0.0, 0.0};
  EXPECT_EQ(globe.unproject(x, y, z, x, y, z), 1U);
  EXPECT_TRUE(std::isnan(x[0]) && std::isnan(y[0]) && std::isnan(z[0]));
  EXPECT_EQ(x[1], 0.0);
  EXPECT_EQ(z[1], -10.0);
}

// The seam lies where the map does, and what is just beyond it does not.
TEST(ChartEdges, BesideTheSeamThereIsNothing) {
  for (const projType type :
       {CartesianProj, MercatorProj, LambertCylindricalProj, SansonFlamsteedProj, BonneProj,
        WernerProj, AlbersProj, LambertConicProj}) {
    for (const double base : {40.0, -40.0}) {
      const Chart chart = made(type, based(base, 100));
      const bool conic = type == AlbersProj || type == LambertConicProj;
      for (double lat = -88; lat <= 88; lat += 4) {
        const Pair west = projected(chart, lat, -80);
        const Pair inner = projected(chart, lat, -80 + 1e-3);
        const double dx = west.a - inner.a;
        const double dy = west.b - inner.b;
        const double length = std::hypot(dx, dy);
        // What counts as the edge grows with the distance from a cone's apex.
        const double just = conic ? 10 * kJust : kJust;
        for (const double side : {1.0, -1.0}) {
          EXPECT_TRUE(is_on_map(chart, side * west.a, west.b)) << told(chart) << ' ' << lat;
          EXPECT_TRUE(is_on_map(chart, side * (west.a - dx), west.b - dy)) << told(chart) << lat;
          EXPECT_FALSE(
              is_on_map(chart, side * (west.a + dx / length * just), west.b + dy / length * just))
              << told(chart) << ' ' << lat;
        }
      }
    }
  }
}

TEST(ChartEdges, BeyondThePolesThereIsNothing) {
  for (const projType type :
       {CartesianProj, LambertCylindricalProj, SansonFlamsteedProj, BonneProj, AlbersProj}) {
    for (const double base : {40.0, -40.0}) {
      const Chart chart = made(type, based(base, 100));
      for (const double pole : {90.0, -90.0}) {
        const Pair place = projected(chart, pole, 100);
        const double out = pole > 0 ? kJust : -kJust;
        EXPECT_TRUE(is_on_map(chart, place.a, place.b)) << told(chart) << ' ' << pole;
        EXPECT_TRUE(is_on_map(chart, place.a, place.b - out)) << told(chart) << ' ' << pole;
        EXPECT_FALSE(is_on_map(chart, place.a, place.b + 10 * out)) << told(chart) << ' ' << pole;
      }
    }
  }
}

TEST(ChartEdges, RoundMapsAndCassinisEndWhereTheyEnd) {
  const double kPi = std::numbers::pi;
  for (const auto& [type, radii] :
       {std::pair{OrthographicProj, 1.0}, {PostelProj, kPi}, {LambertAzimuthalProj, 2.0}}) {
    for (const auto& [lat, lon] : kBases) {
      const Chart chart = made(type, based(lat, lon));
      for (double azimuth = 0; azimuth < 360; azimuth += 5) {
        const double x = std::sin(azimuth * kDegree);
        const double y = std::cos(azimuth * kDegree);
        const double edge = radii * kEarth;
        EXPECT_TRUE(is_on_map(chart, x * edge, y * edge)) << told(chart) << azimuth;
        EXPECT_FALSE(is_on_map(chart, x * (edge + kJust), y * (edge + kJust)));
      }
    }
  }
  for (const projType type : {GnomonicProj, StereographicProj}) {
    const Chart chart = made(type, based(20, 30));
    for (const double far : {1e10, 1e20, 1e200, 1e308}) EXPECT_TRUE(is_on_map(chart, far, -far));
  }
  const Chart cassini = made(CassiniSoldnerProj, based(30, 0));
  for (double along = -180; along <= 180; along += 7.5) {
    const double y = (along - 30) * kDegree * kEarth;
    const double x = kPi / 2 * kEarth;
    for (const double side : {1.0, -1.0}) {
      // One point is all of the edge.
      const Pair point = unprojected(cassini, side * x, y);
      EXPECT_NEAR(point.a, 0, 1e-12);
      EXPECT_NEAR(point.b, side * 90, 1e-12);
      EXPECT_FALSE(is_on_map(cassini, side * (x + kJust), y));
    }
  }
  for (const double side : {90.0, -90.0}) {
    const Pair place = projected(cassini, 0, side);
    EXPECT_NEAR(place.a, side * kDegree * kEarth, 1e-6);
    EXPECT_NEAR(place.b, -30 * kDegree * kEarth, 1e-6);
  }
  EXPECT_TRUE(is_on_map(cassini, 0, (180 - 30) * kDegree * kEarth));
  EXPECT_FALSE(is_on_map(cassini, 0, (180 - 30) * kDegree * kEarth + kJust));
  EXPECT_TRUE(is_on_map(cassini, 0, (-180 - 30) * kDegree * kEarth));
  EXPECT_FALSE(is_on_map(cassini, 0, (-180 - 30) * kDegree * kEarth - kJust));
  // The far half of the equator lies at one end, whatever the sign of its zero.
  EXPECT_EQ(projected(cassini, -0.0, 120).b, projected(cassini, 0.0, 120).b);
}

}  // namespace
