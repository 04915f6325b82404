// kzgis info on outline files, and on the directory that holds a bank of them.

#include "tools/info/bank_info.h"

#include <kzgis/worldmap.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <iostream>

#include "tools/databank/bank_check.h"
#include "tools/databank/load.h"
#include "tools/databank/names.h"
#include "tools/support/output_file.h"
#include "tools/support/report.h"

namespace kzgis::tools {

namespace {

using databank::BankSummary;

double degrees(std::int32_t arc_seconds) { return arc_seconds / 3600.0; }

template <typename... Values>
std::string text_of(const char* format, Values... values) {
  std::array<char, 160> line{};
  std::snprintf(line.data(), line.size(), format, values...);
  return line.data();
}

/// "south to north, west to east", longitudes from 0 to 360 as the file has them.
std::string extent_text(const databank::Extent& extent) {
  return text_of("latitude %.4f to %.4f, longitude %.4f to %.4f", degrees(extent.south),
                 degrees(extent.north), degrees(extent.west), degrees(extent.east));
}

void print_segment(const databank::Segment& segment) {
  std::cout << segment.number << ": level " << segment.level << ", " << segment.points
            << " points, " << extent_text(segment.extent) << ", at byte " << segment.offset_bytes
            << '\n';
}

void print_summary(const std::string& file, const BankSummary& bank) {
  std::cout << "Outline file " << file << ": " << bank.file_bytes << " bytes\n"
            << "Header: " << bank.claimed_segments << " segments, dictionary at byte "
            << bank.dictionary_offset_bytes << '\n';
  if (bank.points > 0) std::cout << "Extent: " << extent_text(bank.extent) << '\n';
  std::cout << "Level  segments     points\n";
  for (std::size_t level = 0; level < bank.levels.size(); ++level) {
    const BankSummary::Level& counts = bank.levels[level];
    if (counts.segments == 0) continue;
    std::cout << text_of("%5zu %9ju %10ju\n", level, std::uintmax_t{counts.segments},
                         std::uintmax_t{counts.points});
  }
  std::cout << text_of("total %9ju %10ju\n", std::uintmax_t{bank.segments},
                       std::uintmax_t{bank.points});
}

/// Adds up what the files of one theme hold.
BankSummary sum_of(const std::string& directory, overlaySections theme,
                   const databank::Complain& complain) {
  BankSummary sum;
  for (const std::string& file : databank::files_of(directory, theme)) {
    const BankSummary bank = databank::check_one_of_bank(file, complain);
    for (std::size_t level = 0; level < sum.levels.size(); ++level) {
      sum.levels[level].segments += bank.levels[level].segments;
      sum.levels[level].points += bank.levels[level].points;
    }
  }
  return sum;
}

void print_theme(overlaySections theme, const BankSummary& sum) {
  for (std::size_t level = 0; level < sum.levels.size(); ++level) {
    const BankSummary::Level& counts = sum.levels[level];
    if (counts.segments == 0) continue;
    std::cout << text_of("%-10s %5zu %9ju %10ju\n", databank::theme_name(theme), level,
                         std::uintmax_t{counts.segments}, std::uintmax_t{counts.points});
  }
}

}  // namespace

int print_bank_file_info(const std::string& file, bool each_segment) {
  bool sound = true;
  const auto complain = [&sound](const std::string& line) {
    report(line);
    sound = false;
  };
  const BankSummary bank = databank::check_bank(
      file,
      [each_segment](const databank::Segment& segment) {
        if (each_segment) print_segment(segment);
      },
      complain);
  print_summary(file, bank);
  OutputFile("-").commit();
  return sound ? 0 : 1;
}

int print_bank_info(const std::string& directory) {
  databank::check_is_bank(directory);
  bool sound = true;
  const auto complain = [&sound](const std::string& line) {
    report(line);
    sound = false;
  };
  // The number of polylines does not depend on the precision: the coarse one that a map
  // begins with spares the memory of points that its report does not count.
  WorldMap map(directory.c_str());
  databank::request_everything(map);
  map.readData();
  std::cout << map << "Theme      level polylines     points\n";
  for (overlaySections theme = Geographic; theme != Plates; increment(theme)) {
    print_theme(theme, sum_of(directory, theme, complain));
  }
  OutputFile("-").commit();
  return sound ? 0 : 1;
}

}  // namespace kzgis::tools
