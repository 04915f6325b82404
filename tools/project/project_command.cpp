// kzgis project: each record of a CSV stream with three numbers more behind it.  Records come and
// go one by one, so that input of any length needs the memory of one block.

#include "tools/project/project_command.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "tools/project/columns.h"
#include "tools/project/conversion.h"
#include "tools/project/csv.h"
#include "tools/project/shapefile_projection.h"
#include "tools/support/command_error.h"
#include "tools/support/degrees.h"
#include "tools/support/number_text.h"
#include "tools/support/output_file.h"
#include "tools/support/progress.h"
#include "tools/support/projection_options.h"
#include "tools/support/report.h"
#include "tools/support/shape_file.h"

namespace kzgis::tools {

namespace {

struct Options {
  ProjectionOptions projection;
  RecordLayout layout;
  bool classic = false;
  std::string input = "-";
  std::string output = "-";
  std::string format;  ///< of what a shapefile becomes
  std::optional<double> tolerance;
};

/// The file to read and its size in bytes, 0 when that is not known.
struct Input {
  std::ifstream file;
  std::uint64_t bytes = 0;
};

Input open_input(const std::string& name) {
  Input input;
  errno = 0;
  input.file.open(name, std::ios::binary);
  std::error_code unknown_size;
  if (std::filesystem::is_directory(name, unknown_size)) errno = EISDIR;
  if (!input.file || errno == EISDIR) {
    throw CommandError(name + ": cannot be read: " + std::strerror(errno));
  }
  input.bytes = std::filesystem::file_size(name, unknown_size);
  if (unknown_size) input.bytes = 0;
  return input;
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

/// Makes a line of output out of every record.
class LineMaker {
 public:
  LineMaker(const Options& options, std::string input_name)
      : options_(options),
        input_name_(std::move(input_name)),
        columns_(options.layout),
        convert_(options.classic ? classic_conversion(options.projection, options.layout.inverse)
                                 : chart_conversion(options.projection, options.layout.inverse)) {}

  /// @return false when the record could not be read, which is reported, and gives no line
  bool make_line(const CsvRecord& record, std::string& line) {
    line.clear();
    for (std::size_t i = 0; i < record.fields.size(); ++i) {
      if (i > 0) line += ',';
      append_csv_field(line, record.fields[i]);
    }
    const bool first = std::exchange(first_, false);
    if (first && columns_.read_header(record.fields)) {
      line += options_.layout.inverse ? ",lat,lon,alt\n" : ",x,y,z\n";
      return true;
    }
    if (!append_point(record, line)) return false;
    line += '\n';
    return true;
  }

  std::uint64_t skipped() const { return skipped_; }
  /// 0 when every record has a result.
  int exit_code() const { return complete_ ? 0 : 1; }

 private:
  // A point without a place leaves its fields empty, as they come back from here: what stands on
  // the other lines can still be told by its number.
  bool append_point(const CsvRecord& record, std::string& line) {
    constexpr const char* kNothing = ",,,";
    if (columns_.are_empty(record.fields)) {
      complain(record, "there is no point in it");
      line += kNothing;
      return true;
    }
    std::string reason;
    const std::optional<Triple> point = columns_.read(record.fields, reason);
    const std::optional<Triple> result = point ? convert_(*point) : std::nullopt;
    if (result) {
      append_result(line, *result, options_.layout.dms && options_.layout.inverse);
      return true;
    }
    if (point && !options_.classic) {
      complain(record, "the projection has no place for " + pair_text((*point)[0], (*point)[1]));
      line += kNothing;
      return true;
    }
    complain(record, point ? "the projection refuses it" : reason);
    ++skipped_;
    return false;
  }

  void complain(const CsvRecord& record, const std::string& reason) {
    report(input_name_ + ": line " + std::to_string(record.line) + ": " + reason);
    complete_ = false;
  }

  const Options& options_;
  std::string input_name_;
  Columns columns_;
  Conversion convert_;
  bool first_ = true;
  bool complete_ = true;
  std::uint64_t skipped_ = 0;
};

/// Throws `UsageError` for an option that means nothing for such an input.
void check_input(const CLI::App& command, bool shapefile) {
  const auto refuse = [&command](std::initializer_list<const char*> names, const char* reason) {
    for (const char* const name : names) {
      if (command.get_option(name)->count() > 0) throw UsageError(name, reason);
    }
  };
  if (shapefile) {
    refuse({"--inverse", "--classic", "--dms", "--columns"},
           "it is for points in a table, not for a shapefile");
  } else {
    refuse({"--format", "--tolerance"}, "it is for a shapefile, whose name ends in .shp");
  }
}

/// Returns the exit code: 0 when every line was converted.
int run(const Options& options) {
  const bool from_standard_input = options.input == "-";
  const std::string input_name = from_standard_input ? "standard input" : options.input;
  LineMaker lines(options, input_name);  // before any input is read: options may make no sense
  Input file;
  if (!from_standard_input) file = open_input(options.input);
  std::istream& input = from_standard_input ? std::cin : file.file;
  OutputFile output(options.output);

  CsvReader reader(input);
  CsvRecord record;
  Progress progress("projecting", file.bytes, options.output == "-");
  std::string line;
  try {
    while (reader.next(record)) {
      if (!lines.make_line(record, line)) continue;
      output.stream() << line;
      if (!output.stream()) break;
      progress.update(reader.bytes_read());
    }
  } catch (const CommandError& error) {
    throw CommandError(input_name + ": " + error.what());
  }
  if (input.bad()) throw CommandError(input_name + ": cannot be read");
  output.commit();
  if (lines.skipped() > 0) {
    report(input_name + ": " + std::to_string(lines.skipped()) +
           (lines.skipped() == 1 ? " line was skipped" : " lines were skipped"));
  }
  return lines.exit_code();
}

constexpr const char* kExamples = R"(
Records are comma-separated values: latitude and longitude in degrees, and an
altitude if there is one; with --inverse x and y, and z.  A header names the
columns (lat, lon, alt; x, y, z); without one they are the first, the second
and, where it holds a number, the third.  Each record comes out as it went in,
with the result behind it.  One that cannot be read is reported with its line
and skipped.  A point that the projection has no place for, such as a pole of
mercator, is reported too and its result left empty.  Either way, the exit code
is 1.

World coordinates have the unit of the radius, metres by default, and count from
the base point (mercator's y from the equator, the globe's x, y and z from its
centre).  Longitudes count from the base, up to 180 degrees west and east of it:
10 W of base 0 lies in the west, and 180 itself at the western end.  Longitudes
that come back lie in [-180, 180).

A shapefile comes out as its outlines on the map, with its attributes: as .geojson or
as another .shp, whose .prj says what the coordinates are on a sphere (in metres, which
is what --radius then means).  Lines and polygons are cut where the map ends, and their
sides, straight in degrees, become chords of the curves that they are on the map: no
point of a curve is farther than --tolerance from its chord.  What an odd number of
rings lies around is inside.  Records that have nothing on the map, and points without a
place, are left out and counted; a record that is damaged is named, and the exit code is
1.  Z and M stay behind.

With --classic both ways are those of the class Projection of the library, to the
last bit: longitudes run from 0 to 360, and differences to the base longitude are
taken as they stand, so that 10 W of base 0 lies 350 degrees to the east; pi is a
little short; conics need --parallels above 0, bonne and some conics a --base off
the equator; six projections have no inverse.  What has no place gets numbers all
the same, such as the far side of gnomonic mirrored.

Examples:
  echo 48.2,16.37 | kzgis project --to mercator
  kzgis project --to orthographic --base 45,10 --columns Latitude,Longitude towns.csv
  kzgis project countries.shp --to albers --base 48,15 -o europe.shp
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
  command.add_flag("--inverse", options->layout.inverse,
                   "World coordinates to latitudes and longitudes");
  command.add_flag("--classic", options->classic,
                   "World coordinates in the meaning of the class Projection, to the last bit");
  command.add_flag("--dms", options->layout.dms,
                   "Angles are degrees:minutes:seconds, read as 45:30:00, 45d30m0s or 45d30'0\"S");
  command
      .add_option_function<std::string>(
          "--columns",
          [options](const std::string& text) { options->layout.columns = parse_columns(text); },
          "Names or positions (from 1) of latitude, longitude and altitude (of x, y and z)")
      ->type_name("A,B[,C]");
  command.add_option("FILE", options->input,
                     "CSV file, or a shapefile (.shp); CSV on standard input without one");
  command
      .add_option("-o,--output", options->output,
                  "File to write, of a shapefile .geojson or .shp; standard output without one")
      ->type_name("OUT");
  add_feature_format_option(command, options->format);
  add_tolerance_option(command, options->tolerance);
  command.footer(kExamples);
  command.callback([options, &command, &exit_code] {
    const bool shapefile = is_shapefile_name(options->input);
    check_input(command, shapefile);
    exit_code = shapefile ? project_shapefile({options->input, options->output, options->format,
                                               options->projection, options->tolerance})
                          : run(*options);
  });
}

}  // namespace kzgis::tools
