// Families of polygons with integer coordinates, so that every fact about them can be
// checked without rounding.

#ifndef KZGIS_TESTS_TRIANGULATE_POLYGONS_H
#define KZGIS_TESTS_TRIANGULATE_POLYGONS_H

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "kzgis/triangulate.h"

struct IntPoint {
  std::int64_t x, y;
  bool operator==(const IntPoint&) const = default;
};

using IntRing = std::vector<IntPoint>;

/// Outer ring first, counter-clockwise; then the holes, clockwise.
struct IntPolygon {
  std::vector<IntRing> rings;
  std::string label;

  std::vector<kz_long> vertex_counts() const;
  std::vector<IntPoint> vertices() const;
  /// The vertices times `scale`, a power of two where the test depends on exactness.
  std::vector<kzgis::triangulation::Point> points(double scale = 1.0) const;
  kz_long triangle_count() const;
};

// Each takes about the number of vertices wanted; the generator may be ignored.

IntPolygon convex(int n, std::mt19937_64& random);        ///< on a parabola
IntPolygon star(int n, std::mt19937_64& random);          ///< random radii around a centre
IntPolygon spiral(int n, std::mt19937_64& random);        ///< a corridor wound up, axis-parallel
IntPolygon comb(int n, std::mt19937_64& random);          ///< teeth of two heights
IntPolygon skyline(int n, std::mt19937_64& random);       ///< axis-parallel, few heights, flat runs
IntPolygon coast(int n, std::mt19937_64& random);         ///< fractal from above and below
IntPolygon square_coast(int n, std::mt19937_64& random);  ///< Minkowski's fractal island
IntPolygon collinear_runs(int n, std::mt19937_64& random);   ///< a triangle, its edges cut up
IntPolygon needles(int n, std::mt19937_64& random);          ///< teeth far longer than wide
IntPolygon square_holes(int n, std::mt19937_64& random);     ///< square holes on a grid
IntPolygon scattered_holes(int n, std::mt19937_64& random);  ///< star holes, loosely on a grid
/// A random closed way through points of a small grid, uncrossed; at most 60 vertices.
IntPolygon tangle(int n, std::mt19937_64& random);

struct Family {
  const char* name;
  IntPolygon (*make)(int n, std::mt19937_64& random);
};
const std::vector<Family>& families();

/// The image under (x, y) -> (a x + b y, c x + d y); a d - b c must be positive.
IntPolygon transformed(IntPolygon polygon, std::int64_t a, std::int64_t b, std::int64_t c,
                       std::int64_t d);

/// Strict: no two edges share a point, but for the common vertex of neighbours.  Quadratic.
bool is_simple(const IntPolygon& polygon);

enum class Place { inside, outside, boundary };
/// Exact, by counting crossings.  Both coordinates are doubled: (1, 1) stands for (0.5, 0.5).
Place place_of(const IntPolygon& polygon, IntPoint doubled);

#endif
