// Damaged files in `Shapefile`: what is wrong with a record is told, and costs that record
// alone.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "kzgis/shapefile.h"
#include "shape/record_text.h"
#include "shape/shapefile_writer.h"
#include "support/time_limit.h"

namespace {

using kzgis::ErrorKind;
using kzgis::Shapefile;

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

/// A polygon with Z and M of two parts and four points.
std::string polygon_z(bool with_m) {
  const std::string measures = Bytes().zeros(16 + 4 * 8).text();
  return arc_content({0, 2}, some_points(4), 15) + measures + (with_m ? measures : "");
}

/// Records of every form, each different from the others.
std::vector<std::string> sound_contents() {
  return {arc_content({0, 2}, some_points(5, 1)),
          point_content(3, 4),
          multi_point_content(some_points(3, 2)),
          null_content(),
          polygon_z(true),
          polygon_z(false),
          Bytes().little(11).little(1.0).little(2.0).little(3.0).little(4.0).text(),
          arc_content({0}, some_points(4, 3), 5)};
}

ShapefileWriter sound_writer() {
  ShapefileWriter writer(3);
  for (const std::string& content : sound_contents()) writer.add(content);
  return writer;
}

std::vector<std::string> all_told(Shapefile& file) {
  std::vector<std::string> records;
  for (const auto& record : file) records.push_back(told(record));
  return records;
}

class ShapefileDamageTest : public ShapefileTest {
 protected:
  Shapefile open(const ShapefileWriter& writer, bool with_index) const {
    return open(writer.shp(), writer.shx(), with_index);
  }
  Shapefile open(const std::string& shp, const std::string& shx, bool with_index) const {
    const std::string base = write(shp, shx);
    if (!with_index) std::filesystem::remove(base + ".shx");
    return opened(base);
  }
};

struct Damage {
  std::string content;
  const char* message;
};

TEST_F(ShapefileDamageTest, IsToldAndCostsTheRecordAlone) {
  const std::string polygon = arc_content({0, 2}, some_points(4), 5);
  const auto polygon_of = [](std::int32_t parts, std::int32_t points, std::int32_t type = 5) {
    return arc_fixed_part(parts, points, type) +
           arc_content({0, 2}, some_points(4), type).substr(44);
  };
  const Damage damages[] = {
      {Bytes().little(31).text() + polygon.substr(4), "a multipatch, which is not read"},
      {Bytes().little(2).text() + polygon.substr(4), "there is no shape type 2"},
      {Bytes().little(-1).text() + polygon.substr(4), "there is no shape type -1"},
      {polygon.substr(0, 42), "its length of 42 bytes is too short for a polygon"},
      {multi_point_fixed_part(1).substr(0, 38),
       "its length of 38 bytes is too short for a multipoint"},
      {polygon_of(-1, 4), "it claims -1 parts and 4 points"},
      {polygon_of(2, -4), "it claims 2 parts and -4 points"},
      {multi_point_fixed_part(-1), "it claims 0 parts and -1 points"},
      {polygon_of(2, 5), "its length is 116 bytes, but a polygon of 5 points in 2 parts needs 132"},
      {polygon_of(2, 3), "its length is 116 bytes, but a polygon of 3 points in 2 parts needs 100"},
      {polygon_of(1, 4), "its length is 116 bytes, but a polygon of 4 points in 1 parts needs 112"},
      // Counts whose bytes, in 32 bits, would be just the length again.
      {polygon_of(2, 0x10000004),
       "its length is 116 bytes, but a polygon of 268435460 points in 2 parts needs 4294967412"},
      {polygon_of(0x40000002, 4),
       "its length is 116 bytes, but a polygon of 4 points in 1073741826 parts needs 4294967412"},
      {polygon_of(kMost, kMost),
       "its length is 116 bytes, but a polygon of 2147483647 points in 2147483647 parts needs "
       "42949672984"},
      {polygon_of(2, 4, 25) + std::string(2, 'z'),
       "its length is 118 bytes, but a polygon with m of 4 points in 2 parts needs 116 or 164"},
      {polygon_z(false).substr(0, 150),
       "its length is 150 bytes, but a polygon with z of 4 points in 2 parts needs 164 or 212"},
      {polygon_z(true) + std::string(8, 'z'),
       "its length is 220 bytes, but a polygon with z of 4 points in 2 parts needs 164 or 212"},
      {multi_point_fixed_part(2) + points_bytes(some_points(3)),
       "its length is 88 bytes, but a multipoint of 2 points needs 72"},
      {point_content(1, 2).substr(0, 18), "its length is 18 bytes, but a point needs 20"},
      {point_content(1, 2) + std::string(8, 'z'), "its length is 28 bytes, but a point needs 20"},
      {Bytes().little(11).little(1.0).little(2.0).text(),
       "its length is 20 bytes, but a point with z needs 28 or 36"},
      {Bytes().little(21).zeros(22).text(),
       "its length is 26 bytes, but a point with m needs 20 or 28"},
      {arc_content({-1, 2}, some_points(4), 5), "part 1 begins at point -1, in front of the first"},
      {arc_content({0, -7}, some_points(4), 5), "part 2 begins at point -7, in front of the first"},
      {arc_content({0, 3, 2}, some_points(4), 5),
       "part 3 begins at point 2, in front of the part before it"},
      {arc_content({0, 5}, some_points(4), 3), "part 2 begins at point 5, but there are 4"},
      {arc_content({kMost}, some_points(4), 3),
       "part 1 begins at point 2147483647, but there are 4"},
  };
  for (const Damage& damage : damages) {
    const ShapefileWriter writer =
        ShapefileWriter(5).add(polygon).add(damage.content).add(point_content(5, 6));
    for (const bool with_index : {false, true}) {
      const LessThanASecond to_read;
      Shapefile file = open(writer, with_index);
      ASSERT_EQ(file.size(), 3U);
      const std::vector<std::string> records = all_told(file);
      EXPECT_EQ(records[0].substr(0, 10), "1: type 5,");
      EXPECT_EQ(records[1], std::string("record 2: ") + damage.message);
      EXPECT_EQ(records[2], "3: type 1, box 5 6 5 6, x 5, y 6");
      EXPECT_EQ(file.read(1).error().kind, ErrorKind::bad_data);
    }
  }
}

TEST_F(ShapefileDamageTest, ALengthThatCannotBeIsToldToo) {
  const std::string point = point_content(5, 6);
  const std::pair<std::int32_t, const char*> lengths[] = {
      {0, "a length of 0 bytes has no type"},
      {1, "a length of 2 bytes has no type"},
      {25, "its length is 50 bytes, but the file ends after 48"},
      {kMost, "its length is 4294967294 bytes, but the file ends after 48"},
      {-1, "its length is 8589934590 bytes, but the file ends after 48"},
  };
  for (const auto& [words, message] : lengths) {
    const ShapefileWriter writer = ShapefileWriter(1).add(point).add(point, words, 10).add(point);
    for (const bool with_index : {false, true}) {
      Shapefile file = open(writer, with_index);
      // Only the index leads past it.
      ASSERT_EQ(file.size(), with_index ? 3U : 2U);
      EXPECT_EQ(told(file.read(0)).substr(0, 2), "1:");
      EXPECT_EQ(told(file.read(1)), std::string("record 2: ") + message);
      EXPECT_EQ(file.read(1).error().kind, ErrorKind::bad_data);
      if (with_index) {
        EXPECT_EQ(told(file.read(2)).substr(0, 2), "3:");
      }
    }
  }
}

TEST_F(ShapefileDamageTest, AnIndexThatLiesIsTold) {
  const std::string line = arc_content({0}, some_points(3));  // 96 bytes from byte 108 on
  const std::pair<std::int32_t, const char*> offsets[] = {
      {0, "the index places it at byte 0, in the file's header"},
      {49, "the index places it at byte 98, in the file's header"},
      {102, "the index places it at byte 204, but the file has 204"},
      {101, "the file ends in its header at byte 202"},
      {kMost, "the index places it at byte 4294967294, but the file has 204"},
      {-1, "the index places it at byte 8589934590, but the file has 204"},
      {54, "its length is 4026531840 bytes, but the file ends after 88"},  // in the box
      {51, "its length is 6292992 bytes, but the file ends after 94"},
  };
  for (const auto& [words, message] : offsets) {
    ShapefileWriter writer(3);
    writer.add(line);
    const std::string shx =
        writer.shx() + Bytes().big(words).big(48).text() + Bytes().big(50).big(48).text();
    // The box begins with bytes that are large as a length too.
    std::string shp = writer.shp();
    shp.replace(112, 4, "\x78\0\0\0", 4);
    Shapefile file = open(shp, shx, true);
    ASSERT_EQ(file.size(), 3U);
    EXPECT_EQ(told(file.read(1)), std::string("record 2: ") + message) << words;
    EXPECT_EQ(told(file.read(0)), told(file.read(2)));
    EXPECT_TRUE(file.read(2));
  }
}

TEST_F(ShapefileDamageTest, FilesCutAtEveryByteGiveTheRecordsInFront) {
  const std::vector<std::string> contents = sound_contents();
  const ShapefileWriter writer = sound_writer();
  const std::string shp = writer.shp();
  Shapefile whole = open(writer, true);
  const std::vector<std::string> expected = all_told(whole);
  ASSERT_EQ(expected.size(), contents.size());
  std::vector<std::size_t> ends;
  std::size_t end = 100;
  for (const std::string& content : contents) ends.push_back(end += 8 + content.size());

  for (std::size_t cut = 0; cut < shp.size(); ++cut) {
    SCOPED_TRACE(cut);
    for (const bool with_index : {false, true}) {
      const std::string base = write(shp.substr(0, cut), writer.shx());
      if (!with_index) std::filesystem::remove(base + ".shx");
      auto file = Shapefile::open(base);
      ASSERT_EQ(file.has_value(), cut >= 100);
      if (!file) continue;
      const std::vector<std::string> records = all_told(*file);
      const auto complete =
          static_cast<std::size_t>(std::upper_bound(ends.begin(), ends.end(), cut) - ends.begin());
      const bool cuts_one = cut > (complete == 0 ? 100 : ends[complete - 1]);
      ASSERT_EQ(records.size(), with_index ? expected.size() : complete + (cuts_one ? 1 : 0));
      for (std::size_t i = 0; i < records.size(); ++i) {
        if (i < complete) {
          EXPECT_EQ(records[i], expected[i]);
        } else {
          EXPECT_EQ(records[i].substr(0, 10), "record " + std::to_string(i + 1) + ": ");
        }
      }
    }
  }
}

TEST_F(ShapefileDamageTest, AnIndexCutAtEveryByteLosesWhatItDoesNotName) {
  const ShapefileWriter writer = sound_writer();
  Shapefile whole = open(writer, true);
  const std::vector<std::string> expected = all_told(whole);
  for (std::size_t cut = 0; cut < writer.shx().size(); ++cut) {
    Shapefile file = open(writer.shp(), writer.shx().substr(0, cut), true);
    // Shorter than a header it is no index.
    const std::size_t count = cut < 100 ? expected.size() : (cut - 100) / 8;
    ASSERT_EQ(file.size(), count) << cut;
    EXPECT_EQ(all_told(file), std::vector(expected.begin(), expected.begin() + file.size()));
  }
}

// With an index, no byte of a record has a say in any other.
TEST_F(ShapefileDamageTest, AnyByteOfARecordCostsThatRecordAtMost) {
  const std::vector<std::string> contents = sound_contents();
  const ShapefileWriter writer = sound_writer();
  Shapefile whole = open(writer, true);
  const std::vector<std::string> expected = all_told(whole);
  std::string shp = writer.shp();
  std::size_t begin = 100;
  int refused = 0;
  for (std::size_t damaged = 0; damaged < contents.size(); ++damaged) {
    const std::size_t end = begin + 8 + contents[damaged].size();
    for (std::size_t i = begin; i < end; ++i) {
      const char before = shp[i];
      for (const char value : {'\0', '\x7f', '\xff', static_cast<char>(before + 1)}) {
        shp[i] = value;
        Shapefile file = open(shp, writer.shx(), true);
        const std::vector<std::string> records = all_told(file);
        for (std::size_t r = 0; r < records.size(); ++r) {
          if (r != damaged) {
            ASSERT_EQ(records[r], expected[r]) << "byte " << i;
          }
        }
        if (records[damaged].starts_with("record ")) ++refused;
      }
      shp[i] = before;
    }
    begin = end;
  }
  EXPECT_EQ(begin, shp.size());
  EXPECT_GT(refused, 200);
}

TEST_F(ShapefileDamageTest, AnyOrderGivesWhatTheFilesOrderGives) {
  constexpr unsigned kSeed = 20;
  std::mt19937 random(kSeed);
  ShapefileWriter writer(3);
  for (int i = 0; i < 60; ++i) {
    switch (i % 5) {
      case 0:
        writer.add(arc_content({0}, some_points(1 + static_cast<int>(random() % 9000), i)));
        break;
      case 1:
        writer.add(arc_content({0, 9}, some_points(5, i)));  // damaged
        break;
      case 2:
        writer.add(polygon_z(true));
        break;
      default:
        writer.add(point_content(i, -i));
    }
  }
  for (const bool with_index : {false, true}) {
    Shapefile file = open(writer, with_index);
    const std::vector<std::string> expected = all_told(file);
    ASSERT_EQ(expected.size(), 60U);
    for (int i = 0; i < 500; ++i) {
      const std::uint32_t index = static_cast<std::uint32_t>(random() % expected.size());
      ASSERT_EQ(told(file.read(index)), expected[index]) << "seed " << kSeed << ", read " << i;
    }
    for (auto index = file.size(); index-- > 0;) {
      ASSERT_EQ(told(file.read(index)), expected[index]);
    }
  }
}

// A file of nothing but zeros, or of the smallest records there are, is opened in no time.
TEST_F(ShapefileDamageTest, HostileFilesTakeNoTime) {
  const LessThanASecond for_all;
  const std::string base = write(header_bytes(3, 50), "");
  std::error_code no_room;
  std::filesystem::resize_file(base + ".shp", std::uintmax_t{1} << 40, no_room);
  if (!no_room) {
    Shapefile file = opened(base);
    EXPECT_EQ(file.size(), 1U);
    EXPECT_EQ(told(file.read(0)), "record 1: a length of 0 bytes has no type");
  }
  std::string shp = header_bytes(3, 50);
  for (int i = 0; i < 20000; ++i) shp += Bytes().big(1).big(2).little(3).text();
  Shapefile many = open(shp, "", false);
  EXPECT_EQ(many.size(), 20000U);
  for (const auto& record : many) {
    ASSERT_EQ(record.error().message.substr(record.error().message.find(':')),
              ": its length of 4 bytes is too short for a polyline");
  }
}

// A file that shrinks while it is open, and is whole again.
TEST_F(ShapefileDamageTest, AFileThatShrankIsReadAgainWhenItIsWhole) {
  ShapefileWriter writer(3);
  writer.add(arc_content({0}, some_points(10000, 1))).add(arc_content({0}, some_points(9000, 2)));
  for (const bool with_index : {false, true}) {
    const std::string base = write(writer);
    if (!with_index) std::filesystem::remove(base + ".shx");
    Shapefile file = opened(base);
    const std::string first = told(file.read(0));
    const std::string second = told(file.read(1));
    for (const std::size_t size : {std::size_t{150}, std::size_t{160200}, std::size_t{250000}}) {
      ASSERT_TRUE(file.read(0));
      std::filesystem::resize_file(base + ".shp", size);
      EXPECT_EQ(told(file.read(1)), "record 2: cannot be read at byte 160156") << size;
      EXPECT_EQ(file.read(1).error().kind, ErrorKind::cannot_read);
      write_file(base + ".shp", writer.shp());  // over the same file
      EXPECT_EQ(told(file.read(1)), second);
      EXPECT_EQ(told(file.read(0)), first);
    }
  }
}

}  // namespace
