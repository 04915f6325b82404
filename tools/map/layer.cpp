// Shapefiles into memory.

#include "tools/map/layer.h"

#include <cstddef>
#include <vector>

#include "tools/support/command_error.h"
#include "tools/support/degrees.h"
#include "tools/support/progress.h"
#include "tools/support/shape_file.h"

namespace kzgis::map {
namespace {

using tools::CommandError;
using tools::ShapeKind;

Outline owned(const ShapeRecord& record) {
  return {{record.x.begin(), record.x.end()},
          {record.y.begin(), record.y.end()},
          {record.parts.begin(), record.parts.end()}};
}

/// Throws `CommandError` at the first place that is none.
void check_degrees(const std::string& file, std::uint32_t number, const ShapeRecord& record) {
  for (std::size_t i = 0; i < record.x.size(); ++i) {
    if (tools::are_degrees(record.x[i], record.y[i])) continue;
    throw CommandError(file + ": " + tools::record_text(number) +
                       tools::not_degrees(record.x[i], record.y[i]));
  }
}

LayerKind layer_kind(ShapeKind kind) {
  if (kind == ShapeKind::polygons) return LayerKind::polygons;
  return kind == ShapeKind::lines ? LayerKind::lines : LayerKind::points;
}

}  // namespace

Layer read_layer(const std::string& file, const tools::Complain& complain) {
  Shapefile shapes = tools::open_shapefile(file);
  const std::optional<ShapeKind> kind = tools::kind_of(shapes.type());
  if (!kind) {
    throw CommandError(file + ": its shape type is " + tools::type_text(shapes.type()) +
                       "; points, lines and polygons can be drawn");
  }
  Layer layer;
  layer.kind = layer_kind(*kind);
  tools::Progress progress("reading " + file, shapes.size());
  tools::walk_records(shapes, file, {1, shapes.size()}, progress, complain,
                      [&](std::uint32_t number, const ShapeRecord& record) {
                        if (record.x.empty()) return;
                        check_degrees(file, number, record);
                        layer.records.push_back(owned(record));
                        layer.numbers.push_back(number);
                      });
  return layer;
}

}  // namespace kzgis::map
