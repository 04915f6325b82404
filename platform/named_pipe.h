// Files that nobody should wait for.

#ifndef KZGIS_PLATFORM_NAMED_PIPE_H
#define KZGIS_PLATFORM_NAMED_PIPE_H

namespace kzgis {

/// Whether a file is a pipe that has a name, "/dev/stdin" behind a pipe included; links are
/// followed.
///
/// Every reader of this library asks before it opens a file, and refuses a pipe as a file
/// that cannot be opened: opening one waits, for ever if need be, until somebody opens its
/// other end.  Throws `std::bad_alloc` without memory.
///
/// @param path  taken as it is, no path variables; not null
/// @return false also when there is no such file
bool is_named_pipe(const char* path);

}  // namespace kzgis

#endif
