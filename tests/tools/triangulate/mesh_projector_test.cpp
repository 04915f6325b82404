#include "tools/triangulate/mesh_projector.h"

#include <gtest/gtest.h>

#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "tools/mesh_files/mesh_part.h"
#include "tools/support/projection_options.h"

namespace kzgis::tools {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
constexpr double kNear = 1e-14;

ProjectionOptions named(const std::string& name, double base_lat = 0.0, double base_lon = 0.0) {
  ProjectionOptions options;
  options.type = find_projection(name).value();
  options.base = NumberPair{base_lat, base_lon};
  options.parallels = NumberPair{20.0, 60.0};
  options.radius = 1.0;
  return options;
}

struct Projected {
  std::string reason;
  std::vector<WorldPoint> points;
  Mesh mesh;

  double plane_area() const { return area(points, mesh.triangles); }
};

Projected project(const ProjectionOptions& options, const std::vector<double>& lon,
                  const std::vector<double>& lat, const std::vector<std::int32_t>& starts = {0},
                  const MeshOptions& mesh_options = {}) {
  const Rings rings{lon, lat, starts};
  Projected result;
  result.mesh = triangulate(rings, mesh_options).value();
  result.reason = MeshProjector(make_chart(options.type, chart_parameters(options)))
                      .project(rings, mesh_options, result.mesh, result.points)
                      .message;
  return result;
}

/// A square of 20 degrees about a point of the equator.
Projected square_at(const ProjectionOptions& options, double lon) {
  return project(options, {lon - 10, lon + 10, lon + 10, lon - 10}, {-10, -10, 10, 10});
}

TEST(MeshProjector, KeepsAShapeOverTheBaseMeridianWhole) {
  const Projected square = square_at(named("cartesian"), 0.0);
  ASSERT_EQ(square.reason, "");
  EXPECT_NEAR(square.points[0].x, -10 * kDegree, kNear);
  EXPECT_NEAR(square.points[1].x, 10 * kDegree, kNear);
  EXPECT_NEAR(square.points[2].y, 10 * kDegree, kNear);
  EXPECT_NEAR(square.plane_area(), 400 * kDegree * kDegree, kNear);
}

TEST(MeshProjector, CountsCartesianCoordinatesFromTheBasePoint) {
  const Projected square = square_at(named("cartesian", 30.0, 100.0), 110.0);
  ASSERT_EQ(square.reason, "");
  EXPECT_NEAR(square.points[0].x, 0.0, kNear);
  EXPECT_NEAR(square.points[0].y, -40 * kDegree, kNear);
}

TEST(MeshProjector, ShiftsRingsByWholeTurnsTowardsTheBase) {
  for (const double lon : {-175.0, 185.0, 545.0}) {
    const Projected square = square_at(named("cartesian", 0.0, 180.0), lon);
    ASSERT_EQ(square.reason, "") << lon;
    EXPECT_NEAR(square.points[0].x, -5 * kDegree, kNear) << lon;
  }
}

TEST(MeshProjector, ShiftsAHoleWithItsRing) {
  // From 190 to 350 east: a whole turn too far, hole and all.
  const Projected ring = project(named("cartesian"), {190, 350, 350, 190, 195, 200, 200, 195},
                                 {-20, -20, 20, 20, -5, -5, 5, 5}, {0, 4});
  ASSERT_EQ(ring.reason, "");
  EXPECT_NEAR(ring.points[0].x, -170 * kDegree, kNear);
  EXPECT_NEAR(ring.points[4].x, -165 * kDegree, kNear);
  EXPECT_NEAR(ring.plane_area(), (160 * 40 - 50) * kDegree * kDegree, kNear);
}

TEST(MeshProjector, JoinsWhatTheFileCutAtTheAntimeridian) {
  // The two parts overlap by a rounding error; the western one has a hole.
  const std::vector<double> lon{
      170, 180.00000000000014, 180.00000000000014, 170, -180, -170, -170, -180, -178, -172, -175};
  const std::vector<double> lat{-10, -10, 10, 10, -5, -5, 5, 5, -2, -2, 2};
  const std::vector<std::int32_t> starts{0, 4, 8};
  const Projected whole = project(named("cartesian", 0.0, 180.0), lon, lat, starts);
  ASSERT_EQ(whole.reason, "");
  EXPECT_NEAR(whole.plane_area(), (200 + 100 - 12) * kDegree * kDegree, kNear);
  EXPECT_NEAR(whole.points[5].x, 10 * kDegree, kNear);
  EXPECT_EQ(project(named("postel", 40.0, 150.0), lon, lat, starts).reason, "");
}

TEST(MeshProjector, KeepsTheMeridianOppositeToTheBaseOnTheSideOfItsRing) {
  // Files miss the antimeridian by a little, on either side of it.
  for (const double miss : {-2e-7, 0.0, 2e-7}) {
    const Projected east =
        project(named("cartesian"), {170, 180 + miss, 180 + miss, 170}, {-5, -5, 5, 5});
    ASSERT_EQ(east.reason, "") << miss;
    EXPECT_NEAR(east.points[1].x, std::numbers::pi, 1e-8) << miss;
    const Projected west =
        project(named("cartesian"), {-180 + miss, -170, -170, -180 + miss}, {-5, -5, 5, 5});
    ASSERT_EQ(west.reason, "") << miss;
    EXPECT_NEAR(west.points[0].x, -std::numbers::pi, 1e-8) << miss;
  }
}

TEST(MeshProjector, RefusesAShapeOverTheOppositeMeridian) {
  for (const char* const name : {"cartesian", "mercator", "lambert cylindrical", "albers",
                                 "lambert conic conformal", "sanson-flamsteed", "bonne"}) {
    EXPECT_EQ(square_at(named(name, 40.0), 175.0).reason,
              "it lies across the meridian opposite to --base, where the projection is torn")
        << name;
    EXPECT_EQ(square_at(named(name, 40.0), 170.0).reason, "") << name;
  }
}

TEST(MeshProjector, TilesTheProjectedPolygonInEveryProjection) {
  // Counter-clockwise triangles alone have a positive area each; their sum is the ring's.
  for (const char* const name :
       {"cartesian", "mercator", "lambert cylindrical", "gnomonic", "stereographic", "orthographic",
        "postel", "lambert azimuthal", "lambert conic conformal", "albers", "cassini-soldner",
        "bonne", "werner", "sanson-flamsteed"}) {
    const Projected square = square_at(named(name, 40.0, 350.0), 0.0);
    ASSERT_EQ(square.reason, "") << name;
    ASSERT_EQ(square.mesh.triangles.size(), 6U) << name;
    double ring = 0.0;
    for (std::size_t i = 0; i < 4; ++i) {
      const WorldPoint& a = square.points[i];
      const WorldPoint& b = square.points[(i + 1) % 4];
      ring += 0.5 * (a.x * b.y - b.x * a.y);
    }
    EXPECT_GT(ring, 0.05) << name;
    EXPECT_NEAR(square.plane_area(), ring, 1e-12) << name;
  }
}

TEST(MeshProjector, GivesTheGlobeInSpace) {
  const Projected octant = project(named("globe", 0.0, 77.0), {0, 90, 0}, {0, 0, 90});
  ASSERT_EQ(octant.reason, "");
  const double expected[3][3]{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(octant.points[i].x, expected[i][0], kNear);
    EXPECT_NEAR(octant.points[i].y, expected[i][1], kNear);
    EXPECT_NEAR(octant.points[i].z, expected[i][2], kNear);
  }
  EXPECT_EQ(octant.mesh.triangles.size(), 3U);
}

TEST(MeshProjector, NamesThePlaceThatHasNone) {
  EXPECT_EQ(project(named("mercator"), {0, 10, 0}, {0, 0, -90}).reason,
            "the projection has no place for 0, -90");
  // Beyond the horizon these two would be mirrored.
  EXPECT_EQ(project(named("gnomonic"), {0, 95.5, 0}, {0, 0, 10}).reason,
            "the projection has no place for 95.5, 0");
  EXPECT_EQ(project(named("orthographic"), {0, 95.5, 0}, {0, 0, 10}).reason,
            "the projection has no place for 95.5, 0");
}

TEST(MeshProjector, RefusesARingAboutThePointOppositeToTheBase) {
  EXPECT_EQ(project(named("postel", 90.0), {-180, 180, 180, 60, -60, -180},
                    {-89, -89, -60, -60, -60, -60})
                .reason,
            "ring 0 is turned inside out by the projection");
  EXPECT_EQ(project(named("postel", -90.0), {-180, 180, 180, 60, -60, -180},
                    {-90, -90, -60, -60, -60, -60})
                .reason,
            "");
}

TEST(MeshProjector, RefusesRingsThatCrossOnceProjected) {
  // A strip between the parallels 50 and 60 and an island north of it.  Drawn straight, the
  // strip's long sides pass 70 and 75 north in their middle, through the island.
  EXPECT_EQ(project(named("postel", 90.0), {-60, 60, 60, -60, -2, 2, 0},
                    {50, 50, 60, 60, 60.5, 60.5, 80}, {0, 4})
                .reason,
            "once projected, ring 1 crosses itself or another");
}

TEST(MeshProjector, RefusesWhatAreNoDegrees) {
  EXPECT_EQ(project(named("mercator"), {0, 721, 0}, {0, 0, 10}).reason,
            "coordinates are not degrees: 721, 0");
  EXPECT_EQ(project(named("globe"), {0, 10, 0}, {0, 0, 90.5}).reason,
            "coordinates are not degrees: 0, 90.5");
}

}  // namespace
}  // namespace kzgis::tools
