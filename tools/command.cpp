// The subcommands under one roof, and what becomes of their failures.

#include "tools/command.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>
#include <stdexcept>
#include <string>

#include "tools/dem/dem_command.h"
#include "tools/info/info_command.h"
#include "tools/map/map_command.h"
#include "tools/pack/pack_command.h"
#include "tools/project/project_command.h"
#include "tools/support/command_error.h"
#include "tools/support/report.h"
#include "tools/triangulate/triangulate_command.h"

namespace kzgis::tools {

namespace {

constexpr int kFailed = 1;
constexpr int kMisused = 2;

constexpr const char* kExamples =
    "Start with:\n"
    "  kzgis info countries.shp\n"
    "  kzgis map countries.shp -o world.png --to orthographic --base 45,10\n"
    "  kzgis triangulate countries.shp -o countries.obj\n"
    "  kzgis dem st_helens.dem.gz -o st_helens.png\n"
    "  echo 48.2,16.37 | kzgis project --to mercator\n";

int misused(const std::exception& error) {
  report(std::string(error.what()) + " (see kzgis --help)");
  return kMisused;
}

int run(int argc, const char* const* argv) {
  CLI::App app(
      "Geographic utilities: look into geodata files, project coordinates, turn polygons "
      "into triangles, draw maps and mountains, pack outlines.",
      "kzgis");
  app.set_version_flag("--version", KZGIS_VERSION);
  app.require_subcommand(0, 1);
  app.footer(kExamples);
  int exit_code = 0;
  add_info_command(app, exit_code);
  add_project_command(app, exit_code);
  add_map_command(app, exit_code);
  add_triangulate_command(app, exit_code);
  add_dem_command(app, exit_code);
  add_pack_command(app, exit_code);
  try {
    app.parse(argc, argv);
    if (app.get_subcommands().empty()) {
      throw UsageError("a subcommand is missing: info, project, map, triangulate, dem or pack");
    }
    return exit_code;
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    return misused(error);
  } catch (const UsageError& error) {
    return misused(error);
  }
}

/// Throws when memory runs out, and nothing else.
int run_and_report(int argc, const char* const* argv) {
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::length_error&) {
    throw std::bad_alloc();  // no memory could be as large as was asked for
  } catch (const std::exception& error) {
    report(error.what());
    return kFailed;
  }
}

}  // namespace

int run_command(int argc, const char* const* argv) {
  try {
    return run_and_report(argc, argv);
  } catch (const std::bad_alloc&) {
    std::cerr << "kzgis: out of memory\n";  // which takes none, unlike report
    return kFailed;
  }
}

}  // namespace kzgis::tools
