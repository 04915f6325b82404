// Prisms over flat meshes.

#ifndef KZGIS_TOOLS_TRIANGULATE_EXTRUSION_H
#define KZGIS_TOOLS_TRIANGULATE_EXTRUSION_H

#include <cstdint>
#include <span>

#include "tools/mesh_files/mesh_part.h"

namespace kzgis::tools {

/// Raises a mesh to a body: what it was is the bottom, the same above it the top, and walls stand
/// on the border.
///
/// The body is closed, and its triangles run counter-clockwise seen from outside.  Where the
/// border touches itself in a vertex, each of the corners that meet there has a vertex of its
/// own: else four walls would share an upright edge.
///
/// @param part    its triangles run counter-clockwise seen from above
/// @param height  > 0, in the unit of the vertices
/// @param globe   up is away from the origin, where the centre of a globe is; else it is z
/// Throws `CommandError` when the body is not closed, which no mesh that tiles lets happen.
MeshPart extrude(const MeshPart& part, double height, bool globe);

/// True when each edge has two triangles, which run along it in opposite directions.
bool is_closed(std::span<const std::uint32_t> triangles);

}  // namespace kzgis::tools

#endif
