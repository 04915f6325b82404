// The window through which a file is read, and the fields of its three structures.

#include "worldmap/bank_file.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace kzgis::worldmap {

File::File(std::FILE* stream) : stream_(stream) {
  // The window is the buffer; without one of its own the stream reads into it directly.
  std::setvbuf(stream, nullptr, _IONBF, 0);
  // A pipe or a terminal has no size, and reading it could wait for ever.
  long end = 0;
  if (std::fseek(stream, 0, SEEK_END) != 0 || (end = std::ftell(stream)) < 0 ||
      std::fseek(stream, 0, SEEK_SET) != 0) {
    ended_ = true;
    return;
  }
  size_ = static_cast<std::uint64_t>(end);
}

int File::seek(kz_ulong offset) {
  // Segments follow each other in most files: what is in the window need not be read again.
  if (offset >= window_start_ && offset - window_start_ <= filled_) {
    next_ = static_cast<std::size_t>(offset - window_start_);
    return 1;
  }
  if (!std::in_range<long>(offset) ||
      std::fseek(stream_, static_cast<long>(offset), SEEK_SET) != 0) {
    return 0;
  }
  window_start_ = offset;
  next_ = 0;
  filled_ = 0;
  ended_ = false;
  return 1;
}

/// Moves the rest of the window to its front and fills it up from the file.
void File::fetch() {
  filled_ -= next_;
  std::memmove(window_, window_ + next_, filled_);
  window_start_ += next_;
  next_ = 0;
  if (ended_) return;
  const std::size_t room = kWindowBytes - filled_;
  const std::size_t got = std::fread(window_ + filled_, 1, room, stream_);
  filled_ += got;
  ended_ = got < room;
}

/// @return whether `count` bytes are in the window; if not, all that are there count as read
bool File::refill(std::size_t count) {
  fetch();
  if (filled_ >= count) return true;
  next_ = filled_;
  return false;
}

/// Gives a run of deltas, of which `next` is the first byte not decoded yet, at least one
/// more.  Behind the end of the file, `previous` or the last word that the file has
/// repeats: the window is then the file's no longer, and stands empty at its end.
File::Run File::more(const unsigned char* next, std::uint16_t previous) {
  next_ = std::min(static_cast<std::size_t>(next - window_), filled_);
  fetch();
  if (filled_ >= Deltas::kLongBytes) return run();

  const unsigned char* const file_end = window_ + filled_;
  const std::size_t kept = filled_ - filled_ % 2;
  const std::uint16_t word = kept == 0 ? previous : word_at(window_ + kept - 2);
  for (std::size_t i = kept; i < kPaddedBytes; i += 2) {
    window_[i] = static_cast<unsigned char>(word & 0xFF);
    window_[i + 1] = static_cast<unsigned char>(word >> 8);
  }
  window_start_ += filled_;
  filled_ = 0;
  return {window_, window_ + kPaddedBytes, file_end};
}

bool File::read(Header& header) {
  return readMap(&header.magic) != 0 && readMap(&header.dictionary_offset) != 0 &&
         readMap(&header.count) != 0;
}

bool File::read(Entry& entry) {
  // An entry that is cut off is no entry: its caller uses none of the fields.
  kz_ulong identifier = 0;
  std::uint16_t unused = 0;
  if (readMap(&identifier) == 0 || readMap(&entry.max_lat) == 0 || readMap(&entry.min_lat) == 0 ||
      readMap(&entry.max_lon) == 0 || readMap(&entry.min_lon) == 0 || readMap(&entry.offset) == 0 ||
      readMap(&unused) == 0 || readMap(&entry.level) == 0) {
    return false;
  }
  entry.max_lon = wrap_negative(entry.max_lon);
  entry.min_lon = wrap_negative(entry.min_lon);
  return true;
}

bool File::read(SegmentHeader& header) {
  kz_ulong unused_long = 0;
  if (readMap(&header.lon) == 0) return false;
  header.lon = wrap_negative(header.lon);
  return readMap(&header.lat) != 0 && readMap(&unused_long) != 0 && readMap(&header.count) != 0 &&
         readMap(&header.unused) != 0;
}

Obstacle read_dictionary(File& file, Dictionary& dictionary) {
  static_cast<void>(file.read(dictionary.header));
  if (dictionary.header.magic != kMagic) return Obstacle::bad_magic;
  const std::uint64_t most_entries = file.size() / kEntryBytes;
  const auto room =
      static_cast<std::size_t>(std::min<std::uint64_t>(dictionary.header.count, most_entries));
  dictionary.entries.reset(new (std::nothrow) Entry[room]);
  if (dictionary.entries == nullptr) return Obstacle::no_memory;
  if (file.seek(dictionary.header.dictionary_offset) == 0) return Obstacle::bad_seek;
  while (dictionary.count < room && file.read(dictionary.entries[dictionary.count])) {
    ++dictionary.count;
  }
  return Obstacle::none;
}

}  // namespace kzgis::worldmap
