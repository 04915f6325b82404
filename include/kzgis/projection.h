// Map projections of the sphere, one point at a time: fifteen of them forward, nine back.

#ifndef KZGIS_PROJECTION_H
#define KZGIS_PROJECTION_H

#include <cstdint>

#include "kzgis/export.h"
#include "kzgis/latlon.h"
#include "kzgis/utstring.h"

/// The fifteen projections, by number.  A `Projection` built with another number runs
/// none of them.
enum projType : std::int32_t {
  CartesianProj = 0,
  MercatorProj = 1,
  LambertCylindricalProj = 2,
  GnomonicProj = 3,
  StereographicProj = 4,
  OrthographicProj = 5,
  PostelProj = 6,
  LambertAzimuthalProj = 7,
  LambertConicProj = 8,
  AlbersProj = 9,
  CassiniSoldnerProj = 10,
  BonneProj = 11,
  WernerProj = 12,
  SansonFlamsteedProj = 13,
  GlobeProj = 14,
};

/// One point in world coordinates, in the unit of the globe radius.
struct WorldPoint {
  double x;
  double y;
  double z;
};

struct ProjectionTestAccess;

/// Converts positions on a sphere into flat or spatial world coordinates, and for nine
/// projections back.
///
/// An object holds the settings of one projection (type, globe radius, base point, two
/// standard parallels) and one point in both forms: the geographic point and the world
/// coordinates that belong to it.  `FromTo` converts a point in one call; the
/// projections themselves are public too and convert the point the object holds.
///
/// What holds for every projection:
///  - x, y and z come out in the unit of the globe radius.  z is the altitude, except
///    in `Globe`, where all three are a position in space, and in `Albers` with two
///    parallels, where it is 0.
///  - Latitudes are clamped into [-90, 90] and longitudes wrapped into [0, 360), each
///    on its own.  A difference of two longitudes is never brought into +-180: from a
///    base at longitude 350 a point at longitude 10 lies 340 degrees to the west.
///    Only `Cartesian` wraps the difference itself.
///  - Degrees become radians with 3.141592652589793, which is short of pi by 1e-9.
///    The poles therefore lie 5e-10 radians short of their place, about 3 mm on the
///    Earth (docs/classic.md).
///  - Where a formula has no value the result is an infinity or NaN; only the two true
///    conics refuse, and then only a parallel of 0.
///
/// Formulas after J. P. Snyder, "Map Projections: A Working Manual", USGS Professional
/// Paper 1395 (1987), for the sphere; a bracket such as [12] at an operation names his
/// chapter, and each departure from it is named.
///
/// Two altitudes live here.  `setLLCoordinates` stores the object's altitude, which the
/// forward projections read; the inverses store theirs in the geographic point
/// (`fetchLLCoordinates()->fetchAltitude()`) and leave the object's alone.
///
/// Memory is taken only for an array that is handed out.  Where it runs out, the pointer to the
/// array is null afterwards, and the object stays usable.
class KZGIS_EXPORT Projection {
 public:
  /// Cartesian, radius 6378000.0 (the Earth's, in metres), base point (0, 0), both
  /// parallels 0, geographic point (0, 0), no world coordinates.
  Projection();
  /// The same with another type, which is stored as it is, legal or not.
  Projection(projType type);
  /// The same with a type and a base point, in degrees.
  Projection(projType type, double base_lat_deg, double base_lon_deg);
  /// The same with a type, a globe radius and a base point.  The radius is stored as it
  /// is: here a negative one is accepted.
  Projection(projType type, double radius, double base_lat_deg, double base_lon_deg);

  /// Copies everything, both altitudes and the world coordinates included.
  Projection(const Projection& other);
  /// The same; pointers from `fetchLLCoordinates` stay valid and see the new point.
  Projection& operator=(const Projection& other);
  ~Projection() = default;

  /// Sets the point to convert and drops the world coordinates of the former one.
  ///
  /// The new world coordinates are three zeros until a projection fills them.
  ///
  /// @param lat_deg   degrees, clamped into [-90, 90]
  /// @param lon_deg   degrees, wrapped into [0, 360)
  /// @param altitude  in the unit of the radius; becomes z, or the height in `Globe`
  void setLLCoordinates(double lat_deg, double lon_deg, double altitude);
  /// The same with both angles in degrees, minutes and seconds, each component carrying
  /// its own sign.
  void setLLCoordinates(double lat_deg, double lat_min, double lat_sec, double lon_deg,
                        double lon_min, double lon_sec, double altitude);

