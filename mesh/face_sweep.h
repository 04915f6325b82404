// Triangles of a face that may touch itself.

#ifndef KZGIS_MESH_FACE_SWEEP_H
#define KZGIS_MESH_FACE_SWEEP_H

#include <cstdint>
#include <vector>

#include "mesh/faces.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

/// Cuts a face into triangles, counter-clockwise, and appends three sites for each; O(n log n).
///
/// The corners of a face are counted through all its contours: a site at which the face
/// touches itself has several.  There are two triangles less than corners, and two more for
/// every hole; none of them is flat.
///
/// One sweep from the left to the right, after S. Hertel and K. Mehlhorn, "Fast
/// triangulation of simple polygons", Foundations of Computation Theory (1983).  Nothing
/// but the order of sites and the exact orientation of three of them is asked for.
void sweep_face(const Sites& sites, const Face& face, std::vector<std::uint32_t>& triangles);

}  // namespace kzgis::mesh

#endif
