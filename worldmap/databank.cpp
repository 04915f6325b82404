// Reading a whole data bank, file by file: which segments a query asks for, and what is told of
// files that are damaged.
//
// The extents in the dictionary are claims, and wrong in some files.  They select nothing here:
// a box is asked of the points themselves, so that its answer is exact.  What that costs is the
// decoding of segments far away, about ten nanoseconds a point.

#include "kzgis/databank.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <utility>

#include "kzgis/status.h"
#include "platform/no_memory.h"
#include "worldmap/bank_scan.h"
#include "worldmap/open_bank.h"

namespace kzgis {

namespace {

using worldmap::BankScan;
using worldmap::kTurn_arcsec;
using worldmap::Obstacle;
using worldmap::OpenedBank;

constexpr double kArcSecPerDegree = 3600.0;
constexpr double kMostTurns_deg = 720.0;

double degrees(std::int64_t arcsec) { return static_cast<double>(arcsec) / kArcSecPerDegree; }

/// The least whole arc-second that lies at or above an angle, where a place in arc-seconds
/// lies at the double nearest to its degrees: a box made from a point's degrees holds it.
std::int64_t first_at_or_above(double angle_deg) {
  auto arcsec = static_cast<std::int64_t>(std::floor(angle_deg * kArcSecPerDegree)) - 1;
  while (degrees(arcsec) < angle_deg) ++arcsec;
  return arcsec;
}
/// The greatest that lies at or below it.
std::int64_t last_at_or_below(double angle_deg) { return -first_at_or_above(-angle_deg); }

/// A box of whole arc-seconds, on the turn of longitudes that its western end lies on.
///
/// A place lies in it when the way from the western end eastwards to the place is no longer than
/// the box is wide.  That one comparison holds for every turn, and for boxes across the meridian
/// at which longitudes begin anew.  A box narrower than an arc-second may hold nothing: its width
/// is then negative.
class ArcBox {
 public:
  /// Before: the box is one (see `why_no_box`).
  explicit ArcBox(const Box& box)
      : south_(first_at_or_above(std::clamp(box.min_y, -90.0, 90.0))),
        north_(last_at_or_below(std::clamp(box.max_y, -90.0, 90.0))),
        west_(first_at_or_above(box.min_x)),
        width_(last_at_or_below(box.max_x) - west_) {
    if (box.min_y > 90.0 || box.max_y < -90.0) north_ = south_ - 1;
    // Turns are added to the eastern end until it lies in the east.
    if (box.min_x > box.max_x) {
      const double turns = std::ceil((box.min_x - box.max_x) / 360.0);
      width_ += static_cast<std::int64_t>(turns) * kTurn_arcsec;
    }
  }

  bool holds(std::int32_t lat, std::int32_t lon) const {
    if (lat < south_ || lat > north_) return false;
    const std::int64_t way = (lon - west_) % kTurn_arcsec;  // from the western end
    return (way < 0 ? way + kTurn_arcsec : way) <= width_;
  }

 private:
  std::int64_t south_, north_;
  std::int64_t west_, width_;
};

/// A query that was found to be one.
struct Wanted {
  std::array<bool, kThemeCount> themes{};
  std::array<bool, kContinentCount> continents{};
  std::array<bool, kLevelCount> levels{};
  std::optional<ArcBox> box;

  bool asks_for(Continent continent, Theme theme) const {
    return continents[static_cast<std::size_t>(continent)] &&
           themes[static_cast<std::size_t>(theme)];
  }
};

/// Null when the box is one.  A comparison with NaN is false, so that NaN is refused too.
const char* why_no_box(const Box& box) {
  const bool turns =
      std::fabs(box.min_x) <= kMostTurns_deg && std::fabs(box.max_x) <= kMostTurns_deg;
  if (!turns) return "the longitudes of a box lie between -720 and 720 degrees";
  if (!(box.min_y <= box.max_y)) return "the south of a box lies at or below its north";
  return nullptr;
}

/// Turns a query into something that is quick to ask, unless it asks for what cannot be.
Result<Wanted> check(const DatabankQuery& query) {
  Wanted wanted;
  wanted.themes.fill(query.themes.empty());
  for (const Theme theme : query.themes) {
    const auto number = static_cast<std::size_t>(theme);
    if (number >= kThemeCount) {
      return Error{ErrorKind::bad_argument, "there is no theme " + std::to_string(number)};
    }
    wanted.themes[number] = true;
  }
  wanted.continents.fill(query.continents.empty());
  for (const Continent continent : query.continents) {
    const auto number = static_cast<std::size_t>(continent);
    if (number >= kContinentCount) {
      return Error{ErrorKind::bad_argument, "there is no continent " + std::to_string(number)};
    }
    wanted.continents[number] = true;
  }
  wanted.levels.fill(query.levels.empty());
  for (const int level : query.levels) {
    if (level < 0 || level >= kLevelCount) {
      return Error{ErrorKind::bad_argument,
                   "there is no level " + std::to_string(level) + "; there are 0 to 15"};
    }
    wanted.levels[static_cast<std::size_t>(level)] = true;
  }
  if (query.box) {
    if (const char* const why = why_no_box(*query.box)) return Error{ErrorKind::bad_argument, why};
    wanted.box.emplace(*query.box);
  }
  return wanted;
}

/// In the order in which segments are promised to come.
template <typename Use>
void for_each_file(Use use) {
  for (std::size_t c = 0; c < kContinentCount; ++c) {
    for (std::size_t t = 0; t < kThemeCount; ++t) {
      use(static_cast<Continent>(c), static_cast<Theme>(t));
    }
  }
}

/// Reads the files of one bank, one after another; the directory and the query are borrowed.
class BankReader {
 public:
  BankReader(const std::string& directory, const Wanted& wanted)
      : directory_(directory), wanted_(wanted) {
    for_each_file([&](Continent continent, Theme theme) {
      if (wanted.asks_for(continent, theme)) ++files_;
    });
  }

