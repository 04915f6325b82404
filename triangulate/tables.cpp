// The tables' sizes and lifetime, the segments of a polygon and the order of their insertion.
//
// After R. Seidel (1991), see trapezoids.cpp: n segments come in random order and in phases, of
// which there are about log* n, the number of times that the logarithm can be taken of n.

#include "triangulate/tables.h"

#include <cmath>
#include <iostream>
#include <limits>
#include <string_view>

namespace kzgis::triangulation {

namespace {

constexpr std::int64_t kNodesPerSegment = 10;
constexpr std::int64_t kTrapezoidsPerSegment = 6;

// A polygon of n vertices and h holes is cut into at most n + 2h - 2 monotone pieces, and
// each hole is first joined, once, to what surrounds it: n + 3h - 3 diagonals, each with a
// number of its own beside number 0.  Holes have three vertices, so that is below 2n.
constexpr std::int64_t kPiecesPerSegment = 2;

}  // namespace

const char* Tables::allocate(kz_long size) {
  seg_size = qs_size = tr_size = 0;
  const std::int64_t nodes = size * kNodesPerSegment;
  const std::int64_t trapezoids = size * kTrapezoidsPerSegment;
  if (!seg.allocate(size)) return "seg";
  if (!qs.allocate(nodes)) return "qs";
  if (!tr.allocate(trapezoids)) return "tr";
  if (!permute.allocate(size)) return "permute";
  if (!mchain.allocate(trapezoids)) return "mchain";
  if (!vert.allocate(size)) return "vert";
  if (!mon.allocate(size * kPiecesPerSegment)) return "mon";
  if (!visited.allocate(trapezoids)) return "visited";
  // The numbers of nodes and trapezoids are 32 bits wide: what a table holds beyond them is there
  // without a number.
  constexpr std::int64_t kLargest = std::numeric_limits<kz_long>::max();
  seg_size = size;
  qs_size = static_cast<kz_long>(std::min(nodes, kLargest));
  tr_size = static_cast<kz_long>(std::min(trapezoids, kLargest));
  return nullptr;
}

void Tables::release() {
  seg.release();
  qs.release();
  tr.release();
  permute.release();
  mchain.release();
  vert.release();
  mon.release();
  visited.release();
  stack.release();
  seg_size = qs_size = tr_size = 0;
}

bool Tables::take_step() {
  if (steps_left > 0) {
    --steps_left;
    return true;
  }
  // Past zero it has been said.
  if (steps_left == 0) say("newnode: Query-table overflow");
  steps_left = -1;
  return false;
}

kz_long Tables::say(const char* line) const {
  if (quiet) return 0;
  std::cerr << line << std::endl;
  return static_cast<kz_long>(std::string_view(line).size() + 1);
}

// The exponent of the binary representation stands in for the logarithm: a few phases
// more or less change nothing but the running time.

kz_long phase_count(kz_long n) {
  double v = n;
  kz_long count = -1;
  while (v >= 1.0) {
    v = std::logb(v);
    ++count;
  }
  return count;
}

kz_long phase_end(kz_long n, kz_long h) {
  double v = n;
  // Past zero come minus infinity and, for good, infinity.
  for (; h > 0 && !(std::isinf(v) && v > 0.0); --h) v = std::logb(v);
  return truncate_to_int32(std::ceil(n / v));
}

bool generate_random_ordering(Tables& t, kz_long n) {
  n = t.segments_in(n);
  Table<kz_long> scratch;
  if (!scratch.allocate(std::max(t.seg_size, 1))) {
    t.say("generate_random_ordering: error allocating space for st");
    return false;
  }
  t.next_choice = 1;
  for (kz_long i = 0; i <= n; ++i) scratch[i] = i;
  // The draw of R. A. Fisher and F. Yates from what remains behind the offset i - 1: the first
  // entry there takes the place of the one drawn, and is behind the offset of the next round.
  for (kz_long i = 1; i <= n; ++i) {
    const auto remaining = static_cast<std::uint32_t>(n + 1 - i);
    // The interface's own source of chance, which it seeds from the clock.
    // NOLINTNEXTLINE(cert-msc30-c,cert-msc50-cpp)
    const auto m = static_cast<kz_long>(static_cast<std::uint32_t>(std::rand()) % remaining + 1);
    t.permute[i] = scratch[i - 1 + m];
    scratch[i - 1 + m] = scratch[i];
  }
  return true;
}

kz_long choose_segment(Tables& t) {
  if (t.next_choice < 1 || t.next_choice >= t.seg_size) return 0;
  return t.permute[t.next_choice++];
}

kz_long build_segments(Tables& t, kz_long contours, const kz_long* vertex_counts,
                       const double (*vertices)[2]) {
  t.seg.clear();
  kz_long i = 1;
  for (kz_long k = 0; k < contours; ++k) {
    const kz_long first = i;
    const kz_long last = i + vertex_counts[k] - 1;
    for (; i <= last; ++i) {
      Segment& s = t.seg[i];
      s.start = {vertices[i][0], vertices[i][1]};
      // A ring of one vertex is its own next and leans on the ring before it: asking for
      // the last vertex first makes it so.
      s.next_seg = i == last ? first : i + 1;
      s.prev_seg = i == first && i != last ? last : i - 1;
      t.seg[s.prev_seg].end = s.start;
    }
  }
  return i - 1;
}

kz_long triangles_in(const Tables& t, kz_long n) {
  n = t.segments_in(n);
  std::int64_t contours = 0;
  for (kz_long i = 1; i <= n; ++i) {
    if (t.seg[i].next_seg <= i) ++contours;  // only the last of a contour leads back
  }
  const std::int64_t triangles = n + 2 * (contours - 1) - 2;
  return static_cast<kz_long>(
      std::clamp(triangles, std::int64_t{0}, std::int64_t{std::numeric_limits<kz_long>::max()}));
}

}  // namespace kzgis::triangulation
