// How the points of a segment become polylines: thinning, the edges of the box, the seam at
// longitude 0.  Points are latitude, longitude in arc-seconds; single-precision results
// are Python's, each step rounded with struct.pack('f').

#include <gtest/gtest.h>

#include "worldmap/bank.h"

namespace {

using Lines = std::vector<ArcLine>;

class TracerTest : public BankTest {
 protected:
  struct Box {
    int south, west, north, east;
  };

  Lines trace(const ArcLine& points, const Box& box, kz_long precision = 0) const {
    return load(cbd_file({segment_through(points)}), [&](WorldMap& map) {
      set_box(map, box.south, box.west, box.north, box.east);
      map.setPrecision(precision);
    });
  }
  static constexpr Box kGlobe{-324000, 0, 324000, 1295999};
  static constexpr Box kPlain{0, 20000, 10000, 30000};
  static constexpr Box kWrap{-10000, 1260000, 10000, 36000};
};

using ReaderThinning = TracerTest;

TEST_F(ReaderThinning, KeepsEveryPointWithoutAPrecision) {
  EXPECT_EQ(trace({{1, 1}, {1, 1}, {1, 2}, {1, 2}}, kGlobe),
            (Lines{{{1, 1}, {1, 1}, {1, 2}, {1, 2}}}));
}

TEST_F(ReaderThinning, DropsPointsNearerThanThePrecisionToTheLastOneKept) {
  EXPECT_EQ(trace({{0, 0}, {3599, 0}, {3600, 0}, {7199, 0}, {3600, 3600}, {9, 3600}}, kGlobe, 3600),
            (Lines{{{0, 0}, {3600, 0}, {3600, 3600}, {9, 3600}}}));
  EXPECT_EQ(trace({{0, 0}, {3, 3}, {3, 4}, {9, 9}}, kGlobe, 5), (Lines{{{0, 0}, {3, 4}, {9, 9}}}));
}

TEST_F(ReaderThinning, MeasuresAcrossADiagonal) {
  // 7071 squared twice is 1918 short of 10000 squared, 7072 squared twice is 26368 past it.
  EXPECT_EQ(trace({{0, 0}, {7071, 7071}, {9, 9}}, kGlobe, 10000), (Lines{{{0, 0}, {9, 9}}}));
  EXPECT_EQ(trace({{0, 0}, {7072, 7072}, {9, 9}}, kGlobe, 10000),
            (Lines{{{0, 0}, {7072, 7072}, {9, 9}}}));
  EXPECT_EQ(trace({{0, 9000}, {-7072, 1928}, {9, 9}}, kGlobe, 10000),
            (Lines{{{0, 9000}, {-7072, 1928}, {9, 9}}}));
}

TEST_F(ReaderThinning, KeepsThePointOfTheLastPass) {
  EXPECT_EQ(trace({{0, 0}, {1, 0}, {2, 0}}, kGlobe, 3600), (Lines{{{0, 0}, {2, 0}}}));
  EXPECT_EQ(trace({{0, 0}, {0, 0}}, kGlobe, 3600), (Lines{{{0, 0}, {0, 0}}}));
}

TEST_F(ReaderThinning, CountsThePrecisionSquared) {
  EXPECT_EQ(trace({{0, 0}, {4, 0}, {5, 0}, {6, 0}}, kGlobe, -5), (Lines{{{0, 0}, {5, 0}, {6, 0}}}));
  EXPECT_EQ(trace({{0, 0}, {300000, 0}, {0, 0}}, kGlobe, INT32_MIN), (Lines{{{0, 0}, {0, 0}}}));
}

TEST_F(ReaderThinning, MeasuresInDegreesAndKeepsTheirRounding) {
  // 6/3600 and 13/3600 degrees lie 6.999999999999999 arc-seconds apart, 0 and 7/3600 lie 7.
  EXPECT_EQ(trace({{6, 0}, {13, 0}, {14, 0}, {99, 0}}, kGlobe, 7),
            (Lines{{{6, 0}, {14, 0}, {99, 0}}}));
  EXPECT_EQ(trace({{0, 0}, {7, 0}, {99, 0}}, kGlobe, 7), (Lines{{{0, 0}, {7, 0}, {99, 0}}}));
}

TEST_F(ReaderThinning, TakesAcrossZeroForAcrossTheGlobe) {
  EXPECT_EQ(trace({{0, 1295999}, {0, 1296001}, {0, 1296002}}, kGlobe, 3600),
            (Lines{{{0, 1295999}, {0, 1}, {0, 2}}}));
}

using ReaderBox = TracerTest;

TEST_F(ReaderBox, CountsItsEdges) {
  const ArcLine edges{{0, 20000}, {10000, 20000}, {10000, 30000}, {0, 30000}, {0, 25000}};
  EXPECT_EQ(trace(edges, kPlain), (Lines{edges}));
  const ArcLine wrapped{{-10000, 1260000}, {10000, 1261000}, {0, 1260000}};
  EXPECT_EQ(trace(wrapped, kWrap), (Lines{wrapped}));
  const ArcLine east{{-10000, 36000}, {10000, 0}, {0, 36000}};
  EXPECT_EQ(trace(east, kWrap), (Lines{east}));
}

TEST_F(ReaderBox, SkipsPointsBeforeTheFirstRun) {
  EXPECT_EQ(trace({{-5, 25000}, {20000, 25000}, {5, 25000}, {6, 25000}}, kPlain),
            (Lines{{{5, 25000}, {6, 25000}}}));
}

TEST_F(ReaderBox, TakesTheFirstRunAlone) {
  EXPECT_EQ(trace({{5, 25000}, {6, 25000}, {-6, 25000}, {7, 25000}, {8, 25000}}, kPlain),
            (Lines{{{5, 25000}, {6, 25000}, {0, 25000}}}));
}

TEST_F(ReaderBox, NeedsNoLengthOfARun) {
  EXPECT_EQ(trace({{5, 25000}, {-5, 25000}, {7, 25000}}, kPlain),
            (Lines{{{5, 25000}, {0, 25000}}}));
}

using ReaderClip = TracerTest;

// 25166.67, 4766.67: truncated.
TEST_F(ReaderClip, CutsAtEachEdge) {
  EXPECT_EQ(trace({{9000, 25000}, {12000, 25500}, {0, 0}}, kPlain),
            (Lines{{{9000, 25000}, {10000, 25166}}}));
  EXPECT_EQ(trace({{1000, 25000}, {-2000, 25500}, {0, 0}}, kPlain),
            (Lines{{{1000, 25000}, {0, 25166}}}));
  EXPECT_EQ(trace({{5000, 29000}, {4300, 32000}, {0, 0}}, kPlain),
            (Lines{{{5000, 29000}, {4766, 30000}}}));
  EXPECT_EQ(trace({{5000, 21000}, {4300, 18000}, {0, 0}}, kPlain),
            (Lines{{{5000, 21000}, {4766, 20000}}}));
}

TEST_F(ReaderClip, BeyondACornerCutsTheLatitudeAlone) {
  // Where the line crosses the latitude's edge it is past the longitude's already, or before.
  EXPECT_EQ(trace({{9000, 29000}, {11000, 33000}, {0, 0}}, kPlain),
            (Lines{{{9000, 29000}, {10000, 31000}}}));
  EXPECT_EQ(trace({{1000, 21000}, {-1000, 17000}, {0, 0}}, kPlain),
            (Lines{{{1000, 21000}, {0, 19000}}}));
}

TEST_F(ReaderClip, OnALatitudesEdgeCutsTheLongitude) {
  EXPECT_EQ(trace({{9000, 29000}, {10000, 31000}, {0, 0}}, kPlain),
            (Lines{{{9000, 29000}, {9500, 30000}}}));
  EXPECT_EQ(trace({{1000, 21000}, {0, 19000}, {0, 0}}, kPlain),
            (Lines{{{1000, 21000}, {500, 20000}}}));
  EXPECT_EQ(trace({{10000, 29000}, {10000, 31000}, {0, 0}}, kPlain),
            (Lines{{{10000, 29000}, {10000, 30000}}}));
}

TEST_F(ReaderClip, WrapsTheProductInto32Bits) {
  // 100000 * 200000 is -1474836480 in 32 bits; -1474836480 / 250000 + 100000 = 94100.65.
  EXPECT_EQ(trace({{0, 100000}, {250000, 200000}, {0, 0}}, {0, 0, 200000, 1295999}),
            (Lines{{{0, 100000}, {200000, 94100}}}));
}

TEST_F(ReaderClip, RoundsToSinglePrecisionBeforeItTruncates) {
  // 99 / 100 + 1000000 is 1000001 in single precision.
  EXPECT_EQ(trace({{0, 1000000}, {100, 1000001}, {0, 0}}, {0, 0, 99, 1295999}),
            (Lines{{{0, 1000000}, {99, 1000001}}}));
}

TEST_F(ReaderClip, ThinsTheCutPoint) {
  constexpr Box kBox{0, 20000, 10800, 30000};
  EXPECT_EQ(trace({{0, 25000}, {7200, 25000}, {12000, 25000}, {0, 0}}, kBox, 3600),
            (Lines{{{0, 25000}, {7200, 25000}, {10800, 25000}}}));
  EXPECT_EQ(trace({{0, 25000}, {7200, 25000}, {12000, 25000}, {0, 0}}, kBox, 3601),
            (Lines{{{0, 25000}, {7200, 25000}}}));
}

TEST_F(ReaderClip, KeepsACutPointOfTheLastPass) {
  EXPECT_EQ(trace({{9000, 25000}, {9900, 25000}, {12000, 25000}}, kPlain, 500),
            (Lines{{{9000, 25000}, {9900, 25000}, {10000, 25000}}}));
}

TEST_F(ReaderClip, MeasuresFromTheLastPointKept) {
  // (9950, 27000) is dropped: the line is cut between (9000, 25000) and (11000, 29000).
  EXPECT_EQ(trace({{9000, 25000}, {9950, 27000}, {11000, 29000}, {0, 0}}, kPlain, 2236),
            (Lines{{{9000, 25000}, {10000, 27000}}}));
}

TEST_F(ReaderClip, LeavesTheOutsidePointOfABoxAcrossZero) {
  EXPECT_EQ(trace({{0, 1270000}, {0, 1250000}, {0, 1270000}}, kWrap),
            (Lines{{{0, 1270000}, {0, 1250000}}}));
  EXPECT_EQ(trace({{0, 10}, {99999, 20}, {0, 0}}, kWrap), (Lines{{{0, 10}, {99999, 20}}}));
}

using ReaderSeam = TracerTest;

TEST_F(ReaderSeam, SplitsEastward) {
  EXPECT_EQ(trace({{0, 1292400}, {36, 1299600}, {50, 1300000}}, kWrap),
            (Lines{{{0, 1292400}, {36, 1295999}}, {{36, 0}, {36, 3600}, {50, 4000}}}));
}

TEST_F(ReaderSeam, SplitsWestward) {
  EXPECT_EQ(trace({{0, 3600}, {36, -3600}, {50, -4000}}, kWrap),
            (Lines{{{0, 3600}, {36, 0}}, {{36, 1295999}, {36, 1292400}, {50, 1292000}}}));
}

TEST_F(ReaderSeam, SplitsWhateverThePrecision) {
  EXPECT_EQ(trace({{0, 1295990}, {1, 1296010}, {2, 1296020}, {3, 1296030}}, kWrap, 3600),
            (Lines{{{0, 1295990}, {1, 1295999}}, {{1, 0}, {1, 10}, {3, 30}}}));
}

TEST_F(ReaderSeam, SplitsAgainAndAgain) {
  EXPECT_EQ(trace({{0, -1}, {0, 1}, {0, -1}}, kWrap), (Lines{{{0, 1295999}, {0, 1295999}},
                                                             {{0, 0}, {0, 1}, {0, 0}},
                                                             {{0, 1295999}, {0, 1295999}}}));
}

TEST_F(ReaderSeam, IsAlsoWhereTheHalvesMeetAt180Degrees) {
  // Only the halves are compared: a box that wide splits there too, at longitude 0.
  constexpr Box kWide{-10000, 600000, 10000, 500000};
  EXPECT_EQ(trace({{0, 648010}, {5, 647990}, {6, 640000}}, kWide, 3600),
            (Lines{{{0, 648010}, {5, 1295999}}, {{5, 0}, {5, 647990}, {6, 640000}}}));
  constexpr Box kWider{-10000, 700000, 10000, 690000};
  EXPECT_EQ(trace({{0, 647990}, {5, 648010}, {6, 660000}}, kWider, 3600),
            (Lines{{{0, 647990}, {5, 0}}, {{5, 1295999}, {5, 648010}, {6, 660000}}}));
}

TEST_F(ReaderSeam, IsNoneOfAPlainBox) {
  EXPECT_EQ(trace({{0, 1295999}, {0, 1296001}}, kGlobe), (Lines{{{0, 1295999}, {0, 1}}}));
}

TEST_F(ReaderSeam, LooksAtTheLastPointKept) {
  // The point in between is dropped.
  EXPECT_EQ(trace({{0, 1295000}, {0, 1295500}, {0, 1296500}}, kWrap, 3000),
            (Lines{{{0, 1295000}, {0, 1295999}}, {{0, 0}, {0, 500}}}));
}

TEST_F(ReaderSeam, StartsAtAWholeTurnWithoutOne) {
  // A first longitude of 1296000 lies in a box across 0 and in neither half; as a point, and
  // for distances, it is 0.
  Segment segment = segment_through({{5, 1296000}, {5, 1296001}, {5, 1296100}});
  const auto change = [](WorldMap& map) {
    set_box(map, -10000, 1260000, 10000, 36000);
    map.setPrecision(50);
  };
  EXPECT_EQ(load(cbd_file({segment}), change), (Lines{{{5, 0}, {5, 100}}}));
  segment = segment_through({{5, 1296000}, {5, 1295990}, {5, 1295980}, {5, 1295970}});
  EXPECT_EQ(load(cbd_file({segment}), change), (Lines{{{5, 0}, {5, 1295990}, {5, 1295970}}}));
}

}  // namespace
