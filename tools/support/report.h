// What the command says on standard error.

#ifndef KZGIS_TOOLS_SUPPORT_REPORT_H
#define KZGIS_TOOLS_SUPPORT_REPORT_H

#include <string>
#include <string_view>

namespace kzgis::tools {

/// "kzgis: ", the message and a line end.  Control characters, which names of files and
/// fields may hold, become "\n", "\t" or "\x1b".
std::string report_line(const std::string& message);

/// Writes that line.
void report(const std::string& message);

/// The text in quotes for use in a message, cut short when it is long.
std::string in_quotes(std::string_view text);

}  // namespace kzgis::tools

#endif
