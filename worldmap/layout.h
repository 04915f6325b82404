// The World DataBank II file (".cbd") byte by byte, and the names under which a bank keeps
// its files.  Reader and writer stand on this page, and nothing else says it.
//
// All integers are little-endian.  A "long" is 32 bits, signed, in ones' complement: a
// negative number is stored as one less than its value, so that -1 is 0xFFFFFFFE.
//
// Header:
//    0  uint32  magic number 0x20770002
//    4  uint32  offset of the dictionary, in bytes from the start of the file
//    8  uint32  number of segments
//   12  uint32  not used
//   16  uint32  not used
// Dictionary, one entry of 28 bytes per segment:
//    0  uint32  segment identifier, not used
//    4  long    maximum latitude, arc-seconds
//    8  long    minimum latitude
//   12  long    maximum longitude; a negative one is meant modulo 1296000
//   16  long    minimum longitude, likewise
//   20  uint32  offset of the segment, in bytes from the start of the file
//   24  uint16  not used
//   26  uint16  information level, 0 to 15
// Segment:
//    0  long    longitude of the first point, arc-seconds, likewise modulo 1296000
//    4  long    latitude of the first point
//    8  uint32  not used
//   12  uint32  number of points N; readers use the first N - 1 of them
//   16  uint16  not used
//   18  N - 1 deltas
// Delta, of one word when bit 14 of it is set, else of four:
//    0  uint16  low byte: latitude delta, -128 to 127; high byte: longitude delta, as 64 to
//               127 for 0 to 63, as 192 to 255 for -64 to -1
// or
//    0  uint16  longitude delta, high part, whose sign bit stands in bit 15 alone
//    2  uint16  longitude delta, low part
//    4  uint16  latitude delta, high part, likewise
//    6  uint16  latitude delta, low part
// A delta of four words with a part beyond +-1296000 stands for no movement at all.

#ifndef KZGIS_WORLDMAP_LAYOUT_H
#define KZGIS_WORLDMAP_LAYOUT_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "kzgis/types.h"

namespace kzgis::worldmap {

constexpr kz_ulong kMagic = 0x20770002;
constexpr std::size_t kHeaderBytes = 20;
constexpr std::size_t kEntryBytes = 28;
constexpr std::size_t kSegmentHeaderBytes = 18;
constexpr std::size_t kShortDeltaBytes = 2;
constexpr std::size_t kLongDeltaBytes = 8;
constexpr std::uint16_t kShortDelta = 0x4000;  // the bit that tells the two forms apart

constexpr kz_long kPole_arcsec = 324000;   // a quarter of the way round
constexpr kz_long kTurn_arcsec = 1296000;  // all the way round
constexpr kz_long kHalfTurn_arcsec = kTurn_arcsec / 2;

// By the numbers of `mapSections` and `Continent`, of `overlaySections` and `Theme`.
inline constexpr std::array kContinentDirectories{"africa.Map", "asia.Map", "europe.Map",
                                                  "namer.Map", "samer.Map"};
inline constexpr std::array kThemeFiles{"bdy.cbd", "pby.cbd", "cil.cbd", "riv.cbd"};

// A file holds at most one point per two bytes, but its dictionary may name the same bytes
// again and again, and a count may go on behind the end of the file, where the last word
// repeats.  What is decoded of one file is therefore limited: to twice what it can hold,
// and this many more, so that small damaged files still give what their counts say.
constexpr std::uint64_t kSparePoints = std::uint64_t{1} << 16;

}  // namespace kzgis::worldmap

#endif
