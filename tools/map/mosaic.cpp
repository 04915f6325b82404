// Which edges two polygons have in common, and colours that tell neighbours apart.

#include "tools/map/mosaic.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "tools/map/coasts.h"

namespace kzgis::map {
namespace {

/// An edge of a shape's outline.  Neighbours run along it in opposite directions, so its ends
/// are kept in an order of their own.
struct Edge {
  double lon, lat, end_lon, end_lat;  // in order, whichever way the ring runs
  std::size_t shape;

  auto ends() const { return std::tie(lon, lat, end_lon, end_lat); }
};

/// @param i  the vertex of the shape's outline that the edge ends in
Edge make_edge(const Outline& outline, std::size_t i, std::size_t shape) {
  const Edge edge{outline.x[i - 1], outline.y[i - 1], outline.x[i], outline.y[i], shape};
  if (std::tie(edge.end_lon, edge.end_lat) < std::tie(edge.lon, edge.lat)) {
    return {edge.end_lon, edge.end_lat, edge.lon, edge.lat, shape};
  }
  return edge;
}

/// Calls `use(i)` for every vertex that an edge ends in.
template <typename Use>
void for_each_edge(const Outline& outline, Use use) {
  std::size_t line = 0;
  for (std::size_t i = 0; i < outline.x.size(); ++i) {
    if (line < outline.starts.size() && static_cast<std::size_t>(outline.starts[line]) == i) {
      ++line;
    } else {
      use(i);
    }
  }
}

bool before(const Edge& x, const Edge& y) {
  return std::tuple_cat(x.ends(), std::tie(x.shape)) < std::tuple_cat(y.ends(), std::tie(y.shape));
}

/// Every edge of every outline, equal ones side by side, those of the first shape first.
std::vector<Edge> sorted_edges(const std::vector<Outline>& outlines) {
  std::vector<Edge> edges;
  for (std::size_t s = 0; s < outlines.size(); ++s) {
    for_each_edge(outlines[s],
                  [&](std::size_t i) { edges.push_back(make_edge(outlines[s], i, s)); });
  }
  std::sort(edges.begin(), edges.end(), before);
  return edges;
}

/// The shared ones of sorted edges, each once, under the first of its shapes.
std::vector<Edge> shared_edges(const std::vector<Edge>& edges, Mosaic& mosaic) {
  std::vector<Edge> shared;
  for (std::size_t i = 1; i < edges.size(); ++i) {
    const Edge& x = edges[i - 1];
    const Edge& y = edges[i];
    if (x.ends() != y.ends() || x.shape == y.shape) continue;
    mosaic.neighbours[x.shape].push_back(y.shape);
    mosaic.neighbours[y.shape].push_back(x.shape);
    if (shared.empty() || shared.back().ends() != x.ends()) shared.push_back(x);
  }
  return shared;
}

/// Leaves the coasts in the shape's outline and moves the borders that it is the first shape of to
/// `borders`.
void split_outline(Outline& outline, std::size_t index, const std::vector<Edge>& shared,
                   Outline& borders) {
  Outline coasts;
  const Outline* previous = nullptr;
  std::size_t last = 0;
  for_each_edge(outline, [&](std::size_t i) {
    const Edge edge = make_edge(outline, i, 0);
    const auto found = std::lower_bound(shared.begin(), shared.end(), edge, before);
    const bool is_shared = found != shared.end() && found->ends() == edge.ends();
    Outline& lines = is_shared ? borders : coasts;
    const bool goes_on = previous == &lines && last + 1 == i;
    previous = nullptr;
    if (is_shared && found->shape != index) return;  // its first shape draws it
    if (!goes_on) begin_line(lines, outline.x[i - 1], outline.y[i - 1]);
    go_to(lines, outline.x[i], outline.y[i]);
    previous = &lines;
    last = i;
  });
  outline = std::move(coasts);
}

}  // namespace

Mosaic take_mosaic(std::vector<Outline>& outlines) {
  Mosaic mosaic;
  mosaic.neighbours.resize(outlines.size());
  const std::vector<Edge> shared = shared_edges(sorted_edges(outlines), mosaic);
  for (std::size_t i = 0; i < outlines.size(); ++i) {
    split_outline(outlines[i], i, shared, mosaic.borders);
  }
  return mosaic;
}

// Greedy colouring in the order of the file: it may need more colours than the four that a plane
// map could do with.  Where neighbours have taken all tints, two neighbours share one.
std::vector<std::size_t> assign_tints(const Mosaic& mosaic, std::size_t count) {
  const std::size_t none = count;
  std::vector<std::size_t> tint(mosaic.neighbours.size(), none);
  std::vector<std::size_t> used(count, 0);
  for (std::size_t shape = 0; shape < tint.size(); ++shape) {
    std::vector<bool> taken(count, false);
    for (const std::size_t other : mosaic.neighbours[shape]) {
      if (tint[other] != none) taken[tint[other]] = true;
    }
    // Of the tints no neighbour has, the rarest so far; with none left, the rarest of all.
    const auto rank = [&](std::size_t t) {
      return std::pair(static_cast<bool>(taken[t]), used[t]);
    };
    std::size_t best = 0;
    for (std::size_t t = 1; t < count; ++t) {
      if (rank(t) < rank(best)) best = t;
    }
    tint[shape] = best;
    ++used[best];
  }
  return tint;
}

}  // namespace kzgis::map
