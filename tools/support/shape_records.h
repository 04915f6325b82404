// The records of a shapefile, one after another, for every subcommand that reads them.

#ifndef KZGIS_TOOLS_SUPPORT_SHAPE_RECORDS_H
#define KZGIS_TOOLS_SUPPORT_SHAPE_RECORDS_H

#include <kzgis/shape.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kzgis::tools {

/// The name that the files of a shapefile have in common: without ".shp", ".shx" or ".dbf".
std::string without_extension(const std::string& name);

/// One record; the spans stay valid until the next one is read.
struct ShapeRecord {
  kz_long number = 0;  ///< as the record itself says
  double x_min = 0.0, y_min = 0.0, x_max = 0.0, y_max = 0.0;
  std::span<const kz_long> parts;  ///< as in the file: not checked against the points
  std::span<const double> x, y;    ///< equally long
};

/// What became of a record.
enum class RecordState {
  read,   ///< it is there
  null,   ///< the file has no shape there
  failed  ///< it could not be read: `ShapeRecords::failure` says why
};

/// A shapefile, opened by any of its names.
class ShapeRecords {
 public:
  /// Throws `CommandError` when the pair of files cannot be opened.
  explicit ShapeRecords(std::string name);

  const std::string& name() const { return name_; }
  /// The two headers, as read.
  const KZ_GIS_ESRI_Shape_c& file() const { return file_; }
  kz_long type() const { return file_.ShapeHeader().ShapeType(); }

  /// How many records the index holds; never more than its file has room for.
  kz_long count() const { return count_; }
  /// Size of the shape file.
  std::uintmax_t shape_bytes() const { return shape_bytes_; }
  /// True when the index's header claims more records than its file holds.
  bool index_is_cut() const { return index_is_cut_; }

  /// Reads record `n`, counted from 1.
  RecordState read(kz_long n, ShapeRecord& record);

  /// Why the latest record failed, in words.
  const std::string& failure() const { return failure_; }

  /// The rings or lines of a record: the points of each part.  Nothing when the part
  /// starts decrease or leave the points.
  static std::optional<std::vector<std::span<const double>>> split(const ShapeRecord& record,
                                                                   std::span<const double> axis);

 private:
  kz_ulong read_by_type(ShapeRecord& record);

  /// A block of the C heap that the library grows.
  template <typename T>
  struct Block {
    ~Block() { std::free(data); }
    T* data = nullptr;
  };

  std::string name_;
  KZ_GIS_ESRI_Shape_c file_;
  kz_long count_ = 0;
  bool index_is_cut_ = false;
  std::uintmax_t shape_bytes_ = 0;
  std::string failure_;
  Block<kz_long> parts_;
  kz_long parts_capacity_ = 0;
  Block<double> x_;
  Block<double> y_;
  kz_long points_capacity_ = 0;
};

/// The kind of shape in words; "invalid" when there is no such kind.
std::string type_text(kz_long type);

/// A status in words.
std::string status_text(kz_ulong status);

}  // namespace kzgis::tools

#endif
