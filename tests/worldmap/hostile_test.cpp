// Files that are cut off, damaged or made up: what they still give, and that nothing of it
// takes long or much.

#include <gtest/gtest.h>

#include "support/capture.h"
#include "support/named_pipe.h"
#include "support/time_limit.h"
#include "worldmap/bank.h"

namespace {

using Lines = std::vector<ArcLine>;

class HostileTest : public BankTest {
 protected:
  std::size_t points_of(const Lines& lines) const {
    std::size_t points = 0;
    for (const ArcLine& line : lines) points += line.size();
    return points;
  }

  /// A file whose one segment stands at its end, so that the end cuts its deltas.
  static std::string ending_in(const Segment& segment) {
    return cbd_header(20, 1) + segment.entry(48) + segment.data();
  }
};

using ReaderAtTheEnd = HostileTest;

TEST_F(ReaderAtTheEnd, RepeatsTheLastWord) {
  Segment segment;
  segment.count = 6;
  segment.deltas = short_delta(1, 2) + short_delta(3, 5);
  EXPECT_EQ(load(ending_in(segment)), (Lines{{{0, 0}, {2, 1}, {7, 4}, {12, 7}, {17, 10}}}));
}

TEST_F(ReaderAtTheEnd, RepeatsTheLastWordWithinALongDelta) {
  Segment segment;
  segment.count = 4;
  // Longitude 0 * 65536 + 1, latitude 1 * 65536 + 1, then all words 1.
  segment.deltas = u16(0) + u16(1);
  EXPECT_EQ(load(ending_in(segment)), (Lines{{{0, 0}, {65537, 1}, {131074, 65538}}}));
  segment.deltas = u16(0) + u16(1) + u16(0);
  EXPECT_EQ(load(ending_in(segment)), (Lines{{{0, 0}, {0, 1}, {0, 1}}}));
}

TEST_F(ReaderAtTheEnd, TakesHalfAWordForNone) {
  Segment segment;
  segment.count = 4;
  segment.deltas = short_delta(1, 2) + "\x45";
  EXPECT_EQ(load(ending_in(segment)), (Lines{{{0, 0}, {2, 1}, {4, 2}}}));
}

TEST_F(ReaderAtTheEnd, BeginsWithTheWordBeforeTheDeltas) {
  Segment segment;
  segment.count = 4;
  std::string file = ending_in(segment);
  file.replace(file.size() - 2, 2, short_delta(7, 9));  // the header's unused half-word
  EXPECT_EQ(load(file), (Lines{{{0, 0}, {9, 7}, {18, 14}}}));
}

TEST_F(ReaderAtTheEnd, TakesWhatIsMissingOfAHeaderFromTheSegmentBefore) {
  const Segment whole = segment_through({{100, 200}, {300, 400}});
  // Of the second header there is the longitude, and half of the latitude.
  const std::string file = cbd_header(20, 2) + whole.entry(76) +
                           whole.entry(76 + whole.data().size()) + whole.data() + i32(5) + "\1\2";
  // The half-word of the first header, 0xCDCD, repeats: -51 in both.
  EXPECT_EQ(load(file), (Lines{{{100, 200}, {300, 400}}, {{100, 5}, {49, 1295954}}}));
}

TEST_F(ReaderAtTheEnd, OfAFirstHeaderHasNothing) {
  const std::string file = cbd_header(20, 1) + Segment().entry(48);
  EXPECT_EQ(load(file), Lines{});
  EXPECT_EQ(load(file + i32(5) + i32(6) + u32(0)), Lines{});
}

TEST_F(ReaderAtTheEnd, ReadsOnAfterASegmentThatMetIt) {
  Segment cut;
  cut.count = 3;
  const Segment whole = segment_through({{100, 200}, {300, 400}});
  const std::string body = whole.data();
  EXPECT_EQ(load(cbd_header(20, 3) + cut.entry(76 + 28 + body.size()) + whole.entry(76 + 28) +
                 cut.entry(76 + 28 + body.size()) + body + cut.data()),
            (Lines{{{0, 0}, {1295949 - 1296000, 1295949}},
                   {{100, 200}, {300, 400}},
                   {{0, 0}, {-51, 1295949}}}));
}

using ReaderHostile = HostileTest;

TEST_F(ReaderHostile, CountOfFourBillionEntriesIsWhatTheFileHolds) {
  std::string file = cbd_file({segment_through({{1, 2}, {3, 4}})});
  file.replace(8, 4, u32(0xFFFFFFFF));
  const ProgressCapture progress;
  EXPECT_EQ(load(file), (Lines{{{1, 2}, {3, 4}}}));
  EXPECT_EQ(progress.percents, (std::vector<int>{0, 100, 100, 0, 0, 0, 0}));
}

TEST_F(ReaderHostile, DictionaryPastTheEndIsEmpty) {
  const StderrCapture err;
  EXPECT_EQ(load(cbd_header(1000, 5) + std::string(100, 'x')), Lines{});
  EXPECT_EQ(load(cbd_header(0xFFFFFFFF, 0xFFFFFFFF)), Lines{});
  EXPECT_EQ(err.text(), "");
}

TEST_F(ReaderHostile, SegmentPastTheEndHasNothing) {
  const Segment whole = segment_through({{100, 200}, {300, 400}});
  for (const std::size_t offset :
       {std::size_t{1000}, std::size_t{0x7FFFFFFF}, std::size_t{0xFFFFFFFF}}) {
    const StderrCapture err;
    EXPECT_EQ(load(cbd_header(20, 2) + whole.entry(offset) + whole.entry(76) + whole.data()),
              (Lines{{{100, 200}, {300, 400}}}));
    EXPECT_EQ(err.text(), "");
  }
}

TEST_F(ReaderHostile, CountOfFourBillionPointsEndsSoon) {
  Segment segment;
  segment.count = 0xFFFFFFFF;
  segment.deltas = short_delta(1, 0);
  const std::string file = ending_in(segment);
  ASSERT_EQ(file.size(), 68U);
  // Along a parallel that the box holds whole: the line would never leave it.
  const Lines lines = load(file);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].size(), 68 + 65536 - 1U);
  EXPECT_EQ(lines[0].back(), ArcPoint(0, 68 + 65536 - 2));
}

