// The map of trapezoids, built segment by segment, and the search structure over it.
//
// After R. Seidel, "A simple and fast incremental randomized algorithm for computing
// trapezoidal decompositions and for triangulating polygons", Computational Geometry:
// Theory and Applications 1 (1991).
//
// Through every vertex runs a horizontal line, left and right to the next segment.  These
// lines and the segments cut the plane into trapezoids.  Since no two vertices rank the
// same in the sweep order, a trapezoid has at most two neighbours above and two below.
//
// Between two segments, of a polygon whose sides do not cross, this holds:
// - every trapezoid that is valid has one sink in the search structure, and the sink names it;
//   a search from the root for a point inside it ends there;
// - a trapezoid lies between left_seg and right_seg, and between the heights of top and bottom,
//   each of which is a vertex on its edge, or infinity;
// - neighbours name each other, from left to right, and share a piece of a horizontal line;
// - the trapezoids along one side of a segment are as few as can be: no two that follow each
//   other there have the same segment opposite.
//
// A segment comes in three steps: its ends each split a trapezoid by height unless a segment
// before it has the same end; then every trapezoid on its way is split into a left and a right
// part; then parts that lie on top of each other between the same two segments are merged.
// Sides that cross, and vertices that coincide, break all of the above.  What is built is then
// no map, but each step still ends and stays within its tables.

#include "triangulate/trapezoids.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

#include "triangulate/predicates.h"

namespace kzgis::triangulation {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr kz_long kNoNeighbour = -1;

/// Replaces `from` by `to` among the upper neighbours of trapezoid `below`, if there is one.
void change_above(Tables& t, kz_long below, kz_long from, kz_long to) {
  if (below <= 0) return;
  Trapezoid& lower = t.tr[below];
  if (lower.above0 == from) {
    lower.above0 = to;
  } else if (lower.above1 == from) {
    lower.above1 = to;
  }
}

/// Makes `node` the sink of a trapezoid: they name each other from now on.
void make_sink(Tables& t, kz_long node, kz_long trapezoid, kz_long parent) {
  t.qs[node].kind = kSink;
  t.qs[node].trap_no = trapezoid;
  t.qs[node].parent = parent;
  t.tr[trapezoid].sink_node = node;
}

/// Splits the trapezoid that holds `v`, an end of segment s, at the height of `v`.
/// @return the upper part, whose below0 is the lower one; 0 on failure
kz_long insert_endpoint(Tables& t, kz_long s, const Point& v, const Point& toward, kz_long root) {
  const kz_long upper = locate(t, v, toward, root);
  if (upper == 0) return 0;
  const kz_long lower = newtrap(t);
  if (lower < 0) return 0;
  const kz_long upper_sink = newnode(t);
  if (upper_sink < 0) return 0;
  const kz_long lower_sink = newnode(t);
  if (lower_sink < 0) return 0;

  // The upper part keeps its number, and with it what lies above and the place where the search
  // structure knew the whole: the old sink becomes the node that tells the two parts apart.
  const kz_long split_node = t.tr[upper].sink_node;
  t.tr[lower] = t.tr[upper];
  t.tr[upper].bottom = v;
  t.tr[lower].top = v;
  t.tr[upper].below0 = lower;
  t.tr[upper].below1 = 0;
  t.tr[lower].above0 = upper;
  t.tr[lower].above1 = 0;
  change_above(t, t.tr[lower].below0, upper, lower);
  change_above(t, t.tr[lower].below1, upper, lower);

  QueryNode& split = t.qs[split_node];
  split.kind = kYNode;
  split.y_key = v;
  split.seg_no = s;
  split.left_child = lower_sink;
  split.right_child = upper_sink;
  make_sink(t, upper_sink, upper, split_node);
  make_sink(t, lower_sink, lower, split_node);
  return upper;
}

/// A segment on its way down through the map.
///
/// Before the way: `first` is the trapezoid right below its upper end, `last` the one right above
/// its lower end.  On the way each trapezoid that it passes stays as the part to its left, so that
/// afterwards the two name the ends of the run of left parts.
struct Passage {
  kz_long s = 0;
  Point top{}, bottom{};
  bool bottom_was_there = false;  ///< before this segment came
  kz_long bottom_neighbour = 0;   ///< the other segment that ends there
  kz_long first = 0, last = 0;    ///< trapezoids it passes; afterwards, their left parts
  kz_long first_right = 0, last_right = 0;

