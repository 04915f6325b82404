#include "tools/support/input_file.h"

#include <kzgis/filetools.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "tools/support/command_error.h"

namespace kzgis::tools {

std::string expanded(const std::string& name) {
  char buffer[1024];
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

std::string read_whole(const std::string& name) {
  const std::string path = expanded(name);
  const std::string why = why_not_readable(path);
  if (!why.empty()) throw CommandError(why);
  std::string bytes(size_of(path), '\0');
  std::ifstream in(path, std::ios::binary);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (in.bad()) throw CommandError(path + ": cannot be read");
  bytes.resize(static_cast<std::size_t>(in.gcount()));  // shorter when the file shrank meanwhile
  return bytes;
}

}  // namespace kzgis::tools
