// Sums, and the median of as many angles as there are triangles.

#include "tools/triangulate/summary.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "tools/mesh_files/float_point.h"
#include "tools/support/number_text.h"

namespace kzgis::tools {

namespace {

std::string digits(const char* format, double value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), format, value);
  return text.data();
}

double length(const WorldPoint& v) { return std::hypot(v.x, v.y, v.z); }

}  // namespace

// The least angle lies opposite to the shortest side, between the two longer ones.
double least_angle_deg(const WorldPoint& a, const WorldPoint& b, const WorldPoint& c) {
  std::array<double, 3> sides{length(difference(b, a)), length(difference(c, b)),
                              length(difference(a, c))};
  std::sort(sides.begin(), sides.end());
  // Of both together, sine and cosine tell a small angle better than either alone.
  const double sine = length(cross_product(a, b, c));
  const double cosine = 0.5 * ((sides[1] - sides[0]) * (sides[1] + sides[0]) + sides[2] * sides[2]);
  return std::atan2(sine, cosine) * (180.0 / std::numbers::pi);
}

void Summary::add(std::size_t rings, double area, std::size_t crossings, std::size_t added,
                  std::span<const WorldPoint> points, std::span<const std::uint32_t> triangles) {
  ++records_;
  rings_ += rings;
  area_ += area;
  crossings_ += crossings;
  added_ += added;
  for (std::size_t i = 0; i + 2 < triangles.size(); i += 3) {
    least_angles_deg_.push_back(static_cast<float>(
        least_angle_deg(points[triangles[i]], points[triangles[i + 1]], points[triangles[i + 2]])));
  }
}

std::string Summary::text(bool repaired) {
  // Ten digits are what sums of this length are good for.
  std::string text = counted(records_, "record") + ", " + counted(rings_, "ring") + ", " +
                     counted(least_angles_deg_.size(), "triangle") + ", area " +
                     digits("%.10g", area_) + "; " + std::to_string(refused_) + " refused, " +
                     std::to_string(null_) + " null";
  if (absent_ > 0) text += ", " + std::to_string(absent_) + " off the map";
  if (!least_angles_deg_.empty()) text += '\n' + quality(repaired);
  return text;
}

std::string Summary::quality(bool repaired) {
  std::string text;
  if (repaired) {
    text +=
        std::to_string(crossings_) + (crossings_ == 1 ? " crossing" : " crossings") + " split, ";
  }
  if (repaired || added_ > 0) {
    text += std::to_string(added_) + (added_ == 1 ? " vertex" : " vertices") + " added; ";
  }
  const auto middle =
      least_angles_deg_.begin() + static_cast<std::ptrdiff_t>(least_angles_deg_.size() / 2);
  std::nth_element(least_angles_deg_.begin(), middle, least_angles_deg_.end());
  const float least = *std::min_element(least_angles_deg_.begin(), middle + 1);
  return text + "least angle " + digits("%.3g", least) + " degrees, median " +
         digits("%.3g", *middle);
}

}  // namespace kzgis::tools
