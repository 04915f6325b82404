// kzgis dem: elevation models to pictures, grids and points.

#ifndef KZGIS_TOOLS_DEM_DEM_COMMAND_H
#define KZGIS_TOOLS_DEM_DEM_COMMAND_H

namespace CLI {
class App;
}

namespace kzgis::tools {

/// Registers the subcommand; running it sets `exit_code`.
void add_dem_command(CLI::App& app, int& exit_code);

}  // namespace kzgis::tools

#endif
