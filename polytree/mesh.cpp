// Triangulation and nesting of polygons as they come: the rings are taken apart into faces,
// each face is triangulated and the result is proved.

#include "kzgis/mesh.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>

#include "kzgis/triangulate.h"
#include "polytree/arrangement.h"
#include "polytree/faces.h"
#include "polytree/straighten.h"
#include "polytree/tiling.h"

namespace kzgis {

namespace {

using polytree::Arrangement;
using polytree::Contour;
using polytree::Face;
using polytree::Site;
using triangulation::Point;

// How far a corner is drawn back where a face touches itself, as a share of its shorter
// side.  Large first: the finer ones are for corners with much close by.
constexpr std::array<double, 4> kRetreats{0x1p-16, 0x1p-26, 0x1p-34, 0x1p-42};

// Orders of insertion that are tried with each: another order gives other triangles.
constexpr std::uint64_t kOrders = 8;

/// The corner of a face at `here`, drawn back into the inside, which lies on the left of
/// the way from `before` over `here` to `after`.
Point drawn_back(const Site& before, const Site& here, const Site& after, double share) {
  const double in_x = before.x - here.x;
  const double in_y = before.y - here.y;
  const double out_x = after.x - here.x;
  const double out_y = after.y - here.y;
  const double in_length = std::hypot(in_x, in_y);
  const double out_length = std::hypot(out_x, out_y);
  // Half of the corner's opening, from the side that goes out, counter-clockwise.
  double opening = std::atan2(out_x * in_y - out_y * in_x, out_x * in_x + out_y * in_y);
  if (opening <= 0.0) opening += 6.283185307179586;
  const double direction = std::atan2(out_y, out_x) + opening / 2.0;
  const double length = share * std::min(in_length, out_length);
  return {here.x + length * std::cos(direction), here.y + length * std::sin(direction)};
}

/// Triangulates face after face into one list.
class Mesher {
 public:
  Mesher(const Arrangement& arrangement, Mesh& mesh) : a_(arrangement), mesh_(mesh) {}

  /// False when no attempt gave triangles that tile the face.
  bool add(const Face& face) {
    if (face.size() == 1 && face[0].size() == 3) {
      for (const std::uint32_t site : face[0]) mesh_.triangles.push_back(a_.sites[site].vertex);
      return true;
    }
    lay_out(face);
    find_shared();
    if (shared_.empty()) return attempt(0);
    for (std::uint64_t seed = 0; seed < kOrders; ++seed) {
      for (const double share : kRetreats) {
        draw_back(face, share);
        if (attempt(seed)) return true;
      }
    }
    return false;
  }

 private:
  void lay_out(const Face& face) {
    contours_.clear();
    sites_.clear();
    points_.clear();
    for (const Contour& contour : face) {
      contours_.push_back(static_cast<kz_long>(contour.size()));
      for (const std::uint32_t site : contour) {
        sites_.push_back(site);
        points_.push_back({a_.sites[site].x, a_.sites[site].y});
      }
    }
  }

  /// Notes the sites at which the face has more corners than one.
  void find_shared() {
    shared_.assign(sites_.begin(), sites_.end());
    std::sort(shared_.begin(), shared_.end());
    auto kept = shared_.begin();
    for (auto run = shared_.begin(); run != shared_.end();) {
      const auto end = std::upper_bound(run, shared_.end(), *run);
      if (end - run > 1) *kept++ = *run;
      run = end;
    }
    shared_.erase(kept, shared_.end());
  }

  void draw_back(const Face& face, double share) {
    std::size_t k = 0;
    for (const Contour& contour : face) {
      const std::size_t n = contour.size();
      for (std::size_t i = 0; i < n; ++i, ++k) {
        if (!std::binary_search(shared_.begin(), shared_.end(), contour[i])) continue;
        points_[k] = drawn_back(a_.sites[contour[(i + n - 1) % n]], a_.sites[contour[i]],
                                a_.sites[contour[(i + 1) % n]], share);
      }
    }
  }

