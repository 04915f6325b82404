// The readers, one record at a time: outputs, arrays, statuses, and where the shape
// stream stands afterwards.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#if defined(__linux__)
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>
#endif

#include <csignal>
#include <cstdlib>
#include <string>

#include "kzgis/shape.h"
#include "shape/shape_record.h"
#include "shape/shapefile_writer.h"

namespace {

using testing::ElementsAre;

const Box kBox{1.5, 2.5, 3.5, 4.5};

/// Two numbers as the file's little-endian fields hold them, chosen so that a reader
/// standing there takes them for a record header: number 77, content of 20 bytes.
constexpr std::int32_t kPartsThatReadAsNumber77 = 77 << 24;
constexpr std::int32_t kPartsThatReadAsTwentyBytes = 10 << 24;

void expect_untouched(const ShapeRecord& record) {
  EXPECT_EQ(record.x_min, -7);
  EXPECT_EQ(record.y_max, -7);
  EXPECT_EQ(record.num_parts, -7);
  EXPECT_EQ(record.num_points, -7);
  EXPECT_EQ(record.parts, nullptr);
  EXPECT_EQ(record.x, nullptr);
  EXPECT_EQ(record.y, nullptr);
}

void expect_box(const ShapeRecord& record) {
  EXPECT_EQ(record.x_min, 1.5);
  EXPECT_EQ(record.y_min, 2.5);
  EXPECT_EQ(record.x_max, 3.5);
  EXPECT_EQ(record.y_max, 4.5);
}

// --- Null shapes -----------------------------------------------------------------------

using ReadNullShapeTest = ShapefileTest;

TEST_F(ReadNullShapeTest, MovesNothing) {
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(0).add(null_content())).c_str());
  EXPECT_EQ(shape.ReadNullShape(), 1u);
  EXPECT_EQ(shape.ReadNullShape(), 1u);
  EXPECT_EQ(bytes_at_stream(shape), 1);  // the number of record 1
}

// --- Points ----------------------------------------------------------------------------

using ReadPointShapeTest = ShapefileTest;

TEST_F(ReadPointShapeTest, ReadsRecordAfterRecord) {
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(1).add(point_content(1.5, -2.5)).add(point_content(3.25, 4))).c_str());
  kz_long number = -7;
  double x = -7;
  double y = -7;
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 1u);
  EXPECT_EQ(number, 1);
  EXPECT_EQ(x, 1.5);
  EXPECT_EQ(y, -2.5);
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 1u);
  EXPECT_EQ(number, 2);
  EXPECT_EQ(x, 3.25);
  EXPECT_EQ(y, 4);
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 11u);
  EXPECT_EQ(number, 2);
  EXPECT_EQ(x, 3.25);
}

TEST_F(ReadPointShapeTest, AContentOf64BytesIsReadWhole) {
  const std::string content = point_content(1.5, 2.5) + std::string(44, 'z');
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(1).add(content).add(point_content(3, 4))).c_str());
  kz_long number;
  double x = -7;
  double y = -7;
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 1u);
  EXPECT_EQ(x, 1.5);
  EXPECT_EQ(y, 2.5);
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 1u);
  EXPECT_EQ(number, 2);
  EXPECT_EQ(x, 3);
}

TEST_F(ReadPointShapeTest, AnyOtherLengthGives2AtTheContent) {
  for (const std::int32_t words : {14, 0, 2, 9, 11, 31, 33, -10, 0x40000000}) {
    SCOPED_TRACE(words);
    const std::string content = Bytes().big(4711).zeros(60).text();
    KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(1).add(content, words, words)).c_str());
    kz_long number = -7;
    double x = -7;
    double y = -7;
    EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 2u);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(x, -7);
    EXPECT_EQ(y, -7);
    EXPECT_EQ(bytes_at_stream(shape), 4711);
  }
}

TEST_F(ReadPointShapeTest, DoesNotLookAtTheTypeInTheRecord) {
  const std::string content = Bytes().little(99).little(1.5).little(2.5).text();
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(1).add(content)).c_str());
  kz_long number;
  double x = -7;
  double y = -7;
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 1u);
  EXPECT_EQ(x, 1.5);
}

