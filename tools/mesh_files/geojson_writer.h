// GeoJSON (RFC 7946).

#ifndef KZGIS_TOOLS_MESH_FILES_GEOJSON_WRITER_H
#define KZGIS_TOOLS_MESH_FILES_GEOJSON_WRITER_H

#include <array>
#include <ostream>
#include <string>

#include "tools/mesh_files/mesh_writer.h"

namespace kzgis::tools {

/// A feature for each part: a MultiPolygon of triangles, with the number of the record and its
/// attributes as properties.
///
/// The RFC wants outer rings to run counter-clockwise and rings to close; a triangle without area
/// has neither way round and is left out.
class GeoJsonWriter : public MeshWriter {
 public:
  GeoJsonWriter(std::ostream& out, bool spatial);
  void add(MeshPart part) override;
  void finish() override;

 private:
  void append_ring(std::string& text, const std::array<WorldPoint, 4>& ring) const;

  std::ostream& out_;
  bool spatial_;
  bool first_ = true;
};

}  // namespace kzgis::tools

#endif
