// One filled region of a polygon tree: a boundary with its children as holes.

#ifndef KZGIS_POLYTREE_REGION_H
#define KZGIS_POLYTREE_REGION_H

#include <cstdint>

#include "kzgis/polytree.h"
#include "kzgis/triangulate.h"

namespace kzgis::polytree {

/// V + 2 h - 2, for V vertices, those of the h holes included.  Negative for a region that
/// lacks the vertices of even one triangle.
std::int64_t triangle_count(const KZ_GIS_PolygonNode_c& boundary);

/// Cuts the region into `triangle_count` triangles, and writes three indices for each into
/// the vertex list's arrays, or nothing at all.
///
/// What comes back from a triangulator is believed once it is proved to tile the region.
/// Otherwise the contours are handed over again from other first vertices, which changes
/// the order in which edges are inserted even where the random numbers stay the same, then
/// to a triangulator that decides everything exactly, and at last as rings that may touch.
/// With a hole of fewer than three different vertices this last is all that is tried: it
/// takes nothing from the region.
///
/// Before: `triangle_count` is not negative.
///
/// @param triangulator  `triangulate_polygon`, but for tests
/// @return 1; 2 when no attempt tiled the region; 14 without memory
kz_ulong triangulate_region(const KZ_GIS_PolygonNode_c& boundary, kz_ulong* connections,
                            decltype(&triangulate_polygon) triangulator = &triangulate_polygon);

}  // namespace kzgis::polytree

#endif
