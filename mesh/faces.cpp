// Contours of faces, followed from edge to edge, and put together into faces.
//
// Every edge is gone along once, in the direction that has the inside on its left.  Where a
// contour comes to a site, it goes on along the next edge clockwise from the one it came on:
// between the two lies a wedge of the inside that no other edge enters.  So a face that touches
// itself in a site has one corner there for every such wedge, and a site in which two faces meet
// gives a corner to each.
//
// Contours come out counter-clockwise round the outside of a face and clockwise round its holes.
// Which face a hole lies in is read off the sweep: below the hole's first site runs an edge that
// began farther to the left, and the inside between the two belongs to one face.

#include "mesh/faces.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace kzgis::mesh {

namespace {

class Tracer {
 public:
  explicit Tracer(const Arrangement& arrangement) : a_(arrangement) {}

  std::vector<Face> run() {
    link();
    trace();
    return assemble();
  }

 private:
  // Every edge is gone along once, with the inside on the left.
  std::uint32_t from(std::uint32_t e) const {
    return a_.edges[e].inside_above ? a_.edges[e].left : a_.edges[e].right;
  }
  std::uint32_t to(std::uint32_t e) const {
    return a_.edges[e].inside_above ? a_.edges[e].right : a_.edges[e].left;
  }

  std::uint32_t far_end(std::uint32_t e, std::uint32_t site) const {
    return a_.edges[e].left == site ? a_.edges[e].right : a_.edges[e].left;
  }

  /// Finds for each edge the one to go on with, behind the wedge of the inside between them.
  ///
  /// Afterwards `next_` is a permutation of the edges: at every site as many come in as go out,
  /// in turns, since inside and outside alternate round it.
  void link() {
    const std::size_t n = a_.edges.size();
    std::vector<std::uint32_t> first(a_.sites.size() + 1, 0);
    for (const Edge& edge : a_.edges) {
      ++first[edge.left + 1];
      ++first[edge.right + 1];
    }
    std::partial_sum(first.begin(), first.end(), first.begin());
    std::vector<std::uint32_t> around(2 * n);
    std::vector<std::uint32_t> filled(first.begin(), first.end() - 1);
    for (std::uint32_t e = 0; e < n; ++e) {
      around[filled[a_.edges[e].left]++] = e;
      around[filled[a_.edges[e].right]++] = e;
    }
    next_.assign(n, kNone);
    for (std::uint32_t site = 0; site < a_.sites.size(); ++site) {
      std::uint32_t* const begin = around.data() + first[site];
      std::uint32_t* const end = around.data() + first[site + 1];
      // Counter-clockwise, beginning with what points to the right.
      std::sort(begin, end, [this, site](std::uint32_t p, std::uint32_t q) {
        const std::uint32_t u = far_end(p, site);
        const std::uint32_t v = far_end(q, site);
        if ((u > site) != (v > site)) return u > site;
        return a_.sites.turn(site, u, v) > 0;
      });
      for (auto e = begin; e != end; ++e) {
        // Clockwise from an edge that comes in lies the inside, up to an edge that goes out.
        if (to(*e) == site) next_[*e] = e == begin ? *(end - 1) : *(e - 1);
      }
    }
  }

  struct Cycle {
    std::uint32_t smallest;  // site
    bool hole;
    Contour sites;
  };

  /// Follows the permutation round its cycles: each is a contour.
  void trace() {
    cycle_of_.assign(a_.edges.size(), kNone);
    for (std::uint32_t start = 0; start < a_.edges.size(); ++start) {
      if (cycle_of_[start] != kNone) continue;
      Cycle cycle{kNone, false, {}};
      for (std::uint32_t e = start; cycle_of_[e] == kNone; e = next_[e]) {
        cycle_of_[e] = static_cast<std::uint32_t>(cycles_.size());
        cycle.sites.push_back(from(e));
        cycle.smallest = std::min(cycle.smallest, from(e));
      }
      // Both edges of a corner at the smallest site point to the right.  The inside of an
      // outer contour lies between them; that of a hole lies all round, at one corner.
      const std::size_t n = cycle.sites.size();
      for (std::size_t i = 0; i < n; ++i) {
        if (cycle.sites[i] == cycle.smallest &&
            a_.sites.turn(cycle.sites[(i + n - 1) % n], cycle.sites[i], cycle.sites[(i + 1) % n]) <
                0) {
          cycle.hole = true;
        }
      }
      cycles_.push_back(std::move(cycle));
    }
  }

  /// Puts holes behind the outer contours of their faces.
  ///
  /// Contours are taken by their smallest sites, so that the face of a hole is known before the
  /// hole: the edge below the hole is part of a contour that begins farther to the left.
  std::vector<Face> assemble() {
    std::vector<std::uint32_t> order(cycles_.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [this](std::uint32_t p, std::uint32_t q) {
      return cycles_[p].smallest != cycles_[q].smallest ? cycles_[p].smallest < cycles_[q].smallest
                                                        : p < q;
    });
    std::vector<Face> faces;
    std::vector<std::uint32_t> face_of(cycles_.size(), kNone);
    for (const std::uint32_t number : order) {
      Cycle& cycle = cycles_[number];
      if (cycle.hole) {
        // The edge below a hole's smallest site has this face above it, and began further
        // to the left.
        face_of[number] = face_of[cycle_of_[a_.below[cycle.smallest]]];
      } else {
        face_of[number] = static_cast<std::uint32_t>(faces.size());
        faces.emplace_back();
      }
      faces[face_of[number]].push_back(std::move(cycle.sites));
    }
    return faces;
  }

  const Arrangement& a_;
  std::vector<std::uint32_t> next_;      // of each edge
  std::vector<std::uint32_t> cycle_of_;  // of each edge
  std::vector<Cycle> cycles_;
};

}  // namespace

std::vector<Face> take_faces(const Arrangement& arrangement) { return Tracer(arrangement).run(); }

}  // namespace kzgis::mesh
