#include "tools/support/projection_options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "tools/support/command_error.h"

namespace {

using kzgis::ChartParameters;
using kzgis::tools::add_projection_options;
using kzgis::tools::add_radius_option;
using kzgis::tools::chart_parameters;
using kzgis::tools::make_chart;
using kzgis::tools::NumberPair;
using kzgis::tools::ProjectionOptions;
using kzgis::tools::UsageError;
using testing::ThrowsMessage;

/// The options of a command line; an empty list of arguments gives the defaults.
ProjectionOptions parsed(std::vector<std::string> arguments) {
  CLI::App app("test");
  ProjectionOptions options;
  add_projection_options(app, options);
  add_radius_option(app, options);
  std::reverse(arguments.begin(), arguments.end());  // as CLI::App::parse wants them
  app.parse(arguments);
  return options;
}

TEST(ProjectionOptions, AreCartesianWithoutABaseByDefault) {
  const ProjectionOptions options = parsed({});
  EXPECT_EQ(options.type, CartesianProj);
  EXPECT_EQ(options.base, std::nullopt);
  EXPECT_EQ(options.parallels, std::nullopt);
}

TEST(ProjectionOptions, TakeTheLibrarysNames) {
  EXPECT_EQ(parsed({"--to", "globe"}).type, GlobeProj);
  EXPECT_EQ(parsed({"--to", "Lambert-Conic-Conformal"}).type, LambertConicProj);
}

TEST(ProjectionOptions, RefuseOtherNames) {
  EXPECT_THROW(parsed({"--to", "lambert"}), UsageError);
  EXPECT_THROW(parsed({"--to", ""}), UsageError);
}

TEST(ProjectionOptions, ReadPairs) {
  const ProjectionOptions options = parsed({"--base", "-12.5,350", "--parallels", "-20,60.5"});
  EXPECT_EQ(options.base, NumberPair(-12.5, 350.0));
  EXPECT_EQ(options.parallels, NumberPair(-20.0, 60.5));
}

TEST(ProjectionOptions, RefuseWhatAreNoNumbers) {
  for (const char* const base : {"1", "1,2,3", ",1", "1,", "nan,0", "0,inf", "a,b"}) {
    EXPECT_THROW(parsed({"--base", base}), UsageError) << base;
    EXPECT_THROW(parsed({"--parallels", base}), UsageError) << base;
  }
  for (const char* const radius : {"", "nan", "inf", "1km", "0x10"}) {
    EXPECT_THROW(parsed({"--radius", radius}), UsageError) << radius;
  }
}

TEST(ChartParametersOfOptions, AreTheNumbersGiven) {
  const ChartParameters p =
      chart_parameters(parsed({"--base", "-12.5,350", "--parallels", "-20,60.5", "--radius", "2"}));
  EXPECT_EQ(p.base_lat, -12.5);
  EXPECT_EQ(p.base_lon, 350.0);
  EXPECT_EQ(p.first_parallel, -20.0);
  EXPECT_EQ(p.second_parallel, 60.5);
  EXPECT_EQ(p.radius, 2.0);
}

TEST(ChartParametersOfOptions, AreTheLibrarysOwnWithoutOptions) {
  const ChartParameters p = chart_parameters(parsed({"--to", "albers"}));
  EXPECT_EQ(p.base_lat, 0.0);
  EXPECT_EQ(p.base_lon, 0.0);
  EXPECT_EQ(p.first_parallel, std::nullopt);
  EXPECT_EQ(p.second_parallel, std::nullopt);
  EXPECT_EQ(p.radius, 6378000.0);
}

TEST(ChartParametersOfOptions, PutBonneIntoTheMiddleLatitudesByItself) {
  EXPECT_EQ(chart_parameters(parsed({"--to", "bonne"})).base_lat, 45.0);
  EXPECT_EQ(chart_parameters(parsed({"--to", "bonne", "--base", "0,10"})).base_lat, 0.0);
}

TEST(MakeChart, SaysWhatTheLibrarySaysOfItsParameters) {
  ChartParameters parameters;
  parameters.base_lat = 91.0;
  EXPECT_THAT([&] { make_chart(MercatorProj, parameters); },
              ThrowsMessage<UsageError>("the base latitude 91 does not lie within -90 to 90"));
}

TEST(MakeChart, MakesEveryProjectionThatNothingIsSaidOf) {
  for (int type = 0; type < 15; ++type) {
    ProjectionOptions options;
    options.type = static_cast<projType>(type);
    EXPECT_EQ(make_chart(options.type, chart_parameters(options)).type(), options.type);
  }
}

}  // namespace
