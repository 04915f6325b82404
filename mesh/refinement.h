// Triangles made smaller and fatter by new vertices.

#ifndef KZGIS_MESH_REFINEMENT_H
#define KZGIS_MESH_REFINEMENT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "exact/predicates.h"
#include "exact/tiling.h"
#include "kzgis/mesh.h"
#include "kzgis/result.h"
#include "mesh/borders.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

/// A constrained Delaunay mesh with new vertices.
struct Refined {
  std::vector<exact::Point> points;      ///< the sites, then the new vertices
  std::vector<std::uint32_t> triangles;  ///< three points each
  Borders::Pieces borders;               ///< what the edges were cut into
  std::size_t small_corners = 0;
};

/// What is wrong with the options, if anything.
std::optional<Flaw> check_options(const MeshOptions& options);

/// The refusal of a polygon that needs more triangles than there may be.
Flaw too_many_triangles(std::size_t most);

/// Refines triangles until no side is longer than `longest_side`, and no angle smaller than
/// `least_angle_deg` but for those that the polygon's own corners bring with them.
///
/// Long sides go first, the longest in front.  Edges are cut into equal parts;
/// then, from a triangle with a long side, a walk leads from longest side to longest side until one
/// is the longest of both its triangles, and its middle becomes a vertex: M.-C. Rivara, "New
/// longest-edge algorithms for the refinement and/or improvement of unstructured triangulations",
/// International Journal for Numerical Methods in Engineering 40 (1997).  The angles across such a
/// side are of 60 degrees or more, and together of 180 at most, as the triangles are Delaunay: so
/// no vertex comes closer to others than about 0.28 of a side that is too long, and there is an
/// end.
///
/// Then small angles, the smallest in front: a vertex is put so far above a triangle's shortest
/// side that the angle there is large enough (A. Ungor, "Off-centers: a new type of Steiner points
/// for computing size-optimal quality-guaranteed Delaunay triangulations", LATIN 2004), but where
/// it would lie in the circle whose diameter is a piece of an edge, or behind one, that piece is
/// cut instead: J. Ruppert, "A Delaunay refinement algorithm for quality 2-dimensional mesh
/// generation", Journal of Algorithms 18 (1995).  Where edges meet in small angles that would
/// have no end: see `Borders::shell`; and a triangle whose shortest side ends on two such edges is
/// left alone, after G. L. Miller, S. E. Pav and N. J. Walkington, "When and why Delaunay
/// refinement algorithms work", International Journal of Computational Geometry and Applications
/// 15 (2005).
///
/// Vertices are rounded to doubles.  One that would turn a triangle over or make it flat is not
/// put: then the polygon is refused, since what was asked for cannot be had.
///
/// @param edges      that bound the inside, which they have on their left; between sites
/// @param triangles  constrained Delaunay triangles of the inside, three sites each
Result<Refined, Flaw> refine(const Rings& rings, const Sites& sites,
                             std::span<const exact::Side> edges,
                             std::vector<std::uint32_t> triangles, const MeshOptions& options);

/// An edge that touches or crosses another one since both were cut; nothing if none does.
///
/// The cut edges are swept like sides of any polygon.  What is shown besides is that the inside
/// lies on the same hand of all pieces as it did of the edges.
std::optional<std::uint32_t> find_tangled_edge(const Sites& sites, const Refined& refined);

/// The refusal of a polygon that cannot be refined near a point; it names the vertex closest by.
Flaw coarse_flaw(const Rings& rings, const exact::Point& point);

}  // namespace kzgis::mesh

#endif
