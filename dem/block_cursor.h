// A USGS DEM from its first byte to its last, block after block, with the fields of its records.

#ifndef KZGIS_DEM_BLOCK_CURSOR_H
#define KZGIS_DEM_BLOCK_CURSOR_H

#include <cstddef>
#include <cstdio>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#include "dem/layout.h"

namespace kzgis::dem {

/// What an integer field without a number becomes; a real one becomes NaN.
inline constexpr int kNotANumber = std::numeric_limits<int>::min();

/// Reads fields from blocks that may stand in lines.
///
/// A block is 1024 bytes; a line end behind them is passed over, and one before them ends the
/// block early, its blanks having been cut off.  Fields keep the rule of the layout: none
/// reaches byte 1021 of its block.
///
/// Of a file only a window is in memory, a fresh page costing as much as the numbers in it.
class BlockCursor {
 public:
  /// Reads from memory, which must outlive the cursor.
  explicit BlockCursor(std::span<const char> bytes);
  /// Reads from a file, from where it stands; it must outlive the cursor.
  explicit BlockCursor(std::FILE* file);

  /// Where the next field begins, in bytes from the start.
  std::size_t offset() const { return start_ + static_cast<std::size_t>(count_); }
  bool at_end() const { return offset() >= known_end(); }
  /// Where the bytes of the present block end.
  std::size_t block_end() const { return end_; }
  /// True in the block that the end of the file ends.
  bool in_last_block() const { return end_ == known_end(); }

  /// Goes to the next block; at the end of the file it has no bytes.
  void next_block() { enter(next_, 0); }

  // Field readers for read_record_a and read_profile_header: -1 when the file ends first.

  int read(char* c);
  int read(UtString* s, int width);
  int read(int* v, int width);
  /// Reads exponents with D, the usual ones of Fortran, like those with E.
  int read(double* v, int width);
  int read(UtDate* d, int width);
  int skip(int bytes);

  /// As many elevation fields as the present block still has, `most` at most; the next block
  /// is entered when this one has room for none.
  ///
  /// @return whole fields, end to end, valid until the next block is entered; none when the
  ///         file or the line has no more.  Behind record A some bytes before them can be read
  std::string_view take_elevations(std::size_t most);

 private:
  void enter(std::size_t start, std::size_t from);
  void load(std::size_t start);
  std::string_view take(int width);
  bool is_cut(std::string_view field, int width) const;
  /// End of the window: while in a block, the end of the file or more than a line end behind
  /// the block's.
  std::size_t known_end() const { return base_ + window_.size(); }

  std::FILE* file_ = nullptr;  // none when it has ended, or all is in memory
  std::vector<char> buffer_;
  std::string_view window_;  // of the file, from `base_` on
  std::size_t base_ = 0;
  std::size_t start_ = 0;  // of the block, from the start of the file, as the next two
  std::size_t end_ = 0;    // of its bytes
  std::size_t next_ = 0;   // start of the next one
  int count_ = 0;          // bytes used
};

}  // namespace kzgis::dem

#endif
