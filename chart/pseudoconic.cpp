// Bonne's and Werner's projections on the globe of radius 1, after J. P. Snyder, "Map
// Projections: A Working Manual", USGS Professional Paper 1395 (1987), chapter 19.
//
// A parallel becomes an arc about the apex on the base meridian, and keeps its length:
//   rho = gap + (90 degrees - lat),  E = dlon cos(lat) / rho,
//   x = rho sin(E),  y = rho0 - rho cos(E) = (lat - base) + 2 rho sin(E / 2)^2.
// `gap` is how far the apex lies beyond the pole, and `origin` = rho0 is rho of the base.  Bonne's
// arcs are true along the base latitude, whose cotangent is its rho; Werner's map is Bonne's for
// the pole, moved so that the base is the origin: gap = 0.  A base south of the equator is
// mirrored to the north.  Close to the equator the apex is far away, and again rho0 - rho is
// not formed.

#include "chart/families.h"

namespace kzgis::chart {
namespace {

struct PseudoConic {
  static bool forward(const ChartConstants& k, double lat_deg, double dlon_deg, double& x,
                      double& y) {
    const double lat = k.mirror * lat_deg;
    const double rho = k.gap + (90.0 - lat) * kDegree;
    const double arc = dlon_deg * kDegree * sin_cos(lat).cos;
    const double angle = rho > 0.0 ? arc / rho : 0.0;  // the apex is a point, the pole
    const double sin_half = std::sin(0.5 * angle);
    x = rho * std::sin(angle);
    y = k.mirror * ((lat - k.mirror * k.base_lat_deg) * kDegree + 2.0 * rho * sin_half * sin_half);
    return true;
  }
  static bool inverse(const ChartConstants& k, double x, double given_y, double& lat_deg,
                      double& dlon_deg) {
    const double y = k.mirror * given_y;
    const double rho = std::hypot(x, k.origin - y);
    // rho0 - rho, by the difference of the squares; both are 0 when base and point are the apex.
    const double radii = k.origin + rho;
    const double north = radii > 0.0 ? (2.0 * k.origin * y - x * x - y * y) / radii : 0.0;
    double lat = k.mirror * k.base_lat_deg + north / kDegree;
    if (!fit(lat, 90.0, kEdge / kDegree)) return false;
    const double cos_lat = sin_cos(lat).cos;
    double arc = rho * std::atan2(x, k.origin - y);
    if (!fit(arc, kPi * cos_lat)) return false;
    lat_deg = k.mirror * lat;
    dlon_deg = cos_lat > 0.0 ? arc / cos_lat / kDegree : 0.0;
    return true;
  }
};

}  // namespace

std::string prepare_pseudoconic(projType type, const ChartParameters& parameters,
                                ChartConstants& constants) {
  constexpr double kLeastBase_deg = 1e-9;
  const double base = std::fabs(parameters.base_lat);
  constants.mirror = parameters.base_lat >= 0.0 ? 1.0 : -1.0;
  const double from_pole = (90.0 - base) * kDegree;
  if (type == WernerProj) {
    constants.origin = from_pole;
    return {};
  }
  if (base < kLeastBase_deg) {
    return "Bonne needs a base latitude other than " + text_of(parameters.base_lat) +
           ": on the equator it is Sanson-Flamsteed";
  }
  const SinCos lat = sin_cos(base);
  constants.origin = lat.cos / lat.sin;
  constants.gap = std::max(0.0, constants.origin - from_pole);
  return {};
}

std::size_t convert_pseudoconic(Way way, const ChartConstants& constants, const Spans& spans) {
  return convert_each<PseudoConic>(way, constants, spans);
}

}  // namespace kzgis::chart