TEST_F(ReadPointShapeTest, HandsOutTheNumberAsItIsWritten) {
  const std::string record = Bytes().big(-3).big(10).add(point_content(1, 2)).text();
  KZ_GIS_ESRI_Shape_c shape(write(header_bytes(1, 64) + record, header_bytes(1, 50)).c_str());
  EXPECT_EQ(bytes_at_stream(shape), -3);
}

TEST_F(ReadPointShapeTest, NeedsNoIndex) {
  const std::string base = write(ShapefileWriter(1).add(point_content(1.5, 2.5)));
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  shape.ShapeFileName((base + ".shp").c_str());
  kz_long number;
  double x = -7;
  double y;
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 1u);
  EXPECT_EQ(x, 1.5);
}

// --- Arcs and polygons, which are read by the same steps ----------------------------------

struct PartsReader {
  const char* name;
  kz_ulong (ShapeRecord::*read)(KZ_GIS_ESRI_Shape_c&);
  kz_ulong (KZ_GIS_ESRI_Shape_c::*info)(kz_long*, kz_long*, kz_long*);
};

class PartsReaderTest : public ShapefileTest, public testing::WithParamInterface<PartsReader> {
 protected:
  static kz_ulong read(KZ_GIS_ESRI_Shape_c& shape, ShapeRecord& record) {
    return (record.*GetParam().read)(shape);
  }
  static kz_ulong info(KZ_GIS_ESRI_Shape_c& shape, ShapeRecord& record) {
    return (shape.*GetParam().info)(&record.number, &record.num_parts, &record.num_points);
  }
};

INSTANTIATE_TEST_SUITE_P(Both, PartsReaderTest,
                         testing::Values(PartsReader{"Arc", &ShapeRecord::read_arc,
                                                     &KZ_GIS_ESRI_Shape_c::GetArcShapeInfo},
                                         PartsReader{"Polygon", &ShapeRecord::read_polygon,
                                                     &KZ_GIS_ESRI_Shape_c::GetPolygonShapeInfo}),
                         [](const auto& reader) { return std::string(reader.param.name); });

TEST_P(PartsReaderTest, ReadsBoxPartsAndPoints) {
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(3)
                .add(arc_content({0, 2, 3}, {{1, 2}, {3, 4}, {5, 6}, {7, 8.125}}, 3, kBox))
                .add(arc_content({0}, {{9, 10}}, 3, kBox)))
          .c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.number, 1);
  expect_box(record);
  EXPECT_EQ(record.num_parts, 3);
  EXPECT_EQ(record.parts_capacity, 3);
  EXPECT_THAT(record.part_list(), ElementsAre(0, 2, 3));
  EXPECT_EQ(record.num_points, 4);
  EXPECT_EQ(record.points_capacity, 4);
  EXPECT_THAT(record.points(4),
              ElementsAre(Point(1, 2), Point(3, 4), Point(5, 6), Point(7, 8.125)));

  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.number, 2);
  EXPECT_THAT(record.part_list(), ElementsAre(0));
  EXPECT_THAT(record.points(1), ElementsAre(Point(9, 10)));
  EXPECT_EQ(read(shape, record), 11u);
}

TEST_P(PartsReaderTest, ReadsRecordsOfManyBlocks) {
  for (const int count : {255, 256, 257, 511, 512, 513, 3000}) {
    SCOPED_TRACE(count);
    KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3)
                                        .add(arc_content({0}, some_points(count, 1)))
                                        .add(arc_content({0}, some_points(1, 2))))
                                  .c_str());
    ShapeRecord record;
    EXPECT_EQ(read(shape, record), 1u);
    EXPECT_EQ(record.points(count), some_points(count, 1));
    EXPECT_EQ(read(shape, record), 1u);
    EXPECT_EQ(record.points(1), some_points(1, 2));
  }
}

TEST_P(PartsReaderTest, AFittingArrayIsKeptAndNeverShrinks) {
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3)
                                      .add(arc_content({0, 3}, some_points(10, 1)))
                                      .add(arc_content({0}, some_points(4, 2)))
                                      .add(arc_content({0, 1}, some_points(10, 3)))
                                      .add(arc_content({0, 1, 2}, some_points(11, 4))))
                                .c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 1u);
  const kz_long* const parts = record.parts;
  const double* const x = record.x;
  const double* const y = record.y;
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(read(shape, record), 1u);
    EXPECT_EQ(record.parts_capacity, 2);
    EXPECT_EQ(record.points_capacity, 10);
    EXPECT_EQ(record.parts, parts);
    EXPECT_EQ(record.x, x);
    EXPECT_EQ(record.y, y);
  }
  EXPECT_EQ(record.points(10), some_points(10, 3));
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.parts_capacity, 3);
  EXPECT_EQ(record.points_capacity, 11);
  EXPECT_EQ(record.points(11), some_points(11, 4));
}

