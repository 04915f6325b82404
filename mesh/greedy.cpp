// The heap of worst points, and the vertices made of them.

#include "mesh/greedy.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

#include "exact/predicates.h"
#include "mesh/delaunay.h"

namespace kzgis::mesh {

Greedy::Greedy(const HeightField& field, const Judge& judge, std::vector<std::uint32_t> triangles)
    : field_(field), judge_(judge), triangles_(std::move(triangles)) {
  for (std::uint32_t h = 0; h < triangles_.size(); ++h) questioned_.push_back(h);
  restore_delaunay(field_.points(), triangles_, questioned_);
}

/// The order of the heap, in which no two candidates that are not stale are equal: so the outcome
/// is the same everywhere.
bool Greedy::comes_later(const Candidate& a, const Candidate& b) {
  if (a.worst.height != b.worst.height) return a.worst.height < b.worst.height;
  if (a.worst.point != b.worst.point) return turn_of(a.worst.point) > turn_of(b.worst.point);
  return a.triangle > b.triangle;
}

void Greedy::look_at(std::uint32_t triangle) {
  const std::span<const std::uint32_t> corners =
      triangles_.corners().subspan(3 * std::size_t{triangle}, 3);
  const std::uint32_t look = ++looks_[triangle];
  const Deviation worst = judge_.worst(corners[0], corners[1], corners[2]);
  if (worst.point == kNone) return;
  if (candidates_.size() >= 2 * looks_.size()) {
    candidates_.erase(std::remove_if(candidates_.begin(), candidates_.end(),
                                     [this](const Candidate& c) { return is_stale(c); }),
                      candidates_.end());
    std::make_heap(candidates_.begin(), candidates_.end(), comes_later);
  }
  candidates_.push_back({worst, triangle, look});
  std::push_heap(candidates_.begin(), candidates_.end(), comes_later);
}

/// Finds all half-edges that begin where one does; on a border, from one end to the other.
void Greedy::find_spokes(std::uint32_t h) {
  spokes_.clear();
  std::uint32_t spoke = h;
  do {
    spokes_.push_back(spoke);
    spoke = triangles_.twin(Triangulation::previous(spoke));
  } while (spoke != kNone && spoke != h);
  if (spoke == h) return;
  for (spoke = triangles_.twin(h); spoke != kNone; spoke = triangles_.twin(spoke)) {
    spoke = Triangulation::next(spoke);
    spokes_.push_back(spoke);
  }
}

void Greedy::insert(const Candidate& candidate) {
  const std::span<const exact::Point> points = field_.points();
  const std::uint32_t point = candidate.worst.point;
  std::uint32_t h = 3 * candidate.triangle;
  const auto is_on = [this, points, point](std::uint32_t edge) {
    return exact::orientation(points[triangles_.from(edge)], points[triangles_.to(edge)],
                              points[point]) == 0;
  };
  if (is_on(h) || is_on(++h) || is_on(++h)) {
    h = triangles_.split_edge(h, point);
  } else {
    h = triangles_.split_triangle(h, point);
  }
  looks_.resize(triangles_.size() / 3);
  find_spokes(h);
  for (const std::uint32_t spoke : spokes_) questioned_.push_back(Triangulation::next(spoke));
  restore_delaunay(points, triangles_, questioned_);
  // No flip takes the vertex from a triangle that has it.
  h -= h % 3;
  while (triangles_.from(h) != point) ++h;
  find_spokes(h);
  for (const std::uint32_t spoke : spokes_) look_at(spoke / 3);
}

std::vector<std::uint32_t> Greedy::run() {
  looks_.assign(triangles_.size() / 3, 0);
  for (std::uint32_t triangle = 0; triangle < looks_.size(); ++triangle) look_at(triangle);
  while (!candidates_.empty()) {
    std::pop_heap(candidates_.begin(), candidates_.end(), comes_later);
    const Candidate candidate = candidates_.back();
    candidates_.pop_back();
    if (!is_stale(candidate)) insert(candidate);
  }
  return triangles_.release();
}

}  // namespace kzgis::mesh
