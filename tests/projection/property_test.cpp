// Laws of the projections over random points, and a second way to each result: vectors
// on the sphere for the azimuthal projections, scale along the axes for the others.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <new>
#include <random>
#include <vector>

#include "kzgis/projection.h"
#include "projection/support.h"
#include "support/capture.h"

using namespace projection_test;

namespace {

constexpr unsigned kSeed = 424242;
constexpr int kRounds = 3000;

class Random {
 public:
  double uniform(double a, double b) {
    return a + (b - a) * (static_cast<double>(rng_()) / 4294967296.0);
  }

 private:
  std::mt19937 rng_{kSeed};
};

using Forward = int (Projection::*)();
using Vector = std::array<double, 3>;

Vector on_sphere(double lat_deg, double lon_deg) {
  const double phi = rad(lat_deg);
  const double lam = rad(lon_deg);
  return {std::cos(phi) * std::cos(lam), std::cos(phi) * std::sin(lam), std::sin(phi)};
}

double dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

/// A point seen from a base: its coordinates along east, north and up at the base.
Vector seen_from(double base_lat, double base_lon, double lat, double lon) {
  const double phi = rad(base_lat);
  const double lam = rad(base_lon);
  const Vector east{-std::sin(lam), std::cos(lam), 0.0};
  const Vector north{-std::sin(phi) * std::cos(lam), -std::sin(phi) * std::sin(lam), std::cos(phi)};
  const Vector v = on_sphere(lat, lon);
  return {dot(v, east), dot(v, north), dot(v, on_sphere(base_lat, base_lon))};
}

TEST(ProjectionLaws, AzimuthalProjectionsScaleTheVectorSeenFromTheBase) {
  struct Row {
    const char* name;
    Forward forward;
    double (*scale)(double up, double sideways);
  };
  const Row rows[] = {
      {"Gnomonic", &Projection::Gnomonic, [](double up, double) { return 1.0 / up; }},
      {"Stereo", &Projection::Stereo, [](double up, double) { return 2.0 / (1.0 + up); }},
      {"Orthographic", &Projection::Orthographic, [](double, double) { return 1.0; }},
      {"Postel", &Projection::Postel,
       [](double up, double sideways) { return std::atan2(sideways, up) / sideways; }},
      {"LambertAzimuthal", &Projection::LambertAzimuthal,
       [](double up, double) { return std::sqrt(2.0 / (1.0 + up)); }},
  };
  for (const Row& row : rows) {
    Random random;
    for (int round = 0; round < kRounds; ++round) {
      const double base_lat = random.uniform(-90.0, 90.0);
      const double base_lon = random.uniform(0.0, 360.0);
      const double lat = random.uniform(-90.0, 90.0);
      const double lon = random.uniform(0.0, 360.0);
      const Vector v = seen_from(base_lat, base_lon, lat, lon);
      const double sideways = std::hypot(v[0], v[1]);
      // The formulas lose their digits at the horizon, the antipode and the base.
      if (v[2] < -0.9 || std::fabs(v[2]) < 0.05 || sideways < 0.05) continue;
      Projection p(CartesianProj, 1.0, base_lat, base_lon);
      const WorldPoint w = run(p, row.forward, lat, lon);
      const double scale = row.scale(v[2], sideways);
      ASSERT_NEAR(w.x, v[0] * scale, 2e-12) << row.name << ", seed " << kSeed << ", " << round;
      ASSERT_NEAR(w.y, v[1] * scale, 2e-12) << row.name << ", seed " << kSeed << ", " << round;
    }
  }
}

TEST(ProjectionLaws, TheGlobeIsTheVectorItself) {
  Random random;
  for (int round = 0; round < kRounds; ++round) {
    const double lat = random.uniform(-90.0, 90.0);
    const double lon = random.uniform(0.0, 360.0);
    const double h = random.uniform(-0.5, 2.0);
    Projection p(GlobeProj, 2.0, random.uniform(-90.0, 90.0), random.uniform(0.0, 360.0));
    const WorldPoint w = run(p, &Projection::Globe, lat, lon, h);
    const Vector v = on_sphere(lat, lon);
    ASSERT_NEAR(w.x, (2.0 + h) * v[0], 1e-14) << "seed " << kSeed << ", round " << round;
    ASSERT_NEAR(w.y, (2.0 + h) * v[1], 1e-14) << "seed " << kSeed << ", round " << round;
    ASSERT_NEAR(w.z, (2.0 + h) * v[2], 1e-14) << "seed " << kSeed << ", round " << round;
  }
}

/// How a projection stretches a small patch: derivatives along east and along north, on
/// the ground, by differences.
struct Stretch {
  double x_east, y_east, x_north, y_north;

