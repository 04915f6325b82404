// The options that describe a projection, the same for every subcommand.

#ifndef KZGIS_TOOLS_SUPPORT_PROJECTION_OPTIONS_H
#define KZGIS_TOOLS_SUPPORT_PROJECTION_OPTIONS_H

#include <kzgis/chart.h>

#include <optional>
#include <string>
#include <utility>

namespace CLI {
class App;
}

namespace kzgis::tools {

/// A pair given as "A,B".
using NumberPair = std::pair<double, double>;

/// Reads such a pair; throws `UsageError`, which names the option.
NumberPair parse_pair(const std::string& option, const std::string& text);

/// What --to, --base, --parallels and --radius say, as numbers and no more: whether they make a
/// map only the library knows.
struct ProjectionOptions {
  projType type = CartesianProj;
  std::optional<NumberPair> base;       ///< latitude, longitude in degrees
  std::optional<NumberPair> parallels;  ///< standard parallels in degrees
  std::optional<double> radius;         ///< of the globe, in any unit
};

/// Adds --to, --base and --parallels.
void add_projection_options(CLI::App& command, ProjectionOptions& options);

/// Adds --radius.
void add_radius_option(CLI::App& command, ProjectionOptions& options);

/// Adds --tolerance, a number above 0.
void add_tolerance_option(CLI::App& command, std::optional<double>& tolerance);

/// How far curves are from their chords without --tolerance: the 2,000th part of the radius, three
/// kilometres on the Earth.
double usual_tolerance(const Chart& chart);

/// The parameters that the options stand for.  Without --base a map is about 0,0, and Bonne's,
/// which the equator has none of, about 45,0.
ChartParameters chart_parameters(const ProjectionOptions& options);

/// Makes a chart, or throws `UsageError` with the library's sentence.
Chart make_chart(projType type, const ChartParameters& parameters);

}  // namespace kzgis::tools

#endif
