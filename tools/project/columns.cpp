// Columns by name, by position, or by what stands in them.

#include "tools/project/columns.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

#include "tools/support/command_error.h"
#include "tools/support/number_text.h"
#include "tools/support/report.h"

namespace kzgis::tools {

namespace {

/// The names by which a header's columns are known, in the order of the input numbers.
const std::array<std::vector<std::string>, 3>& known_names(bool inverse) {
  static const std::array<std::vector<std::string>, 3> kGeographic{
      {{"lat", "latitude"}, {"lon", "lng", "long", "longitude"}, {"alt", "altitude", "elevation"}}};
  static const std::array<std::vector<std::string>, 3> kWorld{{{"x"}, {"y"}, {"z"}}};
  return inverse ? kWorld : kGeographic;
}

std::string lower(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

std::optional<std::size_t> find_column(const std::vector<std::string>& header,
                                       const std::vector<std::string>& names) {
  for (std::size_t i = 0; i < header.size(); ++i) {
    if (std::find(names.begin(), names.end(), lower(header[i])) != names.end()) return i;
  }
  return std::nullopt;
}

/// A position counted from 1, or nothing when the text is a name.
std::optional<std::size_t> parse_position(const std::string& text) {
  std::size_t position = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, position);
  if (error != std::errc{} || stop != end || position == 0) return std::nullopt;
  return position;
}

bool is_number(const std::string& text) { return parse_number(text) || parse_dms(text); }

}  // namespace

std::vector<std::string> parse_columns(const std::string& text) {
  std::vector<std::string> columns;
  std::istringstream names(text);
  for (std::string name; std::getline(names, name, ',');) columns.push_back(name);
  const auto unusable = [](const std::string& name) { return name.empty() || name == "0"; };
  if (columns.size() < 2 || columns.size() > 3 || text.back() == ',' ||
      std::any_of(columns.begin(), columns.end(), unusable)) {
    throw UsageError("--columns", in_quotes(text) + " does not name two or three columns");
  }
  return columns;
}

bool Columns::read_header(const std::vector<std::string>& fields) {
  const std::vector<std::string>& asked = layout_.columns;
  const bool by_name = std::any_of(asked.begin(), asked.end(),
                                   [](const auto& name) { return !parse_position(name); });
  const bool header =
      by_name || (fields.size() > 1 && std::none_of(fields.begin(), fields.end(), is_number));
  if (!asked.empty()) {
    count_ = asked.size();
    for (std::size_t i = 0; i < count_; ++i) {
      const auto position = parse_position(asked[i]);
      const auto named = find_column(fields, {lower(asked[i])});
      if (!position && !named) throw CommandError("no column is named " + in_quotes(asked[i]));
      at_.at(i) = position ? *position - 1 : *named;
    }
    return header;
  }
  if (!header) {
    count_ = fields.size() > 2 && parse_angle(fields[2]) ? 3 : 2;
    return false;
  }
  const auto& names = known_names(layout_.inverse);
  const auto first = find_column(fields, names[0]);
  const auto second = find_column(fields, names[1]);
  const auto third = find_column(fields, names[2]);
  if (first && second) {
    at_ = {*first, *second, third.value_or(0)};
    count_ = third ? 3 : 2;
  }
  return true;
}

bool Columns::are_empty(const std::vector<std::string>& fields) const {
  return std::all_of(
      at_.begin(), at_.begin() + static_cast<std::ptrdiff_t>(count_),
      [&](std::size_t column) { return column < fields.size() && fields[column].empty(); });
}

std::optional<Triple> Columns::read(const std::vector<std::string>& fields,
                                    std::string& reason) const {
  Triple point{};
  for (std::size_t i = 0; i < count_; ++i) {
    const std::size_t column = at_.at(i);
    if (column >= fields.size()) {
      reason = "there is no column " + std::to_string(column + 1);
      return std::nullopt;
    }
    const bool angle = !layout_.inverse && i < 2;
    const auto number = angle ? parse_angle(fields[column]) : parse_number(fields[column]);
    if (!number) {
      reason = in_quotes(fields[column]) + " is not " + (angle ? "an angle" : "a number");
      return std::nullopt;
    }
    point.at(i) = *number;
  }
  if (!layout_.inverse && std::fabs(point[0]) > 90.0) {
    reason = "latitude " + in_quotes(fields[at_[0]]) + " is not between -90 and 90";
    return std::nullopt;
  }
  return point;
}

std::optional<double> Columns::parse_angle(const std::string& text) const {
  return layout_.dms && !layout_.inverse ? parse_dms(text) : parse_number(text);
}

}  // namespace kzgis::tools
