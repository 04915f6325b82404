// What the countries do not have; globe_test.py shows the rest.

#include "tools/triangulate/globe_mesher.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "tools/mesh_files/float_point.h"
#include "tools/support/projection_options.h"

namespace kzgis::tools {
namespace {

constexpr double kPi = std::numbers::pi;

struct Polygon {
  std::vector<double> lon, lat;
  std::vector<std::int32_t> starts{0};
};

Result<RecordMesh> mesh(const Polygon& polygon, MeshOptions options = {}, double radius = 1.0) {
  options.delaunay = true;
  ChartParameters parameters;
  parameters.radius = radius;
  return mesh_on_globe({polygon.lon, polygon.lat, polygon.starts}, options,
                       make_chart(GlobeProj, parameters));
}

/// The sum of the triangles of great arcs, each seen from outside.
double sphere_area(const RecordMesh& mesh) {
  double sum = 0.0;
  const auto dot = [](const WorldPoint& p, const WorldPoint& q) {
    return p.x * q.x + p.y * q.y + p.z * q.z;
  };
  for (std::size_t i = 0; i < mesh.triangles.size(); i += 3) {
    const WorldPoint& a = mesh.points[mesh.triangles[i]];
    const WorldPoint& b = mesh.points[mesh.triangles[i + 1]];
    const WorldPoint& c = mesh.points[mesh.triangles[i + 2]];
    const double excess = 2.0 * std::atan2(dot(a, cross_product({0, 0, 0}, b, c)),
                                           1.0 + dot(a, b) + dot(b, c) + dot(c, a));
    EXPECT_GT(excess, 0.0);
    sum += excess;
  }
  return sum;
}

TEST(GlobeMesher, AnOctantIsAnEighth) {
  const auto octant = mesh({{0, 90, 90, 0}, {0, 0, 90, 90}});
  ASSERT_TRUE(octant) << octant.error().message;
  EXPECT_NEAR(sphere_area(*octant), kPi / 2, 1e-13);
}

TEST(GlobeMesher, SplitsACrossingWhereItIsInDegrees) {
  const auto tie = mesh({{0, 20, 20, 0}, {0, 20, 0, 20}}, {}, 2.0);
  ASSERT_TRUE(tie) << tie.error().message;
  double nearest = 1.0;
  for (const WorldPoint& p : tie->points) {
    // 2 cos 10 cos 10, 2 cos 10 sin 10, 2 sin 10, by a calculator.
    nearest = std::min(nearest, std::hypot(p.x - 1.9396926207859084, p.y - 0.3420201433256687,
                                           p.z - 0.3472963553338607));
  }
  EXPECT_LT(nearest, 1e-14);
}

// A ring at 30 degrees from the pole, by way of it, or with a side of 360 degrees, or neither.
TEST(GlobeMesher, APoleIsAPointLikeAnyOther) {
  const std::vector<Polygon> caps{
      {{-180, -90, 0, 90, 180, 180, -180}, {60, 60, 60, 60, 60, 90, 90}},
      {{-180, -90, 0, 90, 180}, {60, 60, 60, 60, 60}},
      {{-90, 0, 90, 180}, {60, 60, 60, 60}}};
  for (const Polygon& cap : caps) {
    const auto whole = mesh(cap);
    ASSERT_TRUE(whole) << whole.error().message;
    EXPECT_NEAR(sphere_area(*whole), 2 * kPi * (1 - std::sin(kPi / 3)), 1e-4);
  }
}

/// From 70 south to the north pole, with a hole of 10 degrees there if asked.
Polygon almost_all(bool hole) {
  Polygon polygon{{-180, -60, 60, 180, 180, -180}, {-70, -70, -70, -70, 90, 90}};
  if (hole) {
    polygon.starts.push_back(6);
    for (int lon = -180; lon < 180; lon += 40) {
      polygon.lon.push_back(lon);
      polygon.lat.push_back(80);
    }
  }
  return polygon;
}

TEST(GlobeMesher, APolygonMayBeLargerThanAHemisphere) {
  const double south = std::sin(70 * kPi / 180);
  const double north = std::sin(80 * kPi / 180);
  for (const bool hole : {false, true}) {
    const auto whole = mesh(almost_all(hole));
    ASSERT_TRUE(whole) << whole.error().message;
    EXPECT_NEAR(sphere_area(*whole), 2 * kPi * (south + (hole ? north : 1.0)), 1e-4);
    MeshOptions options;
    options.longest_side = 10.0;
    const auto fine = mesh(almost_all(hole), options);
    ASSERT_TRUE(fine) << fine.error().message;
    EXPECT_NEAR(fine->area, 2 * kPi * (south + (hole ? north : 1.0)), 0.02);
  }
}

TEST(GlobeMesher, RefusesTheWholeGlobe) {
  const auto all = mesh({{-180, 180, 180, -180}, {-90, -90, 90, 90}});
  ASSERT_FALSE(all);
  EXPECT_EQ(all.error().message, "it covers the whole globe");
}

TEST(GlobeMesher, RefusesPiecesBeyondCountBeforeTheyAreMade) {
  MeshOptions options;
  options.longest_side = 1e-12;
  const auto many = mesh({{0, 90, 90, 0}, {0, 0, 90, 90}}, options);
  ASSERT_FALSE(many);
  EXPECT_EQ(many.error().message, "the mesh needs more than 100000000 triangles");
}

TEST(GlobeMesher, NothingStaysNothing) {
  const auto nothing = mesh({{0, 10, 20}, {0, 0, 0}});
  ASSERT_TRUE(nothing) << nothing.error().message;
  EXPECT_TRUE(nothing->triangles.empty());
}

}  // namespace
}  // namespace kzgis::tools
