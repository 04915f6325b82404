#include "tools/support/bank_names.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace kzgis::tools;
using kzgis::Continent;
using kzgis::Theme;

TEST(Names, ThemesGoByNameAndByFile) {
  EXPECT_EQ(theme_named("geographic"), Theme::boundaries);
  EXPECT_EQ(theme_named("bdy"), Theme::boundaries);
  EXPECT_EQ(theme_named("political"), Theme::provinces);
  EXPECT_EQ(theme_named("PBY"), Theme::provinces);
  EXPECT_EQ(theme_named("Coastal"), Theme::coasts);
  EXPECT_EQ(theme_named("cil"), Theme::coasts);
  EXPECT_EQ(theme_named("river"), Theme::rivers);
  EXPECT_EQ(theme_named("riv"), Theme::rivers);
  EXPECT_EQ(theme_named("rivers"), std::nullopt);
  EXPECT_EQ(theme_named(""), std::nullopt);
  EXPECT_EQ(theme_names(), "geographic, political, coastal or river");
}

TEST(Names, ContinentsGoByDirectoryAndByName) {
  EXPECT_EQ(continent_named("africa"), Continent::africa);
  EXPECT_EQ(continent_named("Asia"), Continent::asia);
  EXPECT_EQ(continent_named("EUROPE"), Continent::europe);
  EXPECT_EQ(continent_named("namer"), Continent::north_america);
  EXPECT_EQ(continent_named("North America"), Continent::north_america);
  EXPECT_EQ(continent_named("samer"), Continent::south_america);
  EXPECT_EQ(continent_named("South America"), Continent::south_america);
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

TEST(Names, AreThoseThatThemesGoBy) {
  for (std::size_t t = 0; t < kzgis::kThemeCount; ++t) {
    const auto theme = static_cast<Theme>(t);
    EXPECT_EQ(theme_named(theme_name(theme)), theme);
  }
}

}  // namespace
