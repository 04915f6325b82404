// Logical record B of a USGS DEM: one profile of elevations, and its report.
//
// A profile is a header of 144 bytes (dem/layout.h) and its elevations, and it ends with its last
// block: the next profile begins a block of its own.  Elevations are kept as they stand in the
// file; resolution and local datum are the caller's to apply.
//
// Messages and report are kept (docs/classic.md).  `readRecord` has two
// prefixes, one of them with a single colon.

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <new>

#include "dem/layout.h"
#include "kzgis/dem.h"

DEM_LogicalRecord::DEM_LogicalRecord() = default;

DEM_LogicalRecord::DEM_LogicalRecord(const UtString& name) { setFN(name); }

// A file that cannot be opened fails at record A too, and the messages about that follow the one
// about the file.
int DEM_LogicalRecord::setFN(const UtString& name) {
  DEM_LRA::setFN(name);
  if (ingest() == -1) {
    std::cout << "DEM_LogicalRecord::setFN: EOF reading record A" << std::endl;
    return -1;
  }
  if (fetchLRAIngest() != 1) {
    std::cout << "DEM_LogicalRecord::setFN: Not all of recordA was read in" << std::endl;
    return -1;
  }
  return 1;
}

/// Reads the next profile over the one before.
///
/// Nothing in a profile says that it is the last.  It is the one whose row and column are
/// record A's numbers of rows and columns (docs/classic.md); whoever goes on all the same
/// meets whatever the file holds behind it.
int DEM_LogicalRecord::readRecord() {
  if (fetchLRAIngest() == 0) {
    ingest();
    if (fetchLRAIngest() == 0) {
      std::cout << "DEM_LogicalRecord::readRecord: Could not ingest the header (LR A)" << std::endl;
      return -1;
    }
  }
  const auto missing =
      kzgis::dem::read_profile_header(b_, [this](auto... field) { return readFile(field...); });
  if (missing) {
    std::cout << "DEM_LogicalRecord:readRecord: EOF trying to read " << *missing << std::endl;
    return -1;
  }
  if (read_all_elevations() == -1) return -1;
  moveToNextBlock();
  return b_.id[0] != fetchRows() || b_.id[1] != fetchColumns() ? 1 : 0;
}

/// Reads as many elevations as the profile claims, or as many as there are.
///
/// They come in pieces of a block at most, and the array grows piece by piece: a claim of more
/// than the file holds costs no memory.  The former array is released first, so that no more
/// than one profile is ever held.
/// @return 1; -1, with one line on standard output and those read kept
int DEM_LogicalRecord::read_all_elevations() {
  std::vector<int>().swap(elevations_);
  const auto refuse = [this] {
    std::cout << "DEM_LogicalRecord:readRecord: No memory for " << b_.size[0] << " x " << b_.size[1]
              << " elevations" << std::endl;
    return -1;
  };
  // One negative number makes a size that no memory can hold; two make a profile without
  // elevations, as 0 does.  In 64 bits, so that no product is undefined.
  if (std::int64_t{b_.size[0]} * b_.size[1] < 0) return refuse();
  if (b_.size[0] <= 0 || b_.size[1] <= 0) return 1;
  const auto columns = static_cast<std::size_t>(b_.size[1]);
  const std::size_t total = static_cast<std::size_t>(b_.size[0]) * columns;
  while (elevations_.size() < total) {
    int piece[kzgis::dem::kBlockBytes / kzgis::dem::kElevationWidth];
    const std::size_t missing = total - elevations_.size();
    const int count =
        read_elevations(piece, static_cast<int>(std::min(missing, std::size_t{std::size(piece)})));
    if (count == 0) {
      std::cout << "DEM_LogicalRecord:readRecord: EOF reading Elevation["
                << elevations_.size() / columns << "][" << elevations_.size() % columns << "]"
                << std::endl;
      return -1;
    }
    try {
      elevations_.insert(elevations_.end(), piece, piece + count);
    } catch (const std::bad_alloc&) {
      return refuse();
    }
  }
  return 1;
}

// Plain readings of the profile read last.

int DEM_LogicalRecord::fetchRowID() const { return b_.id[0]; }
int DEM_LogicalRecord::fetchColID() const { return b_.id[1]; }
int DEM_LogicalRecord::fetchElevRows() const { return b_.size[0]; }
int DEM_LogicalRecord::fetchElevCols() const { return b_.size[1]; }
double DEM_LogicalRecord::fetchBaseX() const { return b_.base[0]; }
double DEM_LogicalRecord::fetchBaseY() const { return b_.base[1]; }
double DEM_LogicalRecord::fetchLocalDatum() const { return b_.local_datum; }
double DEM_LogicalRecord::fetchProfMinElev() const { return b_.min_max[0]; }
double DEM_LogicalRecord::fetchProfMaxElev() const { return b_.min_max[1]; }

int DEM_LogicalRecord::ElevIndex(int r, int c) const {
  // Unsigned, so that nothing is undefined for any pair.
  return static_cast<int>(static_cast<unsigned>(b_.size[1]) * static_cast<unsigned>(r) +
                          static_cast<unsigned>(c));
}

const int* DEM_LogicalRecord::fetchElevations() const {
  return elevations_.empty() ? nullptr : elevations_.data();
}

std::size_t DEM_LogicalRecord::fetchElevationCount() const { return elevations_.size(); }

// Two tests: the place must lie within the profile's own size, and the elevation there must
// have been read.
int DEM_LogicalRecord::fetchElevation(int r, int c) const {
  if (r < 0 || c < 0 || r >= b_.size[0] || c >= b_.size[1]) return kzgis::dem::kVoidElevation;
  const auto index =
      static_cast<std::uint64_t>(b_.size[1]) * static_cast<unsigned>(r) + static_cast<unsigned>(c);
  return index < elevations_.size() ? elevations_[static_cast<std::size_t>(index)]
                                    : kzgis::dem::kVoidElevation;
}

std::ostream& operator<<(std::ostream& os, const DEM_LogicalRecord& record) {
  const kzgis::dem::ProfileHeader& b = record.b_;
  os << "+++ Contents of Logical Record B. Profile ID =" << b.id[0] << ", " << b.id[1] << " out of "
     << record.fetchRows() << ", " << record.fetchColumns() << std::endl;
  os << "\tTotal Elevations in Profile: " << b.size[0] << " x " << b.size[1] << std::endl;
  os << "\tThis profile begins at coordinates (" << b.base[0] << ", " << b.base[1] << ")"
     << std::endl;
  os << "\tLocal datum: " << b.local_datum << " "
     << "with min elev = " << b.min_max[0] << " and "
     << "max elev = " << b.min_max[1] << " ";
  // A known unit ends the line by itself, so that the last line end makes an empty one.
  if (record.fetchElvUnits() == 0) os << "(unspecified)" << std::endl;
  if (record.fetchElvUnits() == 1) os << "(feet)" << std::endl;
  if (record.fetchElvUnits() == 2) os << "(meters)" << std::endl;
  return os << std::endl;
}

std::ostream& operator<<(std::ostream& os, const DEM_LogicalRecord* record) {
  return record == nullptr ? os : os << *record;
}
