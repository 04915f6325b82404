// Shapefiles without memory.

#include "kzgis/shape.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kzgis/byteutil.h"
#include "kzgis/shapefile.h"
#include "memory/failing.h"
#include "support/temporary_directory.h"

namespace {

using Shape = KZ_GIS_ESRI_Shape_c;

constexpr const char* kLakes = KZGIS_TEST_DATA_DIR "/ne/ne_110m_lakes";
constexpr const char* kCoasts = KZGIS_TEST_DATA_DIR "/ne/ne_110m_coastline";
constexpr const char* kPlaces = KZGIS_TEST_DATA_DIR "/ne/ne_110m_places";
constexpr const char* kManyPlaces = KZGIS_TEST_DATA_DIR "/ne/ne_50m_places_by_country";

/// What a reader fills, as callers have it at first.
struct Record {
  Record() = default;
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;
  ~Record() {
    std::free(starts);
    std::free(x);
    std::free(y);
  }
  kz_long number = 0, parts = 0, part_room = 0, points = 0, room = 0;
  kz_long* starts = nullptr;
  double box[4] = {};
  double* x = nullptr;
  double* y = nullptr;
};

/// Both files are open, or neither is.
long open_files(const Shape& shape) {
  const int open = shape.ShapeFileIsOpen() + shape.IndexFileIsOpen();
  return open == 1 ? -1 : open;
}

long read_polygon(Shape& shape) {
  Record r;
  const kz_ulong found = shape.SeekToDataRecord(3);
  if (found != 1) return long{found};
  return long{shape.ReadPolygonShape(&r.number, &r.box[0], &r.box[1], &r.box[2], &r.box[3],
                                     &r.parts, &r.part_room, &r.starts, &r.points, &r.room, &r.x,
                                     &r.y)};
}

std::vector<Operation> files() {
  static const Shape lakes(kLakes);
  return {
      {"Shape", 6, {0}, [] { return open_files(Shape(kLakes)); }},
      {"Copy",
       6,
       {0},
       [] {
         const Shape copy(lakes);
         return open_files(copy);
       }},
      {"Assign",
       6,
       {0},
       [] {
         Shape copy(nullptr);
         copy = lakes;
         return open_files(copy);
       }},
      {"FileName",
       6,
       {0},
       [] {
         Shape shape(nullptr);
         const bool named = shape.FileName(kLakes) != nullptr;
         return named == (open_files(shape) == 2) ? long{named} : -1;
       }},
      {"ShapeFileName",
       2,
       {0},
       [] {
         Shape shape(nullptr);
         const bool named = shape.ShapeFileName((KZGIS_TEST_DATA_DIR "/ne/ne_110m_lakes.shp"));
         return named == (shape.ShapeFileIsOpen() == 1) ? long{named} : -1;
       }},
      {"IndexFileName",
       2,
       {0},
       [] {
         Shape shape(nullptr);
         const bool named = shape.IndexFileName((KZGIS_TEST_DATA_DIR "/ne/ne_110m_lakes.shx"));
         return named == (shape.IndexFileIsOpen() == 1) ? long{named} : -1;
       }},
      {"ShapeFileName_Null",
       0,
       {},
       [] {
         Shape shape(nullptr);
         shape.FileName(nullptr);
         shape.IndexFileName(nullptr);
         return long{shape.ShapeFileName(nullptr) == nullptr};
       }},
  };
}

std::vector<Operation> readers() {
  static Shape lakes(kLakes);
  static Shape coasts(kCoasts);
  static Shape places(kPlaces);
  static Shape many_places(kManyPlaces);
  return {
      {"ReadPolygonShape", 3, {14}, [] { return read_polygon(lakes); }},
      {"ReadArcShape",
       3,
       {14},
       [] {
         Record r;
         coasts.SeekToFirstDataRecord();
         return long{coasts.ReadArcShape(&r.number, &r.box[0], &r.box[1], &r.box[2], &r.box[3],
                                         &r.parts, &r.part_room, &r.starts, &r.points, &r.room,
                                         &r.x, &r.y)};
       }},
      {"ReadMultiPointShape",
       2,
       {14},
       [] {
         Record r;
         many_places.SeekToFirstDataRecord();
         return long{many_places.ReadMultiPointShape(&r.number, &r.box[0], &r.box[1], &r.box[2],
                                                     &r.box[3], &r.points, &r.room, &r.x, &r.y)};
       }},
      {"ReadPointShape",
       0,
       {},
       [] {
         kz_long number = 0;
         double x = 0.0;
         double y = 0.0;
         places.SeekToFirstDataRecord();
         return long{places.ReadPointShape(&number, &x, &y) + places.ReadNullShape()};
       }},
      {"GetShapeInfo",
       0,
       {},
       [] {
         Record r;
         lakes.SeekToDataRecord(3);
         kz_ulong sum = lakes.GetPolygonShapeInfo(&r.number, &r.parts, &r.points);
         coasts.SeekToDataRecord(3);
         sum += coasts.GetArcShapeInfo(&r.number, &r.parts, &r.points);
         many_places.SeekToDataRecord(3);
         return long{sum + many_places.GetMultiPointShapeInfo(&r.number, &r.points)};
       }},
      {"Counts",
       0,
       {},
       [] {
         kz_ulong records = 0;
         kz_ulong parts = 0;
         kz_ulong points = 0;
         lakes.NumberOfDataRecords(&records);
         lakes.NumberOfParts(&parts);
         lakes.NumberOfPoints(&points);
         return long{records + parts + points};
       }},
      {"Header",
       0,
       {},
       [] {
         static std::ifstream stream(KZGIS_TEST_DATA_DIR "/ne/ne_110m_lakes.shp");
         stream.seekg(0);
         KZ_GIS_ESRI_ShapeHeader_c header;
         header.FileStream(stream);
         header.FileName("lakes");
         return long{header.ReadHeader() + header.ValidateFileHeader() +
                     header.PrintFileHeader(nowhere())};
       }},
      {"ByteUtil",
       0,
       {},
       [] {
         char bytes[8] = {};
         const GIS_ByteUtil_c util;
         return long{util.SwapBytes2(8, bytes) == bytes && util.SwapBytes4(8, bytes) == bytes &&
                     util.SwapBytes8(8, bytes) == bytes};
       }},
  };
}

using kzgis::ErrorKind;
using kzgis::Shapefile;

long kind_of(const kzgis::Error& error) { return static_cast<long>(error.kind); }

/// How opening went: 100 and the number of records, or the kind of the error.
long open_modern(const std::string& path) {
  const auto file = Shapefile::open(path);
  return file ? 100 + static_cast<long>(file->size()) : kind_of(file.error());
}

long read_modern(Shapefile& file, std::uint32_t index) {
  const auto record = file.read(index);
  return record ? 100 + static_cast<long>(record->x.size()) : kind_of(record.error());
}

/// A layer without an index.
class Unindexed {
 public:
  Unindexed() { std::filesystem::copy_file(std::string(kLakes) + ".shp", path() + ".shp"); }
  std::string path() const { return directory_.path() / "a layer that has no index beside it"; }

