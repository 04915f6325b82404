// GeoJSON after H. Butler and others, "The GeoJSON Format", RFC 7946 (2016), but for its
// coordinates, which it wants to be degrees: each feature a line.

#include <nlohmann/json.hpp>
#include <utility>

#include "tools/project/feature_writer.h"
#include "tools/support/number_text.h"
#include "tools/support/output_file.h"

namespace kzgis::tools {

namespace {

void append_position(std::string& text, const Outline& parts, std::size_t i) {
  text += '[';
  append_number(text, parts.x[i]);
  text += ',';
  append_number(text, parts.y[i]);
  text += ']';
}

void append_positions(std::string& text, const MapFeature& feature, std::size_t begin,
                      std::size_t end, bool closed) {
  text += '[';
  for (std::size_t i = begin; i < end; ++i) {
    if (i > begin) text += ',';
    append_position(text, feature.parts, i);
  }
  if (closed) {
    text += ',';
    append_position(text, feature.parts, begin);
  }
  text += ']';
}

void append_points(std::string& text, const MapFeature& feature) {
  text += feature.many ? R"("MultiPoint","coordinates":)" : R"("Point","coordinates":)";
  if (feature.many) {
    append_positions(text, feature, 0, feature.parts.x.size(), false);
  } else {
    append_position(text, feature.parts, 0);
  }
}

void append_lines(std::string& text, const MapFeature& feature) {
  text += R"("MultiLineString","coordinates":[)";
  for (std::size_t part = 0; part < feature.parts.starts.size(); ++part) {
    if (part > 0) text += ',';
    append_positions(text, feature, static_cast<std::size_t>(feature.parts.starts[part]),
                     feature.end_of(part), false);
  }
  text += ']';
}

void append_polygons(std::string& text, const MapFeature& feature) {
  text += R"("MultiPolygon","coordinates":[)";
  for (std::size_t ring = 0; ring < feature.parts.starts.size(); ++ring) {
    if (feature.is_hole[ring]) {
      text += ',';
    } else {
      text += ring > 0 ? "],[" : "[";
    }
    append_positions(text, feature, static_cast<std::size_t>(feature.parts.starts[ring]),
                     feature.end_of(ring), true);
  }
  text += "]]";
}

class GeoJsonFeatures : public FeatureWriter {
 public:
  GeoJsonFeatures(const std::string& output, const Attributes* table)
      : output_(output), table_(table) {
    output_.stream() << R"({"type":"FeatureCollection","features":[)";
  }

  void add(const MapFeature& feature) override {
    auto attributes = nlohmann::ordered_json::object();
    if (table_ != nullptr) attributes = table_->row(static_cast<int>(feature.record));
    std::string text = first_ ? "\n" : ",\n";
    first_ = false;
    text += R"({"type":"Feature","properties":)" +
            properties_of(feature.record, attributes).dump() + R"(,"geometry":{"type":)";
    if (feature.kind == ShapeKind::points) {
      append_points(text, feature);
    } else if (feature.kind == ShapeKind::lines) {
      append_lines(text, feature);
    } else {
      append_polygons(text, feature);
    }
    output_.stream() << text << "}}";
  }

  void commit() override {
    output_.stream() << "\n]}\n";
    output_.commit();
  }

 private:
  OutputFile output_;
  const Attributes* table_;
  bool first_ = true;
};

}  // namespace

std::unique_ptr<FeatureWriter> make_geojson_features(const std::string& output,
                                                     const Attributes* table) {
  return std::make_unique<GeoJsonFeatures>(output, table);
}

}  // namespace kzgis::tools
