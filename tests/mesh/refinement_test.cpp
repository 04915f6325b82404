// Refined meshes: they tile the polygon, their sides are short and their angles large enough.
//
// New vertices are rounded, so that what is judged of them is measured in long doubles: areas,
// lengths, angles and circles with some slack, the pairing of edges without.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <numbers>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kzgis/mesh.h"
#include "support/polygon_layer.h"
#include "support/sanitized.h"
#include "triangulate/polygons.h"

namespace {

using kzgis::ErrorKind;
using kzgis::MeshOptions;
using Real = long double;

// Under a sanitizer everything takes so much longer that less of it is done.
#ifdef KZGIS_SANITIZED
constexpr bool kIsWatched = true;
#else
constexpr bool kIsWatched = false;
#endif

constexpr std::uint64_t kSeed = 20040301;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Polygon {
  std::vector<double> x, y;
  std::vector<std::int32_t> starts;

  Polygon() = default;
  Polygon(std::initializer_list<std::vector<std::pair<double, double>>> rings) {
    for (const auto& ring : rings) add(ring);
  }
  explicit Polygon(const IntPolygon& polygon, double scale = 1.0) {
    for (const IntRing& ring : polygon.rings) {
      starts.push_back(static_cast<std::int32_t>(x.size()));
      for (const IntPoint& p : ring) {
        x.push_back(static_cast<double>(p.x) * scale);
        y.push_back(static_cast<double>(p.y) * scale);
      }
    }
  }
  void add(const std::vector<std::pair<double, double>>& ring) {
    starts.push_back(static_cast<std::int32_t>(x.size()));
    for (const auto& [px, py] : ring) {
      x.push_back(px);
      y.push_back(py);
    }
  }
  kzgis::Rings rings() const { return {x, y, starts}; }

  double extent() const {
    const auto [west, east] = std::minmax_element(x.begin(), x.end());
    const auto [south, north] = std::minmax_element(y.begin(), y.end());
    return std::max(*east - *west, *north - *south);
  }

  /// The sides as pairs of vertices, cut where a vertex lies on them; those that come in pairs
  /// are none.  Vertices on sides are looked for in small polygons only.
  std::vector<std::pair<std::size_t, std::size_t>> sides() const {
    std::map<std::array<double, 4>, std::pair<std::size_t, std::size_t>> odd;
    const auto add_side = [&](std::size_t i, std::size_t j) {
      std::array<double, 4> key{x[i], y[i], x[j], y[j]};
      if (std::pair(x[j], y[j]) < std::pair(x[i], y[i])) key = {x[j], y[j], x[i], y[i]};
      if (!odd.emplace(key, std::pair(i, j)).second) odd.erase(key);
    };
    for (std::size_t ring = 0; ring < starts.size(); ++ring) {
      const auto first = static_cast<std::size_t>(starts[ring]);
      const std::size_t end =
          ring + 1 < starts.size() ? static_cast<std::size_t>(starts[ring + 1]) : x.size();
      for (std::size_t i = first; i < end; ++i) {
        const std::size_t j = i + 1 < end ? i + 1 : first;
        std::map<Real, std::size_t> way{{0, i}, {1, j}};
        for (std::size_t v = 0; v < x.size() && x.size() < 1000; ++v) {
          if (const Real at = way_to(v, i, j); at > 0 && at < 1) way.emplace(at, v);
        }
        for (auto here = way.begin(), next = std::next(here); next != way.end(); here = next++) {
          if (x[i] != x[j] || y[i] != y[j]) add_side(here->second, next->second);
        }
      }
    }
    std::vector<std::pair<std::size_t, std::size_t>> result;
    for (const auto& [key, side] : odd) result.push_back(side);
    return result;
  }

  /// Where a vertex lies on the way from i to j: from 0 to 1; -1 if it does not lie on it.
  Real way_to(std::size_t v, std::size_t i, std::size_t j) const {
    const Real ux = Real{x[j]} - x[i];
    const Real uy = Real{y[j]} - y[i];
    const Real vx = Real{x[v]} - x[i];
    const Real vy = Real{y[v]} - y[i];
    return ux * vy == uy * vx ? (ux * vx + uy * vy) / (ux * ux + uy * uy) : -1;
  }
};

/// Twice the area within rings that run round it.
Real doubled_area(const Polygon& polygon) {
  Real sum = 0;
  for (std::size_t ring = 0; ring < polygon.starts.size(); ++ring) {
    const auto first = static_cast<std::size_t>(polygon.starts[ring]);
    const std::size_t end = ring + 1 < polygon.starts.size()
                                ? static_cast<std::size_t>(polygon.starts[ring + 1])
                                : polygon.x.size();
    for (std::size_t i = first; i < end; ++i) {
      const std::size_t j = i + 1 < end ? i + 1 : first;
      sum += (Real{polygon.x[i]} - polygon.x[0]) * (Real{polygon.y[j]} - polygon.y[0]) -
             (Real{polygon.x[j]} - polygon.x[0]) * (Real{polygon.y[i]} - polygon.y[0]);
    }
  }
  return std::fabs(sum);  // files run clockwise
}

struct Vector {
  Real x, y;
};
Real dot(Vector a, Vector b) { return a.x * b.x + a.y * b.y; }
Real cross(Vector a, Vector b) { return a.x * b.y - a.y * b.x; }
/// From a to b in degrees, counter-clockwise, up to half a turn either way.
Real angle(Vector a, Vector b) {
  return std::atan2(cross(a, b), dot(a, b)) * 180 / std::numbers::pi_v<Real>;
}

/// The double next to a number, seen from it.
Real last_place(double value) {
  const double magnitude = std::fabs(value);
  return Real{std::nextafter(magnitude, kInfinity)} - magnitude;
}

/// A mesh with all vertices in one list, and the judge of it.
class Refined {
 public:
  Refined(const Polygon& polygon, const MeshOptions& options)
      : polygon_(polygon), options_(options), sides_(polygon.sides()), x(polygon.x), y(polygon.y) {
    auto mesh = kzgis::triangulate(polygon.rings(), options);
    if (!mesh) {
      flaw = mesh.error();
      return;
    }
    triangles = mesh->triangles;
    small_corners = mesh->small_corners;
    x.insert(x.end(), mesh->new_x.begin(), mesh->new_x.end());
    y.insert(y.end(), mesh->new_y.begin(), mesh->new_y.end());
  }

