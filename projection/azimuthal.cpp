// Azimuthal projections of the sphere about the base point, after J. P. Snyder, "Map
// Projections: A Working Manual", USGS Professional Paper 1395 (1987).  Angles are
// radians unless a name says degrees.
//
// All five send a point, c radians of arc away from the base, in its true direction from the
// base; they differ in the factor k alone (Snyder, chapters 20 to 25):
//
//   x = R k cos(phi) sin(dlambda)
//   y = R k (cos(phi0) sin(phi) - sin(phi0) cos(phi) cos(dlambda))
//
//   Gnomonic          1 / cos(c)          straight lines are great circles
//   Stereo            2 / (1 + cos(c))    conformal
//   Orthographic      1                   the view from afar
//   Postel            c / sin(c)          distances from the base are true
//   LambertAzimuthal  sqrt(2 / (1 + cos(c)))  equal areas
//
// The order of the operations decides the last bits, which are promised: keep every
// expression as it stands.  No point is refused, however far from the base it lies: where k
// has no value the coordinates are infinities or NaN, except that Postel's projection has a
// rule for the base itself.

#include <algorithm>
#include <cmath>

#include "kzgis/projection.h"
#include "projection/angles.h"
#include "projection/object.h"

using kzgis::projection::kQuarterPi;

namespace {

/// The sines and cosines that all five projections are made of.
struct Aspect {
  double sin_phi0;
  double cos_phi0;
  double sin_phi;
  double cos_phi;
  double sin_dlambda;
  double cos_dlambda;

  // `dlambda` comes from two separately wrapped longitudes; sine and cosine forgive the
  // whole turns, but for the short pi.
  Aspect(double base_sin_phi0, double base_cos_phi0, double phi, double dlambda)
      : sin_phi0(base_sin_phi0),
        cos_phi0(base_cos_phi0),
        sin_phi(std::sin(phi)),
        cos_phi(std::cos(phi)),
        sin_dlambda(std::sin(dlambda)),
        cos_dlambda(std::cos(dlambda)) {}

  /// Cosine of the angular distance from the base.
  double cos_c() const { return cos_phi0 * cos_phi * cos_dlambda + sin_phi0 * sin_phi; }
  /// 1 plus that, which is not the same sum to the last bit.
  double one_plus_cos_c() const {
    return cos_phi0 * cos_phi * cos_dlambda + (sin_phi0 * sin_phi + 1.0);
  }
  /// The northward part of the direction from the base; the eastward part is
  /// sin_dlambda * cos_phi.
  double north() const { return sin_phi * cos_phi0 - sin_phi0 * cos_phi * cos_dlambda; }
};

}  // namespace

int Projection::Gnomonic() {
  type_ = GnomonicProj;
  const Settled& base = settled();
  const Aspect s(base.sin_phi0, base.cos_phi0, pointLatRad(), pointLonRad() - base.lambda0);
  const double cos_c = s.cos_c();
  const double x = s.sin_dlambda * (s.cos_phi * radius_) / cos_c;
  const double y = s.north() * radius_ / cos_c;
  return storeWorld(x, y, altitude_);
}

int Projection::Stereo() {
  type_ = StereographicProj;
  const Settled& base = settled();
  const Aspect s(base.sin_phi0, base.cos_phi0, pointLatRad(), pointLonRad() - base.lambda0);
  const double k = s.one_plus_cos_c();
  const double x = s.sin_dlambda * (radius_ * 2.0 * s.cos_phi) / k;
  const double y = s.north() * (radius_ * 2.0) / k;
  return storeWorld(x, y, altitude_);
}

int Projection::Orthographic() {
  type_ = OrthographicProj;
  const Settled& base = settled();
  const Aspect s(base.sin_phi0, base.cos_phi0, pointLatRad(), pointLonRad() - base.lambda0);
  return storeWorld(s.sin_dlambda * (s.cos_phi * radius_), s.north() * radius_, altitude_);
}

int Projection::Postel() {
  type_ = PostelProj;
  const Settled& base = settled();
  const Aspect s(base.sin_phi0, base.cos_phi0, pointLatRad(), pointLonRad() - base.lambda0);
  // At the base point the rounded cosine may exceed 1, which has no arc cosine: the base
  // must come out as (0, 0) (Postel.TheBaseItselfIsTheOriginAndNotNaN).
  const double cos_c = s.sin_phi0 * s.sin_phi + s.cos_phi0 * (s.cos_dlambda * s.cos_phi);
  const double c = std::acos(std::clamp(cos_c, -1.0, 1.0));
  const double east = s.sin_dlambda * s.cos_phi;
  const double north = s.north();
  // sin(c), from the components, so that they become a direction of length 1.
  double length = std::sqrt(east * east + north * north);
  // The base point and its opposite have no direction; any length but 0 will do.
  if (length == 0.0) length = 1.0;
  return storeWorld(east / length * (c * radius_), north / length * (c * radius_), altitude_);
}

int Projection::LambertAzimuthal() {
  type_ = LambertAzimuthalProj;
  const Settled& base = settled();
  const double phi = pointLatRad();
  const Aspect s(base.sin_phi0, base.cos_phi0, phi, pointLonRad() - base.lambda0);
  // Bases at a pole have formulas of their own, in half the distance from the north pole,
  // which place the opposite pole too.  The aspect goes by the stored degrees, not by the
  // short radians, whose cosine is 5e-10 at a pole and not 0.
  const double base_lat_deg = base_.fetchLat();
  double x = 0.0;
  double y = 0.0;
  if (std::fabs(base_lat_deg) != 90.0) {
    const double k = std::sqrt(2.0 / s.one_plus_cos_c());
    x = s.sin_dlambda * (k * radius_ * s.cos_phi);
    y = s.north() * (k * radius_);
  } else if (base_lat_deg > 0.0) {
    const double half = std::sin(kQuarterPi - phi * 0.5);
    x = s.sin_dlambda * (radius_ * 2.0 * half);
    y = s.cos_dlambda * (radius_ * -2.0 * half);
  } else {
    const double half = std::cos(kQuarterPi - phi * 0.5);
    x = s.sin_dlambda * (radius_ * 2.0 * half);
    y = s.cos_dlambda * (radius_ * 2.0 * half);
  }
  return storeWorld(x, y, altitude_);
}
