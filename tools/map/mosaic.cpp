// Which edges two polygons have in common, and colours that tell neighbours apart.

#include "tools/map/mosaic.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace kzgis::map {
namespace {

/// An edge of a shape's outline.  Neighbours run along it in opposite directions, so its ends
/// are kept in an order of their own.
struct Edge {
  Geo a, b;  // in order, whichever way the ring runs
  std::size_t shape;

  auto ends() const { return std::tie(a.lon, a.lat, b.lon, b.lat); }
};

Edge make_edge(const Geo& a, const Geo& b, std::size_t shape) {
  if (std::tie(b.lon, b.lat) < std::tie(a.lon, a.lat)) return {b, a, shape};
  return {a, b, shape};
}

bool before(const Edge& x, const Edge& y) {
  return std::tuple_cat(x.ends(), std::tie(x.shape)) < std::tuple_cat(y.ends(), std::tie(y.shape));
}

/// Every edge of every outline, equal ones side by side, those of the first shape first.
std::vector<Edge> sorted_edges(const std::vector<Shape>& shapes) {
  std::vector<Edge> edges;
  for (std::size_t s = 0; s < shapes.size(); ++s) {
    for (const GeoLine& line : shapes[s].outlines) {
      for (std::size_t i = 1; i < line.size(); ++i) {
        edges.push_back(make_edge(line[i - 1], line[i], s));
      }
    }
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

/// Leaves the coasts in the shape's outlines and moves the borders that it is the first
/// shape of to `borders`.
void split_outlines(Shape& shape, std::size_t index, const std::vector<Edge>& shared,
                    std::vector<GeoLine>& borders) {
  std::vector<GeoLine> coasts;
  for (const GeoLine& line : shape.outlines) {
    std::vector<GeoLine>* previous = nullptr;
    for (std::size_t i = 1; i < line.size(); ++i) {
      const Edge edge = make_edge(line[i - 1], line[i], 0);
      const auto found = std::lower_bound(shared.begin(), shared.end(), edge, before);
      const bool is_shared = found != shared.end() && found->ends() == edge.ends();
      std::vector<GeoLine>* target = is_shared ? &borders : &coasts;
      if (is_shared && found->shape != index) {
        previous = nullptr;  // its first shape draws it
        continue;
      }
      if (target != previous) target->push_back({line[i - 1]});
      target->back().push_back(line[i]);
      previous = target;
    }
  }
  shape.outlines = std::move(coasts);
}

}  // namespace

Mosaic take_mosaic(std::vector<Shape>& shapes) {
  Mosaic mosaic;
  mosaic.neighbours.resize(shapes.size());
  const std::vector<Edge> shared = shared_edges(sorted_edges(shapes), mosaic);
  for (std::size_t i = 0; i < shapes.size(); ++i) {
    split_outlines(shapes[i], i, shared, mosaic.borders);
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
