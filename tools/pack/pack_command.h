// kzgis pack: lines of shapefiles to a data bank.

#ifndef KZGIS_TOOLS_PACK_PACK_COMMAND_H
#define KZGIS_TOOLS_PACK_PACK_COMMAND_H

namespace CLI {
class App;
}

namespace kzgis::tools {

/// Adds `kzgis pack`.  Its exit code is 1 when a record could not be packed.
void add_pack_command(CLI::App& app, int& exit_code);

}  // namespace kzgis::tools

#endif
