// Fuzzes the polygon tree and the mesh layer with arbitrary rings: crossing, coincident,
// of no length, wound either way, of NaN and infinite coordinates.
//
// Input: see fuzz/contours.h.

#include <cmath>
#include <cstdint>
#include <ctime>
#include <limits>
#include <numeric>
#include <vector>

#include "fuzz/contours.h"
#include "fuzz/harness.h"
#include "kzgis/mesh.h"
#include "kzgis/polytree.h"

namespace {

double twice_area(const Contours& c, kz_ulong a, kz_ulong b, kz_ulong d) {
  return (c.x[b] - c.x[a]) * (c.y[d] - c.y[a]) - (c.y[b] - c.y[a]) * (c.x[d] - c.x[a]);
}

/// Indices in range, and on the grid, where products are exact, no triangle with less than
/// `least_area`, doubled.
void check_triangles(const Contours& contours, const kz_ulong* corners, std::size_t count,
                     double least_area) {
  require(count % 3 == 0);
  for (std::size_t i = 0; i < count; ++i) require(corners[i] < contours.x.size());
  if (!contours.on_grid) return;
  for (std::size_t i = 0; i < count; i += 3) {
    require(twice_area(contours, corners[i], corners[i + 1], corners[i + 2]) >= least_area);
  }
}

void check_mesh_layer(const Contours& contours) {
  const kzgis::Rings rings{contours.x, contours.y, contours.starts};
  const auto mesh = kzgis::triangulate(rings);
  const auto nesting = kzgis::nest(rings);
  require(mesh.has_value() == nesting.has_value());
  if (!mesh) {
    require(mesh.error().kind != kzgis::ErrorKind::unproved);
    return;
  }
  check_triangles(contours, mesh->triangles.data(), mesh->triangles.size(), 1.0);  // none is flat
  require(nesting->parent.size() == contours.starts.size());
  for (std::size_t r = 0; r < nesting->parent.size(); ++r) {
    const std::int32_t parent = nesting->parent[r];
    require(parent >= -1 && parent < static_cast<std::int32_t>(nesting->parent.size()));
    const std::int32_t above = parent < 0 ? 0 : nesting->depth[static_cast<std::size_t>(parent)];
    require(nesting->depth[r] == 0 || nesting->depth[r] == above + 1);
  }
}

/// Whatever rings do, they can be mended, as long as their numbers are in range and crossings few.
void check_mended(const Contours& contours) {
  const kzgis::Rings rings{contours.x, contours.y, contours.starts};
  const kzgis::MeshOptions options{
      .delaunay = contours.x.size() % 2 == 0, .split_crossings = true, .most_triangles = 5000};
  const auto mesh = kzgis::triangulate(rings, options);
  const auto flaws = kzgis::find_flaws(rings, 10);
  require(flaws.size() <= 10);
  require(flaws.empty() == kzgis::triangulate(rings).has_value());
  if (!mesh) {
    require(mesh.error().kind == kzgis::ErrorKind::bad_argument ||
            (mesh.error().kind == kzgis::ErrorKind::bad_data && !contours.on_grid));
    return;
  }
  Contours all = contours;
  all.on_grid = false;
  all.x.insert(all.x.end(), mesh->new_x.begin(), mesh->new_x.end());
  all.y.insert(all.y.end(), mesh->new_y.begin(), mesh->new_y.end());
  check_triangles(all, mesh->triangles.data(), mesh->triangles.size(), 0.0);
}

/// Any combination of options, which the bytes of the input are summed up to.
void check_options(const Contours& contours, unsigned sum) {
  kzgis::MeshOptions options;
  options.delaunay = (sum & 1U) != 0;
  options.split_crossings = (sum & 2U) != 0;
  constexpr double kLengths[] = {std::numeric_limits<double>::infinity(), 0.3, 2.0, 1e-9};
  constexpr double kAngles[] = {0.0, 10.0, 20.0, 25.0};
  options.longest_side = kLengths[sum >> 2U & 3U];
  options.least_angle_deg = kAngles[sum >> 4U & 3U];
  options.most_triangles = 500;
  const auto mesh = kzgis::triangulate({contours.x, contours.y, contours.starts}, options);
  if (!mesh) {
    require(mesh.error().kind != kzgis::ErrorKind::unproved);
    return;
  }
  require(mesh->new_x.size() == mesh->new_y.size());
  const std::size_t vertices = contours.x.size() + mesh->new_x.size();
  for (const std::uint32_t corner : mesh->triangles) require(corner < vertices);
  const auto place = [&](std::uint32_t v, const std::vector<double>& own,
                         const std::vector<double>& added) {
    return v < own.size() ? own[v] : added[v - own.size()];
  };
  if (options.longest_side > 1e6) return;
  for (std::size_t i = 0; i < mesh->triangles.size(); ++i) {
    const std::uint32_t a = mesh->triangles[i];
    const std::uint32_t b = mesh->triangles[i % 3 == 2 ? i - 2 : i + 1];
    require(std::hypot(place(b, contours.x, mesh->new_x) - place(a, contours.x, mesh->new_x),
                       place(b, contours.y, mesh->new_y) - place(a, contours.y, mesh->new_y)) <=
            options.longest_side);
  }
}

void check_tree(const Contours& contours) {
  std::vector<kz_ulong> starts(contours.starts.begin(), contours.starts.end());
  const KZ_GIS_PolygonTree_c tree(0, 0, 0, 0, static_cast<kz_ulong>(starts.size()), starts.data(),
                                  static_cast<kz_ulong>(contours.x.size()), contours.x.data(),
                                  contours.y.data());
  const KZ_GIS_PolygonTree_c copy(tree);
  kz_ulong announced = 0;
  require(copy.NumberOfConnections(&announced) == 1);
  // A ring of one vertex makes the announced number wrap: nothing is written then.
  const bool wrapped = announced > 6 * contours.x.size() + 6 * contours.starts.size();
  std::vector<kz_ulong> connections(wrapped ? 0 : announced);
  kz_ulong written = 0;
  const kz_ulong status = tree.Triangulate(&written, connections.data());
  require(status == 1 || status == 2);
  require(written <= connections.size());
  check_triangles(contours, connections.data(), written, 0.0);
}

}  // namespace

// The insertion order is seeded from the clock; a find must come back when it is run again.
extern "C" std::time_t time(std::time_t*) { return 1; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  silence();
  const Contours contours = contours_of(data, size);
  check_mesh_layer(contours);
  // What many vertices do is seen without options, and would take most of the time here.
  if (contours.x.size() <= 1000) {
    check_mended(contours);
    check_options(contours, std::accumulate(data, data + size, 0U));
  }
  check_tree(contours);
  return 0;
}
