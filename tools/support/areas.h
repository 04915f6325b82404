// Areas in the plane, in plain doubles: good for sums and pictures, not for decisions that must
// be exact.

#ifndef KZGIS_TOOLS_SUPPORT_AREAS_H
#define KZGIS_TOOLS_SUPPORT_AREAS_H

#include <cstddef>

namespace kzgis::tools {

/// Twice the signed area of a triangle, positive when it runs counter-clockwise.
inline double twice_area(double ax, double ay, double bx, double by, double cx, double cy) {
  return (bx - ax) * (cy - ay) - (by - ay) * (cx - ax);
}

/// Twice the signed area of a ring, as a fan of triangles about its first vertex: differences
/// of coordinates lose less than products of large ones.
///
/// @param x, y  give the coordinates of vertex `i`, from 0
template <typename X, typename Y>
double twice_ring_area(std::size_t count, X x, Y y) {
  double sum = 0.0;
  for (std::size_t i = 2; i < count; ++i) {
    sum += twice_area(x(0), y(0), x(i - 1), y(i - 1), x(i), y(i));
  }
  return sum;
}

}  // namespace kzgis::tools

#endif
