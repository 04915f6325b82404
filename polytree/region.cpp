// Attempts at one region, each checked.

#include "polytree/region.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <vector>

#include "kzgis/mesh.h"
#include "polytree/tiling.h"

namespace kzgis::polytree {

namespace {

constexpr kz_ulong kClassicOrders = 3;
constexpr std::uint64_t kExactOrders = 2;

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

/// The region's contours, one after the other, and its triangles.
///
/// Vertices are numbered from 1.  One that repeats the vertex before it is kept from the
/// triangulators, which cannot have it; it gets a flat triangle of its own, with the vertex
/// before it and the next one elsewhere.  That makes up the number of triangles.
class Contours {
 public:
  Contours(const KZ_GIS_PolygonNode_c& boundary, std::size_t vertices, std::size_t triangles)
      : vertices_(std::make_unique<double[][2]>(vertices + 1)),
        global_(vertices + 1),
        distinct_(std::make_unique<double[][2]>(vertices + 1)),
        triangles_(std::make_unique<kz_long[][3]>(triangles)),
        triangle_count_(triangles) {
    rings_.push_back(&boundary);
    for (kz_ulong i = 0; i < boundary.NumberOfChildren(); ++i) {
      rings_.push_back(&hole(boundary, i));
    }
    for (const KZ_GIS_PolygonNode_c* ring : rings_) {
      sizes_.push_back(static_cast<kz_long>(ring->NumberOfVertices()));
    }
  }

  /// Lays the contours out, each from another first vertex in every order.
  /// @return false when one of them has fewer than three vertices that differ
  bool lay_out(kz_ulong order) {
    distinct_number_.assign(1, 0);
    distinct_sizes_.clear();
    flat_count_ = 0;
    std::size_t begin = 1;
    for (const KZ_GIS_PolygonNode_c* ring : rings_) {
      const std::size_t end = begin + ring->NumberOfVertices();
      const std::size_t before = distinct_number_.size();
      if (!copy(*ring, order, begin)) return false;
      drop_repeated(begin, end);
      distinct_sizes_.push_back(static_cast<kz_long>(distinct_number_.size() - before));
      if (distinct_sizes_.back() < 3) return false;
      begin = end;
    }
    return true;
  }

  bool triangulate(decltype(&triangulate_polygon) triangulator) {
    const std::span<kz_long[3]> result = wanted();
    for (auto& triangle : result) std::ranges::fill(triangle, 0);  // no vertex: not written
    if (triangulator(static_cast<kz_long>(distinct_sizes_.size()), distinct_sizes_.data(),
                     distinct_.get(), result.data()) != 0) {
      return false;
    }
    for (auto& triangle : result) {
      for (kz_long& corner : triangle) {
        if (corner < 1 || static_cast<std::size_t>(corner) >= distinct_number_.size()) return false;
        corner = distinct_number_[static_cast<std::size_t>(corner)];
      }
    }
    return tiled();
  }

  bool triangulate(triangulation::Workspace& workspace, std::uint64_t seed) {
    std::vector<triangulation::Point> points(distinct_number_.size() - 1);
    for (std::size_t i = 0; i < points.size(); ++i) {
      points[i] = {distinct_[i + 1][0], distinct_[i + 1][1]};
    }
    const std::span<kz_long[3]> result = wanted();
    std::vector<kz_long> corners(3 * result.size());
    const auto outcome = workspace.run(distinct_sizes_, points, 0.0, seed, corners).outcome;
    if (outcome == triangulation::Outcome::out_of_memory) throw std::bad_alloc();
    if (outcome != triangulation::Outcome::complete) return false;
    for (std::size_t i = 0; i < corners.size(); ++i) {
      result[i / 3][i % 3] = distinct_number_[static_cast<std::size_t>(corners[i]) + 1];
    }
    return tiled();
  }

