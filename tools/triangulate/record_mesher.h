// From the polygon of a record to the triangles that are written.

#ifndef KZGIS_TOOLS_TRIANGULATE_RECORD_MESHER_H
#define KZGIS_TOOLS_TRIANGULATE_RECORD_MESHER_H

#include <kzgis/chart.h>
#include <kzgis/mesh.h>
#include <kzgis/result.h>

#include <optional>

#include "tools/triangulate/record_mesh.h"

namespace kzgis::tools {

/// Where the triangles shall lie.
struct Target {
  Chart chart;
  double tolerance;  ///< of `project_area`; on the globe sides stay as they are
};

/// Triangulates polygons, all with the same options.
class RecordMesher {
 public:
  /// @param options  what is asked of the triangles that come out
  /// @param target   none for polygons that stay where they are
  RecordMesher(const MeshOptions& options, const std::optional<Target>& target);

  /// Refuses, with a reason, what is no polygon, and with a target what are no degrees.  Of sides
  /// that cross, or rings that overlap, the reason ends with the option of the command that splits
  /// them.  What lies beyond the edge of the map is left out, and may be all of it.
  Result<RecordMesh> mesh(const Rings& rings) const;

 private:
  Result<RecordMesh> in_place(const Rings& rings) const;
  Result<RecordMesh> on_plane(const Rings& rings) const;

  MeshOptions options_;
  std::optional<Target> target_;
};

}  // namespace kzgis::tools

#endif
