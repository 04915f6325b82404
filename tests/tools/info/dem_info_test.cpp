#include "tools/info/dem_info.h"

#include "dem/dem_writer.h"
#include "support/capture.h"

namespace {

using DemInfo = DemTest;

/// The last line of what `kzgis info` prints.
std::string last_line(const std::string& file) {
  const StdoutCapture out;
  kzgis::tools::InfoReport info(file, false, false);
  kzgis::tools::report_dem(info);
  EXPECT_EQ(info.finish(), 0);
  std::string text = out.text();
  text.pop_back();
  return text.substr(text.rfind('\n') + 1);
}

TEST_F(DemInfo, CountsOneColumnAndOneRow) {
  const std::string header =
      RecordAText()
          .size(1, 1)
          .corners({{500010, 5000010}, {500010, 5000010}, {500010, 5000010}, {500010, 5000010}})
          .text();
  const std::string profile =
      ProfileText{.base_x = 500010.0, .base_y = 5000010.0, .elevations = {7}}.text();
  EXPECT_EQ(last_line(write(header + profile)),
            "TEST QUADRANGLE: 1 column and 1 row, 30 by 30 metres apart, x 500010 to 500010, y "
            "5000010 to 5000010; 1 elevation from 7 to 7 metres");
}

TEST_F(DemInfo, CountsSeveral) {
  const std::string header =
      RecordAText()
          .size(1, 2)
          .corners({{500010, 5000010}, {500010, 5000040}, {500040, 5000040}, {500040, 5000010}})
          .text();
  const std::string west =
      ProfileText{.base_x = 500010.0, .base_y = 5000010.0, .elevations = {7, 9}}.text();
  const std::string east = ProfileText{
      .column = 2,
      .base_x = 500040.0,
      .base_y = 5000010.0,
      .elevations = {8, 6}}.text();
  EXPECT_EQ(last_line(write(header + west + east)),
            "TEST QUADRANGLE: 2 columns and 2 rows, 30 by 30 metres apart, x 500010 to 500040, y "
            "5000010 to 5000040; 4 elevations from 6 to 9 metres");
}

}  // namespace
