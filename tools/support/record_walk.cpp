// Records one by one, with a bound on complaints, on failures, and on bytes: a hostile index can
// name the same record any number of times.

#include "tools/support/record_walk.h"

#include <new>
#include <utility>

#include "tools/support/command_error.h"
#include "tools/support/input_file.h"
#include "tools/support/shape_file.h"

namespace kzgis::tools {

namespace {

// A file that is damaged all through is not worth a line for every record, nor the time.
constexpr std::uint32_t kMostComplaints = 20;
constexpr std::uint32_t kMostFailures = 1000;

/// Records may be missing without any of them being damaged: those of a file or an index that
/// was cut between two of them, and those that only an index would find.
void complain_of_files(const Shapefile& shapes, const std::string& file, const Complain& complain) {
  if (const std::string why = why_no_index(shapes); !why.empty()) complain(why);
  // What lies behind the records does no harm.
  if (claimed_length(shapes.path()) == Length::too_long) {
    complain(file + ": the file is shorter than its header says");
  }
  const std::string& index = shapes.index_path();
  if (!index.empty() && claimed_length(index) == Length::too_long) {
    complain(file + ": the index is shorter than its header says");
  }
}

/// The bytes that points and parts take at least.
std::uint64_t bytes_of(const ShapeRecord& record) {
  return 16 * std::uint64_t{record.x.size()} + 4 * std::uint64_t{record.parts.size()};
}

}  // namespace

std::string record_text(std::uint32_t number) { return "record " + std::to_string(number) + ": "; }

void RecordFailures::add(const std::string& what) {
  if (++count_ <= kMostComplaints) complain_(what);
}

bool RecordFailures::give_up() const { return count_ >= kMostFailures; }

void RecordFailures::sum_up() const {
  if (count_ <= kMostComplaints) return;
  complain_(std::to_string(count_ - kMostComplaints) +
            (give_up() ? " more records are damaged; the rest is left out"
                       : " more records are damaged"));
}

// Before each step: `bytes_left` of those that the file has are not handed on yet.
RecordTally walk_records(Shapefile& shapes, const std::string& file, RecordRange range,
                         Progress& progress, const Complain& complain,
                         const std::function<void(std::uint32_t, const ShapeRecord&)>& use) {
  complain_of_files(shapes, file, complain);
  const std::optional<ShapeKind> kind = kind_of(shapes.type());
  std::uint64_t bytes_left = size_of(shapes.path());
  RecordTally tally;
  RecordFailures failures([&](const std::string& what) { complain(file + ": " + what); });
  for (std::uint64_t n = range.first; n <= range.last && !failures.give_up(); ++n) {
    const auto number = static_cast<std::uint32_t>(n);
    progress.update(n - range.first);
    const auto record = shapes.read(number - 1);
    if (!record) {
      if (record.error().kind == ErrorKind::out_of_memory) throw std::bad_alloc();
      failures.add(record.error().message);
      continue;
    }
    if (record->type == ShapeType::null) {
      ++tally.null;
      continue;
    }
    std::string flaw = flaw_of(*record);
    if (kind_of(record->type) != kind) {
      flaw = "its type is " + type_text(record->type) + ", the file's " + type_text(shapes.type());
    }
    if (!flaw.empty()) {
      failures.add(record_text(number) + flaw);
      continue;
    }
    if (bytes_of(*record) > bytes_left) {
      failures.add(record_text(number) + "the records together hold more than the file");
      break;
    }
    bytes_left -= bytes_of(*record);
    use(number, *record);
  }
  failures.sum_up();
  tally.failed = failures.count();
  return tally;
}

}  // namespace kzgis::tools