  /// What is wrong with the mesh of a polygon whose sides meet in ends only, or an empty text.
  std::string wrong() {
    if (flaw) return flaw.message;
    std::string result = wrong_border();
    if (result.empty()) result = wrong_circles();
    if (result.empty()) result = wrong_sizes();
    return result;
  }

  std::size_t size() const { return triangles.size() / 3; }
  std::size_t added() const { return x.size() - polygon_.x.size(); }

  /// The new vertices on the side between two vertices of the polygon.
  std::set<std::pair<double, double>> cuts(std::size_t from, std::size_t to) const {
    std::set<std::pair<double, double>> result;
    for (std::size_t v = polygon_.x.size(); v < x.size(); ++v) {
      if (is_on(v, {from, to})) result.emplace(x[v], y[v]);
    }
    return result;
  }

 private:
  using SideOf = std::pair<std::size_t, std::size_t>;

 public:
  Polygon polygon_;
  MeshOptions options_;
  std::vector<SideOf> sides_;
  std::vector<double> x, y;
  std::vector<std::uint32_t> triangles;
  std::size_t small_corners = 0;
  kzgis::Flaw flaw;

 private:
  Vector way(std::size_t a, std::size_t b) const { return {Real{x[b]} - x[a], Real{y[b]} - y[a]}; }

  /// Whether a vertex is an end of a side, or new and within two units in the last place of its
  /// ends.
  bool is_on(std::size_t v, SideOf side) const {
    const auto [a, b] = side;
    if (v < polygon_.x.size()) {
      return (x[v] == x[a] && y[v] == y[a]) || (x[v] == x[b] && y[v] == y[b]);
    }
    const Real unit =
        last_place(std::max({std::fabs(x[a]), std::fabs(y[a]), std::fabs(x[b]), std::fabs(y[b])}));
    const auto [low_x, high_x] = std::minmax(x[a], x[b]);
    const auto [low_y, high_y] = std::minmax(y[a], y[b]);
    if (x[v] < low_x - 2 * unit || x[v] > high_x + 2 * unit || y[v] < low_y - 2 * unit ||
        y[v] > high_y + 2 * unit) {
      return false;
    }
    const Vector along = way(a, b);
    return std::fabs(cross(along, way(a, v))) <=
           2 * unit * std::hypot(along.x, along.y) * (1 + 1e-15L);
  }

