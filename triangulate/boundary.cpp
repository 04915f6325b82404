// The edge that triangles have together.

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "kzgis/triangulate.h"

namespace kzgis::triangulation {

namespace {

/// Directed edges between vertices 0 to n - 1.
class Edges {
 public:
  Edges(std::size_t vertices, std::size_t edges) : first_(vertices + 1) { edges_.reserve(edges); }

  void add(kz_long from, kz_long to) {
    edges_.push_back({std::min(from, to), std::max(from, to), from < to});
  }

  /// Whether every edge is there once and has its opposite.
  bool pair_up() {
    // A counting sort by the lower vertex leaves short runs to sort by the higher one.
    for (const Edge& edge : edges_) ++first_[static_cast<std::size_t>(edge.low) + 1];
    for (std::size_t i = 1; i < first_.size(); ++i) first_[i] += first_[i - 1];
    std::vector<std::size_t> next(first_.begin(), first_.end() - 1);
    std::vector<End> ends(edges_.size());
    for (const Edge& edge : edges_) {
      ends[next[static_cast<std::size_t>(edge.low)]++] = {edge.high, edge.up};
    }
    for (std::size_t low = 0; low + 1 < first_.size(); ++low) {
      if (!pair_up(std::span(ends).subspan(first_[low], first_[low + 1] - first_[low]))) {
        return false;
      }
    }
    return true;
  }

 private:
  struct Edge {
    kz_long low, high;
    bool up;  // from low to high
  };
  struct End {
    kz_long high;
    bool up;
  };

  static bool pair_up(std::span<End> run) {
    std::sort(run.begin(), run.end(), [](const End& a, const End& b) {
      return a.high != b.high ? a.high < b.high : a.up < b.up;
    });
    if (run.size() % 2 != 0) return false;
    for (std::size_t i = 0; i < run.size(); i += 2) {
      if (run[i].high != run[i + 1].high || run[i].up == run[i + 1].up) return false;
    }
    return true;
  }

  std::vector<Edge> edges_;
  std::vector<std::size_t> first_;  // where each lower vertex's run begins
};

}  // namespace

bool bounded_by(std::span<const kz_long> contours, std::span<const kz_long> triangles) {
  std::size_t count = 0;
  for (const kz_long size : contours) count += static_cast<std::size_t>(size);
  const auto is_vertex = [count](kz_long v) {
    return v >= 0 && static_cast<std::size_t>(v) < count;
  };
  if (triangles.size() % 3 != 0 || !std::ranges::all_of(triangles, is_vertex)) return false;
  Edges edges(count, count + triangles.size());
  for (std::size_t i = 0; i < triangles.size(); i += 3) {
    edges.add(triangles[i], triangles[i + 1]);
    edges.add(triangles[i + 1], triangles[i + 2]);
    edges.add(triangles[i + 2], triangles[i]);
  }
  // Around the outside of the polygon its edges run backwards.
  kz_long first = 0;
  for (const kz_long size : contours) {
    for (kz_long i = 0; i < size; ++i) edges.add(first + (i + 1) % size, first + i);
    first += size;
  }
  return edges.pair_up();
}

}  // namespace kzgis::triangulation
