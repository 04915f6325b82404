// From the points of one segment to polylines: which points are kept, where a line is cut at the
// edge of the box, and where it is split at longitude 0.
//
// Every point is kept to the last bit, single-precision cuts and rounding in degrees included
// (docs/classic.md).  What is fast here only spares work whose result is known: whole numbers
// tell at once what the degrees of `LatLon` would say.

#include "worldmap/tracer.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace kzgis::worldmap {

namespace {

constexpr const char* kNoPoint = "CIA: Out of memory instancing new map point";

kz_long wrapping_multiply(kz_long a, kz_long b) {
  return static_cast<kz_long>(static_cast<kz_ulong>(a) * static_cast<kz_ulong>(b));
}

/// Where a line crosses an edge: moves from `from` by the share reach/run of `rise`.
///
/// Single precision over a 32-bit product, the result truncated.  Loaded outlines are
/// compared point by point, so that the rounding, and the product's overflow beyond some 13
/// degrees, are kept (ReaderClip.WrapsTheProductInto32Bits).
///
/// Before: 0 <= reach < run.  The share is then 0 or at most half of what 32 bits hold, and
/// the place always fits them.
kz_long cut(kz_long from, kz_long rise, kz_long reach, kz_long run) {
  const auto product = static_cast<float>(wrapping_multiply(rise, reach));
  const float share = product / static_cast<float>(run);
  return static_cast<kz_long>(share + static_cast<float>(from));
}

/// How far a point may be from another on either axis and surely be nearer than the
/// precision; -1 when no distance is.
kz_long reach_of(kz_long precision_arcsec) {
  const double side = std::floor(std::abs(static_cast<double>(precision_arcsec)) * 0.7071) - 1.0;
  return side < 1.0 ? -1 : static_cast<kz_long>(std::min(side, double{kTurn_arcsec}));
}

/// Null where there is no memory: the loader says so in a line of its own.
OwnedPolyline new_polyline() {
  try {
    return OwnedPolyline(new Polyline);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

Tracer::Tracer(File& file, const BoundaryBox& box, kz_long precision_arcsec, Polylines& collection)
    : file_(file),
      box_(box),
      limit_(std::int64_t{precision_arcsec} * precision_arcsec),
      reach_(reach_of(precision_arcsec)),
      collection_(collection),
      points_left_(file.size() + kSparePoints) {}

const char* Tracer::trace(const SegmentHeader& segment) {
  line_ = new_polyline();
  if (line_ == nullptr) return "CIA: Out of memory preparing new polyline";

  const auto count = static_cast<kz_ulong>(std::min<std::uint64_t>(segment.count, points_left_));
  Deltas deltas(file_, segment.unused);
  kz_long lon = segment.lon;
  kz_long lat = segment.lat;
  near_ = {};
  // Before each pass: (lon, lat) is point i, counted from 1; the line holds what is kept of those
  // before it, none of which left the box since the line began.  The point behind the last delta
  // is decoded and not looked at.
  kz_ulong i = 1;
  for (; i < count; ++i) {
    const bool last = i == count - 1;
    if (last || !near_.holds(lon, lat)) {
      if (box_.holds(lon, lat)) {
        if (const char* const failure = enter(lon, lat, last)) return failure;
      } else if (line_->size() != 0) {
        if (const char* const failure = leave(lon, lat, last)) return failure;
        break;
      }
    }
    deltas.move(lon, lat);
  }
  // Points that were skipped count too: a bound on those kept would not bound the time.
  points_left_ -= std::min<std::uint64_t>(i, points_left_);

  if (line_->size() >= 2) store();
  line_.reset();
  return nullptr;
}

/// Surrounds the point just kept with a rectangle whose points need no other test: they lie
/// inside the box and in the same half of the globe, and nearer than the precision.
///
/// `LatLon` measures in degrees; its rounding stays far below the one arc-second that the
/// reach is short of the inscribed square.
void Tracer::surround_kept_point() {
  near_ = {};
  // A first point may lie at 1296000, which `LatLon` turns into 0.
  if (kept_lon_ == kTurn_arcsec) return;
  // Within a box across longitude 0 the rectangle ends at the half of the globe, so that no point
  // in it can be a crossing.
  const bool eastern = kept_lon_ < kHalfTurn_arcsec;
  const kz_long west =
      box_.wraps ? (eastern ? 0 : std::max(box_.west, kHalfTurn_arcsec)) : box_.west;
  const kz_long east =
      box_.wraps ? (eastern ? std::min(box_.east, kHalfTurn_arcsec - 1) : kTurn_arcsec - 1)
                 : box_.east;
  near_.west = std::max(west, kept_lon_ - reach_);
  near_.south = std::max(box_.south, kept_lat_ - reach_);
  near_.width =
      static_cast<kz_ulong>(std::max(0, std::min(east, kept_lon_ + reach_) + 1 - near_.west));
  near_.height = static_cast<kz_ulong>(
      std::max(0, std::min(box_.north, kept_lat_ + reach_) + 1 - near_.south));
}

/// Whether the way from the last point to `lon` changes halves of the globe.  Within a
/// box across longitude 0 that is where it crosses longitude 0.
bool Tracer::crosses_zero(kz_long lon) const {
  return (kept_lon_ < kHalfTurn_arcsec) != (lon < kHalfTurn_arcsec) && kept_lon_ < kTurn_arcsec;
}

/// From the line's last point, in the degrees of `LatLon`.
double Tracer::distance_squared(kz_long lon, kz_long lat) const {
  return line_->back()->distanceSQ(LatLon(lat, lon));
}

/// Whether a point inside the box is at least the precision away from the last one.
///
/// `LatLon` decides, in degrees.  Its rounding stays far below one square arc-second, so
/// that whole numbers can tell most points that are too near.
bool Tracer::is_far(kz_long lon, kz_long lat) const {
  const std::int64_t dlon = lon - (kept_lon_ == kTurn_arcsec ? 0 : kept_lon_);
  const std::int64_t dlat = lat - kept_lat_;
  if (dlon * dlon + dlat * dlat + 1 < limit_) return false;
  return distance_squared(lon, lat) >= static_cast<double>(limit_);
}

/// Takes a point inside the box.
const char* Tracer::enter(kz_long lon, kz_long lat, bool last) {
  if (line_->size() != 0) {
    if (box_.wraps && crosses_zero(lon)) {
      if (const char* const failure = split(lon, lat)) return failure;
    } else if (!last && !is_far(lon, lat)) {
      return nullptr;
    }
  }
  if (!append(lon, lat)) return kNoPoint;
  kept_lon_ = lon;
  kept_lat_ = lat;
  surround_kept_point();
  return nullptr;
}

/// Takes the first point behind the run: the run ends on the edge of the box.
///
/// Before: the point before this one lay in the box, and so did the last one kept.  No
/// difference below therefore leaves 32 bits, and none that is divided by is 0.
const char* Tracer::leave(kz_long lon, kz_long lat, bool last) {
  if (!box_.wraps) {
    const kz_long dlon = lon - kept_lon_;
    const kz_long dlat = lat - kept_lat_;
    if (lat > box_.north) {
      lon = cut(kept_lon_, dlon, box_.north - kept_lat_, dlat);
      lat = box_.north;
    } else if (lat < box_.south) {
      lon = cut(kept_lon_, dlon, kept_lat_ - box_.south, -dlat);
      lat = box_.south;
    } else if (lon > box_.east) {
      lat = cut(kept_lat_, dlat, box_.east - kept_lon_, dlon);
      lon = box_.east;
    } else {
      lat = cut(kept_lat_, dlat, kept_lon_ - box_.west, -dlon);
      lon = box_.west;
    }
  }
  if (!last && distance_squared(lon, lat) < static_cast<double>(limit_)) return nullptr;
  return append(lon, lat) ? nullptr : "CIA: Out of memory instancing new map point 2";
}

/// Ends the line at longitude 0, at the latitude of the point behind it, and starts
/// another there.
const char* Tracer::split(kz_long lon, kz_long lat) {
  const bool eastward = lon < kHalfTurn_arcsec;
  if (!append(eastward ? kTurn_arcsec - 1 : 0, lat)) return kNoPoint;
  store();
  line_ = new_polyline();
  if (line_ == nullptr) return "CIA: Out of memory instancing new polyline";
  return append(eastward ? 0 : kTurn_arcsec - 1, lat) ? nullptr : kNoPoint;
}

/// Appends a point to the line; false when there is no memory for the point.
bool Tracer::append(kz_long lon, kz_long lat) {
  line_->push_back(nullptr);  // a line that cannot grow throws, before there is a point
  return (line_->back() = new (std::nothrow) LatLon(lat, lon)) != nullptr;
}

/// Hands the line over to the collection.
void Tracer::store() {
  collection_.push_back(line_.get());
  static_cast<void>(line_.release());
}

}  // namespace kzgis::worldmap
