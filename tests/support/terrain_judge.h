// What a terrain promises, checked in whole numbers and from the grid alone: nothing here knows how
// its triangles came about.

#ifndef KZGIS_TESTS_SUPPORT_TERRAIN_JUDGE_H
#define KZGIS_TESTS_SUPPORT_TERRAIN_JUDGE_H

#include <gtest/gtest.h>
#include <kzgis/terrain.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

class TerrainJudge {
 public:
  TerrainJudge(const kzgis::ElevationGrid& grid, const kzgis::Terrain& terrain)
      : grid_(grid), terrain_(terrain) {}

  /// @param tolerance  a whole multiple of 2^-45, below 2^14, as all elevations are
  void expect_kept(double tolerance) {
    ASSERT_NO_FATAL_FAILURE(take_vertices());
    ASSERT_NO_FATAL_FAILURE(look_at_triangles(fixed(tolerance)));
    for (std::size_t cell = 0; cell < grid_.elevations.size(); ++cell) {
      const std::int64_t row = static_cast<std::int64_t>(cell) / grid_.columns;
      const std::int64_t column = static_cast<std::int64_t>(cell) % grid_.columns;
      // One triangle where the square is covered, and none where not.
      ASSERT_EQ(in_square_[cell], is_covered(row, column) ? 1 : 0) << row << ' ' << column;
      ASSERT_EQ(touched_[cell], is_covered(row, column) || is_covered(row - 1, column) ||
                                    is_covered(row, column - 1) || is_covered(row - 1, column - 1))
          << row << ' ' << column;
    }
  }

  /// Of each edge between two triangles, the corner of the one is not within the circle through
  /// those of the other.
  void expect_delaunay() const {
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> apex;
    const std::vector<std::uint32_t>& t = terrain_.triangles;
    for (std::size_t i = 0; i < t.size(); i += 3) {
      for (std::size_t k = 0; k < 3; ++k) {
        apex[{t[i + k], t[i + (k + 1) % 3]}] = t[i + (k + 2) % 3];
      }
    }
    for (const auto& [edge, c] : apex) {
      const auto other = apex.find({edge.second, edge.first});
      if (other == apex.end()) continue;
      const Place d = places_[other->second];
      const auto lifted = [this, d](std::uint32_t vertex) {
        const std::int64_t x = places_[vertex].x - d.x;
        const std::int64_t y = places_[vertex].y - d.y;
        return std::array<std::int64_t, 3>{x, y, x * x + y * y};
      };
      const auto p = lifted(edge.first);
      const auto q = lifted(edge.second);
      const auto r = lifted(c);
      const std::int64_t inside = p[2] * (q[0] * r[1] - q[1] * r[0]) +
                                  q[2] * (r[0] * p[1] - r[1] * p[0]) +
                                  r[2] * (p[0] * q[1] - p[1] * q[0]);
      EXPECT_LE(inside, 0) << "edge " << edge.first << ' ' << edge.second;
    }
  }

 private:
  __extension__ using Int128 = __int128;

  /// Columns from the west, rows from the south.
  struct Place {
    std::int64_t x, y;
  };
  static std::int64_t turn(const Place& a, const Place& b, const Place& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
  }

  static std::int64_t fixed(double elevation) {
    const double scaled = std::ldexp(elevation, 45);
    EXPECT_EQ(scaled, std::trunc(scaled));
    EXPECT_LT(std::fabs(scaled), 0x1p59);
    return static_cast<std::int64_t>(scaled);
  }

  bool is_covered(std::int64_t row, std::int64_t column) const {
    if (row < 0 || column < 0 || row + 1 >= grid_.rows || column + 1 >= grid_.columns) return false;
    const auto r = static_cast<kz_long>(row);
    const auto c = static_cast<kz_long>(column);
    return std::isfinite(grid_.at(r, c)) && std::isfinite(grid_.at(r, c + 1)) &&
           std::isfinite(grid_.at(r + 1, c)) && std::isfinite(grid_.at(r + 1, c + 1));
  }

  std::size_t cell(std::int64_t x, std::int64_t y) const {
    return static_cast<std::size_t>((grid_.rows - 1 - y) * grid_.columns + x);
  }

