// What `Shapefile` reads of sound files: every type from bytes written by hand, the names it
// opens, the order of records.

#include "kzgis/shapefile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "shape/record_text.h"
#include "shape/shapefile_writer.h"
#include "support/named_pipe.h"

namespace {

using kzgis::ErrorKind;
using kzgis::Shapefile;
using kzgis::ShapeType;

static_assert(!std::is_copy_constructible_v<Shapefile>);
static_assert(std::is_nothrow_move_constructible_v<Shapefile>);
static_assert(std::is_nothrow_move_assignable_v<Shapefile>);
static_assert(std::input_iterator<Shapefile::Iterator>);
static_assert(std::sentinel_for<Shapefile::Iterator, Shapefile::Iterator>);

/// Type, box and counts of a content; parts below 0: a multipoint, which has no such count.
Bytes many(std::int32_t type, std::int32_t parts, std::int32_t points) {
  Bytes bytes;
  bytes.little(type).little(1.5).little(2.5).little(3.5).little(4.5);
  if (parts >= 0) bytes.little(parts);
  return bytes.little(points);
}

/// A range and the numbers behind it.
std::string measures(const std::vector<double>& numbers) {
  Bytes bytes;
  bytes.little(-77.0).little(77.0);
  for (const double number : numbers) bytes.little(number);
  return bytes.text();
}

struct Content {
  std::string bytes;
  std::string expected;
};

/// A content of every type that is read, those with m also without it.
std::vector<Content> contents() {
  const std::string three = Bytes().little(0).little(2).text();  // parts at 0 and at 2
  const std::string points = Bytes().little(1.25).little(-1.0).little(2.25).little(-2.0).text() +
                             Bytes().little(3.25).little(-3.0).text();
  const std::string z = measures({10, 20, 30});
  const std::string m = measures({0.5, -2e38, 0.25});
  const std::string xy = "x 1.25 2.25 3.25, y -1 -2 -3";
  const std::string in_box = ", box 1.5 2.5 3.5 4.5, ";
  const std::string xym = xy + ", m 0.5 -2e+38 0.25";
  const std::string xyz = xy + ", z 10 20 30";
  const std::string xyzm = xyz + ", m 0.5 -2e+38 0.25";

  std::vector<Content> all{
      {Bytes().little(0).text(), "1: type 0, box 0 0 0 0"},
      {Bytes().little(1).little(1.25).little(-3.5).text(),
       "1: type 1, box 1.25 -3.5 1.25 -3.5, x 1.25, y -3.5"},
      {Bytes().little(11).little(1.25).little(-3.5).little(7.0).little(8.0).text(),
       "1: type 11, box 1.25 -3.5 1.25 -3.5, x 1.25, y -3.5, z 7, m 8"},
      {Bytes().little(11).little(1.25).little(-3.5).little(7.0).text(),
       "1: type 11, box 1.25 -3.5 1.25 -3.5, x 1.25, y -3.5, z 7"},
      {Bytes().little(21).little(1.25).little(-3.5).little(8.0).text(),
       "1: type 21, box 1.25 -3.5 1.25 -3.5, x 1.25, y -3.5, m 8"},
      {Bytes().little(21).little(1.25).little(-3.5).text(),
       "1: type 21, box 1.25 -3.5 1.25 -3.5, x 1.25, y -3.5"},
  };
  const auto add = [&all](int type, const Bytes& head, const std::string& rest,
                          const std::string& expected) {
    all.push_back({head.text() + rest, "1: type " + std::to_string(type) + expected});
  };
  add(8, many(8, -1, 3), points, in_box + xy);
  add(18, many(18, -1, 3), points + z + m, in_box + xyzm);
  add(18, many(18, -1, 3), points + z, in_box + xyz);
  add(28, many(28, -1, 3), points + m, in_box + xym);
  add(28, many(28, -1, 3), points, in_box + xy);
  for (const int flat : {3, 5}) {
    const std::string parts = in_box + "parts 0 2, ";
    add(flat, many(flat, 2, 3), three + points, parts + xy);
    add(flat + 10, many(flat + 10, 2, 3), three + points + z + m, parts + xyzm);
    add(flat + 10, many(flat + 10, 2, 3), three + points + z, parts + xyz);
    add(flat + 20, many(flat + 20, 2, 3), three + points + m, parts + xym);
    add(flat + 20, many(flat + 20, 2, 3), three + points, parts + xy);
  }
  return all;
}

class ShapefileReadTest : public ShapefileTest {
 protected:
  /// The file of a writer, with its index or without.
  Shapefile open(const ShapefileWriter& writer, bool with_index = true) const {
    const std::string base = write(writer);
    if (!with_index) std::filesystem::remove(base + ".shx");
    return opened(base);
  }
};

TEST_F(ShapefileReadTest, EveryTypeOfRecord) {
  for (const auto& [bytes, expected] : contents()) {
    for (const bool with_index : {false, true}) {
      Shapefile file = open(ShapefileWriter(bytes[0]).add(bytes), with_index);
      ASSERT_EQ(file.size(), 1U);
      EXPECT_EQ(told(file.read(0)), expected);
    }
  }
}

TEST_F(ShapefileReadTest, TheHeaderTellsTypeAndBox) {
  const Shapefile file = open(ShapefileWriter(25));
  EXPECT_EQ(file.type(), ShapeType::polygon_m);
  EXPECT_EQ(file.box().min_x, -10.5);
  EXPECT_EQ(file.box().min_y, -20.25);
  EXPECT_EQ(file.box().max_x, 30.125);
  EXPECT_EQ(file.box().max_y, 40.0625);
  EXPECT_EQ(file.size(), 0U);
}

TEST_F(ShapefileReadTest, TypesAreThoseOfTheRecordsWhateverTheHeaderSays) {
  ShapefileWriter writer(77);
  for (const Content& content : contents()) writer.add(content.bytes);
  for (const bool with_index : {false, true}) {
    Shapefile file = open(writer, with_index);
    EXPECT_EQ(static_cast<int>(file.type()), 77);
    ASSERT_EQ(file.size(), contents().size());
    for (std::uint32_t i = 0; i < file.size(); ++i) {
      // Each bears the number of its place in the file.
      EXPECT_EQ(told(file.read(i)), std::to_string(i + 1) + contents()[i].expected.substr(1));
    }
  }
}

TEST(ShapeTypeNames, SayWhatATypeHolds) {
  const std::pair<int, std::string> names[] = {{0, "null shape"},         {1, "point"},
                                               {3, "polyline"},           {5, "polygon"},
                                               {8, "multipoint"},         {11, "point with z"},
                                               {13, "polyline with z"},   {15, "polygon with z"},
                                               {18, "multipoint with z"}, {21, "point with m"},
                                               {23, "polyline with m"},   {25, "polygon with m"},
                                               {28, "multipoint with m"}, {31, "multipatch"}};
  for (const auto& [number, name] : names) EXPECT_EQ(kzgis::name_of(ShapeType{number}), name);
  for (const int number : {-1, 2, 4, 10, 32}) {
    EXPECT_EQ(kzgis::name_of(ShapeType{number}), nullptr) << number;
  }
}

TEST_F(ShapefileReadTest, ClaimsOfTheHeaderRefuseNothing) {
  const std::string record = Bytes().big(1).big(10).text() + point_content(1, 2);
  for (const std::int32_t length_words : {0, -1, 50, 1 << 30}) {
    const Box box{std::numeric_limits<double>::quiet_NaN(), 9, -9, -9};
    const std::string base = path("layer");
    write_file(base + ".shp", header_bytes(-5, length_words, box, 9994, 17) + record);
    Shapefile file = opened(base);
    EXPECT_EQ(static_cast<int>(file.type()), -5);
    EXPECT_TRUE(std::isnan(file.box().min_x));
    ASSERT_EQ(file.size(), 1U);
    EXPECT_EQ(told(file.read(0)), "1: type 1, box 1 2 1 2, x 1, y 2");
  }
}

TEST_F(ShapefileReadTest, NumbersThatAreNoneComeThrough) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  Shapefile file = open(ShapefileWriter(21).add(
      Bytes().little(21).little(nan).little(-infinity).little(-1.7e308).text()));
  const auto record = file.read(0);
  ASSERT_TRUE(record);
  EXPECT_TRUE(std::isnan(record->x[0]));
  EXPECT_EQ(record->y[0], -infinity);
  EXPECT_EQ(record->m[0], -1.7e308);
}

