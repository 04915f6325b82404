// The chart that a picture is drawn on.

#ifndef KZGIS_TOOLS_MAP_MAP_CHART_H
#define KZGIS_TOOLS_MAP_MAP_CHART_H

#include <kzgis/chart.h>

#include <optional>

#include "tools/support/projection_options.h"

namespace kzgis::map {

/// What the user asks of a map; what is left out gets the projection's own default, and the base
/// the middle of the box where there is one.  Pictures have no radius.
struct MapRequest : tools::ProjectionOptions {
  std::optional<double> horizon_deg = std::nullopt;  ///< how far an azimuthal map reaches
  /// What another map shows: from the first longitude eastwards to the second.
  std::optional<Box> box = std::nullopt;
};

/// A chart of the unit sphere, with the window or the reach of the map.  The globe is seen from
/// far away: orthographic.  Throws `UsageError` when the request makes no map.
Chart map_chart(const MapRequest& request);

}  // namespace kzgis::map

#endif