  /// The geographic point.  It belongs to the object, lives as long as it, and changes
  /// with every conversion.
  LatLon* fetchLLCoordinates();
  const LatLon* fetchLLCoordinates() const;
  /// The same, and writes the altitude last given to `setLLCoordinates`.
  LatLon* fetchLLCoordinates(double* altitude);
  const LatLon* fetchLLCoordinates(double* altitude) const;

  /// Stores world coordinates for an inverse projection to read, in the unit of the
  /// radius.  The count that the fetch operations return stays as it is.
  void setWorldCoordinates(double x, double y, double z);
  /// The same from an array of three doubles.
  void setWorldCoordinates(const double* xyz);
  /// The same from a point.
  void setWorldCoordinates(WorldPoint point);

  /// Writes the world coordinates.
  ///
  /// @return their count: 3, or 0 after `removeCoords` until the next
  ///         `setLLCoordinates`.  An object without world coordinates writes three
  ///         zeros and returns 0
  int fetchWorldCoordinates(double* x, double* y, double* z) const;
  /// Hands out the world coordinates as a new array, which the caller owns and
  /// releases with `delete[]` or by passing the same pointer again.
  ///
  /// @param xyz  points to null, or to an array from an earlier call, which is released
  ///             first; set to the new array, or to null without world coordinates
  /// @return the number of doubles in the array; 0 without world coordinates
  int fetchWorldCoordinates(double** xyz) const;
  /// Writes the world coordinates.
  ///
  /// @return as for three doubles; without world coordinates nothing is written
  int fetchWorldCoordinates(WorldPoint* point) const;
  /// Drops the world coordinates; the geographic point stays.  Their count is 0 until
  /// the next `setLLCoordinates`.
  void removeCoords();

  /// Chooses a projection by number.
  ///
  /// @return 1 when stored; 0 for a number outside 0 to 14: one line goes to standard
  ///         error and the type stays as it was
  int setProjection(projType type);
  /// Chooses a projection by name: "cartesian", "mercator", "lambert cylindrical",
  /// "gnomonic", "stereographic", "orthographic", "postel", "lambert azimuthal",
  /// "lambert conic conformal", "albers", "cassini-soldner", "bonne", "werner",
  /// "sanson-flamsteed" or "globe", in upper or lower case.
  ///
  /// Any other name chooses Cartesian, in silence.
  ///
  /// @return 1
  int setProjection(UtString name);
  /// The number of the projection in force.
  projType fetchProjection() const;
  /// Its display name, such as "Lambert Conic Conformal"; "Unknown" outside 0 to 14.
  UtString fetchProjectionName() const;

  /// Sets the globe radius, and with it the unit of every world coordinate.
  ///
  /// World coordinates come out in the radius's own unit: the default, 6378000.0,
  /// gives metres on the Earth; 1.0 gives the unit sphere.  Zero is accepted.
  /// A point already projected keeps the radius it was projected with.
  ///
  /// @param radius  any length unit, >= 0
  /// @return 1 when stored; 0 when negative: one line goes to standard error and
  ///         the radius stays as it was
  int setGlobeRadius(double radius);
  /// The globe radius.
  double fetchGlobeRadius() const;
  /// The base point's latitude in degrees, [-90, 90].
  double fetchBaseLat() const;
  /// The base point's longitude in degrees, [0, 360).
  double fetchBaseLon() const;

  /// Sets the first standard parallel: `Mercator` is true to scale there, and the true
  /// conics need both parallels.
  ///
  /// @param parallel_deg  degrees, 0 to 90
  /// @return 1 when stored; 0 for anything else, NaN included: one line goes to
  ///         standard error and the parallel stays as it was
  int setFirstPar(double parallel_deg);
  /// Sets the second standard parallel, likewise.
  int setSecondPar(double parallel_deg);
  /// The first standard parallel in degrees.
  double fetchFirstPar() const;
  /// The second standard parallel in degrees.
  double fetchSecondPar() const;

  /// Radians to degrees of latitude, clamped into [-90, 90].
  double LatToDeg(double lat_rad) const;
  /// Degrees of latitude, clamped into [-90, 90], to radians.
  double LatToRad(double lat_deg) const;
  /// Radians to degrees of longitude, wrapped into [0, 360).
  double LonToDeg(double lon_rad) const;
  /// Degrees of longitude, wrapped into [0, 360), to radians.
  double LonToRad(double lon_deg) const;