  /// The edges of the triangles cancel, and what is left runs along the sides once.
  std::string wrong_border() {
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> left;  // and the apex
    Real area = 0;
    for (std::size_t i = 0; i < triangles.size(); i += 3) {
      const Real doubled =
          cross(way(triangles[i], triangles[i + 1]), way(triangles[i], triangles[i + 2]));
      if (!(doubled > 0)) return "a triangle is flat or clockwise";
      area += doubled;
      for (std::size_t k = 0; k < 3; ++k) {
        const auto edge = std::pair(triangles[i + k], triangles[i + (k + 1) % 3]);
        if (!left.emplace(edge, triangles[i + (k + 2) % 3]).second) return "an edge comes twice";
      }
    }
    Real perimeter = 0;
    for (const auto& [a, b] : sides_) {
      perimeter += std::hypot(way(a, b).x, way(a, b).y);
    }
    if (std::fabs(area - doubled_area(polygon_)) > 1e-12L * perimeter * perimeter)
      return "the area is wrong";
    apex_ = left;
    Real border = 0;
    std::map<std::uint32_t, SideOf> known;  // sides of new vertices
    for (const auto& [edge, apex] : left) {
      const auto [a, b] = edge;
      if (left.count({b, a}) != 0) continue;
      const auto on_both = [&, a = a, b = b](SideOf side) {
        return is_on(a, side) && is_on(b, side);
      };
      const auto hint = known.find(a < b ? b : a);
      if (hint == known.end() || !on_both(hint->second)) {
        const auto side = std::find_if(sides_.begin(), sides_.end(), on_both);
        if (side == sides_.end()) return "the border leaves the sides at " + std::to_string(a);
        if (a >= polygon_.x.size()) known[a] = *side;
        if (b >= polygon_.x.size()) known[b] = *side;
      }
      border += std::hypot(way(a, b).x, way(a, b).y);
    }
    if (std::fabs(border - perimeter) > 1e-9L * perimeter) return "the border is not the sides";
    return {};
  }

  /// No apex lies in the circle of the triangle beside it, by more than rounding.
  std::string wrong_circles() const {
    for (const auto& [edge, c] : apex_) {
      const auto beside = apex_.find({edge.second, edge.first});
      if (beside == apex_.end()) continue;
      // The angles across the edge from both sides make up half a turn at most.
      const std::uint32_t d = beside->second;
      const Real sum = angle(way(c, edge.first), way(c, edge.second)) +
                       angle(way(d, edge.second), way(d, edge.first));
      if (sum > 180 + 1e-9L) return "not Delaunay beside vertex " + std::to_string(edge.first);
    }
    return {};
  }

  std::string wrong_sizes() const {
    std::size_t small = 0;
    for (std::size_t i = 0; i < triangles.size(); i += 3) {
      Real least = 180;
      std::array<std::uint32_t, 3> least_first{};  // from the corner with the least angle on
      for (std::size_t k = 0; k < 3; ++k) {
        const std::array<std::uint32_t, 3> c{triangles[i + k], triangles[i + (k + 1) % 3],
                                             triangles[i + (k + 2) % 3]};
        if (std::hypot(x[c[1]] - x[c[0]], y[c[1]] - y[c[0]]) > options_.longest_side) {
          return "a side is too long";
        }
        const Real here = angle(way(c[0], c[1]), way(c[0], c[2]));
        if (here < least) {
          least = here;
          least_first = c;
        }
      }
      if (!(least < options_.least_angle_deg)) continue;
      ++small;
      if (!may_be_small(least_first[1], least_first[2])) {
        return "an angle of " + std::to_string(static_cast<double>(least)) + " at " +
               std::to_string(least_first[0]);
      }
    }
    return small == small_corners ? "" : "there are " + std::to_string(small) + " small corners";
  }

  bool same_place(std::size_t v, std::size_t w) const { return x[v] == x[w] && y[v] == y[w]; }

  /// Whether two vertices lie on two sides that meet in a third one with less than 60 degrees.
  bool may_be_small(std::uint32_t a, std::uint32_t b) const {
    for (const auto& [p, q] : sides_) {
      if (!is_on(a, {p, q})) continue;
      for (const auto& [r, s] : sides_) {
        if (!is_on(b, {r, s})) continue;
        for (const auto& [z, one] : {SideOf{p, q}, SideOf{q, p}}) {
          if (same_place(z, a) || same_place(z, b)) continue;
          for (const auto& [meeting, other] : {SideOf{r, s}, SideOf{s, r}}) {
            if (same_place(z, meeting) && std::fabs(angle(way(z, one), way(z, other))) < 60) {
              return true;
            }
          }
        }
      }
    }
    return false;
  }

