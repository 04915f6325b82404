// The error of an operation that ran out of memory.

#ifndef KZGIS_PLATFORM_NO_MEMORY_H
#define KZGIS_PLATFORM_NO_MEMORY_H

#include <new>
#include <string>
#include <string_view>

#include "kzgis/result.h"

namespace kzgis {

/// "roads.dem: out of memory"; without the name where there is no memory even for that.
inline Error no_memory(std::string_view name = {}) {
  // Short enough for a string to keep inside itself.
  Error error{ErrorKind::out_of_memory, "out of memory"};
  if (name.empty()) return error;
  try {
    error.message = std::string(name) + ": " + error.message;
  } catch (const std::bad_alloc&) {
    // The kind says it, and so does the message.
  }
  return error;
}

}  // namespace kzgis

#endif
