// Fuzzes both shapefile readers with a pair of files: every record operation in file order, then
// by the index as clients that ask for sizes first do, then a random run of operations; records
// as spans with the index and without, in their order and at random.
//
// Input: 2 bytes, little-endian, length of the ".shp" (of what follows, modulo its size
// plus one); the ".shp"; the rest is the ".shx", whose bytes also choose the operations.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/harness.h"
#include "fuzz/scratch.h"
#include "kzgis/shape.h"
#include "kzgis/shapefile.h"

namespace {

/// What the readers hand out, with the promises about it that hold for any file.
struct Record {
  kz_long number = 0, num_parts = 0, parts_capacity = 0, num_points = 0, points_capacity = 0;
  kz_long* parts = nullptr;
  double* x = nullptr;
  double* y = nullptr;
  double x_min = 0, y_min = 0, x_max = 0, y_max = 0;

  Record() = default;
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;
  ~Record() {
    std::free(parts);
    std::free(x);
    std::free(y);
  }

  /// Gives `status` back when it and the arrays are as promised.
  kz_ulong checked(kz_ulong status, bool has_parts, std::size_t file_size) const {
    require(status == 1 || status == 2 || status == 4 || status == 10 || status == 11 ||
            status == 13);
    // Arrays never outgrow the file.
    require(parts_capacity >= 0 && static_cast<std::size_t>(parts_capacity) <= file_size / 4);
    require(points_capacity >= 0 &&
            static_cast<std::size_t>(points_capacity) <= file_size / 16 + 1);
    if (status != 1) return status;
    // All that was claimed is there: have the sanitizer see each element.
    std::uint64_t sum = 0;
    for (kz_long i = 0; has_parts && i < num_parts; ++i) sum += static_cast<kz_ulong>(parts[i]);
    for (kz_long i = 0; i < num_points; ++i) sum += x[i] < y[i] ? 1 : 0;
    [[maybe_unused]] volatile const std::uint64_t sink = sum;
    return status;
  }
};

constexpr unsigned kOperations = 16;
constexpr unsigned kReaders = 7;        // the first of them read a record each
constexpr unsigned kInfosAfter = 4;     // how far behind a reader its Get...Info stands
constexpr unsigned kReadersOfMany = 3;  // the readers that have one

/// Runs one of the operations; `argument` serves those that need a number.
/// @return its status; 1 for operations that have none
kz_ulong run(KZ_GIS_ESRI_Shape_c& shape, Record& r, unsigned operation, kz_long argument,
             const std::string& base, std::size_t file_size) {
  kz_ulong total = 0;
  double x = 0;
  double y = 0;
  switch (operation % kOperations) {
    case 0:
      return r.checked(shape.ReadArcShape(&r.number, &r.x_min, &r.y_min, &r.x_max, &r.y_max,
                                          &r.num_parts, &r.parts_capacity, &r.parts, &r.num_points,
                                          &r.points_capacity, &r.x, &r.y),
                       true, file_size);
    case 1:
      return r.checked(shape.ReadPolygonShape(&r.number, &r.x_min, &r.y_min, &r.x_max, &r.y_max,
                                              &r.num_parts, &r.parts_capacity, &r.parts,
                                              &r.num_points, &r.points_capacity, &r.x, &r.y),
                       true, file_size);
    case 2:
      return r.checked(shape.ReadMultiPointShape(&r.number, &r.x_min, &r.y_min, &r.x_max, &r.y_max,
                                                 &r.num_points, &r.points_capacity, &r.x, &r.y),
                       false, file_size);
    case 3:
      return shape.ReadPointShape(&r.number, &x, &y);
    case 4:
      return shape.GetArcShapeInfo(&r.number, &r.num_parts, &r.num_points);
    case 5:
      return shape.GetPolygonShapeInfo(&r.number, &r.num_parts, &r.num_points);
    case 6:
      return shape.GetMultiPointShapeInfo(&r.number, &r.num_points);
    case 7:
      return shape.ReadNullShape();
    case 8:
      return shape.NumberOfDataRecords(&total);
    case 9:
      return shape.SeekToDataRecord(argument);
    case 10:
      return shape.SeekToFirstDataRecord();
    case 11:
      return shape.NumberOfParts(&total);
    case 12:
      return shape.NumberOfPoints(&total);
    case 13:
      shape.FileName((base + ".dbf").c_str());
      return 1;
    case 14:
      shape.ShapeFileName((base + (argument % 2 == 0 ? ".shp" : ".shx")).c_str());
      return 1;
    default:
      shape.IndexFileName((base + (argument % 2 == 0 ? ".shx" : ".shp")).c_str());
      return 1;
  }
}

/// Asks for the size of each record, goes back and reads it.
void read_by_index(const std::string& base, std::size_t shp_size, std::size_t shx_size) {
  for (unsigned reader = 0; reader < kReadersOfMany; ++reader) {
    KZ_GIS_ESRI_Shape_c shape(base.c_str());
    if (shape.ShapeFileIsOpen() == 0) return;
    shape.IndexHeader().ValidateFileHeader();
    Record record;
    for (std::size_t i = 1; i <= shx_size / 8 + 1; ++i) {
      const auto number = static_cast<kz_long>(i);
      if (shape.SeekToDataRecord(number) != 1) break;
      run(shape, record, reader + kInfosAfter, 0, base, shp_size);
      if (shape.SeekToDataRecord(number) != 1) break;
      run(shape, record, reader, 0, base, shp_size);
    }
  }
}

/// The sum of all bytes of some numbers, NaN told from NaN; has the sanitizer see each.
template <class T>
std::uint64_t sum_of(std::span<const T> numbers) {
  std::uint64_t sum = numbers.size();
  for (const T& number : numbers) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof number);
    sum = sum * 31 + bits;
  }
  return sum;
}