  std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> apex_;
};

std::string wrong(const Polygon& polygon, const MeshOptions& options) {
  return Refined(polygon, options).wrong();
}

const Polygon kSquare{{{0, 0}, {10, 0}, {10, 10}, {0, 10}}};

TEST(LongestSide, CutsSidesIntoAsFewEqualPartsAsItTakes) {
  const Refined whole(kSquare, {.longest_side = 10});
  EXPECT_EQ(whole.cuts(0, 1).size(), 0U);
  const Refined third(kSquare, {.longest_side = 4});
  const auto cuts = third.cuts(0, 1);
  ASSERT_EQ(cuts.size(), 2U);
  EXPECT_DOUBLE_EQ(cuts.begin()->first, 10 / 3.0);
  EXPECT_DOUBLE_EQ(cuts.rbegin()->first, 20 / 3.0);
  const Refined tenth(kSquare, {.longest_side = 1});
  EXPECT_EQ(tenth.cuts(2, 1).size(), 9U);
  EXPECT_EQ(tenth.cuts(2, 1).count({10, 3}), 1U);
}

TEST(LongestSide, CutsWhatLiesInside) {
  // Sides of 10 are short enough, the diagonal is not.
  Refined mesh(kSquare, {.longest_side = 10});
  EXPECT_EQ(mesh.wrong(), "");
  ASSERT_EQ(mesh.added(), 1U);
  EXPECT_EQ(mesh.x[4], 5.0);
  EXPECT_EQ(mesh.y[4], 5.0);
  EXPECT_EQ(mesh.size(), 4U);
}

TEST(LongestSide, AddsNothingWhereAllSidesAreShort) {
  const Refined mesh(kSquare, {.longest_side = 15});
  EXPECT_EQ(mesh.added(), 0U);
  EXPECT_EQ(mesh.size(), 2U);
}

TEST(LongestSide, OfEveryFamily) {
  std::mt19937_64 random(kSeed);
  for (const Family& family : families()) {
    for (const int n : {10, 100}) {
      const Polygon polygon(family.make(n, random));
      for (const double part : {3.0, 20.0}) {
        SCOPED_TRACE(std::string(family.name) + " of " + std::to_string(n));
        EXPECT_EQ(wrong(polygon, {.longest_side = polygon.extent() / part}), "");
      }
    }
  }
}

// Both neighbours have other things around them, run the other way and begin elsewhere.
TEST(LongestSide, LeavesSharedBordersShared) {
  std::mt19937_64 random(kSeed);
  const auto anything = [&random](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  for (int i = 0; i < 50; ++i) {
    SCOPED_TRACE(i);
    std::vector<std::pair<double, double>> border;
    for (int k = 0; k <= 10; ++k) border.emplace_back(anything(-0.4, 0.4), 0.1 * k);
    std::vector<std::pair<double, double>> east = border;
    east.insert(east.end(), {{anything(1, 2), 0.9}, {anything(1, 2), 0.2}});
    std::vector<std::pair<double, double>> west(border.rbegin(), border.rend());
    west.insert(west.end(), {{-1, -3}, {-1, anything(1.5, 3)}});
    std::rotate(west.begin(), west.begin() + i % 12, west.end());
    const Polygon right{{east.rbegin(), east.rend()}};
    const Polygon left{{west.rbegin(), west.rend()}, {{-0.9, 0.5}, {-0.8, 0.5}, {-0.8, 0.6}}};
    const double longest = anything(0.02, 0.2);
    Refined one(right, {.longest_side = longest});
    Refined other(left, {.longest_side = longest});
    ASSERT_EQ(one.flaw.message, "");
    ASSERT_EQ(other.flaw.message, "");
    const auto vertex = [](const Polygon& polygon, std::pair<double, double> place) {
      std::size_t v = 0;
      while (polygon.x[v] != place.first || polygon.y[v] != place.second) ++v;
      return v;
    };
    for (std::size_t k = 0; k < 10; ++k) {
      const auto cuts = one.cuts(vertex(right, border[k]), vertex(right, border[k + 1]));
      EXPECT_EQ(cuts, other.cuts(vertex(left, border[k]), vertex(left, border[k + 1])));
      const double length = std::hypot(border[k + 1].first - border[k].first,
                                       border[k + 1].second - border[k].second);
      EXPECT_EQ(cuts.size() + 1, std::ceil(length / longest));
    }
  }
}

TEST(LongestSide, OfAnySizeThatDoublesHave) {
  for (const int power : {-420, -100, 0, 300, 500}) {
    SCOPED_TRACE(power);
    const double size = std::ldexp(1.0, power);
    const Polygon square{{{-size, -size}, {size, -size}, {size, size}, {-size, size}}};
    Refined mesh(square, {.longest_side = size / 8});
    EXPECT_EQ(mesh.wrong(), "");
    EXPECT_EQ(mesh.cuts(0, 1).size(), 15U);
    EXPECT_EQ(wrong(square, {.longest_side = size / 8, .least_angle_deg = 25}), "");
  }
}

TEST(LongestSide, ThatNeedsTooManyTrianglesIsRefusedAtOnce) {
  for (const double longest : {1e-5, 1e-300, 5e-324}) {
    const auto refused = kzgis::triangulate(kSquare.rings(), {.longest_side = longest});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().kind, ErrorKind::bad_argument);
    EXPECT_EQ(refused.error().message, "the mesh needs more than 100000000 triangles");
  }
  // A needle has no area, but sides.
  const Polygon needle{{{0, 0}, {1e9, 0}, {1e9, 1e-9}}};
  const auto refused = kzgis::triangulate(needle.rings(), {.longest_side = 1});
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().kind, ErrorKind::bad_argument);
}

