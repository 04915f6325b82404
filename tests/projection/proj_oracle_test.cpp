// PROJ as an oracle, on the sphere.
//
// Three departures hold for every projection and are taken out of the comparison:
//  - pi is short.  PROJ gets its angles in radians made with the short pi, so that both
//    sides see the same sphere.  What is left are the short pi/4 and pi/2 inside some
//    formulas; their rows name the tolerance.
//  - Longitude differences are not brought into +-pi.  PROJ gets the difference itself
//    (lon_0 stays 0) and "+over", which keeps it from wrapping.
//  - Nothing is refused.  PROJ refuses the far side of the orthographic and gnomonic
//    projections; those points are left out here and pinned in azimuthal_test.cpp.

#include <gtest/gtest.h>
#include <proj.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <memory>
#include <random>
#include <string>

#include "kzgis/projection.h"
#include "projection/support.h"

using namespace projection_test;

namespace {

constexpr unsigned kSeed = 7345;
constexpr int kRounds = 400;
constexpr double kTight_m = 1e-6;  // rounding, on coordinates of 1e7 metres

struct Settings {
  double base_lat;
  double base_lon;
  double first;
  double second;
};

/// An angle as PROJ reads radians: the number and an "r".
std::string radians_text(double angle_deg) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17gr", rad(angle_deg));
  return text;
}

std::string lat_0(const Settings& s) { return " +lat_0=" + radians_text(s.base_lat); }
std::string parallels(const Settings& s) {
  return " +lat_1=" + radians_text(s.first) + " +lat_2=" + radians_text(s.second);
}

/// One projection of PROJ's, radians in and metres out; on the sphere unless the
/// definition has another body.
class Oracle {
 public:
  explicit Oracle(const std::string& definition)
      : context_(proj_context_create(), proj_context_destroy),
        projection_(proj_create(context_.get(), (definition + body(definition) + " +over").c_str()),
                    proj_destroy) {}

  bool exists() const { return projection_ != nullptr; }

  /// False when PROJ refuses the point.
  bool forward(double lam, double phi, double h, WorldPoint* out) {
    return run(PJ_FWD, lam, phi, h, out);
  }
  bool inverse(double x, double y, double z, WorldPoint* out) { return run(PJ_INV, x, y, z, out); }

 private:
  static const char* body(const std::string& definition) {
    return definition.find("+es=") == std::string::npos ? " +R=6378000" : " +a=6378000";
  }
  bool run(PJ_DIRECTION direction, double a, double b, double c, WorldPoint* out) {
    const PJ_COORD r = proj_trans(projection_.get(), direction, proj_coord(a, b, c, 0.0));
    *out = {r.v[0], r.v[1], r.v[2]};
    return std::isfinite(r.v[0]);
  }

  std::unique_ptr<PJ_CONTEXT, decltype(&proj_context_destroy)> context_;
  std::unique_ptr<PJ, decltype(&proj_destroy)> projection_;
};

struct Case {
  projType type;
  std::string (*definition)(const Settings&);
  double base_lat_from, base_lat_to;
  double widest_deg;                   // largest difference of longitudes compared
  double tolerance_m;                  // times the stretch of the map at the point, at least 1
  double (*y_shift)(const Settings&);  // what ours adds to PROJ's y, in radii
};

double no_shift(const Settings&) { return 0.0; }

