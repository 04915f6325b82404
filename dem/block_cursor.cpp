// The blocks of a USGS DEM and the fields in them, for the reader of whole grids.
//
// "Standards for Digital Elevation Models" (USGS) has blocks of 1024 bytes and nothing between
// them.  Files are met in which each block is a line of its own, and in which the blanks at the
// end of such lines have been cut off.  The cursor finds out at every block which it is.
//
// What holds while a block is entered, all offsets counted from the start of the file:
//   start_ <= end_ <= next_ <= known_end()   the block, the line end behind it, the next one
//   base_ <= start_                          the window holds the whole block
//   end_ == known_end()                      only where the file itself ends the block
// Behind the first block at least `kBeforeBytes` bytes in front of the block are in the window.

#include "dem/block_cursor.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "dem/number_text.h"

namespace kzgis::dem {
namespace {

/// Room for a block, its line end and what is kept in front of it, many times over.
constexpr std::size_t kWindowBytes = std::size_t{1} << 16;
/// Of the longest line end, CRLF.
constexpr std::size_t kLineEndBytes = 2;
/// Kept in front of the present block: `plain_number` looks at two bytes before its field.
constexpr std::size_t kBeforeBytes = 8;

/// The fields that every header has end here: no line end can stand before.  A NUL or a line
/// end in the texts of a header is one of their characters.
constexpr std::size_t kOldHeaderBytes = 864;

}  // namespace

BlockCursor::BlockCursor(std::span<const char> bytes) : window_(bytes.data(), bytes.size()) {
  enter(0, kOldHeaderBytes);
}

BlockCursor::BlockCursor(std::FILE* file) : file_(file), buffer_(kWindowBytes) {
  enter(0, kOldHeaderBytes);
}

/// Moves the window so that it holds the block at `start` and what can follow it, or ends
/// with the file.
///
/// What the window has already of that part of the file moves to the front of the buffer, and
/// the file fills the rest.  Nothing is ever read twice, and nothing is sought.  A short read is
/// the end of the file; an error of the host looks the same here, and `read_dem` asks the
/// stream for it.
void BlockCursor::load(std::size_t start) {
  const std::size_t from = start - std::min(start, kBeforeBytes);
  const std::size_t kept = known_end() - std::min(from, known_end());
  std::memmove(buffer_.data(), buffer_.data() + (window_.size() - kept), kept);
  const std::size_t wanted = buffer_.size() - kept;
  const std::size_t got = std::fread(buffer_.data() + kept, 1, wanted, file_);
  if (got < wanted) file_ = nullptr;
  base_ = from;
  window_ = {buffer_.data(), kept + got};
}

/// Enters the block at `start`; a line end may stand from its byte `from` on.
///
/// A line end among the block's 1024 bytes ends it early: its blanks were cut off.  Otherwise
/// the block has all its bytes, or those up to the end of the file, and one line end behind
/// them is passed over: LF, CRLF or a CR alone.
void BlockCursor::enter(std::size_t start, std::size_t from) {
  if (file_ != nullptr && start + kBlockBytes + kLineEndBytes >= known_end()) load(start);
  start_ = std::min(start, known_end());
  count_ = 0;
  const std::string_view block = window_.substr(start_ - base_, kBlockBytes);
  const std::size_t line_end = block.find('\n', from);
  if (line_end != std::string_view::npos) {
    next_ = start_ + line_end + 1;
    end_ = start_ + line_end;
    if (line_end > 0 && block[line_end - 1] == '\r') --end_;
    return;
  }
  end_ = start_ + block.size();
  next_ = end_;
  const std::string_view behind = window_.substr(end_ - base_, kLineEndBytes);
  if (behind.starts_with('\r')) ++next_;
  if (behind.starts_with('\n') || behind == "\r\n") ++next_;
}

/// The next `width` bytes, or those of them that the block has.
///
/// A field that would reach byte 1021 begins the next block, whatever its type.  The classic
/// reader makes that move for integers alone.  No sound file shows the difference: only its
/// elevations, which are integers, come near the end of a block.
std::string_view BlockCursor::take(int width) {
  if (count_ + width >= kBlockLimit) next_block();
  const std::size_t from = std::min(offset(), end_);
  const std::size_t size = std::min(static_cast<std::size_t>(width), end_ - from);
  count_ += width;
  return window_.substr(from - base_, size);
}

/// True when the end of the file, not that of a line, made a field short.  What is missing at
/// the end of a line were blanks.
bool BlockCursor::is_cut(std::string_view field, int width) const {
  return field.size() < static_cast<std::size_t>(width) && in_last_block();
}

// A number of blanks only, missing ones included, is 0.  A field that holds anything but blanks
// around one number has no value: the least int stands for it, or NaN.

int BlockCursor::read(char* c) {
  const std::string_view field = take(1);
  if (is_cut(field, 1)) return -1;
  *c = field.empty() ? ' ' : field.front();
  return 1;
}

int BlockCursor::read(UtString* s, int width) {
  const std::string_view field = take(width);
  if (is_cut(field, width)) return -1;
  *s = UtString(std::string(field));
  return 1;
}

int BlockCursor::read(int* v, int width) {
  const std::string_view field = take(width);
  if (is_cut(field, width)) return -1;
  const auto number = integer_of(field);
  *v = is_whole(number, field) ? number.value : kNotANumber;
  return 1;
}

int BlockCursor::read(double* v, int width) {
  std::string field(take(width));
  if (is_cut(field, width)) return -1;
  std::replace(field.begin(), field.end(), 'D', 'E');
  std::replace(field.begin(), field.end(), 'd', 'e');
  const auto number = real_of(field);
  *v = is_whole(number, field) ? number.value : std::numeric_limits<double>::quiet_NaN();
  return 1;
}

int BlockCursor::read(UtDate* d, int width) {
  int n = 0;
  if (read(&n, width) == -1) return -1;
  *d = date_of(n == kNotANumber ? 0 : n);
  return 1;
}

int BlockCursor::skip(int bytes) { return is_cut(take(bytes), bytes) ? -1 : 1; }

// The same fields as by single reads of six bytes, found at once: those that end before byte
// 1021 and that the block holds in full.
std::string_view BlockCursor::take_elevations(std::size_t most) {
  if (count_ + kElevationWidth >= kBlockLimit) next_block();
  const auto room = static_cast<std::size_t>(kBlockLimit - 1 - count_);
  const std::size_t bytes = std::min(room, end_ - std::min(offset(), end_));
  return take(static_cast<int>(std::min(bytes / kElevationWidth, most)) * kElevationWidth);
}

}  // namespace kzgis::dem
