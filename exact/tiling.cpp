// Orientation of every triangle, and the edges that no two of them share.
//
// Edges are brought together by a counting sort over their lower vertices and directions, and short
// sorts within its runs: no comparison of vertices is needed, and the memory is a number an edge,
// or two where circles are asked for.

#include "exact/tiling.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
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

/// An edge among those of its lower vertex and its direction: the higher vertex, and the apex where
/// circles are asked for.
struct End {
  End() = default;
  End(std::uint32_t vertex, std::uint32_t) : high(vertex) {}
  std::uint32_t high = 0;
};
struct EndWithApex {
  EndWithApex() = default;
  EndWithApex(std::uint32_t vertex, std::uint32_t corner) : high(vertex), apex(corner) {}
  std::uint32_t high = 0, apex = 0;
};

/// Sorts edges by their higher vertices: most runs have but a few.
template <class AnyEnd>
void sort_run(std::span<AnyEnd> run) {
  constexpr std::size_t kMostByInsertion = 12;
  if (run.size() > kMostByInsertion) {
    std::sort(run.begin(), run.end(),
              [](const AnyEnd& a, const AnyEnd& b) { return a.high < b.high; });
    return;
  }
  for (std::size_t i = 1; i < run.size(); ++i) {
    const AnyEnd end = run[i];
    std::size_t place = i;
    for (; place > 0 && end.high < run[place - 1].high; --place) run[place] = run[place - 1];
    run[place] = end;
  }
}

/// Whether an edge between two triangles is locally Delaunay.
bool is_delaunay(std::span<const Point>, std::uint32_t, const End&, const End&) { return true; }
bool is_delaunay(std::span<const Point> vertices, std::uint32_t low, const EndWithApex& up,
                 const EndWithApex& down) {
  return up.apex == kNoApex || down.apex == kNoApex ||
         in_circle(vertices[low], vertices[up.high], vertices[up.apex], vertices[down.apex]) <= 0;
}

/// Whether the edges from one vertex to higher ones have each its opposite, and none comes twice.
/// Sorted by the higher vertex, an edge and its opposite stand in the same place.
template <class AnyEnd>
bool cancel(std::span<const Point> vertices, std::uint32_t low, std::span<AnyEnd> up,
            std::span<AnyEnd> down) {
  if (up.size() != down.size()) return false;
  sort_run(up);
  sort_run(down);
  for (std::size_t i = 0; i < up.size(); ++i) {
    if (down[i].high != up[i].high || (i > 0 && up[i - 1].high == up[i].high) ||
        !is_delaunay(vertices, low, up[i], down[i])) {
      return false;
    }
  }
  return true;
}

/// Whether all edges have their opposites, and none comes twice.
template <class AnyEnd>
bool all_cancel(std::span<const Point> vertices, std::span<const Side> sides,
                std::span<const std::uint32_t> triangles) {
  // Two runs for each vertex: of the edges that lead up from it, and of those down to it.
  const auto run_of = [](std::uint32_t from, std::uint32_t to) {
    return from < to ? 2 * std::size_t{from} : 2 * std::size_t{to} + 1;
  };
  std::vector<std::uint32_t> begins(2 * vertices.size() + 1);
  visit_edges(sides, triangles, [&](std::uint32_t from, std::uint32_t to, std::uint32_t) {
    ++begins[run_of(from, to) + 1];
  });
  for (std::size_t i = 1; i < begins.size(); ++i) begins[i] += begins[i - 1];
  std::vector<AnyEnd> ends(triangles.size() + sides.size());
  visit_edges(sides, triangles, [&](std::uint32_t from, std::uint32_t to, std::uint32_t apex) {
    ends[begins[run_of(from, to)]++] = AnyEnd(std::max(from, to), apex);
  });
  // Each run has moved its beginning to its end, where the next one begins.
  std::uint32_t begin = 0;
  for (std::uint32_t low = 0; low < vertices.size(); ++low) {
    const std::uint32_t middle = begins[2 * std::size_t{low}];
    const std::uint32_t end = begins[2 * std::size_t{low} + 1];
    if (!cancel(vertices, low, std::span(ends).subspan(begin, middle - begin),
                std::span(ends).subspan(middle, end - middle))) {
      return false;
    }
    begin = end;
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
  if (triangles.size() + sides.size() > std::numeric_limits<std::uint32_t>::max()) return false;
  return inner == Inner::any ? all_cancel<End>(vertices, sides, triangles)
                             : all_cancel<EndWithApex>(vertices, sides, triangles);
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
