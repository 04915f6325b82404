// The look into a single outline file: its sums, and a sentence for each thing that is wrong.

#include <gtest/gtest.h>

#include "kzgis/databank.h"
#include "worldmap/bank.h"

namespace {

using kzgis::DatabankFile;
using kzgis::ErrorKind;
using Flaws = std::vector<std::string>;

class DatabankFileTest : public BankTest {
 protected:
  /// Two segments behind their dictionary: of level 2, three points from 10 N, 20 E; of level
  /// 9, two points.  Byte 76 begins the first, 112 the second.
  static std::string sound_file() {
    Segment first;
    first.lat = 36000;
    first.lon = 72000;
    first.count = 4;
    first.deltas = short_delta(10, 10) + long_delta(590, -10) + short_delta(0, 0);
    first.level = 2;
    first.max_lat = 36010;
    first.min_lat = 36000;
    first.max_lon = 72600;
    first.min_lon = 72000;
    Segment second;
    second.lat = -36000;
    second.lon = 1;
    second.count = 3;
    second.deltas = short_delta(-2, -1) + short_delta(0, 0);
    second.level = 9;
    second.max_lat = -36000;
    second.min_lat = -36001;
    return cbd_header(20, 2) + first.entry(76) + second.entry(106) + first.data() + second.data();
  }

  DatabankFile inspect(const std::string& bytes) {
    write("file.cbd", bytes);
    const auto file = kzgis::inspect_databank_file(root_ + "/file.cbd");
    if (!file) ADD_FAILURE() << file.error().message;
    return file ? *file : DatabankFile{};
  }
};

TEST_F(DatabankFileTest, SumsUpASoundFile) {
  const DatabankFile file = inspect(sound_file());
  EXPECT_EQ(file.flaws, Flaws{});
  EXPECT_EQ(file.file_bytes, sound_file().size());
  EXPECT_EQ(file.dictionary_offset_bytes, 20U);
  EXPECT_EQ(file.claimed_segments, 2U);
  EXPECT_EQ(file.total.segments, 2U);
  EXPECT_EQ(file.total.points, 5U);
  EXPECT_EQ(file.levels[2].segments, 1U);
  EXPECT_EQ(file.levels[2].points, 3U);
  EXPECT_EQ(file.levels[9].points, 2U);
  EXPECT_EQ(file.extent.north, 36010);
  EXPECT_EQ(file.extent.south, -36001);
  EXPECT_EQ(file.extent.west, 1);
  EXPECT_EQ(file.extent.east, 1295999);
  ASSERT_EQ(file.entries.size(), 2U);
  EXPECT_EQ(file.entries[0].level, 2U);
  EXPECT_EQ(file.entries[0].points, 3U);
  EXPECT_EQ(file.entries[0].extent.east, 72600);
  EXPECT_EQ(file.entries[0].offset_bytes, 76U);
}

TEST_F(DatabankFileTest, RefusesOtherFiles) {
  for (const std::string& bytes : {std::string(), std::string("\x02\x00\x77", 3),
                                   std::string(20, '\0'), std::string(100, '\x20')}) {
    write("file.cbd", bytes);
    const auto file = kzgis::inspect_databank_file(root_ + "/file.cbd");
    ASSERT_FALSE(file) << bytes.size();
    EXPECT_EQ(file.error().kind, ErrorKind::bad_data);
    EXPECT_EQ(file.error().message,
              root_ + "/file.cbd: not an outline file: it does not begin with 0x20770002");
  }
  const auto missing = kzgis::inspect_databank_file(root_ + "/nothing.cbd");
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.error().kind, ErrorKind::cannot_read);
  EXPECT_EQ(missing.error().message, root_ + "/nothing.cbd: No such file or directory");
}

TEST_F(DatabankFileTest, NamesADictionaryPastTheEnd) {
  std::string bytes = sound_file();
  bytes[7] = '\x7F';
  const DatabankFile file = inspect(bytes);
  EXPECT_EQ(file.flaws, Flaws{"the dictionary lies at byte 2130706452, past the end"});
  EXPECT_EQ(file.total.segments, 0U);
}

TEST_F(DatabankFileTest, NamesMissingEntries) {
  std::string bytes = sound_file();
  bytes[8] = '\xFF';
  bytes[11] = '\xFF';
  const Flaws flaws = inspect(bytes).flaws;
  ASSERT_FALSE(flaws.empty());
  EXPECT_EQ(flaws[0], "the header says 4278190335 segments; the dictionary holds 3");
}

TEST_F(DatabankFileTest, NamesASegmentPastTheEnd) {
  std::string bytes = sound_file();
  bytes[20 + 22] = '\x01';
  EXPECT_EQ(inspect(bytes).flaws, Flaws{"segment 1 lies past the end, at byte 65612"});
}

TEST_F(DatabankFileTest, NamesTheSegmentThatTheFileCutsOff) {
  const std::string bytes = sound_file();
  const auto cut = [&bytes](std::size_t by) { return bytes.substr(0, bytes.size() - by); };
  // Without the last delta every point is there, and the file is not whole all the same.
  EXPECT_EQ(inspect(cut(1)).flaws, Flaws{"segment 2 claims 3 points; the file ends after 2"});
  EXPECT_EQ(inspect(cut(3)).flaws, Flaws{"segment 2 claims 3 points; the file ends after 1"});
  EXPECT_EQ(inspect(cut(5)).flaws, Flaws{"segment 2 lies past the end, at byte 106"});
}

