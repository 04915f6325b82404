// The conversion entry points: load the object, run the projection of a type, hand the
// result out.
//
// Forward, the steps are: store the geographic point and drop the former world coordinates;
// project, which also makes the type the one in force; hand out a copy of the world
// coordinates that the caller owns.  Back, they are: store the world coordinates; run the
// inverse, which fills the object's geographic point; copy latitude and longitude to the
// caller, or hand out the object's own point.  No entry point judges its input or writes a
// message of its own.

#include <array>
#include <cstddef>

#include "kzgis/projection.h"
#include "projection/object.h"

namespace {

// The interface's number for a projection that refused, or that has no inverse.
constexpr int kFailed = -10;

using Operation = int (Projection::*)();

// Both tables are indexed by projType and have a row for each of the fifteen.  The six
// projections without an inverse have one too: it changes nothing and answers 0.
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

/// Runs the row of `type`.  A type without a row runs nothing and counts as success: a
/// constructor stores any number, and the interface lets a conversion with it go on, to the
/// three zeros of fresh world coordinates or to the geographic point as it stands.
int run(Projection& projection, const std::array<Operation, 15>& table, projType type) {
  if (type < CartesianProj || type > GlobeProj) return 1;
  return (projection.*table[static_cast<std::size_t>(type)])();
}

}  // namespace

// Geographic to world.  On a refusal `*xyz` is not touched: the caller's former array lives on.

int Projection::FromTo(LatLon position, double** xyz) {
  return FromTo(position, position.fetchAltitude(), type_, xyz);
}

int Projection::FromTo(LatLon position, double altitude, double** xyz) {
  return FromTo(position, altitude, type_, xyz);
}

int Projection::FromTo(LatLon position, double altitude, projType type, double** xyz) {
  renewWorld();
  world_count_ = 3;
  point_ = position;  // its angles are in range
  altitude_ = altitude;
  if (run(*this, kForward, type) == 0) return kFailed;
  return fetchWorldCoordinates(xyz);
}

// World to geographic, into the caller's point.  That point keeps its own altitude, since the
// assignment of `LatLon` copies a position only.

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
  // Not the altitude that the inverse found: that one stays with the object's point.  The
  // interface hands out the altitude of the last `setLLCoordinates` here.
  *altitude = altitude_;
  *position = point_;
  return 1;
}

// World to geographic, as the object's own point, which the next conversion changes.  This is
// the way to the altitude that an inverse found.

LatLon* Projection::FromTo(double x, double y, double z) {
  setWorldCoordinates(x, y, z);
  return run(*this, kInverse, type_) == 0 ? nullptr : &point_;
}

LatLon* Projection::FromTo(const double* xyz) { return FromTo(xyz[0], xyz[1], xyz[2]); }

LatLon* Projection::FromTo(WorldPoint point) { return FromTo(point.x, point.y, point.z); }