TEST_F(ShapefileReadTest, RecordsComeInTheOrderOfTheIndex) {
  // Three points of 28 bytes each, the index from the last to the first.
  ShapefileWriter writer(1);
  for (int i = 0; i < 3; ++i) {
    writer.add_indexed(point_content(i, 0), 10, (100 + 28 * (2 - i)) / 2, 10);
  }
  Shapefile file = open(writer);
  std::string order;
  for (const auto& record : file) order += std::to_string(record.value().number);
  EXPECT_EQ(order, "321");
}

TEST_F(ShapefileReadTest, TheIndexLeadsAcrossGaps) {
  const ShapefileWriter writer = ShapefileWriter(1).add(point_content(1, 2));
  Shapefile file = opened(write(
      writer.shp() + std::string(8, 'z') + Bytes().big(4).big(10).text() + point_content(9, 8),
      writer.shx() + Bytes().big((100 + 28 + 8) / 2).big(10).text()));
  EXPECT_EQ(told(file.read(1)), "4: type 1, box 9 8 9 8, x 9, y 8");
}

TEST_F(ShapefileReadTest, AnIndexMayNameARecordTwice) {
  ShapefileWriter writer(1);
  writer.add(point_content(5, 6)).add_indexed(point_content(7, 8), 10, 50, 10);
  Shapefile file = open(writer);
  EXPECT_EQ(told(file.read(0)), told(file.read(1)));
}

