// Cylindrical projections, Sanson-Flamsteed and Cassini-Soldner, on the globe of radius 1, after
// J. P. Snyder, "Map Projections: A Working Manual", USGS Professional Paper 1395 (1987),
// chapters 7, 10, 12, 13 and 30.
//
// Constants: `scale` is the scale of Mercator along the equator.

#include "chart/families.h"

namespace kzgis::chart {
namespace {

struct Cartesian {
  static bool forward(const ChartConstants& k, double lat_deg, double dlon_deg, double& x,
                      double& y) {
    x = dlon_deg * kDegree;
    y = (lat_deg - k.base_lat_deg) * kDegree;
    return true;
  }
  static bool inverse(const ChartConstants& k, double x, double y, double& lat_deg,
                      double& dlon_deg) {
    lat_deg = y / kDegree + k.base_lat_deg;
    dlon_deg = x / kDegree;
    return fit(lat_deg, 90.0, kEdge / kDegree) && fit(dlon_deg, 180.0, kEdge / kDegree);
  }
};

struct Mercator {
  static bool forward(const ChartConstants& k, double lat_deg, double dlon_deg, double& x,
                      double& y) {
    const SinCos lat = sin_cos(lat_deg);
    x = k.scale * (dlon_deg * kDegree);
    // ln tan(lat/2 + 45 degrees), without its loss of digits near the equator; at the poles it
    // is not finite.
    y = k.scale * std::asinh(lat.sin / lat.cos);
    return true;
  }
  static bool inverse(const ChartConstants& k, double x, double y, double& lat_deg,
                      double& dlon_deg) {
    lat_deg = std::atan(std::sinh(y / k.scale)) / kDegree;
    dlon_deg = x / k.scale / kDegree;
    return fit(dlon_deg, 180.0, kEdge / kDegree / k.scale);
  }
};

struct LambertCylindrical {
  static bool forward(const ChartConstants& k, double lat_deg, double dlon_deg, double& x,
                      double& y) {
    x = dlon_deg * kDegree;
    y = sin_cos(lat_deg).sin - k.sin_base;
    return true;
  }
  static bool inverse(const ChartConstants& k, double x, double y, double& lat_deg,
                      double& dlon_deg) {
    double sin_lat = y + k.sin_base;
    if (!fit(sin_lat, 1.0)) return false;
    lat_deg = std::asin(sin_lat) / kDegree;
    dlon_deg = x / kDegree;
    return fit(dlon_deg, 180.0, kEdge / kDegree);
  }
};

struct SansonFlamsteed {
  static bool forward(const ChartConstants& k, double lat_deg, double dlon_deg, double& x,
                      double& y) {
    x = dlon_deg * kDegree * sin_cos(lat_deg).cos;
    y = (lat_deg - k.base_lat_deg) * kDegree;
    return true;
  }
  static bool inverse(const ChartConstants& k, double x, double y, double& lat_deg,
                      double& dlon_deg) {
    lat_deg = y / kDegree + k.base_lat_deg;
    if (!fit(lat_deg, 90.0, kEdge / kDegree)) return false;
    const double cos_lat = sin_cos(lat_deg).cos;
    if (!fit(x, kPi * cos_lat)) return false;
    dlon_deg = cos_lat > 0.0 ? x / cos_lat / kDegree : 0.0;
    return true;
  }
};

/// Plate carree about the base meridian in place of the equator: y is the angle along that
/// meridian (all of it, over both poles), x the angle to the side.
struct CassiniSoldner {
  static bool forward(const ChartConstants& k, double lat_deg, double dlon_deg, double& x,
                      double& y) {
    const SinCos lat = sin_cos(lat_deg);
    const SinCos dlon = sin_cos(dlon_deg);
    const double toward_base = lat.cos * dlon.cos;
    // An arc tangent keeps the digits that Snyder's arc sine loses 90 degrees to the side.
    x = std::atan2(lat.cos * dlon.sin, std::hypot(lat.sin, toward_base));
    y = std::atan2(lat.sin, toward_base) - k.base_lat_deg * kDegree;
    return true;
  }
  static bool inverse(const ChartConstants& k, double x, double y, double& lat_deg,
                      double& dlon_deg) {
    double along = y + k.base_lat_deg * kDegree;
    if (!fit(along, kPi) || !fit(x, kHalfPi)) return false;
    const double toward_base = std::cos(along) * std::cos(x);
    lat_deg =
        std::atan2(std::sin(along) * std::cos(x), std::hypot(toward_base, std::sin(x))) / kDegree;
    dlon_deg = std::atan2(std::sin(x), toward_base) / kDegree;
    return true;
  }
};

}  // namespace

std::string prepare_cylindrical(projType type, const ChartParameters& parameters,
                                ChartConstants& constants) {
  if (type != MercatorProj) return {};
  constants.scale = sin_cos(*parameters.first_parallel).cos;
  if (constants.scale > 0.0) return {};
  return "Mercator is not true to scale at a pole: the first parallel " +
         text_of(*parameters.first_parallel) + " must lie between -90 and 90";
}

std::size_t convert_cylindrical(projType type, Way way, const ChartConstants& constants,
                                const Spans& spans) {
  switch (type) {
    case MercatorProj:
      return convert_each<Mercator>(way, constants, spans);
    case LambertCylindricalProj:
      return convert_each<LambertCylindrical>(way, constants, spans);
    case SansonFlamsteedProj:
      return convert_each<SansonFlamsteed>(way, constants, spans);
    case CassiniSoldnerProj:
      return convert_each<CassiniSoldner>(way, constants, spans);
    default:
      return convert_each<Cartesian>(way, constants, spans);
  }
}

}  // namespace kzgis::chart
