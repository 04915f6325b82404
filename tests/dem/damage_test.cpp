// Files with every byte of their headers replaced, real ones cut at every field, and files
// that change while they are open, through both readers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <span>
#include <string>
#include <vector>

#include "dem/dem_writer.h"
#include "kzgis/dem.h"
#include "kzgis/elevation.h"
#include "support/capture.h"
#include "support/time_limit.h"

namespace {

constexpr std::size_t kRecordA = 1024;
constexpr std::size_t kProfileHeader = 144;
constexpr int kSampleProfiles = 40;
constexpr int kSampleElevations = 40;  // of each profile
constexpr const char* kSample = KZGIS_TEST_DATA_DIR "/dem/st_helens_crater.dem";

/// Two profiles that every reader takes.
std::string whole_file() {
  RecordAText a;
  a.size(1, 2).corners(
      {{500000, 5000000}, {500000, 5000090}, {500030, 5000090}, {500030, 5000000}});
  return a.text() + ProfileText{1, 1, 500000, 5000000, counting(3)}.text() +
         ProfileText{1, 2, 500030, 5000000, counting(4)}.text();
}

std::string sample() {
  std::ifstream file(kSample, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::span<const char> first(const std::string& bytes, std::size_t length) {
  return std::span(bytes).first(length);
}

class DemDamage : public DemTest {
 protected:
  struct Reading {
    int profiles = 0;  ///< read whole
    int last = 1;      ///< what the reader answered in the end
    bool operator==(const Reading&) const = default;
    friend void PrintTo(const Reading& r, std::ostream* os) {
      *os << r.profiles << " profiles, then " << r.last;
    }
  };

  /// Reads profiles until the last, or the first that fails; the classic reader.  Each is as
  /// large as it says, or is missed in one line.
  /// @param bytes  that the reader may find
  static Reading read_profiles(DEM_LogicalRecord& record, std::uintmax_t bytes) {
    Reading reading;
    // Each takes a block at least, and the end may have to be found.
    for (std::uintmax_t calls = 0; reading.last == 1 && calls <= bytes / 1024; ++calls) {
      const LessThanASecond limit;
      const StdoutCapture out;
      reading.last = record.readRecord();
      const std::string text = out.text();
      EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), reading.last == -1 ? 1 : 0) << text;
      EXPECT_LE(record.fetchElevationCount(), bytes / 6);
      if (reading.last == -1) break;
      ++reading.profiles;
      const std::int64_t claimed = std::int64_t{record.fetchElevRows()} * record.fetchElevCols();
      EXPECT_EQ(std::int64_t(record.fetchElevationCount()),
                record.fetchElevRows() < 0 ? 0 : claimed);
      const bool is_last =
          record.fetchRowID() == record.fetchRows() && record.fetchColID() == record.fetchColumns();
      EXPECT_EQ(reading.last, is_last ? 0 : 1);
    }
    EXPECT_NE(reading.last, 1) << "the end is not found";
    return reading;
  }

  static Reading read_classic(const std::string& path) {
    const StdoutCapture out;
    DEM_LogicalRecord record{UtString(path)};
    return read_profiles(record, std::filesystem::file_size(path));
  }

  static void read_grid(const std::string& bytes) {
    const LessThanASecond limit;
    const auto grid = kzgis::read_dem(bytes, "x");
    if (grid) {
      EXPECT_FALSE(grid->elevations.empty());
      EXPECT_EQ(grid->elevations.size(),
                static_cast<std::size_t>(grid->rows) * static_cast<std::size_t>(grid->columns));
      EXPECT_LE(grid->elevations.size(), bytes.size());
      return;
    }
    EXPECT_EQ(grid.error().kind, kzgis::ErrorKind::bad_data);
    EXPECT_EQ(grid.error().message.substr(0, 3), "x: ");
  }
};

TEST_F(DemDamage, OfNothingGivesBothProfiles) {
  EXPECT_EQ(read_classic(write(whole_file())), (Reading{2, 0}));
  EXPECT_TRUE(kzgis::read_dem(whole_file(), "x"));
}

TEST_F(DemDamage, OfAnyByteOfAHeaderEndsSoonInBothReaders) {
  const std::string whole = whole_file();
  for (std::size_t place = 0; place < kRecordA + kProfileHeader + 18; ++place) {
    for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
      SCOPED_TRACE("byte " + std::to_string(place) + " is " + std::to_string(value));
      std::string damaged = whole;
      damaged[place] = static_cast<char>(value);
      const LessThanASecond to_open;
      DEM_LogicalRecord record{UtString(write(damaged))};
      EXPECT_EQ(record.fetchLRAIngest(), 1);
      const Reading reading = read_profiles(record, damaged.size());
      // Bytes of record A hide no profile, but can hide that the second is the last.
      if (place < kRecordA) {
        EXPECT_EQ(reading.profiles, 2);
      }
      read_grid(damaged);
      if (HasFailure()) return;
    }
  }
}