TEST_F(ShapefileReadTest, TheLengthsOfTheIndexAreNotNeeded) {
  Shapefile file =
      open(ShapefileWriter(1).add(point_content(1, 2), 10, -3).add(point_content(3, 4), 10, 0));
  EXPECT_EQ(told(file.read(0)), "1: type 1, box 1 2 1 2, x 1, y 2");
  EXPECT_EQ(told(file.read(1)), "2: type 1, box 3 4 3 4, x 3, y 4");
}

TEST_F(ShapefileReadTest, AFileThatIsNoIndexIsNone) {
  const ShapefileWriter writer = ShapefileWriter(1).add(point_content(1, 2));
  for (const std::string& index :
       {std::string(), writer.shx().substr(0, 99), "x" + writer.shx().substr(1)}) {
    Shapefile file = opened(write(writer.shp(), index));
    EXPECT_EQ(file.size(), 1U);
  }
}

TEST_F(ShapefileReadTest, ReadsBetweenTwoStepsDoNotMoveAnIterator) {
  ShapefileWriter writer(1);
  for (int i = 0; i < 5; ++i) writer.add(point_content(i, 0));
  for (const bool with_index : {false, true}) {
    Shapefile file = open(writer, with_index);
    std::vector<double> x;
    for (auto it = file.begin(); it != file.end(); ++it) {
      x.push_back((*it)->x[0]);
      EXPECT_EQ(file.read(3)->x[0], 3.0);
      EXPECT_FALSE(file.read(5));
    }
    EXPECT_EQ(x, (std::vector<double>{0, 1, 2, 3, 4}));
    auto it = file.begin();
    EXPECT_EQ((*it++)->number, 1U);
    EXPECT_EQ((*it)->number, 2U);
    EXPECT_EQ((*it)->number, 2U);
  }
}

