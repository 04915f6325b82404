// Labels from the command line, the name of the file, or the attributes of its records.

#include "tools/pack/labels.h"

#include <filesystem>
#include <utility>

#include "tools/support/bank_names.h"
#include "tools/support/command_error.h"
#include "tools/support/report.h"

namespace kzgis::tools {

namespace {

constexpr const char* kLevels = "0 to 15";

/// What the usual sources stand for.
LabelSources completed(const std::string& file, LabelSources sources) {
  const std::string stem = std::filesystem::path(file).stem().string();
  if (sources.theme.empty() && theme_named(stem)) sources.theme = stem;
  if (sources.theme.empty()) {
    throw CommandError(file + ": its name is no theme (bdy, pby, cil or riv): --theme must say");
  }
  if (sources.continent.empty()) sources.continent = "@CONT";
  if (sources.level.empty()) sources.level = "@RANK";
  return sources;
}

}  // namespace

Labels::Labels(const std::string& file, const LabelSources& sources, std::uint32_t records)
    : file_(file), records_(records) {
  const LabelSources all = completed(file, sources);
  theme_ = source<Theme>(all.theme, "--theme", theme_named, theme_names());
  continent_ = source<Continent>(all.continent, "--continent", continent_named, continent_names());
  level_ = source<int>(all.level, "--level", level_named, kLevels);
}

Label Labels::of(std::uint32_t record) const {
  return {value(theme_, record, theme_named, theme_names()),
          value(continent_, record, continent_named, continent_names()),
          value(level_, record, level_named, kLevels)};
}

template <typename Value, typename Parse>
Labels::Source<Value> Labels::source(const std::string& text, const char* option, Parse parse,
                                     const std::string& choices) {
  Source<Value> result;
  if (!text.starts_with('@')) {
    result.fixed = parse(text);
    if (result.fixed) return result;
    throw UsageError(
        option, in_quotes(text) + " is neither " + choices + " nor @ and the name of an attribute");
  }
  result.field = text.substr(1);
  if (!attributes_) {
    attributes_.emplace(file_);
    attributes_->expect_rows(records_);
  }
  const std::optional<int> column = attributes_->field(result.field);
  if (!column) {
    throw CommandError(attributes_->name() + ": there is no attribute " + in_quotes(result.field) +
                       "; " + option + " can name another or a value for all records");
  }
  result.column = *column;
  return result;
}

template <typename Value, typename Parse>
Value Labels::value(const Source<Value>& source, std::uint32_t record, Parse parse,
                    const std::string& choices) const {
  if (source.fixed) return *source.fixed;
  const std::string text = attributes_->text(static_cast<int>(record), source.column);
  const std::optional<Value> value = parse(text);
  if (!value) {
    throw CommandError(file_ + ": record " + std::to_string(record) + ": its " + source.field +
                       " is " + in_quotes(text) + ", not " + choices);
  }
  return *value;
}

}  // namespace kzgis::tools
