// Counts over the whole file, which leave the shape stream where it was.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "kzgis/shape.h"
#include "shape/shape_record.h"
#include "shape/shapefile_writer.h"
#include "support/time_limit.h"

namespace {

class ShapeCountsTest : public ShapefileTest {
 protected:
  struct Count {
    kz_ulong status;
    kz_ulong count;
    bool operator==(const Count&) const = default;
    friend void PrintTo(const Count& c, std::ostream* os) {
      *os << "status " << c.status << ", count " << c.count;
    }
  };
  static Count parts(KZ_GIS_ESRI_Shape_c& shape) {
    kz_ulong count = 77;
    const kz_ulong status = shape.NumberOfParts(&count);
    return {status, count};
  }
  static Count points(KZ_GIS_ESRI_Shape_c& shape) {
    kz_ulong count = 77;
    const kz_ulong status = shape.NumberOfPoints(&count);
    return {status, count};
  }
};

TEST_F(ShapeCountsTest, AddUpTheRecordsOfArcsAndPolygons) {
  for (const std::int32_t type : {3, 5}) {
    KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(type)
                                        .add(arc_content({0, 2}, some_points(5)))
                                        .add(null_content())
                                        .add(arc_content({0}, some_points(300)))
                                        .add(arc_fixed_part(7, 7)))  // 44 bytes: not counted
                                  .c_str());
    EXPECT_EQ(parts(shape), (Count{1, 3}));
    EXPECT_EQ(points(shape), (Count{1, 305}));
  }
}

TEST_F(ShapeCountsTest, AMultiPointFileHasOnePartPerRecord) {
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(8)
                                      .add(multi_point_content(some_points(3)))
                                      .add(null_content())
                                      .add(multi_point_content(some_points(5)))
                                      .add(multi_point_fixed_part(9)))  // 40 bytes: not counted
                                .c_str());
  EXPECT_EQ(parts(shape), (Count{1, 4}));
  EXPECT_EQ(points(shape), (Count{1, 8}));
}

TEST_F(ShapeCountsTest, TheLimitOfAMultiPointIs40Bytes) {
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(8).add(multi_point_fixed_part(9) + std::string(2, 'z'))).c_str());
  EXPECT_EQ(points(shape), (Count{1, 9}));
}

TEST_F(ShapeCountsTest, EachPointOrNullRecordCountsOnceInBoth) {
  for (const std::int32_t type : {0, 1}) {
    KZ_GIS_ESRI_Shape_c shape(
        write(ShapefileWriter(type).add(point_content(1, 2)).add(null_content())).c_str());
    EXPECT_EQ(parts(shape), (Count{1, 2}));
    EXPECT_EQ(points(shape), (Count{1, 2}));
  }
}

TEST_F(ShapeCountsTest, AnyOtherTypeGives2AndCountsNothing) {
  for (const std::int32_t type :
       {2, 4, 6, 7, 9, 15, -1, std::numeric_limits<std::int32_t>::min()}) {
    KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(type).add(null_content())).c_str());
    EXPECT_EQ(parts(shape), (Count{2, 77})) << type;
    EXPECT_EQ(points(shape), (Count{2, 77})) << type;
    EXPECT_EQ(bytes_at_stream(shape), 1);
  }
}

TEST_F(ShapeCountsTest, TheTypeIsThatOfTheShapeFile) {
  ShapefileWriter writer(3);
  writer.add(arc_content({0, 2}, some_points(5)));
  const std::string index = header_bytes(1, 54) + writer.shx().substr(100);
  KZ_GIS_ESRI_Shape_c shape(write(writer.shp(), index).c_str());
  EXPECT_EQ(points(shape), (Count{1, 5}));
}

TEST_F(ShapeCountsTest, AFileWithoutRecordsCountsZero) {
  for (const std::int32_t type : {0, 1, 3, 5, 8}) {
    KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(type)).c_str());
    EXPECT_EQ(parts(shape), (Count{1, 0})) << type;
    EXPECT_EQ(points(shape), (Count{1, 0})) << type;
  }
}

TEST_F(ShapeCountsTest, LeaveTheStreamWhereItWas) {
  for (const std::int32_t type : {0, 1, 3, 5, 8}) {
    SCOPED_TRACE(type);
    KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(type)
                                        .add(arc_content({0}, some_points(5)))
                                        .add(arc_content({0}, some_points(6)))
                                        .add(arc_content({0}, some_points(7))))
                                  .c_str());
    ShapeRecord record;
    ASSERT_EQ(record.read_arc(shape), 1u);
    EXPECT_EQ(parts(shape).status, 1u);
    ASSERT_EQ(record.read_arc(shape), 1u);
    EXPECT_EQ(record.number, 2);
    EXPECT_EQ(points(shape).status, 1u);
    ASSERT_EQ(record.read_arc(shape), 1u);
    EXPECT_EQ(record.number, 3);
    // At the very end of the file as well.
    EXPECT_EQ(points(shape).status, 1u);
    EXPECT_EQ(record.read_arc(shape), 11u);
  }
}

