#include "polytree/clearance.h"

#include <algorithm>
#include <cstddef>

namespace kzgis::polytree {

namespace {

struct Heights {
  double low, high;
};

Heights heights(const Side& side) {
  return {std::min(side.y0, side.y1), std::max(side.y0, side.y1)};
}

/// The side at x, which lies within its reach.
Heights heights_at(const Side& side, double x) {
  if (side.x0 == side.x1) return {side.y0, side.y1};
  const double y = (x - side.x0) * ((side.y1 - side.y0) / (side.x1 - side.x0)) + side.y0;
  return {y, y};
}

bool above(const Heights& a, const Heights& b, double margin) { return a.low > b.high + margin; }

bool keep_apart(const Side& a, const Side& b, double margin) {
  const double from = std::max(a.x0, b.x0);
  const double to = std::min(a.x1, b.x1);
  if (from > to) return true;
  if (above(heights(a), heights(b), margin) || above(heights(b), heights(a), margin)) return true;
  const Heights a_from = heights_at(a, from);
  const Heights b_from = heights_at(b, from);
  const Heights a_to = heights_at(a, to);
  const Heights b_to = heights_at(b, to);
  return (above(a_from, b_from, margin) && above(a_to, b_to, margin)) ||
         (above(b_from, a_from, margin) && above(b_to, a_to, margin));
}

}  // namespace

bool keep_apart(std::span<const Side> one, std::span<const Side> other, double largest) {
  const double margin = 0x1p-44 * largest;
  // Most pairs differ in height; so do most sides from all of a few that follow each other.
  constexpr std::size_t kBlock = 16;
  for (std::size_t begin = 0; begin < other.size(); begin += kBlock) {
    const auto block = other.subspan(begin, std::min(kBlock, other.size() - begin));
    Heights all = heights(block[0]);
    for (const Side& b : block) {
      all.low = std::min(all.low, heights(b).low);
      all.high = std::max(all.high, heights(b).high);
    }
    for (const Side& a : one) {
      if (above(heights(a), all, margin) || above(all, heights(a), margin)) continue;
      for (const Side& b : block) {
        if (!keep_apart(a, b, margin)) return false;
      }
    }
  }
  return true;
}

}  // namespace kzgis::polytree
