// The plain functions: the algorithm on the tables of the process.
//
// Each refuses numbers that lie outside the tables, so that a call out of turn, before
// `initilize` or after `release_tables`, finds nothing instead of stale memory.  The pointers
// that the header shows are copies: the functions themselves go by `process`, which knows how large
// each table is, and whether it is there.

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <memory>
#include <new>
#include <span>

#include "kzgis/triangulate.h"
#include "triangulate/monotone.h"
#include "triangulate/predicates.h"
#include "triangulate/tables.h"
#include "triangulate/trapezoids.h"

namespace tri = kzgis::triangulation;

tri::Segment* seg = nullptr;
tri::QueryNode* qs = nullptr;
tri::Trapezoid* tr = nullptr;
kz_long* permute = nullptr;
tri::ChainLink* mchain = nullptr;
tri::VertexChain* vert = nullptr;
kz_long* mon = nullptr;
kz_long* visited = nullptr;

kz_long SEGSIZE = 0;
kz_long QSIZE = 0;
kz_long TRSIZE = 0;

namespace {

constinit tri::Tables process;

/// `count` times `size` in 32 bits: what does not fit wraps, and no table is that large.
kz_long table_size(kz_long size, std::uint32_t count) {
  return static_cast<kz_long>(static_cast<std::uint32_t>(size) * count);
}

/// The caller's array, as far as the interface says that it has room.
tri::TriangleArray output(kz_long n, kz_long (*triangles)[3]) {
  return {triangles == nullptr ? nullptr : &triangles[0][0], tri::triangles_in(process, n)};
}

/// Allocates all tables, releases those of the last call, and shows where they are.
bool take_tables(kz_long size, bool quiet) {
  process = tri::Tables{};
  process.quiet = quiet;
  const char* failed = process.allocate(size);
  SEGSIZE = size;
  QSIZE = table_size(size, 10);
  TRSIZE = table_size(size, 6);
  seg = process.seg.data();
  qs = process.qs.data();
  tr = process.tr.data();
  permute = process.permute.data();
  mchain = process.mchain.data();
  vert = process.vert.data();
  mon = process.mon.data();
  visited = process.visited.data();
  if (failed == nullptr) return true;
  if (!quiet) print_error("initilize:  Error allocating space for %s\n", failed);
  return false;
}

/// Draws an insertion order, another one in every second.
bool order_segments(kz_long n) {
  std::srand(static_cast<unsigned>(std::time(nullptr)));
  return tri::generate_random_ordering(process, n);
}

// The tables are open to the program, which may have left anything in them: a stage that starts
// from zero clears them whole.  Those that `initilize` has just allocated are zero, and as long
// as nobody writes to what a polygon does not use, that takes addresses but no memory.

void clear_map() {
  process.tr.clear();
  process.qs.clear();
}

void clear_chains() {
  process.vert.clear();
  process.visited.clear();
  process.mchain.clear();
  process.mon.clear();
}

}  // namespace

kz_long initilize(kz_long size) { return take_tables(size, false) ? 0 : 1; }

// What the header shows of the tables goes stale here, and stays so: docs/classic.md has it that
// the pointers keep their values until the next allocation.
kz_long release_tables() {
  process.release();
  return 0;
}

kz_long generate_random_ordering(kz_long n) { return order_segments(n) ? 0 : 1; }

kz_long choose_segment() { return tri::choose_segment(process); }

kz_long math_N(kz_long n, kz_long h) { return tri::phase_end(n, h); }

kz_long math_logstar_n(kz_long n) { return tri::phase_count(n); }

kz_long print_error(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  // Most of what is printed is that memory ran out: short texts need none.
  std::array<char, 256> room{};
  std::span<char> text(room);
  std::unique_ptr<char[]> longer;
  if (length >= static_cast<int>(room.size())) {
    const std::size_t size = static_cast<std::size_t>(length) + 1;
    longer.reset(new (std::nothrow) char[size]);
    if (longer) text = {longer.get(), size};
  }
  std::vsnprintf(text.data(), text.size(), format, again);
  va_end(again);
  std::cerr.write(text.data(), std::clamp(length, 0, static_cast<int>(text.size()) - 1));
  std::cerr << std::flush;
  return length;
}

kz_long _equal_to(const tri::Point* a, const tri::Point* b) {
  return tri::equal_to(*a, *b) ? 1 : 0;
}

kz_long _greater_than(const tri::Point* a, const tri::Point* b) {
  return tri::greater_than(*a, *b) ? 1 : 0;
}

kz_long _greater_than_equal_to(const tri::Point* a, const tri::Point* b) {
  return tri::greater_than_equal_to(*a, *b) ? 1 : 0;
}

kz_long _less_than(const tri::Point* a, const tri::Point* b) {
  return tri::less_than(*a, *b) ? 1 : 0;
}

kz_long construct_trapezoids(kz_long n) {
  clear_map();
  tri::construct_trapezoids(process, n);
  return 0;
}

kz_long create_initial_structure(kz_long s) {
  clear_map();
  return tri::create_initial_structure(process, s) ? 1 : 0;
}

kz_long add_segment(kz_long s) {
  tri::add_segment(process, s);
  return 0;
}

