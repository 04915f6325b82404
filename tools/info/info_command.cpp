// kzgis info: which kind of file this is, by its ending, or the directory of a data bank.

#include "tools/info/info_command.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <string>

#include "tools/info/bank_info.h"
#include "tools/info/dem_info.h"
#include "tools/info/info_report.h"
#include "tools/info/shape_info.h"
#include "tools/support/command_error.h"
#include "tools/support/input_file.h"

namespace kzgis::tools {

namespace {

struct Options {
  std::string file;
  bool lists = false;
  bool json = false;
};

struct Kind {
  const char* name;
  void (*report)(InfoReport&);
};

bool is_dem(const std::string& file) {
  for (const char* const ending : {".dem", ".DEM", ".dem.gz"}) {
    if (file.ends_with(ending)) return true;
  }
  return false;
}

/// Whatever has no ending of its own is taken for a shapefile, whose name may come without one.
Kind kind_of_file(const std::string& file) {
  if (file.ends_with(".cbd")) return {"outline file", report_bank_file};
  if (is_dem(file)) return {"elevation model", report_dem};
  std::error_code unknown;
  if (std::filesystem::is_directory(expanded(file), unknown)) return {"data bank", report_bank};
  return {"shapefile", report_shapefile};
}

/// Returns the exit code: 0 when the file is sound.
int run(const Options& options) {
  InfoReport info(options.file, options.lists, options.json);
  const Kind kind = kind_of_file(options.file);
  info.document()["kind"] = kind.name;
  info.document()["file"] = options.file;
  try {
    kind.report(info);
  } catch (const BadDataError& error) {
    // To a program, what is damaged all through is damaged like anything else.
    if (!options.json) throw;
    info.add_error(error.what());
  }
  return info.finish();
}

constexpr const char* kExamples = R"(
Of a shapefile it prints the header report, the verdict on both headers, and how many
records, parts and points the file holds; of an elevation model the report of its
header, and what its elevations are in truth; of an outline file its header, its
extent, and the segments and points of each level; of a data bank its report, and the
polylines and points of each theme's levels.  What is wrong is named on standard error.
The exit code is 0 when everything is sound.

With --json all of it is one object on standard output, with lengths and boxes in the
file's own unit, outline files in degrees; what is no finite number is null:

  kind, file  "shapefile", "elevation model", "outline file" or "data bank"; the name
  errors      a sentence for each thing that is wrong; empty when the file is sound.
              When the data is damaged all through, the three are all there is
  box         min_x, min_y, max_x, max_y: x eastwards, y northwards

  shapefile        type, type_number, box (these as the header claims), index (whether
                   there is one), records, null_records, parts, points; list: record,
                   type, box, parts, points, and error where it has one
  elevation model  name, ground_plan, zone, ground_unit, elevation_unit, columns, rows,
                   step_x, step_y, box, elevations, lowest, highest, left_out
  outline file     bytes, claimed_segments, box, segments, points, levels (level,
                   segments, points); list: segment, level, points, box, offset
  data bank        themes (theme, files, levels as above)

Examples:
  kzgis info data/ne/ne_110m_countries.shp
  kzgis info --list rivers.shp
  kzgis info --json rivers.shp | jq .points
  kzgis info bank/africa.Map/cil.cbd
)";

}  // namespace

void add_info_command(CLI::App& app, int& exit_code) {
  const auto options = std::make_shared<Options>();
  CLI::App& command = *app.add_subcommand("info", "Say what a file holds, and whether it is sound");
  command
      .add_option("FILE", options->file,
                  "A shapefile (.shp, .shx, or their name without ending), an elevation model "
                  "(.dem, .dem.gz), an outline file (.cbd), or the directory of a data bank")
      ->required();
  command.add_flag("--list", options->lists,
                   "Every record of a shapefile, every segment of an outline file");
  command.add_flag("--json", options->json, "One JSON object on standard output, errors included");
  command.footer(kExamples);
  command.callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace kzgis::tools
