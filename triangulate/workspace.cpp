// The triangulator without process-wide state.

#include <cmath>
#include <new>
#include <vector>

#include "kzgis/triangulate.h"
#include "triangulate/monotone.h"
#include "triangulate/predicates.h"
#include "triangulate/tables.h"
#include "triangulate/trapezoids.h"

namespace kzgis::triangulation {

struct Workspace::Impl {
  Tables tables;
};

namespace {

// So that the numbers of query nodes, ten per vertex, fit 32 bits.
constexpr std::int64_t kMostVertices = INT32_MAX / 10 - 1;

/// The generator of G. Steele, D. Lea and C. Flood, "Fast splittable pseudorandom number
/// generators" (2014): every seed will do, and the numbers are the same on every host.
class SplitMix {
 public:
  explicit SplitMix(std::uint64_t seed) : state_(seed) {}
  std::uint32_t operator()() {
    state_ += 0x9e3779b97f4a7c15U;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return static_cast<std::uint32_t>((z ^ (z >> 31)) >> 32);
  }

 private:
  std::uint64_t state_;
};

/// Number of triangles to be written; 0 when the input cannot be that of a polygon.
kz_long triangles_to_write(std::span<const kz_long> contours, std::span<const Point> vertices,
                           double tolerance, std::span<kz_long> out) {
  std::int64_t n = 0;
  for (const kz_long count : contours) {
    if (count < 3) return 0;
    n += count;
    if (n > kMostVertices) return 0;
  }
  if (n == 0 || static_cast<std::size_t>(n) != vertices.size() || !(tolerance >= 0.0)) return 0;
  for (const Point& vertex : vertices) {
    if (!std::isfinite(vertex.x) || !std::isfinite(vertex.y)) return 0;
  }
  const std::int64_t triangles = n + 2 * (std::ssize(contours) - 1) - 2;
  return triangles <= std::ssize(out) / 3 ? static_cast<kz_long>(triangles) : 0;
}

// Rings that run the wrong way, touch or cross may come to the right number of triangles by
// accident.  This check and `bounded_by` leave no accident: the triangles' common boundary is
// that of the polygon, so that they cover every point as often as the contours wind around
// it, and none of them takes away what another covers.

bool all_counter_clockwise(std::span<const kz_long> triangles, std::span<const Point> vertices) {
  for (std::size_t i = 0; i < triangles.size(); i += 3) {
    const auto corner = [&](std::size_t k) {
      return vertices[static_cast<std::size_t>(triangles[i + k])];
    };
    if (orientation(corner(0), corner(1), corner(2)) <= 0) return false;
  }
  return true;
}

}  // namespace

Workspace::Workspace() = default;
Workspace::~Workspace() = default;
Workspace::Workspace(Workspace&& other) noexcept = default;
Workspace& Workspace::operator=(Workspace&& other) noexcept = default;

Result Workspace::run(std::span<const kz_long> contours, std::span<const Point> vertices,
                      double tolerance, std::uint64_t seed, std::span<kz_long> out) {
  const kz_long expected = triangles_to_write(contours, vertices, tolerance, out);
  if (expected == 0) return {Outcome::bad_input, 0};
  if (!impl_) impl_.reset(new (std::nothrow) Impl);
  if (!impl_) return {Outcome::out_of_memory, 0};

  Tables& t = impl_->tables;
  t.tolerance = tolerance;
  t.frugal = true;
  t.quiet = true;
  const auto n = static_cast<kz_long>(vertices.size());
  if (t.allocate(n + 1) != nullptr) return {Outcome::out_of_memory, 0};
  build_segments(t, static_cast<kz_long>(contours.size()), contours.data(),
                 [&](kz_long i) { return vertices[static_cast<std::size_t>(i) - 1]; });
  if (!generate_random_ordering(t, n, SplitMix(seed))) return {Outcome::out_of_memory, 0};

  const auto triangles = out.first(3 * static_cast<std::size_t>(expected));
  try {
    if (triangulate_segments(t, n, {triangles.data(), expected}) != expected) {
      return {Outcome::not_completed, 0};
    }
    for (kz_long& vertex : triangles) --vertex;  // the tables count from 1
    if (!all_counter_clockwise(triangles, vertices) || !bounded_by(contours, triangles)) {
      return {Outcome::not_completed, 0};
    }
  } catch (const std::bad_alloc&) {
    return {Outcome::out_of_memory, 0};
  }
  return {Outcome::complete, expected};
}

}  // namespace kzgis::triangulation
