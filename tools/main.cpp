// The kzgis command: one subcommand per service, one line on standard error for a
// failure.  Exit codes: 0 done, 1 something could not be read or written, 2 misused.

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>

#include "tools/info/info_command.h"
#include "tools/map/map_command.h"
#include "tools/pack/pack_command.h"
#include "tools/project/project_command.h"
#include "tools/support/report.h"
#include "tools/triangulate/triangulate_command.h"

namespace {

constexpr int kFailed = 1;
constexpr int kMisused = 2;

constexpr const char* kExamples =
    "Start with:\n"
    "  kzgis info countries.shp\n"
    "  kzgis map countries.shp -o world.png --to orthographic --base 45,10\n"
    "  kzgis triangulate countries.shp -o countries.obj\n"
    "  echo 48.2,16.37 | kzgis project --to mercator\n";

int run(int argc, char** argv) {
  CLI::App app(
      "Geographic utilities: look into geodata files, project coordinates, turn polygons "
      "into triangles, draw maps, pack outlines.",
      "kzgis");
  app.set_version_flag("--version", KZGIS_VERSION);
  app.require_subcommand(0, 1);
  app.footer(kExamples);
  int exit_code = 0;
  kzgis::tools::add_info_command(app, exit_code);
  kzgis::tools::add_project_command(app, exit_code);
  kzgis::tools::add_map_command(app, exit_code);
  kzgis::tools::add_triangulate_command(app, exit_code);
  kzgis::tools::add_pack_command(app, exit_code);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    kzgis::tools::report(std::string(error.what()) + " (see kzgis --help)");
    return kMisused;
  }
  if (app.get_subcommands().empty()) {
    kzgis::tools::report(
        "a subcommand is missing: info, project, map, triangulate or pack (see kzgis --help)");
    return kMisused;
  }
  return exit_code;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    std::ios::sync_with_stdio(false);
    return run(argc, argv);
  } catch (const std::exception& error) {
    kzgis::tools::report(error.what());
    return kFailed;
  }
}
