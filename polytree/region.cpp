// Two attempts at one region: the classic triangulator, whose answer is proved before it is
// believed, and the sweep of kzgis/mesh.h, which takes rings that touch.
//
// The classic one is random, works with a tolerance and checks nothing, so that it can fail
// where a polygon is sound.  It goes first all the same: where it succeeds, the triangles
// are those of the classic half (docs/classic.md).  The sweep knows no such failures, but needs
// fewer triangles than were announced where rings touch, and takes the inside of a polygon by the
// odd-even rule, whatever way its rings run: that boundaries run clockwise and holes
// counter-clockwise is decided here.

#include "polytree/region.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "exact/predicates.h"
#include "exact/tiling.h"
#include "kzgis/mesh.h"
#include "polytree/winding.h"

namespace kzgis::polytree {

namespace {

const KZ_GIS_PolygonNode_c& hole(const KZ_GIS_PolygonNode_c& boundary, kz_ulong i) {
  return static_cast<const KZ_GIS_PolygonNode_c&>(boundary.Child(i));
}

std::uint64_t vertex_count(const KZ_GIS_PolygonNode_c& boundary) {
  std::uint64_t vertices = boundary.NumberOfVertices();
  for (kz_ulong i = 0; i < boundary.NumberOfChildren(); ++i) {
    vertices += hole(boundary, i).NumberOfVertices();
  }
  return vertices;
}

/// What an operation answered, or nothing where the contours have a flaw.  Throws
/// `std::bad_alloc` where it had no memory.
template <class T>
std::optional<T> answer(Result<T, Flaw> result) {
  if (result) return std::move(*result);
  if (result.error().kind == ErrorKind::out_of_memory) throw std::bad_alloc();
  return std::nullopt;
}

/// The contours as the classic triangulator takes them, numbered from 1: of a run of equal
/// vertices, which it cannot have, the first alone.
struct Distinct {
  explicit Distinct(std::size_t most)
      : vertices(std::make_unique<double[][2]>(most + 1)), number(1) {}

  std::vector<kz_long> sizes;
  std::unique_ptr<double[][2]> vertices;
  std::vector<std::uint32_t> number;  ///< which vertex of the region each of them is
};

/// Which way a ring runs, of `size` vertices from `ring` on that differ each from the next: 1
/// counter-clockwise, -1 clockwise, 0 when a spike hides it.
///
/// Nothing of the ring lies to the left of its leftmost vertex, the lowest of several: the turn
/// there is that of the whole, if the ring goes through there once.
int direction(const double (*ring)[2], kz_long size) {
  kz_long first = 0;
  for (kz_long i = 1; i < size; ++i) {
    if (ring[i][0] != ring[first][0] ? ring[i][0] < ring[first][0] : ring[i][1] < ring[first][1]) {
      first = i;
    }
  }
  const double* const before = ring[first > 0 ? first - 1 : size - 1];
  const double* const here = ring[first];
  const double* const behind = ring[first + 1 < size ? first + 1 : 0];
  return exact::orientation({before[0], before[1]}, {here[0], here[1]}, {behind[0], behind[1]});
}

/// The region's contours, one after the other, and its triangles.  Vertices are numbered from 0.
class Region {
 public:
  Region(const KZ_GIS_PolygonNode_c& boundary, std::size_t triangles) : triangle_count_(triangles) {
    add(boundary);
    for (kz_ulong i = 0; i < boundary.NumberOfChildren(); ++i) add(hole(boundary, i));
  }

  /// Asks a triangulator without a memory, a tolerance or a proof of its own.
  /// @return false when what came back does not tile the region
  bool ask(decltype(&triangulate_polygon) triangulator) {
    triangles_.clear();
    Distinct distinct(vertices_.size());
    std::uint32_t begin = 0;
    for (const std::uint32_t size : sizes_) {
      drop_repeated(begin, begin + size, distinct);
      // A hole that runs the wrong way would count as a second cover of what it encloses.
      const kz_long corners = distinct.sizes.back();
      const double(*const ring)[2] =
          &distinct.vertices[distinct.number.size() - static_cast<std::size_t>(corners)];
      if (corners < 3 || direction(ring, corners) != (begin == 0 ? 1 : -1)) return false;
      begin += size;
    }
    // Zero is no vertex: what is not written stays to be seen.
    const std::size_t wanted = triangle_count_ - triangles_.size() / 3;
    const auto found = std::make_unique<kz_long[][3]>(wanted);
    if (triangulator(static_cast<kz_long>(distinct.sizes.size()), distinct.sizes.data(),
                     distinct.vertices.get(), found.get()) != 0) {
      return false;
    }
    for (std::size_t t = 0; t < wanted; ++t) {
      for (const kz_long corner : found[t]) {
        if (corner < 1 || static_cast<std::size_t>(corner) >= distinct.number.size()) return false;
        triangles_.push_back(distinct.number[static_cast<std::size_t>(corner)]);
      }
    }
    return exact::tiles(vertices_, exact::sides_of_contours(sizes_), triangles_,
                        exact::Flat::taken);
  }

