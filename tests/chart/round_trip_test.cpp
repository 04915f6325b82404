// There and back over all of each projection's domain.

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "chart/support.h"
#include "kzgis/chart.h"

using namespace chart_test;
using kzgis::Chart;
using kzgis::ChartParameters;

namespace {

constexpr unsigned kSeed = 20261;
constexpr double kExact_deg = 1e-9;

/// How far the way there and back may take a point, as the header's table says.
double allowed_deg(const Chart& chart, double lat, double lon) {
  const ChartParameters& p = chart.parameters();
  const double from_base =
      std::acos(std::clamp(cosine_between(p.base_lat, p.base_lon, lat, lon), -1.0, 1.0)) / kDegree;
  const double from_pole = 90.0 - std::fabs(lat);
  switch (chart.type()) {
    case LambertCylindricalProj:
      return from_pole < 0.01 ? 3e-6 : kExact_deg;
    case OrthographicProj:
      return std::fabs(from_base - 90.0) < 0.01 ? 3e-6 : kExact_deg;
    case LambertAzimuthalProj:
      return from_base > 180.0 - 0.02 ? 1e-5 : kExact_deg;
    case AlbersProj:
      return from_pole < 0.05 ? 2e-5 : kExact_deg;
    default:
      return kExact_deg;
  }
}

class RoundTrip : public testing::TestWithParam<projType> {
 protected:
  /// @return whether the point has a place
  bool go(const Chart& chart, double lat, double lon) {
    const Pair there = projected(chart, lat, lon);
    if (!there.placed) return false;
    const Pair back = unprojected(chart, there.a, there.b);
    EXPECT_TRUE(back.placed) << told(chart) << " of " << lat << ' ' << lon;
    const double moved = apart_deg(lat, lon, back.a, back.b);
    EXPECT_LT(moved, allowed_deg(chart, lat, lon))
        << told(chart) << " of " << lat << ' ' << lon << ", seed " << kSeed;
    EXPECT_LE(std::fabs(back.a), 90.0);
    EXPECT_GE(back.b, -180.0);
    EXPECT_LT(back.b, 180.0);
    return true;
  }
};

TEST_P(RoundTrip, ComesBackFromEverywhere) {
  Random random(kSeed);
  int placed = 0;
  for (int round = 0; round < 400 && !HasFailure(); ++round) {
    const Chart chart = made(GetParam(), parameters_for(GetParam(), random));
    for (int i = 0; i < 50; ++i) {
      // Evenly over the globe.
      const double lat = std::asin(random.between(-1, 1)) / kDegree;
      placed += go(chart, lat, random.between(-180, 180)) ? 1 : 0;
    }
  }
  EXPECT_GT(placed, 400 * 50 / 3);
}

// Poles, equator, base, antipode, horizon, base meridian and seam, and ever nearer to them.
TEST_P(RoundTrip, ComesBackFromAlongTheEdges) {
  Random random(kSeed);
  std::vector<double> nearer{0.0};
  for (double step = 30.0; step > 1e-13; step *= 0.3) {
    nearer.push_back(step);
    nearer.push_back(-step);
  }
  for (int round = 0; round < 60 && !HasFailure(); ++round) {
    const Chart chart = made(GetParam(), parameters_for(GetParam(), random));
    const ChartParameters& p = chart.parameters();
    const double lats[] = {90, -90, 0, p.base_lat, -p.base_lat, random.between(-90, 90)};
    const double lons[] = {p.base_lon, p.base_lon + 180, p.base_lon + 90, p.base_lon - 90,
                           p.base_lon + random.between(-180, 180)};
    for (const double lat : lats) {
      for (const double lon : lons) {
        for (const double d : nearer) {
          go(chart, std::clamp(lat + d, -90.0, 90.0), lon);
          go(chart, lat, lon + d);
          go(chart, std::clamp(lat + d, -90.0, 90.0), lon + d);
          go(chart, std::clamp(lat - d, -90.0, 90.0), lon + random.between(0, 1) * d);
        }
      }
    }
    // Along the horizon, and on both sides of it.
    for (const double d : nearer) {
      const double azimuth = random.between(0, 2 * std::numbers::pi);
      const double c = (90.0 + d) * kDegree;
      const double sin0 = std::sin(p.base_lat * kDegree);
      const double cos0 = std::cos(p.base_lat * kDegree);
      const double up = std::cos(c);
      const double north = std::sin(c) * std::cos(azimuth);
      const double east = std::sin(c) * std::sin(azimuth);
      go(chart, std::asin(std::clamp(up * sin0 + north * cos0, -1.0, 1.0)) / kDegree,
         p.base_lon + std::atan2(east, up * cos0 - north * sin0) / kDegree);
    }
  }
}

// What the way back finds on the map, the way there puts at the same place.
TEST_P(RoundTrip, EveryPlaceOfTheMapIsThatOfItsPoint) {
  Random random(kSeed);
  int placed = 0;
  for (int round = 0; round < 200 && !HasFailure(); ++round) {
    const Chart chart = made(GetParam(), parameters_for(GetParam(), random));
    for (int i = 0; i < 50; ++i) {
      const double x = random.between(-2, 2) * kEarth;
      const double y = random.between(-2, 2) * kEarth;
      const Pair point = unprojected(chart, x, y);
      if (!point.placed) continue;
      const Pair again = projected(chart, point.a, point.b);
      // To 1 mm: a map may be as steep as the cotangent of the distance from a pole.
      EXPECT_NEAR(again.a, x, 1e-3) << told(chart) << " at " << x << ' ' << y;
      EXPECT_NEAR(again.b, y, 1e-3) << told(chart) << " at " << x << ' ' << y;
      ++placed;
    }
  }
  EXPECT_GT(placed, 200 * 50 / 10);
}

INSTANTIATE_TEST_SUITE_P(Charts, RoundTrip, testing::ValuesIn(kFlat),
                         [](const auto& test) { return name_of(test.param); });

TEST(RoundTripGlobe, ComesBackFromEverywhere) {
  Random random(kSeed);
  const Chart globe = made(GlobeProj, based(30, 40));
  for (int round = 0; round < 20000 && !testing::Test::HasFailure(); ++round) {
    const bool polar = round % 4 == 0;
    const double lat =
        polar ? 90.0 - std::pow(10.0, random.between(-14, 0)) : random.between(-90, 90);
    const double lon = random.between(-180, 180);
    const double alt = random.between(-6e6, 1e8);
    double a = lat;
    double b = lon;
    double c = alt;
    ASSERT_EQ(globe.project({&a, 1}, {&b, 1}, {&c, 1}, {&a, 1}, {&b, 1}, {&c, 1}), 0U);
    ASSERT_EQ(globe.unproject({&a, 1}, {&b, 1}, {&c, 1}, {&a, 1}, {&b, 1}, {&c, 1}), 0U);
    EXPECT_LT(apart_deg(lat, lon, a, b), kExact_deg);
    EXPECT_NEAR(c, alt, 1e-6);
  }
}

// Cones from almost a cylinder to almost a plane, north and south.
TEST(RoundTripCones, ComeBackForEveryPairOfParallels) {
  Random random(kSeed);
  const double sums[] = {2e-9, 1e-7, 1e-4, 0.1, 3, 40, 120, 178, 179.9};
  for (const projType type : {LambertConicProj, AlbersProj}) {
    for (const double sum : sums) {
      for (int round = 0; round < 20 && !testing::Test::HasFailure(); ++round) {
        const double side = random.below(2) == 0 ? 1.0 : -1.0;
        const double first =
            random.between(std::max(-85.0, sum - 89.99), std::min(89.99, sum + 85.0));
        ChartParameters p = based(random.between(-60, 60), random.between(-180, 180));
        p.first_parallel = side * first;
        p.second_parallel = side * (sum - first);
        const Chart chart = made(type, p);
        for (int i = 0; i < 50; ++i) {
          const double lat = random.between(-80, 80);
          const double lon = random.between(-180, 180);
          const Pair there = projected(chart, lat, lon);
          const Pair back = unprojected(chart, there.a, there.b);
          EXPECT_LT(apart_deg(lat, lon, back.a, back.b), kExact_deg)
              << told(chart) << " of " << lat << ' ' << lon << ", seed " << kSeed;
        }
      }
    }
  }
}

// The pole at the apex of an equal-area cone is a point, and near to it the map forgets nothing.
TEST(RoundTripCones, AlbersComesBackFromAnApexThatIsThePole) {
  Random random(kSeed);
  for (const double side : {1.0, -1.0}) {
    for (const double other : {90.0, 30.0, -60.0}) {
      ChartParameters p = based(side * 45, 10);
      p.first_parallel = side * 90;
      p.second_parallel = side * other;
      const Chart chart = made(AlbersProj, p);
      for (double from_pole = 20; from_pole > 1e-13; from_pole *= 0.7) {
        const double lat = side * (90 - from_pole);
        const double lon = random.between(-180, 180);
        const Pair there = projected(chart, lat, lon);
        const Pair back = unprojected(chart, there.a, there.b);
        EXPECT_LT(apart_deg(lat, lon, back.a, back.b), kExact_deg) << told(chart) << ' ' << lat;
      }
    }
  }
}

// Bonne's map near the equator has its apex far away; Werner's is the other end.
TEST(RoundTripBonne, ComesBackForEveryBase) {
  Random random(kSeed);
  for (double base = 90.0; base > 2e-9 && !testing::Test::HasFailure(); base *= 0.7) {
    for (const double side : {1.0, -1.0}) {
      const Chart chart = made(BonneProj, based(side * base, 0));
      for (int i = 0; i < 100; ++i) {
        const double lat = random.between(-90, 90);
        const double lon = random.between(-180, 180);
        const Pair there = projected(chart, lat, lon);
        const Pair back = unprojected(chart, there.a, there.b);
        EXPECT_LT(apart_deg(lat, lon, back.a, back.b), kExact_deg)
            << told(chart) << " of " << lat << ' ' << lon << ", seed " << kSeed;
      }
    }
  }
}

}  // namespace
