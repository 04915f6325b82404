// Orientation of every triangle, and the edges that no two of them share.
//
// Edges are brought together by a counting sort over their lower vertices and directions, and short
// sorts within its runs: no comparison of vertices is needed, and the memory is two numbers an
// edge.

#include "exact/tiling.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kzgis::exact {

namespace {

/// Stands for the corner that a side has not.
constexpr std::uint32_t kNoApex = 0xFFFFFFFF;

/// So many vertices have a bit each in a word.
constexpr std::size_t kFew = 64;

/// Whether every triangle has three vertices that can be judged, and runs the right way.
bool counter_clockwise(std::span<const Point> vertices, std::span<const std::uint32_t> triangles,
                       Flat flat) {
  for (std::size_t i = 0; i < triangles.size(); i += 3) {
    for (std::size_t corner = i; corner < i + 3; ++corner) {
      if (triangles[corner] >= vertices.size()) return false;
      const Point& p = vertices[triangles[corner]];
      if (!in_range(p.x) || !in_range(p.y)) return false;
    }
    const int turn =
        orientation(vertices[triangles[i]], vertices[triangles[i + 1]], vertices[triangles[i + 2]]);
    if (turn < 0 || (turn == 0 && flat == Flat::refused)) return false;
  }
  return true;
}

/// Visits the edges of triangles, and the sides as they are seen from outside the region,
/// backwards: what is to cancel.
///
/// @param visit  takes the two ends of an edge, and the third corner of its triangle or `kNoApex`
template <class Visit>
void visit_edges(std::span<const Side> sides, std::span<const std::uint32_t> triangles,
                 const Visit& visit) {
  for (std::size_t i = 0; i < triangles.size(); i += 3) {
    const std::uint32_t a = triangles[i];
    const std::uint32_t b = triangles[i + 1];
    const std::uint32_t c = triangles[i + 2];
    visit(a, b, c);
    visit(b, c, a);
    visit(c, a, b);
  }
  for (const Side& side : sides) visit(side.to, side.from, kNoApex);
}

/// Whether every edge between few vertices is there once and has its opposite.
bool few_cancel(std::span<const Side> sides, std::span<const std::uint32_t> triangles) {
  std::array<std::uint64_t, kFew> leads_to{};
  bool once = true;
  visit_edges(sides, triangles, [&](std::uint32_t from, std::uint32_t to, std::uint32_t) {
    once &= (leads_to[from] >> to & 1) == 0;
    leads_to[from] |= std::uint64_t{1} << to;
  });
  bool opposed = true;
  visit_edges(sides, triangles, [&](std::uint32_t from, std::uint32_t to, std::uint32_t) {
    opposed &= (leads_to[to] >> from & 1) != 0 && from != to;
  });
  return once && opposed;
}

/// An edge among those of its lower vertex and its direction: the higher vertex and the apex.
struct End {
  explicit End(std::uint32_t high, std::uint32_t apex) : bits(std::uint64_t{high} << 32 | apex) {}
  End() = default;

  std::uint32_t high() const { return static_cast<std::uint32_t>(bits >> 32); }
  std::uint32_t apex() const { return static_cast<std::uint32_t>(bits); }
  bool operator<(const End& other) const { return bits < other.bits; }

  std::uint64_t bits = 0;
};

/// Whether the edges from one vertex to higher ones have each its opposite, and none comes twice.
/// Sorted by the higher vertex, an edge and its opposite stand in the same place.
bool cancel(std::span<const Point> vertices, std::uint32_t low, std::span<End> up,
            std::span<End> down, Inner inner) {
  if (up.size() != down.size()) return false;
  std::sort(up.begin(), up.end());
  std::sort(down.begin(), down.end());
  for (std::size_t i = 0; i < up.size(); ++i) {
    const std::uint32_t high = up[i].high();
    if (down[i].high() != high || (i > 0 && up[i - 1].high() == high)) return false;
    if (inner == Inner::delaunay && up[i].apex() != kNoApex && down[i].apex() != kNoApex &&
        in_circle(vertices[low], vertices[high], vertices[up[i].apex()], vertices[down[i].apex()]) >
            0) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool tiles(std::span<const Point> vertices, std::span<const Side> sides,
           std::span<const std::uint32_t> triangles, Flat flat, Inner inner) {
  if (triangles.size() % 3 != 0 || !counter_clockwise(vertices, triangles, flat)) return false;
  for (const Side& side : sides) {
    if (side.from >= vertices.size() || side.to >= vertices.size()) return false;
  }
  if (vertices.size() <= kFew && inner == Inner::any) return few_cancel(sides, triangles);
  // Two runs for each vertex: of the edges that lead up from it, and of those down to it.
  const auto run_of = [](std::uint32_t from, std::uint32_t to) {
    return from < to ? 2 * std::size_t{from} : 2 * std::size_t{to} + 1;
  };
  std::vector<std::size_t> begins(2 * vertices.size() + 1);
  visit_edges(sides, triangles, [&](std::uint32_t from, std::uint32_t to, std::uint32_t) {
    ++begins[run_of(from, to) + 1];
  });
  for (std::size_t i = 1; i < begins.size(); ++i) begins[i] += begins[i - 1];
  std::vector<End> ends(triangles.size() + sides.size());
  visit_edges(sides, triangles, [&](std::uint32_t from, std::uint32_t to, std::uint32_t apex) {
    ends[begins[run_of(from, to)]++] = End(std::max(from, to), apex);
  });
  // Each run has moved its beginning to its end, where the next one begins.
  std::size_t begin = 0;
  for (std::uint32_t low = 0; low < vertices.size(); ++low) {
    const std::size_t middle = begins[2 * std::size_t{low}];
    const std::size_t end = begins[2 * std::size_t{low} + 1];
    if (!cancel(vertices, low, std::span(ends).subspan(begin, middle - begin),
                std::span(ends).subspan(middle, end - middle), inner)) {
      return false;
    }
    begin = end;
  }
  return true;
}

std::vector<Side> sides_of_contours(std::span<const std::uint32_t> sizes) {
  std::vector<Side> sides;
  std::uint32_t first = 0;
  for (const std::uint32_t size : sizes) {
    for (std::uint32_t i = 0; i < size; ++i) sides.push_back({first + i, first + (i + 1) % size});
    first += size;
  }
  return sides;
}

}  // namespace kzgis::exact
