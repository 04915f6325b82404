// Ways along edges, and what is known of the corners between edges.

#include "mesh/borders.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kzgis::mesh {

namespace {

double distance(const exact::Point& a, const exact::Point& b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}

}  // namespace

Borders::Borders(const Sites& sites, std::span<const exact::Side> edges,
                 const Triangulation& triangles)
    : sites_(sites),
      edges_(edges),
      first_(std::size_t{sites.size()} + 1, 0),
      incident_(2 * edges.size()),
      sharp_(2 * edges.size(), kNone),
      parts_(edges.size(), 1) {
  // A counting sort, from the end of each list to its beginning.
  for (const exact::Side& edge : edges) {
    ++first_[edge.from];
    ++first_[edge.to];
  }
  for (std::size_t i = 1; i < first_.size(); ++i) first_[i] += first_[i - 1];
  for (std::uint32_t e = 0; e < edges.size(); ++e) {
    incident_[--first_[edges[e].from]] = e;
    incident_[--first_[edges[e].to]] = e;
  }
  find_sharp_corners(triangles);
}

/// Goes from every edge round the site that it begins at, through the triangles of the inside, to
/// the edge at which the inside ends there.
void Borders::find_sharp_corners(const Triangulation& triangles) {
  for (std::uint32_t h = 0; h < triangles.size(); ++h) {
    if (triangles.twin(h) != kNone) continue;
    std::uint32_t last = Triangulation::previous(h);
    while (triangles.twin(last) != kNone) last = Triangulation::previous(triangles.twin(last));
    const std::uint32_t corner = triangles.from(h);
    const std::uint32_t right = triangles.to(h);
    const std::uint32_t left = triangles.from(last);
    if (sites_.turn(corner, right, left) <= 0) continue;
    const double along = distance(sites_[corner], sites_[right]);
    const double across = distance(sites_[corner], sites_[left]);
    const double cosine = (sites_[right].x - sites_[corner].x) / along *
                              ((sites_[left].x - sites_[corner].x) / across) +
                          (sites_[right].y - sites_[corner].y) / along *
                              ((sites_[left].y - sites_[corner].y) / across);
    constexpr double kCosineOf60 = 0.5 + 1e-12;  // 60 degrees themselves, rounded, are not sharp
    if (cosine <= kCosineOf60) continue;
    const std::uint32_t one = common_edge(corner, right);
    const std::uint32_t other = common_edge(corner, left);
    const auto end = [&](std::uint32_t e) {
      return 2 * std::size_t{e} + (left_end(e) == corner ? 0 : 1);
    };
    sharp_[end(one)] = other;
    sharp_[end(other)] = one;
  }
}

/// The edge on which two vertices are neighbours.
std::uint32_t Borders::common_edge(std::uint32_t a, std::uint32_t b) const {
  const std::uint32_t sites = sites_.size();
  if (a >= sites) return ways_[a - sites].edge;
  if (b >= sites) return ways_[b - sites].edge;
  // Hubs of many edges have neighbours with few.
  if (first_[a + 1] - first_[a] > first_[b + 1] - first_[b]) std::swap(a, b);
  std::uint32_t i = first_[a];
  while (!is_end(b, incident_[i])) ++i;
  return incident_[i];
}

bool Borders::is_end(std::uint32_t vertex, std::uint32_t edge) const {
  return edges_[edge].from == vertex || edges_[edge].to == vertex;
}

double Borders::way_of(std::uint32_t vertex, std::uint32_t edge) const {
  if (vertex >= sites_.size()) return ways_[vertex - sites_.size()].way;
  return left_end(edge) == vertex ? 0.0 : 1.0;
}

Borders::Piece Borders::piece(std::uint32_t a, std::uint32_t b) const {
  const std::uint32_t edge = common_edge(a, b);
  const auto [begin, end] = std::minmax({way_of(a, edge), way_of(b, edge)});
  return {edge, begin, end};
}

exact::Point Borders::place(std::uint32_t edge, double way) const {
  const exact::Point& left = sites_[left_end(edge)];
  const exact::Point& right = sites_[right_end(edge)];
  const double width = right.x - left.x;
  const double height = right.y - left.y;
  if (way <= 0.5) return {std::fma(way, width, left.x), std::fma(way, height, left.y)};
  return {std::fma(way - 1.0, width, right.x), std::fma(way - 1.0, height, right.y)};
}

void Borders::add_vertex(std::uint32_t edge, double way) { ways_.push_back({edge, way}); }

double Borders::length(std::uint32_t edge) const {
  return distance(sites_[left_end(edge)], sites_[right_end(edge)]);
}

