// Constants of the cylindrical projections; what they mean chart/cylindrical.h says.

#include "chart/cylindrical.h"

#include "chart/families.h"

namespace kzgis::chart {

std::string prepare_cylindrical(projType type, const ChartParameters& parameters,
                                ChartConstants& constants) {
  if (type != MercatorProj) return {};
  constants.scale = sines_of_degrees(*parameters.first_parallel).cos;
  if (constants.scale > 0.0) return {};
  return "Mercator is not true to scale at a pole: the first parallel " +
         text_of(*parameters.first_parallel) + " must lie between -90 and 90";
}

}  // namespace kzgis::chart
