// The nesting rule: where each ring goes in the tree, as rings come in.

#ifndef KZGIS_POLYTREE_RING_TREE_H
#define KZGIS_POLYTREE_RING_TREE_H

#include <cstddef>
#include <cstdint>
#include <set>
#include <span>
#include <unordered_map>
#include <vector>

#include "kzgis/polytree.h"
#include "polytree/box_index.h"
#include "polytree/clearance.h"

namespace kzgis::polytree {

/// Parents and order of siblings of rings numbered from 1; 0 is the root, the whole plane.
///
/// A ring enters at the root.  On each level it takes the children that it contains, and
/// if there are any it settles there, behind the others.  If not, it goes down into the
/// first child that it lies in; where there is none it settles.  Taking children, the scan
/// passes over the one that follows a child taken: a scan by position over a list that
/// closes its gaps would, and docs/classic.md has the order of rings that this tells apart
/// (RingTree.PassesOverTheChildBehindOneTaken).
///
/// Whether a ring lies in another is what `KZ_GIS_PolygonNode_c::Inside` says, and is found
/// out with less work, since no two rings here share an index, and no coordinate changes
/// meanwhile: a level with many children keeps an index of their boxes, a first vertex
/// outside the other ring's box needs no point test, and the point test of a long ring
/// passes over stretches of it that lie above or below the point.
///
/// Nor does a ring go down level by level where rings lie deep in each other, each the only
/// child of the one around it.  Such rings are kept in a chain as long as each keeps clear
/// of the next.  A ring that is clear of some ring of the chain, inside it, is inside those
/// around that too and has none of them inside itself, for every point of the way across is
/// as far from each of them as the test of a point needs to be right about it.  The level to
/// go on from is found by bisection.
class RingTree {
 public:
  /// Nests `nodes[1]` and all that follow, in order.  No two of them share an index.
  explicit RingTree(std::span<KZ_GIS_PolygonNode_c> nodes);
  RingTree(const RingTree&) = delete;  // the order of the chains refers to the nesting
  RingTree& operator=(const RingTree&) = delete;

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
    kz_ulong chain;       // number of the chain it is part of, from 1; 0 none
  };

  /// What the tests need to know of a ring.
  struct Ring {
    Box box;
    double first_x, first_y;  // its first vertex, if it has one
    kz_ulong edges;
    bool numbers;               // no coordinate is NaN
    double largest;             // magnitude of a coordinate; infinite for unusual ones
    std::size_t first_stretch;  // of as many as its edges make
  };
  struct Stretch {
    double low, high;  // heights of kStretch edges
  };

  /// Order of a chain: from the outermost ring in.
  struct Inward {
    const RingTree* nesting = nullptr;
    using is_transparent = void;

    bool operator()(kz_ulong a, kz_ulong b) const {
      return nesting->rings_[a].box.x_min < nesting->rings_[b].box.x_min;
    }
    /// Whether the ring lies around another, not of the chain.
    struct Other {
      kz_ulong ring;
    };
    bool operator()(kz_ulong a, Other b) const { return nesting->surrounds(a, b.ring); }
  };
  using Chain = std::set<kz_ulong, Inward>;

  void describe(kz_ulong ring);
  bool inside(kz_ulong inner, kz_ulong outer) const;
  void insert(kz_ulong ring);
  void find_overlapping(kz_ulong level, kz_ulong ring);
  void find_contained(kz_ulong ring);
  kz_ulong first_around(kz_ulong ring);
  void settle(kz_ulong level, kz_ulong ring);
  void append(kz_ulong level, kz_ulong ring);
  void unlink(kz_ulong ring);

  bool surrounds(kz_ulong outer, kz_ulong inner) const;
  bool clear(kz_ulong outer, kz_ulong inner);
  void list_sides(kz_ulong ring, std::vector<Side>& sides) const;
  bool chained(kz_ulong level) const;
  void extend_chain(kz_ulong level, kz_ulong ring);
  void cut_chain(kz_ulong level);
  kz_ulong skip_levels(kz_ulong level, kz_ulong ring);

  std::span<KZ_GIS_PolygonNode_c> nodes_;
  std::vector<Ring> rings_;
  std::vector<Stretch> stretches_;
  std::vector<Links> links_;
  std::unordered_map<kz_ulong, BoxIndex> indices_;  // of the levels that have many children
  std::vector<Chain> chains_{1};                    // number 0 is none
  std::uint64_t appended_ = 0;
  // One level's children that may matter to the ring at hand, in order, and those of them
  // that it takes.  Kept between rings for their memory.
  std::vector<kz_ulong> overlapping_;
  std::vector<kz_ulong> contained_;
  std::vector<Side> outer_sides_, inner_sides_;

  // Two rings that were found clear of each other; none at first.
  struct {
    kz_ulong outer = 0, inner = 0;
  } last_clear_;
};

}  // namespace kzgis::polytree

#endif
