#ifndef KZGIS_RESULT_H
#define KZGIS_RESULT_H

#include <cassert>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include "kzgis/export.h"

// How operations of namespace kzgis answer: with a value, or with the reason why there is
// none.  Nothing in kzgis throws an exception of its own, and running out of memory is an
// error like any other.

namespace kzgis {

/// What kind of failure an operation met.
enum class ErrorKind {
  none,          ///< it did not fail
  bad_argument,  ///< arguments that do not fit each other
  cannot_read,   ///< the file cannot be opened or read
  cannot_write,  ///< the file cannot be made or written
  bad_data,      ///< the data is not what the operation works on
  unproved,      ///< a result came out that could not be proved right, and is withheld
  out_of_memory,
};

/// The failure of an operation: what kind, and one sentence, without a line end, that a user
/// can act on; empty where there is no memory even for that.
struct Error {
  ErrorKind kind = ErrorKind::none;
  std::string message;

  /// True when the operation failed.
  explicit operator bool() const { return kind != ErrorKind::none; }
};

/// Writes a message to standard error and ends the program by `std::abort`.
[[noreturn]] KZGIS_EXPORT void end_program(const char* message);

/// A value, or the error that stands in its place.
///
/// It is made from either by conversion and never by default, so that no result is a success
/// by accident.  The names are those of `std::expected` (C++23), so that code written for one
/// reads like code written for the other.
///
/// @tparam E  an error type with a string `message`, such as `Error`
template <class T, class E = Error>
class [[nodiscard]] Result {
  static_assert(!std::is_same_v<T, E>, "a value must be told from an error");

 public:
  using value_type = T;
  using error_type = E;

  Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
  Result(E error) : state_(std::in_place_index<1>, std::move(error)) {}

  bool has_value() const { return state_.index() == 0; }
  explicit operator bool() const { return has_value(); }

  /// The value, which must be there.
  T& operator*() & { return *pointer(); }
  const T& operator*() const& { return *pointer(); }
  T&& operator*() && { return std::move(*pointer()); }
  T* operator->() { return pointer(); }
  const T* operator->() const { return pointer(); }

  /// The value.  Where there is none the program ends, with the error's message on standard
  /// error: for programs that have nothing else to do then.
  T& value() & { return *checked(); }
  const T& value() const& { return *checked(); }
  T&& value() && { return std::move(*checked()); }

  /// The error, which must be there.
  E& error() & { return *reason(); }
  const E& error() const& { return *reason(); }
  E&& error() && { return std::move(*reason()); }

 private:
  T* pointer() {
    assert(has_value());
    return std::get_if<0>(&state_);
  }
  const T* pointer() const {
    assert(has_value());
    return std::get_if<0>(&state_);
  }
  T* checked() {
    if (!has_value()) end_program(reason()->message.c_str());
    return std::get_if<0>(&state_);
  }
  const T* checked() const {
    if (!has_value()) end_program(reason()->message.c_str());
    return std::get_if<0>(&state_);
  }
  E* reason() {
    assert(!has_value());
    return std::get_if<1>(&state_);
  }
  const E* reason() const {
    assert(!has_value());
    return std::get_if<1>(&state_);
  }

  std::variant<T, E> state_;
};

}  // namespace kzgis

#endif
