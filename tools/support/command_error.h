// The command's own failures.

#ifndef KZGIS_TOOLS_SUPPORT_COMMAND_ERROR_H
#define KZGIS_TOOLS_SUPPORT_COMMAND_ERROR_H

#include <stdexcept>

namespace kzgis::tools {

/// Ends a subcommand: its one line goes to standard error, and the exit code is 1.
struct CommandError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace kzgis::tools

#endif
