#include "tools/support/number_text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using kzgis::tools::append_dms;
using kzgis::tools::append_number;
using kzgis::tools::parse_dms;
using kzgis::tools::parse_number;

std::string number_text(double value) {
  std::string text;
  append_number(text, value);
  return text;
}

std::string dms_text(double angle) {
  std::string text;
  append_dms(text, angle);
  return text;
}

TEST(ParseNumber, ReadsWholeNumbersOnly) {
  EXPECT_EQ(parse_number("12.5"), 12.5);
  EXPECT_EQ(parse_number(" -1e3\t"), -1000.0);
  EXPECT_EQ(parse_number("+7"), 7.0);
  for (const char* const text :
       {"", " ", "12x", "1 2", "+-1", "+", "nan", "inf", "-inf", "1e999"}) {
    EXPECT_EQ(parse_number(text), std::nullopt) << text;
  }
}

TEST(ParseDms, ReadsTheUsualForms) {
  for (const char* const text :
       {"45:30:36", "45 30 36", "45d30m36s", "45d30'36\"", "45\u00B030'36\"", "45d30'36''",
        "+45:30:36", "45:30:36N", "45d 30m 36s E", " 45:30:36 ", "45.51"}) {
    EXPECT_EQ(parse_dms(text), 45.51) << text;
  }
  EXPECT_EQ(parse_dms("45"), 45.0);
  EXPECT_EQ(parse_dms("45:30"), 45.5);
}

TEST(ParseDms, SpreadsOneSignOrLetterOverTheWholeAngle) {
  EXPECT_EQ(parse_dms("-45:30:00"), -45.5);
  EXPECT_EQ(parse_dms("-0:30:0"), -0.5);
  EXPECT_EQ(parse_dms("45d30m0sS"), -45.5);
  EXPECT_EQ(parse_dms("16:30W"), -16.5);
  EXPECT_EQ(parse_dms("12 S"), -12.0);
}

TEST(ParseDms, RefusesWhatIsNoAngle) {
  for (const char* const text :
       {"", "N", "45:60", "45:0:60", "45:-30", "45:30:36:1", "45x", "-45S", "nan", "1e2",
        "45::", "45.5.5", "45.5:30", "45d30s", "12s", "45:30.5:0"}) {
    EXPECT_EQ(parse_dms(text), std::nullopt) << text;
  }
}

TEST(AppendNumber, WritesTheShortestTextThatReadsBack) {
  EXPECT_EQ(number_text(0.1), "0.1");
  EXPECT_EQ(number_text(-0.0), "-0");
  EXPECT_EQ(number_text(6378000.0), "6378000");
  EXPECT_EQ(number_text(3.141592652589793), "3.141592652589793");
  EXPECT_EQ(number_text(-std::numeric_limits<double>::quiet_NaN()), "nan");
  EXPECT_EQ(number_text(-std::numeric_limits<double>::infinity()), "-inf");
}

TEST(AppendDms, CarriesSoThatNoFieldShowsSixty) {
  EXPECT_EQ(dms_text(45.51), "45:30:36.00000");
  EXPECT_EQ(dms_text(-0.5), "-0:30:00.00000");
  EXPECT_EQ(dms_text(59.9999999999), "60:00:00.00000");
  EXPECT_EQ(dms_text(-1e-12), "0:00:00.00000");
  EXPECT_EQ(dms_text(359.9999999999), "0:00:00.00000");
  EXPECT_EQ(dms_text(std::numeric_limits<double>::quiet_NaN()), "nan");
}

}  // namespace
