// Which columns of a CSV file hold a point, and the point that a record holds there.

#ifndef KZGIS_TOOLS_PROJECT_COLUMNS_H
#define KZGIS_TOOLS_PROJECT_COLUMNS_H

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kzgis::tools {

/// Latitude, longitude and altitude, or x, y and z.
using Triple = std::array<double, 3>;

/// What the options say of the records to read.
struct RecordLayout {
  std::vector<std::string> columns;  ///< names or positions, two or three; empty: to be found out
  bool inverse = false;              ///< x, y and z instead of latitude, longitude and altitude
  bool dms = false;                  ///< angles are degrees, minutes and seconds
};

/// Reads "A,B" or "A,B,C".  Throws `UsageError`.
std::vector<std::string> parse_columns(const std::string& text);

/// The columns of one file.
class Columns {
 public:
  /// @param layout  borrowed
  explicit Columns(const RecordLayout& layout) : layout_(layout) {}

  /// Settles the columns by the first record.  Throws `CommandError` when no column has a name
  /// that was asked for.
  ///
  /// @return whether that record is a header: when columns are asked for by name, or none of its
  ///         fields, two at least, is a number or an angle
  bool read_header(const std::vector<std::string>& fields);

  /// Whether all columns are there and empty, as this command leaves them for a point without a
  /// place.
  bool are_empty(const std::vector<std::string>& fields) const;

  /// The point of a record; without a third column its third number is 0.  On failure says why in
  /// `reason`.
  std::optional<Triple> read(const std::vector<std::string>& fields, std::string& reason) const;

 private:
  std::optional<double> parse_angle(const std::string& text) const;

  const RecordLayout& layout_;
  std::array<std::size_t, 3> at_{0, 1, 2};
  std::size_t count_ = 2;
};

}  // namespace kzgis::tools

#endif
