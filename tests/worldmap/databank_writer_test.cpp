#include "tools/databank/bank_writer.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "tools/databank/bank_dir.h"

namespace {

using kzgis::databank::ArcPoint;
using kzgis::databank::BankWriter;
using kzgis::databank::to_arc_seconds;

std::string file_of(const BankWriter& writer) {
  std::ostringstream out;
  writer.write(out);
  return out.str();
}

std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text += static_cast<char>(value);
  return text;
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

TEST(BankWriter, WritesAnEmptyFile) {
  const BankWriter writer;
  EXPECT_EQ(file_of(writer),
            bytes({0x02, 0x00, 0x77, 0x20, 20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(writer.bytes(), 20U);
}

TEST(BankWriter, WritesEveryFieldOfAShortLine) {
  BankWriter writer;
  const Line line{{-1, 100}, {0, 163}, {-128, 99}};
  ASSERT_TRUE(writer.add_line(line, 3, 1024));
  EXPECT_EQ(writer.segments(), 1U);
  EXPECT_EQ(writer.points(), 3U);
  EXPECT_EQ(file_of(writer),
            bytes({0x02, 0x00, 0x77, 0x20, 20, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}) +
                // identifier, north 0, south -128 less one, east 163, west 99, offset, level
                bytes({1, 0, 0,  0, 0, 0, 0,  0, 0x7F, 0xFF, 0xFF, 0xFF, 163, 0,
                       0, 0, 99, 0, 0, 0, 48, 0, 0,    0,    0,    0,    3,   0}) +
                // longitude 100, latitude -1 less one, N = 4
                bytes({100, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0}) +
                // +63 +1, -64 -128, and 0 0 for the point that is not classified
                bytes({0x01, 0x7F, 0x80, 0xC0, 0x00, 0x40}));
  EXPECT_EQ(writer.bytes(), file_of(writer).size());
}

TEST(BankWriter, TakesTheLongFormWhereTheShortOneEnds) {
  BankWriter writer;
  const Line line{{0, 1000}, {0, 1064}, {-129, 1064}, {-1, 1064}, {-1, 999}, {40000, 70999}};
  ASSERT_TRUE(writer.add_line(line, 0, 1024));
  const std::string file = file_of(writer);
  EXPECT_EQ(file.substr(20 + 28 + 18),
            bytes({0x00, 0x00, 0x40, 0x00, 0x00, 0x00, 0x00, 0x00}) +      // +64, 0
                bytes({0x00, 0x00, 0x00, 0x00, 0xFF, 0xBF, 0x7F, 0xFF}) +  // 0, -129
                bytes({0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x80, 0x00}) +  // 0, +128
                bytes({0xFF, 0xBF, 0xBF, 0xFF, 0x00, 0x00, 0x00, 0x00}) +  // -65, 0
                bytes({0x01, 0x00, 0x70, 0x11, 0x00, 0x00, 0x41, 0x9C}) +  // +70000, +40001
                bytes({0x00, 0x40}));
}

TEST(BankWriter, CutsLongLinesAtSharedPoints) {
  BankWriter writer;
  Line line;
  for (int i = 0; i < 10; ++i) line.push_back({i, 1000 + i});
  ASSERT_TRUE(writer.add_line(line, 1, 4));
  EXPECT_EQ(writer.segments(), 3U);  // 0-3, 3-6, 6-9
  EXPECT_EQ(writer.points(), 12U);
  BankWriter with_rest;
  line.push_back({10, 1010});
  ASSERT_TRUE(with_rest.add_line(line, 1, 4));
  EXPECT_EQ(with_rest.segments(), 4U);  // and 9-10
  EXPECT_EQ(with_rest.points(), 14U);
}

class RoundTrip : public BankTest {};

/// Lines that find the reader's strict comparisons: along the poles, the meridian of
/// Greenwich and its other side, across it, standing still, and far away.
Line random_line(std::mt19937& random) {
  const auto within = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  const int kind = within(0, 6);
  int lat = within(-324000, 324000);
  int lon = within(0, 1295999);
  if (kind == 1) lat = within(0, 1) == 0 ? -324000 : 324000;
  if (kind == 2) lon = within(0, 1) == 0 ? 0 : 1295999;
  if (kind == 3) lon = within(1295900, 1296100) % 1296000;
  Line line{{lat, lon}};
  const int step = kind == 4 ? 200000 : kind == 5 ? 0 : 150;
  for (int n = within(1, 40); n > 0; --n) {
    if (kind != 1) lat = std::clamp(lat + within(-step, step), -324000, 324000);
    if (kind != 2) lon = (lon + within(-step, step) + 1296000) % 1296000;
    line.push_back({lat, lon});
  }
  return line;
}

TEST_F(RoundTrip, GivesEveryPointBack) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    BankWriter writer;
    std::vector<Line> lines;
    for (int n = 0; n < 30; ++n) {
      lines.push_back(random_line(random));
      ASSERT_TRUE(writer.add_line(lines.back(), n % 16, 1024));
    }
    write("europe.Map/riv.cbd", file_of(writer));
    EXPECT_EQ(read_lines(directory(), River), lines);
  }
}

TEST_F(RoundTrip, LosesNothingBetweenSegments) {
  std::mt19937 random(7);
  for (std::size_t longest = 2; longest < 20; ++longest) {
    SCOPED_TRACE("segments of " + std::to_string(longest));
    BankWriter writer;
    const Line line = random_line(random);
    ASSERT_TRUE(writer.add_line(line, 0, longest));
    write("europe.Map/riv.cbd", file_of(writer));
    Line joined;
    for (const Line& piece : read_lines(directory(), River)) {
      ASSERT_LE(piece.size(), longest);
      if (!joined.empty()) {
        EXPECT_EQ(piece.front(), joined.back());
        joined.pop_back();
      }
      joined.insert(joined.end(), piece.begin(), piece.end());
    }
    EXPECT_EQ(joined, line);
  }
}

TEST_F(RoundTrip, ReachesBoxesAcrossLongitudeZero) {
  BankWriter writer;
  const Line on_meridian{{0, 0}, {3600, 0}};
  const Line across{{7200, 1290000}, {7200, 6000}};
  ASSERT_TRUE(writer.add_line(on_meridian, 0, 1024));
  ASSERT_TRUE(writer.add_line(across, 0, 1024));
  write("africa.Map/cil.cbd", file_of(writer));
  WorldMap map(directory().c_str());
  map.setPOI(Coastal, Level0, 1);
  map.setPrecision(0);
  *map.fetchLowLeftBoundary() = LatLon(-10.0, 350.0);
  *map.fetchUpRightBoundary() = LatLon(10.0, 10.0);
  map.readData();
  EXPECT_EQ(lines_of(map, Coastal),
            (std::vector<Line>{
                on_meridian, {{7200, 1290000}, {7200, 1295999}}, {{7200, 0}, {7200, 6000}}}));
}

TEST_F(RoundTrip, ReachesBoxesThatEndShortOfAnyPointPastLongitudeZero) {
  // Readers look at the western end alone: the least longitude, 36000, is east of this box.
  BankWriter writer;
  ASSERT_TRUE(writer.add_line(Line{{0, 1290000}, {0, 1292000}, {0, 36000}}, 0, 1024));
  write("africa.Map/cil.cbd", file_of(writer));
  WorldMap map(directory().c_str());
  map.setPOI(Coastal, Level0, 1);
  map.setPrecision(0);
  *map.fetchLowLeftBoundary() = LatLon(-10.0, 350.0);
  *map.fetchUpRightBoundary() = LatLon(10.0, 5.0);
  map.readData();
  // A box across longitude 0 ends a line with the point outside.
  EXPECT_EQ(lines_of(map, Coastal), (std::vector<Line>{{{0, 1290000}, {0, 1292000}, {0, 36000}}}));
}

}  // namespace
