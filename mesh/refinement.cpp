// One queue of triangles with something wrong about them; every new vertex puts the triangles
// round it into the queue again.
//
// Between two steps the triangles are constrained Delaunay, all of them that are wrong stand in
// the queue, and entries of triangles that are no more are known by their corners.

#include "mesh/refinement.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "mesh/arrangement.h"
#include "mesh/delaunay.h"
#include "mesh/rings.h"
#include "mesh/triangulation.h"

namespace kzgis::mesh {

namespace {

constexpr double kLargestAngle = 25.0;

/// Numbers of half-edges fit 32 bits.
constexpr std::size_t kMostTriangles = std::size_t{1} << 30;

/// What can be wrong with a triangle: an angle is too small, a side too long, or a side is a piece
/// of an edge that is to be cut into equal parts.  The later ones go first.
enum class Kind : std::uint8_t { small_angle, long_side, uncut };

/// A triangle with something wrong about it, when it was put into the queue.
struct Wrong {
  Kind kind;
  std::uint32_t half_edge;  // the first of the triangle
  std::array<std::uint32_t, 3> corners;
};

/// The queue, worst triangles first, more or less: all of about the same badness share a stack.
/// A heap would take longer than everything else.
class Queue {
 public:
  /// @param badness  above 1
  void push(const Wrong& wrong, double badness) {
    int exponent = 0;
    const double mantissa = std::frexp(std::min(badness, 0x1p+63), &exponent);
    // Four stacks for each power of two.
    const int stack = 4 * exponent + static_cast<int>(8.0 * mantissa) - 4;
    const std::size_t place = static_cast<std::size_t>(wrong.kind) * kStacksOfAKind +
                              static_cast<std::size_t>(std::max(0, stack));
    stacks_[place].push_back(wrong);
    worst_ = std::max(worst_, place);
  }

  std::optional<Wrong> pop() {
    while (stacks_[worst_].empty()) {
      if (worst_ == 0) return std::nullopt;
      --worst_;
    }
    const Wrong wrong = stacks_[worst_].back();
    stacks_[worst_].pop_back();
    return wrong;
  }

 private:
  static constexpr std::size_t kStacksOfAKind = 260;
  std::array<std::vector<Wrong>, 3 * kStacksOfAKind> stacks_;
  std::size_t worst_ = 0;  // no stack above it holds anything
};

class Refiner {
 public:
  Refiner(const Rings& rings, const Sites& sites, std::span<const exact::Side> edges,
          std::vector<std::uint32_t> triangles, const MeshOptions& options)
      : rings_(rings),
        edges_(static_cast<std::uint32_t>(edges.size())),
        points_(sites.points().begin(), sites.points().end()),
        triangles_(std::move(triangles)),
        borders_(sites, edges, triangles_),
        longest_side_(options.longest_side),
        // A power of two, so that lengths of the order of the longest side can be squared.
        scale_(std::ldexp(1.0, std::min(1000, -std::ilogb(std::min(longest_side_, 0x1p+500))))),
        // Rounding is not to leave an angle that is too small by a hair.
        tangent_(std::tan(options.least_angle_deg * (1.0 + 1e-12) * std::numbers::pi / 180.0)),
        reach_(0.475 / std::tan(options.least_angle_deg * std::numbers::pi / 360.0)),
        given_most_(options.most_triangles),
        most_(std::min(options.most_triangles, kMostTriangles)) {}

  Result<Refined, Flaw> run() {
    if (triangles_.size() / 3 > most_) return too_many_triangles(given_most_);
    if (std::isfinite(longest_side_)) {
      if (auto flaw = divide_edges()) return std::move(*flaw);
    }
    for (std::uint32_t h = 0; h < triangles_.size(); h += 3) look_at(h);
    while (const std::optional<Wrong> wrong = queue_.pop()) {
      if (!is_there(*wrong)) continue;
      if (!mend(*wrong)) {
        if (is_full_) return too_many_triangles(given_most_);
        return coarse_flaw(rings_, points_[wrong->corners[0]]);
      }
      // A vertex on an edge may have left it as it was.
      if (is_there(*wrong)) look_at(wrong->half_edge);
    }
    Refined result;
    result.small_corners = count_small();
    result.points = std::move(points_);
    result.triangles = triangles_.release();
    result.borders = borders_.pieces();
    return result;
  }

