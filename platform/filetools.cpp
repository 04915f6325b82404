// Path variables and file opening.
//
// A path may hold variables of the environment, which is the only configuration there is:
//
//   $NAME       the value of NAME
//   $NAME<n>    entry n, counted from 0, of the value of NAME read as a list
//
// Everything else is ordinary text, a '$' without a name behind it included.  So is a variable
// that has no value: it stays as it is written, since the message of a failed open then shows
// what was missing.

#include "kzgis/filetools.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "platform/named_pipe.h"
#include "platform/open_file.h"

namespace {

#ifdef _WIN32
constexpr char kListSeparator = ';';
constexpr bool kBackslashSeparates = true;
#else
constexpr char kListSeparator = ':';
constexpr bool kBackslashSeparates = false;
#endif

// ASCII only, whatever the locale: a path means the same in every process.
bool begins_name(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }

bool continues_name(char c) { return begins_name(c) || (c >= '0' && c <= '9'); }

/// The n-th entry of a separated list; nothing when the list is shorter.  Entries may be empty
/// and count all the same: entry 1 of "a::b" is an empty text.
std::optional<std::string_view> list_entry(std::string_view list, std::size_t n) {
  for (; n > 0; --n) {
    const std::size_t separator = list.find(kListSeparator);
    if (separator == std::string_view::npos) return std::nullopt;
    list.remove_prefix(separator + 1);
  }
  return list.substr(0, list.find(kListSeparator));
}

/// A path variable at the start of a text.
struct Variable {
  std::string_view text;             ///< the variable as written, '$' included
  std::optional<std::string> value;  ///< what it stands for; nothing when it stays
};

/// Reads the variable that `text` begins with; `text` begins with '$'.
Variable read_variable(std::string_view text) {
  std::size_t end = 1;
  if (end < text.size() && begins_name(text[end])) {
    while (end < text.size() && continues_name(text[end])) ++end;
  }
  if (end == 1) return {text.substr(0, 1), std::nullopt};
  const std::string name(text.substr(1, end - 1));
  const char* const value = std::getenv(name.c_str());

  // An index needs its digits and its closing bracket; anything else behind the name
  // is ordinary text.  Digits that no number can hold are past the end of any list.
  if (end < text.size() && text[end] == '<') {
    const char* const digits = text.data() + end + 1;
    const char* const text_end = text.data() + text.size();
    std::size_t index = 0;
    const auto [stop, error] = std::from_chars(digits, text_end, index);
    if (stop != digits && stop != text_end && *stop == '>') {
      Variable as_written{text.substr(0, static_cast<std::size_t>(stop - text.data()) + 1),
                          std::nullopt};
      if (value == nullptr || error != std::errc{}) return as_written;
      const auto entry = list_entry(value, index);
      if (!entry) return as_written;
      return {as_written.text, std::string(*entry)};
    }
  }
  if (value == nullptr) return {text.substr(0, end), std::nullopt};
  return {text.substr(0, end), value};
}

/// Expands every variable; stops early once the result cannot fit a path buffer.
///
/// What a variable stands for goes to the result and is not looked at again, so that no value
/// can expand for ever.  A text that was cut off here is too long in any case, and the caller
/// refuses it by its length.
std::string expand(std::string_view text) {
  std::string out;
  while (!text.empty() && out.size() < kzgis::kPathBytes) {
    if (text.front() != '$') {
      const std::size_t plain = std::min(text.find('$'), text.size());
      out += text.substr(0, plain);
      text.remove_prefix(plain);
      continue;
    }
    const Variable variable = read_variable(text);
    out += variable.value ? std::string_view(*variable.value) : variable.text;
    text.remove_prefix(variable.text.size());
  }
  return out;
}

}  // namespace

char* FILEmap_variables(const char* name, char* buffer) {
  // `name` may be the buffer itself: nothing is written before all of it has been read.
  const std::string expanded = expand(name == nullptr ? "" : name);
  if (name == nullptr || expanded.size() >= kzgis::kPathBytes) {
    buffer[0] = '\0';
    return nullptr;
  }
  std::memcpy(buffer, expanded.c_str(), expanded.size() + 1);
  return buffer;
}

std::FILE* FILEfopen(const char* path, const char* mode) {
  char expanded[kzgis::kPathBytes];
  if (FILEmap_variables(path, expanded) == nullptr) return nullptr;
  return kzgis::open_expanded(expanded, mode);
}

std::FILE* kzgis::open_expanded(char* path, const char* mode) {
  // After the expansion, so that paths written for Windows may stand in the environment too.
  if (!kBackslashSeparates) std::replace(path, path + std::strlen(path), '\\', '/');
  return is_named_pipe(path) ? nullptr : std::fopen(path, mode);
}
