// From trapezoids to monotone pieces, and from these to triangles.

#ifndef KZGIS_TRIANGULATE_MONOTONE_H
#define KZGIS_TRIANGULATE_MONOTONE_H

#include "triangulate/tables.h"

namespace kzgis::triangulation {

/// Where the triangles go.
struct TriangleArray {
  kz_long* numbers;  ///< three per triangle
  kz_long room;      ///< in triangles
};

/// Cuts the polygon of segments 1 to n along diagonals into monotone pieces.
/// @return number of pieces; 0 when the walk met what no polygon gives
kz_long monotonate_trapezoids(Tables& t, kz_long n);

/// Walks all trapezoids that can be reached from `start` and draws their diagonals.
/// @return false when the walk met what no polygon gives
bool traverse_trapezoids(Tables& t, kz_long m, kz_long start, kz_long from, kz_long dir);

/// Draws the diagonal from vertex a to vertex b.
/// @return number of the new piece, -1 when there is no room for it
kz_long split_monotone_polygon(Tables& t, kz_long m, kz_long a, kz_long b);

struct ChainSlots {
  kz_long a, b;
};
/// The chains through a and b that a diagonal between them belongs to.
ChainSlots vertex_chain_positions(const Tables& t, kz_long a, kz_long b);

/// Cuts all pieces, and stops at the first that is not monotone.
/// @return number of triangles written
kz_long triangulate_monotone_polygons(Tables& t, kz_long n, kz_long pieces,
                                      const TriangleArray& out);

enum class Sweep { done, no_memory, not_monotone };

/// Cuts the piece whose highest vertex is at `pos`.
Sweep triangulate_monotone_piece(Tables& t, kz_long n, kz_long pos, kz_long side,
                                 const TriangleArray& out);

/// Cuts the polygon whose segments and insertion order are in the tables, from the first
/// trapezoid to the last triangle.
/// @return number of triangles written
kz_long triangulate_segments(Tables& t, kz_long n, const TriangleArray& out);

}  // namespace kzgis::triangulation

#endif
