#include "tools/info/shape_info.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/capture.h"
#include "support/temporary_directory.h"

namespace {

/// Works on a copy of a sample file whose headers may be changed.
class ShapeInfo : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* const ending : {".shp", ".shx"}) {
      std::filesystem::copy_file(KZGIS_TEST_DATA_DIR "/ne/ne_110m_lakes" + std::string(ending),
                                 lakes_ + ending);
    }
  }
  void change(const std::string& ending, std::streamoff offset, const std::string& bytes) const {
    std::fstream file(lakes_ + ending, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(offset);
    file << bytes;
  }
  /// The exit code, and what stands on standard error.
  std::pair<int, std::string> verdict() const {
    const StdoutCapture out;
    const StderrCapture err;
    kzgis::tools::InfoReport info(lakes_ + ".shp", false, false);
    kzgis::tools::report_shapefile(info);
    return {info.finish(), err.text()};
  }

  const TemporaryDirectory directory_;
  const std::string lakes_ = (directory_.path() / "lakes").string();
};

TEST_F(ShapeInfo, IsSilentOnASoundFile) {
  EXPECT_EQ(verdict(), (std::pair<int, std::string>{0, ""}));
}

// Versions of 1001.
TEST_F(ShapeInfo, SaysWhichHeaderIsNotValid) {
  change(".shx", 28, "\xE9");
  const std::string index = "kzgis: " + lakes_ +
                            ".shp: the header of the index file is not valid: the version is not "
                            "1000\n";
  EXPECT_EQ(verdict(), (std::pair{1, index}));
  change(".shp", 28, "\xE9");
  EXPECT_EQ(verdict(), (std::pair{1, "kzgis: " + lakes_ +
                                         ".shp: the header of the shape file is not valid: the "
                                         "version is not 1000\n" +
                                         index}));
}

// As of a single point; what is beyond its edges is not asked.
TEST_F(ShapeInfo, TakesAnEmptyBox) {
  change(".shp", 36, std::string(32, '\0'));
  EXPECT_EQ(verdict(), (std::pair<int, std::string>{0, ""}));
}

}  // namespace
