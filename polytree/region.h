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
/// What comes back from the triangulator is believed once it is proved to tile the region
/// (`exact::tiles`).  Otherwise `kzgis::triangulate` takes the contours for rings that may touch,
/// with a proof of its own; that its triangles are the region which the contours wind round is
/// proved here (`wind_as_covered`).  Where a contour has fewer than three different vertices,
/// such as a hole that takes nothing from the region, the second is all that is tried.
///
/// Before: `triangle_count` is not negative.
///
/// @param triangulator  another one than the classic, for tests
/// @return 1; 2 when neither tiled the region; 14 without memory
kz_ulong triangulate_region(
    const KZ_GIS_PolygonNode_c& boundary, kz_ulong* connections,
    decltype(&triangulate_polygon) triangulator = &triangulation::triangulate_quietly);

}  // namespace kzgis::polytree

#endif