 private:
  TemporaryDirectory directory_;
};

std::vector<Operation> modern() {
  static const std::string lakes(kLakes);
  static const std::string missing("/nowhere/a file that is not there");
  static const Unindexed unindexed;
  static const std::string alone = unindexed.path();
  static std::unique_ptr<Shapefile> fresh;  // a file that has no room for records yet
  static Shapefile file = Shapefile::open(kLakes).value();
  const long no_memory = static_cast<long>(ErrorKind::out_of_memory);
  return {
      {"Shapefile_open", 10, {no_memory}, [] { return open_modern(lakes); }},
      {"Shapefile_open_Unindexed", 10, {no_memory}, [] { return open_modern(alone); }},
      {"Shapefile_open_Missing", 5, {no_memory}, [] { return open_modern(missing); }},
      {"Shapefile_read",
       3,
       {no_memory},
       [] {
         const auto read = std::move(fresh);
         return read_modern(*read, 3);
       },
       [] { fresh = std::make_unique<Shapefile>(Shapefile::open(kLakes).value()); }},
      {"Shapefile_read_NoSuch", 1, {no_memory}, [] { return read_modern(file, 1000000000); }},
      {"Shapefile_walk",
       0,
       {},
       [] {
         long points = 0;
         for (const auto& record : file) points += static_cast<long>(record->x.size());
         return points + static_cast<long>(file.size()) + static_cast<long>(file.type());
       },
       // Once with memory: then there is room for every record.
       [] {
         for (const auto& record : file) ASSERT_TRUE(record);
       }},
  };
}

INSTANTIATE_TEST_SUITE_P(ShapeFiles, FailingMemory, testing::ValuesIn(files()), name_of);
INSTANTIATE_TEST_SUITE_P(ShapeReaders, FailingMemory, testing::ValuesIn(readers()), name_of);
INSTANTIATE_TEST_SUITE_P(Shapefiles, FailingMemory, testing::ValuesIn(modern()), name_of);

TEST(ShapeWithoutMemory, OpensAndReadsAgain) {
  expect_usable_again<Shape>(
      [](Shape& shape) {
        shape.FileName(kLakes);
        read_polygon(shape);
      },
      [](Shape& shape) {
        ASSERT_NE(shape.FileName(kLakes), nullptr);
        ASSERT_EQ(read_polygon(shape), 1);
      },
      nullptr);
}

TEST(ShapefileWithoutMemory, ReadsAgain) {
  struct Layer {
    Shapefile file = Shapefile::open(kLakes).value();
  };
  expect_usable_again<Layer>([](Layer& layer) { (void)read_modern(layer.file, 3); },
                             [](Layer& layer) { ASSERT_EQ(read_modern(layer.file, 3), 100 + 17); });
}

TEST(ShapefileWithoutMemory, NamesTheRecord) {
  Shapefile file = Shapefile::open(kLakes).value();
  failing_memory::fail_from(0, false);
  const auto record = file.read(3);
  failing_memory::succeed();
  ASSERT_FALSE(record);
  EXPECT_EQ(record.error().message, "record 4: out of memory");
}

}  // namespace
