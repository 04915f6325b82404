// The grid of a whole quadrangle.  Real files and GDAL's are compared in gdal_test.py.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>

#include "dem/dem_writer.h"
#include "kzgis/elevation.h"
#include "support/named_pipe.h"

namespace {

using kzgis::ElevationGrid;
using kzgis::ErrorKind;
using kzgis::read_dem;
using kzgis::Result;

constexpr int kVoid = -32767;

Result<ElevationGrid> try_to_read(const std::string& bytes) {
  return read_dem(std::span(bytes.data(), bytes.size()), "x.dem");
}

/// The grid that must be there; an empty one, and a failure of the test, where it is not.
ElevationGrid sound(Result<ElevationGrid> grid) {
  if (grid) return *std::move(grid);
  ADD_FAILURE() << grid.error().message;
  return {};
}

ElevationGrid read(const std::string& bytes) { return sound(try_to_read(bytes)); }

/// The elevations row by row, -1 where there are none.
std::vector<float> cells(const ElevationGrid& grid) {
  std::vector<float> out = grid.elevations;
  std::replace_if(
      out.begin(), out.end(), [](float v) { return std::isnan(v); }, -1.0F);
  return out;
}

/// Three profiles of a tilted quadrilateral, five rows of 30 metres from 5000010 on:
///
///    -1  14  -1
///    -1  13  23
///     3  12  22
///     2  11  21
///     1  -1  -1
RecordAText tilted_header() {
  RecordAText a;
  a.corners({{500000, 5000010}, {499990, 5000130}, {500100, 5000110}, {500110, 5000025}});
  return a;
}
std::vector<ProfileText> tilted_profiles() {
  return {{1, 1, 500010, 5000010, {1, 2, 3}},
          {1, 2, 500040, 5000040, {11, 12, 13, 14}},
          {1, 3, 500070, 5000040, {21, 22, 23}}};
}
std::string file(const RecordAText& a, const std::vector<ProfileText>& profiles) {
  std::string bytes = a.text();
  for (const ProfileText& profile : profiles) bytes += profile.text();
  return bytes;
}
std::string tilted() { return file(tilted_header(), tilted_profiles()); }

// A floor of 5000010 to whole multiples of 30 is 5000010; a ceiling of 5000130 is 5000130.
const std::vector<float> kTilted = {-1, 14, -1, -1, 13, 23, 3, 12, 22, 2, 11, 21, 1, -1, -1};

TEST(ReadDem, PlacesProfilesByTheirBaseCoordinates) {
  const ElevationGrid grid = read(tilted());
  EXPECT_EQ(grid.columns, 3);
  EXPECT_EQ(grid.rows, 5);
  EXPECT_EQ(cells(grid), kTilted);
  EXPECT_EQ(grid.west, 500010.0);
  EXPECT_EQ(grid.north, 5000130.0);
  EXPECT_EQ(grid.step_x, 30.0);
  EXPECT_EQ(grid.step_y, 30.0);
  EXPECT_EQ(grid.empty_cells, 5U);
  EXPECT_EQ(grid.left_out, 0U);
  EXPECT_EQ(grid.lowest, 1.0F);
  EXPECT_EQ(grid.highest, 23.0F);
}

TEST(ReadDem, AnswersForRowsColumnsAndPlaces) {
  const ElevationGrid grid = read(tilted());
  EXPECT_EQ(grid.at(0, 1), 14.0F);
  EXPECT_EQ(grid.at(4, 0), 1.0F);
  EXPECT_TRUE(std::isnan(grid.at(0, 0)));
  for (const auto& [row, column] : {std::pair{-1, 0}, {0, -1}, {5, 0}, {0, 3}}) {
    EXPECT_TRUE(std::isnan(grid.at(row, column)));
  }
  EXPECT_EQ(grid.x(0), 500010.0);
  EXPECT_EQ(grid.x(2), 500070.0);
  EXPECT_EQ(grid.y(0), 5000130.0);
  EXPECT_EQ(grid.y(4), 5000010.0);
}

TEST(ReadDem, TakesProfilesInAnyOrder) {
  std::vector<ProfileText> profiles = tilted_profiles();
  std::reverse(profiles.begin(), profiles.end());
  EXPECT_EQ(cells(read(file(tilted_header(), profiles))), kTilted);
}

TEST(ReadDem, LeavesAnEmptyColumnWhereAProfileIsMissing) {
  std::vector<ProfileText> profiles = tilted_profiles();
  profiles.erase(profiles.begin() + 1);
  const ElevationGrid grid = read(file(tilted_header().size(1, 2), profiles));
  EXPECT_EQ(cells(grid),
            (std::vector<float>{-1, -1, -1, -1, -1, 23, 3, -1, 22, 2, -1, 21, 1, -1, -1}));
}

TEST(ReadDem, TellsWhatTheHeaderSays) {
  const ElevationGrid grid = read(file(tilted_header().range(682.0, 2543.0), tilted_profiles()));
  EXPECT_EQ(grid.name, "TEST QUADRANGLE");
  EXPECT_EQ(grid.plan, kzgis::GroundPlan::utm);
  EXPECT_EQ(grid.zone, 10);
  EXPECT_EQ(grid.ground_unit, kzgis::GroundUnit::metres);
  EXPECT_EQ(grid.elevation_unit, kzgis::ElevationUnit::metres);
  EXPECT_EQ(grid.corners[0].x, 500000.0);
  EXPECT_EQ(grid.corners[1].y, 5000130.0);
  EXPECT_EQ(grid.corners[2].x, 500100.0);
  EXPECT_EQ(grid.corners[3].y, 5000025.0);
  // D exponents are read: the classic readers have 0.682 here.
  EXPECT_EQ(grid.header.min_max[0], 682.0);
  EXPECT_EQ(grid.header.min_max[1], 2543.0);
  EXPECT_EQ(grid.header.quadrangle.size(), 40U);
  EXPECT_EQ(grid.header.revision_flag, 'I');
  EXPECT_EQ(grid.header.level, 3);
}

TEST(ReadDem, MarksHeaderFieldsThatAreNoNumbers) {
  const ElevationGrid grid = read(file(
      tilted_header().put(144, "  3?  ").put(168, "abc").put(150, "     4"), tilted_profiles()));
  EXPECT_EQ(grid.header.level, std::numeric_limits<int>::min());
  EXPECT_TRUE(std::isnan(grid.header.projection[0]));
  EXPECT_EQ(grid.header.projection[1], 0.0);
}

TEST(ReadDem, HonoursEveryExponentLetter) {
  for (const char letter : {'D', 'E', 'd', 'e'}) {
    RecordAText a;
    a.corners({{500000, 5000010}, {499990, 5000130}, {500100, 5000110}, {500110, 5000025}}, letter)
        .steps(30.0, 30.0, 1.0, letter);
    std::vector<ProfileText> profiles = tilted_profiles();
    for (ProfileText& profile : profiles) profile.letter = letter;
    EXPECT_EQ(cells(read(file(a, profiles))), kTilted) << letter;
  }
}

TEST(ReadDem, ScalesByTheResolutionAndLiftsByTheDatum) {
  std::vector<ProfileText> profiles = tilted_profiles();
  profiles[1].datum = 100.25;
  const ElevationGrid grid = read(file(tilted_header().steps(30.0, 30.0, 0.5), profiles));
  EXPECT_EQ(cells(grid), (std::vector<float>{-1, 107.25F, -1, -1, 106.75F, 11.5F, 1.5F, 106.25F, 11,
                                             1, 105.75F, 10.5F, 0.5F, -1, -1}));
  EXPECT_EQ(grid.lowest, 0.5F);
  EXPECT_EQ(grid.highest, 107.25F);
}

TEST(ReadDem, KnowsVoidsBeforeScaling) {
  std::vector<ProfileText> profiles = tilted_profiles();
  profiles[0].elevations = {kVoid, -32768, -32766};
  profiles[0].datum = 0.5;
  const ElevationGrid grid = read(file(tilted_header(), profiles));
  // One number alone is the void's; its neighbours are elevations.
  EXPECT_TRUE(std::isnan(grid.at(4, 0)));
  EXPECT_EQ(grid.at(3, 0), -32767.5F);
  EXPECT_EQ(grid.at(2, 0), -32765.5F);
  EXPECT_EQ(grid.empty_cells, 6U);
  EXPECT_EQ(grid.lowest, -32767.5F);
}

TEST(ReadDem, OfVoidsAloneHasNoRange) {
  const ElevationGrid grid =
      read(file(tilted_header().size(1, 1), {{1, 1, 500010, 5000010, {kVoid}}}));
  EXPECT_EQ(grid.empty_cells, 5U);
  EXPECT_TRUE(std::isnan(grid.lowest));
  EXPECT_TRUE(std::isnan(grid.highest));
}

TEST(ReadDem, LeavesOutWhatLiesBeyondTheQuadrangle) {
  std::vector<ProfileText> profiles = tilted_profiles();
  profiles[0].base_y -= 60;              // two rows too far south
  profiles[2].elevations = counting(7);  // from the second row: three too many
  const ElevationGrid grid = read(file(tilted_header(), profiles));
  EXPECT_EQ(cells(grid),
            (std::vector<float>{-1, 14, 4, -1, 13, 3, -1, 12, 2, -1, 11, 1, 3, -1, -1}));
  EXPECT_EQ(grid.left_out, 5U);
}

TEST(ReadDem, PutsProfilesBetweenRowsInTheNearest) {
  std::vector<ProfileText> profiles = tilted_profiles();
  profiles[0].base_y += 14.9;
  profiles[1].base_y -= 14.9;
  profiles[2].base_x += 14.9;
  EXPECT_EQ(cells(read(file(tilted_header(), profiles))), kTilted);
}

TEST(ReadDem, GivesArcSecondsInDegrees) {
  // 3 arc-seconds, west of Greenwich and north of the equator.
  RecordAText a;
  a.integer(156, 0).integer(162, 0).integer(528, 3).integer(534, 1).steps(3.0, 3.0, 1.0);
  a.corners({{-432000, 162000}, {-432000, 162006}, {-431997, 162006}, {-431997, 162000}});
  const ElevationGrid grid = read(
      file(a.size(1, 2), {{1, 1, -432000, 162000, {1, 2, 3}}, {1, 2, -431997, 162000, {4, 5, 6}}}));
  EXPECT_EQ(cells(grid), (std::vector<float>{3, 6, 2, 5, 1, 4}));
  EXPECT_EQ(grid.plan, kzgis::GroundPlan::geographic);
  EXPECT_EQ(grid.ground_unit, kzgis::GroundUnit::degrees);
  EXPECT_EQ(grid.elevation_unit, kzgis::ElevationUnit::feet);
  EXPECT_EQ(grid.west, -120.0);
  EXPECT_EQ(grid.north, 162006.0 / 3600.0);
  EXPECT_EQ(grid.step_x, 3.0 / 3600.0);
  EXPECT_EQ(grid.corners[0].y, 45.0);
}

TEST(ReadDem, GivesRadiansInDegrees) {
  RecordAText a;
  a.integer(156, 0).integer(528, 0).steps(0.001, 0.001, 1.0);
  a.corners({{-0.5, 0.8}, {-0.5, 0.801}, {-0.499, 0.801}, {-0.499, 0.8}});
  const ElevationGrid grid =
      read(file(a.size(1, 2), {{1, 1, -0.5, 0.8, {1, 2}}, {1, 2, -0.499, 0.8, {3, 4}}}));
  EXPECT_EQ(cells(grid), (std::vector<float>{2, 4, 1, 3}));
  EXPECT_DOUBLE_EQ(grid.west, -28.64788975654116);   // Python: math.degrees(-0.5)
  EXPECT_DOUBLE_EQ(grid.north, 45.893919389978935);  // math.degrees(0.801)
}

struct PlanCase {
  int plan;
  int units;
  kzgis::GroundPlan expected_plan;
  kzgis::GroundUnit expected_unit;
};

TEST(ReadDem, KnowsPlansAndUnits) {
  using kzgis::GroundPlan;
  using kzgis::GroundUnit;
  for (const PlanCase& c : {PlanCase{1, 1, GroundPlan::utm, GroundUnit::feet},
                            PlanCase{2, 1, GroundPlan::state_plane, GroundUnit::feet},
                            PlanCase{2, 2, GroundPlan::state_plane, GroundUnit::metres},
                            PlanCase{3, 2, GroundPlan::other, GroundUnit::metres},
                            PlanCase{-9999, 2, GroundPlan::other, GroundUnit::metres},
                            PlanCase{1, 3, GroundPlan::utm, GroundUnit::unknown}}) {
    const ElevationGrid grid =
        read(file(tilted_header().integer(156, c.plan).integer(528, c.units).integer(534, 0),
                  tilted_profiles()));
    EXPECT_EQ(grid.plan, c.expected_plan) << c.plan;
    EXPECT_EQ(grid.ground_unit, c.expected_unit) << c.plan << ", " << c.units;
    EXPECT_EQ(grid.elevation_unit, kzgis::ElevationUnit::unknown);
    EXPECT_EQ(cells(grid), kTilted);
  }
}

// Blocks and lines.

/// The file with `end` behind each block, blanks before it cut off or not.
std::string in_lines(const std::string& bytes, const std::string& end, bool cut) {
  std::string out;
  for (std::size_t i = 0; i < bytes.size(); i += 1024) {
    std::string block = bytes.substr(i, 1024);
    if (cut) block.erase(block.find_last_not_of(' ') + 1);
    out += block + end;
  }
  return out;
}

TEST(ReadDem, ReadsEveryBlockBoundaryInEveryShapeOfFile) {
  for (const int count : {1, 145, 146, 147, 315, 316, 317, 486, 487, 1201}) {
    RecordAText a;
    a.size(1, 2).corners({{500000, 5000010},
                          {500000, 5000010 + 30.0 * (count - 1)},
                          {500030, 5000010 + 30.0 * (count - 1)},
                          {500030, 5000010}});
    const std::string bytes = file(a, {{1, 1, 500000, 5000010, counting(count, 100000)},
                                       {1, 2, 500030, 5000010, counting(count, -9999)}});
    std::vector<float> expected;
    for (int i = count - 1; i >= 0; --i) {
      expected.push_back(static_cast<float>(100000 + i));
      expected.push_back(static_cast<float>(-9999 + i));
    }
    std::string last_short = bytes;
    last_short.erase(last_short.find_last_not_of(' ') + 1);
    for (const std::string& shape :
         {bytes, last_short, in_lines(bytes, "\n", false), in_lines(bytes, "\r\n", false),
          in_lines(bytes, "\r", false), in_lines(bytes, "\n", true), in_lines(bytes, "\r\n", true),
          bytes + std::string(1024, ' '), bytes + "\x1a"}) {
      const ElevationGrid grid = read(shape);
      ASSERT_EQ(grid.elevations, expected) << count;
    }
  }
}

TEST(ReadDem, LeavesRecordCAlone) {
  EXPECT_EQ(cells(read(tilted() + whole_blocks("     1     3     4     5"))), kTilted);
}

TEST(ReadDem, ReadsOldHeadersThatEndAtByte864) {
  const ElevationGrid grid =
      read(file(tilted_header().put(864, std::string(160, ' ')), tilted_profiles()));
  EXPECT_EQ(cells(grid), kTilted);
  EXPECT_EQ(grid.header.revision_flag, ' ');
  EXPECT_EQ(grid.header.horizontal_datum, 0);
  EXPECT_EQ(
      cells(read(in_lines(file(tilted_header().put(864, std::string(160, ' ')), tilted_profiles()),
                          "\n", true))),
      kTilted);
}

// Fields of six characters, against C's own conversion.
TEST(ReadDem, ReadsElevationsAsTheyStand) {
  constexpr unsigned kSeed = 19800518;
  constexpr char kLetters[] = "0123456789   -+!)*/:@P.";
  std::mt19937 random(kSeed);
  std::uniform_int_distribution<std::size_t> letter(0, sizeof kLetters - 2);
  std::uniform_int_distribution<int> blanks(0, 5);
  const std::string head = tilted_header().size(1, 1).text();
  std::string profile = ProfileText{1, 1, 500010, 5000010, {0}}.text();
  int numbers = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string field(static_cast<std::size_t>(blanks(random)), ' ');
    while (field.size() < 6)
      field += kLetters[letter(random) % (i % 2 == 0 ? 10 : sizeof kLetters - 1)];
    char* end = nullptr;
    const long expected = std::strtol(field.c_str(), &end, 10);
    const bool is_number =
        end != field.c_str() && std::string(end).find_first_not_of(' ') == std::string::npos;
    profile.replace(144, 6, field);
    const auto grid = try_to_read(head + profile);
    ASSERT_EQ(grid.has_value(), is_number) << "seed " << kSeed << ", field '" << field << "'";
    if (!is_number) continue;
    ++numbers;
    ASSERT_EQ(grid->at(4, 0), static_cast<float>(expected))
        << "seed " << kSeed << ", '" << field << "'";
  }
  EXPECT_GT(numbers, 10000);
}

