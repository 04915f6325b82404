// One file: its header, its dictionary, which of its segments count, and the bytes of their
// points.  Expectations are worked out by hand from the format's tables.

#include <gtest/gtest.h>

#include "support/capture.h"
#include "worldmap/bank.h"

namespace {

using Lines = std::vector<ArcLine>;

class ReaderTest : public BankTest {
 protected:
  /// What a load of `bytes` writes to standard error.
  std::string complaint(const std::string& bytes) const {
    const StderrCapture err;
    load(bytes);
    return err.text();
  }
};

using ReaderHeader = ReaderTest;

TEST_F(ReaderHeader, TakesTheMagicNumberInLittleEndianOrder) {
  std::string file = cbd_file({segment_through({{1, 2}, {3, 4}})});
  ASSERT_EQ(file.substr(0, 4), std::string("\x02\x00\x77\x20", 4));
  EXPECT_EQ(load(file), (Lines{{{1, 2}, {3, 4}}}));
  file.replace(0, 4, std::string("\x20\x77\x00\x02", 4));
  const StderrCapture err;
  EXPECT_EQ(load(file), Lines{});
  EXPECT_EQ(err.text(), "CIA: File has bad magic number\n");
}

TEST_F(ReaderHeader, RefusesAFileTooShortForTheMagicNumber) {
  EXPECT_EQ(complaint(""), "CIA: File has bad magic number\n");
  EXPECT_EQ(complaint(std::string("\x02\x00\x77", 3)), "CIA: File has bad magic number\n");
}

TEST_F(ReaderHeader, OfAFileThatEndsInItHasNoSegments) {
  EXPECT_EQ(complaint(cbd_header(20, 1).substr(0, 4)), "");
  EXPECT_EQ(complaint(cbd_header(20, 1).substr(0, 11)), "");
  EXPECT_EQ(complaint(cbd_header(20, 1)), "");
}

TEST_F(ReaderHeader, PlacesTheDictionaryAnywhere) {
  const Segment segment = segment_through({{1, 2}, {3, 4}});
  const std::string gap(33, '\x55');
  EXPECT_EQ(load(cbd_header(20 + 33, 1) + gap + segment.entry(20 + 33 + 28) + segment.data()),
            (Lines{{{1, 2}, {3, 4}}}));
}

TEST_F(ReaderHeader, CountsEntriesBeforeTheEndOfTheDictionary) {
  std::string file =
      cbd_file({segment_through({{1, 2}, {3, 4}}), segment_through({{5, 6}, {7, 8}})});
  file[8] = 1;
  EXPECT_EQ(load(file), (Lines{{{1, 2}, {3, 4}}}));
}

using ReaderDictionary = ReaderTest;

TEST_F(ReaderDictionary, UsesOnlyWholeEntries) {
  const std::string file =
      cbd_file({segment_through({{1, 2}, {3, 4}}), segment_through({{5, 6}, {7, 8}})});
  for (std::size_t missing = 1; missing <= 28; ++missing) {
    EXPECT_EQ(load(file.substr(0, file.size() - missing)), (Lines{{{1, 2}, {3, 4}}})) << missing;
  }
  EXPECT_EQ(load(file.substr(0, file.size() - 29)), Lines{});
}

/// Whether a segment with these extents is taken by a box.
struct Extents {
  std::int32_t max_lat, min_lat, max_lon, min_lon;
};
class ReaderSelection : public ReaderTest {
 protected:
  bool selects(const Extents& e, int south, int west, int north, int east) const {
    // The points lie in the box; only the extents vary.
    Segment segment = segment_through({{south, west}, {south, west}});
    segment.max_lat = e.max_lat;
    segment.min_lat = e.min_lat;
    segment.max_lon = e.max_lon;
    segment.min_lon = e.min_lon;
    return !load(cbd_file({segment}), [&](WorldMap& map) {
              set_box(map, south, west, north, east);
            }).empty();
  }
};

TEST_F(ReaderSelection, NeedsExtentsThatOverlapAPlainBox) {
  EXPECT_TRUE(selects({1500, 500, 1500, 500}, 0, 0, 2000, 2000));
  EXPECT_TRUE(selects({1, 0, 1, 0}, 0, 0, 2000, 2000));
  EXPECT_FALSE(selects({0, -9, 1500, 500}, 0, 0, 2000, 2000));
  EXPECT_TRUE(selects({2009, 1999, 1500, 500}, 0, 0, 2000, 2000));
  EXPECT_FALSE(selects({2009, 2000, 1500, 500}, 0, 0, 2000, 2000));
  EXPECT_FALSE(selects({1500, 500, 900, 500}, 0, 900, 2000, 2000));
  EXPECT_TRUE(selects({1500, 500, 901, 500}, 0, 900, 2000, 2000));
  EXPECT_FALSE(selects({1500, 500, 2009, 2000}, 0, 0, 2000, 2000));
  EXPECT_TRUE(selects({1500, 500, 2009, 1999}, 0, 0, 2000, 2000));
}

TEST_F(ReaderSelection, LooksAtTheWesternExtentOnlyForABoxAcrossZero) {
  constexpr int kWest = 1260000;
  EXPECT_TRUE(selects({1500, 500, 0, 1}, 0, kWest, 2000, 2000));
  EXPECT_FALSE(selects({1500, 500, 0, 0}, 0, kWest, 2000, 2000));
  EXPECT_TRUE(selects({1500, 500, 0, 1999}, 0, kWest, 2000, 2000));
  EXPECT_FALSE(selects({1500, 500, 0, 2000}, 0, kWest, 2000, 2000));
  EXPECT_FALSE(selects({1500, 500, 0, kWest}, 0, kWest, 2000, 2000));
  EXPECT_TRUE(selects({1500, 500, 0, kWest + 1}, 0, kWest, 2000, 2000));
  EXPECT_TRUE(selects({1500, 500, 0, 1295999}, 0, kWest, 2000, 2000));
  EXPECT_FALSE(selects({1500, 500, 0, 1296000}, 0, kWest, 2000, 2000));
  EXPECT_FALSE(selects({0, -9, 0, 1}, 0, kWest, 2000, 2000));
  EXPECT_FALSE(selects({2009, 2000, 0, 1}, 0, kWest, 2000, 2000));
}

TEST_F(ReaderSelection, TakesNegativeLongitudesModuloATurn) {
  // -36000 is 1260000.
  EXPECT_TRUE(selects({1500, 500, 0, -35999}, 0, 1260000, 2000, 2000));
  EXPECT_FALSE(selects({1500, 500, 0, -36000}, 0, 1260000, 2000, 2000));
  EXPECT_TRUE(selects({1500, 500, -1295099, -1296000}, 0, 900, 2000, 2000));
  EXPECT_FALSE(selects({1500, 500, -1295100, -1296000}, 0, 900, 2000, 2000));
  // The smallest of all, 1284353 - 1658 * 1296000.
  EXPECT_TRUE(selects({1500, 500, -2147483647, 1}, 0, 1284352, 2000, 1295999));
  EXPECT_FALSE(selects({1500, 500, -2147483647, 1}, 0, 1284353, 2000, 1295999));
}

TEST_F(ReaderSelection, TakesABoxOfOneLongitudeForAPlainOne) {
  EXPECT_TRUE(selects({1500, 500, 1001, 999}, 0, 1000, 2000, 1000));
  EXPECT_FALSE(selects({1500, 500, 1001, 1000}, 0, 1000, 2000, 1000));
  EXPECT_FALSE(selects({1500, 500, 900, 500}, 0, 1000, 2000, 1000));
}

TEST_F(ReaderSelection, TakesRequestedLevelsOfTheThemeAlone) {
  std::vector<Segment> segments;
  for (const std::uint32_t level : {0U, 1U, 15U, 16U, 17U, 18U, 65535U}) {
    segments.push_back(segment_through({{1, static_cast<long>(level)}, {2, 5}}));
    segments.back().level = level;
  }
  const auto levels = [&](auto change) {
    std::vector<long> found;
    for (const ArcLine& line : load(cbd_file(segments), change)) found.push_back(line[0].second);
    return found;
  };
  EXPECT_EQ(levels([](WorldMap&) {}), (std::vector<long>{1}));
  EXPECT_EQ(levels([](WorldMap& map) { map.setPOI(River, Level0, 1); }), (std::vector<long>{1}));
  EXPECT_EQ(levels([](WorldMap& map) {
              for (int level = 0; level < 20; ++level) {
                map.setPOI(Coastal, static_cast<infoLevels>(level), -1);
              }
            }),
            (std::vector<long>{0, 1, 15, 16, 17}));
}

TEST_F(ReaderSelection, TakesNothingWithACornerThatIsNoNumber) {
  const std::string file = cbd_file({segment_through({{1, 2}, {3, 4}})});
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double bad : {nan, infinity}) {
    EXPECT_EQ(load(file, [&](WorldMap& map) { map.fetchLowLeftBoundary()->setLon(bad); }), Lines{});
    EXPECT_EQ(load(file, [&](WorldMap& map) { map.fetchUpRightBoundary()->setLon(bad); }), Lines{});
  }
  EXPECT_EQ(load(file, [&](WorldMap& map) { map.fetchLowLeftBoundary()->setLat(nan); }), Lines{});
  EXPECT_EQ(load(file, [&](WorldMap& map) { map.fetchUpRightBoundary()->setLat(nan); }), Lines{});
}

