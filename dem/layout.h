// The layout of USGS DEM files, after "Standards for Digital Elevation Models" (USGS), stated
// once for both readers: that of the classic classes, which reads from a stream, and that of
// the grid, which reads through a `BlockCursor`.
//
// Files are text in blocks of 1024 bytes: one block for record A, the header, then for each
// profile a record B, which begins a block and goes on in as many more as it needs.  Fields have
// fixed widths and no separators.  The tables below have them as Fortran writes them: A40 is 40
// characters, I6 an integer of six, D24.15 a real number of 24, with an exponent that begins
// with D, E12.6 one of 12 with E; 3E12.6 are three in a row.

#ifndef KZGIS_DEM_LAYOUT_H
#define KZGIS_DEM_LAYOUT_H

#include <optional>
#include <ostream>

#include "kzgis/dem.h"

namespace kzgis::dem {

inline constexpr int kBlockBytes = 1024;
/// A block is left as soon as a read would bring the count of its bytes to this many.
inline constexpr int kBlockLimit = 1021;
/// Characters of one elevation.
inline constexpr int kElevationWidth = 6;

/// What the format stores where there is no elevation.
inline constexpr int kVoidElevation = -32767;

/// The field at which a file ended, as messages name it: a text, then up to two indices.
struct MissingField {
  const char* text;
  int i = -1;
  int j = -1;
};

inline std::ostream& operator<<(std::ostream& os, const MissingField& field) {
  os << field.text;
  if (field.i >= 0) os << '[' << field.i << ']';
  if (field.j >= 0) os << '[' << field.j << ']';
  return os;
}

/// The date that an integer field stands for.
///
/// The second number is not the remainder by 100 but the difference to the quotient: the
/// classic classes have dates in this form (docs/classic.md;
/// ReadDate.TakesTheDifferenceNotTheRemainder).  The differences are those of 16-bit numbers.
inline UtDate date_of(int n) {
  const auto quotient = static_cast<short>(n / 100);
  const auto rest = static_cast<short>(static_cast<short>(n) - quotient);
  return UtDate(quotient, rest == 0 ? short{1} : rest, 1);
}

/// Reads the fields of logical record A.  Bytes 80 to 134 and 136 are filler:
///
///   0    A40   quadrangle            738  2D24.15  minimum, maximum
///   40   A40   information           786  D24.15   angle
///   135  I1    process code          810  I6       accuracy
///   137  A3    sectional indicator   816  3E12.6   resolution in x, y, z
///   140  A4    mapping centre        852  2I6      rows, columns
///   144  I6    level                 864  I5 I1    largest interval, units
///   150  I6    pattern               870  I5 I1    smallest interval, units
///   156  I6    ground plan           876  2I4      source and revision date
///   162  I6    ground zone           884  A1       revision flag
///   168  15D24.15 projection         885  I1 I2    validation, suspect and void
///   528  I6    ground units          888  2I2      vertical, horizontal datum
///   534  I6    elevation units       892  2I4      edition, percent void
///   540  I6    sides
///   546  4(2D24.15) corners
///
/// `read(&field, width)`, or `read(&c)` for one character, and `skip(bytes)` answer -1 when
/// the file ends first.  The order of the calls is the order of the file, and the texts are
/// those of the classic messages, misspelt ones included.
/// @return the field that could not be read; nothing when all were
template <class Read, class Skip>
std::optional<MissingField> read_record_a(RecordA& a, Read read, Skip skip) {
  std::optional<MissingField> missing;
  const auto named = [&](int result, const char* text, int i = -1, int j = -1) {
    if (result == -1) missing = MissingField{text, i, j};
    return result != -1;
  };
  const auto each = [&](auto& fields, int width, const char* text) {
    int i = 0;
    for (auto& field : fields) {
      if (!named(read(&field, width), text, i++)) return false;
    }
    return true;
  };
  const auto corners = [&] {
    for (int i = 0; i < 4; ++i) {
      for (int j = 0; j < 2; ++j) {
        if (!named(read(&a.corners[i][j], 24), "EOF after GroundCoord", i, j)) return false;
      }
    }
    return true;
  };

  // The first failure ends the chain.
  const bool complete =                                                      //
      named(read(&a.quadrangle, 40), "EOF after Quadrangle") &&              //
      named(read(&a.info, 40), "EOF after Info") &&                          //
      named(skip(55), "EOF in header after skip 55") &&                      //
      named(read(&a.process_code, 1), "EOF after ProcessCode") &&            //
      named(skip(1), "EOF in header after skip 1") &&                        //
      named(read(&a.sectional, 3), "EOF after Sectional Indicator") &&       //
      named(read(&a.mc_origin, 4), "EOF after MCorigin") &&                  //
      named(read(&a.level, 6), "EOF after DEMLevel") &&                      //
      named(read(&a.pattern, 6), "EOF after ElevationPattern") &&            //
      named(read(&a.ground_plan, 6), "EOF after GroundPlan") &&              //
      named(read(&a.ground_zone, 6), "EOF after GroundZone") &&              //
      each(a.projection, 24, "EOF after MPparameters") &&                    //
      named(read(&a.ground_units, 6), "EOF after Units") &&                  //
      named(read(&a.elevation_units, 6), "EOF after ElevationUnits") &&      //
      named(read(&a.sides, 6), "EOF after nSides") &&                        //
      corners() &&                                                           //
      each(a.min_max, 24, "EOF after ElevMinMac") &&                         //
      named(read(&a.angle, 24), "EOF after ReferenceAngle") &&               //
      named(read(&a.accuracy, 6), "EOF after AccuracyCode") &&               //
      each(a.resolution, 12, "EOF after Rez") &&                             //
      each(a.size, 6, "EOF after RowsCols") &&                               //
      named(read(&a.largest_interval, 5), "EOF after LargestInterval") &&    //
      named(read(&a.largest_units, 1), "EOF after LIUnits") &&               //
      named(read(&a.smallest_interval, 5), "EOF after SmallestInterval") &&  //
      named(read(&a.smallest_units, 1), "EOF after SIUnits") &&              //
      named(read(&a.source_date, 4), "EOF after SourceDate") &&              //
      named(read(&a.revision_date, 4), "EOF after Revision") &&              //
      named(read(&a.revision_flag), "EOF after RIFlag") &&                   //
      named(read(&a.validation, 1), "EOF after validation") &&               //
      named(read(&a.suspect_void, 2), "EOF after Suspect") &&                //
      named(read(&a.vertical_datum, 2), "EOF after VertDatum") &&            //
      named(read(&a.horizontal_datum, 2), "EOF after HorzDatum") &&          //
      named(read(&a.edition, 4), "EOF after DataEdition") &&                 //
      named(read(&a.percent_void, 4), "EOF after PercentVoid");
  return complete ? std::nullopt : missing;
}

/// Reads the fields that open a logical record B:
///
///   0   2I6      row and column of the profile
///   12  2I6      rows and columns of its elevations, which follow from byte 144 on, I6 each
///   24  2D24.15  x and y of the first elevation
///   72  D24.15   local datum
///   96  2D24.15  minimum, maximum
///
/// @return the field that could not be read; nothing when all were
template <class Read>
std::optional<MissingField> read_profile_header(ProfileHeader& b, Read read) {
  for (int i = 0; i < 2; ++i) {
    if (read(&b.id[i], 6) == -1) return MissingField{"RowColID", i};
  }
  for (int i = 0; i < 2; ++i) {
    if (read(&b.size[i], 6) == -1) return MissingField{"elevRowColID", i};
  }
  for (int i = 0; i < 2; ++i) {
    if (read(&b.base[i], 24) == -1) return MissingField{"baseXY", i};
  }
  if (read(&b.local_datum, 24) == -1) return MissingField{"localDatum"};
  for (int i = 0; i < 2; ++i) {
    if (read(&b.min_max[i], 24) == -1) return MissingField{"profElvMinMax", i};
  }
  return std::nullopt;
}

}  // namespace kzgis::dem

#endif
