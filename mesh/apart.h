// Rings that stand apart: which lies in which, found without looking at every vertex as a site.

#ifndef KZGIS_MESH_APART_H
#define KZGIS_MESH_APART_H

#include <cstdint>
#include <optional>
#include <vector>

#include "kzgis/mesh.h"

namespace kzgis::mesh {

/// Rings that stand apart.
struct Apart {
  /// For each ring the smallest other one around it, or kNone.
  std::vector<std::uint32_t> parents;
  /// The rings without vertices that repeat the one before, if there are such.
  std::optional<Outline> cleaned;
};

/// Which ring lies in which, if no ring touches or crosses itself or another; nothing if one does,
/// or has fewer than three different vertices: `arrange` knows what that means.
///
/// A vertex that repeats the one before it, or the first one at the end, is none.
///
/// Before: the rings have no flaw of `check_rings`.
std::optional<Apart> parents_apart(const Rings& rings);

}  // namespace kzgis::mesh

#endif
