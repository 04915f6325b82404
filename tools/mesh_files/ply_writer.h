// PLY, as G. Turk's "The PLY Polygon File Format" (1994) has it.

#ifndef KZGIS_TOOLS_MESH_FILES_PLY_WRITER_H
#define KZGIS_TOOLS_MESH_FILES_PLY_WRITER_H

#include <ostream>
#include <utility>
#include <vector>

#include "tools/mesh_files/mesh_writer.h"

namespace kzgis::tools {

/// Binary, little-endian, coordinates as doubles, and with each face the number of its record.
class PlyWriter : public MeshWriter {
 public:
  explicit PlyWriter(std::ostream& out) : out_(out) {}
  void add(MeshPart part) override { parts_.push_back(std::move(part)); }
  void finish() override;

 private:
  std::ostream& out_;
  std::vector<MeshPart> parts_;
};

}  // namespace kzgis::tools

#endif
