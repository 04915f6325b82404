// Conic and pseudo-conic projections of the sphere, after J. P. Snyder, "Map
// Projections: A Working Manual", USGS Professional Paper 1395 (1987).  Angles are
// radians unless a name says degrees.
//
// Parallels become arcs of circles about one centre, each with a radius rho, and a point lies
// on its arc at the angle theta (E for the pseudo-conics) from the base meridian:
//
//   x = rho sin(theta)      y = rho0 - rho cos(theta)
//
// A true conic has theta = n dlambda with one cone constant n, so that meridians are straight
// (Snyder, chapters 14 and 15).  In the pseudo-conics theta makes distances along each
// parallel true: E = dlambda cos(phi) / rho (chapter 19).
//
// The true conics refuse parallels of 0, and no other projection refuses to work.  They switch
// the object to their type and drop the former world coordinates before they look at the
// parallels.
//
// The order of the operations decides the last bits, which are promised: keep every
// expression as it stands.  Differences of longitudes are not brought into +-pi.

#include <cmath>
#include <iostream>

#include "kzgis/projection.h"
#include "projection/angles.h"
#include "projection/object.h"

using kzgis::projection::kHalfPi;
using kzgis::projection::kQuarterPi;

const Projection::LambertCone& Projection::lambertCone() {
  if (lambert_.made) return lambert_;
  const Settled& base = settled();
  const double t1 = std::tan(kQuarterPi - base.phi1 * 0.5);
  lambert_.t1 = t1;
  if (fetchFirstPar() == fetchSecondPar()) {
    lambert_.n = std::sin(base.phi1);
    // Snyder has the cotangent of the parallel here, this class that of the base latitude
    // (docs/classic.md; ConicTest.OneParallelUsesBaseLatitude).
    lambert_.scale = base.cos_phi0 / base.sin_phi0 * radius_;
  } else {
    // Snyder's formulas with tan(pi/4 - phi/2) for 1 / tan(pi/4 + phi/2), and the constant F
    // spread over the scale and the quotients by t1.
    const double n = (std::log(base.cos_phi1) - std::log(std::cos(base.phi2))) /
                     (std::log(t1) - std::log(std::tan(kQuarterPi - base.phi2 * 0.5)));
    lambert_.n = n;
    lambert_.scale = base.cos_phi1 / n * radius_;
    lambert_.rho0 = std::pow(std::tan(kQuarterPi - base.phi0 * 0.5) / t1, n) * lambert_.scale;
  }
  lambert_.made = true;
  return lambert_;
}

int Projection::LambertConical() {
  renewWorld();
  type_ = LambertConicProj;
  const Settled& base = settled();
  if (base.phi1 == 0.0 || base.phi2 == 0.0) {
    std::cerr << "Projection::Lambert: First and Second Parallels must be non-zero. "
                 "Projection aborted."
              << std::endl;
    return 0;
  }
  const LambertCone& cone = lambertCone();
  const double t = std::tan(kQuarterPi - pointLatRad() * 0.5) / cone.t1;
  double rho = 0.0;
  double rho0 = 0.0;
  // No latitude within its range makes t negative; the rule is there all the same.
  if (!(t < 0.0)) {
    rho = std::pow(t, cone.n) * cone.scale;
    // With one parallel the point's own radius is its origin, where Snyder has the base
    // latitude's (ConicTest.OneParallelPutsTheBaseMeridianOnTheXAxis).
    rho0 = fetchFirstPar() == fetchSecondPar() ? rho : cone.rho0;
  }
  const double theta = (pointLonRad() - base.lambda0) * cone.n;
  return storeWorld(std::sin(theta) * rho, std::cos(theta) * (rho * -1.0) - rho0 * -1.0, altitude_);
}

namespace {

/// The radius of a parallel in Albers' projection, from the sines of the latitude and of the first
/// parallel; `s` is twice the cone constant.
double albers_radius(double sin_phi, double sin_phi1, double cos_phi1, double s, double radius) {
  return std::sqrt((sin_phi1 - sin_phi) * s + cos_phi1 * cos_phi1) * (2.0 * radius) / s;
}

}  // namespace

