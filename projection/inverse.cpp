// The inverse projections, after J. P. Snyder, "Map Projections: A Working Manual", USGS
// Professional Paper 1395 (1987).  Angles are radians unless a name says degrees.
//
// Each operation reads the world coordinates (zeros where there are none), stores its own
// type, and stores latitude, longitude and altitude in the object's geographic point.  The
// object's own altitude stays as the last `setLLCoordinates` left it.  Nine projections have
// an inverse; the other six are forward only (docs/classic.md).
//
// The order of the operations decides the last bits, which are promised: keep every
// expression as it stands.  Where Snyder finds a longitude with a two-argument arc
// tangent, these use the one-argument form: half the circle folds onto the other half
// (InverseTest.OneArgumentArcTangentFoldsTheFarHalf).  Nothing tests its input; what no
// point maps to becomes NaN.

#include <cmath>

#include "kzgis/projection.h"
#include "projection/angles.h"
#include "projection/object.h"

using kzgis::projection::clamp;
using kzgis::projection::kHalfPi;
using kzgis::projection::kPi;
using kzgis::projection::kQuarterPi;
using kzgis::projection::wrap;

namespace {

/// 1.0 or -1.0 by the sign bit, so that -0.0 counts as negative.
double sign(double v) { return std::signbit(v) ? -1.0 : 1.0; }

}  // namespace

int Projection::inverseCartesian() {
  const WorldPoint w = world_;
  type_ = CartesianProj;
  // The base is added after the differences have been normalised, in degrees, and
  // `LatLon` normalises the sum: this is the one inverse where both steps can change a value.
  const double d_lon_deg = wrap(w.x / radius_ / kPi * 180.0 - reference_.fetchLon());
  const double d_lat_deg = clamp(w.y / radius_ / kPi * 180.0);
  point_ = LatLon(d_lat_deg + base_.fetchLat(), d_lon_deg + base_.fetchLon());
  point_.setAlt(w.z);
  return 1;
}

// The latitude comes from y alone: the base latitude does not count, as in the forward
// direction.
int Projection::inverseMercator() {
  const WorldPoint w = world_;
  type_ = MercatorProj;
  const double scale = settled().cos_phi1;
  const double lambda = w.x / scale / radius_ + settled().lambda0;
  const double phi = kHalfPi - std::atan(std::exp(w.y / scale * -1.0 / radius_)) * 2.0;
  return storePoint(phi, lambda, w.z);
}

// Beyond the top and bottom of the map the arc sine, and with it the latitude, is NaN.
int Projection::inverseLambertCylindric() {
  const WorldPoint w = world_;
  type_ = LambertCylindricalProj;
  const double lambda = settled().lambda0 + w.x / radius_;
  const double phi = std::asin(settled().sin_phi0 + w.y / radius_);
  return storePoint(phi, lambda, w.z);
}

/// What the three azimuthal inverses share.
///
/// `rho` is the distance from the centre of the map, `c` the angular distance on the
/// globe that it stands for, and `north_sign` the sign of y in the longitude when the
/// base is the north pole; a base at the south pole has the opposite one.
///
///   Stereo            c = 2 atan(rho / 2R)
///   Orthographic      c = asin(rho / R), the near side; NaN beyond the globe's outline
///   LambertAzimuthal  c = 2 asin(rho / 2R); NaN beyond the map's edge
int Projection::inverseAzimuthal(double rho, double c, double north_sign) {
  const WorldPoint w = world_;
  const Settled& base = settled();
  // The centre has no direction, and every formula for one divides 0 by 0.
  if (rho == 0.0) return storePoint(base.phi0, base.lambda0, w.z);

  const double sin_c = std::sin(c);
  const double cos_c = std::cos(c);
  const double phi = std::asin(sin_c * w.y * base.cos_phi0 / rho + cos_c * base.sin_phi0);
  const double base_lat_deg = base_.fetchLat();
  double tangent = 0.0;
  // As in the forward direction the aspect goes by the stored degrees.
  if (std::fabs(base_lat_deg) != 90.0) {
    tangent = sin_c * w.x / (base.cos_phi0 * rho * cos_c - base.sin_phi0 * w.y * sin_c);
  } else {
    tangent = w.x / ((base_lat_deg > 0.0 ? north_sign : -north_sign) * w.y);
  }
  return storePoint(phi, std::atan(tangent) + base.lambda0, w.z);
}

int Projection::inverseStereo() {
  const WorldPoint w = world_;
  type_ = StereographicProj;
  const double rho = std::sqrt(w.x * w.x + w.y * w.y);
  // The sign at the poles is the opposite of the other two: longitudes come back
  // mirrored about the base meridian (docs/classic.md;
  // InverseTest.StereoMirrorsLongitudesAtThePoles).
  return inverseAzimuthal(rho, std::atan(rho / (radius_ * 2.0)) * 2.0, 1.0);
}

