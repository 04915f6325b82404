// Meshes in longitude and latitude to world coordinates, none of them torn.

#ifndef KZGIS_TOOLS_TRIANGULATE_MESH_PROJECTOR_H
#define KZGIS_TOOLS_TRIANGULATE_MESH_PROJECTOR_H

#include <kzgis/chart.h>
#include <kzgis/mesh.h>
#include <kzgis/result.h>

#include <string>
#include <vector>

namespace kzgis::tools {

/// Projects polygons vertex by vertex.
///
/// A flat map that is torn along a meridian has two places for what lies on it, and `Chart`
/// takes the western one.  Here each ring keeps to one side: what reaches the meridian from the
/// west is drawn at the eastern end.
class MeshProjector {
 public:
  explicit MeshProjector(const Chart& chart);

  /// Replaces the points of a polygon by world coordinates.
  ///
  /// A long side is a curve once projected, and triangles with straight ones would overlap:
  /// where the projection is flat, the projected rings get a mesh of their own, whose new
  /// vertices are its own too.  On the globe the triangles stay those of longitude and latitude,
  /// and its new vertices are projected like any other.
  ///
  /// @param rings    in degrees
  /// @param options  what is asked of a flat mesh
  /// @param mesh     their mesh; replaced where the projection is flat
  /// @param points   receives one for each vertex, new ones included
  /// @return no error, or the reason why the polygon cannot be projected: `bad_data` where sides
  ///         cross that did not before
  Error project(const Rings& rings, const MeshOptions& options, Mesh& mesh,
                std::vector<WorldPoint>& points) const;

  /// True when what comes out lies flat.
  bool is_flat() const { return chart_.type() != GlobeProj; }

 private:
  static Error make_flat(const Rings& rings, const MeshOptions& options, Mesh& mesh,
                         std::vector<WorldPoint>& points);
  std::string project_ring(const Rings& rings, std::size_t ring,
                           std::vector<WorldPoint>& points) const;
  bool project_point(double lon, double lat, double from_base, WorldPoint& point) const;

  Chart chart_;
  Chart from_base_;  ///< the same for longitudes that count from the base
};

}  // namespace kzgis::tools

#endif
