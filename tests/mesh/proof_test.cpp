// Sides and edges that cover the same points, modulo 2, and such that do not; and meshes in which
// something was broken on purpose.

#include "mesh/proof.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "mesh/face_sweep.h"
#include "mesh/faces.h"

namespace {

using kzgis::mesh::Edge;
using kzgis::mesh::Side;
using kzgis::mesh::Sites;

/// Sites 0 to 4 on the x axis, 5 above site 2.
class Boundary : public testing::Test {
 protected:
  bool same(const std::vector<std::vector<std::uint32_t>>& sides,
            const std::vector<std::vector<std::uint32_t>>& edges) const {
    std::vector<Side> given;
    for (const auto& s : sides) given.push_back({s[0], s[1], 0, 0});
    std::vector<Edge> found;
    for (const auto& e : edges) found.push_back({e[0], e[1], true});
    return kzgis::mesh::same_modulo_2(sites_, given, found);
  }

 private:
  const std::vector<double> x_{0, 1, 2, 3, 4, 2.5};
  const std::vector<double> y_{0, 0, 0, 0, 0, 1};
  const std::vector<std::int32_t> starts_{0};
  // In order of x: 0, 1, 2, the high one as 3, and then 4 and 5.
  const Sites sites_{kzgis::Rings{x_, y_, starts_}};
};

TEST_F(Boundary, IsTheSameUncutOrCut) {
  EXPECT_TRUE(same({}, {}));
  EXPECT_TRUE(same({{0, 5}}, {{0, 5}}));
  EXPECT_TRUE(same({{0, 5}}, {{0, 1}, {1, 2}, {2, 5}}));
  EXPECT_TRUE(same({{0, 3}, {0, 4}}, {{0, 4}, {0, 3}}));
}

TEST_F(Boundary, IsNotTheSameWithAPieceTooFewOrTooMany) {
  EXPECT_FALSE(same({{0, 5}}, {}));
  EXPECT_FALSE(same({}, {{0, 5}}));
  EXPECT_FALSE(same({{0, 5}}, {{0, 1}, {2, 5}}));
  EXPECT_FALSE(same({{0, 5}}, {{0, 5}, {1, 2}}));
  EXPECT_FALSE(same({{0, 5}}, {{0, 5}, {0, 5}}));
  EXPECT_FALSE(same({{0, 1}}, {{1, 2}}));
}

TEST_F(Boundary, CancelsWhatCoincides) {
  EXPECT_TRUE(same({{0, 2}, {0, 2}}, {}));
  EXPECT_TRUE(same({{0, 4}, {1, 5}}, {{0, 1}, {4, 5}}));
  EXPECT_TRUE(same({{0, 4}, {1, 5}, {1, 4}}, {{0, 5}}));
}

TEST_F(Boundary, TellsLinesApart) {
  // Every site is an end of an even number, but not on every line.
  EXPECT_FALSE(same({{0, 2}, {2, 3}}, {{0, 3}}));
  EXPECT_FALSE(same({{0, 3}, {3, 5}}, {{0, 5}}));
}

TEST(BoundaryProperty, IsThatOfUnitPieces) {
  constexpr std::uint64_t kSeed = 2;
  std::mt19937_64 random(kSeed);
  constexpr std::size_t kPlaces = 8;
  std::vector<double> x, y;
  for (std::size_t i = 0; i < kPlaces; ++i) {
    x.push_back(static_cast<double>(i) * 3.0);
    y.push_back(static_cast<double>(i) * 7.0);  // on one slanted line
  }
  const std::vector<std::int32_t> starts{0};
  const Sites sites(kzgis::Rings{x, y, starts});
  int same = 0;
  for (int round = 0; round < 20000; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " round " << round);
    std::uint32_t odd = 0;  // a bit for each piece from a place to the next
    std::vector<Side> sides;
    std::vector<Edge> edges;
    for (auto n = random() % 5; n > 0; --n) {
      const auto left = static_cast<std::uint32_t>(random() % (kPlaces - 1));
      const auto right = static_cast<std::uint32_t>(left + 1 + random() % (kPlaces - 1 - left));
      odd ^= (1U << right) - (1U << left);
      if (random() % 2 == 0) {
        sides.push_back({left, right, 0, 0});
      } else {
        edges.push_back({left, right, false});
      }
    }
    ASSERT_EQ(kzgis::mesh::same_modulo_2(sites, sides, edges), odd == 0);
    same += odd == 0;
  }
  EXPECT_GT(same, 2000);
}

