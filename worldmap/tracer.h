// How a segment's points become polylines.  Coordinates are whole arc-seconds; what a file
// says is never trusted, so that arithmetic on them wraps in 32 bits.

#ifndef KZGIS_WORLDMAP_TRACER_H
#define KZGIS_WORLDMAP_TRACER_H

#include <cstdint>

#include "kzgis/types.h"
#include "worldmap/bank_file.h"
#include "worldmap/boundary_box.h"
#include "worldmap/polyline.h"

namespace kzgis::worldmap {

/// Turns the segments of one file into polylines of one collection.
class Tracer {
 public:
  /// Borrows the file and the collection.
  Tracer(File& file, const BoundaryBox& box, kz_long precision_arcsec, Polylines& collection);

  /// Takes the points of a segment, up to the end of their first run inside the box, from
  /// behind its header.
  /// @return null, or the message of a failed allocation
  const char* trace(const SegmentHeader& segment);

 private:
  /// A rectangle of positions; without any while a side is 0.
  struct Rectangle {
    kz_long west = 0, south = 0;
    kz_ulong width = 0, height = 0;
    bool holds(kz_long lon, kz_long lat) const {
      return static_cast<kz_ulong>(lon) - static_cast<kz_ulong>(west) < width &&
             static_cast<kz_ulong>(lat) - static_cast<kz_ulong>(south) < height;
    }
  };

  void surround_kept_point();
  bool crosses_zero(kz_long lon) const;
  bool is_far(kz_long lon, kz_long lat) const;
  double distance_squared(kz_long lon, kz_long lat) const;

  const char* enter(kz_long lon, kz_long lat, bool last);
  const char* leave(kz_long lon, kz_long lat, bool last);
  const char* split(kz_long lon, kz_long lat);
  bool append(kz_long lon, kz_long lat);
  void store();

  File& file_;
  const BoundaryBox box_;
  const std::int64_t limit_;  // square arc-seconds
  const kz_long reach_;
  Polylines& collection_;
  std::uint64_t points_left_;  // to be decoded from this file
  OwnedPolyline line_;
  kz_long kept_lon_ = 0;  // of the line's last point
  kz_long kept_lat_ = 0;
  Rectangle near_;  // of points that are too near to it
};

}  // namespace kzgis::worldmap

#endif
