// A picture of a mesh as it lies, x to the right and y up.

#ifndef KZGIS_TOOLS_TRIANGULATE_MESH_PICTURE_H
#define KZGIS_TOOLS_TRIANGULATE_MESH_PICTURE_H

#include <ostream>
#include <vector>

#include "tools/picture/render.h"
#include "tools/triangulate/record_mesh.h"

namespace kzgis::tools {

/// Draws the triangles over a tint for each record; 1600 pixels on the long side.
void draw_meshes(const std::vector<RecordMesh>& meshes, PictureFormat format, std::ostream& out);

}  // namespace kzgis::tools

#endif
