// The corners of the triangles are what is put together to vertices: those of two triangles with
// a common edge are the same vertex, those of others are not, wherever they lie.

#include "tools/triangulate/extrusion.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

#include "tools/support/command_error.h"

namespace kzgis::tools {

namespace {

/// A side of a triangle: corners are counted through all triangles.
struct Side {
  std::uint32_t low, high;  ///< the vertices, the smaller number first
  bool forward;             ///< the triangle runs from low to high
  std::uint32_t from, to;   ///< the corners
};

/// The sides of all triangles; those of an edge stand together.
std::vector<Side> sorted_sides(std::span<const std::uint32_t> triangles) {
  std::vector<Side> sides;
  sides.reserve(triangles.size());
  for (std::size_t i = 0; i < triangles.size(); ++i) {
    const std::size_t next = i % 3 == 2 ? i - 2 : i + 1;
    const auto [low, high] = std::minmax(triangles[i], triangles[next]);
    sides.push_back({low, high, triangles[i] == low, static_cast<std::uint32_t>(i),
                     static_cast<std::uint32_t>(next)});
  }
  std::sort(sides.begin(), sides.end(), [](const Side& a, const Side& b) {
    return std::pair(a.low, a.high) < std::pair(b.low, b.high);
  });
  return sides;
}

/// Calls `edge` with all sides of an edge at a time.
template <typename Edge>
void for_each_edge(std::span<const Side> sides, Edge edge) {
  for (std::size_t i = 0; i < sides.size();) {
    std::size_t end = i + 1;
    while (end < sides.size() && sides[end].low == sides[i].low &&
           sides[end].high == sides[i].high) {
      ++end;
    }
    edge(sides.subspan(i, end - i));
    i = end;
  }
}

bool is_shared(std::span<const Side> edge) {
  return edge.size() == 2 && edge[0].forward != edge[1].forward;
}

/// Which corners are the same, as a forest of which each tree is a vertex (R. E. Tarjan,
/// "Efficiency of a good but not linear set union algorithm", 1975).
class Corners {
 public:
  explicit Corners(std::size_t count) : parent_(count) {
    std::iota(parent_.begin(), parent_.end(), 0U);
  }
  std::uint32_t root(std::uint32_t corner) {
    while (parent_[corner] != corner) corner = parent_[corner] = parent_[parent_[corner]];
    return corner;
  }
  void unite(std::uint32_t a, std::uint32_t b) { parent_[root(a)] = root(b); }

 private:
  std::vector<std::uint32_t> parent_;
};

WorldPoint above(const WorldPoint& p, double height, bool globe) {
  if (!globe) return {p.x, p.y, p.z + height};
  const double larger = 1.0 + height / std::hypot(p.x, p.y, p.z);
  return {p.x * larger, p.y * larger, p.z * larger};
}

}  // namespace

MeshPart extrude(const MeshPart& part, double height, bool globe) {
  Corners corners(part.triangles.size());
  std::vector<Side> border;
  const std::vector<Side> sides = sorted_sides(part.triangles);
  for_each_edge(std::span(sides), [&](std::span<const Side> edge) {
    if (is_shared(edge)) {
      corners.unite(edge[0].from, edge[1].to);
      corners.unite(edge[0].to, edge[1].from);
    } else {
      border.insert(border.end(), edge.begin(), edge.end());
    }
  });

  MeshPart body;
  body.record = part.record;
  body.attributes = part.attributes;
  // A number for each tree, in the order of the corners; vertex n of the bottom is n + count at
  // the top.
  std::vector<std::uint32_t> vertex(part.triangles.size());
  for (std::uint32_t corner = 0; corner < vertex.size(); ++corner) {
    if (corners.root(corner) != corner) continue;
    vertex[corner] = static_cast<std::uint32_t>(body.vertices.size());
    body.vertices.push_back(part.vertices[part.triangles[corner]]);
  }
  const auto count = static_cast<std::uint32_t>(body.vertices.size());
  const auto bottom = [&](std::uint32_t corner) { return vertex[corners.root(corner)]; };
  const auto top = [&](std::uint32_t corner) { return bottom(corner) + count; };
  for (std::uint32_t v = 0; v < count; ++v) {
    body.vertices.push_back(above(body.vertices[v], height, globe));
  }

  const auto add = [&body](std::uint32_t a, std::uint32_t b, std::uint32_t c) {
    body.triangles.insert(body.triangles.end(), {a, b, c});
  };
  for (std::uint32_t i = 0; i < part.triangles.size(); i += 3) {
    add(bottom(i), bottom(i + 2), bottom(i + 1));
    add(top(i), top(i + 1), top(i + 2));
  }
  for (const Side& side : border) {
    add(bottom(side.from), bottom(side.to), top(side.to));
    add(bottom(side.from), top(side.to), top(side.from));
  }
  if (!is_closed(body.triangles)) throw CommandError("a body is not closed");
  return body;
}

bool is_closed(std::span<const std::uint32_t> triangles) {
  bool closed = true;
  const std::vector<Side> sides = sorted_sides(triangles);
  for_each_edge(std::span(sides),
                [&closed](std::span<const Side> edge) { closed = closed && is_shared(edge); });
  return closed;
}

}  // namespace kzgis::tools
