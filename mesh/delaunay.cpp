// Lawson's flips, driven by a stack of edges in question.

#include "mesh/delaunay.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

#include "mesh/net.h"

namespace kzgis::mesh {

bool is_delaunay(std::span<const exact::Point> points, const Triangulation& triangles,
                 std::uint32_t half_edge) {
  const std::uint32_t a = triangles.from(half_edge);
  const std::uint32_t b = triangles.to(half_edge);
  const std::uint32_t c = triangles.apex(half_edge);
  const std::uint32_t d = triangles.apex(triangles.twin(half_edge));
  const int side = exact::in_circle(points[a], points[b], points[c], points[d]);
  return side != 0 ? side < 0 : std::min(a, b) < std::min(c, d);
}

std::size_t restore_delaunay(std::span<const exact::Point> points, Triangulation& triangles,
                             std::vector<std::uint32_t>& questioned, std::size_t most) {
  std::size_t flips = 0;
  while (!questioned.empty() && flips < most) {
    const std::uint32_t h = questioned.back();
    questioned.pop_back();
    const std::uint32_t g = triangles.twin(h);
    if (g == kNone || is_delaunay(points, triangles, h)) continue;
    triangles.flip(h);
    ++flips;
    // The four sides of the quadrangle have other triangles beside them now.
    questioned.insert(questioned.end(), {h, Triangulation::next(h), g, Triangulation::next(g)});
  }
  return flips;
}

namespace {

/// Flips all edges until they are locally Delaunay, or as many flips were made as there may be.
/// @return whether they are
bool flip_all(std::span<const exact::Point> points, Triangulation& triangles, std::size_t most) {
  std::vector<std::uint32_t> questioned;
  std::size_t flips = 0;
  for (std::uint32_t h = 0; h < triangles.size(); ++h) {
    if (triangles.twin(h) == kNone || triangles.twin(h) < h) continue;
    questioned.push_back(h);
    flips += restore_delaunay(points, triangles, questioned, most - flips);
    if (flips >= most) return false;
  }
  return true;
}

/// Triangles from scratch: all points with sides are triangulated, the sides forced in, and the
/// triangles of the inside taken.
std::vector<std::uint32_t> triangulate_from_scratch(std::span<const exact::Point> points,
                                                    std::span<const exact::Side> sides) {
  std::vector<char> has_side(points.size(), 0);
  for (const exact::Side& side : sides) has_side[side.from] = has_side[side.to] = 1;
  std::vector<std::uint32_t> numbers;
  for (std::uint32_t point = 0; point < has_side.size(); ++point) {
    if (has_side[point] != 0) numbers.push_back(point);
  }
  Net net(points, numbers);
  std::vector<std::uint32_t> bounds;  // arcs with the inside on their left
  bounds.reserve(sides.size());
  for (const exact::Side& side : sides) bounds.push_back(net.force(side.from, side.to));
  // From the bounds inwards, every triangle once.
  enum : char { unseen, bound, taken };
  std::vector<char> arcs(net.size(), unseen);
  for (const std::uint32_t arc : bounds) arcs[arc ^ 1] = bound;
  std::vector<std::uint32_t> corners;
  std::vector<std::uint32_t>& open = bounds;
  while (!open.empty()) {
    const std::uint32_t first = open.back();
    open.pop_back();
    if (arcs[first] != unseen) continue;
    std::uint32_t arc = first;
    for (int i = 0; i < 3; ++i, arc = net.round_face(arc)) {
      arcs[arc] = taken;
      corners.push_back(net.from(arc));
      open.push_back(arc ^ 1);
    }
  }
  return corners;
}

}  // namespace

std::vector<std::uint32_t> make_delaunay(std::span<const exact::Point> points,
                                         std::span<const exact::Side> sides,
                                         std::vector<std::uint32_t> triangles) {
  constexpr std::size_t kFlipsPerTriangle = 8;
  const std::size_t most = kFlipsPerTriangle * triangles.size() / 3 + 1000;
  Triangulation flipped(std::move(triangles));
  if (!flip_all(points, flipped, most)) {
    // What is left to flip are diagonals of vertices on one circle.
    flipped = Triangulation(triangulate_from_scratch(points, sides));
    flip_all(points, flipped, std::numeric_limits<std::size_t>::max());
  }
  return flipped.release();
}

}  // namespace kzgis::mesh
