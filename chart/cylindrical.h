// Cylindrical projections, Sanson-Flamsteed and Cassini-Soldner, on the globe of radius 1, after
// J. P. Snyder, "Map Projections: A Working Manual", USGS Professional Paper 1395 (1987),
// chapters 7, 10, 12, 13 and 30.
//
// Constants: `scale` is the scale of Mercator along the equator.

#ifndef KZGIS_CHART_CYLINDRICAL_H
#define KZGIS_CHART_CYLINDRICAL_H

#include "chart/elementary.h"
#include "kzgis/chart.h"

KZGIS_CHART_TARGET_BEGIN

namespace kzgis::chart::KZGIS_CHART_NAMESPACE {

struct Cartesian {
  template <class Real>
  static Mask<Real> forward(const ChartConstants& k, Real lat_deg, Real dlon_deg, Real& x,
                            Real& y) {
    x = dlon_deg * kDegree;
    y = (lat_deg - k.base_lat_deg) * kDegree;
    return everywhere<Real>();
  }
  template <class Real>
  static Mask<Real> inverse(const ChartConstants& k, Real x, Real y, Real& lat_deg,
                            Real& dlon_deg) {
    lat_deg = y * kRadian + k.base_lat_deg;
    dlon_deg = x * kRadian;
    return both(fit(lat_deg, all<Real>(90.0), kEdge * kRadian),
                fit(dlon_deg, all<Real>(180.0), kEdge * kRadian));
  }
};

struct Mercator {
  template <class Real>
  static Mask<Real> forward(const ChartConstants& k, Real lat_deg, Real dlon_deg, Real& x,
                            Real& y) {
    x = k.scale * (dlon_deg * kDegree);
    y = k.scale * isometric(sines_of_degrees(lat_deg));  // not finite at the poles
    return everywhere<Real>();
  }
  template <class Real>
  static Mask<Real> inverse(const ChartConstants& k, Real x, Real y, Real& lat_deg,
                            Real& dlon_deg) {
    lat_deg = latitude_of(y * (1.0 / k.scale)) * kRadian;
    dlon_deg = x * (kRadian / k.scale);
    return fit(dlon_deg, all<Real>(180.0), kEdge * kRadian / k.scale);
  }
};

struct LambertCylindrical {
  template <class Real>
  static Mask<Real> forward(const ChartConstants& k, Real lat_deg, Real dlon_deg, Real& x,
                            Real& y) {
    x = dlon_deg * kDegree;
    y = sine_to_quarter(lat_deg) - k.sin_base;
    return everywhere<Real>();
  }
  template <class Real>
  static Mask<Real> inverse(const ChartConstants& k, Real x, Real y, Real& lat_deg,
                            Real& dlon_deg) {
    Real sin_lat = y + k.sin_base;
    const Mask<Real> on_map = fit(sin_lat, all<Real>(1.0));
    lat_deg = direction_of(sin_lat, root((1.0 - sin_lat) * (1.0 + sin_lat))) * kRadian;
    dlon_deg = x * kRadian;
    return both(on_map, fit(dlon_deg, all<Real>(180.0), kEdge * kRadian));
  }
};

struct SansonFlamsteed {
  template <class Real>
  static Mask<Real> forward(const ChartConstants& k, Real lat_deg, Real dlon_deg, Real& x,
                            Real& y) {
    x = dlon_deg * kDegree * cosine_to_quarter(lat_deg);
    y = (lat_deg - k.base_lat_deg) * kDegree;
    return everywhere<Real>();
  }
  template <class Real>
  static Mask<Real> inverse(const ChartConstants& k, Real x, Real y, Real& lat_deg,
                            Real& dlon_deg) {
    lat_deg = y * kRadian + k.base_lat_deg;
    const Mask<Real> on_globe = fit(lat_deg, all<Real>(90.0), kEdge * kRadian);
    const Real cos_lat = cosine_to_quarter(lat_deg);
    const Mask<Real> on_map = fit(x, kPi * cos_lat);
    dlon_deg = x / select(cos_lat > 0.0, cos_lat, all<Real>(1.0)) * kRadian;
    return both(on_globe, on_map);
  }
};

/// Plate carree about the base meridian in place of the equator: y is the angle along that
/// meridian (all of it, over both poles), x the angle to the side.
struct CassiniSoldner {
  template <class Real>
  static Mask<Real> forward(const ChartConstants& k, Real lat_deg, Real dlon_deg, Real& x,
                            Real& y) {
    const SinesOf<Real> lat = sines_of_degrees(lat_deg);
    const SinesOf<Real> dlon = sines_of_degrees(dlon_deg);
    const Real toward_base = lat.cos * dlon.cos;
    // An arc tangent keeps the digits that Snyder's arc sine loses 90 degrees to the side.
    x = direction_of(lat.cos * dlon.sin, length(lat.sin, toward_base));
    y = direction_of(lat.sin, toward_base) - k.base_lat_deg * kDegree;
    return everywhere<Real>();
  }
  template <class Real>
  static Mask<Real> inverse(const ChartConstants& k, Real x, Real y, Real& lat_deg,
                            Real& dlon_deg) {
    Real along = y + k.base_lat_deg * kDegree;
    const Mask<Real> on_map = both(fit(along, all<Real>(kPi)), fit(x, all<Real>(kHalfPi)));
    const SinesOf<Real> turn = sines_of(along);
    const SinesOf<Real> side = sines_of(x);
    const Real toward_base = turn.cos * side.cos;
    lat_deg = direction_of(turn.sin * side.cos, length(toward_base, side.sin)) * kRadian;
    dlon_deg = direction_of(side.sin, toward_base) * kRadian;
    return on_map;
  }
};

}  // namespace kzgis::chart::KZGIS_CHART_NAMESPACE

KZGIS_CHART_TARGET_END

#endif
