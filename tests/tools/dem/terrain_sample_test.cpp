// The mountain as triangles, checked at every elevation.

#include <gtest/gtest.h>
#include <kzgis/terrain.h>

#include <cstddef>
#include <string>

#include "support/terrain_judge.h"
#include "tools/dem/grid_file.h"

namespace {

TEST(SaintHelens, IsWithinEachToleranceEverywhere) {
  const kzgis::ElevationGrid grid =
      kzgis::tools::read_grid(KZGIS_TEST_DATA_DIR "/dem/st_helens.dem.gz");
  constexpr std::size_t kInFull = 296186;  // two triangles for each square without a void
  const struct {
    double tolerance;
    std::size_t least, most;
  } cases[] = {
      {0.0, kInFull, kInFull}, {5.0, kInFull / 8, kInFull / 4}, {20.0, kInFull / 80, kInFull / 20}};
  for (const auto& [tolerance, least, most] : cases) {
    SCOPED_TRACE("tolerance " + std::to_string(tolerance));
    const auto terrain = kzgis::triangulate_terrain(grid, tolerance);
    ASSERT_TRUE(terrain) << terrain.error().message;
    EXPECT_GE(terrain->triangles.size(), 3 * least);
    EXPECT_LE(terrain->triangles.size(), 3 * most);
    TerrainJudge judge(grid, *terrain);
    judge.expect_kept(tolerance);
    judge.expect_delaunay();
  }
}

}  // namespace
