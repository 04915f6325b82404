// Vertices with normals, for light and shade.

#ifndef KZGIS_TOOLS_MESH_FILES_NORMALS_H
#define KZGIS_TOOLS_MESH_FILES_NORMALS_H

#include <kzgis/chart.h>

#include <cstdint>
#include <vector>

#include "tools/mesh_files/mesh_part.h"

namespace kzgis::tools {

/// The triangles of a part, over vertices that have a normal each.
struct ShadedPart {
  std::vector<std::uint32_t> source;  ///< of each vertex the part's that it is a copy of
  std::vector<WorldPoint> normals;    ///< of length 1, one for each
  std::vector<std::uint32_t> triangles;
};

/// Gives each vertex the mean direction of its triangles, weighted by area.
///
/// Where triangles stand at more than 40 degrees to each other is an edge that shall be seen, as
/// between the top and the walls of a prism: there the vertex is copied.
ShadedPart with_normals(const MeshPart& part);

}  // namespace kzgis::tools

#endif
