// Shapefiles into memory.

#include "tools/map/layer.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <sstream>
#include <vector>

#include "kzgis/shape.h"
#include "kzgis/types.h"
#include "tools/support/command_error.h"
#include "tools/support/progress.h"
#include "tools/support/shape_records.h"

namespace kzgis::map {
namespace {

using tools::CommandError;
using tools::RecordState;
using tools::ShapeRecord;
using tools::ShapeRecords;

// A file that is damaged all through is not worth a line for every record.
constexpr int kMostComplaints = 20;
constexpr int kMostFailures = 1000;

GeoLine join(std::span<const double> x, std::span<const double> y) {
  GeoLine line;
  line.reserve(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) line.push_back({x[i], y[i]});
  return line;
}

std::optional<Parts> parts_of(const ShapeRecord& record, LayerKind kind) {
  if (kind == LayerKind::points) return Parts{join(record.x, record.y)};
  const auto x = ShapeRecords::split(record, record.x);
  const auto y = ShapeRecords::split(record, record.y);
  if (!x || !y) return std::nullopt;
  Parts parts;
  for (std::size_t i = 0; i < x->size(); ++i) parts.push_back(join((*x)[i], (*y)[i]));
  return parts;
}

std::size_t count_points(const Parts& parts) {
  std::size_t points = 0;
  for (const GeoLine& part : parts) points += part.size();
  return points;
}

// Some files run from 0 to 360, and some once more round; a projected one gives itself away.
void check_degrees(const std::string& file, kz_long number, const Parts& parts) {
  for (const GeoLine& part : parts) {
    for (const Geo& p : part) {
      if (!std::isfinite(p.lon) || !std::isfinite(p.lat)) continue;  // left out when drawing
      if (std::fabs(p.lon) <= 720.0 && std::fabs(p.lat) <= 90.5) continue;
      std::ostringstream text;
      text << file << ": record " << number << ": coordinates are not degrees: " << p.lon << ", "
           << p.lat;
      throw CommandError(text.str());
    }
  }
}

LayerKind kind_of(kz_long type) {
  if (type == shape_type::polygon) return LayerKind::polygons;
  return type == shape_type::arc ? LayerKind::lines : LayerKind::points;
}

}  // namespace

Layer read_layer(const std::string& file, const Complain& complain) {
  ShapeRecords records(file);
  const kz_ulong valid = records.file().ShapeHeader().ValidateFileHeader();
  // A box without extent, of a single point say, is no reason to refuse the file.
  if (valid != status::success && valid != status::bad_bounding_box) {
    throw CommandError(file + ": no shapefile that can be drawn: " + tools::status_text(valid));
  }
  if (records.index_is_cut()) complain(file + ": the index is shorter than its header says");

  Layer layer;
  layer.kind = kind_of(records.type());
  // More points than the file has room for are the same bytes again.
  constexpr std::uintmax_t kPointBytes = 16;
  std::uintmax_t points_left = records.shape_bytes() / kPointBytes;
  int failures = 0;
  const auto fail = [&](kz_long number, const std::string& why) {
    if (++failures <= kMostComplaints) {
      complain(file + ": record " + std::to_string(number) + " cannot be read: " + why);
    }
  };

  tools::Progress progress("reading " + file, static_cast<std::uint64_t>(records.count()));
  for (kz_long n = 1; n <= records.count() && failures < kMostFailures; ++n) {
    progress.update(static_cast<std::uint64_t>(n));
    ShapeRecord record;
    const RecordState state = records.read(n, record);
    if (state == RecordState::null) continue;
    if (state == RecordState::failed) {
      fail(n, records.failure());
      continue;
    }
    std::optional<Parts> parts = parts_of(record, layer.kind);
    if (!parts) {
      fail(n, "its parts do not follow each other");
      continue;
    }
    const std::size_t points = count_points(*parts);
    if (points > points_left) {
      fail(n, "the records together hold more points than the file");
      break;
    }
    points_left -= points;
    check_degrees(file, n, *parts);
    if (points > 0) layer.records.push_back(std::move(*parts));
  }
  if (failures > kMostComplaints) {
    complain(file + ": " + std::to_string(failures - kMostComplaints) +
             (failures == kMostFailures ? " more records cannot be read; the rest is left out"
                                        : " more records cannot be read"));
  }
  return layer;
}

}  // namespace kzgis::map
