// Fuzzes elevations as triangles.  The input is a number of columns, a tolerance, a scale, and an
// elevation per byte, some of which stand for none; fuzz/corpus/terrain has some.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "fuzz/harness.h"
#include "kzgis/terrain.h"

namespace {

constexpr std::size_t kHeader = 3;
constexpr std::uint8_t kVoid = 0xFF;
constexpr std::uint8_t kInfinite = 0xFE;

float elevation_of(std::uint8_t byte, std::uint8_t scale) {
  if (byte == kVoid) return std::numeric_limits<float>::quiet_NaN();
  if (byte == kInfinite) return std::numeric_limits<float>::infinity();
  const float value = static_cast<float>(byte) - 100.0F;
  switch (scale % 4) {
    case 0:
      return value;
    case 1:
      return value / 7.0F;
    case 2:  // from the least to the largest float
      return std::ldexp(value, static_cast<int>(byte) - 128);
    default:
      return static_cast<float>(byte / 64);
  }
}

/// A point of a grid whose north-western corner is at (0, 0), a unit from the next.
struct Place {
  std::int64_t x, y;
};

std::int64_t turn(const Place& a, const Place& b, const Place& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// Whole elevations against the triangles over them, in whole numbers.
void check_deviations(const kzgis::ElevationGrid& grid, const kzgis::Terrain& terrain,
                      std::int64_t tolerance) {
  const auto whole = [](double v) { return static_cast<std::int64_t>(v); };
  for (std::size_t i = 0; i < terrain.triangles.size(); i += 3) {
    const auto* const t = &terrain.triangles[i];
    const auto place = [&](int k) { return Place{whole(terrain.x[t[k]]), whole(terrain.y[t[k]])}; };
    const Place a = place(0);
    const Place b = place(1);
    const Place c = place(2);
    const std::int64_t area = turn(a, b, c);
    require(area > 0);
    for (std::int64_t y = std::min({a.y, b.y, c.y}); y <= std::max({a.y, b.y, c.y}); ++y) {
      for (std::int64_t x = std::min({a.x, b.x, c.x}); x <= std::max({a.x, b.x, c.x}); ++x) {
        const std::int64_t of_a = turn(b, c, {x, y});
        const std::int64_t of_b = turn(c, a, {x, y});
        const std::int64_t of_c = turn(a, b, {x, y});
        if (of_a < 0 || of_b < 0 || of_c < 0) continue;
        const float elevation = grid.at(static_cast<kz_long>(-y), static_cast<kz_long>(x));
        require(std::isfinite(elevation));
        const std::int64_t off = of_a * whole(terrain.z[t[0]]) + of_b * whole(terrain.z[t[1]]) +
                                 of_c * whole(terrain.z[t[2]]) - area * whole(elevation);
        require(std::abs(off) <= area * tolerance);
      }
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size <= kHeader || size > 4096) return 0;
  kzgis::ElevationGrid grid;
  grid.columns = 1 + data[0] % 64;
  grid.rows = static_cast<kz_long>(size - kHeader) / grid.columns;
  grid.step_x = grid.step_y = 1.0;
  const std::uint8_t tolerance = data[1];
  const std::uint8_t scale = data[2];
  const auto cells = static_cast<std::size_t>(grid.columns) * static_cast<std::size_t>(grid.rows);
  for (std::size_t i = 0; i < cells; ++i) {
    grid.elevations.push_back(elevation_of(data[kHeader + i], scale));
  }
  const auto terrain = kzgis::triangulate_terrain(grid, tolerance);
  require(terrain.has_value());
  const auto whole = kzgis::triangulate_terrain(grid, 0.0);
  require(whole.has_value() && whole->triangles.size() >= terrain->triangles.size());
  require(whole->triangles.empty() == terrain->triangles.empty());
  if (scale % 4 == 0 || scale % 4 == 3) check_deviations(grid, *terrain, tolerance);
  return 0;
}
