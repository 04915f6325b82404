// Loading one file of the data bank: which of its segments count, and how a segment's
// points become polylines.  Coordinates are whole arc-seconds throughout; what a file
// says is never trusted, so that arithmetic on them wraps in 32 bits.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "kzgis/filetools.h"
#include "kzgis/status.h"
#include "kzgis/worldmap.h"
#include "worldmap/box.h"
#include "worldmap/databank.h"
#include "worldmap/polyline.h"

using namespace kzgis;
using namespace kzgis::worldmap;

namespace {

constexpr kz_long kHalfTurn_arcsec = kTurn_arcsec / 2;

kz_long wrapping_add(kz_long a, kz_long b) {
  return static_cast<kz_long>(static_cast<kz_ulong>(a) + static_cast<kz_ulong>(b));
}
kz_long wrapping_subtract(kz_long a, kz_long b) {
  return static_cast<kz_long>(static_cast<kz_ulong>(a) - static_cast<kz_ulong>(b));
}
kz_long wrapping_multiply(kz_long a, kz_long b) {
  return static_cast<kz_long>(static_cast<kz_ulong>(a) * static_cast<kz_ulong>(b));
}

/// Where a line crosses an edge: moves from `from` by the share reach/run of `rise`.
///
/// Single precision over a 32-bit product, the result truncated; what does not fit 32 bits
/// becomes the smallest number.  Loaded outlines are compared point by point, so that the
/// rounding, and the product's overflow beyond some 13 degrees, are kept
/// (ReaderClipTest.WrapsTheProductInto32Bits).
kz_long cut(kz_long from, kz_long rise, kz_long reach, kz_long run) {
  const auto product = static_cast<float>(wrapping_multiply(rise, reach));
  const float share = product / static_cast<float>(run);
  const float place = share + static_cast<float>(from);
  return place >= -0x1p31F && place < 0x1p31F ? static_cast<kz_long>(place) : INT32_MIN;
}

/// The box between two corners; none when a corner is missing or not finite, since nothing
/// lies in it then.
std::optional<Box> box_between(const LatLon* lower_left, const LatLon* upper_right) {
  for (const LatLon* corner : {lower_left, upper_right}) {
    if (corner == nullptr || !std::isfinite(corner->fetchLat()) ||
        !std::isfinite(corner->fetchLon())) {
      return std::nullopt;
    }
  }
  Box box{};
  lower_left->fetchLat(&box.south);
  lower_left->fetchLon(&box.west);
  upper_right->fetchLat(&box.north);
  upper_right->fetchLon(&box.east);
  box.wraps = box.east < box.west;
  return box;
}

OwnedPolyline new_polyline() {
  try {
    return OwnedPolyline(new Polyline);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

/// Turns the segments of one file into polylines of one collection.
class Tracer {
 public:
  /// A file holds at most one point per two bytes, but its dictionary may name the same
  /// bytes again and again, and a count may go on behind the end of the file, where the
  /// last delta repeats.  What a load decodes is therefore limited: twice what the file can
  /// hold, and as much again as small damaged files need.
  static constexpr std::uint64_t kSparePoints = std::uint64_t{1} << 16;

  Tracer(databank::File& file, const Box& box, kz_long precision_arcsec, Polylines& collection)
      : file_(file),
        box_(box),
        limit_(std::int64_t{precision_arcsec} * precision_arcsec),
        collection_(collection),
        points_left_(file.size() + kSparePoints) {}

  /// Reads the points of a segment, up to the first run inside the box, from behind its
  /// header.
  /// @return null, or the message of a failed allocation
  const char* trace(const databank::SegmentHeader& segment) {
    line_ = new_polyline();
    if (line_ == nullptr) return "CIA: Out of memory preparing new polyline";

    const auto count = static_cast<kz_ulong>(std::min<std::uint64_t>(segment.count, points_left_));
    kz_long lon = segment.lon;
    kz_long lat = segment.lat;
    // The point behind the last delta is decoded and not looked at.
    kz_ulong i = 1;
    for (; i < count; ++i) {
      const bool last = i == count - 1;
      if (box_.holds(lon, lat)) {
        if (const char* const failure = enter(lon, lat, last)) return failure;
      } else if (line_->size() != 0) {
        if (const char* const failure = leave(lon, lat, last)) return failure;
        break;
      }
      kz_long dlon = 0;
      kz_long dlat = 0;
      file_.nextPoint(&dlon, &dlat);
      lat = wrapping_add(lat, dlat);
      lon = databank::wrap_negative(wrapping_add(lon, databank::wrap_negative(dlon)));
      if (lon >= kTurn_arcsec) lon %= kTurn_arcsec;
    }
    points_left_ -= std::min<std::uint64_t>(i, points_left_);

    if (line_->size() >= 2) store();
    line_.reset();
    return nullptr;
  }

 private:
  /// Takes a point inside the box.
  const char* enter(kz_long lon, kz_long lat, bool last) {
    const bool start = line_->size() == 0;
    if (!start && box_.wraps && crosses_zero(lon)) {
      if (const char* const failure = split(lon, lat)) return failure;
    } else if (!start && !last && !is_far(lon, lat)) {
      return nullptr;
    }
    if (!append(lon, lat)) return "CIA: Out of memory instancing new map point";
    kept_lon_ = lon;
    kept_lat_ = lat;
    return nullptr;
  }

  /// Takes the first point behind the run: the run ends on the edge of the box.
  ///
  /// Before: (kept_lon_, kept_lat_) lies inside the box.
  const char* leave(kz_long lon, kz_long lat, bool last) {
    if (!box_.wraps) {
      const kz_long dlon = wrapping_subtract(lon, kept_lon_);
      const kz_long dlat = wrapping_subtract(lat, kept_lat_);
      if (lat > box_.north) {
        lon = cut(kept_lon_, dlon, box_.north - kept_lat_, dlat);
        lat = box_.north;
      } else if (lat < box_.south) {
        lon = cut(kept_lon_, dlon, kept_lat_ - box_.south, wrapping_subtract(kept_lat_, lat));
        lat = box_.south;
      } else if (lon > box_.east) {
        lat = cut(kept_lat_, dlat, box_.east - kept_lon_, dlon);
        lon = box_.east;
      } else {
        lat = cut(kept_lat_, dlat, kept_lon_ - box_.west, wrapping_subtract(kept_lon_, lon));
        lon = box_.west;
      }
    }
    if (!last && distance_squared(lon, lat) < static_cast<double>(limit_)) return nullptr;
    return append(lon, lat) ? nullptr : "CIA: Out of memory instancing new map point 2";
  }

  /// Whether the way from the last point to `lon` changes halves of the globe.  Within a
  /// box across longitude 0 that is where it crosses longitude 0.
  bool crosses_zero(kz_long lon) const {
    if (kept_lon_ < kHalfTurn_arcsec) return lon >= kHalfTurn_arcsec;
    return kept_lon_ < kTurn_arcsec && lon < kHalfTurn_arcsec;
  }

  /// Ends the line at longitude 0, at the latitude of the point behind it, and starts
  /// another there.
  const char* split(kz_long lon, kz_long lat) {
    constexpr const char* kNoPoint = "CIA: Out of memory instancing new map point";
    const bool eastward = lon < kHalfTurn_arcsec;
    if (!append(eastward ? kTurn_arcsec - 1 : 0, lat)) return kNoPoint;
    store();
    line_ = new_polyline();
    if (line_ == nullptr) return "CIA: Out of memory instancing new polyline";
    return append(eastward ? 0 : kTurn_arcsec - 1, lat) ? nullptr : kNoPoint;
  }

  /// Whether a point inside the box is at least the precision away from the last one.
  ///
  /// `LatLon` decides, in degrees.  Its rounding stays far below one square arc-second, so
  /// that the integers alone can tell most points that are too near.
  bool is_far(kz_long lon, kz_long lat) const {
    // A first point may lie at 1296000, which `LatLon` turns into 0.
    const std::int64_t dlon = lon - (kept_lon_ == kTurn_arcsec ? 0 : kept_lon_);
    const std::int64_t dlat = lat - kept_lat_;
    if (dlon * dlon + dlat * dlat + 1 < limit_) return false;
    return distance_squared(lon, lat) >= static_cast<double>(limit_);
  }

  double distance_squared(kz_long lon, kz_long lat) const {
    return line_->back()->distanceSQ(LatLon(lat, lon));
  }

  /// Appends a point to the line; false when there is no memory for the point.
  bool append(kz_long lon, kz_long lat) {
    line_->push_back(nullptr);  // a line that cannot grow throws, before there is a point
    return (line_->back() = new (std::nothrow) LatLon(lat, lon)) != nullptr;
  }

  /// Hands the line over to the collection.
  void store() {
    collection_.push_back(line_.get());
    static_cast<void>(line_.release());
  }

  databank::File& file_;
  const Box box_;
  const std::int64_t limit_;  // square arc-seconds
  Polylines& collection_;
  std::uint64_t points_left_;
  OwnedPolyline line_;
  kz_long kept_lon_ = 0;  // of the line's last point
  kz_long kept_lat_ = 0;
};

std::string progress_label(overlaySections overlay, mapSections section) {
  constexpr const char* kThemes[NumOverlaySections] = {"CIA: Geographic ", "CIA: Political ",
                                                       "CIA: Coastal ", "CIA: River ", "ReadCIA "};
  constexpr const char* kContinents[NumMapSections] = {"Africa", "Asia", "Europe", "NoAm", "SoAm"};
  return std::string(kThemes[overlay]) + kContinents[section];
}

/// Writes a message and gives back what a file that cannot be used loads.
int refuse(const char* message) {
  std::cerr << message << std::endl;
  return -1;
}

struct CloseFile {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};

}  // namespace

/// Whether segments of a level, as a file gives it, are wanted.
bool WorldMap::isRequested(int overlay, int level) const {
  return level < kMatrixColumns && requests_[overlay][level] != 0;
}

/// Loads one file into the collection of its theme.
///
/// @return the number of polylines in the collection, those of other files included; 0 when
///         the file cannot be opened; -1 when it is damaged or memory ran out, with what
///         was read from it before still in the collection
int WorldMap::readInMap(overlaySections overlay, mapSections section, UtString path) {
  const std::string label = progress_label(overlay, section);
  OMstatus_check(0, label.c_str(), 0);
  const std::unique_ptr<std::FILE, CloseFile> stream(FILEfopen(path.c_str(), "rb"));
  if (stream == nullptr) {
    if (verbose_ != 0) {
      std::cout << std::endl << "CIA: Could not open file " << path << std::endl;
    }
    return 0;
  }
  databank::File file(stream.get());
  databank::Header header;
  file.read(header);
  if (header.magic != databank::kMagic) return refuse("CIA: File has bad magic number");

  const std::uint64_t most_entries = file.size() / databank::kEntryBytes;
  const auto room = static_cast<std::size_t>(std::min<std::uint64_t>(header.count, most_entries));
  const std::unique_ptr<databank::Entry[]> entries(new (std::nothrow) databank::Entry[room]);
  if (entries == nullptr) return refuse("CIA: Out of memory initializing dictionary");
  if (file.seek(header.dictionary_offset) == 0) return refuse("CIA: bad seek");
  std::size_t count = 0;
  while (count < room && file.read(entries[count])) ++count;

  Polylines& collection = collections_[overlay];
  const std::optional<Box> box = box_between(lower_left_.get(), upper_right_.get());
  Tracer tracer(file, box.value_or(Box{}), precision_arcsec_, collection);
  // A segment header that the file does not hold is that of the segment before.
  databank::SegmentHeader segment;
  const std::size_t step = count / 10;
  int percent = 0;
  for (std::size_t j = 0; j < count; ++j) {
    if (step == 0) {
      OMstatus_check(100, label.c_str(), 0);
    } else if (j % step == 0) {
      percent += 10;  // beyond 100 where the step was rounded down
      OMstatus_check(percent, label.c_str(), 0);
    }
    const databank::Entry& entry = entries[j];
    if (!box || !box->overlaps(entry) || !isRequested(overlay, entry.level)) continue;
    if (file.seek(entry.offset) == 0) return refuse("CIA: bad seek");
    file.read(segment);
    if (const char* const failure = tracer.trace(segment)) return refuse(failure);
  }
  OMstatus_check(100, label.c_str(), 0);
  return static_cast<int>(collection.size());
}
