#ifndef KZGIS_TRIANGULATE_H
#define KZGIS_TRIANGULATE_H

#include "kzgis/export.h"
#include "kzgis/types.h"

/// Cuts a polygon with holes into triangles, without new vertices.
///
/// The method is R. Seidel's, "A simple and fast incremental randomized algorithm for
/// computing trapezoidal decompositions and for triangulating polygons", Computational
/// Geometry: Theory and Applications 1 (1991): the edges are inserted one by one, in
/// random order, into a map of trapezoids; the trapezoids inside the polygon give the
/// diagonals that cut it into y-monotone pieces; each piece is cut by one sweep.
///
/// The functions work on tables of the whole process, exported too: only one of them may run at
/// a time, `print_error` and the comparisons of points apart.  Nothing checks the input, and
/// nothing proves the output; `kzgis::triangulate` (kzgis/mesh.h) does both, needs no tables, and
/// is what a new program wants.
namespace kzgis::triangulation {

struct Point {
  double x, y;
};

/// One edge.  Segment i starts at vertex i; a segment number used as a vertex number
/// means that vertex.
struct Segment {
  Point start;
  Point end;           ///< the next vertex of the same contour
  kz_long inserted;    ///< 1 once the segment is part of the map of trapezoids
  kz_long start_root;  ///< query node from which a search for `start` begins
  kz_long end_root;    ///< the same for `end`
  kz_long next_seg;    ///< the next segment of the contour
  kz_long prev_seg;    ///< the one before it
};

/// One node of the search structure, a directed acyclic graph rooted in node 1.
struct QueryNode {
  kz_long kind;         ///< 1 X node, split by a segment; 2 Y node, by a height; 3 sink
  kz_long seg_no;       ///< X node: the splitting segment
  Point y_key;          ///< Y node: the splitting point
  kz_long trap_no;      ///< sink: its trapezoid
  kz_long parent;       ///< the node above; the latest, where there are several
  kz_long left_child;   ///< X node: the left side; Y node: below
  kz_long right_child;  ///< X node: the right side; Y node: above
};

/// One trapezoid, bounded above and below by the heights of two points.
struct Trapezoid {
  kz_long left_seg;   ///< segment on its left; below 1: none, unbounded
  kz_long right_seg;  ///< segment on its right, likewise
  Point top;
  Point bottom;
  kz_long above0, above1;  ///< neighbours above, from left to right; below 1: none
  kz_long below0, below1;  ///< neighbours below, likewise
  kz_long sink_node;
  kz_long above_save;  ///< a third neighbour above, while a segment passes through
  kz_long above_side;  ///< 1: that neighbour belongs to the right of the two, 2: to the left
  kz_long status;      ///< 1 valid, 2 merged into another
};

/// One link of the circular chain around a monotone piece.
struct ChainLink {
  kz_long vertex_no;
  kz_long next_link;  ///< positions in `mchain`
  kz_long prev_link;
  kz_long marked;  ///< 1 once its piece has been looked at
};

/// The chains through one vertex: its contour's, and one more for every diagonal.
struct VertexChain {
  Point point;
  kz_long next_vertex[4];  ///< the next vertex along each chain
  kz_long chain_pos[4];    ///< this vertex's position in `mchain` on each chain
  kz_long free_slot;       ///< how many of the four are taken
};

}  // namespace kzgis::triangulation

// The tables of the process.  Index 0 is unused.  They are allocated by `initilize` and
// live until the next `initilize` (or `triangulate_polygon`) or until `release_tables`,
// after which the pointers keep their stale values.  The pointers and sizes show where
// the tables are; writing another value into them changes nothing.  In C++ these names are
// short; their symbols say whose they are (KZGIS_SYMBOL).

extern KZGIS_EXPORT kzgis::triangulation::Segment* seg KZGIS_SYMBOL(seg);  ///< SEGSIZE records
extern KZGIS_EXPORT kzgis::triangulation::QueryNode* qs KZGIS_SYMBOL(qs);  ///< QSIZE records
extern KZGIS_EXPORT kzgis::triangulation::Trapezoid* tr KZGIS_SYMBOL(tr);  ///< TRSIZE records
extern KZGIS_EXPORT kz_long* permute KZGIS_SYMBOL(permute);  ///< SEGSIZE: the insertion order
extern KZGIS_EXPORT kzgis::triangulation::ChainLink* mchain
    KZGIS_SYMBOL(mchain);  ///< TRSIZE records
