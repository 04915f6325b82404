// kzgis triangulate: from the records of a shapefile to a mesh file, one after another.

#include "tools/triangulate/triangulate_command.h"

#include <kzgis/mesh.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tools/mesh_files/mesh_part.h"
#include "tools/mesh_files/mesh_writer.h"
#include "tools/support/attributes.h"
#include "tools/support/command_error.h"
#include "tools/support/number_text.h"
#include "tools/support/output_file.h"
#include "tools/support/output_format.h"
#include "tools/support/progress.h"
#include "tools/support/projection_options.h"
#include "tools/support/record_walk.h"
#include "tools/support/report.h"
#include "tools/support/shape_file.h"
#include "tools/triangulate/extrusion.h"
#include "tools/triangulate/heights.h"
#include "tools/triangulate/record_mesher.h"
#include "tools/triangulate/summary.h"

namespace kzgis::tools {

namespace {

struct Options {
  std::string input;
  std::string output;  ///< empty: none
  std::string format;
  bool check = false;
  bool repair = false;
  bool plain = false;
  std::optional<double> longest_side;
  std::optional<double> least_angle_deg;
  std::string extrude;  ///< empty: flat
  bool projected = false;
  ProjectionOptions projection;
  std::optional<double> tolerance;
  std::optional<std::uint32_t> first;
  std::optional<std::uint32_t> last;
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
  static const OutputFormats<MeshFormat> known{
      {"glb", MeshFormat::glb}, {"stl", MeshFormat::stl},         {"ply", MeshFormat::ply},
      {"obj", MeshFormat::obj}, {"geojson", MeshFormat::geojson}, {"svg", MeshFormat::svg},
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

MeshOptions mesh_options(const Options& options) {
  MeshOptions asked;
  asked.delaunay = !options.plain;
  asked.split_crossings = options.repair;
  asked.longest_side = options.longest_side.value_or(asked.longest_side);
  asked.least_angle_deg = options.least_angle_deg.value_or(asked.least_angle_deg);
  return asked;
}

/// Nothing for polygons that stay where they are.  Throws `UsageError`.
std::optional<Target> choose_target(const Options& options) {
  if (!options.projected) return std::nullopt;
  if (is_spatial(options) && options.tolerance) {
    throw UsageError("--tolerance", "on the globe it is --longest-side that follows the curvature");
  }
  const Chart chart = make_chart(options.projection.type, chart_parameters(options.projection));
  return Target{chart, options.tolerance.value_or(usual_tolerance(chart))};
}

/// Throws `UsageError` for a format that has no room for what is to be written.
void check_room(MeshFormat format, const Options& options) {
  if ((format == MeshFormat::svg || format == MeshFormat::png) && is_spatial(options)) {
    throw UsageError("--to", "a globe does not lie flat in a picture; orthographic does");
  }
  if (is_flat(format) && !options.extrude.empty()) {
    throw UsageError("--extrude", "a body does not lie flat; .glb, .stl, .ply and .obj hold it");
  }
}

/// The table beside the shapefile, where there is one and anybody asks for it.
///
/// What only the format asks for is left out when the table is damaged, with a complaint; else
/// throws `CommandError`.
std::optional<Attributes> open_table(const Shapefile& shapes, std::optional<MeshFormat> format,
                                     const std::optional<Heights>& heights,
                                     Complaints& complaints) {
  const bool needed = heights && heights->need_table();
  const bool wanted = format && has_attributes(*format);
  if (needed) {
    std::optional<Attributes> table(shapes.path());
    table->expect_rows(shapes.size());
    return table;
  }
  if (!wanted) return std::nullopt;
  return sound_attributes(shapes.path(), shapes.size(), complaints.receiver());
}

/// Returns the exit code: 0 when every record became triangles.
int run(const Options& options) {
  const std::optional<MeshFormat> format = choose_format(options);
  if (format) check_room(*format, options);
  std::optional<Heights> heights;
  if (!options.extrude.empty()) heights.emplace(options.extrude);
  const RecordMesher mesher(mesh_options(options), choose_target(options));
  Shapefile shapes = open_shapefile(options.input);
  const RecordRange range = choose_records(shapes, options);
  Complaints complaints;
  const std::optional<Attributes> table = open_table(shapes, format, heights, complaints);
  if (heights && heights->need_table()) heights->use(*table);

  std::optional<OutputFile> output;
  std::unique_ptr<MeshWriter> writer;
  if (format) {
    output.emplace(options.output);
    writer = make_mesh_writer(*format, output->stream(), is_spatial(options));
  }

  Summary summary;
  const bool prints = options.output == "-";
  {
    Progress progress("triangulating " + options.input, std::uint64_t{range.last} + 1 - range.first,
                      prints);
    const auto refuse = [&](std::uint32_t number, const std::string& reason) {
      summary.add_refused(1);
      complaints.add(options.input + ": " + record_text(number) + reason);
    };
    const auto use = [&](std::uint32_t number, const ShapeRecord& record) {
      const auto mesh = mesher.mesh(record.rings());
      if (!mesh) return refuse(number, mesh.error().message);
      std::optional<double> height;
      if (heights && !(height = heights->of(number))) {
        return refuse(number, heights->why_none(number));
      }
      if (options.projected && mesh->triangles.empty()) return summary.add_absent();
      summary.add(record.parts.size(), mesh->area, mesh->crossings, mesh->added, mesh->points,
                  mesh->triangles);
      MeshPart part = make_mesh_part(number, mesh->points, mesh->triangles);
      if (height) part = extrude(part, *height, is_spatial(options));
      if (!writer) return;
      if (table) part.attributes = table->row(static_cast<int>(number));
      writer->add(std::move(part));
    };
    const RecordTally tally =
        walk_records(shapes, options.input, range, progress, complaints.receiver(), use);
    summary.add_refused(tally.failed);
    summary.add_null(tally.null);
  }
  if (writer) {
    writer->finish();
    output->commit();
  }
  (prints ? std::cerr : std::cout)
      << summary.text(options.repair && !options.projected) << std::endl;
  return complaints.exit_code();
}

constexpr const char* kExamples = R"(
The triangles of a record tile its polygon exactly and run counter-clockwise.  They
are Delaunay triangles, the fattest there are without new vertices, unless --plain
asks for those of the sweep, which take less time.  Rings may come in any order and
winding, touch each other, and lie in each other to any depth.  A record that is no
polygon, because its rings cross say, is named with its reason and left out; the
exit code is then 1.  With --repair, sides that cross get a vertex there, and what
an odd number of rings lies around is inside.  Z and M of the records stay behind.

--longest-side and --least-angle put new vertices on sides and between them until no
side of a triangle is longer (in the unit of x and y as they come out, on a globe in
degrees) and no angle smaller, but for the polygon's own sharp corners.

--extrude raises prisms: closed bodies of bottom, walls and top.  The height is in
the unit of x and y as they come out, a number or @ and a field of the dBASE table;
a record without a height above 0 is named and left out.  On a globe up is outwards.

The summary counts the records that became triangles and gives the area of these in
the square of the unit of x and y as they come out; then the vertices added, and the
least angle of all triangles and the median of each one's least.  It goes to standard
output, or to standard error when the mesh goes there.

  .glb      binary glTF 2.0: a node record_N for each record, with the number and
            the fields of the dBASE table as extras; floats from the middle of the
            record, where the node stands; z is up; the origin is in asset.extras
  .stl      binary; floats from an origin that the header names
  .ply      binary, doubles, with the record as a property of each face
  .obj      an object record_N for each record; x, y, z (0 unless projected)
  .geojson  a MultiPolygon of triangles for each record; its properties are the
            number and the fields of the dBASE table
  .svg .png a picture, x to the right and y up

With --to, coordinates are degrees and come out as the world coordinates that
kzgis project gives, in the unit of the radius.  Polygons are cut where the map ends,
at the meridian opposite to the base or at the horizon; a record that has nothing on
the map is counted and left out.  Sides, straight in degrees, become chords of the
curves that they are on the map: no point of a curve is farther than --tolerance from
its chord.  What an odd number of rings lies around is inside, whatever the rings do:
no record is refused for that, and --repair is not needed.

A globe comes out as x, y and z from its centre.  What the file cuts at the antimeridian
is joined, and a pole is a point like any other.  Sides are cut into pieces of a degree
or less, alike for neighbours.  A long side cuts below the surface: --longest-side, in
degrees of the globe, keeps triangles near it.  Areas are those of the flat triangles.

Examples:
  kzgis triangulate countries.shp -o countries.glb
  kzgis triangulate lakes.shp --repair --check
  kzgis triangulate countries.shp --to albers --base 48,15 -o europe.glb
  kzgis triangulate countries.shp --to globe --longest-side 5 -o globe.ply
  kzgis triangulate houses.shp --extrude @FLOORS -o houses.stl
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
                      "The mesh: .glb, .stl, .ply, .obj, .geojson, .svg or .png; - for standard "
                      "output")
          ->type_name("MESH");
  formats().add_option(command, options->format)->needs(output);
  command.add_flag("--check", options->check, "Verify every record and write nothing")
      ->excludes(output);
  command
      .add_option_function<std::string>(
          "--records", [options](const std::string& text) { parse_records(text, *options); },
          "These records alone, counted from 1; either end may be missing")
      ->type_name("A:B");
  command.add_flag("--repair", options->repair, "Split sides where they cross");
  CLI::Option* const plain =
      command.add_flag("--plain", options->plain, "The sweep's own triangles: quick, and slivers");
  command.add_flag("--delaunay")->description("Delaunay triangles (the usual)")->excludes(plain);
  command.add_option("--longest-side", options->longest_side, "Vertices until no side is longer")
      ->type_name("L")
      ->excludes(plain)
      ->check([](const std::string& text) {
        return parse_number(text).value_or(0.0) > 0.0
                   ? std::string()
                   : in_quotes(text) + " is no length; one is a number above 0";
      });
  command
      .add_option("--least-angle", options->least_angle_deg,
                  "Vertices until no angle is smaller, 25 degrees at most")
      ->type_name("DEG")
      ->excludes(plain)
      ->check([](const std::string& text) {
        const double angle = parse_number(text).value_or(-1.0);
        return angle >= 0.0 && angle <= 25.0
                   ? std::string()
                   : in_quotes(text) + " is no such angle; one is a number from 0 to 25";
      });
  command.add_option("--extrude", options->extrude, "Raise prisms, all as high or each by a field")
      ->type_name("HEIGHT|@FIELD");
  add_projection_options(command, options->projection);
  add_radius_option(command, options->projection);
  add_tolerance_option(command, options->tolerance);
  CLI::Option* const to = command.get_option("--to");
  for (const char* const name : {"--base", "--parallels", "--radius", "--tolerance"}) {
    command.get_option(name)->needs(to);
  }
  command.footer(kExamples);
  command.callback([options, to, &exit_code] {
    options->projected = to->count() > 0;
    exit_code = run(*options);
  });
}

}  // namespace kzgis::tools
