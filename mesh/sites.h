// The places of a polygon's vertices, numbered from the left to the right.

#ifndef KZGIS_MESH_SITES_H
#define KZGIS_MESH_SITES_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "exact/predicates.h"
#include "kzgis/mesh.h"

namespace kzgis::mesh {

/// A number that stands for nothing.
inline constexpr std::uint32_t kNone = 0xFFFFFFFF;

/// Places of one or several vertices each.
///
/// Their numbers grow from the left to the right and, at the same x, from below.  That is the
/// order in which a sweep line meets them, as if it leaned a hair to the left: so a vertical
/// side, too, has a left end, the lower one, and no algorithm on sites knows a special case
/// for it.
class Sites {
 public:
  /// Before: the rings have no flaw of `check_rings`.
  explicit Sites(const Rings& rings);

  /// The same places and some more.
  ///
  /// @param more          in any order; may repeat each other and the places that are there
  /// @param first_vertex  those that are new get vertices of their own, numbered from here in the
  ///                      order of their places; no vertex of the caller's is known any more
  Sites(const Sites& sites, std::vector<exact::Point> more, std::uint32_t first_vertex);

  /// The site at a place, which is one.
  std::uint32_t at(const exact::Point& place) const;

  std::uint32_t size() const { return static_cast<std::uint32_t>(points_.size()); }
  const exact::Point& operator[](std::uint32_t site) const { return points_[site]; }
  std::span<const exact::Point> points() const { return points_; }

  /// The first of the caller's vertices at a site.
  std::uint32_t vertex(std::uint32_t site) const { return vertices_[site]; }
  /// The site of one of the caller's vertices, which belongs to a ring.
  std::uint32_t of(std::size_t vertex) const { return site_of_[vertex]; }

  /// The turn from a over b to c: 1 to the left, -1 to the right, 0 on one line.
  int turn(std::uint32_t a, std::uint32_t b, std::uint32_t c) const {
    return exact::orientation(points_[a], points_[b], points_[c]);
  }

 private:
  std::vector<exact::Point> points_;
  std::vector<std::uint32_t> vertices_;
  std::vector<std::uint32_t> site_of_;
};

}  // namespace kzgis::mesh

#endif