  /// Projects a position and its own altitude with the projection in force.
  ///
  /// @param position  degrees, as `LatLon` keeps them
  /// @param xyz       points to null, or to an array from an earlier call, which is
  ///                  released; receives a new array of three doubles that the caller
  ///                  owns and releases with `delete[]` or by passing the pointer again
  /// @return 3; -10 when the projection refused, and then `xyz` stays as it was.  A
  ///         type outside 0 to 14 projects nothing: 3, and three zeros
  int FromTo(LatLon position, double** xyz);
  /// The same with another altitude than the position's own.
  int FromTo(LatLon position, double altitude, double** xyz);
  /// The same with a given projection, which becomes the one in force, even when it
  /// refuses.
  int FromTo(LatLon position, double altitude, projType type, double** xyz);

  /// Converts world coordinates back with the projection in force.
  ///
  /// @param xyz       three doubles, in the unit of the radius
  /// @param position  receives latitude and longitude; its altitude stays
  /// @return 1; -10 for a projection without an inverse (3, 6, 10, 11, 12 and 13), and
  ///         then `position` stays as it was.  A type outside 0 to 14 converts
  ///         nothing: 1, and the geographic point as it stands
  int FromTo(const double* xyz, LatLon* position);
  /// The same.
  ///
  /// @param altitude  receives the altitude last given to `setLLCoordinates`, not the
  ///                  one the inverse found
  int FromTo(const double* xyz, LatLon* position, double* altitude);
  /// The same with a given projection, which becomes the one in force when it has an
  /// inverse.
  int FromTo(const double* xyz, projType type, LatLon* position, double* altitude);

  /// Converts world coordinates back with the projection in force.
  ///
  /// @return the geographic point, with the altitude that the inverse found; it belongs
  ///         to the object and changes with the next conversion.  Null for a projection
  ///         without an inverse
  LatLon* FromTo(double x, double y, double z);
  /// The same from an array of three doubles.
  LatLon* FromTo(const double* xyz);
  /// The same from a point.
  LatLon* FromTo(WorldPoint point);

  // The projections.  Each reads the geographic point, the altitude and the settings
  // that the object holds, stores its own number as the type, and stores the world
  // coordinates.  `FromTo` is the comfortable way to call them.

  /// Plate carree [12]: x and y are the degrees of longitude and latitude from the base
  /// point, as arc lengths on the globe.  The longitude difference is wrapped into
  /// [0, 360) and the latitude difference clamped into [-90, 90].  Returns 1.
  int Cartesian();
  /// Mercator [7], true to scale at the first parallel; the base latitude does not count.
  /// y is finite at the north pole and minus infinity at the south pole.  Returns 1.
  int Mercator();
  /// Lambert's cylindrical equal-area projection [10].  Returns 1.
  int LambertCylindric();
  /// Gnomonic [22]: great circles become straight lines.  Points 90 degrees and more from
  /// the base are not refused but come out mirrored.  Returns 1.
  int Gnomonic();
  /// Stereographic [21], conformal; the point opposite to the base has no place.
  /// Returns 1.
  int Stereo();
  /// Orthographic [20], the globe seen from afar; the far side falls on the near.
  /// Returns 1.
  int Orthographic();
  /// Postel's azimuthal equidistant projection [25]: distances from the base point are true.
  /// Returns 1.
  int Postel();
  /// Lambert's azimuthal equal-area projection [24]; the point opposite to the base has no
  /// place.  Returns 1.
  int LambertAzimuthal();
  /// Lambert's conformal conic projection [15] on the two standard parallels.
  ///
  /// With equal parallels the cone's scale comes from the base latitude, which must not
  /// be 0, and every point is its own origin: y is 0 all along the base meridian.
  ///
  /// @return 1; 0 when a parallel is 0: one line goes to standard error, and the world
  ///         coordinates are three zeros
  int LambertConical();
  /// Albers' equal-area conic projection [14] on the two standard parallels.
  ///
  /// With different parallels z is 0 and the base latitude must not be 0; with equal
  /// ones z is the altitude, the base latitude does not count, and areas are true on
  /// the base meridian only.
  ///
  /// @return as for `LambertConical`
  int Albers();
  /// Cassini-Soldner [13] as a series, good near the base meridian.  Returns 1.
  int CassiniSoldner();
  /// Bonne's equal-area projection [19], true along the base latitude, which must not be 0.
  /// Returns 1.
  int Bonne();
  /// Werner's heart-shaped equal-area projection [19] about the north pole, or about the
  /// south pole when the base latitude is negative.  That pole itself has no value.
  /// Returns 1.
  int Werner();
  /// Sanson-Flamsteed, the sinusoidal equal-area projection [30].  Returns 1.
  int SansonFlamsteed();
  /// The globe itself: x towards longitude 0 on the equator, y towards longitude 90
  /// east, z towards the north pole, all from the centre; the altitude lifts the point.
  /// The base point does not count.  Returns 1.
  int Globe();

