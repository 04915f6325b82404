// Triangles over a height field, refined where they are worst.

#ifndef KZGIS_MESH_GREEDY_H
#define KZGIS_MESH_GREEDY_H

#include <cstdint>
#include <vector>

#include "mesh/deviation.h"
#include "mesh/height_field.h"
#include "mesh/triangulation.h"

namespace kzgis::mesh {

/// Greedy insertion (M. Garland and P. S. Heckbert, "Fast polygonal approximation of terrains and
/// height fields", Carnegie Mellon University, CMU-CS-95-181 (1995), algorithm III).
///
/// Between two steps the triangles are constrained Delaunay, and each that is too far off somewhere
/// has its worst point in a heap.  A step makes the worst of these points a vertex.  Since the
/// triangles were Delaunay before, all that change have the new vertex for a corner, and they alone
/// are looked at again.
class Greedy {
 public:
  /// @param triangles  of points of the field, which cover what is to be covered
  Greedy(const HeightField& field, const Judge& judge, std::vector<std::uint32_t> triangles);

  /// Inserts points until the triangles are nowhere too far off.
  /// @return three points of the field for each triangle
  std::vector<std::uint32_t> run();

 private:
  /// The worst point of a triangle when it was looked at.
  struct Candidate {
    Deviation worst;
    std::uint32_t triangle = 0;
    std::uint32_t look = 0;  ///< how often the triangle had been looked at
  };
  static bool comes_later(const Candidate& a, const Candidate& b);
  bool is_stale(const Candidate& candidate) const {
    return looks_[candidate.triangle] != candidate.look;
  }

  void look_at(std::uint32_t triangle);
  void insert(const Candidate& candidate);
  void find_spokes(std::uint32_t h);

  const HeightField& field_;
  const Judge& judge_;
  Triangulation triangles_;
  std::vector<std::uint32_t> looks_;  ///< of each triangle, how often it was looked at
  /// A heap of candidates.  Of triangles that have changed since, they stay in it, stale, until
  /// they come up or outnumber the others.
  std::vector<Candidate> candidates_;
  std::vector<std::uint32_t> spokes_;      ///< half-edges that begin at a new vertex
  std::vector<std::uint32_t> questioned_;  ///< edges that may not be Delaunay
};

}  // namespace kzgis::mesh

#endif
