// The coordinate value: a latitude, a longitude and an altitude.
//
// Both angles are kept in decimal degrees; 60 and 3600 are the only conversion factors.  One
// rule, `checkValues`, keeps every stored angle in its range, and everything else in this
// file goes through it: the constructors, the setters of an angle, `+=` and `-=`.  Copies and
// the altitude need no rule.
//
// The order of the operations decides the last bit of an angle, and is kept (docs/classic.md).

#include "kzgis/latlon.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>

#include "kzgis/types.h"

using kzgis::truncate_to_int32;

namespace {

constexpr double kArcSecPerDegree = 3600.0;
constexpr double kSecPerMin = 60.0;
constexpr double kTurn_deg = 360.0;

static_assert(std::numeric_limits<double>::is_iec559, "angles are IEEE 754 doubles");

/// Decimal degrees from a triple.
///
/// The sign of the degrees is not spread to the other two components: each carries its own,
/// so that (0, -30, 0) is half a degree south or west, and (-45, 30, 0) is -44.5.
double degrees_from_dms(double deg, double min, double sec) {
  return deg + (min * kSecPerMin + sec) / kArcSecPerDegree;
}

/// The inverse of `degrees_from_dms`, but for the rounding of the seconds.
///
/// Both truncations go toward zero, not down, so that all three parts have the sign of the
/// angle or are zero.  An angle that is NaN or infinite has no whole degrees: the smallest
/// 32-bit integer stands in for them, so that the conversion is defined.
void split_dms(double angle, double* deg, double* min, double* sec) {
  const double whole_deg = truncate_to_int32(angle);
  const double rest_sec = (angle - whole_deg) * kArcSecPerDegree;
  const double whole_min = truncate_to_int32(rest_sec / kSecPerMin);
  *deg = whole_deg;
  *min = whole_min;
  *sec = rest_sec - whole_min * kSecPerMin;
}

// Below 2^56 neighbouring doubles are at most 8 apart and 360 is a multiple of 8: every
// step of 360 toward zero is exact, and the steps amount to a remainder.
constexpr double kExactSteps = 0x1p56;

// Above 2^62 neighbouring doubles are 1024 apart: 360 is lost in the rounding, and steps
// would never arrive.  2^62 itself steps down into closer neighbours and arrives.
constexpr double kLastArriving = 0x1p62;

/// Takes steps of 360 from `lon`, in [2^56, 2^62], down to below 2^56, with the rounding
/// of every single step, but many at once.
///
/// Between two powers of two all doubles lie equally far apart, so after the first step
/// has settled any tie to even, every step that stays there is rounded to one length:
///
///   lon from    spacing    length of a step of 360
///   2^56         16        352, a tie: 22.5 spacings
///   2^57         32        352
///   2^58         64        384
///   2^59        128        384
///   2^60        256        256
///   2^61        512        512
///
/// Each turn of the loop takes one real step first and then as many of that length as end at
/// least 360 above the power of two below.  All these steps therefore round within the same
/// spacing; the next ones, which may cross the power of two, are real steps again.
double step_below_exact(double lon) {
  constexpr auto kTurn = static_cast<std::int64_t>(kTurn_deg);
  while (lon >= kExactSteps) {
    lon -= kTurn_deg;
    // Doubles of this size are integers, and fit 64 bits.
    const auto here = static_cast<std::int64_t>(lon);
    const auto binade_floor = static_cast<std::int64_t>(std::ldexp(1.0, std::ilogb(lon)));
    const std::int64_t room = here - binade_floor;
    if (room < kTurn) continue;  // the next step may leave this spacing
    const std::int64_t length = here - static_cast<std::int64_t>(lon - kTurn_deg);
    const std::int64_t steps = (room - kTurn) / length;
    lon = static_cast<double>(here - steps * length);
  }
  return lon;
}

/// Wraps a longitude into [0, 360): the value that adding +-360 again and again ends at,
/// to the last bit, without the millions of additions.
///
/// A remainder alone is not that value: `std::fmod` is exact, while an addition rounds once
/// the neighbouring doubles lie farther apart than 8, and a step up from a negative value
/// rounds when it passes zero.
///
/// What those additions never bring into the range is not looped over: infinities and
/// NaN stay as they are; a finite value beyond +-2^62 is wrapped by its remainder.
double wrap_longitude(double lon) {
  // At most one step each way, as the rule takes it, is what nearly every longitude needs.
  if (lon < 0.0 && lon >= -kTurn_deg) lon += kTurn_deg;
  if (lon >= kTurn_deg && lon < 2.0 * kTurn_deg) lon -= kTurn_deg;
  if (lon >= 0.0 && lon < kTurn_deg) return lon;
  if (!std::isfinite(lon)) return lon;
  if (lon < 0.0) {
    // Steps up from a negative value mirror steps down from its magnitude, rounding to
    // nearest being symmetric, until the last one passes zero.
    double magnitude = -lon;
    if (magnitude >= kExactSteps && magnitude <= kLastArriving) {
      magnitude = step_below_exact(magnitude);
    }
    magnitude = std::fmod(magnitude, kTurn_deg);
    // Landing on zero gives +0; the last step may round up to 360 itself.
    lon = magnitude == 0.0 ? 0.0 : kTurn_deg - magnitude;
  }
  // A negative longitude may have been rounded up to 360, which becomes 0 here.
  if (lon >= kTurn_deg) {
    if (lon >= kExactSteps && lon <= kLastArriving) lon = step_below_exact(lon);
    lon = std::fmod(lon, kTurn_deg);
  }
  return lon;
}

}  // namespace

