#include "kzgis/worldmap.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <type_traits>

#include "support/capture.h"
#include "worldmap/bank.h"

namespace {

template <typename Section>
Section next(Section section) {
  increment(section);
  return section;
}

TEST(WorldMapSections, AreNumberedFrom0) {
  EXPECT_EQ(Africa, 0);
  EXPECT_EQ(Asia, 1);
  EXPECT_EQ(Europe, 2);
  EXPECT_EQ(NoAm, 3);
  EXPECT_EQ(SoAm, 4);
  EXPECT_EQ(NumMapSections, 5);
  EXPECT_EQ(Geographic, 0);
  EXPECT_EQ(Political, 1);
  EXPECT_EQ(Coastal, 2);
  EXPECT_EQ(River, 3);
  EXPECT_EQ(Plates, 4);
  EXPECT_EQ(NumOverlaySections, 5);
  EXPECT_EQ(Level0, 0);
  EXPECT_EQ(Level15, 15);
  EXPECT_EQ(NumInfoLevels, 16);
}

TEST(WorldMapIncrement, StepsToTheEndMarkerAndStaysThere) {
  EXPECT_EQ(next(Africa), Asia);
  EXPECT_EQ(next(NoAm), SoAm);
  EXPECT_EQ(next(SoAm), NumMapSections);
  EXPECT_EQ(next(NumMapSections), NumMapSections);
  EXPECT_EQ(next(Geographic), Political);
  EXPECT_EQ(next(River), Plates);
  EXPECT_EQ(next(Plates), NumOverlaySections);
  EXPECT_EQ(next(NumOverlaySections), NumOverlaySections);
  for (int level = 0; level < 15; ++level) {
    EXPECT_EQ(next(static_cast<infoLevels>(level)), level + 1);
  }
  EXPECT_EQ(next(Level15), NumInfoLevels);
  EXPECT_EQ(next(NumInfoLevels), NumInfoLevels);
}

TEST(WorldMapIncrement, BringsWhatIsNoMemberToTheEndMarker) {
  EXPECT_EQ(next(static_cast<mapSections>(6)), NumMapSections);
  EXPECT_EQ(next(static_cast<overlaySections>(1000)), NumOverlaySections);
  EXPECT_EQ(next(static_cast<infoLevels>(17)), NumInfoLevels);
}

TEST(WorldMapNew, HasTheDefaults) {
  WorldMap map;
  EXPECT_TRUE(map.fetchCIADirectory() == "$KZ_PATH<0>/data/Maps");
  EXPECT_TRUE(map.fetchContinentDir(Africa) == "africa.Map");
  EXPECT_TRUE(map.fetchContinentDir(Asia) == "asia.Map");
  EXPECT_TRUE(map.fetchContinentDir(Europe) == "europe.Map");
  EXPECT_TRUE(map.fetchContinentDir(NoAm) == "namer.Map");
  EXPECT_TRUE(map.fetchContinentDir(SoAm) == "samer.Map");
  EXPECT_TRUE(map.fetchOverlaysFile(Geographic) == "bdy.cbd");
  EXPECT_TRUE(map.fetchOverlaysFile(Political) == "pby.cbd");
  EXPECT_TRUE(map.fetchOverlaysFile(Coastal) == "cil.cbd");
  EXPECT_TRUE(map.fetchOverlaysFile(River) == "riv.cbd");
  EXPECT_TRUE(map.fetchOverlaysFile(Plates) == "USGS_plates.txt");
  EXPECT_EQ(map.fetchPrecision(), 3600);
  EXPECT_EQ(map.fetchLowLeftBoundary()->fetchLat(), 15.0);
  EXPECT_EQ(map.fetchLowLeftBoundary()->fetchLon(), 185.0);
  EXPECT_EQ(map.fetchUpRightBoundary()->fetchLat(), 85.0);
  EXPECT_EQ(map.fetchUpRightBoundary()->fetchLon(), 315.0);
  for (overlaySections o = Geographic; o != NumOverlaySections; increment(o)) {
    for (infoLevels l = Level0; l != NumInfoLevels; increment(l)) EXPECT_EQ(map.fetchPOI(o, l), 0);
    EXPECT_EQ(map.fetchPolygonCollection(o).size(), 0U);
  }
}

TEST(WorldMapNew, TakesADataDirectory) {
  WorldMap map("/maps");
  EXPECT_TRUE(map.fetchCIADirectory() == "/maps");
  EXPECT_TRUE(map.fetchContinentDir(SoAm) == "samer.Map");
  EXPECT_EQ(map.fetchPrecision(), 3600);
}

TEST(WorldMapConfiguration, KeepsWhatIsSet) {
  WorldMap map;
  map.setCIADirectory("/bank");
  map.setContinentDir(Europe, "eu");
  map.setOverlaysFile(River, "rivers.cbd");
  map.setPrecision(-7);
  map.setPOI(Plates, Level15, 42);
  EXPECT_TRUE(map.fetchCIADirectory() == "/bank");
  EXPECT_TRUE(map.fetchContinentDir(Europe) == "eu");
  EXPECT_TRUE(map.fetchContinentDir(Asia) == "asia.Map");
  EXPECT_TRUE(map.fetchOverlaysFile(River) == "rivers.cbd");
  EXPECT_TRUE(map.fetchOverlaysFile(Coastal) == "cil.cbd");
  EXPECT_EQ(map.fetchPrecision(), -7);
  EXPECT_EQ(map.fetchPOI(Plates, Level15), 42);
  EXPECT_EQ(map.fetchPOI(Plates, Level14), 0);
  EXPECT_EQ(map.fetchPOI(River, Level15), 0);
}

TEST(WorldMapConfiguration, KeepsTheTwoColumnsPastTheLastLevel) {
  WorldMap map;
  EXPECT_EQ(map.fetchPOI(Coastal, NumInfoLevels), 0);
  map.setPOI(Coastal, static_cast<infoLevels>(17), 3);
  EXPECT_EQ(map.fetchPOI(Coastal, static_cast<infoLevels>(17)), 3);
}

TEST(WorldMapConfiguration, IsSafeFromEnumeratorsOutOfRange) {
  WorldMap map;
  map.setContinentDir(NumMapSections, "x");
  map.setOverlaysFile(NumOverlaySections, "x");
  map.setPOI(NumOverlaySections, Level0, 1);
  map.setPOI(Coastal, static_cast<infoLevels>(18), 1);
  map.setPOI(Coastal, static_cast<infoLevels>(-1), 1);
  EXPECT_TRUE(map.fetchContinentDir(NumMapSections) == "");
  EXPECT_TRUE(map.fetchContinentDir(static_cast<mapSections>(-1)) == "");
  EXPECT_TRUE(map.fetchOverlaysFile(NumOverlaySections) == "");
  EXPECT_EQ(map.fetchPOI(NumOverlaySections, Level0), 0);
  EXPECT_EQ(map.fetchPOI(Coastal, static_cast<infoLevels>(18)), 0);
  EXPECT_EQ(map.fetchPOI(Coastal, static_cast<infoLevels>(-1)), 0);
  EXPECT_EQ(&map.fetchPolygonCollection(NumOverlaySections), &map.fetchPolygonCollection(Plates));
  // Nothing of it arrived in a neighbouring cell.
  std::ostringstream report;
  report << map;
  EXPECT_EQ(report.str().find("\tx\n"), std::string::npos);
  for (overlaySections o = Geographic; o != NumOverlaySections; increment(o)) {
    for (infoLevels l = Level0; l != NumInfoLevels; increment(l)) EXPECT_EQ(map.fetchPOI(o, l), 0);
  }
}

TEST(WorldMapConfiguration, CannotBeCopied) {
  EXPECT_FALSE(std::is_copy_constructible_v<WorldMap>);
  EXPECT_FALSE(std::is_copy_assignable_v<WorldMap>);
}

TEST(WorldMapInsideBoundary, CountsTheEdges) {
  const WorldMap map;
  EXPECT_EQ(map.insideBoundary(LatLon(15.0, -175.0)), 1);
  EXPECT_EQ(map.insideBoundary(LatLon(85.0, -45.0)), 1);
  EXPECT_EQ(map.insideBoundary(LatLon(15.0, -45.0)), 1);
  EXPECT_EQ(map.insideBoundary(LatLon(50.0, 250.0)), 1);
  EXPECT_EQ(map.insideBoundary(LatLon(14.999, 250.0)), 0);
  EXPECT_EQ(map.insideBoundary(LatLon(85.001, 250.0)), 0);
  EXPECT_EQ(map.insideBoundary(LatLon(50.0, 184.999)), 0);
  EXPECT_EQ(map.insideBoundary(LatLon(50.0, 315.001)), 0);
}

TEST(WorldMapInsideBoundary, FollowsTheCornersAndKnowsNoBoxAcrossZero) {
  const WorldMap map;
  *map.fetchLowLeftBoundary() = LatLon(-10.0, 350.0);
  *map.fetchUpRightBoundary() = LatLon(10.0, 10.0);
  EXPECT_EQ(map.insideBoundary(LatLon(0.0, 0.0)), 0);
  EXPECT_EQ(map.insideBoundary(LatLon(0.0, 355.0)), 0);
  *map.fetchLowLeftBoundary() = LatLon(-10.0, 0.0);
  EXPECT_EQ(map.insideBoundary(LatLon(0.0, 0.0)), 1);
  EXPECT_EQ(map.insideBoundary(LatLon(0.0, std::numeric_limits<double>::quiet_NaN())), 0);
}

TEST(WithinExtents, CountsTheEdgesOfAPlainBox) {
  const WorldMap map;
  EXPECT_EQ(map.withinExtents(10, -5, 20, 5, 10, -5), 1);
  EXPECT_EQ(map.withinExtents(10, -5, 20, 5, 20, 5), 1);
  EXPECT_EQ(map.withinExtents(10, -5, 20, 5, 9, 0), 0);
  EXPECT_EQ(map.withinExtents(10, -5, 20, 5, 21, 0), 0);
  EXPECT_EQ(map.withinExtents(10, -5, 20, 5, 15, -6), 0);
  EXPECT_EQ(map.withinExtents(10, -5, 20, 5, 15, 6), 0);
}

TEST(WithinExtents, TakesEqualLongitudesForABoxAcrossZero) {
  EXPECT_EQ(WorldMap::withinExtents(1260000, 0, 36000, 9, 1296000, 5), 1);
  EXPECT_EQ(WorldMap::withinExtents(1260000, 0, 36000, 9, 1296001, 5), 0);
  EXPECT_EQ(WorldMap::withinExtents(1260000, 0, 36000, 9, 1260000, 5), 1);
  EXPECT_EQ(WorldMap::withinExtents(1260000, 0, 36000, 9, 1259999, 5), 0);
  EXPECT_EQ(WorldMap::withinExtents(1260000, 0, 36000, 9, 0, 5), 1);
  EXPECT_EQ(WorldMap::withinExtents(1260000, 0, 36000, 9, -1, 5), 0);
  EXPECT_EQ(WorldMap::withinExtents(1260000, 0, 36000, 9, 36000, 5), 1);
  EXPECT_EQ(WorldMap::withinExtents(1260000, 0, 36000, 9, 36001, 5), 0);
  EXPECT_EQ(WorldMap::withinExtents(1260000, 0, 36000, 9, 0, 10), 0);
  EXPECT_EQ(WorldMap::withinExtents(500, 0, 500, 9, 700, 5), 1);
  EXPECT_EQ(WorldMap::withinExtents(500, 0, 500, 9, 300, 5), 1);
}

TEST(WorldMapReport, OfAFreshMap) {
  const WorldMap map;
  std::ostringstream os;
  EXPECT_EQ(&(os << map), &os);
  EXPECT_EQ(os.str(),
            "----- CIA World Map information\n"
            "Data resides in directory $KZ_PATH<0>/data/Maps\n"
            "Continents are in subdirectories:\n"
            "\tafrica.Map\n"
            "\tasia.Map\n"
            "\teurope.Map\n"
            "\tnamer.Map\n"
            "\tsamer.Map\n"
            "Overlay files are:\n"
            "\tbdy.cbd\n"
            "\tpby.cbd\n"
            "\tcil.cbd\n"
            "\triv.cbd\n"
            "\tUSGS_plates.txt\n"
            "+++Data Specifics:\n"
            "Lower left boundary is Lat: 15d 0m 0s, Lon: 185d 0m 0s Altitude: 0\n"
            "Upper right boundary is Lat: 85d 0m 0s, Lon: 315d 0m 0s Altitude: 0\n"
            "Precision is 3600 seconds of arc\n"
            "Overlay section 0 currently contains 0 polygons.\n"
            "Overlay section 1 currently contains 0 polygons.\n"
            "Overlay section 2 currently contains 0 polygons.\n"
            "Overlay section 3 currently contains 0 polygons.\n"
            "Overlay section 4 currently contains 0 polygons.\n");
}

class WorldMapLoadTest : public BankTest {
 protected:
  static std::string line(long lat) {
    return cbd_file({segment_through({{lat, 100}, {lat, 200}})});
  }
};

TEST_F(WorldMapLoadTest, WithoutARequestIsSilentAndLoadsNothing) {
  write("africa.Map/cil.cbd", line(1));
  const StdoutCapture out;
  const StderrCapture err;
  const ProgressCapture progress;
  WorldMap map(root_);
  map.setPOI(Coastal, NumInfoLevels, 1);  // past the columns that are looked at
  map.readData();
  EXPECT_EQ(map.fetchPolygonCollection(Coastal).size(), 0U);
  EXPECT_EQ(out.text() + err.text(), "");
  EXPECT_TRUE(progress.percents.empty());
}

TEST_F(WorldMapLoadTest, WithoutARequestTellsAVerboseMap) {
  const StdoutCapture out;
  {
    WorldMap map(root_);
    map.setVerbose(1);
    map.readData();
    map.setVerbose(0);
  }
  EXPECT_EQ(out.text(),
            "WorldMap::readData: No information has been requested from CIA files\n"
            "WorldMap::readData: Shouldn't you be calling WorldMap::setPOI() first?\n");
}

TEST_F(WorldMapLoadTest, DestroyingAVerboseMapSaysSo) {
  const StdoutCapture out;
  {
    WorldMap map;
    map.setVerbose(-1);
  }
  EXPECT_EQ(out.text(), "WorldMap::~WorldMap(): Worldmap polygons cleaned out. Class destroyed.\n");
}

TEST_F(WorldMapLoadTest, NeverOpensThePlates) {
  write("africa.Map/USGS_plates.txt", line(1));
  const StdoutCapture out;
  const ProgressCapture progress;
  WorldMap map;
  ask_for_all(map);
  map.setPOI(Coastal, Level1, 0);
  map.setPOI(Plates, Level1, 1);
  map.setVerbose(1);
  map.readData();
  map.setVerbose(0);
  EXPECT_EQ(out.text(), "");
  EXPECT_TRUE(progress.percents.empty());
  EXPECT_EQ(map.fetchPolygonCollection(Plates).size(), 0U);
}

TEST_F(WorldMapLoadTest, OpensOneFilePerContinentAndSaysSo) {
  write("europe.Map/cil.cbd", line(1));
  write("namer.Map/cil.cbd", line(2));
  write("samer.Map/cil.cbd", "not a map");
  const StdoutCapture out;
  const StderrCapture err;
  WorldMap map;
  ask_for_all(map);
  map.setPOI(Coastal, Level1, 0);
  map.setPOI(Coastal, Level3, 1);
  map.setVerbose(1);
  map.readData();
  map.setVerbose(0);
  const std::string africa = root_ + "\\africa.Map\\cil.cbd";
  const std::string asia = root_ + "\\asia.Map\\cil.cbd";
  EXPECT_EQ(
      out.text(),
      "WorldMap::readData: Opening " + africa + "...\nCIA: Could not open file " + africa +
          "\nRead 0 polygons.\n" + "WorldMap::readData: Opening " + asia +
          "...\nCIA: Could not open file " + asia + "\nRead 0 polygons.\n" +
          "WorldMap::readData: Opening " + root_ + "\\europe.Map\\cil.cbd...Read 0 polygons.\n" +
          "WorldMap::readData: Opening " + root_ + "\\namer.Map\\cil.cbd...Read 0 polygons.\n" +
          "WorldMap::readData: Opening " + root_ + "\\samer.Map\\cil.cbd...Read -1 polygons.\n");
  EXPECT_EQ(err.text(), "CIA: File has bad magic number\n");
}

TEST_F(WorldMapLoadTest, CountsThePolylinesOfAllFilesOfATheme) {
  write("africa.Map/cil.cbd", line(1));
  write("asia.Map/cil.cbd",
        cbd_file({segment_through({{2, 1}, {2, 5}}), segment_through({{3, 1}, {3, 5}})}));
  write("asia.Map/riv.cbd", line(4));
  write("samer.Map/cil.cbd", line(5));
  const StdoutCapture out;
  WorldMap map;
  ask_for_all(map);
  map.setPOI(River, Level1, -1);
  map.setVerbose(1);
  map.readData();
  map.setVerbose(0);
  std::string counts;
  std::istringstream text(out.text());
  for (std::string word; text >> word;) {
    if (word == "Opening") {
      text >> word;
      counts += word.substr(root_.size() + 1, word.find('.', root_.size()) - root_.size() - 1);
    }
    if (word.ends_with("Read") || word == "Read") {
      text >> word;
      counts += " " + word + ", ";
    }
  }
  EXPECT_EQ(counts,
            "africa 1, africa 0, asia 3, asia 1, europe 0, europe 0, namer 0, namer 0, "
            "samer 4, samer 0, ");
  const std::vector<ArcLine> coasts{
      {{1, 100}, {1, 200}}, {{2, 1}, {2, 5}}, {{3, 1}, {3, 5}}, {{5, 100}, {5, 200}}};
  EXPECT_EQ(lines_of(map), coasts);
  EXPECT_EQ(lines_of(map, River), (std::vector<ArcLine>{{{4, 100}, {4, 200}}}));
  std::ostringstream report;
  report << map;
  EXPECT_NE(report.str().find("Overlay section 2 currently contains 4 polygons.\n"
                              "Overlay section 3 currently contains 1 polygons.\n"),
            std::string::npos);
}

TEST_F(WorldMapLoadTest, ReplacesTheFormerLoad) {
  write("africa.Map/cil.cbd", line(1));
  WorldMap map;
  ask_for_all(map);
  map.readData();
  map.readData();
  EXPECT_EQ(lines_of(map).size(), 1U);
  map.clearMaps();
  for (overlaySections o = Geographic; o != NumOverlaySections; increment(o)) {
    EXPECT_EQ(map.fetchPolygonCollection(o).size(), 0U);
  }
  map.clearMaps();
  map.readData();
  EXPECT_EQ(lines_of(map).size(), 1U);
  map.setPOI(Coastal, Level1, 0);
  map.readData();
  EXPECT_EQ(lines_of(map).size(), 0U);
}

TEST_F(WorldMapLoadTest, ExpandsThePathVariable) {
  std::filesystem::create_directories(root_ + "/data/Maps/africa.Map");
  write("data/Maps/africa.Map/cil.cbd", line(1));
  setenv("KZ_PATH", root_.c_str(), 1);
  WorldMap map;
  map.setPOI(Coastal, Level1, 1);
  map.setPrecision(0);
  set_box(map, -324000, 0, 324000, 1295999);
  map.readData();
  unsetenv("KZ_PATH");
  EXPECT_EQ(lines_of(map).size(), 1U);
}

TEST_F(WorldMapLoadTest, GivesThePointsAsWholeArcSecondsMake) {
  write("africa.Map/cil.cbd", line(12345));
  WorldMap map;
  ask_for_all(map);
  map.readData();
  LatLon& point = *map.fetchPolygonCollection(Coastal).front()->back();
  EXPECT_EQ(point.fetchLat(), 12345.0 / 3600.0);
  EXPECT_EQ(point.fetchLon(), 200.0 / 3600.0);
  EXPECT_EQ(point.fetchAltitude(), 0.0);
}

}  // namespace
