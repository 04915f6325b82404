// The reader of ESRI shapefiles, after "ESRI Shapefile Technical Description" (1998): the header
// of a file, and its records by way of the index.

#ifndef KZGIS_SHAPE_H
#define KZGIS_SHAPE_H

#include <cstddef>
#include <fstream>
#include <iosfwd>
#include <memory>

#include "kzgis/export.h"
#include "kzgis/types.h"

namespace kzgis::shape_fields {
class WindowBuffer;  // of no use outside of the library
}

/// The kinds of shape that the readers know, as files number them.
namespace kzgis::shape_type {
inline constexpr kz_long null_shape = 0;
inline constexpr kz_long point = 1;
inline constexpr kz_long arc = 3;
inline constexpr kz_long polygon = 5;
inline constexpr kz_long multi_point = 8;

/// "null", "point", "arc", "polygon" or "polypoint"; null when there is no such kind.
KZGIS_EXPORT const char* name_of(kz_long type);
}  // namespace kzgis::shape_type

/// The 100-byte header that opens both files of an ESRI shapefile (".shp", ".shx").
///
/// It borrows the stream that it reads from and the name that it prints; both must
/// outlive their use.  Copies share both, so that only one of them may be used at a time.
/// Its numbers are 0 until they are read.
///
/// The results are the statuses of kzgis/types.h.
class KZGIS_EXPORT KZ_GIS_ESRI_ShapeHeader_c {
 public:
  KZ_GIS_ESRI_ShapeHeader_c() = default;
  KZ_GIS_ESRI_ShapeHeader_c(const KZ_GIS_ESRI_ShapeHeader_c& other) = default;
  KZ_GIS_ESRI_ShapeHeader_c& operator=(const KZ_GIS_ESRI_ShapeHeader_c& other) = default;
  virtual ~KZ_GIS_ESRI_ShapeHeader_c();

  /// Attaches the stream to read from, and gives it back.
  std::ifstream& FileStream(std::ifstream& stream);
  /// Attaches the name to print, not copied, and gives it back; null for none.
  const char* FileName(const char* name);

  /// Reads and decodes 100 bytes at the stream's present position.
  ///
  /// The values are taken as they come; `ValidateFileHeader` judges them.
  ///
  /// @return 1; 13 when no open stream is attached; 11 when the file ended first; 4
  ///         when the read failed otherwise.  After a failure the numbers are those of
  ///         before, and the stream keeps the flags that the read left.
  kz_ulong ReadHeader();

  /// Checks the numbers read, in this order, up to the first failure.
  ///
  /// @return 13 when the attached stream is not open; 6 when the file code is not
  ///         9994; 7 when the version is not 1000; 8 when the shape type is not one of
  ///         0, 1, 3, 5, 8; 9 when the bounding box has no width or no height, or is
  ///         inverted (a NaN in it passes); else 1
  kz_ulong ValidateFileHeader() const;

  /// Writes a report of nine lines, the doubles in the stream's own format.
  ///
  /// The labels of Ymin and Ymax stand exchanged, "YMax Type" before the value of Ymin
  /// and "YMin Type" before that of Ymax (docs/classic.md).
  ///
  /// @return 1; 13, with nothing written, when the attached stream is not open
  kz_ulong PrintFileHeader(std::ostream& os) const;

  /// The length of a header in bytes: 100.
  kz_long HeaderLength() const;
  /// The length that the header claims for its file, in bytes.
  kz_long FileLength() const;
  /// The kind of shape that the header claims for its file (kzgis::shape_type).
  kz_long ShapeType() const;

 private:
  std::ifstream* stream_ = nullptr;
  const char* file_name_ = nullptr;
  kz_long file_code_ = 0;
  kz_long file_length_ = 0;
  kz_long version_ = 0;
  kz_long shape_type_ = 0;
  double x_min_ = 0.0;
  double y_min_ = 0.0;
  double x_max_ = 0.0;
  double y_max_ = 0.0;
};