TEST_F(ReaderSelection, TruncatesTheBoxTowardsZero) {
  // 0.0009 degrees are 3.24 arc-seconds, -0.0009 are -3.24.
  const Segment segment = segment_through({{4, 9}, {3, 9}, {0, 9}, {-3, 9}, {-4, 9}});
  EXPECT_EQ(load(cbd_file({segment}),
                 [](WorldMap& map) {
                   *map.fetchLowLeftBoundary() = LatLon(-0.0009, 0.0);
                   *map.fetchUpRightBoundary() = LatLon(0.0009, 1.0);
                 }),
            (Lines{{{3, 9}, {0, 9}, {-3, 9}, {-3, 9}}}));
}

class ReaderDeltas : public ReaderTest {
 protected:
  /// The way from the first point to the one behind `delta`.
  ArcPoint decoded(const std::string& delta) const {
    Segment segment = segment_through({{1000, 648000}});
    segment.count = 3;
    segment.deltas = delta + short_delta(0, 0);
    const Lines lines = load(cbd_file({segment}));
    if (lines.size() != 1 || lines[0].size() != 2) return {99999999, 99999999};
    return {lines[0][1].second - 648000, lines[0][1].first - 1000};
  }
};

// Pairs are longitude, latitude.
TEST_F(ReaderDeltas, OfOneWord) {
  EXPECT_EQ(decoded(u16(0x4001)), ArcPoint(0, 1));
  EXPECT_EQ(decoded(u16(0xC0FF)), ArcPoint(-64, -1));
  EXPECT_EQ(decoded(u16(0x7F80)), ArcPoint(63, -128));
  EXPECT_EQ(decoded(u16(0xFF7F)), ArcPoint(-1, 127));
  EXPECT_EQ(decoded(u16(0x4000)), ArcPoint(0, 0));
}