TEST(Refinement, KeepsToTheNumberOfTriangles) {
  for (const MeshOptions& asked :
       {MeshOptions{.longest_side = 0.7}, MeshOptions{.longest_side = 3, .least_angle_deg = 25}}) {
    MeshOptions options = asked;
    const std::size_t size = Refined(kSquare, options).size();
    options.most_triangles = size;
    EXPECT_EQ(Refined(kSquare, options).size(), size);
    options.most_triangles = size - 1;
    const Refined refused(kSquare, options);
    EXPECT_EQ(refused.flaw.kind, ErrorKind::bad_argument);
  }
}

TEST(Refinement, NoneKeepsToTheNumberOfTriangles) {
  // A square with a hole, and one without: eight triangles and two.
  const Polygon frame{{{0, 0}, {9, 0}, {9, 9}, {0, 9}},
                      {{3, 3}, {6, 3}, {6, 6}, {3, 6}},
                      {{10, 0}, {19, 0}, {19, 9}, {10, 9}}};
  EXPECT_EQ(Refined(frame, {.most_triangles = 10}).size(), 10U);
  EXPECT_EQ(Refined(frame, {.most_triangles = 9}).flaw.message,
            "the mesh needs more than 9 triangles");
}

TEST(Refinement, RefusesWhatIsNoLengthAndNoAngle) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const double length : {0.0, -1.0, -kInfinity, nan}) {
    const Refined refused(kSquare, {.longest_side = length});
    EXPECT_EQ(refused.flaw.kind, ErrorKind::bad_argument);
    EXPECT_EQ(refused.flaw.message, "longest_side is not a length above 0");
    EXPECT_EQ(refused.flaw.ring, -1);
  }
  for (const double degrees : {-1.0, 25.5, kInfinity, nan}) {
    const Refined refused(kSquare, {.least_angle_deg = degrees});
    EXPECT_EQ(refused.flaw.kind, ErrorKind::bad_argument);
    EXPECT_EQ(refused.flaw.message, "least_angle_deg does not lie between 0 and 25");
  }
}

TEST(LeastAngle, LeavesFatTrianglesAlone) {
  const Refined mesh(kSquare, {.least_angle_deg = 25});
  EXPECT_EQ(mesh.size(), 2U);
  EXPECT_EQ(mesh.small_corners, 0U);
}

TEST(LeastAngle, CountsWhatThePolygonsOwnCornersDoNotAllow) {
  const double tan10 = std::tan(10 * std::numbers::pi / 180);
  Refined wedge({{{0, 0}, {1, 0}, {1, tan10}}}, {.least_angle_deg = 20});
  EXPECT_EQ(wedge.wrong(), "");
  EXPECT_EQ(wedge.size(), 1U);
  EXPECT_EQ(wedge.small_corners, 1U);
  // The tip of an angle that is large enough is no excuse.
  const double tan30 = std::tan(30 * std::numbers::pi / 180);
  Refined fat({{{0, 0}, {1, 0}, {1, tan30}}}, {.least_angle_deg = 25});
  EXPECT_EQ(fat.wrong(), "");
  EXPECT_EQ(fat.small_corners, 0U);
}

TEST(LeastAngle, OfEveryFamily) {
  std::mt19937_64 random(kSeed);
  for (const Family& family : families()) {
    for (const int n : {10, 60, 300}) {
      if (kIsWatched && n > 60) continue;
      const Polygon polygon(family.make(n, random));
      for (const double degrees : {5.0, 20.0, 25.0}) {
        SCOPED_TRACE(std::string(family.name) + " of " + std::to_string(n) + " at " +
                     std::to_string(degrees));
        EXPECT_EQ(wrong(polygon, {.least_angle_deg = degrees, .most_triangles = 200000}), "");
      }
    }
  }
}

// Rings that touch themselves and each other, in vertices and along stretches.
TEST(LeastAngle, OfTangles) {
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 600; ++i) {
    SCOPED_TRACE("seed " + std::to_string(kSeed) + " case " + std::to_string(i));
    const Polygon polygon(transformed(tangle(3 + i % 30, random), 7, -3, 2, 5));
    ASSERT_EQ(wrong(polygon, {.least_angle_deg = 25, .most_triangles = 200000}), "");
    ASSERT_EQ(wrong(polygon, {.longest_side = polygon.extent() / 9}), "");
  }
}

