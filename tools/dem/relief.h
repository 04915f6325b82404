// The light on a surface of elevations.

#ifndef KZGIS_TOOLS_DEM_RELIEF_H
#define KZGIS_TOOLS_DEM_RELIEF_H

#include <kzgis/elevation.h>

#include <cstdint>
#include <vector>

namespace kzgis::tools {

/// Where the light comes from, in degrees.
struct Sun {
  double azimuth_deg = 315.0;  ///< clockwise from north
  double altitude_deg = 45.0;  ///< above the horizon
};

/// The distance between neighbours in a grid, in metres; on a sphere of 6371 km, at the
/// middle latitude, where the grid is in degrees.  An unknown unit is taken for metres.
struct CellSize {
  double x_m = 1.0;
  double y_m = 1.0;
};
CellSize cell_size(const ElevationGrid& grid);

/// Metres in the unit of a grid's elevations.
double elevation_unit_m(const ElevationGrid& grid);

/// The same grid with `times` (>= 1) cells in the place of each, both ways: a smooth surface
/// through the elevations, after E. Catmull and R. Rom, "A class of local interpolating
/// splines" (1974), so that a picture larger than its grid stays sharp.  Next to cells
/// without an elevation it is bilinear; a cell without one stays without.
ElevationGrid refine(const ElevationGrid& grid, std::int32_t times);

/// How bright each cell lies in the light, from 0 in shadow to 1 straight to the sun; NaN
/// where it has no elevation.  Row after row, as in the grid.
///
/// The surface is inclined as B. K. P. Horn has it, "Hill shading and the reflectance map",
/// Proceedings of the IEEE 69 (1981): by the eight neighbours, those at the sides counting
/// twice.  It reflects as a matt one does.  A neighbour that is missing is taken to carry on
/// the slope from the other side of the cell.
std::vector<float> shade(const ElevationGrid& grid, const Sun& sun);

}  // namespace kzgis::tools

#endif
