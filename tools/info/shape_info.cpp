// kzgis info on a shapefile: its header report, by the classic class whose text people know,
// and a walk through its records.

#include "tools/info/shape_info.h"

#include <kzgis/shape.h>
#include <kzgis/shapefile.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "tools/info/index_lengths.h"
#include "tools/support/command_error.h"
#include "tools/support/progress.h"
#include "tools/support/record_walk.h"
#include "tools/support/shape_file.h"

namespace kzgis::tools {

namespace {

using Json = InfoReport::Json;

/// The header of a shapefile or an index, as the classic class has it.
class Header {
 public:
  explicit Header(const std::string& path) : path_(path), stream_(path, std::ios::binary) {
    header_.FileStream(stream_);
    header_.FileName(path_.c_str());
    if (header_.ReadHeader() != status::success) {
      throw CommandError(path + ": its header cannot be read");
    }
    verdict_ = header_.ValidateFileHeader();
  }

  void print() const { header_.PrintFileHeader(std::cout); }

  /// In words.
  const char* verdict() const {
    switch (verdict_) {
      case status::success:
        return "valid";
      case status::bad_version:
        return "the version is not 1000";
      case status::bad_shape_type:
        return has_known_type() ? "valid, of a type with Z or M, or multipatch"
                                : "there is no such shape type";
      default:
        return "the bounding box is empty or inverted";
    }
  }

  /// The box of a single point or of no record at all is rightly called empty, and the classic
  /// class knows no types with Z or M: neither says anything against a file.
  bool is_sound() const {
    return verdict_ == status::success || verdict_ == status::bad_bounding_box ||
           (verdict_ == status::bad_shape_type && has_known_type());
  }

 private:
  bool has_known_type() const { return name_of(ShapeType{header_.ShapeType()}) != nullptr; }

