// The classic reader of USGS Digital Elevation Models: the header of a file, then its profiles,
// one at a time.

#ifndef KZGIS_DEM_H
#define KZGIS_DEM_H

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iosfwd>
#include <vector>

#include "kzgis/export.h"
#include "kzgis/utdate.h"
#include "kzgis/utstring.h"

// USGS Digital Elevation Models: text fields of fixed width in blocks of 1024 bytes, after
// "Standards for Digital Elevation Models", U.S. Geological Survey, National Mapping Program
// Technical Instructions.  Block one is logical record A, the header; each profile of
// elevations, a logical record B, begins a block of its own.
//
// The classes of this header read numbers as C's `atof` does, which stops at the letter D:
// the usual "0.150000000000000D+03" is 0.15 to them.  They count on blocks that follow each
// other without line ends.  `kzgis::read_dem` of kzgis/elevation.h has neither limit.
//
// Elevations that find no memory are a failure of `readRecord`, with a message of its own, and a
// file may answer like one that cannot be opened.  After every lack of memory the object can
// open a file again.

namespace kzgis::dem {

/// The fields of logical record A in the file's order, with their values before any is read.
struct RecordA {
  UtString quadrangle;   ///< 40 characters
  UtString info;         ///< 40 characters, more about the file
  int process_code = 0;  ///< 1 GPM, 2 manual profile, 3 DLG2DEM, 4 DCASS
  UtString sectional;    ///< 3 characters
  UtString mc_origin;    ///< 4 characters, mapping centre
  int level = 0;         ///< DEM level
  int pattern = 0;       ///< 1 regular, 2 random
  int ground_plan = 0;   ///< 0 geographic, 1 UTM, 2 state plane
  int ground_zone = 0;   ///< zone of the ground plan
  double projection[15] = {};
  int ground_units = 0;     ///< 0 radians, 1 feet, 2 metres, 3 arc-seconds
  int elevation_units = 0;  ///< 1 feet, 2 metres
  int sides = 0;            ///< sides of the polygon around the quadrangle
  /// South-west, north-west, north-east, south-east; of each x, then y, in ground units.
  double corners[4][2] = {};
  double min_max[2] = {};  ///< lowest and highest elevation, in elevation units
  double angle = 0.0;      ///< from the ground plan's axis to that of the profiles
  int accuracy = 0;
  double resolution[3] = {};  ///< steps in x, y (ground units) and z (elevation units)
  int size[2] = {};           ///< rows of profiles, usually 1; columns of them
  int largest_interval = 0;   ///< contour interval of the source, and its units
  int largest_units = 0;
  int smallest_interval = 0;
  int smallest_units = 0;
  UtDate source_date{0, 0, 0};
  UtDate revision_date{0, 0, 0};
  char revision_flag = '\0';  ///< 'I' makes the revision date one of an inspection
  int validation = 0;
  int suspect_void = 0;
  int vertical_datum = 0;
  int horizontal_datum = 0;
  int edition = 0;
  int percent_void = 0;
};

/// What opens a logical record B: a profile's place and size, with the values before any
/// profile is read.
struct ProfileHeader {
  int id[2] = {};            ///< row and column among the profiles, from 1
  int size[2] = {};          ///< rows and columns of elevations
  double base[2] = {};       ///< x and y of the first elevation, in ground units
  double local_datum = 0.0;  ///< added to the elevations
  double min_max[2] = {};    ///< lowest and highest elevation of the profile
};

}  // namespace kzgis::dem

/// A USGS DEM file, and its header: logical record A.
///
/// The object is the open stream.  A byte counter keeps the readers aligned with the blocks:
/// it tells how much of the present block is used, and a block is left as soon as a read
/// would bring it to 1021.  Before `ingest` every text is empty, every number 0, both dates
/// 0/0/0 and the revision flag NUL.
///
/// A reader answers -1 when the file ends before its field does, and on a stream that is not
/// open or has failed.  From then on all readers do, until another file is opened.  A skip
/// or a move to the next block that runs past the end of the file sets the stream's
/// end-of-file flag.
///
/// No number depends on the locale of the process.
class KZGIS_EXPORT DEM_LRA : public std::ifstream {
 public:
  /// Opens nothing.
  DEM_LRA();
  /// Opens a file as `setFN` does; `is_open()` tells whether that went well.
  explicit DEM_LRA(const UtString& name);

