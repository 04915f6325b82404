// kzgis map: shapefiles and data banks to a picture.

#ifndef KZGIS_TOOLS_MAP_MAP_COMMAND_H
#define KZGIS_TOOLS_MAP_MAP_COMMAND_H

namespace CLI {
class App;
}

namespace kzgis::tools {

/// Adds the subcommand "map" and what runs it.
///
/// @param exit_code  must outlive the app; set to 1 when a picture was made and part of the
///                   input could not be read.  Failures throw: `CommandError`, or CLI11's when
///                   the options are to blame.
void add_map_command(CLI::App& app, int& exit_code);

}  // namespace kzgis::tools

#endif