/// What stands for a record or its error, once the promises about it were seen to hold.
std::uint64_t checked(const kzgis::Result<kzgis::ShapeRecord>& record, std::size_t file_size) {
  if (!record) {
    require(record.error().kind == kzgis::ErrorKind::bad_data);
    require(record.error().message.starts_with("record "));
    return sum_of(std::span(record.error().message.data(), record.error().message.size()));
  }
  const std::size_t points = record->x.size();
  require(record->y.size() == points);
  require(record->z.empty() || record->z.size() == points);
  require(record->m.empty() || record->m.size() == points);
  require(record->parts.size_bytes() + 16 * points + record->z.size_bytes() +
              record->m.size_bytes() <=
          file_size);
  std::int64_t before = 0;
  for (const std::int32_t start : record->parts) {
    require(before <= start && static_cast<std::size_t>(start) <= points);
    before = start;
  }
  return record->number + sum_of(record->parts) + 3 * sum_of(record->x) + 5 * sum_of(record->y) +
         7 * sum_of(record->z) + 11 * sum_of(record->m);
}

/// Reads every record in its order, then some at random between those: each is the same.
void read_records(const std::string& path, std::size_t most_records, std::size_t shp_size,
                  const std::uint8_t* script, std::size_t script_size) {
  auto file = kzgis::Shapefile::open(path);
  if (!file) {
    require(file.error().kind == kzgis::ErrorKind::bad_data);
    return;
  }
  require(file->size() <= most_records);
  std::vector<std::uint64_t> records;
  for (const auto& record : *file) records.push_back(checked(record, shp_size));
  require(records.size() == file->size());
  if (records.empty()) return;
  std::size_t index = 0;
  for (std::size_t i = 0; i < script_size && i < 256; ++i) {
    index = (index * 256 + script[i]) % records.size();
    const auto record = file->read(static_cast<std::uint32_t>(index));
    require(checked(record, shp_size) == records[index]);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ScratchDirectory scratch;
  if (size < 2) return 0;
  const std::size_t rest = size - 2;
  const std::size_t shp_size = (data[0] | static_cast<std::size_t>(data[1]) << 8) % (rest + 1);
  const std::uint8_t* const shx = data + 2 + shp_size;
  const std::size_t shx_size = rest - shp_size;
  scratch.write("layer.shp", data + 2, shp_size);
  scratch.write("layer.shx", shx, shx_size);
  const std::string base = scratch.path() + "/layer";
  const std::size_t largest_file = std::max(shp_size, shx_size);

  // In file order, one reader at a time, as clients do.  A skip may lead backwards, so
  // that the number of records is bounded here.
  for (unsigned reader = 0; reader < kReaders; ++reader) {
    KZ_GIS_ESRI_Shape_c shape(base.c_str());
    if (shape.ShapeFileIsOpen() == 0) break;
    Record record;
    kz_ulong status = 1;
    for (std::size_t i = 0; i <= shp_size / 8 && (status == 1 || status == 2); ++i) {
      status = run(shape, record, reader, 0, base, shp_size);
    }
  }

  read_by_index(base, shp_size, shx_size);

  scratch.write("alone.shp", data + 2, shp_size);
  read_records(base, std::max(shp_size, shx_size) / 8, shp_size, shx, shx_size);
  read_records(scratch.path() + "/alone", shp_size / 8, shp_size, shx, shx_size);

  // At random: the ".shx", from its end backwards, is the script.
  KZ_GIS_ESRI_Shape_c shape(base.c_str());
  std::ostringstream report;
  shape.ShapeHeader().PrintFileHeader(report);
  shape.ShapeHeader().ValidateFileHeader();
  Record record;
  for (std::size_t i = shx_size; i-- > 0 && shx_size - i < 64;) {
    run(shape, record, shx[i], shx[i] / static_cast<kz_long>(kOperations) - 1, base, largest_file);
  }
  const KZ_GIS_ESRI_Shape_c copy(shape);
  return 0;
}
