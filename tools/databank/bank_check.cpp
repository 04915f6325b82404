// A look at an outline file as a whole, with an eye of its own: nothing here is shared with
// the library's reader, so that each can be held against the other.

#include "tools/databank/bank_check.h"

#include <algorithm>
#include <utility>

#include "tools/support/command_error.h"
#include "tools/support/input_file.h"

namespace kzgis::databank {

using tools::CommandError;

namespace {

// A file that is damaged all through is not worth a line for every segment.
constexpr int kMostComplaints = 20;

/// The bytes of a file; offsets outside them are never read.
class Bytes {
 public:
  explicit Bytes(std::string bytes) : bytes_(std::move(bytes)) {}

  std::uint64_t size() const { return bytes_.size(); }
  bool holds(std::uint64_t offset, std::uint64_t length) const {
    return offset <= size() && length <= size() - offset;
  }
  unsigned u16(std::uint64_t at) const { return byte(at) | byte(at + 1) << 8U; }
  std::uint32_t u32(std::uint64_t at) const { return u16(at) | u16(at + 2) << 16U; }
  std::int32_t i32(std::uint64_t at) const {
    const auto value = static_cast<std::int32_t>(u32(at));
    return value < 0 ? value + 1 : value;
  }

 private:
  unsigned byte(std::uint64_t at) const { return static_cast<unsigned char>(bytes_[at]); }

  std::string bytes_;
};

std::int32_t on_globe(std::int64_t lon) {
  const auto rest = static_cast<std::int32_t>(lon % kFullTurn);
  return rest < 0 ? rest + kFullTurn : rest;
}

/// The value of a high word of a long delta: 15 bits with their sign.
std::int64_t high_part(unsigned word) {
  constexpr unsigned kSign = 0x8000;
  return word >= kSign ? static_cast<std::int64_t>(word | kShortForm) - 0x10000 : word;
}

/// The points of one segment, one after another.
class PointWalk {
 public:
  PointWalk(const Bytes& bytes, std::uint64_t offset)
      : bytes_(bytes),
        at_(offset + kSegmentHeaderBytes),
        lon_(on_globe(bytes.i32(offset))),
        lat_(bytes.i32(offset + 4)) {}

  std::int64_t lat() const { return lat_; }
  std::int32_t lon() const { return lon_; }

  /// Goes on by one delta; false when the file ends within it.
  bool advance() {
    if (!bytes_.holds(at_, kShortDeltaBytes)) return false;
    const unsigned word = bytes_.u16(at_);
    if ((word & kShortForm) != 0) {
      const int high = static_cast<int>(word >> 8U);
      const int low = static_cast<int>(word & 0xFFU);
      move(high >= 0x80 ? high - 0x100 : high - 0x40, low >= 0x80 ? low - 0x100 : low);
      at_ += kShortDeltaBytes;
      return true;
    }
    if (!bytes_.holds(at_, kLongDeltaBytes)) return false;
    const std::int64_t lon = high_part(word) * 0x10000 + bytes_.u16(at_ + 2);
    const std::int64_t lat = high_part(bytes_.u16(at_ + 4)) * 0x10000 + bytes_.u16(at_ + 6);
    const auto sound = [](std::int64_t delta) { return -kFullTurn <= delta && delta <= kFullTurn; };
    if (sound(lon) && sound(lat)) move(lon, lat);
    at_ += kLongDeltaBytes;
    return true;
  }

 private:
  void move(std::int64_t lon, std::int64_t lat) {
    lon_ = on_globe(lon_ + lon);
    lat_ += lat;
  }

  const Bytes& bytes_;
  std::uint64_t at_;
  std::int32_t lon_;
  std::int64_t lat_;
};

/// The entries' ends may be an arc-second off: readers compare strictly, and files are
/// written with that in mind.  They may also be the largest numbers there are.
bool within(const Extent& extent, std::int64_t lat, std::int64_t lon) {
  const bool lat_within = extent.south <= lat + 1 && lat - 1 <= extent.north;
  const bool after_west = extent.west <= lon + 1;
  const bool before_east = lon - 1 <= extent.east;
  return lat_within &&
         (extent.west <= extent.east ? after_west && before_east : after_west || before_east);
}

class Check {
 public:
  Check(Bytes bytes, std::string file, const Complain& complain)
      : bytes_(std::move(bytes)), file_(std::move(file)), complain_(complain) {}

  BankSummary run(const std::function<void(const Segment&)>& each);

 private:
  void fail(const std::string& what) {
    if (++failures_ <= kMostComplaints) complain_(file_ + ": " + what);
  }
  void fail(const Segment& segment, const std::string& what) {
    fail("segment " + std::to_string(segment.number) + " " + what);
  }

  std::uint64_t count_entries();
  Segment read_entry(std::uint64_t index) const;
  void walk(Segment& segment);
  void include(std::int64_t lat, std::int32_t lon);

