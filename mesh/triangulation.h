// Triangles that know their neighbours.

#ifndef KZGIS_MESH_TRIANGULATION_H
#define KZGIS_MESH_TRIANGULATION_H

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "exact/predicates.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

/// Triangles as half-edges: half-edge 3 t + i runs along triangle t from its corner i to the next
/// one, counter-clockwise, and has the triangle on its left.
class Triangulation {
 public:
  /// @param corners  three points each, by their numbers, counter-clockwise.  No two triangles run
  ///                 along an edge in the same direction
  explicit Triangulation(std::vector<std::uint32_t> corners);

  std::uint32_t size() const {
    return static_cast<std::uint32_t>(corners_.size());
  }  ///< half-edges

  static std::uint32_t next(std::uint32_t h) { return h % 3 == 2 ? h - 2 : h + 1; }
  static std::uint32_t previous(std::uint32_t h) { return h % 3 == 0 ? h + 2 : h - 1; }

  std::uint32_t from(std::uint32_t h) const { return corners_[h]; }
  std::uint32_t to(std::uint32_t h) const { return corners_[next(h)]; }
  /// The corner that the edge's triangle has beside its ends.
  std::uint32_t apex(std::uint32_t h) const { return corners_[previous(h)]; }
  /// The same edge in the neighbouring triangle; kNone where there is none.
  std::uint32_t twin(std::uint32_t h) const { return twins_[h]; }

  /// Replaces an edge between two triangles by the other diagonal of the quadrangle that they make
  /// up, which must turn left at all four corners.  Afterwards the half-edge and its twin are those
  /// behind which the new diagonal comes, in the order of their triangles.
  void flip(std::uint32_t h);

  /// Puts a point into the triangle of a half-edge, which becomes three.
  /// @return a half-edge that begins at the point
  std::uint32_t split_triangle(std::uint32_t h, std::uint32_t point);
  /// Puts a point on an edge: the triangle on either side, where there is one, becomes two.
  /// @return a half-edge that begins at the point
  std::uint32_t split_edge(std::uint32_t h, std::uint32_t point);

  /// Appends a triangle without neighbours; returns its first half-edge.
  std::uint32_t add(std::uint32_t a, std::uint32_t b, std::uint32_t c);
  /// Makes two half-edges each other's twins; either may be kNone.
  void join(std::uint32_t h, std::uint32_t g);

  std::span<const std::uint32_t> corners() const { return corners_; }
  std::vector<std::uint32_t> release() { return std::move(corners_); }

 private:
  std::vector<std::uint32_t> corners_;
  std::vector<std::uint32_t> twins_;
};

}  // namespace kzgis::mesh

#endif
