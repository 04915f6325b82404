#include "tools/pack/bank_packer.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <sstream>

#include "shape/shapefile_writer.h"
#include "tools/pack/labelled_layer.h"
#include "tools/support/command_error.h"

namespace kzgis::tools {
void PrintTo(const ArcPoint& point, std::ostream* out) { *out << point.lat << ' ' << point.lon; }
}  // namespace kzgis::tools

namespace {

using kzgis::Theme;
using kzgis::tools::ArcPoint;
using kzgis::tools::BankPacker;
using kzgis::tools::to_arc_seconds;

using Line = std::vector<ArcPoint>;

/// Every line of one theme in a bank, in its order.
std::vector<Line> read_lines(const std::string& directory, Theme theme) {
  const auto bank = kzgis::read_databank(directory, {{theme}, {}, {}});
  EXPECT_TRUE(bank && bank->damaged.empty());
  std::vector<Line> lines;
  for (const kzgis::Segment& segment : bank->segments) {
    lines.emplace_back();
    for (std::size_t i = 0; i < segment.lat.size(); ++i) {
      lines.back().push_back({segment.lat[i], segment.lon[i]});
    }
  }
  return lines;
}

TEST(ToArcSeconds, RoundsAndTakesLongitudesOnce) {
  EXPECT_EQ(to_arc_seconds(1.0, 2.0), (ArcPoint{3600, 7200}));
  EXPECT_EQ(to_arc_seconds(-90.0, -180.0), (ArcPoint{-324000, 648000}));
  EXPECT_EQ(to_arc_seconds(0.00013, 0.00014), (ArcPoint{0, 1}));
  EXPECT_EQ(to_arc_seconds(-0.00014, -0.00014), (ArcPoint{-1, 1295999}));
  EXPECT_EQ(to_arc_seconds(0.0, 359.99995), (ArcPoint{0, 0}));
  EXPECT_EQ(to_arc_seconds(0.0, 360.0), (ArcPoint{0, 0}));
  EXPECT_EQ(to_arc_seconds(0.0, -720.0), (ArcPoint{0, 0}));
  EXPECT_EQ(to_arc_seconds(0.0, 361.0), (ArcPoint{0, 3600}));
}

class BankPackerTest : public ShapefileTest {
 protected:
  kzgis::tools::Complain complain() {
    return [this](const std::string& line) {
      complaints_.push_back(line.substr(line.rfind('/') + 1));
    };
  }

  std::vector<std::string> complaints_;
};

using Complaints = std::vector<std::string>;

TEST_F(BankPackerTest, WritesTheFilesOfEveryContinentAndSaysWhatIsInThem) {
  ShapefileWriter lines(3);
  lines.add(arc_content({0}, {{10.0, 50.0}, {10.5, 50.5}}));
  lines.add(arc_content({0, 2}, {{-70.0, 1.0}, {-70.5, 2.0}, {0.0, 3.0}, {1.0, 3.0}, {2.0, 3.0}}));
  const std::string file = write(lines, "riv") + ".shp";
  write_table(path("riv.dbf"), {"CONT", "RANK"}, {{"europe", "1"}, {"samer", "2"}});
  BankPacker packer(1024, complain());
  packer.add_file(file, {});
  std::ostringstream summary;
  packer.write(path("bank"), summary);
  EXPECT_EQ(complaints_, Complaints{});
  EXPECT_EQ(summary.str(),
            "africa.Map/riv.cbd: 0 segments, 0 points, 20 bytes\n"
            "asia.Map/riv.cbd: 0 segments, 0 points, 20 bytes\n"
            "europe.Map/riv.cbd: 1 segments, 2 points, 76 bytes\n"
            "namer.Map/riv.cbd: 0 segments, 0 points, 20 bytes\n"
            "samer.Map/riv.cbd: 2 segments, 5 points, 140 bytes\n" +
                path("bank") +
                ": 5 files, 3 segments, 7 points, 276 bytes (84 % of the "
                "shapefiles' 328)\n");
  EXPECT_EQ(read_lines(path("bank"), Theme::rivers),
            (std::vector<Line>{{{180000, 36000}, {181800, 37800}},
                               {{3600, 1044000}, {7200, 1042200}},
                               {{10800, 0}, {10800, 3600}, {10800, 7200}}}));
}

TEST_F(BankPackerTest, PolygonsGiveTheirRings) {
  ShapefileWriter shapes(5);
  shapes.add(
      arc_content({0, 4}, {{0, 0}, {0, 9}, {9, 9}, {0, 0}, {2, 3}, {3, 4}, {2, 4}, {2, 3}}, 5));
  BankPacker packer(1024, complain());
  packer.add_file(write(shapes, "land"), {"coastal", "africa", "3"});
  std::ostringstream summary;
  packer.write(path("bank"), summary);
  const auto lines = read_lines(path("bank"), Theme::coasts);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0], (Line{{0, 0}, {32400, 0}, {32400, 32400}, {0, 0}}));
  EXPECT_EQ(lines[1].front(), lines[1].back());
}