// A search that fails prints "Haggu !!!!!", and answers with the number of characters printed;
// docs/classic.md has that.
kz_long locate_endpoint(const tri::Point* v, const tri::Point* vo, kz_long r) {
  const kz_long trapezoid = tri::locate(process, *v, *vo, r);
  if (trapezoid > 0) return trapezoid;
  return static_cast<kz_long>(sizeof "Haggu !!!!!\n" - 1);
}

kz_long newnode() { return tri::newnode(process); }

kz_long newtrap() { return tri::newtrap(process); }

kz_long is_left_of_segment(kz_long s, const tri::Point* v) {
  return process.is_segment(s) && tri::is_left_of_segment(process, s, *v) ? 1 : 0;
}

kz_long merge_trapezoid_run(kz_long s, kz_long first, kz_long last, kz_long side) {
  tri::merge_trapezoid_run(process, s, first, last, side);
  return 0;
}

void refresh_segment_roots(kz_long s) {
  if (process.is_segment(s)) tri::refresh_segment_roots(process, s);
}

// The walk's list of visits grows on the standard heap, and no exception may pass from here:
// programs that use the classic half may be built without (docs/classic.md).

kz_long monotonate_trapezoids(kz_long n) {
  clear_chains();
  try {
    return tri::monotonate_trapezoids(process, n);
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

kz_long traverse_trapezoids(kz_long m, kz_long t, kz_long from, kz_long dir) {
  if (!process.is_trapezoid(t)) return 0;
  try {
    tri::traverse_trapezoids(process, m, t, from, dir);
  } catch (const std::bad_alloc&) {
    // Ends as a walk does that meets what no polygon gives.
  }
  return 0;
}

kz_long split_monotone_polygon(kz_long m, kz_long a, kz_long b) {
  return tri::split_monotone_polygon(process, m, a, b);
}

kz_long vertex_chain_positions(kz_long a, kz_long b, kz_long* slot_a, kz_long* slot_b) {
  if (!process.is_segment(a) || !process.is_segment(b)) return 0;
  const tri::ChainSlots slots = tri::vertex_chain_positions(process, a, b);
  *slot_a = slots.a;
  *slot_b = slots.b;
  return 0;
}

double angle_measure(const tri::Point* p, const tri::Point* q, const tri::Point* r) {
  return tri::angle_measure(*p, *q, *r);
}

kz_long triangulate_monotone_polygons(kz_long n, kz_long pieces, kz_long (*triangles)[3]) {
  return tri::triangulate_monotone_polygons(process, n, pieces, output(n, triangles));
}

// The walk round a piece trusts its links, and the caller's number is the first of them.
kz_long triangulate_monotone_piece(kz_long n, kz_long pos, kz_long side, kz_long (*triangles)[3]) {
  if (pos < 1 || pos > process.chain_next || !process.mchain.holds(pos)) return 0;
  const tri::Sweep sweep =
      tri::triangulate_monotone_piece(process, n, pos, side, output(n, triangles));
  return sweep == tri::Sweep::no_memory ? 1 : 0;
}

namespace {

/// Triangulates on fresh tables.  What is missing at the end, for want of memory or because the
/// contours are no polygon's, nothing reports.
void triangulate(kz_long ncontours, const kz_long* cntr, const double (*vertices)[2],
                 kz_long (*triangles)[3], bool quiet) {
  constexpr std::int64_t kMost = INT32_MAX - 1;
  std::int64_t n = 0;
  for (kz_long k = 0; k < ncontours; ++k) {
    if (cntr[k] < 0 || n + cntr[k] > kMost) return;
    n += cntr[k];
  }
  const auto count = static_cast<kz_long>(n);
  if (!take_tables(count + 1, quiet)) return;
  tri::build_segments(process, ncontours, cntr, vertices);
  if (!order_segments(count)) return;
  try {
    tri::triangulate_segments(process, count, output(count, triangles));
  } catch (const std::bad_alloc&) {
    // The triangles written so far stand.
  }
}

}  // namespace

kz_long triangulate_polygon(kz_long ncontours, const kz_long* cntr, const double (*vertices)[2],
                            kz_long (*triangles)[3]) {
  triangulate(ncontours, cntr, vertices, triangles, false);
  return 0;
}

kz_long tri::triangulate_quietly(kz_long ncontours, const kz_long* cntr,
                                 const double (*vertices)[2], kz_long (*triangles)[3]) {
  triangulate(ncontours, cntr, vertices, triangles, true);
  process.quiet = false;  // the tables stay, and the next call on them may have to say something
  return 0;
}

kz_long is_point_inside_polygon(const double* vertex) {
  // Without a map there is nothing to search, and nothing to complain about.  With one, a
  // trapezoid is inside when the segment to its right runs upward: the inside lies to the left of
  // every edge.
  if (process.seg_size == 0 || process.qs_next == 1) return 0;
  const tri::Point point{vertex[0], vertex[1]};
  const kz_long i = tri::locate(process, point, point, 1);
  if (i == 0) return 0;
  const tri::Trapezoid& here = process.tr[i];
  if (here.status == tri::kInvalid || !process.is_segment(here.left_seg) ||
      !process.is_segment(here.right_seg)) {
    return 0;
  }
  const tri::Segment& right = process.seg[here.right_seg];
  return tri::greater_than_equal_to(right.end, right.start) ? 1 : 0;
}
