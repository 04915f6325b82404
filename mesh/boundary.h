// The boundary of an arrangement's inside, in simple rings.

#ifndef KZGIS_MESH_BOUNDARY_H
#define KZGIS_MESH_BOUNDARY_H

#include <span>

#include "kzgis/mesh.h"
#include "mesh/arrangement.h"

namespace kzgis::mesh {

/// Rings that are simple and meet in sites only, with the inside on their left; see
/// `kzgis::make_valid` for how they are ordered.
Outline boundary_of(const Arrangement& arrangement);

/// The same of rings that stand apart.
///
/// @param depths  of the rings: an odd one makes a boundary
Outline boundary_of(const Rings& rings, std::span<const std::int32_t> depths);

}  // namespace kzgis::mesh

#endif
