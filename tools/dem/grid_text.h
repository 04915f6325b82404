// Elevations as text: ESRI ASCII grids, and lists of points.

#ifndef KZGIS_TOOLS_DEM_GRID_TEXT_H
#define KZGIS_TOOLS_DEM_GRID_TEXT_H

#include <kzgis/elevation.h>

#include <ostream>

namespace kzgis::tools {

/// Writes an ESRI ASCII grid, georeferenced by the corner of its south-west cell; cells
/// without an elevation are -32767.
///
/// Where steps east and south differ, "dx" and "dy" stand in the place of "cellsize", as
/// GDAL reads and writes them.
void write_ascii_grid(std::ostream& out, const ElevationGrid& grid);

/// Writes a line "x,y,z" for every cell that has an elevation, from the north-west.
void write_points(std::ostream& out, const ElevationGrid& grid);

}  // namespace kzgis::tools

#endif
