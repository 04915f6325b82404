// Checking rings, and taking their sides.
//
// The checks come before anything else is computed: behind them every index is sound, every
// coordinate is one that exact arithmetic can hold, and all numbers fit 32 bits.

#include "mesh/rings.h"

#include <string>
#include <utility>

#include "exact/predicates.h"

namespace kzgis::mesh {

namespace {

/// Takes vertices one after the other and leaves out those that repeat one or tip a spike.
///
/// Between two vertices, the way so far has neither: any three of its vertices that follow
/// each other turn, or go straight on.
class Way {
 public:
  explicit Way(const Sites& sites) : sites_(sites) {}

  void add(std::uint32_t vertex) {
    vertices_.push_back(vertex);
    // What is left out may bring two vertices together that make another spike, so that this goes
    // on; each round takes a vertex away.
    while (vertices_.size() >= 2) {
      const std::size_t n = vertices_.size();
      if (site(n - 1) == site(n - 2)) {
        vertices_.pop_back();
      } else if (n >= 3 && folds(site(n - 3), site(n - 2), site(n - 1))) {
        vertices_.erase(vertices_.end() - 2);
      } else {
        break;
      }
    }
  }

  /// Does the same across the place where the ring closes.
  /// @return the caller's vertices that remain
  std::vector<std::uint32_t> close() {
    std::size_t begin = 0;
    while (vertices_.size() - begin >= 2) {
      const std::uint32_t first = site(begin);
      const std::uint32_t last = site(vertices_.size() - 1);
      if (first == last || folds(site(vertices_.size() - 2), last, first)) {
        vertices_.pop_back();
      } else if (folds(last, first, site(begin + 1))) {
        ++begin;
      } else {
        break;
      }
    }
    vertices_.erase(vertices_.begin(), vertices_.begin() + static_cast<std::ptrdiff_t>(begin));
    return std::move(vertices_);
  }

 private:
  std::uint32_t site(std::size_t i) const { return sites_.of(vertices_[i]); }

  /// Whether the way a, b, c turns back on itself at b: both its legs point the same way.  Sites
  /// are ordered along every line, so that two numbers say in which direction a leg points.
  bool folds(std::uint32_t a, std::uint32_t b, std::uint32_t c) const {
    return a == c || ((a < b) == (c < b) && sites_.turn(a, b, c) == 0);
  }

  const Sites& sites_;
  std::vector<std::uint32_t> vertices_;
};

}  // namespace

Flaw make_flaw(ErrorKind kind, std::string message, std::int64_t ring, std::int64_t vertex) {
  Flaw result;
  result.kind = kind;
  result.message = std::move(message);
  result.ring = static_cast<std::int32_t>(ring);
  result.vertex = static_cast<std::int32_t>(vertex);
  return result;
}

std::size_t end_of_ring(const Rings& rings, std::size_t ring) {
  return ring + 1 < rings.starts.size() ? static_cast<std::size_t>(rings.starts[ring + 1])
                                        : rings.x.size();
}

std::vector<Flaw> flaws_of_numbers(const Rings& rings, std::size_t most) {
  std::vector<Flaw> flaws;
  if (rings.x.size() != rings.y.size() || rings.x.size() >= kMostVertices) {
    flaws.push_back(make_flaw(ErrorKind::bad_argument,
                              "x and y differ in length, or hold more than 2^28 values"));
    return flaws;
  }
  for (std::size_t ring = 0; ring < rings.starts.size(); ++ring) {
    const std::int64_t start = rings.starts[ring];
    if (start < 0 || start > static_cast<std::int64_t>(rings.x.size()) ||
        (ring > 0 && start < rings.starts[ring - 1])) {
      flaws.push_back(make_flaw(ErrorKind::bad_argument,
                                "ring " + std::to_string(ring) + " starts at vertex " +
                                    std::to_string(start) +
                                    ", before the ring in front of it or outside the coordinates",
                                static_cast<std::int64_t>(ring), -1));
      return flaws;
    }
  }
  for (std::size_t ring = 0; ring < rings.starts.size(); ++ring) {
    for (auto i = static_cast<std::size_t>(rings.starts[ring]); i < end_of_ring(rings, ring); ++i) {
      if (exact::in_range(rings.x[i]) && exact::in_range(rings.y[i])) continue;
      if (flaws.size() >= most) return flaws;
      flaws.push_back(make_flaw(ErrorKind::bad_data,
                                "ring " + std::to_string(ring) + ", vertex " + std::to_string(i) +
                                    ": a coordinate is no number or out of range",
                                static_cast<std::int64_t>(ring), static_cast<std::int64_t>(i)));
    }
  }
  return flaws;
}

std::optional<Flaw> check_rings(const Rings& rings) {
  std::vector<Flaw> flaws = flaws_of_numbers(rings, 1);
  if (flaws.empty()) return std::nullopt;
  return std::move(flaws.front());
}

std::vector<Side> take_sides(const Rings& rings, const Sites& sites) {
  std::vector<Side> sides;
  for (std::size_t ring = 0; ring < rings.starts.size(); ++ring) {
    Way way(sites);
    for (auto i = static_cast<std::size_t>(rings.starts[ring]); i < end_of_ring(rings, ring); ++i) {
      way.add(static_cast<std::uint32_t>(i));
    }
    const std::vector<std::uint32_t> vertices = way.close();
    if (vertices.size() < 3) continue;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
      const std::uint32_t here = sites.of(vertices[i]);
      const std::uint32_t after = sites.of(vertices[i + 1 < vertices.size() ? i + 1 : 0]);
      sides.push_back({here < after ? here : after, here < after ? after : here,
                       static_cast<std::uint32_t>(ring), vertices[i]});
    }
  }
  return sides;
}

}  // namespace kzgis::mesh