TEST_P(PartsReaderTest, GrowsAnArrayThatTheCallerAllocated) {
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(3).add(arc_content({0, 3}, some_points(10)))).c_str());
  ShapeRecord record;
  record.parts_capacity = 1;
  record.parts = static_cast<kz_long*>(std::malloc(sizeof(kz_long)));
  record.points_capacity = 20;
  record.x = static_cast<double*>(std::malloc(20 * sizeof(double)));
  record.y = static_cast<double*>(std::malloc(20 * sizeof(double)));
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.parts_capacity, 2);
  EXPECT_EQ(record.points_capacity, 20);
  EXPECT_EQ(record.points(10), some_points(10));
}

TEST_P(PartsReaderTest, DoesNotLookAtTheTypeInTheRecord) {
  for (const std::int32_t type : {3, 5, 0, 8, 99, -1}) {
    KZ_GIS_ESRI_Shape_c shape(
        write(ShapefileWriter(5).add(arc_content({0}, some_points(3), type))).c_str());
    ShapeRecord record;
    EXPECT_EQ(read(shape, record), 1u) << type;
    EXPECT_EQ(record.num_points, 3);
  }
}

TEST_P(PartsReaderTest, DoesNotCompareTheContentLengthWithTheCounts) {
  // Both lengths claim far more than the record has; the next one follows its points.
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3)
                                      .add(arc_content({0}, some_points(3)), 5000, 5000)
                                      .add(arc_content({0}, some_points(2))))
                                .c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.number, 2);
  EXPECT_EQ(record.num_points, 2);
}

TEST_P(PartsReaderTest, ANegativeContentLengthCountsAsALongOne) {
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(3).add(arc_content({0}, some_points(3)), -1, -1)).c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.num_points, 3);
}

TEST_P(PartsReaderTest, NoPointsOrANegativeCountGiveOneBehindTheParts) {
  for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    SCOPED_TRACE(count);
    const std::string content =
        Bytes().add(arc_fixed_part(2, count)).little(5).little(6).big(4711).big(0).text();
    KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3).add(content)).c_str());
    ShapeRecord record;
    EXPECT_EQ(read(shape, record), 1u);
    EXPECT_EQ(record.num_points, count);
    EXPECT_THAT(record.part_list(), ElementsAre(5, 6));
    EXPECT_EQ(record.points_capacity, 0);
    EXPECT_EQ(record.x, nullptr);
    EXPECT_EQ(record.y, nullptr);
    EXPECT_EQ(bytes_at_stream(shape), 4711);
  }
}

TEST_P(PartsReaderTest, NoPartsAndNoPointsGiveOneAndAllocateNothing) {
  // Two bytes more than the fixed part tell the record from a null one.
  const std::string content = arc_fixed_part(0, 0, 3, kBox) + std::string(2, 'z');
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(5).add(content)).c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 1u);
  expect_box(record);
  EXPECT_EQ(record.num_parts, 0);
  EXPECT_EQ(record.num_points, 0);
  EXPECT_EQ(record.parts, nullptr);
  EXPECT_EQ(record.x, nullptr);
  EXPECT_EQ(record.y, nullptr);
}

TEST_P(PartsReaderTest, NoPartsAndNoPointsInExactly44BytesIsANullRecord) {
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(5).add(arc_fixed_part(0, 0)).add(arc_content({0}, some_points(3))))
          .c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 2u);
  EXPECT_EQ(record.number, 1);
  expect_untouched(record);
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.number, 2);
}

TEST_P(PartsReaderTest, PointsWithoutPartsAreRead) {
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3).add(arc_content({}, some_points(3)))).c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.num_parts, 0);
  EXPECT_EQ(record.parts, nullptr);
  EXPECT_EQ(record.points(3), some_points(3));
}

