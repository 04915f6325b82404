// Logical record B: profiles, one after the other, their messages and their report.

#include <cstdlib>
#include <random>
#include <sstream>

#include "dem/dem_writer.h"
#include "kzgis/dem.h"
#include "support/capture.h"

namespace {

using RecordBTest = DemTest;

std::vector<int> elevations_of(const DEM_LogicalRecord& record) {
  const int* const first = record.fetchElevations();
  return {first, first + record.fetchElevationCount()};
}

TEST_F(RecordBTest, EveryNumberIsZeroBeforeItIsRead) {
  const DEM_LogicalRecord record;
  EXPECT_EQ(record.fetchRowID(), 0);
  EXPECT_EQ(record.fetchColID(), 0);
  EXPECT_EQ(record.fetchElevRows(), 0);
  EXPECT_EQ(record.fetchElevCols(), 0);
  EXPECT_EQ(record.fetchBaseX(), 0.0);
  EXPECT_EQ(record.fetchBaseY(), 0.0);
  EXPECT_EQ(record.fetchLocalDatum(), 0.0);
  EXPECT_EQ(record.fetchProfMinElev(), 0.0);
  EXPECT_EQ(record.fetchProfMaxElev(), 0.0);
  EXPECT_EQ(record.fetchElevations(), nullptr);
  EXPECT_EQ(record.fetchElevationCount(), 0U);
  EXPECT_EQ(record.fetchElevation(0, 0), -32767);
}

TEST_F(RecordBTest, EveryFieldComesFromItsPlace) {
  ProfileText b{1, 2, 500030.0, 5000060.0, {7, -8, 9999, -32767}};
  b.datum = 12.5;
  b.letter = 'E';
  DEM_LogicalRecord record{UtString(write(RecordAText().text() + b.text()))};
  ASSERT_EQ(record.readRecord(), 1);
  EXPECT_EQ(record.fetchRowID(), 1);
  EXPECT_EQ(record.fetchColID(), 2);
  EXPECT_EQ(record.fetchElevRows(), 4);
  EXPECT_EQ(record.fetchElevCols(), 1);
  EXPECT_EQ(record.fetchBaseX(), 500030.0);
  EXPECT_EQ(record.fetchBaseY(), 5000060.0);
  EXPECT_EQ(record.fetchLocalDatum(), 12.5);
  EXPECT_EQ(record.fetchProfMinElev(), 100.0);
  EXPECT_EQ(record.fetchProfMaxElev(), 200.0);
  EXPECT_EQ(elevations_of(record), (std::vector<int>{7, -8, 9999, -32767}));
}

TEST_F(RecordBTest, AnExponentWithDIsNotRead) {
  DEM_LogicalRecord record{UtString(
      write(RecordAText().text() + ProfileText{.base_x = 500030.0, .elevations = {1}}.text()))};
  ASSERT_EQ(record.readRecord(), 1);
  EXPECT_EQ(record.fetchBaseX(), 0.50003);
  EXPECT_EQ(record.fetchProfMaxElev(), 0.2);
}

TEST_F(RecordBTest, TheLastProfileOfTheGridGivesZero) {
  std::string bytes = RecordAText().size(1, 3).text();
  for (int i = 1; i <= 3; ++i) bytes += ProfileText{.column = i, .elevations = {i}}.text();
  DEM_LogicalRecord record{UtString(write(bytes))};
  EXPECT_EQ(record.readRecord(), 1);
  EXPECT_EQ(record.readRecord(), 1);
  EXPECT_EQ(record.readRecord(), 0);
  EXPECT_EQ(record.fetchColID(), 3);
  EXPECT_TRUE(record.good());
  StdoutCapture out;
  EXPECT_EQ(record.readRecord(), -1);
  EXPECT_EQ(out.text(), "DEM_LogicalRecord:readRecord: EOF trying to read RowColID[0]\n");
}

TEST_F(RecordBTest, BothNumbersMustBeTheLast) {
  DEM_LogicalRecord record{
      UtString(write(RecordAText().size(2, 3).text() + ProfileText{1, 3}.text() +
                     ProfileText{2, 1}.text() + ProfileText{2, 3}.text()))};
  EXPECT_EQ(record.readRecord(), 1);
  EXPECT_EQ(record.readRecord(), 1);
  EXPECT_EQ(record.readRecord(), 0);
}

// 146 elevations fill the first block of a profile, 170 each of the others.
TEST_F(RecordBTest, ElevationsGoOnAtEveryBlockBoundary) {
  for (const int count : {1, 2, 145, 146, 147, 148, 315, 316, 317, 485, 486, 487, 1201}) {
    DEM_LogicalRecord record{UtString(
        write(RecordAText().text() + ProfileText{.elevations = counting(count, 1000)}.text() +
              ProfileText{.column = 3, .elevations = {5}}.text()))};
    ASSERT_EQ(record.readRecord(), 1) << count;
    EXPECT_EQ(elevations_of(record), counting(count, 1000)) << count;
    ASSERT_EQ(record.readRecord(), 0) << count;
    EXPECT_EQ(elevations_of(record), std::vector<int>{5}) << count;
  }
}

// Fields are taken by the block, the usual ones eight bytes at a time.
TEST_F(RecordBTest, ElevationsAreWhatAtoiMakesOfTheirFields) {
  constexpr unsigned kSeed = 19790601;
  constexpr int kCount = 2000;
  std::mt19937 generator(kSeed);
  std::vector<int> expected;
  std::string profile = ProfileText{.elevations = counting(kCount)}.text();
  for (int i = 0; i < kCount; ++i) {
    std::string field(6, ' ');
    for (char& c : field) c = "0123456789       -+D.\t/:"[generator() % 24];
    const int behind = i - 146;  // elevations of the first block
    const int offset = i < 146 ? 144 + 6 * i : 1024 * (1 + behind / 170) + 6 * (behind % 170);
    profile.replace(static_cast<std::size_t>(offset), 6, field);
    expected.push_back(std::atoi(field.c_str()));
  }
  DEM_LogicalRecord record{UtString(write(RecordAText().text() + profile))};
  ASSERT_EQ(record.readRecord(), 1);
  EXPECT_EQ(elevations_of(record), expected) << "seed " << kSeed;
  EXPECT_EQ(record.tellg(), 1024 + static_cast<std::streamoff>(profile.size()));
}

TEST_F(RecordBTest, AProfileOfNoRowsHasNoElevations) {
  DEM_LogicalRecord record{
      UtString(write(RecordAText().text() + ProfileText{.elevations = {1}}.text() +
                     ProfileText{.column = 2, .rows = 0}.text()))};
  EXPECT_EQ(record.readRecord(), 1);
  EXPECT_EQ(record.readRecord(), 1);
  EXPECT_EQ(record.fetchElevRows(), 0);
  EXPECT_EQ(record.fetchElevations(), nullptr);
  EXPECT_EQ(record.fetchElevation(0, 0), -32767);
}

TEST_F(RecordBTest, ElevationsAreInRowMajorOrder) {
  DEM_LogicalRecord record{UtString(
      write(RecordAText().text() + ProfileText{.elevations = counting(30), .columns = 10}.text()))};
  ASSERT_EQ(record.readRecord(), 1);
  EXPECT_EQ(record.fetchElevRows(), 3);
  EXPECT_EQ(record.ElevIndex(2, 5), 25);
  EXPECT_EQ(record.ElevIndex(-1, 3), -7);
  EXPECT_EQ(record.fetchElevations()[record.ElevIndex(2, 5)], 26);
  EXPECT_EQ(record.fetchElevation(2, 5), 26);
  EXPECT_EQ(record.fetchElevation(0, 9), 10);
  for (const auto& [r, c] : {std::pair{-1, 0}, {0, -1}, {3, 0}, {0, 10}, {1 << 30, 1 << 30}}) {
    EXPECT_EQ(record.fetchElevation(r, c), -32767) << r << ", " << c;
  }
}

TEST_F(RecordBTest, ElevIndexIsDefinedForAnyNumbers) {
  DEM_LogicalRecord record{
      UtString(write(RecordAText().text() + ProfileText{.columns = 999999, .rows = 0}.text()))};
  ASSERT_EQ(record.readRecord(), 1);
  EXPECT_EQ(record.ElevIndex(1000, 1), 999999001);
  EXPECT_EQ(record.ElevIndex(1 << 30, 1 << 30), 0);  // modulo 2^32
}

// Opening.

TEST_F(RecordBTest, OpeningReadsTheHeader) {
  DEM_LogicalRecord record;
  EXPECT_EQ(record.setFN(write(RecordAText().text())), 1);
  EXPECT_EQ(record.fetchLRAIngest(), 1);
  EXPECT_EQ(record.fetchColumns(), 3);
}

TEST_F(RecordBTest, OpeningACutHeaderLeavesTheFileOpen) {
  DEM_LogicalRecord record;
  StdoutCapture out;
  EXPECT_EQ(record.setFN(write(RecordAText().text().substr(0, 50))), -1);
  EXPECT_EQ(out.text(),
            "DEM_LRA::ingest: EOF after Info\n"
            "DEM_LogicalRecord::setFN: EOF reading record A\n");
  EXPECT_TRUE(record.is_open());
}

TEST_F(RecordBTest, OpeningAMissingFileSaysSoThrice) {
  StdoutCapture out;
  StderrCapture err;
  DEM_LogicalRecord record;
  EXPECT_EQ(record.setFN("/nowhere/none"), -1);
  EXPECT_EQ(err.text(), "DEM_LRA::setFN(): Could not open /nowhere/none\n");
  EXPECT_EQ(out.text(),
            "DEM_LRA::ingest: EOF after Quadrangle\n"
            "DEM_LogicalRecord::setFN: EOF reading record A\n");
  EXPECT_FALSE(record.is_open());
}

TEST_F(RecordBTest, AProfileReadsTheHeaderFirstWhenNobodyDid) {
  DEM_LogicalRecord record;
  ASSERT_EQ(record.DEM_LRA::setFN(
                write(RecordAText().text() + ProfileText{.column = 3, .elevations = {4}}.text())),
            1);
  EXPECT_EQ(record.fetchLRAIngest(), 0);
  EXPECT_EQ(record.readRecord(), 0);
  EXPECT_EQ(record.fetchLRAIngest(), 1);
  EXPECT_EQ(record.fetchElevation(0, 0), 4);
}

TEST_F(RecordBTest, AProfileWithoutAHeaderFails) {
  DEM_LogicalRecord record;
  StdoutCapture out;
  EXPECT_EQ(record.readRecord(), -1);
  EXPECT_EQ(out.text(),
            "DEM_LRA::ingest: EOF after Quadrangle\n"
            "DEM_LogicalRecord::readRecord: Could not ingest the header (LR A)\n");
}

TEST_F(RecordBTest, AProfileOfAFileThatIsNotOpenFailsEvenWhenMarkedRead) {
  DEM_LogicalRecord record;
  record.setLRAIngest(1);
  StdoutCapture out;
  EXPECT_EQ(record.readRecord(), -1);
  EXPECT_EQ(out.text(), "DEM_LogicalRecord:readRecord: EOF trying to read RowColID[0]\n");
}

// Damage.

std::string message_of_cut(std::size_t cut) {
  const std::string prefix = "DEM_LogicalRecord:readRecord: EOF ";
  if (cut < 6) return prefix + "trying to read RowColID[0]\n";
  if (cut < 12) return prefix + "trying to read RowColID[1]\n";
  if (cut < 18) return prefix + "trying to read elevRowColID[0]\n";
  if (cut < 24) return prefix + "trying to read elevRowColID[1]\n";
  if (cut < 48) return prefix + "trying to read baseXY[0]\n";
  if (cut < 72) return prefix + "trying to read baseXY[1]\n";
  if (cut < 96) return prefix + "trying to read localDatum\n";
  if (cut < 120) return prefix + "trying to read profElvMinMax[0]\n";
  if (cut < 144) return prefix + "trying to read profElvMinMax[1]\n";
  // Four columns; 146 elevations in the first block, the others from byte 1024 on.
  const std::size_t element = cut < 1020   ? (cut - 144) / 6
                              : cut < 1024 ? 146
                                           : 146 + (cut - 1024) / 6;
  return prefix + "reading Elevation[" + std::to_string(element / 4) + "][" +
         std::to_string(element % 4) + "]\n";
}

TEST_F(RecordBTest, CutAnywhereNamesWhatIsNotWholeAndKeepsTheRest) {
  const std::string profile = ProfileText{.elevations = counting(160), .columns = 4}.text();
  const std::size_t end = 1024 + 14 * 6;
  for (std::size_t cut = 0; cut < end; ++cut) {
    DEM_LogicalRecord record{UtString(write(RecordAText().text() + profile.substr(0, cut)))};
    StdoutCapture out;
    ASSERT_EQ(record.readRecord(), -1) << cut;
    ASSERT_EQ(out.text(), message_of_cut(cut)) << cut;
    const std::size_t kept = cut < 144    ? 0
                             : cut < 1020 ? (cut - 144) / 6
                             : cut < 1024 ? 146
                                          : 146 + (cut - 1024) / 6;
    ASSERT_EQ(record.fetchElevationCount(), kept) << cut;
    for (int i = 0; i < static_cast<int>(kept); ++i) {
      ASSERT_EQ(record.fetchElevation(i / 4, i % 4), i + 1) << cut;
    }
    ASSERT_EQ(record.fetchElevation(39, 3), -32767) << cut;
    ASSERT_EQ(record.fetchElevRows(), cut < 18 ? 0 : 40) << cut;
    ASSERT_EQ(record.fetchBaseY(), cut < 72 ? 0.0 : 0.5) << cut;
    // And once failed, failed it stays.
    ASSERT_EQ(record.readRecord(), -1) << cut;
  }
  // What is behind the last elevation may be missing.
  for (std::size_t cut = end; cut <= 2048; ++cut) {
    DEM_LogicalRecord record{UtString(write(RecordAText().text() + profile.substr(0, cut)))};
    StdoutCapture out;
    ASSERT_EQ(record.readRecord(), 1) << cut;
    ASSERT_EQ(out.text(), "") << cut;
    ASSERT_EQ(record.eof(), cut < 2048) << cut;
    ASSERT_EQ(record.readRecord(), -1) << cut;
  }
}

TEST_F(RecordBTest, AFailureInAProfilesHeaderKeepsTheElevationsOfTheOneBefore) {
  DEM_LogicalRecord record{UtString(
      write(RecordAText().text() + ProfileText{.elevations = {4, 5}}.text() + integer_field(1) +
            integer_field(2) + integer_field(7) + integer_field(1) + "  1.5"))};
  ASSERT_EQ(record.readRecord(), 1);
  StdoutCapture out;
  ASSERT_EQ(record.readRecord(), -1);
  EXPECT_EQ(record.fetchElevRows(), 7);
  EXPECT_EQ(elevations_of(record), (std::vector<int>{4, 5}));
  EXPECT_EQ(record.fetchElevation(1, 0), 5);
  EXPECT_EQ(record.fetchElevation(2, 0), -32767);
}

struct HostileSize {
  std::string rows;
  std::string columns;
  int result;
  std::string message;
};

TEST_F(RecordBTest, HostileSizesEndInAReportedFailure) {
  const std::string eof = "DEM_LogicalRecord:readRecord: EOF reading Elevation[0][146]\n";
  for (const HostileSize& c :
       {HostileSize{"999999", "999999", -1, eof}, HostileSize{" 65536", " 65536", -1, eof},
        HostileSize{"     1", "999999", -1, eof},
        HostileSize{"999999", "     1", -1,
                    "DEM_LogicalRecord:readRecord: EOF reading Elevation[146][0]\n"},
        HostileSize{"    -1", "     1", -1,
                    "DEM_LogicalRecord:readRecord: No memory for -1 x 1 elevations\n"},
        HostileSize{"999999", "-99999", -1,
                    "DEM_LogicalRecord:readRecord: No memory for 999999 x -99999 elevations\n"},
        // Two negative numbers ask for room, and for no elevation.
        HostileSize{"    -2", "    -3", 1, ""}, HostileSize{"-99999", "-99999", 1, ""},
        HostileSize{"999999", "     0", 1, ""}, HostileSize{"     0", "999999", 1, ""},
        HostileSize{"     0", "    -1", 1, ""}}) {
    std::string profile = ProfileText{.elevations = {4}}.text();
    profile.replace(12, 6, c.rows).replace(18, 6, c.columns);
    DEM_LogicalRecord record{UtString(write(RecordAText().text() + profile))};
    StdoutCapture out;
    EXPECT_EQ(record.readRecord(), c.result) << c.rows << " x " << c.columns;
    EXPECT_EQ(out.text(), c.message) << c.rows << " x " << c.columns;
    EXPECT_LE(record.fetchElevationCount(), 146U);
    EXPECT_EQ(record.fetchElevation(-1, -1), -32767);
    // The object is whole: it serves another file.
    EXPECT_EQ(record.setFN(write(RecordAText().text() + ProfileText{.elevations = {7}}.text())), 1);
    EXPECT_EQ(record.readRecord(), 1);
    EXPECT_EQ(elevations_of(record), std::vector<int>{7});
  }
}

// Each line end is a byte that the counter knows nothing of.
TEST_F(RecordBTest, LineEndsMakeItDriftWithoutANotice) {
  const auto with_lines = [](std::string bytes) {
    std::string out;
    for (std::size_t i = 0; i < bytes.size(); i += 1024) out += bytes.substr(i, 1024) + "\n";
    return out;
  };
  DEM_LogicalRecord record{UtString(write(
      with_lines(RecordAText().text() + ProfileText{.elevations = {123456, 234567}}.text())))};
  StdoutCapture out;
  EXPECT_EQ(record.readRecord(), 1);
  EXPECT_EQ(out.text(), "");
  // Each begins with the last character of the field before.
  EXPECT_EQ(elevations_of(record), (std::vector<int>{312345, 623456}));
}

TEST_F(RecordBTest, ALoopOverAnyDamagedFileEnds) {
  std::string whole = RecordAText().size(1, 4).text();
  for (int i = 1; i <= 4; ++i) {
    whole += ProfileText{.column = i, .elevations = counting(150 * (i - 1) + 1)}.text();
  }
  for (std::size_t cut = 0; cut < whole.size(); cut += 41) {
    StdoutCapture out;
    DEM_LogicalRecord record{UtString(write(whole.substr(0, cut)))};
    int calls = 0;
    while (record.readRecord() == 1 && ++calls < 10) {
    }
    EXPECT_LT(calls, 4) << cut;
  }
}

// The report.

TEST_F(RecordBTest, Reports) {
  ProfileText b{1, 2, 557820.5, 5121240.25, {1, 2, 3}};
  b.datum = 2.5;
  b.letter = 'E';
  struct Units {
    int code;
    std::string end;
  };
  for (const Units& units : {Units{0, "(unspecified)\n\n"}, Units{1, "(feet)\n\n"},
                             Units{2, "(meters)\n\n"}, Units{5, "\n"}, Units{-1, "\n"}}) {
    DEM_LogicalRecord record{
        UtString(write(RecordAText().integer(534, units.code).size(1, 327).text() + b.text()))};
    ASSERT_EQ(record.readRecord(), 1);
    const std::string expected =
        "+++ Contents of Logical Record B. Profile ID =1, 2 out of 1, 327\n"
        "\tTotal Elevations in Profile: 3 x 1\n"
        "\tThis profile begins at coordinates (557820, 5.12124e+06)\n"
        "\tLocal datum: 2.5 with min elev = 100 and max elev = 200 " +
        units.end;
    std::ostringstream os;
    os << record;
    EXPECT_EQ(os.str(), expected);
    std::ostringstream through_pointer;
    through_pointer << &record;
    EXPECT_EQ(through_pointer.str(), expected);
  }
}

TEST_F(RecordBTest, ReportsBeforeAnythingIsRead) {
  const DEM_LogicalRecord record;
  std::ostringstream os;
  os << record;
  EXPECT_EQ(os.str(),
            "+++ Contents of Logical Record B. Profile ID =0, 0 out of 0, 0\n"
            "\tTotal Elevations in Profile: 0 x 0\n"
            "\tThis profile begins at coordinates (0, 0)\n"
            "\tLocal datum: 0 with min elev = 0 and max elev = 0 (unspecified)\n"
            "\n");
  const DEM_LogicalRecord* const none = nullptr;
  std::ostringstream nothing;
  nothing << none;
  EXPECT_EQ(nothing.str(), "");
}

}  // namespace
