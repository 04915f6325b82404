// What needs files that the sample data does not hold; the cases show the rest.

#include "tools/triangulate/triangulate_command.h"

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

namespace kzgis::tools {
namespace {

struct Outcome {
  int exit_code = 0;
  std::string failure;  ///< what ended it, if anything did
  std::string standard_output;
  std::string standard_error;
};

class TriangulateCommand : public ShapefileTest {
 protected:
  static Outcome run(std::vector<std::string> arguments) {
    Outcome outcome;
    CLI::App app;
    add_triangulate_command(app, outcome.exit_code);
    arguments.insert(arguments.begin(), "triangulate");
    std::reverse(arguments.begin(), arguments.end());
    StderrCapture err;
    StdoutCapture out;
    try {
      app.parse(arguments);
    } catch (const CLI::ParseError& error) {
      outcome.failure = error.what();
    } catch (const UsageError& error) {
      outcome.failure = error.what();
    } catch (const CommandError& error) {
      outcome.failure = error.what();
    }
    outcome.standard_output = out.text();
    outcome.standard_error = err.text();
    return outcome;
  }

  static std::string content(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }

  const std::vector<Point> kSquareWithAHole{{0, 0}, {0, 3}, {3, 3}, {3, 0}, {0, 0},
                                            {1, 1}, {2, 1}, {2, 2}, {1, 2}, {1, 1}};
  const std::vector<Point> kBowTie{{0, 0}, {2, 2}, {2, 0}, {0, 2}, {0, 0}};
};

TEST_F(TriangulateCommand, TilesASquareWithAHole) {
  const std::string file =
      write(ShapefileWriter(5).add(arc_content({0, 5}, kSquareWithAHole, 5))) + ".shp";
  const Outcome outcome = run({file, "-o", path("a.obj")});
  EXPECT_EQ(outcome.failure + outcome.standard_error, "");
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.standard_output,
            "1 record, 2 rings, 8 triangles, area 8; 0 refused, 0 null\n"
            "least angle 18.4 degrees, median 26.6\n");
  // Which triangles they are is the library's affair; the vertices stand in the file's order.
  std::istringstream lines(content(path("a.obj")));
  std::string vertices;
  int faces = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("f ")) ++faces;
    if (!line.starts_with("f ")) vertices += line + '\n';
  }
  EXPECT_EQ(vertices,
            "o record_1\n"
            "v 0 0 0\nv 0 3 0\nv 3 3 0\nv 3 0 0\n"
            "v 1 1 0\nv 2 1 0\nv 2 2 0\nv 1 2 0\n");
  EXPECT_EQ(faces, 8);
}

TEST_F(TriangulateCommand, GoesOnBehindRecordsThatFail) {
  const std::string file = write(ShapefileWriter(5)
                                     .add(arc_content({0}, kBowTie, 5))
                                     .add(null_content())
                                     .add(arc_content({-1}, kBowTie, 5))
                                     .add(arc_content({0, 5}, kSquareWithAHole, 5))) +
                           ".shp";
  const Outcome outcome = run({file, "--check"});
  EXPECT_EQ(outcome.failure, "");
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.standard_output,
            "1 record, 2 rings, 8 triangles, area 8; 2 refused, 1 null\n"
            "least angle 18.4 degrees, median 26.6\n");
  EXPECT_EQ(outcome.standard_error,
            "kzgis: " + file +
                ": record 1: ring 0 crosses itself (sides from vertices 0 and 2); try --repair\n"
                "kzgis: " +
                file + ": record 3: part 1 begins at point -1, in front of the first\n");
}

TEST_F(TriangulateCommand, TakesAFileWithoutRecords) {
  const std::string file = write(ShapefileWriter(5)) + ".shp";
  EXPECT_EQ(run({file, "--check"}).standard_output,
            "0 records, 0 rings, 0 triangles, area 0; 0 refused, 0 null\n");
  EXPECT_EQ(run({file, "--records", "1:", "--check"}).failure,
            file + ": there is no record 1; the number of records is 0");
  EXPECT_EQ(run({file, "--records", ":4", "--check"}).failure, "");
}

// As good as any other claim of a header: `kzgis info` names it.
TEST_F(TriangulateCommand, TakesAFileOfAnotherVersion) {
  const ShapefileWriter writer = ShapefileWriter(5).add(arc_content({0, 5}, kSquareWithAHole, 5));
  std::string shp = writer.shp();
  shp[28] = 1;  // the version, little-endian
  const Outcome outcome = run({write(shp, writer.shx()) + ".shp", "--check"});
  EXPECT_EQ(outcome.failure + outcome.standard_error, "");
  EXPECT_EQ(outcome.standard_output,
            "1 record, 2 rings, 8 triangles, area 8; 0 refused, 0 null\n"
            "least angle 18.4 degrees, median 26.6\n");
}

TEST_F(TriangulateCommand, ReportsAnIndexThatIsCut) {
  const ShapefileWriter writer =
      ShapefileWriter(5).add(arc_content({0, 5}, kSquareWithAHole, 5)).add(null_content());
  std::string shx = writer.shx();
  shx.resize(shx.size() - 8);
  const std::string file = write(writer.shp(), shx) + ".shp";
  const Outcome outcome = run({file, "--check"});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.standard_error,
            "kzgis: " + file + ": the index is shorter than its header says\n");
  EXPECT_EQ(outcome.standard_output,
            "1 record, 2 rings, 8 triangles, area 8; 0 refused, 0 null\n"
            "least angle 18.4 degrees, median 26.6\n");
}

TEST_F(TriangulateCommand, NamesARecordThatIsNotInDegrees) {
  const std::string file =
      write(ShapefileWriter(5)
                .add(arc_content({0}, {{0, -91}, {0, 0}, {10, 0}, {0, -91}}, 5))
                .add(arc_content({0}, {{0, 10}, {0, 20}, {10, 10}, {0, 10}}, 5))) +
      ".shp";
  const Outcome outcome = run({file, "--to", "lambert-cylindrical", "--radius", "1", "--tolerance",
                               "0.5", "-o", path("a.obj")});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.standard_error,
            "kzgis: " + file + ": record 1: coordinates are not degrees: 0, -91\n");
  EXPECT_EQ(content(path("a.obj")).substr(0, 11), "o record_2\n");
  // The area is the map's: half of 10 degrees by sin 20 - sin 10.
  EXPECT_EQ(outcome.standard_output,
            "1 record, 1 ring, 1 triangle, area 0.01469322584; 1 refused, 0 null\n"
            "least angle 44 degrees, median 44\n");
}

}  // namespace
}  // namespace kzgis::tools
