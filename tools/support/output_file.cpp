#include "tools/support/output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <utility>

#include "tools/support/command_error.h"

namespace kzgis::tools {

std::string ending_of(const std::string& path) {
  const std::size_t dot = path.find_last_of("./");
  return dot != std::string::npos && path[dot] == '.' ? path.substr(dot + 1) : std::string();
}

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
  if (path_ == "-") return;
  // A device or a pipe cannot be replaced by a rename: it is written as it stands.
  struct stat info {};
  const bool replaceable = ::stat(path_.c_str(), &info) != 0 || S_ISREG(info.st_mode);
  temporary_path_ = replaceable ? path_ + ".part" + std::to_string(::getpid()) : path_;
  file_.open(temporary_path_, std::ios::binary | std::ios::trunc);
  if (!file_) throw CommandError(path_ + ": cannot be written: " + std::strerror(errno));
}

OutputFile::~OutputFile() {
  if (!to_standard_output() && temporary_path_ != path_) std::remove(temporary_path_.c_str());
}

std::ostream& OutputFile::stream() { return to_standard_output() ? std::cout : file_; }

void OutputFile::commit() {
  errno = 0;
  stream().flush();
  if (!to_standard_output()) file_.close();
  if (!stream()) {
    const std::string name = to_standard_output() ? "standard output" : path_;
    const std::string reason = errno != 0 ? std::strerror(errno) : "the write failed";
    throw CommandError(name + ": could not be written whole: " + reason);
  }
  if (to_standard_output() || temporary_path_ == path_) return;
  if (std::rename(temporary_path_.c_str(), path_.c_str()) != 0) {
    throw CommandError(path_ + ": cannot be written: " + std::strerror(errno));
  }
  temporary_path_ = path_;
}

}  // namespace kzgis::tools