  Result<Databank> read();

 private:
  void read_file(Continent continent, Theme theme);
  void scan_file(const std::string& path, std::FILE* stream, Segment segment);
  bool asks_for(const BankScan& scan) const;
  void damaged(const std::string& path, Error error);
  void report(const std::string& name, std::size_t done, std::size_t of);
  bool has_any_file() const;
  std::string path_of(const std::string& name) const {
    return directory_ + (directory_.ends_with('/') ? "" : "/") + name;
  }

  const std::string& directory_;
  const Wanted& wanted_;
  Databank bank_;
  bool opened_ = false;  // any of the files
  bool no_memory_ = false;
  std::size_t files_ = 0;
  std::size_t files_done_ = 0;
  int reported_ = -1;
};

Result<Databank> BankReader::read() {
  for_each_file([this](Continent continent, Theme theme) {
    if (no_memory_ || !wanted_.asks_for(continent, theme)) return;
    read_file(continent, theme);
    ++files_done_;
  });
  if (no_memory_) throw std::bad_alloc();
  if (!opened_ && !bank_.damaged.empty()) return std::move(bank_.damaged.front().error);
  if (!opened_ && !has_any_file()) {
    return Error{ErrorKind::cannot_read, directory_ + ": holds no data bank: there is no " +
                                             databank_file_name(Continent::africa, Theme::coasts) +
                                             " in it, nor any other of its files"};
  }
  report("data bank", 1, 1);
  return std::move(bank_);
}

/// Whether there is a file that was not asked for.
bool BankReader::has_any_file() const {
  bool any = false;
  for_each_file([&](Continent continent, Theme theme) {
    if (any || wanted_.asks_for(continent, theme)) return;
    any = !worldmap::open_bank(path_of(databank_file_name(continent, theme))).missing;
  });
  return any;
}

/// Reads one file, if it is there.
void BankReader::read_file(Continent continent, Theme theme) {
  const std::string name = databank_file_name(continent, theme);
  const std::string path = path_of(name);
  report(name, 0, 1);
  OpenedBank opened = worldmap::open_bank(path);
  if (opened.missing) return;
  if (opened.stream == nullptr) {
    damaged(path, std::move(opened.error));
  } else {
    opened_ = true;
    scan_file(path, opened.stream.get(), {continent, theme, 0, {}, {}});
  }
}

/// @param segment  carries continent and theme
void BankReader::scan_file(const std::string& path, std::FILE* stream, Segment segment) {
  const auto scan = std::make_unique<BankScan>(stream);  // too large for small stacks
  const Obstacle obstacle = scan->start();
  if (obstacle != Obstacle::none) {
    damaged(path, worldmap::error_of(path, obstacle));
    return;
  }
  const std::string name = databank_file_name(segment.continent, segment.theme);
  // Of a segment that is not sound nothing comes: where its points go wrong cannot be told.
  while (scan->next()) {
    report(name, scan->number() - 1, scan->count());
    const unsigned level = scan->entry().level;
    if (level >= kLevelCount || !wanted_.levels[level]) continue;
    if (!scan->walk() || !asks_for(*scan)) continue;
    segment.level = static_cast<int>(level);
    segment.lat.assign(scan->lat().begin(), scan->lat().end());
    segment.lon.assign(scan->lon().begin(), scan->lon().end());
    bank_.segments.push_back({segment.continent, segment.theme, segment.level,
                              std::move(segment.lat), std::move(segment.lon)});
  }
  if (scan->flaw_count() == 0) return;
  std::string message = path + ": " + scan->flaws().front();
  if (scan->flaw_count() > 1) {
    message += "; " + std::to_string(scan->flaw_count() - 1) + " more flaws";
  }
  damaged(path, {ErrorKind::bad_data, std::move(message)});
}

/// Whether a sound segment is a line that the box takes.
bool BankReader::asks_for(const BankScan& scan) const {
  if (scan.lat().size() < 2) return false;
  if (!wanted_.box) return true;
  for (std::size_t i = 0; i < scan.lat().size(); ++i) {
    if (wanted_.box->holds(scan.lat()[i], scan.lon()[i])) return true;
  }
  return false;
}

void BankReader::damaged(const std::string& path, Error error) {
  if (error.kind == ErrorKind::out_of_memory) {
    no_memory_ = true;  // of this process, and nothing that is wrong with the file
  } else {
    bank_.damaged.push_back({path, std::move(error)});
  }
}

/// Tells the handler how much is done, whenever that is another number of percents: `done` of
/// `of` parts of the current file.  The end of all is told once, by itself.
void BankReader::report(const std::string& name, std::size_t done, std::size_t of) {
  const double files =
      static_cast<double>(files_done_) +
      (files_done_ < files_ ? static_cast<double>(done) / static_cast<double>(of) : 0.0);
  const int percent = static_cast<int>(100.0 * files / static_cast<double>(files_));
  if (percent == reported_) return;
  reported_ = percent;
  OMstatus_check(percent, name.c_str(), 0);
}

/// Widens an extent by the points of a segment; those that are off the globe count as lying on
/// its rim.
void include(const BankScan& scan, bool first, Extent& extent) {
  const auto [south, north] = std::minmax_element(scan.lat().begin(), scan.lat().end());
  const auto [west, east] = std::minmax_element(scan.lon().begin(), scan.lon().end());
  const auto lat = [](std::int32_t value) {
    return std::clamp(value, -worldmap::kPole_arcsec, worldmap::kPole_arcsec);
  };
  const auto lon = [](std::int32_t value) { return std::min(value, kTurn_arcsec - 1); };
  const Extent own{lat(*north), lat(*south), lon(*east), lon(*west)};
  extent = first ? own
                 : Extent{std::max(extent.north, own.north), std::min(extent.south, own.south),
                          std::max(extent.east, own.east), std::min(extent.west, own.west)};
}

/// Sums up one file, of which every segment is walked.
Result<DatabankFile> inspect(const std::string& path) {
  const OpenedBank opened = worldmap::open_bank(path);
  if (opened.stream == nullptr) return opened.error;
  const auto scan = std::make_unique<BankScan>(opened.stream.get());
  const Obstacle obstacle = scan->start();
  if (obstacle != Obstacle::none) return worldmap::error_of(path, obstacle);

  DatabankFile file;
  file.file_bytes = scan->file_bytes();
  file.dictionary_offset_bytes = scan->header().dictionary_offset;
  file.claimed_segments = scan->header().count;
  while (scan->next()) {
    static_cast<void>(scan->walk());
    const std::uint64_t points = scan->lat().size();
    if (points > 0) include(*scan, file.total.points == 0, file.extent);
    const worldmap::Entry& entry = scan->entry();
    file.entries.push_back({{entry.max_lat, entry.min_lat, entry.max_lon, entry.min_lon},
                            entry.offset,
                            entry.level,
                            points});
    const auto count = [points](DatabankFile::Count& sum) {
      ++sum.segments;
      sum.points += points;
    };
    count(file.total);
    if (entry.level < kLevelCount) count(file.levels[entry.level]);
  }
  file.flaws = scan->flaws();
  if (scan->flaw_count() > file.flaws.size()) {
    file.flaws.push_back(std::to_string(scan->flaw_count() - file.flaws.size()) + " more flaws");
  }
  return file;
}

}  // namespace

std::string databank_file_name(Continent continent, Theme theme) {
  const auto c = static_cast<std::size_t>(continent);
  const auto t = static_cast<std::size_t>(theme);
  if (c >= kContinentCount || t >= kThemeCount) return {};
  return std::string(worldmap::kContinentDirectories[c]) + "/" + worldmap::kThemeFiles[t];
}

Result<Databank> read_databank(const std::string& directory, const DatabankQuery& query) {
  try {
    const Result<Wanted> wanted = check(query);
    if (!wanted) return wanted.error();
    return BankReader(directory, *wanted).read();
  } catch (const std::bad_alloc&) {
    return no_memory();
  }
}

Result<DatabankFile> inspect_databank_file(const std::string& path) {
  try {
    return inspect(path);
  } catch (const std::bad_alloc&) {
    return no_memory();
  }
}

}  // namespace kzgis
