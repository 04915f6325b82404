// Projecting the rings of a polygon one by one, and proving that what comes out is a polygon
// still: a mesh of the projected rings exists, and none of them changed its winding.

#include "tools/triangulate/mesh_projector.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/support/areas.h"
#include "tools/support/degrees.h"
#include "tools/support/projection_options.h"

namespace kzgis::tools {

namespace {

// Files cut at the antimeridian miss it by this much at most.
constexpr double kSeamTolerance_deg = 1e-6;

/// A map about a point has a reach instead of a meridian where it is torn.
bool is_torn(const Chart& chart) { return !chart.parameters().reach_deg; }

Chart with_base_meridian_0(const Chart& chart) {
  ChartParameters parameters = chart.parameters();
  parameters.base_lon = 0.0;
  return make_chart(chart.type(), parameters);
}

std::size_t end_of(const Rings& rings, std::size_t ring) {
  return ring + 1 < rings.starts.size() ? static_cast<std::size_t>(rings.starts[ring + 1])
                                        : rings.x.size();
}

/// Where the rings go once round the globe: those that begin at their western end, and what
/// lies in them.  Else none.
std::vector<bool> rings_at_west_end(const Rings& rings) {
  const std::size_t count = rings.starts.size();
  std::vector<bool> chosen(count, false);
  if (rings.x.empty()) return chosen;
  const auto [west, east] = std::ranges::minmax(rings.x);
  if (east - west < 360.0 - kSeamTolerance_deg) return chosen;
  std::vector<bool> begins_there(count, false);
  for (std::size_t r = 0; r < count; ++r) {
    for (auto v = static_cast<std::size_t>(rings.starts[r]); v < end_of(rings, r); ++v) {
      if (rings.x[v] <= west + kSeamTolerance_deg) begins_there[r] = true;
    }
  }
  // Where sides cross there is none, and the halves become one polygon: splitting them cuts out
  // what they overlap by.
  auto nesting = nest(rings);
  if (!nesting) return chosen;
  std::vector<std::int32_t> parent = std::move(nesting->parent);
  const auto up = [&parent](std::size_t r) { return static_cast<std::size_t>(parent[r]); };
  for (std::size_t r = 0; r < parent.size(); ++r) {
    std::size_t outermost = r;
    for (; parent[outermost] >= 0; outermost = up(outermost)) {
      // Halving the way for those who come later keeps deep nesting cheap.
      if (parent[up(outermost)] >= 0) parent[outermost] = parent[up(outermost)];
    }
    chosen[r] = begins_there[outermost];
  }
  return chosen;
}

/// The mesh of some of the rings, with the vertex numbers of all; on a flaw, the ring's number
/// is right and the vertex's is not.
///
/// @param first_new  the number that the first new vertex gets
Result<Mesh, Flaw> triangulate_some(const Rings& rings, const std::vector<bool>& chosen,
                                    const MeshOptions& options, std::size_t first_new) {
  std::vector<double> x;
  std::vector<double> y;
  std::vector<std::int32_t> starts;
  std::vector<std::uint32_t> number;
  for (std::size_t r = 0; r < rings.starts.size(); ++r) {
    starts.push_back(static_cast<std::int32_t>(x.size()));
    if (!chosen[r]) continue;  // an empty ring
    for (auto v = static_cast<std::size_t>(rings.starts[r]); v < end_of(rings, r); ++v) {
      x.push_back(rings.x[v]);
      y.push_back(rings.y[v]);
      number.push_back(static_cast<std::uint32_t>(v));
    }
  }
  auto mesh = triangulate({x, y, starts}, options);
  if (mesh) {
    for (std::size_t i = 0; i < mesh->new_x.size(); ++i) {
      number.push_back(static_cast<std::uint32_t>(first_new + i));
    }
    for (std::uint32_t& vertex : mesh->triangles) vertex = number[vertex];
  }
  return mesh;
}

/// Twice the signed area of a ring.
double twice_area(const Rings& rings, std::size_t ring) {
  const auto start = static_cast<std::size_t>(rings.starts[ring]);
  return twice_ring_area(
      end_of(rings, ring) - start, [&](std::size_t i) { return rings.x[start + i]; },
      [&](std::size_t i) { return rings.y[start + i]; });
}

}  // namespace

MeshProjector::MeshProjector(const Chart& chart)
    : chart_(chart), from_base_(with_base_meridian_0(chart)) {}

Error MeshProjector::project(const Rings& rings, const MeshOptions& options, Mesh& mesh,
                             std::vector<WorldPoint>& points) const {
  points.assign(rings.x.size(), {});
  for (std::size_t r = 0; r < rings.starts.size(); ++r) {
    std::string reason = project_ring(rings, r, points);
    if (!reason.empty()) return {ErrorKind::bad_argument, std::move(reason)};
  }
  if (is_flat()) return make_flat(rings, options, mesh, points);
  // The globe is whole: no side of a seam to keep to.
  constexpr double kAnywhere = 0.0;
  for (std::size_t i = 0; i < mesh.new_x.size(); ++i) {
    points.emplace_back();
    if (!project_point(mesh.new_x[i], mesh.new_y[i], kAnywhere, points.back())) {
      return {ErrorKind::bad_argument,
              "the projection has no place for " + pair_text(mesh.new_x[i], mesh.new_y[i])};
    }
  }
  return {};
}

/// Gives the projected rings a mesh of their own.
///
/// @param points  those of the rings; the mesh's new vertices are put behind them
Error MeshProjector::make_flat(const Rings& rings, const MeshOptions& options, Mesh& mesh,
                               std::vector<WorldPoint>& points) {
  std::vector<double> x;
  std::vector<double> y;
  for (const WorldPoint& point : points) {
    x.push_back(point.x);
    y.push_back(point.y);
  }
  const Rings flat{x, y, rings.starts};
  for (std::size_t r = 0; r < rings.starts.size(); ++r) {
    // A ring about the point opposite to the base comes out with its outside inside.
    if (twice_area(rings, r) * twice_area(flat, r) < 0.0) {
      return {ErrorKind::bad_argument,
              "ring " + std::to_string(r) + " is turned inside out by the projection"};
    }
  }
  // Where a file cuts shapes at the antimeridian the halves meet again, and rounding makes
  // them overlap: each side is a polygon of its own.
  mesh = {};
  std::vector<bool> chosen = rings_at_west_end(rings);
  for (int side = 0; side < 2; ++side, chosen.flip()) {
    const auto part = triangulate_some(flat, chosen, options, points.size());
    if (!part && part.error().kind == ErrorKind::bad_data) {
      return {ErrorKind::bad_data, "once projected, ring " + std::to_string(part.error().ring) +
                                       " crosses itself or another"};
    }
    if (!part) return Error{part.error().kind, part.error().message};
    mesh.triangles.insert(mesh.triangles.end(), part->triangles.begin(), part->triangles.end());
    mesh.crossings += part->crossings;
    for (std::size_t i = 0; i < part->new_x.size(); ++i) {
      mesh.new_x.push_back(part->new_x[i]);
      mesh.new_y.push_back(part->new_y[i]);
      points.push_back({part->new_x[i], part->new_y[i], 0.0});
    }
  }
  return {};
}

std::string MeshProjector::project_ring(const Rings& rings, std::size_t ring,
                                        std::vector<WorldPoint>& points) const {
  const auto start = static_cast<std::size_t>(rings.starts[ring]);
  const std::size_t end = end_of(rings, ring);
  if (start == end) return {};
  for (std::size_t v = start; v < end; ++v) {
    if (!are_degrees(rings.x[v], rings.y[v])) return not_degrees(rings.x[v], rings.y[v]);
  }
  // The turn that takes a ring between -180 and 180 takes a hole in it there too.
  const double base_lon = chart_.parameters().base_lon;
  const auto [west, east] = std::ranges::minmax(rings.x.subspan(start, end - start));
  const double turns = std::round((0.5 * (west + east) - base_lon) / 360.0);
  const double shift = -base_lon - 360.0 * turns;
  constexpr double kLimit = 180.0 + kSeamTolerance_deg;
  if (is_torn(chart_) && (west + shift < -kLimit || east + shift > kLimit)) {
    return "it lies across the meridian opposite to --base, where the projection is torn";
  }
  for (std::size_t v = start; v < end; ++v) {
    if (!project_point(rings.x[v], rings.y[v], rings.x[v] + shift, points[v])) {
      return "the projection has no place for " + pair_text(rings.x[v], rings.y[v]);
    }
  }
  return {};
}

/// @param from_base  the longitude from the base meridian, on the side of the ring
/// @return false when the projection has no place for it
bool MeshProjector::project_point(double lon, double lat, double from_base,
                                  WorldPoint& point) const {
  const bool at_seam = is_torn(chart_) && std::fabs(from_base) > 180.0 - kSeamTolerance_deg;
  if (at_seam) lon = std::clamp(from_base, -180.0, std::nextafter(180.0, 0.0));
  const Chart& chart = at_seam ? from_base_ : chart_;
  constexpr double kAltitude = 0.0;
  const std::size_t without_place = chart.project({&lat, 1}, {&lon, 1}, {&kAltitude, 1},
                                                  {&point.x, 1}, {&point.y, 1}, {&point.z, 1});
  return without_place == 0;
}

}  // namespace kzgis::tools
