// The mesh of one record, on its way from the file to the output.

#ifndef KZGIS_TOOLS_TRIANGULATE_RECORD_MESH_H
#define KZGIS_TOOLS_TRIANGULATE_RECORD_MESH_H

#include <kzgis/projection.h>
#include <kzgis/types.h>

#include <cstddef>
#include <span>
#include <vector>

namespace kzgis::tools {

/// Triangles over vertices of their own: every vertex is used.
struct RecordMesh {
  kz_long record = 0;  ///< its place in the file, counted from 1
  std::vector<WorldPoint> vertices;
  std::vector<kz_ulong> triangles;  ///< three vertex numbers each, counted from 0

  std::size_t triangle_count() const { return triangles.size() / 3; }
};

/// Takes over the points that triangles use, in their order.
RecordMesh make_record_mesh(kz_long record, std::span<const WorldPoint> points,
                            std::span<const kz_ulong> triangles);

/// Twice the signed area of a triangle in the plane of x and y.
double twice_area(const WorldPoint& a, const WorldPoint& b, const WorldPoint& c);

/// The area in the plane of x and y, of triangles that run counter-clockwise.
double area(std::span<const WorldPoint> points, std::span<const kz_ulong> triangles);

}  // namespace kzgis::tools

#endif
