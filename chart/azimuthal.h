// Azimuthal projections about the base point, on the globe of radius 1, after J. P. Snyder, "Map
// Projections: A Working Manual", USGS Professional Paper 1395 (1987), chapters 20 to 22, 24 and
// 25.
//
// A point of the globe is seen from the base point as a direction in space: `east`, `north` and
// `up`, whose squares have the sum 1.  `up` is the cosine of the angular distance c from the
// base, and the length of (east, north) its sine.  All five projections stretch (east, north) by
// a factor that depends on c alone; poles need no formulas of their own.

#ifndef KZGIS_CHART_AZIMUTHAL_H
#define KZGIS_CHART_AZIMUTHAL_H

#include "chart/elementary.h"
#include "kzgis/chart.h"

KZGIS_CHART_TARGET_BEGIN

namespace kzgis::chart::KZGIS_CHART_NAMESPACE {

/// Not the antipode of the base, where east and north vanish as they do at the base.
/// @param sin2_c  the square of the sine
template <class Real>
Mask<Real> is_not_antipode(Real sin2_c, Real cos_c) {
  return either(cos_c >= 0.0, sin2_c > kEdge * kEdge);
}

/// a / (1 + cos c), which keeps its digits near the antipode.
template <class Real>
Real over_one_plus_cos(double a, Real sin2_c, Real cos_c) {
  const auto near = cos_c >= 0.0;
  return select(near, all<Real>(a), a * (1.0 - cos_c)) / select(near, 1.0 + cos_c, sin2_c);
}

// Each projection: the factor by the square of sin c and cos c, and where there is a place; and
// sine and cosine of c from the distance on the map, and where that is on the map.

struct Gnomonic {
  template <class Real>
  static Mask<Real> stretch(Real, Real cos_c, Real& factor) {
    factor = 1.0 / cos_c;
    return cos_c > kEdge;
  }
  template <class Real>
  static Mask<Real> angle(Real rho, Real& sin_c, Real& cos_c) {
    const Real secant = distance(all<Real>(1.0), rho);
    sin_c = rho / secant;
    cos_c = 1.0 / secant;
    return rho >= 0.0;
  }
};

struct Stereographic {
  template <class Real>
  static Mask<Real> stretch(Real sin2_c, Real cos_c, Real& factor) {
    factor = over_one_plus_cos(2.0, sin2_c, cos_c);
    return is_not_antipode(sin2_c, cos_c);
  }
  template <class Real>
  static Mask<Real> angle(Real rho, Real& sin_c, Real& cos_c) {
    // tan(c/2), or its inverse when that is the smaller one: no square is too large.
    const auto near = rho <= 2.0;
    const Real t = select(near, 0.5 * rho, 2.0 / rho);
    const Real secant = 1.0 + t * t;
    sin_c = 2.0 * t / secant;
    cos_c = select(near, 1.0 - t * t, t * t - 1.0) / secant;
    return rho >= 0.0;
  }
};

struct Orthographic {
  template <class Real>
  static Mask<Real> stretch(Real, Real cos_c, Real& factor) {
    factor = all<Real>(1.0);
    return cos_c >= -kEdge;
  }
  template <class Real>
  static Mask<Real> angle(Real rho, Real& sin_c, Real& cos_c) {
    const Mask<Real> on_map = fit(rho, all<Real>(1.0));
    sin_c = rho;
    cos_c = root((1.0 - rho) * (1.0 + rho));
    return on_map;
  }
};

struct Postel {
  template <class Real>
  static Mask<Real> stretch(Real sin2_c, Real cos_c, Real& factor) {
    const auto away = sin2_c > 0.0;
    const Real sin_c = root(sin2_c);
    factor = select(away, direction_of(sin_c, cos_c), all<Real>(1.0)) /
             select(away, sin_c, all<Real>(1.0));
    return is_not_antipode(sin2_c, cos_c);
  }
  template <class Real>
  static Mask<Real> angle(Real rho, Real& sin_c, Real& cos_c) {
    const Mask<Real> on_map = fit(rho, all<Real>(kPi));
    const SinesOf<Real> c = sines_of(rho);
    sin_c = c.sin;
    cos_c = c.cos;
    return on_map;
  }
};

struct LambertAzimuthal {
  template <class Real>
  static Mask<Real> stretch(Real sin2_c, Real cos_c, Real& factor) {
    factor = root(over_one_plus_cos(2.0, sin2_c, cos_c));
    return is_not_antipode(sin2_c, cos_c);
  }
  template <class Real>
  static Mask<Real> angle(Real rho, Real& sin_c, Real& cos_c) {
    const Mask<Real> on_map = fit(rho, all<Real>(2.0));
    const Real half = 0.5 * rho;  // the sine of c/2
    sin_c = 2.0 * half * root((1.0 - half) * (1.0 + half));
    cos_c = 1.0 - 2.0 * half * half;
    return on_map;
  }
};

template <class Stretch>
struct Azimuthal {
  template <class Real>
  static Mask<Real> forward(const ChartConstants& k, Real lat_deg, Real dlon_deg, Real& x,
                            Real& y) {
    const SinesOf<Real> lat = sines_of_degrees(lat_deg);
    const SinesOf<Real> dlon = sines_of_degrees(dlon_deg);
    const Real toward_base = lat.cos * dlon.cos;
    const Real east = lat.cos * dlon.sin;
    const Real north = lat.sin * k.cos_base - toward_base * k.sin_base;
    const Real up = lat.sin * k.sin_base + toward_base * k.cos_base;
    Real factor{};
    const Mask<Real> placed = Stretch::stretch(east * east + north * north, up, factor);
    x = east * factor;
    y = north * factor;
    return placed;
  }
  template <class Real>
  static Mask<Real> inverse(const ChartConstants& k, Real x, Real y, Real& lat_deg,
                            Real& dlon_deg) {
    const Real rho = distance(x, y);
    Real sin_c{};
    Real up{};
    const Mask<Real> on_map = Stretch::angle(rho, sin_c, up);
    // The base itself lies in no direction.
    const Real scale =
        select(rho > 0.0, sin_c, all<Real>(0.0)) / select(rho > 0.0, rho, all<Real>(1.0));
    const Real east = x * scale;
    const Real north = y * scale;
    // Two-argument arc tangents are right in every quadrant, and lose no digits at the poles.
    const Real toward_base = up * k.cos_base - north * k.sin_base;
    const Real toward_pole = up * k.sin_base + north * k.cos_base;
    lat_deg = direction_of(toward_pole, length(east, toward_base)) * kRadian;
    dlon_deg = direction_of(east, toward_base) * kRadian;
    return on_map;
  }
};

}  // namespace kzgis::chart::KZGIS_CHART_NAMESPACE

KZGIS_CHART_TARGET_END

#endif
