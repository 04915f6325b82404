// Which writer is whose, and what the formats can do.

#include "tools/mesh_files/mesh_writer.h"

#include "tools/mesh_files/geojson_writer.h"
#include "tools/mesh_files/glb_writer.h"
#include "tools/mesh_files/mesh_picture.h"
#include "tools/mesh_files/obj_writer.h"
#include "tools/mesh_files/ply_writer.h"
#include "tools/mesh_files/stl_writer.h"

namespace kzgis::tools {

std::unique_ptr<MeshWriter> make_mesh_writer(MeshFormat format, std::ostream& out, bool spatial) {
  switch (format) {
    case MeshFormat::glb:
      return make_glb_writer(out);
    case MeshFormat::stl:
      return std::make_unique<StlWriter>(out);
    case MeshFormat::ply:
      return std::make_unique<PlyWriter>(out);
    case MeshFormat::obj:
      return std::make_unique<ObjWriter>(out);
    case MeshFormat::geojson:
      return std::make_unique<GeoJsonWriter>(out, spatial);
    case MeshFormat::svg:
      return std::make_unique<PictureWriter>(PictureFormat::svg, out);
    default:
      return std::make_unique<PictureWriter>(PictureFormat::png, out);
  }
}

bool is_flat(MeshFormat format) {
  return format == MeshFormat::geojson || format == MeshFormat::svg || format == MeshFormat::png;
}

bool has_attributes(MeshFormat format) {
  return format == MeshFormat::glb || format == MeshFormat::geojson;
}

}  // namespace kzgis::tools
