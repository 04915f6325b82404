// Named pipes told from all other files.

#include "platform/named_pipe.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/named_pipe.h"
#include "support/temporary_directory.h"

namespace {

TEST(IsNamedPipe, OfPipesAndOfLinksToThemAlone) {
  const TemporaryDirectory directory;
  const std::filesystem::path root = directory.path();
  std::filesystem::create_directory(root / "sub");
  std::ofstream(root / "sub" / "file.txt") << "text";
  const std::string path = (root / "pipe").string();
  const NamedPipe pipe(path);
  std::filesystem::create_symlink(path, root / "link");
  EXPECT_TRUE(kzgis::is_named_pipe(path.c_str()));
  EXPECT_TRUE(kzgis::is_named_pipe((root / "link").c_str()));
  for (const char* const other : {"sub/file.txt", "sub", "missing", "sub/file.txt/below"}) {
    EXPECT_FALSE(kzgis::is_named_pipe((root / other).c_str())) << other;
  }
  EXPECT_FALSE(kzgis::is_named_pipe(""));
  EXPECT_FALSE(kzgis::is_named_pipe(std::string(5000, 'a').c_str()));
}

}  // namespace
