// Logical record A: its fields, its messages and its report.

#include <bit>
#include <sstream>

#include "dem/dem_writer.h"
#include "kzgis/dem.h"
#include "support/capture.h"

namespace {

using RecordATest = DemTest;

std::string report(const DEM_LRA& record) {
  std::ostringstream os;
  os << record;
  return os.str();
}

std::string date_text(const UtDate& date) {
  std::ostringstream os;
  os << date;
  return os.str();
}

TEST_F(RecordATest, EveryNumberIsZeroBeforeItIsRead) {
  DEM_LRA record;
  EXPECT_TRUE(record.fetchQuadrangle().empty());
  EXPECT_TRUE(record.fetchInfo().empty());
  EXPECT_TRUE(record.fetchSI().empty());
  EXPECT_TRUE(record.fetchMCorigin().empty());
  EXPECT_EQ(record.fetchProcessCode(), 0);
  EXPECT_EQ(record.fetchDEMLevel(), 0);
  EXPECT_EQ(record.fetchElvPat(), 0);
  EXPECT_EQ(record.fetchGroundPlan(), 0);
  EXPECT_EQ(record.fetchGroundZone(), 0);
  for (int i = 0; i < 15; ++i) EXPECT_EQ(record.fetchMPParameters()[i], 0.0);
  EXPECT_EQ(record.fetchUnits(), 0);
  EXPECT_EQ(record.fetchElvUnits(), 0);
  EXPECT_EQ(record.fetchElvMin(), 0.0);
  EXPECT_EQ(record.fetchElvMax(), 0.0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(record.fetchRez()[i], 0.0);
  EXPECT_EQ(record.fetchRows(), 0);
  EXPECT_EQ(record.fetchColumns(), 0);
  EXPECT_EQ(date_text(record.fetchSourceData()), "0/0/0");
  char flag = 'q';
  EXPECT_EQ(date_text(record.fetchRevisionDate(&flag)), "0/0/0");
  EXPECT_EQ(flag, '\0');
}

TEST_F(RecordATest, EveryFieldComesFromItsPlace) {
  RecordAText a;
  a.integer(144, 3).integer(150, 2).integer(156, 1).integer(162, 11);
  for (int i = 0; i < 15; ++i) a.put(168 + 24 * i, real_field(i + 0.5, 'E'));
  a.integer(528, 2).integer(534, 1).range(682.0, 2543.0, 'E').steps(30.0, 20.0, 0.1).size(1, 327);
  DEM_LRA record{UtString(write(a.text()))};
  ASSERT_EQ(record.ingest(), 1);

  EXPECT_EQ(record.fetchQuadrangle().str(),
            "TEST QUADRANGLE" + std::string(25, ' ') + std::string(1, '\0'));
  EXPECT_EQ(record.fetchInfo().str(),
            "MADE FOR TESTS" + std::string(26, ' ') + std::string(1, '\0'));
  EXPECT_EQ(record.fetchProcessCode(), 2);
  EXPECT_EQ(record.fetchSI().str(), std::string("NW1\0", 4));
  EXPECT_EQ(record.fetchMCorigin().str(), std::string("MAPC\0", 5));
  EXPECT_EQ(record.fetchDEMLevel(), 3);
  EXPECT_EQ(record.fetchElvPat(), 2);
  EXPECT_EQ(record.fetchGroundPlan(), 1);
  EXPECT_EQ(record.fetchGroundZone(), 11);
  const DEM_LRA& constant = record;
  for (int i = 0; i < 15; ++i) EXPECT_EQ(constant.fetchMPParameters()[i], i + 0.5);
  EXPECT_EQ(record.fetchUnits(), 2);
  EXPECT_EQ(record.fetchElvUnits(), 1);
  EXPECT_EQ(record.fetchElvMin(), 682.0);
  EXPECT_EQ(record.fetchElvMax(), 2543.0);
  EXPECT_EQ(constant.fetchRez()[0], 30.0);
  EXPECT_EQ(constant.fetchRez()[1], 20.0);
  EXPECT_EQ(constant.fetchRez()[2], 0.1);
  EXPECT_EQ(record.fetchRows(), 1);
  EXPECT_EQ(record.fetchColumns(), 327);
  EXPECT_EQ(date_text(record.fetchSourceData()), "19/1968/1");
  EXPECT_EQ(date_text(record.fetchRevisionDate()), "19/1932/1");  // 1951
  char flag = 0;
  EXPECT_EQ(date_text(record.fetchRevisionDate(&flag)), "19/1932/1");
  EXPECT_EQ(flag, 'I');
  EXPECT_EQ(date_text(record.fetchRevisionDate(nullptr)), "19/1932/1");
}

TEST_F(RecordATest, AnExponentWithDIsNotRead) {
  DEM_LRA record{UtString(write(RecordAText().range(682.0, 2543.0).text()))};
  ASSERT_EQ(record.ingest(), 1);
  EXPECT_EQ(record.fetchElvMin(), 0.682);
  EXPECT_EQ(record.fetchElvMax(), 0.2543);
}

TEST_F(RecordATest, EndsAtTheSecondBlock) {
  struct Counter : DEM_LRA {
    using DEM_LRA::DEM_LRA;
    using DEM_LRA::fetchByteCount;
  };
  for (const std::string& rest : {std::string(), std::string(1024, 'x')}) {
    Counter record{UtString(write(RecordAText().text() + rest))};
    ASSERT_EQ(record.ingest(), 1);
    EXPECT_EQ(record.fetchLRAIngest(), 1);
    EXPECT_EQ(record.fetchByteCount(), 0);
    EXPECT_EQ(static_cast<long>(record.tellg()), 1024);
    EXPECT_TRUE(record.good());
  }
}

TEST_F(RecordATest, IsReadOnce) {
  DEM_LRA record{UtString(write(RecordAText().text() + RecordAText().text()))};
  EXPECT_EQ(record.ingest(), 1);
  EXPECT_EQ(record.ingest(), 1);
  EXPECT_EQ(static_cast<long>(record.tellg()), 1024);
}

TEST_F(RecordATest, IsReadAgainAfterTheFileIsOpenedAgain) {
  const std::string path = write(RecordAText().text());
  DEM_LRA record{UtString(path)};
  EXPECT_EQ(record.ingest(), 1);
  EXPECT_EQ(record.setFN(path), 1);
  EXPECT_EQ(record.fetchLRAIngest(), 0);
  EXPECT_EQ(record.fetchColumns(), 3);
  EXPECT_EQ(record.ingest(), 1);
}

// The fields in the order and with the widths of the record; the message of each.
struct Field {
  int width;
  std::string message;
};

std::vector<Field> fields() {
  std::vector<Field> all = {
      {40, "EOF after Quadrangle"},        {40, "EOF after Info"},
      {55, "EOF in header after skip 55"}, {1, "EOF after ProcessCode"},
      {1, "EOF in header after skip 1"},   {3, "EOF after Sectional Indicator"},
      {4, "EOF after MCorigin"},           {6, "EOF after DEMLevel"},
      {6, "EOF after ElevationPattern"},   {6, "EOF after GroundPlan"},
      {6, "EOF after GroundZone"}};
  for (int i = 0; i < 15; ++i)
    all.push_back({24, "EOF after MPparameters[" + std::to_string(i) + "]"});
  all.insert(all.end(),
             {{6, "EOF after Units"}, {6, "EOF after ElevationUnits"}, {6, "EOF after nSides"}});
  for (const char* place :
       {"[0][0]", "[0][1]", "[1][0]", "[1][1]", "[2][0]", "[2][1]", "[3][0]", "[3][1]"}) {
    all.push_back({24, std::string("EOF after GroundCoord") + place});
  }
  all.insert(all.end(), {{24, "EOF after ElevMinMac[0]"},  {24, "EOF after ElevMinMac[1]"},
                         {24, "EOF after ReferenceAngle"}, {6, "EOF after AccuracyCode"},
                         {12, "EOF after Rez[0]"},         {12, "EOF after Rez[1]"},
                         {12, "EOF after Rez[2]"},         {6, "EOF after RowsCols[0]"},
                         {6, "EOF after RowsCols[1]"},     {5, "EOF after LargestInterval"},
                         {1, "EOF after LIUnits"},         {5, "EOF after SmallestInterval"},
                         {1, "EOF after SIUnits"},         {4, "EOF after SourceDate"},
                         {4, "EOF after Revision"},        {1, "EOF after RIFlag"},
                         {1, "EOF after validation"},      {2, "EOF after Suspect"},
                         {2, "EOF after VertDatum"},       {2, "EOF after HorzDatum"},
                         {4, "EOF after DataEdition"},     {4, "EOF after PercentVoid"}});
  return all;
}

TEST_F(RecordATest, CutAnywhereNamesTheFieldThatIsNotWhole) {
  const std::string whole = RecordAText().text();
  std::size_t cut = 0;
  for (const Field& field : fields()) {
    for (int i = 0; i < field.width; ++i, ++cut) {
      DEM_LRA record{UtString(write(whole.substr(0, cut)))};
      StdoutCapture out;
      EXPECT_EQ(record.ingest(), -1) << cut;
      EXPECT_EQ(out.text(), "DEM_LRA::ingest: " + field.message + "\n") << cut;
      EXPECT_EQ(record.fetchLRAIngest(), 0) << cut;
    }
  }
  EXPECT_EQ(cut, 900U);
  // The filler behind the fields may be missing.
  for (; cut <= 1024; ++cut) {
    DEM_LRA record{UtString(write(whole.substr(0, cut)))};
    StdoutCapture out;
    EXPECT_EQ(record.ingest(), 1) << cut;
    EXPECT_EQ(out.text(), "") << cut;
    EXPECT_EQ(record.eof(), cut < 1024) << cut;
  }
}

TEST_F(RecordATest, CutKeepsTheFieldsBeforeAndTheOldOnesBehind) {
  DEM_LRA record{UtString(write(RecordAText().integer(534, 2).text()))};
  ASSERT_EQ(record.ingest(), 1);
  RecordAText other;
  other.put(0, "SHORT").integer(528, 3).integer(534, 1);
  ASSERT_EQ(record.setFN(write(other.text().substr(0, 537), "cut.dem")), 1);
  StdoutCapture out;
  EXPECT_EQ(record.ingest(), -1);
  EXPECT_EQ(record.fetchUnits(), 3);     // new
  EXPECT_EQ(record.fetchElvUnits(), 2);  // old
  EXPECT_EQ(record.fetchColumns(), 3);   // old
  EXPECT_EQ(record.fetchQuadrangle().str().substr(0, 6), "SHORTQ");
}

TEST_F(RecordATest, OfAFileThatIsNotOpenFails) {
  DEM_LRA record;
  StdoutCapture out;
  EXPECT_EQ(record.ingest(), -1);
  EXPECT_EQ(out.text(), "DEM_LRA::ingest: EOF after Quadrangle\n");
}

// The report.

TEST_F(RecordATest, ReportsLineByLine) {
  RecordAText a;
  for (int i = 0; i < 15; ++i) a.put(168 + 24 * i, real_field(i + 0.5, 'E'));
  a.range(100.0, 200.25, 'E');
  const std::string path = write(a.text());
  DEM_LRA record{UtString(path)};
  ASSERT_EQ(record.ingest(), 1);
  const std::string expected =
      "---- Contents of Logical Record A in DEM file:\n"
      "\tPhysical filename: " +
      path +
      "\n"
      "\tDEM Quadrangle: TEST QUADRANGLE                         \n"
      "\tAddition Information: MADE FOR TESTS                          \n"
      "\tProcessing Code: 2(Manual Profile)\n"
      "\tSectional Indicator: NW1\n"
      "\tMC Origin Code: MAPC\n"
      "\tDEM Level Code: 3(DEM-3)\n"
      "\tElevation Pattern: 1(regular)\n"
      "\tGround Plan: 1(UTM) Units: 2 (meters)\n"
      "\tGround Zone: 10\n"
      "\tMap Parameters: \n"
      "\t\t(0.5,1.5,2.5,3.5,4.5,5.5,6.5,7.5,8.5,9.5,10.5,11.5,12.5,13.5,4.24399e-314)\n"
      "\tMin Elev: 100 Max Elev: 200.25 Units: 2 (meters)\n"
      "\tSpatial Resolution: (30, 30, 1)\n"
      "\tRows x Cols = 1 x 3\n"
      "\tSource Date: 19/1968/1\tInspection Date: 19/1932/1\n"
      "---- End contents of Logical Record A\n";
  EXPECT_EQ(report(record), expected);
  std::ostringstream os;
  os << &record;
  EXPECT_EQ(os.str(), expected);
}

TEST_F(RecordATest, ReportsBeforeAnythingIsRead) {
  const DEM_LRA record;
  EXPECT_EQ(report(record),
            "---- Contents of Logical Record A in DEM file:\n"
            "\tPhysical filename: \n"
            "\tDEM Quadrangle: \n"
            "\tAddition Information: \n"
            "\tProcessing Code: 0(not set)\n"
            "\tSectional Indicator: \n"
            "\tMC Origin Code: \n"
            "\tDEM Level Code: 0(DEM-0)\n"
            "\tElevation Pattern: 0(not set)\n"
            "\tGround Plan: 0(geographic) Units: 0 (radians)\n"
            "\tGround Zone: 0\n"
            "\tMap Parameters: \n"
            "\t\t(0,0,0,0,0,0,0,0,0,0,0,0,0,0,0)\n"
            "\tMin Elev: 0 Max Elev: 0 Units: 0 (unspecified)\n"
            "\tSpatial Resolution: (0, 0, 0)\n"
            "\tRows x Cols = 0 x 0\n"
            "\tSource Date: 0/0/0\tRevision Date: 0/0/0\n"
            "---- End contents of Logical Record A\n");
}

TEST_F(RecordATest, ReportsNothingOfANullPointer) {
  std::ostringstream os;
  const DEM_LRA* const none = nullptr;
  os << none;
  EXPECT_EQ(os.str(), "");
}

struct LineCase {
  int offset;
  std::string text;
  std::string line;
};

TEST_F(RecordATest, ReportsEveryCode) {
  const std::vector<LineCase> cases = {
      {135, "0", "\tProcessing Code: 0(not set)\n"},
      {135, "1", "\tProcessing Code: 1(GPM)\n"},
      {135, "2", "\tProcessing Code: 2(Manual Profile)\n"},
      {135, "3", "\tProcessing Code: 3(DLG2DEM)\n"},
      {135, "4", "\tProcessing Code: 4(DCASS)\n"},
      {135, "7", "\tProcessing Code: 7(BAD VALUE)\n"},
      {144, "    -2", "\tDEM Level Code: -2(DEM--2)\n"},
      {150, "     1", "\tElevation Pattern: 1(regular)\n"},
      {150, "     2", "\tElevation Pattern: 2(random)\n"},
      {150, "     0", "\tElevation Pattern: 0(not set)\n"},
      {150, "     3", "\tElevation Pattern: 3(not set)\n"},
      {156, "     0", "\tGround Plan: 0(geographic) Units: 2 (meters)\n"},
      {156, "     1", "\tGround Plan: 1(UTM) Units: 2 (meters)\n"},
      {156, "     2", "\tGround Plan: 2(state plane) Units: 2 (meters)\n"},
      {156, "     3", "\tGround Plan: 3(unused) Units: 2 (meters)\n"},
      {528, "     0", "\tGround Plan: 1(UTM) Units: 0 (radians)\n"},
      {528, "     1", "\tGround Plan: 1(UTM) Units: 1 (feet)\n"},
      {528, "     2", "\tGround Plan: 1(UTM) Units: 2 (meters)\n"},
      {528, "     3", "\tGround Plan: 1(UTM) Units: 3 (arc-seconds)\n"},
      {528, "     4", "\tGround Plan: 1(UTM) Units: 4 (BAD VALUE)\n"},
      {528, "    -1", "\tGround Plan: 1(UTM) Units: -1 (BAD VALUE)\n"},
      {534, "     0", "Units: 0 (unspecified)\n\tSpatial"},
      {534, "     1", "Units: 1 (feet)\n\tSpatial"},
      {534, "     2", "Units: 2 (meters)\n\tSpatial"},
      // Not named, and the line not ended.
      {534, "     5", "Units: 5 (\tSpatial Resolution: (30, 30, 1)\n"},
      {534, "    -1", "Units: -1 (\tSpatial Resolution: (30, 30, 1)\n"},
      {884, "I", "\tInspection Date: "},
      {884, "R", "\tRevision Date: "},
      {884, " ", "\tRevision Date: "},
      {884, "i", "\tRevision Date: "}};
  for (const LineCase& c : cases) {
    DEM_LRA record{UtString(write(RecordAText().put(c.offset, c.text).text()))};
    ASSERT_EQ(record.ingest(), 1);
    EXPECT_NE(report(record).find(c.line), std::string::npos)
        << "'" << c.text << "' at " << c.offset << ":\n"
        << report(record);
  }
}

// Ground units low, elevation units high.  1072693248 in the high half would be 1.0: six
// characters reach far enough to tell the halves apart.
TEST_F(RecordATest, ReportsBothUnitsAsOneDouble) {
  DEM_LRA record{UtString(write(RecordAText().integer(528, 999999).integer(534, -1).text()))};
  ASSERT_EQ(record.ingest(), 1);
  std::ostringstream expected;
  expected << ",0," << std::bit_cast<double>(0xFFFFFFFF000F423FULL) << ")\n";
  EXPECT_NE(report(record).find(expected.str()), std::string::npos) << report(record);

  // Python: struct.unpack('<d', struct.pack('<ii', 3, 99999))
  DEM_LRA other{UtString(write(RecordAText().integer(528, 3).integer(534, 99999).text()))};
  ASSERT_EQ(other.ingest(), 1);
  EXPECT_NE(report(other).find(",0,2.12197e-309)\n"), std::string::npos) << report(other);
}

TEST_F(RecordATest, ReportsInTheStreamsFormat) {
  DEM_LRA record{UtString(write(RecordAText().range(100.0, 200.0, 'E').text()))};
  ASSERT_EQ(record.ingest(), 1);
  std::ostringstream os;
  os.precision(2);
  os << std::fixed << record;
  EXPECT_NE(os.str().find("\tSpatial Resolution: (30.00, 30.00, 1.00)\n"), std::string::npos);
}

}  // namespace
