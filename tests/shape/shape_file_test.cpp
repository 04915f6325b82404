// The pair of files: opening, names, copies, and the way to a record.

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "kzgis/shape.h"
#include "shape/shape_record.h"
#include "shape/shapefile_writer.h"
#include "support/named_pipe.h"

namespace {

ShapefileWriter two_points() {
  ShapefileWriter writer(1);
  return writer.add(point_content(1.5, 2.5)).add(point_content(3.5, 4.5));
}

void expect_closed(const KZ_GIS_ESRI_Shape_c& shape) {
  EXPECT_EQ(shape.ShapeFileIsOpen(), 0);
  EXPECT_EQ(shape.IndexFileIsOpen(), 0);
}

void expect_open(const KZ_GIS_ESRI_Shape_c& shape) {
  EXPECT_EQ(shape.ShapeFileIsOpen(), 1);
  EXPECT_EQ(shape.IndexFileIsOpen(), 1);
}

/// The x of the point record at the stream.
double next_x(KZ_GIS_ESRI_Shape_c& shape) {
  kz_long number;
  double x = -7;
  double y;
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 1u);
  return x;
}

using ShapeOpenTest = ShapefileTest;

TEST_F(ShapeOpenTest, NullOpensNothing) {
  const KZ_GIS_ESRI_Shape_c shape(nullptr);
  expect_closed(shape);
}

TEST_F(ShapeOpenTest, TheConstructorOpensBothFiles) {
  const KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  expect_open(shape);
  EXPECT_EQ(shape.ShapeHeader().ShapeType(), 1);
  EXPECT_EQ(shape.ShapeHeader().FileLength(), 156);
  EXPECT_EQ(shape.IndexHeader().FileLength(), 116);
}

TEST_F(ShapeOpenTest, AConstructorThatFailsLeavesItClosed) {
  const KZ_GIS_ESRI_Shape_c shape(path("nowhere").c_str());
  expect_closed(shape);
}

TEST_F(ShapeOpenTest, FileNameGivesTheBaseNameForEveryEnding) {
  const std::string base = write(two_points(), "roads");
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  for (const char* ending : {"", ".shp", ".shx", ".dbf"}) {
    EXPECT_STREQ(shape.FileName((base + ending).c_str()), base.c_str()) << ending;
    expect_open(shape);
  }
}

TEST_F(ShapeOpenTest, EndingsAreComparedCaseSensitively) {
  const std::string base = write(two_points(), "roads");
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  EXPECT_EQ(shape.FileName((base + ".SHP").c_str()), nullptr);
  expect_closed(shape);
  write(two_points(), "roads.SHP");
  EXPECT_STREQ(shape.FileName((base + ".SHP").c_str()), (base + ".SHP").c_str());
  expect_open(shape);
}

TEST_F(ShapeOpenTest, OnlyOneEndingIsCutOff) {
  const std::string base = write(two_points(), "roads.dbf");
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  EXPECT_STREQ(shape.FileName((base + ".shp").c_str()), base.c_str());
}

TEST_F(ShapeOpenTest, ANameShorterThanAnEndingHasNone) {
  const std::string before = std::filesystem::current_path().string();
  write(two_points(), "a");
  write(two_points(), "shp");
  std::filesystem::current_path(path("."));
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  const std::string single = shape.FileName("a") != nullptr ? shape.FileName("a") : "(null)";
  const std::string three = shape.FileName("shp") != nullptr ? shape.FileName("shp") : "(null)";
  std::filesystem::current_path(before);
  EXPECT_EQ(single, "a");
  EXPECT_EQ(three, "shp");
}

TEST_F(ShapeOpenTest, PathVariablesAreExpandedInFileNameAlone) {
  const std::string base = write(two_points(), "roads");
  setenv("KZGIS_SHAPE_TEST_DIR", path(".").c_str(), 1);
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  EXPECT_STREQ(shape.FileName("$KZGIS_SHAPE_TEST_DIR<0>/roads.dbf"), path("./roads").c_str());
  expect_open(shape);
  EXPECT_EQ(shape.ShapeFileName("$KZGIS_SHAPE_TEST_DIR<0>/roads.shp"), nullptr);
  unsetenv("KZGIS_SHAPE_TEST_DIR");
}

TEST_F(ShapeOpenTest, NullClosesAndGivesAnEmptyText) {
  KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  EXPECT_STREQ(shape.FileName(nullptr), "");
  expect_closed(shape);
}

