// The order of the floating-point operations, pinned to the last bit.
//
// Callers' coordinates depend on it, so each formula stands here a second time with its
// grouping spelled out: a rearrangement that is right in algebra fails here.  Both sides
// use the host's sine, so that the comparison can be exact.  That the formulas
// themselves are right is the business of the tables and the other tests.

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>

#include "kzgis/projection.h"
#include "projection/support.h"

using namespace projection_test;

namespace {

constexpr double kPi = 3.141592652589793;
constexpr double kHalf = 1.5707963262948965;
constexpr double kQuarter = 0.7853981631474483;
constexpr unsigned kSeed = 20240611;
constexpr int kRounds = 2000;

using Triple = std::array<double, 3>;

/// Everything a formula reads: degrees where the name says so, else radians.
struct Input {
  double base_lat_deg, base_lon_deg, point_lat_deg, point_lon_deg;
  double p1_deg, p2_deg;
  double R, h;
  double x, y, z;  // world coordinates, for the inverses
  double phi0, lam0, phi, lam, phi1, phi2;

  Projection object() const {
    Projection p(CartesianProj, R, base_lat_deg, base_lon_deg);
    p.setFirstPar(p1_deg);
    p.setSecondPar(p2_deg);
    return p;
  }
};

class Inputs {
 public:
  Input next(int round) {
    Input in{};
    in.base_lat_deg = uniform(-90.0, 90.0);
    // The poles and a radius of 1 take branches of their own.
    if (round % 10 == 0) in.base_lat_deg = 90.0;
    if (round % 10 == 1) in.base_lat_deg = -90.0;
    in.base_lon_deg = uniform(0.0, 360.0);
    in.point_lat_deg = uniform(-90.0, 90.0);
    in.point_lon_deg = uniform(0.0, 360.0);
    in.p1_deg = uniform(1.0, 89.0);
    in.p2_deg = round % 3 == 0 ? in.p1_deg : uniform(1.0, 89.0);
    in.R = round % 4 == 0 ? 1.0 : 6378000.0;
    in.h = uniform(-0.01, 0.01) * in.R;
    in.x = uniform(-0.7, 0.7) * in.R;
    in.y = uniform(-0.7, 0.7) * in.R;
    in.z = uniform(-0.7, 0.7) * in.R;
    in.phi0 = (in.base_lat_deg / 180.0) * kPi;
    in.lam0 = (in.base_lon_deg / 180.0) * kPi;
    in.phi = (in.point_lat_deg / 180.0) * kPi;
    in.lam = (in.point_lon_deg / 180.0) * kPi;
    in.phi1 = (in.p1_deg / 180.0) * kPi;
    in.phi2 = (in.p2_deg / 180.0) * kPi;
    return in;
  }