TEST_F(ReaderDeltas, OfFourWords) {
  EXPECT_EQ(decoded(u16(0) + u16(1) + u16(0) + u16(2)), ArcPoint(1, 2));
  EXPECT_EQ(decoded(u16(1) + u16(2) + u16(0) + u16(0xFFFF)), ArcPoint(65538, 65535));
  // -1 in 15 bits and a sign.
  EXPECT_EQ(decoded(u16(0xBFFF) + u16(0xFFFF) + u16(0xBFFF) + u16(0xFFFE)), ArcPoint(-1, -2));
  EXPECT_EQ(decoded(u16(0xBFFE) + u16(0) + u16(0xFFFE) + u16(1)), ArcPoint(-131072, -131071));
}

TEST_F(ReaderDeltas, BeyondATurnAreNone) {
  EXPECT_EQ(decoded(u16(0) + u16(1) + u16(0x8000) + u16(0)), ArcPoint(0, 0));
  EXPECT_EQ(decoded(u16(0) + u16(5) + u16(0x4000) + u16(0)), ArcPoint(0, 0));
  EXPECT_EQ(decoded(u16(0x3FFF) + u16(0) + u16(0) + u16(7)), ArcPoint(0, 0));
  // 1296000 is 19 * 65536 + 50816; all the way round is where it was.
  EXPECT_EQ(decoded(u16(19) + u16(50816) + u16(0) + u16(7)), ArcPoint(0, 7));
  EXPECT_EQ(decoded(u16(19) + u16(50817) + u16(0) + u16(7)), ArcPoint(0, 0));
  EXPECT_EQ(decoded(long_delta(-1296000, 7)), ArcPoint(0, 7));
  EXPECT_EQ(decoded(long_delta(-1296001, 7)), ArcPoint(0, 0));
}

