// Conic projections on the globe of radius 1, after J. P. Snyder, "Map Projections: A Working
// Manual", USGS Professional Paper 1395 (1987), chapters 14 and 15.
//
// Cones open towards the south: for one that opens towards the north `mirror` is -1, and
// latitudes and y change their signs before and after.  The cone constant n = `cone` is then
// above 0 and at most 1.  A parallel becomes an arc of radius rho about the cone's apex, and a
// longitude difference the angle theta = n * dlon there:
//   x = rho sin(theta),  y = rho0 - rho cos(theta) = (rho0 - rho) + 2 rho sin(theta / 2)^2.
// A cone that is almost a cylinder has n near 0 and its apex far away.  What a point tells is then
// the small difference of two large radii, which is never formed: each projection has a formula
// of its own for rho0 - rho.

#include "chart/families.h"

namespace kzgis::chart {
namespace {

double square(double a) { return a * a; }

/// y of a point, whose parallel is lower than the base's by `drop` = rho0 - rho.
double height(double drop, double rho, double theta) {
  return drop + 2.0 * rho * square(std::sin(0.5 * theta));
}

/// The longitude of a place at the angle theta around the apex, `rho` away from it.
/// @return false when it lies beside the cone
bool longitude(double cone, double theta, double rho, double& dlon_deg) {
  double angle = theta;
  if (!(rho * (std::fabs(theta) - cone * kPi) <= kEdge * std::max(1.0, rho))) return false;
  angle = std::clamp(angle, -cone * kPi, cone * kPi);
  dlon_deg = angle / cone / kDegree;
  return true;
}

/// Lambert's conformal conic.  With the isometric latitude psi = ln tan(lat/2 + 45 degrees),
///   rho = scale * exp(u),  u = n (reference - psi),
/// where `reference` is psi of the first parallel, and there `scale` the radius; `origin` is
/// exp(u) - 1 of the base.
struct LambertConic {
  static double isometric(double lat_deg) {
    const SinCos lat = sin_cos(lat_deg);
    return std::asinh(lat.sin / lat.cos);  // the poles are infinite
  }
  static bool forward(const ChartConstants& k, double lat_deg, double dlon_deg, double& x,
                      double& y) {
    const double psi = isometric(k.mirror * lat_deg);
    const double growth = std::expm1(k.cone * (k.reference - psi));
    const double rho = k.scale * (1.0 + growth);
    const double theta = k.cone * (dlon_deg * kDegree);
    x = rho * std::sin(theta);
    y = k.mirror * height(k.scale * (k.origin - growth), rho, theta);
    return true;
  }
  static bool inverse(const ChartConstants& k, double x, double y, double& lat_deg,
                      double& dlon_deg) {
    // In radii of the first parallel, from the apex: s to the side, 1 + w down.
    const double s = x / k.scale;
    const double w = k.origin - k.mirror * y / k.scale;
    const double theta = std::atan2(s, 1.0 + w);
    const double r = std::hypot(s, 1.0 + w);
    if (!longitude(k.cone, theta, r * k.scale, dlon_deg)) return false;
    // The logarithm of r: near the first parallel from its small difference from 1, which r no
    // longer holds; near the apex, where that would cancel, from r.
    const double u = r > 0.7 ? 0.5 * std::log1p(w * (2.0 + w) + s * s) : std::log(r);
    lat_deg = k.mirror * std::atan(std::sinh(k.reference - u / k.cone)) / kDegree;
    return true;
  }
};

/// Albers' equal-area conic.  With v = 1 - sin(lat), which is 0 at the pole near the apex,
///   (n rho)^2 = q = gap + 2 n v,  gap = (1 - sin(first parallel)) (1 - sin(second parallel));
/// `reference` is v and `origin` the root of q of the base.
struct Albers {
  /// Keeps its digits near the pole.
  static double from_pole(double lat_deg) {
    return 2.0 * square(sin_cos(45.0 - 0.5 * lat_deg).sin);
  }

