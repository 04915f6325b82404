// The options that describe a projection, the same for every subcommand.

#ifndef KZGIS_TOOLS_SUPPORT_PROJECTION_OPTIONS_H
#define KZGIS_TOOLS_SUPPORT_PROJECTION_OPTIONS_H

#include <kzgis/projection.h>

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <utility>

namespace kzgis::tools {

/// A pair given as "A,B".
using NumberPair = std::pair<double, double>;

/// What --to, --base and --parallels say.  The library takes an unknown name for
/// Cartesian, silently; people are told.
struct ProjectionOptions {
  std::string name = "cartesian";
  std::optional<NumberPair> base;       ///< latitude, longitude in degrees
  std::optional<NumberPair> parallels;  ///< standard parallels in degrees, above 0 to 90

  /// The type that `name` stands for.
  projType type() const;
};

/// True for the two projections that need two standard parallels.
bool needs_parallels(projType type);

/// Adds --to, --base and --parallels, each checked as it is read.
void add_projection_options(CLI::App& command, ProjectionOptions& options);

/// The fifteen names, separated by ", ".
std::string projection_names();

}  // namespace kzgis::tools

#endif
