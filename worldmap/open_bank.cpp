// Opening an outline file for the modern operations, which say why a file cannot be read.

#include "worldmap/open_bank.h"

#include <cerrno>
#include <cstring>

#include "kzgis/filetools.h"
#include "platform/no_memory.h"

namespace kzgis::worldmap {

// `std::fopen` leaves its reason in errno, and `FILEfopen` refuses some names before it asks.
OpenedBank open_bank(const std::string& path) {
  errno = 0;
  OpenedBank opened;
  opened.stream.reset(FILEfopen(path.c_str(), "rb"));
  if (opened.stream != nullptr) return opened;
  const int reason = errno;
  opened.missing = reason == ENOENT || reason == ENOTDIR;
  if (reason == ENOMEM) {
    opened.error = no_memory(path);
  } else {
    // A named pipe and a name that is too long are refused without asking the host.
    const char* const why = reason == 0 ? "cannot be opened" : std::strerror(reason);
    opened.error = {ErrorKind::cannot_read, path + ": " + why};
  }
  return opened;
}

// A file that refuses to be sought is told as one that cannot be read: it is no regular file.
Error error_of(const std::string& path, Obstacle obstacle) {
  switch (obstacle) {
    case Obstacle::none:
      return {};
    case Obstacle::bad_magic:
      return {ErrorKind::bad_data,
              path + ": not an outline file: it does not begin with 0x20770002"};
    case Obstacle::no_memory:
      return no_memory(path);
    case Obstacle::bad_seek:
      break;
  }
  return {ErrorKind::cannot_read, path + ": a seek to its dictionary failed"};
}

}  // namespace kzgis::worldmap