  Stretch(Projection& p, Forward forward, double lat, double lon) {
    constexpr double kStep_deg = 1e-3;
    const double step = 2.0 * rad(kStep_deg);
    const WorldPoint e = run(p, forward, lat, lon + kStep_deg);
    const WorldPoint w = run(p, forward, lat, lon - kStep_deg);
    const WorldPoint n = run(p, forward, lat + kStep_deg, lon);
    const WorldPoint s = run(p, forward, lat - kStep_deg, lon);
    x_east = (e.x - w.x) / (step * std::cos(rad(lat)));
    y_east = (e.y - w.y) / (step * std::cos(rad(lat)));
    x_north = (n.x - s.x) / step;
    y_north = (n.y - s.y) / step;
  }
  double area() const { return x_east * y_north - x_north * y_east; }
};

/// A base and a point well inside every map, with two parallels.
struct Patch {
  double base_lat, base_lon, lat, lon, first, second;

  explicit Patch(Random& random)
      : base_lat(random.uniform(10.0, 80.0)),
        base_lon(random.uniform(100.0, 200.0)),
        lat(random.uniform(-60.0, 75.0)),
        lon(base_lon + random.uniform(-60.0, 60.0)),
        first(random.uniform(10.0, 40.0)),
        second(random.uniform(45.0, 80.0)) {}

