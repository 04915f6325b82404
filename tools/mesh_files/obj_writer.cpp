// Objects, vertices and faces, a line each.

#include "tools/mesh_files/obj_writer.h"

#include <string>

#include "tools/support/number_text.h"

namespace kzgis::tools {

void ObjWriter::add(MeshPart part) {
  std::string text = "o " + name_of(part) + '\n';
  for (const WorldPoint& vertex : part.vertices) {
    text += 'v';
    for (const double coordinate : {vertex.x, vertex.y, vertex.z}) {
      text += ' ';
      append_number(text, coordinate);
    }
    text += '\n';
  }
  for (std::size_t i = 0; i < part.triangles.size(); i += 3) {
    text += 'f';
    for (std::size_t k = 0; k < 3; ++k) {
      text += ' ' + std::to_string(first_vertex_ + part.triangles[i + k]);
    }
    text += '\n';
  }
  first_vertex_ += part.vertices.size();
  out_ << text;
}

}  // namespace kzgis::tools
