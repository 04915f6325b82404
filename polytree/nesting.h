// The nesting rule: where each ring goes in the tree, as rings come in.

#ifndef KZGIS_POLYTREE_NESTING_H
#define KZGIS_POLYTREE_NESTING_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "kzgis/polytree.h"
#include "polytree/box_index.h"

namespace kzgis::polytree {

/// Parents and order of siblings of rings numbered from 1; 0 is the root, the whole plane.
///
/// A ring enters at the root.  On each level it takes the children that it contains, and
/// if there are any it settles there, behind the others.  If not, it goes down into the
/// first child that it lies in; where there is none it settles.  Taking children, the scan
/// passes over the one that follows a child taken: a scan by position over a list that
/// closes its gaps would, and the order of rings that this tells apart is part of what
/// callers see (Nesting.PassesOverTheChildBehindOneTaken).
///
/// Whether a ring lies in another is what `KZ_GIS_PolygonNode_c::Inside` says, and is found
/// out with less work, since no two rings here share an index, and no coordinate changes
/// meanwhile: a level with many children keeps an index of their boxes, a first vertex
/// outside the other ring's box needs no point test, and the point test of a long ring
/// passes over stretches of it that lie above or below the point.
class Nesting {
 public:
  /// Nests `nodes[1]` and all that follow, in order.  No two of them share an index.
  explicit Nesting(std::span<KZ_GIS_PolygonNode_c> nodes);

  kz_ulong parent(kz_ulong ring) const { return links_[ring].parent; }
  /// The first child, and from there the next sibling; 0 when there is none.
  kz_ulong first_child(kz_ulong ring) const { return links_[ring].first_child; }
  kz_ulong next_sibling(kz_ulong ring) const { return links_[ring].next; }

 private:
  struct Links {
    kz_ulong parent, previous, next;
    kz_ulong first_child, last_child, children;
    std::uint64_t order;  // grows along the siblings
    bool indexed;         // its children are in indices_
  };

  /// What the tests need to know of a ring.
  struct Ring {
    Box box;
    double first_x, first_y;  // its first vertex, if it has one
    kz_ulong edges;
    bool numbers;               // no coordinate is NaN
    std::size_t first_stretch;  // of as many as its edges make
  };
  struct Stretch {
    double low, high;  // heights of kStretch edges
  };

  void describe(kz_ulong ring);
  bool inside(kz_ulong inner, kz_ulong outer) const;
  void insert(kz_ulong ring);
  void find_overlapping(kz_ulong level, kz_ulong ring);
  void find_contained(kz_ulong ring);
  kz_ulong first_around(kz_ulong ring);
  void append(kz_ulong level, kz_ulong ring);
  void unlink(kz_ulong ring);

  std::span<KZ_GIS_PolygonNode_c> nodes_;
  std::vector<Ring> rings_;
  std::vector<Stretch> stretches_;
  std::vector<Links> links_;
  std::unordered_map<kz_ulong, BoxIndex> indices_;  // of the levels that have many children
  std::uint64_t appended_ = 0;
  // One level's children that may matter to the ring at hand, in order, and those of them
  // that it takes.  Kept between rings for their memory.
  std::vector<kz_ulong> overlapping_;
  std::vector<kz_ulong> contained_;
};

}  // namespace kzgis::polytree

#endif