  /// Opens a file, closing the one that was open.
  ///
  /// The fields of the former file stay until `ingest` reads the new ones.
  ///
  /// @param name  may hold path variables (see FILEmap_variables)
  /// @return 1 with the file at its first byte; -1 when it cannot be opened or is a named
  ///         pipe: one line goes to standard error, the fail flag is set
  int setFN(const UtString& name);
  /// Closes the file and clears the stream's flags; the fields stay.  Always 1.
  int closeFN();

  /// The name opened last, path variables expanded; kept when the open failed.
  UtString fetchFileName() const;
  /// 1 once record A of the open file has been read, else 0.
  int fetchLRAIngest() const;
  /// Overrides that mark: 1 makes `ingest` read nothing.
  void setLRAIngest(int ingested);

  /// Reads record A and moves to the block behind it, once per open file.
  ///
  /// @return 1, also when it had been read before; -1 at the end of the file: one line on
  ///         standard output names the field, those before it have their new values
  int ingest();

  /// Texts keep their blanks, and end in a NUL character of their own once read.
  UtString fetchQuadrangle() const;
  UtString fetchInfo() const;
  int fetchProcessCode() const;
  UtString fetchSI() const;
  UtString fetchMCorigin() const;
  int fetchDEMLevel() const;
  int fetchElvPat() const;
  int fetchGroundPlan() const;
  int fetchGroundZone() const;
  /// The first of the 15 projection parameters; the object's own.
  double* fetchMPParameters();
  const double* fetchMPParameters() const;
  int fetchUnits() const;
  int fetchElvUnits() const;
  double fetchElvMin() const;
  double fetchElvMax() const;
  /// The first of the three resolutions; the object's own.
  double* fetchRez();
  const double* fetchRez() const;
  int fetchRows() const;
  int fetchColumns() const;
  UtDate fetchSourceData() const;
  UtDate fetchRevisionDate() const;
  /// Stores the inspection/revision flag as well; null stores nothing.
  UtDate fetchRevisionDate(char* flag) const;

 protected:
  /// Bytes used of the present block: below 1021.
  int fetchByteCount() const;
  void resetByteCount();
  /// Counts `n` bytes that are read next.
  ///
  /// Where they would bring the counter to 1021 or more, the stream moves on by 1024 less
  /// the counter instead, to the next block, the counter becomes 0, and the `n` bytes are
  /// not counted.  While the file is closed nothing moves.
  ///
  /// @return the counter
  int addByteCount(int n);
  /// `addByteCount(1)`.
  int incByteCount();
  /// Moves on by 1024 less the counter and sets the counter to 0; nothing while closed.
  void moveToNextBlock();
  /// Moves on by `n` bytes, then counts them.
  ///
  /// As the stream has moved when they are counted, a skip that reaches the end of its
  /// block moves on by 1024 less the counter once more.
  ///
  /// @return 1; -1, with nothing counted, when the file ends before
  int skipFile(int n);

  // Of the readers, only that of an integer (and so of a date) moves to the next block
  // beforehand when its field would reach byte 1021; the others cross over in mid-field.

