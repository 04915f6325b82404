// The writer of data banks: its bytes, what it refuses, and that both readers give back every
// point.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "kzgis/databank.h"
#include "worldmap/bank.h"

namespace {

using kzgis::Continent;
using kzgis::DatabankWriter;
using kzgis::ErrorKind;
using kzgis::Theme;

using Lines = std::vector<ArcLine>;

kzgis::Segment river_of(const ArcLine& line, int level = 0) {
  kzgis::Segment segment{Continent::europe, Theme::rivers, level, {}, {}};
  for (const auto& [lat, lon] : line) {
    segment.lat.push_back(static_cast<std::int32_t>(lat));
    segment.lon.push_back(static_cast<std::int32_t>(lon));
  }
  return segment;
}

std::string file_of(const DatabankWriter& writer) {
  std::ostringstream out;
  writer.write_file(Continent::europe, Theme::rivers, out);
  return out.str();
}

DatabankWriter::FileSize size_of(const DatabankWriter& writer) {
  return writer.size_of(Continent::europe, Theme::rivers);
}

std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text += static_cast<char>(value);
  return text;
}

TEST(DatabankWriterTest, WritesAnEmptyFile) {
  const DatabankWriter writer;
  EXPECT_EQ(file_of(writer),
            bytes({0x02, 0x00, 0x77, 0x20, 20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(size_of(writer).bytes, 20U);
}

TEST(DatabankWriterTest, WritesEveryFieldOfAShortLine) {
  DatabankWriter writer;
  const ArcLine line{{-1, 100}, {0, 163}, {-128, 99}};
  ASSERT_FALSE(writer.add(river_of(line, 3)));
  EXPECT_EQ(size_of(writer).segments, 1U);
  EXPECT_EQ(size_of(writer).points, 3U);
  EXPECT_EQ(file_of(writer),
            bytes({0x02, 0x00, 0x77, 0x20, 20, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}) +
                // identifier, north 0, south -128 less one, east 163, west 99, offset, level
                bytes({1, 0, 0,  0, 0, 0, 0,  0, 0x7F, 0xFF, 0xFF, 0xFF, 163, 0,
                       0, 0, 99, 0, 0, 0, 48, 0, 0,    0,    0,    0,    3,   0}) +
                // longitude 100, latitude -1 less one, N = 4
                bytes({100, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0}) +
                // +63 +1, -64 -128, and 0 0 for the point that is not classified
                bytes({0x01, 0x7F, 0x80, 0xC0, 0x00, 0x40}));
  EXPECT_EQ(size_of(writer).bytes, file_of(writer).size());
}

TEST(DatabankWriterTest, TakesTheLongFormWhereTheShortOneEnds) {
  DatabankWriter writer;
  const ArcLine line{{0, 1000}, {0, 1064}, {-129, 1064}, {-1, 1064}, {-1, 999}, {40000, 70999}};
  ASSERT_FALSE(writer.add(river_of(line, 0)));
  const std::string file = file_of(writer);
  EXPECT_EQ(file.substr(20 + 28 + 18),
            bytes({0x00, 0x00, 0x40, 0x00, 0x00, 0x00, 0x00, 0x00}) +      // +64, 0
                bytes({0x00, 0x00, 0x00, 0x00, 0xFF, 0xBF, 0x7F, 0xFF}) +  // 0, -129
                bytes({0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x80, 0x00}) +  // 0, +128
                bytes({0xFF, 0xBF, 0xBF, 0xFF, 0x00, 0x00, 0x00, 0x00}) +  // -65, 0
                bytes({0x01, 0x00, 0x70, 0x11, 0x00, 0x00, 0x41, 0x9C}) +  // +70000, +40001
                bytes({0x00, 0x40}));
}

TEST(DatabankWriterTest, RefusesWhatIsNoSegmentAndStaysAsItWas) {
  DatabankWriter writer;
  ASSERT_FALSE(writer.add(river_of({{1, 2}, {3, 4}})));
  const std::string before = file_of(writer);
  const auto why = [&writer](const kzgis::Segment& segment) {
    const kzgis::Error error = writer.add(segment);
    EXPECT_EQ(error.kind, ErrorKind::bad_argument);
    return error.message;
  };
  EXPECT_EQ(why(river_of({{1, 2}})), "a segment has less than two points");
  EXPECT_EQ(why(river_of({{1, 2}, {3, 4}}, 16)), "a segment's level is not 0 to 15");
  EXPECT_EQ(why(river_of({{1, 2}, {3, 4}}, -1)), "a segment's level is not 0 to 15");
  EXPECT_EQ(why(river_of({{1, 2}, {324001, 4}})),
            "a latitude is not -324000 to 324000 arc-seconds");
  EXPECT_EQ(why(river_of({{-324001, 2}, {3, 4}})),
            "a latitude is not -324000 to 324000 arc-seconds");
  EXPECT_EQ(why(river_of({{1, 1296000}, {3, 4}})), "a longitude is not 0 to 1295999 arc-seconds");
  EXPECT_EQ(why(river_of({{1, 1}, {3, -1}})), "a longitude is not 0 to 1295999 arc-seconds");
  kzgis::Segment segment = river_of({{1, 2}, {3, 4}});
  segment.lat.push_back(5);
  EXPECT_EQ(why(segment), "a segment has not as many latitudes as longitudes");
  segment = river_of({{1, 2}, {3, 4}});
  segment.theme = static_cast<Theme>(4);
  EXPECT_EQ(why(segment), "a segment of no theme");
  segment = river_of({{1, 2}, {3, 4}});
  segment.continent = static_cast<Continent>(5);
  EXPECT_EQ(why(segment), "a segment of no continent");
  EXPECT_EQ(file_of(writer), before);
}

class RoundTrip : public BankTest {
 protected:
  /// What `WorldMap` makes of the rivers of the whole globe.
  Lines map_lines() const {
    WorldMap map;
    ask_for_all(map);
    for (infoLevels level = Level0; level != NumInfoLevels; increment(level)) {
      map.setPOI(River, level, 1);
    }
    map.readData();
    return lines_of(map, River);
  }

  Lines bank_lines() const {
    Lines lines;
    const auto bank = kzgis::read_databank(root_);
    EXPECT_TRUE(bank && bank->damaged.empty());
    for (const kzgis::Segment& segment : bank->segments) {
      lines.emplace_back();
      for (std::size_t i = 0; i < segment.lat.size(); ++i) {
        lines.back().emplace_back(segment.lat[i], segment.lon[i]);
      }
    }
    return lines;
  }

  /// What a map of a box loads of the lines.
  Lines load_box(const Lines& lines, const LatLon& low, const LatLon& up) const {
    DatabankWriter writer;
    for (const ArcLine& line : lines) EXPECT_FALSE(writer.add(river_of(line)));
    EXPECT_FALSE(writer.write(root_));
    WorldMap map(root_.c_str());
    map.setPOI(River, Level0, 1);
    map.setPrecision(0);
    *map.fetchLowLeftBoundary() = low;
    *map.fetchUpRightBoundary() = up;
    map.readData();
    return lines_of(map, River);
  }
};

/// Lines that find the reader's strict comparisons: along the poles, the meridian of
/// Greenwich and its other side, across it, standing still, and far away.
ArcLine random_line(std::mt19937& random) {
  const auto within = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  const int kind = within(0, 6);
  int lat = within(-324000, 324000);
  int lon = within(0, 1295999);
  if (kind == 1) lat = within(0, 1) == 0 ? -324000 : 324000;
  if (kind == 2) lon = within(0, 1) == 0 ? 0 : 1295999;
  if (kind == 3) lon = within(1295900, 1296100) % 1296000;
  ArcLine line{{lat, lon}};
  const int step = kind == 4 ? 200000 : kind == 5 ? 0 : 150;
  for (int n = within(1, 40); n > 0; --n) {
    if (kind != 1) lat = std::clamp(lat + within(-step, step), -324000, 324000);
    if (kind != 2) lon = (lon + within(-step, step) + 1296000) % 1296000;
    line.emplace_back(lat, lon);
  }
  return line;
}

TEST_F(RoundTrip, GivesEveryPointBackToBothReaders) {
  for (unsigned seed = 1; seed <= 100; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    DatabankWriter writer;
    Lines lines;
    for (int n = 0; n < 30; ++n) {
      lines.push_back(random_line(random));
      ASSERT_FALSE(writer.add(river_of(lines.back(), n % 16)));
    }
    ASSERT_FALSE(writer.write(root_));
    EXPECT_EQ(map_lines(), lines);
    EXPECT_EQ(bank_lines(), lines);
  }
}

TEST_F(RoundTrip, ReachesBoxesAcrossLongitudeZero) {
  const ArcLine on_meridian{{0, 0}, {3600, 0}};
  EXPECT_EQ(load_box({on_meridian, {{7200, 1290000}, {7200, 6000}}}, LatLon(-10.0, 350.0),
                     LatLon(10.0, 10.0)),
            (Lines{on_meridian, {{7200, 1290000}, {7200, 1295999}}, {{7200, 0}, {7200, 6000}}}));
}

TEST_F(RoundTrip, ReachesBoxesThatEndShortOfAnyPointPastLongitudeZero) {
  // Readers look at the western end alone: the least longitude, 36000, is east of this box.  A
  // box across longitude 0 ends a line with the point outside.
  const ArcLine line{{0, 1290000}, {0, 1292000}, {0, 36000}};
  EXPECT_EQ(load_box({line}, LatLon(-10.0, 350.0), LatLon(10.0, 5.0)), Lines{line});
}

class DatabankWriterFiles : public BankTest {
 protected:
  /// Two files of an earlier bank.
  void write_old() const {
    std::filesystem::create_directories(root_ + "/asia.Map");
    write("asia.Map/riv.cbd", "old");
    write("asia.Map/cil.cbd", "old");
  }

  /// The files below the directory, sorted.
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root_)) {
      if (entry.is_regular_file()) {
        names.push_back(entry.path().string().substr(root_.size() + 1));
      }
    }
    std::sort(names.begin(), names.end());
    return names;
  }
};

