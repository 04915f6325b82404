// kzgis dem: from a USGS DEM to a picture, a grid, points or a mesh.

#include "tools/dem/dem_command.h"

#include <kzgis/terrain.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>
#include <string>

#include "tools/dem/grid_file.h"
#include "tools/dem/grid_text.h"
#include "tools/dem/relief_picture.h"
#include "tools/dem/terrain_file.h"
#include "tools/picture/render.h"
#include "tools/support/command_error.h"
#include "tools/support/number_text.h"
#include "tools/support/output_file.h"
#include "tools/support/output_format.h"
#include "tools/support/projection_options.h"
#include "tools/support/report.h"

namespace kzgis::tools {

namespace {

struct Options {
  std::string input;
  std::string output;
  std::string format;
  bool shade = false;
  bool tint = false;
  Sun sun;
  double tolerance = 0.0;

  ReliefStyle style() const {
    const bool both = shade == tint;  // without a choice a picture has both
    return {both || shade, both || tint, sun};
  }
};

/// What writes a format.
using Write = void (*)(std::ostream&, const ElevationGrid&, const Options&);

template <PictureFormat format>
void write_picture(std::ostream& out, const ElevationGrid& grid, const Options& options) {
  draw_relief(out, format, grid, options.style());
}

template <MeshFormat format>
void write_mesh(std::ostream& out, const ElevationGrid& grid, const Options& options) {
  const Result<Terrain> terrain = triangulate_terrain(grid, options.tolerance);
  if (!terrain) throw CommandError(options.input + ": " + terrain.error().message);
  write_terrain(out, format, grid, terrain->x, terrain->y, terrain->z, terrain->triangles);
}

const OutputFormats<Write>& formats() {
  static const OutputFormats<Write> known{
      {"png", write_picture<PictureFormat::png>},
      {"svg", write_picture<PictureFormat::svg>},
      {"pdf", write_picture<PictureFormat::pdf>},
      {"asc", [](std::ostream& out, const ElevationGrid& grid,
                 const Options&) { write_ascii_grid(out, grid); }},
      {"csv", [](std::ostream& out, const ElevationGrid& grid,
                 const Options&) { write_points(out, grid); }},
      {"glb", write_mesh<MeshFormat::glb>},
      {"stl", write_mesh<MeshFormat::stl>},
      {"ply", write_mesh<MeshFormat::ply>},
      {"obj", write_mesh<MeshFormat::obj>}};
  return known;
}

/// Reads "AZ,ALT".  Throws `UsageError`.
Sun parse_sun(const std::string& text) {
  const auto [azimuth, altitude] = parse_pair("--sun", text);
  if (!(azimuth >= -360.0 && azimuth <= 360.0) || !(altitude > 0.0 && altitude <= 90.0)) {
    throw UsageError("--sun", in_quotes(text) +
                                  " is no place of the sun: its azimuth lies between -360 "
                                  "and 360 degrees, its altitude above 0 and up to 90");
  }
  return {azimuth, altitude};
}

void run(const Options& options) {
  const Write write = formats().choose(options.output, options.format);
  const ElevationGrid grid = read_grid(options.input);
  OutputFile output(options.output);
  write(output.stream(), grid, options);
  output.commit();
}

constexpr const char* kExamples = R"(
A picture shows the relief in the light of the sun, tinted by height, with a scale
for the colours and one for distances; --shade leaves out the colours, --tint the
light.  Numbers keep the file's own units and coordinates; cells that the file has
no elevation for are -32767 in a grid and left out of points.  A mesh is nowhere farther
from an elevation than --tolerance, in the file's unit, and has few triangles for that;
it comes out in metres all round, and cells without an elevation are holes.

  .png .svg .pdf  a picture, north up
  .asc            an ESRI ASCII grid with its georeference
  .csv            a line x,y,z for each elevation, from the north-west
  .glb .stl .ply .obj
                  a mesh of triangles

Examples:
  kzgis dem st_helens.dem.gz -o st_helens.png
  kzgis dem crater.dem -o crater.png --shade --sun 270,30
  kzgis dem crater.dem -o crater.asc
  kzgis dem st_helens.dem.gz -o mountain.glb --tolerance 5
  kzgis dem crater.dem -o - --format csv | head
)";

}  // namespace

void add_dem_command(CLI::App& app, int& exit_code) {
  const auto options = std::make_shared<Options>();
  CLI::App& command = *app.add_subcommand(
      "dem", "Turn a USGS elevation model into a picture, a grid, points or a mesh");
  command.add_option("FILE", options->input, "A USGS DEM, compressed by gzip or not")
      ->required()
      ->type_name(".dem");
  command
      .add_option("-o,--output", options->output,
                  "What to write, by its ending, see below; - for standard output")
      ->required()
      ->type_name("OUT");
  formats().add_option(command, options->format);
  command.add_flag("--shade", options->shade, "The relief alone, in grey");
  command.add_flag("--tint", options->tint, "The colours of height alone");
  command
      .add_option_function<std::string>(
          "--sun", [options](const std::string& text) { options->sun = parse_sun(text); },
          "Where the light comes from: degrees clockwise from north, degrees above the horizon "
          "(315,45)")
      ->type_name("AZ,ALT");
  command
      .add_option("--tolerance", options->tolerance,
                  "How far a mesh may be from an elevation, in the unit of these (0)")
      ->type_name("T")
      ->check([](const std::string& text) {
        return parse_number(text).value_or(-1.0) >= 0.0
                   ? std::string()
                   : in_quotes(text) + " is no tolerance; one is a number, 0 or more";
      });
  command.footer(kExamples);
  command.callback([options, &exit_code] {
    run(*options);
    exit_code = 0;
  });
}

}  // namespace kzgis::tools
