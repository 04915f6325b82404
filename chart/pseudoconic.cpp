// Constants of the Bonne's and Werner's projections; what they mean chart/pseudoconic.h says.

#include "chart/pseudoconic.h"

#include <algorithm>
#include <cmath>

#include "chart/families.h"

namespace kzgis::chart {

std::string prepare_pseudoconic(projType type, const ChartParameters& parameters,
                                ChartConstants& constants) {
  constexpr double kLeastBase_deg = 1e-9;
  const double base = std::fabs(parameters.base_lat);
  constants.mirror = parameters.base_lat >= 0.0 ? 1.0 : -1.0;
  const double from_pole = (90.0 - base) * kDegree;
  if (type == WernerProj) {
    constants.origin = from_pole;
    return {};
  }
  if (base < kLeastBase_deg) {
    return "Bonne needs a base latitude other than " + text_of(parameters.base_lat) +
           ": on the equator it is Sanson-Flamsteed";
  }
  const SinesOf<double> lat = sines_of_degrees(base);
  constants.origin = lat.cos / lat.sin;
  constants.gap = std::max(0.0, constants.origin - from_pole);
  return {};
}

}  // namespace kzgis::chart
