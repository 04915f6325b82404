// From lines of shapefiles to segments of a data bank.

#ifndef KZGIS_TOOLS_PACK_BANK_PACKER_H
#define KZGIS_TOOLS_PACK_BANK_PACKER_H

#include <kzgis/databank.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

#include "tools/pack/labels.h"
#include "tools/support/record_walk.h"

namespace kzgis::tools {

/// A place in degrees as the nearest whole arc-second, the longitude in [0, 1296000); longitudes
/// may run any way round.  The latitude must lie within the poles, and both be finite.
struct ArcPoint {
  std::int32_t lat = 0;
  std::int32_t lon = 0;
  friend bool operator==(const ArcPoint&, const ArcPoint&) = default;
};
ArcPoint to_arc_seconds(double lat_deg, double lon_deg);

/// Collects the lines of shapefiles and writes them as a data bank.
class BankPacker {
 public:
  /// @param longest  points of a segment at most, >= 2
  /// @param complain  receives a line on every record that cannot be packed
  BankPacker(std::size_t longest, Complain complain)
      : longest_(longest), complain_(std::move(complain)) {}

  /// Adds the lines and outlines of a shapefile.  Throws `CommandError` when it has none,
  /// or when it cannot be known where a record goes.
  void add_file(const std::string& file, const LabelSources& sources);

  /// Writes the five files of every theme that has a line, those without one too: what an
  /// earlier run left there belongs to an earlier bank.  All of them appear or none.
  ///
  /// @param summary  receives a line for each file, and the sums
  /// Throws `CommandError`.
  void write(const std::string& directory, std::ostream& summary) const;

 private:
  void add_line(const Segment& line, const std::string& place);
  void add_record(const std::string& file, std::uint32_t number, const ShapeRecord& record,
                  const Label& label);

  std::size_t longest_;
  Complain complain_;
  DatabankWriter writer_;
  std::uintmax_t shape_bytes_ = 0;
  std::uint64_t null_records_ = 0;
  std::uint64_t short_lines_ = 0;  ///< of less than two points
};

}  // namespace kzgis::tools

#endif