extern KZGIS_EXPORT kzgis::triangulation::VertexChain* vert
    KZGIS_SYMBOL(vert);  ///< SEGSIZE records
/// For each monotone piece, counted from 0, one position in `mchain` that lies on it.  It
/// holds 2 * SEGSIZE numbers: cuts and joins together can exceed the vertices.
extern KZGIS_EXPORT kz_long* mon KZGIS_SYMBOL(mon);
extern KZGIS_EXPORT kz_long* visited KZGIS_SYMBOL(visited);  ///< TRSIZE marks

extern KZGIS_EXPORT kz_long SEGSIZE KZGIS_SYMBOL(SEGSIZE);  ///< vertices + 1
extern KZGIS_EXPORT kz_long QSIZE KZGIS_SYMBOL(QSIZE);      ///< 10 * SEGSIZE
extern KZGIS_EXPORT kz_long TRSIZE KZGIS_SYMBOL(TRSIZE);    ///< 6 * SEGSIZE

// Entry points.

/// Cuts a polygon with holes into N + 2 (ncontours - 1) - 2 triangles, N being the number
/// of vertices.
///
/// The first contour is the outer boundary, counter-clockwise; the others are holes,
/// clockwise, so that the inside lies to the left of every edge.  Rings are simple, do
/// not cross or touch, have at least 3 vertices and do not repeat the first one at the
/// end; no two vertices are closer than 1e-7 in both x and y.  Nothing of this is
/// checked.  Input that breaks it, a table that overflows or memory that runs out leave
/// the triangles written so far, never more than the number above, and go unreported but
/// for a line on standard error.  Input whose search paths grow out of all proportion, such as
/// vertices by the thousands in few places, ends like a table that overflows.
///
/// The insertion order is seeded from the clock in seconds, by `std::srand`: the same
/// polygon may give other, equally valid triangles in a later second.
///
/// @param ncontours  number of contours
/// @param cntr       number of vertices of each
/// @param vertices   x and y of every vertex, contour after contour, from `vertices[1]`;
///                   `vertices[0]` is not read
/// @param triangles  room for the number above; each takes three vertex numbers, counted
///                   from 1, counter-clockwise
/// @return 0, always
KZGIS_EXPORT kz_long triangulate_polygon(kz_long ncontours, const kz_long* cntr,
                                         const double (*vertices)[2], kz_long (*triangles)[3])
    KZGIS_SYMBOL(triangulate_polygon);

namespace kzgis::triangulation {

/// `triangulate_polygon` without its messages, for a caller that looks at the triangles, and
/// knows what to do where there are none.
KZGIS_EXPORT kz_long triangulate_quietly(kz_long ncontours, const kz_long* cntr,
                                         const double (*vertices)[2], kz_long (*triangles)[3]);

}  // namespace kzgis::triangulation

/// 1 when the point (x, y) lies inside the polygon triangulated last, else 0.
///
/// Points on the boundary get no consistent answer.  With no tables, before the first
/// triangulation or after `release_tables`, every point is outside.
KZGIS_EXPORT kz_long is_point_inside_polygon(const double* vertex)
    KZGIS_SYMBOL(is_point_inside_polygon);

// Tables and order.

/// Allocates all tables, zeroed, for `size` segment records, unused record 0 included,
/// and releases those of the last call.
///
/// @return 0; 1 when a table cannot be allocated: its name goes to standard error and
///         the tables before it stay allocated
KZGIS_EXPORT kz_long initilize(kz_long size) KZGIS_SYMBOL(initilize);

/// Releases the tables; a second call does nothing.
/// @return 0
KZGIS_EXPORT kz_long release_tables() KZGIS_SYMBOL(release_tables);