// Thirds are rounded: no two sides are parallel any more, and no three vertices on a line.
TEST(LeastAngle, OfRoundedPolygons) {
  std::mt19937_64 random(kSeed);
  std::size_t judged = 0;
  for (int i = 0; i < 12; i += kIsWatched ? 6 : 1) {
    for (const Family& family : families()) {
      SCOPED_TRACE(family.name + std::to_string(i));
      const Polygon polygon(transformed(family.make(10 + 4 * i, random), 3, -1, 1, 2), 1.0 / 3);
      if (!kzgis::triangulate(polygon.rings())) continue;
      ++judged;
      ASSERT_EQ(wrong(polygon, {.least_angle_deg = 25, .most_triangles = 200000}), "");
    }
  }
  EXPECT_GT(judged, kIsWatched ? 10U : 60U);
}

TEST(LeastAngle, TogetherWithALongestSide) {
  std::mt19937_64 random(kSeed);
  for (const Family& family : families()) {
    const Polygon polygon(family.make(50, random));
    SCOPED_TRACE(family.name);
    EXPECT_EQ(wrong(polygon, {.longest_side = polygon.extent() / 15,
                              .least_angle_deg = 22,
                              .most_triangles = 200000}),
              "");
  }
}

/// All records of a sample layer, refined; the number of triangles.
std::size_t refine_layer(const char* name, const MeshOptions& options) {
  std::size_t triangles = 0;
  PolygonLayer layer(name);
  for (kz_ulong i = 0; i < layer.records(); ++i) {
    SCOPED_TRACE(std::string(name) + ", record " + std::to_string(i));
    const PolygonLayer::Record record = layer.next();
    Polygon polygon;
    polygon.x.assign(record.x.begin(), record.x.end());
    polygon.y.assign(record.y.begin(), record.y.end());
    polygon.starts.assign(record.starts.begin(), record.starts.end());
    Refined mesh(polygon, options);
    if (mesh.flaw.message.find("crosses itself") != std::string::npos) continue;
    EXPECT_EQ(mesh.wrong(), "");
    triangles += mesh.size();
  }
  return triangles;
}

// CGAL 5.5's refine_Delaunay_mesh_2 makes 24,347 triangles of the one layer and 254,102 of the
// other; 1.3 times as many are bearable.
TEST(LeastAngle, OfSampleLayers) {
  EXPECT_LT(refine_layer("ne_110m_countries", {.least_angle_deg = 20}), 31651U);
  refine_layer("ne_110m_countries", {.longest_side = 2, .least_angle_deg = 25});
  refine_layer("ne_110m_land", {.longest_side = 1});
  if (kIsWatched) return;
  EXPECT_LT(refine_layer("ne_50m_countries", {.least_angle_deg = 20}), 330332U);
  refine_layer("ne_50m_countries", {.least_angle_deg = 25});
}

/// One ring round the wedge's tip, with something small in it.
Polygon wedge(double degrees, double far, bool with_hole) {
  const double half = degrees / 2 * std::numbers::pi / 180;
  const double high = std::tan(half);
  Polygon polygon{{{0, -0.0}, {10, -10 * high}, {far, far * high}}};
  if (with_hole) {
    polygon.add({{7, 0}, {7.05, 0.03 * high}, {7.1, 0}});
  }
  return polygon;
}

TEST(LeastAngle, OfSharpCornersComesToAnEnd) {
  for (const double degrees : {59.0, 50.0, 40.0, 26.0, 10.0, 1.0, 0.1, 0.001}) {
    for (const double far : {10.0, 4.0, 9.99}) {
      for (const bool with_hole : {false, true}) {
        if (with_hole && far < 9) continue;
        SCOPED_TRACE(std::to_string(degrees) + " " + std::to_string(far));
        Refined mesh(wedge(degrees, far, with_hole),
                     {.least_angle_deg = 25, .most_triangles = 100000});
        EXPECT_EQ(mesh.wrong(), "");
      }
    }
  }
}

// So that the cuts of both sides come to lie at the same distances from the corner.
TEST(LeastAngle, CutsTheSidesOfSharpCornersAtPowersOfTwo) {
  for (const double degrees : {50.0, 30.0, 10.0, 1.0}) {
    SCOPED_TRACE(degrees);
    const Refined mesh(wedge(degrees, 9.99, true), {.least_angle_deg = 25});
    ASSERT_EQ(mesh.flaw.message, "");
    for (const std::size_t end : {1U, 2U}) {
      double nearest = kInfinity;
      for (const auto& [x, y] : mesh.cuts(0, end)) nearest = std::min(nearest, std::hypot(x, y));
      EXPECT_NEAR(nearest, std::ldexp(1.0, std::ilogb(nearest * 1.000001)), 1e-12);
    }
  }
}