  Projection object() const {
    Projection p(CartesianProj, 1.0, base_lat, base_lon);
    p.setFirstPar(first);
    p.setSecondPar(second);
    return p;
  }
};

TEST(ProjectionLaws, EqualAreaProjectionsKeepAreas) {
  for (const Forward forward :
       {&Projection::LambertCylindric, &Projection::LambertAzimuthal, &Projection::Albers,
        &Projection::Bonne, &Projection::Werner, &Projection::SansonFlamsteed}) {
    Random random;
    for (int round = 0; round < kRounds; ++round) {
      const Patch patch(random);
      Projection p = patch.object();
      ASSERT_NEAR(Stretch(p, forward, patch.lat, patch.lon).area(), 1.0, 1e-6)
          << "seed " << kSeed << ", round " << round;
    }
  }
}

TEST(ProjectionLaws, WernerAboutTheSouthPoleKeepsAreasToo) {
  Random random;
  for (int round = 0; round < kRounds; ++round) {
    const Patch patch(random);
    Projection p(WernerProj, 1.0, -patch.base_lat, patch.base_lon);
    ASSERT_NEAR(Stretch(p, &Projection::Werner, patch.lat, patch.lon).area(), 1.0, 1e-6)
        << "seed " << kSeed << ", round " << round;
  }
}

TEST(ProjectionLaws, AlbersWithOneParallelKeepsAreasOnTheBaseMeridianOnly) {
  Random random;
  for (int round = 0; round < kRounds; ++round) {
    const Patch patch(random);
    Projection p(AlbersProj, 1.0, patch.base_lat, patch.base_lon);
    p.setFirstPar(patch.first);
    p.setSecondPar(patch.first);
    ASSERT_NEAR(Stretch(p, &Projection::Albers, patch.lat, patch.base_lon).area(), 1.0, 1e-6)
        << "seed " << kSeed << ", round " << round;
    ASSERT_LT(Stretch(p, &Projection::Albers, patch.lat, patch.base_lon + 50.0).area(), 0.999)
        << "seed " << kSeed << ", round " << round;
  }
}

TEST(ProjectionLaws, ConformalProjectionsKeepAngles) {
  for (const Forward forward :
       {&Projection::Mercator, &Projection::Stereo, &Projection::LambertConical}) {
    Random random;
    for (int round = 0; round < kRounds; ++round) {
      const Patch patch(random);
      Projection p = patch.object();
      const Stretch s(p, forward, patch.lat, patch.lon);
      const double size = std::sqrt(std::fabs(s.area()));
      ASSERT_NEAR(s.x_east / size, s.y_north / size, 1e-6) << "seed " << kSeed << ", " << round;
      ASSERT_NEAR(s.y_east / size, -s.x_north / size, 1e-6) << "seed " << kSeed << ", " << round;
    }
  }
}

TEST(ProjectionLaws, StandardParallelsAreTrueToScale) {
  for (const Forward forward : {&Projection::LambertConical, &Projection::Albers}) {
    Random random;
    for (int round = 0; round < kRounds; ++round) {
      const Patch patch(random);
      Projection p = patch.object();
      for (const double parallel : {patch.first, patch.second}) {
        const Stretch s(p, forward, parallel, patch.lon);
        ASSERT_NEAR(std::hypot(s.x_east, s.y_east), 1.0, 1e-6)
            << "seed " << kSeed << ", round " << round;
      }
    }
  }
}

TEST(ProjectionLaws, WorldCoordinatesGrowWithTheRadius) {
  for (const Forward forward :
       {&Projection::Cartesian, &Projection::Mercator, &Projection::LambertCylindric,
        &Projection::Gnomonic, &Projection::Stereo, &Projection::Orthographic, &Projection::Postel,
        &Projection::LambertAzimuthal, &Projection::LambertConical, &Projection::Albers,
        &Projection::CassiniSoldner, &Projection::Bonne, &Projection::Werner,
        &Projection::SansonFlamsteed, &Projection::Globe}) {
    Random random;
    for (int round = 0; round < 200; ++round) {
      const Patch patch(random);
      Projection p = patch.object();
      const WorldPoint unit = run(p, forward, patch.lat, patch.lon);
      p.setGlobeRadius(4.0);  // a power of two: exact, whatever the order
      const WorldPoint four = run(p, forward, patch.lat, patch.lon);
      ASSERT_EQ(four.x, 4.0 * unit.x) << "seed " << kSeed << ", round " << round;
      ASSERT_EQ(four.y, 4.0 * unit.y) << "seed " << kSeed << ", round " << round;
    }
  }
}

TEST(ProjectionLaws, EveryInverseUndoesItsProjection) {
  struct Row {
    const char* name;
    projType type;
    double tolerance_deg;  // the short pi/4 and pi/2 of some pairs do not cancel
  };
  const Row rows[] = {
      {"Cartesian", CartesianProj, 1e-12},
      {"Mercator", MercatorProj, 1e-7},
      {"LambertCylindric", LambertCylindricalProj, 1e-12},
      {"Stereo", StereographicProj, 1e-11},
      {"Orthographic", OrthographicProj, 1e-11},
      {"LambertAzimuthal", LambertAzimuthalProj, 1e-11},
      {"LambertConical", LambertConicProj, 1e-6},
      {"Albers", AlbersProj, 1e-10},
      {"Globe", GlobeProj, 2e-7},
  };
  for (const Row& row : rows) {
    Random random;
    double* xyz = nullptr;
    for (int round = 0; round < kRounds; ++round) {
      const Patch patch(random);
      // Cartesian clamps and wraps differences, and the azimuthal inverses see the near
      // half of the globe only; these patches lie where all pairs agree.
      const double lat = row.type == CartesianProj ? patch.lat * 0.1 : patch.lat;
      const Vector v = seen_from(patch.base_lat, patch.base_lon, lat, patch.lon);
      if (v[2] < 0.1) continue;
      Projection p = patch.object();
      ASSERT_EQ(p.FromTo(LatLon(lat, patch.lon, 0.125), 0.125, row.type, &xyz), 3);
      const LatLon* point = p.FromTo(xyz);
      ASSERT_NE(point, nullptr);
      ASSERT_NEAR(point->fetchLat(), lat, row.tolerance_deg)
          << row.name << ", seed " << kSeed << ", round " << round;
      ASSERT_NEAR(point->fetchLon(), patch.lon, row.tolerance_deg)
          << row.name << ", seed " << kSeed << ", round " << round;
      ASSERT_NEAR(point->fetchAltitude(), row.type == AlbersProj ? 0.0 : 0.125, 1e-15)
          << row.name << ", seed " << kSeed << ", round " << round;
    }
    delete[] xyz;
  }
}

/// What a projection answers, its numbers bit by bit.
std::vector<std::uint64_t> answers(Projection& p, double a, double b) {
  std::vector<std::uint64_t> said;
  const auto add = [&said](double number) {
    said.emplace_back();
    std::memcpy(&said.back(), &number, sizeof number);
  };
  double* xyz = nullptr;
  add(p.FromTo(LatLon(a, b, a), &xyz));
  for (int i = 0; xyz != nullptr && i < 3; ++i) add(xyz[i]);
  delete[] xyz;
  const LatLon* const back = p.FromTo(a, b, a);
  add(back != nullptr ? 1.0 : 0.0);
  for (const LatLon* point : std::initializer_list<const LatLon*>{back, p.fetchLLCoordinates()}) {
    if (point == nullptr) continue;
    add(point->fetchLat());
    add(point->fetchLon());
    add(point->fetchAltitude());
  }
  const WorldPoint world = world_of(p);
  add(world.x);
  add(world.y);
  add(world.z);
  return said;
}

// The same question to two objects, one in memory of zeros, one in memory of ones.
TEST(ProjectionLaws, OddNumbersLeaveNothingToWhatWasInMemory) {
  const double odd[] = {0.0, -0.0, 1e-320, 1e300, -1e300, 90.0, -90.0, 180.0, kInf, -kInf, kNaN};
  for (int type = -1; type <= 15; ++type) {
    for (const double a : odd) {
      for (const double b : odd) {
        std::vector<std::uint64_t> said[2];
        for (const int memory : {0, 1}) {
          alignas(Projection) unsigned char place[sizeof(Projection)];
          std::memset(place, memory == 0 ? 0x00 : 0xFF, sizeof place);
          const StderrCapture err;
          auto* const p = new (place) Projection(static_cast<projType>(type), a, b, a);
          ProjectionTestAccess::setParallels(*p, 30.0, b);
          said[memory] = answers(*p, a, b);
          p->~Projection();
        }
        ASSERT_EQ(said[0], said[1]) << "type " << type << ", numbers " << a << ", " << b;
      }
    }
  }
}

}  // namespace
