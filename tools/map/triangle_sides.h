// The triangles that polygons are made of, for drawing.

#ifndef KZGIS_TOOLS_MAP_TRIANGLE_SIDES_H
#define KZGIS_TOOLS_MAP_TRIANGLE_SIDES_H

#include <vector>

#include "kzgis/mesh.h"
#include "tools/map/layer.h"

namespace kzgis::map {

/// The sides between the triangles of a polygon record.
struct TriangleSides {
  std::vector<GeoLine> lines;  ///< each once, in the record's own longitudes
  Flaw flaw;                   ///< when set, there are none
};

/// Cuts a polygon record into triangles, in the plane of longitude and latitude.
TriangleSides triangle_sides(const Parts& rings);

}  // namespace kzgis::map

#endif
