// Allocations and seeks that fail: each allocation of each operation in turn, by replacing
// what the whole program allocates and seeks with.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "kzgis/databank.h"
#include "support/capture.h"
#include "support/failing_memory.h"
#include "worldmap/bank.h"

struct UtVectorTestAccess {
  template <typename T>
  static void alloc_copy(UtVector<T>& v, std::size_t n) {
    v.alloc_copy(n);
  }
};

namespace {

// Counts down to the one that fails; -1 when none is to.
long seeks_to_go = -1;

}  // namespace

extern "C" int fseek(std::FILE* stream, long offset, int whence) {
  if (seeks_to_go >= 0 && seeks_to_go-- == 0) return -1;
  static const auto real =
      reinterpret_cast<int (*)(std::FILE*, long, int)>(dlsym(RTLD_NEXT, "fseek"));
  return real(stream, offset, whence);
}

namespace {

/// What became of an operation of which one allocation was to fail.
enum class Outcome { complete, threw, went_on };

/// Runs `operation` with allocation `k` failing, counted from 0: that one alone, or every later
/// one too.
template <typename Operation>
Outcome fail_allocation(long k, Operation operation, bool all_later = false) {
  Outcome outcome = Outcome::went_on;
  failing_memory::fail_from(k, all_later);
  try {
    operation();
  } catch (const std::bad_alloc&) {
    outcome = Outcome::threw;
  }
  return failing_memory::succeed() ? outcome : Outcome::complete;
}

/// The outcomes for k = 0, 1, ... before the first k that `operation` does not reach.
template <typename Operation>
std::vector<Outcome> fail_each_allocation(Operation operation) {
  std::vector<Outcome> outcomes;
  for (long k = 0; k < 1000; ++k) {
    const Outcome outcome = fail_allocation(k, operation);
    if (outcome == Outcome::complete) break;
    outcomes.push_back(outcome);
  }
  return outcomes;
}

const std::vector<Outcome> kThrowsOnce{Outcome::threw};

class WorldMapFailures : public BankTest {
 protected:
  using Lines = std::vector<ArcLine>;

  WorldMapFailures() {
    // A split, a point too near, a cut; then a line of its own.
    write("africa.Map/cil.cbd", cbd_file({segment_through({{0, 1292400},
                                                           {36, 1299600},
                                                           {37, 1299601},
                                                           {50, 1310000},
                                                           {60, 1420000},
                                                           {0, 0}}),
                                          segment_through({{7, 7}, {700, 700}, {900, 900}})}));
    WorldMap map;
    configure(map);
    map.readData();
    whole_ = lines_of(map);
  }

  void configure(WorldMap& map) const {
    ask_for_all(map);
    set_box(map, -10000, 1260000, 10000, 36000);
    map.setPrecision(10);
  }

  /// Fails each allocation of a load, alone or with all later ones, and gives all that was
  /// written to standard error, "threw" behind it where the load threw.
  std::set<std::string> fail_each_allocation_of_a_load(bool all_later) {
    std::set<std::string> messages;
    for (long k = 0;; ++k) {
      const std::string trace = "allocation " + std::to_string(k);
      SCOPED_TRACE(trace);
      const long before = failing_memory::live_blocks();
      std::string message;
      {
        WorldMap map;
        configure(map);
        const FixedCapture err;
        const Outcome outcome = fail_allocation(
            k, [&] { map.readData(); }, all_later);
        message = err.text() + (outcome == Outcome::threw ? "threw" : "");
        const Lines lines = lines_of(map);
        map.readData();
        EXPECT_EQ(lines_of(map), whole_);
        if (outcome == Outcome::complete) {
          EXPECT_EQ(lines, whole_);
          EXPECT_EQ(message, "");
          EXPECT_GE(k, 20);
          return messages;
        }
        EXPECT_LE(lines.size(), whole_.size());
        for (std::size_t i = 0; i < std::min(lines.size(), whole_.size()); ++i) {
          EXPECT_EQ(lines[i], whole_[i]);
        }
        // The host's own: a file that is not there, or a buffer that it can do without.
        if (message.empty()) {
          EXPECT_TRUE(lines.empty() || lines == whole_);
        }
      }
      message.shrink_to_fit();
      EXPECT_EQ(failing_memory::live_blocks() - before, message.capacity() > 15 ? 1 : 0);
      messages.insert(message);
      if (HasFailure()) return messages;
    }
  }

