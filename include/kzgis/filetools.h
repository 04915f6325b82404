// Paths with variables of the environment in them, and opening files by such paths.

#ifndef KZGIS_FILETOOLS_H
#define KZGIS_FILETOOLS_H

#include <cstddef>
#include <cstdio>

#include "kzgis/export.h"

namespace kzgis {

/// Room for a path whose variables are expanded, the closing NUL included.
inline constexpr std::size_t kPathBytes = 1024;

}  // namespace kzgis

/// Expands the path variables in `name` into `buffer`.
///
/// `$NAME<n>` stands for the n-th entry, counted from 0, of the environment variable
/// NAME, read as a list separated by ':' (';' on Windows); `$NAME` without `<n>` for
/// its whole value.  A variable that is unset, or an n past the list's end, stays in
/// the text as it stands, so that the message of a failed open shows what was missing.
/// NAME is made of ASCII letters, digits and '_', and does not begin with a digit.
/// What was expanded is not expanded again.
///
/// Any number of threads may expand at once, as long as none changes the environment
/// meanwhile.  The same holds wherever a name with path variables opens a file.
///
/// @param name    the path; null is refused
/// @param buffer  the caller's, with room for kzgis::kPathBytes (1024) bytes
/// @return `buffer`; null, with an empty text in `buffer`, when the expanded name and
///         its NUL need more than 1024 bytes
KZGIS_EXPORT char* FILEmap_variables(const char* name, char* buffer)
    KZGIS_SYMBOL(FILEmap_variables);

/// Opens a file as `std::fopen` does, after expanding path variables in `path`.
///
/// Where the host separates directories by '/', every backslash of the expanded path
/// is then turned into one.  A named pipe is refused as a file that
/// cannot be opened: opening one could wait for ever for somebody at its other end.
///
/// @return a stream that the caller closes with `std::fclose`; null when the path does
///         not fit 1024 bytes or the file cannot be opened
KZGIS_EXPORT std::FILE* FILEfopen(const char* path, const char* mode) KZGIS_SYMBOL(FILEfopen);

#endif
