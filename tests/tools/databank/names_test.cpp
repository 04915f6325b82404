#include "tools/databank/names.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace kzgis::databank;

TEST(Names, ThemesGoByNameAndByFile) {
  EXPECT_EQ(theme_named("geographic"), Geographic);
  EXPECT_EQ(theme_named("bdy"), Geographic);
  EXPECT_EQ(theme_named("political"), Political);
  EXPECT_EQ(theme_named("PBY"), Political);
  EXPECT_EQ(theme_named("Coastal"), Coastal);
  EXPECT_EQ(theme_named("cil"), Coastal);
  EXPECT_EQ(theme_named("river"), River);
  EXPECT_EQ(theme_named("riv"), River);
  EXPECT_EQ(theme_named("rivers"), std::nullopt);
  EXPECT_EQ(theme_named(""), std::nullopt);
  EXPECT_EQ(theme_names(), "geographic, political, coastal or river");
}

TEST(Names, ContinentsGoByDirectoryAndByName) {
  EXPECT_EQ(continent_named("africa"), Africa);
  EXPECT_EQ(continent_named("Asia"), Asia);
  EXPECT_EQ(continent_named("EUROPE"), Europe);
  EXPECT_EQ(continent_named("namer"), NoAm);
  EXPECT_EQ(continent_named("North America"), NoAm);
  EXPECT_EQ(continent_named("samer"), SoAm);
  EXPECT_EQ(continent_named("South America"), SoAm);
  EXPECT_EQ(continent_named("oceania"), std::nullopt);
  EXPECT_EQ(continent_names(), "africa, asia, europe, namer or samer");
}

TEST(Names, LevelsAreWholeNumbersTo15) {
  EXPECT_EQ(level_named("0"), 0);
  EXPECT_EQ(level_named("15"), 15);
  for (const char* const text : {"16", "-1", "", "1.0", " 1", "1 ", "x", "99999999999"}) {
    EXPECT_EQ(level_named(text), std::nullopt) << text;
  }
}

// They must be where a map looks that was told nothing else.
TEST(Names, PlacesAreTheDefaultsOfAMap) {
  const WorldMap map;
  for (mapSections continent = Africa; continent != NumMapSections; increment(continent)) {
    EXPECT_EQ(continent_directory(continent), map.fetchContinentDir(continent).c_str());
  }
  for (overlaySections theme = Geographic; theme != Plates; increment(theme)) {
    EXPECT_EQ(theme_file(theme), map.fetchOverlaysFile(theme).c_str());
    EXPECT_EQ(theme_named(theme_name(theme)), theme);
  }
}

}  // namespace
