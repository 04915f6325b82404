// Triangulation and nesting of polygons as they come: the rings are taken apart into faces,
// each face is triangulated and the result is proved.

#include "kzgis/mesh.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>

#include "polytree/arrangement.h"
#include "polytree/face_sweep.h"
#include "polytree/faces.h"
#include "polytree/tiling.h"

namespace kzgis {

namespace {

using polytree::Arrangement;
using polytree::Contour;
using polytree::Face;

/// Triangulates face after face into one list.
class Mesher {
 public:
  Mesher(const Arrangement& arrangement, Mesh& mesh) : a_(arrangement), mesh_(mesh) {}

  /// False, and nothing added, when the triangles found do not tile the face.
  bool add(const Face& face) {
    contours_.clear();
    sites_.clear();
    for (const Contour& contour : face) {
      contours_.push_back(static_cast<kz_long>(contour.size()));
      sites_.insert(sites_.end(), contour.begin(), contour.end());
    }
    const std::vector<kz_long> corners = polytree::sweep_face(a_, face);
    if (!tile_the_face(corners)) return false;
    for (const kz_long corner : corners) {
      mesh_.triangles.push_back(a_.sites[sites_[static_cast<std::size_t>(corner)]].vertex);
    }
    return true;
  }

 private:
  bool tile_the_face(const std::vector<kz_long>& corners) const {
    // The proof counts vertices from 1.
    const auto vertices = std::make_unique<double[][2]>(sites_.size() + 1);
    for (std::size_t i = 0; i < sites_.size(); ++i) {
      vertices[i + 1][0] = a_.sites[sites_[i]].x;
      vertices[i + 1][1] = a_.sites[sites_[i]].y;
    }
    const std::size_t count = corners.size() / 3;
    const auto triangles = std::make_unique<kz_long[][3]>(count);
    for (std::size_t i = 0; i < corners.size(); ++i) triangles[i / 3][i % 3] = corners[i] + 1;
    return polytree::tiles(contours_, vertices.get(), std::span(triangles.get(), count));
  }

  const Arrangement& a_;
  Mesh& mesh_;
  // The face at hand: sizes of its contours, and all their corners one after another.
  std::vector<kz_long> contours_;
  std::vector<std::uint32_t> sites_;
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
  try {
    flaw.message = "there is not enough memory";
  } catch (const std::bad_alloc&) {
    // Not even for that: the kind says it.
  }
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
