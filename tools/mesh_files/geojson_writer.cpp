// Features as they come, each a line.

#include "tools/mesh_files/geojson_writer.h"

#include <cstddef>
#include <utility>

#include "tools/support/number_text.h"

namespace kzgis::tools {

GeoJsonWriter::GeoJsonWriter(std::ostream& out, bool spatial) : out_(out), spatial_(spatial) {
  out_ << R"({"type":"FeatureCollection","features":[)";
}

void GeoJsonWriter::add(MeshPart part) {
  std::string text = first_ ? "\n" : ",\n";
  first_ = false;
  text += R"({"type":"Feature","properties":)" + properties_of(part).dump() +
          R"(,"geometry":{"type":"MultiPolygon","coordinates":[)";
  const std::size_t empty = text.size();
  for (std::size_t i = 0; i < part.triangles.size(); i += 3) {
    const WorldPoint& a = part.vertices[part.triangles[i]];
    WorldPoint b = part.vertices[part.triangles[i + 1]];
    WorldPoint c = part.vertices[part.triangles[i + 2]];
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

void GeoJsonWriter::finish() { out_ << "\n]}\n"; }

void GeoJsonWriter::append_ring(std::string& text, const std::array<WorldPoint, 4>& ring) const {
  for (std::size_t k = 0; k < ring.size(); ++k) {
    text += k == 0 ? "[[[" : ",[";
    append_number(text, ring.at(k).x);
    text += ',';
    append_number(text, ring.at(k).y);
    if (spatial_) {
      text += ',';
      append_number(text, ring.at(k).z);
    }
    text += ']';
  }
  text += "]]";
}

}  // namespace kzgis::tools
