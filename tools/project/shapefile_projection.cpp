// Record by record from a shapefile onto a map, and counts of what became of them.

#include "tools/project/shapefile_projection.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <utility>

#include "tools/project/feature_writer.h"
#include "tools/project/map_feature.h"
#include "tools/support/attributes.h"
#include "tools/support/command_error.h"
#include "tools/support/number_text.h"
#include "tools/support/output_format.h"
#include "tools/support/progress.h"
#include "tools/support/record_walk.h"
#include "tools/support/report.h"
#include "tools/support/shape_file.h"

namespace kzgis::tools {

namespace {

enum class FeatureFormat { geojson, shp };

const OutputFormats<FeatureFormat>& formats() {
  static const OutputFormats<FeatureFormat> known{{"geojson", FeatureFormat::geojson},
                                                  {"shp", FeatureFormat::shp}};
  return known;
}

FeatureFormat choose_format(const ShapefileProjection& options) {
  const FeatureFormat format = formats().choose(options.output, options.format);
  if (format == FeatureFormat::shp && options.output == "-") {
    throw UsageError("--format", "a shapefile is several files, which standard output is not");
  }
  return format;
}

ShapefileContent content_of(const Shapefile& shapes, const std::string& input) {
  const ShapeType type = shapes.type();
  const std::optional<ShapeKind> kind = kind_of(type);
  if (!kind || *kind == ShapeKind::null) {
    throw CommandError(input + ": its shape type is " + type_text(type) +
                       "; only points, lines and polygons can be projected");
  }
  return {*kind, holds_many(type)};
}

struct Counts {
  std::uint64_t records = 0, parts = 0, points = 0, refused = 0, null = 0, absent = 0;
  std::uint64_t placeless = 0;

  void add(const MapFeature& feature) {
    placeless += feature.placeless;
    if (feature.is_empty()) {
      ++absent;
      return;
    }
    ++records;
    parts += feature.parts.starts.size();
    points += feature.parts.x.size();
  }

  std::string text(ShapeKind kind) const {
    std::string line = counted(records, "record") + ", ";
    if (kind == ShapeKind::lines) line += counted(parts, "line") + ", ";
    if (kind == ShapeKind::polygons) line += counted(parts, "ring") + ", ";
    line += counted(points, "point") + "; " + std::to_string(refused) + " refused, " +
            std::to_string(null) + " null";
    if (absent > 0) line += ", " + std::to_string(absent) + " off the map";
    if (placeless > 0) line += "; " + counted(placeless, "point") + " without a place";
    return line;
  }
};

}  // namespace

void add_feature_format_option(CLI::App& command, std::string& format) {
  formats().add_option(command, format);
}

int project_shapefile(const ShapefileProjection& options) {
  const FeatureFormat format = choose_format(options);
  if (options.projection.type == GlobeProj) {
    throw UsageError("--to", "a globe has no outlines that lie flat; orthographic does");
  }
  const Chart chart = make_chart(options.projection.type, chart_parameters(options.projection));
  const double tolerance = options.tolerance.value_or(usual_tolerance(chart));
  Shapefile shapes = open_shapefile(options.input);
  const ShapefileContent content = content_of(shapes, options.input);
  Complaints complaints;
  const std::optional<Attributes> table =
      sound_attributes(shapes.path(), shapes.size(), complaints.receiver());
  const Attributes* const attributes = table ? &*table : nullptr;
  const std::unique_ptr<FeatureWriter> writer =
      format == FeatureFormat::geojson
          ? make_geojson_features(options.output, attributes)
          : make_shapefile_features(options.output, content, attributes, chart);

  Counts counts;
  const bool prints = options.output == "-";
  {
    Progress progress("projecting " + options.input, shapes.size(), prints);
    const auto use = [&](std::uint32_t number, const ShapeRecord& record) {
      const auto feature = draw_record(record, chart, tolerance);
      if (!feature) {
        ++counts.refused;
        complaints.add(options.input + ": " + record_text(number) + feature.error().message);
        return;
      }
      counts.add(*feature);
      if (!feature->is_empty()) writer->add(*feature);
    };
    const RecordTally tally = walk_records(shapes, options.input, {1, shapes.size()}, progress,
                                           complaints.receiver(), use);
    counts.refused += tally.failed;
    counts.null += tally.null;
  }
  writer->commit();
  (prints ? std::cerr : std::cout) << counts.text(content.kind) << std::endl;
  return complaints.exit_code();
}

}  // namespace kzgis::tools
