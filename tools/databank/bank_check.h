#ifndef KZGIS_TOOLS_DATABANK_BANK_CHECK_H
#define KZGIS_TOOLS_DATABANK_BANK_CHECK_H

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "tools/databank/layout.h"

namespace kzgis::databank {

/// What one entry of the dictionary says of its segment.
struct Segment {
  std::uint64_t number = 0;  ///< in the dictionary, counted from 1
  Extent extent;             ///< longitudes in [0, 1296000), or as wrong as they stand
  std::uint32_t offset_bytes = 0;
  unsigned level = 0;
  std::uint64_t points = 0;  ///< that readers classify
};

/// What a file holds, damaged or not.
struct BankSummary {
  struct Level {
    std::uint64_t segments = 0;
    std::uint64_t points = 0;
  };

  std::uint64_t file_bytes = 0;
  std::uint32_t dictionary_offset_bytes = 0;
  std::uint32_t claimed_segments = 0;  ///< by the header
  std::uint64_t segments = 0;          ///< whole entries in the file
  std::uint64_t points = 0;
  std::array<Level, kNumLevels> levels{};
  Extent extent;  ///< of the points themselves
};

/// Receives one line on something that is wrong with the file.
using Complain = std::function<void(const std::string&)>;

/// Reads a whole outline file and holds its parts against each other: offsets and counts
/// against the file's length, points against the ends that the dictionary gives, levels
/// against the sixteen there are.
///
/// @param each  receives every segment in the dictionary's order
/// Throws `tools::CommandError` when the file cannot be read or does not begin with the
/// magic number.
BankSummary check_bank(const std::string& file, const std::function<void(const Segment&)>& each,
                       const Complain& complain);

/// The same for one file of several: one that cannot be read, or is none, is complained of
/// like any flaw, and counts as empty.
BankSummary check_one_of_bank(const std::string& file, const Complain& complain);

}  // namespace kzgis::databank

#endif