  static bool forward(const ChartConstants& k, double lat_deg, double dlon_deg, double& x,
                      double& y) {
    const double v = from_pole(k.mirror * lat_deg);
    const double root = std::sqrt(k.gap + 2.0 * k.cone * v);
    const double rho = root / k.cone;
    const double theta = k.cone * (dlon_deg * kDegree);
    // rho0 - rho, by the difference of the squares; both roots are 0 when base and point are an
    // apex that is the pole.
    const double roots = k.origin + root;
    const double drop = roots > 0.0 ? 2.0 * (k.reference - v) / roots : 0.0;
    x = rho * std::sin(theta);
    y = k.mirror * height(drop, rho, theta);
    return true;
  }
  static bool inverse(const ChartConstants& k, double x, double given_y, double& lat_deg,
                      double& dlon_deg) {
    const double n = k.cone;
    const double y = k.mirror * given_y;
    const double down = k.origin / n - y;  // from the apex
    const double rho = std::hypot(x, down);
    if (!longitude(n, std::atan2(x, down), rho, dlon_deg)) return false;
    // q by its root keeps the digits near the apex; by the way from the base those of a cone
    // that is almost a cylinder.
    const double q = square(n * rho);
    double v = q * square(k.origin) < n * n
                   ? (q - k.gap) / (2.0 * n)
                   : k.reference + 0.5 * n * (x * x + y * y) - k.origin * y;
    if (!(v >= -kEdge && v <= 2.0 + kEdge)) return false;
    v = std::clamp(v, 0.0, 2.0);
    lat_deg = k.mirror * (90.0 - 2.0 * std::asin(std::sqrt(0.5 * v)) / kDegree);
    return true;
  }
};

/// The first parallel, the second and the base as a cone that opens towards the south has them,
/// the parallels in ascending order.
struct Cone {
  double first_deg, second_deg, base_deg;

  // A half of the sum and of the difference, in radians.
  double middle() const { return 0.5 * (first_deg + second_deg) * kDegree; }
  double apart() const { return 0.5 * (second_deg - first_deg) * kDegree; }
};

std::string prepare_lambert(const Cone& cone, const ChartParameters& parameters,
                            ChartConstants& constants) {
  if (cone.second_deg == 90.0) {
    return "parallels of the Lambert conic lie between -90 and 90, not at a pole: " +
           text_of(*parameters.first_parallel) + " and " + text_of(*parameters.second_parallel);
  }
  if (cone.base_deg == -90.0) {
    return "the base latitude " + text_of(parameters.base_lat) +
           " is the pole that has no place on this cone";
  }
  const SinCos first = sin_cos(cone.first_deg);
  const double cos_second = sin_cos(cone.second_deg).cos;
  const double sin_apart = std::sin(cone.apart());
  // ln(cos(first) / cos(second)) over the difference of the isometric latitudes, whose
  // hyperbolic sine is the fraction below; neither loses digits when the parallels are close.
  constants.cone =
      sin_apart > 0.0
          ? std::log1p(2.0 * std::sin(cone.middle()) * sin_apart / cos_second) /
                std::asinh(2.0 * std::cos(cone.middle()) * sin_apart / (first.cos * cos_second))
          : first.sin;
  constants.scale = first.cos / constants.cone;
  constants.reference = LambertConic::isometric(cone.first_deg);
  constants.origin =
      std::expm1(constants.cone * (constants.reference - LambertConic::isometric(cone.base_deg)));
  return {};
}

void prepare_albers(const Cone& cone, ChartConstants& constants) {
  constants.cone = std::sin(cone.middle()) * std::cos(cone.apart());
  constants.gap = Albers::from_pole(cone.first_deg) * Albers::from_pole(cone.second_deg);
  constants.reference = Albers::from_pole(cone.base_deg);
  constants.origin = std::sqrt(constants.gap + 2.0 * constants.cone * constants.reference);
}

}  // namespace

std::string prepare_conic(projType type, const ChartParameters& parameters,
                          ChartConstants& constants) {
  constexpr double kLeastSum_deg = 1e-9;
  const double first = *parameters.first_parallel;
  const double second = *parameters.second_parallel;
  if (std::fabs(first + second) < kLeastSum_deg) {
    return "the parallels " + text_of(first) + " and " + text_of(second) +
           " are opposite to each other: between them there is no cone but a cylinder";
  }
  constants.mirror = first + second > 0.0 ? 1.0 : -1.0;
  const Cone cone{std::min(constants.mirror * first, constants.mirror * second),
                  std::max(constants.mirror * first, constants.mirror * second),
                  constants.mirror * parameters.base_lat};
  if (type == LambertConicProj) return prepare_lambert(cone, parameters, constants);
  prepare_albers(cone, constants);
  return {};
}

std::size_t convert_conic(projType type, Way way, const ChartConstants& constants,
                          const Spans& spans) {
  return type == LambertConicProj ? convert_each<LambertConic>(way, constants, spans)
                                  : convert_each<Albers>(way, constants, spans);
}

}  // namespace kzgis::chart
