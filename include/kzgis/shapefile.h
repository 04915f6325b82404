#ifndef KZGIS_SHAPEFILE_H
#define KZGIS_SHAPEFILE_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <span>
#include <string>

#include "kzgis/box.h"
#include "kzgis/export.h"
#include "kzgis/mesh.h"
#include "kzgis/result.h"

// ESRI shapefiles, one record at a time.
//
//     auto file = kzgis::Shapefile::open("countries");
//     if (!file) return complain(file.error().message);
//     for (const auto& record : *file) {
//       if (record) draw(record->rings());
//       else complain(record.error().message);
//     }
//
// The format is that of "ESRI Shapefile Technical Description" (1998).  Nothing here throws:
// without memory the error is of kind `ErrorKind::out_of_memory`.  One thread at a time;
// different objects, of the same files too, serve different threads at once.

namespace kzgis {

/// What a record holds, under the format's own numbers.
enum class ShapeType : std::int32_t {
  null = 0,  ///< nothing: a record without a shape
  point = 1,
  polyline = 3,
  polygon = 5,
  multipoint = 8,
  point_z = 11,  ///< those with z may have m too
  polyline_z = 13,
  polygon_z = 15,
  multipoint_z = 18,
  point_m = 21,
  polyline_m = 23,
  polygon_m = 25,
  multipoint_m = 28,
  multipatch = 31,  ///< surfaces in space, which are not read
};

/// "null shape", "point", "polyline", "polygon with z", "multipoint with m", and so on, for
/// messages; null for a number that no type has.
KZGIS_EXPORT const char* name_of(ShapeType type);

/// One shape, borrowed from its file: the next read of any record there, and the end of the
/// file object, end it.
///
/// Numbers come through as they stand, NaN and infinity included; `box` too is what the record
/// claims.  An m below -1e38 means that there is no measure.
struct ShapeRecord {
  std::uint32_t number = 0;  ///< that the record gives itself: in sound files its index plus 1
  ShapeType type = ShapeType::null;
  Box box;  ///< of a point the point itself, of a null shape all 0
  /// Of lines and polygons, where in the coordinates each part begins: at 0 or above, none
  /// before the one in front of it, none behind the last point.  Empty for all others.
  std::span<const std::int32_t> parts;
  std::span<const double> x, y;  ///< as many as there are points
  std::span<const double> z;     ///< as many, or empty where the type has no z
  std::span<const double> m;     ///< as many, or empty where the type or the record has no m

  /// The parts as rings to be triangulated, or as lines.
  Rings rings() const { return {x, y, parts}; }
};

/// A shapefile that is open for reading.
///
/// Nothing in it is believed.  Counts, lengths and offsets are held against the size of the
/// file before anything is allocated, sought or read; the type, the box and the length in the
/// header refuse nothing.  A damaged record is an error at its index, whatever was wrong with
/// others, and each read begins anew: none is in the way of the next.
///
/// Where an index (".shx") stands beside the file and begins like one, the records are those
/// that it lists, in its order; the lengths in it are not looked at.  Without one they are
/// those of the file, found one behind the other by their lengths when it is opened; behind a
/// length that cannot be, there is no next one to be found.
///
/// Memory: the coordinates of the largest record read so far, up to half as much again for
/// growing, and a window of 64 KiB; without an index 8 bytes a record.
class KZGIS_EXPORT Shapefile {
 public:
  class Iterator;

  /// Opens the shapefile of a name.
  ///
  /// @param path  with the extension ".shp", ".shx" or ".dbf", in any case, or without one;
  ///              may hold path variables (see FILEmap_variables).  Named pipes are refused
  /// @return `cannot_read` when there is no such file, or it cannot be opened or read;
  ///         `bad_data` when it is shorter than a header or does not begin with the format's
  ///         file code; `out_of_memory`
  static Result<Shapefile> open(const std::string& path);

  Shapefile(Shapefile&&) noexcept;
  Shapefile& operator=(Shapefile&&) noexcept;
  ~Shapefile();

  /// What the header claims of all records; a number that no type has comes as it stands.
  ShapeType type() const;
  /// What the header claims to hold all records.
  const Box& box() const;
  /// How many records there are, damaged ones included.
  std::uint32_t size() const;

  /// The name of the file, path variables expanded and with its extension.
  const std::string& path() const;
  /// The same of the index that lists the records; empty where they were found without one.
  const std::string& index_path() const;

  /// Reads one record.
  ///
  /// @param index  from 0, below `size()`
  /// @return `bad_argument` for any other index; `bad_data` when the record lies outside of the
  ///         file or is cut by its end, is a multipatch or of no type, has counts that do not
  ///         make its length, or parts that are not as in `ShapeRecord::parts`; `cannot_read`
  ///         when the file does not give what it had when it was opened; `out_of_memory`.  The
  ///         message begins "record 7: ", counted from 1
  Result<ShapeRecord> read(std::uint32_t index);

  /// The records from `read(0)` on, each read when the iterator is asked for it.  Reads between
  /// two steps do not move an iterator; moving the file ends it.
  Iterator begin();
  Iterator end();

 private:
  struct State;
  explicit Shapefile(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;  ///< null in a file that was moved from, which has no records
};

/// A record of a file: an input iterator.
class Shapefile::Iterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = Result<ShapeRecord>;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = value_type;

  Iterator() = default;

  /// Reads the record.
  Result<ShapeRecord> operator*() const { return file_->read(index_); }
  Iterator& operator++() {
    ++index_;
    return *this;
  }
  Iterator operator++(int) {  // NOLINT(cert-dcl21-cpp): not const, as iterators are
    const Iterator before = *this;
    ++index_;
    return before;
  }
  bool operator==(const Iterator&) const = default;

 private:
  friend class Shapefile;
  Iterator(Shapefile* file, std::uint32_t index) : file_(file), index_(index) {}

  Shapefile* file_ = nullptr;
  std::uint32_t index_ = 0;
};

inline Shapefile::Iterator Shapefile::begin() { return {this, 0}; }
inline Shapefile::Iterator Shapefile::end() { return {this, size()}; }

}  // namespace kzgis

#endif
