// What the command says on standard error.

#ifndef KZGIS_TOOLS_SUPPORT_REPORT_H
#define KZGIS_TOOLS_SUPPORT_REPORT_H

#include <string>
#include <string_view>

namespace kzgis::tools {

/// Writes "kzgis: " and the message as one line.  Control characters, which names of files
/// and fields may hold, become "\n", "\t" or "\x1b".
void report(const std::string& message);

/// The text in quotes for use in a message, cut short when it is long.
std::string in_quotes(std::string_view text);

}  // namespace kzgis::tools

#endif