TEST(LeastAngle, OfManyWedgesInOnePlaceComesToAnEnd) {
  std::vector<std::pair<double, double>> ring;
  constexpr int kWedges = 12;
  for (int i = 0; i < kWedges; ++i) {
    const double at = 2 * std::numbers::pi * i / kWedges;
    ring.emplace_back(0, 0);
    ring.emplace_back(std::cos(at) * (3 + i % 4), std::sin(at) * (3 + i % 4));
    ring.emplace_back(2.5 * std::cos(at + 0.3), 2.5 * std::sin(at + 0.3));
    ring.emplace_back(2.0 * std::cos(at + 0.35), 2.0 * std::sin(at + 0.35));
  }
  Polygon inside;
  inside.add(ring);
  Refined mesh(inside, {.least_angle_deg = 25});
  EXPECT_EQ(mesh.wrong(), "");
  // And what lies between the wedges, in a frame.
  Polygon outside{{{-9, -9}, {9, -9}, {9, 9}, {-9, 9}}};
  outside.add({ring.rbegin(), ring.rend()});
  Refined between(outside, {.least_angle_deg = 25});
  EXPECT_EQ(between.wrong(), "");
}

TEST(LeastAngle, OfNeedlesAndTinySidesComesToAnEnd) {
  for (const double thin : {1e-1, 1e-3, 1e-5}) {
    if (kIsWatched && thin < 1e-3) continue;
    SCOPED_TRACE(thin);
    const MeshOptions options{.least_angle_deg = 25, .most_triangles = 400000};
    EXPECT_EQ(wrong({{{0, 0}, {1, 0}, {1, thin}}}, options), "");
    EXPECT_EQ(wrong({{{0, 0}, {1, 0}, {1, thin}, {0, thin}}}, options), "");
    EXPECT_EQ(wrong({{{0.1, 0.3}, {0.7, 1.1}, {0.7, 1.1 + thin}}}, options), "");
  }
  for (const double tiny : {1e-3, 1e-6, 1e-9, 1e-12, 1e-13}) {
    SCOPED_TRACE(tiny);
    const MeshOptions options{.least_angle_deg = 25, .most_triangles = 100000};
    EXPECT_EQ(wrong({{{5, 5}, {6, 5}, {6, 6}, {6 - tiny, 6}, {5, 6}}}, options), "");
    EXPECT_EQ(wrong({{{0, 0}, {1, 0}, {1, 1}, {0, 1}},
                     {{0.5, 0.5}, {0.5, 0.5 + tiny}, {0.5 + tiny, 0.5}}},
                    options),
              "");
  }
}

// As near to each other as doubles come, or so thin that no vertex fits in: whatever comes of it,
// it comes soon, and is no wrong mesh.
TEST(Refinement, OfWhatDoublesHardlyHoldIsAMeshOrARefusal) {
  std::size_t refused = 0;
  std::size_t made = 0;
  const auto look_at = [&](const Polygon& polygon, const MeshOptions& options) {
    const auto mesh = kzgis::triangulate(polygon.rings(), options);
    if (mesh) {
      ++made;
      return;
    }
    ++refused;
    EXPECT_NE(mesh.error().kind, ErrorKind::unproved) << mesh.error().message;
    if (mesh.error().kind == ErrorKind::bad_data) {
      EXPECT_GE(mesh.error().ring, 0);
      EXPECT_GE(mesh.error().vertex, 0);
    }
  };
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 2000; ++i) {
    SCOPED_TRACE("seed " + std::to_string(kSeed) + " case " + std::to_string(i));
    // Whole units in the last place about 100, and far corners.
    Polygon polygon;
    std::vector<std::pair<double, double>> ring;
    const auto n = 3 + random() % 5;
    for (std::size_t k = 0; k < n; ++k) {
      const double reach = k % 2 == 0 ? 0x1p-46 : 1.0;
      ring.emplace_back(100 + reach * static_cast<double>(random() % 8),
                        100 + reach * static_cast<double>(random() % 8));
    }
    polygon.add(ring);
    look_at(polygon, {.split_crossings = true, .least_angle_deg = 25, .most_triangles = 20000});
    look_at(polygon, {.split_crossings = true,
                      .longest_side = i % 2 == 0 ? 0.3 : 0x1p-43,
                      .most_triangles = 20000});
  }
  // Needles in all directions: at one end of their long sides or the other, cuts would turn over.
  std::array<std::pair<double, double>, 3> needle{{{0.1, 0.3}, {0.7, 1.1}, {0.7, 1.1 + 0x1p-52}}};
  for (int i = 0; i < 8; ++i) {
    SCOPED_TRACE(i);
    if (i == 4) std::swap(needle[1], needle[2]);
    for (auto& [x, y] : needle) std::tie(x, y) = std::pair(-y, x);
    if (i >= 4) {
      for (auto& [x, y] : needle) x = -x;
    }
    look_at({{needle.begin(), needle.end()}}, {.longest_side = 0.01});
    if (i >= 4) {
      for (auto& [x, y] : needle) x = -x;
    }
  }
  look_at({{{0, 0}, {1, 0}, {1, 1e-140}, {0, 1e-140}}}, {.least_angle_deg = 25});
  look_at({{{0, 0}, {0x1p500, 0}, {0, 0x1p-480}}}, {.longest_side = 0x1p498});
  look_at({{{0, 0}, {0x1p-480, 0}, {0, 0x1p-480}}}, {.longest_side = 0x1p-482});
  EXPECT_GT(refused, 100U);
  EXPECT_GT(made, 100U);
}

