// The formats of mesh files: Wavefront OBJ, PLY as G. Turk's "The PLY Polygon File Format" (1994)
// has it, GeoJSON (RFC 7946), and pictures.

#include "tools/triangulate/mesh_writer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "tools/support/number_text.h"
#include "tools/triangulate/mesh_picture.h"

namespace kzgis::tools {

namespace {

void append_point(std::string& text, const WorldPoint& point, char separator) {
  append_number(text, point.x);
  text += separator;
  append_number(text, point.y);
  text += separator;
  append_number(text, point.z);
}

/// A mesh file of objects; faces number vertices from 1, through the whole file.
class ObjWriter : public MeshWriter {
 public:
  explicit ObjWriter(std::ostream& out) : out_(out) {}

  void add(RecordMesh mesh) override {
    std::string text = "o record_" + std::to_string(mesh.record) + '\n';
    for (const WorldPoint& vertex : mesh.vertices) {
      text += "v ";
      append_point(text, vertex, ' ');
      text += '\n';
    }
    for (std::size_t i = 0; i < mesh.triangles.size(); i += 3) {
      text += 'f';
      for (std::size_t k = 0; k < 3; ++k) {
        text += ' ' + std::to_string(first_vertex_ + mesh.triangles[i + k]);
      }
      text += '\n';
    }
    first_vertex_ += mesh.vertices.size();
    out_ << text;
  }
  void finish() override {}

 private:
  std::ostream& out_;
  std::uint64_t first_vertex_ = 1;  // numbers run on through the file
};

/// PLY opens with the number of vertices and of faces, so nothing is written before the last
/// record is there.
class PlyWriter : public MeshWriter {
 public:
  explicit PlyWriter(std::ostream& out) : out_(out) {}

  void add(RecordMesh mesh) override { meshes_.push_back(std::move(mesh)); }

  void finish() override {
    std::uint64_t vertices = 0;
    std::uint64_t triangles = 0;
    for (const RecordMesh& mesh : meshes_) {
      vertices += mesh.vertices.size();
      triangles += mesh.triangle_count();
    }
    out_ << "ply\n"
            "format ascii 1.0\n"
         << "element vertex " << vertices
         << "\n"
            "property double x\n"
            "property double y\n"
            "property double z\n"
         << "element face " << triangles
         << "\n"
            "property list uchar int vertex_indices\n"
            "property int record\n"
            "end_header\n";
    for (const RecordMesh& mesh : meshes_) write_vertices(mesh);
    std::uint64_t first_vertex = 0;
    for (const RecordMesh& mesh : meshes_) {
      write_faces(mesh, first_vertex);
      first_vertex += mesh.vertices.size();
    }
  }

 private:
  void write_vertices(const RecordMesh& mesh) {
    std::string text;
    for (const WorldPoint& vertex : mesh.vertices) {
      append_point(text, vertex, ' ');
      text += '\n';
    }
    out_ << text;
  }

  void write_faces(const RecordMesh& mesh, std::uint64_t first_vertex) {
    std::string text;
    for (std::size_t i = 0; i < mesh.triangles.size(); i += 3) {
      text += '3';
      for (std::size_t k = 0; k < 3; ++k) {
        text += ' ' + std::to_string(first_vertex + mesh.triangles[i + k]);
      }
      text += ' ' + std::to_string(mesh.record) + '\n';
    }
    out_ << text;
  }

  std::ostream& out_;
  std::vector<RecordMesh> meshes_;
};

/// A feature for each record.  RFC 7946 wants outer rings to run counter-clockwise and rings to
/// close; a triangle without area has neither way round and is left out.
class GeoJsonWriter : public MeshWriter {
 public:
  GeoJsonWriter(std::ostream& out, bool spatial) : out_(out), spatial_(spatial) {
    out_ << "{\"type\":\"FeatureCollection\",\"features\":[";
  }

  void add(RecordMesh mesh) override {
    std::string text = first_ ? "\n" : ",\n";
    first_ = false;
    text += "{\"type\":\"Feature\",\"properties\":{\"record\":" + std::to_string(mesh.record) +
            "},\"geometry\":{\"type\":\"MultiPolygon\",\"coordinates\":[";
    const std::size_t empty = text.size();
    for (std::size_t i = 0; i < mesh.triangles.size(); i += 3) {
      const WorldPoint& a = mesh.vertices[mesh.triangles[i]];
      WorldPoint b = mesh.vertices[mesh.triangles[i + 1]];
      WorldPoint c = mesh.vertices[mesh.triangles[i + 2]];
      if (!spatial_) {
        // A projection may turn a sliver over.
        const double turn = twice_area(a, b, c);
        if (turn == 0.0) continue;
        if (turn < 0.0) std::swap(b, c);
      }
      if (text.size() != empty) text += ',';
      append_ring(text, {a, b, c, a});
    }
    out_ << text << "]}}";
  }

  void finish() override { out_ << "\n]}\n"; }

 private:
  void append_ring(std::string& text, const std::array<WorldPoint, 4>& ring) const {
    for (std::size_t k = 0; k < ring.size(); ++k) {
      text += k == 0 ? "[[[" : ",[";
      if (spatial_) {
        append_point(text, ring.at(k), ',');
      } else {
        append_number(text, ring.at(k).x);
        text += ',';
        append_number(text, ring.at(k).y);
      }
      text += ']';
    }
    text += "]]";
  }

  std::ostream& out_;
  bool spatial_;
  bool first_ = true;
};

/// Keeps the records and draws them at the end.
class PictureWriter : public MeshWriter {
 public:
  PictureWriter(PictureFormat format, std::ostream& out) : format_(format), out_(out) {}

  void add(RecordMesh mesh) override { meshes_.push_back(std::move(mesh)); }
  void finish() override { draw_meshes(meshes_, format_, out_); }

 private:
  PictureFormat format_;
  std::ostream& out_;
  std::vector<RecordMesh> meshes_;
};

}  // namespace

std::unique_ptr<MeshWriter> make_mesh_writer(MeshFormat format, std::ostream& out, bool spatial) {
  switch (format) {
    case MeshFormat::obj:
      return std::make_unique<ObjWriter>(out);
    case MeshFormat::ply:
      return std::make_unique<PlyWriter>(out);
    case MeshFormat::geojson:
      return std::make_unique<GeoJsonWriter>(out, spatial);
    case MeshFormat::svg:
      return std::make_unique<PictureWriter>(PictureFormat::svg, out);
    default:
      return std::make_unique<PictureWriter>(PictureFormat::png, out);
  }
}

}  // namespace kzgis::tools
