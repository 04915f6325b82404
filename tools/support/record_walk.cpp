#include "tools/support/record_walk.h"

#include <cstdint>

namespace kzgis::tools {

namespace {

// A file that is damaged all through is not worth a line for every record.
constexpr kz_long kMostComplaints = 20;
constexpr kz_long kMostFailures = 1000;

}  // namespace

RecordTally walk_records(ShapeRecords& records, RecordRange range, Progress& progress,
                         const Complain& complain,
                         const std::function<void(kz_long, const ShapeRecord&)>& use) {
  const std::string& file = records.name();
  if (records.index_is_cut()) complain(file + ": the index is shorter than its header says");
  // More points than the file has room for are the same bytes again.
  constexpr std::uintmax_t kPointBytes = 16;
  std::uintmax_t points_left = records.shape_bytes() / kPointBytes;
  RecordTally tally;
  const auto fail = [&](kz_long number, const std::string& why) {
    if (++tally.failed <= kMostComplaints) {
      complain(file + ": record " + std::to_string(number) + " cannot be read: " + why);
    }
  };

  ShapeRecord record;
  for (kz_long n = range.first; n <= range.last && tally.failed < kMostFailures; ++n) {
    progress.update(static_cast<std::uint64_t>(n - range.first));
    const RecordState state = records.read(n, record);
    if (state == RecordState::null) {
      ++tally.null;
    } else if (state == RecordState::failed) {
      fail(n, records.failure());
    } else if (!ShapeRecords::split(record, record.x)) {
      fail(n, "its parts do not follow each other");
    } else if (record.x.size() > points_left) {
      fail(n, "the records together hold more points than the file");
      break;
    } else {
      points_left -= record.x.size();
      use(n, record);
    }
  }
  if (tally.failed > kMostComplaints) {
    complain(file + ": " + std::to_string(tally.failed - kMostComplaints) +
             (tally.failed == kMostFailures ? " more records cannot be read; the rest is left out"
                                            : " more records cannot be read"));
  }
  return tally;
}

}  // namespace kzgis::tools
