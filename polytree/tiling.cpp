// Orientation of every triangle, and their common boundary.

#include "polytree/tiling.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "kzgis/exact.h"
#include "kzgis/triangulate.h"

namespace kzgis::polytree {

bool tiles(std::span<const kz_long> contours, const double (*vertices)[2],
           std::span<const kz_long[3]> triangles) {
  std::size_t count = 0;
  for (const kz_long size : contours) count += static_cast<std::size_t>(size);
  const auto is_vertex = [count](kz_long v) {
    return v >= 1 && static_cast<std::size_t>(v) <= count;
  };

  std::vector<kz_long> corners;  // counted from 0
  corners.reserve(3 * triangles.size());
  for (const auto& t : triangles) {
    if (!std::ranges::all_of(t, is_vertex)) return false;
    const double* const a = vertices[t[0]];
    const double* const b = vertices[t[1]];
    const double* const c = vertices[t[2]];
    for (const double* const v : {a, b, c}) {
      if (!exact::in_range(v[0]) || !exact::in_range(v[1])) return false;
    }
    if (exact::orientation(a[0], a[1], b[0], b[1], c[0], c[1]) < 0) return false;
    for (const kz_long corner : t) corners.push_back(corner - 1);
  }
  return triangulation::bounded_by(contours, corners);
}

}  // namespace kzgis::polytree
