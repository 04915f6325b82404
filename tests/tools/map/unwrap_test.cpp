#include "tools/map/unwrap.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kzgis::map {
namespace {

void expect_line(const GeoLine& line, const GeoLine& expected) {
  ASSERT_EQ(line.size(), expected.size());
  for (std::size_t i = 0; i < line.size(); ++i) {
    EXPECT_EQ(line[i].lon, expected[i].lon) << "point " << i;
    EXPECT_EQ(line[i].lat, expected[i].lat) << "point " << i;
  }
}

TEST(UnwrapLine, RunsOnAcrossTheAntimeridianBothWays) {
  expect_line(unwrap_line({{170, 1}, {-170, 2}, {-160, 3}}), {{170, 1}, {190, 2}, {200, 3}});
  expect_line(unwrap_line({{-170, 1}, {170, 2}, {-170, 3}}), {{-170, 1}, {-190, 2}, {-170, 3}});
}

TEST(UnwrapLine, LeavesAnEdgeOfExactlyHalfATurn) {
  expect_line(unwrap_line({{-90, 10}, {90, 10}}), {{-90, 10}, {90, 10}});
}

TEST(UnwrapLine, LeavesAnEdgeAlongAPole) {
  expect_line(unwrap_line({{180, -90}, {-180, -90}}), {{180, -90}, {-180, -90}});
}

TEST(UnwrapLine, LeavesLongitudesFrom0To360) {
  expect_line(unwrap_line({{170, 0}, {190, 0}, {350, 5}}), {{170, 0}, {190, 0}, {350, 5}});
}

TEST(UnwrapLine, DropsVerticesThatAreNotFinite) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  expect_line(unwrap_line({{1, 2}, {nan, 3}, {4, inf}, {5, 6}}), {{1, 2}, {5, 6}});
}

TEST(UnwrapRing, DropsTheRepeatedLastPoint) {
  const Ring ring = unwrap_ring({{0, 0}, {0, 5}, {5, 5}, {0, 0}});
  expect_line(ring.points, {{0, 0}, {0, 5}, {5, 5}});
  EXPECT_EQ(ring.first_added_edge, 3u);
}

TEST(UnwrapRing, NeedsThreePoints) {
  EXPECT_TRUE(unwrap_ring({}).points.empty());
  EXPECT_TRUE(unwrap_ring({{1, 1}, {2, 2}, {1, 1}}).points.empty());
  EXPECT_TRUE(unwrap_ring({{1, 1}, {1, 1}, {1, 1}, {1, 1}}).points.empty());
}

TEST(UnwrapRing, ClosesARingRoundAPoleByWayOfIt) {
  const Ring south = unwrap_ring({{-120, -70}, {0, -65}, {120, -70}, {-120, -70}});
  expect_line(south.points,
              {{-120, -70}, {0, -65}, {120, -70}, {240, -70}, {240, -90}, {-120, -90}});
  EXPECT_EQ(south.first_added_edge, 3u);

  const Ring north = unwrap_ring({{120, 70}, {0, 65}, {-120, 70}});
  expect_line(north.points, {{120, 70}, {0, 65}, {-120, 70}, {-240, 70}, {-240, 90}, {120, 90}});
}

TEST(UnwrapRing, KeepsABandRoundTheGlobeGivenByItsCorners) {
  const Ring band = unwrap_ring({{-180, -20}, {180, -20}, {180, 20}, {-180, 20}});
  expect_line(band.points, {{-180, -20}, {180, -20}, {180, 20}, {-180, 20}});
}

TEST(PreparePolygon, TellsCoastFromWhatOnlyClosesTheRing) {
  // An Antarctica as files have it: coast from west to east, home along the map's border.
  const Shape shape =
      prepare_polygon({{{-180, -80}, {0, -70}, {180, -80}, {180, -90}, {-180, -90}}}, 10.0);
  ASSERT_EQ(shape.rings.size(), 1u);
  ASSERT_EQ(shape.outlines.size(), 1u);
  expect_line(shape.outlines[0], {{-190, -80}, {-10, -70}, {170, -80}});
  ASSERT_EQ(shape.seams.size(), 1u);
  expect_line(shape.seams[0], {{170, -80}, {170, -90}, {-190, -90}, {-190, -80}});
}

TEST(PreparePolygon, CountsAnAddedWayByThePoleAsSeam) {
  const Shape shape = prepare_polygon({{{-120, 70}, {0, 65}, {120, 70}}}, 0.0);
  ASSERT_EQ(shape.outlines.size(), 1u);
  expect_line(shape.outlines[0], {{-120, 70}, {0, 65}, {120, 70}, {240, 70}});
  ASSERT_EQ(shape.seams.size(), 1u);
  expect_line(shape.seams[0], {{240, 70}, {240, 90}, {-120, 90}, {-120, 70}});
}

TEST(PreparePolygon, LeavesOutPartsWithoutArea) {
  EXPECT_TRUE(prepare_polygon({{}, {{1, 2}}, {{1, 2}, {3, 4}}}, 0.0).rings.empty());
}

TEST(PrepareLines, LeavesOutPartsOfOnePoint) {
  const auto lines = prepare_lines({{{1, 2}}, {{1, 2}, {3, 4}}}, 1.0);
  ASSERT_EQ(lines.size(), 1u);
  expect_line(lines[0], {{0, 2}, {2, 4}});
}

}  // namespace
}  // namespace kzgis::map
