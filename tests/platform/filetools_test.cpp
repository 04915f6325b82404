#include "kzgis/filetools.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/named_pipe.h"
#include "support/temporary_directory.h"

namespace {

/// Sets an environment variable while it lives.
class Environment {
 public:
  Environment(const char* name, const char* value) : name_(name) { setenv(name, value, 1); }
  ~Environment() { unsetenv(name_); }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  const char* name_;
};

std::string mapped(const std::string& name) {
  char buffer[1024];
  std::memset(buffer, 'x', sizeof buffer);
  const char* const result = FILEmap_variables(name.c_str(), buffer);
  if (result == nullptr) return "(null)";
  EXPECT_EQ(result, buffer);
  return result;
}

TEST(FILEmapVariables, CopiesTextWithoutVariables) {
  EXPECT_EQ(mapped(""), "");
  EXPECT_EQ(mapped("/maps/africa.Map\\cil.cbd"), "/maps/africa.Map\\cil.cbd");
}

TEST(FILEmapVariables, PicksTheNthEntryOfAList) {
  const Environment list("KZTEST_LIST", "/first:/second::/fourth");
  EXPECT_EQ(mapped("$KZTEST_LIST<0>/data/Maps"), "/first/data/Maps");
  EXPECT_EQ(mapped("$KZTEST_LIST<1>"), "/second");
  EXPECT_EQ(mapped("a$KZTEST_LIST<2>b"), "ab");
  EXPECT_EQ(mapped("$KZTEST_LIST<3>"), "/fourth");
  EXPECT_EQ(mapped("$KZTEST_LIST<00001>"), "/second");
}

TEST(FILEmapVariables, TakesTheWholeValueWithoutAnIndex) {
  const Environment list("KZTEST_LIST", "/first:/second");
  EXPECT_EQ(mapped("$KZTEST_LIST"), "/first:/second");
  EXPECT_EQ(mapped("$KZTEST_LIST/x$KZTEST_LIST<1>"), "/first:/second/x/second");
}

TEST(FILEmapVariables, LeavesWhatIsMissingAsItStands) {
  const Environment list("KZTEST_LIST", "/first");
  EXPECT_EQ(mapped("$KZTEST_UNSET/x"), "$KZTEST_UNSET/x");
  EXPECT_EQ(mapped("$KZTEST_UNSET<0>/x"), "$KZTEST_UNSET<0>/x");
  EXPECT_EQ(mapped("$KZTEST_LIST<1>/x"), "$KZTEST_LIST<1>/x");
  EXPECT_EQ(mapped("$KZTEST_LIST<99999999999999999999>"), "$KZTEST_LIST<99999999999999999999>");
}

TEST(FILEmapVariables, TakesAnEmptyVariableForAListOfOneEmptyEntry) {
  const Environment empty("KZTEST_LIST", "");
  EXPECT_EQ(mapped("$KZTEST_LIST<0>/x"), "/x");
  EXPECT_EQ(mapped("$KZTEST_LIST<1>/x"), "$KZTEST_LIST<1>/x");
  EXPECT_EQ(mapped("$KZTEST_LIST/x"), "/x");
}

TEST(FILEmapVariables, NeedsDigitsAndAClosingBracketForAnIndex) {
  const Environment value("KZTEST_LIST", "v");
  EXPECT_EQ(mapped("$KZTEST_LIST<>"), "v<>");
  EXPECT_EQ(mapped("$KZTEST_LIST<0"), "v<0");
  EXPECT_EQ(mapped("$KZTEST_LIST<-1>"), "v<-1>");
  EXPECT_EQ(mapped("$KZTEST_LIST<0x>"), "v<0x>");
  EXPECT_EQ(mapped("$KZTEST_LIST<"), "v<");
}

TEST(FILEmapVariables, TakesTheLongestName) {
  const Environment brief("KZTEST_A", "short");
  const Environment longer("KZTEST_A1_b", "long");
  EXPECT_EQ(mapped("$KZTEST_A1_b.shp"), "long.shp");
  EXPECT_EQ(mapped("$KZTEST_A1"), "$KZTEST_A1");
  EXPECT_EQ(mapped("$KZTEST_A-1"), "short-1");
}

TEST(FILEmapVariables, LeavesADollarSignWithoutAName) {
  EXPECT_EQ(mapped("$"), "$");
  EXPECT_EQ(mapped("$$"), "$$");
  EXPECT_EQ(mapped("cost$"), "cost$");
  EXPECT_EQ(mapped("$1<0>"), "$1<0>");
}

TEST(FILEmapVariables, DoesNotExpandWhatItExpanded) {
  const Environment inner("KZTEST_INNER", "no");
  const Environment outer("KZTEST_OUTER", "$KZTEST_INNER<0>");
  EXPECT_EQ(mapped("$KZTEST_OUTER"), "$KZTEST_INNER<0>");
}

TEST(FILEmapVariables, Writes1024BytesAtMost) {
  EXPECT_EQ(mapped(std::string(1023, 'a')), std::string(1023, 'a'));
  EXPECT_EQ(mapped(std::string(1024, 'a')), "(null)");
  const Environment value("KZTEST_LONG", std::string(600, 'b').c_str());
  EXPECT_EQ(mapped("$KZTEST_LONG/" + std::string(422, 'a')).size(), 1023U);
  EXPECT_EQ(mapped("$KZTEST_LONG/" + std::string(423, 'a')), "(null)");
  EXPECT_EQ(mapped("$KZTEST_LONG$KZTEST_LONG"), "(null)");
}

TEST(FILEmapVariables, LeavesAnEmptyTextWhenItRefuses) {
  char buffer[1024] = "before";
  EXPECT_EQ(FILEmap_variables(nullptr, buffer), nullptr);
  EXPECT_STREQ(buffer, "");
}

TEST(FILEmapVariables, MayWorkInPlace) {
  const Environment value("KZTEST_LIST", "/maps");
  char buffer[1024] = "$KZTEST_LIST<0>/x";
  EXPECT_EQ(FILEmap_variables(buffer, buffer), buffer);
  EXPECT_STREQ(buffer, "/maps/x");
}

class FILEfopenTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(directory_ / "sub");
    std::ofstream(directory_ / "sub" / "file.txt") << "text";
  }

  const TemporaryDirectory temporary_;
  const std::filesystem::path directory_ = temporary_.path();
};