  // The inverses.  Each reads the world coordinates that the object holds (zeros
  // without any), stores its own number as the type, stores the geographic point with
  // z, or the height above the globe, as its altitude, and returns 1.  Input that no
  // point maps to gives angles that are not numbers.

  /// Inverse of `Cartesian`.
  int inverseCartesian();
  /// Inverse of `Mercator`.
  int inverseMercator();
  /// Inverse of `LambertCylindric`.
  int inverseLambertCylindric();
  /// Inverse of `Stereo`.
  ///
  /// The longitude of every azimuthal inverse comes from an arc tangent without a
  /// quadrant: a point more than 90 degrees of longitude from the base comes back in
  /// the wrong half.  With the base at a pole this one also mirrors the longitude about
  /// the base meridian.  The exact centre gives the base point.
  int inverseStereo();
  /// Inverse of `Orthographic`, for the near side; quadrant and centre as for
  /// `inverseStereo`.
  int inverseOrthographic();
  /// Inverse of `LambertAzimuthal`; quadrant and centre as for `inverseStereo`.
  int inverseLambertAzimuthal();
  /// Inverse of `LambertConical` with two different parallels; equal ones give NaN.
  int inverseLambertConical();
  /// Inverse of `Albers` with two different parallels; with equal ones it does not undo the
  /// forward projection, and two parallels of 0 give NaN.
  int inverseAlbers();
  /// Inverse of `Globe`; on the axis the longitude is NaN.
  int inverseGlobe();

  // The projections without an inverse change nothing and return 0.
  int inverseGnomonic();
  int inversePostel();
  int inverseCassiniSoldner();
  int inverseBonne();
  int inverseWerner();
  int inverseSansonFlamsteed();

 private:
  friend struct ProjectionTestAccess;

  /// What the formulas read of the settings, with the angles in radians.
  struct Settled {
    bool made = false;
    double phi0 = 0.0;  // the base point
    double lambda0 = 0.0;
    double sin_phi0 = 0.0;
    double cos_phi0 = 0.0;
    double phi1 = 0.0;  // the parallels
    double phi2 = 0.0;
    double cos_phi1 = 0.0;
  };
  /// The constants of a true conic, by the names of its formulas (projection/conic.cpp and
  /// projection/inverse.cpp).
  struct LambertCone {
    bool made = false;
    double n = 0.0;
    double t1 = 0.0;
    double scale = 0.0;
    double rho0 = 0.0;
  };
  struct AlbersCone {
    bool made = false;
    double s = 0.0;
    double sin_phi1 = 0.0;
    double k = 0.0;
    double offset = 0.0;
  };
  struct InverseCone {
    bool made = false;
    double n = 0.0;
    double s = 0.0;  // Albers' alone
    double scale = 0.0;
    double rho0 = 0.0;
  };

  // Each is made for the first point that needs it and kept until a setting changes.
  const Settled& settled();
  const LambertCone& lambertCone();
  const AlbersCone& albersCone();
  const InverseCone& inverseLambertCone();
  const InverseCone& inverseAlbersCone();
  void settle();
  void forgetSettled();

  double pointLatRad() const;
  double pointLonRad() const;
  void renewWorld();
  int storeWorld(double x, double y, double z);
  int storePoint(double lat_rad, double lon_rad, double altitude);

  int inverseAzimuthal(double rho, double c, double north_sign);

  int world_count_ = 3;
  bool has_world_ = false;
  LatLon point_;
  double altitude_ = 0.0;
  WorldPoint world_{0.0, 0.0, 0.0};  // zeros while there are none
  projType type_;
  double radius_;
  LatLon base_;
  // A parallel is kept in the longitude field, which has room for it as for any angle.
  LatLon first_par_;
  LatLon second_par_;
  // Its longitude is added to every longitude; nothing sets it, so it stays 0.
  LatLon reference_;

  Settled settled_;
  LambertCone lambert_;
  AlbersCone albers_;
  InverseCone inverse_lambert_;
  InverseCone inverse_albers_;
};

#endif
