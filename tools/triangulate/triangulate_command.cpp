// kzgis triangulate: from the records of a shapefile to a mesh file, one after another.

#include "tools/triangulate/triangulate_command.h"

#include <kzgis/mesh.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mesh_files/mesh_part.h"
#include "tools/mesh_files/mesh_writer.h"
#include "tools/support/command_error.h"
#include "tools/support/number_text.h"
#include "tools/support/output_file.h"
#include "tools/support/output_format.h"
#include "tools/support/progress.h"
#include "tools/support/projection_options.h"
#include "tools/support/record_walk.h"
#include "tools/support/report.h"
#include "tools/support/shape_file.h"
#include "tools/triangulate/mesh_projector.h"

namespace kzgis::tools {

namespace {

struct Options {
  std::string input;
  std::string output;  ///< empty: none
  std::string format;
  bool check = false;
  bool projected = false;
  ProjectionOptions projection;
  std::optional<std::uint32_t> first;
  std::optional<std::uint32_t> last;
};

/// What the summary says of the records that became triangles, and of the others.
struct Totals {
  std::uint64_t records = 0;
  std::uint64_t rings = 0;
  std::uint64_t triangles = 0;
  double area = 0.0;
  std::uint64_t refused = 0;
  std::uint64_t null = 0;
};

std::optional<std::uint32_t> parse_record_number(std::string_view text) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc{} || stop != end || number < 1) return std::nullopt;
  return number;
}

/// "A:B", "A:", ":B", or a single "A".
void parse_records(const std::string& text, Options& options) {
  const std::size_t colon = text.find(':');
  const std::string first = text.substr(0, colon);
  const std::string last = colon == std::string::npos ? first : text.substr(colon + 1);
  options.first = parse_record_number(first);
  options.last = parse_record_number(last);
  if ((!options.first && !first.empty()) || (!options.last && !last.empty()) ||
      (!options.first && !options.last) || options.last.value_or(0xFFFFFFFF) < options.first) {
    throw UsageError("--records",
                     in_quotes(text) + " are no records; A:B stands for A to B, from 1 on");
  }
}

const OutputFormats<MeshFormat>& formats() {
  static const OutputFormats<MeshFormat> known{{"glb", MeshFormat::glb},
                                               {"stl", MeshFormat::stl},
                                               {"ply", MeshFormat::ply},
                                               {"obj", MeshFormat::obj},
                                               {"geojson", MeshFormat::geojson},
                                               {"svg", MeshFormat::svg},
                                               {"png", MeshFormat::png}};
  return known;
}

/// Nothing when nothing is written.  Throws `UsageError` when the options do not say what to do.
std::optional<MeshFormat> choose_format(const Options& options) {
  if (options.check) return std::nullopt;
  if (options.output.empty()) {
    throw UsageError("--output", "a file to write is missing, or --check");
  }
  return formats().choose(options.output, options.format);
}

bool is_spatial(const Options& options) {
  return options.projected && options.projection.type == GlobeProj;
}

/// Throws `CommandError` when the file holds no polygons or not the first record asked for.
RecordRange choose_records(const Shapefile& shapes, const Options& options) {
  if (kind_of(shapes.type()) != ShapeKind::polygons) {
    throw CommandError(options.input + ": its shape type is " + type_text(shapes.type()) +
                       "; only polygons can be triangulated");
  }
  const RecordRange range{options.first.value_or(1),
                          std::min(options.last.value_or(shapes.size()), shapes.size())};
  if (options.first && range.first > shapes.size()) {
    throw CommandError(options.input + ": there is no record " + std::to_string(range.first) +
                       "; the number of records is " + std::to_string(shapes.size()));
  }
  return range;
}

/// The last line that the user reads.
std::string summary(const Totals& totals) {
  // Ten digits are what sums of this length are good for.
  std::array<char, 32> area_text{};
  std::snprintf(area_text.data(), area_text.size(), "%.10g", totals.area);
  return counted(totals.records, "record") + ", " + counted(totals.rings, "ring") + ", " +
         counted(totals.triangles, "triangle") + ", area " + area_text.data() + "; " +
         std::to_string(totals.refused) + " refused, " + std::to_string(totals.null) + " null";
}

