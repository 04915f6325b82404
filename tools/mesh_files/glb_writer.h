// Binary glTF 2.0.

#ifndef KZGIS_TOOLS_MESH_FILES_GLB_WRITER_H
#define KZGIS_TOOLS_MESH_FILES_GLB_WRITER_H

#include <memory>
#include <ostream>

#include "tools/mesh_files/mesh_writer.h"

namespace kzgis::tools {

/// The writer of a scene with a node for each part.
///
/// The node's `extras` are the number of the record and its attributes.  Floats hold seven digits,
/// too few for metres on the Earth: vertices count from the middle of their part, where the node
/// is moved to; nodes count from the middle of all parts, the `origin` in the extras of `asset`.
/// The root turns z up into the y that glTF has up.
///
/// Throws `CommandError` when this program was built without the library that writes the format.
std::unique_ptr<MeshWriter> make_glb_writer(std::ostream& out);

}  // namespace kzgis::tools

#endif