  /// Triangulates `points_`, and keeps the triangles if they tile the face where its sites
  /// really lie.
  bool attempt(std::uint64_t seed) {
    const std::size_t count = points_.size() + 2 * (contours_.size() - 1) - 2;
    const auto triangles = std::make_unique<kz_long[][3]>(count);
    const std::span<kz_long> corners(&triangles[0][0], 3 * count);
    const auto result = workspace_.run(contours_, points_, 0.0, seed, corners);
    if (result.outcome == triangulation::Outcome::out_of_memory) throw std::bad_alloc();
    if (result.outcome != triangulation::Outcome::complete) return false;

    // The proof counts vertices from 1.
    const auto vertices = std::make_unique<double[][2]>(sites_.size() + 1);
    for (std::size_t i = 0; i < sites_.size(); ++i) {
      vertices[i + 1][0] = a_.sites[sites_[i]].x;
      vertices[i + 1][1] = a_.sites[sites_[i]].y;
    }
    for (kz_long& corner : corners) ++corner;
    if (!shared_.empty()) polytree::straighten(vertices.get(), std::span(triangles.get(), count));
    if (!polytree::tiles(contours_, vertices.get(), std::span(triangles.get(), count))) {
      return false;
    }
    for (const kz_long corner : corners) {
      mesh_.triangles.push_back(a_.sites[sites_[static_cast<std::size_t>(corner - 1)]].vertex);
    }
    return true;
  }

  const Arrangement& a_;
  Mesh& mesh_;
  triangulation::Workspace workspace_;
  // The face at hand: sizes of its contours, and all their corners one after another.
  std::vector<kz_long> contours_;
  std::vector<std::uint32_t> sites_;
  std::vector<Point> points_;
  std::vector<std::uint32_t> shared_;  // sorted
};

/// The ring that a vertex belongs to.
kz_long ring_of(const Rings& rings, kz_ulong vertex) {
  const auto above =
      std::upper_bound(rings.starts.begin(), rings.starts.end(), static_cast<kz_long>(vertex));
  return static_cast<kz_long>(above - rings.starts.begin()) - 1;
}

Flaw no_memory() {
  Flaw flaw;
  flaw.kind = ErrorKind::out_of_memory;
  flaw.message = "there is not enough memory";
  return flaw;
}

}  // namespace

Mesh triangulate(const Rings& rings) {
  Mesh mesh;
  try {
    const Arrangement arrangement = polytree::arrange(rings);
    mesh.flaw = arrangement.flaw;
    if (mesh.flaw) return mesh;
    Mesher mesher(arrangement, mesh);
    for (const Face& face : polytree::take_faces(arrangement)) {
      if (mesher.add(face)) continue;
      const kz_ulong vertex = arrangement.sites[face[0][0]].vertex;
      mesh.triangles.clear();
      mesh.flaw.kind = ErrorKind::too_fine;
      mesh.flaw.ring = ring_of(rings, vertex);
      mesh.flaw.vertex = static_cast<kz_long>(vertex);
      mesh.flaw.message = "ring " + std::to_string(mesh.flaw.ring) +
                          " touches itself or another so closely that doubles cannot part them";
      return mesh;
    }
  } catch (const std::bad_alloc&) {
    mesh.triangles.clear();
    mesh.flaw = no_memory();
  }
  return mesh;
}

Nesting nest(const Rings& rings) {
  Nesting nesting;
  try {
    const Arrangement arrangement = polytree::arrange(rings);
    nesting.flaw = arrangement.flaw;
    if (nesting.flaw) return nesting;
    const std::size_t count = rings.starts.size();
    nesting.parent.assign(count, -1);
    nesting.depth.assign(count, 0);
    std::vector<std::size_t> path;
    for (std::size_t ring = 0; ring < count; ++ring) {
      const std::uint32_t parent = arrangement.parents[ring];
      if (parent != polytree::kNone) nesting.parent[ring] = static_cast<kz_long>(parent);
      // Up to a ring whose depth is known, and down again.
      for (std::size_t r = ring; arrangement.has_inside[r] && nesting.depth[r] == 0;
           r = arrangement.parents[r]) {
        path.push_back(r);
        if (arrangement.parents[r] == polytree::kNone) break;
      }
      for (; !path.empty(); path.pop_back()) {
        const std::uint32_t above = arrangement.parents[path.back()];
        nesting.depth[path.back()] = above == polytree::kNone ? 1 : nesting.depth[above] + 1;
      }
    }
  } catch (const std::bad_alloc&) {
    nesting = {};
    nesting.flaw = no_memory();
  }
  return nesting;
}

}  // namespace kzgis