using Names = std::vector<std::string>;

TEST_F(DatabankWriterFiles, AreThoseOfEveryContinentForEachTheme) {
  std::filesystem::remove_all(root_);
  write_old();
  DatabankWriter writer;
  ASSERT_FALSE(writer.add(river_of({{1, 2}, {3, 4}})));
  EXPECT_TRUE(writer.has(Theme::rivers));
  EXPECT_FALSE(writer.has(Theme::coasts));
  ASSERT_FALSE(writer.write(root_));
  EXPECT_EQ(files(), (Names{"africa.Map/riv.cbd", "asia.Map/cil.cbd", "asia.Map/riv.cbd",
                            "europe.Map/riv.cbd", "namer.Map/riv.cbd", "samer.Map/riv.cbd"}));
  EXPECT_EQ(std::filesystem::file_size(root_ + "/asia.Map/riv.cbd"), 20U);
  EXPECT_EQ(std::filesystem::file_size(root_ + "/asia.Map/cil.cbd"), 3U);
  EXPECT_EQ(std::filesystem::file_size(root_ + "/europe.Map/riv.cbd"), file_of(writer).size());
}

TEST_F(DatabankWriterFiles, StayAsTheyWereWhereOneCannotBeWritten) {
  write_old();
  // A directory stands where the last continent's would be.
  std::filesystem::remove_all(root_ + "/samer.Map");
  write("samer.Map", "in the way");
  const Names before = files();
  DatabankWriter writer;
  ASSERT_FALSE(writer.add(river_of({{1, 2}, {3, 4}})));
  const kzgis::Error error = writer.write(root_);
  EXPECT_EQ(error.kind, ErrorKind::cannot_write);
  EXPECT_EQ(error.message, root_ + "/samer.Map/riv.cbd: cannot be written");
  EXPECT_EQ(files(), before);
  EXPECT_EQ(std::filesystem::file_size(root_ + "/asia.Map/riv.cbd"), 3U);
}

TEST_F(DatabankWriterFiles, GoWherePathVariablesSay) {
  DatabankWriter writer;
  ASSERT_FALSE(writer.add(river_of({{1, 2}, {3, 4}})));
  ASSERT_EQ(setenv("KZGIS_TEST_BANK", root_.c_str(), 1), 0);
  ASSERT_FALSE(writer.write("$KZGIS_TEST_BANK/new"));
  EXPECT_TRUE(std::filesystem::exists(root_ + "/new/europe.Map/riv.cbd"));
  EXPECT_EQ(writer.write(std::string(1100, 'x')).kind, ErrorKind::cannot_write);
}

}  // namespace
