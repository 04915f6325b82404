// The classic class, one point at a time.  What it would take for something else, or give numbers
// without meaning for, is refused beforehand.

#include <kzgis/projection.h>

#include <cmath>
#include <memory>
#include <string>

#include "tools/project/conversion.h"
#include "tools/support/command_error.h"
#include "tools/support/degrees.h"

namespace kzgis::tools {

namespace {

/// Numbers that the class would clamp or ignore.
void check_ranges(const ProjectionOptions& options) {
  if (options.base && std::fabs(options.base->first) > 90.0) {
    throw UsageError("--base", "latitudes lie between -90 and 90, not at " +
                                   pair_text(options.base->first, options.base->second));
  }
  if (options.parallels) {
    const auto [first, second] = *options.parallels;
    if (!(first > 0.0 && first <= 90.0 && second > 0.0 && second <= 90.0)) {
      throw UsageError("--parallels",
                       "with --classic parallels lie above 0 and up to 90 degrees, not at " +
                           pair_text(first, second));
    }
  }
  if (options.radius.value_or(0.0) < 0.0) {
    throw UsageError("--radius", "with --classic a radius is 0 or more");
  }
}

/// What a projection needs that the options may not give.
void check_needs(const ProjectionOptions& options) {
  const std::string name(projection_name(options.type));
  const bool conic = options.type == LambertConicProj || options.type == AlbersProj;
  if (conic && !options.parallels) {
    throw CommandError(name + " needs two standard parallels: --parallels P1,P2");
  }
  // These are drawn about the base latitude's parallel, and the equator's has no centre.
  const bool equal_parallels =
      options.parallels && options.parallels->first == options.parallels->second;
  const bool needs_base = options.type == BonneProj ||
                          (options.type == AlbersProj && !equal_parallels) ||
                          (options.type == LambertConicProj && equal_parallels);
  constexpr double kEquator_deg = 1e-6;
  if (needs_base && std::fabs(options.base.value_or(NumberPair{}).first) < kEquator_deg) {
    throw CommandError(name + " needs a base latitude other than 0: --base LAT,LON");
  }
}

Projection make_projection(const ProjectionOptions& options) {
  const NumberPair base = options.base.value_or(NumberPair{});
  Projection projection(options.type, options.radius.value_or(Projection().fetchGlobeRadius()),
                        base.first, base.second);
  if (options.parallels) {
    projection.setFirstPar(options.parallels->first);
    projection.setSecondPar(options.parallels->second);
  }
  return projection;
}

/// The class answers null, for any point, where a projection has no way back.
bool has_inverse(projType type) { return Projection(type).FromTo(0.0, 0.0, 0.0) != nullptr; }

}  // namespace

Conversion classic_conversion(const ProjectionOptions& options, bool inverse) {
  check_ranges(options);
  check_needs(options);
  const auto projection = std::make_shared<Projection>(make_projection(options));
  if (!inverse) {
    return [projection](const Triple& from) -> std::optional<Triple> {
      Triple to{};
      const std::size_t refused =
          project_classic(*projection, {&from[0], 1}, {&from[1], 1}, {&from[2], 1}, {&to[0], 1},
                          {&to[1], 1}, {&to[2], 1});
      if (refused > 0) return std::nullopt;
      return to;
    };
  }
  if (!has_inverse(options.type)) {
    throw CommandError(std::string(projection_name(options.type)) +
                       " has no inverse with --classic");
  }
  return [projection](const Triple& from) -> std::optional<Triple> {
    Triple world = from;
    const LatLon* const point = projection->FromTo(world.data());
    return Triple{point->fetchLat(), point->fetchLon(), point->fetchAltitude()};
  };
}

}  // namespace kzgis::tools
