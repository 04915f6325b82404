#include "tools/map/layer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "shape/shapefile_writer.h"
#include "tools/support/command_error.h"

namespace kzgis::map {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;

class ReadLayer : public ShapefileTest {
 protected:
  Layer read(const std::string& name) {
    lines_.clear();
    return read_layer(name, [this](const std::string& line) { lines_.push_back(line); });
  }

  std::vector<std::string> lines_;
};

const std::vector<Point> kTriangle{{0, 0}, {0, 5}, {5, 5}, {0, 0}};

TEST_F(ReadLayer, KeepsPartsApart) {
  const Layer layer = read(write(ShapefileWriter(5).add(
      arc_content({0, 4}, {{0, 0}, {0, 5}, {5, 5}, {0, 0}, {1, 2}, {1, 3}, {2, 3}, {1, 2}}, 5))));
  EXPECT_EQ(layer.kind, LayerKind::polygons);
  ASSERT_EQ(layer.records.size(), 1u);
  EXPECT_THAT(layer.records[0].starts, ElementsAre(0, 4));
  EXPECT_THAT(layer.records[0].x, ElementsAre(0, 0, 5, 0, 1, 1, 2, 1));
  EXPECT_THAT(layer.records[0].y, ElementsAre(0, 5, 5, 0, 2, 3, 3, 2));
  EXPECT_THAT(lines_, IsEmpty());
}

TEST_F(ReadLayer, KnowsTheKinds) {
  const Layer points = read(write(ShapefileWriter(1).add(point_content(3, 4))));
  EXPECT_EQ(points.kind, LayerKind::points);
  ASSERT_EQ(points.records.size(), 1u);
  EXPECT_THAT(points.records[0].y, ElementsAre(4.0));
  const Layer many = read(write(ShapefileWriter(8).add(multi_point_content(kTriangle))));
  EXPECT_EQ(many.kind, LayerKind::points);
  EXPECT_EQ(many.records.at(0).x.size(), 4u);
  EXPECT_EQ(read(write(ShapefileWriter(3).add(arc_content({0}, kTriangle)))).kind,
            LayerKind::lines);
  EXPECT_TRUE(read(write(ShapefileWriter(0).add(null_content()))).records.empty());
}

TEST_F(ReadLayer, SkipsNullAndEmptyRecordsQuietly) {
  const Layer layer = read(write(ShapefileWriter(5)
                                     .add(null_content())
                                     .add(arc_content({0}, kTriangle, 5))
                                     .add(arc_content({0}, {}, 5))
                                     .add(null_content())));
  EXPECT_EQ(layer.records.size(), 1u);
  EXPECT_THAT(lines_, IsEmpty());
}

TEST_F(ReadLayer, ReportsARecordThatCannotBeReadAndGoesOn) {
  // The second record's entry in the index points behind the end of the file.
  ShapefileWriter writer(3);
  writer.add(arc_content({0}, kTriangle))
      .add_indexed(arc_content({0}, kTriangle), 64, 1000000, 64)
      .add(arc_content({0}, kTriangle));
  const Layer layer = read(write(writer));
  EXPECT_EQ(layer.records.size(), 2u);
  EXPECT_THAT(lines_, ElementsAre(HasSubstr("layer: record 2: the index places it at byte ")));
}

TEST_F(ReadLayer, RefusesCoordinatesThatAreNotDegrees) {
  const std::string file =
      write(ShapefileWriter(1).add(point_content(2, 3)).add(point_content(456000, 5.3e6)));
  EXPECT_THAT([&] { read(file); },
              ThrowsMessage<tools::CommandError>(
                  file + ": record 2: coordinates are not degrees: 456000, 5300000"));
}

TEST_F(ReadLayer, ReportsNumbersThatAreNotFinite) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const Layer layer = read(write(ShapefileWriter(3)
                                     .add(arc_content({0}, {{0, 0}, {nan, 3}, {2, 2}}))
                                     .add(arc_content({0}, {{0, 0}, {2, 2}}))
                                     .add(arc_content({0}, {{0, 0}, {2, 2}, {1, -inf}}))));
  EXPECT_THAT(layer.numbers, ElementsAre(2));
  EXPECT_THAT(lines_, ElementsAre(EndsWith("layer: record 1: point 2 is nowhere: nan, 3"),
                                  EndsWith("layer: record 3: point 3 is nowhere: 1, -inf")));
}

TEST_F(ReadLayer, KeepsNoMorePointsThanTheFileHasBytesFor) {
  // A thousand index entries for one and the same record.
  ShapefileWriter writer(3);
  const std::string content = arc_content({0}, some_points(50));
  writer.add(content);
  const auto words = static_cast<std::int32_t>(content.size() / 2);
  std::string index = header_bytes(3, 50 + 4 * 1000);
  for (int i = 0; i < 1000; ++i) index += Bytes().big(50).big(words).text();
  const Layer layer = read(write(writer.shp(), index));
  EXPECT_EQ(layer.records.size(), 1u);
  EXPECT_THAT(lines_,
              ElementsAre(EndsWith("record 2: the records together hold more than the file")));
}

TEST_F(ReadLayer, ReportsAnIndexThatClaimsMoreThanItHolds) {
  ShapefileWriter writer(3);
  writer.add(arc_content({0}, kTriangle));
  std::string index = writer.shx();
  index.replace(24, 4, Bytes().big(0x3FFFFFFF).text());
  const Layer layer = read(write(writer.shp(), index));
  EXPECT_EQ(layer.records.size(), 1u);
  EXPECT_THAT(lines_, ElementsAre(EndsWith(": the index is shorter than its header says")));
}

TEST_F(ReadLayer, RefusesWhatIsNoShapefile) {
  ShapefileWriter writer(5);
  writer.add(arc_content({0}, kTriangle, 5));
  std::string shp = writer.shp();
  shp[3] = 1;
  const std::string file = write(shp, writer.shx());
  EXPECT_THAT([&] { read(file); },
              ThrowsMessage<tools::CommandError>(
                  file + ": not a shapefile: it does not begin with the code 9994"));
  EXPECT_THROW(read(path("absent.shp")), tools::CommandError);
}

TEST_F(ReadLayer, AcceptsABoxWithoutExtent) {
  const std::string content = point_content(3, 4);
  std::string shp = ShapefileWriter(1).add(content).shp();
  shp.replace(36, 32, Bytes().little(3.0).little(4.0).little(3.0).little(4.0).text());
  EXPECT_EQ(read(write(shp, ShapefileWriter(1).add(content).shx())).records.size(), 1u);
}

}  // namespace
}  // namespace kzgis::map
