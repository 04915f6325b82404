// The projection object: settings, the point in its two forms, names.
//
// An object holds one point twice, as a geographic point with an altitude and as world
// coordinates.  The forward projections (cylindrical.cpp, azimuthal.cpp, conic.cpp) read the
// first and write the second, the inverses (inverse.cpp) the other way round, and `FromTo`
// (conversion.cpp) wraps both.  Degrees are kept everywhere in the object; object.h normalises
// and converts them for the formulas.
//
// What a formula makes of the settings alone is made once and kept (`Settled` and the cones), as
// otherwise most of a point's time goes into the sines of a base and of parallels that stay
// where they are.
//
// Results, messages and oddities are those of docs/classic.md, bit for bit.

#include "kzgis/projection.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <iostream>

#include "projection/angles.h"
#include "projection/object.h"

using kzgis::projection::clamp;
using kzgis::projection::degrees;
using kzgis::projection::radians;
using kzgis::projection::wrap;

namespace {

constexpr double kEarthRadiusMetres = 6378000.0;

/// The two names of a projection; `accepted` is in lower case, as `setProjection` compares it.
struct Names {
  const char* accepted;
  const char* display;
};

// Indexed by projType.
constexpr std::array<Names, 15> kNames{{
    {"cartesian", "Cartesian"},
    {"mercator", "Mercator"},
    {"lambert cylindrical", "Lambert Cylindrical"},
    {"gnomonic", "Gnomonic"},
    {"stereographic", "Stereographic"},
    {"orthographic", "Orthographic"},
    {"postel", "Postel"},
    {"lambert azimuthal", "Lambert Azimuthal"},
    {"lambert conic conformal", "Lambert Conic Conformal"},
    {"albers", "Albers"},
    {"cassini-soldner", "Cassini-Soldner"},
    {"bonne", "Bonne"},
    {"werner", "Werner"},
    {"sanson-flamsteed", "Sanson-Flamsteed"},
    {"globe", "Globe"},
}};

bool is_legal(projType type) { return type >= CartesianProj && type <= GlobeProj; }

/// Stores a standard parallel into the longitude field of `parallel`; `speaker` is the
/// operation that a refusal names.
///
/// The projections read a parallel from that field and clamp it like a latitude.  Values
/// from 0 to 90 pass both rules unchanged, which is why no others are accepted.
int set_parallel(LatLon& parallel, double parallel_deg, const char* speaker) {
  // Written so that NaN is refused too.
  if (!(parallel_deg >= 0.0 && parallel_deg <= 90.0)) {
    std::cerr << speaker << parallel_deg << " is illegal. Parallels lie between 0 and 90"
              << std::endl;
    return 0;
  }
  parallel.setLon(parallel_deg);
  return 1;
}

}  // namespace

// Constructors judge neither the type nor the radius: `setProjection` and `setGlobeRadius` do.
// The conversions bear whatever is stored here.
Projection::Projection() : Projection(CartesianProj) {}

Projection::Projection(projType type) : Projection(type, 0.0, 0.0) {}

Projection::Projection(projType type, double base_lat_deg, double base_lon_deg)
    : Projection(type, kEarthRadiusMetres, base_lat_deg, base_lon_deg) {}

Projection::Projection(projType type, double radius, double base_lat_deg, double base_lon_deg)
    : point_(0.0, 0.0),
      type_(type),
      radius_(radius),
      base_(base_lat_deg, base_lon_deg),
      first_par_(0.0, 0.0),
      second_par_(0.0, 0.0),
      reference_(0.0, 0.0) {}

// The copy constructor of `LatLon` brings the altitude of the geographic point with it, unlike
// its assignment.
Projection::Projection(const Projection& other) = default;

Projection& Projection::operator=(const Projection& other) {
  world_count_ = other.world_count_;
  has_world_ = other.has_world_;
  world_ = other.world_;
  point_ = other.point_;
  point_.setAlt(other.point_.fetchAltitude());  // LatLon's assignment moves no height
  altitude_ = other.altitude_;
  type_ = other.type_;
  radius_ = other.radius_;
  base_ = other.base_;
  first_par_ = other.first_par_;
  second_par_ = other.second_par_;
  reference_ = other.reference_;
  forgetSettled();
  return *this;
}

void Projection::setLLCoordinates(double lat_deg, double lon_deg, double altitude) {
  renewWorld();
  world_count_ = 3;
  point_.setLat(lat_deg);
  point_.setLon(lon_deg);
  altitude_ = altitude;
}

void Projection::setLLCoordinates(double lat_deg, double lat_min, double lat_sec, double lon_deg,
                                  double lon_min, double lon_sec, double altitude) {
  renewWorld();
  world_count_ = 3;
  point_.setLat(lat_deg, lat_min, lat_sec);
  point_.setLon(lon_deg, lon_min, lon_sec);
  altitude_ = altitude;
}

LatLon* Projection::fetchLLCoordinates() { return &point_; }

const LatLon* Projection::fetchLLCoordinates() const { return &point_; }

