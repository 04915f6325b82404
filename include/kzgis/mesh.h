#ifndef KZGIS_MESH_H
#define KZGIS_MESH_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "kzgis/export.h"
#include "kzgis/result.h"

// Polygons as they come in real files, nested and triangulated.

namespace kzgis {

/// Rings laid end to end, as in a polygon record of a shapefile; borrowed from the caller.
///
/// Ring r runs from `starts[r]` up to the start of the next, the last one to the end of the
/// coordinates.  Rings may run either way, repeat their first vertex at the end or not, and
/// come in any order.  A point is inside the polygon when a ray from it crosses an odd number
/// of sides: holes and islands need no marking.  Coordinates are 0 or have magnitudes from
/// 2^-480 to 2^500.
struct Rings {
  std::span<const double> x;
  std::span<const double> y;             ///< as many as x; any unit
  std::span<const std::int32_t> starts;  ///< each >= 0, not decreasing, within the coordinates
};

/// Rings of its own: what a function hands out that makes polygons.
struct Outline {
  std::vector<double> x, y;
  std::vector<std::int32_t> starts;  ///< as in `Rings`; no ring repeats its first vertex at the end
  std::size_t crossings = 0;         ///< vertices that are new, put where sides crossed

  /// The same rings to be read, as long as this lives and does not change.
  Rings rings() const { return {x, y, starts}; }
};

/// Where the input is not a polygon: ring and vertex are numbers in the caller's arrays,
/// counted from 0; -1 when the flaw has no place.
struct Flaw : Error {
  std::int32_t ring = -1;
  std::int32_t vertex = -1;
};

/// How many places sides may cross in, if nothing else is asked for.  So many take a few seconds
/// and a quarter of a gigabyte; a ring of 2,500 random vertices has about as many.
inline constexpr std::size_t kMostCrossings = 1'000'000;

/// What is asked of a mesh.
struct MeshOptions {
  /// Constrained Delaunay triangles, the fattest there are without new vertices: of any edge
  /// between two triangles, the corner of the one that lies off the edge is not within the circle
  /// through the corners of the other.  Of two diagonals of four vertices on one circle, the one at
  /// the leftmost vertex is taken, the lowest of those at the same x; vertices that refinement adds
  /// come behind all others.  A refined mesh is Delaunay without being asked.
  bool delaunay = false;

  /// New vertices where sides cross, instead of a refusal.
  ///
  /// The polygon is then what the odd-even rule makes of the cut sides, whatever they do: rings may
  /// cross, overlap and repeat each other.  A crossing is rounded to coordinates that doubles can
  /// hold; no vertex of the caller's moves.  A cut side is never farther than 128 units in the last
  /// place of the largest coordinate from where it was.
  bool split_crossings = false;

  /// The length that no side of a triangle exceeds, as `std::hypot` measures it; above 0, infinity
  /// asks for nothing.
  ///
  /// New vertices cut the sides of the polygon, and lie between them.  With a longest side alone, a
  /// side is cut into equal parts, and where depends on its two ends and nothing else: two polygons
  /// with a border in common still share it when they are refined one by one.
  double longest_side = std::numeric_limits<double>::infinity();

  /// The least angle of a triangle, in degrees, from 0, which asks for nothing, to 25.
  ///
  /// Where two sides of the polygon meet with less than 60 degrees of the inside between them,
  /// triangles whose shortest side ends on these two sides may have smaller angles, and no others
  /// may: `Mesh::small_corners` counts them.  Where a side is cut depends on what lies around it:
  /// polygons that are refined one by one share their borders no longer.
  double least_angle_deg = 0.0;

  /// What would need more new vertices, or give more triangles, is refused before the memory is
  /// taken.
  std::size_t most_triangles = 100'000'000;

