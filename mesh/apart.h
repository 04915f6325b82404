// Rings that stand apart: which lies in which, found without looking at every vertex as a site.

#ifndef KZGIS_MESH_APART_H
#define KZGIS_MESH_APART_H

#include <cstdint>
#include <optional>
#include <vector>

#include "kzgis/mesh.h"

namespace kzgis::mesh {

/// For each ring the smallest other one around it, or kNone, if no ring touches or crosses itself
/// or another; nothing if one does, or repeats a vertex next to itself, or has fewer than three:
/// `arrange` knows what that means.
///
/// A ring that ends with its first vertex once more is taken without it.
///
/// Before: the rings have no flaw of `check_rings`.
std::optional<std::vector<std::uint32_t>> parents_apart(const Rings& rings);

}  // namespace kzgis::mesh

#endif
