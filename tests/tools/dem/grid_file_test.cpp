#include "tools/dem/grid_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "support/temporary_directory.h"
#include "tools/support/command_error.h"

namespace {

using kzgis::tools::CommandError;
using kzgis::tools::read_grid;
using kzgis::tools::read_gzip;

const std::string kQuadrangle = KZGIS_TEST_DATA_DIR "/dem/st_helens.dem.gz";

std::string bytes_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Rows, columns and heights as gdalinfo gives them.
TEST(ReadGrid, TakesACompressedQuadrangle) {
  const kzgis::ElevationGrid grid = read_grid(kQuadrangle);
  EXPECT_EQ(grid.columns, 327);
  EXPECT_EQ(grid.rows, 468);
  EXPECT_EQ(grid.lowest, 682.0F);
  EXPECT_EQ(grid.highest, 2543.0F);
}

TEST(ReadGrid, NamesWhatItCannotRead) {
  EXPECT_THROW(read_grid("/nonexistent.dem"), CommandError);
  EXPECT_THROW(read_grid(KZGIS_TEST_DATA_DIR), CommandError);
  EXPECT_THROW(read_grid(KZGIS_TEST_DATA_DIR "/ne/ne_110m_land.shp"), CommandError);
}

TEST(ReadGzip, NamesWhatIsCutOffOrDamaged) {
  const TemporaryDirectory directory;
  const std::string path = (directory.path() / "a.dem.gz").string();
  const std::string bytes = bytes_of(kQuadrangle);
  const auto why = [&](const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
    try {
      read_gzip(path);
    } catch (const CommandError& error) {
      return std::string(error.what()).substr(path.size());
    }
    return std::string("nothing");
  };
  EXPECT_EQ(why(bytes.substr(0, bytes.size() / 2)), ": what gzip compressed is cut off");
  std::string damaged = bytes;
  for (std::size_t i = 1000; i < 1100; ++i) damaged[i] = '\xFF';
  EXPECT_EQ(why(damaged), ": what gzip compressed is damaged");
  EXPECT_EQ(why(bytes), "nothing");
}

}  // namespace
