// Delaunay meshes, judged in whole numbers: they tile the polygon, and no corner lies in the circle
// of the triangle beside it.  Where no four vertices are on a circle, just one mesh does that.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <numbers>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kzgis/mesh.h"
#include "triangulate/polygons.h"
#include "triangulate/tiling.h"

namespace {

constexpr std::uint64_t kSeed = 19340731;

using Corners = std::array<std::uint32_t, 3>;

int sign(Int128 value) { return value > 0 ? 1 : value < 0 ? -1 : 0; }

/// Where d lies, seen from the circle through a, b and c, which turn left: 1 inside.
int in_circle(IntPoint a, IntPoint b, IntPoint c, IntPoint d) {
  const std::array<IntPoint, 3> p{
      {{a.x - d.x, a.y - d.y}, {b.x - d.x, b.y - d.y}, {c.x - d.x, c.y - d.y}}};
  Int128 determinant = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const IntPoint& q = p[(i + 1) % 3];
    const IntPoint& r = p[(i + 2) % 3];
    determinant += (Int128{p[i].x} * p[i].x + Int128{p[i].y} * p[i].y) *
                   (Int128{q.x} * r.y - Int128{q.y} * r.x);
  }
  return sign(determinant);
}

/// Rings as doubles, and their Delaunay mesh.
struct Subject {
  explicit Subject(const IntPolygon& polygon) : vertices(polygon.vertices()) {
    for (const IntRing& ring : polygon.rings) {
      starts.push_back(static_cast<std::int32_t>(x.size()));
      for (const IntPoint& p : ring) {
        x.push_back(static_cast<double>(p.x));
        y.push_back(static_cast<double>(p.y));
      }
    }
    auto mesh = kzgis::triangulate({x, y, starts}, {.delaunay = true});
    EXPECT_TRUE(mesh.has_value()) << mesh.error().message;
    if (mesh) triangles = mesh->triangles;
  }

  /// Why the triangles are not what they should be, or an empty text.
  std::string flaw(const IntPolygon& polygon) const {
    Triangles listed;
    for (std::size_t i = 0; i < triangles.size(); i += 3) {
      listed.push_back({static_cast<kz_long>(triangles[i]), static_cast<kz_long>(triangles[i + 1]),
                        static_cast<kz_long>(triangles[i + 2])});
    }
    const std::string tiling = flaw_of(polygon, listed, 0);
    return tiling.empty() ? circles() : tiling;
  }

  /// The same of the circles alone.
  std::string circles() const {
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> apex;
    for (std::size_t i = 0; i < triangles.size(); i += 3) {
      for (std::size_t k = 0; k < 3; ++k) {
        apex[{triangles[i + k], triangles[i + (k + 1) % 3]}] = triangles[i + (k + 2) % 3];
      }
    }
    for (const auto& [edge, c] : apex) {
      const auto& [a, b] = edge;
      const auto beside = apex.find({b, a});
      if (beside == apex.end()) continue;
      const std::uint32_t d = beside->second;
      const int side = in_circle(vertices[a], vertices[b], vertices[c], vertices[d]);
      if (side > 0) return "vertex " + std::to_string(d) + " is within a circle";
      if (side == 0 && !leftmost_of({a, b, c, d}, a) && !leftmost_of({a, b, c, d}, b)) {
        return "the other diagonal is due at " + std::to_string(a);
      }
    }
    return {};
  }

  bool leftmost_of(const std::array<std::uint32_t, 4>& four, std::uint32_t vertex) const {
    const auto place = [this](std::uint32_t v) { return std::pair(vertices[v].x, vertices[v].y); };
    return std::all_of(four.begin(), four.end(),
                       [&](std::uint32_t v) { return place(vertex) <= place(v); });
  }

  std::vector<IntPoint> vertices;
  std::vector<double> x, y;
  std::vector<std::int32_t> starts;
  std::vector<std::uint32_t> triangles;
};

/// The triangles, each from its smallest corner on, as a set.
std::set<Corners> set_of(const std::vector<std::uint32_t>& triangles) {
  std::set<Corners> result;
  for (std::size_t i = 0; i < triangles.size(); i += 3) {
    Corners corners{triangles[i], triangles[i + 1], triangles[i + 2]};
    std::rotate(corners.begin(), std::min_element(corners.begin(), corners.end()), corners.end());
    result.insert(corners);
  }
  return result;
}