const Case kCases[] = {
    {CartesianProj, [](const Settings& s) { return "+proj=eqc" + lat_0(s); }, -20.0, 20.0, 350.0,
     kTight_m, no_shift},
    // ln tan(phi/2 + pi/4) with the short pi/4: 3 mm at the equator, and times the scale of
    // the map, which stays below 3 at the latitudes compared.
    {MercatorProj, [](const Settings& s) { return "+proj=merc +lat_ts=" + radians_text(s.first); },
     -80.0, 80.0, 350.0, 1e-2, no_shift},
    {LambertCylindricalProj, [](const Settings&) { return std::string("+proj=cea"); }, -80.0, 80.0,
     350.0, kTight_m,
     // PROJ has no base latitude here; ours moves the origin up to it.
     [](const Settings& s) { return -std::sin(rad(s.base_lat)); }},
    {GnomonicProj, [](const Settings& s) { return "+proj=gnom" + lat_0(s); }, -89.0, 89.0, 350.0,
     kTight_m, no_shift},
    {StereographicProj, [](const Settings& s) { return "+proj=stere" + lat_0(s); }, -89.0, 89.0,
     350.0, kTight_m, no_shift},
    {OrthographicProj, [](const Settings& s) { return "+proj=ortho" + lat_0(s); }, -89.0, 89.0,
     350.0, kTight_m, no_shift},
    {PostelProj, [](const Settings& s) { return "+proj=aeqd" + lat_0(s); }, -89.0, 89.0, 350.0,
     kTight_m, no_shift},
    {LambertAzimuthalProj, [](const Settings& s) { return "+proj=laea" + lat_0(s); }, -89.0, 89.0,
     350.0, kTight_m, no_shift},
    // The polar aspects: sin(pi/4 - phi/2) with the short pi/4 is 3 mm off.
    {LambertAzimuthalProj, [](const Settings&) { return std::string("+proj=laea +lat_0=90"); },
     90.0, 90.0, 350.0, 4e-3, no_shift},
    {LambertAzimuthalProj, [](const Settings&) { return std::string("+proj=laea +lat_0=-90"); },
     -90.0, -90.0, 350.0, 4e-3, no_shift},
    // Two different parallels only.  With one, ours takes the cotangent of the base
    // latitude and each point's own radius as its origin (conic_test.cpp).  The short pi/4
    // enters five tangents.
    {LambertConicProj, [](const Settings& s) { return "+proj=lcc" + lat_0(s) + parallels(s); },
     10.0, 80.0, 350.0, 2e-2, no_shift},
    // Two different parallels only; with one, ours multiplies the whole difference of the
    // radii by the cosine (conic_test.cpp).
    {AlbersProj, [](const Settings& s) { return "+proj=aea" + lat_0(s) + parallels(s); }, 10.0,
     80.0, 350.0, 1e-4, no_shift},
    // PROJ's closed form for the sphere is another formula; a vanishing eccentricity makes it
    // take the series, which is ours.
    {CassiniSoldnerProj, [](const Settings& s) { return "+proj=cass +es=1e-15" + lat_0(s); }, -60.0,
     60.0, 60.0, 1e-5, no_shift},
    {BonneProj, [](const Settings& s) { return "+proj=bonne +lat_1=" + radians_text(s.base_lat); },
     10.0, 80.0, 150.0, kTight_m, no_shift},
    // Werner is Bonne at the pole.  PROJ's origin is the pole and ours the base; pi/2 is
    // short in ours.
    {WernerProj, [](const Settings&) { return std::string("+proj=bonne +lat_1=90"); }, 0.0, 80.0,
     150.0, 1e-2, [](const Settings& s) { return 1.5707963262948965 - rad(s.base_lat); }},
    {WernerProj, [](const Settings&) { return std::string("+proj=bonne +lat_1=-90"); }, -80.0, -1.0,
     150.0, 1e-2, [](const Settings& s) { return -1.5707963262948965 - rad(s.base_lat); }},
    {SansonFlamsteedProj, [](const Settings&) { return std::string("+proj=sinu"); }, -80.0, 80.0,
     350.0, kTight_m, [](const Settings& s) { return -rad(s.base_lat); }},
};

class ProjOracle : public testing::TestWithParam<Case> {
 protected:
  double uniform(double a, double b) {
    return a + (b - a) * (static_cast<double>(rng_()) / 4294967296.0);
  }
  Settings settings(const Case& c) {
    return {uniform(c.base_lat_from, c.base_lat_to), uniform(0.0, 300.0), uniform(10.0, 40.0),
            uniform(45.0, 80.0)};
  }
  std::mt19937 rng_{kSeed};
};

/// The ratio of the largest coordinate to the radius, at least 1: rounding and the short
/// constants grow with it.
double stretch(const WorldPoint& w) {
  return std::max({1.0, std::fabs(w.x) / kEarth, std::fabs(w.y) / kEarth});
}

