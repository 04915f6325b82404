// Opening a file by a name without path variables.

#ifndef KZGIS_PLATFORM_OPEN_FILE_H
#define KZGIS_PLATFORM_OPEN_FILE_H

#include <cstdio>

namespace kzgis {

/// What `FILEfopen` does behind the expansion of path variables, for names that were expanded
/// already: backslashes become the host's separator, and a named pipe is refused.
///
/// Throws `std::bad_alloc` without memory, or cannot open the file.
///
/// @param path  its backslashes are replaced in place
/// @return null when the file cannot be opened: `errno` says why, but for a pipe
std::FILE* open_expanded(char* path, const char* mode);

}  // namespace kzgis

#endif
