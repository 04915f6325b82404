// The sample layers of data/ne, read whole.
//
// Counts and extents are those of ogrinfo (GDAL 3.6.2): `ogrinfo -so -al LAYER.shp` for
// records and extent, `ogrinfo -al -q LAYER.shp` for parts and points, counted in its WKT.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "kzgis/shape.h"
#include "shape/shape_record.h"

namespace {

struct SampleLayer {
  const char* name;
  kz_long type;
  kz_ulong records, parts, points;
  kz_long largest;
  double x_min, y_min, x_max, y_max;  // to six decimals
};

constexpr SampleLayer kLayers[] = {
    {"ne_110m_land", 5, 127, 128, 5143, 1351, -180, -90, 180, 83.645130},
    {"ne_110m_countries", 5, 177, 289, 10654, 794, -180, -90, 180, 83.645130},
    {"ne_110m_lakes", 5, 25, 25, 489, 39, -124.953634, -16.536406, 109.929807, 66.969298},
    {"ne_110m_coastline", 3, 134, 134, 5128, 693, -180, -85.609038, 180, 83.645130},
    {"ne_110m_rivers", 3, 13, 13, 1147, 192, -135.313414, -33.993584, 129.956027, 72.906506},
    {"ne_110m_places", 1, 243, 243, 243, 1, -175.220564, -41.299988, 179.216647, 64.150024},
    {"ne_50m_land", 5, 1420, 1422, 60669, 10688, -180, -89.998926, 180, 83.599609},
    {"ne_50m_countries", 5, 241, 1631, 99593, 11573, -180, -89.998926, 180, 83.599609},
    {"ne_50m_lakes_with_islands", 5, 19, 71, 4819, 583, -117.668115, -14.402734, 109.955371,
     63.583984},
    {"ne_50m_places", 1, 1249, 1249, 1249, 1, -175.220564, -90, 179.216647, 78.216684},
    {"ne_50m_places_by_country", 8, 217, 217, 1249, 111, -175.220564, -90, 179.216647, 78.216684},
};

std::string path_of(const SampleLayer& layer) {
  return std::string(KZGIS_TEST_DATA_DIR "/ne/") + layer.name;
}

class SampleLayerTest : public testing::TestWithParam<SampleLayer> {};

INSTANTIATE_TEST_SUITE_P(Ne, SampleLayerTest, testing::ValuesIn(kLayers),
                         [](const auto& layer) { return std::string(layer.param.name); });

TEST_P(SampleLayerTest, HeadersAndTotalsAreThoseOfOgrinfo) {
  KZ_GIS_ESRI_Shape_c shape(path_of(GetParam()).c_str());
  ASSERT_EQ(shape.ShapeFileIsOpen(), 1);
  EXPECT_EQ(shape.ShapeHeader().ValidateFileHeader(), 1u);
  EXPECT_EQ(shape.IndexHeader().ValidateFileHeader(), 1u);
  EXPECT_EQ(shape.ShapeHeader().ShapeType(), GetParam().type);
  kz_ulong count = 0;
  EXPECT_EQ(shape.NumberOfDataRecords(&count), 1u);
  EXPECT_EQ(count, GetParam().records);
  EXPECT_EQ(shape.NumberOfParts(&count), 1u);
  EXPECT_EQ(count, GetParam().parts);
  EXPECT_EQ(shape.NumberOfPoints(&count), 1u);
  EXPECT_EQ(count, GetParam().points);
}

TEST_P(SampleLayerTest, ReadingFromFirstToLastGivesEveryPartAndPoint) {
  const SampleLayer& layer = GetParam();
  KZ_GIS_ESRI_Shape_c shape(path_of(layer).c_str());
  ASSERT_EQ(shape.ShapeFileIsOpen(), 1);
  ShapeRecord record;
  kz_ulong parts = 0;
  kz_ulong points = 0;
  kz_long largest = 0;
  double x_min = std::numeric_limits<double>::infinity();
  double y_min = x_min;
  double x_max = -x_min;
  double y_max = -x_min;
  for (kz_ulong i = 1; i <= layer.records; ++i) {
    SCOPED_TRACE(i);
    double point_x = 0;
    double point_y = 0;
    const double* x = &point_x;
    const double* y = &point_y;
    kz_long in_record = 1;
    if (layer.type == kzgis::shape_type::point) {
      ASSERT_EQ(shape.ReadPointShape(&record.number, &point_x, &point_y), 1u);
      parts += 1;
    } else {
      if (layer.type == kzgis::shape_type::multi_point) {
        ASSERT_EQ(record.read_multi_point(shape), 1u);
        parts += 1;
      } else {
        ASSERT_EQ(layer.type == kzgis::shape_type::arc ? record.read_arc(shape)
                                                       : record.read_polygon(shape),
                  1u);
        parts += static_cast<kz_ulong>(record.num_parts);
        EXPECT_EQ(record.parts[0], 0);
      }
      x = record.x;
      y = record.y;
      in_record = record.num_points;
      // The box of a record is exactly that of its points.
      EXPECT_EQ(*std::min_element(x, x + in_record), record.x_min);
      EXPECT_EQ(*std::max_element(x, x + in_record), record.x_max);
      EXPECT_EQ(*std::min_element(y, y + in_record), record.y_min);
      EXPECT_EQ(*std::max_element(y, y + in_record), record.y_max);
    }
    EXPECT_EQ(record.number, static_cast<kz_long>(i));
    points += static_cast<kz_ulong>(in_record);
    largest = std::max(largest, in_record);
    x_min = std::min(x_min, *std::min_element(x, x + in_record));
    x_max = std::max(x_max, *std::max_element(x, x + in_record));
    y_min = std::min(y_min, *std::min_element(y, y + in_record));
    y_max = std::max(y_max, *std::max_element(y, y + in_record));
  }
  EXPECT_EQ(parts, layer.parts);
  EXPECT_EQ(points, layer.points);
  EXPECT_EQ(largest, layer.largest);
  EXPECT_NEAR(x_min, layer.x_min, 5.1e-7);
  EXPECT_NEAR(y_min, layer.y_min, 5.1e-7);
  EXPECT_NEAR(x_max, layer.x_max, 5.1e-7);
  EXPECT_NEAR(y_max, layer.y_max, 5.1e-7);
  // Nothing is left behind the last record.
  double x;
  double y;
  EXPECT_EQ(shape.ReadPointShape(&record.number, &x, &y), 11u);
}

}  // namespace
