// A picture of a mesh as it lies, x to the right and y up.

#ifndef KZGIS_TOOLS_MESH_FILES_MESH_PICTURE_H
#define KZGIS_TOOLS_MESH_FILES_MESH_PICTURE_H

#include <ostream>
#include <utility>
#include <vector>

#include "tools/mesh_files/mesh_writer.h"
#include "tools/picture/render.h"

namespace kzgis::tools {

/// Draws the triangles over a tint for each part; 1600 pixels on the long side.
void draw_meshes(const std::vector<MeshPart>& meshes, PictureFormat format, std::ostream& out);

/// Keeps the parts and draws them at the end.
class PictureWriter : public MeshWriter {
 public:
  PictureWriter(PictureFormat format, std::ostream& out) : format_(format), out_(out) {}
  void add(MeshPart part) override { parts_.push_back(std::move(part)); }
  void finish() override { draw_meshes(parts_, format_, out_); }

 private:
  PictureFormat format_;
  std::ostream& out_;
  std::vector<MeshPart> parts_;
};

}  // namespace kzgis::tools

#endif
