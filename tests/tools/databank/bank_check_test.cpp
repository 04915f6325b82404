#include "tools/databank/bank_check.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tools/databank/bank_dir.h"
#include "tools/support/command_error.h"

namespace {

using kzgis::databank::BankSummary;
using kzgis::databank::BankWriter;
using kzgis::databank::Segment;

class BankCheck : public BankTest {
 protected:
  /// Two segments: of level 2, three points from 10 N, 20 E; of level 9, two points.
  static std::string sound_file() {
    BankWriter writer;
    writer.add_line(Line{{36000, 72000}, {36010, 72010}, {36000, 72600}}, 2, 1024);
    writer.add_line(Line{{-36000, 1}, {-36001, 1295999}}, 9, 1024);
    std::ostringstream out;
    writer.write(out);
    return out.str();
  }

  void check(const std::string& bytes) {
    file_ = write("africa.Map/cil.cbd", bytes);
    summary_ = kzgis::databank::check_bank(
        file_, [this](const Segment& segment) { segments_.push_back(segment); },
        [this](const std::string& line) { complaints_.push_back(line.substr(file_.size() + 2)); });
  }

  std::string file_;
  BankSummary summary_;
  std::vector<Segment> segments_;
  std::vector<std::string> complaints_;
};

using Complaints = std::vector<std::string>;

TEST_F(BankCheck, SumsUpASoundFile) {
  check(sound_file());
  EXPECT_EQ(complaints_, Complaints{});
  EXPECT_EQ(summary_.file_bytes, sound_file().size());
  EXPECT_EQ(summary_.dictionary_offset_bytes, 20U);
  EXPECT_EQ(summary_.claimed_segments, 2U);
  EXPECT_EQ(summary_.segments, 2U);
  EXPECT_EQ(summary_.points, 5U);
  EXPECT_EQ(summary_.levels[2].segments, 1U);
  EXPECT_EQ(summary_.levels[2].points, 3U);
  EXPECT_EQ(summary_.levels[9].points, 2U);
  EXPECT_EQ(summary_.extent.north, 36010);
  EXPECT_EQ(summary_.extent.south, -36001);
  EXPECT_EQ(summary_.extent.west, 1);
  EXPECT_EQ(summary_.extent.east, 1295999);
  ASSERT_EQ(segments_.size(), 2U);
  EXPECT_EQ(segments_[0].level, 2U);
  EXPECT_EQ(segments_[0].points, 3U);
  EXPECT_EQ(segments_[0].extent.east, 72600);
  EXPECT_EQ(segments_[0].offset_bytes, 76U);
}

TEST_F(BankCheck, RefusesOtherFiles) {
  for (const std::string& bytes : {std::string(), std::string("\x02\x00\x77\x20", 4),
                                   std::string(20, '\0'), std::string(100, '\x20')}) {
    EXPECT_THROW(check(bytes), kzgis::tools::CommandError) << bytes.size();
  }
}

TEST_F(BankCheck, NamesADictionaryPastTheEnd) {
  std::string bytes = sound_file();
  bytes[7] = '\x7F';
  check(bytes);
  EXPECT_EQ(complaints_, Complaints{"the dictionary lies at byte 2130706452, past the end"});
  EXPECT_EQ(summary_.segments, 0U);
}

TEST_F(BankCheck, NamesMissingEntries) {
  std::string bytes = sound_file();
  bytes[8] = '\xFF';
  bytes[11] = '\xFF';
  check(bytes);
  ASSERT_FALSE(complaints_.empty());
  EXPECT_EQ(complaints_[0], "the header says 4278190335 segments; the dictionary holds 3");
}

TEST_F(BankCheck, NamesASegmentPastTheEnd) {
  std::string bytes = sound_file();
  bytes[20 + 22] = '\x01';
  check(bytes);
  EXPECT_EQ(complaints_, Complaints{"segment 1 lies past the end, at byte 65612"});
}

TEST_F(BankCheck, NamesTheSegmentThatTheFileCutsOff) {
  const std::string bytes = sound_file();
  check(bytes.substr(0, bytes.size() - 3));
  EXPECT_EQ(complaints_, Complaints{"segment 2 claims 3 points; the file ends after 1"});
}

TEST_F(BankCheck, NamesLevelsThatDoNotExist) {
  std::string bytes = sound_file();
  bytes[20 + 26] = 16;
  check(bytes);
  EXPECT_EQ(complaints_, Complaints{"segment 1 is of level 16; there are 0 to 15"});
}

TEST_F(BankCheck, NamesEndsThatThePointsLeave) {
  std::string bytes = sound_file();
  bytes[20 + 4] = static_cast<char>(bytes[20 + 4] - 3);  // the north end
  check(bytes);
  EXPECT_EQ(complaints_, Complaints{"segment 1 leaves the ends that its dictionary entry gives"});
}

TEST_F(BankCheck, TakesEndsOfAnySize) {
  std::string bytes = sound_file();
  bytes.replace(20 + 4, 16,
                "\xFF\xFF\xFF\x7F"   // north 2147483647
                "\x01\x00\x00\x80"   // south -2147483646
                "\xFF\xFF\xFF\x7F"   // east
                "\x01\x00\x00\x00",  // west 1
                16);
  check(bytes);
  EXPECT_EQ(complaints_, Complaints{});
  EXPECT_EQ(segments_[0].extent.north, 2147483647);
  EXPECT_EQ(segments_[0].extent.south, -2147483646);
  EXPECT_EQ(segments_[0].extent.east, 2147483647);
  EXPECT_EQ(segments_[0].extent.west, 1);
  bytes[20 + 19] = '\x7F';
  check(bytes);
  EXPECT_EQ(complaints_, Complaints{"segment 1 leaves the ends that its dictionary entry gives"});
}

TEST_F(BankCheck, TakesAWesternEndPastTheEasternForTheWayAcrossZero) {
  // The second segment runs between the longitudes 1 and 1295999.
  const std::string east_of_west("\x0A\x00\x00\x00\x76\xC6\x13\x00", 8);  // 10, 1295990
  std::string bytes = sound_file();
  bytes.replace(48 + 12, 8, east_of_west);
  check(bytes);
  EXPECT_EQ(complaints_, Complaints{});
  bytes = sound_file();
  bytes.replace(20 + 12, 8, east_of_west);  // the first one runs from 72000
  check(bytes);
  EXPECT_EQ(complaints_, Complaints{"segment 1 leaves the ends that its dictionary entry gives"});
}

TEST_F(BankCheck, StandsStillForADeltaBeyondATurn) {
  std::string bytes = sound_file();
  // Behind the first delta, in place of one of eight bytes: 1 to the east, 16384 * 65536 south.
  bytes.replace(76 + 18 + 2, 8, std::string("\x00\x00\x01\x00\x00\x80\x00\x00", 8));
  check(bytes);
  EXPECT_EQ(complaints_, Complaints{});
  EXPECT_EQ(summary_.points, 5U);
}

TEST_F(BankCheck, NamesASegmentThatLeavesTheGlobe) {
  std::string bytes = sound_file();
  bytes[76 + 6] = '\x10';  // the first latitude: 36000 becomes 1084576
  check(bytes);
  EXPECT_EQ(complaints_, Complaints{"segment 1 leaves the globe"});
}

// Without a limit this file would take as long as its counts: 4 billion points each.
TEST_F(BankCheck, StopsWhereSegmentsShareTheirBytes) {
  std::string bytes = sound_file();
  for (const std::size_t at : {20U, 48U}) bytes[at + 20] = 76;
  for (int n = 0; n < 4; ++n) bytes[76 + 12 + static_cast<std::size_t>(n)] = '\xFF';
  check(bytes);
  EXPECT_EQ(complaints_[0].substr(0, 27), "segment 1 claims 4294967295");
}

TEST_F(BankCheck, SaysAtMostTwentyFlawsAndHowManyMore) {
  BankWriter writer;
  for (int n = 0; n < 30; ++n) writer.add_line(Line{{0, 10}, {0, 20}}, 0, 1024);
  std::ostringstream out;
  writer.write(out);
  std::string bytes = out.str();
  for (std::size_t n = 0; n < 30; ++n) bytes[20 + n * 28 + 26] = 17;
  check(bytes);
  ASSERT_EQ(complaints_.size(), 21U);
  EXPECT_EQ(complaints_.back(), "10 more flaws");
}

}  // namespace
