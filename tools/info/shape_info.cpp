// kzgis info on a shapefile: its header report, and a walk through its records.

#include "tools/info/shape_info.h"

#include <kzgis/shape.h>

#include <cstdint>
#include <iostream>

#include "tools/support/output_file.h"
#include "tools/support/progress.h"
#include "tools/support/record_walk.h"
#include "tools/support/report.h"
#include "tools/support/shape_records.h"

namespace kzgis::tools {

namespace {

struct Totals {
  std::uint64_t null_records = 0;
  std::uint64_t parts = 0;
  std::uint64_t points = 0;
  kz_long failures = 0;
};

/// "3: polygon, 2 parts, 10 points, x 0 to 4, y 0 to 4"
void print_record(kz_long n, kz_long type, const ShapeRecord& record) {
  std::cout << n << ": " << type_text(type);
  if (type == shape_type::point) {
    std::cout << " at " << record.x[0] << ' ' << record.y[0] << '\n';
    return;
  }
  if (type != shape_type::multi_point) std::cout << ", " << record.parts.size() << " parts";
  std::cout << ", " << record.x.size() << " points, x " << record.x_min << " to " << record.x_max
            << ", y " << record.y_min << " to " << record.y_max << '\n';
}

/// Reads the records, printing a line for each when asked to, until too many fail.
Totals walk(ShapeRecords& shapes, bool print) {
  Totals totals;
  Progress progress("reading", static_cast<std::uint64_t>(shapes.count()), print);
  RecordFailures failures(shapes.name(), report);
  ShapeRecord record;
  for (kz_long n = 1; n <= shapes.count() && !failures.give_up(); ++n) {
    switch (shapes.read(n, record)) {
      case RecordState::read:
        // A multi-point counts as one part, as a point does.
        totals.parts += record.parts.empty() && !record.x.empty() ? 1 : record.parts.size();
        totals.points += record.x.size();
        if (print) print_record(n, shapes.type(), record);
        break;
      case RecordState::null:
        ++totals.null_records;
        if (print) std::cout << n << ": null\n";
        break;
      case RecordState::failed:
        failures.add(n, shapes.failure());
        break;
    }
    progress.update(static_cast<std::uint64_t>(n));
  }
  failures.sum_up();
  totals.failures = failures.count();
  return totals;
}

}  // namespace

int print_shape_info(const std::string& file, bool each_record) {
  ShapeRecords shapes(file);
  const KZ_GIS_ESRI_ShapeHeader_c& header = shapes.file().ShapeHeader();
  header.PrintFileHeader(std::cout);
  const kz_ulong shape_verdict = header.ValidateFileHeader();
  const kz_ulong index_verdict = shapes.file().IndexHeader().ValidateFileHeader();
  std::cout << "Shape file header: " << status_text(shape_verdict) << '\n'
            << "Index file header: " << status_text(index_verdict) << '\n';
  // The box of a single point or of no record at all is rightly called empty: that says
  // nothing against the file.
  const auto is_sound = [&shapes](const char* which, kz_ulong verdict) {
    if (verdict == status::success || verdict == status::bad_bounding_box) return true;
    report(shapes.name() + ": the header of the " + which +
           " file is not valid: " + status_text(verdict));
    return false;
  };
  bool sound = is_sound("shape", shape_verdict);
  sound = is_sound("index", index_verdict) && sound;
  if (shapes.index_is_cut()) {
    report(shapes.name() + ": the index is shorter than its header says");
  }
  const Totals totals = walk(shapes, each_record);
  std::cout << "Records: " << shapes.count();
  if (totals.null_records > 0) std::cout << " (" << totals.null_records << " null)";
  std::cout << "\nParts:   " << totals.parts << "\nPoints:  " << totals.points << '\n';
  OutputFile("-").commit();
  sound = sound && !shapes.index_is_cut() && totals.failures == 0;
  return sound ? 0 : 1;
}

}  // namespace kzgis::tools
