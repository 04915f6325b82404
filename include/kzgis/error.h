#ifndef KZGIS_ERROR_H
#define KZGIS_ERROR_H

#include <string>

namespace kzgis {

/// What kind of failure an operation met.
enum class ErrorKind {
  none,          ///< it did not fail
  bad_argument,  ///< arguments that do not fit each other
  cannot_read,   ///< the file cannot be opened or read
  bad_data,      ///< the data is not what the operation works on
  unproved,      ///< a result came out that could not be proved right, and is withheld
  out_of_memory,
};

/// The failure of an operation of namespace kzgis: what kind, and one sentence, without a
/// line end, that a user can act on; empty where there is no memory even for that.  Nothing
/// in kzgis throws an exception of its own.
struct Error {
  ErrorKind kind = ErrorKind::none;
  std::string message;

  /// True when the operation failed.
  explicit operator bool() const { return kind != ErrorKind::none; }
};

}  // namespace kzgis

#endif