  /// With `split_crossings`, what crosses in more places is refused as soon as so many are found.
  std::size_t most_crossings = kMostCrossings;
};

/// Triangles that tile a polygon.
struct Mesh {
  /// Three vertex numbers each, in the caller's numbering from 0, counter-clockwise, never
  /// on one line.  Where vertices coincide the first of them stands for all.
  std::vector<std::uint32_t> triangles;
  /// Vertices that are not the caller's, numbered behind these: those in which sides were split,
  /// then those of refinement.  Of the latter, those on a side lie within two units in the last
  /// place of the largest coordinate of its ends; a side is a piece of a ring between vertices on
  /// it, and what two rings share is none.
  std::vector<double> new_x, new_y;
  /// How many of the new vertices, the first ones, were put where sides cross.
  std::size_t crossings = 0;
  /// How many triangles have an angle below the least one that was asked for.
  std::size_t small_corners = 0;
};

/// Which ring lies in which.
struct Nesting {
  std::vector<std::int32_t> parent;  ///< of each ring the smallest one around it; -1 outermost
  /// 1 outermost, 2 a hole in one of those, 3 an island in it; 0 for a ring without an inside.
  std::vector<std::int32_t> depth;
};

/// Cuts a polygon into triangles; without options, no vertex is added.
///
/// Rings may touch themselves and each other, in a vertex or along edges, cross in a place
/// where the polygon has a vertex, and have repeated vertices, spikes without area and runs of
/// vertices on one line.  Refused, with `ErrorKind::bad_data`, are two sides that cross where
/// no vertex is, two rings that overlap or repeat one another, and a coordinate out of range;
/// with `bad_argument`, arrays that do not fit each other or hold more than 2^28 values.
/// Nothing else is, however close to each other vertices and sides lie, as long as no more is asked
/// for: refinement ends with `bad_data` and a vertex nearby where doubles are too coarse for it,
/// and options out of range are a `bad_argument`.  `docs/polygons.md` says what these words mean
/// and what is proved of the triangles before they are handed out.
///
/// The same input gives the same triangles.  Time grows as n log n for n vertices, however many
/// sides lie on top of each other; but where bundles of many sides cross one another in a
/// vertex, the crossing counts as often as all of them but the largest have sides.  At its peak a
/// call takes no more than 130 bytes per vertex of a polygon of a million whose rings touch in
/// vertices at most, 300 of another one, and no deep stack.
///
/// The plane sweep is that of M. I. Shamos and D. Hoey, "Geometric intersection problems"
/// (1976), in exact arithmetic; the triangles are those of S. Hertel and K. Mehlhorn, "Fast
/// triangulation of simple polygons" (1983).  Where sides are split, J. L. Bentley and
/// T. A. Ottmann's sweep (1979) finds the crossings, and the time grows as (n + k) log n for k of
/// them, some rounds over.  Refinement is M.-C. Rivara's (1997) to a length and J. Ruppert's (1995)
/// to an angle; its time grows about as n log n for n triangles that come out.
KZGIS_EXPORT Result<Mesh, Flaw> triangulate(const Rings& rings, const MeshOptions& options = {});

/// Finds what `triangulate` refuses a polygon for: places to mend.
///
/// Where numbers are out of range, each of them; else crossings, one for each pair of sides, about
/// from the left to the right; where there are none, overlaps and repetitions of rings, each of
/// which takes as long as a call of `nest`.  Throws `std::bad_alloc` without memory.
///
/// @param most  how many are looked for
/// @return nothing for a polygon that can be triangulated
KZGIS_EXPORT std::vector<Flaw> find_flaws(const Rings& rings, std::size_t most = 100);

/// Makes a polygon valid, whatever its rings do: the same region, bounded by other rings.
///
/// The region is the one that `triangulate` cuts into triangles with `split_crossings`, whose bound
/// on how far sides move is the same.  It comes in rings that are simple and meet each other in
/// vertices only: outer boundaries counter-clockwise, holes clockwise, each beginning at its
/// leftmost vertex (the lowest of those at the same x), in the order of these.  What bounds nothing
/// is gone: spikes, repeated vertices, pieces that two rings share, rings that repeat one another.
/// Vertices on straight runs stay.
///
/// @param most_crossings  what crosses in more places is refused, as soon as so many are found
/// @return what `nest` and `triangulate` accept; no ring for a polygon without an inside.  Refused
///         is what `triangulate` refuses with `split_crossings`
KZGIS_EXPORT Result<Outline, Flaw> make_valid(const Rings& rings,
                                              std::size_t most_crossings = kMostCrossings);

/// Finds the true containment of the rings, touching ones included; refuses what
/// `triangulate` refuses.
///
/// A ring lies in another when all of its inside does, by the odd-even rule for each.  A ring
/// without an inside, such as one of fewer than three different vertices or one traced twice,
/// lies in none: its depth is 0 and its parent -1.  At its peak a call takes no more than 200
/// bytes per vertex of a polygon of a million.
KZGIS_EXPORT Result<Nesting, Flaw> nest(const Rings& rings);

}  // namespace kzgis

#endif
