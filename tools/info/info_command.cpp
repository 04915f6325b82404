// kzgis info: which kind of file this is, by its ending, or the directory of a data bank.

#include "tools/info/info_command.h"

#include <filesystem>
#include <memory>
#include <string>

#include "tools/info/bank_info.h"
#include "tools/info/dem_info.h"
#include "tools/info/shape_info.h"
#include "tools/support/input_file.h"

namespace kzgis::tools {

namespace {

struct Options {
  std::string file;
  bool records = false;
};

bool is_dem(const std::string& file) {
  for (const char* const ending : {".dem", ".DEM", ".dem.gz"}) {
    if (file.ends_with(ending)) return true;
  }
  return false;
}

/// Whatever has no ending of its own is taken for a shapefile, whose name may come without one.
int run(const Options& options) {
  if (options.file.ends_with(".cbd")) return print_bank_file_info(options.file, options.records);
  if (is_dem(options.file)) return print_dem_info(options.file);
  std::error_code unknown;
  if (std::filesystem::is_directory(expanded(options.file), unknown)) {
    return print_bank_info(expanded(options.file));
  }
  return print_shape_info(options.file, options.records);
}

}  // namespace

void add_info_command(CLI::App& app, int& exit_code) {
  const auto options = std::make_shared<Options>();
  CLI::App& command = *app.add_subcommand("info", "Say what a file holds, and whether it is sound");
  command
      .add_option("FILE", options->file,
                  "A shapefile (.shp, .shx, or their name without ending), an elevation model "
                  "(.dem, .dem.gz), an outline file (.cbd), or the directory of a data bank")
      ->required();
  command.add_flag("--records", options->records, "A line for every record or segment");
  command.footer(
      "Of a shapefile it prints the header report, the verdict on both headers, and how many\n"
      "records, parts and points the file holds; of an elevation model the report of its header, "
      "and\n"
      "what its elevations are in truth; of an outline file its header, its extent, and\n"
      "the segments and points of each level; of a data bank its report, and the polylines and\n"
      "points of each theme's levels.  The exit code is 0 when everything is sound.\n"
      "\n"
      "Examples:\n"
      "  kzgis info data/ne/ne_110m_countries.shp\n"
      "  kzgis info --records rivers.shp\n"
      "  kzgis info bank/africa.Map/cil.cbd\n");
  command.callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace kzgis::tools
