// The projections as a textbook's formulas in a loop: what arrays of points cost at least, with
// the host's sine and logarithm and nothing around them.
//
// From J. P. Snyder, "Map Projections: A Working Manual", USGS Professional Paper 1395 (1987), for
// the sphere.  Nothing is checked, no longitude is brought round, no digits are kept near a pole or
// an antipode: good where the sample points are, and there only.

#ifndef KZGIS_BENCH_BARE_FORMULAS_H
#define KZGIS_BENCH_BARE_FORMULAS_H

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace bare {

inline constexpr double kPi = std::numbers::pi;
inline constexpr double kDegree = kPi / 180.0;
inline constexpr double kRadius = 6378000.0;

/// The base is 45 N, 0 E, the parallels 30 and 60.
struct Constants {
  double lat0 = 45.0 * kDegree, sin0 = std::sin(lat0), cos0 = std::cos(lat0);
  double n_lambert = std::log(std::cos(30 * kDegree) / std::cos(60 * kDegree)) /
                     std::log(std::tan(75 * kDegree) / std::tan(60 * kDegree));
  double f_lambert =
      std::cos(30 * kDegree) * std::pow(std::tan(60 * kDegree), n_lambert) / n_lambert;
  double rho0_lambert = f_lambert / std::pow(std::tan(67.5 * kDegree), n_lambert);
  double n_albers = 0.5 * (std::sin(30 * kDegree) + std::sin(60 * kDegree));
  double c_albers = std::cos(30 * kDegree) * std::cos(30 * kDegree) + n_albers;
  double rho0_albers = std::sqrt(c_albers - 2 * n_albers * sin0) / n_albers;
};

/// Two loops over arrays, in degrees on one side and world coordinates on the other.
using Loop = void (*)(const Constants&, const std::vector<double>&, const std::vector<double>&,
                      std::vector<double>&, std::vector<double>&);

template <class Formula>
void forward(const Constants& k, const std::vector<double>& lat, const std::vector<double>& lon,
             std::vector<double>& x, std::vector<double>& y) {
  const Constants own = k;
  for (std::size_t i = 0; i < lat.size(); ++i) {
    double a = 0.0;
    double b = 0.0;
    Formula::forward(own, lat[i] * kDegree, lon[i] * kDegree, a, b);
    x[i] = kRadius * a;
    y[i] = kRadius * b;
  }
}

template <class Formula>
void inverse(const Constants& k, const std::vector<double>& x, const std::vector<double>& y,
             std::vector<double>& lat, std::vector<double>& lon) {
  const Constants own = k;
  for (std::size_t i = 0; i < x.size(); ++i) {
    double a = 0.0;
    double b = 0.0;
    Formula::inverse(own, x[i] / kRadius, y[i] / kRadius, a, b);
    lat[i] = a / kDegree;
    lon[i] = b / kDegree;
  }
}

struct Cartesian {
  static void forward(const Constants& k, double lat, double lon, double& x, double& y) {
    x = lon;
    y = lat - k.lat0;
  }
  static void inverse(const Constants& k, double x, double y, double& lat, double& lon) {
    lat = y + k.lat0;
    lon = x;
  }
};

struct Mercator {
  static void forward(const Constants&, double lat, double lon, double& x, double& y) {
    x = lon;
    y = std::log(std::tan(0.25 * kPi + 0.5 * lat));
  }
  static void inverse(const Constants&, double x, double y, double& lat, double& lon) {
    lat = 0.5 * kPi - 2.0 * std::atan(std::exp(-y));
    lon = x;
  }
};

struct LambertCylindrical {
  static void forward(const Constants& k, double lat, double lon, double& x, double& y) {
    x = lon;
    y = std::sin(lat) - k.sin0;
  }
  static void inverse(const Constants& k, double x, double y, double& lat, double& lon) {
    lat = std::asin(y + k.sin0);
    lon = x;
  }
};

/// The azimuthal ones differ in the factor forward, and in the angle from the base backward.
template <class Angle>
struct Azimuthal {
  static void forward(const Constants& k, double lat, double lon, double& x, double& y) {
    const double s = std::sin(lat);
    const double c = std::cos(lat);
    const double towards = c * std::cos(lon);
    const double factor = Angle::factor(k.sin0 * s + k.cos0 * towards);
    x = factor * c * std::sin(lon);
    y = factor * (k.cos0 * s - k.sin0 * towards);
  }
  static void inverse(const Constants& k, double x, double y, double& lat, double& lon) {
    const double rho = std::sqrt(x * x + y * y);
    double s = 0.0;
    double c = 0.0;
    Angle::sine_cosine(rho, s, c);
    lat = std::asin(c * k.sin0 + y * s * k.cos0 / rho);
    lon = std::atan2(x * s, rho * k.cos0 * c - y * k.sin0 * s);
  }
};
struct Gnomonic {
  static double factor(double c) { return 1.0 / c; }
  static void sine_cosine(double rho, double& s, double& c) {
    c = 1.0 / std::sqrt(1.0 + rho * rho);
    s = rho * c;
  }
};
struct Stereographic {
  static double factor(double c) { return 2.0 / (1.0 + c); }
  static void sine_cosine(double rho, double& s, double& c) {
    const double f = 4.0 / (4.0 + rho * rho);
    s = rho * f;
    c = 2.0 * f - 1.0;
  }
};
struct Orthographic {
  static double factor(double) { return 1.0; }
  static void sine_cosine(double rho, double& s, double& c) {
    s = rho;
    c = std::sqrt(1.0 - rho * rho);
  }
};
struct Postel {
  static double factor(double c) {
    const double angle = std::acos(c);
    return angle / std::sin(angle);
  }
  static void sine_cosine(double rho, double& s, double& c) {
    s = std::sin(rho);
    c = std::cos(rho);
  }
};
struct LambertAzimuthal {
  static double factor(double c) { return std::sqrt(2.0 / (1.0 + c)); }
  static void sine_cosine(double rho, double& s, double& c) {
    c = 1.0 - 0.5 * rho * rho;
    s = rho * std::sqrt(1.0 - 0.25 * rho * rho);
  }
};

struct LambertConic {
  static void forward(const Constants& k, double lat, double lon, double& x, double& y) {
    const double rho = k.f_lambert / std::pow(std::tan(0.25 * kPi + 0.5 * lat), k.n_lambert);
    x = rho * std::sin(k.n_lambert * lon);
    y = k.rho0_lambert - rho * std::cos(k.n_lambert * lon);
  }
  static void inverse(const Constants& k, double x, double y, double& lat, double& lon) {
    const double down = k.rho0_lambert - y;
    const double rho = std::sqrt(x * x + down * down);
    lat = 2.0 * std::atan(std::pow(k.f_lambert / rho, 1.0 / k.n_lambert)) - 0.5 * kPi;
    lon = std::atan2(x, down) / k.n_lambert;
  }
};

struct Albers {
  static void forward(const Constants& k, double lat, double lon, double& x, double& y) {
    const double rho = std::sqrt(k.c_albers - 2.0 * k.n_albers * std::sin(lat)) / k.n_albers;
    x = rho * std::sin(k.n_albers * lon);
    y = k.rho0_albers - rho * std::cos(k.n_albers * lon);
  }
  static void inverse(const Constants& k, double x, double y, double& lat, double& lon) {
    const double down = k.rho0_albers - y;
    const double q = (x * x + down * down) * k.n_albers * k.n_albers;
    lat = std::asin((k.c_albers - q) / (2.0 * k.n_albers));
    lon = std::atan2(x, down) / k.n_albers;
  }
};

struct CassiniSoldner {
  static void forward(const Constants& k, double lat, double lon, double& x, double& y) {
    x = std::asin(std::cos(lat) * std::sin(lon));
    y = std::atan2(std::tan(lat), std::cos(lon)) - k.lat0;
  }
  static void inverse(const Constants& k, double x, double y, double& lat, double& lon) {
    const double d = y + k.lat0;
    lat = std::asin(std::sin(d) * std::cos(x));
    lon = std::atan2(std::tan(x), std::cos(d));
  }
};

/// Werner's is Bonne's with its apex on the pole: cot 90 degrees + 90 degrees = 90 degrees.
template <bool werner>
struct PseudoConic {
  static double apex(const Constants& k) { return werner ? 0.5 * kPi : k.cos0 / k.sin0 + k.lat0; }
  static void forward(const Constants& k, double lat, double lon, double& x, double& y) {
    const double rho = apex(k) - lat;
    const double e = lon * std::cos(lat) / rho;
    x = rho * std::sin(e);
    y = apex(k) - k.lat0 - rho * std::cos(e);
  }
  static void inverse(const Constants& k, double x, double y, double& lat, double& lon) {
    const double down = apex(k) - k.lat0 - y;
    const double rho = std::sqrt(x * x + down * down);
    lat = apex(k) - rho;
    lon = rho / std::cos(lat) * std::atan2(x, down);
  }
};

struct SansonFlamsteed {
  static void forward(const Constants& k, double lat, double lon, double& x, double& y) {
    x = lon * std::cos(lat);
    y = lat - k.lat0;
  }
  static void inverse(const Constants& k, double x, double y, double& lat, double& lon) {
    lat = y + k.lat0;
    lon = x / std::cos(lat);
  }
};

}  // namespace bare

#endif