TEST_P(PartsReaderTest, InfoGivesTheCountsAndStopsAtTheParts) {
  const std::string content = arc_content(
      {kPartsThatReadAsNumber77, kPartsThatReadAsTwentyBytes, 4}, some_points(5), 3, kBox);
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3).add(content)).c_str());
  ShapeRecord record;
  EXPECT_EQ(info(shape, record), 1u);
  EXPECT_EQ(record.number, 1);
  EXPECT_EQ(record.num_parts, 3);
  EXPECT_EQ(record.num_points, 5);
  kz_long number;
  double x = -7;
  double y;
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 1u);
  EXPECT_EQ(number, 77);
  EXPECT_EQ(x, 0.125);  // the first point, behind the third part
}

TEST_P(PartsReaderTest, InfoHandsOutAnyCounts) {
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(3).add(arc_fixed_part(-5, 2000000000) + std::string(2, 'z'))).c_str());
  ShapeRecord record;
  EXPECT_EQ(info(shape, record), 1u);
  EXPECT_EQ(record.num_parts, -5);
  EXPECT_EQ(record.num_points, 2000000000);
}

// The null-record skip.

TEST_P(PartsReaderTest, SkipsANullRecordToTheNextOne) {
  const std::string base = write(ShapefileWriter(3)
                                     .add(arc_content({0}, some_points(2, 1)))
                                     .add(arc_content({0}, some_points(2, 2)))
                                     .add(null_content())
                                     .add(arc_content({0}, some_points(2, 4))));
  KZ_GIS_ESRI_Shape_c shape(base.c_str());
  ShapeRecord record;
  ASSERT_EQ(shape.SeekToDataRecord(3), 1u);
  EXPECT_EQ(read(shape, record), 2u);
  EXPECT_EQ(record.number, 3);
  expect_untouched(record);
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.number, 4);
  EXPECT_EQ(record.points(2), some_points(2, 4));

  ShapeRecord counts;
  ASSERT_EQ(shape.SeekToDataRecord(3), 1u);
  EXPECT_EQ(info(shape, counts), 2u);
  EXPECT_EQ(counts.number, 3);
  EXPECT_EQ(counts.num_parts, -7);
  EXPECT_EQ(info(shape, counts), 1u);
  EXPECT_EQ(counts.number, 4);
}

TEST_P(PartsReaderTest, ANullRecordThatIsTheLastGives11) {
  const std::string base =
      write(ShapefileWriter(3).add(arc_content({0}, some_points(2))).add(null_content()));
  KZ_GIS_ESRI_Shape_c shape(base.c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(read(shape, record), 11u);
  EXPECT_EQ(record.number, 2);
  KZ_GIS_ESRI_Shape_c again(base.c_str());
  again.SeekToDataRecord(2);
  EXPECT_EQ(info(again, record), 11u);
}

TEST_P(PartsReaderTest, TheLimitIs44BytesByRecordAndByIndex) {
  // Words in the record header, words in the index, whether it is read.
  const struct {
    std::int32_t header, index;
    kz_ulong status;
  } cases[] = {{23, 2, 1},  {22, 23, 1},   {22, 22, 2}, {0, 22, 2},
               {20, 21, 2}, {21, 5000, 1}, {22, -1, 2}};
  for (const auto& [header, index, expected] : cases) {
    SCOPED_TRACE(header);
    SCOPED_TRACE(index);
    KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3)
                                        .add(arc_content({0}, some_points(3)), header, index)
                                        .add(arc_content({0}, some_points(2))))
                                  .c_str());
    ShapeRecord record;
    EXPECT_EQ(read(shape, record), expected);
    EXPECT_EQ(record.number, 1);
    EXPECT_EQ(record.num_points, expected == 1 ? 3 : -7);
    EXPECT_EQ(read(shape, record), 1u);
    EXPECT_EQ(record.number, 2);
  }
}

TEST_P(PartsReaderTest, TheSkipFollowsTheNumberThatTheRecordGives) {
  // A null record that says it is record 2: the skip goes to record 3.
  ShapefileWriter writer(3);
  writer.add(arc_content({0}, some_points(1)))
      .add(null_content())
      .add(arc_content({0}, some_points(3)));
  std::string shp = writer.shp();
  shp.insert(100, Bytes().big(2).big(2).add(null_content()).text());
  std::string shx = header_bytes(3, 62) + Bytes().big(0).big(2).big(0).big(2).text() +
                    Bytes().big(static_cast<std::int32_t>(shp.size() - 104) / 2).big(48).text();
  KZ_GIS_ESRI_Shape_c shape(write(shp, shx).c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 2u);
  EXPECT_EQ(record.number, 2);
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.number, 3);
}

