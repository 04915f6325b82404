#include "kzgis/utdate.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(UtDate, KeepsItsThreeNumbersAsGiven) {
  const UtDate date(19, 1968, 1);
  EXPECT_EQ(date.year(), 19);
  EXPECT_EQ(date.month(), 1968);
  EXPECT_EQ(date.day(), 1);
  const UtDate copy(date);
  EXPECT_EQ(copy.month(), 1968);
}

TEST(UtDate, PrintsThemInOrderSeparatedBySlashes) {
  std::ostringstream os;
  os << UtDate(19, 1968, 1) << UtDate(0, -1, 32767);
  EXPECT_EQ(os.str(), "19/1968/10/-1/32767");
}

}  // namespace