/// Reads the records of an ESRI shapefile through its index.
///
/// `FileName` opens the pair of files.  A caller then positions the shape stream, with
/// `SeekToFirstDataRecord` or `SeekToDataRecord`, and calls the reader that fits
/// `ShapeHeader().ShapeType()`; each reader reads one record and leaves the stream
/// behind what it read.  Offsets and lengths are bytes; record numbers count from 1.
///
/// A named pipe in the place of either file cannot be opened: the open would wait, for ever if
/// need be, for somebody at the other end.
///
/// Every operation that needs a file answers 13 while that file is closed.  A read or
/// seek that failed leaves its flags on the stream, so that later operations on the
/// file fail too (10, 11 or 4, and 2 from `SeekToDataRecord`) until it is opened again.
/// A null record, met where a shape is asked for, gives 2 with the stream at the next
/// record, which the index tells; `ReadPointShape` has a rule of its own.
///
/// Output arrays belong to the caller.  For each the caller passes the address of its
/// pointer and of its capacity in elements: null and 0 at first, or what an earlier
/// call left.  A reader that needs more calls the C heap's `realloc` for exactly what
/// it needs and stores the new capacity; it never shrinks an array.  `free` releases
/// it.  A failed allocation gives 14 and leaves that pointer null, the capacity as it
/// was and the former block lost: no array of that call may be read any more, but all
/// may be passed in again or freed.  No output address may be null.
///
/// Counts in a file are claims: arrays grow only as far as the file can fill them.  A
/// record that claims more than the file holds gives 11 at the end of the file, with
/// what was there stored and capacities that name what was really allocated, so after
/// 11 the capacity may be less than the count.
///
/// Nothing here throws.  Without memory a file cannot be opened, by whatever operation, and an
/// output array gives 14.  Objects of the same files share nothing.
class KZGIS_EXPORT KZ_GIS_ESRI_Shape_c {
 public:
  /// Opens the pair of files named `name`, as `FileName` does; null opens nothing.
  KZ_GIS_ESRI_Shape_c(const char* name);
  /// Opens its own streams on the files of `other`'s base name, at their first record.
  KZ_GIS_ESRI_Shape_c(const KZ_GIS_ESRI_Shape_c& other);
  /// Opens the files of `other`'s base name in an object that has none open.
  ///
  /// A target that has a file open cannot take others: it ends closed, with an empty
  /// base name, self-assignment included, and the stream of that file stays occupied
  /// until the target is destroyed, so that nothing opens it again.  To change files
  /// call `FileName` instead.
  KZ_GIS_ESRI_Shape_c& operator=(const KZ_GIS_ESRI_Shape_c& other);
  virtual ~KZ_GIS_ESRI_Shape_c();

  /// Opens the ".shp" and the ".shx" of one name, closing what was open.
  ///
  /// Path variables are expanded (see FILEmap_variables), then an ending ".shp",
  /// ".shx" or ".dbf", in lower case, is cut off: what is left is the base name.  The
  /// headers are read, not judged: `ShapeHeader().ValidateFileHeader()` does that.
  ///
  /// @param name  null closes both files; may be a name that this object gave
  /// @return the base name, kept by the object until its next `FileName`; an empty
  ///         text for null; null, with both files closed, when a file cannot be opened,
  ///         its header not read, or the base name is longer than 251 characters
  const char* FileName(const char* name);
  /// Opens the ".shp" alone by its full name, closing the one that was open.
  ///
  /// @param name  taken as it is, no path variables; null only closes; may be a name
  ///              that this object gave
  /// @return the name, kept by the object until the file is closed; null, with the
  ///         file closed, when it cannot be opened, its header not read, or the name
  ///         is longer than 259 characters
  const char* ShapeFileName(const char* name);
  /// Opens the ".shx" alone, as `ShapeFileName` does the ".shp".
  const char* IndexFileName(const char* name);

  /// 1 while the ".shp" is open and its header was read, else 0.
  unsigned char ShapeFileIsOpen() const;
  /// 1 while the ".shx" is open and its header was read, else 0.
  unsigned char IndexFileIsOpen() const;

  /// The header of the ".shp" opened last.
  const KZ_GIS_ESRI_ShapeHeader_c& ShapeHeader() const;
  /// The header of the ".shx" opened last.
  const KZ_GIS_ESRI_ShapeHeader_c& IndexHeader() const;

  /// Writes the number of records that the index header's length stands for.
  ///
  /// The arithmetic is unsigned: a header that claims less than 100 bytes gives a
  /// number far beyond any file.
  ///
  /// @return 1; 13 when the shape file is not open
  kz_ulong NumberOfDataRecords(kz_ulong* count) const;
  /// Moves to the first byte behind the header.
  ///
  /// @return 1; 13 when the shape file is not open; 10 when the seek failed
  kz_ulong SeekToFirstDataRecord();
  /// Moves to the record header of one record.
  ///
  /// @return 1; 13 when the shape file is not open; 2 when the index has no such
  ///         record or cannot be read; 10 when the seek failed
  kz_ulong SeekToDataRecord(kz_long recordNumber);

