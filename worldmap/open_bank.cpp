// Opening an outline file for the modern operations, which say why a file cannot be read.

#include "worldmap/open_bank.h"

#include <cerrno>
#include <cstring>

#include "kzgis/filetools.h"

namespace kzgis::worldmap {

OpenedBank open_bank(const std::string& path) {
  errno = 0;
  OpenedBank opened;
  opened.stream.reset(FILEfopen(path.c_str(), "rb"));
  if (opened.stream != nullptr) return opened;
  const int reason = errno;
  opened.missing = reason == ENOENT || reason == ENOTDIR;
  if (reason == ENOMEM) {
    opened.error = {ErrorKind::out_of_memory, path + ": out of memory"};
  } else {
    // A named pipe and a name that is too long are refused without asking the host.
    const char* const why = reason == 0 ? "cannot be opened" : std::strerror(reason);
    opened.error = {ErrorKind::cannot_read, path + ": " + why};
  }
  return opened;
}

Error error_of(const std::string& path, Obstacle obstacle) {
  switch (obstacle) {
    case Obstacle::none:
      return {};
    case Obstacle::bad_magic:
      return {ErrorKind::bad_data,
              path + ": not an outline file: it does not begin with 0x20770002"};
    case Obstacle::no_memory:
      return {ErrorKind::out_of_memory, path + ": out of memory"};
    case Obstacle::bad_seek:
      break;
  }
  return {ErrorKind::cannot_read, path + ": a seek to its dictionary failed"};
}

}  // namespace kzgis::worldmap
