#include "tools/support/output_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/temporary_directory.h"
#include "tools/support/command_error.h"

namespace {

using kzgis::tools::CommandError;
using kzgis::tools::OutputFile;

class OutputFileTest : public ::testing::Test {
 protected:
  std::string contents() const { return contents(path_); }
  static std::string contents(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  long files() const { return std::distance(std::filesystem::directory_iterator(directory_), {}); }

  const TemporaryDirectory temporary_;
  const std::filesystem::path directory_ = temporary_.path();
  const std::string path_ = (directory_ / "out.txt").string();
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
  output.stream() << std::string(1000000, 'x');
  EXPECT_FALSE(output.stream());
  try {
    output.commit();
    FAIL() << "written";
  } catch (const CommandError& error) {
    EXPECT_STREQ(error.what(), "/dev/full: could not be written whole: No space left on device");
  }
}

TEST_F(OutputFileTest, KeepsEveryByteOfALongOne) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += std::to_string(i);
  OutputFile output(path_);
  output.stream() << text << std::flush << 'x' << text;
  output.commit();
  EXPECT_EQ(contents(), text + 'x' + text);
}

TEST_F(OutputFileTest, NeverSharesATemporaryFile) {
  OutputFile one(path_);
  OutputFile other(path_);
  EXPECT_EQ(files(), 2);
  one.stream() << "one";
  other.stream() << "other";
  other.commit();
  EXPECT_EQ(contents(), "other");
  one.commit();
  EXPECT_EQ(contents(), "one");
}

TEST_F(OutputFileTest, TakesTheLongestNameThatAFileCanHave) {
  const std::string longest = (directory_ / std::string(255, 'n')).string();
  {
    OutputFile output(longest);
    output.stream() << "whole";
    output.commit();
  }
  EXPECT_EQ(contents(longest), "whole");
  try {
    const OutputFile output(longest + 'n');
    FAIL() << "opened";
  } catch (const CommandError& error) {
    EXPECT_EQ(std::string(error.what()), longest + "n: cannot be written: File name too long");
  }
}

TEST_F(OutputFileTest, HasTheRightsOfANewFile) {
  const mode_t former = ::umask(027);
  {
    OutputFile output(path_);
    output.commit();
  }
  ::umask(former);
  EXPECT_EQ(std::filesystem::status(path_).permissions(), std::filesystem::perms{0640});
}

/// Three files, written and not yet committed, that are parts of one output.
class OutputFilesTest : public OutputFileTest {
 protected:
  void SetUp() override {
    for (const char* const name : {"a", "b", "c"}) {
      OutputFile& output = outputs_.emplace_back((directory_ / name).string(), "abc");
      output.stream() << "whole " << name;
      output.finish();
    }
  }
  bool there(const char* name) const { return std::filesystem::exists(directory_ / name); }

  std::deque<OutputFile> outputs_;
};

TEST_F(OutputFilesTest, AppearTogether) {
  EXPECT_FALSE(there("a") || there("b") || there("c"));
  OutputFile::commit_together(outputs_);
  outputs_.clear();
  EXPECT_EQ(contents((directory_ / "a").string()), "whole a");
  EXPECT_EQ(contents((directory_ / "c").string()), "whole c");
  EXPECT_EQ(files(), 3);
}

TEST_F(OutputFilesTest, LeaveNothingBehindOtherwise) {
  outputs_.pop_front();
  outputs_.pop_back();
  EXPECT_EQ(files(), 1);
  outputs_.clear();
  EXPECT_EQ(files(), 0);
}

TEST_F(OutputFilesTest, SayWhichCouldNotBeRenamed) {
  std::filesystem::create_directory(directory_ / "b");
  try {
    OutputFile::commit_together(outputs_);
    FAIL() << "renamed to a directory";
  } catch (const CommandError& error) {
    EXPECT_EQ(std::string(error.what()),
              (directory_ / "b").string() + ": cannot be written: Is a directory; what was " +
                  "written up to " + (directory_ / "a").string() + " stays");
  }
  outputs_.clear();
  EXPECT_EQ(files(), 2);
  EXPECT_FALSE(there("c"));
}

TEST_F(OutputFilesTest, AreAllRemovedByASignal) {
  ASSERT_EXIT(::raise(SIGTERM), ::testing::KilledBySignal(SIGTERM),
              "^kzgis: abc: not written: stopped by a signal\n$");
  EXPECT_EQ(files(), 0);
}

}  // namespace