TEST_F(ShapeOpenTest, OpensAgainAfterEveryKindOfClosing) {
  const std::string first = write(two_points(), "first");
  const std::string second = write(ShapefileWriter(1).add(point_content(9, 9)), "second");
  KZ_GIS_ESRI_Shape_c shape(first.c_str());
  EXPECT_STREQ(shape.FileName(second.c_str()), second.c_str());
  EXPECT_EQ(next_x(shape), 9);
  EXPECT_EQ(shape.FileName(path("nowhere").c_str()), nullptr);
  EXPECT_STREQ(shape.FileName(first.c_str()), first.c_str());
  EXPECT_EQ(next_x(shape), 1.5);
  shape.FileName(nullptr);
  EXPECT_STREQ(shape.FileName(second.c_str()), second.c_str());
  EXPECT_EQ(next_x(shape), 9);
}

TEST_F(ShapeOpenTest, OpensAgainAfterAReadThatFailed) {
  KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  next_x(shape);
  next_x(shape);
  kz_long number;
  double x;
  double y;
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 11u);
  EXPECT_STREQ(shape.FileName(path("layer").c_str()), path("layer").c_str());
  EXPECT_EQ(next_x(shape), 1.5);
}

TEST_F(ShapeOpenTest, AMissingPartnerClosesBoth) {
  write_file(path("lone.shp"), two_points().shp());
  write_file(path("index.shx"), two_points().shx());
  KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  EXPECT_EQ(shape.FileName(path("lone").c_str()), nullptr);
  expect_closed(shape);
  EXPECT_EQ(shape.FileName(path("index").c_str()), nullptr);
  expect_closed(shape);
}

TEST_F(ShapeOpenTest, AHeaderThatIsCutClosesBoth) {
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  for (const std::size_t length : {0u, 1u, 99u}) {
    const std::string base = write(two_points().shp().substr(0, length), two_points().shx());
    EXPECT_EQ(shape.FileName(base.c_str()), nullptr) << length;
    expect_closed(shape);
    write(two_points().shp(), two_points().shx().substr(0, length));
    EXPECT_EQ(shape.FileName(base.c_str()), nullptr) << length;
    expect_closed(shape);
  }
  const std::string base = write(header_bytes(1, 50), header_bytes(1, 50));
  EXPECT_STREQ(shape.FileName(base.c_str()), base.c_str());
}

TEST_F(ShapeOpenTest, DirectoriesAreRefused) {
  std::filesystem::create_directory(path("dir.shp"));
  std::filesystem::create_directory(path("dir.shx"));
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  EXPECT_EQ(shape.FileName(path("dir").c_str()), nullptr);
  EXPECT_EQ(shape.ShapeFileName(path(".").c_str()), nullptr);
  EXPECT_EQ(shape.IndexFileName(path("dir.shx").c_str()), nullptr);
  expect_closed(shape);
  const std::string base = write(two_points());
  EXPECT_STREQ(shape.FileName(base.c_str()), base.c_str());
}

