// How far two rings keep from each other, side by side.
//
// Two straight sides over a common stretch of x keep their order if they have it at both of its
// ends, and are nowhere nearer, measured upwards, than at one of the ends.  The heights there are
// computed in doubles; the margin that is asked for covers what these can be wrong by, and what the
// point test's own can be, with a factor of ten to spare.  No exact arithmetic: an answer that is
// "no" where the truth is "yes" costs time and nothing else.

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

/// Whether all of `a` lies above all of `b`, with the margin between them.
bool above(const Heights& a, const Heights& b, double margin) { return a.low > b.high + margin; }

/// Whether no point of one side comes within the margin above or below a point of the other.
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
  // 32 times 2^-49, by which a computed height may be wrong, for each unit of `largest`.
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
