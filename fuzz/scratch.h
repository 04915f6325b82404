// Where fuzzers put the files that the code under test opens.

#ifndef KZGIS_FUZZ_SCRATCH_H
#define KZGIS_FUZZ_SCRATCH_H

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

/// A directory of this process alone, in memory where the host has such a place.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    std::error_code ignored;
    const bool in_memory = std::filesystem::is_directory("/dev/shm", ignored);
    path_ = (in_memory ? "/dev/shm" : std::filesystem::temp_directory_path().string()) +
            "/kzgis_fuzz_XXXXXX";
    if (mkdtemp(path_.data()) == nullptr) std::abort();
  }
  ~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  const std::string& path() const { return path_; }
  /// Writes a file of that name, over the one before.
  void write(const std::string& name, const std::uint8_t* data, std::size_t size) const {
    const int file = open((path_ + "/" + name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (file < 0 || ::write(file, data, size) != static_cast<ssize_t>(size)) std::abort();
    close(file);
  }

 private:
  std::string path_;
};

#endif
