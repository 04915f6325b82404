// Mesh files, whatever their format.

#ifndef KZGIS_TOOLS_MESH_FILES_MESH_WRITER_H
#define KZGIS_TOOLS_MESH_FILES_MESH_WRITER_H

#include <memory>
#include <ostream>

#include "tools/mesh_files/mesh_part.h"

namespace kzgis::tools {

enum class MeshFormat { glb, stl, ply, obj, geojson, svg, png };

/// A mesh file in the making.
class MeshWriter {
 public:
  virtual ~MeshWriter() = default;
  virtual void add(MeshPart part) = 0;
  /// Writes what can only be written when all parts are there.  Throws `CommandError` when the
  /// format has no room for so much.
  virtual void finish() = 0;
};

/// The writer of a format.
///
/// OBJ and GeoJSON are written as the parts come; the others, which open with counts or are
/// pictures, keep all of them until the end.
///
/// @param out      borrowed
/// @param spatial  z says something: GeoJSON writes it too
/// Throws `CommandError` for a format that this program was built without.
std::unique_ptr<MeshWriter> make_mesh_writer(MeshFormat format, std::ostream& out, bool spatial);

/// True of the formats that lie flat.
bool is_flat(MeshFormat format);

/// True of the formats that say what a table says of a record.
bool has_attributes(MeshFormat format);

}  // namespace kzgis::tools

#endif