TEST_F(ShapefileReadTest, RingsAreThePartsOverTheCoordinates) {
  Shapefile file = open(ShapefileWriter(5).add(arc_content({0, 4}, some_points(7), 5)));
  const auto record = file.read(0);
  const kzgis::Rings rings = record->rings();
  EXPECT_EQ(rings.x.data(), record->x.data());
  EXPECT_EQ(rings.y.data(), record->y.data());
  EXPECT_EQ(rings.starts.data(), record->parts.data());
  EXPECT_EQ(rings.x.size(), 7U);
  EXPECT_EQ(rings.starts.size(), 2U);
}

TEST_F(ShapefileReadTest, RecordsWithoutPointsAreSound) {
  Shapefile file = open(ShapefileWriter(5)
                            .add(arc_content({}, {}, 5))
                            .add(multi_point_content({}))
                            .add(arc_content({0, 0}, {}, 3))
                            .add(many(15, 0, 0).add(measures({})).text())
                            .add(arc_content({1, 3, 3}, some_points(3), 5)));
  EXPECT_EQ(told(file.read(0)), "1: type 5, box -10.5 -20.25 30.125 40.0625");
  EXPECT_EQ(told(file.read(1)), "2: type 8, box -10.5 -20.25 30.125 40.0625");
  EXPECT_EQ(told(file.read(2)), "3: type 3, box -10.5 -20.25 30.125 40.0625, parts 0 0");
  EXPECT_EQ(told(file.read(3)), "4: type 15, box 1.5 2.5 3.5 4.5");
  // Parts may begin behind the first point, and end with the last.
  EXPECT_EQ(told(file.read(4)),
            "5: type 5, box -10.5 -20.25 30.125 40.0625, parts 1 3 3, x 0.125 1.125 2.125, "
            "y -0.375 -1.375 -2.375");
}

TEST_F(ShapefileReadTest, ANullShapeMayKeepTheLengthOfWhatItWas) {
  Shapefile file = open(ShapefileWriter(1).add(null_content() + std::string(16, 'z')), false);
  EXPECT_EQ(told(file.read(0)), "1: type 0, box 0 0 0 0");
}

// A record longer than the window, between short ones, each point told from all others.
TEST_F(ShapefileReadTest, RecordsLongerThanTheWindow) {
  const std::vector<Point> big = some_points(20000, 1);
  const ShapefileWriter writer = ShapefileWriter(3)
                                     .add(arc_content({0}, some_points(3)))
                                     .add(arc_content({0, 9999}, big))
                                     .add(arc_content({0}, some_points(4)));
  for (const bool with_index : {false, true}) {
    Shapefile file = open(writer, with_index);
    ASSERT_EQ(file.size(), 3U);
    for (const std::uint32_t index : {0U, 1U, 2U, 1U, 0U, 2U}) {
      const auto record = file.read(index);
      ASSERT_TRUE(record);
      if (index != 1) {
        EXPECT_EQ(record->x.size(), index + 3 - index / 2);
        continue;
      }
      ASSERT_EQ(record->x.size(), big.size());
      for (std::size_t i = 0; i < big.size(); ++i) {
        ASSERT_EQ(Point(record->x[i], record->y[i]), big[i]) << i;
      }
    }
  }
}

