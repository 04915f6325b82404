// Polygons that cross, overlap and repeat themselves, mended.  Where crossings have whole
// coordinates, areas are known to the last bit; elsewhere the borders of meshes are held against
// the sides that they came from.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "kzgis/mesh.h"

namespace {

constexpr std::uint64_t kSeed = 19790901;

struct Polygon {
  std::vector<double> x, y;
  std::vector<std::int32_t> starts;

  void add(const std::vector<std::pair<double, double>>& ring) {
    starts.push_back(static_cast<std::int32_t>(x.size()));
    for (const auto& [px, py] : ring) {
      x.push_back(px);
      y.push_back(py);
    }
  }
  kzgis::Rings rings() const { return {x, y, starts}; }
};

/// A mesh with its vertices in one list.
struct Mended {
  Mended(const Polygon& polygon, bool delaunay) : x(polygon.x), y(polygon.y) {
    auto mesh =
        kzgis::triangulate(polygon.rings(), {.delaunay = delaunay, .split_crossings = true});
    if (!mesh) {
      message = mesh.error().message;
      return;
    }
    triangles = mesh->triangles;
    fresh = mesh->new_x.size();
    EXPECT_EQ(mesh->crossings, fresh);
    x.insert(x.end(), mesh->new_x.begin(), mesh->new_x.end());
    y.insert(y.end(), mesh->new_y.begin(), mesh->new_y.end());
  }

  double area() const {
    double sum = 0.0;
    for (std::size_t i = 0; i < triangles.size(); i += 3) {
      const auto [a, b, c] = std::array{triangles[i], triangles[i + 1], triangles[i + 2]};
      sum += (x[b] - x[a]) * (y[c] - y[a]) - (x[c] - x[a]) * (y[b] - y[a]);
    }
    return 0.5 * sum;
  }

  /// The edges of one triangle only.
  std::vector<std::pair<std::uint32_t, std::uint32_t>> border() const {
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> times;
    for (std::size_t i = 0; i < triangles.size(); ++i) {
      const std::uint32_t a = triangles[i];
      const std::uint32_t b = triangles[i % 3 == 2 ? i - 2 : i + 1];
      ++times[{std::min(a, b), std::max(a, b)}];
    }
    std::vector<std::pair<std::uint32_t, std::uint32_t>> result;
    for (const auto& [edge, count] : times) {
      EXPECT_LE(count, 2);
      if (count == 1) result.push_back(edge);
    }
    return result;
  }

