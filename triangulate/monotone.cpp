// From trapezoids to monotone pieces, and from these to triangles.
//
// After R. Seidel (1991), see trapezoids.cpp: a trapezoid inside the polygon whose upper and
// lower vertex do not lie on one side of it carries a diagonal between them, and these
// diagonals leave pieces that are monotone in the sweep order.  A piece of that kind is
// cut by the sweep of M. Garey, D. Johnson, F. Preparata and R. Tarjan, "Triangulating a
// simple polygon", Information Processing Letters 7 (1978).
//
// Pieces are circular chains of links in `mchain`.  At first there is one chain to each contour;
// a diagonal between two vertices of one chain makes two of it, one between vertices of two
// chains makes them one.  Between two diagonals this holds: every chain runs with its piece to
// the left; `vert` knows of every vertex which chains lead through it, and where each goes next;
// `mon` holds a link of every piece.  A vertex has room for four chains, its contour's and those
// of three diagonals: a polygon that wants more is none.
//
// The order of the cases below is seen in the tables and kept (docs/classic.md): which piece
// gets which number, and with it the order of the triangles, is decided by the order of visits.

#include "triangulate/monotone.h"

#include <array>
#include <vector>

#include "triangulate/predicates.h"
#include "triangulate/trapezoids.h"

namespace kzgis::triangulation {

namespace {

enum Direction : kz_long { kFromAbove = 1, kFromBelow = 2 };
enum PieceSide : kz_long { kLowestIsNext = 1, kLowestIsElsewhere = 2 };

enum Neighbour { A0, A1, B0, B1 };

// Numbers of vertices and of segments are the same: segment i starts at vertex i.

/// A vertex, named by how it is found from a trapezoid with segments L and R.
enum class Corner {
  none,
  left,        ///< start of L
  left_next,   ///< end of L
  right,       ///< start of R
  right_next,  ///< end of R
  below_cusp,  ///< start of the left segment of B1: the vertex between B0 and B1
  above_cusp,  ///< start of the right segment of A0: the vertex between A0 and A1
};

/// What to do in one trapezoid: the diagonal, and the neighbours to go on to, the first
/// `kept` of them in the piece the walk came in, the others in the new one.
struct Plan {
  Corner a, b;
  int kept;
  std::array<Neighbour, 4> order;
};

using enum Corner;

// The cases of a trapezoid.  Of two plans the first is for a walk that comes from the side
// named there; both draw the same diagonal, and keep the old piece's number on the side the
// walk comes from.  Neighbours that are missing are passed over.
struct Case {
  Plan from_there, otherwise;
};

constexpr Plan kNoDiagonal{none, none, 4, {A0, A1, B0, B1}};
constexpr Plan kSameSide{none, none, 4, {A0, B0, A1, B1}};

// A point above, a vertex between two trapezoids below.  From B1.
constexpr Case kPointAboveCuspBelow{{left, below_cusp, 1, {B1, B0, A0, A1}},
                                    {below_cusp, left, 1, {B0, B1, A0, A1}}};
// A vertex between two trapezoids above, a point below.  From A1.
constexpr Case kCuspAbovePointBelow{{above_cusp, right, 1, {A1, A0, B0, B1}},
                                    {right, above_cusp, 1, {A0, A1, B0, B1}}};
// Vertices between two trapezoids both above and below.  From A1 or B1.
constexpr Case kCuspAboveAndBelow{{above_cusp, below_cusp, 2, {A1, B1, A0, B0}},
                                  {below_cusp, above_cusp, 2, {A0, B0, A1, B1}}};
// A vertex between two trapezoids above, the lower vertex on the right.  From A1.
constexpr Case kCuspAboveVertexRight{{above_cusp, right, 1, {A1, B1, B0, A0}},
                                     {right, above_cusp, 3, {A0, B0, B1, A1}}};
// The same with the lower vertex on the left.  From A0.
constexpr Case kCuspAboveVertexLeft{{left_next, above_cusp, 1, {A0, B0, A1, B1}},
                                    {above_cusp, left_next, 3, {A1, B0, B1, A0}}};
// The upper vertex on the right, a vertex between two trapezoids below.  From B1.
constexpr Case kVertexRightCuspBelow{{right_next, below_cusp, 1, {B1, A1, A0, B0}},
                                     {below_cusp, right_next, 3, {A0, B0, A1, B1}}};
// The same with the upper vertex on the left.  From B0.
constexpr Case kVertexLeftCuspBelow{{below_cusp, left, 1, {B0, A0, A1, B1}},
                                    {left, below_cusp, 3, {A1, B1, A0, B0}}};
// The upper vertex on the left, the lower one on the right.  From below.
constexpr Case kLeftToRight{{right, left, 2, {B1, B0, A0, A1}}, {left, right, 2, {A0, A1, B1, B0}}};
// The upper vertex on the right, the lower one on the left.  From below.
constexpr Case kRightToLeft{{right_next, left_next, 2, {B1, B0, A0, A1}},
                            {left_next, right_next, 2, {A0, A1, B1, B0}}};

/// The case that a trapezoid is, and the plan for a walk that comes to it from `from`.
///
/// How many neighbours there are above says what is there: none a vertex where both segments
/// meet; one a vertex at one of the segments; two a vertex between them, the cusp of a chain that
/// comes from above.  So it is below.
const Plan& choose_plan(const Tables& t, const Trapezoid& here, kz_long from, kz_long dir) {
  const bool a0 = here.above0 > 0;
  const bool a1 = here.above1 > 0;
  const bool b0 = here.below0 > 0;
  const bool b1 = here.below1 > 0;
  const bool from_above = dir == kFromAbove;
  const bool from_below = dir == kFromBelow;
  const auto pick = [](const Case& plans, bool from_there) -> const Plan& {
    return from_there ? plans.from_there : plans.otherwise;
  };
  const Segment& left_seg = t.seg[here.left_seg];
  const Segment& right_seg = t.seg[here.right_seg];

  if (!a0 && !a1) {
    if (!(b0 && b1)) return kNoDiagonal;
    return pick(kPointAboveCuspBelow, from == here.below1);
  }
  if (!b0 && !b1) {
    if (!(a0 && a1)) return kNoDiagonal;
    return pick(kCuspAbovePointBelow, from == here.above1);
  }
  if (a0 && a1) {
    if (b0 && b1) {
      return pick(kCuspAboveAndBelow,
                  (from_below && from == here.below1) || (from_above && from == here.above1));
    }
    if (equal_to(here.bottom, left_seg.end)) {
      return pick(kCuspAboveVertexLeft, from_above && from == here.above0);
    }
    return pick(kCuspAboveVertexRight, from_above && from == here.above1);
  }
  if (b0 && b1) {
    if (equal_to(here.top, left_seg.start)) {
      return pick(kVertexLeftCuspBelow, from_below && from == here.below0);
    }
    return pick(kVertexRightCuspBelow, from_below && from == here.below1);
  }
  if (equal_to(here.top, left_seg.start) && equal_to(here.bottom, right_seg.start)) {
    return pick(kLeftToRight, !from_above);
  }
  if (equal_to(here.top, right_seg.end) && equal_to(here.bottom, left_seg.end)) {
    return pick(kRightToLeft, !from_above);
  }
  return kSameSide;
}

/// The vertex number of a corner.  The neighbours it asks for are there in the cases that
/// name it.
kz_long vertex_at(const Tables& t, const Trapezoid& here, Corner corner) {
  switch (corner) {
    case none:
      break;
    case left:
      return here.left_seg;
    case left_next:
      return t.seg[here.left_seg].next_seg;
    case right:
      return here.right_seg;
    case right_next:
      return t.seg[here.right_seg].next_seg;
    case below_cusp:
      return t.tr[here.below1].left_seg;
    case above_cusp:
      return t.tr[here.above0].right_seg;
  }
  return 0;
}

kz_long neighbour(const Trapezoid& here, Neighbour which) {
  switch (which) {
    case A0:
      return here.above0;
    case A1:
      return here.above1;
    case B0:
      return here.below0;
    case B1:
      break;
  }
  return here.below1;
}

/// A trapezoid inside the polygon that has nothing above or nothing below: one where a
/// walk can begin.  0 when there is none.
kz_long find_start(const Tables& t) {
  for (kz_long i = 1; i < t.tr_next; ++i) {
    const Trapezoid& here = t.tr[i];
    if (here.status == kInvalid || here.left_seg < 1 || here.right_seg < 1) continue;
    const bool point_above = here.above0 <= 0 && here.above1 <= 0;
    const bool point_below = here.below0 <= 0 && here.below1 <= 0;
    if (!point_above && !point_below) continue;
    const Segment& right_seg = t.seg[here.right_seg];
    if (greater_than(right_seg.end, right_seg.start)) return i;
  }
  return 0;
}

/// The slot of vertex `at` whose chain leaves it next, clockwise, from the way to `to`.
///
/// The chains through a vertex part the angles around it among them: this is the one in whose
/// angle the diagonal runs.  Of slots that rank the same the first is taken.
kz_long chain_towards(const Tables& t, kz_long at, kz_long to) {
  const VertexChain& vertex = t.vert[at];
  const Point& target = t.vert[to].point;
  kz_long best = -1;
  for (kz_long slot = 0; slot < 4; ++slot) {
    const kz_long next = vertex.next_vertex[slot];
    if (next <= 0) continue;
    if (best < 0 || ranks_above(vertex.point, t.vert[next].point,
                                t.vert[vertex.next_vertex[best]].point, target)) {
      best = slot;
    }
  }
  return best < 0 ? 0 : best;
}

bool write_triangle(Tables& t, const TriangleArray& out, kz_long a, kz_long b, kz_long c) {
  if (t.tri_count >= out.room) return false;
  kz_long* triangle = out.numbers + 3 * static_cast<std::ptrdiff_t>(t.tri_count++);
  triangle[0] = a;
  triangle[1] = b;
  triangle[2] = c;
  return true;
}

}  // namespace

kz_long monotonate_trapezoids(Tables& t, kz_long n) {
  n = t.segments_in(n);
  // Every contour begins as one chain of its own.
  for (kz_long i = 1; i <= n; ++i) {
    t.mchain[i] = {.vertex_no = i,
                   .next_link = t.seg[i].next_seg,
                   .prev_link = t.seg[i].prev_seg,
                   .marked = 0};
    VertexChain& vertex = t.vert[i];
    vertex.point = t.seg[i].start;
    vertex.next_vertex[0] = t.seg[i].next_seg;
    vertex.chain_pos[0] = i;
    vertex.free_slot = 1;
  }
  t.chain_next = n;
  t.piece_count = 0;
  if (n < 1) return 1;
  t.mon[0] = 1;

  const kz_long start = find_start(t);
  if (start == 0) return 1;
  bool walked = true;
  if (t.tr[start].above0 > 0) {
    walked = traverse_trapezoids(t, 0, start, t.tr[start].above0, kFromAbove);
  } else if (t.tr[start].below0 > 0) {
    walked = traverse_trapezoids(t, 0, start, t.tr[start].below0, kFromBelow);
  } else {
    return 1;
  }
  return walked ? t.piece_count + 1 : 0;
}

bool traverse_trapezoids(Tables& t, kz_long m, kz_long start, kz_long from, kz_long dir) {
  // A convex polygon leads from trapezoid to trapezoid in one line, as deep as it has
  // vertices: the visits still to come wait here, not on the call stack.  The next one is
  // at the end.
  struct Visit {
    kz_long piece, trapezoid, from, dir;
  };
  std::vector<Visit> waiting{{m, start, from, dir}};
  while (!waiting.empty()) {
    const Visit now = waiting.back();
    waiting.pop_back();
    if (now.trapezoid <= 0 || t.visited[now.trapezoid] != 0) continue;
    t.visited[now.trapezoid] = 1;

    const Trapezoid& here = t.tr[now.trapezoid];
    if (!t.is_segment(here.left_seg) || !t.is_segment(here.right_seg)) return false;
    const Plan& plan = choose_plan(t, here, now.from, now.dir);
    kz_long new_piece = now.piece;
    if (plan.a != none) {
      new_piece = split_monotone_polygon(t, now.piece, vertex_at(t, here, plan.a),
                                         vertex_at(t, here, plan.b));
      if (new_piece < 0) return false;
    }
    for (int k = 3; k >= 0; --k) {
      const Neighbour which = plan.order[static_cast<std::size_t>(k)];
      const kz_long next = neighbour(here, which);
      const kz_long direction = which == A0 || which == A1 ? kFromBelow : kFromAbove;
      if (next > 0) {
        waiting.push_back({k < plan.kept ? now.piece : new_piece, next, now.trapezoid, direction});
      }
    }
  }
  return true;
}

kz_long split_monotone_polygon(Tables& t, kz_long m, kz_long a, kz_long b) {
  if (!t.is_segment(a) || !t.is_segment(b) || a == b) return -1;
  if (m < 0 || m > t.piece_count) return -1;
  VertexChain& at_a = t.vert[a];
  VertexChain& at_b = t.vert[b];
  if (at_a.free_slot > 3 || at_b.free_slot > 3) return -1;
  if (!t.mon.holds(t.piece_count + 1) || !t.mchain.holds(t.chain_next + 2)) return -1;

  const ChainSlots slots = vertex_chain_positions(t, a, b);
  const kz_long p = at_a.chain_pos[slots.a];
  const kz_long q = at_b.chain_pos[slots.b];

  // Before, p's link leads on from a and q's from b, with the diagonal in the angle behind each.
  // Both ends of the diagonal are doubled.  The old links p and q go to one side of it, and
  // the new ones, i and j, to the other: a chain through both falls in two, two chains join
  // in one.
  const kz_long i = ++t.chain_next;
  const kz_long j = ++t.chain_next;
  ChainLink& link_p = t.mchain[p];
  ChainLink& link_q = t.mchain[q];
  t.mchain[i] = {.vertex_no = a, .next_link = link_p.next_link, .prev_link = j, .marked = 0};
  t.mchain[link_p.next_link].prev_link = i;
  t.mchain[j] = {.vertex_no = b, .next_link = i, .prev_link = link_q.prev_link, .marked = 0};
  t.mchain[link_q.prev_link].next_link = j;
  link_p.next_link = q;
  link_q.prev_link = p;

  at_a.next_vertex[slots.a] = b;
  at_a.chain_pos[at_a.free_slot] = i;
  at_a.next_vertex[at_a.free_slot] = t.mchain[t.mchain[i].next_link].vertex_no;
  ++at_a.free_slot;
  at_b.chain_pos[at_b.free_slot] = j;
  at_b.next_vertex[at_b.free_slot] = a;
  ++at_b.free_slot;

  ++t.piece_count;
  t.mon[m] = p;
  t.mon[t.piece_count] = i;
  return t.piece_count;
}

ChainSlots vertex_chain_positions(const Tables& t, kz_long a, kz_long b) {
  return {chain_towards(t, a, b), chain_towards(t, b, a)};
}

kz_long triangulate_monotone_polygons(Tables& t, kz_long n, kz_long pieces,
                                      const TriangleArray& out) {
  t.tri_count = 0;
  // The tables are open to the program: a chain is followed as far as it stays inside them.
  // No position is looked at twice: a chain through a marked one was cut into triangles before.
  const auto sound = [&t](kz_long pos) {
    return t.mchain.holds(pos) && t.vert.holds(t.mchain[pos].vertex_no);
  };
  for (kz_long k = 0; k < pieces && t.mon.holds(k); ++k) {
    const kz_long start = t.mon[k];
    if (!sound(start)) break;
    if (t.mchain[start].marked != 0) continue;  // two numbers may have come to name one piece
    t.mchain[start].marked = 1;

    const kz_long first_vertex = t.mchain[start].vertex_no;
    kz_long highest = start;
    kz_long lowest = start;
    kz_long count = 1;
    kz_long pos = t.mchain[start].next_link;
    bool done_before = false;
    for (; sound(pos) && t.mchain[pos].vertex_no != first_vertex; pos = t.mchain[pos].next_link) {
      if (t.mchain[pos].marked != 0) {
        done_before = true;
        break;
      }
      t.mchain[pos].marked = 1;
      ++count;
      const Point& point = t.vert[t.mchain[pos].vertex_no].point;
      if (greater_than(point, t.vert[t.mchain[highest].vertex_no].point)) highest = pos;
      if (less_than(point, t.vert[t.mchain[lowest].vertex_no].point)) lowest = pos;
    }
    if (done_before) continue;
    if (count < 3 || !sound(pos) || !sound(t.mchain[pos].prev_link) ||
        !sound(t.mchain[highest].prev_link)) {
      break;
    }

    if (count == 3) {
      const ChainLink& link = t.mchain[pos];
      if (!write_triangle(t, out, link.vertex_no, t.mchain[link.next_link].vertex_no,
                          t.mchain[link.prev_link].vertex_no)) {
        break;
      }
      continue;
    }
    // One side of such a piece is a single edge, from the highest vertex to the lowest
    // (A. Fournier and D. Y. Montuno, "Triangulating simple polygons and equivalent problems",
    // ACM Transactions on Graphics 3 (1984)).  The other is the chain to sweep.
    const Point& after_highest = t.vert[t.mchain[t.mchain[highest].next_link].vertex_no].point;
    const Point& low_point = t.vert[t.mchain[lowest].vertex_no].point;
    const PieceSide side = equal_to(after_highest, low_point) ? kLowestIsNext : kLowestIsElsewhere;
    if (triangulate_monotone_piece(t, n, highest, side, out) == Sweep::not_monotone) break;
  }
  return t.tri_count;
}

Sweep triangulate_monotone_piece(Tables& t, kz_long n, kz_long pos, kz_long side,
                                 const TriangleArray& out) {
  if (!t.stack.allocate(std::max(t.seg_size, 1))) {
    t.say("Error allocating space for rc");
    return Sweep::no_memory;
  }
  const ChainLink& top = t.mchain[pos];
  kz_long end_vertex = top.vertex_no;
  if (side != kLowestIsNext) {
    end_vertex = t.mchain[top.prev_link].vertex_no;
    if (end_vertex == 0) end_vertex = n;
  }
  kz_long here = side == kLowestIsNext ? top.next_link : pos;
  kz_long depth = 0;
  const auto advance = [&] {
    t.stack[depth++] = t.mchain[here].vertex_no;
    here = t.mchain[here].next_link;
  };
  advance();
  advance();

  // The stack holds what is still uncut of the walk so far: a chain that bends away from
  // the vertices to come.  A triangle is cut off its end where it bends towards v.
  for (;;) {
    const kz_long v = t.mchain[here].vertex_no;
    const bool at_end = v == end_vertex;
    if (at_end && depth < 3) break;
    const bool convex =
        depth >= 2 && orientation(t.vert[t.stack[depth - 2]].point,
                                  t.vert[t.stack[depth - 1]].point, t.vert[v].point) > 0;
    if (convex) {
      if (!write_triangle(t, out, t.stack[depth - 2], t.stack[depth - 1], v)) {
        return Sweep::not_monotone;
      }
      --depth;
    } else if (at_end || depth >= t.seg_size) {
      return Sweep::not_monotone;
    } else {
      advance();
    }
  }
  return write_triangle(t, out, t.stack[0], t.stack[1], end_vertex) ? Sweep::done
                                                                    : Sweep::not_monotone;
}

// Stage after stage, and none goes on from one that failed: what it left in the tables is sound
// to read, and means nothing.
kz_long triangulate_segments(Tables& t, kz_long n, const TriangleArray& out) {
  if (!construct_trapezoids(t, n)) return 0;
  const kz_long pieces = monotonate_trapezoids(t, n);
  return triangulate_monotone_polygons(t, n, pieces, out);
}

}  // namespace kzgis::triangulation
