#include "tools/support/output_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tools/support/command_error.h"

namespace {

using kzgis::tools::CommandError;
using kzgis::tools::OutputFile;

class OutputFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    directory_ =
        std::filesystem::temp_directory_path() / ("kzgis_output_" + std::to_string(::getpid()));
    std::filesystem::create_directories(directory_);
    path_ = (directory_ / "out.txt").string();
  }
  void TearDown() override { std::filesystem::remove_all(directory_); }

  std::string contents() const {
    std::ifstream file(path_);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  long files() const { return std::distance(std::filesystem::directory_iterator(directory_), {}); }

  std::filesystem::path directory_;
  std::string path_;
};

TEST_F(OutputFileTest, AppearsWhenItIsCommitted) {
  {
    OutputFile output(path_);
    output.stream() << "whole";
    EXPECT_FALSE(std::filesystem::exists(path_));
    output.commit();
    EXPECT_EQ(contents(), "whole");
  }
  EXPECT_EQ(files(), 1);
}

TEST_F(OutputFileTest, LeavesNothingBehindOtherwise) {
  {
    OutputFile output(path_);
    output.stream() << "half";
  }
  EXPECT_EQ(files(), 0);
}

TEST_F(OutputFileTest, KeepsTheFormerFileUntilThen) {
  std::ofstream(path_) << "former";
  {
    OutputFile output(path_);
    output.stream() << "half";
  }
  EXPECT_EQ(contents(), "former");
}

TEST_F(OutputFileTest, SaysWhyItCannotBeWritten) {
  try {
    OutputFile output((directory_ / "none" / "out.txt").string());
    FAIL() << "opened";
  } catch (const CommandError& error) {
    EXPECT_EQ(std::string(error.what()), (directory_ / "none" / "out.txt").string() +
                                             ": cannot be written: No such file or directory");
  }
}

TEST_F(OutputFileTest, ReportsAFullDevice) {
  if (!std::filesystem::exists("/dev/full")) return;
  OutputFile output("/dev/full");
  output.stream() << "text";
  EXPECT_THROW(output.commit(), CommandError);
}

}  // namespace
