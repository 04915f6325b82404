// The mesh of one record, on its way from the file to the output.

#ifndef KZGIS_TOOLS_TRIANGULATE_RECORD_MESH_H
#define KZGIS_TOOLS_TRIANGULATE_RECORD_MESH_H

#include <kzgis/chart.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kzgis::tools {

/// Triangles over vertices of their own: every vertex is used.
struct RecordMesh {
  std::uint32_t record = 0;  ///< its place in the file, counted from 1
  std::vector<WorldPoint> vertices;
  std::vector<std::uint32_t> triangles;  ///< three vertex numbers each, counted from 0

  std::size_t triangle_count() const { return triangles.size() / 3; }
};

/// Takes over the points that triangles use, in their order.
RecordMesh make_record_mesh(std::uint32_t record, std::span<const WorldPoint> points,
                            std::span<const std::uint32_t> triangles);

/// Twice the signed area of a triangle in the plane of x and y.
double twice_area(const WorldPoint& a, const WorldPoint& b, const WorldPoint& c);

/// The area in the plane of x and y, of triangles that run counter-clockwise.
double area(std::span<const WorldPoint> points, std::span<const std::uint32_t> triangles);

}  // namespace kzgis::tools

#endif