/// Returns the exit code: 0 when every record became triangles.
int run(const Options& options) {
  const std::optional<MeshFormat> format = choose_format(options);
  const bool picture = format == MeshFormat::svg || format == MeshFormat::png;
  if (picture && is_spatial(options)) {
    throw UsageError("--to", "a globe does not lie flat in a picture; orthographic does");
  }
  std::optional<MeshProjector> projector;
  if (options.projected) {
    projector.emplace(make_chart(options.projection.type, chart_parameters(options.projection)));
  }
  Shapefile shapes = open_shapefile(options.input);
  const RecordRange range = choose_records(shapes, options);

  std::optional<OutputFile> output;
  std::unique_ptr<MeshWriter> writer;
  if (format) {
    output.emplace(options.output);
    writer = make_mesh_writer(*format, output->stream(), is_spatial(options));
  }

  Totals totals;
  Complaints complaints;
  const bool prints = options.output == "-";
  {
    Progress progress("triangulating " + options.input, std::uint64_t{range.last} + 1 - range.first,
                      prints);
    const auto use = [&](std::uint32_t number, const ShapeRecord& record) {
      const Rings rings = record.rings();
      std::vector<WorldPoint> points;
      auto tried = triangulate(rings);
      std::string reason = tried ? std::string() : tried.error().message;
      Mesh mesh = tried ? std::move(*tried) : Mesh{};
      for (std::size_t v = 0; v < record.x.size(); ++v) {
        points.push_back({record.x[v], record.y[v], 0.0});
      }
      const double layer_area = area(points, mesh.triangles);
      if (reason.empty() && projector) reason = projector->project(rings, mesh, points);
      if (!reason.empty()) {
        ++totals.refused;
        complaints.add(options.input + ": " + record_text(number) + reason);
        return;
      }
      ++totals.records;
      totals.rings += record.parts.size();
      totals.triangles += mesh.triangles.size() / 3;
      totals.area += layer_area;
      if (writer) writer->add(make_mesh_part(number, points, mesh.triangles));
    };
    const RecordTally tally =
        walk_records(shapes, options.input, range, progress, complaints.receiver(), use);
    totals.refused += tally.failed;
    totals.null = tally.null;
  }
  if (writer) {
    writer->finish();
    output->commit();
  }
  (prints ? std::cerr : std::cout) << summary(totals) << std::endl;
  return complaints.exit_code();
}

constexpr const char* kExamples = R"(
The triangles of a record tile its polygon exactly, without new vertices, and run
counter-clockwise.  Rings may come in any order and winding, touch each other, and
lie in each other to any depth.  A record that is no polygon, because its rings
cross say, is named with its reason and left out; the exit code is then 1.  Z and M
of the records stay behind.

The summary counts the records that became triangles and gives their area in the
square of the layer's own unit.  It goes to standard output, or to standard error
when the mesh goes there.

  .obj      an object record_N for each record; x, y, z (0 unless projected)
  .ply      ASCII, with the record as a property of each face
  .geojson  a MultiPolygon of triangles for each record, which is a property
  .svg .png a picture, x to the right and y up

With --to, coordinates are degrees and come out as the world coordinates that
kzgis project gives, in the unit of the radius; a globe comes out as x, y and z
from its centre.  Nothing tears at the meridian of the base.  A record across the
opposite meridian is named and left out, like one that the projection has no place
for, or turns inside out, or makes cross itself.  Sides run straight between the
projected vertices: on the globe a long one cuts below the surface.

Examples:
  kzgis triangulate countries.shp -o countries.obj
  kzgis triangulate lakes.shp --check
  kzgis triangulate countries.shp --to globe --radius 1 -o globe.ply
  kzgis triangulate lakes.shp --records 3:5 -o - --format geojson
)";

}  // namespace

void add_triangulate_command(CLI::App& app, int& exit_code) {
  const auto options = std::make_shared<Options>();
  CLI::App& command = *app.add_subcommand(
      "triangulate", "Turn the polygons of a shapefile into triangles that tile them");
  command.add_option("FILE", options->input, "A shapefile of polygons")
      ->required()
      ->type_name(".shp");
  CLI::Option* const output =
      command
          .add_option("-o,--output", options->output,
                      "The mesh: .obj, .ply, .geojson, .svg or .png; - for standard output")
          ->type_name("MESH");
  formats().add_option(command, options->format)->needs(output);
  command.add_flag("--check", options->check, "Verify every record and write nothing")
      ->excludes(output);
  command
      .add_option_function<std::string>(
          "--records", [options](const std::string& text) { parse_records(text, *options); },
          "These records alone, counted from 1; either end may be missing")
      ->type_name("A:B");
  add_projection_options(command, options->projection);
  add_radius_option(command, options->projection);
  CLI::Option* const to = command.get_option("--to");
  for (const char* const name : {"--base", "--parallels", "--radius"}) {
    command.get_option(name)->needs(to);
  }
  command.footer(kExamples);
  command.callback([options, to, &exit_code] {
    options->projected = to->count() > 0;
    exit_code = run(*options);
  });
}

}  // namespace kzgis::tools
