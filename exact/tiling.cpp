// Orientation of every triangle, and the edges that no two of them share.
//
// Edges are brought together by a counting sort over their lower vertices and short sorts within
// its runs: no comparison of vertices is needed, and the memory is three numbers an edge.

#include "exact/tiling.h"

#include <algorithm>
#include <cstddef>

namespace kzgis::exact {

namespace {

/// Stands for the corner that a side has not.
constexpr std::uint32_t kNoApex = 0xFFFFFFFF;

/// Directed edges between vertices 0 to n - 1, which are to cancel in pairs.
class Edges {
 public:
  Edges(std::span<const Point> vertices, std::size_t edges, Inner inner)
      : vertices_(vertices), inner_(inner), first_(vertices.size() + 1) {
    edges_.reserve(edges);
  }

  /// @param apex  the third corner of the edge's triangle; `kNoApex` for a side
  void add(std::uint32_t from, std::uint32_t to, std::uint32_t apex) {
    edges_.push_back({std::min(from, to), {std::max(from, to), apex, from < to}});
  }

  /// Whether every edge is there once and has its opposite.
  bool cancel() {
    // A counting sort by the lower vertex leaves short runs to sort by the higher one.
    for (const Edge& edge : edges_) ++first_[std::size_t{edge.low} + 1];
    for (std::size_t i = 1; i < first_.size(); ++i) first_[i] += first_[i - 1];
    std::vector<std::size_t> next(first_.begin(), first_.end() - 1);
    std::vector<End> ends(edges_.size());
    for (const Edge& edge : edges_) ends[next[edge.low]++] = edge.end;
    for (std::uint32_t low = 0; low + 1 < first_.size(); ++low) {
      if (!cancel(low, std::span(ends).subspan(first_[low], first_[low + 1] - first_[low]))) {
        return false;
      }
    }
    return true;
  }

 private:
  struct End {
    std::uint32_t high;
    std::uint32_t apex;
    bool up;  // from the lower vertex to the higher one
  };
  struct Edge {
    std::uint32_t low;
    End end;
  };

  /// The same for the edges of one lower vertex.  Sorted by the other vertex and direction, each
  /// edge stands beside its opposite; a third one between the same vertices fits nowhere.
  bool cancel(std::uint32_t low, std::span<End> run) const {
    std::sort(run.begin(), run.end(), [](const End& a, const End& b) {
      return a.high != b.high ? a.high < b.high : a.up < b.up;
    });
    if (run.size() % 2 != 0) return false;
    for (std::size_t i = 0; i < run.size(); i += 2) {
      const End& down = run[i];
      const End& up = run[i + 1];
      if (down.high != up.high || down.up == up.up) return false;
      if (inner_ == Inner::delaunay && down.apex != kNoApex && up.apex != kNoApex &&
          in_circle(vertices_[low], vertices_[up.high], vertices_[up.apex], vertices_[down.apex]) >
              0) {
        return false;
      }
    }
    return true;
  }

  std::span<const Point> vertices_;
  Inner inner_;
  std::vector<Edge> edges_;
  std::vector<std::size_t> first_;  // where each lower vertex's run begins
};

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

}  // namespace

bool tiles(std::span<const Point> vertices, std::span<const Side> sides,
           std::span<const std::uint32_t> triangles, Flat flat, Inner inner) {
  if (triangles.size() % 3 != 0 || !counter_clockwise(vertices, triangles, flat)) return false;
  Edges edges(vertices, triangles.size() + sides.size(), inner);
  for (std::size_t i = 0; i < triangles.size(); i += 3) {
    edges.add(triangles[i], triangles[i + 1], triangles[i + 2]);
    edges.add(triangles[i + 1], triangles[i + 2], triangles[i]);
    edges.add(triangles[i + 2], triangles[i], triangles[i + 1]);
  }
  // Seen from outside the region its sides run backwards, and cancel what is left over.
  for (const Side& side : sides) {
    if (side.from >= vertices.size() || side.to >= vertices.size()) return false;
    edges.add(side.to, side.from, kNoApex);
  }
  return edges.cancel();
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