  std::vector<double> x, y;
  std::vector<std::uint32_t> triangles;
  std::size_t fresh = 0;
  std::string message;
};

/// The distance of a point from a stretch.
long double distance(long double x, long double y, long double ax, long double ay, long double bx,
                     long double by) {
  const long double ux = bx - ax;
  const long double uy = by - ay;
  const long double length = ux * ux + uy * uy;
  const long double t =
      length > 0 ? std::clamp(((x - ax) * ux + (y - ay) * uy) / length, 0.0L, 1.0L) : 0.0L;
  return std::hypot(x - ax - t * ux, y - ay - t * uy);
}

/// Expects every edge of the border to run along a side, as near as the header says.
void expect_near_sides(const Polygon& polygon, const Mended& mesh) {
  double largest = 0.0;
  for (const double v : polygon.x) largest = std::max(largest, std::fabs(v));
  for (const double v : polygon.y) largest = std::max(largest, std::fabs(v));
  const double unit = std::nextafter(largest, 1e300) - largest;
  const auto is_near = [&](std::uint32_t v, std::size_t i, std::size_t j) {
    // Besides, what long doubles lose.
    return distance(mesh.x[v], mesh.y[v], polygon.x[i], polygon.y[i], polygon.x[j], polygon.y[j]) <=
           129 * unit;
  };
  for (const auto& [a, b] : mesh.border()) {
    bool found = false;
    for (std::size_t ring = 0; ring < polygon.starts.size() && !found; ++ring) {
      const auto first = static_cast<std::size_t>(polygon.starts[ring]);
      const std::size_t end = ring + 1 < polygon.starts.size()
                                  ? static_cast<std::size_t>(polygon.starts[ring + 1])
                                  : polygon.x.size();
      for (std::size_t i = first, j = end - 1; i < end && !found; j = i++) {
        found = is_near(a, i, j) && is_near(b, i, j);
      }
    }
    ASSERT_TRUE(found) << "edge from vertex " << a << " to " << b;
  }
}

TEST(SplitCrossings, ABowTieGetsOneVertex) {
  Polygon bow;
  bow.add({{0, 0}, {4, 4}, {4, 0}, {0, 4}});
  EXPECT_FALSE(kzgis::triangulate(bow.rings()));
  const Mended mesh(bow, false);
  EXPECT_EQ(mesh.message, "");
  ASSERT_EQ(mesh.fresh, 1U);
  EXPECT_EQ(mesh.x[4], 2.0);
  EXPECT_EQ(mesh.y[4], 2.0);
  EXPECT_EQ(mesh.triangles.size(), 6U);
  EXPECT_EQ(mesh.area(), 8.0);
}

TEST(SplitCrossings, OverlapsAreOutsideAndRepetitionsCancel) {
  Polygon two;
  two.add({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
  two.add({{2, 2}, {6, 2}, {6, 6}, {2, 6}});
  EXPECT_EQ(Mended(two, false).area(), 16.0 + 16.0 - 2 * 4.0);
  EXPECT_EQ(Mended(two, true).fresh, 2U);
  Polygon twice;
  twice.add({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
  twice.add({{4, 4}, {4, 0}, {0, 0}, {0, 4}});
  const Mended nothing(twice, false);
  EXPECT_EQ(nothing.message, "");
  EXPECT_TRUE(nothing.triangles.empty());
  twice.add({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
  EXPECT_EQ(Mended(twice, false).area(), 16.0);
  EXPECT_EQ(Mended(twice, false).fresh, 0U);
}

TEST(SplitCrossings, AddsNothingToASoundPolygon) {
  Polygon frame;
  frame.add({{0, 0}, {9, 0}, {9, 9}, {0, 9}});
  frame.add({{3, 3}, {3, 6}, {6, 6}, {6, 3}});
  const Mended mesh(frame, false);
  EXPECT_EQ(mesh.fresh, 0U);
  EXPECT_EQ(mesh.triangles, kzgis::triangulate(frame.rings())->triangles);
}

// Upright and level sides cross in whole places only: the region is made of unit cells, and
// whether a cell belongs to it is counted in the rings.
TEST(SplitCrossings, RectangularTanglesCellByCell) {
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 2000; ++i) {
    SCOPED_TRACE("seed " + std::to_string(kSeed) + " case " + std::to_string(i));
    constexpr int kSize = 9;
    Polygon polygon;
    std::array<std::array<int, kSize>, kSize> covered{};
    const int rings = 1 + i % 5;
    for (int r = 0; r < rings; ++r) {
      // A way that turns at every vertex and closes: x and y change in turns.
      std::vector<int> xs, ys;
      const auto half = 2 + random() % 4;
      for (std::size_t k = 0; k < half; ++k) {
        xs.push_back(static_cast<int>(random() % (kSize + 1)));
        ys.push_back(static_cast<int>(random() % (kSize + 1)));
      }
      std::vector<std::pair<double, double>> ring;
      for (std::size_t k = 0; k < half; ++k) {
        ring.emplace_back(xs[k], ys[k]);
        ring.emplace_back(xs[(k + 1) % half], ys[k]);
      }
      polygon.add(ring);
      // An upright side at x flips all cells to its right in its rows.
      for (std::size_t k = 0; k < half; ++k) {
        const int x = xs[(k + 1) % half];
        const auto [low, high] = std::minmax(ys[k], ys[(k + 1) % half]);
        for (int row = low; row < high; ++row) {
          for (int column = x; column < kSize; ++column) {
            covered[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] ^= 1;
          }
        }
      }
    }
    int expected = 0;
    for (const auto& row : covered)
      expected += static_cast<int>(std::count(row.begin(), row.end(), 1));
    const Mended mesh(polygon, i % 2 == 0);
    ASSERT_EQ(mesh.message, "");
    ASSERT_EQ(mesh.area(), expected);
  }
}

/// Random rings of several kinds, most of which cross.
Polygon tangle(int kind, std::mt19937_64& random) {
  const auto whole = [&](int size) {
    return static_cast<double>(static_cast<int>(random() % (2 * static_cast<unsigned>(size) + 1)) -
                               size);
  };
  Polygon polygon;
  const auto rings = 1 + random() % 4;
  for (std::size_t r = 0; r < rings; ++r) {
    std::vector<std::pair<double, double>> ring;
    const auto n = 3 + random() % (kind == 5 ? 60 : 12);
    for (std::size_t i = 0; i < n; ++i) {
      switch (kind) {
        case 0:
          ring.emplace_back(whole(6), whole(6));
          break;
        case 1:
          ring.emplace_back(whole(60) * 1e-3, whole(60) * 1e-3);
          break;
        case 2:
          ring.emplace_back(whole(60) * 0.1 + 100.1, whole(60) * 0.1);
          break;
        case 3:
          ring.emplace_back(whole(1000000), whole(1000000));
          break;
        case 4: {  // along one line, some last places off it
          constexpr double kOff[] = {1e-12, 1e-11, 1e-10};
          const double x = whole(3);
          ring.emplace_back(x / 3.0, 1e3 + 0.3 * x + whole(3) * kOff[random() % 3]);
          break;
        }
        default:
          ring.emplace_back(whole(60), whole(60));
          break;
      }
    }
    polygon.add(ring);
  }
  return polygon;
}

/// The area inside an odd number of rings, strip by strip between all x at which a side ends or two
/// cross.  Where two sides lie so close that their order is uncertain, so little area lies between
/// them that the order does not matter.
double odd_even_area(const Polygon& polygon) {
  struct Side {
    long double ax, ay, bx, by;  // ax < bx
    long double at(long double x) const { return ay + (by - ay) * (x - ax) / (bx - ax); }
  };
  std::vector<Side> sides;
  std::vector<long double> stops;
  for (std::size_t ring = 0; ring < polygon.starts.size(); ++ring) {
    const auto first = static_cast<std::size_t>(polygon.starts[ring]);
    const std::size_t end = ring + 1 < polygon.starts.size()
                                ? static_cast<std::size_t>(polygon.starts[ring + 1])
                                : polygon.x.size();
    for (std::size_t i = first, j = end - 1; i < end; j = i++) {
      stops.push_back(polygon.x[i]);
      const std::size_t left = polygon.x[i] < polygon.x[j] ? i : j;
      const std::size_t right = left == i ? j : i;
      if (polygon.x[left] == polygon.x[right]) continue;
      sides.push_back({polygon.x[left], polygon.y[left], polygon.x[right], polygon.y[right]});
    }
  }
  for (const Side& p : sides) {
    for (const Side& q : sides) {
      const long double whole = (p.bx - p.ax) * (q.by - q.ay) - (p.by - p.ay) * (q.bx - q.ax);
      if (whole == 0) continue;
      const long double along = (q.ax - p.ax) * (q.by - q.ay) - (q.ay - p.ay) * (q.bx - q.ax);
      const long double x = p.ax + along / whole * (p.bx - p.ax);
      if (std::max(p.ax, q.ax) < x && x < std::min(p.bx, q.bx)) stops.push_back(x);
    }
  }
  std::sort(stops.begin(), stops.end());
  long double area = 0;
  std::vector<long double> heights;
  for (std::size_t i = 0; i + 1 < stops.size(); ++i) {
    const long double middle = (stops[i] + stops[i + 1]) / 2;
    heights.clear();
    for (const Side& side : sides) {
      if (side.ax < middle && middle < side.bx) heights.push_back(side.at(middle));
    }
    std::sort(heights.begin(), heights.end());
    for (std::size_t k = 0; k + 1 < heights.size(); k += 2) {
      area += (stops[i + 1] - stops[i]) * (heights[k + 1] - heights[k]);
    }
  }
  return static_cast<double>(area);
}

TEST(SplitCrossingsProperty, HasTheAreaOfTheOddEvenRegion) {
  std::mt19937_64 random(kSeed + 1);
  for (int i = 0; i < 300; ++i) {
    SCOPED_TRACE("seed " + std::to_string(kSeed + 1) + " case " + std::to_string(i));
    const Polygon polygon = tangle(i % 6, random);
    const Mended mesh(polygon, i % 2 == 0);
    ASSERT_EQ(mesh.message, "");
    const double expected = odd_even_area(polygon);
    // Of needles a few last places wide, on the line of kind 4, no more than the bound is left.
    const double slack = i % 6 == 4 ? 1e-12 * static_cast<double>(polygon.x.size()) * 130 : 1e-12;
    ASSERT_NEAR(mesh.area(), expected, 1e-9 * expected + slack);
  }
}

TEST(SplitCrossingsProperty, KeepsToTheSides) {
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 180; ++i) {
    SCOPED_TRACE("seed " + std::to_string(kSeed) + " case " + std::to_string(i));
    const Polygon polygon = tangle(i % 6, random);
    const Mended mesh(polygon, i % 2 == 0);
    ASSERT_EQ(mesh.message, "");
    expect_near_sides(polygon, mesh);
  }
}

// In the rounding of one crossing, two edges come to end above each other, a last place apart, and
// cross a hair before that: new vertices would follow each other there, one a round.
TEST(SplitCrossings, WhereEdgesEndAHairAboveEachOther) {
  const std::vector<std::vector<std::pair<double, double>>> tenths{
      {{60, -58}, {48, 13}, {-1, -14}, {-38, 16}, {-1, 59}, {-9, 52}, {34, -48}, {59, 30}},
      {{36, 12},
       {-48, 57},
       {34, 8},
       {-27, -8},
       {32, -2},
       {12, -7},
       {60, 5},
       {-6, 49},
       {57, 54},
       {-39, 52},
       {-3, -17},
       {51, 57},
       {35, -2}},
      {{-55, -15},
       {10, 25},
       {35, -32},
       {56, 60},
       {-43, -57},
       {2, -32},
       {38, -44},
       {28, 19},
       {-51, -42},
       {52, 54},
       {-59, -53},
       {-49, 9},
       {-11, -29},
       {60, 0}},
      {{60, -58}, {48, 13}, {-1, -14}, {-38, 16}, {-1, 59}, {-9, 52}, {34, -48}, {59, 30}},
  };
  Polygon polygon;
  for (auto ring : tenths) {
    for (auto& [x, y] : ring) {
      x = x * 0.1 + 100.1;
      y *= 0.1;
    }
    polygon.add(ring);
  }
  const Mended mesh(polygon, false);
  ASSERT_EQ(mesh.message, "");
  EXPECT_NEAR(mesh.area(), odd_even_area(polygon), 1e-9);
  expect_near_sides(polygon, mesh);
}

TEST(SplitCrossings, RefusesMoreCrossingsThanItMayMend) {
  Polygon star;
  std::vector<std::pair<double, double>> ring;
  ring.reserve(101);
  for (int i = 0; i < 101; ++i) ring.emplace_back((i * 37) % 101, (i * i) % 101);
  star.add(ring);
  for (const kzgis::MeshOptions& options :
       {kzgis::MeshOptions{.split_crossings = true, .most_triangles = 50},
        kzgis::MeshOptions{.split_crossings = true, .most_crossings = 50}}) {
    const auto refused = kzgis::triangulate(star.rings(), options);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().kind, kzgis::ErrorKind::bad_argument);
    EXPECT_EQ(refused.error().message, "the sides cross in more than 50 places");
  }
  EXPECT_TRUE(kzgis::triangulate(star.rings(), {.split_crossings = true}));
}

TEST(FindFlaws, NamesAllCrossingsUpToTheNumberAsked) {
  // A zigzag over a level side, which it crosses six times.
  Polygon polygon;
  polygon.add({{-1, 0}, {20, 0}, {20, -5}, {-1, -5}});
  polygon.add({{1, -1}, {2, 1}, {3, -1}, {4, 1}, {5, -1}, {6, 1}, {7, -1}, {7, -2}, {1, -2}});
  const std::vector<kzgis::Flaw> flaws = kzgis::find_flaws(polygon.rings());
  ASSERT_EQ(flaws.size(), 6U);
  for (const kzgis::Flaw& flaw : flaws) {
    EXPECT_EQ(flaw.kind, kzgis::ErrorKind::bad_data);
    EXPECT_NE(flaw.message.find("crosses ring"), std::string::npos) << flaw.message;
  }
  EXPECT_EQ(kzgis::find_flaws(polygon.rings(), 4).size(), 4U);
  EXPECT_TRUE(kzgis::find_flaws(polygon.rings(), 0).empty());
}

TEST(FindFlaws, NamesOverlapsRepetitionsAndNumbersOneByOne) {
  Polygon polygon;
  for (int i = 0; i < 3; ++i) polygon.add({{0, 0}, {4, 0}, {4, 4}, {0, 4}});  // two of them again
  polygon.add({{10, 0}, {14, 0}, {14, 4}, {10, 4}});
  polygon.add({{12, 0}, {16, 0}, {16, 4}, {12, 4}});  // overlaps, with no crossing off a vertex
  polygon.add({{10, 0}, {12, 0}, {14, 0}, {14, 4}, {12, 4}, {10, 4}});
  const std::vector<kzgis::Flaw> flaws = kzgis::find_flaws(polygon.rings());
  ASSERT_EQ(flaws.size(), 4U);
  Polygon wild;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  wild.add({{0, 0}, {nan, 0}, {1, 1}, {2, 1e300}});
  const std::vector<kzgis::Flaw> numbers = kzgis::find_flaws(wild.rings());
  ASSERT_EQ(numbers.size(), 2U);
  EXPECT_EQ(numbers[0].vertex, 1);
  EXPECT_EQ(numbers[1].vertex, 3);
  Polygon sound;
  sound.add({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
  EXPECT_TRUE(kzgis::find_flaws(sound.rings()).empty());
}

}  // namespace
