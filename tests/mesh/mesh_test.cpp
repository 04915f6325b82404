// Real polygons and nasty ones through kzgis::triangulate and kzgis::nest.  Areas are known
// by construction: regions are made of unit cells, or of nested squares.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/meshed.h"

namespace {

constexpr unsigned kSeed = 19911107;

/// Rings that own their coordinates.
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

double twice_area(const Polygon& polygon, const Meshed& mesh) {
  double sum = 0.0;
  for (std::size_t i = 0; i + 2 < mesh.triangles.size(); i += 3) {
    const auto [a, b, c] =
        std::tuple(mesh.triangles[i], mesh.triangles[i + 1], mesh.triangles[i + 2]);
    const double turn = (polygon.x[b] - polygon.x[a]) * (polygon.y[c] - polygon.y[a]) -
                        (polygon.x[c] - polygon.x[a]) * (polygon.y[b] - polygon.y[a]);
    sum += turn;
  }
  return sum;
}

std::vector<std::pair<double, double>> square(double x, double y, double size) {
  return {{x, y}, {x + size, y}, {x + size, y + size}, {x, y + size}};
}

TEST(Mesh, OfASquareIsTwoTrianglesWhicheverWayItRuns) {
  for (const bool reversed : {false, true}) {
    for (const bool closed : {false, true}) {
      Polygon polygon;
      auto ring = square(0.0, 0.0, 2.0);
      if (reversed) std::reverse(ring.begin(), ring.end());
      if (closed) ring.push_back(ring.front());
      polygon.add(ring);
      const Meshed mesh = meshed(polygon.rings());
      EXPECT_FALSE(mesh.flaw);
      EXPECT_EQ(mesh.triangles.size(), 6U);
      EXPECT_EQ(twice_area(polygon, mesh), 8.0);
      EXPECT_LT(*std::max_element(mesh.triangles.begin(), mesh.triangles.end()), 4U);
    }
  }
}

TEST(Mesh, OfNothingIsEmpty) {
  const Meshed mesh = meshed({});
  EXPECT_FALSE(mesh.flaw);
  EXPECT_TRUE(mesh.triangles.empty());
}

TEST(Mesh, TakesRingsInAnyOrderToAnyDepth) {
  Polygon polygon;
  for (const double size : {2.0, 10.0, 6.0, 8.0, 4.0}) {
    polygon.add(square(-size / 2.0, -size / 2.0, size));
  }
  const Meshed mesh = meshed(polygon.rings());
  EXPECT_FALSE(mesh.flaw);
  // V + 2h - 2 for each of the three regions.
  EXPECT_EQ(mesh.triangles.size(), 3U * (8 + 8 + 2));
  EXPECT_EQ(twice_area(polygon, mesh), 2.0 * (100.0 - 64.0 + 36.0 - 16.0 + 4.0));
}

TEST(Mesh, HandlesRepeatedVerticesSpikesAndRunsOnALine) {
  Polygon polygon;
  polygon.add(
      {{0, 0}, {0, 0}, {1, 0}, {2, 0}, {3, 0}, {5, 0}, {3, 0}, {3, 3}, {3, 3}, {0, 3}, {0, 1}});
  const Meshed mesh = meshed(polygon.rings());
  EXPECT_FALSE(mesh.flaw);
  EXPECT_EQ(twice_area(polygon, mesh), 18.0);
}

TEST(Mesh, HandlesAHoleThatTouchesInAVertex) {
  Polygon polygon;
  polygon.add(square(0, 0, 9));
  polygon.add({{0, 0}, {4, 1}, {1, 4}});
  const Meshed mesh = meshed(polygon.rings());
  EXPECT_FALSE(mesh.flaw);
  EXPECT_EQ(twice_area(polygon, mesh), 162.0 - 15.0);
}

TEST(Mesh, HandlesAHoleWithAVertexOnAnEdge) {
  Polygon polygon;
  polygon.add(square(0, 0, 9));
  polygon.add({{3, 0}, {5, 4}, {2, 4}});
  const Meshed mesh = meshed(polygon.rings());
  EXPECT_FALSE(mesh.flaw);
  EXPECT_EQ(twice_area(polygon, mesh), 162.0 - 12.0);
}

TEST(Mesh, HandlesRingsThatShareACornerOrASide) {
  Polygon polygon;
  polygon.add(square(0, 0, 1));
  polygon.add(square(1, 1, 1));
  polygon.add(square(2, 1, 3));
  const Meshed mesh = meshed(polygon.rings());
  EXPECT_FALSE(mesh.flaw);
  EXPECT_EQ(twice_area(polygon, mesh), 2.0 * 11.0);
}

TEST(Mesh, HandlesABowTieThatMeetsInAVertex) {
  Polygon polygon;
  polygon.add({{0, 0}, {2, 2}, {4, 0}, {4, 4}, {2, 2}, {0, 4}});
  const Meshed mesh = meshed(polygon.rings());
  EXPECT_FALSE(mesh.flaw);
  EXPECT_EQ(mesh.triangles.size(), 6U);
  EXPECT_EQ(twice_area(polygon, mesh), 16.0);
}

TEST(MeshFlaw, NamesTheRingsThatCross) {
  Polygon polygon;
  polygon.add(square(0, 0, 2));
  polygon.add(square(1, 1, 2));
  const Meshed mesh = meshed(polygon.rings());
  EXPECT_EQ(mesh.flaw.kind, kzgis::ErrorKind::bad_data);
  EXPECT_EQ(mesh.flaw.message, "ring 1 crosses ring 0 (sides from vertices 7 and 2)");
  EXPECT_EQ(mesh.flaw.ring, 1);
  EXPECT_EQ(mesh.flaw.vertex, 7);
  EXPECT_TRUE(mesh.triangles.empty());
  EXPECT_TRUE(nested(polygon.rings()).parent.empty());
}

TEST(MeshFlaw, NamesARingThatCrossesItself) {
  Polygon polygon;
  polygon.add({{0, 0}, {2, 2}, {2, 0}, {0, 2}});
  EXPECT_EQ(meshed(polygon.rings()).flaw.message,
            "ring 0 crosses itself (sides from vertices 0 and 2)");
}

TEST(MeshFlaw, NamesARingThatRepeatsAnother) {
  Polygon polygon;
  polygon.add(square(0, 0, 2));
  auto again = square(0, 0, 2);
  std::reverse(again.begin(), again.end());
  polygon.add(again);
  const Meshed mesh = meshed(polygon.rings());
  EXPECT_EQ(mesh.flaw.message, "ring 1 repeats ring 0");
  EXPECT_EQ(mesh.flaw.ring, 1);
}

TEST(MeshFlaw, NamesARepetitionWhereverItStartsAndWithMoreVertices) {
  const std::vector<std::pair<double, double>> ring{{0.1, 0.2}, {0.7, 0.3}, {0.3, 0.9}};
  Polygon rotated;
  rotated.add(ring);
  rotated.add({ring[1], ring[2], ring[0]});
  EXPECT_EQ(meshed(rotated.rings()).flaw.message, "ring 1 repeats ring 0");
  Polygon refined;
  refined.add(square(0, 0, 2));
  refined.add({{0, 0}, {1, 0}, {2, 0}, {2, 2}, {0, 2}});
  EXPECT_EQ(nested(refined.rings()).flaw.message, "ring 1 repeats ring 0");
}

TEST(MeshFlaw, NamesRingsThatOverlapWithoutCrossingASide) {
  // They cross in a vertex, and along a stretch of a side.
  Polygon in_a_vertex;
  in_a_vertex.add({{1, 2}, {1, 3}, {3, 0}});
  in_a_vertex.add({{1, 3}, {2, 1}, {1, 0}});
  EXPECT_TRUE(meshed(in_a_vertex.rings()).flaw);
  Polygon along_a_side;
  along_a_side.add({{0, 0}, {2, 0}, {2, 1}, {0, 1}});
  along_a_side.add({{1, 0}, {3, 0}, {3, 1}, {1, 1}});
  EXPECT_TRUE(meshed(along_a_side.rings()).flaw);
  Polygon through_a_corner;
  through_a_corner.add(square(0, 0, 2));
  through_a_corner.add({{1, 1}, {2, 1}, {3, 1}, {3, 3}, {1, 3}, {1, 2}});
  EXPECT_EQ(nested(through_a_corner.rings()).flaw.kind, kzgis::ErrorKind::bad_data);
}

TEST(Nest, TellsRingsThatShareASideApartByAHair) {
  Polygon polygon;
  polygon.add({{0, 0}, {3, 0}, {std::nextafter(3.0, 0.0), 3}, {0, 3}});
  polygon.add(square(0, 0, 3));
  EXPECT_EQ(nested(polygon.rings()).parent, (std::vector<std::int32_t>{1, -1}));
  Polygon wide;
  wide.add({{0, 0}, {1e8, 0}, {1e8, 1e8}, {1e-9, 1e8}});
  wide.add(square(0, 0, 1e8));
  EXPECT_EQ(nested(wide.rings()).parent, (std::vector<std::int32_t>{1, -1}));
  // Slivers: their areas, computed in doubles, have no correct digit.
  Polygon slivers;
  slivers.add(
      {{0, 0}, {0.6719800732139727, 0.5212546317624788}, {0.4274414265671623, 0.331566116744579}});
  slivers.add({{0, 0},
               {0.6719800732139727, 0.5212546317624788},
               {0.1867025001794288, 0.14482504297292412}});
  const Nested nesting = nested(slivers.rings());
  EXPECT_EQ(nesting.flaw.message, "");
  EXPECT_EQ(nesting.parent, (std::vector<std::int32_t>{-1, 0}));
}

TEST(Nest, TakesManyRingsOnOneSide) {
  Polygon polygon;
  constexpr int kCount = 20000;
  for (int k = 1; k <= kCount; ++k) polygon.add({{0, 0}, {1, 0}, {0.5, k}});
  const Nested nesting = nested(polygon.rings());
  ASSERT_EQ(nesting.flaw.message, "");
  EXPECT_EQ(nesting.depth.front(), kCount);
}

TEST(MeshFlaw, NamesAVertexThatIsNoNumber) {
  for (const double odd : {std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::infinity(), 1e300, 1e-300}) {
    Polygon polygon;
    polygon.add(square(0, 0, 2));
    polygon.add({{5, 5}, {6, odd}, {7, 5}});
    const Meshed mesh = meshed(polygon.rings());
    EXPECT_EQ(mesh.flaw.message, "ring 1, vertex 5: a coordinate is no number or out of range");
    EXPECT_EQ(mesh.flaw.vertex, 5);
  }
}

TEST(MeshFlaw, RefusesStartsThatDoNotFit) {
  const std::vector<double> x{0, 1, 1, 5};
  const std::vector<double> y{0, 0, 1, 5};
  for (const std::vector<std::int32_t>& starts :
       {std::vector<std::int32_t>{-1}, {0, 5}, {3, 2}, {0, 2147483647}}) {
    EXPECT_EQ(meshed({x, y, starts}).flaw.kind, kzgis::ErrorKind::bad_argument);
    EXPECT_EQ(nested({x, y, starts}).flaw.kind, kzgis::ErrorKind::bad_argument);
  }
  EXPECT_EQ(meshed({x, std::span(y).first(3), {}}).flaw.kind, kzgis::ErrorKind::bad_argument);
}

TEST(Mesh, LeavesOutRingsWithoutAnInside) {
  const std::vector<double> x{0, 1, 1, 0, 7, 7, 8, 9, 8};
  const std::vector<double> y{0, 0, 1, 1, 7, 7, 8, 9, 8};
  const std::vector<std::int32_t> starts{0, 4, 4, 6, 7};
  const Meshed mesh = meshed({x, y, starts});
  EXPECT_FALSE(mesh.flaw);
  EXPECT_EQ(mesh.triangles.size(), 6U);
  const Nested nesting = nested({x, y, starts});
  EXPECT_EQ(nesting.depth, (std::vector<std::int32_t>{1, 0, 0, 0, 0}));
}

// Every cell of a random mask is a ring of its own, in any order and either way: sides
// cancel and corners touch all over.  Turned and scaled, hardly three corners of a row are
// on one line any more.
TEST(MeshProperty, CellsTileTheirMask) {
  std::mt19937_64 random(kSeed);
  for (int round = 0; round < 1500; ++round) {
    SCOPED_TRACE("seed " + std::to_string(kSeed) + " round " + std::to_string(round));
    const int n = 2 + static_cast<int>(random() % 9);
    const double angle = round % 3 == 0 ? 0.0 : static_cast<double>(random() % 6283) / 1000.0;
    const double scale = std::exp2(static_cast<int>(random() % 30) - 15);
    std::vector<std::vector<std::pair<double, double>>> cells;
    for (int i = 0; i < n; ++i) {
      for (int j = 0; j < n; ++j) {
        if (random() % 2 != 0) continue;
        auto cell = square(i, j, 1);
        for (auto& [x, y] : cell) {
          const double turned_x = (x * std::cos(angle) - y * std::sin(angle)) * scale;
          y = (x * std::sin(angle) + y * std::cos(angle)) * scale;
          x = turned_x;
        }
        if (random() % 2 != 0) std::reverse(cell.begin(), cell.end());
        std::rotate(cell.begin(), cell.begin() + static_cast<long>(random() % 4), cell.end());
        if (random() % 2 != 0) cell.push_back(cell.front());
        cells.push_back(cell);
      }
    }
    std::shuffle(cells.begin(), cells.end(), random);
    Polygon polygon;
    for (const auto& cell : cells) polygon.add(cell);
    const Meshed mesh = meshed(polygon.rings());
    ASSERT_EQ(mesh.flaw.message, "");
    const double expected = 2.0 * static_cast<double>(cells.size()) * scale * scale;
    EXPECT_NEAR(twice_area(polygon, mesh), expected, 1e-9 * expected);
    const Nested nesting = nested(polygon.rings());
    EXPECT_EQ(nesting.depth, std::vector<std::int32_t>(cells.size(), 1));
  }
}

// On a decimal grid hardly a coordinate is what it was meant to be, so that a vertex that
// lies on a side by the decimals is an ulp beside it, on either hand: close to where a face
// touches itself, too.

TEST(Mesh, HandlesAVertexAnUlpFromASideWhereRingsTouch) {
  Polygon arrow;
  arrow.add({{0.3, -0.21},
             {0.9000000000000001, -0.21},
             {0.9000000000000001, 0.3900000000000001},
             {0.3, 0.3900000000000001},
             {0.5, 0.19000000000000003}});
  arrow.add({{0.6000000000000001, -0.009999999999999981},
             {0.4, 0.3900000000000001},
             {0.8, 0.29000000000000004}});
  Polygon minute;
  minute.add(square(0.0, 0.0, 4e-9));
  minute.add({{1e-9, 1e-9}, {4e-9, 0}, {1e-9, 3.0000000000000004e-9}});
  minute.add({{3.0000000000000004e-9, 2e-9},
              {3.0000000000000004e-9, 1e-9},
              {2e-9, 3.0000000000000004e-9}});
  // Twice the areas by the decimals: 0.72 - 0.12 - 0.14, and 32e-18 - 6e-18 - 1e-18.
  const Meshed first = meshed(arrow.rings());
  EXPECT_EQ(first.flaw.message, "");
  EXPECT_NEAR(twice_area(arrow, first), 0.46, 1e-15);
  const Meshed second = meshed(minute.rings());
  EXPECT_EQ(second.flaw.message, "");
  EXPECT_NEAR(twice_area(minute, second), 25e-18, 1e-32);
}

TEST(NestProperty, FindsTheNestingThatWasMade) {
  std::mt19937_64 random(kSeed);
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE("seed " + std::to_string(kSeed) + " round " + std::to_string(round));
    // Squares in squares; every one touches its parent in the lower left corner or not.
    struct Made {
      double x, y, size;
      int parent;
      double free_x;  // where the next child goes
    };
    std::vector<Made> made;
    const int count = 1 + static_cast<int>(random() % 40);
    double outside = 0.0;
    for (int i = 0; i < count; ++i) {
      const int parent = static_cast<int>(random() % static_cast<unsigned>(i + 1)) - 1;
      if (parent < 0) {
        made.push_back({outside, 0.0, 1024.0, -1, 0.0});
        outside += random() % 2 != 0 ? 1024.0 : 1500.0;
        continue;
      }
      Made& around = made[static_cast<std::size_t>(parent)];
      const double size = around.size / 8.0;
      if (size < 1e-3 || around.free_x + size > around.size * 0.99) {
        made.push_back({outside, 0.0, 1024.0, -1, 0.0});
        outside += 1500.0;
        continue;
      }
      const double gap = random() % 2 != 0 ? 0.0 : size / 16.0;
      const Made child{around.x + around.free_x + gap, around.y + gap, size, parent, 0.0};
      around.free_x += size + 2.0 * gap;
      made.push_back(child);
    }
    std::vector<std::size_t> order(made.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::shuffle(order.begin(), order.end(), random);
    std::vector<std::int32_t> place(made.size());
    Polygon polygon;
    for (std::size_t i = 0; i < order.size(); ++i) {
      place[order[i]] = static_cast<std::int32_t>(i);
      auto ring = square(made[order[i]].x, made[order[i]].y, made[order[i]].size);
      if (random() % 2 != 0) std::reverse(ring.begin(), ring.end());
      polygon.add(ring);
    }
    const Nested nesting = nested(polygon.rings());
    ASSERT_EQ(nesting.flaw.message, "");
    for (std::size_t i = 0; i < made.size(); ++i) {
      const auto here = static_cast<std::size_t>(place[i]);
      const int parent = made[i].parent;
      EXPECT_EQ(nesting.parent[here], parent < 0 ? -1 : place[static_cast<std::size_t>(parent)]);
    }
  }
}

TEST(Mesh, OfAHundredThousandRingsInEachOther) {
  Polygon polygon;
  constexpr int kDepth = 100000;
  for (int i = 0; i < kDepth; ++i) polygon.add(square(-i - 1.0, -i - 1.0, 2.0 * i + 2.0));
  const Nested nesting = nested(polygon.rings());
  ASSERT_FALSE(nesting.flaw);
  EXPECT_EQ(nesting.depth.front(), kDepth);
  EXPECT_EQ(nesting.depth.back(), 1);
  const Meshed mesh = meshed(polygon.rings());
  ASSERT_FALSE(mesh.flaw);
  EXPECT_EQ(mesh.triangles.size(), 3U * 8U * (kDepth / 2));
}

}  // namespace
