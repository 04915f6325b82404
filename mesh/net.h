// Sites joined by straight lines that cross nowhere.

#ifndef KZGIS_MESH_NET_H
#define KZGIS_MESH_NET_H

#include <cstdint>
#include <span>
#include <vector>

#include "exact/predicates.h"

namespace kzgis::mesh {

/// A planar net: Delaunay to begin with, then with the lines forced in that it must have.
///
/// A line is a pair of arcs in opposite directions, arc e and arc e ^ 1.  The arcs that begin at a
/// point form a ring, counter-clockwise.
class Net {
 public:
  /// Joins points by their Delaunay triangulation; O(n log n).
  ///
  /// L. Guibas and J. Stolfi, "Primitives for the manipulation of general subdivisions and the
  /// computation of Voronoi diagrams", ACM Transactions on Graphics 4 (1985): both halves are
  /// triangulated, and sewn together from below.
  ///
  /// @param numbers  of the points to be joined, different ones, by growing x and, at the same x,
  ///                 by growing y
  Net(std::span<const exact::Point> points, std::span<const std::uint32_t> numbers);

  /// Puts a line in, if it is not there yet, and takes away what crosses it.
  ///
  /// M. V. Anglada, "An improved incremental algorithm for constructing restricted Delaunay
  /// triangulations", Computers & Graphics 21 (1997): on both hands of the line a hole is left,
  /// which is triangulated again from the line up.
  ///
  /// Before: no other point lies on the line, and no line that was forced in crosses it.
  /// @return the arc from a to b
  std::uint32_t force(std::uint32_t a, std::uint32_t b);

  /// The next arc round the face on the left of an arc, which is a triangle unless it lies outside
  /// of all points.
  std::uint32_t round_face(std::uint32_t arc) const { return arcs_[arc ^ 1].previous; }
  std::uint32_t from(std::uint32_t arc) const { return arcs_[arc].from; }
  std::uint32_t to(std::uint32_t arc) const { return arcs_[arc ^ 1].from; }
  /// All arcs have numbers below this.
  std::uint32_t size() const { return static_cast<std::uint32_t>(arcs_.size()); }

 private:
  struct Arc {
    std::uint32_t from;
    std::uint32_t next, previous;  // in the ring of the arc's beginning
  };
  /// Arcs of the hull: the one that leaves its leftmost point counter-clockwise, and the one that
  /// leaves the rightmost point clockwise.
  struct Hull {
    std::uint32_t left, right;
  };

  Hull divide(std::span<const std::uint32_t> numbers);
  Hull sew(Hull left, Hull right);
  std::uint32_t add(std::uint32_t from, std::uint32_t to);
  std::uint32_t connect(std::uint32_t one, std::uint32_t other);
  void insert_behind(std::uint32_t place, std::uint32_t arc);
  void remove(std::uint32_t line);
  std::uint32_t find_way(std::uint32_t a, std::uint32_t b) const;
  void fill(std::uint32_t base);

  int turn(std::uint32_t a, std::uint32_t b, std::uint32_t c) const {
    return exact::orientation(points_[a], points_[b], points_[c]);
  }
  bool in_circle(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) const {
    return exact::in_circle(points_[a], points_[b], points_[c], points_[d]) > 0;
  }

  std::span<const exact::Point> points_;
  std::vector<Arc> arcs_;
  std::vector<std::uint32_t> free_;    // lines that were removed
  std::vector<std::uint32_t> arc_of_;  // of each point, one that begins there; kNone without any
  std::vector<std::uint32_t> bases_;   // arcs with holes on their left
  std::vector<std::uint32_t> rim_;     // of a hole
};

}  // namespace kzgis::mesh

#endif
