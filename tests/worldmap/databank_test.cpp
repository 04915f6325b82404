// Whole data banks through read_databank: which segments come, which files are named, and that
// what files claim costs nothing.  Random banks are compared with databank.py.

#include "kzgis/databank.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/named_pipe.h"
#include "support/time_limit.h"
#include "worldmap/bank.h"

namespace {

using kzgis::Box;
using kzgis::Continent;
using kzgis::DatabankQuery;
using kzgis::ErrorKind;
using kzgis::Theme;

/// A segment as the tests write it down: where it belongs, and its points.
struct Piece {
  Continent continent;
  Theme theme;
  int level;
  ArcLine points;
  friend bool operator==(const Piece&, const Piece&) = default;
};
void PrintTo(const Piece& piece, std::ostream* out) {
  *out << static_cast<int>(piece.continent) << '/' << static_cast<int>(piece.theme) << '/'
       << piece.level << ' ' << testing::PrintToString(piece.points);
}

Segment of_level(Segment segment, std::uint32_t level) {
  segment.level = level;
  return segment;
}

class DatabankTest : public BankTest {
 protected:
  /// What comes, which must be without an error; the damaged files go to `damaged_`, their
  /// messages without the directory.
  std::vector<Piece> read(const DatabankQuery& query = {}) {
    const auto bank = kzgis::read_databank(root_, query);
    if (!bank) {
      ADD_FAILURE() << bank.error().message;
      return {};
    }
    damaged_.clear();
    for (const kzgis::DamagedFile& file : bank->damaged) {
      EXPECT_EQ(file.error.message.find(file.path + ": "), 0U);
      damaged_.push_back(file.error.message.substr(root_.size() + 1));
    }
    std::vector<Piece> pieces;
    for (const kzgis::Segment& segment : bank->segments) {
      pieces.push_back({segment.continent, segment.theme, segment.level, {}});
      EXPECT_EQ(segment.lat.size(), segment.lon.size());
      for (std::size_t i = 0; i < segment.lat.size(); ++i) {
        pieces.back().points.emplace_back(segment.lat[i], segment.lon[i]);
      }
    }
    return pieces;
  }

  /// The same of a bank with one file of coasts; the lines alone.
  std::vector<ArcLine> read_coasts(const std::string& bytes, const DatabankQuery& query = {}) {
    write("africa.Map/cil.cbd", bytes);
    std::vector<ArcLine> lines;
    for (const Piece& piece : read(query)) lines.push_back(piece.points);
    return lines;
  }