// Words of 2^31 and more, which 32 bits with a sign would take for negative numbers: a file with
// a hole, so that it takes no room on the disk.
TEST_F(ShapefileReadTest, OffsetsReachBeyondFourGigabytes) {
  constexpr std::uintmax_t kFar = 0xC0000000ULL * 2;  // 6 GiB
  const std::string base = write(header_bytes(1, 50), "");
  std::error_code no_room;
  std::filesystem::resize_file(base + ".shp", kFar, no_room);
  if (no_room) GTEST_SKIP() << "no such large files here";
  {
    std::ofstream file(base + ".shp", std::ios::binary | std::ios::app);
    file << Bytes().big(1).big(10).text() << point_content(1, 2);
  }
  write_file(base + ".shx",
             header_bytes(1, 54) + Bytes().big(std::int32_t(0xC0000000U)).big(10).text());
  EXPECT_EQ(told(opened(base).read(0)), "1: type 1, box 1 2 1 2, x 1, y 2");

  // Without the index, a record of 6 GiB less what is in front of it leads there.
  std::filesystem::remove(base + ".shx");
  {
    std::fstream file(base + ".shp", std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(100);
    file << Bytes().big(9).big(std::int32_t((kFar - 108) / 2)).text();
  }
  Shapefile file = opened(base);
  ASSERT_EQ(file.size(), 2U);
  EXPECT_EQ(told(file.read(0)), "9: type 0, box 0 0 0 0");
  EXPECT_EQ(told(file.read(1)), "1: type 1, box 1 2 1 2, x 1, y 2");
}

TEST_F(ShapefileReadTest, MovedFilesGoOn) {
  Shapefile file = open(ShapefileWriter(1).add(point_content(1, 2)));
  Shapefile other = std::move(file);
  EXPECT_EQ(other.size(), 1U);
  EXPECT_TRUE(other.read(0));
  file = std::move(other);
  EXPECT_TRUE(file.read(0));
  EXPECT_EQ(other.size(), 0U);  // NOLINT(bugprone-use-after-move): it is empty, no trap
  EXPECT_EQ(told(other.read(0)), "record 1: the file has 0");
  EXPECT_EQ(other.type(), ShapeType::null);
  EXPECT_EQ(other.box().max_x, 0.0);
  EXPECT_TRUE(other.begin() == other.end());
}

TEST_F(ShapefileReadTest, AnIndexPastTheEndIsABadArgument) {
  Shapefile file = open(ShapefileWriter(1).add(point_content(1, 2)));
  EXPECT_EQ(file.read(1).error().kind, ErrorKind::bad_argument);
  EXPECT_EQ(told(file.read(1)), "record 2: the file has 1");
  EXPECT_EQ(told(file.read(0xFFFFFFFF)), "record 4294967296: the file has 1");
}

using ShapefileOpenTest = ShapefileReadTest;

TEST_F(ShapefileOpenTest, TakesNamesWithAndWithoutTheExtension) {
  const std::string base = write(ShapefileWriter(1).add(point_content(1, 2)));
  for (const char* const ending : {"", ".shp", ".SHP", ".sHp", ".shx", ".dbf", ".DBF"}) {
    EXPECT_EQ(opened(base + ending).size(), 1U) << ending;
  }
}

// Two records of which the index names one tell whether the index was found.
TEST_F(ShapefileOpenTest, FindsTheFilesWhateverTheCaseOfTheirExtensions) {
  const std::string base = path("layer");
  const std::string shp =
      ShapefileWriter(1).add(point_content(1, 2)).add(point_content(3, 4)).shp();
  const std::string shx = ShapefileWriter(1).add(point_content(1, 2)).shx();
  const std::pair<const char*, const char*> endings[] = {
      {".shp", ".shx"}, {".SHP", ".SHX"}, {".shp", ".SHX"}, {".SHP", ".shx"}};
  for (const auto& [shape, index] : endings) {
    write_file(base + shape, shp);
    write_file(base + index, shx);
    EXPECT_EQ(opened(base).size(), 1U) << shape << index;
    EXPECT_EQ(opened(base + ".shp").size(), 1U) << shape << index;
    std::filesystem::remove(base + shape);
    std::filesystem::remove(base + index);
  }
  write_file(base + ".ShP", shp);
  write_file(base + ".ShX", shx);
  EXPECT_EQ(opened(base + ".ShP").size(), 1U);
}

TEST_F(ShapefileOpenTest, TellsWhichFilesItReads) {
  const ShapefileWriter writer = ShapefileWriter(1).add(point_content(1, 2));
  const std::string base = write(writer);
  for (const char* const ending : {"", ".shp", ".shx", ".DBF"}) {
    EXPECT_EQ(opened(base + ending).path(), base + ".shp") << ending;
    EXPECT_EQ(opened(base + ending).index_path(), base + ".shx") << ending;
  }
  // No index.
  write_file(base + ".shx", "x");
  EXPECT_EQ(opened(base).index_path(), "");
  std::filesystem::remove(base + ".shx");
  EXPECT_EQ(opened(base).index_path(), "");
  write_file(base + ".SHX", writer.shx());
  EXPECT_EQ(opened(base).index_path(), base + ".SHX");
  Shapefile from = opened(base);
  const Shapefile to = std::move(from);
  EXPECT_EQ(to.path(), base + ".shp");
  EXPECT_EQ(from.path() + from.index_path(), "");  // NOLINT(bugprone-use-after-move)
}

TEST_F(ShapefileOpenTest, OtherEndingsBelongToTheName) {
  write(ShapefileWriter(1).add(point_content(1, 2)), "roads.v2");
  EXPECT_EQ(opened(path("roads.v2")).size(), 1U);
  EXPECT_EQ(opened(path("roads.v2.shp")).size(), 1U);
  write(ShapefileWriter(1), "x");
  EXPECT_EQ(opened(path("x")).size(), 0U);
}

TEST_F(ShapefileOpenTest, ExpandsPathVariablesOnce) {
  const std::string base = write(ShapefileWriter(1).add(point_content(1, 2)), "$KZ_SHAPE_ODD");
  setenv("KZ_SHAPE_TEST", (path("") + ":" + base + ".shp").c_str(), 1);
  EXPECT_EQ(opened("$KZ_SHAPE_TEST<1>").size(), 1U);
  setenv("KZ_SHAPE_ODD", "odd", 1);  // which is not asked for
  EXPECT_EQ(opened("$KZ_SHAPE_TEST<1>").size(), 1U);
  unsetenv("KZ_SHAPE_ODD");
  EXPECT_EQ(opened("$KZ_SHAPE_TEST<0>\\$KZ_SHAPE_ODD").size(), 1U);
  unsetenv("KZ_SHAPE_TEST");
}

TEST_F(ShapefileOpenTest, SaysWhyAFileIsRefused) {
  const auto refusal = [](const std::string& name) {
    const auto file = Shapefile::open(name);
    return file ? std::pair(ErrorKind::none, std::string())
                : std::pair(file.error().kind, file.error().message);
  };
  const std::string base = path("layer");
  EXPECT_EQ(refusal(base), std::pair(ErrorKind::cannot_read, base + ": No such file or directory"));
  EXPECT_EQ(refusal(base + ".shp"),
            std::pair(ErrorKind::cannot_read, base + ".shp: No such file or directory"));
  EXPECT_EQ(refusal(std::string(2000, 'x')),
            std::pair(ErrorKind::cannot_read, std::string(2000, 'x') + ": the name is too long"));
  write_file(base + ".shp", header_bytes(1, 50).substr(0, 99));
  EXPECT_EQ(refusal(base),
            std::pair(ErrorKind::bad_data,
                      base + ": not a shapefile: 99 bytes are less than its header has"));
  for (const std::int32_t code : {9993, 170328064}) {  // the second with its bytes reversed
    write_file(base + ".shp", header_bytes(1, 50, {}, code));
    EXPECT_EQ(refusal(base),
              std::pair(ErrorKind::bad_data,
                        base + ": not a shapefile: it does not begin with the code 9994"));
  }
  std::filesystem::create_directory(path("folder.shp"));
  EXPECT_FALSE(Shapefile::open(path("folder")));
  std::filesystem::create_symlink("/dev/zero", path("device.shp"));
  EXPECT_EQ(refusal(path("device")).first, ErrorKind::bad_data);
}

TEST_F(ShapefileOpenTest, RefusesNamedPipes) {
  const NamedPipe pipe(path("pipe.shp"));
  EXPECT_EQ(Shapefile::open(path("pipe")).error().message, path("pipe") + ": cannot be opened");
  // In place of an index, a pipe is no index.
  const std::string base = write(ShapefileWriter(1).add(point_content(1, 2)));
  std::filesystem::remove(base + ".shx");
  const NamedPipe index(base + ".shx");
  EXPECT_EQ(opened(base).size(), 1U);
}

}  // namespace