/// Fills entries 1 to n of `permute` with the numbers 1 to n in random order and starts
/// `choose_segment` at the first.  Seeds `std::rand` from the clock.
///
/// @return 0; 1, with `permute` as it was and one line on standard error, when the scratch
///         array cannot be allocated
KZGIS_EXPORT kz_long generate_random_ordering(kz_long n) KZGIS_SYMBOL(generate_random_ordering);

/// The next segment of the random order; 0 past the end of the table.
KZGIS_EXPORT kz_long choose_segment() KZGIS_SYMBOL(choose_segment);

/// Where phase h of the insertion ends, for n segments: n divided by the h times
/// repeated binary exponent of n, rounded up.  -2147483648 when no 32-bit number is that
/// quotient, as when the exponent has come down to 0.
KZGIS_EXPORT kz_long math_N(kz_long n, kz_long h) KZGIS_SYMBOL(math_N);

/// Number of phases for n segments: how often the binary exponent can be taken before the
/// value falls below 1, less one; -1 when n < 1.
KZGIS_EXPORT kz_long math_logstar_n(kz_long n) KZGIS_SYMBOL(math_logstar_n);

/// Formatted print, as by `std::printf`, to standard error.  Texts of 256 characters and more
/// need memory: without it their first 255 are printed.
/// @return number of characters of the whole text
[[gnu::format(printf, 1, 2)]] KZGIS_EXPORT kz_long print_error(const char* format, ...)
    KZGIS_SYMBOL(print_error);

// Order of points: by y, and by x where the two heights are no more than 1e-7 apart.
// Each answers 1 or 0.  The names are those of the classic half (docs/classic.md), reserved or not.
// NOLINTBEGIN(bugprone-reserved-identifier)

/// Whether a and b lie within 1e-7 of each other in x and in y.
KZGIS_EXPORT kz_long _equal_to(const kzgis::triangulation::Point* a,
                               const kzgis::triangulation::Point* b) KZGIS_SYMBOL(_equal_to);
/// Whether a lies above b, or level and to its right.
KZGIS_EXPORT kz_long _greater_than(const kzgis::triangulation::Point* a,
                                   const kzgis::triangulation::Point* b)
    KZGIS_SYMBOL(_greater_than);
/// The same, or level with equal x.
KZGIS_EXPORT kz_long _greater_than_equal_to(const kzgis::triangulation::Point* a,
                                            const kzgis::triangulation::Point* b)
    KZGIS_SYMBOL(_greater_than_equal_to);
/// Whether a lies below b, or level and to its left.
KZGIS_EXPORT kz_long _less_than(const kzgis::triangulation::Point* a,
                                const kzgis::triangulation::Point* b) KZGIS_SYMBOL(_less_than);
// NOLINTEND(bugprone-reserved-identifier)

// The map of trapezoids.  A number outside its table is refused: nothing changes, and the
// result is 0.

/// Builds the map of segments 1 to n, which `seg` and `permute` must hold.
///
/// It is left incomplete, with the line of a table that overflows on standard error, when it
/// would take more steps than 64 n (log2 n + 8), and than ten million.  A polygon in random order
/// takes a small part of that, one of up to 3000 vertices in any order no more.
///
/// @return 0
KZGIS_EXPORT kz_long construct_trapezoids(kz_long n) KZGIS_SYMBOL(construct_trapezoids);

/// Starts the map anew with one segment: four trapezoids, seven query nodes.
/// @return the root node, 1
KZGIS_EXPORT kz_long create_initial_structure(kz_long s) KZGIS_SYMBOL(create_initial_structure);

/// Adds a segment to the map.
/// @return 0
KZGIS_EXPORT kz_long add_segment(kz_long s) KZGIS_SYMBOL(add_segment);

/// The trapezoid that holds `v`, searched from query node `r` downwards.
///
/// A vertex touches several trapezoids; `vo`, the other end of the segment, decides.
///
/// @return trapezoid number.  Where the search meets a node of no known kind, "Haggu !!!!!"
///         goes to standard error and the result is the 12 characters written
KZGIS_EXPORT kz_long locate_endpoint(const kzgis::triangulation::Point* v,
                                     const kzgis::triangulation::Point* vo, kz_long r)
    KZGIS_SYMBOL(locate_endpoint);

