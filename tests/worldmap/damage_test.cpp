// Data bank files cut at every byte, with every byte of their structures replaced, and
// changing while they are read: what loads is bounded by the file, and the map serves the
// next file as if nothing had been.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "support/capture.h"
#include "support/time_limit.h"
#include "worldmap/bank.h"

namespace {

constexpr std::size_t kHeaderBytes = 20;
constexpr std::size_t kEntryBytes = 28;
constexpr std::size_t kSegmentHeaderBytes = 18;
constexpr std::size_t kSparePoints = 65536;  // what a damaged file may give beyond its size

const std::vector<Segment> kSegments{segment_through({{100, 200}, {300, 400}, {500, 600}}),
                                     segment_through({{-7, 7}, {-700, 700}}),
                                     segment_through({{9, 1295000}, {90, 1295900}})};
const std::vector<ArcLine> kWhole{
    {{100, 200}, {300, 400}, {500, 600}}, {{-7, 7}, {-700, 700}}, {{9, 1295000}, {90, 1295900}}};

class WorldMapDamage : public BankTest {
 protected:
  /// Loads a damaged file, then a whole one with the same map; gives what the first held.
  std::vector<ArcLine> load_damaged(const std::string& bytes) {
    const StderrCapture err;
    write("africa.Map/cil.cbd", bytes);
    WorldMap map;
    ask_for_all(map);
    {
      const LessThanASecond limit;
      map.readData();
    }
    std::vector<ArcLine> lines = lines_of(map);
    std::size_t points = 0;
    for (const ArcLine& line : lines) points += line.size();
    EXPECT_LE(points, bytes.size() + kSparePoints);
    const std::set<std::string> documented{"", "CIA: File has bad magic number\n",
                                           "CIA: bad seek\n"};
    EXPECT_TRUE(documented.contains(err.text())) << err.text();

    write("africa.Map/cil.cbd", cbd_file(kSegments));
    map.readData();
    EXPECT_EQ(lines_of(map), kWhole);
    return lines;
  }
};

TEST_F(WorldMapDamage, OfTheEndLeavesWhatTheWholeEntriesName) {
  const std::string whole = cbd_file(kSegments);
  const std::size_t dictionary = whole.size() - kSegments.size() * kEntryBytes;
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    SCOPED_TRACE("cut at byte " + std::to_string(length));
    const std::size_t entries = length < dictionary ? 0 : (length - dictionary) / kEntryBytes;
    // Behind the header too, the file must have room for the entries that it claims.
    const std::vector<ArcLine> expected(kWhole.begin(),
                                        kWhole.begin() + static_cast<std::ptrdiff_t>(entries));
    ASSERT_EQ(load_damaged(whole.substr(0, length)), expected);
  }
}

TEST_F(WorldMapDamage, OfAnyByteOfTheStructuresIsBounded) {
  const std::string whole = cbd_file(kSegments);
  const std::size_t dictionary = whole.size() - kSegments.size() * kEntryBytes;
  for (std::size_t place = 0; place < whole.size(); ++place) {
    if (place == kHeaderBytes + kSegmentHeaderBytes + 30)
      place = dictionary;  // one segment will do
    for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
      SCOPED_TRACE("byte " + std::to_string(place) + " is " + std::to_string(value));
      std::string damaged = whole;
      damaged[place] = static_cast<char>(value);
      load_damaged(damaged);
      if (HasFailure()) return;
    }
  }
}

/// Gives the file another length as soon as loading reports that it is under way.
struct Resizer {
  std::string path;
  std::size_t length;

  static void at_report(int percent, const char*, void* self) {
    const auto* resizer = static_cast<const Resizer*>(self);
    if (percent == 50) std::filesystem::resize_file(resizer->path, resizer->length);
  }
};

TEST_F(WorldMapDamage, OfAFileThatChangesLengthWhileItIsReadIsSurvived) {
  // More than is in memory at a time, far more segments than ten.
  std::vector<Segment> segments;
  ArcLine line;
  for (int i = 0; i < 200; ++i) line.emplace_back(i * 3, i * 5);
  for (int i = 0; i < 400; ++i) segments.push_back(segment_through(line));
  const std::string bytes = cbd_file(segments);
  for (const std::size_t length :
       {std::size_t{0}, std::size_t{1000}, bytes.size() / 2, bytes.size() - 1, 2 * bytes.size()}) {
    SCOPED_TRACE(length);
    write("africa.Map/cil.cbd", bytes);
    Resizer resizer{root_ + "/africa.Map/cil.cbd", length};
    const OMstatus_handler former = OMstatus_set_handler(&Resizer::at_report, &resizer);
    WorldMap map;
    ask_for_all(map);
    {
      const LessThanASecond limit;
      map.readData();
    }
    OMstatus_set_handler(former, nullptr);
    const std::vector<ArcLine> lines = lines_of(map);
    ASSERT_GE(lines.size(), 150U);
    ASSERT_LE(lines.size(), 400U);
    for (std::size_t i = 0; i < 150; ++i) ASSERT_EQ(lines[i], line);
    std::size_t points = 0;
    for (const ArcLine& l : lines) points += l.size();
    EXPECT_LE(points, bytes.size() + kSparePoints);
  }
}

}  // namespace
