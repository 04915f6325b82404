// The classic shapefile object, made fit for the command: names, statuses in words, records as
// spans.

#include "tools/support/shape_records.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "tools/support/command_error.h"
#include "tools/support/input_file.h"

namespace kzgis::tools {

namespace {

constexpr std::uintmax_t kHeaderBytes = 100;
constexpr std::uintmax_t kIndexEntryBytes = 8;

/// Why that file is no half of a shapefile; nothing when it may be.
std::string why_not_usable(const std::string& path) {
  std::string why = why_not_readable(path);
  if (why.empty() && size_of(path) < kHeaderBytes)
    why = path + ": too short for a shapefile header";
  return why;
}

}  // namespace

std::string without_extension(const std::string& name) {
  for (const char* const extension : {".shp", ".shx", ".dbf"}) {
    if (name.ends_with(extension)) return name.substr(0, name.size() - 4);
  }
  return name;
}

std::string type_text(kz_long type) {
  const char* const name = shape_type::name_of(type);
  return name != nullptr ? name : "invalid";
}

std::string status_text(kz_ulong status) {
  switch (status) {
    case status::success:
      return "valid";
    case status::wrong_kind:
      return "not the kind of record that the header announces";
    case status::read_failed:
      return "a read failed";
    case status::short_read:
      return "a read came up short";
    case status::bad_file_code:
      return "the file code is not 9994";
    case status::bad_version:
      return "the version is not 1000";
    case status::bad_shape_type:
      return "the shape type is not 0, 1, 3, 5 or 8";
    case status::bad_bounding_box:
      return "the bounding box is empty or inverted";
    case status::seek_failed:
      return "a seek failed";
    case status::end_of_file:
      return "the file ends inside it";
    case status::not_open:
      return "the file is not open";
    case status::out_of_memory:
      return "out of memory";
    default:
      return "status " + std::to_string(status);
  }
}

ShapeRecords::ShapeRecords(std::string name) : name_(std::move(name)), file_(nullptr) {
  // Looked at beforehand for a better message, and because opening a pipe would wait.
  const std::string base = without_extension(expanded(name_));
  const std::string shape_path = base + ".shp";
  const std::string index_path = base + ".shx";
  std::error_code unknown;
  if (base == expanded(name_) && std::filesystem::is_regular_file(base, unknown)) {
    throw CommandError(name_ + ": not the name of a shapefile, which ends in .shp");
  }
  for (const std::string& path : {shape_path, index_path}) {
    if (const std::string why = why_not_usable(path); !why.empty()) throw CommandError(why);
  }
  if (file_.FileName(name_.c_str()) == nullptr) {
    throw CommandError(name_ + ": cannot be opened as a shapefile");
  }

  kz_ulong claimed = 0;
  file_.NumberOfDataRecords(&claimed);
  const std::uintmax_t index_size = size_of(index_path);
  const std::uintmax_t room =
      index_size < kHeaderBytes ? 0 : (index_size - kHeaderBytes) / kIndexEntryBytes;
  index_is_cut_ = claimed > room;
  count_ = static_cast<kz_long>(std::min<std::uintmax_t>({claimed, room, 0x7FFFFFFF}));
  shape_bytes_ = size_of(shape_path);
}

// The library takes a null record for one of the wrong kind, and passes it.
RecordState ShapeRecords::read(kz_long n, ShapeRecord& record) {
  record = {};
  kz_ulong status = file_.SeekToDataRecord(n);
  if (status == status::success) {
    if (type() == shape_type::null_shape) return RecordState::null;
    status = read_by_type(record);
    if (status == status::success) return RecordState::read;
    if (status == status::wrong_kind) return RecordState::null;
  }
  // A failed stream stays failed until its file is opened again.
  file_.FileName(name_.c_str());
  // The library looks at the next record to pass a null one; behind the last there is
  // none, which reads like the end of the file.
  const bool whole = static_cast<std::intmax_t>(shape_bytes_) >=
                     static_cast<std::intmax_t>(file_.ShapeHeader().FileLength());
  const bool null_at_end = status == status::end_of_file && n == count_ && !index_is_cut_ && whole;
  if (null_at_end) return RecordState::null;
  failure_ = status_text(status);
  return RecordState::failed;
}

/// Reads the record where the file stands into the blocks, which the library lets grow.
kz_ulong ShapeRecords::read_by_type(ShapeRecord& record) {
  kz_long part_count = 0;
  kz_long point_count = 0;
  kz_ulong status = status::wrong_kind;
  switch (type()) {
    case shape_type::point: {
      double x = 0.0;
      double y = 0.0;
      status = file_.ReadPointShape(&record.number, &x, &y);
      if (status != status::success) return status;
      if (points_capacity_ < 1) {
        x_.data = static_cast<double*>(std::malloc(sizeof(double)));
        y_.data = static_cast<double*>(std::malloc(sizeof(double)));
        if (x_.data == nullptr || y_.data == nullptr) return status::out_of_memory;
        points_capacity_ = 1;
      }
      record.x_min = record.x_max = *x_.data = x;
      record.y_min = record.y_max = *y_.data = y;
      point_count = 1;
      break;
    }
    case shape_type::multi_point:
      status = file_.ReadMultiPointShape(&record.number, &record.x_min, &record.y_min,
                                         &record.x_max, &record.y_max, &point_count,
                                         &points_capacity_, &x_.data, &y_.data);
      break;
    case shape_type::arc:
    case shape_type::polygon:
      status = file_.ReadPolygonShape(&record.number, &record.x_min, &record.y_min, &record.x_max,
                                      &record.y_max, &part_count, &parts_capacity_, &parts_.data,
                                      &point_count, &points_capacity_, &x_.data, &y_.data);
      break;
    default:
      break;
  }
  if (status != status::success) return status;
  if (part_count > 0) record.parts = {parts_.data, static_cast<std::size_t>(part_count)};
  if (point_count > 0) {
    record.x = {x_.data, static_cast<std::size_t>(point_count)};
    record.y = {y_.data, static_cast<std::size_t>(point_count)};
  }
  return status;
}

std::optional<std::vector<std::span<const double>>> ShapeRecords::split(
    const ShapeRecord& record, std::span<const double> axis) {
  std::vector<std::span<const double>> split_parts;
  split_parts.reserve(record.parts.size());
  for (std::size_t part = 0; part < record.parts.size(); ++part) {
    const std::int64_t start = record.parts[part];
    const std::int64_t end = part + 1 < record.parts.size()
                                 ? record.parts[part + 1]
                                 : static_cast<std::int64_t>(axis.size());
    if (start < 0 || end < start || end > static_cast<std::int64_t>(axis.size())) {
      return std::nullopt;
    }
    split_parts.push_back(
        axis.subspan(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
  }
  return split_parts;
}

}  // namespace kzgis::tools
