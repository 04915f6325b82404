// The outline data bank file (".cbd"): its numbers, as they stand in the file.
//
// All integers are little-endian.
//
//   header, at byte 0
//      0  uint32  magic number 0x20770002
//      4  uint32  byte offset of the dictionary
//      8  uint32  number of segments
//     12  2 x uint32, ignored
//
//   dictionary, an entry of 28 bytes for each segment
//      0  uint32  identifier
//      4  int32   north, south, east and west end, in arc-seconds
//     20  uint32  byte offset of the segment
//     24  uint16  ignored
//     26  uint16  level
//
//   segment
//      0  int32   longitude and latitude of the first point, in arc-seconds
//      8  uint32  ignored
//     12  uint32  point count N: readers classify the first N - 1 points
//     16  uint16  ignored
//     18          N - 1 deltas, of one word where bit 14 of the word is set, else of four
//
// A negative int32 is in ones' complement: one less than its value.

#ifndef KZGIS_TOOLS_DATABANK_LAYOUT_H
#define KZGIS_TOOLS_DATABANK_LAYOUT_H

#include <cstddef>
#include <cstdint>

namespace kzgis::databank {

inline constexpr std::uint32_t kMagic = 0x20770002;
inline constexpr std::size_t kHeaderBytes = 20;
inline constexpr std::size_t kEntryBytes = 28;
inline constexpr std::size_t kSegmentHeaderBytes = 18;
inline constexpr std::size_t kShortDeltaBytes = 2;
inline constexpr std::size_t kLongDeltaBytes = 8;
inline constexpr unsigned kShortForm = 0x4000;  ///< the bit that tells the two forms apart

inline constexpr int kNumLevels = 16;
inline constexpr std::int32_t kPole = 324000;       ///< 90 degrees
inline constexpr std::int32_t kFullTurn = 1296000;  ///< 360 degrees
inline constexpr std::int32_t kHalfTurn = 648000;

/// A place in whole arc-seconds: latitude within the poles, longitude in [0, 1296000).
struct ArcPoint {
  std::int32_t lat = 0;
  std::int32_t lon = 0;
  friend bool operator==(const ArcPoint&, const ArcPoint&) = default;
};

/// The ends of a segment as its dictionary entry gives them, in arc-seconds.
struct Extent {
  std::int32_t north = 0, south = 0, east = 0, west = 0;
};

}  // namespace kzgis::databank

#endif