/// Squares in a chain that touch in corners, the last with a hole: as many faces as squares.
class Proof : public testing::Test {
 protected:
  static constexpr int kSquares = 4;

  Proof() {
    for (int i = 0; i < kSquares; ++i) square(9 * i, 9);
    square(9 * (kSquares - 1) + 3, 3);
    arrangement_.emplace(kzgis::mesh::arrange({x_, y_, starts_}).value());
    faces_ = kzgis::mesh::take_faces(*arrangement_);
  }

  std::vector<std::uint32_t> triangles_of(const std::vector<kzgis::mesh::Face>& faces) const {
    std::vector<std::uint32_t> triangles;
    for (const auto& face : faces) {
      kzgis::mesh::sweep_face(arrangement_->sites, face, triangles);
    }
    return triangles;
  }

  bool proved(const std::vector<std::uint32_t>& triangles) const {
    return kzgis::exact::tiles(arrangement_->sites.points(), kzgis::mesh::bounds_of(*arrangement_),
                               triangles, kzgis::exact::Flat::refused) &&
           kzgis::mesh::same_modulo_2(arrangement_->sites, arrangement_->sides,
                                      arrangement_->edges);
  }

  std::optional<kzgis::mesh::Arrangement> arrangement_;
  std::vector<kzgis::mesh::Face> faces_;

 private:
  void square(double corner, double size) {
    starts_.push_back(static_cast<std::int32_t>(x_.size()));
    x_.insert(x_.end(), {corner, corner + size, corner + size, corner});
    y_.insert(y_.end(), {corner, corner, corner + size, corner + size});
  }
  std::vector<double> x_, y_;
  std::vector<std::int32_t> starts_;
};

TEST_F(Proof, HoldsOfAllFacesTogether) {
  ASSERT_EQ(faces_.size(), static_cast<std::size_t>(kSquares));
  EXPECT_TRUE(proved(triangles_of(faces_)));
}

TEST_F(Proof, DoesNotHoldWithoutOneOfTheFaces) {
  for (std::size_t missing = 0; missing < faces_.size(); ++missing) {
    std::vector<kzgis::mesh::Face> rest = faces_;
    rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(missing));
    EXPECT_FALSE(proved(triangles_of(rest))) << missing;
  }
}

// A sweep that lost a square altogether, its edges and its triangles: the sides still tell.
TEST_F(Proof, DoesNotHoldWithoutAFaceAndItsEdges) {
  std::vector<kzgis::mesh::Face> rest = faces_;
  rest.erase(rest.begin());
  const auto& sites = arrangement_->sites;
  std::erase_if(arrangement_->edges, [&sites](const Edge& e) {
    return sites[e.right].x <= 9.0 && sites[e.right].y <= 9.0;
  });
  ASSERT_EQ(arrangement_->edges.size(), 4U * kSquares);  // four are gone
  EXPECT_FALSE(proved(triangles_of(rest)));
}

TEST_F(Proof, DoesNotHoldWithAHoleForgotten) {
  std::vector<kzgis::mesh::Face> filled = faces_;
  filled.back().resize(1);
  EXPECT_FALSE(proved(triangles_of(filled)));
}

TEST_F(Proof, DoesNotHoldWithATriangleTurnedOrLeftOut) {
  std::vector<std::uint32_t> triangles = triangles_of(faces_);
  std::swap(triangles[0], triangles[1]);
  EXPECT_FALSE(proved(triangles));
  std::swap(triangles[0], triangles[1]);
  triangles.resize(triangles.size() - 3);
  EXPECT_FALSE(proved(triangles));
}

}  // namespace
