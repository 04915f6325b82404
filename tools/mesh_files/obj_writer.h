// Wavefront OBJ.

#ifndef KZGIS_TOOLS_MESH_FILES_OBJ_WRITER_H
#define KZGIS_TOOLS_MESH_FILES_OBJ_WRITER_H

#include <cstdint>
#include <ostream>

#include "tools/mesh_files/mesh_writer.h"

namespace kzgis::tools {

/// An object for each part; coordinates with all their digits.
class ObjWriter : public MeshWriter {
 public:
  explicit ObjWriter(std::ostream& out) : out_(out) {}
  void add(MeshPart part) override;
  void finish() override {}

 private:
  std::ostream& out_;
  std::uint64_t first_vertex_ = 1;  // faces number the vertices of the whole file
};

}  // namespace kzgis::tools

#endif
