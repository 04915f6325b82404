#include "tools/triangulate/record_mesher.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tools/support/projection_options.h"

namespace kzgis::tools {
namespace {

Target target(const std::string& name, double radius = 1.0, NumberPair base = {0.0, 0.0},
              double tolerance = 1e-4) {
  ProjectionOptions options;
  options.type = find_projection(name).value();
  options.base = base;
  options.radius = radius;
  return {make_chart(options.type, chart_parameters(options)), tolerance};
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
                    const std::optional<Target>& to = std::nullopt) {
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

// On a Mercator map the sides, straight in degrees, are curves that cross where they do in degrees:
// at 10 east and 10 north, whose y is atanh(sin 10).
TEST(RecordMesher, PutsACrossingWhereItIsOnTheMap) {
  const auto mesh = RecordMesher({}, target("mercator")).mesh(BowTie().rings());
  ASSERT_TRUE(mesh) << mesh.error().message;
  EXPECT_EQ(mesh->added, 0U);
  double nearest = 1.0;
  for (const WorldPoint& p : mesh->points) {
    nearest = std::min(nearest, std::hypot(p.x - 0.17453292519943295, p.y - 0.17542582965181806));
  }
  EXPECT_LT(nearest, 1e-4);
}

/// A square of 20 degrees about a point of the equator.
struct Square {
  explicit Square(double lon) : x{lon - 10, lon + 10, lon + 10, lon - 10} {}
  std::vector<double> x, y{-10, -10, 10, 10};
  std::vector<std::int32_t> starts{0};
  Rings rings() const { return {x, y, starts}; }
};

// 2 sin(10) 20 degrees, wherever it lies and however many whole turns away.
TEST(RecordMesher, CutsAtTheSeam) {
  for (const double lon : {0.0, 175.0, -175.0, 185.0, 545.0}) {
    const auto mesh = RecordMesher({}, target("lambert cylindrical")).mesh(Square(lon).rings());
    ASSERT_TRUE(mesh) << mesh.error().message;
    EXPECT_NEAR(mesh->area, 0.12122929761504, 1e-12) << lon;
    const auto [west, east] =
        std::minmax_element(mesh->points.begin(), mesh->points.end(),
                            [](const WorldPoint& a, const WorldPoint& b) { return a.x < b.x; });
    EXPECT_NEAR(west->x, lon == 0.0 ? -0.17453292519943295 : -3.141592653589793, 1e-14) << lon;
    EXPECT_NEAR(east->x, lon == 0.0 ? 0.17453292519943295 : 3.141592653589793, 1e-14) << lon;
  }
}

TEST(RecordMesher, LeavesOutWhatLiesBeyondTheHorizon) {
  const auto behind = RecordMesher({}, target("orthographic")).mesh(Square(180.0).rings());
  ASSERT_TRUE(behind) << behind.error().message;
  EXPECT_TRUE(behind->triangles.empty());
  // Of the square about the limb, half: the integral of cos(lat)^2 over latitudes, times 1 -
  // cos 10.
  const auto half =
      RecordMesher({}, target("orthographic", 1.0, {0.0, 0.0}, 1e-7)).mesh(Square(90.0).rings());
  ASSERT_TRUE(half) << half.error().message;
  EXPECT_NEAR(half->area, 0.00524963, 1e-6);
}

TEST(RecordMesher, MeasuresTheLongestSideOnTheMap) {
  MeshOptions options;
  options.longest_side = 0.05;
  const auto mesh = RecordMesher(options, target("albers")).mesh(Square(0.0).rings());
  ASSERT_TRUE(mesh) << mesh.error().message;
  EXPECT_GT(mesh->added, 0U);
  for (std::size_t i = 0; i < mesh->triangles.size(); ++i) {
    const WorldPoint& a = mesh->points[mesh->triangles[i]];
    const WorldPoint& b = mesh->points[mesh->triangles[i % 3 == 2 ? i - 2 : i + 1]];
    EXPECT_LE(std::hypot(a.x - b.x, a.y - b.y), 0.05);
  }
}

TEST(RecordMesher, RefusesWhatAreNoDegrees) {
  const std::vector<double> x{0, 721, 0}, y{0, 0, 10}, z{0, 0, 90.5};
  const std::vector<std::int32_t> starts{0};
  EXPECT_EQ(refusal({x, y, starts}, {}, target("mercator")), "coordinates are not degrees: 721, 0");
  EXPECT_EQ(refusal({y, z, starts}, {}, target("globe")), "coordinates are not degrees: 10, 90.5");
}

}  // namespace
}  // namespace kzgis::tools
