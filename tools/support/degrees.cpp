// One limit for coordinates in degrees, and one message for what lies beyond it.

#include "tools/support/degrees.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace kzgis::tools {

bool are_degrees(double lon, double lat) {
  return std::fabs(lon) <= 720.0 && std::fabs(lat) <= 90.0;
}

std::string not_degrees(double lon, double lat) {
  return "coordinates are not degrees: " + pair_text(lon, lat);
}

std::string why_not_degrees(std::span<const double> lon, std::span<const double> lat) {
  for (std::size_t i = 0; i < lon.size(); ++i) {
    if (!are_degrees(lon[i], lat[i])) return not_degrees(lon[i], lat[i]);
  }
  return {};
}

std::string pair_text(double x, double y) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.9g, %.9g", x, y);
  return text.data();
}

}  // namespace kzgis::tools