  /// Whether trapezoid `i` is the one it ends in.
  bool ends_in(const Tables& t, kz_long i) const {
    return equal_to(t.tr[i].bottom, t.tr[last].bottom);
  }
};

/// Splits trapezoid `left` by the segment, into itself and a right part.
/// @return the right part; 0 when a table is full
kz_long split_by_segment(Tables& t, Passage& way, kz_long left) {
  const kz_long left_sink = newnode(t);
  if (left_sink < 0) return 0;
  const kz_long right_sink = newnode(t);
  if (right_sink < 0) return 0;
  const kz_long right = newtrap(t);
  if (right < 0) return 0;

  // As for the split by height, the left part stays where the whole was.
  const kz_long split_node = t.tr[left].sink_node;
  QueryNode& split = t.qs[split_node];
  split.kind = kXNode;
  split.seg_no = way.s;
  split.left_child = left_sink;
  split.right_child = right_sink;
  t.tr[right] = t.tr[left];
  make_sink(t, left_sink, left, split_node);
  make_sink(t, right_sink, right, split_node);

  if (left == way.first) way.first_right = right;
  if (way.ends_in(t, left)) way.last_right = right;
  return right;
}

/// Deals the upper neighbours of a split trapezoid out to its two parts.
///
/// Before: the trapezoid above, if the segment comes from there, has been split already, and its
/// two parts are the upper neighbours here, with the one that was set aside (link_only_below).
/// After: the parts name what lies above them, and are named from there.
void link_above(Tables& t, const Passage& way, kz_long left, kz_long right) {
  Trapezoid& l = t.tr[left];
  Trapezoid& r = t.tr[right];
  if (l.above0 > 0 && l.above1 > 0) {
    // The segment comes from above, between the two.  What it left there, and a third
    // neighbour set aside then, go to the side they lie on.
    if (l.above_save <= 0) {
      r.above0 = l.above1;
      l.above1 = r.above1 = kNoNeighbour;
      t.tr[r.above0].below0 = right;
      return;
    }
    if (l.above_side == kLeft) {
      r.above0 = l.above1;
      l.above1 = kNoNeighbour;
      r.above1 = l.above_save;
      t.tr[l.above0].below0 = left;
      t.tr[r.above0].below0 = right;
      t.tr[r.above1].below0 = right;
    } else {
      r.above1 = kNoNeighbour;
      r.above0 = l.above1;
      l.above1 = l.above0;
      l.above0 = l.above_save;
      t.tr[l.above0].below0 = left;
      t.tr[l.above1].below0 = left;
      t.tr[r.above0].below0 = right;
    }
    l.above_save = r.above_save = 0;
    return;
  }

  const kz_long above = l.above0;
  if (above <= 0) return;
  Trapezoid& u = t.tr[above];
  if (u.below0 > 0 && u.below1 > 0) {
    // The segment leaves a vertex that has one below it already: the trapezoid between the
    // two narrows to a point and has nothing above.
    const kz_long other = t.tr[u.below0].right_seg;
    if (other > 0 && !is_left_of_segment(t, other, way.bottom)) {
      l.above0 = l.above1 = r.above1 = kNoNeighbour;
      u.below1 = right;
    } else {
      r.above0 = r.above1 = l.above1 = kNoNeighbour;
      u.below0 = left;
    }
    return;
  }
  u.below0 = left;
  u.below1 = right;
}

/// Links the parts of a split trapezoid to its only lower neighbour, `below` of both.
/// @return the next trapezoid on the way
kz_long link_only_below(Tables& t, const Passage& way, kz_long left, kz_long right,
                        kz_long Trapezoid::*below) {
  Trapezoid& l = t.tr[left];
  Trapezoid& r = t.tr[right];
  Trapezoid& d = t.tr[l.*below];
  if (way.ends_in(t, left) && way.bottom_was_there) {
    // Two segments meet at the bottom: between them nothing lies below.
    if (way.bottom_neighbour > 0 && is_left_of_segment(t, way.bottom_neighbour, way.top)) {
      d.above0 = left;
      r.below0 = r.below1 = kNoNeighbour;
    } else {
      d.above1 = right;
      l.below0 = l.below1 = kNoNeighbour;
    }
  } else {
    if (d.above0 > 0 && d.above1 > 0) {
      // The two parts take both places; the neighbour that the segment does not pass waits
      // until the segment has come through `d`.
      if (d.above0 == left) {
        d.above_save = d.above1;
        d.above_side = kLeft;
      } else {
        d.above_save = d.above0;
        d.above_side = kRight;
      }
    }
    d.above0 = left;
    d.above1 = right;
  }
  return l.*below;
}

/// Whether the segment, at the bottom of trapezoid i, passes into the left one of the two
/// below: whether the vertex there lies to its right.
bool passes_into_below0(const Tables& t, const Passage& way, kz_long i) {
  const Point& vertex = t.tr[i].bottom;
  if (level(vertex.y, way.top.y)) return vertex.x > way.top.x;
  // The sign that comparing x along the segment would give, without its rounding.
  return orientation(way.bottom, way.top, vertex) < 0;
}

/// Links the parts of a split trapezoid to its two lower neighbours.
/// @return the next trapezoid on the way
kz_long link_both_below(Tables& t, const Passage& way, kz_long left, kz_long right) {
  Trapezoid& l = t.tr[left];
  Trapezoid& r = t.tr[right];
  Trapezoid& d0 = t.tr[l.below0];
  Trapezoid& d1 = t.tr[l.below1];
  const bool into_below0 = passes_into_below0(t, way, left);

  if (way.ends_in(t, left) && way.bottom_was_there) {
    // The vertex that parts the two below is the segment's own end: each part goes on into one.
    d0.above0 = left;
    d0.above1 = kNoNeighbour;
    d1.above0 = right;
    d1.above1 = kNoNeighbour;
    r.below0 = l.below1;
    l.below1 = r.below1 = kNoNeighbour;
    return l.below1;
  }
  if (into_below0) {
    d0.above0 = left;
    d0.above1 = right;
    d1.above0 = right;
    d1.above1 = kNoNeighbour;
    l.below1 = kNoNeighbour;
    return l.below0;
  }
  d0.above0 = left;
  d0.above1 = kNoNeighbour;
  d1.above0 = left;
  d1.above1 = right;
  r.below0 = l.below1;
  r.below1 = kNoNeighbour;
  return r.below0;
}

enum class Threading { done, no_way_down, table_full };

/// Splits every trapezoid on the segment's way, from the top down.
///
/// In every round `left` is the trapezoid that the segment enters next; what lies above it is
/// split and linked.  A segment that crosses others can find nothing below, or be led on longer
/// than the tables last.
Threading thread(Tables& t, Passage& way) {
  kz_long left = way.first;
  while (left > 0 && greater_than_equal_to(t.tr[left].bottom, t.tr[way.last].bottom)) {
    const kz_long right = t.take_step() ? split_by_segment(t, way, left) : 0;
    if (right == 0) return Threading::table_full;
    const bool has_below0 = t.tr[left].below0 > 0;
    const bool has_below1 = t.tr[left].below1 > 0;
    if (!has_below0 && !has_below1) return Threading::no_way_down;

    link_above(t, way, left, right);
    kz_long next = 0;
    if (has_below0 && has_below1) {
      next = link_both_below(t, way, left, right);
    } else {
      next = link_only_below(t, way, left, right,
                             has_below0 ? &Trapezoid::below0 : &Trapezoid::below1);
    }
    t.tr[left].right_seg = way.s;
    t.tr[right].left_seg = way.s;
    left = next;
  }
  return Threading::done;
}

/// Merges trapezoid `lower` into `upper`, right above it.
///
/// Whatever led a search to the lower one's sink leads to the upper one's afterwards: the search
/// structure is no tree from here on.  The sink and the trapezoid go to the lists of what may be
/// handed out again.
void merge(Tables& t, kz_long upper, kz_long lower) {
  Trapezoid& u = t.tr[upper];
  Trapezoid& l = t.tr[lower];
  const kz_long orphan = l.sink_node;
  QueryNode& parent = t.qs[t.qs[orphan].parent];
  (parent.left_child == orphan ? parent.left_child : parent.right_child) = u.sink_node;

  u.below0 = l.below0;
  u.below1 = l.below1;
  change_above(t, u.below0, lower, upper);
  change_above(t, u.below1, lower, upper);
  u.bottom = l.bottom;
  l.status = kInvalid;

  // A trapezoid is merged away by the segment that made it, before anything but its
  // neighbours and its sink's parent could refer to either.
  t.qs[orphan].left_child = t.orphan_node;
  t.orphan_node = orphan;
  l.sink_node = t.orphan_trap;
  t.orphan_trap = lower;
}

}  // namespace