TEST_P(PartsReaderTest, ASkipThatCannotSeekGives10) {
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(3).add(null_content()).add_indexed(null_content(), 2, -9, 2)).c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 10u);
}

TEST_P(PartsReaderTest, ASkipWhoseIndexSeekFailsGives10) {
  const std::string record_bytes = Bytes().big(-5000).big(2).add(null_content()).text();
  KZ_GIS_ESRI_Shape_c shape(write(header_bytes(3, 56) + record_bytes, header_bytes(3, 50)).c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 10u);
  EXPECT_EQ(record.number, -5000);
}

TEST_P(PartsReaderTest, TheNumberBehindTheLargestWrapsToTheSmallest) {
  // In 32 bits, index place 2^31 - 1 is that of record -1, and its successor that of 0.
  const std::string record_bytes =
      Bytes().big(std::numeric_limits<std::int32_t>::max()).big(2).add(null_content()).text();
  KZ_GIS_ESRI_Shape_c shape(write(header_bytes(3, 56) + record_bytes, header_bytes(3, 50)).c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 2u);
  EXPECT_EQ(bytes_at_stream(shape), 9994);  // record 0: offset 0
}

TEST_P(PartsReaderTest, ASkipNeedsTheIndex) {
  const std::string base =
      write(ShapefileWriter(3).add(arc_content({0}, some_points(2))).add(null_content()));
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  shape.ShapeFileName((base + ".shp").c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(read(shape, record), 13u);
}

// Damaged records.

TEST_P(PartsReaderTest, ARecordCutOffGives11WithWhatWasDecoded) {
  const std::string content = arc_content({0, 2}, some_points(4, 1), 3, kBox);
  const std::string whole = ShapefileWriter(3).add(content).shp();
  const std::string shx = ShapefileWriter(3).add(content).shx();
  for (std::size_t length = 100; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    KZ_GIS_ESRI_Shape_c shape(write(whole.substr(0, length), shx).c_str());
    ShapeRecord record;
    EXPECT_EQ(read(shape, record), 11u);
    EXPECT_EQ(record.number, length < 108 ? -7 : 1);
    if (length < 152) {
      expect_untouched(record);
      continue;
    }
    expect_box(record);
    EXPECT_EQ(record.num_parts, 2);
    EXPECT_EQ(record.num_points, 4);
    if (length < 160) {
      // Parts that cannot all be there are not even allocated.
      EXPECT_EQ(record.parts, nullptr);
      EXPECT_EQ(record.parts_capacity, 0);
      EXPECT_EQ(record.points_capacity, 0);
      EXPECT_EQ(record.x, nullptr);
      continue;
    }
    EXPECT_THAT(record.part_list(), ElementsAre(0, 2));
    // Whole points, and one more where the end cuts through it.
    const std::size_t held = length - 160;
    EXPECT_EQ(record.points_capacity, static_cast<kz_long>((held + 15) / 16));
    for (std::size_t i = 0; i < 4; ++i) {
      const Point expected = some_points(4, 1)[i];
      if (held >= 16 * i + 8) {
        EXPECT_EQ(record.x[i], expected.first);
      }
      if (held >= 16 * i + 16) {
        EXPECT_EQ(record.y[i], expected.second);
      }
    }
  }
}

TEST_P(PartsReaderTest, ACutRecordInRoomyArraysKeepsTheOldValuesBehindTheCut) {
  const std::string whole = ShapefileWriter(3)
                                .add(arc_content({0}, some_points(4, 1)))
                                .add(arc_content({0, 2}, some_points(4, 2)))
                                .shp();
  const std::string shx = ShapefileWriter(3).add(null_content()).add(null_content()).shx();
  // 20 bytes are missing: a point, and half of another.
  KZ_GIS_ESRI_Shape_c shape(write(whole.substr(0, whole.size() - 20), shx).c_str());
  ShapeRecord record;
  record.parts_capacity = 2;
  record.parts = static_cast<kz_long*>(std::malloc(2 * sizeof(kz_long)));
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(read(shape, record), 11u);
  EXPECT_EQ(record.points_capacity, 4);
  const auto points = record.points(4);
  EXPECT_EQ(points[1], some_points(4, 2)[1]);
  EXPECT_EQ(points[2], Point(some_points(4, 2)[2].first, some_points(4, 1)[2].second));
  EXPECT_EQ(points[3], some_points(4, 1)[3]);
}

TEST_P(PartsReaderTest, AfterTheEndEverythingFailsUntilTheFileIsOpenedAgain) {
  const std::string base =
      write(ShapefileWriter(3).add(arc_fixed_part(1, 1000) + std::string(20, '\0')));
  KZ_GIS_ESRI_Shape_c shape(base.c_str());
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 11u);
  EXPECT_EQ(read(shape, record), 11u);  // end-of-file and fail flags stand
  EXPECT_EQ(shape.SeekToDataRecord(1), 10u);
  EXPECT_EQ(read(shape, record), 4u);  // the seek has taken the end-of-file flag away
  ASSERT_NE(shape.ShapeFileName((base + ".shp").c_str()), nullptr);
  EXPECT_EQ(info(shape, record), 1u);
  EXPECT_EQ(record.num_points, 1000);
}

