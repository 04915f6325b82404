// From the library's errors to those of the command.

#include "tools/support/command_error.h"

#include <new>

namespace kzgis::tools {

void fail(const Error& error) {
  if (error.kind == ErrorKind::out_of_memory) throw std::bad_alloc();
  if (error.kind == ErrorKind::bad_data) throw BadDataError(error.message);
  throw CommandError(error.message);
}

}  // namespace kzgis::tools
