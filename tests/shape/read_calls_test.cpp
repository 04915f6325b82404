// How often a shapefile's files are read from, which is what many small records cost most.

// A fortified read is inline, and cannot be replaced.
#undef _FORTIFY_SOURCE

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "kzgis/shape.h"
#include "kzgis/shapefile.h"
#include "support/counted_reads.h"

// What streams read with, where they do not by `fread`.
extern "C" ssize_t read(int file, void* bytes, std::size_t count) {
  ++counted_reads;
  static const auto real =
      reinterpret_cast<ssize_t (*)(int, void*, std::size_t)>(dlsym(RTLD_NEXT, "read"));
  return real(file, bytes, count);
}

namespace {

using kzgis::Shapefile;

const std::string kLayer = KZGIS_TEST_DATA_DIR "/ne/ne_50m_countries";

long reads_for(const std::string& extension, long width_bytes) {
  const auto size = static_cast<long>(std::filesystem::file_size(kLayer + extension));
  // One more for the header and one for the end.
  return size / width_bytes + 2;
}

TEST(ShapefileReads, OnceForEachWindowAndNotForEachRecord) {
  const long before = counted_reads;
  auto file = Shapefile::open(kLayer);
  ASSERT_TRUE(file);
  long points = 0;
  for (const auto& record : *file) points += static_cast<long>(record->x.size());
  EXPECT_EQ(points, 99593);
  EXPECT_GT(counted_reads, before);
  // A record that goes over the end of a window begins the next one, half a window at most lost.
  EXPECT_LE(counted_reads - before, 2 * reads_for(".shp", 65536) + reads_for(".shx", 4096));
}

TEST(ClassicShapeReads, OnceForEachWindowAndNotForEachRecord) {
  KZ_GIS_ESRI_Shape_c shape(kLayer.c_str());
  const long before = counted_reads;
  ASSERT_EQ(shape.SeekToFirstDataRecord(), 1U);
  kz_long number = 0, num_parts = 0, num_points = 0, parts_room = 0, points_room = 0;
  kz_long* parts = nullptr;
  double* x = nullptr;
  double* y = nullptr;
  double box[4] = {};
  long points = 0;
  while (shape.ReadPolygonShape(&number, &box[0], &box[1], &box[2], &box[3], &num_parts,
                                &parts_room, &parts, &num_points, &points_room, &x, &y) == 1) {
    points += num_points;
  }
  std::free(parts);
  std::free(x);
  std::free(y);
  EXPECT_EQ(points, 99593);
  EXPECT_GT(counted_reads, before);
  // Growing arrays measures the file, which may cost the window's rest: a read for each of the few
  // records that are larger than all before, at most.
  EXPECT_LE(counted_reads - before, 2 * reads_for(".shp", 65536));
}

// Only a window that a seek keeps makes the index one read for a thousand records.
TEST(ClassicShapeReads, SeeksToNeighboursReadTheIndexOnce) {
  KZ_GIS_ESRI_Shape_c shape(kLayer.c_str());
  const long before = counted_reads;
  for (kz_long i = 1; i <= 241; ++i) ASSERT_EQ(shape.SeekToDataRecord(i), 1U);
  EXPECT_LE(counted_reads - before, reads_for(".shx", 8192));
}

}  // namespace
