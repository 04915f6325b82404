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

#ifndef KZGIS_CHART_CONIC_H
#define KZGIS_CHART_CONIC_H

#include "chart/elementary.h"
#include "kzgis/chart.h"

KZGIS_CHART_TARGET_BEGIN

namespace kzgis::chart::KZGIS_CHART_NAMESPACE {

/// Where a point lies whose parallel is lower than the base's by `drop` = rho0 - rho.
template <class Real>
void place_on_cone(const ChartConstants& k, Real drop, Real rho, Real dlon_deg, Real& x, Real& y) {
  const SinesOf<Real> half = sines_of(0.5 * k.cone * (dlon_deg * kDegree));
  const Real side = 2.0 * rho * half.sin;
  x = side * half.cos;
  y = k.mirror * (drop + side * half.sin);
}

/// The longitude of a place at the angle theta around the apex, `rho` away from it.
/// @return where it does not lie beside the cone
template <class Real>
Mask<Real> longitude_on_cone(double cone, Real theta, Real rho, Real& dlon_deg) {
  const Real edge = all<Real>(cone * kPi);
  const Mask<Real> on_cone =
      rho * (magnitude(theta) - edge) <= kEdge * greatest(all<Real>(1.0), rho);
  dlon_deg = greatest(least(theta, edge), -edge) * (kRadian / cone);
  return on_cone;
}

/// Lambert's conformal conic.  With the isometric latitude psi = ln tan(lat/2 + 45 degrees),
///   rho = scale * exp(u),  u = n (reference - psi),
/// where `reference` is psi of the first parallel, and there `scale` the radius; `origin` is
/// exp(u) - 1 of the base.
struct LambertConic {
  template <class Real>
  static Mask<Real> forward(const ChartConstants& k, Real lat_deg, Real dlon_deg, Real& x,
                            Real& y) {
    const Real psi = isometric(sines_of_degrees(k.mirror * lat_deg));
    const Real grown = growth(k.cone * (k.reference - psi));
    place_on_cone(k, k.scale * (k.origin - grown), k.scale * (1.0 + grown), dlon_deg, x, y);
    return everywhere<Real>();
  }
  template <class Real>
  static Mask<Real> inverse(const ChartConstants& k, Real x, Real y, Real& lat_deg,
                            Real& dlon_deg) {
    // In radii of the first parallel, from the apex: s to the side, 1 + w down.
    const double inverse_scale = 1.0 / k.scale;
    const Real s = x * inverse_scale;
    const Real w = k.origin - k.mirror * y * inverse_scale;
    const Real r = distance(s, 1.0 + w);
    const Mask<Real> on_cone =
        longitude_on_cone(k.cone, direction_of(s, 1.0 + w), r * k.scale, dlon_deg);
    // The logarithm of r: near the first parallel from the small difference of its square from 1,
    // which r no longer holds; near the apex, where that would cancel, from r.
    const auto near = r > 0.7;
    const Real from_one = w * (2.0 + w) + s * s;
    const Real u = select(near, all<Real>(0.5), all<Real>(1.0)) *
                   logarithm_of_ratio(select(near, 1.0 + from_one, r), all<Real>(1.0),
                                      select(near, from_one, r - 1.0));
    // The apex is the pole.
    const Real psi = select(r > 0.0, k.reference - u * (1.0 / k.cone), all<Real>(HUGE_VAL));
    lat_deg = k.mirror * (latitude_of(psi) * kRadian);
    return on_cone;
  }
};

/// Albers' equal-area conic.  With v = 1 - sin(lat), which is 0 at the pole near the apex,
///   (n rho)^2 = q = gap + 2 n v,  gap = (1 - sin(first parallel)) (1 - sin(second parallel));
/// `reference` is v and `origin` the root of q of the base.
struct Albers {
  /// Keeps its digits near the pole.
  template <class Real>
  static Real from_pole(Real lat_deg) {
    const Real half = sine_to_quarter(45.0 - 0.5 * lat_deg);
    return 2.0 * half * half;
  }

  template <class Real>
  static Mask<Real> forward(const ChartConstants& k, Real lat_deg, Real dlon_deg, Real& x,
                            Real& y) {
    const Real v = from_pole(k.mirror * lat_deg);
    const Real q_root = root(k.gap + 2.0 * k.cone * v);
    // rho0 - rho, by the difference of the squares; both roots are 0 when base and point are an
    // apex that is the pole.
    const Real roots = k.origin + q_root;
    const Real drop = 2.0 * (k.reference - v) / select(roots > 0.0, roots, all<Real>(1.0));
    place_on_cone(k, drop, q_root * (1.0 / k.cone), dlon_deg, x, y);
    return everywhere<Real>();
  }
  template <class Real>
  static Mask<Real> inverse(const ChartConstants& k, Real x, Real given_y, Real& lat_deg,
                            Real& dlon_deg) {
    const double n = k.cone;
    const Real y = k.mirror * given_y;
    const Real down = k.origin / n - y;  // from the apex
    const Real rho = distance(x, down);
    const Mask<Real> on_cone = longitude_on_cone(n, direction_of(x, down), rho, dlon_deg);
    // q by its root keeps the digits near the apex; by the way from the base those of a cone
    // that is almost a cylinder.
    const Real q = (n * rho) * (n * rho);
    Real v = select(q * (k.origin * k.origin) < n * n, (q - k.gap) * (0.5 / n),
                    k.reference + 0.5 * n * (x * x + y * y) - k.origin * y);
    const Mask<Real> on_globe = both(v >= -kEdge, v <= 2.0 + kEdge);
    v = greatest(least(v, all<Real>(2.0)), all<Real>(0.0));
    lat_deg = k.mirror * (90.0 - 2.0 * direction_of(root(v), root(2.0 - v)) * kRadian);
    return both(on_cone, on_globe);
  }
};

}  // namespace kzgis::chart::KZGIS_CHART_NAMESPACE

KZGIS_CHART_TARGET_END

#endif
