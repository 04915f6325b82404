// Rings and lines written as lists of positions.

#ifndef KZGIS_TESTS_TOOLS_MAP_LINES_H
#define KZGIS_TESTS_TOOLS_MAP_LINES_H

#include <kzgis/mesh.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace kzgis::map {

/// x and y, or longitude and latitude.
using Position = std::pair<double, double>;
using Line = std::vector<Position>;

inline Outline outline(const std::vector<Line>& lines) {
  Outline result;
  for (const Line& line : lines) {
    result.starts.push_back(static_cast<std::int32_t>(result.x.size()));
    for (const auto& [x, y] : line) {
      result.x.push_back(x);
      result.y.push_back(y);
    }
  }
  return result;
}

inline std::vector<Line> lines(const Outline& outline) {
  std::vector<Line> result;
  for (std::size_t i = 0; i < outline.x.size(); ++i) {
    const bool begins = result.size() < outline.starts.size() &&
                        static_cast<std::size_t>(outline.starts[result.size()]) == i;
    if (begins) result.emplace_back();
    result.back().emplace_back(outline.x[i], outline.y[i]);
  }
  return result;
}

}  // namespace kzgis::map

#endif
