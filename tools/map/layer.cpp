// Shapefiles into memory.

#include "tools/map/layer.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "kzgis/shape.h"
#include "kzgis/types.h"
#include "tools/support/command_error.h"
#include "tools/support/degrees.h"
#include "tools/support/progress.h"
#include "tools/support/shape_records.h"

namespace kzgis::map {
namespace {

using tools::CommandError;
using tools::ShapeRecord;
using tools::ShapeRecords;

GeoLine join(std::span<const double> x, std::span<const double> y) {
  GeoLine line;
  line.reserve(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) line.push_back({x[i], y[i]});
  return line;
}

/// The rings or lines of a record; points come as one part.
Parts parts_of(const ShapeRecord& record, LayerKind kind) {
  if (kind == LayerKind::points) return Parts{join(record.x, record.y)};
  const auto x = ShapeRecords::split(record, record.x);
  const auto y = ShapeRecords::split(record, record.y);
  Parts parts;
  if (!x || !y) return parts;
  for (std::size_t i = 0; i < x->size(); ++i) parts.push_back(join((*x)[i], (*y)[i]));
  return parts;
}

std::size_t count_points(const Parts& parts) {
  std::size_t points = 0;
  for (const GeoLine& part : parts) points += part.size();
  return points;
}

/// Throws `CommandError` at the first place that is none.
void check_degrees(const std::string& file, kz_long number, const Parts& parts) {
  for (const GeoLine& part : parts) {
    for (const Geo& p : part) {
      if (!std::isfinite(p.lon) || !std::isfinite(p.lat)) continue;  // left out when drawing
      if (tools::are_degrees(p.lon, p.lat)) continue;
      throw CommandError(file + ": record " + std::to_string(number) + ": " +
                         tools::not_degrees(p.lon, p.lat));
    }
  }
}

LayerKind kind_of(kz_long type) {
  if (type == shape_type::polygon) return LayerKind::polygons;
  return type == shape_type::arc ? LayerKind::lines : LayerKind::points;
}

}  // namespace

Layer read_layer(const std::string& file, const tools::Complain& complain) {
  ShapeRecords records(file);
  const kz_ulong valid = records.file().ShapeHeader().ValidateFileHeader();
  // A box without extent, of a single point say, is no reason to refuse the file.
  if (valid != status::success && valid != status::bad_bounding_box) {
    throw CommandError(file + ": no shapefile that can be drawn: " + tools::status_text(valid));
  }
  Layer layer;
  layer.kind = kind_of(records.type());
  tools::Progress progress("reading " + file, static_cast<std::uint64_t>(records.count()));
  tools::walk_records(records, {1, records.count()}, progress, complain,
                      [&](kz_long number, const ShapeRecord& record) {
                        Parts parts = parts_of(record, layer.kind);
                        check_degrees(file, number, parts);
                        if (count_points(parts) == 0) return;
                        layer.records.push_back(std::move(parts));
                        layer.numbers.push_back(number);
                      });
  return layer;
}

}  // namespace kzgis::map