// What is refused, in its words.

std::string put(std::string bytes, std::size_t offset, const std::string& text) {
  return bytes.replace(offset, text.size(), text);
}

struct RefusedCase {
  std::string bytes;
  std::string message;
};

TEST(ReadDem, RefusesWithPlaceAndReason) {
  const std::string whole = tilted();
  const std::string grid_words =
      "the corners at byte 546 and steps at byte 816 make a grid that its profiles do not fill";
  for (const RefusedCase& c : std::vector<RefusedCase>{
           {"", "not a USGS DEM: the file ends within its header, at byte 0"},
           {std::string(5000, '\0'),
            "not a USGS DEM of a regular grid: the pattern code at byte 150 is not 1"},
           {put(whole, 150, "     2"),
            "not a USGS DEM of a regular grid: the pattern code at byte 150 is not 1"},
           {put(whole, 156, "    21"), "not a USGS DEM: byte 156 has no code of a ground plan"},
           {put(whole, 156, "   UTM"), "not a USGS DEM: byte 156 has no code of a ground plan"},
           {put(whole, 156, "     0"),
            "the header has geographic coordinates at byte 156, but not their units at byte 528"},
           {put(whole, 858, "     0"), "the header gives no number of profiles at byte 858"},
           {put(whole, 858, "  many"), "the header gives no number of profiles at byte 858"},
           {put(whole, 816, "            "), "the header gives no spatial resolution at byte 816"},
           {put(whole, 828, "  -0.30E+02"), "the header gives no spatial resolution at byte 828"},
           {put(whole, 840, "         NaN"), "the header gives no spatial resolution at byte 840"},
           {put(whole, 840, "       1E+99"), "the header gives no spatial resolution at byte 840"},
           {put(whole, 570, "               somewhere"),
            "the header gives no corner coordinate at byte 570"},
           {put(whole, 594, "                     inf"),
            "the header gives no corner coordinate at byte 594"},
           {whole.substr(0, 1024), "the file ends at byte 1024, before profile 1 of 3"},
           {whole.substr(0, 3072), "the file ends at byte 3072, before profile 3 of 3"},
           {whole.substr(0, 3100), "profile 3 at byte 3072: the file ends in its header"},
           {whole.substr(0, 3072 + 144 + 17),
            "profile 3 at byte 3072: the file ends within elevation 3 of 3, at byte 3233"},
           {in_lines(whole, "\n", true)
                .replace(in_lines(whole, "\n", true).find("    13"), 0, "\n"),
            "profile 2 at byte 1064: its line ends within elevation 3 of 4, at byte 1220"},
           {put(whole, 2048, "      "), ""},  // row and column are not needed
           {put(whole, 2048 + 6, "  two "),
            "profile 2 at byte 2048: its row and column are not numbers"},
           {put(whole, 2048 + 12, "  four"),
            "profile 2 at byte 2048: its elevations are not one column"},
           {put(whole, 2048 + 12, "    -4"),
            "profile 2 at byte 2048: its elevations are not one column"},
           {put(whole, 2048 + 18, "     2"),
            "profile 2 at byte 2048: its elevations are not one column"},
           {put(whole, 2048 + 24, "                  x     "),
            "profile 2 at byte 2048: its base coordinates are not numbers"},
           {put(whole, 2048 + 48, "                     nan"),
            "profile 2 at byte 2048: its base coordinates are not numbers"},
           {put(whole, 2048 + 72, "                   1E+30"),
            "profile 2 at byte 2048: its datum is not a number"},
           {put(whole, 2048 + 150, " 12a4\x01"),
            "profile 2 at byte 2048: elevation 2 at byte 2198 is \" 12a4?\", not a number"},
           {put(whole, 2048 + 150, "      "),
            "profile 2 at byte 2048: elevation 2 at byte 2198 is \"      \", not a number"},
           {put(whole, 2048 + 24, real_field(500010.0)),
            "the profiles at bytes 1024 and 2048 stand in the same column"},
           {put(whole, 618, real_field(9e9)), grid_words},
           {put(whole, 828, "  0.1000E-99"), grid_words},
           {put(whole, 816, "  0.1000E-99"), grid_words},
           {put(whole, 2048 + 24, real_field(9e9)), grid_words},
           {put(put(whole, 594 + 24, real_field(0.0)), 642 + 24, real_field(0.0)), grid_words},
           {put(put(put(put(whole, 570, real_field(100.0)), 618, real_field(200.0)), 666,
                    real_field(200.0)),
                714, real_field(100.0)),
            "no elevation lies within the corners that the header gives from byte 546 on"}}) {
    const auto grid = try_to_read(c.bytes);
    if (c.message.empty()) {
      EXPECT_TRUE(grid) << grid.error().message;
      continue;
    }
    ASSERT_FALSE(grid) << c.message;
    EXPECT_EQ(grid.error().message, "x.dem: " + c.message);
    EXPECT_EQ(grid.error().kind, ErrorKind::bad_data);
  }
}

