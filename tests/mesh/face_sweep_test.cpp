// Faces of every kind, each cut and proved to be tiled by triangles that are not flat.

#include "mesh/face_sweep.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "exact/tiling.h"
#include "mesh/arrangement.h"
#include "mesh/faces.h"
#include "triangulate/polygons.h"

namespace {

using kzgis::mesh::Contour;
using kzgis::mesh::Face;

/// The faces of rings, each swept and proved to be tiled by no flat triangle; their number.
std::size_t sweep_all(const std::vector<IntRing>& rings) {
  std::vector<double> x;
  std::vector<double> y;
  std::vector<std::int32_t> starts;
  for (const IntRing& ring : rings) {
    starts.push_back(static_cast<std::int32_t>(x.size()));
    for (const IntPoint& p : ring) {
      x.push_back(static_cast<double>(p.x));
      y.push_back(static_cast<double>(p.y));
    }
  }
  const auto arrangement = kzgis::mesh::arrange({x, y, starts});
  EXPECT_TRUE(arrangement.has_value());
  if (!arrangement) return 0;
  const std::vector<Face> faces = kzgis::mesh::take_faces(*arrangement);
  for (const Face& face : faces) {
    std::vector<kzgis::exact::Side> sides;
    for (const Contour& contour : face) {
      for (std::size_t i = 0; i < contour.size(); ++i) {
        sides.push_back({contour[i], contour[(i + 1) % contour.size()]});
      }
    }
    std::vector<std::uint32_t> triangles;
    kzgis::mesh::sweep_face(arrangement->sites, face, triangles);
    // As many sides as corners.
    EXPECT_EQ(triangles.size(), 3 * (sides.size() + 2 * (face.size() - 1) - 2));
    EXPECT_TRUE(kzgis::exact::tiles(arrangement->sites.points(), sides, triangles,
                                    kzgis::exact::Flat::refused));
  }
  return faces.size();
}

TEST(FaceSweep, OfATriangleAndASquare) {
  EXPECT_EQ(sweep_all({{{0, 0}, {4, 1}, {1, 3}}}), 1U);
  EXPECT_EQ(sweep_all({{{0, 0}, {4, 0}, {4, 4}, {0, 4}}}), 1U);
}

TEST(FaceSweep, OpensSplitsMergesAndCloses) {
  EXPECT_EQ(sweep_all({{{0, 0}, {9, 0}, {3, 2}, {8, 5}, {0, 4}}}), 1U);  // opens twice
  EXPECT_EQ(sweep_all({{{0, 0}, {9, 0}, {9, 6}, {0, 6}, {5, 3}}}), 1U);  // merges
  EXPECT_EQ(sweep_all({{{0, 0}, {9, 0}, {4, 3}, {9, 6}, {0, 6}}}), 1U);  // splits
  EXPECT_EQ(sweep_all({{{0, 0}, {9, 0}, {9, 9}, {0, 9}}, {{3, 3}, {6, 4}, {4, 6}}}), 1U);
}

TEST(FaceSweep, KeepsVerticesOfOneLineApart) {
  EXPECT_EQ(sweep_all({{{0, 0},
                        {1, 0},
                        {2, 0},
                        {3, 0},
                        {3, 1},
                        {3, 2},
                        {3, 3},
                        {2, 3},
                        {1, 3},
                        {0, 3},
                        {0, 2},
                        {0, 1}}}),
            1U);
  EXPECT_EQ(sweep_all({{{0, 0}, {6, 6}, {0, 6}, {0, 3}}, {{1, 2}, {1, 5}, {2, 4}, {1, 3}}}), 1U);
}

TEST(FaceSweep, TouchesItselfInAHole) {
  const IntRing outer{{0, 0}, {9, 0}, {9, 9}, {0, 9}};
  EXPECT_EQ(sweep_all({outer, {{0, 0}, {4, 1}, {1, 4}}}), 1U);  // in a corner
  EXPECT_EQ(sweep_all({outer, {{3, 0}, {5, 4}, {2, 4}}}), 1U);  // in a side
  EXPECT_EQ(sweep_all({outer, {{4, 4}, {2, 1}, {6, 1}}, {{4, 4}, {2, 7}, {6, 7}}}), 1U);
  EXPECT_EQ(sweep_all({outer, {{4, 4}, {1, 2}, {1, 6}}, {{4, 4}, {7, 2}, {7, 6}}}), 1U);
  // Four blades around one point.
  EXPECT_EQ(sweep_all({outer,
                       {{4, 4}, {1, 3}, {1, 5}},
                       {{4, 4}, {7, 3}, {7, 5}},
                       {{4, 4}, {3, 1}, {5, 1}},
                       {{4, 4}, {3, 7}, {5, 7}}}),
            1U);
  // A hole from side to side leaves two faces.
  EXPECT_EQ(sweep_all({outer, {{0, 4}, {4, 3}, {9, 4}, {4, 5}}}), 2U);
}

TEST(FaceSweep, TilesEveryFamily) {
  constexpr std::uint64_t kSeed = 1983;
  std::mt19937_64 random(kSeed);
  for (int run = 0; run < 3000; ++run) {
    const Family& family = families()[static_cast<std::size_t>(run) % families().size()];
    IntPolygon polygon = family.make(3 + static_cast<int>(random() % 60), random);
    if (random() % 2 == 0) {
      const auto a = static_cast<std::int64_t>(1 + random() % 9);
      const auto b = static_cast<std::int64_t>(random() % 9);
      polygon = transformed(std::move(polygon), a, -b, b, a + 1);
    }
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " run " << run << ", " << polygon.label);
    ASSERT_EQ(sweep_all(polygon.rings), 1U);
    ASSERT_FALSE(HasFailure());
  }
}

TEST(FaceSweep, TilesRandomCellsThatMeetInCorners) {
  constexpr std::uint64_t kSeed = 1984;
  std::mt19937_64 random(kSeed);
  for (int run = 0; run < 1500; ++run) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " run " << run);
    // Some of the cells of a grid as holes of one square: the rest hangs together in sides
    // or in corners.  Sheared, so that hardly a side is vertical.
    const auto n = static_cast<std::int64_t>(2 + random() % 9);
    IntPolygon polygon;
    polygon.rings.push_back({{-1, -1}, {n + 1, -1}, {n + 1, n + 1}, {-1, n + 1}});
    for (std::int64_t i = 0; i < n * n; ++i) {
      if (random() % 2 == 0) continue;
      const std::int64_t x = i % n;
      const std::int64_t y = i / n;
      polygon.rings.push_back({{x, y}, {x, y + 1}, {x + 1, y + 1}, {x + 1, y}});
    }
    if (run % 3 != 0) polygon = transformed(std::move(polygon), 7, run % 3, -run % 5, 9);
    EXPECT_GE(sweep_all(polygon.rings), 1U);
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
