// Asking the host what kind of file a path leads to.

#include "platform/named_pipe.h"

#include <filesystem>
#include <system_error>

namespace kzgis {

bool is_named_pipe(const char* path) {
  // A path that cannot be asked about is no pipe: opening it then fails with its own reason.
  std::error_code unknown;
  return std::filesystem::is_fifo(path, unknown);
}

}  // namespace kzgis
