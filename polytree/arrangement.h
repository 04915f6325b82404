// The edges of a set of rings, made to meet only in vertices.

#ifndef KZGIS_POLYTREE_ARRANGEMENT_H
#define KZGIS_POLYTREE_ARRANGEMENT_H

#include <cstdint>
#include <vector>

#include "kzgis/mesh.h"

namespace kzgis::polytree {

/// A number that stands for nothing.
inline constexpr std::uint32_t kNone = 0xFFFFFFFF;

/// A place of one or several vertices of the rings.  Sites are numbered from the left to
/// the right and, at the same x, from below.
struct Site {
  double x = 0.0, y = 0.0;
  kz_ulong vertex = 0;  ///< the first of its vertices in the caller's numbering
  /// The boundary edge next below the site, where no boundary edge comes in from the left;
  /// kNone when there is none.
  std::uint32_t below = kNone;
};

/// A piece of the boundary between inside and outside, from its left to its right site.
struct Edge {
  std::uint32_t left, right;
  bool inside_above;  ///< the inside lies above it, else below
};

/// What a sweep over all edges finds.
///
/// Edges are cut where a vertex lies on them.  Pieces that coincide cancel in pairs, as the
/// odd-even rule has it: spikes, and borders that two rings share, vanish.
struct Arrangement {
  std::vector<Site> sites;
  std::vector<Edge> edges;
  /// Of each ring the smallest other one around it, kNone for none.
  std::vector<std::uint32_t> parents;
  /// False for a ring without an inside: it takes part in nothing.
  std::vector<bool> has_inside;
  Flaw flaw;  ///< when set, the others are not to be used
};

/// Sweeps the plane from left to right; O(n log n) for n vertices.
///
/// After M. I. Shamos and D. Hoey, "Geometric intersection problems", 17th Annual Symposium
/// on Foundations of Computer Science (1976).  Every decision is exact.
Arrangement arrange(const Rings& rings);

}  // namespace kzgis::polytree

#endif
