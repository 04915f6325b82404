// Allocations that fail, brought about by a limit on the address space of a child process
// and a sparse file that really has room for its elevations.

#include <gtest/gtest.h>

#include <string>

#include "dem/dem_writer.h"
#include "kzgis/dem.h"
#include "kzgis/elevation.h"
#include "support/capture.h"
#include "support/memory_limit.h"

#ifdef KZGIS_CAN_LIMIT_MEMORY

namespace {

constexpr std::uintmax_t kMany = 6'000'000;  // elevations: 24 MB of them in memory

class DemMemoryDeathTest : public DemTest {
 protected:
  /// A file whose one profile has `kMany` elevations, NUL characters that read as 0.
  std::string write_sparse() const {
    std::string profile = ProfileText{}.text().substr(0, 144);
    profile.replace(12, 6, integer_field(6000)).replace(18, 6, integer_field(1000));
    const std::string path = write(RecordAText().text() + profile);
    std::filesystem::resize_file(path, 1024 * (2 + kMany / 169));
    return path;
  }
};

TEST_F(DemMemoryDeathTest, NoMemoryForTheElevationsIsReportedAndTheObjectServesAgain) {
  const std::string sparse = write_sparse();
  const std::string small =
      write(RecordAText().text() + ProfileText{.elevations = {7}}.text(), "small.dem");
  EXPECT_EXIT(
      {
        DEM_LogicalRecord record{UtString(sparse)};
        {
          StdoutCapture out;
          limit_growth(8 << 20);
          const int result = record.readRecord();
          lift_limit();
          check(result == -1, 1);
          check(
              out.text() == "DEM_LogicalRecord:readRecord: No memory for 6000 x 1000 elevations\n",
              2);
        }
        check(record.fetchElevationCount() > 1000, 3);
        check(record.fetchElevationCount() < kMany, 4);
        check(record.fetchElevation(0, 999) == 0, 5);
        check(record.fetchElevation(5999, 999) == -32767, 6);
        check(record.setFN(small) == 1, 7);
        check(record.readRecord() == 1 && record.fetchElevation(0, 0) == 7, 8);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(DemMemoryDeathTest, NoMemoryForTheGridIsReported) {
  constexpr int kProfiles = 1000;
  constexpr int kRows = 1000;
  RecordAText a;
  a.size(1, kProfiles)
      .corners({{500000, 5000010}, {500000, 5029980}, {529970, 5029980}, {529970, 5000010}});
  std::string bytes = a.text();
  for (int i = 0; i < kProfiles; ++i) {
    bytes += ProfileText{1, i + 1, 500000 + 30.0 * i, 5000010, counting(kRows, i)}.text();
  }
  EXPECT_EXIT(
      {
        // The profiles take 4 MB, the grid 4 MB more: one limit for either.
        for (const std::uintmax_t growth : {1U << 20, 6U << 20}) {
          limit_growth(growth);
          const auto grid = kzgis::read_dem(bytes, "x.dem");
          lift_limit();
          check(!grid, 1);
          check(grid.error().kind == kzgis::ErrorKind::out_of_memory, 2);
          check(grid.error().message == "x.dem: out of memory", 3);
        }
        const auto grid = kzgis::read_dem(bytes, "x.dem");
        check(grid && grid->at(0, 999) == 1998.0F, 4);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
#endif
