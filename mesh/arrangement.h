// The sides of a polygon, cut until they meet in vertices only.

#ifndef KZGIS_MESH_ARRANGEMENT_H
#define KZGIS_MESH_ARRANGEMENT_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "exact/tiling.h"
#include "kzgis/mesh.h"
#include "kzgis/result.h"
#include "mesh/containment.h"
#include "mesh/rings.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

/// A piece of the boundary between inside and outside, from its left to its right site.
struct Edge {
  std::uint32_t left, right;
  bool inside_above;  ///< the inside lies above it, else below
};

/// What a sweep over all sides finds.
struct Arrangement {
  Sites sites;
  std::vector<Side> sides;  ///< of the rings, uncut
  /// Sides are cut where a vertex lies on them.  Pieces that coincide cancel in pairs, as the
  /// odd-even rule has it: borders that two rings share vanish.  What is left are the edges.
  std::vector<Edge> edges;
  /// Of each site that no edge comes to from the left, the edge next below it; kNone when
  /// there is none.
  std::vector<std::uint32_t> below;
  Containment containment;  ///< without an overlap or a repetition
};

/// Sweeps the plane from left to right; see `kzgis::triangulate` for what is refused and for
/// the time that it takes.
///
/// After M. I. Shamos and D. Hoey, "Geometric intersection problems", 17th Annual Symposium
/// on Foundations of Computer Science (1976).  Every decision is exact.  A crossing anywhere is
/// found before an overlap, and an overlap before a repetition, so that a polygon is refused for
/// the same reason however it is turned.
Result<Arrangement, Flaw> arrange(const Rings& rings);
/// The same for rings whose sites are known, and which have no flaw of `check_rings`.
Result<Arrangement, Flaw> arrange(const Rings& rings, Sites sites);

/// The edges, with the inside on their left.
std::vector<exact::Side> bounds_of(const Arrangement& arrangement);

/// Two sides that cross where no site is, and the edges that they are part of there: kNone where
/// sides on top of each other cancel.
struct Crossing {
  std::uint32_t side, other_side;
  std::uint32_t edge, other_edge;
};

/// What `arrange` says of a crossing.
Flaw crossing_flaw(std::span<const Side> sides, const Crossing& crossing);

/// Sides put on top of each other, whatever they do.
struct Overlay {
  Sites sites;
  std::vector<Side> sides;
  std::vector<Edge> edges;  ///< as in an arrangement; `inside_above` counts if nothing crosses
  std::vector<std::uint32_t> below;
  std::vector<Crossing> crossings;
};

/// The same sweep over any sides, which finds all crossings instead of refusing the first.
///
/// After J. L. Bentley and T. A. Ottmann, "Algorithms for reporting and counting geometric
/// intersections", IEEE Transactions on Computers C-28 (1979); O((n + k) log n) for k crossings.
///
/// @param sides  between the sites; their rings and vertices do not count
/// @param most   as many crossings are looked for, and one more
Overlay overlay(Sites sites, std::vector<Side> sides, std::size_t most);

}  // namespace kzgis::mesh

#endif
