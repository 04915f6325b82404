#ifndef KZGIS_CHART_H
#define KZGIS_CHART_H

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "kzgis/box.h"
#include "kzgis/export.h"
#include "kzgis/projection.h"
#include "kzgis/result.h"

// The fifteen projections of the sphere for arrays of points, there and back, centred on a base
// point.  Any number of threads may use one chart at once.  Projecting needs no memory.

namespace kzgis {

/// The name of a projection, in lower case: "mercator", "lambert conic conformal".
///
/// @return a name that stays for good; empty for a number that is no projection's
KZGIS_EXPORT std::string_view projection_name(projType type);

/// Finds a projection by its name.
///
/// Upper and lower case are alike in ASCII, and so are a blank, a hyphen and an underscore, so that
/// names need no quotes in a shell: "Lambert-Conic-Conformal".
///
/// @return nothing when no projection has that name
KZGIS_EXPORT std::optional<projType> find_projection(std::string_view name);

/// How coordinates are calculated: both ways in double precision, several points at once where the
/// processor can, with sines, logarithms and the like of the library's own.
enum class Arithmetic {
  /// The same bits on every processor, with every compiler and C library.  Each elementary
  /// function is right to within a few units in its last place.
  exact,
  /// Where the processor can, products and sums are rounded once and not twice, and digits behind
  /// what is promised of `exact` are those of the processor.  On a globe of the Earth's size
  /// coordinates are less than a micrometre from the exact ones where the projection does not
  /// stretch without end (docs/maps.md has the largest differences).  The same points have a
  /// place, but for those that the edge of a map runs through within 1e-14 radians.
  fast,
};

/// What a chart shows.  Settings that a projection does not use do not count, but must lie in
/// their ranges all the same.
struct ChartParameters {
  /// The base point, the middle of the map: degrees, the latitude from -90 to 90, the longitude
  /// any finite number.
  double base_lat = 0.0, base_lon = 0.0;

  /// Standard parallels in degrees, from -90 to 90.
  ///
  /// The two conics (Lambert conic, Albers) are true to scale along both, by themselves along 20
  /// and 60 (-20 and -60 for a base latitude below 0).  One alone, or two equal ones, make a
  /// cone that touches the sphere there.  Mercator is true to scale along the first one, by
  /// itself along the equator.
  std::optional<double> first_parallel{}, second_parallel{};

  /// Of the globe, > 0; world coordinates have its unit.
  double radius = 6378000.0;

  /// How far from the base point outlines and frame of an azimuthal map or the globe reach, in
  /// degrees: above 0 and below 90 for the gnomonic one (60 by itself), up to 90 for orthographic
  /// and globe (90), below 180 for the stereographic one (90), up to 180 for Postel and Lambert's
  /// azimuthal one (180).  Points are projected beyond it too.
  std::optional<double> reach_deg{};

  /// What outlines and frame of the other maps show, in degrees: x is the longitude from the base
  /// meridian, within -180 to 180, y the latitude.  By itself it is all of the globe, but
  /// Mercator's map ends at 85.0511287798066 degrees, where it is a square, and a conic of northern
  /// parallels ends 30 (Lambert) or 60 (Albers) degrees south of the equator, one of southern
  /// parallels as far north of it.  Mercator and the Lambert conic show nothing beyond 89.99
  /// degrees where they have no place for a pole. Points are projected outside of the window too.
  std::optional<Box> window{};
};

/// Numbers made once from the parameters of a chart, for a globe of radius 1; of no use outside
/// of the library.  What each means in a family of projections its source in chart/ says.
struct ChartConstants {
  double base_lat_deg = 0.0;
  double base_lon_deg = 0.0;  ///< within -180 to 180
  double radius = 1.0;
  double sin_base = 0.0, cos_base = 1.0;
  double mirror = 1.0;  ///< -1: north and south change places before and after
  double cone = 1.0;
  double scale = 1.0;
  double gap = 0.0;
  double origin = 0.0;
  double reference = 0.0;
};

/// One projection with its parameters.
///
/// World coordinates: x runs to the east and y to the north of the origin, in the unit of the
/// radius.  The origin is the base point, with two exceptions: y of Mercator counts from the
/// equator, and the globe's x, y and z count from its centre (x towards longitude 0, y towards
/// longitude 90 east, z towards the north pole), whatever the base.
///
/// Formulas are those of J. P. Snyder, "Map Projections: A Working Manual", USGS Professional
/// Paper 1395 (1987), for the sphere, brought into forms that keep their digits near the base,
/// its antipode, the poles, and for cones that are almost cylinders.  Coordinates agree with
/// PROJ's on the sphere to a micrometre on a globe of the Earth's size where both have the same
/// origin; PROJ's cea and sinu have theirs on the equator, and its bonne with lat_1 = 90, which
/// is Werner's projection, has its own at the pole.  From the classic `Projection`, whose pi is
/// short, they are less than 5 cm away up to 3 radii from the origin, where it means the same
/// point: it does not bring longitude differences into [-180, 180), has a series for
/// Cassini-Soldner, and other formulas for cones with one parallel.
///
/// Longitudes may be any finite numbers; their differences from the base meridian are brought
/// into [-180, 180), so that 180 degrees east of it lies at the western end of the map.
///
/// A point without a place becomes NaN in all coordinates, and is counted.  No projection has
/// one for latitudes beyond +-90, what is not finite, or where the result would not be finite;
/// neither have
///
/// | projection           | forward                                | back                      |
/// |----------------------|----------------------------------------|---------------------------|
/// | Cartesian            | -                                      | outside of the map        |
/// | Mercator             | both poles                             | x outside of the map      |
/// | Lambert cylindrical  | -                                      | outside of the map        |
/// | Sanson-Flamsteed     | -                                      | outside of the map        |
/// | Cassini-Soldner      | -                                      | outside of the map        |
/// | Gnomonic             | 90 degrees from the base and beyond    | -                         |
/// | Orthographic         | beyond 90 degrees from the base        | outside of the map        |
/// | Stereographic        | the antipode of the base               | -                         |
/// | Postel               | the antipode                           | outside of the map        |
/// | Lambert azimuthal    | the antipode                           | outside of the map        |
/// | Lambert conic        | the pole that the cone opens towards   | beside the cone           |
/// | Albers, Bonne, Werner| -                                      | outside of the map        |
/// | Globe                | altitudes of -radius and below         | the centre                |
///
/// Edges are taken to within 1e-10 radians, 0.6 mm on the Earth: so near to them, points at the
/// gnomonic horizon and at antipodes have no place, while the horizon of the orthographic map and
/// the edges of maps still have one.
///
/// Some maps draw a point of the globe as a line.  A pole lies where the longitude that comes with
/// it says.  The point of the equator 90 degrees east (west) of the base is the whole eastern
/// (western) edge of Cassini-Soldner, and lies where the equator meets that edge.  On the way
/// back, the whole line is the point: the edge of Postel's and Lambert's azimuthal map is the
/// antipode.  A pole may come back with any longitude.
///
/// There and back, a point moves by less than 1e-9 degrees along the globe (a longitude counts
/// times the cosine of its latitude), anywhere but where the projection itself forgets: there a
/// double near R changes less than the point does.  Within `reach` of the place named it moves
/// by `most` at most,
///
/// | projection          | place                                   | reach        | most       |
/// |---------------------|-----------------------------------------|--------------|------------|
/// | Lambert cylindrical | both poles                              | 0.01 degrees | 3e-6 deg.  |
/// | Orthographic        | 90 degrees from the base                | 0.01         | 3e-6       |
/// | Lambert azimuthal   | the antipode                            | 0.02         | 1e-5       |
/// | Albers              | both poles, but the one at the apex     | 0.05         | 2e-5       |
///
/// More is lost on a Lambert conic whose base or parallels lie near to the pole that has no place:
/// its origin is far away from all that is on the map.
class KZGIS_EXPORT Chart {
 public:
  /// Makes a chart, or says in one sentence which parameter is out of range.
  ///
  /// Refused, with `ErrorKind::bad_argument`, are parameters outside of the ranges above, NaN and
  /// infinities; parallels of a conic that are opposite, such as 30 and -30, or nearer to it than
  /// 1e-9 degrees, where the cone is a cylinder; parallels of +-90 for Mercator and the Lambert
  /// conic, and a base of the latter at the pole that has no place; and base latitudes of Bonne
  /// within 1e-9 degrees of the equator, where it is Sanson-Flamsteed.
  static Result<Chart> make(projType type, const ChartParameters& parameters = {});