TEST_F(DatabankFileTest, NamesADeltaOfFourWordsThatTheFileCutsOff) {
  Segment segment = segment_through({{0, 0}, {0, 70000}});
  segment.deltas.resize(7);
  EXPECT_EQ(inspect(cbd_header(20, 1) + segment.entry(48) + segment.data()).flaws,
            Flaws{"segment 1 claims 3 points; the file ends after 1"});
}

TEST_F(DatabankFileTest, NamesLevelsThatDoNotExist) {
  std::string bytes = sound_file();
  bytes[20 + 26] = 16;
  const DatabankFile file = inspect(bytes);
  EXPECT_EQ(file.flaws, Flaws{"segment 1 is of level 16; there are 0 to 15"});
  EXPECT_EQ(file.total.points, 5U);
}

TEST_F(DatabankFileTest, NamesEndsThatThePointsLeave) {
  std::string bytes = sound_file();
  bytes[20 + 4] = static_cast<char>(bytes[20 + 4] - 3);  // the north end
  EXPECT_EQ(inspect(bytes).flaws,
            Flaws{"segment 1 leaves the ends that its dictionary entry gives"});
}

TEST_F(DatabankFileTest, TakesEndsOfAnySize) {
  std::string bytes = sound_file();
  bytes.replace(20 + 4, 16, i32(INT32_MAX) + i32(INT32_MIN + 2) + i32(INT32_MAX) + i32(1));
  const DatabankFile file = inspect(bytes);
  EXPECT_EQ(file.flaws, Flaws{});
  EXPECT_EQ(file.entries[0].extent.north, INT32_MAX);
  EXPECT_EQ(file.entries[0].extent.south, INT32_MIN + 2);
  EXPECT_EQ(file.entries[0].extent.east, INT32_MAX);
  EXPECT_EQ(file.entries[0].extent.west, 1);
  bytes.replace(20 + 16, 4, i32(INT32_MAX));
  EXPECT_EQ(inspect(bytes).flaws,
            Flaws{"segment 1 leaves the ends that its dictionary entry gives"});
}

TEST_F(DatabankFileTest, TakesAWesternEndPastTheEasternForTheWayAcrossZero) {
  // The second segment runs between the longitudes 1 and 1295999.
  const std::string east_of_west = i32(10) + i32(1295990);
  std::string bytes = sound_file();
  bytes.replace(48 + 12, 8, east_of_west);
  EXPECT_EQ(inspect(bytes).flaws, Flaws{});
  bytes = sound_file();
  bytes.replace(20 + 12, 8, east_of_west);  // the first one runs from 72000
  EXPECT_EQ(inspect(bytes).flaws,
            Flaws{"segment 1 leaves the ends that its dictionary entry gives"});
}

TEST_F(DatabankFileTest, StandsStillForADeltaBeyondATurn) {
  std::string bytes = sound_file();
  // Behind the first delta, in place of one of eight bytes: 1 to the east, 16384 * 65536 south.
  bytes.replace(76 + 18 + 2, 8, u16(0) + u16(1) + u16(0x8000) + u16(0));
  const DatabankFile file = inspect(bytes);
  EXPECT_EQ(file.flaws, Flaws{});
  EXPECT_EQ(file.total.points, 5U);
}

TEST_F(DatabankFileTest, NamesASegmentThatLeavesTheGlobe) {
  std::string bytes = sound_file();
  bytes.replace(76 + 4, 4, i32(324001));
  EXPECT_EQ(inspect(bytes).flaws, Flaws{"segment 1 leaves the globe"});
  bytes = sound_file();
  bytes.replace(76, 4, i32(1296001));
  EXPECT_EQ(inspect(bytes).flaws, Flaws{"segment 1 leaves the globe"});
}

// Without a limit this file would take as long as its counts: 4 billion points each.
TEST_F(DatabankFileTest, StopsWhereSegmentsShareTheirBytes) {
  std::string bytes = cbd_header(20, 5000);
  Segment segment;
  segment.count = 0xFFFFFFFF;
  for (int i = 0; i < 200; ++i) segment.deltas += short_delta(0, 0);
  for (int i = 0; i < 5000; ++i) bytes += segment.entry(20 + 5000 * 28);
  const DatabankFile file = inspect(bytes + segment.data());
  EXPECT_EQ(file.flaws[0], "segment 1 claims 4294967295 points; the file ends after 201");
  EXPECT_EQ(file.flaws.back(), "1005 more flaws");
  EXPECT_EQ(file.total.points, bytes.size() + 418 + 65536);
}

TEST_F(DatabankFileTest, SaysAtMostTwentyFlawsAndHowManyMore) {
  std::vector<Segment> segments(30, segment_through({{0, 10}, {0, 20}}));
  for (Segment& segment : segments) segment.level = 17;
  const Flaws flaws = inspect(cbd_file(segments)).flaws;
  ASSERT_EQ(flaws.size(), 21U);
  EXPECT_EQ(flaws.back(), "10 more flaws");
}

}  // namespace
