// Going through the records of a shapefile, damaged ones and hostile files included.

#ifndef KZGIS_TOOLS_SUPPORT_RECORD_WALK_H
#define KZGIS_TOOLS_SUPPORT_RECORD_WALK_H

#include <kzgis/shapefile.h>

#include <cstdint>
#include <functional>
#include <string>

#include "tools/support/progress.h"
#include "tools/support/report.h"

namespace kzgis::tools {

/// Complains of the damaged records of a file.
///
/// A file that is damaged all through is not worth a line for every record: twenty have one
/// each, the others one together, and after a thousand the file is given up.
class RecordFailures {
 public:
  explicit RecordFailures(Complain complain) : complain_(std::move(complain)) {}

  /// @param what  a sentence that begins with "record 3: "
  void add(const std::string& what);
  /// Says how many had no line, once all are known.
  void sum_up() const;
  std::uint32_t count() const { return count_; }
  bool give_up() const;

 private:
  Complain complain_;
  std::uint32_t count_ = 0;
};

/// "record 3: "
std::string record_text(std::uint32_t number);

/// Records of a file, counted from 1, both ends included.
struct RecordRange {
  std::uint32_t first = 1;
  std::uint32_t last = 1;
};

/// How many records of a walk were not handed on.
struct RecordTally {
  std::uint32_t null = 0;
  std::uint32_t failed = 0;
};

/// Hands the records of the range to `use`, one after another, with their numbers.
///
/// They are of the file's kind, though perhaps with z or m where the file's type has none, their
/// coordinates are finite, and every point of lines and polygons belongs to a part.  What is not
/// like that is complained of and passed over, like a record that cannot be read.  The walk ends
/// when these give up, or when the records hold more than the file has room for.
///
/// @param file   its name in complaints
/// @param range  within the file's records
RecordTally walk_records(Shapefile& shapes, const std::string& file, RecordRange range,
                         Progress& progress, const Complain& complain,
                         const std::function<void(std::uint32_t, const ShapeRecord&)>& use);

}  // namespace kzgis::tools

#endif