  /// 1 when the shape file is open, else 13.  Reads nothing and moves nothing.
  kz_ulong ReadNullShape() const;
  /// Reads one point record.
  ///
  /// @return 1; 2 when the content is neither 20 nor 64 bytes long, with the stream at
  ///         the start of the content; 13, 11 or 4 as above
  kz_ulong ReadPointShape(kz_long* recordNumber, double* x, double* y);
  /// Reads one multi-point record: its number, its box and its points.
  ///
  /// Outputs are written as they are decoded; after a failure the rest keep their old
  /// values.
  ///
  /// @return 1, also when the number of points is 0 or negative; 2 for a null record;
  ///         10 when a seek failed; 14 when an array could not be allocated; 13, 11 or
  ///         4 as above
  kz_ulong ReadMultiPointShape(kz_long* recordNumber, double* xMin, double* yMin, double* xMax,
                               double* yMax, kz_long* numPoints, kz_long* pointsCapacity,
                               double** x, double** y);
  /// Reads one arc or polygon record: its number, its box, the index of the first
  /// point of each part, and its points.  Results as for `ReadMultiPointShape`.
  ///
  /// The part indices are the file's own: a caller checks that they lie between 0 and
  /// `*numPoints` before using them.
  kz_ulong ReadArcShape(kz_long* recordNumber, double* xMin, double* yMin, double* xMax,
                        double* yMax, kz_long* numParts, kz_long* partsCapacity, kz_long** parts,
                        kz_long* numPoints, kz_long* pointsCapacity, double** x, double** y);
  /// The same as `ReadArcShape`.
  kz_ulong ReadPolygonShape(kz_long* recordNumber, double* xMin, double* yMin, double* xMax,
                            double* yMax, kz_long* numParts, kz_long* partsCapacity,
                            kz_long** parts, kz_long* numPoints, kz_long* pointsCapacity,
                            double** x, double** y);
  /// Reads the counts of an arc or polygon record, and leaves the stream at its parts.
  ///
  /// @return 1; 2 for a null record; 10 when a seek failed; 13, 11 or 4 as above
  kz_ulong GetArcShapeInfo(kz_long* recordNumber, kz_long* numParts, kz_long* numPoints);
  /// The same as `GetArcShapeInfo`.
  kz_ulong GetPolygonShapeInfo(kz_long* recordNumber, kz_long* numParts, kz_long* numPoints);
  /// Reads the count of a multi-point record, and leaves the stream at its points.
  /// Results as for `GetArcShapeInfo`.
  kz_ulong GetMultiPointShapeInfo(kz_long* recordNumber, kz_long* numPoints);

  /// Writes the number of parts in the whole file, and leaves the shape stream where
  /// it was.  Each record of a null, point or multi-point file counts as one part.
  ///
  /// The walk goes no further than the index file's own size, which may be less than its
  /// header claims: 11.  A device of no size, such as /dev/zero, holds no record.
  ///
  /// @return 1; 2 for any other shape type; 13, 10, 11 or 4 where the walk through the
  ///         index stopped, with `*count` the sum so far; 10 also when the shape stream
  ///         could not be put back, as after any failed read of it
  kz_ulong NumberOfParts(kz_ulong* count);
  /// Writes the number of points in the whole file, as `NumberOfParts` does the parts.
  /// Each record of a null or point file counts as one point.
  kz_ulong NumberOfPoints(kz_ulong* count);

 private:
  static constexpr int kNameSize = 260;

  static const char* OpenFile(const char* name, std::ifstream& stream,
                              std::unique_ptr<kzgis::shape_fields::WindowBuffer>& buffer,
                              std::size_t window, bool& open, char (&open_name)[kNameSize],
                              KZ_GIS_ESRI_ShapeHeader_c& header);
  static void CloseFile(std::ifstream& stream, bool& open, char (&open_name)[kNameSize]);
  void CloseFiles();
  void CloseShapeFile();
  void CloseIndexFile();

  kz_ulong ReadIndexRecord(kz_long recordNumber, kz_long* offset, kz_long* length);
  kz_ulong ReadShapeRecordHeader(kz_long* recordNumber, kz_long* length);
  kz_ulong ReadFixedPart(kz_long* recordNumber, char* fixedPart, kz_long fixedSize);
  kz_ulong PassNullRecord(kz_long recordNumber, kz_long length, kz_long fixedSize);
  kz_ulong SumOverRecords(kz_long fixedSize, kz_long fieldOffset, kz_ulong* sum);
  kz_ulong ReturnTo(std::streampos position, kz_ulong result);

  std::ifstream shape_stream_;
  std::ifstream index_stream_;
  // What the streams read through, from the first opening on.
  std::unique_ptr<kzgis::shape_fields::WindowBuffer> shape_buffer_;
  std::unique_ptr<kzgis::shape_fields::WindowBuffer> index_buffer_;
  bool shape_file_open_ = false;
  bool index_file_open_ = false;
  KZ_GIS_ESRI_ShapeHeader_c shape_header_;
  KZ_GIS_ESRI_ShapeHeader_c index_header_;
  char base_name_[kNameSize] = "";
  char shape_file_name_[kNameSize] = "";
  char index_file_name_[kNameSize] = "";
};

#endif