/// Where the fields of record A end, after "Standards for Digital Elevation Models" (USGS),
/// filler included.
std::vector<std::size_t> ends_in_record_a() {
  std::vector<std::size_t> widths{40, 40, 55, 1, 1, 3, 4, 6, 6, 6, 6};
  widths.insert(widths.end(), 15, 24);
  widths.insert(widths.end(), {6, 6, 6});
  widths.insert(widths.end(), 8 + 2 + 1, 24);
  widths.insert(widths.end(), {6, 12, 12, 12, 6, 6, 5, 1, 5, 1, 4, 4, 1, 1, 2, 2, 2, 4, 4});
  std::partial_sum(widths.begin(), widths.end(), widths.begin());
  return widths;
}

/// The same for a profile of the sample: each has 40 elevations, and fills a block with blanks.
std::vector<std::size_t> ends_in_sample_profile() {
  std::vector<std::size_t> ends{6, 12, 18, 24, 48, 72, 96, 120, kProfileHeader};
  for (int i = 0; i < kSampleElevations; ++i) ends.push_back(ends.back() + 6);
  return ends;
}

TEST_F(DemDamage, ThatCutsTheHeaderOfTheRealSampleAtAnyFieldIsFound) {
  const std::string whole = sample();
  const std::string path = write(whole);
  std::vector<std::size_t> ends = ends_in_record_a();
  ASSERT_EQ(ends.back(), 900U);
  ends.insert(ends.begin(), 0);
  ends.push_back(kRecordA);
  for (auto end = ends.rbegin(); end != ends.rend(); ++end) {
    SCOPED_TRACE(*end);
    const LessThanASecond limit;
    std::filesystem::resize_file(path, *end);
    const std::string at = std::to_string(*end);
    // Filler behind the last field may be missing.
    const std::string expected =
        *end >= 900 ? "x: the file ends at byte " + at + ", before profile 1 of 40"
                    : "x: not a USGS DEM: the file ends within its header, at byte " + at;
    const auto grid = kzgis::read_dem(first(whole, *end), "x");
    EXPECT_EQ(grid ? std::string() : grid.error().message, expected);
    const StdoutCapture out;
    DEM_LogicalRecord record{UtString(path)};
    EXPECT_EQ(record.fetchLRAIngest(), *end < 900 ? 0 : 1);
    EXPECT_EQ(record.readRecord(), -1);
    EXPECT_EQ(record.fetchElevationCount(), 0U);
  }
}