TEST_F(ShapeOpenTest, NamedPipesAreRefusedWithoutWaiting) {
  const NamedPipe no_shapes(path("shapes.shp"));
  const NamedPipe no_index(path("index.shx"));
  write_file(path("shapes.shx"), two_points().shx());
  write_file(path("index.shp"), two_points().shp());
  std::filesystem::create_symlink(path("shapes.shp"), path("link.shp"));
  const KZ_GIS_ESRI_Shape_c constructed(path("shapes").c_str());
  expect_closed(constructed);
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  for (const char* const name : {"shapes", "index", "link"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(shape.FileName(path(name).c_str()), nullptr);
    expect_closed(shape);
    kz_ulong count;
    EXPECT_EQ(shape.NumberOfPoints(&count), 13u);
    EXPECT_EQ(shape.SeekToFirstDataRecord(), 13u);
  }
  EXPECT_EQ(shape.ShapeFileName(path("shapes.shp").c_str()), nullptr);
  EXPECT_EQ(shape.IndexFileName(path("index.shx").c_str()), nullptr);
  expect_closed(shape);
  const std::string base = write(two_points());
  EXPECT_STREQ(shape.FileName(base.c_str()), base.c_str());
  EXPECT_EQ(next_x(shape), 1.5);
}

TEST_F(ShapeOpenTest, HeadersAreReadNotJudged) {
  const std::string bad = header_bytes(77, 50, {1, 1, 1, 1}, 1234, 5);
  const KZ_GIS_ESRI_Shape_c shape(write(bad, bad).c_str());
  expect_open(shape);
  EXPECT_EQ(shape.ShapeHeader().ValidateFileHeader(), 6u);
  EXPECT_EQ(shape.IndexHeader().ValidateFileHeader(), 6u);
}

TEST_F(ShapeOpenTest, HeadersPrintTheNamesOfTheOpenFiles) {
  KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  std::ostringstream shp;
  std::ostringstream shx;
  EXPECT_EQ(shape.ShapeHeader().PrintFileHeader(shp), 1u);
  EXPECT_EQ(shape.IndexHeader().PrintFileHeader(shx), 1u);
  EXPECT_EQ(shp.str().substr(0, shp.str().find('\n')), "ShapeFileHeader for " + path("layer.shp"));
  EXPECT_EQ(shx.str().substr(0, shx.str().find('\n')), "ShapeFileHeader for " + path("layer.shx"));
  shape.FileName(nullptr);
  EXPECT_EQ(shape.ShapeHeader().PrintFileHeader(shp), 13u);
  EXPECT_EQ(shape.ShapeHeader().ValidateFileHeader(), 13u);
}

using ShapeNamesTest = ShapefileTest;

TEST_F(ShapeNamesTest, EitherFileCanBeOpenedAlone) {
  const std::string base = write(two_points());
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  EXPECT_STREQ(shape.ShapeFileName((base + ".shp").c_str()), (base + ".shp").c_str());
  EXPECT_EQ(shape.ShapeFileIsOpen(), 1);
  EXPECT_EQ(shape.IndexFileIsOpen(), 0);
  EXPECT_STREQ(shape.IndexFileName((base + ".shx").c_str()), (base + ".shx").c_str());
  expect_open(shape);
  EXPECT_EQ(shape.ShapeFileName(nullptr), nullptr);
  EXPECT_EQ(shape.ShapeFileIsOpen(), 0);
  EXPECT_EQ(shape.IndexFileIsOpen(), 1);
  EXPECT_EQ(shape.IndexFileName(nullptr), nullptr);
  expect_closed(shape);
}

TEST_F(ShapeNamesTest, OpeningAgainStartsBehindTheHeader) {
  const std::string base = write(two_points());
  KZ_GIS_ESRI_Shape_c shape(base.c_str());
  next_x(shape);
  EXPECT_NE(shape.ShapeFileName((base + ".shp").c_str()), nullptr);
  EXPECT_EQ(next_x(shape), 1.5);
}

TEST_F(ShapeNamesTest, AFailureClosesThatFileAlone) {
  KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  EXPECT_EQ(shape.IndexFileName(path("nowhere.shx").c_str()), nullptr);
  EXPECT_EQ(shape.ShapeFileIsOpen(), 1);
  EXPECT_EQ(shape.IndexFileIsOpen(), 0);
  EXPECT_EQ(next_x(shape), 1.5);
}

TEST_F(ShapeNamesTest, TheLongestFileNameHas255Characters) {
  std::string directory = path("");
  while (directory.size() + 101 < 251) {
    directory += std::string(100, 'd') + "/";
    ASSERT_TRUE(std::filesystem::create_directory(directory));
  }
  const std::string longest = directory + std::string(251 - directory.size(), 'f');
  write_file(longest + ".shp", two_points().shp());
  write_file(longest + ".shx", two_points().shx());
  write_file(longest + "f.shp", two_points().shp());
  write_file(longest + "f.shx", two_points().shx());

  KZ_GIS_ESRI_Shape_c shape(nullptr);
  EXPECT_STREQ(shape.FileName((longest + ".dbf").c_str()), longest.c_str());
  expect_open(shape);
  EXPECT_EQ(shape.FileName((longest + "f").c_str()), nullptr);
  expect_closed(shape);
  EXPECT_EQ(shape.FileName((longest + "f.shp").c_str()), nullptr);

  // Opened one by one, names fill their buffers of 260.
  const std::string full = longest + "fffff.xx";
  ASSERT_EQ(full.size(), 259u);
  write_file(full, two_points().shp());
  write_file(full + "y", two_points().shp());
  EXPECT_STREQ(shape.ShapeFileName(full.c_str()), full.c_str());
  EXPECT_EQ(shape.ShapeFileName((full + "y").c_str()), nullptr);
  EXPECT_EQ(shape.ShapeFileIsOpen(), 0);
  EXPECT_STREQ(shape.IndexFileName(full.c_str()), full.c_str());
  EXPECT_EQ(shape.IndexFileName((full + "y").c_str()), nullptr);
  EXPECT_EQ(shape.IndexFileIsOpen(), 0);
}

TEST_F(ShapeNamesTest, NamesFarTooLongAreRefusedAndClose) {
  const std::string base = write(two_points());
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  for (const std::size_t length : {252u, 260u, 1023u, 1024u, 100000u}) {
    SCOPED_TRACE(length);
    const std::string name(length, 'n');
    ASSERT_NE(shape.FileName(base.c_str()), nullptr);
    EXPECT_EQ(shape.FileName(name.c_str()), nullptr);
    expect_closed(shape);
    EXPECT_EQ(shape.ShapeFileName(name.c_str()), nullptr);
    EXPECT_EQ(shape.IndexFileName(name.c_str()), nullptr);
  }
}

TEST_F(ShapeNamesTest, TheObjectsOwnNamesCanBeGivenBack) {
  const std::string base = write(two_points());
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  EXPECT_STREQ(shape.FileName(shape.FileName(base.c_str())), base.c_str());
  expect_open(shape);
  const char* shp = shape.ShapeFileName((base + ".shp").c_str());
  EXPECT_STREQ(shape.ShapeFileName(shp), (base + ".shp").c_str());
  EXPECT_STREQ(shape.FileName(shp), base.c_str());
  shp = shape.ShapeFileName((base + ".shp").c_str());
  const char* const shx = shape.IndexFileName((base + ".shx").c_str());
  EXPECT_STREQ(shape.IndexFileName(shx), (base + ".shx").c_str());
  // One name to the other's buffer: the shape file serves as its own index.
  EXPECT_STREQ(shape.IndexFileName(shp), (base + ".shp").c_str());
  EXPECT_STREQ(shape.FileName(shape.IndexFileName((base + ".shx").c_str())), base.c_str());
  expect_open(shape);
  EXPECT_EQ(next_x(shape), 1.5);
}

using ShapeCopyTest = ShapefileTest;

TEST_F(ShapeCopyTest, ReadsTheSameFilesByItself) {
  KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  next_x(shape);
  KZ_GIS_ESRI_Shape_c copy(shape);
  expect_open(copy);
  EXPECT_EQ(next_x(copy), 1.5);
  EXPECT_EQ(next_x(shape), 3.5);
  shape.FileName(nullptr);
  EXPECT_EQ(next_x(copy), 3.5);
}

TEST_F(ShapeCopyTest, OfAClosedObjectIsClosed) {
  const KZ_GIS_ESRI_Shape_c shape(nullptr);
  const KZ_GIS_ESRI_Shape_c copy(shape);
  expect_closed(copy);
}

TEST_F(ShapeCopyTest, OfFilesOpenedOneByOneIsClosed) {
  const std::string base = write(two_points());
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  shape.ShapeFileName((base + ".shp").c_str());
  shape.IndexFileName((base + ".shx").c_str());
  const KZ_GIS_ESRI_Shape_c copy(shape);
  expect_closed(copy);
}

using ShapeAssignmentTest = ShapefileTest;

TEST_F(ShapeAssignmentTest, OpensTheFilesInAClosedTarget) {
  KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  KZ_GIS_ESRI_Shape_c target(nullptr);
  EXPECT_EQ(&(target = shape), &target);
  expect_open(target);
  EXPECT_EQ(next_x(target), 1.5);
  EXPECT_EQ(next_x(shape), 1.5);
}

TEST_F(ShapeAssignmentTest, ClosesATargetInUse) {
  const KZ_GIS_ESRI_Shape_c shape(write(two_points(), "a").c_str());
  const std::string other = write(two_points(), "b");
  KZ_GIS_ESRI_Shape_c target(other.c_str());
  target = shape;
  expect_closed(target);
  // The base name is empty: a copy has nothing to open.
  const KZ_GIS_ESRI_Shape_c copy(target);
  expect_closed(copy);
  // The streams are still open underneath, so that no name can be opened any more.
  EXPECT_EQ(target.FileName(other.c_str()), nullptr);
  EXPECT_EQ(target.ShapeFileName((other + ".shp").c_str()), nullptr);
  EXPECT_EQ(target.IndexFileName((other + ".shx").c_str()), nullptr);
  expect_closed(target);
}

TEST_F(ShapeAssignmentTest, ToItselfClosesIt) {
  KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  const KZ_GIS_ESRI_Shape_c& self = shape;
  shape = self;
  expect_closed(shape);
  EXPECT_STREQ(shape.FileName(nullptr), "");
}

TEST_F(ShapeAssignmentTest, OfAClosedObjectClosesTheTarget) {
  KZ_GIS_ESRI_Shape_c target(write(two_points()).c_str());
  target = KZ_GIS_ESRI_Shape_c(nullptr);
  expect_closed(target);
}

using ShapeSeekTest = ShapefileTest;

TEST_F(ShapeSeekTest, EveryOperationOfAClosedObjectGives13) {
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  ShapeRecord record;
  kz_ulong count = 77;
  double x = -7;
  double y = -7;
  EXPECT_EQ(shape.NumberOfDataRecords(&count), 13u);
  EXPECT_EQ(shape.NumberOfParts(&count), 13u);
  EXPECT_EQ(shape.NumberOfPoints(&count), 13u);
  EXPECT_EQ(shape.SeekToFirstDataRecord(), 13u);
  EXPECT_EQ(shape.SeekToDataRecord(1), 13u);
  EXPECT_EQ(shape.ReadNullShape(), 13u);
  EXPECT_EQ(shape.ReadPointShape(&record.number, &x, &y), 13u);
  EXPECT_EQ(record.read_multi_point(shape), 13u);
  EXPECT_EQ(record.read_arc(shape), 13u);
  EXPECT_EQ(record.read_polygon(shape), 13u);
  EXPECT_EQ(shape.GetArcShapeInfo(&record.number, &record.num_parts, &record.num_points), 13u);
  EXPECT_EQ(shape.GetPolygonShapeInfo(&record.number, &record.num_parts, &record.num_points), 13u);
  EXPECT_EQ(shape.GetMultiPointShapeInfo(&record.number, &record.num_points), 13u);
  EXPECT_EQ(count, 77u);
  EXPECT_EQ(record.number, -7);
  EXPECT_EQ(record.num_points, -7);
  EXPECT_EQ(x, -7);
}

TEST_F(ShapeSeekTest, FindsRecordsInAnyOrder) {
  KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  EXPECT_EQ(shape.SeekToDataRecord(2), 1u);
  EXPECT_EQ(next_x(shape), 3.5);
  EXPECT_EQ(shape.SeekToDataRecord(1), 1u);
  EXPECT_EQ(next_x(shape), 1.5);
  EXPECT_EQ(next_x(shape), 3.5);
  EXPECT_EQ(shape.SeekToFirstDataRecord(), 1u);
  EXPECT_EQ(next_x(shape), 1.5);
}

TEST_F(ShapeSeekTest, TheOffsetOfTheIndexCounts) {
  // Record 1 of the index is the second of the file.
  ShapefileWriter writer(1);
  writer.add_indexed(point_content(1.5, 2.5), 10, 64, 10).add(point_content(3.5, 4.5));
  KZ_GIS_ESRI_Shape_c shape(write(writer).c_str());
  EXPECT_EQ(shape.SeekToDataRecord(1), 1u);
  EXPECT_EQ(next_x(shape), 3.5);
}

TEST_F(ShapeSeekTest, ARecordPastTheIndexGives2AndTheIndexStaysFailed) {
  KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  EXPECT_EQ(shape.SeekToDataRecord(3), 2u);
  EXPECT_EQ(next_x(shape), 1.5);             // the shape stream has not moved
  EXPECT_EQ(shape.SeekToDataRecord(1), 2u);  // the index stream's flags stand
  const std::string base = path("layer");
  ASSERT_NE(shape.IndexFileName((base + ".shx").c_str()), nullptr);
  EXPECT_EQ(shape.SeekToDataRecord(1), 1u);
  EXPECT_EQ(next_x(shape), 1.5);
}

TEST_F(ShapeSeekTest, ANegativeRecordGives2) {
  for (const kz_long number : {-12, -100, -1000000}) {
    KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
    EXPECT_EQ(shape.SeekToDataRecord(number), 2u) << number;
  }
}

TEST_F(ShapeSeekTest, RecordNumbersAreNotChecked) {
  // Number 0 lies in the last eight bytes of the header, read as offset 0.
  KZ_GIS_ESRI_Shape_c shape(write(two_points()).c_str());
  EXPECT_EQ(shape.SeekToDataRecord(0), 1u);
  EXPECT_EQ(bytes_at_stream(shape), 9994);
  // 32-bit arithmetic: 2^29 records further is the same place.
  EXPECT_EQ(shape.SeekToDataRecord(2 + (1 << 29)), 1u);
  EXPECT_EQ(next_x(shape), 3.5);
  EXPECT_EQ(shape.SeekToDataRecord(std::numeric_limits<kz_long>::min()), 1u);
  EXPECT_EQ(bytes_at_stream(shape), 9994);
}

TEST_F(ShapeSeekTest, ANegativeOffsetGives10AndTheShapeStreamStaysFailed) {
  ShapefileWriter writer(1);
  writer.add_indexed(point_content(1.5, 2.5), 10, -50, 10).add(point_content(3.5, 4.5));
  KZ_GIS_ESRI_Shape_c shape(write(writer).c_str());
  EXPECT_EQ(shape.SeekToDataRecord(1), 10u);
  EXPECT_EQ(shape.SeekToDataRecord(2), 10u);
  EXPECT_EQ(shape.SeekToFirstDataRecord(), 10u);
  kz_long number;
  double x;
  double y;
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 4u);
}

