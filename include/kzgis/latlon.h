// The coordinate value: one point on the globe.  Every room that deals with positions stores
// and exchanges them in this form.

#ifndef KZGIS_LATLON_H
#define KZGIS_LATLON_H

#include <concepts>
#include <cstdint>
#include <iosfwd>

#include "kzgis/export.h"

/// Where another point lies, seen from this one; the result of `LatLon::whichWay`.
///
/// The four main directions have one angle exactly equal, the four between them none.
enum direction {
  North = 0,
  NorthEast = 1,
  East = 2,
  SouthEast = 3,
  South = 4,
  SouthWest = 5,
  West = 6,
  NorthWest = 7,
  SamePlace = 8,  ///< also when a coordinate is not a number
};

/// One point on the globe: latitude and longitude in decimal degrees, and an altitude.
///
/// Every constructor and every setter of an angle normalises both angles:
///  - the latitude is clamped into [-90, 90], never reflected across a pole;
///  - the longitude is wrapped into [0, 360) by repeated additions of +-360, so
///    that 10 degrees west is kept as 350.
/// A latitude or longitude that is not a number, and an infinite longitude, stay as
/// they are.  The altitude has the caller's unit and is never tested.
///
/// Whole arc-seconds (1/3600 degree) may be passed as any integer type.  Those that come
/// back may be one nearer to 0, as degrees hold no thirds and results are truncated: 115
/// come back as 114.  Triples are
/// degrees, minutes, seconds; each component carries its own sign, so 45d 30m south
/// is (-45, -30, 0).
class KZGIS_EXPORT LatLon {
 public:
  /// From whole arc-seconds: an argument of any integer type counts as arc-seconds.
  template <std::integral Lat, std::integral Lon>
  LatLon(Lat lat_arcsec, Lon lon_arcsec)
      : LatLon(ArcSeconds{static_cast<std::int64_t>(lat_arcsec)},
               ArcSeconds{static_cast<std::int64_t>(lon_arcsec)}) {}
  /// From whole arc-seconds and an altitude.
  template <std::integral Lat, std::integral Lon>
  LatLon(Lat lat_arcsec, Lon lon_arcsec, double altitude)
      : LatLon(ArcSeconds{static_cast<std::int64_t>(lat_arcsec)},
               ArcSeconds{static_cast<std::int64_t>(lon_arcsec)}) {
    setAlt(altitude);
  }

  /// From decimal degrees; the altitude is 0.
  LatLon(double lat_deg, double lon_deg);
  /// From decimal degrees and an altitude.
  LatLon(double lat_deg, double lon_deg, double altitude);

  /// From a triple each; the altitude is 0.
  LatLon(double lat_deg, double lat_min, double lat_sec, double lon_deg, double lon_min,
         double lon_sec);
  /// From a triple each and an altitude.
  LatLon(double lat_deg, double lat_min, double lat_sec, double lon_deg, double lon_min,
         double lon_sec, double altitude);

  /// From two arrays of three doubles each: degrees, minutes, seconds.
  LatLon(const double* lat_dms, const double* lon_dms);
  /// From two such arrays and an altitude.
  LatLon(const double* lat_dms, const double* lon_dms, double altitude);

  /// Copies all three values.
  LatLon(const LatLon& other) = default;
  /// Copies the position only: this point keeps its own altitude.
  LatLon& operator=(const LatLon& other);
  ~LatLon() = default;

  // A setter of one angle leaves the other one and the altitude as they are.

  /// Sets one angle from whole arc-seconds of any integer type, then normalises both.
  template <std::integral Arc>
  void setLat(Arc arcsec) {
    setLat(ArcSeconds{static_cast<std::int64_t>(arcsec)});
  }
  template <std::integral Arc>
  void setLon(Arc arcsec) {
    setLon(ArcSeconds{static_cast<std::int64_t>(arcsec)});
  }
  /// Sets one angle from decimal degrees, then normalises both.
  void setLat(double deg);
  void setLon(double deg);
  /// Sets one angle from degrees, minutes and seconds, then normalises both.
  void setLat(double deg, double min, double sec);
  void setLon(double deg, double min, double sec);
  /// The same from an array of three doubles.
  void setLat(const double* dms);
  void setLon(const double* dms);
  /// Stores the altitude as it is.
  void setAlt(double altitude);

  /// Latitude in decimal degrees, [-90, 90].
  double fetchLat() const { return lat_; }
  /// Longitude in decimal degrees, [0, 360).
  double fetchLon() const { return lon_; }
  /// Writes the angle in whole arc-seconds, truncated toward zero.  An angle that is
  /// not a finite number gives -2147483648.
  void fetchLat(int* arcsec) const;
  void fetchLat(long* arcsec) const;
  void fetchLon(int* arcsec) const;
  void fetchLon(long* arcsec) const;
  /// Writes the angle split into whole degrees, whole minutes and seconds, each with
  /// the sign of the angle: -45.5 gives (-45, -30, 0), -0.5 gives (0, -30, 0).
  void fetchLat(double* deg, double* min, double* sec) const;
  void fetchLon(double* deg, double* min, double* sec) const;
  /// The altitude, in the unit it was given in.
  double fetchAltitude() const { return alt_; }

  /// Adds the other point's angles to this one's, then normalises; the altitude stays.
  LatLon& operator+=(const LatLon& other);
  /// Subtracts the other point's angles from this one's, then normalises; the altitude
  /// stays.
  LatLon& operator-=(const LatLon& other);

  /// Squared distance to `other` in square arc-seconds, on the flat latitude/longitude
  /// plane: no cosine of the latitude, no way round across longitude 0, no altitude.
  /// Good only for comparing distances.
  double distanceSQ(LatLon other) const;

  /// Where `other` lies, by exact comparison of the stored angles: longitude 1 lies to
  /// the west of longitude 359.
  direction whichWay(const LatLon& other) const;

 private:
  /// Any integer type on its way to one constructor or setter, told from decimal degrees.
  struct ArcSeconds {
    std::int64_t value;
  };
  LatLon(ArcSeconds lat, ArcSeconds lon);
  void setLat(ArcSeconds lat);
  void setLon(ArcSeconds lon);

  // Composition of triples, which does not normalise, their split, and the rule that
  // normalises: 1 when the latitude was legal, 0 when it was clamped.
  void latFromDMS(double deg, double min, double sec);
  void lonFromDMS(double deg, double min, double sec);
  void latToDMS(double* deg, double* min, double* sec) const;
  void lonToDMS(double* deg, double* min, double* sec) const;
  static int checkValues(double* lat, double* lon);

  double lat_;  // degrees, [-90, 90]
  double lon_;  // degrees, [0, 360)
  double alt_ = 0.0;
};

/// 1 when both latitudes and both longitudes are exactly equal, else 0; the altitude
/// does not count.
KZGIS_EXPORT int operator==(LatLon a, LatLon b);
/// 1 when the latitudes or the longitudes differ, else 0; the altitude does not count.
KZGIS_EXPORT int operator!=(LatLon a, LatLon b);

/// Writes "Lat: 45d 30m 0s, Lon: 350d 15m 0s Altitude: 0", without a line end; numbers
/// follow the stream's own format.
KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const LatLon& point);

#endif