kz_long newnode(Tables& t) {
  if (t.qs_next < t.qs_size) return t.qs_next++;
  // The links are in tables that are open to the program, which may have released them: one that
  // leads out of the table ends the list.
  if (t.orphan_node > 0 && t.qs.holds(t.orphan_node)) {
    const kz_long node = t.orphan_node;
    t.orphan_node = t.qs[node].left_child;
    t.qs[node] = QueryNode{};
    return node;
  }
  t.say("newnode: Query-table overflow");
  return -1;
}

kz_long newtrap(Tables& t) {
  // Where segments cross, one may still pass through a trapezoid that was merged away, and
  // overwrite the link: the list ends there.
  const auto is_orphan = [&t](kz_long i) {
    return t.is_trapezoid(i) && t.tr[i].status == kInvalid;
  };
  kz_long trapezoid = t.tr_next;
  if (t.tr_next < t.tr_size) {
    ++t.tr_next;
  } else if (is_orphan(t.orphan_trap)) {
    trapezoid = t.orphan_trap;
    t.orphan_trap = t.tr[trapezoid].sink_node;
    t.tr[trapezoid] = Trapezoid{};
  } else {
    t.say("newtrap: Trapezoid-table overflow");
    return -1;
  }
  t.tr[trapezoid].left_seg = t.tr[trapezoid].right_seg = kNoNeighbour;
  t.tr[trapezoid].status = kValid;
  return trapezoid;
}

