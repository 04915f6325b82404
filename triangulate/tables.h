// The working data of one triangulation.
//
// The interface has one set of tables for the whole process (classic.cpp).  The algorithm does
// not know that: each of its steps works on a Tables object that it is handed, so that what a
// step reads and changes can be seen in its arguments.
//
// The tables are open to the program, between any two steps, and a polygon that crosses itself
// leaves numbers in them that no polygon gives.  Every number that comes out of a table is
// therefore looked at before it is used as a place in another one.

#ifndef KZGIS_TRIANGULATE_TABLES_H
#define KZGIS_TRIANGULATE_TABLES_H

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <type_traits>

#include "kzgis/triangulate.h"

namespace kzgis::triangulation {

/// A fixed number of plain records from the C heap, zeroed.
///
/// `calloc` hands out large blocks untouched: what a polygon does not use takes addresses
/// but no memory, as long as nobody clears it.
template <class Record>
class Table {
  static_assert(std::is_trivially_copyable_v<Record>);

 public:
  /// Makes room for `count` records.  A table from before that is large enough stays, as it is.
  /// @return false, and no records at all, when there is no room for them
  bool allocate(std::int64_t count) {
    if (count <= size_) return count >= 0;
    release();
    const auto records = static_cast<std::size_t>(count);
    first_.reset(static_cast<Record*>(std::calloc(records, sizeof(Record))));
    if (first_) size_ = count;
    return first_ != nullptr;
  }

  void release() {
    first_.reset();
    size_ = 0;
  }

  /// Zeroes all records.
  void clear() { std::fill_n(first_.get(), size_, Record{}); }

  bool holds(kz_long index) const { return index >= 0 && index < size_; }
  Record& operator[](kz_long index) {
    assert(holds(index));
    return first_.get()[index];
  }
  const Record& operator[](kz_long index) const {
    assert(holds(index));
    return first_.get()[index];
  }

  Record* data() { return first_.get(); }

 private:
  struct Free {
    void operator()(void* block) const { std::free(block); }
  };
  std::unique_ptr<Record, Free> first_;
  std::int64_t size_ = 0;
};

struct Tables {
  Table<Segment> seg;
  Table<QueryNode> qs;
  Table<Trapezoid> tr;
  Table<kz_long> permute;
  Table<ChainLink> mchain;
  Table<VertexChain> vert;
  Table<kz_long> mon;
  Table<kz_long> visited;
  Table<kz_long> stack;  ///< of the sweep, allocated when first needed

  kz_long seg_size = 0;  ///< records in use: SEGSIZE, QSIZE and TRSIZE
  kz_long qs_size = 0;
  kz_long tr_size = 0;

  bool quiet = false;  ///< messages stay unprinted
  /// How many more steps a construction of the map may take; see `take_step`.
  std::int64_t steps_left = std::numeric_limits<std::int64_t>::max();

  kz_long next_choice = 1;  ///< next entry of `permute`
  kz_long qs_next = 1;      ///< first query node never handed out
  kz_long tr_next = 1;      ///< first trapezoid never handed out
  kz_long orphan_node = 0;  ///< first of the query nodes given back, linked by left_child
  kz_long orphan_trap = 0;  ///< first of the trapezoids given back, linked by sink_node
  kz_long chain_next = 0;   ///< last position of `mchain` in use
  kz_long piece_count = 0;  ///< last piece
  kz_long tri_count = 0;    ///< triangles written

  /// Sets the sizes and allocates.
  /// @return null, or the name of the first table there was no memory for; those after it
  ///         are empty then
  const char* allocate(kz_long size);
  void release();

  /// Prints one line to standard error, unless quiet.
  /// @return number of characters
  kz_long say(const char* line) const;

  /// Takes one of the steps that are left to a construction: every walk through the map that can
  /// be long asks before it goes on.
  /// @return false when there was none left; the line that a full table prints is printed, once
  bool take_step();

  /// `n` as far as there are so many segments.
  kz_long segments_in(kz_long n) const { return std::clamp(n, 0, std::max(seg_size - 1, 0)); }
  bool is_segment(kz_long s) const { return s >= 1 && s < seg_size; }
  bool is_trapezoid(kz_long t) const { return t >= 1 && t < tr_next && tr.holds(t); }
};

/// The boundary between insertion phases h and h + 1.
kz_long phase_end(kz_long n, kz_long h);
/// Number of insertion phases.
kz_long phase_count(kz_long n);

/// Fills entries 1 to n of `permute` with the numbers 1 to n, in an order drawn by `std::rand`.
/// @return false, with `permute` as it was, when the scratch array cannot be allocated
bool generate_random_ordering(Tables& t, kz_long n);

/// The next segment of the order; 0 when there is none left.
kz_long choose_segment(Tables& t);

/// Builds the segment table from contours, whose vertices are numbered from 1.
/// @return number of segments, no more than the table holds
kz_long build_segments(Tables& t, kz_long contours, const kz_long* vertex_counts,
                       const double (*vertices)[2]);

/// How many triangles the contours in the segment table make: n + 2 (contours - 1) - 2.
kz_long triangles_in(const Tables& t, kz_long n);

}  // namespace kzgis::triangulation

#endif
