// Comma-separated values as a stream of records, read by libcsv.

#ifndef KZGIS_TOOLS_PROJECT_CSV_H
#define KZGIS_TOOLS_PROJECT_CSV_H

#include <csv.h>

#include <cstdint>
#include <deque>
#include <istream>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace kzgis::tools {

/// One record and the line it begins on, counted from 1.
struct CsvRecord {
  std::uint64_t line = 0;
  std::vector<std::string> fields;
};

/// Reads records one by one, holding no more than one block of the input.
///
/// Quotes, quoted commas and line ends (LF, CRLF, CR) follow RFC 4180; blank lines are
/// passed over.
class CsvReader {
 public:
  explicit CsvReader(std::istream& input);
  ~CsvReader();
  CsvReader(const CsvReader&) = delete;
  CsvReader& operator=(const CsvReader&) = delete;

  /// Gives the next record; false at the end.  Throws `CommandError` when a record
  /// grows beyond 1 MiB, as it does behind a quote that is never closed.
  bool next(CsvRecord& record);

  /// Bytes taken from the input so far.
  std::uint64_t bytes_read() const { return bytes_read_; }

 private:
  static void on_field(void* text, std::size_t length, void* self);
  static void on_end_of_record(int terminator, void* self);
  void read_block();

  std::istream& input_;
  csv_parser parser_{};
  std::deque<CsvRecord> ready_;
  CsvRecord growing_;
  std::size_t growing_bytes_ = 0;
  std::uint64_t line_ = 1;
  std::uint64_t bytes_read_ = 0;
  bool after_carriage_return_ = false;
  bool at_end_ = false;
};

/// Appends one field, in quotes where it needs them.
void append_csv_field(std::string& line, std::string_view field);

}  // namespace kzgis::tools

#endif
