// A height is a number above 0, wherever it stands.

#include "tools/triangulate/heights.h"

#include "tools/support/command_error.h"
#include "tools/support/number_text.h"
#include "tools/support/report.h"

namespace kzgis::tools {

namespace {

std::optional<double> parse_height(const std::string& text) {
  const auto height = parse_number(text);
  return height && *height > 0.0 ? height : std::nullopt;
}

}  // namespace

Heights::Heights(const std::string& text) {
  if (text.starts_with('@')) {
    field_ = text.substr(1);
    return;
  }
  fixed_ = parse_height(text);
  if (!fixed_) {
    throw UsageError("--extrude", in_quotes(text) +
                                      " is neither a height above 0 nor @ and the "
                                      "name of an attribute");
  }
}

void Heights::use(const Attributes& table) {
  table_ = &table;
  const auto column = table.field(field_);
  if (!column) {
    throw CommandError(table.name() + ": there is no attribute " + in_quotes(field_));
  }
  column_ = *column;
}

std::optional<double> Heights::of(std::uint32_t record) const {
  if (fixed_) return fixed_;
  return parse_height(table_->text(static_cast<int>(record), column_));
}

std::string Heights::why_none(std::uint32_t record) const {
  return "its " + field_ + " is " + in_quotes(table_->text(static_cast<int>(record), column_)) +
         ", no height above 0";
}

}  // namespace kzgis::tools
