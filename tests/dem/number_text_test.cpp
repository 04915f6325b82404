// Numbers as C takes them; C's own conversions are the source of what is expected.

#include "dem/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace {

using kzgis::dem::integer_of;
using kzgis::dem::is_whole;
using kzgis::dem::plain_number;
using kzgis::dem::plain_numbers;
using kzgis::dem::PlainNumber;
using kzgis::dem::real_of;

TEST(IntegerOf, TakesBlanksSignAndDigits) {
  EXPECT_EQ(integer_of("    12").value, 12);
  EXPECT_EQ(integer_of(" \t\n\v\f\r-7").value, -7);
  EXPECT_EQ(integer_of("+5").value, 5);
  EXPECT_EQ(integer_of("-32767").value, -32767);
  EXPECT_EQ(integer_of("007").value, 7);
}

TEST(IntegerOf, StopsAtTheFirstCharacterThatIsNoDigit) {
  EXPECT_EQ(integer_of("12 34").value, 12);
  EXPECT_EQ(integer_of("12a4").value, 12);
  EXPECT_EQ(integer_of("1.9").value, 1);
  EXPECT_EQ(integer_of(std::string_view("12\0004", 4)).value, 12);
}

TEST(IntegerOf, GivesZeroWhereThereIsNoNumber) {
  for (const char* text : {"", "      ", "-", "+-5", "- 5", "x1"}) {
    EXPECT_EQ(integer_of(text).value, 0) << text;
    EXPECT_EQ(integer_of(text).length, 0U) << text;
  }
}

TEST(IntegerOf, TakesTheNearestIntForOneTooLarge) {
  EXPECT_EQ(integer_of("2147483647").value, 2147483647);
  EXPECT_EQ(integer_of("2147483648").value, 2147483647);
  EXPECT_EQ(integer_of("-2147483648").value, std::numeric_limits<int>::min());
  EXPECT_EQ(integer_of("-99999999999999999999999999").value, std::numeric_limits<int>::min());
}

TEST(IsWhole, AllowsBlanksBehindTheNumberAlone) {
  for (const char* text : {"12", " 12  ", "   ", ""}) {
    EXPECT_TRUE(is_whole(integer_of(text), text)) << text;
    EXPECT_TRUE(is_whole(real_of(text), text)) << text;
  }
  for (const char* text : {"12x", "1 2", "-", "x"}) {
    EXPECT_FALSE(is_whole(integer_of(text), text)) << text;
    EXPECT_FALSE(is_whole(real_of(text), text)) << text;
  }
}

TEST(RealOf, StopsAtTheLetterD) {
  EXPECT_EQ(real_of("   0.150000000000000D+03").value, 0.15);
  EXPECT_EQ(real_of("   0.150000000000000d+03").value, 0.15);
  EXPECT_EQ(real_of("   0.150000000000000E+03").value, 150.0);
  EXPECT_EQ(real_of("   0.150000000000000e+03").value, 150.0);
}

TEST(RealOf, TakesWhatStrtodTakes) {
  for (const char* text : {"",
                           " ",
                           "0",
                           "-0",
                           "+0",
                           "1",
                           "+1",
                           "-1",
                           "+-1",
                           "--1",
                           "-+1",
                           ".5",
                           "5.",
                           ".",
                           "-.",
                           "1e5",
                           "1e",
                           "1e+",
                           "1e-",
                           "1E+5",
                           "1e 5",
                           "0.1",
                           "1,5",
                           "0x",
                           "0x1",
                           "0X1F",
                           "0x1.8p3",
                           "0x.8",
                           "0x.",
                           "0x.p1",
                           "0xg",
                           "0x1p",
                           "0x1p+",
                           "-0x1p-3",
                           "inf",
                           "INF",
                           "-inf",
                           "infinity",
                           "InFiNiTy",
                           "infinit",
                           "in",
                           "nan",
                           "NaN",
                           "-nan",
                           "nan(abc)",
                           "nan(",
                           "na",
                           "1e308",
                           "1.7976931348623157e308",
                           "1.7976931348623159e308",
                           "1e309",
                           "-1e309",
                           "1e-307",
                           "2.2250738585072014e-308",
                           "4.9406564584124654e-324",
                           "2e-324",
                           "1e-400",
                           "-1e-400",
                           "1e99999999999999999999",
                           "1e-99999999999999999999",
                           "0e99999999999999999999",
                           "0x1p1023",
                           "0x1p1024",
                           "0x1p-1074",
                           "0x1p-1076",
                           "0x1p99999999999999999999",
                           "\t\n\v\f\r 2",
                           "0.0000000000000000000000000000000000000000000000000001e-300",
                           "00000000000000000000012",
                           "123456789012345678901234567890",
                           "0x0001",
                           "0x00.001p12",
                           "1e+-5",
                           "1_0",
                           "1'0"}) {
    char* end = nullptr;
    const double expected = std::strtod(text, &end);
    const auto result = real_of(text);
    if (std::isnan(expected)) {
      EXPECT_TRUE(std::isnan(result.value)) << text;
    } else {
      EXPECT_EQ(std::bit_cast<std::uint64_t>(result.value), std::bit_cast<std::uint64_t>(expected))
          << text << ": " << result.value << " and " << expected;
    }
    EXPECT_EQ(result.length, static_cast<std::size_t>(end - text)) << text;
  }
}

