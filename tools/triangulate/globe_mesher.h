// Polygons in degrees, as triangles on the globe.

#ifndef KZGIS_TOOLS_TRIANGULATE_GLOBE_MESHER_H
#define KZGIS_TOOLS_TRIANGULATE_GLOBE_MESHER_H

#include <kzgis/chart.h>
#include <kzgis/mesh.h>
#include <kzgis/result.h>

#include "tools/triangulate/record_mesh.h"

namespace kzgis::tools {

/// Triangulates a polygon on the globe: what it is cut at along the antimeridian is joined, and a
/// pole is a point like any other.
///
/// Sides, straight in degrees, are cut into pieces of a degree or less, half the longest side that
/// is asked for at most.  Where depends on the side alone, so that neighbours meet.
///
/// @param options  lengths are degrees of the globe; triangles are Delaunay on the sphere.  No side
///                 of a triangle is longer than the longest side; far from the middle of a record
///                 they are shorter than they need be, by half at 90 degrees from it, and beyond
///                 that sides of the polygon may be cut once more, for themselves.  What crosses is
///                 always split; a polygon that reaches beyond a hemisphere has no sides of more
///                 than 60 degrees
/// @param globe    its chart
Result<RecordMesh> mesh_on_globe(const Rings& degrees, const MeshOptions& options,
                                 const Chart& globe);

}  // namespace kzgis::tools

#endif
