// Messages to people: one line each, whatever is in the names that they quote.

#include "tools/support/report.h"

#include <array>
#include <cstdio>
#include <iostream>

namespace kzgis::tools {

std::string report_line(const std::string& message) {
  std::string line = "kzgis: ";
  for (const char c : message) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      line += "\\n";
    } else if (c == '\t') {
      line += "\\t";
    } else if (byte < 0x20 || byte == 0x7F) {
      std::array<char, 5> code{};
      std::snprintf(code.data(), code.size(), "\\x%02x", static_cast<unsigned>(byte));
      line += code.data();
    } else {
      line += c;
    }
  }
  line += '\n';
  return line;
}

void report(const std::string& message) { std::cerr << report_line(message); }

std::string in_quotes(std::string_view text) {
  constexpr std::size_t kLongest = 60;
  if (text.size() <= kLongest) return "'" + std::string(text) + "'";
  return "'" + std::string(text.substr(0, kLongest)) + "...'";
}

}  // namespace kzgis::tools
