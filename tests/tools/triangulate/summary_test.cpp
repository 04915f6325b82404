#include "tools/triangulate/summary.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kzgis::tools {
namespace {

const std::vector<std::uint32_t> kTriangle{0, 1, 2};

TEST(LeastAngle, IsThatOfTheShortestSide) {
  EXPECT_NEAR(least_angle_deg({0, 0, 0}, {4, 0, 0}, {4, 3, 0}), 36.86989764584402, 1e-12);
  EXPECT_NEAR(least_angle_deg({0, 0, 9}, {0, 3, 9}, {4, 3, 9}), 36.86989764584402, 1e-12);
  EXPECT_NEAR(least_angle_deg({1, 0, 0}, {0, 1, 0}, {0, 0, 1}), 60.0, 1e-12);
  EXPECT_NEAR(least_angle_deg({0, 0, 0}, {1, 0, 0}, {0.5, 1e-9, 0}), 1.1459155902616465e-07, 1e-16);
  EXPECT_EQ(least_angle_deg({0, 0, 0}, {1, 0, 0}, {2, 0, 0}), 0.0);
}

TEST(Summary, CountsAndSums) {
  Summary summary;
  summary.add(2, 6.0, 0, 0, std::vector<WorldPoint>{{0, 0, 0}, {4, 0, 0}, {4, 3, 0}}, kTriangle);
  summary.add(1, 0.5, 0, 0, std::vector<WorldPoint>{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, kTriangle);
  summary.add(1, 0.5, 0, 0, std::vector<WorldPoint>{{0, 0, 0}, {1, 0, 0}, {1, 0.125, 0}},
              kTriangle);
  summary.add_refused(4);
  summary.add_null(5);
  EXPECT_EQ(summary.text(false),
            "3 records, 4 rings, 3 triangles, area 7; 4 refused, 5 null\n"
            "least angle 7.13 degrees, median 36.9");
}

TEST(Summary, SaysWhatWasAdded) {
  Summary summary;
  const std::vector<WorldPoint> points{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  summary.add(1, 0.5, 0, 1, points, kTriangle);
  EXPECT_EQ(summary.text(false).substr(summary.text(false).find('\n') + 1),
            "1 vertex added; least angle 45 degrees, median 45");
  summary.add(1, 0.5, 2, 3, points, kTriangle);
  EXPECT_EQ(summary.text(true).substr(summary.text(true).find('\n') + 1),
            "2 crossings split, 4 vertices added; least angle 45 degrees, median 45");
}

TEST(Summary, CountsWhatIsOffTheMap) {
  Summary summary;
  summary.add_absent();
  EXPECT_EQ(summary.text(false),
            "0 records, 0 rings, 0 triangles, area 0; 0 refused, 0 null, 1 off the map");
}

TEST(Summary, SaysNothingOfTrianglesThatAreNot) {
  EXPECT_EQ(Summary().text(true), "0 records, 0 rings, 0 triangles, area 0; 0 refused, 0 null");
}

}  // namespace
}  // namespace kzgis::tools
