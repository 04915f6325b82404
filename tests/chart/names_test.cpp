// Projections by their names.

#include <gtest/gtest.h>

#include <optional>
#include <string_view>

#include "kzgis/chart.h"

using kzgis::find_projection;
using kzgis::projection_name;

namespace {

constexpr std::string_view kNames[] = {"cartesian", "mercator",          "lambert cylindrical",
                                       "gnomonic",  "stereographic",     "orthographic",
                                       "postel",    "lambert azimuthal", "lambert conic conformal",
                                       "albers",    "cassini-soldner",   "bonne",
                                       "werner",    "sanson-flamsteed",  "globe"};

TEST(ProjectionName, IsInLowerCaseAndOneOfFifteen) {
  for (int type = 0; type < 15; ++type) {
    EXPECT_EQ(projection_name(static_cast<projType>(type)), kNames[type]);
  }
}

TEST(ProjectionName, IsEmptyForNumbersOfNoProjection) {
  EXPECT_EQ(projection_name(static_cast<projType>(15)), "");
  EXPECT_EQ(projection_name(static_cast<projType>(-1)), "");
}

TEST(FindProjection, KnowsEveryName) {
  for (int type = 0; type < 15; ++type) {
    EXPECT_EQ(find_projection(kNames[type]), static_cast<projType>(type)) << kNames[type];
  }
}

TEST(FindProjection, TakesAnyCaseAndHyphensOrUnderscoresForBlanks) {
  EXPECT_EQ(find_projection("Lambert-Conic-Conformal"), LambertConicProj);
  EXPECT_EQ(find_projection("LAMBERT_AZIMUTHAL"), LambertAzimuthalProj);
  EXPECT_EQ(find_projection("Cassini Soldner"), CassiniSoldnerProj);
  EXPECT_EQ(find_projection("sanson_Flamsteed"), SansonFlamsteedProj);
}

TEST(FindProjection, FindsNothingUnderOtherNames) {
  for (const std::string_view name :
       {"", "lambert", "mercator ", " mercator", "mercato", "mercators", "lambertazimuthal",
        "lambert  azimuthal", "m\xE9rcator", "MERCATOR\x80", "mercatoR\n"}) {
    EXPECT_EQ(find_projection(name), std::nullopt) << name;
  }
  EXPECT_EQ(find_projection(std::string_view("globe\0", 6)), std::nullopt);
  // A NUL is as far from a blank as an upper-case letter is from the lower-case one.
  EXPECT_EQ(find_projection(std::string_view("lambert\0azimuthal", 17)), std::nullopt);
}

}  // namespace
