// The records of an ESRI shapefile, after "ESRI Shapefile Technical Description" (1998).
// Contents, all little-endian, offsets from the first byte behind the record header:
//
//   point            arc and polygon                   multi-point
//    0  int32  type   0  int32  type                    0  int32  type
//    4  double X      4  4 doubles  the box             4  4 doubles  the box
//   12  double Y     36  int32  number of parts        36  int32  number of points
//                    40  int32  number of points       40  the points
//                    44  int32 each  start of a part
//                        then the points
//
// A box is Xmin, Ymin, Xmax, Ymax; a point is X, Y.  The type inside a record is not
// looked at: the caller has chosen the reader.
//
// The readers of arcs, polygons and multi-points go through the same steps: the record header,
// which has the number and the content length; the fixed part, which ends with the last count;
// room for as many elements as the counts claim and the file can hold; the elements.  Outputs
// are stored as they are decoded, so that a failure leaves those before it with new values and
// the others with old ones.  The content length serves to tell a null record from a shape, and
// is not compared with the counts.

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "kzgis/shape.h"
#include "shape/fields.h"

using namespace kzgis;
using namespace kzgis::shape_fields;

namespace {

constexpr kz_long kRecordHeaderSize = 8;
// Sizes of the fixed parts, then offsets into a content, as in the table above.
constexpr kz_long kArcFixedSize = 44;
constexpr kz_long kMultiPointFixedSize = 40;
constexpr kz_long kBox = 4;
constexpr kz_long kArcPartCount = 36;
constexpr kz_long kArcPointCount = 40;
constexpr kz_long kMultiPointPointCount = 36;
constexpr kz_long kPointX = 4;
constexpr kz_long kPointY = 12;
constexpr kz_long kPointSize = 20;
constexpr kz_long kLongPointSize = 64;  // with Z, M and whatever else follows X and Y
constexpr std::int64_t kBytesPerPart = 4;
constexpr std::int64_t kBytesPerPoint = 16;
constexpr kz_long kBytesPerCoordinate = 8;

/// Decodes the box, which stands at one place in every kind of record that has one.
void decode_box(const char* record, double* x_min, double* y_min, double* x_max, double* y_max) {
  *x_min = little_endian<double>(record + kBox);
  *y_min = little_endian<double>(record + kBox + 8);
  *x_max = little_endian<double>(record + kBox + 16);
  *y_max = little_endian<double>(record + kBox + 24);
}

/// Grows `*array` to `count` elements with the C heap.
/// @return false, with `*array` null and the former block lost, when there is no memory
template <typename T>
bool reallocate(T** array, kz_long count) {
  *array = static_cast<T*>(std::realloc(*array, static_cast<std::size_t>(count) * sizeof(T)));
  return *array != nullptr;
}

/// What a capacity is worth: nothing while an array is null, as an allocation that
/// failed leaves it.
kz_long usable(kz_long capacity, const kz_long* parts) {
  return parts == nullptr ? 0 : std::max(capacity, kz_long{0});
}
kz_long usable(kz_long capacity, const double* x, const double* y) {
  return x == nullptr || y == nullptr ? 0 : std::max(capacity, kz_long{0});
}

/// Stores in `*left` how many bytes the file holds from the stream's position on, or
/// just `wanted` when it surely holds that many.
///
/// The position is kept, but measuring costs the stream its buffer; what the buffer
/// holds already, all of most records, needs none.
kz_ulong measure_rest(const Input& in, std::int64_t wanted, std::int64_t* left) {
  *left = wanted;
  if (in.holds(wanted)) return status::success;
  std::ifstream& stream = in.stream;
  const std::streamoff here = stream.tellg();
  const std::streamoff end = stream.seekg(0, std::ios::end).tellg();
  stream.seekg(here);
  *left = end - here;
  return stream.fail() ? status::seek_failed : status::success;
}

/// Leaves the stream as a read beyond the file's end would, without reading.
kz_ulong fail_at_end(std::ifstream& stream) {
  stream.seekg(0, std::ios::end);
  stream.setstate(std::ios::eofbit | std::ios::failbit);
  return status::end_of_file;
}

/// Makes room for a record's part array, the stream standing at it.
///
/// The count is the file's claim: an array that the rest of the file cannot fill ends
/// the reading, as its read would have, before anything is allocated.
kz_ulong grow_parts(const Input& in, kz_long num_parts, kz_long* capacity, kz_long** parts) {
  // As a length, a negative count lies beyond the end of any file.
  if (num_parts < 0) return fail_at_end(in.stream);
  if (num_parts <= usable(*capacity, *parts)) return status::success;

  const std::int64_t wanted = num_parts * kBytesPerPart;
  std::int64_t left = 0;
  const kz_ulong measured = measure_rest(in, wanted, &left);
  if (measured != status::success) return measured;
  if (wanted > left) return fail_at_end(in.stream);
  if (!reallocate(parts, num_parts)) return status::out_of_memory;
  *capacity = num_parts;
  return status::success;
}

/// Makes room for a record's points, which begin `bytes_before` bytes from the stream's
/// position: for as many as the file can hold, one that its end cuts off included.
kz_ulong grow_points(const Input& in, std::int64_t bytes_before, kz_long num_points,
                     kz_long* capacity, double** x, double** y) {
  if (num_points <= usable(*capacity, *x, *y)) return status::success;

  std::int64_t left = 0;
  const kz_ulong measured = measure_rest(in, bytes_before + num_points * kBytesPerPoint, &left);
  if (measured != status::success) return measured;
  const std::int64_t held = (left - bytes_before + kBytesPerPoint - 1) / kBytesPerPoint;
  const auto wanted = static_cast<kz_long>(std::min<std::int64_t>(num_points, held));
  if (wanted <= usable(*capacity, *x, *y)) return status::success;
  // Both are tried whatever becomes of the first, so that the pointers tell the outcome.
  const bool has_x = reallocate(x, wanted);
  const bool has_y = reallocate(y, wanted);
  if (!has_x || !has_y) return status::out_of_memory;
  *capacity = wanted;
  return status::success;
}

/// Reads the part array into the caller's, which has room for it, and decodes it there.
kz_ulong read_parts(const Input& in, kz_long num_parts, kz_long* parts) {
  const kz_ulong result = read_bytes(in, parts, num_parts * kBytesPerPart);
  if (result != status::success) return result;
  if (swaps_little_endian(byte_util)) {
    for (kz_long i = 0; i < num_parts; ++i) byte_util.SwapBytes4(sizeof parts[i], &parts[i]);
  }
  return status::success;
}

void decode_points(const char* bytes, kz_long count, double* x, double* y) {
  for (kz_long i = 0; i < count; ++i) {
    x[i] = little_endian<double>(bytes + i * kBytesPerPoint);
    y[i] = little_endian<double>(bytes + i * kBytesPerPoint + kBytesPerCoordinate);
  }
}

/// Reads points into arrays with room for `room` of them.
///
/// Coordinates that are there before a failure are stored.  A count beyond the room is
/// a claim that grow_points found the file too short for.
kz_ulong read_points(const Input& in, kz_long num_points, kz_long room, double* x, double* y) {
  const kz_long wanted = std::min(num_points, room);
  for (kz_long done = 0; done < wanted; ++done) {
    if (in.stream.good()) {
      const std::int64_t held = static_cast<std::int64_t>(in.window.held()) / kBytesPerPoint;
      const auto whole = static_cast<kz_long>(std::min<std::int64_t>(wanted - done, held));
      decode_points(in.window.next(), whole, x + done, y + done);
      in.window.pass(static_cast<std::size_t>(whole * kBytesPerPoint));
      done += whole;
      if (done == wanted) break;
    }
    // The next one lies across the end of the window, or of the file.
    char point[kBytesPerPoint];
    const kz_ulong result = read_bytes(in.stream, point, kBytesPerPoint);
    const std::streamsize read = result == status::success ? kBytesPerPoint : in.stream.gcount();
    if (read >= kBytesPerCoordinate) x[done] = little_endian<double>(point);
    if (read >= kBytesPerPoint) y[done] = little_endian<double>(point + kBytesPerCoordinate);
    if (result != status::success) return result;
  }
  return num_points > wanted ? fail_at_end(in.stream) : status::success;
}

}  // namespace

