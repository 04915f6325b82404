// Rings as they come from callers: whether they can be worked on, and their sides.

#ifndef KZGIS_MESH_RINGS_H
#define KZGIS_MESH_RINGS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kzgis/mesh.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

/// There are fewer vertices than this, so that all that a polygon is cut into can be numbered in 32
/// bits: sides are cut into three edges a vertex at most, since edges meet in vertices only, and
/// each has two ends.
inline constexpr std::size_t kMostVertices = 0x10000000;

/// A reason why rings are refused, and where: numbers of a ring and a vertex, or -1.
Flaw make_flaw(ErrorKind kind, std::string message, std::int64_t ring = -1,
               std::int64_t vertex = -1);

/// One past the last vertex of a ring.
std::size_t end_of_ring(const Rings& rings, std::size_t ring);

/// What stands in the way of working on the rings at all: arrays that do not fit each other, or
/// coordinates out of range.
///
/// @param most  how many flaws are looked for
std::vector<Flaw> flaws_of_numbers(const Rings& rings, std::size_t most);

/// The first of those flaws.
std::optional<Flaw> check_rings(const Rings& rings);

/// A side of a ring.
struct Side {
  std::uint32_t left, right;  ///< its sites; left < right
  std::uint32_t ring;
  std::uint32_t vertex;  ///< the caller's, at which the ring's way along the side begins
};

/// The sides of all rings, ring after ring, without repeated vertices and without spikes.
///
/// A spike goes out along a line and back: where a vertex's two sides point the same way, the
/// vertex is left out, and again, until none is.  That changes nothing in the inside.  Of a
/// ring with fewer than three vertices left nothing is.
std::vector<Side> take_sides(const Rings& rings, const Sites& sites);

}  // namespace kzgis::mesh

#endif
