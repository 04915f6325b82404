// A USGS DEM as one grid of elevations, the numbers read as they are meant.

#ifndef KZGIS_ELEVATION_H
#define KZGIS_ELEVATION_H

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kzgis/dem.h"
#include "kzgis/export.h"
#include "kzgis/result.h"
#include "kzgis/types.h"

// Reading does not throw.  Without memory the error is of kind `ErrorKind::out_of_memory`, or
// `cannot_read` where the host could not make a stream for the file.

namespace kzgis {

/// What x and y of a grid are.
enum class GroundPlan {
  geographic,   ///< longitude and latitude, in degrees
  utm,          ///< easting and northing in the UTM zone of the grid
  state_plane,  ///< easting and northing in the State Plane zone of the grid
  other,        ///< another projection, which the file's parameters describe
};

/// The unit of x and y.
enum class GroundUnit { unknown, degrees, feet, metres };

/// The unit of elevations.
enum class ElevationUnit { unknown, feet, metres };

/// A place in the ground plan of a grid.
struct GroundPoint {
  double x = 0.0;  ///< eastwards
  double y = 0.0;  ///< northwards
};

/// The elevations of a quadrangle.
///
/// Elevations are values at points, those of the file; each point is the centre of a cell that
/// reaches half a step each way.  Formats that place the corner of the first cell, such as
/// the geotransform of GDAL, have it at (west - step_x / 2, north + step_y / 2).
///
/// Files in arc-seconds or radians come out in degrees; in every other coordinates are in the
/// file's unit.  The rows of a projected grid stand at whole multiples of `step_y`, as the
/// standard asks of profiles; one that begins between them is moved to the nearest, as GDAL
/// does too.
struct KZGIS_EXPORT ElevationGrid {
  std::string name;  ///< of the quadrangle, without the blanks around it
  GroundPlan plan = GroundPlan::other;
  int zone = 0;  ///< of UTM or State Plane; below 0 in the southern hemisphere
  GroundUnit ground_unit = GroundUnit::unknown;
  ElevationUnit elevation_unit = ElevationUnit::unknown;
  /// South-west, north-west, north-east, south-east corner of the quadrangle.
  std::array<GroundPoint, 4> corners;

  kz_long columns = 0;
  kz_long rows = 0;
  double west = 0.0;    ///< x of the points of column 0
  double north = 0.0;   ///< y of the points of row 0
  double step_x = 0.0;  ///< from a column to the next, eastwards; > 0
  double step_y = 0.0;  ///< from a row to the next, southwards; > 0

  /// Row after row from the north, each from the west: columns times rows of them, in
  /// `elevation_unit`, resolution and local datum applied.  NaN where the file has none:
  /// outside of a tilted quadrangle, and where it stores the void value, -32767.
  std::vector<float> elevations;
  std::size_t empty_cells = 0;  ///< how many of them are NaN
  float lowest = 0.0F;          ///< NaN when all are
  float highest = 0.0F;
  /// Elevations of the file left out because they lie south or north of the quadrangle that
  /// its header describes.
  std::size_t left_out = 0;

  /// All of logical record A, D exponents read.  A field that holds no number is NaN, or the
  /// least int; texts have no NUL behind them.
  dem::RecordA header;

  /// The elevation at `row` from the north and `column` from the west, both from 0; NaN
  /// outside of the grid.
  float at(kz_long row, kz_long column) const;
  /// x of the points of a column.
  double x(kz_long column) const;
  /// y of the points of a row.
  double y(kz_long row) const;
};

/// Reads a whole USGS DEM.
///
/// Blocks of 1024 bytes may follow each other or stand in lines (LF or CRLF behind them, with
/// or without the blanks at their ends); the last may be short; record C and what else is
/// behind the last profile is left alone.  Old headers of 864 bytes, filled up with blanks,
/// are read too.  Profiles, of any length each, are placed by their base coordinates.
///
/// Refused are files that hold no regular grid, end early, have text where a number belongs,
/// put two profiles in one column, or whose header describes a quadrangle many times as large
/// as the file can fill: memory stays within a small multiple of the file's size.
///
/// @param path  may hold path variables (see FILEmap_variables); a named pipe is refused
/// @return `bad_data`, with the place in the file, when it is refused; `cannot_read`, also where
///         the host has no memory for a stream; `out_of_memory`
KZGIS_EXPORT Result<ElevationGrid> read_dem(const std::string& path);

/// The same for a file that is in memory already, uncompressed for instance.
///
/// @param name  begins the message of an error
KZGIS_EXPORT Result<ElevationGrid> read_dem(std::span<const char> bytes, std::string_view name);

}  // namespace kzgis

#endif
