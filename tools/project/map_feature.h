// The records of a shapefile, drawn on a map.

#ifndef KZGIS_TOOLS_PROJECT_MAP_FEATURE_H
#define KZGIS_TOOLS_PROJECT_MAP_FEATURE_H

#include <kzgis/chart.h>
#include <kzgis/mesh.h>
#include <kzgis/result.h>
#include <kzgis/shapefile.h>

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <vector>

#include "tools/support/shape_file.h"

namespace kzgis::tools {

/// A record in world coordinates.
struct MapFeature {
  std::uint32_t record = 0;  ///< its place in the shapefile, counted from 1
  ShapeKind kind = ShapeKind::null;
  bool many = false;  ///< of points: there may be any number of them, not one
  /// The lines, or the rings: each outer one is followed by its holes.  Outer ones run
  /// counter-clockwise, holes clockwise, and no ring repeats its first vertex.  Points are no
  /// parts.
  Outline parts;
  std::vector<bool> is_hole;  ///< of each ring
  std::size_t placeless = 0;  ///< points that the projection has no place for, which are left out

  /// Nothing of it is on the map.
  bool is_empty() const { return parts.x.empty(); }
  /// The number behind the last vertex of a part.
  std::size_t end_of(std::size_t part) const;
};

/// Draws a record of points, lines or polygons.  Refuses, with a reason, what are no degrees.
///
/// @param tolerance  of `project_area` and `project_lines`
Result<MapFeature> draw_record(const ShapeRecord& record, const Chart& chart, double tolerance);

}  // namespace kzgis::tools

#endif