TEST(ReadDem, RefusesAFileCutAnywhere) {
  const std::string whole = tilted();
  const std::size_t end = 3072 + 144 + 3 * 6;
  for (std::size_t cut = 0; cut < whole.size(); ++cut) {
    const auto grid = try_to_read(whole.substr(0, cut));
    ASSERT_EQ(grid.has_value(), cut >= end) << cut;
    if (grid) {
      ASSERT_EQ(cells(*grid), kTilted) << cut;
    }
  }
}

TEST(ReadDem, SurvivesAnyDamage) {
  constexpr unsigned kSeed = 46;
  std::mt19937 random(kSeed);
  const std::string whole = tilted();
  constexpr char kBytes[] = "0123456789 -+.DE\n\r\0";
  std::uniform_int_distribution<std::size_t> place(0, whole.size() - 1);
  std::uniform_int_distribution<std::size_t> byte(0, sizeof kBytes - 2);
  for (int i = 0; i < 20000; ++i) {
    std::string bytes = whole;
    for (int k = 0; k < 3; ++k) bytes[place(random)] = kBytes[byte(random)];
    const auto grid = try_to_read(bytes);
    if (!grid) continue;
    ASSERT_EQ(grid->elevations.size(),
              static_cast<std::size_t>(grid->rows) * static_cast<std::size_t>(grid->columns))
        << "seed " << kSeed << ", file " << i;
    ASSERT_LE(grid->elevations.size(), bytes.size()) << "seed " << kSeed << ", file " << i;
    ASSERT_FALSE(grid->elevations.empty()) << "seed " << kSeed << ", file " << i;
  }
}

