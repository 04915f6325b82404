// From the polygon of a record to the triangles that are written.

#ifndef KZGIS_TOOLS_TRIANGULATE_RECORD_MESHER_H
#define KZGIS_TOOLS_TRIANGULATE_RECORD_MESHER_H

#include <kzgis/mesh.h>
#include <kzgis/result.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "tools/triangulate/mesh_projector.h"

namespace kzgis::tools {

/// The triangles of a record.
struct RecordMesh {
  std::vector<WorldPoint> points;        ///< the record's, then the new ones
  std::vector<std::uint32_t> triangles;  ///< three of their numbers each, from 0
  double area = 0.0;                     ///< before it was projected
  std::size_t crossings = 0;             ///< how many of the new points split sides that cross
  std::size_t added = 0;                 ///< how many points are new
};

/// Triangulates polygons and projects them, all with the same options.
class RecordMesher {
 public:
  /// @param options    what is asked of the triangles that come out
  /// @param projector  none for polygons that stay as they are
  RecordMesher(const MeshOptions& options, const std::optional<MeshProjector>& projector);

  /// Refuses, with a reason, what is no polygon or cannot be projected.  Of sides that cross, or
  /// rings that overlap, the reason ends with the option of the command that splits them.
  Result<RecordMesh> mesh(const Rings& rings) const;

 private:
  MeshOptions options_;
  MeshOptions before_projection_;  ///< of a mesh that a flat projection replaces
  std::optional<MeshProjector> projector_;
};

}  // namespace kzgis::tools

#endif