 private:
  /// Where a point lies: in a triangle, on an edge between two, or nowhere that a vertex can be
  /// put.  Behind an edge of the border, or on it, `half_edge` is that edge.
  struct Location {
    enum { inside, on_edge, behind_border, taken } kind;
    std::uint32_t half_edge;
  };

  const exact::Point& from(std::uint32_t h) const { return points_[triangles_.from(h)]; }
  const exact::Point& to(std::uint32_t h) const { return points_[triangles_.to(h)]; }
  const exact::Point& apex(std::uint32_t h) const { return points_[triangles_.apex(h)]; }
  static std::uint32_t first_of(std::uint32_t h) { return h - h % 3; }
  std::array<std::uint32_t, 3> corners(std::uint32_t h) const {
    return {triangles_.from(h), triangles_.to(h), triangles_.apex(h)};
  }
  bool is_there(const Wrong& wrong) const { return corners(wrong.half_edge) == wrong.corners; }

  /// Decides into how many parts edges are cut, and refuses what is certain to need too many
  /// triangles: one more for every new part, and so many that none is larger than an equilateral
  /// one with the longest side.
  std::optional<Flaw> divide_edges() {
    std::size_t triangles = triangles_.size() / 3;
    for (std::uint32_t e = 0; e < edges_; ++e) {
      triangles += borders_.divide(e, longest_side_, most_) - 1;
      if (triangles > most_) return too_many_triangles(given_most_);
    }
    double doubled_area = 0.0;
    for (std::uint32_t h = 0; h < triangles_.size(); h += 3) {
      const auto [ux, uy] = scaled_vector(from(h), to(h));
      const auto [vx, vy] = scaled_vector(from(h), apex(h));
      doubled_area += ux * vy - uy * vx;
    }
    const double side = longest_side_ * scale_;
    const double largest = 0.5 * std::numbers::sqrt3 * side * side;
    if (doubled_area > 1.000001 * largest * static_cast<double>(most_)) {
      return too_many_triangles(given_most_);
    }
    return std::nullopt;
  }

  std::pair<double, double> scaled_vector(const exact::Point& a, const exact::Point& b) const {
    return {(b.x - a.x) * scale_, (b.y - a.y) * scale_};
  }
  double scaled_square(std::uint32_t h) const {
    const auto [x, y] = scaled_vector(from(h), to(h));
    return x * x + y * y;
  }
  bool is_long(std::uint32_t h, double square) const {
    const double longest = longest_side_ * scale_ * (longest_side_ * scale_);
    if (square < longest * (1.0 - 1e-12)) return false;
    return std::hypot(to(h).x - from(h).x, to(h).y - from(h).y) > longest_side_;
  }
  std::uint32_t longest_of(std::uint32_t h) const {
    std::uint32_t longest = h;
    double square = scaled_square(h);
    for (const std::uint32_t other : {Triangulation::next(h), Triangulation::previous(h)}) {
      const double other_square = scaled_square(other);
      if (other_square > square) {
        longest = other;
        square = other_square;
      }
    }
    return longest;
  }

  /// The shortest side of a triangle, and the cotangent of the angle across it.
  struct Least {
    std::uint32_t half_edge;
    double cotangent;
  };
  Least least_angle(std::uint32_t h) const {
    std::array<double, 3> x{};
    std::array<double, 3> y{};
    double largest = 0.0;
    for (std::uint32_t i = 0; i < 3; ++i) {
      x[i] = to(h + i).x - from(h + i).x;
      y[i] = to(h + i).y - from(h + i).y;
      largest = std::max({largest, std::fabs(x[i]), std::fabs(y[i])});
    }
    if (largest < 0x1p-300 || largest > 0x1p+300) {
      const int exponent = -std::ilogb(largest);
      for (double& v : x) v = std::ldexp(v, exponent);
      for (double& v : y) v = std::ldexp(v, exponent);
    }
    std::size_t shortest = 0;
    const auto square = [&](std::size_t i) { return x[i] * x[i] + y[i] * y[i]; };
    for (const std::size_t i : {1U, 2U}) {
      if (square(i) < square(shortest)) shortest = i;
    }
    const std::size_t after = (shortest + 1) % 3;
    const std::size_t before = (shortest + 2) % 3;
    const double dot = -(x[after] * x[before] + y[after] * y[before]);
    const double cross = x[after] * y[before] - y[after] * x[before];
    return {h + static_cast<std::uint32_t>(shortest), cross > 0.0 ? dot / cross : HUGE_VAL};
  }
  bool is_small(const Least& least) const { return least.cotangent * tangent_ > 1.0; }
  bool may_be_small(const Least& least) const {
    return borders_.lie_on_sharp_corner(triangles_.from(least.half_edge),
                                        triangles_.to(least.half_edge));
  }