  /// Takes the contours for rings that may touch.
  ///
  /// A ring that runs the wrong way is refused all the same: as a rule it is a hole that
  /// was filed as a boundary, or the other way round.
  ///
  /// What touches needs fewer triangles than were announced, and a hole without an inside
  /// none at all: flat ones of a single side make up the number.
  bool triangulate_touching() {
    std::size_t count = 0;
    std::vector<kz_long> starts;
    double twice_area = 0.0;
    double spread = 0.0;  // what rounding errors are small against
    for (const kz_long size : sizes_) {
      const double area = signed_area(count + 1, static_cast<std::size_t>(size));
      if (starts.empty() ? area < 0.0 : area > 0.0) return false;
      twice_area += area;
      spread += std::fabs(area);
      starts.push_back(static_cast<kz_long>(count));
      count += static_cast<std::size_t>(size);
    }
    std::vector<double> x(count);
    std::vector<double> y(count);
    for (std::size_t i = 0; i < count; ++i) {
      x[i] = vertices_[i + 1][0];
      y[i] = vertices_[i + 1][1];
    }
    const Rings rings{x, y, starts};
    const kzgis::Nesting nesting = nest(rings);
    if (nesting.flaw.kind == ErrorKind::out_of_memory) throw std::bad_alloc();
    // The region is the boundary less its holes only if that is where they lie.
    if (nesting.flaw || nesting.depth[0] != 1) return false;
    for (std::size_t i = 1; i < starts.size(); ++i) {
      if (nesting.depth[i] != 0 && nesting.parent[i] != 0) return false;
    }
    const Mesh mesh = kzgis::triangulate(rings);
    if (mesh.flaw.kind == ErrorKind::out_of_memory) throw std::bad_alloc();
    if (mesh.flaw || mesh.triangles.size() > 3 * triangle_count_) return false;
    for (std::size_t i = 0; i < 3 * triangle_count_; ++i) {
      const bool made_up = i >= mesh.triangles.size();
      triangles_[i / 3][i % 3] =
          made_up ? static_cast<kz_long>(1 + i % 2) : static_cast<kz_long>(mesh.triangles[i]) + 1;
    }
    // A ring that turns round in a vertex encloses its parts either way: they are not the
    // region that its winding says.
    double covered = 0.0;
    for (std::size_t t = 0; t < triangle_count_; ++t) {
      const double* const a = vertices_[static_cast<std::size_t>(triangles_[t][0])];
      const double* const b = vertices_[static_cast<std::size_t>(triangles_[t][1])];
      const double* const c = vertices_[static_cast<std::size_t>(triangles_[t][2])];
      covered += (b[0] - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (b[1] - a[1]);
    }
    return std::fabs(covered - twice_area) <= 1e-9 * spread;
  }

  void write(kz_ulong* connections) const {
    for (std::size_t t = 0; t < triangle_count_; ++t) {
      for (const kz_long corner : triangles_[t]) {
        *connections++ = global_[static_cast<std::size_t>(corner)];
      }
    }
  }

 private:
  /// Copies one ring to the vertices from number `begin` on.
  /// @return false when all of its vertices are the same
  bool copy(const KZ_GIS_PolygonNode_c& ring, kz_ulong order, std::size_t begin) {
    const double* const x = ring.VertexList().XVertices();
    const double* const y = ring.VertexList().YVertices();
    kz_ulong size = 0;
    const kz_ulong* indices = nullptr;
    ring.GetVertices(&size, &indices);
    // No run of equal vertices is to go round the end: start behind one.
    kz_ulong shift = size / kClassicOrders * order;
    const auto repeats = [&](kz_ulong i) {
      const kz_ulong v = indices[i];
      const kz_ulong before = indices[i > 0 ? i - 1 : size - 1];
      return x[v] == x[before] && y[v] == y[before];
    };
    kz_ulong steps = 0;
    for (; steps < size && repeats(shift); ++steps) shift = shift + 1 < size ? shift + 1 : 0;
    if (steps == size) return false;
    for (kz_ulong i = 0; i < size; ++i) {
      const kz_ulong index = indices[i < size - shift ? i + shift : i - (size - shift)];
      global_[begin + i] = index;
      vertices_[begin + i][0] = x[index];
      vertices_[begin + i][1] = y[index];
    }
    return true;
  }

  /// Twice the area of `size` vertices from number `begin` on, positive counter-clockwise.
  double signed_area(std::size_t begin, std::size_t size) const {
    double area = 0.0;
    const double* const origin = vertices_[begin];
    for (std::size_t i = 1; i + 1 < size; ++i) {
      const double* const a = vertices_[begin + i];
      const double* const b = vertices_[begin + i + 1];
      area += (a[0] - origin[0]) * (b[1] - origin[1]) - (b[0] - origin[0]) * (a[1] - origin[1]);
    }
    return area;
  }

  /// Hands on the first of each run of equal vertices of the ring [begin, end), and makes
  /// the flat triangles of the others.  There are two runs at least, so that these never
  /// outnumber the triangles of the region.
  void drop_repeated(std::size_t begin, std::size_t end) {
    for (std::size_t v = begin; v < end;) {
      distinct_[distinct_number_.size()][0] = vertices_[v][0];
      distinct_[distinct_number_.size()][1] = vertices_[v][1];
      distinct_number_.push_back(static_cast<kz_long>(v));
      std::size_t next = v + 1;
      while (next < end && vertices_[next][0] == vertices_[v][0] &&
             vertices_[next][1] == vertices_[v][1]) {
        ++next;
      }
      const std::size_t elsewhere = next < end ? next : begin;
      for (++v; v < next; ++v, ++flat_count_) {
        triangles_[flat_count_][0] = static_cast<kz_long>(v - 1);
        triangles_[flat_count_][1] = static_cast<kz_long>(v);
        triangles_[flat_count_][2] = static_cast<kz_long>(elsewhere);
      }
    }
  }

  /// Where the triangles between distinct vertices go: behind the flat ones.
  std::span<kz_long[3]> wanted() {
    return std::span(triangles_.get(), triangle_count_).subspan(flat_count_);
  }

  bool tiled() const {
    return tiles(sizes_, vertices_.get(), std::span(triangles_.get(), triangle_count_));
  }

  std::vector<const KZ_GIS_PolygonNode_c*> rings_;
  std::vector<kz_long> sizes_;
  std::unique_ptr<double[][2]> vertices_;
  std::vector<kz_ulong> global_;  // what the vertex list calls each vertex
  // What the triangulators see, and which vertex each of theirs is.
  std::vector<kz_long> distinct_sizes_;
  std::unique_ptr<double[][2]> distinct_;
  std::vector<kz_long> distinct_number_;
  std::unique_ptr<kz_long[][3]> triangles_;
  std::size_t triangle_count_;
  std::size_t flat_count_ = 0;
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
  const std::uint64_t vertices = vertex_count(boundary);
  // A triangulator counts in 32 bits.
  if (vertices >= std::numeric_limits<kz_long>::max()) return status::refused;
  try {
    Contours contours(boundary, static_cast<std::size_t>(vertices),
                      static_cast<std::size_t>(triangles));
    bool done = false;
    bool proper = true;
    for (kz_ulong order = 0; !done && proper && order < kClassicOrders; ++order) {
      proper = contours.lay_out(order);
      done = proper && contours.triangulate(triangulator);
    }
    triangulation::Workspace workspace;
    for (std::uint64_t seed = 1; !done && proper && seed <= kExactOrders; ++seed) {
      done = contours.triangulate(workspace, seed);
    }
    if (!done && !contours.triangulate_touching()) return status::refused;
    contours.write(connections);
    return status::success;
  } catch (const std::bad_alloc&) {
    return status::out_of_memory;
  }
}

}  // namespace kzgis::polytree
