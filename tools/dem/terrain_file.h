// A surface of triangles over the ground as a mesh file.

#ifndef KZGIS_TOOLS_DEM_TERRAIN_FILE_H
#define KZGIS_TOOLS_DEM_TERRAIN_FILE_H

#include <kzgis/elevation.h>

#include <cstdint>
#include <ostream>
#include <span>

#include "tools/mesh_files/mesh_writer.h"

namespace kzgis::tools {

/// Writes a surface in metres all round, so that it keeps its shape: feet are turned into metres,
/// and degrees into those of a sphere of 6371 km at the middle latitude; what the file has in
/// metres keeps its numbers.  An unknown unit is taken for metres.
///
/// @param grid       what the surface stands for
/// @param x, y, z    of each vertex, in the units of the grid
/// @param triangles  three vertices each, from 0
void write_terrain(std::ostream& out, MeshFormat format, const ElevationGrid& grid,
                   std::span<const double> x, std::span<const double> y, std::span<const double> z,
                   std::span<const std::uint32_t> triangles);

}  // namespace kzgis::tools

#endif