TEST_F(ReaderHostile, ManySegmentsOfTheSameBytesAreBounded) {
  // Each of 500 entries claims the same 4 billion points.
  Segment segment;
  segment.count = 0xFFFFFFFF;
  segment.deltas = short_delta(1, 0);
  std::string file = cbd_header(20, 500);
  for (int i = 0; i < 500; ++i) file += segment.entry(20 + 500 * 28);
  file += segment.data();
  const Lines lines = load(file);
  EXPECT_EQ(lines.size(), 1U);
  EXPECT_EQ(points_of(lines), file.size() + 65536 - 1);
}

TEST_F(ReaderHostile, CountWithinTheSparePointsIsKept) {
  Segment segment;
  segment.count = 60000;
  segment.deltas = short_delta(0, 5);
  EXPECT_EQ(points_of(load(ending_in(segment))), 59999U);
}

TEST_F(ReaderHostile, FirstPointsAtTheEndsOf32Bits) {
  for (const std::int32_t lon : {INT32_MAX, INT32_MIN + 1, 1296000, -1296000}) {
    for (const std::int32_t lat : {INT32_MAX, INT32_MIN + 1, 324001, -324001}) {
      Segment segment;
      segment.lon = lon;
      segment.lat = lat;
      segment.count = 100;
      segment.deltas = long_delta(1296000, 1296000) + long_delta(-1296000, -1296000);
      for (const int west : {0, 1000000}) {
        EXPECT_EQ(load(ending_in(segment),
                       [&](WorldMap& map) { set_box(map, -324000, west, 324000, 999999); }),
                  Lines{});
      }
    }
  }
  // -2147483647 is 1284353 past 1658 turns to the west.
  Segment segment;
  segment.lon = INT32_MIN + 1;
  segment.count = 3;
  segment.deltas = short_delta(1, 1);
  EXPECT_EQ(load(ending_in(segment)), (Lines{{{0, 1284353}, {1, 1284354}}}));
  // 2147483647 is outside every box.  A step west goes east by 1295999, past 32 bits to
  // -2146187650, which is 1284350 past 1657 turns to the west.
  segment.lon = INT32_MAX;
  segment.count = 4;
  segment.deltas = short_delta(-1, 1);
  EXPECT_EQ(load(ending_in(segment)), (Lines{{{1, 1284350}, {2, 1284349}}}));
}

TEST_F(ReaderHostile, DirectoryIsNoMap) {
  std::filesystem::create_directory(root_ + "/africa.Map/cil.cbd");
  const StderrCapture err;
  WorldMap map;
  ask_for_all(map);
  map.readData();
  EXPECT_EQ(lines_of(map), Lines{});
  EXPECT_EQ(err.text(), "CIA: File has bad magic number\n");
}

TEST_F(ReaderHostile, DeviceWithoutEndIsNoMap) {
  if (!std::filesystem::exists("/dev/zero")) GTEST_SKIP() << "no /dev/zero";
  std::filesystem::create_symlink("/dev/zero", root_ + "/africa.Map/cil.cbd");
  const StderrCapture err;
  const LessThanASecond limit;
  WorldMap map;
  ask_for_all(map);
  map.readData();
  EXPECT_EQ(lines_of(map), Lines{});
  EXPECT_EQ(err.text(), "CIA: File has bad magic number\n");
}

TEST_F(ReaderHostile, NamedPipeIsNotWaitedFor) {
  const NamedPipe pipe(root_ + "/africa.Map/cil.cbd");
  WorldMap map;
  ask_for_all(map);
  const StdoutCapture out;
  map.setVerbose(1);
  map.readData();
  map.setVerbose(0);
  EXPECT_NE(out.text().find("CIA: Could not open file " + root_ + "\\africa.Map\\cil.cbd\n"),
            std::string::npos);
}

}  // namespace