TEST_P(PartsReaderTest, PartsBeyondTheFileGive11AndAllocateNothing) {
  for (const std::int32_t parts : {4, 1000000, 0x40000000, 0x7FFFFFFF, -1, -0x40000000,
                                   std::numeric_limits<std::int32_t>::min()}) {
    SCOPED_TRACE(parts);
    const std::string content = arc_fixed_part(parts, 2) + std::string(12, 'z');
    KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3).add(content)).c_str());
    ShapeRecord record;
    EXPECT_EQ(read(shape, record), 11u);
    EXPECT_EQ(record.num_parts, parts);
    EXPECT_EQ(record.num_points, 2);
    EXPECT_EQ(record.parts_capacity, 0);
    EXPECT_EQ(record.points_capacity, 0);
    EXPECT_EQ(record.parts, nullptr);
    EXPECT_EQ(record.x, nullptr);
    EXPECT_EQ(record.y, nullptr);
    EXPECT_EQ(read(shape, record), 11u);
    EXPECT_EQ(shape.SeekToFirstDataRecord(), 10u);
  }
}

TEST_P(PartsReaderTest, PartsBeyondTheFileInARoomyArrayGive11) {
  const std::string content = arc_fixed_part(4, 2) + std::string(12, '\1');
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3).add(content)).c_str());
  ShapeRecord record;
  record.parts_capacity = 10;
  record.parts = static_cast<kz_long*>(std::calloc(10, sizeof(kz_long)));
  EXPECT_EQ(read(shape, record), 11u);
  EXPECT_EQ(record.parts_capacity, 10);
  EXPECT_EQ(record.points_capacity, 0);
  EXPECT_EQ(record.x, nullptr);
}

TEST_P(PartsReaderTest, PointsBeyondTheFileGive11WithThoseThatWereThere) {
  for (const std::int32_t claim : {4, 257, 1000000, 0x10000000, 0x7FFFFFFF}) {
    for (const std::size_t cut : {0u, 1u, 8u, 15u}) {
      SCOPED_TRACE(claim);
      SCOPED_TRACE(cut);
      const std::string content = Bytes()
                                      .add(arc_fixed_part(1, claim))
                                      .little(0)
                                      .add(points_bytes(some_points(3)))
                                      .add(std::string(cut, 'z'))
                                      .text();
      KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3).add(content)).c_str());
      ShapeRecord record;
      EXPECT_EQ(read(shape, record), 11u);
      EXPECT_EQ(record.num_points, claim);
      EXPECT_EQ(record.points_capacity, cut == 0 ? 3 : 4);
      EXPECT_EQ(record.points(3), some_points(3));
      EXPECT_EQ(read(shape, record), 11u);
      EXPECT_EQ(shape.SeekToFirstDataRecord(), 10u);
    }
  }
}

TEST_P(PartsReaderTest, ANullArrayIsAllocatedWhateverItsCapacitySays) {
  // As an allocation that failed leaves them: y lost, the capacity as it was.
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3)
                                      .add(arc_content({0}, some_points(4, 1)))
                                      .add(arc_content({0}, some_points(3, 2))))
                                .c_str());
  ShapeRecord record;
  ASSERT_EQ(read(shape, record), 1u);
  std::free(record.y);
  record.y = nullptr;
  std::free(record.parts);
  record.parts = nullptr;
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.points(3), some_points(3, 2));
  EXPECT_THAT(record.part_list(), ElementsAre(0));
  EXPECT_EQ(record.points_capacity, 3);
  EXPECT_EQ(record.parts_capacity, 1);
}

