// What is to be made of small rings with whole coordinates, found by looking at every strip of
// the plane between two vertices: slow, in whole numbers, and with nothing of the library.

#ifndef KZGIS_TESTS_MESH_JUDGE_H
#define KZGIS_TESTS_MESH_JUDGE_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace judge {

struct Point {
  std::int64_t x, y;
  friend bool operator==(const Point&, const Point&) = default;
};
using Ring = std::vector<Point>;

/// A verdict on rings: what is wrong with them, or how they lie in each other.
struct Verdict {
  enum Kind { polygon, crosses, overlaps, repeats } kind = polygon;
  std::vector<std::int32_t> parent;  ///< of a polygon: -1 for none
  std::vector<std::int32_t> depth;   ///< 0 without an inside
};

/// At most 32 rings.
///
/// - Repeated vertices and spikes go first.
/// - Two sides cross when each has the other's ends on both of its hands and no vertex of any
///   ring lies in the crossing.
/// - The inside of a ring is odd-even.  Two rings overlap when they have points in common and
///   each has others; they repeat each other when they have the same points, and some.
/// - A ring lies in another when all its points do.
Verdict verdict_on(const std::vector<Ring>& rings);

/// Whether triangles cover every point inside the rings once and no other: why not, or an
/// empty text.  Their corners are numbers in the rings laid end to end.
///
/// Before: the rings are a polygon.
std::string flaw_of(const std::vector<Ring>& rings, const std::vector<std::uint32_t>& triangles);

/// The rings turned and mirrored in the eight ways that map a square to itself.
std::vector<Ring> turned(const std::vector<Ring>& rings, int symmetry);

}  // namespace judge

#endif