  /// Puts a triangle into the queue if something is wrong with it.
  void look_at(std::uint32_t h) {
    const auto push = [&](Kind kind, double badness) {
      queue_.push({kind, h, corners(h)}, badness);
    };
    if (std::isfinite(longest_side_)) {
      for (const std::uint32_t side : {h, h + 1, h + 2}) {
        if (triangles_.twin(side) != kNone) continue;
        const auto parts = borders_.parts(piece(side));
        if (parts > 1) return push(Kind::uncut, parts);
      }
      const std::uint32_t longest = longest_of(h);
      const double square = scaled_square(longest);
      if (is_long(longest, square)) return push(Kind::long_side, square);
    }
    if (tangent_ > 0.0) {
      const Least least = least_angle(h);
      if (is_small(least) && !may_be_small(least)) push(Kind::small_angle, least.cotangent);
    }
  }

  /// Puts a new vertex because of a triangle.
  /// @return false if doubles or the number of triangles do not allow it
  bool mend(const Wrong& wrong) {
    const std::uint32_t h = wrong.half_edge;
    if (wrong.kind == Kind::uncut) {
      std::uint32_t side = h;
      while (triangles_.twin(side) != kNone || borders_.parts(piece(side)) < 2) ++side;
      return cut(side, borders_.middle_part(piece(side)));
    }
    if (wrong.kind == Kind::long_side) {
      const std::uint32_t side = terminal_side(h);
      if (triangles_.twin(side) == kNone) return cut_border(side);
      return put({from(side).x + 0.5 * (to(side).x - from(side).x),
                  from(side).y + 0.5 * (to(side).y - from(side).y)},
                 side);
    }
    const Least least = least_angle(h);
    const exact::Point& a = from(least.half_edge);
    const exact::Point& b = to(least.half_edge);
    const double far = std::min(0.5 * least.cotangent, reach_);
    return put(
        {a.x + 0.5 * (b.x - a.x) - far * (b.y - a.y), a.y + 0.5 * (b.y - a.y) + far * (b.x - a.x)},
        least.half_edge);
  }

  /// From a triangle on across longest sides to one that is the longest of both its triangles.
  std::uint32_t terminal_side(std::uint32_t h) const {
    std::uint32_t side = longest_of(h);
    while (triangles_.twin(side) != kNone) {
      const std::uint32_t beyond = longest_of(first_of(triangles_.twin(side)));
      if (scaled_square(beyond) <= scaled_square(side)) break;
      side = beyond;
    }
    return side;
  }

  /// Puts a vertex at a point, or cuts the border that the point is too close to.
  bool put(const exact::Point& point, std::uint32_t near) {
    if (!exact::in_range(point.x) || !exact::in_range(point.y)) return false;
    const Location location = locate(point, near);
    if (location.kind == Location::taken) return false;
    if (location.kind == Location::behind_border) return cut_border(location.half_edge);
    if (tangent_ > 0.0) {
      const std::uint32_t border = encroached(point, location.half_edge);
      if (border != kNone) return cut_border(border);
    }
    if (!has_room(2)) return false;
    const std::uint32_t vertex = add_vertex(point, kNone, 0.0);
    settle(location.kind == Location::inside ? triangles_.split_triangle(location.half_edge, vertex)
                                             : triangles_.split_edge(location.half_edge, vertex));
    return true;
  }

  /// Finds the triangle of a point, walking from another.
  ///
  /// Every step across an edge that is locally Delaunay leads to a triangle whose circle the point
  /// is deeper in: so there is an end, and where it is the border, either the point or the
  /// triangle's apex lies in the circle whose diameter the border is.
  Location locate(const exact::Point& point, std::uint32_t near) const {
    std::uint32_t h = first_of(near);
    while (true) {
      std::uint32_t border = kNone;
      std::uint32_t next = kNone;
      std::uint32_t on = kNone;
      int zeros = 0;
      for (const std::uint32_t side : {h, h + 1, h + 2}) {
        const int turn = exact::orientation(from(side), to(side), point);
        if (turn < 0) (triangles_.twin(side) == kNone ? border : next) = side;
        if (turn == 0) {
          on = side;
          ++zeros;
        }
      }
      if (next != kNone) {
        h = first_of(triangles_.twin(next));
      } else if (border != kNone) {
        return {Location::behind_border, border};
      } else if (zeros == 2) {
        return {Location::taken, h};
      } else if (zeros == 1) {
        return {triangles_.twin(on) == kNone ? Location::behind_border : Location::on_edge, on};
      } else {
        return {Location::inside, h};
      }
    }
  }

