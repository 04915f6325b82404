// Strips between the x of neighbouring vertices.  Where sides cross in vertices only, no two
// change places within a strip: those that reach through it, ordered by their height in its
// middle, part it into pieces that have every point alike.

#include "mesh/judge.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <utility>

namespace judge {

namespace {

__extension__ using Wide = __int128;

int sign(Wide v) { return v > 0 ? 1 : v < 0 ? -1 : 0; }

int turn(const Point& a, const Point& b, const Point& c) {
  return sign(Wide{b.x - a.x} * (c.y - a.y) - Wide{b.y - a.y} * (c.x - a.x));
}

/// Whether b is the tip of a spike between a and c, or repeats one of them.
bool useless(const Point& a, const Point& b, const Point& c) {
  if (a == b || b == c) return true;
  const Wide along = Wide{a.x - b.x} * (c.x - b.x) + Wide{a.y - b.y} * (c.y - b.y);
  return turn(a, b, c) == 0 && along > 0;
}

Ring without_spikes(Ring ring) {
  for (std::size_t i = 0; i < ring.size();) {
    const std::size_t n = ring.size();
    if (useless(ring[(i + n - 1) % n], ring[i], ring[(i + 1) % n])) {
      ring.erase(ring.begin() + static_cast<std::ptrdiff_t>(i));
      i = 0;
    } else {
      ++i;
    }
  }
  return ring.size() < 3 ? Ring{} : ring;
}

constexpr std::size_t kNoRing = 1000;

struct Side {
  Point left, right;
  std::size_t ring;
};

Side side_between(Point a, Point b, std::size_t ring) {
  if (std::pair(b.x, b.y) < std::pair(a.x, a.y)) std::swap(a, b);
  return {a, b, ring};
}

std::vector<Side> sides_of(const std::vector<Ring>& rings) {
  std::vector<Side> sides;
  for (std::size_t r = 0; r < rings.size(); ++r) {
    const Ring ring = without_spikes(rings[r]);
    for (std::size_t i = 0; i < ring.size(); ++i) {
      sides.push_back(side_between(ring[i], ring[(i + 1) % ring.size()], r));
    }
  }
  return sides;
}

bool cross(const std::vector<Ring>& rings, const Side& s, const Side& t) {
  if (turn(s.left, s.right, t.left) * turn(s.left, s.right, t.right) >= 0) return false;
  if (turn(t.left, t.right, s.left) * turn(t.left, t.right, s.right) >= 0) return false;
  for (const Ring& ring : rings) {
    for (const Point& p : ring) {
      if (turn(s.left, s.right, p) == 0 && turn(t.left, t.right, p) == 0) return false;
    }
  }
  return true;
}

/// A height in the middle of a strip, as a fraction.
struct Height {
  Wide over, under;  // under > 0
  friend bool operator<(const Height& a, const Height& b) {
    return a.over * b.under < b.over * a.under;
  }
};

/// A piece of a strip: a point of it, and the rings that it lies in.
struct Piece {
  std::int64_t twice_x;
  Height y;
  std::uint32_t rings;
};

/// @param sides  those of no ring only part the pieces further
std::vector<Piece> pieces_of(const std::vector<Ring>& rings, const std::vector<Side>& sides) {
  std::set<std::int64_t> xs;
  for (const Ring& ring : rings) {
    for (const Point& p : ring) xs.insert(p.x);
  }
  std::vector<Piece> pieces;
  for (auto x = xs.begin(); x != xs.end() && std::next(x) != xs.end(); ++x) {
    const std::int64_t twice_x = *x + *std::next(x);
    std::vector<std::pair<Height, std::size_t>> heights;  // and rings
    for (const Side& s : sides) {
      if (2 * s.left.x > twice_x || 2 * s.right.x < twice_x) continue;
      const Wide width = 2 * Wide{s.right.x - s.left.x};
      const Wide over = s.left.y * width + Wide{s.right.y - s.left.y} * (twice_x - 2 * s.left.x);
      heights.push_back({{over, width}, s.ring});
    }
    std::sort(heights.begin(), heights.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    std::uint32_t in = 0;
    for (std::size_t i = 0; i + 1 < heights.size(); ++i) {
      if (heights[i].second != kNoRing) in ^= 1U << heights[i].second;
      const Height& low = heights[i].first;
      const Height& high = heights[i + 1].first;
      if (!(low < high)) continue;
      // Halfway between the two.
      pieces.push_back({twice_x,
                        {low.over * high.under + high.over * low.under, 2 * low.under * high.under},
                        in});
    }
  }
  return pieces;
}

/// The boundary of the inside: sides cut at every vertex on them, those that are there an odd
/// number of times.  All of them belong to ring 0.
std::vector<Side> boundary_of(const std::vector<Ring>& rings) {
  std::set<std::array<std::int64_t, 4>> odd;
  for (const Side& side : sides_of(rings)) {
    std::set<std::pair<std::int64_t, std::int64_t>> on_it;  // from the left to the right
    for (const Ring& ring : rings) {
      for (const Point& p : ring) {
        const std::pair<std::int64_t, std::int64_t> place{p.x, p.y};
        if (turn(side.left, side.right, p) == 0 && place >= std::pair(side.left.x, side.left.y) &&
            place <= std::pair(side.right.x, side.right.y)) {
          on_it.insert(place);
        }
      }
    }
    for (auto p = on_it.begin(); std::next(p) != on_it.end(); ++p) {
      const auto q = std::next(p);
      const std::array<std::int64_t, 4> piece{p->first, p->second, q->first, q->second};
      if (!odd.insert(piece).second) odd.erase(piece);
    }
  }
  std::vector<Side> boundary;
  for (const auto& [x0, y0, x1, y1] : odd) boundary.push_back({{x0, y0}, {x1, y1}, 0});
  return boundary;
}

bool any(const std::vector<Piece>& pieces, std::uint32_t in, std::uint32_t out) {
  return std::any_of(pieces.begin(), pieces.end(), [=](const Piece& piece) {
    return (piece.rings & in) == in && (piece.rings & out) == 0;
  });
}

/// Where a piece's point lies, seen on the way from a to b.
int turn(const Point& a, const Point& b, const Piece& p) {
  // Doubled in x and multiplied by the height's denominator.
  const Wide dx = Wide{p.twice_x} - 2 * a.x;
  const Wide dy = p.y.over - a.y * p.y.under;
  return sign(2 * Wide{b.x - a.x} * dy - Wide{b.y - a.y} * dx * p.y.under);
}

}  // namespace

Verdict verdict_on(const std::vector<Ring>& rings) {
  Verdict verdict;
  const std::vector<Side> sides = sides_of(rings);
  for (std::size_t i = 0; i < sides.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (cross(rings, sides[i], sides[j])) {
        verdict.kind = Verdict::crosses;
        return verdict;
      }
    }
  }
  const std::vector<Piece> pieces = pieces_of(rings, sides);
  const auto count = static_cast<std::uint32_t>(rings.size());
  for (std::uint32_t a = 0; a < count; ++a) {
    for (std::uint32_t b = 0; b < a; ++b) {
      if (!any(pieces, 1U << a | 1U << b, 0)) continue;
      const bool a_alone = any(pieces, 1U << a, 1U << b);
      const bool b_alone = any(pieces, 1U << b, 1U << a);
      if (a_alone && b_alone) {
        verdict.kind = Verdict::overlaps;
        return verdict;
      }
      if (!a_alone && !b_alone) verdict.kind = Verdict::repeats;
    }
  }
  if (verdict.kind == Verdict::repeats) return verdict;
  for (std::uint32_t a = 0; a < count; ++a) {
    std::int32_t parent = -1;
    std::int32_t depth = 0;
    if (any(pieces, 1U << a, 0)) {
      depth = 1;
      for (std::uint32_t b = 0; b < count; ++b) {
        if (b == a || any(pieces, 1U << a, 1U << b)) continue;
        ++depth;
        if (parent < 0 || any(pieces, 1U << parent, 1U << b)) parent = static_cast<std::int32_t>(b);
      }
    }
    verdict.parent.push_back(parent);
    verdict.depth.push_back(depth);
  }
  return verdict;
}

std::string flaw_of(const std::vector<Ring>& rings, const std::vector<std::uint32_t>& triangles) {
  std::vector<Point> vertices;
  for (const Ring& ring : rings) vertices.insert(vertices.end(), ring.begin(), ring.end());
  if (triangles.size() % 3 != 0) return "a piece of a triangle";
  for (const std::uint32_t corner : triangles) {
    if (corner >= vertices.size()) return "no such vertex: " + std::to_string(corner);
  }
  for (std::size_t t = 0; t < triangles.size(); t += 3) {
    if (turn(vertices[triangles[t]], vertices[triangles[t + 1]], vertices[triangles[t + 2]]) <= 0) {
      return "triangle " + std::to_string(t / 3) + " is not counter-clockwise";
    }
  }
  // No side of a triangle crosses another or the boundary; then all points of a piece are
  // covered alike.
  std::vector<Side> sides = boundary_of(rings);
  for (std::size_t t = 0; t < triangles.size(); ++t) {
    const std::size_t next = t % 3 == 2 ? t - 2 : t + 1;
    sides.push_back(side_between(vertices[triangles[t]], vertices[triangles[next]], kNoRing));
  }
  for (const Side& s : sides) {
    for (const Side& t : sides) {
      if (cross(rings, s, t)) return "sides cross";
    }
  }
  for (const Piece& piece : pieces_of(rings, sides)) {
    std::uint32_t covered = 0;
    for (std::size_t t = 0; t < triangles.size(); t += 3) {
      int least = 1;
      for (std::size_t k = 0; k < 3; ++k) {
        least = std::min(
            least, turn(vertices[triangles[t + k]], vertices[triangles[t + (k + 1) % 3]], piece));
      }
      if (least > 0) ++covered;
    }
    if (covered != piece.rings) return "a point lies in " + std::to_string(covered) + " triangles";
  }
  return "";
}

std::vector<Ring> turned(const std::vector<Ring>& rings, int symmetry) {
  std::vector<Ring> result = rings;
  for (Ring& ring : result) {
    for (Point& p : ring) {
      if ((symmetry & 1) != 0) p.x = -p.x;
      if ((symmetry & 2) != 0) p.y = -p.y;
      if ((symmetry & 4) != 0) std::swap(p.x, p.y);
    }
  }
  return result;
}

}  // namespace judge
