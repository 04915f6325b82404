// Mesh files.

#ifndef KZGIS_TOOLS_TRIANGULATE_MESH_WRITER_H
#define KZGIS_TOOLS_TRIANGULATE_MESH_WRITER_H

#include <memory>
#include <ostream>

#include "tools/triangulate/record_mesh.h"

namespace kzgis::tools {

enum class MeshFormat { obj, ply, geojson, svg, png };

/// A mesh file in the making.
class MeshWriter {
 public:
  virtual ~MeshWriter() = default;
  virtual void add(RecordMesh mesh) = 0;
  /// Writes what can only be written when all records are there.
  virtual void finish() = 0;
};

/// The writer of a format.
///
/// Wavefront OBJ has an object for each record.  PLY is ASCII, with the record as a property
/// of each face.  GeoJSON (RFC 7946) has a feature for each record, and leaves out triangles
/// without area, which a polygon must have.  OBJ and GeoJSON are written as the records come;
/// PLY, which opens with counts, and pictures keep all of them.
///
/// @param out      borrowed
/// @param spatial  z says something: GeoJSON writes it too
std::unique_ptr<MeshWriter> make_mesh_writer(MeshFormat format, std::ostream& out, bool spatial);

}  // namespace kzgis::tools

#endif
