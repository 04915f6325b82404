// kzgis triangulate: polygon records to triangles.

#ifndef KZGIS_TOOLS_TRIANGULATE_TRIANGULATE_COMMAND_H
#define KZGIS_TOOLS_TRIANGULATE_TRIANGULATE_COMMAND_H

namespace CLI {
class App;
}

namespace kzgis::tools {

/// Registers the subcommand; running it sets `exit_code`.
void add_triangulate_command(CLI::App& app, int& exit_code);

}  // namespace kzgis::tools

#endif