TEST(Delaunay, TakesTheShortDiagonalOfAKite) {
  const Subject kite({{{{0, 0}, {5, -1}, {10, 0}, {5, 1}}}, "kite"});
  EXPECT_EQ(set_of(kite.triangles), (std::set<Corners>{{0, 1, 3}, {1, 2, 3}}));
  const Subject upright({{{{0, 0}, {1, -5}, {2, 0}, {1, 5}}}, "upright"});
  EXPECT_EQ(set_of(upright.triangles), (std::set<Corners>{{0, 1, 2}, {0, 2, 3}}));
}

TEST(Delaunay, LeavesTheSidesOfThePolygonAlone) {
  // The notch's tip lies in the circle of what would be across it.
  const Subject notched({{{{0, 0}, {10, 0}, {10, 10}, {5, 1}, {0, 10}}}, "notched"});
  EXPECT_EQ(set_of(notched.triangles), (std::set<Corners>{{0, 1, 3}, {0, 3, 4}, {1, 2, 3}}));
}

TEST(Delaunay, OfASquareBeginsAtItsLeftmostLowestCornerHoweverItRuns) {
  const IntRing square{{0, 0}, {2, 0}, {2, 2}, {0, 2}};
  for (std::ptrdiff_t first = 0; first < 4; ++first) {
    IntRing turned = square;
    std::rotate(turned.begin(), turned.begin() + first, turned.end());
    const Subject subject({{turned}, "square"});
    ASSERT_EQ(subject.triangles.size(), 6U);
    const auto lowest = static_cast<std::uint32_t>(
        std::find(turned.begin(), turned.end(), IntPoint{0, 0}) - turned.begin());
    EXPECT_EQ(std::count(subject.triangles.begin(), subject.triangles.end(), lowest), 2);
  }
}

TEST(Delaunay, OfEveryFamily) {
  std::mt19937_64 random(kSeed);
  for (const Family& family : families()) {
    for (const int n : {10, 60, 400}) {
      const IntPolygon polygon = family.make(n, random);
      SCOPED_TRACE(polygon.label + " of " + std::to_string(n));
      EXPECT_EQ(Subject(polygon).flaw(polygon), "");
    }
  }
}

TEST(Delaunay, OfThreeThousandTangles) {
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 3000; ++i) {
    const IntPolygon polygon = tangle(3 + i % 40, random);
    SCOPED_TRACE(polygon.label + " " + std::to_string(i));
    ASSERT_EQ(Subject(polygon).flaw(polygon), "");
  }
}

// Along smooth curves the triangles of a plane sweep are as far from Delaunay as they can be: so
// far that flipping them would take as many steps as there are pairs of vertices.
TEST(Delaunay, OfSmoothCurves) {
  std::mt19937_64 random(kSeed);
  const auto round = [](int n, double lobes, std::int64_t size, bool hole) {
    IntRing ring;
    for (int i = 0; i < n; ++i) {
      const double angle = (hole ? -2.0 : 2.0) * std::numbers::pi * i / n;
      const double radius = static_cast<double>(size) * (1.0 + 0.3 * std::sin(lobes * angle));
      ring.push_back(
          {std::llround(radius * std::cos(angle)), std::llround(radius * std::sin(angle))});
    }
    return ring;
  };
  const std::int64_t size = 1 << 24;
  for (const IntPolygon& polygon :
       {convex(3000, random), IntPolygon{{round(3000, 0.0, size, false)}, "disc"},
        IntPolygon{{round(4000, 5.0, size, false)}, "star"},
        IntPolygon{{round(3000, 5.0, size, false), round(3000, 7.0, size / 3, true)}, "ring"}}) {
    SCOPED_TRACE(polygon.label);
    const Subject subject(polygon);
    EXPECT_EQ(subject.circles(), "");
    EXPECT_EQ(subject.triangles.size(), 3 * (subject.x.size() + 2 * polygon.rings.size() - 4));
  }
}

// Where the polygon is turned, so are its triangles, but for diagonals in circles.
TEST(Delaunay, IsTheSameForAPolygonTurnedOverAndBegunElsewhere) {
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(i);
    const IntPolygon polygon = star(50, random);
    const IntPolygon turned = transformed(polygon, 0, -1, 1, 0);
    ASSERT_EQ(set_of(Subject(polygon).triangles), set_of(Subject(turned).triangles));
  }
}

}  // namespace
