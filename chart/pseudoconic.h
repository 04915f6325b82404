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

#ifndef KZGIS_CHART_PSEUDOCONIC_H
#define KZGIS_CHART_PSEUDOCONIC_H

#include "chart/elementary.h"
#include "kzgis/chart.h"

KZGIS_CHART_TARGET_BEGIN

namespace kzgis::chart::KZGIS_CHART_NAMESPACE {

struct PseudoConic {
  template <class Real>
  static Mask<Real> forward(const ChartConstants& k, Real lat_deg, Real dlon_deg, Real& x,
                            Real& y) {
    const Real lat = k.mirror * lat_deg;
    const Real rho = k.gap + (90.0 - lat) * kDegree;
    const Real arc = dlon_deg * kDegree * cosine_to_quarter(lat);
    // The apex is a point, the pole: cos(lat) is 0 there.
    const SinesOf<Real> half = sines_of(0.5 * arc / select(rho > 0.0, rho, all<Real>(1.0)));
    const Real side = 2.0 * rho * half.sin;
    x = side * half.cos;
    y = k.mirror * ((lat - k.mirror * k.base_lat_deg) * kDegree + side * half.sin);
    return everywhere<Real>();
  }
  template <class Real>
  static Mask<Real> inverse(const ChartConstants& k, Real x, Real given_y, Real& lat_deg,
                            Real& dlon_deg) {
    const Real y = k.mirror * given_y;
    const Real down = k.origin - y;
    const Real rho = distance(x, down);
    // rho0 - rho, by the difference of the squares; both are 0 when base and point are the apex.
    const Real radii = k.origin + rho;
    const Real north =
        (2.0 * k.origin * y - x * x - y * y) / select(radii > 0.0, radii, all<Real>(1.0));
    Real lat = k.mirror * k.base_lat_deg + north * kRadian;
    const Mask<Real> on_globe = fit(lat, all<Real>(90.0), kEdge * kRadian);
    const Real cos_lat = cosine_to_quarter(lat);
    Real arc = rho * direction_of(x, down);
    const Mask<Real> on_map = fit(arc, kPi * cos_lat);
    lat_deg = k.mirror * lat;
    dlon_deg = arc / select(cos_lat > 0.0, cos_lat, all<Real>(1.0)) * kRadian;
    return both(on_globe, on_map);
  }
};

}  // namespace kzgis::chart::KZGIS_CHART_NAMESPACE

KZGIS_CHART_TARGET_END

#endif
