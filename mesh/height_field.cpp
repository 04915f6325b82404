// Squares of a grid, and the border of those that are covered.

#include "mesh/height_field.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kzgis::mesh {

HeightField::HeightField(const ElevationGrid& grid)
    : elevations_(grid.elevations), columns_(grid.columns), rows_(grid.rows) {
  points_.reserve(elevations_.size());
  for (std::int64_t y = rows_ - 1; y >= 0; --y) {
    for (std::int64_t x = 0; x < columns_; ++x) {
      points_.push_back({static_cast<double>(x), static_cast<double>(y)});
    }
  }
}

std::array<std::uint32_t, 4> HeightField::square(std::int64_t row, std::int64_t column) const {
  const auto north_west = static_cast<std::uint32_t>(row * columns_ + column);
  const auto south_west = static_cast<std::uint32_t>(north_west + columns_);
  return {north_west, south_west, south_west + 1, north_west + 1};
}

bool HeightField::is_covered(std::int64_t row, std::int64_t column) const {
  if (row < 0 || column < 0 || row + 1 >= rows_ || column + 1 >= columns_) return false;
  const auto corners = square(row, column);
  return std::all_of(corners.begin(), corners.end(),
                     [this](std::uint32_t corner) { return std::isfinite(elevations_[corner]); });
}

std::vector<std::uint32_t> HeightField::all_triangles() const {
  std::vector<std::uint32_t> triangles;
  triangles.reserve(6 * size());
  for (std::int64_t row = 0; row < rows_; ++row) {
    for (std::int64_t column = 0; column < columns_; ++column) {
      if (!is_covered(row, column)) continue;
      const auto s = square(row, column);
      triangles.insert(triangles.end(), {s[0], s[1], s[2], s[0], s[2], s[3]});
    }
  }
  return triangles;
}

std::vector<exact::Side> HeightField::sides() const {
  std::vector<exact::Side> sides;
  for (std::int64_t row = 0; row < rows_; ++row) {
    for (std::int64_t column = 0; column < columns_; ++column) {
      if (!is_covered(row, column)) continue;
      const auto s = square(row, column);
      if (!is_covered(row, column - 1)) sides.push_back({s[0], s[1]});
      if (!is_covered(row + 1, column)) sides.push_back({s[1], s[2]});
      if (!is_covered(row, column + 1)) sides.push_back({s[2], s[3]});
      if (!is_covered(row - 1, column)) sides.push_back({s[3], s[0]});
    }
  }
  return sides;
}

Border::Border(const HeightField& field) : steps_(field.sides()), onward_(field.size(), kNone) {
  const std::span<const exact::Point> points = field.points();
  // Where one side begins; two or more begin where the border touches itself.
  constexpr std::uint32_t kSeveral = kNone - 1;
  for (const exact::Side& step : steps_) {
    onward_[step.from] = onward_[step.from] == kNone ? step.to : kSeveral;
  }
  // Where it turns, the border has a corner.
  std::vector<std::uint32_t> straight(onward_.size(), kNone);
  for (const exact::Side& step : steps_) {
    const std::uint32_t next = onward_[step.to];
    if (next == kSeveral) continue;
    const exact::Point& a = points[step.from];
    const exact::Point& b = points[step.to];
    const exact::Point& c = points[next];
    if (b.x - a.x == c.x - b.x && b.y - a.y == c.y - b.y) straight[step.to] = next;
  }
  onward_ = std::move(straight);
}

std::vector<exact::Side> Border::sides(const std::vector<bool>& kept) const {
  const auto is_end = [this, &kept](std::uint32_t point) {
    return onward_[point] == kNone || kept[point];
  };
  std::vector<exact::Side> sides;
  for (const exact::Side& step : steps_) {
    if (!is_end(step.from)) continue;
    std::uint32_t to = step.to;
    while (!is_end(to)) to = onward_[to];
    sides.push_back({step.from, to});
  }
  return sides;
}

}  // namespace kzgis::mesh
