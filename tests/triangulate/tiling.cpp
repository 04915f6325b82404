#include "triangulate/tiling.h"

#include <algorithm>
#include <utility>

namespace {

Int128 cross(IntPoint a, IntPoint b, IntPoint c) {
  return static_cast<Int128>(b.x - a.x) * (c.y - a.y) -
         static_cast<Int128>(b.y - a.y) * (c.x - a.x);
}

using Edge = std::pair<kz_long, kz_long>;

}  // namespace

int turn(IntPoint a, IntPoint b, IntPoint c) {
  const Int128 product = cross(a, b, c);
  return product > 0 ? 1 : product < 0 ? -1 : 0;
}

Int128 doubled_area(const IntRing& ring) {
  Int128 area = 0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    area += cross({0, 0}, ring[i], ring[(i + 1) % ring.size()]);
  }
  return area;
}

std::string flaw_of(const IntPolygon& polygon, const Triangles& triangles, kz_long first) {
  const std::vector<IntPoint> vertices = polygon.vertices();
  if (static_cast<kz_long>(triangles.size()) != polygon.triangle_count()) {
    return std::to_string(triangles.size()) + " triangles instead of " +
           std::to_string(polygon.triangle_count());
  }

  Int128 area = 0;
  std::vector<Edge> edges;
  for (std::size_t i = 0; i < triangles.size(); ++i) {
    std::array<IntPoint, 3> corner;
    for (std::size_t k = 0; k < 3; ++k) {
      const kz_long v = triangles[i][k] - first;
      if (v < 0 || v >= static_cast<kz_long>(vertices.size())) {
        return "triangle " + std::to_string(i) + " names vertex " + std::to_string(triangles[i][k]);
      }
      corner[k] = vertices[static_cast<std::size_t>(v)];
      edges.emplace_back(v, triangles[i][(k + 1) % 3] - first);
    }
    const Int128 twice = cross(corner[0], corner[1], corner[2]);
    if (twice <= 0) return "triangle " + std::to_string(i) + " is not counter-clockwise";
    area += twice;
  }

  Int128 expected_area = 0;
  std::vector<Edge> boundary;
  kz_long start = 0;
  for (const IntRing& ring : polygon.rings) {
    expected_area += doubled_area(ring);
    const auto size = static_cast<kz_long>(ring.size());
    for (kz_long i = 0; i < size; ++i) boundary.emplace_back(start + i, start + (i + 1) % size);
    start += size;
  }
  if (area != expected_area) return "the areas do not sum up";

  std::sort(edges.begin(), edges.end());
  std::sort(boundary.begin(), boundary.end());
  if (std::adjacent_find(edges.begin(), edges.end()) != edges.end()) {
    return "two triangles lie on one side of an edge";
  }
  std::vector<Edge> inner;
  std::set_difference(edges.begin(), edges.end(), boundary.begin(), boundary.end(),
                      std::back_inserter(inner));
  if (inner.size() + boundary.size() != edges.size()) return "an edge of the polygon is missing";
  std::vector<Edge> turned;
  for (const auto& [a, b] : inner) turned.emplace_back(b, a);
  std::sort(turned.begin(), turned.end());
  if (turned != inner) return "a diagonal has one side only";
  return "";
}
