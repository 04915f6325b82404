#include "tools/support/attributes.h"

#include <gtest/gtest.h>
#include <shapefil.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "support/temporary_directory.h"
#include "tools/support/command_error.h"

namespace kzgis::tools {
namespace {

class AttributesTest : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return (directory_.path() / name).string(); }

  /// A table of one row, with a value for each field as it stands in the file.
  std::string table_of(DBFFieldType type, int width, int decimals, const char* value) {
    const std::string file = path("layer.dbf");
    const DBFHandle table = DBFCreate(file.c_str());
    DBFAddField(table, "VALUE", type, width, decimals);
    DBFWriteAttributeDirectly(table, 0, 0, const_cast<char*>(value));
    DBFClose(table);
    return path("layer.shp");
  }

  std::string row(DBFFieldType type, int width, int decimals, const char* value) {
    return Attributes(table_of(type, width, decimals, value)).row(1).dump();
  }

 private:
  TemporaryDirectory directory_;
};

TEST_F(AttributesTest, ReadsWholeAndRealNumbers) {
  EXPECT_EQ(row(FTInteger, 8, 0, "     -12"), R"({"VALUE":-12})");
  EXPECT_EQ(row(FTDouble, 8, 3, "   0.125"), R"({"VALUE":0.125})");
  EXPECT_EQ(row(FTDouble, 18, 0, "123456789012345678"), R"({"VALUE":123456789012345678})");
  EXPECT_EQ(row(FTDouble, 12, 3, "  1.5e+300  "), R"({"VALUE":1.5e+300})");
}

TEST_F(AttributesTest, KeepsWhatIsNoNumberAsText) {
  EXPECT_EQ(row(FTInteger, 8, 0, "     1-2"), R"({"VALUE":"1-2"})");
}

TEST_F(AttributesTest, ReadsTruthValuesAndTexts) {
  EXPECT_EQ(row(FTLogical, 1, 0, "T"), R"({"VALUE":true})");
  EXPECT_EQ(row(FTLogical, 1, 0, "n"), R"({"VALUE":false})");
  EXPECT_EQ(row(FTString, 8, 0, "say \"a\"\\"), R"({"VALUE":"say \"a\"\\"})");
}

TEST_F(AttributesTest, HasNullsWhereThereIsNothing) {
  EXPECT_EQ(row(FTInteger, 4, 0, "****"), R"({"VALUE":null})");
  EXPECT_EQ(row(FTLogical, 1, 0, "?"), R"({"VALUE":null})");
  EXPECT_EQ(row(FTString, 4, 0, "    "), R"({"VALUE":null})");
}

TEST_F(AttributesTest, TakesTextThatIsNoUtf8ForLatin1) {
  EXPECT_EQ(row(FTString, 8, 0, "T\xC3\xBCrkiye"), "{\"VALUE\":\"T\xC3\xBCrkiye\"}");
  EXPECT_EQ(row(FTString, 8, 0, "T\xFCrkiye "), "{\"VALUE\":\"T\xC3\xBCrkiye\"}");
  // Longer than it need be, a surrogate, beyond the last character, cut short.
  for (const char* const wrong : {"\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\xE2\x82"}) {
    const std::string said = Attributes(table_of(FTString, 4, 0, wrong)).row(1)["VALUE"];
    std::string expected;
    for (const char c : std::string(wrong)) {
      const auto byte = static_cast<unsigned char>(c);
      if (byte < 0x80) {
        expected += c;
      } else {
        expected += byte < 0xC0 ? '\xC2' : '\xC3';
        expected += static_cast<char>(byte < 0xC0 ? byte : byte - 0x40);
      }
    }
    EXPECT_EQ(said, expected);
  }
}

TEST_F(AttributesTest, ExpectsARowForEachRecord) {
  const Attributes table(table_of(FTString, 4, 0, "a"));
  table.expect_rows(1);
  try {
    table.expect_rows(3);
    ADD_FAILURE() << "nothing was said";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.what(), path("layer.dbf") + ": holds 1 rows for 3 records");
  }
}

TEST_F(AttributesTest, RefusesRowsThatAreNotThere) {
  const std::string file = table_of(FTString, 4, 0, "a");
  // A header of 65 bytes, and a row of five.
  std::filesystem::resize_file(path("layer.dbf"), 69);
  try {
    Attributes(file).expect_rows(1);
    ADD_FAILURE() << "nothing was said";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.what(), path("layer.dbf") + ": ends before its last row");
  }
}

}  // namespace
}  // namespace kzgis::tools
