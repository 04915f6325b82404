// Triangulation and nesting of polygons as they come: the sides are arranged, the faces between
// them taken and cut, and the triangles proved before anybody sees them.

#include "kzgis/mesh.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "exact/tiling.h"
#include "mesh/apart.h"
#include "mesh/arrangement.h"
#include "mesh/boundary.h"
#include "mesh/delaunay.h"
#include "mesh/face_sweep.h"
#include "mesh/faces.h"
#include "mesh/proof.h"
#include "mesh/refinement.h"
#include "mesh/ring_sweep.h"
#include "mesh/rings.h"
#include "mesh/splitting.h"

namespace kzgis {

namespace {

using mesh::Arrangement;
using mesh::kNone;

/// What every operation here answers to an allocation that failed, in words that are short enough
/// for a string to keep inside itself.
Flaw no_memory() { return mesh::make_flaw(ErrorKind::out_of_memory, "out of memory"); }

/// How many triangles the faces are cut into.
std::size_t count_triangles(const std::vector<mesh::Face>& faces) {
  std::size_t count = 0;
  for (const mesh::Face& face : faces) {
    for (const mesh::Contour& contour : face) count += contour.size();
    count += 2 * face.size();
    count -= 4;
  }
  return count;
}

/// Triangles of the inside, three sites each, unless there are too many.
std::optional<std::vector<std::uint32_t>> cut(const Arrangement& arrangement, std::size_t most) {
  const std::vector<mesh::Face> faces = mesh::take_faces(arrangement);
  if (count_triangles(faces) > most) return std::nullopt;
  std::vector<std::uint32_t> triangles;
  for (const mesh::Face& face : faces) mesh::sweep_face(arrangement.sites, face, triangles);
  return triangles;
}

Flaw unproved() {
  return mesh::make_flaw(ErrorKind::unproved,
                         "the triangles found do not tile the polygon: an error of this library");
}

/// How many sites are no vertices of the rings, but crossings of their sides.
std::uint32_t new_sites(const mesh::Sites& sites, const Rings& rings) {
  std::uint32_t count = 0;
  for (std::uint32_t site = 0; site < sites.size(); ++site) {
    if (sites.vertex(site) >= rings.x.size()) ++count;
  }
  return count;
}

/// Hands out triangles over sites and points behind them, in the numbers of vertices.
///
/// @param more  points that are numbered behind the sites
Mesh mesh_of(const Rings& rings, const mesh::Sites& sites, std::vector<std::uint32_t> triangles,
             std::span<const exact::Point> more) {
  const auto own = static_cast<std::uint32_t>(rings.x.size());
  const std::uint32_t split = new_sites(sites, rings);
  Mesh result;
  result.triangles = std::move(triangles);
  for (std::uint32_t& corner : result.triangles) {
    corner = corner < sites.size() ? sites.vertex(corner) : corner - sites.size() + own + split;
  }
  result.crossings = split;
  result.new_x.resize(split + more.size());
  result.new_y.resize(split + more.size());
  for (std::uint32_t site = 0; site < sites.size(); ++site) {
    if (sites.vertex(site) < own) continue;
    result.new_x[sites.vertex(site) - own] = sites[site].x;
    result.new_y[sites.vertex(site) - own] = sites[site].y;
  }
  for (std::size_t i = 0; i < more.size(); ++i) {
    result.new_x[split + i] = more[i].x;
    result.new_y[split + i] = more[i].y;
  }
  return result;
}

bool is_refining(const MeshOptions& options) {
  return std::isfinite(options.longest_side) || options.least_angle_deg > 0.0;
}

Result<Mesh, Flaw> make_refined(const Rings& rings, const mesh::Sites& sites,
                                std::span<const exact::Side> sides,
                                std::vector<std::uint32_t> triangles, const MeshOptions& options) {
  Result<mesh::Refined, Flaw> refined =
      mesh::refine(rings, sites, sides, std::move(triangles), options);
  if (!refined) return std::move(refined).error();
  if (const auto edge = mesh::find_tangled_edge(sites, *refined)) {
    return mesh::coarse_flaw(rings, sites[std::min(sides[*edge].from, sides[*edge].to)]);
  }
  if (!exact::tiles(refined->points, refined->borders.sides, refined->triangles,
                    exact::Flat::refused, exact::Inner::delaunay)) {
    return unproved();
  }
  Mesh result = mesh_of(rings, sites, std::move(refined->triangles),
                        std::span<const exact::Point>(refined->points).subspan(sites.size()));
  result.small_corners = refined->small_corners;
  return result;
}

/// Makes triangles what the options ask for, and proves them.
///
/// @param sides      of the polygon, with the inside on their left: they meet in sites only
/// @param triangles  that tile it
Result<Mesh, Flaw> finish(const Rings& rings, const mesh::Sites& sites,
                          std::span<const exact::Side> sides, std::vector<std::uint32_t> triangles,
                          const MeshOptions& options) {
  const bool refining = is_refining(options);
  if (options.delaunay || refining) {
    triangles = mesh::make_delaunay(sites.points(), sides, std::move(triangles));
  }
  if (refining) return make_refined(rings, sites, sides, std::move(triangles), options);
  if (!exact::tiles(sites.points(), sides, triangles, exact::Flat::refused,
                    options.delaunay ? exact::Inner::delaunay : exact::Inner::any)) {
    return unproved();
  }
  return mesh_of(rings, sites, std::move(triangles), {});
}

Result<Arrangement, Flaw> arrange(const Rings& rings, mesh::Sites sites,
                                  const MeshOptions& options) {
  if (!options.split_crossings) return mesh::arrange(rings, std::move(sites));
  return mesh::split(rings, std::move(sites),
                     std::min(options.most_crossings, options.most_triangles));
}

/// Cuts a polygon into triangles, over sites until the last step: in sites, places are the same
/// when their numbers are, which is what the proof counts by.
Result<Mesh, Flaw> make_mesh(const Rings& rings, const MeshOptions& options) {
  if (auto flaw = mesh::check_options(options)) return std::move(*flaw);
  if (auto flaw = mesh::check_rings(rings)) return std::move(*flaw);
  mesh::Sites sites(rings);
  if (std::optional<mesh::CutRings> cut_up = mesh::cut_rings(rings, sites)) {
    if (cut_up->triangles.size() / 3 > options.most_triangles) {
      return mesh::too_many_triangles(options.most_triangles);
    }
    // The sides are those of the rings, uncut, and no two have a point in common but their ends:
    // none cancel, and there is nothing to be compared with them.
    return finish(rings, sites, cut_up->sides, std::move(cut_up->triangles), options);
  }
  const Result<Arrangement, Flaw> arranged = arrange(rings, std::move(sites), options);
  if (!arranged) return arranged.error();
  std::optional<std::vector<std::uint32_t>> triangles = cut(*arranged, options.most_triangles);
  if (!triangles) return mesh::too_many_triangles(options.most_triangles);
  if (!mesh::same_modulo_2(arranged->sites, arranged->sides, arranged->edges)) return unproved();
  return finish(rings, arranged->sites, mesh::bounds_of(*arranged), std::move(*triangles), options);
}

/// Parents and depths as the caller knows them.
///
/// Depths are counted along chains of parents, each ring once: rings may lie in each other a
/// hundred thousand deep, in any order.
///
/// @param has_inside  of a ring's number, whether the ring has a depth
template <class HasInside>
Nesting nesting_of(const std::vector<std::uint32_t>& parents, HasInside has_inside) {
  Nesting nesting;
  nesting.parent.assign(parents.size(), -1);
  nesting.depth.assign(parents.size(), 0);
  std::vector<std::uint32_t> path;
  for (std::uint32_t ring = 0; ring < parents.size(); ++ring) {
    if (!has_inside(ring)) continue;
    if (parents[ring] != kNone) nesting.parent[ring] = static_cast<std::int32_t>(parents[ring]);
    // Up to a ring whose depth is known, and down again.
    std::uint32_t known = ring;
    for (; known != kNone && nesting.depth[known] == 0; known = parents[known]) {
      path.push_back(known);
    }
    std::int32_t depth = known != kNone ? nesting.depth[known] : 0;
    for (; !path.empty(); path.pop_back()) nesting.depth[path.back()] = ++depth;
  }
  return nesting;
}

}  // namespace

Result<Mesh, Flaw> triangulate(const Rings& rings, const MeshOptions& options) {
  try {
    return make_mesh(rings, options);
  } catch (const std::bad_alloc&) {
    return no_memory();
  }
}

std::vector<Flaw> find_flaws(const Rings& rings, std::size_t most) {
  std::vector<Flaw> flaws = mesh::flaws_of_numbers(rings, most);
  if (!flaws.empty() || most == 0) return flaws;
  mesh::Sites sites(rings);
  std::vector<mesh::Side> sides = mesh::take_sides(rings, sites);
  const mesh::Overlay overlay = mesh::overlay(std::move(sites), std::move(sides), most - 1);
  for (const mesh::Crossing& crossing : overlay.crossings) {
    flaws.push_back(mesh::crossing_flaw(overlay.sides, crossing));
  }
  if (!flaws.empty()) return flaws;
  // Without the ring that an overlap or a repetition names, the next one shows.
  std::vector<double> x(rings.x.begin(), rings.x.end());
  std::vector<double> y(rings.y.begin(), rings.y.end());
  while (flaws.size() < most) {
    const Result<Arrangement, Flaw> arranged = mesh::arrange({x, y, rings.starts});
    if (arranged) break;
    flaws.push_back(arranged.error());
    const auto ring = static_cast<std::size_t>(arranged.error().ring);
    const auto first = static_cast<std::size_t>(rings.starts[ring]);
    for (std::size_t i = first; i < mesh::end_of_ring(rings, ring); ++i) {
      x[i] = x[first];
      y[i] = y[first];
    }
  }
  return flaws;
}

Result<Outline, Flaw> make_valid(const Rings& rings, std::size_t most_crossings) {
  try {
    if (auto flaw = mesh::check_rings(rings)) return std::move(*flaw);
    if (const auto apart = mesh::parents_apart(rings)) {
      const Nesting nesting = nesting_of(apart->parents, [](std::uint32_t) { return true; });
      return mesh::boundary_of(apart->cleaned ? apart->cleaned->rings() : rings, nesting.depth);
    }
    const Result<Arrangement, Flaw> arranged =
        mesh::split(rings, mesh::Sites(rings), most_crossings);
    if (!arranged) return arranged.error();
    if (!mesh::same_modulo_2(arranged->sites, arranged->sides, arranged->edges)) {
      return mesh::make_flaw(ErrorKind::unproved,
                             "the rings found do not bound the polygon: an error of this library");
    }
    Outline outline = mesh::boundary_of(*arranged);
    outline.crossings = new_sites(arranged->sites, rings);
    return outline;
  } catch (const std::bad_alloc&) {
    return no_memory();
  }
}

Result<Nesting, Flaw> nest(const Rings& rings) {
  try {
    if (auto flaw = mesh::check_rings(rings)) return std::move(*flaw);
    if (const auto apart = mesh::parents_apart(rings)) {
      return nesting_of(apart->parents, [](std::uint32_t) { return true; });
    }
    const Result<Arrangement, Flaw> arranged = mesh::arrange(rings);
    if (!arranged) return arranged.error();
    const mesh::Containment& containment = arranged->containment;
    return nesting_of(containment.parents(),
                      [&](std::uint32_t ring) { return containment.has_inside(ring); });
  } catch (const std::bad_alloc&) {
    return no_memory();
  }
}

}  // namespace kzgis
