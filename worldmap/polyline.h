// Who deletes a polyline: it does not own its points, whoever holds it does.

#ifndef KZGIS_WORLDMAP_POLYLINE_H
#define KZGIS_WORLDMAP_POLYLINE_H

#include <memory>

#include "kzgis/latlon.h"
#include "kzgis/utvector.h"

namespace kzgis::worldmap {

using Polyline = UtVector<LatLon*>;
using Polylines = UtVector<Polyline*>;

struct DeletePolyline {
  void operator()(Polyline* line) const {
    for (LatLon* point : *line) delete point;
    delete line;
  }
};
using OwnedPolyline = std::unique_ptr<Polyline, DeletePolyline>;

}  // namespace kzgis::worldmap

#endif
