#ifndef KZGIS_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define KZGIS_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

/// An empty directory of a test's own, removed with all that is in it.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kzgis_test_XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary directory");
    path_ = pattern;
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

#endif