  Lines whole_;
};

TEST_F(WorldMapFailures, LoadWithoutThemIsThis) {
  EXPECT_EQ(whole_, (Lines{{{0, 1292400}, {36, 1295999}},
                           {{36, 0}, {36, 3600}, {50, 14000}, {60, 124000}},
                           {{7, 7}, {700, 700}, {900, 900}}}));
}

TEST_F(WorldMapFailures, OfOneAllocationLeaveTheLinesBefore) {
  EXPECT_EQ(fail_each_allocation_of_a_load(false),
            (std::set<std::string>{"threw", "CIA: Out of memory initializing dictionary\n",
                                   "CIA: Out of memory preparing new polyline\n",
                                   "CIA: Out of memory instancing new polyline\n",
                                   "CIA: Out of memory instancing new map point\n",
                                   "CIA: Out of memory instancing new map point 2\n",
                                   // The host's own: a stream that cannot be made is a file
                                   // that is not there.
                                   ""}));
}

TEST_F(WorldMapFailures, OfAllLaterAllocationsThrowAtTheNextFile) {
  EXPECT_EQ(fail_each_allocation_of_a_load(true),
            (std::set<std::string>{"threw", "CIA: Out of memory initializing dictionary\nthrew",
                                   "CIA: Out of memory preparing new polyline\nthrew",
                                   "CIA: Out of memory instancing new polyline\nthrew",
                                   "CIA: Out of memory instancing new map point\nthrew",
                                   "CIA: Out of memory instancing new map point 2\nthrew",
                                   // The stream of the last file, behind which nothing throws.
                                   ""}));
}

TEST_F(WorldMapFailures, OfAllocationsCloseTheFile) {
  // More loads than a process may have files open.
  const StderrCapture err;
  WorldMap map;
  configure(map);
  for (int i = 0; i < 1100; ++i) {
    for (const long k : {8L, 14L}) fail_allocation(k, [&] { map.readData(); });
  }
  map.readData();
  EXPECT_EQ(lines_of(map), whole_);
}

TEST_F(WorldMapFailures, OfAConstructorThrowOrLeaveACornerNull) {
  int without_low = 0;
  int without_up = 0;
  const long before = failing_memory::live_blocks();
  const std::vector<Outcome> outcomes = fail_each_allocation([&] {
    const WorldMap map;
    without_low += map.fetchLowLeftBoundary() == nullptr ? 1 : 0;
    without_up += map.fetchUpRightBoundary() == nullptr ? 1 : 0;
  });
  EXPECT_EQ(failing_memory::live_blocks() - before, 1);  // the outcomes'
  EXPECT_EQ(without_low, 1);
  EXPECT_EQ(without_up, 1);
  EXPECT_EQ(std::count(outcomes.begin(), outcomes.end(), Outcome::went_on), 2);
}

TEST_F(WorldMapFailures, OfACornerMakeABoxThatHoldsNothing) {
  for (const bool low : {true, false}) {
    std::unique_ptr<WorldMap> map;
    for (long k = 0; k < 100; ++k) {
      map.reset();
      fail_allocation(k, [&] { map = std::make_unique<WorldMap>(); });
      if (map != nullptr &&
          (low ? map->fetchLowLeftBoundary() : map->fetchUpRightBoundary()) == nullptr) {
        break;
      }
    }
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(map->insideBoundary(LatLon(50.0, 250.0)), 0);
    map->setCIADirectory(root_);
    map->setPOI(Coastal, Level1, 1);
    map->readData();
    EXPECT_EQ(map->fetchPolygonCollection(Coastal).size(), 0U);
    std::ostringstream report;
    report << *map;
    EXPECT_NE(report.str().find(low ? "Lower left boundary is \n" : "Upper right boundary is \n"),
              std::string::npos);
  }
}

TEST_F(WorldMapFailures, OfStringsThrowAndChangeNothing) {
  const UtString old("a directory name that no string keeps inside itself");
  const UtString text("another name that is longer than a string keeps inside itself");
  WorldMap map(old);
  map.setContinentDir(Asia, old);
  map.setOverlaysFile(River, old);
  EXPECT_EQ(fail_each_allocation([&] { map.fetchCIADirectory(); }), kThrowsOnce);
  EXPECT_EQ(fail_each_allocation([&] { map.fetchContinentDir(Asia); }), kThrowsOnce);
  EXPECT_EQ(fail_each_allocation([&] { map.fetchOverlaysFile(River); }), kThrowsOnce);
  EXPECT_EQ(fail_allocation(0, [&] { map.setCIADirectory(text); }), Outcome::threw);
  EXPECT_EQ(fail_allocation(0, [&] { map.setContinentDir(Asia, text); }), Outcome::threw);
  EXPECT_EQ(fail_allocation(0, [&] { map.setOverlaysFile(River, text); }), Outcome::threw);
  EXPECT_TRUE(map.fetchCIADirectory() == old);
  EXPECT_TRUE(map.fetchContinentDir(Asia) == old);
  EXPECT_TRUE(map.fetchOverlaysFile(River) == old);
}

TEST_F(WorldMapFailures, OfAnArrayThrowAndLeaveItAsItWas) {
  LatLon points[3] = {LatLon(1, 1), LatLon(2, 2), LatLon(3, 3)};
  // Kept, so that no compiler does without the allocation.
  std::unique_ptr<UtVector<UtVector<LatLon*>*>> empty;
  EXPECT_EQ(fail_each_allocation([&] { empty = std::make_unique<UtVector<UtVector<LatLon*>*>>(); }),
            (std::vector<Outcome>{Outcome::threw, Outcome::threw}));
  UtVector<LatLon*> v;
  v.push_back(&points[0]);
  v.push_back(&points[1]);
  EXPECT_EQ(fail_allocation(0, [&] { v.push_back(&points[2]); }), Outcome::threw);
  ASSERT_EQ(v.size(), 2U);
  EXPECT_EQ(v.back(), &points[1]);
  v.push_back(&points[2]);
  EXPECT_EQ(v.back(), &points[2]);
}

TEST_F(WorldMapFailures, OfAnArrayPast64BitsDoNotWrap) {
  LatLon point(1, 1);
  UtVector<LatLon*> v;
  v.push_back(&point);
  // 2^61 slots of 8 bytes are 0 modulo 2^64.
  volatile std::size_t too_many = std::size_t{1} << 61;
  EXPECT_THROW(UtVectorTestAccess::alloc_copy(v, too_many), std::bad_alloc);
  ASSERT_EQ(v.size(), 1U);
  EXPECT_EQ(v.back(), &point);
}

class DatabankFailures : public BankTest {
 protected:
  DatabankFailures() {
    write("africa.Map/cil.cbd", cbd_file({segment_through({{1, 2}, {3, 4}, {5, 6}}),
                                          segment_through({{7, 8}, {9, 10}}), Segment()}));
    Segment cut = segment_through({{1, 2}, {3, 4}});
    cut.count = 90;
    write("asia.Map/riv.cbd", cbd_file({cut, cut}));
  }

