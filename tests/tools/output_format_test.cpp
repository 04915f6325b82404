#include "tools/support/output_format.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

#include "tools/support/command_error.h"

namespace {

using kzgis::tools::OutputFormats;
using kzgis::tools::UsageError;

const OutputFormats<int>& formats() {
  static const OutputFormats<int> known{{"one", 1}, {"two", 2}, {"three", 3}};
  return known;
}

/// Why there is no format.
std::string why(const std::string& output, const std::string& name) {
  try {
    return "format " + std::to_string(formats().choose(output, name));
  } catch (const UsageError& error) {
    return error.what();
  }
}

TEST(OutputFormats, GoByTheOptionBeforeTheName) {
  EXPECT_EQ(formats().choose("a.one", ""), 1);
  EXPECT_EQ(formats().choose("a.one/b.three", ""), 3);
  EXPECT_EQ(formats().choose("a.one", "two"), 2);
  EXPECT_EQ(formats().choose("-", "three"), 3);
}

TEST(OutputFormats, SayWhatThereIs) {
  EXPECT_EQ(why("-", ""), "--output: standard output needs --format one, two or three");
  EXPECT_EQ(why("a.four", ""),
            "--output: 'a.four' does not end in .one, .two or .three, and no --format says which");
  EXPECT_EQ(why("one", ""),
            "--output: 'one' does not end in .one, .two or .three, and no --format says which");
}

TEST(OutputFormats, CheckTheOptionAsItIsRead) {
  CLI::App app("test");
  std::string name;
  formats().add_option(app, name);
  app.parse(std::vector<std::string>{"two", "--format"});
  EXPECT_EQ(name, "two");
  try {
    app.parse(std::vector<std::string>{"four", "--format"});
    ADD_FAILURE();
  } catch (const CLI::ValidationError& error) {
    EXPECT_EQ(std::string(error.what()), "--format: 'four' is none of one, two, three");
  }
}

}  // namespace