TEST_F(ShapeCountsTest, CountsAreAddedIn32BitsWhateverTheirSign) {
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3)
                                      .add(arc_fixed_part(0x7FFFFFFF, -3) + std::string(2, 'z'))
                                      .add(arc_fixed_part(0x7FFFFFFF, 1) + std::string(2, 'z'))
                                      .add(arc_fixed_part(5, 1) + std::string(2, 'z')))
                                .c_str());
  EXPECT_EQ(parts(shape), (Count{1, 3}));
  EXPECT_EQ(points(shape), (Count{1, 4294967295u}));
}

TEST_F(ShapeCountsTest, AnIndexShorterThanItSaysEndsTheWalkWith11) {
  for (const std::int32_t words : {62, 64, 1000000000, 0, -50}) {
    SCOPED_TRACE(words);
    ShapefileWriter writer(3);
    writer.add(arc_content({0, 1}, some_points(5))).add(arc_content({0}, some_points(6)));
    const std::string index = header_bytes(3, words) + writer.shx().substr(100);
    KZ_GIS_ESRI_Shape_c shape(write(writer.shp(), index).c_str());
    EXPECT_EQ(parts(shape), (Count{11, 3}));
    EXPECT_EQ(bytes_at_stream(shape), 1);  // the shape stream is back
    // The index stream's flags stand.
    EXPECT_EQ(points(shape), (Count{10, 0}));
  }
}

// Its zeros are a header that claims 0 bytes, so 536870899 records, all of no content.
TEST_F(ShapeCountsTest, AnIndexWithoutEndHoldsNoRecord) {
  if (!std::filesystem::exists("/dev/zero")) GTEST_SKIP() << "no /dev/zero";
  for (const std::int32_t type : {3, 5, 8}) {
    SCOPED_TRACE(type);
    const std::string base = write(ShapefileWriter(type).add(arc_content({0}, some_points(5))));
    std::filesystem::remove(base + ".shx");
    std::filesystem::create_symlink("/dev/zero", base + ".shx");
    KZ_GIS_ESRI_Shape_c shape(base.c_str());
    ASSERT_EQ(shape.IndexFileIsOpen(), 1);
    kz_ulong records = 0;
    EXPECT_EQ(shape.NumberOfDataRecords(&records), 1u);
    EXPECT_EQ(records, 536870899u);
    {
      const LessThanASecond limit;
      EXPECT_EQ(points(shape), (Count{11, 0}));
    }
    EXPECT_EQ(bytes_at_stream(shape), 1);  // the shape stream is back
    EXPECT_EQ(points(shape), (Count{10, 0}));
    std::filesystem::remove(base + ".shx");
  }
}

TEST_F(ShapeCountsTest, AnIndexLongerThanItSaysIsReadAsFarAsItSays) {
  ShapefileWriter writer(3);
  writer.add(arc_content({0, 1}, some_points(5))).add(arc_content({0}, some_points(6)));
  const std::string index = header_bytes(3, 54) + writer.shx().substr(100);
  KZ_GIS_ESRI_Shape_c shape(write(writer.shp(), index).c_str());
  EXPECT_EQ(points(shape), (Count{1, 5}));
}

TEST_F(ShapeCountsTest, AClosedIndexEndsTheWalkWith13) {
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(3).add(arc_content({0}, some_points(5)))).c_str());
  shape.IndexFileName(nullptr);
  EXPECT_EQ(parts(shape), (Count{13, 0}));
  EXPECT_EQ(points(shape), (Count{13, 0}));
  EXPECT_EQ(bytes_at_stream(shape), 1);
}

TEST_F(ShapeCountsTest, AnOffsetThatCannotBeSoughtGives10) {
  for (const std::int32_t offset : {-100, 0x40000000 - 20}) {  // the second wraps as it is doubled
    KZ_GIS_ESRI_Shape_c shape(
        write(ShapefileWriter(3)
                  .add(arc_content({0}, some_points(5)))
                  .add_indexed(arc_content({0}, some_points(6)), 72, offset, 72))
            .c_str());
    EXPECT_EQ(points(shape), (Count{10, 5}));
  }
}

// A failed read leaves flags that keep the stream from going back: the walk's own 11 gives
// way to the 10 of the way back.
TEST_F(ShapeCountsTest, AnOffsetPastTheEndGives10SinceTheStreamCannotGoBack) {
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(3)
                                      .add(arc_content({0}, some_points(5)))
                                      .add_indexed(arc_content({0}, some_points(6)), 72, 50000, 72))
                                .c_str());
  EXPECT_EQ(points(shape), (Count{10, 5}));
}

TEST_F(ShapeCountsTest, AStreamThatFailedBeforeGives10) {
  KZ_GIS_ESRI_Shape_c shape(write(ShapefileWriter(1).add(point_content(1, 2))).c_str());
  bytes_at_stream(shape);
  bytes_at_stream(shape);  // beyond the end
  EXPECT_EQ(parts(shape), (Count{10, 1}));
  EXPECT_EQ(points(shape), (Count{10, 1}));
}

TEST_F(ShapeCountsTest, ANegativeLengthInTheIndexIsNotCounted) {
  KZ_GIS_ESRI_Shape_c shape(
      write(ShapefileWriter(3).add(arc_content({0}, some_points(5)), 72, -1)).c_str());
  EXPECT_EQ(points(shape), (Count{1, 0}));
}

}  // namespace
