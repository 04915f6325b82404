#include "tools/info/shape_info.h"

#include <gtest/gtest.h>

#include <algorithm>
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
    const int code = kzgis::tools::print_shape_info(lakes_ + ".shp", false);
    return {code, err.text()};
  }

  const TemporaryDirectory directory_;
  const std::string lakes_ = (directory_.path() / "lakes").string();
};

TEST_F(ShapeInfo, IsSilentOnASoundFile) {
  EXPECT_EQ(verdict(), (std::pair<int, std::string>{0, ""}));
}

// A file code of 9995 and a version of 1001.
TEST_F(ShapeInfo, SaysWhichHeaderIsNotValid) {
  change(".shx", 0, std::string("\x00\x00\x27\x0B", 4));
  const std::string index = "kzgis: " + lakes_ +
                            ".shp: the header of the index file is not valid: the file code is "
                            "not 9994\n";
  EXPECT_EQ(verdict(), (std::pair{1, index}));
  change(".shp", 28, "\xE9");
  EXPECT_EQ(verdict(), (std::pair{1, "kzgis: " + lakes_ +
                                         ".shp: the header of the shape file is not valid: the "
                                         "version is not 1000\n" +
                                         index}));
}

TEST_F(ShapeInfo, GivesUpAFileThatIsDamagedAllThrough) {
  // An index of 2000 records, all of them far behind the shape file's end.
  std::string entries;
  for (int n = 0; n < 2000; ++n) entries += std::string("\x40\0\0\0\0\0\0\x40", 8);
  change(".shx", 24, std::string("\0\0\x1F\x72", 4));  // 100 + 8 * 2000 bytes, in 16-bit words
  change(".shx", 100, entries);
  const auto [code, said] = verdict();
  EXPECT_EQ(code, 1);
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 21);
  EXPECT_EQ(said.find("kzgis: " + lakes_ + ".shp: record 1 cannot be read: "), 0U) << said;
  const std::string last =
      "kzgis: " + lakes_ + ".shp: 980 more records cannot be read; the rest is left out\n";
  EXPECT_TRUE(said.ends_with(last)) << said;
}

// As of a single point; what is beyond its edges is not asked.
TEST_F(ShapeInfo, TakesAnEmptyBox) {
  change(".shp", 36, std::string(32, '\0'));
  EXPECT_EQ(verdict(), (std::pair<int, std::string>{0, ""}));
}

}  // namespace
