// How often a data bank's file is read from, whatever number of segments it has.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "kzgis/databank.h"
#include "kzgis/worldmap.h"
#include "support/counted_reads.h"
#include "support/temporary_directory.h"

namespace {

constexpr int kSegments = 3000;
constexpr long kWindow = 16384;

/// A bank with one file of many short segments.
class BankReads : public testing::Test {
 protected:
  BankReads() {
    kzgis::DatabankWriter writer;
    for (int i = 0; i < kSegments; ++i) {
      kzgis::Segment segment{kzgis::Continent::europe, kzgis::Theme::coasts, 1, {}, {}};
      for (std::int32_t k = 0; k < 20; ++k) {
        segment.lat.push_back(100 * (i % 1000) + k);
        segment.lon.push_back(300 * i + 3 * k + 10);
      }
      EXPECT_FALSE(writer.add(segment));
    }
    EXPECT_FALSE(writer.write(directory()));
    const auto size = static_cast<long>(
        std::filesystem::file_size(std::filesystem::path(directory()) / "europe.Map" / "cil.cbd"));
    // The file's windows, the dictionary's ends and those of the file.
    most_ = size / kWindow + 6;
  }
  std::string directory() const { return folder_.path().string(); }
  long most() const { return most_; }

 private:
  TemporaryDirectory folder_;
  long most_ = 0;
};

TEST_F(BankReads, OfReadDatabankAreOneForEachWindow) {
  const long before = counted_reads;
  const auto bank = kzgis::read_databank(directory());
  ASSERT_TRUE(bank);
  EXPECT_EQ(bank->segments.size(), static_cast<std::size_t>(kSegments));
  EXPECT_GT(counted_reads, before);
  EXPECT_LE(counted_reads - before, most());
}

TEST_F(BankReads, OfWorldMapAreOneForEachWindow) {
  const long before = counted_reads;
  WorldMap map(directory().c_str());
  *map.fetchLowLeftBoundary() = LatLon(-90.0, 0.0);
  *map.fetchUpRightBoundary() = LatLon(90.0, 359.9999);
  map.setPOI(Coastal, Level1, 1);
  map.readData();
  EXPECT_EQ(map.fetchPolygonCollection(Coastal).size(), static_cast<std::size_t>(kSegments));
  EXPECT_GT(counted_reads, before);
  EXPECT_LE(counted_reads - before, most());
}

}  // namespace
