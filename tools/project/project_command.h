// kzgis project: coordinates to world coordinates, or back.

#ifndef KZGIS_TOOLS_PROJECT_PROJECT_COMMAND_H
#define KZGIS_TOOLS_PROJECT_PROJECT_COMMAND_H

namespace CLI {
class App;
}

namespace kzgis::tools {

/// Registers the subcommand; running it sets `exit_code`.
void add_project_command(CLI::App& app, int& exit_code);

}  // namespace kzgis::tools

#endif
