// Rings laid end to end, as a shapefile polygon record holds them, and what tests do with
// them.

#ifndef KZGIS_TESTS_POLYTREE_RINGS_H
#define KZGIS_TESTS_POLYTREE_RINGS_H

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "kzgis/polytree.h"

using Points = std::vector<std::pair<double, double>>;

/// A rectangle, open, in the orientation of a boundary: clockwise.
inline Points boundary(double x0, double y0, double x1, double y1) {
  return {{x0, y0}, {x0, y1}, {x1, y1}, {x1, y0}};
}
/// The same, in the orientation of a hole: counter-clockwise.
inline Points hole(double x0, double y0, double x1, double y1) {
  return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}
/// The ring with its first vertex repeated at the end.
inline Points closed(Points ring) {
  ring.push_back(ring.front());
  return ring;
}

struct Rings {
  std::vector<double> x, y;
  std::vector<kz_ulong> starts;

  Rings() = default;
  Rings(std::initializer_list<Points> rings) {
    for (const Points& ring : rings) add(ring);
  }
  void add(const Points& ring) {
    starts.push_back(static_cast<kz_ulong>(x.size()));
    for (const auto& [px, py] : ring) {
      x.push_back(px);
      y.push_back(py);
    }
  }
  KZ_GIS_PolygonTree_c tree() const {
    return {0.0,
            0.0,
            0.0,
            0.0,
            static_cast<kz_ulong>(starts.size()),
            starts.data(),
            static_cast<kz_ulong>(x.size()),
            x.data(),
            y.data()};
  }
};

constexpr kz_ulong kUntouched = 4711;

/// What NumberOfConnections gives; kUntouched when the tree is empty.
inline kz_ulong connections(const KZ_GIS_PolygonTree_c& tree) {
  kz_ulong count = kUntouched;
  return tree.NumberOfConnections(&count) == 1 ? count : kUntouched - 1;
}

struct Triangulation {
  kz_ulong status = 0;
  kz_ulong count = kUntouched;
  std::vector<kz_ulong> indices;  // as many as the count says
};

/// Triangulates into a block of exactly the size announced, so that a sanitizer sees any
/// write behind it.
inline Triangulation triangulate(const KZ_GIS_PolygonTree_c& tree, std::size_t room) {
  Triangulation result;
  const std::unique_ptr<kz_ulong[]> block(new kz_ulong[room]);
  result.status = tree.Triangulate(&result.count, block.get());
  if (result.count <= room) result.indices.assign(block.get(), block.get() + result.count);
  return result;
}
inline Triangulation triangulate(const KZ_GIS_PolygonTree_c& tree) {
  return triangulate(tree, connections(tree));
}

/// Twice the area of triangle number `t`, positive when counter-clockwise.
inline double twice_area(const Rings& rings, const Triangulation& mesh, std::size_t t) {
  const kz_ulong a = mesh.indices[3 * t];
  const kz_ulong b = mesh.indices[3 * t + 1];
  const kz_ulong c = mesh.indices[3 * t + 2];
  return (rings.x[b] - rings.x[a]) * (rings.y[c] - rings.y[a]) -
         (rings.y[b] - rings.y[a]) * (rings.x[c] - rings.x[a]);
}
/// Twice the area of all triangles; below zero when one of them is clockwise.  Exact for
/// whole coordinates.
inline double twice_area(const Rings& rings, const Triangulation& mesh) {
  double sum = 0.0;
  for (std::size_t t = 0; t < mesh.indices.size() / 3; ++t) {
    const double area = twice_area(rings, mesh, t);
    if (area < 0.0) return -1.0;
    sum += area;
  }
  return sum;
}

#endif
