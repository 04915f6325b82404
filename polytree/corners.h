// The vertices of a ring at hand, for loops over them.

#ifndef KZGIS_POLYTREE_CORNERS_H
#define KZGIS_POLYTREE_CORNERS_H

#include <limits>

#include "kzgis/polytree.h"

/// Arrays of the ring and of its vertex list, asked for once; good until either changes.
struct KZ_GIS_PolygonNode_c::Corners {
  const kz_ulong* indices;
  const double* x;
  const double* y;
  kz_ulong listed;  ///< vertices in the list; 0 where it has no arrays

  /// The vertex at a position of the ring, which must be below the count; NaN where the list has
  /// none.
  Vertex At(kz_ulong position) const {
    const kz_ulong index = indices[position];
    if (index < listed) return {x[index], y[index]};
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    return {nan, nan};
  }
};

#endif