bool create_initial_structure(Tables& t, kz_long s) {
  t.tr_next = t.qs_next = 1;
  t.orphan_node = t.orphan_trap = 0;
  constexpr kz_long kNodes = 7;
  constexpr kz_long kTrapezoids = 4;
  if (!t.is_segment(s) || t.qs_size <= kNodes || t.tr_size <= kTrapezoids) return false;

  Segment& segment = t.seg[s];
  const bool upward = greater_than(segment.end, segment.start);
  const Point& high = upward ? segment.end : segment.start;
  const Point& low = upward ? segment.start : segment.end;

  // The interface fixes the numbers that these come to have: the root is node 1.
  const kz_long root = newnode(t);
  const kz_long top_sink = newnode(t);
  const kz_long low_node = newnode(t);
  const kz_long bottom_sink = newnode(t);
  const kz_long x_node = newnode(t);
  const kz_long left_sink = newnode(t);
  const kz_long right_sink = newnode(t);
  const kz_long left = newtrap(t);
  const kz_long right = newtrap(t);
  const kz_long bottom = newtrap(t);
  const kz_long top = newtrap(t);

  t.qs[root].kind = kYNode;
  t.qs[root].y_key = high;
  t.qs[root].right_child = top_sink;
  t.qs[root].left_child = low_node;
  t.qs[low_node].kind = kYNode;
  t.qs[low_node].y_key = low;
  t.qs[low_node].parent = root;
  t.qs[low_node].left_child = bottom_sink;
  t.qs[low_node].right_child = x_node;
  t.qs[x_node].kind = kXNode;
  t.qs[x_node].seg_no = s;
  t.qs[x_node].parent = low_node;
  t.qs[x_node].left_child = left_sink;
  t.qs[x_node].right_child = right_sink;
  make_sink(t, top_sink, top, root);
  make_sink(t, bottom_sink, bottom, low_node);
  make_sink(t, left_sink, left, x_node);
  make_sink(t, right_sink, right, x_node);

  t.tr[left].right_seg = t.tr[right].left_seg = s;
  for (const kz_long middle : {left, right}) {
    t.tr[middle].top = high;
    t.tr[middle].bottom = low;
    t.tr[middle].above0 = top;
    t.tr[middle].below0 = bottom;
  }
  t.tr[top].top = {kInfinity, kInfinity};
  t.tr[top].bottom = high;
  t.tr[top].below0 = left;
  t.tr[top].below1 = right;
  t.tr[bottom].top = low;
  t.tr[bottom].bottom = {-kInfinity, -kInfinity};
  t.tr[bottom].above0 = left;
  t.tr[bottom].above1 = right;

  segment.inserted = 1;
  return true;
}