TEST_F(ReaderDeltas, OfLatitudeReachATurnToo) {
  for (const auto& [delta, reached] : {std::pair{1296000, true}, std::pair{1296001, false}}) {
    Segment segment = segment_through({{5 - delta, 7}, {5, 7}, {6, 7}});
    const Lines lines = load(cbd_file({segment}));
    EXPECT_EQ(lines, reached ? (Lines{{{5, 7}, {6, 7}}}) : Lines{}) << delta;
    segment = segment_through({{5 + delta, 7}, {5, 7}, {6, 7}});
    EXPECT_EQ(load(cbd_file({segment})), reached ? (Lines{{{5, 7}, {6, 7}}}) : Lines{}) << delta;
  }
}

TEST_F(ReaderDeltas, WrapTheLongitude) {
  EXPECT_EQ(load(cbd_file({segment_through({{1, 1295999}, {1, 1296000}, {1, 1296062}})})),
            (Lines{{{1, 1295999}, {1, 0}, {1, 62}}}));
  EXPECT_EQ(load(cbd_file({segment_through({{1, 62}, {1, 0}, {1, -1}, {1, -600000}})})),
            (Lines{{{1, 62}, {1, 0}, {1, 1295999}, {1, 696000}}}));
}

TEST_F(ReaderDeltas, AddUpTheSameThroughManyWindows) {
  // 30000 deltas of two and eight bytes: more than any buffer between disk and decoder.
  ArcLine points{{-10000, 100000}};
  for (long i = 0; i < 30000; ++i) {
    const auto [lat, lon] = points.back();
    points.emplace_back(lat + 1 + i % 2, lon + 1 + i % 3);
  }
  Segment segment = segment_through(points);
  std::string mixed;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const int dlon = static_cast<int>(points[i].second - points[i - 1].second);
    const int dlat = static_cast<int>(points[i].first - points[i - 1].first);
    mixed += i % 7 < 3 ? long_delta(dlon, dlat) : short_delta(dlon, dlat);
  }
  segment.deltas = mixed + short_delta(0, 0);
  EXPECT_EQ(load(cbd_file({segment})), Lines{points});
}

using ReaderSegment = ReaderTest;

TEST_F(ReaderSegment, HasLongsInOnesComplement) {
  // What is written as -1 is 0, what is written as -5 is -4.
  Segment segment;
  segment.count = 3;
  segment.deltas = short_delta(1, 1) + short_delta(0, 0);
  const auto with_start = [&](std::uint32_t lon, std::uint32_t lat) {
    const std::string data = u32(lon) + u32(lat) + segment.data().substr(8);
    return cbd_header(20 + data.size(), 1) + data + segment.entry(20);
  };
  EXPECT_EQ(load(with_start(0xFFFFFFFF, 0xFFFFFFFF)), (Lines{{{0, 0}, {1, 1}}}));
  EXPECT_EQ(load(with_start(0xFFFFFFFB, 0xFFFFFFFB)), (Lines{{{-4, 1295996}, {-3, 1295997}}}));
  EXPECT_EQ(load(with_start(0, 0)), (Lines{{{0, 0}, {1, 1}}}));
}

