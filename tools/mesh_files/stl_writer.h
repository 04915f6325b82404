// Binary STL.

#ifndef KZGIS_TOOLS_MESH_FILES_STL_WRITER_H
#define KZGIS_TOOLS_MESH_FILES_STL_WRITER_H

#include <ostream>
#include <utility>
#include <vector>

#include "tools/mesh_files/mesh_writer.h"

namespace kzgis::tools {

/// The triangles of all parts as one heap, which is all that the format knows.
///
/// Floats hold seven digits, too few for metres on the Earth: coordinates count from the middle of
/// all parts, and the header says where that is.
class StlWriter : public MeshWriter {
 public:
  explicit StlWriter(std::ostream& out) : out_(out) {}
  void add(MeshPart part) override { parts_.push_back(std::move(part)); }
  void finish() override;

 private:
  std::ostream& out_;
  std::vector<MeshPart> parts_;
};

}  // namespace kzgis::tools

#endif
