// The kzgis command: one subcommand per service, one line on standard error for a failure.

#ifndef KZGIS_TOOLS_COMMAND_H
#define KZGIS_TOOLS_COMMAND_H

namespace kzgis::tools {

/// Runs the command with the arguments of `main`; throws nothing.
/// @return the exit code: 0 done, 1 something could not be read or written, 2 misused
int run_command(int argc, const char* const* argv);

}  // namespace kzgis::tools

#endif
