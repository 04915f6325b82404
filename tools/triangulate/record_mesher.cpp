// Triangles first, then their places on the map.

#include "tools/triangulate/record_mesher.h"

#include <cmath>
#include <string>
#include <utility>

#include "tools/mesh_files/mesh_part.h"

namespace kzgis::tools {

namespace {

/// Whether `kzgis::triangulate` has a range for it.
bool in_range(double v) {
  const double magnitude = std::fabs(v);
  return v == 0.0 || (magnitude >= 0x1p-480 && magnitude <= 0x1p+500);
}

/// Whether new vertices where sides cross would mend a polygon that was refused.
bool is_mendable(const Rings& rings, const Flaw& flaw) {
  if (flaw.kind != ErrorKind::bad_data) return false;
  if (flaw.vertex < 0) return true;
  const auto vertex = static_cast<std::size_t>(flaw.vertex);
  return in_range(rings.x[vertex]) && in_range(rings.y[vertex]);
}

Error refusal(const Error& error, bool mendable) {
  return {error.kind, error.message + (mendable ? "; try --repair" : "")};
}

}  // namespace

RecordMesher::RecordMesher(const MeshOptions& options,
                           const std::optional<MeshProjector>& projector)
    : options_(options), before_projection_(options), projector_(projector) {
  if (projector_ && projector_->is_flat()) {
    before_projection_ = {};
    before_projection_.split_crossings = options.split_crossings;
  }
}

Result<RecordMesh> RecordMesher::mesh(const Rings& rings) const {
  auto mesh = triangulate(rings, before_projection_);
  if (!mesh) return refusal(mesh.error(), is_mendable(rings, mesh.error()));
  RecordMesh result;
  for (std::size_t v = 0; v < rings.x.size(); ++v) {
    result.points.push_back({rings.x[v], rings.y[v], 0.0});
  }
  for (std::size_t v = 0; v < mesh->new_x.size(); ++v) {
    result.points.push_back({mesh->new_x[v], mesh->new_y[v], 0.0});
  }
  result.area = area(result.points, mesh->triangles);
  if (projector_) {
    const Error error = projector_->project(rings, options_, *mesh, result.points);
    if (error) {
      const bool crosses = error.kind == ErrorKind::bad_data && !options_.split_crossings;
      return refusal(error, crosses);
    }
  }
  result.crossings = mesh->crossings;
  result.added = mesh->new_x.size();
  result.triangles = std::move(mesh->triangles);
  return result;
}

}  // namespace kzgis::tools
