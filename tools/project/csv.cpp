// Records out of libcsv, which calls back for every field and for every end of a record.

#include "tools/project/csv.h"

#include <algorithm>
#include <array>
#include <utility>

#include "tools/support/command_error.h"

namespace kzgis::tools {

namespace {

constexpr std::size_t kBlockBytes = 65536;
constexpr std::size_t kRecordLimitBytes = 1048576;

}  // namespace

CsvReader::CsvReader(std::istream& input) : input_(input) {
  // Every line end is reported, blank lines included: lines are counted by them.
  if (csv_init(&parser_, CSV_REPALL_NL) != 0) throw CommandError("the CSV parser cannot start");
}

CsvReader::~CsvReader() { csv_free(&parser_); }

bool CsvReader::next(CsvRecord& record) {
  while (ready_.empty() && !at_end_) read_block();
  if (ready_.empty()) return false;
  record = std::move(ready_.front());
  ready_.pop_front();
  return true;
}

/// Parses one block of the input; the record that its end cuts goes on growing.
void CsvReader::read_block() {
  std::array<char, kBlockBytes> block{};
  input_.read(block.data(), block.size());
  std::string_view text(block.data(), static_cast<std::size_t>(input_.gcount()));
  const std::size_t got = text.size();
  // Spreadsheets put a byte order mark in front of UTF-8.
  if (bytes_read_ == 0 && text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  bytes_read_ += got;
  if (csv_parse(&parser_, text.data(), text.size(), on_field, on_end_of_record, this) !=
      text.size()) {
    throw CommandError(std::string("line ") + std::to_string(line_) + ": " +
                       csv_strerror(csv_error(&parser_)));
  }
  if (growing_bytes_ > kRecordLimitBytes || csv_get_buffer_size(&parser_) > kRecordLimitBytes) {
    throw CommandError("line " + std::to_string(line_) +
                       ": a record of more than 1 MiB; is a quote not closed?");
  }
  if (got == 0) {
    at_end_ = true;
    // Strict only now: a stray quote inside a field is let pass, an open one is not.
    csv_set_opts(&parser_, CSV_REPALL_NL | CSV_STRICT | CSV_STRICT_FINI);
    if (csv_fini(&parser_, on_field, on_end_of_record, this) != 0) {
      throw CommandError("line " + std::to_string(line_) + ": a quote is not closed");
    }
  }
}

void CsvReader::on_field(void* text, std::size_t length, void* self) {
  auto& reader = *static_cast<CsvReader*>(self);
  const std::string_view field(static_cast<const char*>(text), length);
  if (reader.growing_.fields.empty()) reader.growing_.line = reader.line_;
  // Past the limit nothing is kept: the block's end reports it.
  reader.growing_bytes_ += field.size() + sizeof(std::string);
  if (reader.growing_bytes_ <= kRecordLimitBytes) reader.growing_.fields.emplace_back(field);
  reader.line_ += static_cast<std::uint64_t>(std::count(field.begin(), field.end(), '\n'));
  reader.after_carriage_return_ = false;
}

void CsvReader::on_end_of_record(int terminator, void* self) {
  auto& reader = *static_cast<CsvReader*>(self);
  const bool second_half = terminator == '\n' && reader.after_carriage_return_;
  if (terminator != -1 && !second_half) ++reader.line_;
  reader.after_carriage_return_ = terminator == '\r';
  if (reader.growing_.fields.empty()) return;
  if (reader.growing_bytes_ > kRecordLimitBytes) return;
  reader.ready_.push_back(std::exchange(reader.growing_, {}));
  reader.growing_bytes_ = 0;
}

void append_csv_field(std::string& line, std::string_view field) {
  if (field.find_first_of("\",\r\n") == std::string_view::npos) {
    line += field;
    return;
  }
  line += '"';
  for (const char c : field) {
    if (c == '"') line += '"';
    line += c;
  }
  line += '"';
}

}  // namespace kzgis::tools
