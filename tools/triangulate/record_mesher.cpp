// Triangles of the polygon as it is drawn.

#include "tools/triangulate/record_mesher.h"

#include <kzgis/outline.h>

#include <cmath>
#include <string>
#include <utility>

#include "tools/mesh_files/mesh_part.h"
#include "tools/support/degrees.h"
#include "tools/triangulate/globe_mesher.h"

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

RecordMesh lying_flat(const Rings& rings, Mesh mesh) {
  RecordMesh result;
  for (std::size_t v = 0; v < rings.x.size(); ++v) {
    result.points.push_back({rings.x[v], rings.y[v], 0.0});
  }
  for (std::size_t v = 0; v < mesh.new_x.size(); ++v) {
    result.points.push_back({mesh.new_x[v], mesh.new_y[v], 0.0});
  }
  result.area = area(result.points, mesh.triangles);
  result.crossings = mesh.crossings;
  result.added = mesh.new_x.size();
  result.triangles = std::move(mesh.triangles);
  return result;
}

}  // namespace

RecordMesher::RecordMesher(const MeshOptions& options, const std::optional<Target>& target)
    : options_(options), target_(target) {}

Result<RecordMesh> RecordMesher::mesh(const Rings& rings) const {
  if (!target_) return in_place(rings);
  std::string reason = why_not_degrees(rings.x, rings.y);
  if (!reason.empty()) return Error{ErrorKind::bad_argument, std::move(reason)};
  return target_->chart.type() == GlobeProj ? mesh_on_globe(rings, options_, target_->chart)
                                            : on_plane(rings);
}

Result<RecordMesh> RecordMesher::in_place(const Rings& rings) const {
  auto mesh = triangulate(rings, options_);
  if (!mesh) return refusal(mesh.error(), is_mendable(rings, mesh.error()));
  return lying_flat(rings, *std::move(mesh));
}

Result<RecordMesh> RecordMesher::on_plane(const Rings& rings) const {
  const auto outline = project_area(target_->chart, rings, target_->tolerance);
  if (!outline) return refusal(outline.error(), false);
  auto mesh = triangulate(outline->rings(), options_);
  if (!mesh) return refusal(mesh.error(), false);
  return lying_flat(outline->rings(), *std::move(mesh));
}

}  // namespace kzgis::tools
