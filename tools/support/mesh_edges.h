// The edges of a triangle mesh, for drawing.

#ifndef KZGIS_TOOLS_SUPPORT_MESH_EDGES_H
#define KZGIS_TOOLS_SUPPORT_MESH_EDGES_H

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace kzgis::tools {

/// Two vertex numbers, the smaller one first.
using MeshEdge = std::pair<std::uint32_t, std::uint32_t>;

/// Every edge once, in ascending order.
struct MeshEdges {
  std::vector<MeshEdge> inner;   ///< between two triangles
  std::vector<MeshEdge> border;  ///< of one triangle
};

/// @param triangles  three vertex numbers each
MeshEdges mesh_edges(std::span<const std::uint32_t> triangles);

}  // namespace kzgis::tools

#endif