bool is_left_of_segment(const Tables& t, kz_long s, const Point& v) {
  const Segment& segment = t.seg[s];
  // At the height of an end x decides, as everywhere else: the horizontal line through a vertex
  // rises a little to the right, as it were, and the end is where it meets the segment.
  if (level(v.y, segment.end.y)) return v.x < segment.end.x;
  if (level(v.y, segment.start.y)) return v.x < segment.start.x;
  const bool upward = greater_than(segment.end, segment.start);
  const Point& low = upward ? segment.start : segment.end;
  const Point& high = upward ? segment.end : segment.start;
  return orientation(low, high, v) > 0;
}

kz_long locate(Tables& t, const Point& v, const Point& toward, kz_long node) {
  // No way down is longer than the number of nodes, unless a damaged map leads in circles.
  for (kz_long steps = 0; steps < t.qs_size && node > 0 && t.qs.holds(node); ++steps) {
    if (!t.take_step()) return 0;
    const QueryNode& here = t.qs[node];
    bool right = false;
    if (here.kind == kSink && here.trap_no >= 1 && t.tr.holds(here.trap_no)) {
      return here.trap_no;
    } else if (here.kind == kYNode) {
      right = greater_than(v, here.y_key) ||
              (equal_to(v, here.y_key) && greater_than(toward, here.y_key));
    } else if (here.kind == kXNode && t.is_segment(here.seg_no)) {
      const Segment& segment = t.seg[here.seg_no];
      if (!equal_to(v, segment.start) && !equal_to(v, segment.end)) {
        right = !is_left_of_segment(t, here.seg_no, v);
      } else if (level(v.y, toward.y)) {
        right = !(toward.x < v.x);
      } else {
        right = !is_left_of_segment(t, here.seg_no, toward);
      }
    } else {
      break;
    }
    node = right ? here.right_child : here.left_child;
  }
  t.say("Haggu !!!!!");
  return 0;
}

bool add_segment(Tables& t, kz_long s) {
  if (!t.is_segment(s)) return false;
  Segment& segment = t.seg[s];
  // The way leads down, whichever way the contour runs.  A neighbour in the contour that is in the
  // map has brought the end that they share with it.
  const bool swapped = greater_than(segment.end, segment.start);
  const kz_long top_neighbour = swapped ? segment.next_seg : segment.prev_seg;
  const kz_long bottom_neighbour = swapped ? segment.prev_seg : segment.next_seg;
  if (!t.seg.holds(top_neighbour) || !t.seg.holds(bottom_neighbour)) return false;
  const kz_long top_root = swapped ? segment.end_root : segment.start_root;
  const kz_long bottom_root = swapped ? segment.start_root : segment.end_root;

  Passage way;
  way.s = s;
  way.top = swapped ? segment.end : segment.start;
  way.bottom = swapped ? segment.start : segment.end;
  way.bottom_neighbour = bottom_neighbour;
  way.bottom_was_there = t.seg[bottom_neighbour].inserted != 0;

  if (t.seg[top_neighbour].inserted != 0) {
    way.first = locate(t, way.top, way.bottom, top_root);
  } else {
    const kz_long upper = insert_endpoint(t, s, way.top, way.bottom, top_root);
    way.first = upper == 0 ? 0 : t.tr[upper].below0;
  }
  if (way.first == 0) return false;
  way.last = way.bottom_was_there ? locate(t, way.bottom, way.top, bottom_root)
                                  : insert_endpoint(t, s, way.bottom, way.top, bottom_root);
  if (way.last == 0) return false;

  switch (thread(t, way)) {
    case Threading::table_full:
      return false;
    case Threading::no_way_down:
      // The parts on the way stay as they are, unmerged, and the construction goes on: so much the
      // interface asks for.  Segments that cross end here.
      t.say("add_segment: error");
      break;
    case Threading::done:
      merge_trapezoid_run(t, s, way.first, way.last, kLeft);
      merge_trapezoid_run(t, s, way.first_right, way.last_right, kRight);
      break;
  }
  segment.inserted = 1;
  return true;
}

