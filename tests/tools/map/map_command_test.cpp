#include "tools/map/map_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "shape/shapefile_writer.h"
#include "support/capture.h"
#include "tools/support/command_error.h"

namespace kzgis::map {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
  int exit_code = 0;
  std::string usage_error;
  std::string failure;
  std::string standard_error;
};

class MapCommand : public ShapefileTest {
 protected:
  void SetUp() override {
    ShapefileTest::SetUp();
    land_ = write(ShapefileWriter(5).add(arc_content({0}, kSquare, 5)), "land") + ".shp";
    route_ = write(ShapefileWriter(3).add(arc_content({0}, kSquare)), "route") + ".shp";
  }

  Outcome run(std::vector<std::string> arguments) {
    Outcome outcome;
    CLI::App app;
    tools::add_map_command(app, outcome.exit_code);
    arguments.insert(arguments.begin(), "map");
    std::reverse(arguments.begin(), arguments.end());
    StderrCapture err;
    try {
      app.parse(arguments);
    } catch (const CLI::ParseError& error) {
      outcome.usage_error = error.what();
    } catch (const tools::UsageError& error) {
      outcome.usage_error = error.what();
    } catch (const tools::CommandError& error) {
      outcome.failure = error.what();
    }
    outcome.standard_error = err.text();
    return outcome;
  }

  static std::string start_of(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::string text(5, '\0');
    in.read(text.data(), 5);
    return text;
  }

  static bool exists(const std::string& file) { return std::ifstream(file).good(); }

  const std::vector<Point> kSquare{{0, 0}, {0, 40}, {40, 40}, {40, 0}, {0, 0}};
  std::string land_;
  std::string route_;
};

TEST_F(MapCommand, WritesTheFormatThatTheNameSays) {
  const std::pair<const char*, const char*> formats[]{
      {"a.png", "\x89PNG\r"}, {"a.svg", "<?xml"}, {"a.pdf", "%PDF-"}};
  for (const auto& [name, start] : formats) {
    const Outcome outcome = run({land_, "-o", path(name), "--size", "200x100"});
    EXPECT_EQ(outcome.failure + outcome.usage_error + outcome.standard_error, "");
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(start_of(path(name)), start);
  }
}

TEST_F(MapCommand, FormatOverrulesTheName) {
  run({land_, "-o", path("a.bin"), "--format", "svg"});
  EXPECT_EQ(start_of(path("a.bin")), "<?xml");
}

TEST_F(MapCommand, WritesToStandardOutput) {
  StdoutCapture out;
  const Outcome outcome = run({land_, "-o", "-", "--format", "svg"});
  EXPECT_EQ(outcome.failure + outcome.usage_error, "");
  EXPECT_THAT(out.text(), StartsWith("<?xml"));
}

TEST_F(MapCommand, StandardOutputNeedsAFormat) {
  EXPECT_EQ(run({land_, "-o", "-"}).usage_error,
            "--output: standard output needs --format png, svg or pdf");
}

TEST_F(MapCommand, ANameWithoutAKnownEndingNeedsAFormat) {
  EXPECT_EQ(run({land_, "-o", "map.gif"}).usage_error,
            "--output: 'map.gif' does not end in .png, .svg or .pdf, and no --format says which");
  EXPECT_NE(run({land_, "-o", "dir.png/map"}).usage_error, "");
}

TEST_F(MapCommand, SizeIsThePicturesSize) {
  run({land_, "-o", path("a.svg"), "--size", "300x200"});
  std::ifstream in(path("a.svg"));
  std::stringstream text;
  text << in.rdbuf();
  EXPECT_THAT(text.str(), HasSubstr("width=\"300px\" height=\"200px\""));
}

