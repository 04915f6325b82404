// Coordinates as floats, which most programs for meshes work with.

#ifndef KZGIS_TOOLS_MESH_FILES_FLOAT_POINT_H
#define KZGIS_TOOLS_MESH_FILES_FLOAT_POINT_H

#include <kzgis/chart.h>

#include <array>
#include <cmath>

namespace kzgis::tools {

using FloatPoint = std::array<float, 3>;

inline WorldPoint difference(const WorldPoint& a, const WorldPoint& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}

inline FloatPoint to_floats(const WorldPoint& p) {
  return {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)};
}

/// At right angles to a triangle and as long as twice its area, on the side from which it runs
/// counter-clockwise.
inline WorldPoint cross_product(const WorldPoint& a, const WorldPoint& b, const WorldPoint& c) {
  const WorldPoint u = difference(b, a);
  const WorldPoint v = difference(c, a);
  return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}

/// The same direction with length 1; upwards for what has none.
inline WorldPoint direction_of(const WorldPoint& v) {
  const double length = std::hypot(v.x, v.y, v.z);
  if (!(length > 0.0 && std::isfinite(length))) return {0.0, 0.0, 1.0};
  return {v.x / length, v.y / length, v.z / length};
}

}  // namespace kzgis::tools

#endif
