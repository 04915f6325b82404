// How often a shapefile's files are read from, which is what many small records cost most.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "kzgis/shapefile.h"
#include "support/counted_reads.h"

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

}  // namespace
