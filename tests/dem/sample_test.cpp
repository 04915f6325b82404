// The classic readers on the real sample.

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "kzgis/dem.h"

namespace {

const std::string kCrater = KZGIS_TEST_DATA_DIR "/dem/st_helens_crater.dem";

TEST(ClassicSample, ReadsEveryProfile) {
  DEM_LogicalRecord record{UtString(kCrater)};
  ASSERT_EQ(record.fetchLRAIngest(), 1);
  EXPECT_EQ(record.fetchGroundPlan(), 1);
  EXPECT_EQ(record.fetchGroundZone(), 10);
  EXPECT_EQ(record.fetchUnits(), 2);
  EXPECT_EQ(record.fetchElvUnits(), 2);
  EXPECT_EQ(record.fetchRows(), 1);
  EXPECT_EQ(record.fetchColumns(), 40);

  int lowest = 100000;
  int highest = -100000;
  std::size_t total = 0;
  int profiles = 0;
  int result = 1;
  while (result == 1) {
    result = record.readRecord();
    ASSERT_NE(result, -1);
    ++profiles;
    EXPECT_EQ(record.fetchColID(), profiles);
    for (std::size_t i = 0; i < record.fetchElevationCount(); ++i) {
      lowest = std::min(lowest, record.fetchElevations()[i]);
      highest = std::max(highest, record.fetchElevations()[i]);
    }
    total += record.fetchElevationCount();
  }
  // As `gdalinfo -stats` gives them.
  EXPECT_EQ(profiles, 40);
  EXPECT_EQ(total, 1600U);
  EXPECT_EQ(lowest, 1839);
  EXPECT_EQ(highest, 2539);
  EXPECT_TRUE(record.good());
}

}  // namespace