// The public templates widen every integer type to this one, so that an `int`, a `long` and a
// `long long` mean the same number of arc-seconds on every host.
LatLon::LatLon(ArcSeconds lat, ArcSeconds lon)
    : LatLon(static_cast<double>(lat.value) / kArcSecPerDegree,
             static_cast<double>(lon.value) / kArcSecPerDegree) {}

LatLon::LatLon(double lat_deg, double lon_deg) : LatLon(lat_deg, lon_deg, 0.0) {}

LatLon::LatLon(double lat_deg, double lon_deg, double altitude)
    : lat_(lat_deg), lon_(lon_deg), alt_(altitude) {
  checkValues(&lat_, &lon_);
}

LatLon::LatLon(double lat_deg, double lat_min, double lat_sec, double lon_deg, double lon_min,
               double lon_sec)
    : LatLon(lat_deg, lat_min, lat_sec, lon_deg, lon_min, lon_sec, 0.0) {}

LatLon::LatLon(double lat_deg, double lat_min, double lat_sec, double lon_deg, double lon_min,
               double lon_sec, double altitude)
    : lat_(0.0), lon_(0.0), alt_(altitude) {
  latFromDMS(lat_deg, lat_min, lat_sec);
  lonFromDMS(lon_deg, lon_min, lon_sec);
  checkValues(&lat_, &lon_);
}

LatLon::LatLon(const double* lat_dms, const double* lon_dms) : LatLon(lat_dms, lon_dms, 0.0) {}

LatLon::LatLon(const double* lat_dms, const double* lon_dms, double altitude)
    : LatLon(lat_dms[0], lat_dms[1], lat_dms[2], lon_dms[0], lon_dms[1], lon_dms[2], altitude) {}

// Assignment moves a position, not a height (LatLonAssign.KeepsTheTargetsAltitude).  Both
// angles are in range in the other point already, so nothing is normalised.
LatLon& LatLon::operator=(const LatLon& other) {
  lat_ = other.lat_;
  lon_ = other.lon_;
  return *this;
}

// A setter of one angle normalises both.  The other angle is in its range already and stays
// as it is.
void LatLon::setLat(ArcSeconds lat) { setLat(static_cast<double>(lat.value) / kArcSecPerDegree); }
void LatLon::setLon(ArcSeconds lon) { setLon(static_cast<double>(lon.value) / kArcSecPerDegree); }

void LatLon::setLat(double deg) {
  lat_ = deg;
  checkValues(&lat_, &lon_);
}

void LatLon::setLon(double deg) {
  lon_ = deg;
  checkValues(&lat_, &lon_);
}

void LatLon::setLat(double deg, double min, double sec) {
  latFromDMS(deg, min, sec);
  checkValues(&lat_, &lon_);
}

void LatLon::setLon(double deg, double min, double sec) {
  lonFromDMS(deg, min, sec);
  checkValues(&lat_, &lon_);
}

void LatLon::setLat(const double* dms) { setLat(dms[0], dms[1], dms[2]); }
void LatLon::setLon(const double* dms) { setLon(dms[0], dms[1], dms[2]); }
void LatLon::setAlt(double altitude) { alt_ = altitude; }

