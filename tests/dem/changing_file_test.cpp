// A file that changes while `read_dem` has it open: before any of its reads, by replacing what
// the whole program reads with.  Each read sees the file as it is then, so that the answer is
// that for the bytes read, put together.

// A fortified fread is inline, and cannot be replaced.
#undef _FORTIFY_SOURCE

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>

#include "dem/dem_writer.h"
#include "kzgis/elevation.h"
#include "support/counted_reads.h"
#include "support/time_limit.h"

namespace {

/// What happens before one of the reads, counted from 0.
struct Interruption {
  long reads_to_go = -1;
  std::function<void()> change;
  std::size_t bytes_before = 0;  ///< read before it
};
Interruption interruption;

}  // namespace

long counted_reads = 0;

extern "C" std::size_t fread(void* bytes, std::size_t size, std::size_t count, std::FILE* stream) {
  ++counted_reads;
  if (interruption.reads_to_go >= 0 && interruption.reads_to_go-- == 0) interruption.change();
  static const auto real =
      reinterpret_cast<std::size_t (*)(void*, std::size_t, std::size_t, std::FILE*)>(
          dlsym(RTLD_NEXT, "fread"));
  const std::size_t got = real(bytes, size, count, stream);
  if (interruption.reads_to_go >= 0) interruption.bytes_before += size * got;
  return got;
}

namespace {

using kzgis::ElevationGrid;
using kzgis::Error;
using kzgis::read_dem;
using kzgis::Result;

class ReadDemOfAFile : public DemTest {
 protected:
  static constexpr int kProfiles = 300;  // of a block each: more than is read at a time
  static constexpr long kReads = 4;      // that it takes at least

  ReadDemOfAFile() {
    RecordAText a;
    a.size(1, kProfiles);
    a.corners({{500000, 5000010}, {500000, 5000100}, {508970, 5000100}, {508970, 5000010}});
    whole_ = a.text();
    for (int i = 0; i < kProfiles; ++i) {
      whole_ += ProfileText{1, i + 1, 500000 + 30.0 * i, 5000010, counting(4, i)}.text();
    }
  }

  /// Reads the file, which `change` meets before its n-th read.
  /// @return false when there is no such read
  bool read(long n, const std::function<void()>& change) {
    write(whole_);
    const LessThanASecond limit;
    interruption = {n, change, 0};
    grid_ = read_dem(path_);
    const bool met = interruption.reads_to_go == -1;
    interruption.reads_to_go = -1;
    return met;
  }

  /// Compares what was read with what the same bytes in memory give.
  void expect_like(const std::string& bytes) const {
    const auto expected = read_dem(bytes, path_);
    ASSERT_EQ(grid_.has_value(), expected.has_value());
    if (!grid_) {
      EXPECT_EQ(grid_.error().kind, expected.error().kind);
      EXPECT_EQ(grid_.error().message, expected.error().message);
      return;
    }
    EXPECT_EQ(grid_->columns, expected->columns);
    EXPECT_EQ(grid_->elevations, expected->elevations);
  }

  const std::string path_ = directory() + "/test.dem";
  std::string whole_;
  Result<ElevationGrid> grid_ = Error{};
};

TEST_F(ReadDemOfAFile, ThatStaysAsItIsGivesAllOfIt) {
  EXPECT_FALSE(read(1000, [] {}));
  ASSERT_TRUE(grid_) << grid_.error().message;
  EXPECT_EQ(grid_->columns, kProfiles);
  EXPECT_EQ(grid_->rows, 4);
  EXPECT_EQ(grid_->at(0, 299), 302.0F);
}

TEST_F(ReadDemOfAFile, IsReadOnceForEachWindow) {
  const long before = counted_reads;
  EXPECT_FALSE(read(1000, [] {}));
  EXPECT_GT(counted_reads, before);
  EXPECT_LE(counted_reads - before, static_cast<long>(whole_.size()) / 65536 + 1);
}

TEST_F(ReadDemOfAFile, ThatGetsShorterEndsThereOrWhereItWasReadTo) {
  for (long n = 0; n < kReads; ++n) {
    for (const std::size_t length : {std::size_t{0}, std::size_t{500}, std::size_t{1024},
                                     std::size_t{70000}, whole_.size() / 2, whole_.size() - 1001}) {
      SCOPED_TRACE("read " + std::to_string(n) + ", " + std::to_string(length) + " bytes");
      ASSERT_TRUE(read(n, [&] { std::filesystem::resize_file(path_, length); }));
      expect_like(whole_.substr(0, std::max(length, interruption.bytes_before)));
      EXPECT_FALSE(grid_);
    }
  }
}

TEST_F(ReadDemOfAFile, ThatGetsLongerGivesWhatItHad) {
  for (long n = 0; n < kReads; ++n) {
    SCOPED_TRACE(n);
    ASSERT_TRUE(read(n, [&] { std::filesystem::resize_file(path_, 10 * whole_.size()); }));
    expect_like(whole_);
    EXPECT_TRUE(grid_) << grid_.error().message;
  }
}

TEST_F(ReadDemOfAFile, WhoseBytesBecomeOtherOnesIsRefused) {
  for (long n = 0; n < kReads; ++n) {
    for (const char byte : {'\0', '\x7F', '\x80', '\xFF', ' '}) {
      SCOPED_TRACE("read " + std::to_string(n) + ", byte " + std::to_string(byte));
      const std::string others(whole_.size(), byte);
      ASSERT_TRUE(
          read(n, [&] { std::ofstream(path_, std::ios::binary | std::ios::in) << others; }));
      const std::size_t seen = interruption.bytes_before;
      ASSERT_LT(seen, whole_.size());
      expect_like(whole_.substr(0, seen) + others.substr(seen));
      EXPECT_FALSE(grid_);
    }
  }
}

}  // namespace
