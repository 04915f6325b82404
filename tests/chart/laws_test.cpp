// What the literature promises of the projections: areas, angles, directions, distances.

#include <gtest/gtest.h>

#include <functional>

#include "chart/support.h"
#include "kzgis/chart.h"

using namespace chart_test;
using kzgis::Chart;
using kzgis::ChartParameters;

namespace {

constexpr unsigned kSeed = 99;

/// How the map stretches at a point: eastward and northward, per length on the globe.
struct Stretch {
  double east_x, east_y, north_x, north_y;
  bool placed;
};

Stretch stretch_at(const Chart& chart, double lat, double lon) {
  constexpr double kStep_deg = 1e-3;
  const double length = 2 * kStep_deg * kDegree * chart.parameters().radius;
  const double cos_lat = std::cos(lat * kDegree);
  const Pair e = projected(chart, lat, lon + kStep_deg / cos_lat);
  const Pair w = projected(chart, lat, lon - kStep_deg / cos_lat);
  const Pair n = projected(chart, lat + kStep_deg, lon);
  const Pair s = projected(chart, lat - kStep_deg, lon);
  return {(e.a - w.a) / length, (e.b - w.b) / length, (n.a - s.a) / length, (n.b - s.b) / length,
          e.placed && w.placed && n.placed && s.placed};
}

/// Calls `check` with many points of many charts, but for the edges.
void for_points(projType type, const std::function<void(const Chart&, double, double)>& check) {
  Random random(kSeed);
  for (int round = 0; round < 200 && !testing::Test::HasFailure(); ++round) {
    const Chart chart = made(type, parameters_for(type, random));
    const ChartParameters& p = chart.parameters();
    for (int i = 0; i < 20; ++i) {
      const double lat = random.between(-80, 80);
      const double lon = p.base_lon + random.between(-179, 179);
      if (cosine_between(p.base_lat, p.base_lon, lat, lon) < -0.98) continue;
      SCOPED_TRACE(told(chart) + " at " + std::to_string(lat) + ' ' + std::to_string(lon));
      check(chart, lat, lon);
    }
  }
}

TEST(ChartLaws, EqualAreaMapsKeepAreas) {
  for (const projType type : {LambertCylindricalProj, LambertAzimuthalProj, AlbersProj, BonneProj,
                              WernerProj, SansonFlamsteedProj}) {
    for_points(type, [](const Chart& chart, double lat, double lon) {
      const Stretch s = stretch_at(chart, lat, lon);
      ASSERT_TRUE(s.placed);
      EXPECT_NEAR(s.east_x * s.north_y - s.east_y * s.north_x, 1.0, 1e-5);
    });
  }
}

TEST(ChartLaws, ConformalMapsKeepAngles) {
  for (const projType type : {MercatorProj, StereographicProj, LambertConicProj}) {
    for_points(type, [](const Chart& chart, double lat, double lon) {
      const Stretch s = stretch_at(chart, lat, lon);
      ASSERT_TRUE(s.placed);
      const double scale = std::hypot(s.east_x, s.east_y);
      EXPECT_NEAR(s.east_x, s.north_y, 1e-5 * scale);
      EXPECT_NEAR(s.east_y, -s.north_x, 1e-5 * scale);
    });
  }
}

// Straight ahead from the base in a direction: the direction on the map is the same, and the
// distance there a function of that on the globe.
TEST(ChartLaws, AzimuthalMapsKeepDirectionsFromTheBase) {
  struct Row {
    projType type;
    double farthest_deg;
    double (*radius)(double c);
  };
  const Row rows[] = {
      {GnomonicProj, 85, [](double c) { return std::tan(c); }},
      {StereographicProj, 175, [](double c) { return 2 * std::tan(c / 2); }},
      {OrthographicProj, 90, [](double c) { return std::sin(c); }},
      {PostelProj, 179, [](double c) { return c; }},
      {LambertAzimuthalProj, 179, [](double c) { return 2 * std::sin(c / 2); }},
  };
  Random random(kSeed);
  for (const Row& row : rows) {
    for (int round = 0; round < 2000 && !testing::Test::HasFailure(); ++round) {
      const ChartParameters p = parameters_for(row.type, random);
      const Chart chart = made(row.type, p);
      const double azimuth = random.between(-180, 180) * kDegree;
      const double c = random.between(0, row.farthest_deg) * kDegree;
      // The point c away at that azimuth, by the rules of spherical triangles.
      const double phi0 = p.base_lat * kDegree;
      const double sin_lat =
          std::sin(phi0) * std::cos(c) + std::cos(phi0) * std::sin(c) * std::cos(azimuth);
      const double dlon = std::atan2(
          std::sin(azimuth) * std::sin(c),
          std::cos(c) * std::cos(phi0) - std::sin(c) * std::sin(phi0) * std::cos(azimuth));
      const Pair place = projected(chart, std::asin(std::clamp(sin_lat, -1.0, 1.0)) / kDegree,
                                   p.base_lon + dlon / kDegree);
      const double radius = kEarth * row.radius(c);
      const double within = 0.2 * (1.0 + radius / kEarth * radius / kEarth);  // of the arc sine
      EXPECT_NEAR(place.a, radius * std::sin(azimuth), within) << told(chart);
      EXPECT_NEAR(place.b, radius * std::cos(azimuth), within) << told(chart);
    }
  }
}

TEST(ChartLaws, GnomonicMapsMakeGreatCirclesStraight) {
  Random random(kSeed);
  for (int round = 0; round < 500; ++round) {
    const Chart chart =
        made(GnomonicProj, based(random.between(-90, 90), random.between(0, 360), 1));
    const Chart globe = made(GlobeProj, based(0, 0, 1));
    const ChartParameters& p = chart.parameters();
    double x[3] = {p.base_lat + random.between(-20, 20), p.base_lat + random.between(-20, 20), 0};
    double y[3] = {p.base_lon + random.between(-20, 20), p.base_lon + random.between(-20, 20), 0};
    double z[3] = {0, 0, 0};
    for (const int i : {0, 1}) x[i] = std::clamp(x[i], -90.0, 90.0);
    double lat[3] = {x[0], x[1], 0};
    double lon[3] = {y[0], y[1], 0};
    globe.project(x, y, z, x, y, z);
    // A point between two others on their great circle is a sum of theirs in space.
    x[2] = x[0] + 2 * x[1];
    y[2] = y[0] + 2 * y[1];
    z[2] = z[0] + 2 * z[1];
    lat[2] = std::atan2(z[2], std::hypot(x[2], y[2])) / kDegree;
    lon[2] = std::atan2(y[2], x[2]) / kDegree;
    double u[3];
    double v[3];
    ASSERT_EQ(chart.project(lat, lon, u, v), 0U);
    EXPECT_NEAR((u[1] - u[0]) * (v[2] - v[0]), (u[2] - u[0]) * (v[1] - v[0]), 1e-13);
  }
}

// Distances along the base meridian are true on these maps, and so are the arcs of Bonne.
TEST(ChartLaws, BaseMeridiansAndParallelsAreTrue) {
  for (const projType type : {CartesianProj, CassiniSoldnerProj, SansonFlamsteedProj, BonneProj,
                              WernerProj, PostelProj}) {
    for_points(type, [](const Chart& chart, double lat, double lon) {
      const double base_lon = chart.parameters().base_lon;
      const Pair place = projected(chart, lat, base_lon);
      EXPECT_NEAR(place.a, 0.0, 1e-6);
      EXPECT_NEAR(place.b, (lat - chart.parameters().base_lat) * kDegree * kEarth, 1e-6);
      if (chart.type() != SansonFlamsteedProj && chart.type() != BonneProj) return;
      const Stretch s = stretch_at(chart, lat, lon);
      EXPECT_NEAR(std::hypot(s.east_x, s.east_y), 1.0, 1e-6);
    });
  }
}

}  // namespace
