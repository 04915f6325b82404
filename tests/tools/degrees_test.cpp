#include "tools/support/degrees.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace kzgis::tools;

TEST(Degrees, ReachFromPoleToPoleAndTwiceRound) {
  for (const double lon : {0.0, 720.0, -720.0}) {
    for (const double lat : {0.0, 90.0, -90.0}) EXPECT_TRUE(are_degrees(lon, lat));
  }
  EXPECT_FALSE(are_degrees(720.001, 0.0));
  EXPECT_FALSE(are_degrees(-720.001, 0.0));
  EXPECT_FALSE(are_degrees(0.0, 90.001));
  EXPECT_FALSE(are_degrees(0.0, -90.001));
  EXPECT_FALSE(are_degrees(std::nan(""), 0.0));
  EXPECT_FALSE(are_degrees(0.0, std::nan("")));
  EXPECT_EQ(not_degrees(500000.0, 51.25), "coordinates are not degrees: 500000, 51.25");
}

}  // namespace