  /// Every vertex is a point of the grid with its own elevation, and none comes twice.
  void take_vertices() {
    ASSERT_EQ(terrain_.y.size(), terrain_.x.size());
    ASSERT_EQ(terrain_.z.size(), terrain_.x.size());
    std::int64_t last = -1;
    for (std::size_t i = 0; i < terrain_.x.size(); ++i) {
      const auto column =
          static_cast<kz_long>(std::lround((terrain_.x[i] - grid_.west) / grid_.step_x));
      const auto row =
          static_cast<kz_long>(std::lround((grid_.north - terrain_.y[i]) / grid_.step_y));
      ASSERT_EQ(terrain_.x[i], grid_.x(column));
      ASSERT_EQ(terrain_.y[i], grid_.y(row));
      ASSERT_EQ(terrain_.z[i], static_cast<double>(grid_.at(row, column)));
      const std::int64_t number = std::int64_t{row} * grid_.columns + column;
      ASSERT_LT(last, number);
      last = number;
      places_.push_back({column, grid_.rows - 1 - row});
    }
  }

  void look_at_triangles(std::int64_t tolerance) {
    in_square_.assign(grid_.elevations.size(), 0);
    touched_.assign(grid_.elevations.size(), false);
    ASSERT_EQ(terrain_.triangles.size() % 3, 0U);
    std::vector<bool> used(places_.size());
    for (std::size_t i = 0; i < terrain_.triangles.size(); i += 3) {
      const std::uint32_t* corner = &terrain_.triangles[i];
      for (int k = 0; k < 3; ++k) {
        ASSERT_LT(corner[k], places_.size());
        used[corner[k]] = true;
      }
      const Place a = places_[corner[0]];
      const Place b = places_[corner[1]];
      const Place c = places_[corner[2]];
      const std::int64_t area = turn(a, b, c);
      ASSERT_GT(area, 0);
      const auto [west, east] = std::minmax({a.x, b.x, c.x});
      const auto [south, north] = std::minmax({a.y, b.y, c.y});
      for (std::int64_t y = south; y <= north; ++y) {
        for (std::int64_t x = west; x <= east; ++x) {
          look_at_square(a, b, c, x, y);
          const std::int64_t of_a = turn(b, c, {x, y});
          const std::int64_t of_b = turn(c, a, {x, y});
          const std::int64_t of_c = turn(a, b, {x, y});
          if (of_a < 0 || of_b < 0 || of_c < 0) continue;
          touched_[cell(x, y)] = true;
          const double z = grid_.elevations[cell(x, y)];
          ASSERT_TRUE(std::isfinite(z)) << x << ' ' << y;
          const Int128 off = Int128{of_a} * fixed(terrain_.z[corner[0]]) +
                             Int128{of_b} * fixed(terrain_.z[corner[1]]) +
                             Int128{of_c} * fixed(terrain_.z[corner[2]]) - Int128{area} * fixed(z);
          const Int128 most = Int128{area} * tolerance;
          ASSERT_TRUE(-most <= off && off <= most) << x << ' ' << y;
        }
      }
    }
    EXPECT_EQ(std::count(used.begin(), used.end(), false), 0);
  }

  /// Counts the triangle for the square to the north-east of a point, if it holds a certain place
  /// of that: one that no line between two points of a grid of a thousand columns goes through.
  void look_at_square(const Place& a, const Place& b, const Place& c, std::int64_t x,
                      std::int64_t y) {
    constexpr std::int64_t kUnit = std::int64_t{1} << 24;
    constexpr Place kInside{5318771, 9470141};
    const auto scaled = [](const Place& p) { return Place{p.x * kUnit, p.y * kUnit}; };
    const Place p{x * kUnit + kInside.x, y * kUnit + kInside.y};
    const std::int64_t turns[] = {turn(scaled(a), scaled(b), p), turn(scaled(b), scaled(c), p),
                                  turn(scaled(c), scaled(a), p)};
    ASSERT_TRUE(turns[0] != 0 && turns[1] != 0 && turns[2] != 0);
    if (turns[0] < 0 || turns[1] < 0 || turns[2] < 0) return;
    // The square goes by its north-western corner.
    ASSERT_LT(y + 1, grid_.rows);
    ++in_square_[cell(x, y + 1)];
  }

  const kzgis::ElevationGrid& grid_;
  const kzgis::Terrain& terrain_;
  std::vector<Place> places_;   // of the vertices
  std::vector<int> in_square_;  // triangles over a place in the square, by north-western corner
  std::vector<bool> touched_;   // points in or on a triangle
};

#endif
