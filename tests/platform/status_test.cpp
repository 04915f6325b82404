#include "kzgis/status.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Reports = std::vector<std::pair<int, std::string>>;

void collect(int percent, const char* label, void* context) {
  static_cast<Reports*>(context)->emplace_back(percent, label);
}

TEST(OMstatusCheck, DoesNothingWithoutAHandler) {
  EXPECT_EQ(OMstatus_set_handler(nullptr, nullptr), nullptr);
  EXPECT_EQ(OMstatus_check(50, "label", 0), 0);
}

TEST(OMstatusCheck, PassesReportsOnAsTheyCome) {
  Reports reports;
  OMstatus_set_handler(&collect, &reports);
  OMstatus_check(0, "CIA: Coastal Africa", 0);
  OMstatus_check(110, "", 0);
  EXPECT_EQ(OMstatus_set_handler(nullptr, nullptr), &collect);
  OMstatus_check(100, "too late", 0);
  EXPECT_EQ(reports, (Reports{{0, "CIA: Coastal Africa"}, {110, ""}}));
}

}  // namespace