/// Reads a record header and the fixed part of the content behind it; a null record is
/// passed by.
///
/// @return 1 with the stream behind the fixed part; 2 with it at the next record; else
///         what failed
kz_ulong KZ_GIS_ESRI_Shape_c::ReadFixedPart(kz_long* recordNumber, char* fixedPart,
                                            kz_long fixedSize) {
  kz_long length = 0;
  kz_ulong result = ReadShapeRecordHeader(recordNumber, &length);
  if (result != status::success) return result;
  result = PassNullRecord(*recordNumber, length, fixedSize);
  if (result != status::success) return result;
  return read_bytes(Input{shape_stream_, *shape_buffer_}, fixedPart, fixedSize);
}

/// Moves from the content of a null record to the next record.
///
/// A content no longer than the fixed part of the kind asked for has no shape in it.
/// The index then has the last word, by a limit of 44 bytes for every kind: 41 to 44
/// bytes make a multi-point when the record itself tells its length, and a null record
/// when only the index does.
///
/// @return 1, with nothing moved, for any other record; 2 for a null record; else what
///         failed, 11 for a null record that is the last
kz_ulong KZ_GIS_ESRI_Shape_c::PassNullRecord(kz_long recordNumber, kz_long length,
                                             kz_long fixedSize) {
  // Unsigned: a length that is negative counts as a long one.
  if (static_cast<kz_ulong>(length) > static_cast<kz_ulong>(fixedSize)) return status::success;

  kz_long offset = 0;
  kz_ulong result = ReadIndexRecord(recordNumber, &offset, &length);
  if (result != status::success) return result;
  if (length > kArcFixedSize) return status::success;

  const auto next = static_cast<kz_long>(static_cast<kz_ulong>(recordNumber) + 1);
  result = ReadIndexRecord(next, &offset, &length);
  if (result != status::success) return result;
  shape_stream_.seekg(offset);
  return shape_stream_.fail() ? status::seek_failed : status::wrong_kind;
}

