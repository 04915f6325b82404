// Files with every byte of their headers replaced, real ones cut at every field, and files
// that change while they are open, through both readers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "dem/dem_writer.h"
#include "kzgis/dem.h"
#include "kzgis/elevation.h"
#include "support/capture.h"

namespace {

using testing::AnyOf;

constexpr std::size_t kRecordA = 1024;
constexpr std::size_t kProfileHeader = 144;
constexpr const char* kSample = KZGIS_TEST_DATA_DIR "/dem/st_helens_crater.dem";

/// Two profiles that every reader takes.
std::string whole_file() {
  RecordAText a;
  a.size(1, 2).corners(
      {{500000, 5000000}, {500000, 5000090}, {500030, 5000090}, {500030, 5000000}});
  return a.text() + ProfileText{1, 1, 500000, 5000000, counting(3)}.text() +
         ProfileText{1, 2, 500030, 5000000, counting(4)}.text();
}

class DemDamage : public DemTest {
 protected:
  /// Reads profiles until the last, or the first that fails; the classic reader.
  static int read_profiles(DEM_LogicalRecord& record, std::uintmax_t bytes) {
    int profiles = 0;
    int more = 1;
    // Each takes a block at least.
    while (more == 1 && static_cast<std::uintmax_t>(profiles) <= bytes / 1024 + 1) {
      more = record.readRecord();
      EXPECT_THAT(more, AnyOf(-1, 0, 1));
      EXPECT_LE(record.fetchElevationCount(), bytes / 6 + 1);
      if (more != -1) ++profiles;
    }
    return profiles;
  }

  static int read_classic(const std::string& path) {
    const StdoutCapture out;
    const StderrCapture err;
    DEM_LogicalRecord record{UtString(path)};
    return read_profiles(record, std::filesystem::file_size(path));
  }

  static void read_grid(const std::string& bytes) {
    const kzgis::ElevationGrid grid = kzgis::read_dem(bytes, "x");
    EXPECT_EQ(static_cast<bool>(grid.error), grid.elevations.empty());
    EXPECT_EQ(grid.elevations.size(),
              static_cast<std::size_t>(grid.rows) * static_cast<std::size_t>(grid.columns));
    EXPECT_LE(grid.elevations.size(), bytes.size());
  }
};

TEST_F(DemDamage, OfNothingGivesBothProfiles) {
  EXPECT_EQ(read_classic(write(whole_file())), 2);
  EXPECT_FALSE(kzgis::read_dem(whole_file(), "x").error);
}

TEST_F(DemDamage, OfAnyByteOfAHeaderEndsSoonInBothReaders) {
  const std::string whole = whole_file();
  for (std::size_t place = 0; place < kRecordA + kProfileHeader + 18; ++place) {
    for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
      SCOPED_TRACE("byte " + std::to_string(place) + " is " + std::to_string(value));
      std::string damaged = whole;
      damaged[place] = static_cast<char>(value);
      read_classic(write(damaged));
      read_grid(damaged);
      if (HasFailure()) return;
    }
  }
}

TEST_F(DemDamage, ThatCutsTheRealSampleAtAnyFieldIsFound) {
  std::ifstream file(kSample, std::ios::binary);
  const std::string whole{std::istreambuf_iterator<char>(file), {}};
  ASSERT_EQ(whole.size(), 41984U);
  // Six bytes an elevation; from the back, so that each cut shortens the same file.
  const std::string path = write(whole);
  for (std::size_t length = whole.size() - 1024; length > 6; length -= 6) {
    EXPECT_TRUE(kzgis::read_dem(std::span(whole).first(length), "x").error) << length;
    // The classic reader takes a while to come there: some of the cuts will do.
    if (length % 23 != 0) continue;
    std::filesystem::resize_file(path, length);
    EXPECT_LE(static_cast<std::size_t>(read_classic(path)), length / 1024);
    if (HasFailure()) return;
  }
}

TEST_F(DemDamage, OfAnOpenFileEndsTheReading) {
  for (const std::uintmax_t length : {0U, 500U, 1024U, 1100U, 20000U, 41983U, 100000U}) {
    SCOPED_TRACE(length);
    const std::string path = directory() + "/changing.dem";
    std::filesystem::copy_file(kSample, path, std::filesystem::copy_options::overwrite_existing);
    DEM_LogicalRecord record{UtString(path)};
    ASSERT_EQ(record.fetchLRAIngest(), 1);
    std::filesystem::resize_file(path, length);
    const StdoutCapture out;
    const StderrCapture err;
    read_profiles(record, 100000);
    EXPECT_EQ(record.setFN(kSample), 1);
    EXPECT_EQ(record.readRecord(), 1);
  }
}

}  // namespace