  Bytes bytes_;
  std::string file_;
  const Complain& complain_;
  std::uint64_t failures_ = 0;
  std::uint64_t deltas_ = 0;
  BankSummary summary_;
};

std::uint64_t Check::count_entries() {
  const std::uint64_t offset = summary_.dictionary_offset_bytes;
  if (!bytes_.holds(offset, 0)) {
    fail("the dictionary lies at byte " + std::to_string(offset) + ", past the end");
    return 0;
  }
  const std::uint64_t room = (bytes_.size() - offset) / kEntryBytes;
  if (summary_.claimed_segments > room) {
    fail("the header says " + std::to_string(summary_.claimed_segments) +
         " segments; the dictionary holds " + std::to_string(room));
  }
  return std::min<std::uint64_t>(room, summary_.claimed_segments);
}

Segment Check::read_entry(std::uint64_t index) const {
  const std::uint64_t at = summary_.dictionary_offset_bytes + index * kEntryBytes;
  Segment segment;
  segment.number = index + 1;
  const auto longitude = [&](std::uint64_t field) {
    const std::int32_t lon = bytes_.i32(at + field);
    return lon < 0 ? on_globe(lon) : lon;
  };
  segment.extent = {bytes_.i32(at + 4), bytes_.i32(at + 8), longitude(12), longitude(16)};
  segment.offset_bytes = bytes_.u32(at + 20);
  segment.level = bytes_.u16(at + 26);
  return segment;
}

void Check::include(std::int64_t lat, std::int32_t lon) {
  const auto clamped = static_cast<std::int32_t>(std::clamp<std::int64_t>(lat, -kPole, kPole));
  Extent& extent = summary_.extent;
  if (summary_.points == 0) extent = {clamped, clamped, lon, lon};
  extent.north = std::max(extent.north, clamped);
  extent.south = std::min(extent.south, clamped);
  extent.east = std::max(extent.east, lon);
  extent.west = std::min(extent.west, lon);
  ++summary_.points;
}

void Check::walk(Segment& segment) {
  if (!bytes_.holds(segment.offset_bytes, kSegmentHeaderBytes)) {
    fail(segment, "lies past the end, at byte " + std::to_string(segment.offset_bytes));
    return;
  }
  const std::uint32_t claimed = bytes_.u32(segment.offset_bytes + 12);
  bool left_ends = false;
  bool left_globe = false;
  PointWalk points(bytes_, segment.offset_bytes);
  for (std::uint32_t i = 1; i < claimed; ++i) {
    // Deltas that are longer together than the file are the same bytes again and again.
    if (++deltas_ > bytes_.size() / kShortDeltaBytes) return;
    left_globe = left_globe || points.lat() < -kPole || points.lat() > kPole;
    left_ends = left_ends || !within(segment.extent, points.lat(), points.lon());
    include(points.lat(), points.lon());
    ++segment.points;
    if (!points.advance()) {
      fail(segment, "claims " + std::to_string(claimed) + " points; the file ends after " +
                        std::to_string(segment.points));
      break;
    }
  }
  if (left_globe) {
    fail(segment, "leaves the globe");
  } else if (left_ends) {
    fail(segment, "leaves the ends that its dictionary entry gives");
  }
}

BankSummary Check::run(const std::function<void(const Segment&)>& each) {
  if (!bytes_.holds(0, kHeaderBytes) || bytes_.u32(0) != kMagic) {
    throw CommandError(file_ + ": not an outline file: it does not begin with 0x20770002");
  }
  summary_.file_bytes = bytes_.size();
  summary_.dictionary_offset_bytes = bytes_.u32(4);
  summary_.claimed_segments = bytes_.u32(8);
  summary_.segments = count_entries();
  for (std::uint64_t i = 0; i < summary_.segments; ++i) {
    Segment segment = read_entry(i);
    walk(segment);
    if (segment.level < kNumLevels) {
      BankSummary::Level& level = summary_.levels[segment.level];
      ++level.segments;
      level.points += segment.points;
    } else {
      fail(segment, "is of level " + std::to_string(segment.level) + "; there are 0 to 15");
    }
    each(segment);
    if (deltas_ > bytes_.size() / kShortDeltaBytes) {
      fail(segment, "shares its bytes with others; the rest is left out");
      break;
    }
  }
  if (failures_ > kMostComplaints) {
    complain_(file_ + ": " + std::to_string(failures_ - kMostComplaints) + " more flaws");
  }
  return summary_;
}

}  // namespace

BankSummary check_bank(const std::string& file, const std::function<void(const Segment&)>& each,
                       const Complain& complain) {
  return Check(Bytes(tools::read_whole(file)), file, complain).run(each);
}

BankSummary check_one_of_bank(const std::string& file, const Complain& complain) {
  try {
    return check_bank(
        file, [](const Segment&) {}, complain);
  } catch (const CommandError& error) {
    complain(error.what());
    return {};
  }
}

}  // namespace kzgis::databank
