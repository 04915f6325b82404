// The faces of an arrangement: connected pieces of the inside.

#ifndef KZGIS_MESH_FACES_H
#define KZGIS_MESH_FACES_H

#include <cstdint>
#include <vector>

#include "mesh/arrangement.h"

namespace kzgis::mesh {

/// The sites round a face, its inside on the left: counter-clockwise round the outside,
/// clockwise round a hole.  A site where the face touches itself comes up once for each
/// corner that the face has there.
using Contour = std::vector<std::uint32_t>;

/// An outer contour, and those of its holes behind it.
using Face = std::vector<Contour>;

/// Takes the faces of an arrangement, in the order of their smallest sites.
///
/// Pieces of the inside that meet in a site only are faces of their own.
std::vector<Face> take_faces(const Arrangement& arrangement);

}  // namespace kzgis::mesh

#endif
