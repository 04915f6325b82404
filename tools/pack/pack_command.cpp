// kzgis pack: lines and outlines of shapefiles become a directory of outline files.

#include "tools/pack/pack_command.h"

#include <CLI/CLI.hpp>
#include <cstddef>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "tools/pack/bank_packer.h"
#include "tools/support/command_error.h"
#include "tools/support/input_file.h"
#include "tools/support/output_file.h"
#include "tools/support/report.h"

namespace kzgis::tools {

namespace {

struct Options {
  std::vector<std::string> paths;  ///< shapefiles, and the directory last
  std::vector<std::string> themes;
  std::vector<std::string> continents;
  std::vector<std::string> levels;
  std::size_t segment_points = 1024;
};

/// Throws CLI's error unless there is one value for all files, one for each, or none.
std::string value_for(const std::vector<std::string>& values, std::size_t file, std::size_t files,
                      const char* option) {
  if (values.empty()) return {};
  if (values.size() == 1) return values.front();
  if (values.size() == files) return values[file];
  throw UsageError(option, "is given " + std::to_string(values.size()) + " times for " +
                               std::to_string(files) + " files; once is for all, or once for each");
}

/// Returns the exit code: 0 when every record was packed.
int run(const Options& options) {
  if (options.paths.size() < 2) {
    throw UsageError("FILE... DIR", "the directory to write comes last, after the files");
  }
  const std::string& directory = options.paths.back();
  if (directory.empty() || directory.ends_with(".shp")) {
    throw UsageError("FILE... DIR",
                     in_quotes(directory) + " is no name for a directory of outline files");
  }
  Complaints complaints;
  BankPacker packer(options.segment_points, complaints.receiver());
  const std::size_t files = options.paths.size() - 1;
  for (std::size_t i = 0; i < files; ++i) {
    packer.add_file(options.paths[i], {value_for(options.themes, i, files, "--theme"),
                                       value_for(options.continents, i, files, "--continent"),
                                       value_for(options.levels, i, files, "--level")});
  }
  packer.write(expanded(directory), std::cout);
  OutputFile("-").commit();
  return complaints.exit_code();
}

constexpr const char* kExamples = R"(
Makes the directories africa.Map, asia.Map, europe.Map, namer.Map and samer.Map in
DIR, each with one .cbd file for every theme that the shapefiles hold:

  geographic  bdy.cbd  boundaries of countries
  political   pby.cbd  boundaries within countries
  coastal     cil.cbd  coasts, islands, lakes
  river       riv.cbd  rivers

A file named bdy, pby, cil or riv tells its theme; its records tell their continent
in the attribute CONT (africa, asia, europe, namer or samer) and their level in the
attribute RANK (0 to 15).  The options say otherwise, each once for all files or once
for each in turn: a value for all records of the file, or @ and the attribute's name.

Points are rounded to the arc-second, about 31 metres on a meridian; polygons give
their outlines.  Files of the same themes in DIR are replaced, others stay.

Examples:
  kzgis pack bdy.shp cil.shp pby.shp riv.shp bank
  kzgis pack rivers.shp bank --theme river --continent europe --level 1
  kzgis pack lakes.shp shores.shp bank --theme coastal --continent @CONTINENT \
      --level 4 --level @scalerank
)";

}  // namespace

void add_pack_command(CLI::App& app, int& exit_code) {
  const auto options = std::make_shared<Options>();
  CLI::App& command =
      *app.add_subcommand("pack", "Pack lines of shapefiles into a data bank of outlines");
  command
      .add_option("FILE... DIR", options->paths,
                  "Shapefiles of lines or polygons, and the directory to write")
      ->required()
      ->type_name(" ");
  const auto label = [&](const char* name, std::vector<std::string>& values, const char* text) {
    command.add_option(name, values, text)->allow_extra_args(false)->type_name("VALUE|@FIELD");
  };
  label("--theme", options->themes, "geographic, political, coastal or river");
  label("--continent", options->continents, "africa, asia, europe, namer or samer");
  label("--level", options->levels, "The information level, 0 to 15");
  command
      .add_option("--segment", options->segment_points,
                  "Cut lines into segments of at most this many points")
      ->type_name("POINTS")
      ->check(CLI::Range(2, 1000000))
      ->capture_default_str();
  command.footer(kExamples);
  command.callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace kzgis::tools