TEST_P(ProjOracle, ForwardAgrees) {
  const Case& c = GetParam();
  int compared = 0;
  for (int round = 0; round < kRounds; ++round) {
    const Settings s = settings(c);
    Projection p(c.type, s.base_lat, s.base_lon);
    p.setFirstPar(s.first);
    p.setSecondPar(s.second);
    Oracle oracle(c.definition(s));
    ASSERT_TRUE(oracle.exists()) << c.definition(s);
    const double lat = uniform(-69.0, 69.0);
    const double east = uniform(0.0, 359.0);
    double lon = east < s.base_lon ? s.base_lon - std::min(s.base_lon - east, c.widest_deg)
                                   : s.base_lon + std::min(east - s.base_lon, c.widest_deg);
    double* xyz = nullptr;
    ASSERT_EQ(p.FromTo(LatLon(lat, lon), 5.0, &xyz), 3);
    const WorldPoint ours{xyz[0], xyz[1], xyz[2]};
    delete[] xyz;
    double dlam = rad(lon) - rad(s.base_lon);
    // Cartesian alone wraps the difference.
    if (c.type == CartesianProj && lon < s.base_lon) dlam = rad(lon - s.base_lon + 360.0);
    const double cos_c = std::sin(rad(s.base_lat)) * std::sin(rad(lat)) +
                         std::cos(rad(s.base_lat)) * std::cos(rad(lat)) * std::cos(dlam);
    const bool far_side = (c.type == GnomonicProj && cos_c < 0.05) ||
                          (c.type == OrthographicProj && cos_c < 0.01) || cos_c < -0.99;
    if (far_side) continue;
    WorldPoint theirs{};
    ASSERT_TRUE(oracle.forward(dlam, rad(lat), 5.0, &theirs))
        << c.definition(s) << " of " << lat << " " << lon;
    const double tolerance = c.tolerance_m * stretch(ours) * stretch(ours);
    EXPECT_NEAR(ours.x, theirs.x, tolerance)
        << c.definition(s) << " of " << lat << " " << lon << ", seed " << kSeed;
    EXPECT_NEAR(ours.y, theirs.y + c.y_shift(s) * kEarth, tolerance)
        << c.definition(s) << " of " << lat << " " << lon << ", seed " << kSeed;
    EXPECT_EQ(ours.z, c.type == AlbersProj ? 0.0 : 5.0);
    ++compared;
  }
  EXPECT_GT(compared, kRounds / 4);
}

/// The letters of the projection's name, and the row.
std::string label(projType type, std::size_t row) {
  const UtString name = Projection(type).fetchProjectionName();
  std::string text;
  for (const char c : name.str()) {
    if (std::isalpha(static_cast<unsigned char>(c))) text += c;
  }
  return text + std::to_string(row);
}

INSTANTIATE_TEST_SUITE_P(Sphere, ProjOracle, testing::ValuesIn(kCases),
                         [](const auto& test) { return label(test.param.type, test.index); });