  std::string path_;
  std::ifstream stream_;
  KZ_GIS_ESRI_ShapeHeader_c header_;
  kz_ulong verdict_ = status::success;
};

struct Totals {
  std::uint64_t null_records = 0;
  std::uint64_t parts = 0;
  std::uint64_t points = 0;
};

/// What belongs to points alone, which have no box of their own.
bool is_single_point(ShapeType type) {
  return type == ShapeType::point || type == ShapeType::point_z || type == ShapeType::point_m;
}

/// A multi-point counts as one part, as a point does.
std::size_t count_parts(const ShapeRecord& record) {
  return record.parts.empty() && !record.x.empty() ? 1 : record.parts.size();
}

/// "3: polygon, 2 parts, 10 points, x 0 to 4, y 0 to 4"
void print_record(std::uint32_t number, const ShapeRecord& record) {
  std::cout << number << ": ";
  if (record.type == ShapeType::null) {
    std::cout << "null\n";
    return;
  }
  std::cout << name_of(record.type);
  if (is_single_point(record.type)) {
    std::cout << " at " << record.x[0] << ' ' << record.y[0] << '\n';
    return;
  }
  if (kind_of(record.type) != ShapeKind::points)
    std::cout << ", " << record.parts.size() << " parts";
  std::cout << ", " << record.x.size() << " points, x " << record.box.min_x << " to "
            << record.box.max_x << ", y " << record.box.min_y << " to " << record.box.max_y << '\n';
}

Json object_of(std::uint32_t number, const ShapeRecord& record) {
  Json object = {{"record", number}, {"type", name_of(record.type)}};
  if (record.type == ShapeType::null) return object;
  object["box"] = box_object(record.box);
  object["parts"] = count_parts(record);
  object["points"] = record.x.size();
  return object;
}

/// What is wrong with a record that was read; empty when nothing is.
std::string record_flaw(const Shapefile& shapes, std::uint32_t number, const ShapeRecord& record,
                        IndexLengths& index) {
  if (record.type != ShapeType::null && record.type != shapes.type()) {
    return "its type is " + type_text(record.type) + ", the file's " + type_text(shapes.type());
  }
  if (std::string flaw = flaw_of(record); !flaw.empty()) return flaw;
  for (std::size_t i = 0; i < record.z.size(); ++i) {
    if (!std::isfinite(record.z[i])) return "point " + std::to_string(i + 1) + " has no finite z";
  }
  return index.flaw_of(number);
}

/// Reads the records, listing each when asked to, until too many are damaged.
Totals walk(Shapefile& shapes, InfoReport& info, Json& list) {
  Totals totals;
  Progress progress("reading", shapes.size(), info.lists());
  RecordFailures failures(
      [&info](const std::string& what) { info.add_error(info.file() + ": " + what); });
  IndexLengths index(shapes);
  for (std::uint32_t i = 0; i < shapes.size() && !failures.give_up(); ++i) {
    progress.update(i);
    const std::uint32_t number = i + 1;
    const auto record = shapes.read(i);
    if (!record) {
      if (record.error().kind == ErrorKind::out_of_memory) throw std::bad_alloc();
      failures.add(record.error().message);
      if (info.lists() && info.json()) {
        list.push_back({{"record", number}, {"error", record.error().message}});
      }
      continue;
    }
    if (record->type == ShapeType::null) ++totals.null_records;
    totals.parts += count_parts(*record);
    totals.points += record->x.size();
    const std::string flaw = record_flaw(shapes, number, *record, index);
    if (!flaw.empty()) failures.add(record_text(number) + flaw);
    if (!info.lists()) continue;
    if (info.json()) {
      list.push_back(object_of(number, *record));
      if (!flaw.empty()) list.back()["error"] = record_text(number) + flaw;
    } else {
      print_record(number, *record);
    }
  }
  failures.sum_up();
  return totals;
}

void check_length(const std::string& path, const std::string& name, InfoReport& info) {
  const Length claimed = claimed_length(path);
  if (claimed == Length::right) return;
  info.add_error(info.file() + ": " + name +
                 (claimed == Length::too_long ? " is shorter" : " is longer") +
                 " than its header says");
}

void check_header(const Header& header, const char* which, InfoReport& info) {
  if (header.is_sound()) return;
  info.add_error(info.file() + ": the header of the " + which +
                 " file is not valid: " + header.verdict());
}

}  // namespace

void report_shapefile(InfoReport& info) {
  Shapefile shapes = open_shapefile(info.file());
  const std::string& index_path = shapes.index_path();
  const Header header(shapes.path());
  std::optional<Header> index_header;
  if (!index_path.empty()) index_header.emplace(index_path);
  const std::string why_none = why_no_index(shapes);
  if (!info.json()) {
    header.print();
    std::cout << "Shape file header: " << header.verdict() << '\n'
              << "Index file header: "
              << (index_header       ? index_header->verdict()
                  : why_none.empty() ? "none, there is no index"
                                     : "none, the index is not used")
              << '\n';
  }
  check_header(header, "shape", info);
  if (index_header) check_header(*index_header, "index", info);
  if (!why_none.empty()) info.add_error(why_none);
  check_length(shapes.path(), "the file", info);
  if (index_header) check_length(index_path, "the index", info);

  Json& document = info.document();
  const char* const type = name_of(shapes.type());
  document["type"] = type != nullptr ? Json(type) : Json(nullptr);
  document["type_number"] = static_cast<std::int32_t>(shapes.type());
  document["box"] = box_object(shapes.box());
  document["index"] = index_header.has_value();
  document["records"] = shapes.size();
  Json list = Json::array();
  const Totals totals = walk(shapes, info, list);
  document["null_records"] = totals.null_records;
  document["parts"] = totals.parts;
  document["points"] = totals.points;
  if (info.lists()) document["list"] = std::move(list);
  if (info.json()) return;
  std::cout << "Records: " << shapes.size();
  if (totals.null_records > 0) std::cout << " (" << totals.null_records << " null)";
  std::cout << "\nParts:   " << totals.parts << "\nPoints:  " << totals.points << '\n';
}

}  // namespace kzgis::tools