// Files.

using ReadDemFile = DemTest;

TEST_F(ReadDemFile, ReadsAFileAsItReadsMemory) {
  setenv("KZ_DEM_TEST", directory().c_str(), 1);
  write(tilted(), "a.dem");
  EXPECT_EQ(cells(sound(read_dem("$KZ_DEM_TEST<0>/a.dem"))), kTilted);
}

// Larger than what is in memory at a time, in every shape.
TEST_F(ReadDemFile, ReadsLargeFiles) {
  RecordAText a;
  a.size(1, 150).corners(
      {{500000, 5000010}, {500000, 5030000}, {504500, 5030000}, {504500, 5000010}});
  std::vector<ProfileText> profiles;
  for (int i = 0; i < 150; ++i) {
    profiles.push_back({1, i + 1, 500000 + 30.0 * i, 5000010, counting(900 + i % 7, i)});
  }
  const std::string bytes = file(a, profiles);
  ASSERT_GT(bytes.size(), 900000U);
  const ElevationGrid expected = read(bytes);
  EXPECT_EQ(expected.at(expected.rows - 1, 149), 149.0F);
  EXPECT_EQ(expected.at(expected.rows - 900, 149), 1048.0F);
  for (const std::string& shape :
       {bytes, in_lines(bytes, "\n", false), in_lines(bytes, "\r\n", false),
        in_lines(bytes, "\n", true), in_lines(bytes, "\r\n", true)}) {
    const ElevationGrid grid = sound(read_dem(write(shape)));
    EXPECT_EQ(cells(grid), cells(expected));
  }
}

