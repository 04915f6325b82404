#include "tools/project/csv.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tools/support/command_error.h"

namespace {

using kzgis::tools::append_csv_field;
using kzgis::tools::CommandError;
using kzgis::tools::CsvReader;
using kzgis::tools::CsvRecord;

using Records = std::vector<std::pair<std::uint64_t, std::vector<std::string>>>;

Records read_all(const std::string& text) {
  std::istringstream input(text);
  CsvReader reader(input);
  Records records;
  for (CsvRecord record; reader.next(record);) records.emplace_back(record.line, record.fields);
  return records;
}

TEST(CsvReader, SplitsRecordsAndFields) {
  EXPECT_EQ(read_all("a,b\nc,,d\n"), (Records{{1, {"a", "b"}}, {2, {"c", "", "d"}}}));
  EXPECT_EQ(read_all(""), Records{});
}

TEST(CsvReader, ReadsALastLineWithoutAnEnd) {
  EXPECT_EQ(read_all("a\nb,c"), (Records{{1, {"a"}}, {2, {"b", "c"}}}));
}

TEST(CsvReader, CountsLinesThroughEveryKindOfLineEnd) {
  EXPECT_EQ(read_all("a\r\n\r\nb\r\nc"), (Records{{1, {"a"}}, {3, {"b"}}, {4, {"c"}}}));
  EXPECT_EQ(read_all("a\n\n\nb\n"), (Records{{1, {"a"}}, {4, {"b"}}}));
  EXPECT_EQ(read_all("a\rb\r"), (Records{{1, {"a"}}, {2, {"b"}}}));
}

TEST(CsvReader, KeepsQuotedCommasQuotesAndLineEnds) {
  EXPECT_EQ(read_all("\"a,\"\"b\"\"\nc\",d\ne\n"), (Records{{1, {"a,\"b\"\nc", "d"}}, {3, {"e"}}}));
}

TEST(CsvReader, KeepsRecordsThatCrossBlocks) {
  const std::string wide(70000, 'x');
  const Records records = read_all(wide + "," + wide + "\nlast\n");
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].second, (std::vector<std::string>{wide, wide}));
  EXPECT_EQ(records[1], (Records::value_type{2, {"last"}}));
}

TEST(CsvReader, PassesOverAByteOrderMark) {
  EXPECT_EQ(read_all("\xEF\xBB\xBFlat,lon\n"), (Records{{1, {"lat", "lon"}}}));
  EXPECT_EQ(read_all("\xEF\xBB\xBF\"lat\"\n"), (Records{{1, {"lat"}}}));
}

TEST(CsvReader, RefusesAQuoteThatIsNotClosed) {
  EXPECT_THROW(read_all("1,2,\"open\n3,4\n"), CommandError);
}

TEST(CsvReader, RefusesARecordThatNeverEnds) {
  EXPECT_THROW(read_all("\"" + std::string(3000000, 'x')), CommandError);
  EXPECT_THROW(read_all(std::string(3000000, ',')), CommandError);
}

TEST(AppendCsvField, QuotesOnlyWhereItMust) {
  const auto written = [](const std::string& field) {
    std::string line;
    append_csv_field(line, field);
    return line;
  };
  EXPECT_EQ(written("plain text"), "plain text");
  EXPECT_EQ(written("a,b"), "\"a,b\"");
  EXPECT_EQ(written("say \"a\""), "\"say \"\"a\"\"\"");
  EXPECT_EQ(written("two\nlines"), "\"two\nlines\"");
}

}  // namespace