void merge_trapezoid_run(Tables& t, kz_long s, kz_long first, kz_long last, kz_long side) {
  if (!t.is_trapezoid(first) || !t.is_trapezoid(last)) return;
  const auto bounded = [&](kz_long i) {
    return i > 0 && (side == kLeft ? t.tr[i].right_seg : t.tr[i].left_seg) == s;
  };
  kz_long here = first;
  // What lies between `first` and `here` is merged as far as it can be.  Every round merges a
  // trapezoid away or goes one down; more rounds than trapezoids would mean going in circles.
  for (kz_long rounds = 0; rounds < 2 * t.tr_next && here > 0 && t.take_step() &&
                           greater_than_equal_to(t.tr[here].bottom, t.tr[last].bottom);
       ++rounds) {
    const Trapezoid& upper = t.tr[here];
    const bool along_below0 = bounded(upper.below0);
    const kz_long next = along_below0 ? upper.below0 : upper.below1;
    if (bounded(next) && t.tr[next].status == kValid && t.tr[next].left_seg == upper.left_seg &&
        t.tr[next].right_seg == upper.right_seg) {
      merge(t, here, next);
    } else {
      here = next;
    }
  }
}

bool refresh_segment_roots(Tables& t, kz_long s) {
  Segment& segment = t.seg[s];
  const kz_long at_start = locate(t, segment.start, segment.end, segment.start_root);
  const kz_long at_end = locate(t, segment.end, segment.start, segment.end_root);
  if (at_start == 0 || at_end == 0) return false;
  segment.start_root = t.tr[at_start].sink_node;
  segment.end_root = t.tr[at_end].sink_node;
  return true;
}

namespace {

/// How many steps, down the search structure and along segments, a construction of n segments
/// may take before it is given up.
///
/// In random order a polygon needs a multiple of n log* n that does not depend on its shape, as
/// an expectation (Seidel).  Of 140,000 polygons, of twelve families and 3 to 1,000,000 vertices
/// (tests/triangulate/polygons.h), none took more than 4.4 n (log2 n + 8): the limit is 14 times
/// that.  Vertices by the thousands in few places need a multiple of n squared instead, and would
/// hold a process for minutes with a megabyte of them.
std::int64_t most_steps(kz_long n) {
  constexpr std::int64_t kPerSegment = 64;
  // An order that is not random, which the program may fill in, takes up to n squared steps for
  // sound polygons too: those of up to three thousand vertices get them.
  constexpr std::int64_t kAlways = 10'000'000;
  return std::max(kAlways, kPerSegment * n * (std::bit_width(static_cast<kz_ulong>(n)) + 8));
}

/// Inserts segments 1 to n in the order of `permute`.
///
/// A search costs as much as the way from its start to its sink is long, and the way from the root
/// grows with the logarithm of what is inserted already.  At the end of a phase every segment that
/// waits is searched for once, and later searches for it start there: this is what brings the
/// whole from n log n down to n log* n.
bool insert_segments(Tables& t, kz_long n) {
  if (!create_initial_structure(t, choose_segment(t))) return false;
  for (kz_long s = 1; s <= n; ++s) t.seg[s].start_root = t.seg[s].end_root = 1;

  // After each phase the segments still outside learn where their ends lie now, so that no
  // later search walks all the way from the root.
  kz_long inserted = 1;
  const kz_long phases = phase_count(n);
  for (kz_long h = 1; h <= phases; ++h) {
    for (const kz_long end = phase_end(n, h); inserted < end; ++inserted) {
      if (!add_segment(t, choose_segment(t))) return false;
    }
    for (kz_long s = 1; s <= n; ++s) {
      if (t.seg[s].inserted == 0 && !refresh_segment_roots(t, s)) return false;
    }
  }
  for (; inserted < n; ++inserted) {
    if (!add_segment(t, choose_segment(t))) return false;
  }
  return true;
}

}  // namespace

bool construct_trapezoids(Tables& t, kz_long n) {
  n = t.segments_in(n);
  t.steps_left = most_steps(n);
  // A merge that ran out of steps says so to nobody: it is asked for here.
  const bool built = insert_segments(t, n) && t.steps_left >= 0;
  t.steps_left = std::numeric_limits<std::int64_t>::max();
  return built;
}

}  // namespace kzgis::triangulation
