// The names of formats, as options, as endings and in messages.

#include "tools/support/output_format.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/support/command_error.h"
#include "tools/support/output_file.h"
#include "tools/support/report.h"

namespace kzgis::tools {

CLI::Option* FormatNames::add_option(CLI::App& command, std::string& name) const {
  return command.add_option("--format", name, list("", " or ") + ", whatever the name says")
      ->type_name("FORMAT")
      ->check([*this](const std::string& text) {
        return find(text) ? std::string() : in_quotes(text) + " is none of " + list("", ", ");
      });
}

std::size_t FormatNames::choose(const std::string& output, const std::string& name) const {
  if (!name.empty()) {
    if (const auto format = find(name)) return *format;
  } else if (output == "-") {
    throw UsageError("--output", "standard output needs --format " + list("", " or "));
  } else if (const auto format = find(ending_of(output))) {
    return *format;
  }
  throw UsageError("--output", in_quotes(output) + " does not end in " + list(".", " or ") +
                                   ", and no --format says which");
}

std::optional<std::size_t> FormatNames::find(const std::string& name) const {
  const auto found = std::find(names_.begin(), names_.end(), name);
  if (found == names_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - names_.begin());
}

std::string FormatNames::list(const char* before, const char* last) const {
  std::string text;
  for (std::size_t i = 0; i < names_.size(); ++i) {
    if (i > 0) text += i + 1 == names_.size() ? last : ", ";
    text += before + names_[i];
  }
  return text;
}

}  // namespace kzgis::tools
