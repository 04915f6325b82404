// kzgis project: each record of a CSV stream with three numbers more behind it.  Records come and
// go one by one, so that input of any length needs the memory of one block.

#include "tools/project/project_command.h"

#include <kzgis/projection.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "tools/project/csv.h"
#include "tools/support/command_error.h"
#include "tools/support/number_text.h"
#include "tools/support/output_file.h"
#include "tools/support/progress.h"
#include "tools/support/projection_options.h"
#include "tools/support/report.h"

namespace kzgis::tools {

namespace {

struct Options {
  ProjectionOptions projection;
  std::vector<std::string> columns;  ///< names or positions, two or three
  bool inverse = false;
  bool dms = false;
  std::string input = "-";
  std::string output = "-";
};

/// Where the two or three input numbers stand in a record, counted from 0.
struct Columns {
  std::array<std::size_t, 3> at{0, 1, 2};
  std::size_t count = 2;
};

using Triple = std::array<double, 3>;

/// The names by which a header's columns are known, in the order of the input numbers.
const std::array<std::vector<std::string>, 3>& known_names(bool inverse) {
  static const std::array<std::vector<std::string>, 3> kGeographic{
      {{"lat", "latitude"}, {"lon", "lng", "long", "longitude"}, {"alt", "altitude", "elevation"}}};
  static const std::array<std::vector<std::string>, 3> kWorld{{{"x"}, {"y"}, {"z"}}};
  return inverse ? kWorld : kGeographic;
}

std::optional<std::size_t> find_column(const std::vector<std::string>& header,
                                       const std::vector<std::string>& names) {
  for (std::size_t i = 0; i < header.size(); ++i) {
    if (std::find(names.begin(), names.end(), UtString(header[i]).lower().str()) != names.end())
      return i;
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

/// Turns records into the same records with three numbers more.
class RecordProjector {
 public:
  explicit RecordProjector(const Options& options)
      : options_(options),
        projection_(
            make_projection(options.projection, options.projection.base.value_or(NumberPair{}))) {}

  /// Settles the columns by the first record; true when that record is a header: when
  /// columns are asked for by name, or none of its fields, two at least, is a number.
  bool read_header(const std::vector<std::string>& fields) {
    const bool by_name = std::any_of(options_.columns.begin(), options_.columns.end(),
                                     [](const auto& name) { return !parse_position(name); });
    const auto is_number = [this](const std::string& text) {
      return parse_angle(text).has_value();
    };
    const bool header =
        by_name || (fields.size() > 1 && std::none_of(fields.begin(), fields.end(), is_number));
    if (!options_.columns.empty()) {
      columns_.count = options_.columns.size();
      for (std::size_t i = 0; i < columns_.count; ++i) {
        const std::string& column = options_.columns[i];
        const auto position = parse_position(column);
        const auto named = find_column(fields, {UtString(column).lower().str()});
        if (!position && !named) throw CommandError("no column is named " + in_quotes(column));
        columns_.at.at(i) = position ? *position - 1 : *named;
      }
      return header;
    }
    if (!header) {
      columns_.count = fields.size() > 2 && is_number(fields[2]) ? 3 : 2;
      return false;
    }
    const auto& names = known_names(options_.inverse);
    const auto first = find_column(fields, names[0]);
    const auto second = find_column(fields, names[1]);
    const auto third = find_column(fields, names[2]);
    if (first && second) {
      columns_.at = {*first, *second, third.value_or(0)};
      columns_.count = third ? 3 : 2;
    }
    return true;
  }

  /// Computes the three numbers; on failure says why in `reason`.
  std::optional<Triple> convert(const std::vector<std::string>& fields, std::string& reason) {
    Triple input{};
    for (std::size_t i = 0; i < columns_.count; ++i) {
      const std::size_t column = columns_.at.at(i);
      if (column >= fields.size()) {
        reason = "there is no column " + std::to_string(column + 1);
        return std::nullopt;
      }
      const bool angle = !options_.inverse && i < 2;
      const auto number = angle ? parse_angle(fields[column]) : parse_number(fields[column]);
      if (!number) {
        reason = in_quotes(fields[column]) + " is not " + (angle ? "an angle" : "a number");
        return std::nullopt;
      }
      input.at(i) = *number;
    }
    if (options_.inverse) {
      const LatLon* const point = projection_.FromTo(input.data());
      return Triple{point->fetchLat(), point->fetchLon(), point->fetchAltitude()};
    }
    if (input[0] < -90.0 || input[0] > 90.0) {
      reason = "latitude " + in_quotes(fields[columns_.at[0]]) + " is not between -90 and 90";
      return std::nullopt;
    }
    double* world = world_.release();
    const int result = projection_.FromTo(LatLon(input[0], input[1]), input[2], &world);
    world_.reset(world);
    if (result < 0) {
      reason = "the projection refuses it";
      return std::nullopt;
    }
    return Triple{world[0], world[1], world[2]};
  }

 private:
  std::optional<double> parse_angle(const std::string& text) const {
    return options_.dms && !options_.inverse ? parse_dms(text) : parse_number(text);
  }

  const Options& options_;
  Projection projection_;
  std::unique_ptr<double[]> world_;
  Columns columns_;
};

/// Reads "A,B" or "A,B,C".  Throws `UsageError`.
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

/// The library answers null, for any point, where a projection has no way back.
bool has_inverse(projType type) { return Projection(type).FromTo(0.0, 0.0, 0.0) != nullptr; }

/// Throws `CommandError` before any input is read.
void check_options(const Options& options) {
  check_projection(options.projection);
  if (options.inverse && !has_inverse(options.projection.type())) {
    throw CommandError(options.projection.name + " has no inverse");
  }
}

/// Appends a result to a line; the third number is a length also where the others are angles.
void append_result(std::string& line, const Triple& result, bool angles_as_dms) {
  for (std::size_t i = 0; i < 3; ++i) {
    line += ',';
    if (angles_as_dms && i < 2) {
      append_dms(line, result.at(i));
    } else {
      append_number(line, result.at(i));
    }
  }
}

/// Returns the exit code: 0 when every line was converted.
int run(const Options& options) {
  check_options(options);
  const bool from_standard_input = options.input == "-";
  const std::string input_name = from_standard_input ? "standard input" : options.input;
  std::ifstream file;
  std::uint64_t total = 0;
  if (!from_standard_input) {
    errno = 0;
    file.open(options.input, std::ios::binary);
    std::error_code unknown_size;
    if (std::filesystem::is_directory(options.input, unknown_size)) errno = EISDIR;
    if (!file || errno == EISDIR) {
      throw CommandError(options.input + ": cannot be read: " + std::strerror(errno));
    }
    total = std::filesystem::file_size(options.input, unknown_size);
    if (unknown_size) total = 0;
  }
  std::istream& input = from_standard_input ? std::cin : file;
  OutputFile output(options.output);

  CsvReader reader(input);
  CsvRecord record;
  RecordProjector projector(options);
  Progress progress("projecting", total, options.output == "-");
  std::uint64_t skipped = 0;
  std::string line;
  try {
    for (bool first = true; reader.next(record); first = false) {
      line.clear();
      for (std::size_t i = 0; i < record.fields.size(); ++i) {
        if (i > 0) line += ',';
        append_csv_field(line, record.fields[i]);
      }
      if (first && projector.read_header(record.fields)) {
        line += options.inverse ? ",lat,lon,alt\n" : ",x,y,z\n";
        output.stream() << line;
        continue;
      }
      std::string reason;
      const auto result = projector.convert(record.fields, reason);
      if (!result) {
        ++skipped;
        report(input_name + ": line " + std::to_string(record.line) + ": " + reason);
        continue;
      }
      append_result(line, *result, options.dms && options.inverse);
      line += '\n';
      output.stream() << line;
      if (!output.stream()) break;
      progress.update(reader.bytes_read());
    }
  } catch (const CommandError& error) {
    throw CommandError(input_name + ": " + error.what());
  }
  if (input.bad()) throw CommandError(input_name + ": cannot be read");
  output.commit();
  if (skipped > 0) {
    report(input_name + ": " + std::to_string(skipped) +
           (skipped == 1 ? " line was skipped" : " lines were skipped"));
    return 1;
  }
  return 0;
}

constexpr const char* kExamples = R"(
Records are comma-separated values: latitude and longitude in degrees, and an
altitude if there is one; with --inverse x and y, and z.  A header names the
columns (lat, lon, alt; x, y, z); without one they are the first, the second
and, where it holds a number, the third.  Each record comes out as it went in,
with the result behind it.  One that cannot be read is reported with its line
and skipped, and the exit code is 1.

World coordinates have the unit of the radius, metres by default.  Longitudes
run from 0 to 360 eastwards, and differences to the base longitude are taken
as they stand: 10 W of base 0 lies 350 degrees to the east.

Examples:
  echo 48.2,16.37 | kzgis project --to mercator
  kzgis project --to orthographic --base 45,10 --columns Latitude,Longitude towns.csv
  kzgis project --to globe --inverse --dms points.csv -o places.csv
)";

}  // namespace

void add_project_command(CLI::App& app, int& exit_code) {
  const auto options = std::make_shared<Options>();
  CLI::App& command =
      *app.add_subcommand("project", "Turn coordinates into world coordinates, or back");
  add_projection_options(command, options->projection);
  command.get_option("--to")->required();
  add_radius_option(command, options->projection);
  command.add_flag("--inverse", options->inverse, "World coordinates to latitudes and longitudes");
  command.add_flag("--dms", options->dms,
                   "Angles are degrees:minutes:seconds, read as 45:30:00, 45d30m0s or 45d30'0\"S");
  command
      .add_option_function<std::string>(
          "--columns",
          [options](const std::string& text) { options->columns = parse_columns(text); },
          "Names or positions (from 1) of latitude, longitude and altitude (of x, y and z)")
      ->type_name("A,B[,C]");
  command.add_option("FILE", options->input, "CSV file; standard input without one");
  command.add_option("-o,--output", options->output, "File to write; standard output without one")
      ->type_name("OUT");
  command.footer(kExamples);
  command.callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace kzgis::tools
