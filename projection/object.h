// What every projection does with the object that it belongs to: takes the point and the settings
// in radians, and stores what it finds.
//
// Every angle is normalised by itself before it becomes radians; a difference of two of them is
// the formula's own affair and is not normalised again.

#ifndef KZGIS_PROJECTION_OBJECT_H
#define KZGIS_PROJECTION_OBJECT_H

#include "kzgis/projection.h"
#include "projection/angles.h"

inline const Projection::Settled& Projection::settled() {
  if (!settled_.made) settle();
  return settled_;
}

inline double Projection::pointLatRad() const {
  return kzgis::projection::radians(kzgis::projection::clamp(point_.fetchLat()));
}

inline double Projection::pointLonRad() const {
  return kzgis::projection::radians(
      kzgis::projection::wrap(point_.fetchLon() + reference_.fetchLon()));
}

/// Replaces the world coordinates by three zeros.
inline void Projection::renewWorld() {
  world_ = {0.0, 0.0, 0.0};
  has_world_ = true;
}

/// Stores the world coordinates and returns a forward projection's result, 1.
inline int Projection::storeWorld(double x, double y, double z) {
  world_ = {x, y, z};
  has_world_ = true;
  return 1;
}

/// Stores what an inverse found and returns the inverse's result, 1.
///
/// The altitude goes into the point, since `LatLon`'s assignment leaves the point its own; the
/// object's own altitude stays.
inline int Projection::storePoint(double lat_rad, double lon_rad, double altitude) {
  using kzgis::projection::degrees;
  point_ = LatLon(degrees(lat_rad), degrees(lon_rad) - reference_.fetchLon());
  point_.setAlt(altitude);
  return 1;
}

#endif
