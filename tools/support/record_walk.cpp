// Records one by one, with a bound on complaints, on failures, and on points: a hostile index can
// name the same record any number of times.

#include "tools/support/record_walk.h"

#include <cstdint>
#include <utility>

namespace kzgis::tools {

namespace {

// A file that is damaged all through is not worth a line for every record, nor the time.
constexpr kz_long kMostComplaints = 20;
constexpr kz_long kMostFailures = 1000;

}  // namespace

RecordFailures::RecordFailures(std::string file, Complain complain)
    : file_(std::move(file)), complain_(std::move(complain)) {}

void RecordFailures::add(kz_long number, const std::string& why) {
  if (++count_ <= kMostComplaints) {
    complain_(file_ + ": record " + std::to_string(number) + " cannot be read: " + why);
  }
}

bool RecordFailures::give_up() const { return count_ >= kMostFailures; }

void RecordFailures::sum_up() const {
  if (count_ <= kMostComplaints) return;
  complain_(file_ + ": " + std::to_string(count_ - kMostComplaints) +
            (give_up() ? " more records cannot be read; the rest is left out"
                       : " more records cannot be read"));
}

// Before each step: `points_left` of the points that the file has room for are not handed on yet.
RecordTally walk_records(ShapeRecords& records, RecordRange range, Progress& progress,
                         const Complain& complain,
                         const std::function<void(kz_long, const ShapeRecord&)>& use) {
  const std::string& file = records.name();
  if (records.index_is_cut()) complain(file + ": the index is shorter than its header says");
  // More points than the file has room for are the same bytes again.
  constexpr std::uintmax_t kPointBytes = 16;
  std::uintmax_t points_left = records.shape_bytes() / kPointBytes;
  RecordTally tally;
  RecordFailures failures(file, complain);
  ShapeRecord record;
  for (kz_long n = range.first; n <= range.last && !failures.give_up(); ++n) {
    progress.update(static_cast<std::uint64_t>(n - range.first));
    const RecordState state = records.read(n, record);
    if (state == RecordState::null) {
      ++tally.null;
    } else if (state == RecordState::failed) {
      failures.add(n, records.failure());
    } else if (!ShapeRecords::split(record, record.x)) {
      failures.add(n, "its parts do not follow each other");
    } else if (record.x.size() > points_left) {
      failures.add(n, "the records together hold more points than the file");
      break;
    } else {
      points_left -= record.x.size();
      use(n, record);
    }
  }
  failures.sum_up();
  tally.failed = failures.count();
  return tally;
}

}  // namespace kzgis::tools
