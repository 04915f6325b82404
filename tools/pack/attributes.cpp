// Reading dBASE tables by shapelib, without its own messages.

#include "tools/pack/attributes.h"

#include <filesystem>

#include "tools/support/command_error.h"
#include "tools/support/input_file.h"

namespace kzgis::tools {

namespace {

/// shapelib's own complaints would stand beside the command's one line.
void stay_silent(const char* /*message*/) {}

}  // namespace

Attributes::Attributes(const std::string& file)
    : name_(std::filesystem::path(file).replace_extension(".dbf").string()) {
  std::error_code unknown;
  const auto upper = std::filesystem::path(file).replace_extension(".DBF");
  if (!std::filesystem::exists(name_, unknown) && std::filesystem::exists(upper, unknown)) {
    name_ = upper.string();
  }
  const std::string why = why_not_readable(name_);
  if (!why.empty()) throw CommandError(why);
  SAHooks hooks;
  SASetupDefaultHooks(&hooks);
  hooks.Error = stay_silent;
  table_.reset(DBFOpenLL(name_.c_str(), "rb", &hooks));
  if (!table_) throw CommandError(name_ + ": not a dBASE table");
}

int Attributes::count() const { return DBFGetRecordCount(table_.get()); }

std::optional<int> Attributes::field(const std::string& field_name) const {
  const int index = DBFGetFieldIndex(table_.get(), field_name.c_str());
  return index >= 0 ? std::optional<int>(index) : std::nullopt;
}

std::string Attributes::text(int record, int field) const {
  const char* const value = DBFReadStringAttribute(table_.get(), record - 1, field);
  return value != nullptr ? value : std::string();
}

}  // namespace kzgis::tools
