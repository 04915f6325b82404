// Which format an output file gets: what --format says, or its name.

#ifndef KZGIS_TOOLS_SUPPORT_OUTPUT_FORMAT_H
#define KZGIS_TOOLS_SUPPORT_OUTPUT_FORMAT_H

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace kzgis::tools {

/// The names of a subcommand's formats, which are the endings of files too.
class FormatNames {
 public:
  void add(std::string name) { names_.push_back(std::move(name)); }

  /// Adds --format, checked as it is read.
  CLI::Option* add_option(CLI::App& command, std::string& name) const;

  /// Which of the names an output file has, as for `OutputFormats::choose`.
  std::size_t choose(const std::string& output, const std::string& name) const;

 private:
  std::optional<std::size_t> find(const std::string& name) const;
  /// "png, svg or pdf", each with `before` in front.
  std::string list(const char* before, const char* last) const;

  std::vector<std::string> names_;
};

/// The formats of a subcommand under their names.
template <typename Format>
class OutputFormats {
 public:
  OutputFormats(std::initializer_list<std::pair<const char*, Format>> formats) {
    for (const auto& [name, format] : formats) {
      names_.add(name);
      formats_.push_back(format);
    }
  }

  /// Adds --format, checked as it is read.
  CLI::Option* add_option(CLI::App& command, std::string& name) const {
    return names_.add_option(command, name);
  }

  /// The format for an output file; "-" is standard output.  Throws `UsageError` when neither
  /// `name`, what --format says if anything, nor the file's name is one.
  Format choose(const std::string& output, const std::string& name) const {
    return formats_[names_.choose(output, name)];
  }

 private:
  FormatNames names_;
  std::vector<Format> formats_;
};

}  // namespace kzgis::tools

#endif
