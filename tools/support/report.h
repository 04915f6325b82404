// What the command says on standard error.

#ifndef KZGIS_TOOLS_SUPPORT_REPORT_H
#define KZGIS_TOOLS_SUPPORT_REPORT_H

#include <functional>
#include <string>
#include <string_view>

namespace kzgis::tools {

/// "kzgis: ", the message and a line end.  Control characters, which names of files and
/// fields may hold, become "\n", "\t" or "\x1b".
std::string report_line(const std::string& message);

/// Writes that line.
void report(const std::string& message);

/// Receives one line, without a line end, on each thing that is wrong with the input but does
/// not end the subcommand.
using Complain = std::function<void(const std::string&)>;

/// Reports such lines, and remembers that there were any: the exit code is then 1.
class Complaints {
 public:
  void add(const std::string& line) {
    report(line);
    any_ = true;
  }
  /// Valid as long as this object.
  Complain receiver() {
    return [this](const std::string& line) { add(line); };
  }
  int exit_code() const { return any_ ? 1 : 0; }

 private:
  bool any_ = false;
};

/// The text in quotes for use in a message, cut short when it is long.
std::string in_quotes(std::string_view text);

}  // namespace kzgis::tools

#endif
