// Charts on single points: published and simple values, parameters, spans.

#include "kzgis/chart.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <vector>

#include "chart/support.h"

using namespace chart_test;
using kzgis::Chart;
using kzgis::ChartParameters;
using kzgis::ErrorKind;

namespace {

void expect_place(const Chart& chart, double lat, double lon, double x, double y, double within) {
  const Pair there = projected(chart, lat, lon);
  EXPECT_NEAR(there.a, x, within) << told(chart);
  EXPECT_NEAR(there.b, y, within) << told(chart);
  const Pair back = unprojected(chart, there.a, there.b);
  EXPECT_NEAR(back.a, lat, 1e-12) << told(chart);
  EXPECT_NEAR(turned(back.b - lon), 0.0, 1e-12) << told(chart);
}

ChartParameters with_parallels(ChartParameters parameters, double first, double second) {
  parameters.first_parallel = first;
  parameters.second_parallel = second;
  return parameters;
}

// J. P. Snyder, "Map Projections: A Working Manual", appendix A: the numerical examples for the
// sphere.
TEST(Chart, GivesThePublishedExamples) {
  constexpr double kPrinted = 6e-8;
  expect_place(made(MercatorProj, based(0, -180, 1)), 35, -75, 1.8325957, 0.6528366, kPrinted);
  expect_place(made(CassiniSoldnerProj, based(-20, -75, 1)), 25, -90, -0.2367759, 0.7988243,
               kPrinted);
  expect_place(made(AlbersProj, with_parallels(based(23, -96, 1), 29.5, 45.5)), 35, -75, 0.2952720,
               0.2416774, kPrinted);
  expect_place(made(LambertConicProj, with_parallels(based(23, -96, 1), 33, 45)), 35, -75,
               0.2966785, 0.2462112, kPrinted);
  expect_place(made(BonneProj, based(40, -75, 1)), 30, -85, -0.1508418, -0.1661807, kPrinted);
  expect_place(made(OrthographicProj, based(40, -100, 1)), 30, -110, -0.1503837, -0.1651911,
               kPrinted);
  expect_place(made(GnomonicProj, based(40, -100, 1)), 30, -110, -0.1542826, -0.1694739, kPrinted);
  expect_place(made(LambertAzimuthalProj, based(40, -100, 3)), -20, 100, -4.2339303, 4.0257775,
               kPrinted);
  expect_place(made(PostelProj, based(40, -100, 3)), -20, 100, -5.8311398, 5.5444634, kPrinted);
  expect_place(made(SansonFlamsteedProj, based(0, -90, 1)), -50, -75, 0.1682814, -0.8726646,
               kPrinted);
}

// To be worked out by hand.
TEST(Chart, GivesSimpleValues) {
  constexpr double kPi = std::numbers::pi;
  constexpr double kRounding = 1e-15;
  expect_place(made(CartesianProj, based(-30, 10, 1)), 60, -80, -kPi / 2, kPi / 2, kRounding);
  expect_place(made(MercatorProj, based(0, 0, 1)), 45, 90, kPi / 2, std::log(1 + std::sqrt(2.0)),
               kRounding);
  expect_place(made(LambertCylindricalProj, based(30, 0, 1)), -30, 90, kPi / 2, -1, kRounding);
  expect_place(made(GnomonicProj, based(0, 0, 1)), 0, 45, 1, 0, kRounding);
  expect_place(made(GnomonicProj, based(90, 0, 1)), 45, 90, 1, 0, kRounding);
  expect_place(made(StereographicProj, based(0, 20, 1)), 0, 110, 2, 0, kRounding);
  expect_place(made(StereographicProj, based(-90, 0, 1)), 0, 0, 0, 2, kRounding);
  expect_place(made(OrthographicProj, based(0, 180, 1)), 30, 180, 0, 0.5, kRounding);
  expect_place(made(PostelProj, based(90, 0, 1)), -45, -90, -0.75 * kPi, 0, kRounding);
  expect_place(made(LambertAzimuthalProj, based(90, 0, 1)), 0, 0, 0, -std::sqrt(2.0), kRounding);
  expect_place(made(CassiniSoldnerProj, based(0, 0, 1)), 45, 180, 0, 0.75 * kPi, kRounding);
  expect_place(made(SansonFlamsteedProj, based(10, 0, 1)), 60, -180, -kPi / 2, 50 * kDegree,
               kRounding);
  expect_place(made(WernerProj, based(90, 0, 1)), 0, 90, std::sin(1.0) * kPi / 2,
               -std::cos(1.0) * kPi / 2, kRounding);
  // rho^2 = 4 (1 + s1 s2 - (s1 + s2) sin(lat)) / (s1 + s2)^2: here 5 - 4 sin(lat).
  expect_place(made(AlbersProj, with_parallels(based(0, 0, 1), 30, 30)), -90, 180, -3,
               std::sqrt(5.0), 3 * kRounding);
}

// Along the parallels that a map is said to keep, a degree of longitude has its true length.
TEST(Chart, ParallelsAreTrueToScale) {
  for (const auto& [first, second] :
       {std::array{20.0, 60.0}, {-20.0, -60.0}, {-15.0, 70.0}, {30.0, 30.0}, {-89.0, 40.0}}) {
    for (const projType type : {LambertConicProj, AlbersProj}) {
      const Chart chart = made(type, with_parallels(based(10, 100), first, second));
      for (const double parallel : {first, second}) {
        const Pair west = projected(chart, parallel, 100);
        const Pair east = projected(chart, parallel, 100.001);
        EXPECT_NEAR(std::hypot(east.a - west.a, east.b - west.b),
                    kEarth * 0.001 * kDegree * std::cos(parallel * kDegree), 1e-6)
            << told(chart);
      }
    }
  }
}

TEST(Chart, OneParallelIsTwoEqualOnes) {
  for (const projType type : {LambertConicProj, AlbersProj}) {
    ChartParameters first = based(30, 0);
    first.first_parallel = 40;
    ChartParameters second = based(30, 0);
    second.second_parallel = 40;
    const Pair both = projected(made(type, with_parallels(based(30, 0), 40, 40)), 50, 60);
    for (const ChartParameters& one : {first, second}) {
      EXPECT_EQ(projected(made(type, one), 50, 60).a, both.a);
      EXPECT_EQ(projected(made(type, one), 50, 60).b, both.b);
    }
    // Parallels that come together lead there without a jump.
    const Pair close = projected(made(type, with_parallels(based(30, 0), 40, 40 + 1e-9)), 50, 60);
    EXPECT_NEAR(close.a, both.a, 1e-3);
    EXPECT_NEAR(close.b, both.b, 1e-3);
  }
}

// A cone that is almost a cylinder has its apex millions of radii away.
TEST(Chart, ConesThatAreAlmostCylindersKeepTheirDigits) {
  const ChartParameters almost = with_parallels(based(0, 0), -30, 30 + 2e-9);
  const Pair lambert = projected(made(LambertConicProj, almost), 60, 90);
  EXPECT_NEAR(lambert.a, std::cos(30 * kDegree) * kEarth * std::numbers::pi / 2, 0.01);
  EXPECT_NEAR(lambert.b, std::cos(30 * kDegree) * kEarth * std::asinh(std::sqrt(3.0)), 0.01);
  const Pair albers = projected(made(AlbersProj, almost), 60, 90);
  EXPECT_NEAR(albers.a, std::cos(30 * kDegree) * kEarth * std::numbers::pi / 2, 0.01);
  EXPECT_NEAR(albers.b, kEarth * std::sin(60 * kDegree) / std::cos(30 * kDegree), 0.01);
}

TEST(Chart, TheBasePointIsTheOrigin) {
  Random random(17);
  for (const projType type : kFlat) {
    for (int round = 0; round < 50; ++round) {
      const ChartParameters parameters = parameters_for(type, random);
      const Chart chart = made(type, parameters);
      if (type == MercatorProj && std::fabs(parameters.base_lat) == 90.0) continue;
      const Pair origin = projected(chart, parameters.base_lat, parameters.base_lon);
      EXPECT_NEAR(origin.a, 0.0, 1e-6) << told(chart);
      const double north = type == MercatorProj
                               ? std::cos(*parameters.first_parallel * kDegree) * kEarth *
                                     std::asinh(std::tan(parameters.base_lat * kDegree))
                               : 0.0;
      EXPECT_NEAR(origin.b, north, 1e-6) << told(chart);
    }
  }
}

TEST(Chart, LongitudesGoRoundTheBaseMeridian) {
  const Chart chart = made(CartesianProj, based(0, 170, 180 / std::numbers::pi));
  for (const auto& [lon, x] : {std::pair{170.0, 0.0},
                               {-170.0, 20.0},
                               {190.0, 20.0},
                               {350.0, -180.0},
                               {-10.0, -180.0},
                               {349.5, 179.5},
                               {550.0, 20.0},
                               {-11.0, 179.0},
                               {-10.0 - 3600.0, -180.0}}) {
    EXPECT_NEAR(projected(chart, 0, lon).a, x, 1e-12) << lon;
  }
  EXPECT_NEAR(unprojected(chart, 9.5, 0).b, 179.5, 1e-12);
  EXPECT_EQ(unprojected(chart, 10, 0).b, -180.0);
  EXPECT_NEAR(unprojected(chart, 10.5, 0).b, -179.5, 1e-12);
  // A longitude that is whole turns away is the same to the last bit.
  constexpr double kTurns = 360.0 * (1LL << 40);
  for (const auto& [base, lon] : {std::pair{0.1, 0.125}, {0.125, 0.1}}) {
    const double expected = projected(made(CartesianProj, based(0, base)), 0, lon).a;
    for (const double turns : {kTurns, -kTurns}) {
      const double far_base = base == 0.125 ? base + turns : base;
      const double far_lon = lon == 0.125 ? lon + turns : lon;
      EXPECT_EQ(projected(made(CartesianProj, based(0, far_base)), 0, far_lon).a, expected);
    }
  }
}

TEST(Chart, FillsInParallelsAndReach) {
  const ChartParameters north = made(AlbersProj, based(0, 0)).parameters();
  EXPECT_EQ(north.first_parallel, 20.0);
  EXPECT_EQ(north.second_parallel, 60.0);
  const ChartParameters south = made(LambertConicProj, based(-0.5, 0)).parameters();
  EXPECT_EQ(south.first_parallel, -20.0);
  EXPECT_EQ(south.second_parallel, -60.0);
  EXPECT_EQ(made(MercatorProj).parameters().first_parallel, 0.0);
  EXPECT_EQ(made(CartesianProj).parameters().first_parallel, std::nullopt);
  EXPECT_EQ(made(CartesianProj).parameters().reach_deg, std::nullopt);
  EXPECT_EQ(made(GnomonicProj).parameters().reach_deg, 60.0);
  for (const projType type : {StereographicProj, OrthographicProj, GlobeProj}) {
    EXPECT_EQ(made(type).parameters().reach_deg, 90.0);
  }
  for (const projType type : {PostelProj, LambertAzimuthalProj}) {
    EXPECT_EQ(made(type).parameters().reach_deg, 180.0);
  }
  ChartParameters asked;
  asked.reach_deg = 45.0;
  EXPECT_EQ(made(PostelProj, asked).parameters().reach_deg, 45.0);
  EXPECT_EQ(made(PostelProj, asked).type(), PostelProj);
}

struct Refusal {
  projType type;
  ChartParameters parameters;
  std::string message;
};

ChartParameters reaching(double deg) {
  ChartParameters parameters;
  parameters.reach_deg = deg;
  return parameters;
}

ChartParameters through(kzgis::Box window) {
  ChartParameters parameters;
  parameters.window = window;
  return parameters;
}

TEST(ChartMake, RefusesWithAReason) {
  const double kBelowOpposite = -30 + 1e-10;
  const Refusal refusals[] = {
      {static_cast<projType>(15), {}, "there is no projection number 15: they run from 0 to 14"},
      {static_cast<projType>(-1), {}, "there is no projection number -1: they run from 0 to 14"},
      {PostelProj, based(90.5, 0), "the base latitude 90.5 does not lie within -90 to 90"},
      {PostelProj, based(std::nextafter(90.0, 91.0), 0),
       "the base latitude 90.000000000000014 does not lie within -90 to 90"},
      {PostelProj, based(kNaN, 0), "the base latitude nan does not lie within -90 to 90"},
      {PostelProj, based(0, kInf), "the base longitude inf is not a finite number"},
      {PostelProj, based(0, -kNaN), "the base longitude nan is not a finite number"},
      {AlbersProj, with_parallels({}, 91, 20), "the parallel 91 does not lie within -90 to 90"},
      {GlobeProj, with_parallels({}, 20, -91), "the parallel -91 does not lie within -90 to 90"},
      {AlbersProj, with_parallels({}, 20, kNaN), "the parallel nan does not lie within -90 to 90"},
      {PostelProj, based(0, 0, 0), "the radius 0 is not a finite number above 0"},
      {PostelProj, based(0, 0, -1), "the radius -1 is not a finite number above 0"},
      {PostelProj, based(0, 0, kInf), "the radius inf is not a finite number above 0"},
      {PostelProj, based(0, 0, kNaN), "the radius nan is not a finite number above 0"},
      {AlbersProj, with_parallels({}, 30, -30),
       "the parallels 30 and -30 are opposite to each other: between them there is no cone but a "
       "cylinder"},
      {LambertConicProj, with_parallels({}, 30, kBelowOpposite),
       "the parallels 30 and -29.999999999900002 are opposite to each other: between them there "
       "is no cone but a cylinder"},
      {LambertConicProj, with_parallels({}, 0, 0),
       "the parallels 0 and 0 are opposite to each other: between them there is no cone but a "
       "cylinder"},
      {LambertConicProj, with_parallels({}, 20, 90),
       "parallels of the Lambert conic lie between -90 and 90, not at a pole: 20 and 90"},
      {LambertConicProj, with_parallels({}, -90, -90),
       "parallels of the Lambert conic lie between -90 and 90, not at a pole: -90 and -90"},
      {LambertConicProj, with_parallels(based(-90, 0), 20, 60),
       "the base latitude -90 is the pole that has no place on this cone"},
      {LambertConicProj, with_parallels(based(90, 0), -20, -60),
       "the base latitude 90 is the pole that has no place on this cone"},
      {MercatorProj, with_parallels({}, 90, 0),
       "Mercator is not true to scale at a pole: the first parallel 90 must lie between -90 and "
       "90"},
      {BonneProj,
       {},
       "Bonne needs a base latitude other than 0: on the equator it is "
       "Sanson-Flamsteed"},
      {GnomonicProj, reaching(90), "the reach 90 does not lie above 0 and below 90"},
      {StereographicProj, reaching(180), "the reach 180 does not lie above 0 and below 180"},
      {OrthographicProj, reaching(90.5), "the reach 90.5 does not lie above 0 and up to 90"},
      {GlobeProj, reaching(0), "the reach 0 does not lie above 0 and up to 90"},
      {PostelProj, reaching(kNaN), "the reach nan does not lie above 0 and up to 180"},
      {CartesianProj, reaching(-1), "the reach -1 does not lie above 0 and up to 180"},
      {CartesianProj, through({10, 0, 10, 5}),
       "the window's longitudes 10 to 10 from the base do not ascend within -180 to 180"},
      {CartesianProj, through({-181, 0, 10, 5}),
       "the window's longitudes -181 to 10 from the base do not ascend within -180 to 180"},
      {CartesianProj, through({0, -91, 10, 5}),
       "the window's latitudes -91 to 5 do not ascend within -90 to 90"},
      {PostelProj, through({0, 0, 10, kNaN}),
       "the window's latitudes 0 to nan do not ascend within -90 to 90"},
  };
  for (const Refusal& refusal : refusals) {
    const auto chart = Chart::make(refusal.type, refusal.parameters);
    ASSERT_FALSE(chart) << refusal.message;
    EXPECT_EQ(chart.error().kind, ErrorKind::bad_argument);
    EXPECT_EQ(chart.error().message, refusal.message);
  }
}

TEST(ChartMake, TakesTheEndsOfRanges) {
  EXPECT_TRUE(Chart::make(AlbersProj, with_parallels(based(90, 0), 90, 90)));
  EXPECT_TRUE(Chart::make(AlbersProj, with_parallels(based(-90, 0), -90, 30)));
  EXPECT_TRUE(Chart::make(LambertConicProj, with_parallels(based(90, 0), 20, 60)));
  EXPECT_TRUE(Chart::make(LambertConicProj, with_parallels({}, 0, 60)));
  EXPECT_TRUE(Chart::make(BonneProj, based(-90, 0)));
  EXPECT_TRUE(Chart::make(PostelProj, reaching(180)));
  EXPECT_TRUE(Chart::make(OrthographicProj, reaching(90)));
  EXPECT_TRUE(Chart::make(CartesianProj, through({-180, -90, 180, 90})));
  EXPECT_TRUE(Chart::make(PostelProj, based(0, 1e9)));
  // What a projection does not use must only lie in its range.
  EXPECT_TRUE(Chart::make(PostelProj, with_parallels({}, 30, -30)));
}

TEST(Chart, SpansMayBeTheSameArrays) {
  Random random(4);
  std::vector<double> lat(100);
  std::vector<double> lon(100);
  std::vector<double> alt(100);
  for (std::size_t i = 0; i < lat.size(); ++i) {
    lat[i] = random.between(-91, 91);
    lon[i] = random.between(-200, 400);
    alt[i] = random.between(0, 1e4);
  }
  for (int type = CartesianProj; type <= GlobeProj; ++type) {
    const Chart chart = made(static_cast<projType>(type), based(40, 20));
    std::vector<double> x(100);
    std::vector<double> y(100);
    std::vector<double> z(100);
    const std::size_t without = chart.project(lat, lon, alt, x, y, z);
    EXPECT_GT(without, 0U);
    EXPECT_LT(without, 100U);
    std::vector<double> a = lat;
    std::vector<double> b = lon;
    std::vector<double> c = alt;
    // The longitudes' array becomes x, the latitudes' z and the altitudes' y.
    EXPECT_EQ(chart.project(a, b, c, b, c, a), without);
    const auto expect_same = [&](const std::vector<double>& given,
                                 const std::vector<double>& want) {
      for (std::size_t i = 0; i < want.size(); ++i) {
        EXPECT_TRUE(given[i] == want[i] || (std::isnan(given[i]) && std::isnan(want[i])));
      }
    };
    expect_same(b, x);
    expect_same(c, y);
    expect_same(a, z);
    std::vector<double> back_lat(100);
    std::vector<double> back_lon(100);
    std::vector<double> back_alt(100);
    EXPECT_EQ(chart.unproject(x, y, z, back_lat, back_lon, back_alt), without);
    EXPECT_EQ(chart.unproject(b, c, a, c, b, a), without);
    expect_same(c, back_lat);
    expect_same(b, back_lon);
    expect_same(a, back_alt);
    if (type == GlobeProj) continue;
    a = lat;
    b = lon;
    EXPECT_EQ(chart.project(a, b, b, a), without);
    expect_same(b, x);
    expect_same(a, y);
  }
}

TEST(Chart, TheShortestSpanCounts) {
  const std::vector<double> lat{10, 20, 30};
  const std::vector<double> lon{10, 95, 30};
  for (const projType type : {CartesianProj, GlobeProj}) {
    const Chart chart = made(type);
    std::vector<double> x(3, -7);
    std::vector<double> y(3, -7);
    std::vector<double> z(2, -7);
    EXPECT_EQ(chart.project(lat, lon, lat, x, y, z), 0U);
    EXPECT_NE(x[1], -7);
    EXPECT_EQ(x[2], -7);
    EXPECT_EQ(y[2], -7);
    EXPECT_EQ(chart.unproject(x, y, z, x, y, {}), 0U);
    EXPECT_EQ(x[2], -7);
  }
  EXPECT_EQ(made(CartesianProj).project({}, {}, {}, {}), 0U);
}

TEST(Chart, AltitudesComeThrough) {
  for (const projType type : kFlat) {
    const Chart chart = made(type, based(40, 20));
    const std::array lat{41.0, 41.0, 41.0};
    const std::array lon{21.0, 21.0, 21.0};
    const std::array alt{1234.5, kNaN, -kInf};
    std::array<double, 3> x{};
    std::array<double, 3> y{};
    std::array<double, 3> z{};
    EXPECT_EQ(chart.project(lat, lon, alt, x, y, z), 2U);
    const Pair without = projected(chart, 41, 21);
    EXPECT_EQ(x[0], without.a);
    EXPECT_EQ(y[0], without.b);
    EXPECT_EQ(z[0], 1234.5);
    for (const std::size_t i : {1U, 2U}) {
      EXPECT_TRUE(std::isnan(x[i]) && std::isnan(y[i]) && std::isnan(z[i]));
    }
    EXPECT_EQ(chart.unproject(x, y, z, x, y, z), 2U);
    EXPECT_NEAR(x[0], 41.0, 1e-12);
    EXPECT_NEAR(y[0], 21.0, 1e-12);
    EXPECT_EQ(z[0], 1234.5);
  }
}

TEST(ChartGlobe, IsThePositionInSpace) {
  const Chart globe = made(GlobeProj, based(50, 60, 10));
  const std::array lat{0.0, 0.0, 90.0, -90.0, 30.0, 0.0};
  const std::array lon{0.0, 90.0, 77.0, 0.0, -90.0, 180.0};
  const std::array alt{0.0, 1.0, 2.0, 0.0, -5.0, 0.0};
  std::array<double, 6> x{};
  std::array<double, 6> y{};
  std::array<double, 6> z{};
  ASSERT_EQ(globe.project(lat, lon, alt, x, y, z), 0U);
  const std::array<std::array<double, 3>, 6> expected{
      {{10, 0, 0}, {0, 11, 0}, {0, 0, 12}, {0, 0, -10}, {0, -std::sqrt(18.75), 2.5}, {-10, 0, 0}}};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(x[i], expected[i][0], 1e-14);
    EXPECT_NEAR(y[i], expected[i][1], 1e-14);
    EXPECT_NEAR(z[i], expected[i][2], 1e-14);
  }
  ASSERT_EQ(globe.unproject(x, y, z, x, y, z), 0U);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(x[i], lat[i], 1e-13);
    if (std::fabs(lat[i]) < 90.0) {
      EXPECT_NEAR(turned(y[i] - lon[i]), 0.0, 1e-13);
    }
    EXPECT_LT(y[i], 180.0);
    EXPECT_NEAR(z[i], alt[i], 1e-13);
  }
}

TEST(ChartGlobe, IsNotFlat) {
  const Chart globe = made(GlobeProj);
  std::vector<double> a{1, 2, 3};
  std::vector<double> b{1, 2, 3};
  EXPECT_EQ(globe.project(a, b, a, b), 3U);
  EXPECT_TRUE(std::isnan(a[1]) && std::isnan(b[1]));
  a = {1, 2, 3};
  b = {1, 2, 3};
  EXPECT_EQ(globe.unproject(a, b, a, b), 3U);
  EXPECT_TRUE(std::isnan(a[1]) && std::isnan(b[1]));
}

}  // namespace
