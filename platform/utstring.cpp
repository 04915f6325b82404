// The string of the classic interfaces, a thin class over `std::string`.
//
// Fields of files keep a NUL of their own at their end.  What deals with text (`c_str()`, the
// comparison with text, output) ends at the first NUL; what deals with whole strings (`size()`,
// appending one to another, the comparison of two) counts every character.  A null pointer is
// an empty text wherever text is accepted.

#include "kzgis/utstring.h"

#include <ostream>
#include <string_view>

namespace {

std::string_view text_or_empty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace

UtString::UtString(const char* text) : text_(text_or_empty(text)) {}
UtString::UtString(const std::string& text) : text_(text) {}

UtString& UtString::operator=(const char* text) {
  text_.assign(text_or_empty(text));
  return *this;
}

UtString& UtString::append(char c) {
  text_.push_back(c);
  return *this;
}

UtString& UtString::append(const char* text) {
  text_.append(text_or_empty(text));
  return *this;
}

UtString& UtString::append(const UtString& other) {
  text_.append(other.text_);
  return *this;
}

UtString& UtString::operator+=(char c) { return append(c); }
UtString& UtString::operator+=(const char* text) { return append(text); }
UtString& UtString::operator+=(const UtString& other) { return append(other); }

void UtString::reserve(std::size_t capacity) { text_.reserve(capacity); }
std::size_t UtString::size() const { return text_.size(); }
bool UtString::empty() const { return text_.empty(); }

// Not `std::tolower`: in some locales that changes other bytes, or the letter I differently.
UtString& UtString::lower() {
  for (char& c : text_) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return *this;
}

const char* UtString::c_str() const { return text_.c_str(); }
const std::string& UtString::str() const { return text_; }

UtString operator+(UtString a, const UtString& b) { return a.append(b); }
UtString operator+(UtString a, const char* b) { return a.append(b); }
UtString operator+(const char* a, const UtString& b) { return UtString(a).append(b); }

// The left side is text too here, up to its first NUL.
bool operator==(const UtString& a, const char* b) { return a.c_str() == text_or_empty(b); }
bool operator==(const UtString& a, const UtString& b) { return a.str() == b.str(); }

std::ostream& operator<<(std::ostream& os, const UtString& text) { return os << text.c_str(); }
