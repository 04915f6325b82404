// A World DataBank II file as a run of fields: reading and decoding them, without judging
// what they say.  Everything that reads such a file reads it through this page, the classic
// map, `read_databank` and the check of a single file alike.

#ifndef KZGIS_WORLDMAP_BANK_FILE_H
#define KZGIS_WORLDMAP_BANK_FILE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "kzgis/types.h"
#include "worldmap/layout.h"

namespace kzgis::worldmap {

struct Header {
  kz_ulong magic = 0;
  kz_ulong dictionary_offset = 0;
  kz_ulong count = 0;
};

struct Entry {
  kz_long max_lat, min_lat, max_lon, min_lon;
  kz_ulong offset;
  std::uint16_t level;
};

struct SegmentHeader {
  kz_long lon = 0;
  kz_long lat = 0;
  kz_ulong count = 0;
  std::uint16_t unused = 0;  // the word before the first delta
};

/// A longitude of less than zero, wrapped into [0, 1296000); any other as it is.
constexpr kz_long wrap_negative(kz_long lon) {
  return lon < 0 ? kTurn_arcsec - 1 + (lon + 1) % kTurn_arcsec : lon;
}

constexpr kz_long wrapping_add(kz_long a, kz_long b) {
  return static_cast<kz_long>(static_cast<kz_ulong>(a) + static_cast<kz_ulong>(b));
}

/// A longitude moved by a delta and brought into [0, 1296000).
///
/// One sum is enough for every longitude that a sound file can reach.  A first longitude may
/// be any number that is not negative: its sum wraps in 32 bits, and the remainder of what
/// comes out is the place.
constexpr kz_long moved(kz_long lon, kz_long delta) {
  const kz_long plain = wrapping_add(lon, delta);
  if (static_cast<kz_ulong>(plain) < static_cast<kz_ulong>(kTurn_arcsec)) return plain;
  const kz_long eastward = wrapping_add(lon, wrap_negative(delta));
  return wrap_negative(eastward) % kTurn_arcsec;
}

/// A long as files hold it: ones' complement, where -1 is kept as 0xFFFFFFFE.
constexpr kz_long from_ones_complement(kz_ulong bits) {
  const auto value = static_cast<kz_long>(bits);
  return value < 0 ? value + 1 : value;
}

inline std::uint16_t word_at(const unsigned char* bytes) {
  return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

/// Reads a file through a window in memory: a segment costs a few large reads, and a
/// count or an offset costs nothing until there are bytes behind it.
///
/// The end of the file is no failure.  A field that is not wholly there is not read, nor
/// is any after it until the next `seek`: their targets keep the values they had.
class File {
 public:
  /// Borrows a stream, which must be at its start and is read by nobody else.  A stream
  /// that cannot tell its size counts as empty.
  explicit File(std::FILE* stream);
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  std::uint64_t size() const { return size_; }

  /// Moves to an offset from the start; past the end, every field is missing.
  /// @return 1; 0 when the stream refused
  int seek(kz_ulong offset);

  /// Reads one field.
  /// @return 1; 0 at the end of the file, with the target as it was
  int readMap(std::uint16_t* target) {
    const unsigned char* const bytes = take(2);
    if (bytes == nullptr) return 0;
    *target = word_at(bytes);
    return 1;
  }
  int readMap(kz_ulong* target) {
    const unsigned char* const bytes = take(4);
    if (bytes == nullptr) return 0;
    *target = word_at(bytes) | static_cast<kz_ulong>(word_at(bytes + 2)) << 16;
    return 1;
  }
  int readMap(kz_long* target) {
    kz_ulong bits = 0;
    if (readMap(&bits) == 0) return 0;
    *target = from_ones_complement(bits);
    return 1;
  }

  /// Reads what follows, part by part.  What the file does not hold of a header stays as it
  /// was in the target.
  ///
  /// @return whether all of it was there
  bool read(Header& header);
  bool read(Entry& entry);
  bool read(SegmentHeader& header);

 private:
  static constexpr std::size_t kWindowBytes = std::size_t{1} << 14;
  static constexpr std::size_t kPaddedBytes = std::size_t{1} << 10;

  /// The next `count` bytes, which are then behind; null, with all behind, when the file
  /// has fewer.
  const unsigned char* take(std::size_t count) {
    if (filled_ - next_ < count && !refill(count)) return nullptr;
    const unsigned char* const bytes = window_ + next_;
    next_ += count;
    return bytes;
  }
  bool refill(std::size_t count);
  void fetch();

  friend class Deltas;
  /// Bytes in the window; behind `file_end` they are not the file's.
  struct Run {
    const unsigned char* next;
    const unsigned char* end;
    const unsigned char* file_end;
  };
  Run run() const { return {window_ + next_, window_ + filled_, window_ + filled_}; }
  Run more(const unsigned char* next, std::uint16_t previous);

  std::FILE* stream_;
  std::uint64_t size_ = 0;
  std::uint64_t window_start_ = 0;  // what is in the window, in bytes of the file
  std::size_t next_ = 0;
  std::size_t filled_ = 0;
  bool ended_ = false;  // nothing follows the window
  unsigned char window_[kWindowBytes] = {};
};

/// Decodes the deltas behind a segment header.
///
/// It keeps its place by itself, in registers where it is a local variable of the loop
/// that uses it; the file is to be sought before anything else is read from it.
class Deltas {
 public:
  /// Starts where `file` is.  `previous` is the word before the first delta.
  Deltas(File& file, std::uint16_t previous)
      : file_(file), start_(file.run().next), run_(file.run()), previous_(previous) {}

  /// Moves a place by the next delta.  Arithmetic on latitudes wraps in 32 bits: what a file
  /// says is not trusted.
  void move(kz_long& lon, kz_long& lat) {
    kz_long dlon = 0;
    kz_long dlat = 0;
    nextPoint(&dlon, &dlat);
    lat = wrapping_add(lat, dlat);
    lon = moved(lon, dlon);
  }

  /// Whether the file holds all of the next delta.
  bool has_next() {
    if (run_.end - run_.next < kLongBytes) refill();
    if (run_.file_end - run_.next >= kLongBytes) return true;
    const bool is_short = (word_at(run_.next) & kShortDelta) != 0;
    return run_.file_end - run_.next >= (is_short ? kShortBytes : kLongBytes);
  }

  /// Decodes one delta.  For a word that the file no longer has, the last one it has
  /// stands in once more.  A delta with a part beyond +-1296000 becomes (0, 0).
  void nextPoint(kz_long* dlon, kz_long* dlat) {
    if (run_.end - run_.next < kLongBytes) refill();
    const std::uint16_t first = word_at(run_.next);
    if ((first & kShortDelta) != 0) {
      const int high = first >> 8;
      *dlon = high - 0x40 - 0xC0 * (high >> 7);
      *dlat = ((first & 0xFF) ^ 0x80) - 0x80;
      run_.next += kShortBytes;
      return;
    }
    *dlon = long_delta(run_.next);
    *dlat = long_delta(run_.next + 4);
    run_.next += kLongBytes;
    if (!is_step(*dlon) || !is_step(*dlat)) {
      *dlon = 0;
      *dlat = 0;
    }
  }

 private:
  friend class File;
  static constexpr std::ptrdiff_t kShortBytes = kShortDeltaBytes;
  static constexpr std::ptrdiff_t kLongBytes = kLongDeltaBytes;

  /// High word, low word.  The highest bit is the sign, and stands for the next one too, which
  /// tells the forms apart.
  static kz_long long_delta(const unsigned char* bytes) {
    const kz_ulong bits = static_cast<kz_ulong>(word_at(bytes)) << 16 | word_at(bytes + 2);
    return static_cast<kz_long>(bits | (bits >> 1 & 0x40000000U));
  }

  /// Whether a part lies within +-1296000.
  static bool is_step(kz_long part) {
    constexpr auto kMost = static_cast<kz_ulong>(kTurn_arcsec);
    return static_cast<kz_ulong>(part) + kMost <= 2 * kMost;
  }

  void refill() {
    if (run_.next != start_) previous_ = word_at(run_.next - 2);
    run_ = file_.more(run_.next, previous_);
    start_ = run_.next;
  }

  File& file_;
  const unsigned char* start_;
  File::Run run_;
  std::uint16_t previous_;
};

/// The dictionary of a file, in the order in which it stands there.
struct Dictionary {
  Header header;
  std::unique_ptr<Entry[]> entries;
  std::size_t count = 0;  ///< of whole entries that the file holds
};

/// What stands between a file and its dictionary.
enum class Obstacle { none, bad_magic, no_memory, bad_seek };

/// Reads the header and the dictionary of a file that is at its start.
///
/// The header's count is a claim: memory is taken for no more entries than the whole file has
/// room for, and those that are cut off by its end do not count.
Obstacle read_dictionary(File& file, Dictionary& dictionary);

struct CloseFile {
  void operator()(std::FILE* stream) const { static_cast<void>(std::fclose(stream)); }
};
using Stream = std::unique_ptr<std::FILE, CloseFile>;

}  // namespace kzgis::worldmap

#endif