TEST_F(ReaderSegment, NeverUsesItsLastPoint) {
  Segment segment = segment_through({{1, 1}, {2, 2}, {3, 3}});
  segment.count = 3;
  EXPECT_EQ(load(cbd_file({segment})), (Lines{{{1, 1}, {2, 2}}}));
}

TEST_F(ReaderSegment, OfFewerThanTwoUsablePointsIsDropped) {
  Segment segment = segment_through({{1, 1}, {2, 2}, {3, 3}});
  for (const std::uint32_t count : {0U, 1U, 2U}) {
    segment.count = count;
    EXPECT_EQ(load(cbd_file({segment})), Lines{}) << count;
  }
}

TEST_F(ReaderSegment, MayBeNamedTwice) {
  const Segment segment = segment_through({{1, 1}, {2, 2}});
  EXPECT_EQ(load(cbd_header(20 + segment.data().size(), 2) + segment.data() + segment.entry(20) +
                 segment.entry(20)),
            (Lines{{{1, 1}, {2, 2}}, {{1, 1}, {2, 2}}}));
}

class ReaderProgress : public ReaderTest {
 protected:
  std::vector<int> percents(std::size_t segments) const {
    const ProgressCapture progress;
    load(cbd_file(std::vector<Segment>(segments, segment_through({{1, 1}, {2, 2}}))));
    // Four continents without a file report their beginning.
    EXPECT_EQ(std::vector<int>(progress.percents.end() - 4, progress.percents.end()),
              (std::vector<int>{0, 0, 0, 0}));
    return {progress.percents.begin(), progress.percents.end() - 4};
  }
};

TEST_F(ReaderProgress, OfFewerThanTenSegmentsIsComplete) {
  EXPECT_EQ(percents(0), (std::vector<int>{0, 100}));
  EXPECT_EQ(percents(3), (std::vector<int>{0, 100, 100, 100, 100}));
  EXPECT_EQ(percents(9), (std::vector<int>{0, 100, 100, 100, 100, 100, 100, 100, 100, 100, 100}));
}

TEST_F(ReaderProgress, GoesInSteps) {
  EXPECT_EQ(percents(10), (std::vector<int>{0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 100}));
  EXPECT_EQ(percents(40), (std::vector<int>{0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 100}));
}

TEST_F(ReaderProgress, GoesBeyond100) {
  EXPECT_EQ(percents(19), (std::vector<int>{0,   10,  20,  30,  40,  50,  60,  70,  80,  90, 100,
                                            110, 120, 130, 140, 150, 160, 170, 180, 190, 100}));
  EXPECT_EQ(percents(25),
            (std::vector<int>{0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120, 130, 100}));
}

TEST_F(ReaderProgress, OfARefusedFileOnlyBegins) {
  const StderrCapture err;
  const ProgressCapture progress;
  load("nothing");
  EXPECT_EQ(progress.percents, (std::vector<int>{0, 0, 0, 0, 0}));
}

TEST_F(ReaderProgress, NamesThemeAndContinent) {
  const ProgressCapture progress;
  WorldMap map;
  ask_for_all(map);
  for (const overlaySections o : {Geographic, Political, Coastal, River}) map.setPOI(o, Level2, 1);
  map.readData();
  std::vector<std::string> expected;
  for (const std::string continent : {"Africa", "Asia", "Europe", "NoAm", "SoAm"}) {
    for (const std::string theme : {"Geographic ", "Political ", "Coastal ", "River "}) {
      expected.push_back("CIA: " + theme + continent);
    }
  }
  EXPECT_EQ(progress.labels, expected);
}

}  // namespace