TEST_F(ReadDemFile, RefusesAPipeWithoutWaiting) {
  const std::string path = directory() + "/pipe";
  const NamedPipe pipe(path);
  const auto grid = read_dem(path);
  ASSERT_FALSE(grid);
  EXPECT_EQ(grid.error().kind, ErrorKind::cannot_read);
  EXPECT_EQ(grid.error().message, path + ": cannot be opened");
}

TEST_F(ReadDemFile, RefusesWhatCannotBeRead) {
  const auto missing = read_dem("/nowhere/none.dem");
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.error().kind, ErrorKind::cannot_read);
  EXPECT_EQ(missing.error().message, "/nowhere/none.dem: cannot be opened");
  const auto no_file = read_dem(directory());
  ASSERT_FALSE(no_file);
  EXPECT_EQ(no_file.error().kind, ErrorKind::cannot_read);
  EXPECT_EQ(no_file.error().message, directory() + ": cannot be read");
}

TEST_F(ReadDemFile, RefusesAnEndlessFileAtOnce) {
  if (!std::ifstream("/dev/zero")) GTEST_SKIP() << "no /dev/zero";
  const auto endless = read_dem("/dev/zero");
  ASSERT_FALSE(endless);
  EXPECT_EQ(endless.error().kind, ErrorKind::bad_data);
}

// As `gdalinfo -stats` gives it.
TEST_F(ReadDemFile, ReadsTheRealSample) {
  const ElevationGrid grid = sound(read_dem(KZGIS_TEST_DATA_DIR "/dem/st_helens_crater.dem"));
  EXPECT_EQ(grid.name, "st_helens_crater.dem");
  EXPECT_EQ(grid.columns, 40);
  EXPECT_EQ(grid.rows, 40);
  EXPECT_EQ(grid.west, 562020.0);
  EXPECT_EQ(grid.north, 5116590.0);
  EXPECT_EQ(grid.lowest, 1839.0F);
  EXPECT_EQ(grid.highest, 2539.0F);
  EXPECT_EQ(grid.empty_cells, 0U);
  EXPECT_EQ(grid.at(0, 0), 2046.0F);
  EXPECT_EQ(grid.at(39, 0), 2476.0F);
}

}  // namespace
