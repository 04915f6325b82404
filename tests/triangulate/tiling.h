// Judges a triangulation in integers, independently of how it was made.

#ifndef KZGIS_TESTS_TRIANGULATE_TILING_H
#define KZGIS_TESTS_TRIANGULATE_TILING_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "triangulate/polygons.h"

__extension__ using Int128 = __int128;

/// 1 when c lies to the left of the way from a to b, -1 to the right, 0 on the line.
int turn(IntPoint a, IntPoint b, IntPoint c);

/// Twice the signed area.
Int128 doubled_area(const IntRing& ring);

using Triangles = std::vector<std::array<kz_long, 3>>;

/// Whether the triangles tile the polygon: why not, or an empty text.
///
/// Vertices count from `first`.  The right number of triangles, each counter-clockwise,
/// every edge of the polygon under exactly one of them, every other edge under exactly two,
/// once in each direction: the triangles then cover every point of the inside as often as
/// any other, and the sum of their areas says that this is once.
std::string flaw_of(const IntPolygon& polygon, const Triangles& triangles, kz_long first);

#endif
