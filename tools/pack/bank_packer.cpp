// kzgis pack, from records to files: labels, whole arc-seconds, segments of a bounded length.

#include "tools/pack/bank_packer.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <filesystem>
#include <span>
#include <sstream>
#include <vector>

#include "tools/support/command_error.h"
#include "tools/support/degrees.h"
#include "tools/support/input_file.h"
#include "tools/support/output_file.h"
#include "tools/support/progress.h"
#include "tools/support/shape_file.h"

namespace kzgis::tools {

namespace {

/// The points of one line or ring; why not, when a coordinate is no place on the globe.
std::string convert(const Part& part, Segment& line) {
  const auto& [x, y] = part;
  line.lat.clear();
  line.lon.clear();
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (!are_degrees(x[i], y[i])) return "its " + not_degrees(x[i], y[i]);
    const ArcPoint point = to_arc_seconds(y[i], x[i]);
    line.lat.push_back(point.lat);
    line.lon.push_back(point.lon);
  }
  return {};
}

void make_directory(const std::filesystem::path& directory) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) throw CommandError(directory.string() + ": cannot be made: " + error.message());
}

}  // namespace

ArcPoint to_arc_seconds(double lat_deg, double lon_deg) {
  constexpr double kSeconds = 3600.0;
  constexpr std::int32_t kTurn_arcsec = 1296000;
  // The turn is taken off before rounding, which then never leaves 32 bits.
  const auto lon = static_cast<std::int32_t>(std::lround(std::fmod(lon_deg, 360.0) * kSeconds));
  return {static_cast<std::int32_t>(std::lround(lat_deg * kSeconds)),
          (lon + kTurn_arcsec) % kTurn_arcsec};
}

void BankPacker::add_file(const std::string& file, const LabelSources& sources) {
  Shapefile shapes = open_shapefile(file);
  const std::optional<ShapeKind> kind = kind_of(shapes.type());
  if (kind != ShapeKind::lines && kind != ShapeKind::polygons) {
    throw CommandError(file + ": its shape type is " + type_text(shapes.type()) +
                       "; only lines and polygons have outlines to pack");
  }
  const Labels labels(shapes.path(), sources, shapes.size());
  shape_bytes_ += size_of(shapes.path());
  Progress progress("packing " + file, shapes.size());
  const RecordTally tally = walk_records(shapes, file, {1, shapes.size()}, progress, complain_,
                                         [&](std::uint32_t number, const ShapeRecord& record) {
                                           add_record(file, number, record, labels.of(number));
                                         });
  null_records_ += tally.null;
}

void BankPacker::add_record(const std::string& file, std::uint32_t number,
                            const ShapeRecord& record, const Label& label) {
  const std::string place = file + ": " + record_text(number);
  Segment line{label.continent, label.theme, label.level, {}, {}};
  for (std::size_t i = 0; i < record.parts.size(); ++i) {
    const std::string why = convert(part_of(record, i), line);
    if (!why.empty()) {
      complain_(place + why);
    } else if (line.lat.size() < 2) {
      ++short_lines_;
    } else {
      add_line(line, place);
    }
  }
}

/// Adds a line in pieces of at most `longest_` points; a piece begins with the point that the
/// one before it ended with.
void BankPacker::add_line(const Segment& line, const std::string& place) {
  for (std::size_t first = 0; first + 1 < line.lat.size(); first += longest_ - 1) {
    const auto piece = [&](const std::vector<std::int32_t>& all) {
      const auto begin = all.begin() + static_cast<std::ptrdiff_t>(first);
      const std::size_t count = std::min(longest_, all.size() - first);
      return std::vector(begin, begin + static_cast<std::ptrdiff_t>(count));
    };
    const Error error =
        writer_.add({line.continent, line.theme, line.level, piece(line.lat), piece(line.lon)});
    if (error) fail({error.kind, place + error.message});
  }
}

// All files are complete, under temporary names, before the first gets its own.
void BankPacker::write(const std::string& directory, std::ostream& summary) const {
  std::uint64_t files = 0;
  std::uint64_t segments = 0;
  std::uint64_t points = 0;
  std::uintmax_t bytes = 0;
  std::deque<OutputFile> outputs;
  std::ostringstream lines;
  for (std::size_t c = 0; c < kContinentCount; ++c) {
    for (std::size_t t = 0; t < kThemeCount; ++t) {
      const auto continent = static_cast<Continent>(c);
      const auto theme = static_cast<Theme>(t);
      if (!writer_.has(theme)) continue;
      const std::string place = databank_file_name(continent, theme);
      const auto path = std::filesystem::path(directory) / place;
      make_directory(path.parent_path());
      OutputFile& output = outputs.emplace_back(path.string(), directory);
      writer_.write_file(continent, theme, output.stream());
      output.finish();
      const DatabankWriter::FileSize size = writer_.size_of(continent, theme);
      lines << place << ": " << size.segments << " segments, " << size.points << " points, "
            << size.bytes << " bytes\n";
      ++files;
      segments += size.segments;
      points += size.points;
      bytes += size.bytes;
    }
  }
  OutputFile::commit_together(outputs);
  summary << lines.str() << directory << ": " << files << " files, " << segments << " segments, "
          << points << " points, " << bytes << " bytes";
  if (shape_bytes_ > 0) {
    summary << " (" << (bytes * 100 + shape_bytes_ / 2) / shape_bytes_ << " % of the shapefiles' "
            << shape_bytes_ << ')';
  }
  summary << '\n';
  if (null_records_ + short_lines_ > 0) {
    summary << "left out: " << null_records_ << " null records, " << short_lines_
            << " lines of less than two points\n";
  }
}

}  // namespace kzgis::tools