TEST_F(FILEfopenTest, ExpandsThePathAndTurnsBackslashesIntoSlashes) {
  const Environment root("KZTEST_ROOT", directory_.c_str());
  std::FILE* const file = FILEfopen("$KZTEST_ROOT<0>\\sub\\file.txt", "rb");
  ASSERT_NE(file, nullptr);
  char text[5] = {};
  EXPECT_EQ(std::fread(text, 1, 4, file), 4U);
  EXPECT_STREQ(text, "text");
  EXPECT_EQ(std::fclose(file), 0);
}

TEST_F(FILEfopenTest, TurnsBackslashesOfTheVariableTooOnceExpanded) {
  const Environment root("KZTEST_ROOT", (directory_.string() + "\\sub").c_str());
  std::FILE* const file = FILEfopen("$KZTEST_ROOT/file.txt", "rb");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::fclose(file), 0);
}

TEST_F(FILEfopenTest, AnswersNullForWhatCannotBeOpened) {
  EXPECT_EQ(FILEfopen((directory_ / "missing").c_str(), "rb"), nullptr);
  EXPECT_EQ(FILEfopen("$KZTEST_UNSET<0>/file.txt", "rb"), nullptr);
  EXPECT_EQ(FILEfopen(std::string(2000, 'a').c_str(), "rb"), nullptr);
  EXPECT_EQ(FILEfopen(nullptr, "rb"), nullptr);
}

TEST_F(FILEfopenTest, AnswersNullForANamedPipeWithoutWaiting) {
  const std::string path = directory_.string() + "/pipe";
  const NamedPipe pipe(path);
  EXPECT_EQ(FILEfopen(path.c_str(), "rb"), nullptr);
  EXPECT_EQ(FILEfopen(path.c_str(), "wb"), nullptr);
}

}  // namespace