// Reads nothing (docs/classic.md): whoever has met a null record seeks to the next one.
kz_ulong KZ_GIS_ESRI_Shape_c::ReadNullShape() const {
  return shape_file_open_ ? status::success : status::not_open;
}

// The one reader that judges a record by its length, and the one that does not pass null
// records: their 4 bytes are neither of the two lengths it accepts.
kz_ulong KZ_GIS_ESRI_Shape_c::ReadPointShape(kz_long* recordNumber, double* x, double* y) {
  kz_long length = 0;
  kz_ulong result = ReadShapeRecordHeader(recordNumber, &length);
  if (result != status::success) return result;
  if (length != kPointSize && length != kLongPointSize) return status::wrong_kind;

  char record[kLongPointSize];
  result = read_bytes(Input{shape_stream_, *shape_buffer_}, record, length);
  if (result != status::success) return result;
  *x = little_endian<double>(record + kPointX);
  *y = little_endian<double>(record + kPointY);
  return status::success;
}

kz_ulong KZ_GIS_ESRI_Shape_c::ReadMultiPointShape(kz_long* recordNumber, double* xMin, double* yMin,
                                                  double* xMax, double* yMax, kz_long* numPoints,
                                                  kz_long* pointsCapacity, double** x, double** y) {
  char record[kMultiPointFixedSize];
  kz_ulong result = ReadFixedPart(recordNumber, record, kMultiPointFixedSize);
  if (result != status::success) return result;
  decode_box(record, xMin, yMin, xMax, yMax);
  *numPoints = little_endian<kz_long>(record + kMultiPointPointCount);

  const Input in{shape_stream_, *shape_buffer_};
  result = grow_points(in, 0, *numPoints, pointsCapacity, x, y);
  if (result != status::success) return result;
  return read_points(in, *numPoints, usable(*pointsCapacity, *x, *y), *x, *y);
}

kz_ulong KZ_GIS_ESRI_Shape_c::ReadArcShape(kz_long* recordNumber, double* xMin, double* yMin,
                                           double* xMax, double* yMax, kz_long* numParts,
                                           kz_long* partsCapacity, kz_long** parts,
                                           kz_long* numPoints, kz_long* pointsCapacity, double** x,
                                           double** y) {
  char record[kArcFixedSize];
  kz_ulong result = ReadFixedPart(recordNumber, record, kArcFixedSize);
  if (result != status::success) return result;
  decode_box(record, xMin, yMin, xMax, yMax);
  *numParts = little_endian<kz_long>(record + kArcPartCount);
  *numPoints = little_endian<kz_long>(record + kArcPointCount);

  const Input in{shape_stream_, *shape_buffer_};
  result = grow_parts(in, *numParts, partsCapacity, parts);
  if (result != status::success) return result;
  // The points begin behind the part array.  Both arrays have their room before either is
  // read: the interface reports a lack of memory before a part array that cannot be read.
  result = grow_points(in, *numParts * kBytesPerPart, *numPoints, pointsCapacity, x, y);
  if (result != status::success) return result;
  result = read_parts(in, *numParts, *parts);
  if (result != status::success) return result;
  return read_points(in, *numPoints, usable(*pointsCapacity, *x, *y), *x, *y);
}

// Arcs and polygons have one layout: what tells them apart is the meaning of their parts.
kz_ulong KZ_GIS_ESRI_Shape_c::ReadPolygonShape(kz_long* recordNumber, double* xMin, double* yMin,
                                               double* xMax, double* yMax, kz_long* numParts,
                                               kz_long* partsCapacity, kz_long** parts,
                                               kz_long* numPoints, kz_long* pointsCapacity,
                                               double** x, double** y) {
  return ReadArcShape(recordNumber, xMin, yMin, xMax, yMax, numParts, partsCapacity, parts,
                      numPoints, pointsCapacity, x, y);
}

