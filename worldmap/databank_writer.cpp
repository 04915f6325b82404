// Outline files, written so that readers of strict habits get every point back.
//
// Three habits of the classic reader decide what is written: it compares extents strictly and looks
// at the western one alone where its box crosses longitude 0; it never uses the point that the last
// delta leads to; and it reads a negative long as ones' complement.  A file is header, dictionary,
// segments, in this order.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <new>
#include <ostream>
#include <span>
#include <system_error>
#include <utility>

#include "kzgis/databank.h"
#include "kzgis/filetools.h"
#include "platform/no_memory.h"
#include "worldmap/layout.h"

namespace kzgis {

namespace {

using namespace worldmap;

void put_u16(std::string& bytes, unsigned value) {
  bytes += static_cast<char>(value & 0xFFU);
  bytes += static_cast<char>(value >> 8U & 0xFFU);
}

void put_u32(std::string& bytes, std::uint32_t value) {
  put_u16(bytes, value & 0xFFFFU);
  put_u16(bytes, value >> 16U);
}

void put_long(std::string& bytes, std::int32_t value) {
  put_u32(bytes, static_cast<std::uint32_t>(value < 0 ? value - 1 : value));
}

/// One half of a long delta.  Bit 14 of its high word marks the short form and stays clear:
/// the sign stands in bit 15 alone.
void put_long_half(std::string& bytes, std::int32_t delta) {
  const auto bits = static_cast<std::uint32_t>(delta);
  put_u16(bytes, bits >> 16U & ~unsigned{kShortDelta});
  put_u16(bytes, bits & 0xFFFFU);
}

/// The way to the next point.  The short form reaches 64 arc-seconds, two kilometres, and takes
/// most steps of a coast.
void put_delta(std::string& bytes, std::int32_t lon, std::int32_t lat) {
  if (-64 <= lon && lon <= 63 && -128 <= lat && lat <= 127) {
    const unsigned high = static_cast<unsigned>(lon < 0 ? lon + 256 : lon + 64);
    put_u16(bytes, high << 8U | (static_cast<unsigned>(lat) & 0xFFU));
    return;
  }
  put_long_half(bytes, lon);
  put_long_half(bytes, lat);
}

/// The way from one longitude to another, the shorter way round: half a turn goes east, as readers
/// come to the same place either way.
std::int32_t way_east(std::int32_t from, std::int32_t to) {
  const std::int32_t way = to - from;
  if (way > kHalfTurn_arcsec) return way - kTurn_arcsec;
  return way <= -kHalfTurn_arcsec ? way + kTurn_arcsec : way;
}

/// The ends of a segment, kept off the edges of the globe.
///
/// A map compares strictly: a segment takes part when its south end lies below the box's
/// north, its east end beyond the box's west, and so on.  One that runs along a pole or
/// the meridian of Greenwich would take part in no box at all, so its ends are moved by
/// the one arc-second that lets it in.  One that crosses the meridian takes the full turn.
Extent extent_of(const Segment& segment) {
  const auto [south, north] = std::minmax_element(segment.lat.begin(), segment.lat.end());
  const auto [west, east] = std::minmax_element(segment.lon.begin(), segment.lon.end());
  Extent extent{*north, *south, *east, *west};
  for (std::size_t i = 1; i < segment.lon.size(); ++i) {
    if (std::abs(segment.lon[i] - segment.lon[i - 1]) <= kHalfTurn_arcsec) continue;
    extent.west = 0;
    extent.east = kTurn_arcsec - 1;
    break;
  }
  extent.north = std::max(extent.north, 1 - kPole_arcsec);
  extent.south = std::min(extent.south, kPole_arcsec - 1);
  extent.east = std::max(extent.east, 1);
  extent.west = std::clamp(extent.west, 1, kTurn_arcsec - 2);
  return extent;
}

/// Why a segment cannot be written; null when it can.
const char* why_not(const Segment& segment) {
  const auto lies = [](const std::vector<std::int32_t>& values, std::int32_t from,
                       std::int32_t to) {
    return std::all_of(values.begin(), values.end(),
                       [=](std::int32_t value) { return from <= value && value <= to; });
  };
  if (static_cast<std::size_t>(segment.continent) >= kContinentCount) {
    return "a segment of no continent";
  }
  if (static_cast<std::size_t>(segment.theme) >= kThemeCount) return "a segment of no theme";
  if (segment.level < 0 || segment.level >= kLevelCount) {
    return "a segment's level is not 0 to 15";
  }
  if (segment.lat.size() != segment.lon.size()) {
    return "a segment has not as many latitudes as longitudes";
  }
  if (segment.lat.size() < 2) return "a segment has less than two points";
  if (!lies(segment.lat, -kPole_arcsec, kPole_arcsec)) {
    return "a latitude is not -324000 to 324000 arc-seconds";
  }
  if (!lies(segment.lon, 0, kTurn_arcsec - 1)) {
    return "a longitude is not 0 to 1295999 arc-seconds";
  }
  return nullptr;
}

/// Appends a segment's header and deltas.
void put_segment(std::string& data, const Segment& segment) {
  const std::size_t count = segment.lat.size();
  put_long(data, segment.lon[0]);
  put_long(data, segment.lat[0]);
  put_u32(data, 0);
  // Readers never use the point that the last delta leads to: the last point is written
  // twice, and nothing is lost.
  put_u32(data, static_cast<std::uint32_t>(count + 1));
  put_u16(data, 0);
  for (std::size_t i = 1; i < count; ++i) {
    put_delta(data, way_east(segment.lon[i - 1], segment.lon[i]),
              segment.lat[i] - segment.lat[i - 1]);
  }
  put_delta(data, 0, 0);
}

/// A file under a temporary name beside its own, where a rename replaces one by the other in a
/// single step.  The temporary file goes when it was not renamed.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::filesystem::path path)
      : path_(std::move(path)), temporary_(path_.string() + ".kzgis.part") {}
  ~TemporaryFile() {
    std::error_code ignored;
    if (!temporary_.empty()) std::filesystem::remove(temporary_, ignored);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  TemporaryFile(TemporaryFile&& other) noexcept
      : path_(std::move(other.path_)), temporary_(std::exchange(other.temporary_, {})) {}

  const std::filesystem::path& path() const { return path_; }
  const std::filesystem::path& temporary() const { return temporary_; }
  /// @return whether it has its own name now
  bool rename() {
    std::error_code error;
    std::filesystem::rename(temporary_, path_, error);
    if (!error) temporary_.clear();
    return !error;
  }

 private:
  std::filesystem::path path_;
  std::filesystem::path temporary_;
};

/// What a failed write is told as; the host's own reason is lost in the stream.
Error cannot_write(const std::filesystem::path& path) {
  return {ErrorKind::cannot_write, path.string() + ": cannot be written"};
}

}  // namespace

const DatabankWriter::File& DatabankWriter::file(Continent continent, Theme theme) const {
  static const File none;
  const auto c = static_cast<std::size_t>(continent);
  const auto t = static_cast<std::size_t>(theme);
  return c < kContinentCount && t < kThemeCount ? files_[c][t] : none;
}

DatabankWriter::FileSize DatabankWriter::size_of(Continent continent, Theme theme) const {
  const File& one = file(continent, theme);
  return {one.entries.size(), one.points,
          kHeaderBytes + one.entries.size() * kEntryBytes + one.data.size()};
}

bool DatabankWriter::has(Theme theme) const {
  for (std::size_t c = 0; c < kContinentCount; ++c) {
    if (!file(static_cast<Continent>(c), theme).entries.empty()) return true;
  }
  return false;
}

// Bytes are made as segments come: what stays in memory is the file itself, two bytes a point for
// the most part.  Offsets are counted from the first segment, since how long the dictionary in
// front will be shows only at the end.
Error DatabankWriter::add(const Segment& segment) {
  if (const char* const why = why_not(segment)) return {ErrorKind::bad_argument, why};
  // Offsets are 32 bits.  This is the most that the segment can add.
  const std::uint64_t added =
      kEntryBytes + kSegmentHeaderBytes + segment.lat.size() * std::uint64_t{kLongDeltaBytes};
  if (size_of(segment.continent, segment.theme).bytes + added >
      std::numeric_limits<std::uint32_t>::max()) {
    return {ErrorKind::cannot_write, "an outline file cannot be longer than 4 GiB"};
  }
  File& target =
      files_[static_cast<std::size_t>(segment.continent)][static_cast<std::size_t>(segment.theme)];
  const std::size_t offset = target.data.size();
  const std::size_t entries = target.entries.size();
  try {
    target.entries.push_back({extent_of(segment), static_cast<std::uint32_t>(offset),
                              static_cast<std::uint16_t>(segment.level)});
    put_segment(target.data, segment);
  } catch (const std::bad_alloc&) {
    target.entries.resize(entries);
    target.data.resize(offset);
    return no_memory();
  }
  target.points += segment.lat.size();
  return {};
}

void DatabankWriter::write_file(Continent continent, Theme theme, std::ostream& out) const {
  const File& one = file(continent, theme);
  std::string front;
  put_u32(front, kMagic);
  put_u32(front, kHeaderBytes);
  put_u32(front, static_cast<std::uint32_t>(one.entries.size()));
  put_u32(front, 0);
  put_u32(front, 0);
  // How long the dictionary is shows only here, and the segments follow it.
  const std::size_t data_start = kHeaderBytes + one.entries.size() * kEntryBytes;
  std::uint32_t identifier = 0;
  for (const Entry& entry : one.entries) {
    put_u32(front, ++identifier);
    put_long(front, entry.extent.north);
    put_long(front, entry.extent.south);
    put_long(front, entry.extent.east);
    put_long(front, entry.extent.west);
    put_u32(front, static_cast<std::uint32_t>(data_start + entry.offset_bytes));
    put_u16(front, 0);
    put_u16(front, entry.level);
  }
  out << front << one.data;
}

// Before the first renaming every file is complete on disk, so that a full disk changes nothing.
Error DatabankWriter::write(const std::string& directory) const {
  try {
    std::array<char, kPathBytes> expanded{};
    if (FILEmap_variables(directory.c_str(), expanded.data()) == nullptr) {
      return {ErrorKind::cannot_write, directory + ": the name is too long"};
    }
    const std::filesystem::path root = expanded.data();
    std::vector<TemporaryFile> files;
    for (std::size_t c = 0; c < kContinentCount; ++c) {
      for (std::size_t t = 0; t < kThemeCount; ++t) {
        const auto continent = static_cast<Continent>(c);
        const auto theme = static_cast<Theme>(t);
        if (!has(theme)) continue;
        files.emplace_back(root / databank_file_name(continent, theme));
        std::error_code error;
        std::filesystem::create_directories(files.back().path().parent_path(), error);
        std::ofstream out(files.back().temporary(), std::ios::binary);
        if (out) write_file(continent, theme, out);
        out.close();
        if (!out) return cannot_write(files.back().path());
      }
    }
    for (TemporaryFile& file : files) {
      if (!file.rename()) return cannot_write(file.path());
    }
    return {};
  } catch (const std::bad_alloc&) {
    return no_memory();
  }
}

}  // namespace kzgis