#if defined(__linux__)
/// A terminal without a screen: what is written to it can be read from the file `name()`.
class Terminal {
 public:
  Terminal() : end_(posix_openpt(O_RDWR | O_NOCTTY)) {
    termios mode;
    if (end_ == -1 || grantpt(end_) != 0 || unlockpt(end_) != 0 || tcgetattr(end_, &mode) != 0) {
      return;
    }
    cfmakeraw(&mode);
    works_ = tcsetattr(end_, TCSANOW, &mode) == 0;
  }
  ~Terminal() {
    if (end_ != -1) close(end_);
    std::signal(SIGHUP, former_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  bool write(const std::string& bytes) const {
    return works_ && ::write(end_, bytes.data(), bytes.size()) == std::ssize(bytes);
  }
  const char* name() const { return ptsname(end_); }

 private:
  int end_;
  bool works_ = false;
  // A process that opens its first terminal is hung up when that goes.
  void (*former_)(int) = std::signal(SIGHUP, SIG_IGN);
};

// A terminal cannot be measured: a record in the stream's buffer is read as from a file, for
// a longer one nothing is allocated on the word of its counts.
TEST_P(PartsReaderTest, AStreamThatCannotSeekIsReadAsFarAsItIsBuffered) {
  const std::string shp = ShapefileWriter(3)
                              .add(arc_content({0}, some_points(4, 1)))
                              .add(arc_content({0}, some_points(2000, 2)))
                              .shp();
#ifdef _LIBCPP_VERSION
  GTEST_SKIP() << "libc++ waits until its whole buffer is full, or the file at its end";
#endif
  const Terminal terminal;
  if (!terminal.write(shp.substr(0, 1000))) GTEST_SKIP() << "no terminals";
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  ASSERT_NE(shape.ShapeFileName(terminal.name()), nullptr);
  ShapeRecord record;
  EXPECT_EQ(read(shape, record), 1u);
  EXPECT_EQ(record.points(4), some_points(4, 1));
  EXPECT_EQ(read(shape, record), 10u);
  EXPECT_EQ(record.num_points, 2000);
  EXPECT_EQ(record.points_capacity, 4);
}
#endif

// --- Multi-points ------------------------------------------------------------------------

using MultiPointTest = ShapefileTest;

TEST_F(MultiPointTest, ReadsBoxAndPoints) {
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(8)
                                      .add(multi_point_content({{1, 2}, {3, 4}}, kBox))
                                      .add(multi_point_content(some_points(300), kBox))
                                      .add(multi_point_content({{5, 6}}, kBox)))
                                .c_str());
  ShapeRecord record;
  EXPECT_EQ(record.read_multi_point(shape), 1u);
  EXPECT_EQ(record.number, 1);
  expect_box(record);
  EXPECT_EQ(record.num_points, 2);
  EXPECT_EQ(record.points_capacity, 2);
  EXPECT_THAT(record.points(2), ElementsAre(Point(1, 2), Point(3, 4)));
  EXPECT_EQ(record.read_multi_point(shape), 1u);
  EXPECT_EQ(record.points(300), some_points(300));
  EXPECT_EQ(record.read_multi_point(shape), 1u);
  EXPECT_EQ(record.number, 3);
  EXPECT_EQ(record.points_capacity, 300);
  EXPECT_THAT(record.points(1), ElementsAre(Point(5, 6)));
  EXPECT_EQ(record.read_multi_point(shape), 11u);
}

TEST_F(MultiPointTest, InfoGivesTheCountAndStopsAtThePoints) {
  const std::string points = Bytes().big(77).big(10).add(point_content(1.5, 2.5)).text();
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(8).add(multi_point_fixed_part(3) + points)).c_str());
  ShapeRecord record;
  EXPECT_EQ(shape.GetMultiPointShapeInfo(&record.number, &record.num_points), 1u);
  EXPECT_EQ(record.number, 1);
  EXPECT_EQ(record.num_points, 3);
  kz_long number;
  double x = -7;
  double y;
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 1u);
  EXPECT_EQ(number, 77);
  EXPECT_EQ(x, 1.5);
}

