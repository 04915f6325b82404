// What a mesh file is made of.

#ifndef KZGIS_TOOLS_MESH_FILES_MESH_PART_H
#define KZGIS_TOOLS_MESH_FILES_MESH_PART_H

#include <kzgis/chart.h>

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

namespace kzgis::tools {

/// Triangles over vertices of their own: every vertex is used.
struct MeshPart {
  std::uint32_t record = 0;  ///< its place in a shapefile, counted from 1; 0 without one
  std::vector<WorldPoint> vertices;
  std::vector<std::uint32_t> triangles;  ///< three vertex numbers each, counted from 0
  /// An object of texts, numbers, truth values and nulls, in UTF-8: what a table says of it.
  nlohmann::ordered_json attributes = nlohmann::ordered_json::object();

  std::size_t triangle_count() const { return triangles.size() / 3; }
};

/// "record_3", or "surface" for what is no record.
std::string name_of(const MeshPart& part);

/// The number of the record, if it is one, and its attributes; a field of the name "record"
/// takes the number's place.
nlohmann::ordered_json properties_of(const MeshPart& part);

/// Takes over the points that triangles use, in their order.
MeshPart make_mesh_part(std::uint32_t record, std::span<const WorldPoint> points,
                        std::span<const std::uint32_t> triangles);

/// Twice the signed area of a triangle in the plane of x and y.
double twice_area(const WorldPoint& a, const WorldPoint& b, const WorldPoint& c);

/// The area in the plane of x and y, of triangles that run counter-clockwise.
double area(std::span<const WorldPoint> points, std::span<const std::uint32_t> triangles);

/// Where a box about some vertices has its middle.
class Extent {
 public:
  void add(const MeshPart& part);
  WorldPoint middle() const;  ///< the origin when there were no vertices

 private:
  WorldPoint low_{}, high_{};
  bool empty_ = true;
};

}  // namespace kzgis::tools

#endif
