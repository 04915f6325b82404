// A pass over the segments of an outline file that judges each: what the modern operations
// read with.

#ifndef KZGIS_WORLDMAP_BANK_SCAN_H
#define KZGIS_WORLDMAP_BANK_SCAN_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "kzgis/types.h"
#include "worldmap/bank_file.h"

namespace kzgis::worldmap {

/// Goes from segment to segment of one file:
///
///     BankScan scan(stream);
///     if (scan.start() != Obstacle::none) ...
///     while (scan.next()) {
///       if (wanted(scan.entry())) scan.walk();
///     }
///
/// Flaws are collected on the way.  A file that is damaged all through is not worth a sentence
/// for every segment: the first twenty are kept, the others counted.
class BankScan {
 public:
  /// Borrows a stream at its start, which nobody else reads meanwhile.
  explicit BankScan(std::FILE* stream);

  /// Reads the dictionary.  Of a file that has none nothing else may be asked.
  Obstacle start();

  /// Goes on to the next entry of the dictionary.
  ///
  /// @return false behind the last one, and where so many points were decoded that segments
  ///         must share their bytes
  bool next();

  /// Decodes the points of the segment.
  ///
  /// @return whether they can be used: the file holds all of them, and they lie on the globe
  bool walk();

  std::uint64_t file_bytes() const { return file_.size(); }
  const Header& header() const { return dictionary_.header; }
  std::size_t count() const { return dictionary_.count; }
  /// The place of the current entry in the dictionary, counted from 1.
  std::size_t number() const { return next_; }
  const Entry& entry() const { return dictionary_.entries[next_ - 1]; }
  /// The points that `walk` decoded, until the next call; of a segment that is not sound, as
  /// far as the file holds them.
  std::span<const std::int32_t> lat() const { return std::span(lat_).first(points_); }
  std::span<const std::int32_t> lon() const { return std::span(lon_).first(points_); }

  const std::vector<std::string>& flaws() const { return flaws_; }
  std::uint64_t flaw_count() const { return flaw_count_; }

 private:
  void add_flaw(const std::string& what);
  void add_segment_flaw(const std::string& what);
  void end_for_shared_bytes();
  std::size_t room_for_points(kz_ulong claimed) const;
  bool lies_on_globe() const;
  bool keeps_within_extent() const;

  File file_;
  Dictionary dictionary_;
  std::size_t next_ = 0;
  std::uint64_t points_left_;  // to be decoded from this file
  bool shares_bytes_ = false;
  std::vector<std::int32_t> lat_, lon_;  // only ever grow
  std::size_t points_ = 0;
  std::vector<std::string> flaws_;
  std::uint64_t flaw_count_ = 0;
};

}  // namespace kzgis::worldmap

#endif