 private:
  double uniform(double a, double b) {
    return a + (b - a) * (static_cast<double>(rng_()) / 4294967296.0);
  }
  std::mt19937 rng_{kSeed};
};

double wrap(double lon_deg) {
  while (lon_deg < 0.0) lon_deg += 360.0;
  while (lon_deg >= 360.0) lon_deg += -360.0;
  return lon_deg;
}
double clamp(double lat_deg) { return lat_deg < -90.0 ? -90.0 : lat_deg > 90.0 ? 90.0 : lat_deg; }
double sgn(double v) { return std::signbit(v) ? -1.0 : 1.0; }

/// What the common frame of the inverses makes of its radians.
Triple found(double lam, double phi, double altitude) {
  return {clamp((phi / kPi) * 180.0), wrap((lam / kPi) * 180.0), altitude};
}

Triple cartesian(const Input& in) {
  const double d_lon = wrap(in.point_lon_deg - in.base_lon_deg);
  const double d_lat = clamp(in.point_lat_deg - in.base_lat_deg);
  return {((d_lon / 180.0) * kPi) * in.R, ((d_lat / 180.0) * kPi) * in.R, in.h};
}

Triple mercator(const Input& in) {
  const double x = (in.lam - in.lam0) * in.R;
  const double y = std::log(std::tan((in.phi * 0.5) + kQuarter)) * in.R;
  return {x * std::cos(in.phi1), y * std::cos(in.phi1), in.h};
}

Triple lambert_cylindrical(const Input& in) {
  return {(in.lam - in.lam0) * in.R, (std::sin(in.phi) * in.R) - (std::sin(in.phi0) * in.R), in.h};
}

Triple sanson_flamsteed(const Input& in) {
  return {std::cos(in.phi) * ((in.lam - in.lam0) * in.R), (in.phi - in.phi0) * in.R, in.h};
}

Triple cassini_soldner(const Input& in) {
  const double A = std::cos(in.phi) * (in.lam - in.lam0);
  const double T = std::tan(in.phi);
  const double T2 = T * T;
  const double A3 = (A * A) * A;
  const double A4 = ((A * A) * A) * A;
  const double A5 = (((A * A) * A) * A) * A;
  const double x = ((A - ((A3 * T2) / 6.0)) - (((A5 * T2) * (8.0 - T2)) / 120.0)) * in.R;
  const double y = (((((A4 * T) * (5.0 - T2)) / 24.0) + ((((A * A) * T) * 0.5) + in.phi)) * in.R) -
                   (in.phi0 * in.R);
  return {x, y, in.h};
}

Triple globe(const Input& in) {
  const double rho = (in.h + in.R) * std::cos(in.phi);
  return {std::cos(in.lam) * rho, std::sin(in.lam) * rho, std::sin(in.phi) * (in.h + in.R)};
}

double term_n(const Input& in, double d) {
  return (std::sin(in.phi) * std::cos(in.phi0)) -
         ((std::sin(in.phi0) * std::cos(in.phi)) * std::cos(d));
}

Triple gnomonic(const Input& in) {
  const double d = in.lam - in.lam0;
  const double C = ((std::cos(in.phi0) * std::cos(in.phi)) * std::cos(d)) +
                   (std::sin(in.phi0) * std::sin(in.phi));
  return {(std::sin(d) * (std::cos(in.phi) * in.R)) / C, (term_n(in, d) * in.R) / C, in.h};
}

double term_k(const Input& in, double d) {
  return ((std::cos(in.phi0) * std::cos(in.phi)) * std::cos(d)) +
         ((std::sin(in.phi0) * std::sin(in.phi)) + 1.0);
}

Triple stereo(const Input& in) {
  const double d = in.lam - in.lam0;
  const double K = term_k(in, d);
  return {(std::sin(d) * ((in.R * 2.0) * std::cos(in.phi))) / K, (term_n(in, d) * (in.R * 2.0)) / K,
          in.h};
}

Triple orthographic(const Input& in) {
  const double d = in.lam - in.lam0;
  return {std::sin(d) * (std::cos(in.phi) * in.R), term_n(in, d) * in.R, in.h};
}

Triple postel(const Input& in) {
  const double d = in.lam - in.lam0;
  const double c = std::acos((std::sin(in.phi0) * std::sin(in.phi)) +
                             (std::cos(in.phi0) * (std::cos(d) * std::cos(in.phi))));
  const double A = std::sin(d) * std::cos(in.phi);
  const double B = term_n(in, d);
  double s = std::sqrt((A * A) + (B * B));
  if (s == 0.0) s = 1.0;
  return {(A / s) * (c * in.R), (B / s) * (c * in.R), in.h};
}

Triple lambert_azimuthal(const Input& in) {
  const double d = in.lam - in.lam0;
  if (in.base_lat_deg == 90.0) {
    const double s = std::sin(kQuarter - (in.phi * 0.5));
    return {std::sin(d) * ((in.R * 2.0) * s), std::cos(d) * ((in.R * -2.0) * s), in.h};
  }
  if (in.base_lat_deg == -90.0) {
    const double c = std::cos(kQuarter - (in.phi * 0.5));
    return {std::sin(d) * ((in.R * 2.0) * c), std::cos(d) * ((in.R * 2.0) * c), in.h};
  }
  const double k = std::sqrt(2.0 / term_k(in, d));
  return {std::sin(d) * ((k * in.R) * std::cos(in.phi)), term_n(in, d) * (k * in.R), in.h};
}

Triple lambert_conical(const Input& in) {
  double n, rho, rho0;
  if (in.p1_deg == in.p2_deg) {
    n = std::sin(in.phi1);
    const double F = (std::cos(in.phi0) / std::sin(in.phi0)) * in.R;
    const double t = std::tan(kQuarter - (in.phi * 0.5)) / std::tan(kQuarter - (in.phi1 * 0.5));
    rho = std::pow(t, n) * F;
    rho0 = rho;
  } else {
    const double t1 = std::tan(kQuarter - (in.phi1 * 0.5));
    n = (std::log(std::cos(in.phi1)) - std::log(std::cos(in.phi2))) /
        (std::log(t1) - std::log(std::tan(kQuarter - (in.phi2 * 0.5))));
    const double G = (std::cos(in.phi1) / n) * in.R;
    rho0 = std::pow(std::tan(kQuarter - (in.phi0 * 0.5)) / t1, n) * G;
    rho = std::pow(std::tan(kQuarter - (in.phi * 0.5)) / t1, n) * G;
  }
  const double theta = (in.lam - in.lam0) * n;
  return {std::sin(theta) * rho, (std::cos(theta) * (rho * -1.0)) - (rho0 * -1.0), in.h};
}

Triple albers(const Input& in) {
  const double d = in.lam - in.lam0;
  if (in.p1_deg != in.p2_deg) {
    const double S = std::sin(in.phi1) + std::sin(in.phi2);
    const double K = (std::cos(in.phi0) / std::sin(in.phi0)) * in.R;
    const double cos2 = std::cos(in.phi1) * std::cos(in.phi1);
    const double rho0 =
        (std::sqrt(((std::sin(in.phi1) - std::sin(in.phi0)) * S) + cos2) * (2.0 * in.R)) / S;
    const double D = K - rho0;
    const double rho =
        (std::sqrt(((std::sin(in.phi1) - std::sin(in.phi)) * S) + cos2) * (2.0 * in.R)) / S;
    const double theta = (d * S) * 0.5;
    return {std::sin(theta) * rho, (K - (std::cos(theta) * rho)) - D, 0.0};
  }
  const double s1 = std::sin(in.phi1);
  const double r = std::sqrt(((s1 * s1) + 1.0) - ((std::sin(in.phi) * 2.0) * s1));
  const double theta = d * s1;
  return {(std::sin(theta) * (r * in.R)) / s1,
          (((std::cos(in.phi1) - r) * in.R) * std::cos(theta)) / s1, in.h};
}

Triple bonne(const Input& in) {
  const double C0 = std::cos(in.phi0) / std::sin(in.phi0);
  const double rho = C0 - (in.phi - in.phi0);
  const double E = (std::cos(in.phi) * (in.lam - in.lam0)) / rho;
  return {std::sin(E) * (rho * in.R), (C0 - (std::cos(E) * rho)) * in.R, in.h};
}

Triple werner(const Input& in) {
  const double s = in.base_lat_deg >= 0.0 ? 1.0 : -1.0;
  const double rho = kHalf - (in.phi * s);
  const double E = ((in.lam - in.lam0) * std::cos(in.phi)) / rho;
  return {std::sin(E) * (rho * in.R),
          (std::cos(E) * (((s * kHalf) - in.phi) * (-in.R))) - (((s * kHalf) - in.phi0) * (-in.R)),
          in.h};
}

Triple inverse_cartesian(const Input& in) {
  const double lon = wrap(((in.x / in.R) / kPi) * 180.0);
  const double lat = clamp(((in.y / in.R) / kPi) * 180.0);
  return {clamp(lat + in.base_lat_deg), wrap(lon + in.base_lon_deg), in.z};
}

Triple inverse_mercator(const Input& in) {
  const double c = std::cos(in.phi1);
  const double lam = ((in.x / c) / in.R) + in.lam0;
  const double phi = kHalf - (std::atan(std::exp(((in.y / c) * -1.0) / in.R)) * 2.0);
  return found(lam, phi, in.z);
}

Triple inverse_lambert_cylindrical(const Input& in) {
  return found(in.lam0 + (in.x / in.R), std::asin(std::sin(in.phi0) + (in.y / in.R)), in.z);
}

Triple inverse_globe(const Input& in) {
  const double rho = std::sqrt((in.x * in.x) + (in.y * in.y));
  const double r = std::sqrt((in.z * in.z) + (rho * rho));
  const double a = std::atan(rho / in.z);
  const double b = std::asin(in.y / rho);
  return found(std::signbit(in.x) ? kPi - b : b, sgn(a) * (kHalf - std::fabs(a)), r - in.R);
}

Triple azimuthal(const Input& in, double rho, double c, double north_sign) {
  const double phi = std::asin((((std::sin(c) * in.y) * std::cos(in.phi0)) / rho) +
                               (std::cos(c) * std::sin(in.phi0)));
  double lam;
  if (std::fabs(in.base_lat_deg) != 90.0) {
    lam = std::atan((std::sin(c) * in.x) / (((std::cos(in.phi0) * rho) * std::cos(c)) -
                                            ((std::sin(in.phi0) * in.y) * std::sin(c)))) +
          in.lam0;
  } else {
    const double s = in.base_lat_deg > 0.0 ? north_sign : -north_sign;
    lam = std::atan(in.x / (s * in.y)) + in.lam0;
  }
  return found(lam, phi, in.z);
}

double rho_of(const Input& in) { return std::sqrt((in.x * in.x) + (in.y * in.y)); }

Triple inverse_orthographic(const Input& in) {
  return azimuthal(in, rho_of(in), std::asin(rho_of(in) / in.R), -1.0);
}

Triple inverse_stereo(const Input& in) {
  return azimuthal(in, rho_of(in), std::atan(rho_of(in) / (in.R * 2.0)) * 2.0, 1.0);
}

Triple inverse_lambert_azimuthal(const Input& in) {
  return azimuthal(in, rho_of(in), std::asin(rho_of(in) / (in.R * 2.0)) * 2.0, -1.0);
}

Triple inverse_albers(const Input& in) {
  const double n = (std::sin(in.phi2) + std::sin(in.phi1)) * 0.5;
  const double S = n * 2.0;
  const double C = (std::cos(in.phi1) * std::cos(in.phi1)) + (S * std::sin(in.phi1));
  const double rho0 = (std::sqrt(C - (std::sin(in.phi0) * S)) * in.R) / n;
  const double d = rho0 - in.y;
  const double lam = (std::atan(in.x / d) / n) + in.lam0;
  const double q = (std::sqrt((d * d) + (in.x * in.x)) * n) / in.R;
  return found(lam, std::asin((C - (q * q)) / S), in.z);
}

Triple inverse_lambert_conical(const Input& in) {
  const double t1 = std::tan((in.phi1 * 0.5) + kQuarter);
  const double n = std::log(std::cos(in.phi1) / std::cos(in.phi2)) /
                   std::log(std::tan((in.phi2 * 0.5) + kQuarter) / t1);
  const double F = (((std::pow(std::fabs(t1), n) * std::cos(in.phi1)) / n) * sgn(t1)) * in.R;
  const double t0 = std::tan((in.phi0 * 0.5) + kQuarter);
  const double rho0 = (F / std::pow(std::fabs(t0), n)) * sgn(t0);
  const double d = rho0 - in.y;
  const double rho = std::sqrt((d * d) + (in.x * in.x)) * sgn(n);
  const double u = F / rho;
  const double phi = (std::atan(std::pow(std::fabs(u), 1.0 / n) * sgn(u)) * 2.0) - kHalf;
  return found((std::atan(in.x / d) / n) + in.lam0, phi, in.z);
}

struct Formula {
  const char* name;
  int (Projection::*operation)();
  Triple (*spelled_out)(const Input&);
};

const Formula kForward[] = {
    {"Cartesian", &Projection::Cartesian, cartesian},
    {"Mercator", &Projection::Mercator, mercator},
    {"LambertCylindric", &Projection::LambertCylindric, lambert_cylindrical},
    {"Gnomonic", &Projection::Gnomonic, gnomonic},
    {"Stereo", &Projection::Stereo, stereo},
    {"Orthographic", &Projection::Orthographic, orthographic},
    {"Postel", &Projection::Postel, postel},
    {"LambertAzimuthal", &Projection::LambertAzimuthal, lambert_azimuthal},
    {"LambertConical", &Projection::LambertConical, lambert_conical},
    {"Albers", &Projection::Albers, albers},
    {"CassiniSoldner", &Projection::CassiniSoldner, cassini_soldner},
    {"Bonne", &Projection::Bonne, bonne},
    {"Werner", &Projection::Werner, werner},
    {"SansonFlamsteed", &Projection::SansonFlamsteed, sanson_flamsteed},
    {"Globe", &Projection::Globe, globe},
};

const Formula kInverse[] = {
    {"inverseCartesian", &Projection::inverseCartesian, inverse_cartesian},
    {"inverseMercator", &Projection::inverseMercator, inverse_mercator},
    {"inverseLambertCylindric", &Projection::inverseLambertCylindric, inverse_lambert_cylindrical},
    {"inverseStereo", &Projection::inverseStereo, inverse_stereo},
    {"inverseOrthographic", &Projection::inverseOrthographic, inverse_orthographic},
    {"inverseLambertAzimuthal", &Projection::inverseLambertAzimuthal, inverse_lambert_azimuthal},
    {"inverseLambertConical", &Projection::inverseLambertConical, inverse_lambert_conical},
    {"inverseAlbers", &Projection::inverseAlbers, inverse_albers},
    {"inverseGlobe", &Projection::inverseGlobe, inverse_globe},
};

bool same_bits(double a, double b) {
  if (std::isnan(a) && std::isnan(b)) return true;
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

TEST(FixedOrder, ForwardFormulasHoldToTheLastBit) {
  for (const Formula& formula : kForward) {
    Inputs inputs;
    for (int round = 0; round < kRounds; ++round) {
      const Input in = inputs.next(round);
      Projection p = in.object();
      const WorldPoint w = run(p, formula.operation, in.point_lat_deg, in.point_lon_deg, in.h);
      const Triple want = formula.spelled_out(in);
      ASSERT_TRUE(same_bits(w.x, want[0]) && same_bits(w.y, want[1]) && same_bits(w.z, want[2]))
          << formula.name << ", seed " << kSeed << ", round " << round << ": (" << w.x << ", "
          << w.y << ", " << w.z << ") for (" << want[0] << ", " << want[1] << ", " << want[2]
          << ")";
    }
  }
}

TEST(FixedOrder, InverseFormulasHoldToTheLastBit) {
  for (const Formula& formula : kInverse) {
    Inputs inputs;
    for (int round = 0; round < kRounds; ++round) {
      const Input in = inputs.next(round);
      Projection p = in.object();
      const LatLon& point = run_inverse(p, formula.operation, in.x, in.y, in.z);
      const Triple want = formula.spelled_out(in);
      ASSERT_TRUE(same_bits(point.fetchLat(), want[0]) && same_bits(point.fetchLon(), want[1]) &&
                  same_bits(point.fetchAltitude(), want[2]))
          << formula.name << ", seed " << kSeed << ", round " << round << ": (" << point.fetchLat()
          << ", " << point.fetchLon() << ", " << point.fetchAltitude() << ") for (" << want[0]
          << ", " << want[1] << ", " << want[2] << ")";
    }
  }
}

}  // namespace
