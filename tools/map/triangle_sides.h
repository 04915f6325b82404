// The triangles that polygons are made of, for drawing.

#ifndef KZGIS_TOOLS_MAP_TRIANGLE_SIDES_H
#define KZGIS_TOOLS_MAP_TRIANGLE_SIDES_H

#include <kzgis/mesh.h>

namespace kzgis::map {

/// The sides between the triangles of a polygon record.
struct TriangleSides {
  Outline lines;  ///< each once, in degrees as the record has them
  Flaw flaw;      ///< when set, there are none
};

/// Cuts a polygon record into triangles, in the plane of longitude and latitude.
TriangleSides triangle_sides(const Rings& rings);

}  // namespace kzgis::map

#endif
