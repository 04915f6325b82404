// Triangulation and nesting of polygons as they come: the rings are taken apart into faces,
// each face is triangulated and the result is proved.

#include "kzgis/mesh.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>

#include "kzgis/triangulate.h"
#include "polytree/arrangement.h"
#include "polytree/face_sweep.h"
#include "polytree/faces.h"
#include "polytree/tiling.h"

namespace kzgis {

namespace {

using polytree::Arrangement;
using polytree::Contour;
using polytree::Face;

constexpr std::uint64_t kSeed = 0;  // the same input gives the same triangles

/// Triangulates face after face into one list.
class Mesher {
 public:
  Mesher(const Arrangement& arrangement, Mesh& mesh) : a_(arrangement), mesh_(mesh) {}

  /// False when nothing gave triangles that tile the face.
  bool add(const Face& face) {
    if (face.size() == 1 && face[0].size() == 3) {
      for (const std::uint32_t site : face[0]) mesh_.triangles.push_back(a_.sites[site].vertex);
      return true;
    }
    lay_out(face);
    if (!touches_itself() && by_trapezoids() && keep()) return true;
    corners_ = polytree::sweep_face(a_, face);
    return keep();
  }

 private:
  void lay_out(const Face& face) {
    contours_.clear();
    sites_.clear();
    for (const Contour& contour : face) {
      contours_.push_back(static_cast<kz_long>(contour.size()));
      sites_.insert(sites_.end(), contour.begin(), contour.end());
    }
  }

  /// Whether the face has more corners than one at a site.
  bool touches_itself() {
    sorted_.assign(sites_.begin(), sites_.end());
    std::sort(sorted_.begin(), sorted_.end());
    return std::adjacent_find(sorted_.begin(), sorted_.end()) != sorted_.end();
  }

  bool by_trapezoids() {
    points_.clear();
    for (const std::uint32_t site : sites_) points_.push_back({a_.sites[site].x, a_.sites[site].y});
    corners_.resize(3 * (points_.size() + 2 * (contours_.size() - 1) - 2));
    const auto outcome = workspace_.run(contours_, points_, 0.0, kSeed, corners_).outcome;
    if (outcome == triangulation::Outcome::out_of_memory) throw std::bad_alloc();
    return outcome == triangulation::Outcome::complete;
  }

  /// Takes the triangles over if they tile the face.
  bool keep() {
    // The proof counts vertices from 1.
    const auto vertices = std::make_unique<double[][2]>(sites_.size() + 1);
    for (std::size_t i = 0; i < sites_.size(); ++i) {
      vertices[i + 1][0] = a_.sites[sites_[i]].x;
      vertices[i + 1][1] = a_.sites[sites_[i]].y;
    }
    const auto triangles = std::make_unique<kz_long[][3]>(corners_.size() / 3);
    for (std::size_t i = 0; i < corners_.size(); ++i) triangles[i / 3][i % 3] = corners_[i] + 1;
    if (!polytree::tiles(contours_, vertices.get(),
                         std::span(triangles.get(), corners_.size() / 3))) {
      return false;
    }
    for (const kz_long corner : corners_) {
      mesh_.triangles.push_back(a_.sites[sites_[static_cast<std::size_t>(corner)]].vertex);
    }
    return true;
  }

  const Arrangement& a_;
  Mesh& mesh_;
  triangulation::Workspace workspace_;
  // The face at hand: sizes of its contours, and all their corners one after another.
  std::vector<kz_long> contours_;
  std::vector<std::uint32_t> sites_;
  std::vector<std::uint32_t> sorted_;
  std::vector<triangulation::Point> points_;
  std::vector<kz_long> corners_;  // of its triangles
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
      mesh.flaw.kind = ErrorKind::unproved;
      mesh.flaw.ring = ring_of(rings, vertex);
      mesh.flaw.vertex = static_cast<kz_long>(vertex);
      mesh.flaw.message = "the triangles found at ring " + std::to_string(mesh.flaw.ring) +
                          " do not tile it: an error of this library";
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