TEST_F(DemDamage, ThatCutsAProfileOfTheRealSampleAtAnyFieldIsFound) {
  const std::string whole = sample();
  ASSERT_EQ(whole.size(), kRecordA + kSampleProfiles * 1024);
  const std::string path = write(whole);
  const std::vector<std::size_t> ends = ends_in_sample_profile();
  ASSERT_EQ(ends.back(), 384U);
  // From the back, so that each cut shortens the same file.
  for (int profile = kSampleProfiles; profile > 0; --profile) {
    const std::size_t start = static_cast<std::size_t>(profile) * 1024;
    const std::string where =
        "x: profile " + std::to_string(profile) + " at byte " + std::to_string(start);
    for (auto end = ends.rbegin(); end != ends.rend(); ++end) {
      const std::size_t length = start + *end;
      SCOPED_TRACE(length);
      const LessThanASecond limit;
      std::filesystem::resize_file(path, length);
      const bool is_whole = *end == ends.back();
      std::string expected;
      if (!is_whole && *end < kProfileHeader) {
        expected = where + ": the file ends in its header";
      } else if (!is_whole) {
        expected = where + ": the file ends within elevation " +
                   std::to_string((*end - kProfileHeader) / 6 + 1) + " of 40, at byte " +
                   std::to_string(length);
      } else if (profile < kSampleProfiles) {
        expected = "x: the file ends at byte " + std::to_string(length) + ", before profile " +
                   std::to_string(profile + 1) + " of 40";
      }
      const auto grid = kzgis::read_dem(first(whole, length), "x");
      EXPECT_EQ(grid ? std::string() : grid.error().message, expected);
      const Reading reading = is_whole ? Reading{profile, profile == kSampleProfiles ? 0 : -1}
                                       : Reading{profile - 1, -1};
      EXPECT_EQ(read_classic(path), reading);
      if (HasFailure()) return;
    }
  }
}

// Its zeros are a header without rows or columns, and so a last profile without elevations.
TEST_F(DemDamage, OfAFileWithoutEndEndsAtOnce) {
  if (!std::filesystem::exists("/dev/zero")) GTEST_SKIP() << "no /dev/zero";
  const LessThanASecond limit;
  DEM_LogicalRecord record{UtString("/dev/zero")};
  EXPECT_EQ(record.fetchLRAIngest(), 1);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(record.readRecord(), 0);
  EXPECT_EQ(record.fetchElevationCount(), 0U);
}

// The classic reader has a piece of the file in memory when it changes: of the profiles behind
// the new end it may give some more, but no others than the file had.
TEST_F(DemDamage, OfAnOpenFileEndsTheReading) {
  struct Change {
    std::uintmax_t length;
    int profiles;  ///< that the changed file still has
    int last;
  };
  constexpr std::uintmax_t kInMemory = 1 << 14;  // more than a stream's buffer
  for (const Change& change : {Change{0, 0, -1}, Change{500, 0, -1}, Change{1024, 0, -1},
                               Change{1100, 0, -1}, Change{20000, 19, -1}, Change{41000, 39, -1},
                               Change{41983, 40, 0}, Change{100000, 40, 0}}) {
    SCOPED_TRACE(change.length);
    const std::string path = directory() + "/changing.dem";
    std::filesystem::copy_file(kSample, path, std::filesystem::copy_options::overwrite_existing);
    DEM_LogicalRecord whole{UtString(kSample)};
    DEM_LogicalRecord record{UtString(path)};
    ASSERT_EQ(record.fetchLRAIngest(), 1);
    std::filesystem::resize_file(path, change.length);
    int profiles = 0;
    int last = 1;
    while (last == 1 && profiles <= kSampleProfiles) {
      const LessThanASecond limit;
      const StdoutCapture out;
      last = record.readRecord();
      if (last == -1) {
        EXPECT_THAT(out.text(), testing::StartsWith("DEM_LogicalRecord:readRecord: EOF "));
        break;
      }
      ++profiles;
      ASSERT_EQ(whole.readRecord(), last);
      ASSERT_EQ(std::vector(record.fetchElevations(), record.fetchElevations() + kSampleElevations),
                std::vector(whole.fetchElevations(), whole.fetchElevations() + kSampleElevations));
    }
    EXPECT_EQ(last, change.last);
    EXPECT_GE(profiles, change.profiles);
    if (change.length > kInMemory) {
      EXPECT_EQ(profiles, change.profiles);
    }
    EXPECT_EQ(record.setFN(kSample), 1);
    EXPECT_EQ(record.readRecord(), 1);
  }
}

}  // namespace
