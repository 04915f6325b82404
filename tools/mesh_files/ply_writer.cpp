// A header in text with the counts, the vertices of all parts, and then their faces:
//   vertex  double x, y, z
//   face    uint8 3, int32 vertex numbers through the file from 0 (3 of them), int32 record

#include "tools/mesh_files/ply_writer.h"

#include <cstdint>
#include <limits>
#include <string>

#include "tools/mesh_files/binary.h"
#include "tools/support/command_error.h"

namespace kzgis::tools {

void PlyWriter::finish() {
  std::uint64_t vertices = 0;
  std::uint64_t triangles = 0;
  for (const MeshPart& part : parts_) {
    vertices += part.vertices.size();
    triangles += part.triangle_count();
  }
  if (vertices > std::uint64_t{std::numeric_limits<std::int32_t>::max()}) {
    throw CommandError(std::to_string(vertices) + " vertices are more than .ply can number");
  }
  out_ << "ply\n"
          "format binary_little_endian 1.0\n"
       << "element vertex " << vertices
       << "\n"
          "property double x\n"
          "property double y\n"
          "property double z\n"
       << "element face " << triangles
       << "\n"
          "property list uchar int vertex_indices\n"
          "property int record\n"
          "end_header\n";
  std::string bytes;
  for (const MeshPart& part : parts_) {
    bytes.clear();
    for (const WorldPoint& vertex : part.vertices) {
      for (const double coordinate : {vertex.x, vertex.y, vertex.z}) {
        append_binary(bytes, coordinate);
      }
    }
    out_ << bytes;
  }
  std::uint32_t first_vertex = 0;
  for (const MeshPart& part : parts_) {
    bytes.clear();
    for (std::size_t i = 0; i < part.triangles.size(); i += 3) {
      bytes += '\3';
      for (std::size_t k = 0; k < 3; ++k) {
        append_binary(bytes, first_vertex + part.triangles[i + k]);
      }
      append_binary(bytes, part.record);
    }
    out_ << bytes;
    first_vertex += static_cast<std::uint32_t>(part.vertices.size());
  }
}

}  // namespace kzgis::tools