/// The next free query node; when the table is full one that merging has orphaned; -1,
/// with one line on standard error, when there is none either.
KZGIS_EXPORT kz_long newnode() KZGIS_SYMBOL(newnode);

/// The next free trapezoid, valid and unbounded; when the table is full one that merging has
/// given back; -1, with one line on standard error, when there is none either.
KZGIS_EXPORT kz_long newtrap() KZGIS_SYMBOL(newtrap);

/// 1 when v lies strictly to the left of segment s, seen upwards, else 0.
KZGIS_EXPORT kz_long is_left_of_segment(kz_long s, const kzgis::triangulation::Point* v)
    KZGIS_SYMBOL(is_left_of_segment);

/// Joins the trapezoids from `first` down to `last`, along one side of segment s, that
/// have come to lie between the same two segments.
/// @param side  1 left of s, 2 right of it
/// @return 0
KZGIS_EXPORT kz_long merge_trapezoid_run(kz_long s, kz_long first, kz_long last, kz_long side)
    KZGIS_SYMBOL(merge_trapezoid_run);

/// Moves the two search roots of a segment that is not yet inserted down to the sinks that
/// hold its endpoints now.
KZGIS_EXPORT void refresh_segment_roots(kz_long s) KZGIS_SYMBOL(refresh_segment_roots);

// Monotone pieces and triangles.

/// Cuts the polygon of segments 1 to n, whose trapezoids are built, into y-monotone pieces.
/// @return number of pieces; 0 when memory runs out
KZGIS_EXPORT kz_long monotonate_trapezoids(kz_long n) KZGIS_SYMBOL(monotonate_trapezoids);

/// Walks the trapezoids that can be reached from `t` and draws their diagonals, as far as
/// memory lasts.
/// @param m     piece the walk is in
/// @param from  trapezoid the walk comes from
/// @param dir   1 when `from` lies above, 2 below
/// @return 0
KZGIS_EXPORT kz_long traverse_trapezoids(kz_long m, kz_long t, kz_long from, kz_long dir)
    KZGIS_SYMBOL(traverse_trapezoids);

/// Draws the diagonal from vertex a to vertex b.
/// @return number of the new piece; -1, and nothing changed, when a and b are not two
///         vertices, one of them has four chains already or a table is full
KZGIS_EXPORT kz_long split_monotone_polygon(kz_long m, kz_long a, kz_long b)
    KZGIS_SYMBOL(split_monotone_polygon);

/// Which of the chains through a, and which of those through b, the diagonal between them
/// belongs to.
/// @return 0
KZGIS_EXPORT kz_long vertex_chain_positions(kz_long a, kz_long b, kz_long* slot_a, kz_long* slot_b)
    KZGIS_SYMBOL(vertex_chain_positions);

/// Orders directions around p: 1 where r lies in the direction of q, falling to -1 opposite
/// to it and to -3 on, counter-clockwise.
KZGIS_EXPORT double angle_measure(const kzgis::triangulation::Point* p,
                                  const kzgis::triangulation::Point* q,
                                  const kzgis::triangulation::Point* r) KZGIS_SYMBOL(angle_measure);

/// Cuts every monotone piece into triangles, written from `triangles[0]` on.  A piece for
/// which there is no memory is left out, with one line on standard error.
/// @return number of triangles, at most n + 2 (contours - 1) - 2
KZGIS_EXPORT kz_long triangulate_monotone_polygons(kz_long n, kz_long pieces,
                                                   kz_long (*triangles)[3])
    KZGIS_SYMBOL(triangulate_monotone_polygons);

/// Cuts one piece of at least four vertices, writing after the triangles there are.
/// @param pos   position in `mchain` of its highest vertex
/// @param side  1 when the vertex after that is the lowest, else 2
/// @return 0; 1 when the scratch stack cannot be allocated: one line goes to standard error
KZGIS_EXPORT kz_long triangulate_monotone_piece(kz_long n, kz_long pos, kz_long side,
                                                kz_long (*triangles)[3])
    KZGIS_SYMBOL(triangulate_monotone_piece);

#endif
