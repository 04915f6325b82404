#include "kzgis/utstring.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

namespace {

using namespace std::string_literals;

std::string printed(const UtString& text) {
  std::ostringstream os;
  os << text;
  return os.str();
}

TEST(UtString, IsMadeFromText) {
  EXPECT_STREQ(UtString().c_str(), "");
  EXPECT_TRUE(UtString().empty());
  EXPECT_STREQ(UtString("river").c_str(), "river");
  EXPECT_EQ(UtString("ab\0cd"s).size(), 5U);
}

TEST(UtString, TakesNullForEmptyText) {
  const char* const none = nullptr;
  UtString text(none);
  EXPECT_TRUE(text.empty());
  text = "x";
  text = none;
  EXPECT_TRUE(text.empty());
  text.append(none);
  EXPECT_TRUE(text.empty());
  EXPECT_TRUE(text == none);
}

TEST(UtString, CopiesAndAssignsDeeply) {
  UtString a("one");
  UtString b(a);
  UtString c;
  c = a;
  a = "two";
  EXPECT_TRUE(b == "one");
  EXPECT_TRUE(c == "one");
  EXPECT_TRUE(a == "two");
}

TEST(UtString, AppendsCharactersTextAndStrings) {
  UtString text("a");
  text.append('b').append("cd").append(UtString("ef"));
  text += 'g';
  text += "hi";
  text += UtString("jk");
  EXPECT_TRUE(text == "abcdefghijk");
  EXPECT_TRUE(UtString("dir") + UtString("/file") == "dir/file");
  EXPECT_TRUE(UtString("dir") + "/file" == "dir/file");
  EXPECT_TRUE("dir" + UtString("/file") == "dir/file");
}

TEST(UtString, AppendsItselfSafely) {
  UtString text("ab");
  text.append(text);
  EXPECT_TRUE(text == "abab");
  text.append(text.c_str());
  EXPECT_TRUE(text == "abababab");
}

TEST(UtString, HoldsNulButReadsUpToTheFirst) {
  UtString text("ab");
  text.append('\0').append('c');
  EXPECT_EQ(text.size(), 4U);
  EXPECT_EQ(std::strlen(text.c_str()), 2U);
  EXPECT_EQ(text.str(), "ab\0c"s);
  EXPECT_FALSE(text == UtString("ab"));
  EXPECT_TRUE(text == "ab");
  EXPECT_EQ(printed(text), "ab");
}

TEST(UtString, ComparesWithTextExactly) {
  EXPECT_TRUE(UtString("abc") == "abc");
  EXPECT_FALSE(UtString("abc") == "abcd");
  EXPECT_FALSE(UtString("abc") == "ABC");
  EXPECT_TRUE(UtString("abc") != "abd");
  EXPECT_TRUE("abc" == UtString("abc"));
  EXPECT_TRUE(UtString("abc") == UtString("abc"));
  EXPECT_FALSE(UtString("abc") == UtString("abc\0"s));
}

TEST(UtString, LowersAsciiLettersOnlyAndInPlace) {
  UtString text("AZ-az 09 \xC3\x84\0Q"s);
  UtString& result = text.lower();
  EXPECT_EQ(&result, &text);
  EXPECT_EQ(text.str(), "az-az 09 \xC3\x84\0q"s);
}

TEST(UtString, ReservesWithoutChangingItsText) {
  UtString text("abc");
  text.reserve(1000);
  EXPECT_TRUE(text == "abc");
}

}  // namespace
