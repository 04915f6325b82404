// The string of the classic interfaces.

#ifndef KZGIS_UTSTRING_H
#define KZGIS_UTSTRING_H

#include <cstddef>
#include <iosfwd>
#include <string>

#include "kzgis/export.h"

/// The string of the classic interfaces: a thin class over `std::string`.
///
/// It may hold NUL characters, as fields read from files do; `c_str()`, stream output
/// and comparison with text end at the first one, while `size()` counts them all.
/// An operation that finds no memory leaves the string as it was.
class KZGIS_EXPORT UtString {
 public:
  /// An empty string.
  UtString() = default;
  /// Copies NUL-terminated text; null counts as empty.
  UtString(const char* text);
  /// Copies all characters, NUL characters included.
  UtString(const std::string& text);

  /// Replaces the contents; null counts as empty.
  UtString& operator=(const char* text);

  /// Appends one character, NUL included.
  UtString& append(char c);
  /// Appends text up to its NUL; null counts as empty.
  UtString& append(const char* text);
  /// Appends all of the other string, its NUL characters included.
  UtString& append(const UtString& other);
  // The same three as operators.
  UtString& operator+=(char c);
  UtString& operator+=(const char* text);
  UtString& operator+=(const UtString& other);

  /// Makes room for `capacity` characters; the contents stay.
  void reserve(std::size_t capacity);
  /// Number of characters, NUL characters included.
  std::size_t size() const;
  /// True when there is not one character.
  bool empty() const;

  /// Turns A to Z into a to z in place, and nothing else, whatever the locale.
  UtString& lower();

  /// The characters with a NUL behind them; valid until the string changes.
  const char* c_str() const;
  /// All characters, NUL characters included.
  const std::string& str() const;

 private:
  std::string text_;
};

/// The characters of the left side, then those of the right one, as `append` has them.
KZGIS_EXPORT UtString operator+(UtString a, const UtString& b);
KZGIS_EXPORT UtString operator+(UtString a, const char* b);
KZGIS_EXPORT UtString operator+(const char* a, const UtString& b);

/// Compares up to the first NUL; null counts as empty text.
KZGIS_EXPORT bool operator==(const UtString& a, const char* b);
/// Compares all characters, NUL characters included.
KZGIS_EXPORT bool operator==(const UtString& a, const UtString& b);

/// Writes the characters before the first NUL.
KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const UtString& text);

#endif