  /// Reads one character; -1 leaves `c` alone.
  int readFile(char* c);
  /// Reads `width` characters and appends a NUL; -1 leaves those that were there, and a
  /// negative width is -1.
  int readFile(UtString* s, int width);
  /// Reads an integer as C's `atoi` does: leading blanks, a sign, digits; 0 when there is
  /// none.  One too large becomes the nearest int.  -1 leaves `v` alone.
  int readFile(int* v, int width);
  /// Reads a real number as C's `atof` does in the locale "C", hexadecimal numbers,
  /// infinities and NaN included; 0 when there is none.  -1 leaves `v` alone.
  int readFile(double* v, int width);
  /// Reads an integer n as the date (n / 100, n - n / 100, 1), where a second number of 0
  /// becomes 1: "1987" is 19/1968/1.  -1 leaves `d` alone.
  int readFile(UtDate* d, int width);

 private:
  friend class DEM_LogicalRecord;
  friend KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const DEM_LRA& record);

  void move_forward(std::int64_t bytes);
  int read_in_block(char* bytes, int most);
  // What up to `most` (> 0) reads of integers of six characters give, those of one block at
  // once; answers how many, 0 when the file ends before the first does.
  int read_elevations(int* values, int most);

  UtString field_buffer_;
  UtString file_name_;
  kzgis::dem::RecordA a_;
  int ingested_ = 0;
  int byte_count_ = 0;
};

/// Writes a report of record A, 18 lines, the numbers in the stream's own format.
///
/// It has two oddities (docs/classic.md).  The 15th projection
/// parameter is not printed: in its place stand the codes of the ground units (low 32 bits)
/// and of the elevation units (high 32 bits), read as one double.  And when the elevation
/// units are none of 0, 1 and 2, their line has no end.
KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const DEM_LRA& record);
/// The same; null writes nothing.
KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const DEM_LRA* record);

/// The profiles of a USGS DEM file, one at a time, each overwriting the one before: logical
/// records B.  Before the first is read, every number is 0 and there are no elevations.
class KZGIS_EXPORT DEM_LogicalRecord : public DEM_LRA {
 public:
  DEM_LogicalRecord();
  /// Opens a file and reads its record A, as `setFN` does.
  explicit DEM_LogicalRecord(const UtString& name);

  /// Opens a file as `DEM_LRA::setFN` does and reads its record A.
  ///
  /// @return 1; -1 when record A could not be read: one line goes to standard output, and
  ///         the file stays open or closed as it was opened
  int setFN(const UtString& name);

  /// Reads the next profile, and record A first when it has not been read.
  ///
  /// The array of elevations grows as they are read, never on the word of the file alone.
  ///
  /// @return 1 when more profiles follow; 0 when this one's row and column are record A's
  ///         numbers of rows and columns, so that it is the last; -1 on failure: one line
  ///         goes to standard output, and what was read before is kept, elevations included
  int readRecord();

  int fetchRowID() const;
  int fetchColID() const;
  int fetchElevRows() const;
  int fetchElevCols() const;
  double fetchBaseX() const;
  double fetchBaseY() const;
  double fetchLocalDatum() const;
  double fetchProfMinElev() const;
  double fetchProfMaxElev() const;

  /// The place of elevation (r, c), counted from 0, in the array; nothing is checked.
  int ElevIndex(int r, int c) const;
  /// The elevations as they stand in the file, row by row; null while there are none.
  ///
  /// The object's own, until its next `readRecord`.  After a success there are
  /// `fetchElevRows()` times `fetchElevCols()` of them; after a failure among the elevations
  /// those that were read, after an earlier one those of the profile before.
  const int* fetchElevations() const;
  /// How many elevations `fetchElevations()` points to.
  std::size_t fetchElevationCount() const;
  /// Elevation (r, c), counted from 0; -32767, the format's own mark of a void, where the
  /// profile has none or it was not read.
  int fetchElevation(int r, int c) const;

 private:
  friend KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const DEM_LogicalRecord& record);

  int read_all_elevations();

  kzgis::dem::ProfileHeader b_;
  std::vector<int> elevations_;
};

/// Writes a report of the profile, without its elevations.
///
/// Behind an elevation unit of 0, 1 or 2 comes an empty line, behind any other none.
KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const DEM_LogicalRecord& record);
/// The same; null writes nothing.
KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const DEM_LogicalRecord* record);

#endif