  projType type() const { return type_; }
  /// As given to `make`, with parallels, reach and window filled in where the projection uses them.
  const ChartParameters& parameters() const { return parameters_; }

  // Spans are of one length each; where they are not, the shortest counts, and the rest of the
  // others is left alone.  The spans of a call may be the same arrays in any order; they must
  // not overlap otherwise.

  /// Projects points from degrees to world coordinates.
  ///
  /// The globe is not flat: it has no place for any point here.
  ///
  /// @return how many points have no place: theirs are NaN
  std::size_t project(std::span<const double> lat, std::span<const double> lon, std::span<double> x,
                      std::span<double> y, Arithmetic arithmetic = Arithmetic::exact) const;

  /// The same with altitudes.
  ///
  /// @param alt  in the unit of the radius; one that is not finite has no place
  /// @param z    receives the altitude; for the globe the distance north of the equator's plane
  std::size_t project(std::span<const double> lat, std::span<const double> lon,
                      std::span<const double> alt, std::span<double> x, std::span<double> y,
                      std::span<double> z, Arithmetic arithmetic = Arithmetic::exact) const;

  /// Finds the points of the globe that world coordinates belong to.
  ///
  /// The globe is not flat: it has no place for any point here.
  ///
  /// @param lat  receives degrees within -90 to 90
  /// @param lon  receives degrees in [-180, 180)
  /// @return how many points have no place: theirs are NaN
  std::size_t unproject(std::span<const double> x, std::span<const double> y, std::span<double> lat,
                        std::span<double> lon, Arithmetic arithmetic = Arithmetic::exact) const;

  /// The same with altitudes.
  ///
  /// @param z    the altitude; for the globe the distance north of the equator's plane
  /// @param alt  receives the altitude
  std::size_t unproject(std::span<const double> x, std::span<const double> y,
                        std::span<const double> z, std::span<double> lat, std::span<double> lon,
                        std::span<double> alt, Arithmetic arithmetic = Arithmetic::exact) const;

 private:
  Chart(projType type, const ChartParameters& parameters);

  projType type_;
  ChartParameters parameters_;
  ChartConstants constants_;
};

/// Projects points as the classic class does: bit for bit what `Projection::FromTo` gives.
///
/// Where the projection refuses it refuses every point: all become NaN, and one line goes to
/// standard error, not one a point.  Spans are as for `Chart`.  Takes the memory that a
/// conversion of the class takes, and throws `std::bad_alloc` without.
///
/// @param projection  the settings; its own point and world coordinates stay
/// @param alt         in the unit of the radius
/// @return how many points the projection refused
KZGIS_EXPORT std::size_t project_classic(const Projection& projection, std::span<const double> lat,
                                         std::span<const double> lon, std::span<const double> alt,
                                         std::span<double> x, std::span<double> y,
                                         std::span<double> z);

}  // namespace kzgis

#endif
