// A ramp of six colours for heights, and how light changes a colour.

#include "tools/dem/tint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace kzgis::tools {

namespace {

// From valley to summit; the eye takes the greens for low and the white for snow.
constexpr std::array kRamp = {Colour{0.545, 0.690, 0.541}, Colour{0.765, 0.820, 0.608},
                              Colour{0.929, 0.886, 0.682}, Colour{0.871, 0.737, 0.537},
                              Colour{0.741, 0.596, 0.482}, Colour{0.953, 0.945, 0.937}};

Colour between(const Colour& a, const Colour& b, double share) {
  return {std::lerp(a.red, b.red, share), std::lerp(a.green, b.green, share),
          std::lerp(a.blue, b.blue, share)};
}

}  // namespace

Colour tint(double share) {
  const double place = std::clamp(share, 0.0, 1.0) * (kRamp.size() - 1);
  const auto step = std::min(static_cast<std::size_t>(place), kRamp.size() - 2);
  return between(kRamp.at(step), kRamp.at(step + 1), place - static_cast<double>(step));
}

Colour lit(const Colour& colour, double brightness) {
  // Shadows keep some light from the sky; what faces the sun pales towards white.
  const double light = 0.28 + 0.96 * brightness;
  if (light <= 1.0) return between({0.0, 0.0, 0.0}, colour, light);
  return between(colour, {1.0, 1.0, 1.0}, light - 1.0);
}

}  // namespace kzgis::tools
