// Which format an output file gets: what --format says, or its name.

#ifndef KZGIS_TOOLS_SUPPORT_OUTPUT_FORMAT_H
#define KZGIS_TOOLS_SUPPORT_OUTPUT_FORMAT_H

#include <CLI/CLI.hpp>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "tools/support/command_error.h"
#include "tools/support/output_file.h"
#include "tools/support/report.h"

namespace kzgis::tools {

/// The formats of a subcommand under their names, which are the endings of files too.
template <typename Format>
class OutputFormats {
 public:
  OutputFormats(std::initializer_list<std::pair<const char*, Format>> formats)
      : formats_(formats) {}

  /// Adds --format, checked as it is read.
  CLI::Option* add_option(CLI::App& command, std::string& name) const {
    return command.add_option("--format", name, names("", " or ") + ", whatever the name says")
        ->type_name("FORMAT")
        ->check([*this](const std::string& text) {
          return find(text) != nullptr ? std::string()
                                       : in_quotes(text) + " is none of " + names("", ", ");
        });
  }

  /// The format for an output file; "-" is standard output.  Throws `UsageError` when neither
  /// `name`, what --format says if anything, nor the file's name is one.
  Format choose(const std::string& output, const std::string& name) const {
    if (!name.empty()) {
      if (const Format* const format = find(name)) return *format;
    } else if (output == "-") {
      throw UsageError("--output", "standard output needs --format " + names("", " or "));
    } else if (const Format* const format = find(ending_of(output))) {
      return *format;
    }
    throw UsageError("--output", in_quotes(output) + " does not end in " + names(".", " or ") +
                                     ", and no --format says which");
  }

 private:
  const Format* find(const std::string& name) const {
    for (const auto& [known, format] : formats_) {
      if (name == known) return &format;
    }
    return nullptr;
  }

  /// "png, svg or pdf", each with `before` in front.
  std::string names(const char* before, const char* last) const {
    std::string text;
    for (std::size_t i = 0; i < formats_.size(); ++i) {
      if (i > 0) text += i + 1 == formats_.size() ? last : ", ";
      text += std::string(before) + formats_[i].first;
    }
    return text;
  }

  std::vector<std::pair<const char*, Format>> formats_;
};

}  // namespace kzgis::tools

#endif