// Two triangles touch at a corner, and the gap between them is one unit in the last place wide at
// its end.  Cut into equal parts, the sides beside the gap would touch.
TEST(Refinement, RefusesSidesThatWouldTouchOnceTheyAreCut) {
  const double third = 1.0 / 3;
  const Polygon polygon{{{1, 1}, {2, 1 + third}, {1, 2}},
                        {{1, 1}, {2, 0}, {2, 1 + third - 0x1p-52}}};
  EXPECT_TRUE(kzgis::triangulate(polygon.rings()));
  const auto refused = kzgis::triangulate(polygon.rings(), {.longest_side = 0.01});
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().kind, ErrorKind::bad_data);
  EXPECT_EQ(refused.error().vertex, 0);
  EXPECT_EQ(refused.error().message,
            "ring 0, vertex 0: doubles are too coarse for such triangles there");
  EXPECT_TRUE(kzgis::triangulate(polygon.rings(), {.least_angle_deg = 25}));
}

TEST(Refinement, NumbersVerticesBehindThoseOfCrossings) {
  // A bow tie, whose crossing is vertex 4.
  Polygon tie{{{0, 0}, {4, 4}, {4, 0}, {0, 4}}};
  const Refined mesh(tie, {.split_crossings = true, .longest_side = 1});
  ASSERT_EQ(mesh.flaw.message, "");
  EXPECT_EQ(mesh.x[4], 2.0);
  EXPECT_EQ(mesh.y[4], 2.0);
  // The pieces of split sides are sides: each is longer than two, and cut twice.
  for (const std::size_t corner : {0U, 1U, 2U, 3U}) EXPECT_EQ(mesh.cuts(corner, 4).size(), 3U);
}

TEST(Refinement, TakesAStretchThatTwoRingsShareForNoSide) {
  // Two halves of a square; their border is cut only as triangles need it.
  const Polygon halves{{{0, 0}, {1, 0}, {1, 8}, {0, 8}}, {{1, 0}, {9, 0}, {9, 8}, {1, 8}}};
  const Refined mesh(halves, {.longest_side = 8.5});
  ASSERT_EQ(mesh.flaw.message, "");
  // Were it a side, the sliver between it and the left border could not be fat.
  const Refined fat(halves, {.least_angle_deg = 25});
  ASSERT_EQ(fat.flaw.message, "");
  std::set<std::pair<std::uint32_t, std::uint32_t>> edges;
  for (std::size_t i = 0; i < fat.triangles.size(); ++i) {
    edges.emplace(fat.triangles[i], fat.triangles[i % 3 == 2 ? i - 2 : i + 1]);
  }
  EXPECT_EQ(edges.count({1, 2}), 0U);
  for (const auto& [a, b] : edges) {
    if (edges.count({b, a}) == 0) {
      EXPECT_FALSE(fat.x[a] == 1.0 && fat.x[b] == 1.0);
    }
  }
}

TEST(Refinement, IsTheSameEveryTime) {
  std::mt19937_64 random(kSeed);
  const Polygon polygon(coast(300, random));
  const MeshOptions options{.longest_side = polygon.extent() / 30, .least_angle_deg = 25};
  const Refined once(polygon, options);
  const Refined again(polygon, options);
  EXPECT_EQ(once.triangles, again.triangles);
  EXPECT_EQ(once.x, again.x);
  EXPECT_EQ(once.y, again.y);
}

}  // namespace
