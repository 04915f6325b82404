// The order in which a sweep line meets sides.

#ifndef KZGIS_MESH_SWEEP_LINE_H
#define KZGIS_MESH_SWEEP_LINE_H

#include <cstdint>

#include "mesh/sites.h"

namespace kzgis::mesh {

/// A straight line from a left site to a right one.
struct Span {
  std::uint32_t left = kNone, right = kNone;
};

/// Where a site lies that the sweep line has come to, seen from a side that the line crosses:
/// 1 above the side, -1 below it, 0 on it.
inline int side_of(const Sites& sites, const Span& side, std::uint32_t site) {
  return sites.turn(side.left, side.right, site);
}

/// Whether side p runs below side q on a sweep line that crosses both.
///
/// The one that begins farther to the right is looked at where it begins.  Where that is on the
/// other side, or both begin in one site, they are compared by where they go on to.
///
/// Before: the two do not cross to the left of the sweep line, and do not run on top of each
/// other.
inline bool runs_below(const Sites& sites, const Span& p, const Span& q) {
  if (p.left < q.left) {
    const int turn = sites.turn(p.left, p.right, q.left);
    return (turn != 0 ? turn : sites.turn(p.left, p.right, q.right)) > 0;
  }
  if (p.left > q.left) {
    const int turn = sites.turn(q.left, q.right, p.left);
    return (turn != 0 ? turn : sites.turn(q.left, q.right, p.right)) < 0;
  }
  return sites.turn(p.left, p.right, q.right) > 0;
}

}  // namespace kzgis::mesh

#endif
