// Files that people name on the command line.

#ifndef KZGIS_TOOLS_SUPPORT_INPUT_FILE_H
#define KZGIS_TOOLS_SUPPORT_INPUT_FILE_H

#include <cstdint>
#include <string>

namespace kzgis::tools {

/// The name with its path variables expanded, as the library opens it.  Throws
/// `CommandError` when the result is too long.
std::string expanded(const std::string& name);

/// Why that file cannot be read, in words that begin with its path: it is not there, is a
/// directory or a device, or must not be opened.  Empty when it can.
std::string why_not_readable(const std::string& path);

/// The file's length in bytes; 0 when there is no such file.
std::uintmax_t size_of(const std::string& path);

}  // namespace kzgis::tools

#endif
