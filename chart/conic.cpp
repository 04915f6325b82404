// Constants of the conic projections; what they mean chart/conic.h says.

#include "chart/conic.h"

#include <algorithm>
#include <cmath>

#include "chart/families.h"

namespace kzgis::chart {
namespace {

/// The first parallel, the second and the base as a cone that opens towards the south has them,
/// the parallels in ascending order.
struct Cone {
  double first_deg, second_deg, base_deg;

  // A half of the sum and of the difference, in radians.
  double middle() const { return 0.5 * (first_deg + second_deg) * kDegree; }
  double apart() const { return 0.5 * (second_deg - first_deg) * kDegree; }
};

std::string prepare_lambert(const Cone& cone, const ChartParameters& parameters,
                            ChartConstants& constants) {
  if (cone.second_deg == 90.0) {
    return "parallels of the Lambert conic lie between -90 and 90, not at a pole: " +
           text_of(*parameters.first_parallel) + " and " + text_of(*parameters.second_parallel);
  }
  if (cone.base_deg == -90.0) {
    return "the base latitude " + text_of(parameters.base_lat) +
           " is the pole that has no place on this cone";
  }
  const SinesOf<double> first = sines_of_degrees(cone.first_deg);
  const double cos_second = sines_of_degrees(cone.second_deg).cos;
  const double sin_apart = std::sin(cone.apart());
  // ln(cos(first) / cos(second)) over the difference of the isometric latitudes, whose
  // hyperbolic sine is the fraction below; neither loses digits when the parallels are close.
  constants.cone =
      sin_apart > 0.0
          ? std::log1p(2.0 * std::sin(cone.middle()) * sin_apart / cos_second) /
                std::asinh(2.0 * std::cos(cone.middle()) * sin_apart / (first.cos * cos_second))
          : first.sin;
  constants.scale = first.cos / constants.cone;
  constants.reference = isometric(sines_of_degrees(cone.first_deg));
  constants.origin = std::expm1(constants.cone *
                                (constants.reference - isometric(sines_of_degrees(cone.base_deg))));
  return {};
}

void prepare_albers(const Cone& cone, ChartConstants& constants) {
  constants.cone = std::sin(cone.middle()) * std::cos(cone.apart());
  constants.gap = Albers::from_pole(cone.first_deg) * Albers::from_pole(cone.second_deg);
  constants.reference = Albers::from_pole(cone.base_deg);
  constants.origin = std::sqrt(constants.gap + 2.0 * constants.cone * constants.reference);
}

}  // namespace

std::string prepare_conic(projType type, const ChartParameters& parameters,
                          ChartConstants& constants) {
  constexpr double kLeastSum_deg = 1e-9;
  const double first = *parameters.first_parallel;
  const double second = *parameters.second_parallel;
  if (std::fabs(first + second) < kLeastSum_deg) {
    return "the parallels " + text_of(first) + " and " + text_of(second) +
           " are opposite to each other: between them there is no cone but a cylinder";
  }
  constants.mirror = first + second > 0.0 ? 1.0 : -1.0;
  const Cone cone{std::min(constants.mirror * first, constants.mirror * second),
                  std::max(constants.mirror * first, constants.mirror * second),
                  constants.mirror * parameters.base_lat};
  if (type == LambertConicProj) return prepare_lambert(cone, parameters, constants);
  prepare_albers(cone, constants);
  return {};
}

}  // namespace kzgis::chart
