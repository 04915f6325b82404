#include "dem/block_cursor.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "dem/number_text.h"

namespace kzgis::dem {
namespace {

constexpr std::size_t kWindowBytes = std::size_t{1} << 16;
constexpr std::size_t kLineEndBytes = 2;
/// Kept in front of the present block.
constexpr std::size_t kBeforeBytes = 8;

/// The fields that every header has end here: no line end can stand before.
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
std::string_view BlockCursor::take(int width) {
  if (count_ + width >= kBlockLimit) next_block();
  const std::size_t from = std::min(offset(), end_);
  const std::size_t size = std::min(static_cast<std::size_t>(width), end_ - from);
  count_ += width;
  return window_.substr(from - base_, size);
}

/// True when the end of the file, not that of a line, made a field short.
bool BlockCursor::is_cut(std::string_view field, int width) const {
  return field.size() < static_cast<std::size_t>(width) && in_last_block();
}

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

std::string_view BlockCursor::take_elevations(std::size_t most) {
  if (count_ + kElevationWidth >= kBlockLimit) next_block();
  const auto room = static_cast<std::size_t>(kBlockLimit - 1 - count_);
  const std::size_t bytes = std::min(room, end_ - std::min(offset(), end_));
  return take(static_cast<int>(std::min(bytes / kElevationWidth, most)) * kElevationWidth);
}

}  // namespace kzgis::dem
