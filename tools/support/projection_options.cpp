// Names of projections and pairs of numbers, and the chart that they stand for.

#include "tools/support/projection_options.h"

#include <CLI/CLI.hpp>
#include <string_view>

#include "tools/support/command_error.h"
#include "tools/support/number_text.h"
#include "tools/support/report.h"

namespace kzgis::tools {

namespace {

/// The fifteen names, separated by ", ".
std::string projection_names() {
  std::string names;
  for (int type = CartesianProj; type <= GlobeProj; ++type) {
    names += type == CartesianProj ? "" : ", ";
    names += projection_name(static_cast<projType>(type));
  }
  return names;
}

}  // namespace

// A number alone, a third one, and numbers that are not finite are refused alike.
NumberPair parse_pair(const std::string& option, const std::string& text) {
  const std::size_t comma = text.find(',');
  if (comma != std::string::npos) {
    const auto first = parse_number(std::string_view(text).substr(0, comma));
    const auto second = parse_number(std::string_view(text).substr(comma + 1));
    if (first && second) return {*first, *second};
  }
  throw UsageError(option, in_quotes(text) + " is not two numbers with a comma between");
}

void add_projection_options(CLI::App& command, ProjectionOptions& options) {
  command
      .add_option_function<std::string>(
          "--to",
          [&options](const std::string& name) {
            const std::optional<projType> type = find_projection(name);
            if (!type) {
              throw UsageError(
                  "--to", in_quotes(name) + " is no projection; there are " + projection_names());
            }
            options.type = *type;
          },
          "Projection, one of: " + projection_names())
      ->type_name("NAME");
  command
      .add_option_function<std::string>(
          "--base",
          [&options](const std::string& text) { options.base = parse_pair("--base", text); },
          "Middle of the map, in degrees (0,0; bonne, which has no map of the equator, 45,0)")
      ->type_name("LAT,LON");
  command
      .add_option_function<std::string>(
          "--parallels",
          [&options](const std::string& text) {
            options.parallels = parse_pair("--parallels", text);
          },
          "Standard parallels of the two conics, in degrees (20,60; -20,-60 with a base in the "
          "south); mercator is true to scale along the first")
      ->type_name("P1,P2");
}

void add_radius_option(CLI::App& command, ProjectionOptions& options) {
  command
      .add_option_function<std::string>(
          "--radius",
          [&options](const std::string& text) {
            options.radius = parse_number(text);
            if (!options.radius) throw UsageError("--radius", in_quotes(text) + " is not a number");
          },
          "Radius of the globe, in any unit (6378000)")
      ->type_name("R");
}

void add_tolerance_option(CLI::App& command, std::optional<double>& tolerance) {
  command
      .add_option("--tolerance", tolerance,
                  "How far a curve on the map may be from its chords, in the unit of the radius (a "
                  "2,000th of the radius, 3 km on the Earth)")
      ->type_name("LENGTH")
      ->check([](const std::string& text) {
        return parse_number(text).value_or(0.0) > 0.0
                   ? std::string()
                   : in_quotes(text) + " is no tolerance; one is a number above 0";
      });
}

double usual_tolerance(const Chart& chart) { return chart.parameters().radius / 2000.0; }

ChartParameters chart_parameters(const ProjectionOptions& options) {
  ChartParameters parameters;
  const NumberPair usual_base(options.type == BonneProj ? 45.0 : 0.0, 0.0);
  const NumberPair base = options.base.value_or(usual_base);
  parameters.base_lat = base.first;
  parameters.base_lon = base.second;
  if (options.parallels) {
    parameters.first_parallel = options.parallels->first;
    parameters.second_parallel = options.parallels->second;
  }
  if (options.radius) parameters.radius = *options.radius;
  return parameters;
}

Chart make_chart(projType type, const ChartParameters& parameters) {
  const Result<Chart> chart = Chart::make(type, parameters);
  if (chart) return *chart;
  if (chart.error().kind != ErrorKind::bad_argument) fail(chart.error());
  throw UsageError(chart.error().message);
}

}  // namespace kzgis::tools