TEST_F(ShapeSeekTest, AnOffsetOf2To30WordsWraps) {
  ShapefileWriter writer(1);
  writer
      .add_indexed(point_content(1.5, 2.5), 10, 0x40000000, 10)  // -2^31 bytes
      .add_indexed(point_content(3.5, 4.5), 10, std::numeric_limits<std::int32_t>::min() + 50,
                   10);  // 100 bytes
  KZ_GIS_ESRI_Shape_c shape(write(writer).c_str());
  EXPECT_EQ(shape.SeekToDataRecord(2), 1u);
  EXPECT_EQ(next_x(shape), 1.5);
  EXPECT_EQ(shape.SeekToDataRecord(1), 10u);
}

TEST_F(ShapeSeekTest, AnOffsetPastTheEndIsFoundByTheNextRead) {
  ShapefileWriter writer(1);
  writer.add_indexed(point_content(1.5, 2.5), 10, 1000000, 10);
  KZ_GIS_ESRI_Shape_c shape(write(writer).c_str());
  EXPECT_EQ(shape.SeekToDataRecord(1), 1u);
  kz_long number = -7;
  double x;
  double y;
  EXPECT_EQ(shape.ReadPointShape(&number, &x, &y), 11u);
  EXPECT_EQ(number, -7);
}

