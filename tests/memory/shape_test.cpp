// Shapefiles without memory.

#include "kzgis/shape.h"

#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "kzgis/byteutil.h"
#include "memory/failing.h"

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

INSTANTIATE_TEST_SUITE_P(ShapeFiles, FailingMemory, testing::ValuesIn(files()), name_of);
INSTANTIATE_TEST_SUITE_P(ShapeReaders, FailingMemory, testing::ValuesIn(readers()), name_of);

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

}  // namespace