  /// Takes the contours for rings that may touch themselves and each other.
  ///
  /// They are refused when the boundary is not the outermost ring or a hole not right inside it:
  /// as a rule a ring was filed in the wrong place then.  So they are when the direction of the
  /// rings does not bear out what lies inside by the odd-even rule.
  bool sweep() {
    std::vector<double> x, y;
    for (const exact::Point& vertex : vertices_) {
      x.push_back(vertex.x);
      y.push_back(vertex.y);
    }
    std::vector<std::int32_t> starts;
    std::int32_t begin = 0;
    for (const std::uint32_t size : sizes_) {
      starts.push_back(begin);
      begin += static_cast<std::int32_t>(size);
    }
    const auto nesting = answer(nest({x, y, starts}));
    if (!nesting || !is_region(*nesting)) return false;
    const auto mesh = answer(kzgis::triangulate({x, y, starts}));
    if (!mesh || mesh->triangles.size() > 3 * triangle_count_) return false;
    if (!wind_as_covered(sizes_, vertices_, mesh->triangles)) return false;
    // What touches needs fewer triangles than were announced, and a hole without an inside none
    // at all: flat ones of a single side make up the number.
    triangles_ = mesh->triangles;
    while (triangles_.size() < 3 * triangle_count_) triangles_.push_back(triangles_.size() % 2);
    return true;
  }

  void write(kz_ulong* connections) const {
    for (const std::uint32_t vertex : triangles_) *connections++ = global_[vertex];
  }

 private:
  /// Adds the vertices of one ring, from one on that does not repeat the vertex before it: no
  /// run of equal vertices goes round the end then, unless all of them are equal.
  void add(const KZ_GIS_PolygonNode_c& ring) {
    const double* const x = ring.VertexList().XVertices();
    const double* const y = ring.VertexList().YVertices();
    kz_ulong size = 0;
    const kz_ulong* indices = nullptr;
    ring.GetVertices(&size, &indices);
    const auto repeats = [&](kz_ulong i) {
      const kz_ulong v = indices[i];
      const kz_ulong before = indices[i > 0 ? i - 1 : size - 1];
      return x[v] == x[before] && y[v] == y[before];
    };
    kz_ulong first = 0;
    while (first < size && repeats(first)) ++first;
    for (kz_ulong i = 0; i < size; ++i) {
      const kz_ulong index = indices[i < size - first ? i + first : i - (size - first)];
      global_.push_back(index);
      vertices_.push_back({x[index], y[index]});
    }
    sizes_.push_back(size);
  }

  /// Hands on the first of each run of equal vertices of the ring [begin, end).
  ///
  /// Every other vertex gets a flat triangle, with the vertex before it and the next one
  /// elsewhere: the triangles of the region come to the announced number then, and to the
  /// contours' own sides.
  void drop_repeated(std::uint32_t begin, std::uint32_t end, Distinct& distinct) {
    const std::size_t before = distinct.number.size();
    for (std::uint32_t v = begin; v < end;) {
      distinct.vertices[distinct.number.size()][0] = vertices_[v].x;
      distinct.vertices[distinct.number.size()][1] = vertices_[v].y;
      distinct.number.push_back(v);
      std::uint32_t next = v + 1;
      while (next < end && same_place(next, v)) ++next;
      for (++v; v < next; ++v) {
        triangles_.insert(triangles_.end(), {v - 1, v, next < end ? next : begin});
      }
    }
    distinct.sizes.push_back(static_cast<kz_long>(distinct.number.size() - before));
  }

  bool same_place(std::uint32_t v, std::uint32_t w) const {
    return vertices_[v].x == vertices_[w].x && vertices_[v].y == vertices_[w].y;
  }

  /// Whether the first contour is the outermost and the others, but for those without an inside,
  /// lie right inside it.
  bool is_region(const kzgis::Nesting& nesting) const {
    // A boundary without an inside has flat triangles, if it has the corners of even one.
    if (nesting.depth[0] > 1 || (nesting.depth[0] == 0 && !has_three_corners(sizes_[0]))) {
      return false;
    }
    for (std::size_t i = 1; i < sizes_.size(); ++i) {
      if (nesting.depth[i] != 0 && nesting.parent[i] != 0) return false;
    }
    return true;
  }

  /// Whether of the first `size` vertices three differ, each from the one before it.
  bool has_three_corners(std::uint32_t size) const {
    std::uint32_t corners = 0;
    for (std::uint32_t i = 0; i < size; ++i) {
      if (!same_place(i, i > 0 ? i - 1 : size - 1)) ++corners;
    }
    return corners >= 3;
  }

  std::vector<std::uint32_t> sizes_;
  std::vector<kz_ulong> global_;  // what the vertex list calls each vertex
  std::vector<exact::Point> vertices_;
  std::vector<std::uint32_t> triangles_;
  std::size_t triangle_count_;
};

}  // namespace

std::int64_t triangle_count(const KZ_GIS_PolygonNode_c& boundary) {
  return static_cast<std::int64_t>(vertex_count(boundary)) +
         2 * std::int64_t{boundary.NumberOfChildren()} - 2;
}

kz_ulong triangulate_region(const KZ_GIS_PolygonNode_c& boundary, kz_ulong* connections,
                            decltype(&triangulate_polygon) triangulator) {
  const std::int64_t triangles = triangle_count(boundary);
  if (triangles == 0) return status::success;
  // A triangulator counts in 32 bits.
  if (vertex_count(boundary) >= std::numeric_limits<kz_long>::max()) return status::refused;
  try {
    Region region(boundary, static_cast<std::size_t>(triangles));
    if (!region.ask(triangulator) && !region.sweep()) return status::refused;
    region.write(connections);
    return status::success;
  } catch (const std::bad_alloc&) {
    return status::out_of_memory;
  }
}

}  // namespace kzgis::polytree
