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

using kzgis::projection::kHalfPi;
using kzgis::projection::kQuarterPi;

int Projection::LambertConical() {
  renewWorld();
  type_ = LambertConicProj;
  const double phi0 = baseLatRad();
  const double phi1 = firstParRad();
  const double phi2 = secondParRad();
  if (phi1 == 0.0 || phi2 == 0.0) {
    std::cerr << "Projection::Lambert: First and Second Parallels must be non-zero. "
                 "Projection aborted."
              << std::endl;
    return 0;
  }
  const double phi = pointLatRad();
  const double dlambda = pointLonRad() - baseLonRad();
  double n = 0.0;
  double rho = 0.0;
  double rho0 = 0.0;
  if (fetchFirstPar() == fetchSecondPar()) {
    n = std::sin(phi1);
    // Snyder has the cotangent of the parallel here, this class that of the base latitude
    // (docs/classic.md; ConicTest.OneParallelUsesBaseLatitude).
    const double f = std::cos(phi0) / std::sin(phi0) * radius_;
    const double t = std::tan(kQuarterPi - phi * 0.5) / std::tan(kQuarterPi - phi1 * 0.5);
    // No latitude within its range makes t negative; the rule is there all the
    // same, here and below.
    rho = t < 0.0 ? 0.0 : std::pow(t, n) * f;
    // The point's own radius is its origin, where Snyder has the base latitude's
    // (ConicTest.OneParallelPutsTheBaseMeridianOnTheXAxis).
    rho0 = rho;
  } else {
    // Snyder's formulas with tan(pi/4 - phi/2) for 1 / tan(pi/4 + phi/2), and the constant F
    // spread over g and the quotient t.
    const double t1 = std::tan(kQuarterPi - phi1 * 0.5);
    n = (std::log(std::cos(phi1)) - std::log(std::cos(phi2))) /
        (std::log(t1) - std::log(std::tan(kQuarterPi - phi2 * 0.5)));
    const double g = std::cos(phi1) / n * radius_;
    const double t = std::tan(kQuarterPi - phi * 0.5) / t1;
    rho = t < 0.0 ? 0.0 : std::pow(t, n) * g;
    rho0 = t < 0.0 ? 0.0 : std::pow(std::tan(kQuarterPi - phi0 * 0.5) / t1, n) * g;
  }
  const double theta = dlambda * n;
  storeWorld(std::sin(theta) * rho, std::cos(theta) * (rho * -1.0) - rho0 * -1.0, altitude_);
  return 1;
}

int Projection::Albers() {
  renewWorld();
  type_ = AlbersProj;
  const double phi0 = baseLatRad();
  const double phi1 = firstParRad();
  const double phi2 = secondParRad();
  if (phi1 == 0.0 || phi2 == 0.0) {
    std::cerr << "Projection::Albers: First and Second Parallels must be non-zero. "
                 "Projection aborted."
              << std::endl;
    return 0;
  }
  const double phi = pointLatRad();
  const double dlambda = pointLonRad() - baseLonRad();
  if (fetchFirstPar() != fetchSecondPar()) {
    const double s = std::sin(phi1) + std::sin(phi2);  // twice the cone constant
    const double cos_phi1 = std::cos(phi1);
    // The offset cancels, except in the last bits and at base latitude 0, where it is
    // infinite and y is NaN (ConicTest.AlbersHasNoValueAtBaseLatitudeZero).
    const double k = std::cos(phi0) / std::sin(phi0) * radius_;
    const auto cone_radius = [&](double lat) {
      return std::sqrt((std::sin(phi1) - std::sin(lat)) * s + cos_phi1 * cos_phi1) *
             (2.0 * radius_) / s;
    };
    const double offset = k - cone_radius(phi0);
    const double rho = cone_radius(phi);
    const double theta = dlambda * s * 0.5;
    // Of all flat projections this case alone has z = 0 in the place of the altitude
    // (docs/classic.md).
    storeWorld(std::sin(theta) * rho, k - std::cos(theta) * rho - offset, 0.0);
  } else {
    const double s1 = std::sin(phi1);  // the cone constant
    const double r = std::sqrt(s1 * s1 + 1.0 - std::sin(phi) * 2.0 * s1);
    const double theta = dlambda * s1;
    const double x = std::sin(theta) * (r * radius_) / s1;
    // Snyder subtracts r * cos(theta) from the base latitude's radius; here the cosine
    // multiplies the whole difference, and the radius is that of the parallel
    // (ConicTest.AlbersWithOneParallelBendsAllOfY).
    const double y = (std::cos(phi1) - r) * radius_ * std::cos(theta) / s1;
    storeWorld(x, y, altitude_);
  }
  return 1;
}

// The base latitude is the standard parallel: its radius is the cotangent, so that the cone
// touches the globe there.  At base latitude 0 the radius is infinite; nothing tests for it.
int Projection::Bonne() {
  ensureWorld();
  type_ = BonneProj;
  const double phi0 = baseLatRad();
  const double phi = pointLatRad();
  const double cot_phi0 = std::cos(phi0) / std::sin(phi0);
  const double rho = cot_phi0 - (phi - phi0);
  const double e = std::cos(phi) * (pointLonRad() - baseLonRad()) / rho;
  storeWorld(std::sin(e) * (rho * radius_), (cot_phi0 - std::cos(e) * rho) * radius_, altitude_);
  return 1;
}

// Bonne's projection with the standard parallel at a pole, so that the radius is the distance
// from that pole.  The base latitude chooses the pole and the origin on the base meridian.
int Projection::Werner() {
  ensureWorld();
  type_ = WernerProj;
  const double phi = pointLatRad();
  const double sigma = base_.fetchLat() >= 0.0 ? 1.0 : -1.0;
  const double rho = kHalfPi - phi * sigma;
  const double e = (pointLonRad() - baseLonRad()) * std::cos(phi) / rho;
  const double x = std::sin(e) * (rho * radius_);
  // About the south pole sigma * pi/2 - phi is minus rho: x is made from the length and y
  // from the signed distance, so that the heart stands on its point.
  const double y = std::cos(e) * ((sigma * kHalfPi - phi) * -radius_) -
                   (sigma * kHalfPi - baseLatRad()) * -radius_;
  storeWorld(x, y, altitude_);
  return 1;
}
