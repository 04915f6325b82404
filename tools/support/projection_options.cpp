// Names of projections, pairs of numbers, and what a projection needs before the library can make
// one: refused here with a sentence, where the library would give coordinates that mean nothing.

#include "tools/support/projection_options.h"

#include <cmath>
#include <string_view>

#include "tools/support/command_error.h"
#include "tools/support/number_text.h"
#include "tools/support/report.h"

namespace kzgis::tools {

namespace {

constexpr int kProjectionCount = 15;

/// The accepted name of a type is its display name in lower case.
std::string accepted_name(int type) {
  return Projection(static_cast<projType>(type)).fetchProjectionName().lower().str();
}

/// The type of that name, or nothing.  A hyphen or an underscore stands for a blank, so
/// that names need no quoting in a shell.
std::optional<projType> find_type(const std::string& name) {
  const auto plain = [](std::string text) {
    for (char& c : text) {
      if (c == '-' || c == '_') c = ' ';
    }
    return UtString(text).lower().str();
  };
  for (int type = 0; type < kProjectionCount; ++type) {
    if (plain(accepted_name(type)) == plain(name)) return static_cast<projType>(type);
  }
  return std::nullopt;
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

projType ProjectionOptions::type() const { return find_type(name).value_or(CartesianProj); }

bool needs_parallels(projType type) { return type == LambertConicProj || type == AlbersProj; }

std::string projection_names() {
  std::string names;
  for (int type = 0; type < kProjectionCount; ++type) {
    names += (type == 0 ? "" : ", ") + accepted_name(type);
  }
  return names;
}

void add_projection_options(CLI::App& command, ProjectionOptions& options,
                            const std::string& name_option) {
  command.add_option(name_option, options.name, "Projection, one of: " + projection_names())
      ->type_name("NAME")
      ->check([](const std::string& name) {
        return find_type(name)
                   ? std::string()
                   : in_quotes(name) + " is no projection; there are " + projection_names();
      });
  command
      .add_option_function<std::string>(
          "--base",
          [&options](const std::string& text) {
            options.base = parse_pair("--base", text);
            if (std::abs(options.base->first) > 90.0) {
              throw UsageError("--base", "latitudes lie between -90 and 90, not at '" + text + "'");
            }
          },
          "Centre of the projection, in degrees")
      ->type_name("LAT,LON");
  command
      .add_option_function<std::string>(
          "--parallels",
          [&options](const std::string& text) {
            options.parallels = parse_pair("--parallels", text);
            for (const double parallel : {options.parallels->first, options.parallels->second}) {
              if (!(parallel > 0.0 && parallel <= 90.0)) {
                throw UsageError("--parallels",
                                 "parallels lie above 0 and up to 90 degrees, not '" + text + "'");
              }
            }
          },
          "Standard parallels of the two conics (and true scale of mercator, the first)")
      ->type_name("P1,P2");
}

void add_radius_option(CLI::App& command, ProjectionOptions& options) {
  command.add_option("--radius", options.radius, "Radius of the globe, in any unit (6378000)")
      ->type_name("R")
      ->check([](const std::string& text) {
        return parse_number(text).value_or(-1.0) >= 0.0
                   ? std::string()
                   : in_quotes(text) + " is no radius; one is a number, 0 or more";
      });
}

void check_projection(const ProjectionOptions& options) {
  const projType type = options.type();
  if (needs_parallels(type) && !options.parallels) {
    throw CommandError(options.name + " needs two standard parallels: --parallels P1,P2");
  }
  // These are drawn about the base latitude's parallel, and the equator's has no centre.
  const bool equal_parallels =
      options.parallels && options.parallels->first == options.parallels->second;
  const bool needs_base = type == BonneProj || (type == AlbersProj && !equal_parallels) ||
                          (type == LambertConicProj && equal_parallels);
  constexpr double kEquator_deg = 1e-6;
  if (needs_base && std::abs(options.base.value_or(NumberPair{}).first) < kEquator_deg) {
    throw CommandError(options.name + " needs a base latitude other than 0: --base LAT,LON");
  }
}

Projection make_projection(const ProjectionOptions& options, const NumberPair& base) {
  Projection projection(options.type(), options.radius.value_or(Projection().fetchGlobeRadius()),
                        base.first, base.second);
  if (options.parallels) {
    projection.setFirstPar(options.parallels->first);
    projection.setSecondPar(options.parallels->second);
  }
  return projection;
}

}  // namespace kzgis::tools
