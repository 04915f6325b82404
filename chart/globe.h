// The globe itself: positions in space from its centre.  Altitudes are part of them, so that
// the formulas work with the radius and not on a globe of radius 1.

#ifndef KZGIS_CHART_GLOBE_H
#define KZGIS_CHART_GLOBE_H

#include "chart/elementary.h"

KZGIS_CHART_TARGET_BEGIN

namespace kzgis::chart::KZGIS_CHART_NAMESPACE {

struct Globe {
  /// @param r  the distance from the centre
  template <class Real>
  static Mask<Real> forward(Real lat_deg, Real lon_deg, Real r, Real& x, Real& y, Real& z) {
    const SinesOf<Real> lat = sines_of_degrees(lat_deg);
    const SinesOf<Real> lon = sines_of_degrees(lon_deg);
    x = r * lat.cos * lon.cos;
    y = r * lat.cos * lon.sin;
    z = r * lat.sin;
    return r > 0.0;
  }
  template <class Real>
  static Mask<Real> inverse(Real x, Real y, Real z, Real& lat_deg, Real& lon_deg, Real& r) {
    const Real from_axis = distance(x, y);
    r = distance(from_axis, z);
    lat_deg = direction_of(z, from_axis) * kRadian;
    lon_deg = direction_of(y, x) * kRadian;
    return r > 0.0;
  }
};

}  // namespace kzgis::chart::KZGIS_CHART_NAMESPACE

KZGIS_CHART_TARGET_END

#endif
