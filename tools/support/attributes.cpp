// Reading dBASE tables by shapelib, without its own messages.

#include "tools/support/attributes.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "tools/support/command_error.h"
#include "tools/support/input_file.h"
#include "tools/support/number_text.h"

namespace kzgis::tools {

namespace {

/// shapelib's own complaints would stand beside the command's one line.
void stay_silent(const char* /*message*/) {}

/// The table's name; that of a file, if there is one.
std::string table_of(const std::string& file) {
  std::string name = std::filesystem::path(file).replace_extension(".dbf").string();
  std::error_code unknown;
  const auto upper = std::filesystem::path(file).replace_extension(".DBF");
  if (!std::filesystem::exists(name, unknown) && std::filesystem::exists(upper, unknown)) {
    return upper.string();
  }
  return name;
}

/// How many bytes a character of UTF-8 takes (RFC 3629); 0 where there is none.
std::size_t utf8_length(std::string_view text) {
  const auto byte = [text](std::size_t i) -> unsigned {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
  };
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  // Longer forms than it takes, surrogates and what lies beyond U+10FFFF begin no character.
  if (first < 0xC2 || first > 0xF4) return 0;
  const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  const unsigned least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  const unsigned most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
  if (byte(1) < least || byte(1) > most) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (byte(i) < 0x80 || byte(i) > 0xBF) return 0;
  }
  return length;
}

bool is_utf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = utf8_length(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::string utf8_of(const std::string& text) {
  if (is_utf8(text)) return text;
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      result += c;
    } else {
      result += static_cast<char>(0xC0U | byte >> 6U);
      result += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return result;
}

/// A whole number where it is one, else a real one, else what stands there.
nlohmann::ordered_json number_or_text(const std::string& text) {
  std::int64_t whole = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, whole);
  if (error == std::errc{} && stop == end) return whole;
  if (const auto number = parse_number(text)) return *number;
  return utf8_of(text);
}

}  // namespace

Attributes::Attributes(const std::string& file) : name_(table_of(file)) {
  const std::string why = why_not_readable(name_);
  if (!why.empty()) throw CommandError(why);
  SAHooks hooks;
  SASetupDefaultHooks(&hooks);
  hooks.Error = stay_silent;
  table_.reset(DBFOpenLL(name_.c_str(), "rb", &hooks));
  if (!table_) throw CommandError(name_ + ": not a dBASE table");
}

bool Attributes::exist(const std::string& file) {
  std::error_code unknown;
  return std::filesystem::exists(table_of(file), unknown);
}

int Attributes::count() const { return DBFGetRecordCount(table_.get()); }

void Attributes::expect_rows(std::uint32_t records) const {
  if (std::cmp_not_equal(count(), records)) {
    throw CommandError(name_ + ": holds " + std::to_string(count()) + " rows for " +
                       std::to_string(records) + " records");
  }
  // shapelib takes the header's word for it, and rows that are not there for blank ones.
  const std::int64_t bytes =
      table_->nHeaderLength + std::int64_t{table_->nRecordLength} * table_->nRecords;
  if (std::cmp_less(size_of(name_), bytes)) {
    throw CommandError(name_ + ": ends before its last row");
  }
}

std::optional<int> Attributes::field(const std::string& field_name) const {
  const int index = DBFGetFieldIndex(table_.get(), field_name.c_str());
  return index >= 0 ? std::optional<int>(index) : std::nullopt;
}

std::string Attributes::text(int record, int field) const {
  const char* const value = DBFReadStringAttribute(table_.get(), record - 1, field);
  return value != nullptr ? value : std::string();
}

nlohmann::ordered_json Attributes::row(int record) const {
  auto row = nlohmann::ordered_json::object();
  for (int i = 0; i < DBFGetFieldCount(table_.get()); ++i) {
    std::array<char, 12> name{};  // XBASE_FLDNAME_LEN_READ and the end
    const DBFFieldType type = DBFGetFieldInfo(table_.get(), i, name.data(), nullptr, nullptr);
    nlohmann::ordered_json& value = row[utf8_of(name.data())];
    if (DBFIsAttributeNULL(table_.get(), record - 1, i) != 0) continue;
    const std::string said = text(record, i);
    if (type == FTInteger || type == FTDouble) {
      value = number_or_text(said);
    } else if (type == FTLogical) {
      value = said == "T" || said == "t" || said == "Y" || said == "y";
    } else {
      value = utf8_of(said);
    }
  }
  return row;
}

std::optional<Attributes> sound_attributes(const std::string& file, std::uint32_t records,
                                           const Complain& complain) {
  if (!Attributes::exist(file)) return std::nullopt;
  try {
    std::optional<Attributes> table(file);
    table->expect_rows(records);
    return table;
  } catch (const CommandError& error) {
    complain(error.what());
    return std::nullopt;
  }
}

nlohmann::ordered_json properties_of(std::uint32_t record,
                                     const nlohmann::ordered_json& attributes) {
  nlohmann::ordered_json properties{{"record", record}};
  properties.update(attributes);
  return properties;
}

}  // namespace kzgis::tools