// The counts alone.  The stream is left behind the fixed part and not put back: a caller who
// then wants the shape seeks to its record again.
kz_ulong KZ_GIS_ESRI_Shape_c::GetArcShapeInfo(kz_long* recordNumber, kz_long* numParts,
                                              kz_long* numPoints) {
  char record[kArcFixedSize];
  const kz_ulong result = ReadFixedPart(recordNumber, record, kArcFixedSize);
  if (result != status::success) return result;
  *numParts = little_endian<kz_long>(record + kArcPartCount);
  *numPoints = little_endian<kz_long>(record + kArcPointCount);
  return status::success;
}

kz_ulong KZ_GIS_ESRI_Shape_c::GetPolygonShapeInfo(kz_long* recordNumber, kz_long* numParts,
                                                  kz_long* numPoints) {
  return GetArcShapeInfo(recordNumber, numParts, numPoints);
}

kz_ulong KZ_GIS_ESRI_Shape_c::GetMultiPointShapeInfo(kz_long* recordNumber, kz_long* numPoints) {
  char record[kMultiPointFixedSize];
  const kz_ulong result = ReadFixedPart(recordNumber, record, kMultiPointFixedSize);
  if (result != status::success) return result;
  *numPoints = little_endian<kz_long>(record + kMultiPointPointCount);
  return status::success;
}

// Totals of the whole file.  The kind of shape that the header claims decides what is counted:
// records without parts of their own count as one part each, null and point records as one
// point each.  The shape stream is put back, even where the count has failed.
kz_ulong KZ_GIS_ESRI_Shape_c::NumberOfParts(kz_ulong* count) {
  if (!shape_file_open_) return status::not_open;
  const std::streampos position = shape_stream_.tellg();
  switch (shape_header_.ShapeType()) {
    case shape_type::null_shape:
    case shape_type::point:
    case shape_type::multi_point:
      return ReturnTo(position, NumberOfDataRecords(count));
    case shape_type::arc:
    case shape_type::polygon:
      return ReturnTo(position, SumOverRecords(kArcFixedSize, kArcPartCount, count));
    default:
      return status::wrong_kind;
  }
}

kz_ulong KZ_GIS_ESRI_Shape_c::NumberOfPoints(kz_ulong* count) {
  if (!shape_file_open_) return status::not_open;
  const std::streampos position = shape_stream_.tellg();
  switch (shape_header_.ShapeType()) {
    case shape_type::null_shape:
    case shape_type::point:
      return ReturnTo(position, NumberOfDataRecords(count));
    case shape_type::arc:
    case shape_type::polygon:
      return ReturnTo(position, SumOverRecords(kArcFixedSize, kArcPointCount, count));
    case shape_type::multi_point:
      return ReturnTo(position, SumOverRecords(kMultiPointFixedSize, kMultiPointPointCount, count));
    default:
      return status::wrong_kind;
  }
}

/// Puts the shape stream back, and gives `result` when that could be done.
kz_ulong KZ_GIS_ESRI_Shape_c::ReturnTo(std::streampos position, kz_ulong result) {
  shape_stream_.seekg(position);
  return shape_stream_.fail() ? status::seek_failed : result;
}

/// Adds up one 32-bit field, `fieldOffset` bytes into the content, over all records
/// whose content is longer than `fixedSize`.
///
/// The index header may claim more records than there are: the first one that the file,
/// by its size, does not hold ends the walk.  A device that is read without end, such as
/// /dev/zero, has no size, and so holds none.
kz_ulong KZ_GIS_ESRI_Shape_c::SumOverRecords(kz_long fixedSize, kz_long fieldOffset,
                                             kz_ulong* sum) {
  *sum = 0;
  kz_ulong records = 0;
  NumberOfDataRecords(&records);
  if (records == 0) return status::success;
  if (!index_file_open_) return status::not_open;
  const std::streamoff index_end = index_stream_.seekg(0, std::ios::end).tellg();
  if (index_stream_.fail()) return status::seek_failed;
  const std::int64_t held =
      (index_end - index_header_.HeaderLength()) / std::int64_t{kIndexRecordSize};
  for (kz_ulong number = 1; number <= records; ++number) {
    if (number > held) return fail_at_end(index_stream_);
    kz_long offset = 0;
    kz_long length = 0;
    kz_ulong result = ReadIndexRecord(static_cast<kz_long>(number), &offset, &length);
    if (result != status::success) return result;
    if (length <= fixedSize) continue;

    // 32 bits that wrap, like all offsets of this folder: a negative place is a seek that fails.
    const kz_ulong place =
        static_cast<kz_ulong>(offset) + static_cast<kz_ulong>(kRecordHeaderSize + fieldOffset);
    shape_stream_.seekg(static_cast<kz_long>(place));
    if (shape_stream_.fail()) return status::seek_failed;
    char field[4];
    result = read_bytes(Input{shape_stream_, *shape_buffer_}, field, sizeof field);
    if (result != status::success) return result;
    *sum += static_cast<kz_ulong>(little_endian<kz_long>(field));
  }
  return status::success;
}
