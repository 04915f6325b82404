// What Cairo is given to fill and to stroke.

#ifndef KZGIS_TOOLS_MAP_PATH_H
#define KZGIS_TOOLS_MAP_PATH_H

#include <vector>

#include "tools/map/geo.h"
#include "tools/map/page.h"

namespace kzgis::map {

/// The outlines of a polygon record on the page, to be filled with the even-odd rule and
/// clipped to the frame.
///
/// Edges are subdivided until they follow the projection.  A window map draws what lies in
/// its window, in as many pieces as the tear makes.  On a disc map, rings go on beyond the
/// limb; a record that covers the antipode gets one more outline around everything.
///
/// @param rings  closed rings in map longitudes, as `prepare_polygon` gives them
PagePath fill_path(const Page& page, const std::vector<GeoLine>& rings);

/// The visible pieces of lines in map longitudes, cut at the tear or the limb.
PagePath stroke_path(const Page& page, const std::vector<GeoLine>& lines);

/// The border of the map: its window's, or its limb.
PagePath frame_path(const Page& page);

/// Meridians and parallels every `step_deg` degrees.  Only every ninetieth meridian goes on
/// to the poles; the others stop at the last parallel, lest they clot.
std::vector<GeoLine> graticule(double step_deg, double base_lon);

}  // namespace kzgis::map

#endif
