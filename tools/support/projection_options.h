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

/// Reads such a pair; throws CLI's error, which names the option.
NumberPair parse_pair(const std::string& option, const std::string& text);

/// What --to, --base, --parallels and --radius say.  The library takes an unknown name for
/// Cartesian, silently; people are told.
struct ProjectionOptions {
  std::string name = "cartesian";
  std::optional<NumberPair> base;       ///< latitude, longitude in degrees
  std::optional<NumberPair> parallels;  ///< standard parallels in degrees, above 0 to 90
  std::optional<double> radius;         ///< of the globe, in any unit

  /// The type that `name` stands for.
  projType type() const;
};

/// True for the two projections that need two standard parallels.
bool needs_parallels(projType type);

/// Adds --base, --parallels and the option that names the projection, each checked as it is
/// read.
void add_projection_options(CLI::App& command, ProjectionOptions& options,
                            const std::string& name_option = "--to");

/// Adds --radius.
void add_radius_option(CLI::App& command, ProjectionOptions& options);

/// Throws `CommandError` when the projection needs more than the options give it.
void check_projection(const ProjectionOptions& options);

/// The projection that the options describe, about the given base point.
Projection make_projection(const ProjectionOptions& options, const NumberPair& base);

/// The fifteen names, separated by ", ".
std::string projection_names();

}  // namespace kzgis::tools

#endif