  /// Fails each allocation of an operation, alone and with all later ones.  It gives its error,
  /// and must not throw, leak, or fail otherwise than for want of memory.
  template <typename Operation>
  void expect_out_of_memory(Operation operation) {
    for (const bool all_later : {false, true}) {
      for (long k = 0;; ++k) {
        SCOPED_TRACE("allocation " + std::to_string(k));
        const long before = failing_memory::live_blocks();
        kzgis::ErrorKind kind{};
        const Outcome outcome = fail_allocation(
            k, [&] { kind = operation(); }, all_later);
        EXPECT_EQ(failing_memory::live_blocks(), before);
        if (outcome == Outcome::complete) {
          EXPECT_EQ(kind, kzgis::ErrorKind::none);
          EXPECT_GE(k, 5);
          break;
        }
        ASSERT_EQ(outcome, Outcome::went_on);
        ASSERT_EQ(kind, kzgis::ErrorKind::out_of_memory);
      }
    }
  }
};

TEST_F(DatabankFailures, OfReadingAreErrors) {
  expect_out_of_memory([this] {
    const auto bank = kzgis::read_databank(root_);
    return bank ? kzgis::ErrorKind::none : bank.error().kind;
  });
}

TEST_F(DatabankFailures, OfLookingIntoAFileAreErrors) {
  const std::string path = root_ + "/asia.Map/riv.cbd";
  expect_out_of_memory([&path] {
    const auto file = kzgis::inspect_databank_file(path);
    return file ? kzgis::ErrorKind::none : file.error().kind;
  });
}

TEST_F(DatabankFailures, OfWritingAreErrorsAndLeaveNothing) {
  kzgis::Segment segment;
  for (int i = 0; i < 100; ++i) {
    segment.lat.push_back(i);
    segment.lon.push_back(i * i);
  }
  kzgis::DatabankWriter whole;
  ASSERT_FALSE(whole.add(segment));
  ASSERT_FALSE(whole.add(segment));
  std::ostringstream expected;
  whole.write_file({}, {}, expected);
  long failed = 0;
  for (long k = 0; k < 100; ++k) {
    kzgis::DatabankWriter writer;
    ASSERT_FALSE(writer.add(segment));
    kzgis::Error error;
    const Outcome outcome = fail_allocation(k, [&] { error = writer.add(segment); });
    if (outcome == Outcome::complete) break;
    ++failed;
    ASSERT_EQ(outcome, Outcome::went_on);
    EXPECT_EQ(error.kind, kzgis::ErrorKind::out_of_memory);
    EXPECT_EQ(writer.size_of({}, {}).segments, 1U);
    // It is as if the segment had never come.
    ASSERT_FALSE(writer.add(segment));
    std::ostringstream file;
    writer.write_file({}, {}, file);
    EXPECT_EQ(file.str(), expected.str());
  }
  EXPECT_GE(failed, 1);

  std::filesystem::remove_all(root_);
  for (long k = 0; k < 10000; ++k) {
    kzgis::Error error;
    const Outcome outcome = fail_allocation(k, [&] { error = whole.write(root_); });
    if (outcome == Outcome::complete) {
      EXPECT_FALSE(error);
      EXPECT_GE(k, 20);
      break;
    }
    ASSERT_EQ(outcome, Outcome::went_on);
    // The host's streams do not say that it was memory; where they can do without, all is there.
    bool any = false;
    std::filesystem::create_directory(root_);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root_)) {
      any = any || entry.is_regular_file();
    }
    EXPECT_EQ(any, !error) << error.message;
    std::filesystem::remove_all(root_);
  }
}

