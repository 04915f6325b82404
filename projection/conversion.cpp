// The conversion entry points: load the object, run the projection of a type, hand the
// result out.

#include <array>
#include <cstddef>

#include "kzgis/projection.h"

namespace {

constexpr int kFailed = -10;

using Operation = int (Projection::*)();

// Indexed by projType.
constexpr std::array<Operation, 15> kForward{
    &Projection::Cartesian, &Projection::Mercator,         &Projection::LambertCylindric,
    &Projection::Gnomonic,  &Projection::Stereo,           &Projection::Orthographic,
    &Projection::Postel,    &Projection::LambertAzimuthal, &Projection::LambertConical,
    &Projection::Albers,    &Projection::CassiniSoldner,   &Projection::Bonne,
    &Projection::Werner,    &Projection::SansonFlamsteed,  &Projection::Globe,
};
constexpr std::array<Operation, 15> kInverse{
    &Projection::inverseCartesian,
    &Projection::inverseMercator,
    &Projection::inverseLambertCylindric,
    &Projection::inverseGnomonic,
    &Projection::inverseStereo,
    &Projection::inverseOrthographic,
    &Projection::inversePostel,
    &Projection::inverseLambertAzimuthal,
    &Projection::inverseLambertConical,
    &Projection::inverseAlbers,
    &Projection::inverseCassiniSoldner,
    &Projection::inverseBonne,
    &Projection::inverseWerner,
    &Projection::inverseSansonFlamsteed,
    &Projection::inverseGlobe,
};

/// Runs the row of `type`.  A type without a row runs nothing and counts as success.
int run(Projection& projection, const std::array<Operation, 15>& table, projType type) {
  if (type < CartesianProj || type > GlobeProj) return 1;
  return (projection.*table[static_cast<std::size_t>(type)])();
}

}  // namespace

int Projection::FromTo(LatLon position, double** xyz) {
  return FromTo(position, position.fetchAltitude(), type_, xyz);
}

int Projection::FromTo(LatLon position, double altitude, double** xyz) {
  return FromTo(position, altitude, type_, xyz);
}

int Projection::FromTo(LatLon position, double altitude, projType type, double** xyz) {
  setLLCoordinates(position.fetchLat(), position.fetchLon(), altitude);
  if (run(*this, kForward, type) == 0) return kFailed;
  return fetchWorldCoordinates(xyz);
}

int Projection::FromTo(const double* xyz, LatLon* position) {
  double not_asked_for = 0.0;
  return FromTo(xyz, type_, position, &not_asked_for);
}

int Projection::FromTo(const double* xyz, LatLon* position, double* altitude) {
  return FromTo(xyz, type_, position, altitude);
}

int Projection::FromTo(const double* xyz, projType type, LatLon* position, double* altitude) {
  setWorldCoordinates(xyz);
  if (run(*this, kInverse, type) == 0) return kFailed;
  // Not the altitude that the inverse found: that one stays with the object's point.
  *altitude = altitude_;
  *position = point_;
  return 1;
}

LatLon* Projection::FromTo(double x, double y, double z) {
  setWorldCoordinates(x, y, z);
  return run(*this, kInverse, type_) == 0 ? nullptr : &point_;
}

LatLon* Projection::FromTo(const double* xyz) { return FromTo(xyz[0], xyz[1], xyz[2]); }

LatLon* Projection::FromTo(WorldPoint point) { return FromTo(point.x, point.y, point.z); }
