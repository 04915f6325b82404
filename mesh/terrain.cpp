// Elevations as triangles: the border of what is covered is triangulated, refined, proved, and
// told in the coordinates of the ground.

#include "kzgis/terrain.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <new>
#include <string>
#include <utility>

#include "exact/predicates.h"
#include "exact/tiling.h"
#include "kzgis/elevation.h"
#include "kzgis/mesh.h"
#include "mesh/deviation.h"
#include "mesh/greedy.h"
#include "mesh/height_field.h"
#include "mesh/sites.h"
#include "mesh/terrain_proof.h"

namespace kzgis {

namespace {

using mesh::HeightField;
using mesh::kNone;

/// Six half-edges a point are numbered in 32 bits.
constexpr std::size_t kMostPoints = std::size_t{1} << 28;

Error refuse(std::string reason) {
  return {ErrorKind::bad_argument, "triangulate_terrain: " + std::move(reason)};
}

/// Why there are no triangles of a grid at a tolerance, or no error.
Error check(const ElevationGrid& grid, double tolerance) {
  if (!std::isfinite(tolerance) || tolerance < 0.0) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", tolerance);
    return refuse(std::string("a tolerance of ") + text + " is none: it is finite and not below 0");
  }
  const std::size_t points = grid.elevations.size();
  const bool fits =
      grid.columns >= 0 && grid.rows >= 0 &&
      static_cast<std::uint64_t>(grid.columns) * static_cast<std::uint64_t>(grid.rows) == points;
  if (!fits) {
    return refuse(std::to_string(grid.columns) + " columns and " + std::to_string(grid.rows) +
                  " rows do not have " + std::to_string(points) + " elevations");
  }
  if (points > kMostPoints) return refuse(std::to_string(points) + " elevations are too many");
  return {};
}

/// Triangles of what the sides bound, none of which can be left out: rings are put together of
/// them, which touch where one could go on in several ways.
Result<Mesh, Flaw> triangulate_sides(const HeightField& field, std::vector<exact::Side> sides,
                                     std::vector<std::uint32_t>& corners) {
  const auto begins_before = [](const exact::Side& a, const exact::Side& b) {
    return a.from < b.from;
  };
  std::sort(sides.begin(), sides.end(), begins_before);
  std::vector<bool> taken(sides.size());
  std::vector<double> x;
  std::vector<double> y;
  std::vector<std::int32_t> starts;
  const auto take = [&](std::size_t side) {
    taken[side] = true;
    corners.push_back(sides[side].from);
    x.push_back(field.points()[sides[side].from].x);
    y.push_back(field.points()[sides[side].from].y);
  };
  for (std::size_t first = 0; first < sides.size(); ++first) {
    if (taken[first]) continue;
    starts.push_back(static_cast<std::int32_t>(x.size()));
    take(first);
    for (std::size_t side = first; sides[side].to != sides[first].from;) {
      const auto next = std::lower_bound(sides.begin(), sides.end(),
                                         exact::Side{sides[side].to, kNone}, begins_before);
      side = static_cast<std::size_t>(next - sides.begin());
      while (taken[side]) ++side;
      take(side);
    }
  }
  MeshOptions options;
  options.delaunay = true;
  return triangulate({x, y, starts}, options);
}

/// Refined triangles, three points of the field each.
Result<std::vector<std::uint32_t>> refine(const HeightField& field, const mesh::Judge& judge) {
  std::vector<std::uint32_t> corners;
  const std::vector<bool> none(field.size());
  Result<Mesh, Flaw> coarse = triangulate_sides(field, mesh::Border(field).sides(none), corners);
  if (!coarse) return static_cast<const Error&>(coarse.error());
  for (std::uint32_t& corner : coarse->triangles) corner = corners[corner];
  return mesh::Greedy(field, judge, std::move(coarse->triangles)).run();
}

/// Whether all triangles still are counter-clockwise in the coordinates of the ground.
bool keeps_turns(const Terrain& terrain) {
  std::vector<exact::Point> places;
  for (std::size_t i = 0; i < terrain.x.size(); ++i) {
    if (!exact::in_range(terrain.x[i]) || !exact::in_range(terrain.y[i])) return false;
    places.push_back({terrain.x[i], terrain.y[i]});
  }
  for (std::size_t i = 0; i < terrain.triangles.size(); i += 3) {
    if (exact::orientation(places[terrain.triangles[i]], places[terrain.triangles[i + 1]],
                           places[terrain.triangles[i + 2]]) <= 0) {
      return false;
    }
  }
  return true;
}

/// The vertices and triangles as the caller is to have them.
/// @param triangles  three points of the grid each
Terrain on_the_ground(const ElevationGrid& grid, const HeightField& field,
                      std::vector<std::uint32_t> triangles) {
  const std::vector<bool> is_vertex = mesh::vertices_of(field, triangles);
  Terrain terrain;
  std::vector<std::uint32_t> numbers(is_vertex.size(), kNone);
  std::size_t point = 0;
  for (kz_long row = 0; row < grid.rows; ++row) {
    for (kz_long column = 0; column < grid.columns; ++column, ++point) {
      if (!is_vertex[point]) continue;
      numbers[point] = static_cast<std::uint32_t>(terrain.x.size());
      terrain.x.push_back(grid.x(column));
      terrain.y.push_back(grid.y(row));
      terrain.z.push_back(grid.elevations[point]);
    }
  }
  terrain.triangles = std::move(triangles);
  for (std::uint32_t& corner : terrain.triangles) corner = numbers[corner];
  return terrain;
}

Result<Terrain> make_terrain(const ElevationGrid& grid, double tolerance) {
  if (Error error = check(grid, tolerance)) return error;
  const HeightField field(grid);
  const mesh::Judge judge(field, tolerance);
  Result<std::vector<std::uint32_t>> triangles =
      judge.wants_all() ? field.all_triangles() : refine(field, judge);
  if (!triangles) return triangles.error();
  if (!mesh::proved(field, judge, *triangles)) {
    return Error{ErrorKind::unproved,
                 "the triangles found do not fit the elevations: an error of this library"};
  }
  Terrain terrain = on_the_ground(grid, field, *std::move(triangles));
  if (!keeps_turns(terrain)) {
    return refuse("columns or rows lie too close together for their coordinates");
  }
  return terrain;
}

}  // namespace

Result<Terrain> triangulate_terrain(const ElevationGrid& grid, double tolerance) {
  try {
    return make_terrain(grid, tolerance);
  } catch (const std::bad_alloc&) {
    return Error{ErrorKind::out_of_memory, "out of memory"};
  }
}

}  // namespace kzgis