class SeekFailures : public BankTest {
 protected:
  /// Loads two segments far apart with seek `k` failing, and gives the complaint.
  std::string complaint(long k, std::size_t* lines) {
    const Segment segment = segment_through({{1, 2}, {3, 4}});
    const std::string data = segment.data();
    const std::string body = data + std::string(100000, 'x') + data;
    write("africa.Map/cil.cbd", cbd_header(20 + body.size(), 2) + body + segment.entry(20) +
                                    segment.entry(20 + body.size() - data.size()));
    WorldMap map;
    ask_for_all(map);
    const StderrCapture err;
    seeks_to_go = k;
    map.readData();
    seeks_to_go = -1;
    *lines = lines_of(map).size();
    return err.text();
  }
};

TEST_F(SeekFailures, EndTheFileAndKeepWhatWasRead) {
  std::size_t lines = 0;
  // Two seeks find out the size: a stream that cannot tell it counts as empty.
  EXPECT_EQ(complaint(0, &lines), "CIA: File has bad magic number\n");
  EXPECT_EQ(complaint(1, &lines), "CIA: File has bad magic number\n");
  EXPECT_EQ(complaint(2, &lines), "CIA: bad seek\n");  // to the dictionary
  EXPECT_EQ(lines, 0U);
  EXPECT_EQ(complaint(3, &lines), "CIA: bad seek\n");  // to the first segment
  EXPECT_EQ(lines, 0U);
  EXPECT_EQ(complaint(4, &lines), "CIA: bad seek\n");  // to the second
  EXPECT_EQ(lines, 1U);
  EXPECT_EQ(complaint(-1, &lines), "");
  EXPECT_EQ(lines, 2U);
}

}  // namespace