const Projection::AlbersCone& Projection::albersCone() {
  if (albers_.made) return albers_;
  const Settled& base = settled();
  albers_.sin_phi1 = std::sin(base.phi1);
  albers_.s = albers_.sin_phi1 + std::sin(base.phi2);
  // The offset cancels, except in the last bits and at base latitude 0, where it is
  // infinite and y is NaN (ConicTest.AlbersHasNoValueAtBaseLatitudeZero).
  albers_.k = base.cos_phi0 / base.sin_phi0 * radius_;
  albers_.offset =
      albers_.k - albers_radius(base.sin_phi0, albers_.sin_phi1, base.cos_phi1, albers_.s, radius_);
  albers_.made = true;
  return albers_;
}

int Projection::Albers() {
  renewWorld();
  type_ = AlbersProj;
  const Settled& base = settled();
  if (base.phi1 == 0.0 || base.phi2 == 0.0) {
    std::cerr << "Projection::Albers: First and Second Parallels must be non-zero. "
                 "Projection aborted."
              << std::endl;
    return 0;
  }
  const AlbersCone& cone = albersCone();
  const double sin_phi = std::sin(pointLatRad());
  const double dlambda = pointLonRad() - base.lambda0;
  if (fetchFirstPar() != fetchSecondPar()) {
    const double rho = albers_radius(sin_phi, cone.sin_phi1, base.cos_phi1, cone.s, radius_);
    const double theta = dlambda * cone.s * 0.5;
    // Of all flat projections this case alone has z = 0 in the place of the altitude
    // (docs/classic.md).
    return storeWorld(std::sin(theta) * rho, cone.k - std::cos(theta) * rho - cone.offset, 0.0);
  }
  const double s1 = cone.sin_phi1;  // the cone constant
  const double r = std::sqrt(s1 * s1 + 1.0 - sin_phi * 2.0 * s1);
  const double theta = dlambda * s1;
  const double x = std::sin(theta) * (r * radius_) / s1;
  // Snyder subtracts r * cos(theta) from the base latitude's radius; here the cosine
  // multiplies the whole difference, and the radius is that of the parallel
  // (ConicTest.AlbersWithOneParallelBendsAllOfY).
  const double y = (base.cos_phi1 - r) * radius_ * std::cos(theta) / s1;
  return storeWorld(x, y, altitude_);
}

// The base latitude is the standard parallel: its radius is the cotangent, so that the cone
// touches the globe there.  At base latitude 0 the radius is infinite; nothing tests for it.
int Projection::Bonne() {
  type_ = BonneProj;
  const Settled& base = settled();
  const double phi = pointLatRad();
  const double cot_phi0 = base.cos_phi0 / base.sin_phi0;
  const double rho = cot_phi0 - (phi - base.phi0);
  const double e = std::cos(phi) * (pointLonRad() - base.lambda0) / rho;
  return storeWorld(std::sin(e) * (rho * radius_), (cot_phi0 - std::cos(e) * rho) * radius_,
                    altitude_);
}

// Bonne's projection with the standard parallel at a pole, so that the radius is the distance
// from that pole.  The base latitude chooses the pole and the origin on the base meridian.
int Projection::Werner() {
  type_ = WernerProj;
  const Settled& base = settled();
  const double phi = pointLatRad();
  const double sigma = base_.fetchLat() >= 0.0 ? 1.0 : -1.0;
  const double rho = kHalfPi - phi * sigma;
  const double e = (pointLonRad() - base.lambda0) * std::cos(phi) / rho;
  const double x = std::sin(e) * (rho * radius_);
  // About the south pole sigma * pi/2 - phi is minus rho: x is made from the length and y
  // from the signed distance, so that the heart stands on its point.
  const double y =
      std::cos(e) * ((sigma * kHalfPi - phi) * -radius_) - (sigma * kHalfPi - base.phi0) * -radius_;
  return storeWorld(x, y, altitude_);
}