TEST_F(MultiPointTest, NoPointsOrANegativeCountGiveOneAndAllocateNothing) {
  for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    SCOPED_TRACE(count);
    const std::string content = Bytes().add(multi_point_fixed_part(count, kBox)).big(4711).text();
    KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(8).add(content)).c_str());
    ShapeRecord record;
    EXPECT_EQ(record.read_multi_point(shape), 1u);
    expect_box(record);
    EXPECT_EQ(record.num_points, count);
    EXPECT_EQ(record.x, nullptr);
    EXPECT_EQ(record.y, nullptr);
    kz_long number = -7;
    double x;
    double y;
    EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 11u);  // four bytes are left
  }
}

TEST_F(MultiPointTest, TheLimitIs40BytesByRecordAnd44ByIndex) {
  // Words in the record header, words in the index, whether it is read.
  const struct {
    std::int32_t header, index;
    kz_ulong status;
  } cases[] = {{21, 2, 1},  {22, 22, 1}, {20, 20, 2}, {20, 21, 2},
               {20, 22, 2}, {20, 23, 1}, {0, 22, 2},  {-1, 2, 1}};
  for (const auto& [header, index, expected] : cases) {
    SCOPED_TRACE(header);
    SCOPED_TRACE(index);
    const ShapefileWriter writer = ShapefileWriter(8)
                                       .add(multi_point_content(some_points(3)), header, index)
                                       .add(multi_point_content(some_points(2)));
    KZ_GIS_ESRI_Shape_c shape(write(writer).c_str());
    ShapeRecord record;
    EXPECT_EQ(record.read_multi_point(shape), expected);
    EXPECT_EQ(record.number, 1);
    EXPECT_EQ(record.num_points, expected == 1 ? 3 : -7);
    EXPECT_EQ(record.read_multi_point(shape), 1u);
    EXPECT_EQ(record.number, 2);

    ShapeRecord counts;
    ASSERT_EQ(shape.SeekToFirstDataRecord(), 1u);
    EXPECT_EQ(shape.GetMultiPointShapeInfo(&counts.number, &counts.num_points), expected);
    EXPECT_EQ(counts.num_points, expected == 1 ? 3 : -7);
  }
}

TEST_F(MultiPointTest, ANullRecordThatIsTheLastGives11) {
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(8).add(null_content())).c_str());
  ShapeRecord record;
  EXPECT_EQ(record.read_multi_point(shape), 11u);
  EXPECT_EQ(record.number, 1);
  expect_untouched(record);
}

TEST_F(MultiPointTest, ARecordCutOffGives11WithWhatWasDecoded) {
  const std::string content = multi_point_content(some_points(3, 1), kBox);
  const std::string whole = ShapefileWriter(8).add(content).shp();
  const std::string shx = ShapefileWriter(8).add(content).shx();
  for (std::size_t length = 100; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    KZ_GIS_ESRI_Shape_c shape(write(whole.substr(0, length), shx).c_str());
    ShapeRecord record;
    EXPECT_EQ(record.read_multi_point(shape), 11u);
    EXPECT_EQ(record.number, length < 108 ? -7 : 1);
    if (length < 148) {
      expect_untouched(record);
      continue;
    }
    expect_box(record);
    EXPECT_EQ(record.num_points, 3);
    const auto held = static_cast<kz_long>(length - 148);
    EXPECT_EQ(record.points_capacity, (held + 15) / 16);
    for (kz_long i = 0; i < held / 16; ++i) {
      EXPECT_EQ(Point(record.x[i], record.y[i]), some_points(3, 1)[static_cast<std::size_t>(i)]);
    }
  }
}

TEST_F(MultiPointTest, PointsBeyondTheFileGive11WithThoseThatWereThere) {
  const std::string content = multi_point_fixed_part(0x7FFFFFFF) + points_bytes(some_points(600));
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(8).add(content)).c_str());
  ShapeRecord record;
  EXPECT_EQ(record.read_multi_point(shape), 11u);
  EXPECT_EQ(record.num_points, 0x7FFFFFFF);
  EXPECT_EQ(record.points_capacity, 600);
  EXPECT_EQ(record.points(600), some_points(600));
}

}  // namespace