int Projection::inverseOrthographic() {
  const WorldPoint w = world_;
  type_ = OrthographicProj;
  const double rho = std::sqrt(w.x * w.x + w.y * w.y);
  return inverseAzimuthal(rho, std::asin(rho / radius_), -1.0);
}

int Projection::inverseLambertAzimuthal() {
  const WorldPoint w = world_;
  type_ = LambertAzimuthalProj;
  const double rho = std::sqrt(w.x * w.x + w.y * w.y);
  return inverseAzimuthal(rho, std::asin(rho / (radius_ * 2.0)) * 2.0, -1.0);
}

// The formulas for two different parallels, with no test of them.  Signs are split off before
// the powers, as a cone on parallels south of the equator needs it; the setters accept none.
const Projection::InverseCone& Projection::inverseLambertCone() {
  if (inverse_lambert_.made) return inverse_lambert_;
  const Settled& base = settled();
  const double t1 = std::tan(base.phi1 * 0.5 + kQuarterPi);
  // Equal parallels give 0/0: the forward projection's separate case has no inverse.
  const double n = std::log(base.cos_phi1 / std::cos(base.phi2)) /
                   std::log(std::tan(base.phi2 * 0.5 + kQuarterPi) / t1);
  const double f = std::pow(std::fabs(t1), n) * base.cos_phi1 / n * sign(t1) * radius_;
  const double t0 = std::tan(base.phi0 * 0.5 + kQuarterPi);
  const double rho0 = f / std::pow(std::fabs(t0), n) * sign(t0);
  inverse_lambert_ = {.made = true, .n = n, .s = 0.0, .scale = f, .rho0 = rho0};
  return inverse_lambert_;
}

int Projection::inverseLambertConical() {
  const WorldPoint w = world_;
  type_ = LambertConicProj;
  const InverseCone& cone = inverseLambertCone();
  const double d = cone.rho0 - w.y;
  const double rho = std::sqrt(d * d + w.x * w.x) * sign(cone.n);
  const double u = cone.scale / rho;
  const double phi = std::atan(std::pow(std::fabs(u), 1.0 / cone.n) * sign(u)) * 2.0 - kHalfPi;
  const double lambda = std::atan(w.x / d) / cone.n + settled().lambda0;
  return storePoint(phi, lambda, w.z);
}

// The formulas for two different parallels, with no test of them.  Equal ones give values that
// do not undo the forward projection's separate case; two parallels of 0 give NaN.
const Projection::InverseCone& Projection::inverseAlbersCone() {
  if (inverse_albers_.made) return inverse_albers_;
  const Settled& base = settled();
  const double sin_phi1 = std::sin(base.phi1);
  const double n = (std::sin(base.phi2) + sin_phi1) * 0.5;
  const double s = n * 2.0;
  const double c = base.cos_phi1 * base.cos_phi1 + s * sin_phi1;
  const double rho0 = std::sqrt(c - base.sin_phi0 * s) * radius_ / n;
  inverse_albers_ = {.made = true, .n = n, .s = s, .scale = c, .rho0 = rho0};
  return inverse_albers_;
}

int Projection::inverseAlbers() {
  const WorldPoint w = world_;
  type_ = AlbersProj;
  const InverseCone& cone = inverseAlbersCone();
  const double d = cone.rho0 - w.y;
  const double lambda = std::atan(w.x / d) / cone.n + settled().lambda0;
  const double q = std::sqrt(d * d + w.x * w.x) * cone.n / radius_;
  const double phi = std::asin((cone.scale - q * q) / cone.s);
  return storePoint(phi, lambda, w.z);
}

// The altitude is the height above the sphere.  The longitude comes from an arc sine, which
// the sign of x carries over to the far half; on the axis rho is 0, and the longitude NaN.
int Projection::inverseGlobe() {
  const WorldPoint w = world_;
  type_ = GlobeProj;
  const double rho = std::sqrt(w.x * w.x + w.y * w.y);
  const double r = std::sqrt(w.z * w.z + rho * rho);
  // On the equator the arc tangent is the true pi/2 and does not cancel the short one:
  // the latitude comes out 3e-8 degrees south of 0.
  const double a = std::atan(rho / w.z);
  const double phi = sign(a) * (kHalfPi - std::fabs(a));
  const double b = std::asin(w.y / rho);
  const double lambda = std::signbit(w.x) ? kPi - b : b;
  return storePoint(phi, lambda, r - radius_);
}

// Forward only.  These store not even their type, and `FromTo` reports the 0 as a failure.

int Projection::inverseGnomonic() { return 0; }

int Projection::inversePostel() { return 0; }

int Projection::inverseCassiniSoldner() { return 0; }

int Projection::inverseBonne() { return 0; }

int Projection::inverseWerner() { return 0; }

int Projection::inverseSansonFlamsteed() { return 0; }
