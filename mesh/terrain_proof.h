// The proof that triangles fit a height field.

#ifndef KZGIS_MESH_TERRAIN_PROOF_H
#define KZGIS_MESH_TERRAIN_PROOF_H

#include <cstdint>
#include <span>
#include <vector>

#include "mesh/deviation.h"
#include "mesh/height_field.h"

namespace kzgis::mesh {

/// Which points of a field are corners of triangles.
std::vector<bool> vertices_of(const HeightField& field, std::span<const std::uint32_t> triangles);

/// Whether triangles, three points of the field each, tile what is covered, and none is too far
/// from the elevation of any point in it.
///
/// The sides that they have to tile are those of the covered squares, put together where no
/// triangle has a corner: they are taken from the field, and not from how the triangles were found.
bool proved(const HeightField& field, const Judge& judge, std::span<const std::uint32_t> triangles);

}  // namespace kzgis::mesh

#endif