TEST(RealOf, AgreesWithStrtodOnRandomTexts) {
  constexpr unsigned kSeed = 19870401;
  constexpr char kLetters[] = "0123456789..eE+-  DxXpPa";
  std::mt19937 random(kSeed);
  std::uniform_int_distribution<std::size_t> letter(0, sizeof kLetters - 2);
  std::uniform_int_distribution<int> length(1, 24);
  for (int i = 0; i < 200000; ++i) {
    std::string text;
    for (int k = length(random); k > 0; --k) text += kLetters[letter(random)];
    char* end = nullptr;
    const double expected = std::strtod(text.c_str(), &end);
    const auto result = real_of(text);
    ASSERT_EQ(std::bit_cast<std::uint64_t>(result.value), std::bit_cast<std::uint64_t>(expected))
        << "seed " << kSeed << ", text '" << text << "'";
    ASSERT_EQ(result.length, static_cast<std::size_t>(end - text.c_str()))
        << "seed " << kSeed << ", text '" << text << "'";
  }
}

TEST(RealOf, KeepsLongTextsInRange) {
  const std::string zeros(1000, '0');
  EXPECT_EQ(real_of("1" + zeros).value, std::numeric_limits<double>::infinity());
  EXPECT_EQ(real_of("0." + zeros + "1").value, 0.0);
  EXPECT_EQ(real_of("1" + zeros + "e-1000").value, 1.0);
  EXPECT_EQ(real_of("0." + zeros + "1e1001").value, 1.0);
  EXPECT_EQ(real_of("0." + zeros + "1e2000").value, std::numeric_limits<double>::infinity());
}

// Every field of six characters that one may meet or mistake for one.
TEST(PlainNumber, IsWhatBlanksAndDigitsSayAndNothingElse) {
  constexpr std::string_view kCharacters = " 0195/:-+!\n";
  constexpr std::size_t kAll = kCharacters.size();
  std::string text(8, '7');
  for (std::size_t code = 0; code < kAll * kAll * kAll * kAll * kAll * kAll; ++code) {
    for (std::size_t i = 0, rest = code; i < 6; ++i, rest /= kAll) {
      text[2 + i] = kCharacters[rest % kAll];
    }
    const std::string field = text.substr(2);
    const std::size_t digits = field.find_first_not_of(' ');
    const bool plain =
        digits != std::string::npos && field.find_first_not_of("0123456789", digits) == field.npos;
    const PlainNumber number = plain_number(text.data() + 2);
    ASSERT_EQ(number.odd == 0, plain) << '"' << field << '"';
    ASSERT_TRUE(!plain || number.value == std::stoi(field)) << field;
  }
}

TEST(PlainNumber, IsReadInAnyNumberOfFields) {
  for (std::size_t count = 0; count < 30; ++count) {
    std::string text = "99";
    std::vector<int> expected;
    for (std::size_t i = 0; i < count; ++i) {
      constexpr int kNumbers[] = {0, 7, 40, 999999, 123456, 10000, 9999, 100001};
      expected.push_back(kNumbers[(i * 5 + count) % 8]);
      const std::string digits = std::to_string(expected.back());
      text += std::string(6 - digits.size(), ' ') + digits;
    }
    text += "99";
    std::vector<int> values(count);
    EXPECT_TRUE(plain_numbers(text.data() + 2, count, values.data())) << count;
    EXPECT_EQ(values, expected);
    // One odd field anywhere is seen, whatever is wrong with it and wherever.
    for (std::size_t i = 0; i < count; ++i) {
      for (const char* const odd : {"      ", "-    1", "1    1", "    1 ", "    /1", "    :1",
                                    "\0    1", "!    1", "\xB0    1",
                                    "000\xFF"
                                    "00"}) {
        std::string changed = text;
        changed.replace(2 + 6 * i, 6, odd, 6);
        EXPECT_FALSE(plain_numbers(changed.data() + 2, count, values.data())) << count << ' ' << i;
      }
    }
  }
}

}  // namespace
