// What the command asks of a file before the library opens it, for a better message.

#include "tools/support/input_file.h"

#include <kzgis/filetools.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "tools/support/command_error.h"

namespace kzgis::tools {

std::string expanded(const std::string& name) {
  char buffer[kPathBytes];
  if (FILEmap_variables(name.c_str(), buffer) == nullptr) {
    throw CommandError(name + ": the name is too long");
  }
  return buffer;
}

std::string why_not_readable(const std::string& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (error) return path + ": " + std::strerror(error.value());
  if (!std::filesystem::is_regular_file(status)) return path + ": not a regular file";
  errno = 0;
  if (!std::ifstream(path, std::ios::binary)) return path + ": " + std::strerror(errno);
  return {};
}

std::uintmax_t size_of(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

}  // namespace kzgis::tools
