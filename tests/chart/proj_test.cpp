// PROJ as an oracle, on the sphere, both ways.

#include <gtest/gtest.h>
#include <proj.h>

#include <cstdio>
#include <memory>
#include <string>

#include "chart/support.h"
#include "kzgis/chart.h"

using namespace chart_test;
using kzgis::Chart;
using kzgis::ChartParameters;

namespace {

constexpr unsigned kSeed = 815;
constexpr double kMicrometre = 1e-6;

std::string number(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

class Oracle {
 public:
  explicit Oracle(const std::string& definition)
      : context_(proj_context_create(), proj_context_destroy),
        projection_(proj_create(context_.get(), definition.c_str()), proj_destroy) {}

  bool exists() const { return projection_ != nullptr; }
  Pair forward(double lat, double lon) const {
    return run(PJ_FWD, lon * kDegree, lat * kDegree, 1.0, 1.0);
  }
  /// Latitude and longitude.
  Pair inverse(double x, double y) const {
    const Pair p = run(PJ_INV, x, y, 1.0 / kDegree, 1.0 / kDegree);
    return {p.b, p.a, p.placed};
  }

 private:
  Pair run(PJ_DIRECTION direction, double a, double b, double scale_a, double scale_b) const {
    const PJ_COORD r = proj_trans(projection_.get(), direction, proj_coord(a, b, 0.0, 0.0));
    return {r.v[0] * scale_a, r.v[1] * scale_b, std::isfinite(r.v[0]) && std::isfinite(r.v[1])};
  }

  std::unique_ptr<PJ_CONTEXT, decltype(&proj_context_destroy)> context_;
  std::unique_ptr<PJ, decltype(&proj_destroy)> projection_;
};

/// The same map in PROJ's words.
std::string definition(const Chart& chart) {
  const ChartParameters& p = chart.parameters();
  const std::string base =
      " +lat_0=" + number(p.base_lat) + " +lon_0=" + number(p.base_lon) + " +R=" + number(p.radius);
  const auto conic = [&](const char* name) {
    return name + (" +lat_1=" + number(*p.first_parallel)) +
           " +lat_2=" + number(*p.second_parallel) + base;
  };
  switch (chart.type()) {
    case CartesianProj:
      return "+proj=eqc" + base;
    case MercatorProj:
      return "+proj=merc +lat_ts=" + number(*p.first_parallel) + base;
    case LambertCylindricalProj:
      return "+proj=cea" + base;
    case GnomonicProj:
      return "+proj=gnom" + base;
    case StereographicProj:
      return "+proj=stere" + base;
    case OrthographicProj:
      return "+proj=ortho" + base;
    case PostelProj:
      return "+proj=aeqd" + base;
    case LambertAzimuthalProj:
      return "+proj=laea" + base;
    case LambertConicProj:
      return conic("+proj=lcc");
    case AlbersProj:
      return conic("+proj=aea");
    case CassiniSoldnerProj:
      return "+proj=cass" + base;
    case BonneProj:
      return "+proj=bonne +lat_1=" + number(p.base_lat) + base;
    case WernerProj:
      return "+proj=bonne +lat_1=" + std::string(p.base_lat < 0.0 ? "-90" : "90") + base;
    default:
      return "+proj=sinu" + base;
  }
}

/// PROJ's y of our origin: it has no base latitude for these three.
double proj_origin(const Chart& chart) {
  const ChartParameters& p = chart.parameters();
  switch (chart.type()) {
    case LambertCylindricalProj:
      return p.radius * std::sin(p.base_lat * kDegree);
    case SansonFlamsteedProj:
      return p.radius * p.base_lat * kDegree;
    case WernerProj:
      return p.radius * (p.base_lat < 0.0 ? p.base_lat + 90.0 : p.base_lat - 90.0) * kDegree;
    default:
      return 0.0;
  }
}

/// Whether PROJ's own formulas keep a micrometre there: it has arc cosines and sines where they
/// are steep.
bool oracle_is_sharp(const Chart& chart, double lat, double lon) {
  const ChartParameters& p = chart.parameters();
  const double dlon = turned(lon - p.base_lon);
  if (std::fabs(std::fabs(dlon) - 180.0) < 1e-6 || std::fabs(lat) > 85.0) return false;
  const double cos_c = cosine_between(p.base_lat, p.base_lon, lat, lon);
  switch (chart.type()) {
    case GnomonicProj:
    case OrthographicProj:
      return std::fabs(cos_c) > 0.05 && cos_c < 0.9999;
    case StereographicProj:
    case LambertAzimuthalProj:
    case PostelProj:
      return std::fabs(cos_c) < 0.999;
    case CassiniSoldnerProj:
      return std::fabs(std::cos(lat * kDegree) * std::sin(dlon * kDegree)) < 0.99;
    default:
      return true;
  }
}

/// PROJ 9.1 takes every map of bonne for a northern one on the way back.
bool oracle_goes_back(const Chart& chart) {
  const bool bonne = chart.type() == BonneProj || chart.type() == WernerProj;
  return !bonne || chart.parameters().base_lat >= 0.0;
}

class ProjSphere : public testing::TestWithParam<projType> {};

TEST_P(ProjSphere, AgreesToAMicrometreBothWays) {
  Random random(kSeed);
  int compared = 0;
  for (int round = 0; round < 200 && !HasFailure(); ++round) {
    const Chart chart = made(GetParam(), parameters_for(GetParam(), random));
    const Oracle oracle(definition(chart));
    ASSERT_TRUE(oracle.exists()) << definition(chart);
    const double origin = proj_origin(chart);
    for (int i = 0; i < 20; ++i) {
      const double lat = random.between(-90, 90);
      const double lon = random.between(-180, 180);
      if (!oracle_is_sharp(chart, lat, lon)) continue;
      SCOPED_TRACE(definition(chart) + " of " + number(lat) + ' ' + number(lon));
      const Pair theirs = oracle.forward(lat, lon);
      const Pair ours = projected(chart, lat, lon);
      ASSERT_EQ(ours.placed, theirs.placed);
      if (!ours.placed) continue;
      // Rounding grows with the map, which is larger than the globe in places.
      const double size = std::max({1.0, std::fabs(ours.a) / kEarth, std::fabs(ours.b) / kEarth});
      EXPECT_NEAR(ours.a, theirs.a, kMicrometre * size * size);
      EXPECT_NEAR(ours.b, theirs.b - origin, kMicrometre * size * size);
      if (!oracle_goes_back(chart)) continue;
      const Pair their_point = oracle.inverse(ours.a, ours.b + origin);
      const Pair our_point = unprojected(chart, ours.a, ours.b);
      ASSERT_TRUE(their_point.placed);
      EXPECT_LT(
          apart_deg(our_point.a, our_point.b, their_point.a, their_point.b) * kDegree * kEarth,
          kMicrometre * size);
      ++compared;
    }
  }
  EXPECT_GT(compared, 200 * 20 / 4);
}

INSTANTIATE_TEST_SUITE_P(Charts, ProjSphere, testing::ValuesIn(kFlat),
                         [](const auto& test) { return name_of(test.param); });

TEST(ProjGlobe, AgreesToAMicrometreBothWays) {
  Random random(kSeed);
  const std::unique_ptr<PJ, decltype(&proj_destroy)> cart(
      proj_create(PJ_DEFAULT_CTX, "+proj=cart +R=6378000"), proj_destroy);
  ASSERT_NE(cart, nullptr);
  const Chart globe = made(GlobeProj, based(20, 30));
  for (int round = 0; round < 2000; ++round) {
    double a = random.between(-89.9, 89.9);
    double b = random.between(-180, 180);
    double c = random.between(-1e4, 1e6);
    const PJ_COORD there =
        proj_trans(cart.get(), PJ_FWD, proj_coord(b * kDegree, a * kDegree, c, 0.0));
    ASSERT_EQ(globe.project({&a, 1}, {&b, 1}, {&c, 1}, {&a, 1}, {&b, 1}, {&c, 1}), 0U);
    EXPECT_NEAR(a, there.xyz.x, kMicrometre);
    EXPECT_NEAR(b, there.xyz.y, kMicrometre);
    EXPECT_NEAR(c, there.xyz.z, kMicrometre);
    const PJ_COORD back = proj_trans(cart.get(), PJ_INV, proj_coord(a, b, c, 0.0));
    ASSERT_EQ(globe.unproject({&a, 1}, {&b, 1}, {&c, 1}, {&a, 1}, {&b, 1}, {&c, 1}), 0U);
    EXPECT_LT(apart_deg(a, b, back.lpz.phi / kDegree, back.lpz.lam / kDegree) * kDegree * kEarth,
              kMicrometre);
    EXPECT_NEAR(c, back.lpz.z, kMicrometre);
  }
}

}  // namespace