TEST_F(MapCommand, RefusesBadOptions) {
  const std::vector<std::string> options[]{{"--size", "300"},
                                           {"--size", "0x100"},
                                           {"--size", "99999x100"},
                                           {"--size", "20000x20000"},
                                           {"--graticule", "0.016"},
                                           {"--graticule", "-10"},
                                           {"--graticule", "nan"},
                                           {"--style", "sea"},
                                           {"--style", "land,water"},
                                           {"--format", "gif"},
                                           {"--to", "mollweide"},
                                           {"--horizon", "40"},
                                           {"--box", "1,2,3"},
                                           {"--box", "40,0,30,10"},
                                           {"--box", "0,0,10,1e9"},
                                           {"--box", "a,b,c,d"},
                                           {"--base", "100,0"},
                                           {"--parallels", "91,30"},
                                           {"--horizon", "far"},
                                           {"--to", "bonne", "--base", "0,0"},
                                           {"--to", "albers", "--parallels", "30,-30"},
                                           {"--to", "postel", "--horizon", "0"}};
  for (std::vector<std::string> arguments : options) {
    const std::string label = arguments[0] + ' ' + arguments[1];
    arguments.insert(arguments.begin(), {land_, "-o", path("a.png")});
    const Outcome outcome = run(arguments);
    EXPECT_NE(outcome.usage_error, "") << label;
    EXPECT_EQ(outcome.usage_error.find('\n'), std::string::npos) << label;
    EXPECT_FALSE(exists(path("a.png"))) << label;
  }
}

TEST_F(MapCommand, AStyleMustSuitTheFile) {
  EXPECT_EQ(run({land_, route_, "--style", "land,countries", "-o", path("a.png")}).failure,
            route_ + ": holds lines, which cannot be drawn as countries");
  EXPECT_EQ(run({land_, route_, "--style", "border,river", "-o", path("a.png")}).failure, "");
}

TEST_F(MapCommand, AMissingFileLeavesNoPicture) {
  const Outcome outcome = run({land_, path("absent.shp"), "-o", path("a.png")});
  EXPECT_THAT(outcome.failure, HasSubstr("absent.shp"));
  EXPECT_FALSE(exists(path("a.png")));
}

TEST_F(MapCommand, AnUnreadableRecordIsReportedAndTheOthersAreDrawn) {
  const std::string damaged =
      write(ShapefileWriter(5).add(arc_content({-1}, kSquare, 5)).add(arc_content({0}, kSquare, 5)),
            "damaged");
  const Outcome outcome = run({damaged + ".shp", "-o", path("a.png")});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.failure, "");
  EXPECT_EQ(
      outcome.standard_error,
      "kzgis: " + damaged + ".shp: record 1: part 1 begins at point -1, in front of the first\n");
  EXPECT_TRUE(exists(path("a.png")));
}

TEST_F(MapCommand, MeshDrawsTheSidesBetweenTriangles) {
  const auto strokes = [this](const char* name) {
    std::ifstream in(path(name));
    std::stringstream text;
    text << in.rdbuf();
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.str().find("stroke-width", at)) != std::string::npos; ++at)
      ++count;
    return count;
  };
  run({land_, route_, "--graticule", "0", "-o", path("a.svg")});
  const Outcome outcome = run({land_, route_, "--graticule", "0", "--mesh", "-o", path("b.svg")});
  EXPECT_EQ(outcome.failure + outcome.usage_error + outcome.standard_error, "");
  EXPECT_EQ(strokes("b.svg"), strokes("a.svg") + 1);  // the square's diagonal
}

TEST_F(MapCommand, MeshNamesARecordThatIsNoPolygonAndDrawsItWithout) {
  const std::vector<Point> bow{{0, 0}, {20, 20}, {20, 0}, {0, 20}, {0, 0}};
  const std::string file =
      write(ShapefileWriter(5).add(null_content()).add(arc_content({0}, bow, 5)), "bow") + ".shp";
  const Outcome outcome = run({file, "--mesh", "-o", path("a.png")});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.standard_error,
            "kzgis: " + file + ": record 2: ring 0 crosses itself (sides from vertices 0 and 2)\n");
  EXPECT_TRUE(exists(path("a.png")));
}

TEST_F(MapCommand, DrawsEveryProjectionOnStripsOfPaperToo) {
  for (const char* name :
       {"cartesian", "mercator", "lambert cylindrical", "gnomonic", "stereographic", "orthographic",
        "postel", "lambert azimuthal", "lambert conic conformal", "albers", "cassini-soldner",
        "bonne", "werner", "sanson-flamsteed", "globe"}) {
    for (const char* size : {"16x16", "2000x16", "16x900"}) {
      const Outcome outcome =
          run({land_, "--to", name, "--size", size, "--title", "T", "-o", path("a.png")});
      EXPECT_EQ(outcome.failure + outcome.usage_error, "") << name << ' ' << size;
    }
  }
}

}  // namespace
}  // namespace kzgis::map