std::size_t Borders::divide(std::uint32_t edge, double longest_side, std::size_t most) {
  const double least = std::ceil(length(edge) / longest_side);
  if (!(least <= static_cast<double>(most))) return most + 1;
  // Rounding can make a part too long, and one part more all of them short enough; but where the
  // longest side is only a few units in the last place, it takes many more, or none suffice.
  std::size_t parts = std::max<std::size_t>(1, static_cast<std::size_t>(least));
  for (std::size_t more = 1; parts <= most; parts += more, more *= 2) {
    exact::Point before = place(edge, 0.0);
    bool fits = true;
    for (std::size_t i = 1; i <= parts && fits; ++i) {
      const exact::Point here = place(edge, static_cast<double>(i) / static_cast<double>(parts));
      fits = distance(before, here) <= longest_side;
      before = here;
    }
    if (fits) {
      parts_[edge] = static_cast<std::uint32_t>(parts);
      return parts;
    }
  }
  return most + 1;
}

std::uint32_t Borders::parts(const Piece& piece) const {
  return static_cast<std::uint32_t>(std::lround((piece.end - piece.begin) * parts_[piece.edge]));
}

double Borders::middle_part(const Piece& piece) const {
  const long first = std::lround(piece.begin * parts_[piece.edge]);
  const long middle = first + static_cast<long>(parts(piece) / 2);
  return static_cast<double>(middle) / parts_[piece.edge];
}

double Borders::shell(const Piece& piece) const {
  const std::size_t ends = 2 * std::size_t{piece.edge};
  const bool sharp_left = piece.begin == 0.0 && sharp_[ends] != kNone;
  const bool sharp_right = piece.end == 1.0 && sharp_[ends + 1] != kNone;
  const double part = piece.end - piece.begin;
  if (sharp_left == sharp_right) return piece.begin + 0.5 * part;
  // A power of two between a third and two thirds of the length: mantissa is from 0.5 up to 1.
  int exponent = 0;
  const double mantissa = std::frexp(part * length(piece.edge), &exponent);
  const double shell = part * (mantissa < 0.75 ? 0.25 : 0.5) / mantissa;
  return sharp_left ? shell : 1.0 - shell;
}

/// Whether `b` lies on the edge that meets an edge of `a` sharply.
bool Borders::lies_across(std::uint32_t a, std::uint32_t edge, std::uint32_t b) const {
  const std::uint32_t sites = sites_.size();
  for (const std::size_t end : {0U, 1U}) {
    const std::uint32_t other = sharp_[2 * std::size_t{edge} + end];
    if (other == kNone) continue;
    const std::uint32_t corner = end == 0 ? left_end(edge) : right_end(edge);
    if (a == corner || b == corner) continue;
    if (b >= sites ? ways_[b - sites].edge == other : is_end(b, other)) return true;
  }
  return false;
}

bool Borders::lie_on_sharp_corner(std::uint32_t a, std::uint32_t b) const {
  const std::uint32_t sites = sites_.size();
  if (a >= sites && ways_[a - sites].edge == kNone) return false;
  if (b >= sites && ways_[b - sites].edge == kNone) return false;
  if (a >= sites) return lies_across(a, ways_[a - sites].edge, b);
  if (b >= sites) return lies_across(b, ways_[b - sites].edge, a);
  if (first_[a + 1] - first_[a] > first_[b + 1] - first_[b]) std::swap(a, b);
  for (std::uint32_t i = first_[a]; i < first_[a + 1]; ++i) {
    if (lies_across(a, incident_[i], b)) return true;
  }
  return false;
}

Borders::Pieces Borders::pieces() const {
  std::vector<std::uint32_t> added;
  for (std::uint32_t i = 0; i < ways_.size(); ++i) {
    if (ways_[i].edge != kNone) added.push_back(i);
  }
  std::sort(added.begin(), added.end(), [this](std::uint32_t a, std::uint32_t b) {
    return ways_[a].edge != ways_[b].edge ? ways_[a].edge < ways_[b].edge
                                          : ways_[a].way < ways_[b].way;
  });
  Pieces result;
  result.sides.reserve(edges_.size() + added.size());
  result.edges.reserve(result.sides.capacity());
  auto next = added.begin();
  for (std::uint32_t e = 0; e < edges_.size(); ++e) {
    std::uint32_t from = left_end(e);
    const auto go_to = [&](std::uint32_t to) {
      result.sides.push_back(edges_[e].from == left_end(e) ? exact::Side{from, to}
                                                           : exact::Side{to, from});
      result.edges.push_back(e);
      from = to;
    };
    for (; next != added.end() && ways_[*next].edge == e; ++next) {
      go_to(sites_.size() + *next);
    }
    go_to(right_end(e));
  }
  return result;
}

}  // namespace kzgis::mesh
