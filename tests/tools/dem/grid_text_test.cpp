#include "tools/dem/grid_text.h"

#include <gtest/gtest.h>

#include <sstream>

#include "small_grid.h"

namespace {

using kzgis::ElevationGrid;

ElevationGrid grid_with_a_hole() {
  return small_grid(2, 3, [](kz_long row, kz_long column) {
    return row == 0 && column == 1 ? double{kNone} : 100.0 * row + column + 0.5;
  });
}

TEST(WriteAsciiGrid, GivesTheCornerOfTheSouthWestCell) {
  std::ostringstream out;
  kzgis::tools::write_ascii_grid(out, grid_with_a_hole());
  EXPECT_EQ(out.str(),
            "ncols 3\n"
            "nrows 2\n"
            "xllcorner 499995\n"
            "yllcorner 4000075\n"
            "cellsize 10\n"
            "NODATA_value -32767\n"
            "0.5 -32767 2.5\n"
            "100.5 101.5 102.5\n");
}

TEST(WriteAsciiGrid, NamesBothStepsWhereTheyDiffer) {
  ElevationGrid grid = grid_with_a_hole();
  grid.step_x = 20.0;
  std::ostringstream out;
  kzgis::tools::write_ascii_grid(out, grid);
  EXPECT_NE(out.str().find("\nxllcorner 499990\nyllcorner 4000075\ndx 20\ndy 10\nNODATA"),
            std::string::npos)
      << out.str();
}

TEST(WritePoints, GivesALineForEachElevation) {
  std::ostringstream out;
  kzgis::tools::write_points(out, grid_with_a_hole());
  EXPECT_EQ(out.str(),
            "x,y,z\n"
            "500000,4000090,0.5\n"
            "500020,4000090,2.5\n"
            "500000,4000080,100.5\n"
            "500010,4000080,101.5\n"
            "500020,4000080,102.5\n");
}

}  // namespace
