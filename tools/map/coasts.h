// Lines in degrees: what of a polygon's rings is there to be seen.

#ifndef KZGIS_TOOLS_MAP_COASTS_H
#define KZGIS_TOOLS_MAP_COASTS_H

#include <kzgis/mesh.h>

namespace kzgis::map {

/// The sides of a polygon's rings, as lines.
struct Coasts {
  Outline real;   ///< coasts and borders
  Outline seams;  ///< what only closes rings, along the antimeridian or at a pole
};

Coasts coasts_of(const Rings& rings);

/// Lines grow by these.
void begin_line(Outline& lines, double lon, double lat);
void go_to(Outline& lines, double lon, double lat);
/// In pieces where there are more than 180 degrees of longitude to go, lest these go the short way.
void go_all_the_way_to(Outline& lines, double lon, double lat);

}  // namespace kzgis::map

#endif
