// The boundary box of a classic map in whole arc-seconds, and the two questions that loading
// asks of it: which segments may count, and which points do.

#ifndef KZGIS_WORLDMAP_BOUNDARY_BOX_H
#define KZGIS_WORLDMAP_BOUNDARY_BOX_H

#include "kzgis/types.h"
#include "worldmap/bank_file.h"

namespace kzgis::worldmap {

/// Positions and extents, edges included; `wraps` says whether it lies across longitude 0.
struct BoundaryBox {
  kz_long west, south, east, north;
  bool wraps;

  bool holds(kz_long lon, kz_long lat) const {
    if (lat < south || lat > north) return false;
    if (!wraps) return west <= lon && lon <= east;
    return (west <= lon && lon <= kTurn_arcsec) || (0 <= lon && lon <= east);
  }

  /// Whether a segment's extents overlap the box.  Touching it is not enough, and of a box
  /// across longitude 0 only the western extent is looked at.
  bool overlaps(const Entry& entry) const {
    if (!(entry.min_lat < north && south < entry.max_lat)) return false;
    if (!wraps) return entry.min_lon < east && west < entry.max_lon;
    return (0 < entry.min_lon && entry.min_lon < east) ||
           (west < entry.min_lon && entry.min_lon < kTurn_arcsec);
  }
};

}  // namespace kzgis::worldmap

#endif
