// Meshes in longitude and latitude to world coordinates, none of them torn.

#ifndef KZGIS_TOOLS_TRIANGULATE_MESH_PROJECTOR_H
#define KZGIS_TOOLS_TRIANGULATE_MESH_PROJECTOR_H

#include <kzgis/mesh.h>
#include <kzgis/projection.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tools/support/projection_options.h"

namespace kzgis::tools {

/// Projects polygons vertex by vertex.
///
/// The library takes longitude differences as they stand, from 0 to 360, so that a shape
/// over the base meridian would be torn.  Here the base meridian is the middle: each ring
/// is shifted by whole turns towards it, and world coordinates count from the base point.
class MeshProjector {
 public:
  explicit MeshProjector(const ProjectionOptions& options);

  /// Replaces the points of a polygon by world coordinates.
  ///
  /// A long side is a curve once projected, and triangles with straight ones would overlap:
  /// where the projection is flat, the projected rings get a mesh of their own.  On the globe
  /// the triangles stay those of longitude and latitude.
  ///
  /// @param rings   in degrees
  /// @param mesh    their mesh; replaced
  /// @param points  receives one for each vertex
  /// @return empty, or the reason why the polygon cannot be projected
  std::string project(const Rings& rings, Mesh& mesh, std::vector<WorldPoint>& points);

 private:
  std::string project_ring(const Rings& rings, std::size_t ring, std::vector<WorldPoint>& points);
  bool project_point(double lon, double lat, WorldPoint& point);

  projType type_;
  NumberPair base_;
  Projection projection_;
  WorldPoint origin_{};  ///< what is taken off every result
  std::unique_ptr<double[]> world_;
};

}  // namespace kzgis::tools

#endif
