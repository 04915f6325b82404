// Sides against edges, line by line through every site.

#include "mesh/proof.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "exact/tiling.h"
#include "mesh/sweep_line.h"

namespace kzgis::mesh {

namespace {

/// All sides and edges, less those that are there an even number of times as they are: of a
/// polygon whose sides were not cut, nothing is left.
std::vector<Span> odd_ones(std::span<const Side> sides, std::span<const Edge> edges) {
  std::vector<Span> spans;
  spans.reserve(sides.size() + edges.size());
  for (const Side& side : sides) spans.push_back({side.left, side.right});
  for (const Edge& edge : edges) spans.push_back({edge.left, edge.right});
  std::sort(spans.begin(), spans.end(), [](const Span& a, const Span& b) {
    return a.left != b.left ? a.left < b.left : a.right < b.right;
  });
  std::size_t kept = 0;
  for (const Span& span : spans) {
    if (kept > 0 && spans[kept - 1].left == span.left && spans[kept - 1].right == span.right) {
      --kept;
    } else {
      spans[kept++] = span;
    }
  }
  spans.resize(kept);
  return spans;
}

/// The end of a span: at `site`, from where it leads towards another.
struct End {
  std::uint32_t site, towards;
};

/// Which of two straight lines through a site comes first, turning from straight down to
/// straight up: below 0, 0 for the same line, above 0.
int compare_lines(const Sites& sites, const End& a, const End& b) {
  // What leads to the left lies on the same line as what leads to the right, opposite to it.
  const bool same_hand = (a.towards > a.site) == (b.towards > b.site);
  const int turn = sites.turn(a.site, a.towards, b.towards);
  return same_hand ? -turn : turn;
}

}  // namespace

bool same_modulo_2(const Sites& sites, std::span<const Side> sides, std::span<const Edge> edges) {
  std::vector<End> ends;
  for (const Span& span : odd_ones(sides, edges)) {
    ends.push_back({span.left, span.right});
    ends.push_back({span.right, span.left});
  }
  std::sort(ends.begin(), ends.end(), [&sites](const End& a, const End& b) {
    return a.site != b.site ? a.site < b.site : compare_lines(sites, a, b) < 0;
  });
  for (std::size_t i = 0; i < ends.size(); i += 2) {
    if (i + 1 == ends.size() || ends[i].site != ends[i + 1].site ||
        compare_lines(sites, ends[i], ends[i + 1]) != 0) {
      return false;
    }
  }
  return true;
}

bool proved(const Arrangement& arrangement, std::span<const std::uint32_t> triangles) {
  std::vector<exact::Side> bounds;
  bounds.reserve(arrangement.edges.size());
  for (const Edge& edge : arrangement.edges) {
    bounds.push_back(edge.inside_above ? exact::Side{edge.left, edge.right}
                                       : exact::Side{edge.right, edge.left});
  }
  return exact::tiles(arrangement.sites.points(), bounds, triangles, exact::Flat::refused) &&
         same_modulo_2(arrangement.sites, arrangement.sides, arrangement.edges);
}

}  // namespace kzgis::mesh
