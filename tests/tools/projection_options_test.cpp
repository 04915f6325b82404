#include "tools/support/projection_options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/support/command_error.h"

namespace {

using kzgis::tools::add_projection_options;
using kzgis::tools::needs_parallels;
using kzgis::tools::NumberPair;
using kzgis::tools::ProjectionOptions;

/// The options of a command line; an empty list of arguments gives the defaults.
ProjectionOptions parsed(std::vector<std::string> arguments) {
  CLI::App app("test");
  ProjectionOptions options;
  add_projection_options(app, options);
  std::reverse(arguments.begin(), arguments.end());  // as CLI::App::parse wants them
  app.parse(arguments);
  return options;
}

TEST(ProjectionOptions, AreCartesianWithoutABaseByDefault) {
  const ProjectionOptions options = parsed({});
  EXPECT_EQ(options.type(), CartesianProj);
  EXPECT_EQ(options.base, std::nullopt);
  EXPECT_EQ(options.parallels, std::nullopt);
}

TEST(ProjectionOptions, KnowAllFifteenNames) {
  const std::vector<std::string> names{"cartesian", "mercator",          "lambert cylindrical",
                                       "gnomonic",  "stereographic",     "orthographic",
                                       "postel",    "lambert azimuthal", "lambert conic conformal",
                                       "albers",    "cassini-soldner",   "bonne",
                                       "werner",    "sanson-flamsteed",  "globe"};
  for (std::size_t type = 0; type < names.size(); ++type) {
    EXPECT_EQ(parsed({"--to", names[type]}).type(), static_cast<projType>(type)) << names[type];
  }
}

TEST(ProjectionOptions, TakeNamesInAnyCaseAndWithoutBlanks) {
  EXPECT_EQ(parsed({"--to", "Lambert-Conic-Conformal"}).type(), LambertConicProj);
  EXPECT_EQ(parsed({"--to", "lambert_azimuthal"}).type(), LambertAzimuthalProj);
  EXPECT_EQ(parsed({"--to", "Cassini Soldner"}).type(), CassiniSoldnerProj);
}

TEST(ProjectionOptions, RefuseOtherNames) {
  EXPECT_THROW(parsed({"--to", "lambert"}), CLI::ValidationError);
  EXPECT_THROW(parsed({"--to", ""}), CLI::ValidationError);
}

TEST(ProjectionOptions, ReadPairs) {
  const ProjectionOptions options = parsed({"--base", "-12.5,350", "--parallels", "20,60.5"});
  EXPECT_EQ(options.base, NumberPair(-12.5, 350.0));
  EXPECT_EQ(options.parallels, NumberPair(20.0, 60.5));
}

TEST(ProjectionOptions, RefusePairsOutOfRange) {
  for (const char* const base : {"91,0", "-90.1,0", "1", "1,2,3", ",1", "1,", "nan,0", "a,b"}) {
    EXPECT_THROW(parsed({"--base", base}), kzgis::tools::UsageError) << base;
  }
  for (const char* const parallels : {"0,10", "10,0", "-1,10", "10,90.5", "30"}) {
    EXPECT_THROW(parsed({"--parallels", parallels}), kzgis::tools::UsageError) << parallels;
  }
}

TEST(NeedsParallels, HoldsForTheTwoConics) {
  for (int type = 0; type < 15; ++type) {
    EXPECT_EQ(needs_parallels(static_cast<projType>(type)), type == 8 || type == 9) << type;
  }
}

}  // namespace