void LatLon::fetchLat(int* arcsec) const { *arcsec = truncate_to_int32(lat_ * kArcSecPerDegree); }
void LatLon::fetchLat(long* arcsec) const { *arcsec = truncate_to_int32(lat_ * kArcSecPerDegree); }
void LatLon::fetchLon(int* arcsec) const { *arcsec = truncate_to_int32(lon_ * kArcSecPerDegree); }
void LatLon::fetchLon(long* arcsec) const { *arcsec = truncate_to_int32(lon_ * kArcSecPerDegree); }
void LatLon::fetchLat(double* deg, double* min, double* sec) const { latToDMS(deg, min, sec); }
void LatLon::fetchLon(double* deg, double* min, double* sec) const { lonToDMS(deg, min, sec); }

LatLon& LatLon::operator+=(const LatLon& other) {
  lat_ += other.lat_;
  lon_ += other.lon_;
  checkValues(&lat_, &lon_);
  return *this;
}

LatLon& LatLon::operator-=(const LatLon& other) {
  lat_ -= other.lat_;
  lon_ -= other.lon_;
  checkValues(&lat_, &lon_);
  return *this;
}

// A flat plane on purpose: the result serves to compare distances, and neither the cosine of
// the latitude nor the way round across longitude 0 counts (docs/classic.md).
double LatLon::distanceSQ(LatLon other) const {
  const double lon_arcsec = (other.lon_ - lon_) * kArcSecPerDegree;
  const double lat_arcsec = (other.lat_ - lat_) * kArcSecPerDegree;
  return lon_arcsec * lon_arcsec + lat_arcsec * lat_arcsec;
}

// Comparisons are exact and longitudes are compared as they are stored, in [0, 360).  With a
// NaN all comparisons of that angle are false, so that no case below applies.
direction LatLon::whichWay(const LatLon& other) const {
  const bool north = other.lat_ > lat_;
  const bool south = lat_ > other.lat_;
  const bool level = other.lat_ == lat_;
  const bool east = other.lon_ > lon_;
  const bool west = lon_ > other.lon_;
  const bool in_line = other.lon_ == lon_;
  if (north && in_line) return North;
  if (north && east) return NorthEast;
  if (level && east) return East;
  if (south && east) return SouthEast;
  if (south && in_line) return South;
  if (south && west) return SouthWest;
  if (level && west) return West;
  if (north && west) return NorthWest;
  return SamePlace;
}

// The bodies of the public operations on triples.  The first two store the angle as it comes;
// their callers normalise.
void LatLon::latFromDMS(double deg, double min, double sec) {
  lat_ = degrees_from_dms(deg, min, sec);
}

void LatLon::lonFromDMS(double deg, double min, double sec) {
  lon_ = degrees_from_dms(deg, min, sec);
}

void LatLon::latToDMS(double* deg, double* min, double* sec) const {
  split_dms(lat_, deg, min, sec);
}

void LatLon::lonToDMS(double* deg, double* min, double* sec) const {
  split_dms(lon_, deg, min, sec);
}

/// Normalises the two angles in place.
///
/// Longitudes wrap and latitudes are clamped.  A latitude past a pole is not reflected, and
/// the longitude is not turned by 180 degrees with it (docs/classic.md).
/// Written so that a NaN latitude passes both comparisons and stays.
///
/// @return 1 when the latitude was legal, 0 when it was clamped.  A wrapped longitude does not
///         count as a correction
int LatLon::checkValues(double* lat, double* lon) {
  *lon = wrap_longitude(*lon);
  if (*lat < -90.0) {
    *lat = -90.0;
    return 0;
  }
  if (*lat > 90.0) {
    *lat = 90.0;
    return 0;
  }
  return 1;
}

// With a NaN in either point the points differ: `==` answers 0 and `!=` answers 1.
int operator==(LatLon a, LatLon b) {
  return a.fetchLat() == b.fetchLat() && a.fetchLon() == b.fetchLon() ? 1 : 0;
}

int operator!=(LatLon a, LatLon b) {
  return a.fetchLat() != b.fetchLat() || a.fetchLon() != b.fetchLon() ? 1 : 0;
}

// The altitude goes out as it is; the blanks and the missing line end belong to the format.
std::ostream& operator<<(std::ostream& os, const LatLon& point) {
  double deg = 0.0;
  double min = 0.0;
  double sec = 0.0;
  point.fetchLat(&deg, &min, &sec);
  os << "Lat: " << deg << "d " << min << "m " << sec << "s, ";
  point.fetchLon(&deg, &min, &sec);
  os << "Lon: " << deg << "d " << min << "m " << sec << "s ";
  return os << "Altitude: " << point.fetchAltitude();
}
