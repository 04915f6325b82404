// kzgis info: what a file holds.

#ifndef KZGIS_TOOLS_INFO_INFO_COMMAND_H
#define KZGIS_TOOLS_INFO_INFO_COMMAND_H

namespace CLI {
class App;
}

namespace kzgis::tools {

/// Registers the subcommand; running it sets `exit_code`.
void add_info_command(CLI::App& app, int& exit_code);

}  // namespace kzgis::tools

#endif
