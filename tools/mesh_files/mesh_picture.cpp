// The triangles of every record, their sides, and the outlines of records over them.

#include "tools/mesh_files/mesh_picture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>

#include "tools/picture/colour.h"
#include "tools/support/mesh_edges.h"

namespace kzgis::tools {

namespace {

constexpr double kLongSide_px = 1600.0;
constexpr double kShortestSide_px = 200.0;
constexpr double kMargin_px = 24.0;
constexpr double kEdge_px = 0.45;
constexpr double kBorder_px = 1.1;

/// Where the meshes lie on the sheet.
struct Fit {
  double width = kLongSide_px;
  double height = kLongSide_px;
  double scale = 1.0;  ///< pixels per unit
  double x_middle = 0.0, y_middle = 0.0;

  double x(const WorldPoint& p) const { return 0.5 * width + (p.x - x_middle) * scale; }
  double y(const WorldPoint& p) const { return 0.5 * height - (p.y - y_middle) * scale; }
};

/// The whole of all meshes on the sheet, as large as its long side takes, and centred.
Fit fit(const std::vector<MeshPart>& meshes) {
  constexpr double kFar = std::numeric_limits<double>::infinity();
  double west = kFar, east = -kFar, south = kFar, north = -kFar;
  for (const MeshPart& mesh : meshes) {
    for (const WorldPoint& p : mesh.vertices) {
      west = std::min(west, p.x);
      east = std::max(east, p.x);
      south = std::min(south, p.y);
      north = std::max(north, p.y);
    }
  }
  Fit result;
  const double across = east - west;
  const double up = north - south;
  const double longest = std::max(across, up);
  // Nothing to draw, or nothing that a double can measure: an empty sheet.
  if (!(longest > 0.0 && std::isfinite(longest))) return result;
  const double room = kLongSide_px - 2.0 * kMargin_px;
  result.scale = room / longest;
  const auto side = [&](double extent) {
    return std::max(kShortestSide_px, std::round(extent * result.scale + 2.0 * kMargin_px));
  };
  result.width = side(across);
  result.height = side(up);
  result.x_middle = 0.5 * (west + east);
  result.y_middle = 0.5 * (south + north);
  return result;
}

/// All triangles as one path: filled one by one, their seams would show as hairlines.
void fill(cairo_t* cairo, const Fit& sheet, const MeshPart& mesh) {
  for (std::size_t i = 0; i < mesh.triangles.size(); ++i) {
    const WorldPoint& p = mesh.vertices[mesh.triangles[i]];
    if (i % 3 == 0) {
      cairo_move_to(cairo, sheet.x(p), sheet.y(p));
    } else {
      cairo_line_to(cairo, sheet.x(p), sheet.y(p));
    }
    if (i % 3 == 2) cairo_close_path(cairo);
  }
  cairo_fill(cairo);
}

void stroke(cairo_t* cairo, const Fit& sheet, const MeshPart& mesh, std::span<const MeshEdge> edges,
            double width) {
  for (const auto& [from, to] : edges) {
    const WorldPoint& a = mesh.vertices[from];
    const WorldPoint& b = mesh.vertices[to];
    cairo_move_to(cairo, sheet.x(a), sheet.y(a));
    cairo_line_to(cairo, sheet.x(b), sheet.y(b));
  }
  cairo_set_line_width(cairo, width);
  cairo_stroke(cairo);
}

}  // namespace

void draw_meshes(const std::vector<MeshPart>& meshes, PictureFormat format, std::ostream& out) {
  const Fit sheet = fit(meshes);
  render(out, format, sheet.width, sheet.height, [&](cairo_t* cairo) {
    set_colour(cairo, colours::paper);
    cairo_paint(cairo);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    for (std::size_t i = 0; i < meshes.size(); ++i) {
      const MeshEdges edges = mesh_edges(meshes[i].triangles);
      set_colour(cairo, kTints[i % kTints.size()]);
      fill(cairo, sheet, meshes[i]);
      set_colour(cairo, colours::mesh);
      stroke(cairo, sheet, meshes[i], edges.inner, kEdge_px);
      set_colour(cairo, colours::frame);
      stroke(cairo, sheet, meshes[i], edges.border, kBorder_px);
    }
  });
}

}  // namespace kzgis::tools
