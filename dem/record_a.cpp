// Logical record A of a USGS DEM: the header, and its report.
//
// The fields and their order are those of dem/layout.h; this file has what the classic class
// makes of them.  Messages and report are kept (docs/classic.md): their words,
// tabs, misspellings and line ends stay.  Messages of reading go to standard output.

#include <cstdint>
#include <cstring>
#include <iostream>

#include "dem/layout.h"
#include "kzgis/dem.h"

namespace {

// The codes of the format by name, as the report has them.  Codes that the format does not have
// show as such and are no error: reading judges nothing.

const char* process_name(int code) {
  switch (code) {
    case 0:
      return "not set";
    case 1:
      return "GPM";
    case 2:
      return "Manual Profile";
    case 3:
      return "DLG2DEM";
    case 4:
      return "DCASS";
    default:
      return "BAD VALUE";
  }
}

const char* pattern_name(int code) {
  switch (code) {
    case 1:
      return "regular";
    case 2:
      return "random";
    default:
      return "not set";
  }
}

const char* plan_name(int code) {
  switch (code) {
    case 0:
      return "geographic";
    case 1:
      return "UTM";
    case 2:
      return "state plane";
    default:
      return "unused";
  }
}

const char* ground_units_name(int code) {
  switch (code) {
    case 0:
      return "radians";
    case 1:
      return "feet";
    case 2:
      return "meters";
    case 3:
      return "arc-seconds";
    default:
      return "BAD VALUE";
  }
}

/// Two codes as the halves of one double, on every host the same.
///
/// The report has this number in the place of the 15th projection parameter.  It is what the
/// eight bytes that hold the two codes make when they are read as a double on a little-endian
/// host, the lower half first (docs/classic.md).
double both_units(int ground, int elevation) {
  const std::uint64_t low = static_cast<std::uint32_t>(ground);
  const std::uint64_t high = static_cast<std::uint32_t>(elevation);
  const std::uint64_t both = high << 32 | low;
  double number = 0.0;
  std::memcpy(&number, &both, sizeof number);
  return number;
}

}  // namespace

/// Reads record A once per open file, and leaves the stream at the first profile.
///
/// Fields in front of the one that is missing keep their new values, those behind it their
/// old ones.
int DEM_LRA::ingest() {
  if (ingested_ == 1) return 1;
  ingested_ = 0;
  const auto missing = kzgis::dem::read_record_a(
      a_, [this](auto... field) { return readFile(field...); },
      [this](int bytes) { return skipFile(bytes); });
  if (missing) {
    std::cout << "DEM_LRA::ingest: " << *missing << std::endl;
    return -1;
  }
  moveToNextBlock();
  ingested_ = 1;
  return 1;
}

// Plain readings of the fields; the arrays are handed out as they are, the object's own.

UtString DEM_LRA::fetchQuadrangle() const { return a_.quadrangle; }
UtString DEM_LRA::fetchInfo() const { return a_.info; }
int DEM_LRA::fetchProcessCode() const { return a_.process_code; }
UtString DEM_LRA::fetchSI() const { return a_.sectional; }
UtString DEM_LRA::fetchMCorigin() const { return a_.mc_origin; }
int DEM_LRA::fetchDEMLevel() const { return a_.level; }
int DEM_LRA::fetchElvPat() const { return a_.pattern; }
int DEM_LRA::fetchGroundPlan() const { return a_.ground_plan; }
int DEM_LRA::fetchGroundZone() const { return a_.ground_zone; }
double* DEM_LRA::fetchMPParameters() { return a_.projection; }
const double* DEM_LRA::fetchMPParameters() const { return a_.projection; }
int DEM_LRA::fetchUnits() const { return a_.ground_units; }
int DEM_LRA::fetchElvUnits() const { return a_.elevation_units; }
double DEM_LRA::fetchElvMin() const { return a_.min_max[0]; }
double DEM_LRA::fetchElvMax() const { return a_.min_max[1]; }
double* DEM_LRA::fetchRez() { return a_.resolution; }
const double* DEM_LRA::fetchRez() const { return a_.resolution; }
int DEM_LRA::fetchRows() const { return a_.size[0]; }
int DEM_LRA::fetchColumns() const { return a_.size[1]; }
UtDate DEM_LRA::fetchSourceData() const { return a_.source_date; }
UtDate DEM_LRA::fetchRevisionDate() const { return a_.revision_date; }
UtDate DEM_LRA::fetchRevisionDate(char* flag) const {
  if (flag != nullptr) *flag = a_.revision_flag;
  return a_.revision_date;
}

std::ostream& operator<<(std::ostream& os, const DEM_LRA& record) {
  const kzgis::dem::RecordA& a = record.a_;
  os << "---- Contents of Logical Record A in DEM file:" << std::endl;
  // Texts show up to the NUL that ends each of them, blanks included.
  os << "\tPhysical filename: " << record.file_name_ << std::endl;
  os << "\tDEM Quadrangle: " << a.quadrangle << std::endl;
  os << "\tAddition Information: " << a.info << std::endl;
  os << "\tProcessing Code: " << a.process_code << "(" << process_name(a.process_code) << ")"
     << std::endl;
  os << "\tSectional Indicator: " << a.sectional << std::endl;
  os << "\tMC Origin Code: " << a.mc_origin << std::endl;
  os << "\tDEM Level Code: " << a.level << "(DEM-" << a.level << ")" << std::endl;
  os << "\tElevation Pattern: " << a.pattern << "(" << pattern_name(a.pattern) << ")" << std::endl;
  os << "\tGround Plan: " << a.ground_plan << "(" << plan_name(a.ground_plan) << ")"
     << " Units: " << a.ground_units << " (" << ground_units_name(a.ground_units) << ")"
     << std::endl;
  os << "\tGround Zone: " << a.ground_zone << std::endl;
  os << "\tMap Parameters: " << std::endl;
  os << "\t\t(";
  // Fourteen of the fifteen parameters: see both_units.
  for (int i = 0; i < 14; ++i) os << a.projection[i] << ",";
  os << both_units(a.ground_units, a.elevation_units) << ")" << std::endl;
  os << "\tMin Elev: " << a.min_max[0] << " Max Elev: " << a.min_max[1]
     << " Units: " << a.elevation_units << " (";
  // Any other code leaves the line open, so that the next one goes on in it.
  if (a.elevation_units == 0) os << "unspecified)" << std::endl;
  if (a.elevation_units == 1) os << "feet)" << std::endl;
  if (a.elevation_units == 2) os << "meters)" << std::endl;
  os << "\tSpatial Resolution: (" << a.resolution[0] << ", " << a.resolution[1] << ", "
     << a.resolution[2] << ")" << std::endl;
  os << "\tRows x Cols = " << a.size[0] << " x " << a.size[1] << std::endl;
  os << "\tSource Date: " << a.source_date << "\t"
     << (a.revision_flag == 'I' ? "Inspection " : "Revision ") << "Date: " << a.revision_date
     << std::endl;
  os << "---- End contents of Logical Record A" << std::endl;
  return os;
}

std::ostream& operator<<(std::ostream& os, const DEM_LRA* record) {
  return record == nullptr ? os : os << *record;
}
