// The triangles of a record.

#ifndef KZGIS_TOOLS_TRIANGULATE_RECORD_MESH_H
#define KZGIS_TOOLS_TRIANGULATE_RECORD_MESH_H

#include <kzgis/chart.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kzgis::tools {

struct RecordMesh {
  std::vector<WorldPoint> points;        ///< of the rings as they are drawn, then the new ones
  std::vector<std::uint32_t> triangles;  ///< three of their numbers each, from 0
  double area = 0.0;                     ///< of the triangles
  std::size_t crossings = 0;             ///< how many of the new points split sides that cross
  std::size_t added = 0;                 ///< how many points are new
};

}  // namespace kzgis::tools

#endif