TEST(ProjOracleGlobe, ForwardAgrees) {
  Oracle oracle("+proj=cart");
  ASSERT_TRUE(oracle.exists());
  std::mt19937 rng(kSeed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  Projection p(GlobeProj);
  for (int round = 0; round < kRounds; ++round) {
    const double lat = unit(rng) * 180.0 - 90.0;
    const double lon = unit(rng) * 360.0;
    const double h = unit(rng) * 1e5;
    const WorldPoint ours = run(p, &Projection::Globe, lat, lon, h);
    WorldPoint theirs{};
    ASSERT_TRUE(oracle.forward(rad(lon), rad(lat), h, &theirs));
    EXPECT_NEAR(ours.x, theirs.x, kTight_m) << "seed " << kSeed << ", round " << round;
    EXPECT_NEAR(ours.y, theirs.y, kTight_m) << "seed " << kSeed << ", round " << round;
    EXPECT_NEAR(ours.z, theirs.z, kTight_m) << "seed " << kSeed << ", round " << round;
  }
}

struct InverseCase {
  projType type;
  std::string (*definition)(const Settings&);
  double tolerance_deg;
  double (*y_shift)(const Settings&);
};

// The one-argument arc tangents agree with PROJ's two-argument ones while the point lies
// within 90 degrees of longitude of the base; the points below stay there.  The polar
// stereographic inverse mirrors longitudes on purpose and is left out.
const InverseCase kInverseCases[] = {
    {CartesianProj, [](const Settings& s) { return "+proj=eqc" + lat_0(s); }, 1e-12, no_shift},
    // The short pi/2 and pi/4: 6e-8 degrees at most.
    {MercatorProj, [](const Settings& s) { return "+proj=merc +lat_ts=" + radians_text(s.first); },
     1e-7, no_shift},
    {LambertCylindricalProj, [](const Settings&) { return std::string("+proj=cea"); }, 1e-12,
     [](const Settings& s) { return -std::sin(rad(s.base_lat)); }},
    {StereographicProj, [](const Settings& s) { return "+proj=stere" + lat_0(s); }, 1e-11,
     no_shift},
    {OrthographicProj, [](const Settings& s) { return "+proj=ortho" + lat_0(s); }, 1e-11, no_shift},
    {LambertAzimuthalProj, [](const Settings& s) { return "+proj=laea" + lat_0(s); }, 1e-11,
     no_shift},
    {LambertConicProj, [](const Settings& s) { return "+proj=lcc" + lat_0(s) + parallels(s); },
     2e-6, no_shift},
    {AlbersProj, [](const Settings& s) { return "+proj=aea" + lat_0(s) + parallels(s); }, 1e-10,
     no_shift},
};

class ProjOracleInverse : public testing::TestWithParam<InverseCase> {};

TEST_P(ProjOracleInverse, Agrees) {
  const InverseCase& c = GetParam();
  std::mt19937 rng(kSeed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  int compared = 0;
  for (int round = 0; round < kRounds; ++round) {
    const Settings s{15.0 + 30.0 * unit(rng), 100.0 + 100.0 * unit(rng), 10.0 + 30.0 * unit(rng),
                     45.0 + 35.0 * unit(rng)};
    Projection p(c.type, s.base_lat, s.base_lon);
    p.setFirstPar(s.first);
    p.setSecondPar(s.second);
    // Half a radius about the base.
    const double x = (unit(rng) - 0.5) * 0.8 * kEarth;
    const double y = (unit(rng) - 0.5) * 0.8 * kEarth;
    Oracle oracle(c.definition(s));
    ASSERT_TRUE(oracle.exists()) << c.definition(s);
    WorldPoint theirs{};
    const LatLon* ours = p.FromTo(x, y, 0.0);
    ASSERT_NE(ours, nullptr);
    if (!oracle.inverse(x, y - c.y_shift(s) * kEarth, 0.0, &theirs)) {
      // Where PROJ refuses, ours goes through the arc sine of more than 1.
      EXPECT_TRUE(std::isnan(ours->fetchLat())) << c.definition(s) << " of " << x << " " << y;
      continue;
    }
    if (theirs.y > 1.4) continue;  // an arc sine near 1 has lost its digits
    ++compared;
    double want_lon = theirs.x / kShortPi * 180.0 + s.base_lon;
    // Cartesian comes out east of the base: one turn on, which LatLon takes off again.
    want_lon = LatLon(0.0, want_lon).fetchLon();
    EXPECT_NEAR(ours->fetchLat(), theirs.y / kShortPi * 180.0, c.tolerance_deg)
        << c.definition(s) << ", seed " << kSeed << ", round " << round;
    EXPECT_NEAR(ours->fetchLon(), want_lon, c.tolerance_deg)
        << c.definition(s) << ", seed " << kSeed << ", round " << round;
  }
  EXPECT_GT(compared, kRounds / 2);
}

INSTANTIATE_TEST_SUITE_P(Sphere, ProjOracleInverse, testing::ValuesIn(kInverseCases),
                         [](const auto& test) { return label(test.param.type, test.index); });

TEST(ProjOracleGlobeInverse, Agrees) {
  Oracle oracle("+proj=cart");
  std::mt19937 rng(kSeed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  Projection p(GlobeProj);
  for (int round = 0; round < kRounds; ++round) {
    const double x = (unit(rng) - 0.5) * 2e7;
    const double y = (unit(rng) - 0.5) * 2e7;
    const double z = (unit(rng) - 0.5) * 2e7;
    WorldPoint theirs{};
    ASSERT_TRUE(oracle.inverse(x, y, z, &theirs));
    const LatLon* ours = p.FromTo(x, y, z);
    // The short pi/2 is 3e-8 degrees off, and pi on the far half 6e-8; the arc sine of
    // y/rho loses digits near longitude 90.
    const double want_lon = LatLon(0.0, theirs.x / kShortPi * 180.0).fetchLon();
    const double around = std::remainder(ours->fetchLon() - want_lon, 360.0);
    EXPECT_NEAR(ours->fetchLat(), theirs.y / kShortPi * 180.0, 1e-7) << "round " << round;
    EXPECT_NEAR(around, 0.0, 2e-7) << "round " << round;
    EXPECT_NEAR(ours->fetchAltitude(), theirs.z, 1e-6) << "round " << round;
  }
}

}  // namespace
