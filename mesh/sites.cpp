// Numbering the places of vertices by one sort.

#include "mesh/sites.h"

#include <algorithm>
#include <cstddef>

namespace kzgis::mesh {

namespace {

bool before(const exact::Point& a, const exact::Point& b) {
  return a.x != b.x ? a.x < b.x : a.y < b.y;
}

}  // namespace

Sites::Sites(const Rings& rings) {
  // Vertices in front of the first ring belong to none.
  const std::size_t first =
      rings.starts.empty() ? rings.x.size() : static_cast<std::size_t>(rings.starts[0]);
  struct Entry {
    exact::Point point;
    std::uint32_t vertex;
  };
  std::vector<Entry> entries;
  entries.reserve(rings.x.size() - first);
  for (std::size_t i = first; i < rings.x.size(); ++i) {
    entries.push_back({{rings.x[i], rings.y[i]}, static_cast<std::uint32_t>(i)});
  }
  // The caller's numbers break ties, so that the first vertex of each place comes first and the
  // result does not depend on the sort.
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    if (a.point.x != b.point.x) return a.point.x < b.point.x;
    if (a.point.y != b.point.y) return a.point.y < b.point.y;
    return a.vertex < b.vertex;
  });
  points_.reserve(entries.size());
  vertices_.reserve(entries.size());
  site_of_.assign(rings.x.size(), kNone);
  for (const Entry& entry : entries) {
    if (points_.empty() || before(points_.back(), entry.point)) {
      points_.push_back(entry.point);
      vertices_.push_back(entry.vertex);
    }
    site_of_[entry.vertex] = size() - 1;
  }
}

Sites::Sites(const Sites& sites, std::vector<exact::Point> more, std::uint32_t first_vertex) {
  std::sort(more.begin(), more.end(), before);
  points_.reserve(sites.points_.size() + more.size());
  vertices_.reserve(points_.capacity());
  std::uint32_t old = 0;
  for (const exact::Point& point : more) {
    for (; old < sites.size() && !before(point, sites[old]); ++old) {
      points_.push_back(sites[old]);
      vertices_.push_back(sites.vertex(old));
    }
    // Whatever is at the point already stands last.
    if (points_.empty() || before(points_.back(), point)) {
      points_.push_back(point);
      vertices_.push_back(first_vertex++);
    }
  }
  for (; old < sites.size(); ++old) {
    points_.push_back(sites[old]);
    vertices_.push_back(sites.vertex(old));
  }
}

std::uint32_t Sites::at(const exact::Point& place) const {
  const auto found = std::lower_bound(points_.begin(), points_.end(), place, before);
  return static_cast<std::uint32_t>(found - points_.begin());
}

}  // namespace kzgis::mesh
