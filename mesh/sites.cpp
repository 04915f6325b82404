// Numbering the places of vertices by one sort, which begins with strips of the plane.

#include "mesh/sites.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace kzgis::mesh {

namespace {

bool before(const exact::Point& a, const exact::Point& b) {
  return a.x != b.x ? a.x < b.x : a.y < b.y;
}

struct Entry {
  exact::Point point;
  std::uint32_t vertex;

  /// The caller's numbers break ties, so that the first vertex of each place comes first and the
  /// result does not depend on the sort.
  bool operator<(const Entry& other) const {
    if (point.x != other.point.x) return point.x < other.point.x;
    if (point.y != other.point.y) return point.y < other.point.y;
    return vertex < other.vertex;
  }
};

/// Puts vertices into strips of the plane, from the left to the right, as many as there are
/// quarters of vertices.
///
/// Rounding keeps the order of numbers in each step, so that of two vertices in different strips
/// the one farther to the left is in the strip farther to the left.
class Strips {
 public:
  explicit Strips(std::span<const double> x)
      : least_(*std::min_element(x.begin(), x.end())),
        count_(x.size() / 4),
        scale_(static_cast<double>(count_) / (*std::max_element(x.begin(), x.end()) - least_)) {
    // Coordinates that are all the same, or differ by too little, make one strip.
    if (!std::isfinite(scale_)) {
      count_ = 1;
      scale_ = 0.0;
    }
  }

  std::size_t count() const { return count_; }
  std::size_t of(double x) const {
    return std::min(static_cast<std::size_t>((x - least_) * scale_), count_ - 1);
  }

 private:
  double least_;
  std::size_t count_;
  double scale_;
};

/// The vertices of all rings by growing x and, at the same x, by growing y.
///
/// What is spread evenly over strips needs no more than to be put there and sorted among a few
/// others; what is not is sorted all the same.
std::vector<Entry> sorted_vertices(const Rings& rings) {
  constexpr std::size_t kFew = 64;
  // Vertices in front of the first ring belong to none.
  const std::size_t first =
      rings.starts.empty() ? rings.x.size() : static_cast<std::size_t>(rings.starts[0]);
  const auto entry = [&rings](std::size_t i) {
    return Entry{{rings.x[i], rings.y[i]}, static_cast<std::uint32_t>(i)};
  };
  std::vector<Entry> entries(rings.x.size() - first);
  if (entries.size() < kFew) {
    for (std::size_t i = 0; i < entries.size(); ++i) entries[i] = entry(first + i);
    std::sort(entries.begin(), entries.end());
    return entries;
  }
  const Strips strips(rings.x.subspan(first));
  std::vector<std::uint32_t> ends(strips.count() + 1);
  for (const double x : rings.x.subspan(first)) ++ends[strips.of(x) + 1];
  std::partial_sum(ends.begin(), ends.end(), ends.begin());
  for (std::size_t i = first; i < rings.x.size(); ++i) {
    entries[ends[strips.of(rings.x[i])]++] = entry(i);
  }
  // Each strip has moved its beginning to its end, where the next one begins.
  std::uint32_t begin = 0;
  for (std::size_t strip = 0; strip < strips.count(); ++strip) {
    std::sort(entries.data() + begin, entries.data() + ends[strip]);
    begin = ends[strip];
  }
  return entries;
}

}  // namespace

Sites::Sites(const Rings& rings) {
  const std::vector<Entry> entries = sorted_vertices(rings);
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
