// The command's own failures.  Each ends the subcommand with one line on standard error.

#ifndef KZGIS_TOOLS_SUPPORT_COMMAND_ERROR_H
#define KZGIS_TOOLS_SUPPORT_COMMAND_ERROR_H

#include <kzgis/result.h>

#include <stdexcept>
#include <string>

namespace kzgis::tools {

/// Something could not be read, written or done: the exit code is 1.
struct CommandError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// What was read is not what its name says, or damaged all through.
struct BadDataError : CommandError {
  using CommandError::CommandError;
};

/// The command was not called as it is meant to be: the line says where help is, and the exit
/// code is 2.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
  /// "--option: what is wrong with its value"
  UsageError(const std::string& option, const std::string& what)
      : std::runtime_error(option + ": " + what) {}
};

/// Ends the subcommand with the library's own sentence: by `BadDataError` for bad data, by
/// `std::bad_alloc` where memory ran out, as anywhere in the command, by `CommandError` otherwise.
[[noreturn]] void fail(const Error& error);

}  // namespace kzgis::tools

#endif
