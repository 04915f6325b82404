// A pass over the segments of an outline file: what can be used of it, and what is wrong.

#include "worldmap/bank_scan.h"

#include <algorithm>
#include <utility>

#include "kzgis/databank.h"

namespace kzgis::worldmap {

namespace {

constexpr std::uint64_t kMostFlaws = 20;

struct Ends {
  std::int32_t low = 0, high = 0;
};

/// The least and the largest of some numbers; 0 of none.
Ends ends_of(std::span<const std::int32_t> numbers) {
  if (numbers.empty()) return {};
  // Without a branch: the compiler takes several numbers at once.
  Ends ends{numbers[0], numbers[0]};
  for (const std::int32_t number : numbers) {
    ends.low = std::min(ends.low, number);
    ends.high = std::max(ends.high, number);
  }
  return ends;
}

}  // namespace

// The bound on points is that of the classic reader: whatever a sound file holds is far below it.
BankScan::BankScan(std::FILE* stream) : file_(stream), points_left_(file_.size() + kSparePoints) {}

// Entries that the end of the file cuts off do not count, here as for the classic reader; here it
// is told.
Obstacle BankScan::start() {
  const Obstacle obstacle = read_dictionary(file_, dictionary_);
  if (obstacle != Obstacle::none) return obstacle;
  const std::uint64_t offset = header().dictionary_offset;
  if (offset > file_bytes()) {
    add_flaw("the dictionary lies at byte " + std::to_string(offset) + ", past the end");
  } else if (count() < header().count) {
    add_flaw("the header says " + std::to_string(header().count) +
             " segments; the dictionary holds " + std::to_string(count()));
  }
  return Obstacle::none;
}

// A level that does not exist makes no difference to a segment's points, and is told at once.
bool BankScan::next() {
  if (next_ == count()) return false;
  if (points_left_ == 0) {
    end_for_shared_bytes();
    return false;
  }
  ++next_;
  points_ = 0;
  if (entry().level >= kLevelCount) {
    add_segment_flaw("is of level " + std::to_string(entry().level) + "; there are 0 to 15");
  }
  return true;
}

/// More points than a file can hold are the same bytes again and again.
void BankScan::end_for_shared_bytes() {
  if (std::exchange(shares_bytes_, true)) return;
  add_segment_flaw("shares its bytes with others; the rest is left out");
}

/// How many points of a segment are worth having memory for, from behind its header on: every
/// point but the first needs a delta, of two bytes at least.
std::size_t BankScan::room_for_points(kz_ulong claimed) const {
  const std::uint64_t used = claimed == 0 ? 0 : claimed - 1;
  const std::uint64_t deltas_at = std::uint64_t{entry().offset} + kSegmentHeaderBytes;
  const std::uint64_t bytes = file_bytes() - std::min(file_bytes(), deltas_at);
  return static_cast<std::size_t>(std::min({used, bytes / kShortDeltaBytes + 1, points_left_}));
}

// A segment has the points that a classic map uses: the count says one more.  It is sound when the
// file holds all of its deltas, the last one included, although no point is used behind it.
bool BankScan::walk() {
  points_ = 0;
  SegmentHeader segment;
  const bool found = file_.seek(entry().offset) != 0 && file_.read(segment);
  if (!found) {
    add_segment_flaw("lies past the end, at byte " + std::to_string(entry().offset));
    return false;
  }
  const std::size_t room = room_for_points(segment.count);
  if (lat_.size() < room) {
    lat_.resize(room);
    lon_.resize(room);
  }
  // Before each pass: (lat, lon) is the next point, and the file holds the way to it.
  Deltas deltas(file_, segment.unused);
  kz_long lon = segment.lon;
  kz_long lat = segment.lat;
  bool whole = true;
  while (whole && points_ < room) {
    lat_[points_] = lat;
    lon_[points_] = lon;
    ++points_;
    whole = deltas.has_next();
    if (whole) deltas.move(lon, lat);
  }
  points_left_ -= points_;
  // A first longitude of a whole turn is the one that a `LatLon` has no place for but 0.
  if (points_ > 0 && lon_[0] == kTurn_arcsec) lon_[0] = 0;

  whole = whole && points_ + 1 >= segment.count;
  if (!whole && points_left_ == 0) {
    end_for_shared_bytes();
  } else if (!whole) {
    add_segment_flaw("claims " + std::to_string(segment.count) + " points; the file ends after " +
                     std::to_string(points_));
  }
  const bool on_globe = lies_on_globe();
  if (!on_globe) {
    add_segment_flaw("leaves the globe");
  } else if (!keeps_within_extent()) {
    add_segment_flaw("leaves the ends that its dictionary entry gives");
  }
  return whole && on_globe;
}

/// Behind the first point every longitude is one: it was brought there.
bool BankScan::lies_on_globe() const {
  if (points_ > 0 && lon_[0] >= kTurn_arcsec) return false;
  const auto [south, north] = ends_of(lat());
  return -kPole_arcsec <= south && north <= kPole_arcsec;
}

/// Whether the points lie between the ends that the entry gives, give or take an arc-second:
/// readers compare extents strictly, and files are written with that in mind.  A western end
/// beyond the eastern one means the way across longitude 0.
///
/// Before: the points lie on the globe.  The ends may be the largest numbers there are.
bool BankScan::keeps_within_extent() const {
  if (points_ == 0) return true;
  const Entry& ends = entry();
  const auto [south, north] = ends_of(lat());
  if (ends.min_lat > south + 1 || north - 1 > ends.max_lat) return false;
  if (ends.min_lon <= ends.max_lon) {
    const auto [west, east] = ends_of(lon());
    return ends.min_lon <= west + 1 && east - 1 <= ends.max_lon;
  }
  return std::all_of(lon().begin(), lon().end(), [&ends](std::int32_t lon) {
    return ends.min_lon <= lon + 1 || lon - 1 <= ends.max_lon;
  });
}

void BankScan::add_flaw(const std::string& what) {
  if (++flaw_count_ <= kMostFlaws) flaws_.push_back(what);
}

void BankScan::add_segment_flaw(const std::string& what) {
  add_flaw("segment " + std::to_string(number()) + " " + what);
}

}  // namespace kzgis::worldmap