  /// A border of the triangles that a vertex at the point would do away with, which has the point
  /// in the circle about itself; kNone if there is none.
  std::uint32_t encroached(const exact::Point& point, std::uint32_t inside) {
    cavity_.assign({inside, Triangulation::next(inside), Triangulation::previous(inside)});
    while (!cavity_.empty()) {
      const std::uint32_t h = cavity_.back();
      cavity_.pop_back();
      const std::uint32_t beyond = triangles_.twin(h);
      if (beyond == kNone) {
        const exact::Point& a = from(h);
        const exact::Point& b = to(h);
        if ((a.x - point.x) * (b.x - point.x) + (a.y - point.y) * (b.y - point.y) < 0.0) return h;
      } else if (exact::in_circle(from(beyond), to(beyond), apex(beyond), point) > 0) {
        cavity_.push_back(Triangulation::next(beyond));
        cavity_.push_back(Triangulation::previous(beyond));
      }
    }
    return kNone;
  }

  Borders::Piece piece(std::uint32_t h) const {
    return borders_.piece(triangles_.from(h), triangles_.to(h));
  }

  /// Cuts a piece of the border for the sake of what lies near it.  With a longest side alone that
  /// is never done: borders are to depend on themselves only.
  bool cut_border(std::uint32_t h) { return tangent_ > 0.0 && cut(h, borders_.shell(piece(h))); }

  bool cut(std::uint32_t h, double way) {
    const std::uint32_t edge = piece(h).edge;
    const exact::Point point = borders_.place(edge, way);
    if (!exact::in_range(point.x) || !exact::in_range(point.y) ||
        exact::orientation(from(h), point, apex(h)) <= 0 ||
        exact::orientation(point, to(h), apex(h)) <= 0) {
      return false;
    }
    if (!has_room(1)) return false;
    settle(triangles_.split_edge(h, add_vertex(point, edge, way)));
    return true;
  }

  bool has_room(std::size_t triangles) {
    is_full_ = triangles_.size() / 3 + triangles > most_;
    return !is_full_;
  }

  std::uint32_t add_vertex(const exact::Point& point, std::uint32_t edge, double way) {
    points_.push_back(point);
    borders_.add_vertex(edge, way);
    return static_cast<std::uint32_t>(points_.size() - 1);
  }

  /// Lists the half-edges that begin where one does, from `star_`'s beginning on.
  void list_star(std::uint32_t h) {
    star_.clear();
    std::uint32_t there = h;
    do {
      star_.push_back(there);
      there = triangles_.twin(Triangulation::previous(there));
    } while (there != kNone && there != h);
    if (there == h) return;
    for (there = triangles_.twin(h); there != kNone; there = triangles_.twin(there)) {
      there = Triangulation::next(there);
      star_.push_back(there);
    }
  }

  /// Makes the triangles Delaunay again round a new vertex, and looks at all that have changed:
  /// those that have the vertex for a corner.
  void settle(std::uint32_t h) {
    const std::uint32_t vertex = triangles_.from(h);
    list_star(h);
    for (const std::uint32_t spoke : star_) questioned_.push_back(Triangulation::next(spoke));
    for (const std::uint32_t spoke : star_) questioned_.push_back(spoke);
    restore_delaunay(points_, triangles_, questioned_);
    // Flips leave the vertex in one at least of the triangles that had it.
    const std::vector<std::uint32_t>& had = star_;
    std::uint32_t spoke = kNone;
    for (const std::uint32_t old : had) {
      for (std::uint32_t i = 0; i < 3; ++i) {
        if (triangles_.from(first_of(old) + i) == vertex) spoke = first_of(old) + i;
      }
    }
    list_star(spoke);
    for (const std::uint32_t changed : star_) look_at(first_of(changed));
  }

