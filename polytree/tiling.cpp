// Orientation of every triangle, and what remains of their edges.

#include "polytree/tiling.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "kzgis/exact.h"

namespace kzgis::polytree {

namespace {

/// Directed edges between vertices 1 to n, opposite ones to be weighed against each other.
class EdgeBalance {
 public:
  explicit EdgeBalance(std::size_t vertices, std::size_t edges) : first_(vertices + 2) {
    edges_.reserve(edges);
  }

  /// Adds `weight` times the edge from a to b.
  void add(kz_long a, kz_long b, kz_long weight) {
    edges_.push_back(a < b ? Edge{a, b, weight} : Edge{b, a, -weight});
  }

  /// Whether every edge weighs as much as its opposite.
  bool balanced() {
    // A counting sort by the lower vertex leaves short runs to sort by the higher one.
    for (const Edge& edge : edges_) ++first_[static_cast<std::size_t>(edge.low) + 1];
    for (std::size_t i = 1; i < first_.size(); ++i) first_[i] += first_[i - 1];
    std::vector<std::size_t> next(first_.begin(), first_.end() - 1);
    std::vector<End> ends(edges_.size());
    for (const Edge& edge : edges_) {
      ends[next[static_cast<std::size_t>(edge.low)]++] = {edge.high, edge.weight};
    }
    for (std::size_t low = 0; low + 1 < first_.size(); ++low) {
      if (!run_balanced(std::span(ends).subspan(first_[low], first_[low + 1] - first_[low]))) {
        return false;
      }
    }
    return true;
  }

 private:
  struct Edge {
    kz_long low, high, weight;  // from low to high
  };
  struct End {
    kz_long high, weight;
  };

  static bool run_balanced(std::span<End> run) {
    std::ranges::sort(run, {}, &End::high);
    kz_long weight = 0;
    for (std::size_t i = 0; i < run.size(); ++i) {
      if (i > 0 && run[i].high != run[i - 1].high && weight != 0) return false;
      weight += run[i].weight;
    }
    return weight == 0;
  }

  std::vector<Edge> edges_;
  std::vector<std::size_t> first_;  // where each lower vertex's run begins
};

}  // namespace

bool tiles(std::span<const kz_long> contours, const double (*vertices)[2],
           std::span<const kz_long[3]> triangles) {
  std::size_t count = 0;
  for (const kz_long size : contours) count += static_cast<std::size_t>(size);
  const auto is_vertex = [count](kz_long v) {
    return v >= 1 && static_cast<std::size_t>(v) <= count;
  };

  EdgeBalance edges(count, count + 3 * triangles.size());
  for (const auto& t : triangles) {
    if (!std::ranges::all_of(t, is_vertex)) return false;
    const double* const a = vertices[t[0]];
    const double* const b = vertices[t[1]];
    const double* const c = vertices[t[2]];
    for (const double* const v : {a, b, c}) {
      if (!exact::in_range(v[0]) || !exact::in_range(v[1])) return false;
    }
    if (exact::orientation(a[0], a[1], b[0], b[1], c[0], c[1]) < 0) return false;
    edges.add(t[0], t[1], 1);
    edges.add(t[1], t[2], 1);
    edges.add(t[2], t[0], 1);
  }
  kz_long first = 1;
  for (const kz_long size : contours) {
    for (kz_long i = 0; i < size; ++i) edges.add(first + i, first + (i + 1) % size, -1);
    first += size;
  }
  return edges.balanced();
}

}  // namespace kzgis::polytree