  std::vector<std::string> damaged_;
};

using Lines = std::vector<ArcLine>;
using Names = std::vector<std::string>;

TEST_F(DatabankTest, ComesByContinentThemeAndPlaceInTheFile) {
  const ArcLine a{{1, 2}, {3, 4}};
  const ArcLine b{{5, 6}, {7, 8}};
  write("samer.Map/bdy.cbd", cbd_file({segment_through(a)}));
  write("africa.Map/riv.cbd", cbd_file({segment_through(a)}));
  write("africa.Map/pby.cbd",
        cbd_file({of_level(segment_through(b), 15), of_level(segment_through(a), 0)}));
  EXPECT_EQ(read(), (std::vector<Piece>{{Continent::africa, Theme::provinces, 15, b},
                                        {Continent::africa, Theme::provinces, 0, a},
                                        {Continent::africa, Theme::rivers, 1, a},
                                        {Continent::south_america, Theme::boundaries, 1, a}}));
  EXPECT_EQ(damaged_, Names{});
}

TEST_F(DatabankTest, HoldsTheThemesAndLevelsThatAreAskedFor) {
  for (const char* const file : {"asia.Map/bdy.cbd", "asia.Map/cil.cbd"}) {
    write(file, cbd_file({of_level(segment_through({{1, 2}, {3, 4}}), 2),
                          of_level(segment_through({{5, 6}, {7, 8}}), 9)}));
  }
  const ArcLine first{{1, 2}, {3, 4}};
  const ArcLine second{{5, 6}, {7, 8}};
  EXPECT_EQ(read({.themes = {Theme::coasts, Theme::coasts}, .levels = {}, .box = {}}),
            (std::vector<Piece>{{Continent::asia, Theme::coasts, 2, first},
                                {Continent::asia, Theme::coasts, 9, second}}));
  EXPECT_EQ(read({.themes = {}, .levels = {9, 3}, .box = {}}),
            (std::vector<Piece>{{Continent::asia, Theme::boundaries, 9, second},
                                {Continent::asia, Theme::coasts, 9, second}}));
  EXPECT_EQ(read({.themes = {Theme::rivers}, .levels = {}, .box = {}}), std::vector<Piece>{});
}

TEST_F(DatabankTest, ReadsTheContinentsAskedFor) {
  for (const char* const file : {"africa.Map/cil.cbd", "asia.Map/cil.cbd", "samer.Map/cil.cbd"}) {
    write(file, cbd_file({segment_through({{1, 2}, {3, 4}})}));
  }
  const auto continents = [this](const std::vector<Continent>& wanted) {
    DatabankQuery query;
    query.continents = wanted;
    std::vector<Continent> found;
    for (const Piece& piece : read(query)) found.push_back(piece.continent);
    return found;
  };
  using Continents = std::vector<Continent>;
  EXPECT_EQ(continents({}),
            (Continents{Continent::africa, Continent::asia, Continent::south_america}));
  EXPECT_EQ(continents({Continent::south_america, Continent::africa}),
            (Continents{Continent::africa, Continent::south_america}));
  EXPECT_EQ(continents({Continent::europe}), Continents{});  // not there, and still a bank
  // What is damaged elsewhere is not looked at.
  write("asia.Map/cil.cbd", "short");
  EXPECT_EQ(continents({Continent::africa}), Continents{Continent::africa});
  EXPECT_EQ(damaged_, std::vector<std::string>{});
}

TEST_F(DatabankTest, UsesAllPointsButTheLast) {
  Segment segment;
  segment.lat = -5;
  segment.lon = 1295999;
  segment.count = 3;
  segment.deltas = short_delta(2, -1) + long_delta(70000, 300);
  EXPECT_EQ(read_coasts(cbd_file({segment})), (Lines{{{-5, 1295999}, {-6, 1}}}));
}

TEST_F(DatabankTest, LeavesOutWhatIsNoLine) {
  Segment none;
  Segment one;
  one.count = 2;
  one.deltas = short_delta(1, 1);
  EXPECT_EQ(read_coasts(cbd_file({none, one})), Lines{});
  EXPECT_EQ(damaged_, Names{});
}

TEST_F(DatabankTest, BringsFirstLongitudesIntoTheTurn) {
  Segment segment = segment_through({{0, -1}, {0, 5}});
  EXPECT_EQ(read_coasts(cbd_file({segment})), (Lines{{{0, 1295999}, {0, 5}}}));
  segment = segment_through({{0, 1296000}, {0, 1296005}});
  EXPECT_EQ(read_coasts(cbd_file({segment})), (Lines{{{0, 0}, {0, 5}}}));
  EXPECT_EQ(damaged_, Names{});
}

class DatabankBox : public DatabankTest {
 protected:
  /// Which of the segments come for a box.
  std::vector<int> numbers(const Lines& lines, const Box& box) {
    std::vector<Segment> segments;
    for (const ArcLine& line : lines) segments.push_back(segment_through(line));
    std::vector<int> taken;
    for (const ArcLine& line :
         read_coasts(cbd_file(segments), {.themes = {}, .levels = {}, .box = box})) {
      const auto place = std::find(lines.begin(), lines.end(), line);
      EXPECT_NE(place, lines.end()) << testing::PrintToString(line);
      taken.push_back(static_cast<int>(place - lines.begin()));
    }
    return taken;
  }
  using Numbers = std::vector<int>;
};

TEST_F(DatabankBox, TakesSegmentsWithAPointInsideWhole) {
  const Lines lines{{{0, 0}, {36000, 36000}, {200000, 500000}},  // the middle one
                    {{0, 35999}, {0, 3}},
                    {{35000, 30000}, {37000, 42000}},  // through it, without a point
                    {{36000, 39600}, {39600, 36000}}};
  EXPECT_EQ(numbers(lines, {10.0, 10.0, 11.0, 11.0}), (Numbers{0, 3}));
}

TEST_F(DatabankBox, HoldsItsEdgesAndTheDegreesOfAPoint) {
  // 10.1 degrees are 36360 arc-seconds, and no double; a third of one is neither.
  const Lines lines{{{36360, 36360}, {0, 0}}, {{1, 1}, {2, 2}}};
  EXPECT_EQ(numbers(lines, {10.1, 10.1, 10.1, 10.1}), Numbers{0});
  EXPECT_EQ(numbers(lines, {10.100001, 10.0, 10.2, 10.2}), Numbers{});
  EXPECT_EQ(numbers(lines, {10.0, 10.0, 10.2, 10.099999}), Numbers{});
  EXPECT_EQ(numbers(lines, {1.0 / 3600.0, 1.0 / 3600.0, 2.0 / 3600.0, 2.0 / 3600.0}), Numbers{1});
  EXPECT_EQ(numbers(lines, {0.0001, 0.0001, 0.0002, 0.0002}), Numbers{});
}

TEST_F(DatabankBox, CrossesTheMeridianWithItsWestEastOfItsEast) {
  const Lines lines{{{0, 1290000}, {0, 1290001}}, {{0, 100}, {0, 101}}, {{0, 640000}, {0, 640001}}};
  EXPECT_EQ(numbers(lines, {350.0, -1.0, 10.0, 1.0}), (Numbers{0, 1}));
  EXPECT_EQ(numbers(lines, {-10.0, -1.0, 10.0, 1.0}), (Numbers{0, 1}));
  EXPECT_EQ(numbers(lines, {10.0, -1.0, 350.0, 1.0}), Numbers{2});
  EXPECT_EQ(numbers(lines, {170.0, -1.0, -170.0, 1.0}), Numbers{2});
  EXPECT_EQ(numbers(lines, {-180.0, -90.0, 180.0, 90.0}), (Numbers{0, 1, 2}));
  EXPECT_EQ(numbers(lines, {-540.0, -90.0, -530.0, 90.0}), Numbers{});
  EXPECT_EQ(numbers(lines, {-720.0, -90.0, 720.0, 90.0}), (Numbers{0, 1, 2}));
  EXPECT_EQ(numbers(lines, {0.0, 91.0, 360.0, 95.0}), Numbers{});
}

TEST_F(DatabankTest, RefusesQueriesThatCannotBe) {
  write("africa.Map/cil.cbd", cbd_file({}));
  const auto why = [this](const DatabankQuery& query) {
    const auto bank = kzgis::read_databank(root_, query);
    if (bank) return std::string("taken");
    EXPECT_EQ(bank.error().kind, ErrorKind::bad_argument);
    return bank.error().message;
  };
  const auto in = [](const Box& box) { return DatabankQuery{{}, {}, box}; };
  const double nan = std::nan("");
  EXPECT_EQ(why({{static_cast<Theme>(4)}, {}, {}}), "there is no theme 4");
  EXPECT_EQ(why({{}, {}, {}, {static_cast<Continent>(5)}}), "there is no continent 5");
  EXPECT_EQ(why({{}, {3, 16}, {}}), "there is no level 16; there are 0 to 15");
  EXPECT_EQ(why({{}, {-1}, {}}), "there is no level -1; there are 0 to 15");
  EXPECT_EQ(why(in({0, 2, 1, 1})), "the south of a box lies at or below its north");
  EXPECT_EQ(why(in({0, nan, 1, 1})), "the south of a box lies at or below its north");
  EXPECT_EQ(why(in({nan, 0, 1, 1})), "the longitudes of a box lie between -720 and 720 degrees");
  EXPECT_EQ(why(in({0, 0, 720.5, 1})), "the longitudes of a box lie between -720 and 720 degrees");
}

TEST_F(DatabankTest, IsAnErrorWithoutAnyFile) {
  for (const std::string& directory : {root_, root_ + "/nowhere"}) {
    const auto bank = kzgis::read_databank(directory);
    ASSERT_FALSE(bank);
    EXPECT_EQ(bank.error().kind, ErrorKind::cannot_read);
    EXPECT_EQ(bank.error().message,
              directory +
                  ": holds no data bank: there is no africa.Map/cil.cbd in it, nor any other of "
                  "its files");
  }
  // A file of another theme makes it a bank.
  write("samer.Map/riv.cbd", cbd_file({}));
  EXPECT_EQ(read({.themes = {Theme::coasts}, .levels = {}, .box = {}}), std::vector<Piece>{});
}

TEST_F(DatabankTest, ExpandsPathVariables) {
  write("africa.Map/cil.cbd", cbd_file({segment_through({{1, 2}, {3, 4}})}));
  ASSERT_EQ(setenv("KZGIS_TEST_BANK", root_.c_str(), 1), 0);
  EXPECT_EQ(kzgis::read_databank("$KZGIS_TEST_BANK<0>")->segments.size(), 1U);
}

TEST_F(DatabankTest, NamesDamagedFilesAndGivesTheirSoundSegments) {
  const Segment sound = segment_through({{1, 2}, {3, 4}});
  Segment off_globe = segment_through({{323000, 2}, {324001, 4}});
  Segment cut = sound;
  cut.count = 90000;
  Segment elsewhere = sound;  // its extents are wrong
  elsewhere.min_lat = 20;
  const std::string body = off_globe.data() + elsewhere.data() + sound.data();
  const std::size_t at = 20 + 28 * 5;
  const auto entry = [&](const Segment& segment, std::size_t place) {
    return segment.entry(at + place);
  };
  const std::size_t last = off_globe.data().size() + elsewhere.data().size();
  std::string file = cbd_header(20, 5) + entry(off_globe, 0) +
                     entry(elsewhere, off_globe.data().size()) + entry(sound, 500000) +
                     entry(of_level(sound, 16), last) + entry(sound, last) + body;
  const ArcLine line{{1, 2}, {3, 4}};
  EXPECT_EQ(read_coasts(file), (Lines{line, line}));
  EXPECT_EQ(damaged_, Names{"africa.Map/cil.cbd: segment 1 leaves the globe; 3 more flaws"});

  write("asia.Map/cil.cbd", "no outlines");
  write("europe.Map/cil.cbd", cbd_header(1000, 0));
  EXPECT_EQ(read_coasts(cbd_header(20, 1) + cut.entry(48) + cut.data()), Lines{});
  EXPECT_EQ(damaged_,
            (Names{"africa.Map/cil.cbd: segment 1 claims 90000 points; the file ends after 3",
                   "asia.Map/cil.cbd: not an outline file: it does not begin with 0x20770002",
                   "europe.Map/cil.cbd: the dictionary lies at byte 1000, past the end"}));
}

TEST_F(DatabankTest, LooksAtNoSegmentThatIsNotAskedFor) {
  Segment off_globe = of_level(segment_through({{324001, 2}, {3, 4}}), 3);
  write("africa.Map/cil.cbd", cbd_file({off_globe, segment_through({{1, 2}, {3, 4}})}));
  EXPECT_EQ(read({.themes = {}, .levels = {1}, .box = {}}).size(), 1U);
  EXPECT_EQ(damaged_, Names{});
}

TEST_F(DatabankTest, NamesFilesThatCannotBeOpened) {
  const NamedPipe pipe(root_ + "/africa.Map/cil.cbd");
  std::filesystem::create_directory(root_ + "/asia.Map/cil.cbd");
  EXPECT_EQ(read(), std::vector<Piece>{});
  EXPECT_EQ(damaged_,
            (Names{"africa.Map/cil.cbd: cannot be opened",
                   "asia.Map/cil.cbd: not an outline file: it does not begin with 0x20770002"}));
}

TEST_F(DatabankTest, IsAnErrorWhereNothingCanBeOpened) {
  const NamedPipe pipe(root_ + "/asia.Map/cil.cbd");
  write("africa.Map/riv.cbd", cbd_file({}));
  const auto bank = kzgis::read_databank(root_ + "/", {{Theme::coasts}, {}, {}});
  ASSERT_FALSE(bank);
  EXPECT_EQ(bank.error().kind, ErrorKind::cannot_read);
  EXPECT_EQ(bank.error().message, root_ + "/asia.Map/cil.cbd: cannot be opened");
}

TEST_F(DatabankTest, TakesNoMorePointsThanTheFileAccountsFor) {
  // Three hundred entries for the same nine hundred points.
  ArcLine line;
  for (int i = 0; i < 900; ++i) line.emplace_back(i, i);
  const Segment segment = segment_through(line);
  std::string file = cbd_header(20, 300);
  for (int i = 0; i < 300; ++i) file += segment.entry(20 + 300 * 28);
  file += segment.data();
  const LessThanASecond limit;
  const Lines lines = read_coasts(file);
  EXPECT_EQ(lines, Lines((file.size() + 65536) / 900, line));
  EXPECT_EQ(damaged_, Names{"africa.Map/cil.cbd: segment " + std::to_string(lines.size() + 1) +
                            " shares its bytes with others; the rest is left out"});
}

TEST_F(DatabankTest, BelievesNoCount) {
  Segment segment = segment_through({{1, 2}, {3, 4}});
  std::string file = cbd_file({segment});
  file.replace(8, 4, u32(0xFFFFFFFF));
  const LessThanASecond limit;
  EXPECT_EQ(read_coasts(file), (Lines{{{1, 2}, {3, 4}}}));
  EXPECT_EQ(damaged_, Names{"africa.Map/cil.cbd: the header says 4294967295 segments; the "
                            "dictionary holds 1"});
  segment.count = 0xFFFFFFFF;
  EXPECT_EQ(read_coasts(cbd_file({segment})), Lines{});
}

TEST_F(DatabankTest, SurvivesAnyByte) {
  const std::string whole = cbd_file({segment_through({{1, 2}, {3, 4}, {9, 9}})});
  for (std::size_t place = 0; place < whole.size(); ++place) {
    for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
      std::string bytes = whole;
      bytes[place] = static_cast<char>(value);
      const LessThanASecond limit;
      for (const ArcLine& line : read_coasts(bytes)) {
        EXPECT_LE(line.size(), bytes.size());
        for (const auto& [lat, lon] : line) {
          EXPECT_TRUE(-324000 <= lat && lat <= 324000 && 0 <= lon && lon < 1296000);
        }
      }
    }
  }
}

