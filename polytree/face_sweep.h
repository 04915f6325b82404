// Triangles of a face that may touch itself.

#ifndef KZGIS_POLYTREE_FACE_SWEEP_H
#define KZGIS_POLYTREE_FACE_SWEEP_H

#include <vector>

#include "kzgis/types.h"
#include "polytree/arrangement.h"
#include "polytree/faces.h"

namespace kzgis::polytree {

/// Cuts a face into triangles, three numbers each, counter-clockwise; O(n log n).
///
/// The numbers are those of the face's corners, counted from 0 through all its contours: a
/// site at which the face touches itself has several.  There are two triangles less than
/// corners, and two more for every hole; none of them is flat.
///
/// One sweep from the left to the right, after S. Hertel and K. Mehlhorn, "Fast
/// triangulation of simple polygons", Foundations of Computation Theory (1983).  Nothing
/// but the order of sites and the exact orientation of three of them is asked for.
std::vector<kz_long> sweep_face(const Arrangement& arrangement, const Face& face);

}  // namespace kzgis::polytree

#endif
