#include "tools/triangulate/record_mesher.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tools/support/projection_options.h"

namespace kzgis::tools {
namespace {

MeshProjector projector(const std::string& name, double radius = 1.0) {
  ProjectionOptions options;
  options.type = find_projection(name).value();
  options.radius = radius;
  return MeshProjector(make_chart(options.type, chart_parameters(options)));
}

MeshOptions repairing() {
  MeshOptions options;
  options.split_crossings = true;
  return options;
}

/// Two triangles that meet where their sides cross, in (10, 10).
struct BowTie {
  std::vector<double> x{0, 20, 20, 0}, y{0, 20, 0, 20};
  std::vector<std::int32_t> starts{0};
  Rings rings() const { return {x, y, starts}; }
};

std::string refusal(const Rings& rings, const MeshOptions& options = {},
                    const std::optional<MeshProjector>& to = std::nullopt) {
  const auto mesh = RecordMesher(options, to).mesh(rings);
  return mesh ? std::string() : mesh.error().message;
}

TEST(RecordMesher, SaysWhatMendsACrossing) {
  const BowTie tie;
  EXPECT_EQ(refusal(tie.rings()),
            "ring 0 crosses itself (sides from vertices 0 and 2); try --repair");
  EXPECT_EQ(refusal(tie.rings(), repairing()), "");
}

TEST(RecordMesher, SaysWhatMendsRingsThatRepeatEachOther) {
  const std::vector<double> x{0, 4, 0, 0, 4, 0}, y{0, 0, 4, 0, 0, 4};
  const std::vector<std::int32_t> starts{0, 3};
  const std::string said = refusal({x, y, starts});
  EXPECT_TRUE(said.ends_with("; try --repair")) << said;
  EXPECT_EQ(refusal({x, y, starts}, repairing()), "");
}

TEST(RecordMesher, DoesNotPromiseToMendNumbers) {
  for (const double wrong : {1e300, 1e-300, std::numeric_limits<double>::quiet_NaN()}) {
    const std::vector<double> x{0, 4, 0}, y{0, 0, wrong};
    const std::vector<std::int32_t> starts{0};
    const std::string said = refusal({x, y, starts});
    EXPECT_TRUE(said.ends_with("is no number or out of range")) << said;
  }
}

TEST(RecordMesher, SaysWhatMendsACrossingOnTheMap) {
  // The straight side of the strip passes through the island north of it.
  const std::vector<double> x{-60, 60, 60, -60, -2, 2, 0}, y{50, 50, 60, 60, 60.5, 60.5, 80};
  const std::vector<std::int32_t> starts{0, 4};
  ProjectionOptions postel;
  postel.type = find_projection("postel").value();
  postel.base = NumberPair{90.0, 0.0};
  const MeshProjector to(make_chart(postel.type, chart_parameters(postel)));
  EXPECT_EQ(refusal({x, y, starts}, {}, to),
            "once projected, ring 1 crosses itself or another; try --repair");
  const auto mesh = RecordMesher(repairing(), to).mesh({x, y, starts});
  ASSERT_TRUE(mesh) << mesh.error().message;
  EXPECT_GT(mesh->crossings, 0U);
  EXPECT_EQ(mesh->points.size(), 7 + mesh->added);
}

TEST(RecordMesher, PutsACrossingIntoThePlane) {
  const auto mesh = RecordMesher(repairing(), std::nullopt).mesh(BowTie().rings());
  ASSERT_TRUE(mesh);
  EXPECT_EQ(mesh->crossings, 1U);
  EXPECT_EQ(mesh->added, 1U);
  EXPECT_EQ(mesh->area, 200.0);
  ASSERT_EQ(mesh->points.size(), 5U);
  EXPECT_EQ(mesh->points[4].x, 10.0);
  EXPECT_EQ(mesh->points[4].y, 10.0);
}

TEST(RecordMesher, PutsACrossingOntoTheGlobe) {
  const auto mesh = RecordMesher(repairing(), projector("globe", 2.0)).mesh(BowTie().rings());
  ASSERT_TRUE(mesh);
  ASSERT_EQ(mesh->points.size(), 5U);
  // 2 cos 10 cos 10, 2 cos 10 sin 10, 2 sin 10, by a calculator.
  EXPECT_NEAR(mesh->points[4].x, 1.9396926207859084, 1e-14);
  EXPECT_NEAR(mesh->points[4].y, 0.3420201433256687, 1e-14);
  EXPECT_NEAR(mesh->points[4].z, 0.3472963553338607, 1e-14);
}

// On a Mercator map the diagonals cross where straight lines do, which is not 10 north.
TEST(RecordMesher, PutsACrossingWhereItIsOnTheMap) {
  const auto mesh = RecordMesher(repairing(), projector("mercator")).mesh(BowTie().rings());
  ASSERT_TRUE(mesh);
  ASSERT_EQ(mesh->points.size(), 5U);
  EXPECT_NEAR(mesh->points[4].x, 0.17453292519943295, 1e-14);
  EXPECT_NEAR(mesh->points[4].y, 0.5 * mesh->points[1].y, 1e-14);
  EXPECT_EQ(mesh->area, 200.0);
}

TEST(RecordMesher, NumbersNewVerticesOneBehindTheOther) {
  const std::vector<double> x{160,  180,  180,  160,  160,  180,  180,  160,
                              -180, -160, -160, -180, -180, -160, -160, -180};
  const std::vector<double> y{0, 20, 0, 20, 30, 50, 30, 50, 0, 20, 0, 20, 30, 50, 30, 50};
  const std::vector<std::int32_t> starts{0, 4, 8, 12};
  ProjectionOptions cartesian;
  cartesian.type = find_projection("cartesian").value();
  cartesian.base = NumberPair{0.0, 180.0};
  cartesian.radius = 180.0 / std::acos(-1.0);  // so that it gives degrees
  const MeshProjector to(make_chart(cartesian.type, chart_parameters(cartesian)));
  const auto mesh = RecordMesher(repairing(), to).mesh({x, y, starts});
  ASSERT_TRUE(mesh) << mesh.error().message;
  EXPECT_EQ(mesh->added, 4U);
  ASSERT_EQ(mesh->points.size(), 20U);
  double area = 0.0;
  for (std::size_t i = 0; i < mesh->triangles.size(); i += 3) {
    const WorldPoint& a = mesh->points[mesh->triangles[i]];
    const WorldPoint& b = mesh->points[mesh->triangles[i + 1]];
    const WorldPoint& c = mesh->points[mesh->triangles[i + 2]];
    const double twice = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    EXPECT_GT(twice, 0.0);
    area += 0.5 * twice;
  }
  EXPECT_NEAR(area, 4 * 200.0, 1e-9);
}

}  // namespace
}  // namespace kzgis::tools
