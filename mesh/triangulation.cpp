// Finding the neighbours of triangles, and changing them.

#include "mesh/triangulation.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace kzgis::mesh {

Triangulation::Triangulation(std::vector<std::uint32_t> corners)
    : corners_(std::move(corners)), twins_(corners_.size(), kNone) {
  // Half-edges come together by their lower ends, and by their higher ends among those of one: most
  // points have but a few, and hubs of many are sorted.
  std::uint32_t points = 0;
  for (const std::uint32_t corner : corners_) points = std::max(points, corner + 1);
  std::vector<std::uint32_t> ends(std::size_t{points} + 1);
  for (std::uint32_t h = 0; h < size(); ++h) ++ends[std::min(from(h), to(h)) + 1];
  std::partial_sum(ends.begin(), ends.end(), ends.begin());
  struct Entry {
    std::uint32_t high, half_edge;
  };
  std::vector<Entry> entries(corners_.size());
  for (std::uint32_t h = 0; h < size(); ++h) {
    entries[ends[std::min(from(h), to(h))]++] = {std::max(from(h), to(h)), h};
  }
  // Each run has moved its beginning to its end, where the next one begins.
  Entry* begin = entries.data();
  for (std::uint32_t low = 0; low < points; ++low) {
    Entry* const end = entries.data() + ends[low];
    std::sort(begin, end, [](const Entry& a, const Entry& b) { return a.high < b.high; });
    for (const Entry* entry = begin; end - entry >= 2; ++entry) {
      if (entry->high == (entry + 1)->high) join(entry->half_edge, (entry + 1)->half_edge);
    }
    begin = end;
  }
}

void Triangulation::flip(std::uint32_t h) {
  const std::uint32_t g = twins_[h];
  const std::uint32_t h_apex = apex(h);
  const std::uint32_t g_apex = apex(g);
  corners_[h] = g_apex;
  corners_[g] = h_apex;
  join(h, twins_[previous(g)]);
  join(g, twins_[previous(h)]);
  join(previous(h), previous(g));
}

std::uint32_t Triangulation::split_triangle(std::uint32_t h, std::uint32_t point) {
  const std::uint32_t second = add(to(h), apex(h), point);
  const std::uint32_t third = add(apex(h), from(h), point);
  join(second, twins_[next(h)]);
  join(third, twins_[previous(h)]);
  corners_[previous(h)] = point;
  join(next(h), previous(second));
  join(next(second), previous(third));
  join(next(third), previous(h));
  return previous(h);
}

std::uint32_t Triangulation::split_edge(std::uint32_t h, std::uint32_t point) {
  // The half of a triangle at the end of the half-edge becomes a triangle of its own.
  const auto cut = [this, point](std::uint32_t edge) {
    const std::uint32_t half = add(point, to(edge), apex(edge));
    join(next(half), twins_[next(edge)]);
    corners_[next(edge)] = point;
    join(next(edge), previous(half));
    return half;
  };
  const std::uint32_t g = twins_[h];
  const std::uint32_t half = cut(h);
  if (g != kNone) {
    join(h, cut(g));
    join(g, half);
  }
  return half;
}

std::uint32_t Triangulation::add(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
  const std::uint32_t h = size();
  corners_.insert(corners_.end(), {a, b, c});
  twins_.insert(twins_.end(), 3, kNone);
  return h;
}

void Triangulation::join(std::uint32_t h, std::uint32_t g) {
  if (h != kNone) twins_[h] = g;
  if (g != kNone) twins_[g] = h;
}

}  // namespace kzgis::mesh
