// Reading, nesting and triangulating the largest sample leaves nothing behind, and doing it
// over and over takes no more memory than doing it a few times.  KZGIS_LONG_RUN_ROUNDS says how
// often, a thousand for a run by hand; the figures are printed.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "kzgis/polytree.h"
#include "robustness/process_memory.h"
#include "support/failing_memory.h"
#include "support/meshed.h"
#include "support/polygon_layer.h"

namespace {

/// Takes each record through both interfaces; gives the number of triangles.
std::size_t read_nest_and_triangulate() {
  std::size_t triangles = 0;
  PolygonLayer layer("ne_50m_countries");
  for (kz_ulong i = 0; i < layer.records(); ++i) {
    const PolygonLayer::Record record = layer.next();
    const kzgis::Rings rings{record.x, record.y, record.starts};
    EXPECT_FALSE(nested(rings).flaw);
    const Meshed mesh = meshed(rings);
    EXPECT_FALSE(mesh.flaw);
    triangles += mesh.triangles.size() / 3;

    const std::vector<kz_ulong> starts(record.starts.begin(), record.starts.end());
    const KZ_GIS_PolygonTree_c tree(0, 0, 0, 0, static_cast<kz_ulong>(starts.size()), starts.data(),
                                    static_cast<kz_ulong>(record.x.size()), record.x.data(),
                                    record.y.data());
    kz_ulong count = 0;
    EXPECT_EQ(tree.NumberOfConnections(&count), 1U);
    std::vector<kz_ulong> connections(count);
    EXPECT_EQ(tree.Triangulate(&count, connections.data()), 1U);
  }
  return triangles;
}

TEST(LongRun, TakesNoMoreMemoryThanAShortOne) {
  const char* const wanted = std::getenv("KZGIS_LONG_RUN_ROUNDS");
  const int rounds = std::max(2, wanted != nullptr ? std::atoi(wanted) : kUsualRounds);
  const int settled = std::clamp(rounds / 3, 1, 10);
  const auto started = std::chrono::steady_clock::now();
  std::size_t triangles = 0;
  std::size_t before = 0;
  long blocks = 0;
  for (int round = 1; round <= rounds; ++round) {
    const std::size_t found = read_nest_and_triangulate();
    if (round == 1) {  // what is allocated once, is: the tables of the triangulator
      triangles = found;
      blocks = failing_memory::live_blocks();
    }
    ASSERT_EQ(found, triangles) << "round " << round;
    ASSERT_EQ(failing_memory::live_blocks(), blocks) << "round " << round;
    if (round == settled) before = resident_bytes();
  }
  const std::size_t after = resident_bytes();
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - started;
  std::printf("%zu triangles; resident after round %d: %zu KiB, after round %d: %zu KiB; %.1f s\n",
              triangles, settled, before >> 10, rounds, after >> 10, seconds.count());
  // Blocks that grow, and a heap in ever smaller pieces, show in a thousand rounds.
  if (kMemoryIsTheProgramsOwn) {
    EXPECT_LT(after, before + (std::size_t{4} << 20));
  }
}

}  // namespace