  std::size_t count_small() const {
    std::size_t small = 0;
    if (tangent_ > 0.0) {
      for (std::uint32_t h = 0; h < triangles_.size(); h += 3) {
        if (is_small(least_angle(h))) ++small;
      }
    }
    return small;
  }

  const Rings& rings_;
  std::uint32_t edges_;  // how many there are
  std::vector<exact::Point> points_;
  Triangulation triangles_;
  Borders borders_;
  double longest_side_;
  double scale_;
  double tangent_;
  double reach_;  // of a vertex above a shortest side, in lengths of that side
  std::size_t given_most_, most_;
  bool is_full_ = false;  // whether there was no room for the last vertex
  Queue queue_;
  // Kept for their memory.
  std::vector<std::uint32_t> star_, questioned_, cavity_;
};

}  // namespace

std::optional<Flaw> check_options(const MeshOptions& options) {
  if (!(options.longest_side > 0.0)) {
    return make_flaw(ErrorKind::bad_argument, "longest_side is not a length above 0");
  }
  if (!(options.least_angle_deg >= 0.0 && options.least_angle_deg <= kLargestAngle)) {
    return make_flaw(ErrorKind::bad_argument, "least_angle_deg does not lie between 0 and 25");
  }
  return std::nullopt;
}

Flaw too_many_triangles(std::size_t most) {
  return make_flaw(ErrorKind::bad_argument,
                   "the mesh needs more than " + std::to_string(most) + " triangles");
}

Result<Refined, Flaw> refine(const Rings& rings, const Sites& sites,
                             std::span<const exact::Side> edges,
                             std::vector<std::uint32_t> triangles, const MeshOptions& options) {
  return Refiner(rings, sites, edges, std::move(triangles), options).run();
}

std::optional<std::uint32_t> find_tangled_edge(const Sites& sites, const Refined& refined) {
  const auto [sides, edges] = refined.borders;
  std::vector<exact::Point> added;
  for (const exact::Side& side : sides) {
    for (const std::uint32_t end : {side.from, side.to}) {
      if (end >= sites.size()) added.push_back(refined.points[end]);
    }
  }
  Sites all(sites, std::move(added), 0);
  std::vector<Side> swept;
  swept.reserve(sides.size());
  std::vector<std::pair<Edge, std::uint32_t>> expected;
  for (std::size_t i = 0; i < sides.size(); ++i) {
    const std::uint32_t from = all.at(refined.points[sides[i].from]);
    const std::uint32_t to = all.at(refined.points[sides[i].to]);
    if (from == to) return edges[i];
    const Edge edge{std::min(from, to), std::max(from, to), from < to};
    swept.push_back({edge.left, edge.right, 0, 0});
    expected.push_back({edge, edges[i]});
  }
  Overlay overlaid = overlay(std::move(all), std::move(swept), 0);
  if (!overlaid.crossings.empty()) return edges[overlaid.crossings.front().side];
  // Without crossings, pieces that touch one another would be cut or cancel.
  const auto key = [](const Edge& e) { return std::tuple(e.left, e.right, e.inside_above); };
  std::sort(overlaid.edges.begin(), overlaid.edges.end(),
            [&](const Edge& a, const Edge& b) { return key(a) < key(b); });
  std::sort(expected.begin(), expected.end(),
            [&](const auto& a, const auto& b) { return key(a.first) < key(b.first); });
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (i >= overlaid.edges.size() || key(overlaid.edges[i]) != key(expected[i].first)) {
      return expected[i].second;
    }
  }
  return std::nullopt;
}

Flaw coarse_flaw(const Rings& rings, const exact::Point& point) {
  std::size_t vertex = 0;
  double nearest = std::numeric_limits<double>::infinity();
  for (auto i = static_cast<std::size_t>(rings.starts[0]); i < rings.x.size(); ++i) {
    const double distance = std::hypot(rings.x[i] - point.x, rings.y[i] - point.y);
    if (distance < nearest) {
      nearest = distance;
      vertex = i;
    }
  }
  const auto behind =
      std::upper_bound(rings.starts.begin(), rings.starts.end(), static_cast<std::int32_t>(vertex));
  const auto ring = behind - rings.starts.begin() - 1;
  return make_flaw(ErrorKind::bad_data,
                   "ring " + std::to_string(ring) + ", vertex " + std::to_string(vertex) +
                       ": doubles are too coarse for such triangles there",
                   ring, static_cast<std::int64_t>(vertex));
}

}  // namespace kzgis::mesh
