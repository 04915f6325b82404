// Cylindrical and pseudo-cylindrical projections of the sphere, and the globe itself,
// after J. P. Snyder, "Map Projections: A Working Manual", USGS Professional Paper 1395
// (1987).  Angles are radians unless a name says degrees.
//
// With R the radius, (phi0, lambda0) the base point and dlambda = lambda - lambda0, all on the
// sphere; the number of Snyder's chapter in brackets:
//
//   Cartesian            [12]  x = R dlambda                y = R (phi - phi0)
//   Mercator              [7]  x = R dlambda cos(phi1)      y = R ln tan(pi/4 + phi/2) cos(phi1)
//   LambertCylindric     [10]  x = R dlambda                y = R (sin(phi) - sin(phi0))
//   SansonFlamsteed      [30]  x = R dlambda cos(phi)       y = R (phi - phi0)
//   CassiniSoldner       [13]  a series, see there
//   Globe                      the point in space, from the centre of the sphere
//
// The order of the operations decides the last bits, which are promised: keep every
// expression as it stands.  Differences of longitudes are not brought into +-pi
// (CylindricalTest.LongitudeDifferencesAreNotBroughtIntoHalfATurn).

#include <cmath>

#include "kzgis/projection.h"
#include "projection/angles.h"
#include "projection/object.h"

using kzgis::projection::clamp;
using kzgis::projection::kPi;
using kzgis::projection::kQuarterPi;
using kzgis::projection::wrap;

int Projection::Cartesian() {
  type_ = CartesianProj;
  // The one projection that normalises the differences and not the angles: a point just
  // west of the base comes out almost a full turn to the east.
  const double d_lon_deg = wrap(point_.fetchLon() - base_.fetchLon() + reference_.fetchLon());
  const double d_lat_deg = clamp(point_.fetchLat() - base_.fetchLat());
  return storeWorld(d_lon_deg / 180.0 * kPi * radius_, d_lat_deg / 180.0 * kPi * radius_,
                    altitude_);
}

int Projection::Mercator() {
  type_ = MercatorProj;
  const Settled& base = settled();
  const double x = (pointLonRad() - base.lambda0) * radius_;
  // The short pi/4 keeps the north pole finite; the south pole is log(0), minus
  // infinity, and no test is made for either.
  const double y = std::log(std::tan(pointLatRad() * 0.5 + kQuarterPi)) * radius_;
  return storeWorld(x * base.cos_phi1, y * base.cos_phi1, altitude_);
}

int Projection::LambertCylindric() {
  type_ = LambertCylindricalProj;
  const Settled& base = settled();
  const double x = (pointLonRad() - base.lambda0) * radius_;
  const double y = std::sin(pointLatRad()) * radius_ - base.sin_phi0 * radius_;
  return storeWorld(x, y, altitude_);
}

int Projection::SansonFlamsteed() {
  type_ = SansonFlamsteedProj;
  const Settled& base = settled();
  const double phi = pointLatRad();
  const double x = std::cos(phi) * ((pointLonRad() - base.lambda0) * radius_);
  const double y = (phi - base.phi0) * radius_;
  return storeWorld(x, y, altitude_);
}

int Projection::CassiniSoldner() {
  type_ = CassiniSoldnerProj;
  const Settled& base = settled();
  const double phi = pointLatRad();
  // Snyder's series for the ellipsoid, with its eccentricity taken as zero; the closed
  // form for the sphere differs far from the base meridian.  `a` is the distance from that
  // meridian along the parallel, in radians of the globe.  Powers are repeated products, which
  // those of `std::pow` need not equal in the last bit.
  const double a = std::cos(phi) * (pointLonRad() - base.lambda0);
  const double t = std::tan(phi);
  const double t2 = t * t;
  const double a2 = a * a;
  const double a3 = a2 * a;
  const double a4 = a3 * a;
  const double a5 = a4 * a;
  const double x = (a - a3 * t2 / 6.0 - a5 * t2 * (8.0 - t2) / 120.0) * radius_;
  const double y =
      (a4 * t * (5.0 - t2) / 24.0 + (a2 * t * 0.5 + phi)) * radius_ - base.phi0 * radius_;
  return storeWorld(x, y, altitude_);
}

// The base point does not count, and z is a place and not the altitude: the altitude has
// lifted the point off the sphere.
int Projection::Globe() {
  type_ = GlobeProj;
  const double lambda = pointLonRad();
  const double phi = pointLatRad();
  const double rho = (altitude_ + radius_) * std::cos(phi);
  return storeWorld(std::cos(lambda) * rho, std::sin(lambda) * rho,
                    std::sin(phi) * (altitude_ + radius_));
}
