#include "tools/pack/bank_packer.h"

#include <cmath>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <span>
#include <sstream>
#include <vector>

#include "tools/databank/names.h"
#include "tools/support/command_error.h"
#include "tools/support/output_file.h"
#include "tools/support/progress.h"
#include "tools/support/shape_records.h"

namespace kzgis::tools {

namespace {

using databank::ArcPoint;
using databank::BankWriter;

/// The points of one line or ring; why not, when a coordinate is no place on the globe.
std::string convert(std::span<const double> x, std::span<const double> y,
                    std::vector<ArcPoint>& line) {
  line.clear();
  for (std::size_t i = 0; i < x.size(); ++i) {
    constexpr double kWidest = 720.0;  // some files run from 0 to 360, or once more round
    if (!(std::fabs(x[i]) <= kWidest) || !(std::fabs(y[i]) <= 90.0)) {
      std::array<char, 80> place{};
      std::snprintf(place.data(), place.size(), "%.9g, %.9g", x[i], y[i]);
      return std::string("its coordinates are not degrees: ") + place.data();
    }
    line.push_back(databank::to_arc_seconds(y[i], x[i]));
  }
  return {};
}

void make_directory(const std::filesystem::path& directory) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) throw CommandError(directory.string() + ": cannot be made: " + error.message());
}

}  // namespace

void BankPacker::add_file(const std::string& file, const LabelSources& sources) {
  ShapeRecords records(file);
  if (records.type() != shape_type::arc && records.type() != shape_type::polygon) {
    throw CommandError(file + ": its shape type is " + shape_type_name(records.type()) +
                       "; only lines and polygons have outlines to pack");
  }
  const Labels labels(file, sources, records.count());
  shape_bytes_ += records.shape_bytes();
  Progress progress("packing " + file, static_cast<std::uint64_t>(records.count()));
  const RecordTally tally = walk_records(records, {1, records.count()}, progress, complain_,
                                         [&](kz_long number, const ShapeRecord& record) {
                                           add_record(file, number, record, labels.of(number));
                                         });
  null_records_ += static_cast<std::uint64_t>(tally.null);
}

void BankPacker::add_record(const std::string& file, kz_long number, const ShapeRecord& record,
                            const Label& label) {
  Theme& theme = themes_[static_cast<std::size_t>(label.theme)];
  BankWriter& writer = theme.continents[static_cast<std::size_t>(label.continent)];
  theme.packed = true;
  const auto xs = ShapeRecords::split(record, record.x);
  const auto ys = ShapeRecords::split(record, record.y);
  if (!xs || !ys) return;
  std::vector<ArcPoint> line;
  for (std::size_t part = 0; part < xs->size(); ++part) {
    const std::string why = convert((*xs)[part], (*ys)[part], line);
    if (!why.empty()) {
      complain_(file + ": record " + std::to_string(number) + ": " + why);
    } else if (line.size() < 2) {
      ++short_lines_;
    } else if (!writer.add_line(line, label.level, longest_)) {
      throw CommandError(file + ": record " + std::to_string(number) +
                         ": an outline file cannot be longer than 4 GiB");
    }
  }
}

void BankPacker::write(const std::string& directory, std::ostream& summary) const {
  std::uint64_t files = 0;
  std::uint64_t segments = 0;
  std::uint64_t points = 0;
  std::uintmax_t bytes = 0;
  std::deque<OutputFile> outputs;
  std::ostringstream lines;
  for (std::size_t c = 0; c < NumMapSections; ++c) {
    for (std::size_t t = 0; t < themes_.size(); ++t) {
      if (!themes_[t].packed) continue;
      const BankWriter& writer = themes_[t].continents[c];
      const auto place =
          std::filesystem::path(databank::continent_directory(static_cast<mapSections>(c))) /
          databank::theme_file(static_cast<overlaySections>(t));
      const auto path = std::filesystem::path(directory) / place;
      make_directory(path.parent_path());
      OutputFile& output = outputs.emplace_back(path.string(), directory);
      writer.write(output.stream());
      output.finish();
      lines << place.string() << ": " << writer.segments() << " segments, " << writer.points()
            << " points, " << writer.bytes() << " bytes\n";
      ++files;
      segments += writer.segments();
      points += writer.points();
      bytes += writer.bytes();
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
