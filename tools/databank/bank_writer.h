#ifndef KZGIS_TOOLS_DATABANK_BANK_WRITER_H
#define KZGIS_TOOLS_DATABANK_BANK_WRITER_H

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "tools/databank/layout.h"

namespace kzgis::databank {

/// A place in degrees as the nearest whole arc-second; longitudes may run any way round.
/// The latitude must lie within the poles, and both be finite.
ArcPoint to_arc_seconds(double lat_deg, double lon_deg);

/// Collects lines and writes them as one outline file.
class BankWriter {
 public:
  /// Adds a line of two points or more, cut into segments of at most `longest` (>= 2)
  /// points; a segment begins with the point that the one before it ended with.
  ///
  /// Returns false, and adds nothing more, when the file would leave the 32-bit offsets.
  bool add_line(std::span<const ArcPoint> line, int level, std::size_t longest);

  std::size_t segments() const { return entries_.size(); }
  std::uint64_t points() const { return points_; }
  std::size_t bytes() const { return kHeaderBytes + entries_.size() * kEntryBytes + data_.size(); }

  /// Writes header, dictionary and segments.
  void write(std::ostream& out) const;

 private:
  void add_segment(std::span<const ArcPoint> points, int level);

  struct Entry {
    Extent extent;
    std::size_t offset = 0;  ///< within data_: how long the dictionary will be shows at the end
    int level = 0;
  };

  std::vector<Entry> entries_;
  std::string data_;
  std::uint64_t points_ = 0;
};

}  // namespace kzgis::databank

#endif
