// The edges that bound a region, and the vertices that refinement puts on them.

#ifndef KZGIS_MESH_BORDERS_H
#define KZGIS_MESH_BORDERS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "exact/predicates.h"
#include "exact/tiling.h"
#include "mesh/sites.h"
#include "mesh/triangulation.h"

namespace kzgis::mesh {

/// Where new vertices lie on edges, and where the next ones may.
///
/// A vertex on an edge is known by its way: the part of the edge that lies on its left, from 0 to
/// 1.  Its place follows from the ends of the whole edge, never from other vertices: so rounding
/// does not add up, and who cuts the same edge at the same ways elsewhere finds the same places.
///
/// Vertices are the sites, and then those that were added.
class Borders {
 public:
  /// @param edges      sides of a region, between sites, and numbered in this order
  /// @param triangles  of the region, over its sites
  Borders(const Sites& sites, std::span<const exact::Side> edges, const Triangulation& triangles);

  /// A part of an edge between two of its vertices that are neighbours; begin < end.
  struct Piece {
    std::uint32_t edge;
    double begin, end;
  };
  Piece piece(std::uint32_t a, std::uint32_t b) const;

  /// The point of an edge at a way: rounded once from the nearer end, so that neither coordinate is
  /// off by more than the unit in the last place of the largest coordinate of the ends.
  exact::Point place(std::uint32_t edge, double way) const;

  /// Appends a vertex that lies on an edge, or on none (kNone).
  void add_vertex(std::uint32_t edge, double way);

  /// Asks for an edge to be cut into equal parts, as few as it takes that none measures more than
  /// the longest side.
  ///
  /// @param most  parts that are bearable
  /// @return the number of parts; more than `most` where it takes more
  std::size_t divide(std::uint32_t edge, double longest_side, std::size_t most);
  /// How many of the equal parts of its edge a piece has.
  std::uint32_t parts(const Piece& piece) const;
  /// The way to the middle of them.
  double middle_part(const Piece& piece) const;

  /// The way to where a piece is cut to get smaller triangles.
  ///
  /// That is its middle, but for a piece that begins where the edge meets another with less than 60
  /// degrees of the inside between them.  Such pieces are as long as a power of two: so the cuts
  /// of both edges come to lie at the same distances from where they meet, and do not call for
  /// more cuts of each other for ever.  J. Ruppert's concentric shells, as in J. R. Shewchuk,
  /// "Delaunay refinement algorithms for triangular mesh generation", Computational Geometry 22
  /// (2002).
  double shell(const Piece& piece) const;

  /// Whether two vertices lie on two edges that meet in a third vertex with less than 60 degrees
  /// of the inside between them.
  bool lie_on_sharp_corner(std::uint32_t a, std::uint32_t b) const;

  /// What has become of the edges.
  struct Pieces {
    std::vector<exact::Side> sides;    ///< between vertices; the inside on the left
    std::vector<std::uint32_t> edges;  ///< of each side the edge that it is part of
  };
  Pieces pieces() const;

 private:
  struct Way {
    std::uint32_t edge;
    double way;
  };

  std::uint32_t common_edge(std::uint32_t a, std::uint32_t b) const;
  double way_of(std::uint32_t vertex, std::uint32_t edge) const;
  bool is_end(std::uint32_t vertex, std::uint32_t edge) const;
  std::uint32_t left_end(std::uint32_t edge) const {
    return std::min(edges_[edge].from, edges_[edge].to);
  }
  std::uint32_t right_end(std::uint32_t edge) const {
    return std::max(edges_[edge].from, edges_[edge].to);
  }
  double length(std::uint32_t edge) const;
  void find_sharp_corners(const Triangulation& triangles);
  bool lies_across(std::uint32_t a, std::uint32_t edge, std::uint32_t b) const;

  const Sites& sites_;
  std::span<const exact::Side> edges_;
  std::vector<std::uint32_t> first_;     // of each site, where its edges are listed
  std::vector<std::uint32_t> incident_;  // edges by site
  // The edge that meets edge e sharply in its left end, at 2 e, and in its right, at 2 e + 1.
  std::vector<std::uint32_t> sharp_;
  std::vector<std::uint32_t> parts_;  // of each edge
  std::vector<Way> ways_;             // of added vertices
};

}  // namespace kzgis::mesh

#endif