LatLon* Projection::fetchLLCoordinates(double* altitude) {
  *altitude = altitude_;
  return &point_;
}

const LatLon* Projection::fetchLLCoordinates(double* altitude) const {
  *altitude = altitude_;
  return &point_;
}

// The count of world coordinates stays: after `removeCoords` it is 0 although there are three
// again, until the next `setLLCoordinates` (docs/classic.md).
void Projection::setWorldCoordinates(double x, double y, double z) { storeWorld(x, y, z); }

void Projection::setWorldCoordinates(const double* xyz) { storeWorld(xyz[0], xyz[1], xyz[2]); }

void Projection::setWorldCoordinates(WorldPoint point) { storeWorld(point.x, point.y, point.z); }

int Projection::fetchWorldCoordinates(double* x, double* y, double* z) const {
  *x = world_.x;
  *y = world_.y;
  *z = world_.z;
  return has_world_ ? world_count_ : 0;
}

int Projection::fetchWorldCoordinates(double** xyz) const {
  delete[] * xyz;
  *xyz = nullptr;  // what the caller holds should the allocation below fail
  if (!has_world_) return 0;
  // The count is 3, or 0 after `removeCoords` although there are coordinates again.
  *xyz = new double[static_cast<std::size_t>(world_count_)];
  if (world_count_ == 3) {
    (*xyz)[0] = world_.x;
    (*xyz)[1] = world_.y;
    (*xyz)[2] = world_.z;
  }
  return world_count_;
}

int Projection::fetchWorldCoordinates(WorldPoint* point) const {
  if (!has_world_) return 0;
  *point = world_;
  return world_count_;
}

void Projection::removeCoords() {
  world_ = {0.0, 0.0, 0.0};
  has_world_ = false;
  world_count_ = 0;
}

int Projection::setProjection(projType type) {
  if (!is_legal(type)) {
    std::cerr << "Projection::setProjection: " << static_cast<std::int32_t>(type)
              << " illegal projection type" << std::endl;
    return 0;
  }
  type_ = type;
  return 1;
}

int Projection::setProjection(UtString name) {
  name.lower();
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (name == kNames[i].accepted) return setProjection(static_cast<projType>(i));
  }
  // A misspelt name is not an error here: the interface falls back to the plainest map, in
  // silence, and calls that a success.
  return setProjection(CartesianProj);
}

projType Projection::fetchProjection() const { return type_; }

UtString Projection::fetchProjectionName() const {
  return is_legal(type_) ? kNames[static_cast<std::size_t>(type_)].display : "Unknown";
}

// Zero and NaN are not below 0 and are stored.
int Projection::setGlobeRadius(double radius) {
  if (radius < 0.0) {
    std::cerr << "Projection::setGlobeRadius: " << radius << " is illegal. No negative radii"
              << std::endl;
    return 0;
  }
  radius_ = radius;
  forgetSettled();
  return 1;
}

double Projection::fetchGlobeRadius() const { return radius_; }

double Projection::fetchBaseLat() const { return base_.fetchLat(); }

double Projection::fetchBaseLon() const { return base_.fetchLon(); }

int Projection::setFirstPar(double parallel_deg) {
  forgetSettled();
  return set_parallel(first_par_, parallel_deg, "Projection::setFirstPar: ");
}

int Projection::setSecondPar(double parallel_deg) {
  forgetSettled();
  return set_parallel(second_par_, parallel_deg, "Projection::setSecondPar: ");
}

double Projection::fetchFirstPar() const { return first_par_.fetchLon(); }

double Projection::fetchSecondPar() const { return second_par_.fetchLon(); }

// The two kinds of angle differ on purpose.  A latitude is clamped and knows no reference; a
// longitude is wrapped, and the longitude reference is added on the way to radians and
// subtracted on the way back.
double Projection::LatToDeg(double lat_rad) const { return clamp(degrees(lat_rad)); }

double Projection::LatToRad(double lat_deg) const { return radians(clamp(lat_deg)); }

double Projection::LonToDeg(double lon_rad) const {
  return wrap(degrees(lon_rad) - reference_.fetchLon());
}

double Projection::LonToRad(double lon_deg) const {
  return radians(wrap(lon_deg + reference_.fetchLon()));
}

void Projection::settle() {
  settled_.phi0 = LatToRad(base_.fetchLat());
  settled_.lambda0 = LonToRad(base_.fetchLon());
  settled_.sin_phi0 = std::sin(settled_.phi0);
  settled_.cos_phi0 = std::cos(settled_.phi0);
  settled_.phi1 = LatToRad(fetchFirstPar());
  settled_.phi2 = LatToRad(fetchSecondPar());
  settled_.cos_phi1 = std::cos(settled_.phi1);
  settled_.made = true;
}

/// To be called where a setting changes.
void Projection::forgetSettled() {
  settled_.made = false;
  lambert_.made = false;
  albers_.made = false;
  inverse_lambert_.made = false;
  inverse_albers_.made = false;
}
