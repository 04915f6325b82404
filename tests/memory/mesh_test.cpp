// How many allocations small polygons take: they are most of a layer, and each is counted here.

#include "kzgis/mesh.h"

#include <gtest/gtest.h>

#include <vector>

#include "kzgis/types.h"
#include "memory/failing.h"

namespace {

/// The number of allocations that a call makes.
template <class Call>
long allocations_of(const Call& call) {
  for (long k = 0;; ++k) {
    failing_memory::fail_from(k, true);
    (void)call();
    if (!failing_memory::succeed()) return k;
  }
}

const std::vector<double> kX{0, 2, 4, 6, 8, 9, 7, 5, 3, 1};
const std::vector<double> kY{0, -1, -1, 0, 2, 5, 7, 8, 7, 4};
const std::vector<kz_long> kStarts{0};

TEST(MeshMemory, NestingTenVerticesTakesFewAllocations) {
  EXPECT_LE(allocations_of([] { return kzgis::nest({kX, kY, kStarts}); }), 10);
}

TEST(MeshMemory, TriangulatingTenVerticesTakesFewAllocations) {
  EXPECT_LE(allocations_of([] { return kzgis::triangulate({kX, kY, kStarts}); }), 16);
}

}  // namespace