TEST_F(DatabankTest, TellsHowMuchIsDone) {
  std::vector<Segment> segments;
  for (int i = 0; i < 50; ++i) segments.push_back(segment_through({{1, 2}, {3, 4}}));
  for (const char* const file : {"africa.Map/cil.cbd", "samer.Map/cil.cbd"}) {
    write(file, cbd_file(segments));
  }
  const ProgressCapture progress;
  EXPECT_EQ(read({.themes = {Theme::coasts}, .levels = {}, .box = {}}).size(), 100U);
  ASSERT_GE(progress.percents.size(), 40U);
  EXPECT_EQ(progress.percents.front(), 0);
  EXPECT_EQ(progress.labels.front(), "africa.Map/cil.cbd");
  EXPECT_EQ(progress.percents.back(), 100);
  for (std::size_t i = 1; i < progress.percents.size(); ++i) {
    EXPECT_LT(progress.percents[i - 1], progress.percents[i]);
  }
  const auto last_file =
      std::find(progress.labels.begin(), progress.labels.end(), "samer.Map/cil.cbd");
  ASSERT_NE(last_file, progress.labels.end());
  EXPECT_EQ(progress.percents[static_cast<std::size_t>(last_file - progress.labels.begin())], 80);
}

TEST(DatabankFileName, IsWhereAMapLooks) {
  const WorldMap map;
  for (mapSections section = Africa; section != NumMapSections; increment(section)) {
    for (overlaySections overlay = Geographic; overlay != Plates; increment(overlay)) {
      EXPECT_EQ(databank_file_name(static_cast<Continent>(section), static_cast<Theme>(overlay)),
                map.fetchContinentDir(section).str() + "/" + map.fetchOverlaysFile(overlay).str());
    }
  }
}

}  // namespace
