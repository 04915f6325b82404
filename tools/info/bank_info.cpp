// kzgis info on outline files, and on the directory that holds a bank of them.

#include "tools/info/bank_info.h"

#include <kzgis/databank.h>
#include <kzgis/worldmap.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "tools/support/bank_names.h"
#include "tools/support/command_error.h"
#include "tools/support/input_file.h"
#include "tools/support/progress.h"
#include "tools/support/report.h"

namespace kzgis::tools {

namespace {

using Json = InfoReport::Json;

double degrees(std::int32_t arc_seconds) { return arc_seconds / 3600.0; }

template <typename... Values>
std::string text_of(const char* format, Values... values) {
  std::array<char, 160> line{};
  std::snprintf(line.data(), line.size(), format, values...);
  return line.data();
}

/// "south to north, west to east", longitudes from 0 to 360 as the file has them.
std::string extent_text(const Extent& extent) {
  return text_of("latitude %.4f to %.4f, longitude %.4f to %.4f", degrees(extent.south),
                 degrees(extent.north), degrees(extent.west), degrees(extent.east));
}

void print_segments(const DatabankFile& bank) {
  for (std::size_t i = 0; i < bank.entries.size(); ++i) {
    const DatabankFile::Entry& entry = bank.entries[i];
    std::cout << i + 1 << ": level " << entry.level << ", " << entry.points << " points, "
              << extent_text(entry.extent) << ", at byte " << entry.offset_bytes << '\n';
  }
}

/// The file as a whole, then a line for each level that it has.
void print_summary(const std::string& file, const DatabankFile& bank) {
  std::cout << "Outline file " << file << ": " << bank.file_bytes << " bytes\n"
            << "Header: " << bank.claimed_segments << " segments, dictionary at byte "
            << bank.dictionary_offset_bytes << '\n';
  if (bank.total.points > 0) std::cout << "Extent: " << extent_text(bank.extent) << '\n';
  std::cout << "Level  segments     points\n";
  for (std::size_t level = 0; level < bank.levels.size(); ++level) {
    const DatabankFile::Count& counts = bank.levels[level];
    if (counts.segments == 0) continue;
    std::cout << text_of("%5zu %9ju %10ju\n", level, std::uintmax_t{counts.segments},
                         std::uintmax_t{counts.points});
  }
  std::cout << text_of("total %9ju %10ju\n", std::uintmax_t{bank.total.segments},
                       std::uintmax_t{bank.total.points});
}

void complain_of_flaws(const std::string& file, const DatabankFile& bank, InfoReport& info) {
  for (const std::string& flaw : bank.flaws) info.add_error(file + ": " + flaw);
}

Json box_of(const Extent& extent) {
  return box_object(
      {degrees(extent.west), degrees(extent.south), degrees(extent.east), degrees(extent.north)});
}

using Levels = std::array<DatabankFile::Count, kLevelCount>;

/// An object for each level that has a segment.
Json levels_of(const Levels& levels) {
  Json list = Json::array();
  for (std::size_t level = 0; level < levels.size(); ++level) {
    if (levels[level].segments == 0) continue;
    list.push_back(
        {{"level", level}, {"segments", levels[level].segments}, {"points", levels[level].points}});
  }
  return list;
}

void describe(const DatabankFile& bank, bool lists, Json& document) {
  document["bytes"] = bank.file_bytes;
  document["claimed_segments"] = bank.claimed_segments;
  document["box"] = bank.total.points > 0 ? box_of(bank.extent) : Json(nullptr);
  document["segments"] = bank.total.segments;
  document["points"] = bank.total.points;
  document["levels"] = levels_of(bank.levels);
  if (!lists) return;
  Json& list = document["list"] = Json::array();
  for (std::size_t i = 0; i < bank.entries.size(); ++i) {
    const DatabankFile::Entry& entry = bank.entries[i];
    list.push_back({{"segment", i + 1},
                    {"level", entry.level},
                    {"points", entry.points},
                    {"box", box_of(entry.extent)},
                    {"offset", entry.offset_bytes}});
  }
}

/// The files that a bank has of one theme, in the order of the continents.
std::vector<std::string> files_of(const std::string& directory, Theme theme) {
  std::vector<std::string> files;
  for (std::size_t c = 0; c < kContinentCount; ++c) {
    const auto file =
        std::filesystem::path(directory) / databank_file_name(static_cast<Continent>(c), theme);
    // Where it cannot be told whether there is one, reading it will complain.
    std::error_code error;
    if (std::filesystem::exists(file, error) || error) files.push_back(file.string());
  }
  return files;
}

/// The levels of a theme, in its files together.
Levels add_up(const std::vector<std::string>& files, InfoReport& info) {
  Levels sums{};
  for (const std::string& file : files) {
    const auto bank = inspect_databank_file(file);
    if (!bank) {
      if (bank.error().kind == ErrorKind::out_of_memory) fail(bank.error());
      info.add_error(bank.error().message);
      continue;
    }
    complain_of_flaws(file, *bank, info);
    for (std::size_t level = 0; level < sums.size(); ++level) {
      sums[level].segments += bank->levels[level].segments;
      sums[level].points += bank->levels[level].points;
    }
  }
  return sums;
}

/// Prints a line for each level of a theme that has a segment.
void print_theme(Theme theme, const Levels& sums) {
  for (std::size_t level = 0; level < sums.size(); ++level) {
    if (sums[level].segments == 0) continue;
    std::cout << text_of("%-10s %5zu %9ju %10ju\n", theme_name(theme), level,
                         std::uintmax_t{sums[level].segments}, std::uintmax_t{sums[level].points});
  }
}

/// Prints the report of a classic map of the whole globe, for which every level of every theme
/// was loaded.
///
/// The number of polylines does not depend on the precision: the coarse one that a map begins
/// with spares the memory of points that its report does not count.
void print_report(const std::string& directory) {
  WorldMap map(directory.c_str());
  // 360 degrees would be kept as 0.  A map cuts its box off to whole arc-seconds, so this is
  // 1295999 to it, the last there is.
  constexpr double kLastLongitude = 360.0 - 0.5 / 3600.0;
  *map.fetchLowLeftBoundary() = LatLon(-90.0, 0.0);
  *map.fetchUpRightBoundary() = LatLon(90.0, kLastLongitude);
  for (overlaySections theme = Geographic; theme != Plates; increment(theme)) {
    for (infoLevels level = Level0; level != NumInfoLevels; increment(level)) {
      map.setPOI(theme, level, 1);
    }
  }
  {
    const LibraryProgress progress("loading " + directory, true);
    map.readData();
  }
  std::cout << map;
}

}  // namespace

void report_bank_file(InfoReport& info) {
  const std::string path = expanded(info.file());
  if (const std::string why = why_not_readable(path); !why.empty()) throw CommandError(why);
  const auto bank = inspect_databank_file(path);
  if (!bank) fail(bank.error());
  complain_of_flaws(info.file(), *bank, info);
  if (info.json()) {
    describe(*bank, info.lists(), info.document());
    return;
  }
  if (info.lists()) print_segments(*bank);
  print_summary(info.file(), *bank);
}

void report_bank(InfoReport& info) {
  const std::string directory = expanded(info.file());
  std::array<std::vector<std::string>, kThemeCount> files;
  bool any = false;
  for (std::size_t t = 0; t < kThemeCount; ++t) {
    files[t] = files_of(directory, static_cast<Theme>(t));
    any = any || !files[t].empty();
  }
  if (!any) {
    // The library says what such a directory lacks.
    const auto bank = read_databank(directory);
    if (!bank) fail(bank.error());
  }
  if (!info.json()) {
    print_report(directory);
    std::cout << "Theme      level polylines     points\n";
  }
  Json& themes = info.document()["themes"] = Json::array();
  for (std::size_t t = 0; t < kThemeCount; ++t) {
    const auto theme = static_cast<Theme>(t);
    const Levels sums = add_up(files[t], info);
    themes.push_back(
        {{"theme", theme_name(theme)}, {"files", files[t].size()}, {"levels", levels_of(sums)}});
    if (!info.json()) print_theme(theme, sums);
  }
}

}  // namespace kzgis::tools
