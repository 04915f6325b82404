// Outline files, written so that readers of strict habits get every point back.

#include "tools/databank/bank_writer.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace kzgis::databank {

namespace {

void put_u16(std::string& bytes, unsigned value) {
  bytes += static_cast<char>(value & 0xFFU);
  bytes += static_cast<char>(value >> 8U & 0xFFU);
}

void put_u32(std::string& bytes, std::uint32_t value) {
  put_u16(bytes, value & 0xFFFFU);
  put_u16(bytes, value >> 16U);
}

/// Readers take a negative value for ones' complement and add one.
void put_i32(std::string& bytes, std::int32_t value) {
  put_u32(bytes, static_cast<std::uint32_t>(value < 0 ? value - 1 : value));
}

/// One half of a long delta: a high word of 15 bits, whose bit 14 must stay clear because
/// it marks the short form, and a low word.
void put_long_half(std::string& bytes, std::int32_t delta) {
  const auto bits = static_cast<std::uint32_t>(delta);
  put_u16(bytes, bits >> 16U & ~kShortForm);
  put_u16(bytes, bits & 0xFFFFU);
}

void put_delta(std::string& bytes, std::int32_t lon, std::int32_t lat) {
  if (-64 <= lon && lon <= 63 && -128 <= lat && lat <= 127) {
    // Bit 7 of the high byte is the sign: 0x40 to 0x7F are 0 to 63, 0xC0 to 0xFF -64 to -1.
    const unsigned high = static_cast<unsigned>(lon < 0 ? lon + 256 : lon + 64);
    put_u16(bytes, high << 8U | (static_cast<unsigned>(lat) & 0xFFU));
    return;
  }
  put_long_half(bytes, lon);
  put_long_half(bytes, lat);
}

/// The way from one longitude to another, the shorter way round.
std::int32_t way_east(std::int32_t from, std::int32_t to) {
  const std::int32_t way = to - from;
  if (way > kHalfTurn) return way - kFullTurn;
  return way <= -kHalfTurn ? way + kFullTurn : way;
}

/// The ends of a segment, kept off the edges of the globe.
///
/// Readers compare strictly: a segment takes part when its south end lies below the box's
/// north, its east end beyond the box's west, and so on.  One that runs along a pole or
/// the meridian of Greenwich would take part in no box at all, so its ends are moved by
/// the one arc-second that lets it in.  One that crosses the meridian takes the full turn.
Extent extent_of(std::span<const ArcPoint> points) {
  Extent extent{points[0].lat, points[0].lat, points[0].lon, points[0].lon};
  bool crosses = false;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const ArcPoint& p = points[i];
    extent.north = std::max(extent.north, p.lat);
    extent.south = std::min(extent.south, p.lat);
    extent.east = std::max(extent.east, p.lon);
    extent.west = std::min(extent.west, p.lon);
    crosses = crosses || std::abs(p.lon - points[i - 1].lon) > kHalfTurn;
  }
  if (crosses) {
    extent.west = 0;
    extent.east = kFullTurn - 1;
  }
  extent.north = std::max(extent.north, 1 - kPole);
  extent.south = std::min(extent.south, kPole - 1);
  extent.east = std::max(extent.east, 1);
  extent.west = std::clamp(extent.west, 1, kFullTurn - 2);
  return extent;
}

}  // namespace

ArcPoint to_arc_seconds(double lat_deg, double lon_deg) {
  constexpr double kSeconds = 3600.0;
  const double turn = std::fmod(lon_deg, 360.0);
  const auto lon = static_cast<std::int32_t>(std::lround(turn * kSeconds));
  return {static_cast<std::int32_t>(std::lround(lat_deg * kSeconds)),
          (lon + kFullTurn) % kFullTurn};
}

bool BankWriter::add_line(std::span<const ArcPoint> line, int level, std::size_t longest) {
  // What the line can add at most, cuts included: a long delta and its share of an entry,
  // a segment header and a closing delta for every point.
  constexpr std::uint64_t kMostPerPoint =
      kLongDeltaBytes + kEntryBytes + kSegmentHeaderBytes + kShortDeltaBytes;
  if (bytes() + line.size() * kMostPerPoint > std::numeric_limits<std::uint32_t>::max()) {
    return false;
  }
  for (std::size_t first = 0; first + 1 < line.size(); first += longest - 1) {
    add_segment(line.subspan(first, std::min(longest, line.size() - first)), level);
  }
  return true;
}

void BankWriter::add_segment(std::span<const ArcPoint> points, int level) {
  entries_.push_back({extent_of(points), data_.size(), level});
  points_ += points.size();
  put_i32(data_, points[0].lon);
  put_i32(data_, points[0].lat);
  put_u32(data_, 0);
  // Readers never classify the point that the last delta leads to: the last point is
  // written twice, and nothing is lost.
  put_u32(data_, static_cast<std::uint32_t>(points.size() + 1));
  put_u16(data_, 0);
  for (std::size_t i = 1; i < points.size(); ++i) {
    put_delta(data_, way_east(points[i - 1].lon, points[i].lon), points[i].lat - points[i - 1].lat);
  }
  put_delta(data_, 0, 0);
}

void BankWriter::write(std::ostream& out) const {
  std::string front;
  put_u32(front, kMagic);
  put_u32(front, kHeaderBytes);
  put_u32(front, static_cast<std::uint32_t>(entries_.size()));
  put_u32(front, 0);
  put_u32(front, 0);
  const std::size_t data_start = kHeaderBytes + entries_.size() * kEntryBytes;
  std::uint32_t identifier = 0;
  for (const Entry& entry : entries_) {
    put_u32(front, ++identifier);
    put_i32(front, entry.extent.north);
    put_i32(front, entry.extent.south);
    put_i32(front, entry.extent.east);
    put_i32(front, entry.extent.west);
    put_u32(front, static_cast<std::uint32_t>(data_start + entry.offset));
    put_u16(front, 0);
    put_u16(front, static_cast<unsigned>(entry.level));
  }
  out << front << data_;
}

}  // namespace kzgis::databank