TEST_F(BankPackerTest, CutsLongLinesAtSharedPoints) {
  std::vector<Point> points;
  Line line;
  for (int i = 0; i < 11; ++i) {
    points.push_back({static_cast<double>(i), 1.0});
    line.push_back({3600, 3600 * i});
  }
  ShapefileWriter lines(3);
  lines.add(arc_content({0}, points));
  const std::string file = write(lines);
  const auto piece = [&line](std::size_t from, std::size_t to) {
    return Line(line.begin() + static_cast<std::ptrdiff_t>(from),
                line.begin() + static_cast<std::ptrdiff_t>(to) + 1);
  };
  const auto packed = [&](std::size_t longest) {
    BankPacker packer(longest, complain());
    packer.add_file(file, {"river", "asia", "0"});
    std::ostringstream summary;
    packer.write(path("bank"), summary);
    return read_lines(path("bank"), Theme::rivers);
  };
  EXPECT_EQ(packed(4), (std::vector<Line>{piece(0, 3), piece(3, 6), piece(6, 9), piece(9, 10)}));
  EXPECT_EQ(packed(6), (std::vector<Line>{piece(0, 5), piece(5, 10)}));
  EXPECT_EQ(packed(2).size(), 10U);
  EXPECT_EQ(packed(11), std::vector<Line>{line});
}

TEST_F(BankPackerTest, LeavesOutWhatHasNoLine) {
  ShapefileWriter lines(3);
  lines.add(Bytes().little(0).text());
  lines.add(arc_content({0}, {{10.0, 50.0}}));
  lines.add(arc_content({0}, {{10.0, 50.0}, {10.0, 51.0}}));
  BankPacker packer(1024, complain());
  packer.add_file(write(lines), {"river", "asia", "0"});
  std::ostringstream summary;
  packer.write(path("bank"), summary);
  EXPECT_EQ(complaints_, Complaints{});
  EXPECT_TRUE(
      summary.str().ends_with("left out: 1 null records, 1 lines of less than two points\n"))
      << summary.str();
}

TEST_F(BankPackerTest, NamesRecordsThatAreNotInDegrees) {
  ShapefileWriter lines(3);
  lines.add(arc_content({0}, {{10.0, 50.0}, {500000.0, 51.0}}));
  lines.add(arc_content({0}, {{10.0, 90.1}, {10.0, 51.0}}));
  lines.add(arc_content({0}, {{std::numeric_limits<double>::quiet_NaN(), 0.0}, {10.0, 51.0}}));
  BankPacker packer(1024, complain());
  packer.add_file(write(lines), {"river", "asia", "0"});
  EXPECT_EQ(complaints_, (Complaints{"layer: record 1: its coordinates are not degrees: 500000, 51",
                                     "layer: record 2: its coordinates are not degrees: 10, 90.1",
                                     "layer: record 3: point 1 is nowhere: nan, 0"}));
}

TEST_F(BankPackerTest, RefusesPoints) {
  ShapefileWriter points(1);
  BankPacker packer(1024, complain());
  EXPECT_THROW(packer.add_file(write(points), {"river", "asia", "0"}), kzgis::tools::CommandError);
}

/// The lines of a sample layer in the order in which a bank gives them: by continent, then
/// as in the file; read by shapelib, rounded here.
std::vector<Line> expected_lines(const std::string& base) {
  constexpr std::array kContinents = {"africa", "asia", "europe", "namer", "samer"};
  std::array<std::vector<Line>, 5> by_continent;
  SHPHandle shapes = SHPOpen(base.c_str(), "rb");
  DBFHandle table = DBFOpen(base.c_str(), "rb");
  const int field = DBFGetFieldIndex(table, "CONT");
  for (int n = 0; n < DBFGetRecordCount(table); ++n) {
    const std::string continent = DBFReadStringAttribute(table, n, field);
    SHPObject* const shape = SHPReadObject(shapes, n);
    for (int part = 0; part < shape->nParts; ++part) {
      const int end = part + 1 < shape->nParts ? shape->panPartStart[part + 1] : shape->nVertices;
      Line line;
      for (int i = shape->panPartStart[part]; i < end; ++i) {
        const auto lon = static_cast<int>(std::lround(shape->padfX[i] * 3600.0));
        line.push_back(
            {static_cast<int>(std::lround(shape->padfY[i] * 3600.0)), (lon + 1296000) % 1296000});
      }
      for (std::size_t c = 0; c < kContinents.size(); ++c) {
        if (continent == kContinents[c]) by_continent[c].push_back(line);
      }
    }
    SHPDestroyObject(shape);
  }
  DBFClose(table);
  SHPClose(shapes);
  std::vector<Line> lines;
  for (const auto& of_one : by_continent) lines.insert(lines.end(), of_one.begin(), of_one.end());
  return lines;
}

TEST_F(BankPackerTest, TheSampleLayersComeBackPointForPoint) {
  const std::string data = KZGIS_TEST_DATA_DIR "/wdb/";
  BankPacker packer(1024, complain());
  for (const char* const layer : {"bdy", "cil", "pby", "riv"}) {
    packer.add_file(data + layer + ".shp", {});
  }
  std::ostringstream summary;
  packer.write(path("bank"), summary);
  EXPECT_EQ(complaints_, Complaints{});
  EXPECT_NE(summary.str().find(": 20 files, 4010 segments, 130029 points, "), std::string::npos)
      << summary.str();
  EXPECT_EQ(read_lines(path("bank"), Theme::boundaries), expected_lines(data + "bdy"));
  EXPECT_EQ(read_lines(path("bank"), Theme::provinces), expected_lines(data + "pby"));
  EXPECT_EQ(read_lines(path("bank"), Theme::coasts), expected_lines(data + "cil"));
  EXPECT_EQ(read_lines(path("bank"), Theme::rivers), expected_lines(data + "riv"));
}

}  // namespace