TEST_F(ShapeSeekTest, SeekingNeedsTheIndex) {
  const std::string base = write(two_points());
  KZ_GIS_ESRI_Shape_c shape(nullptr);
  shape.ShapeFileName((base + ".shp").c_str());
  EXPECT_EQ(shape.SeekToDataRecord(1), 2u);
  EXPECT_EQ(shape.SeekToFirstDataRecord(), 1u);
  EXPECT_EQ(next_x(shape), 1.5);
  shape.IndexFileName((base + ".shx").c_str());
  shape.ShapeFileName(nullptr);
  EXPECT_EQ(shape.SeekToDataRecord(1), 13u);
}

using ShapeRecordCountTest = ShapefileTest;

TEST_F(ShapeRecordCountTest, ComesFromTheIndexHeadersLength) {
  const std::pair<std::int32_t, kz_ulong> lengths[] = {
      {50, 0u}, {53, 0u},         {54, 1u},        {57, 1u},
      {58, 2u}, {49, 536870911u}, {0, 536870899u}, {-50, 536870887u}};
  for (const auto& [words, records] : lengths) {
    KZ_GIS_ESRI_Shape_c shape(write(header_bytes(1, 999), header_bytes(1, words)).c_str());
    kz_ulong count = 77;
    EXPECT_EQ(shape.NumberOfDataRecords(&count), 1u);
    EXPECT_EQ(count, records) << words;
  }
}

TEST_F(ShapeRecordCountTest, NeedsTheShapeFileOnly) {
  const std::string base = write(two_points());
  KZ_GIS_ESRI_Shape_c shape(base.c_str());
  kz_ulong count = 77;
  shape.IndexFileName(nullptr);
  EXPECT_EQ(shape.NumberOfDataRecords(&count), 1u);
  EXPECT_EQ(count, 2u);
  shape.IndexFileName((base + ".shx").c_str());
  shape.ShapeFileName(nullptr);
  EXPECT_EQ(shape.NumberOfDataRecords(&count), 13u);
}

}  // namespace
