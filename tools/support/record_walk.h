// Going through the records of a shapefile, damaged ones and hostile files included.

#ifndef KZGIS_TOOLS_SUPPORT_RECORD_WALK_H
#define KZGIS_TOOLS_SUPPORT_RECORD_WALK_H

#include <functional>
#include <string>

#include "tools/support/progress.h"
#include "tools/support/report.h"
#include "tools/support/shape_records.h"

namespace kzgis::tools {

/// Complains of the records of a file that cannot be read.
///
/// A file that is damaged all through is not worth a line for every record: twenty have one
/// each, the others one together, and after a thousand the file is given up.
class RecordFailures {
 public:
  RecordFailures(std::string file, Complain complain);

  void add(kz_long number, const std::string& why);
  /// Says how many had no line, once all are known.
  void sum_up() const;
  kz_long count() const { return count_; }
  bool give_up() const;

 private:
  std::string file_;
  Complain complain_;
  kz_long count_ = 0;
};

/// Records of a file, counted from 1, both ends included.
struct RecordRange {
  kz_long first = 1;
  kz_long last = 1;
};

/// How many records of a walk were not handed on.
struct RecordTally {
  kz_long null = 0;
  kz_long failed = 0;
};

/// Hands the records of the range to `use`, one after another, with their numbers.
///
/// Their parts follow each other within the points.  A record that cannot be read is
/// complained of and passed over.  The walk ends when these give up, or when the records hold
/// more points than the file has room for.
///
/// @param range  within the file's records
RecordTally walk_records(ShapeRecords& records, RecordRange range, Progress& progress,
                         const Complain& complain,
                         const std::function<void(kz_long, const ShapeRecord&)>& use);

}  // namespace kzgis::tools

#endif
