// Allocations that fail, brought about by a limit on the address space of a child
// process and a sparse file whose record really has room for its points.

#include <gtest/gtest.h>

#include <string>

#include "kzgis/shape.h"
#include "shape/shape_record.h"
#include "shape/shapefile_writer.h"
#include "support/memory_limit.h"

#ifdef KZGIS_CAN_LIMIT_MEMORY

namespace {

constexpr kz_long kMany = 64 << 20;                       // 64 Mi elements
constexpr std::uintmax_t kBytesOfDoubles = kMany * 8ULL;  // of one array of points
constexpr std::uintmax_t kBytesOfLongs = kMany * 4ULL;

class ShapeMemoryTest : public ShapefileTest {
 protected:
  /// A file of two records of `content`'s kind: the first is `fixed_part` followed by
  /// `hole` bytes that take no room on the disk, the second is never reached.
  std::string write_sparse(std::int32_t type, const std::string& fixed_part, std::uintmax_t hole) {
    const std::string base = write(ShapefileWriter(type).add(fixed_part, 5000, 5000));
    std::filesystem::resize_file(base + ".shp", 108 + fixed_part.size() + hole);
    return base;
  }
  std::string write_small() {
    return write(ShapefileWriter(3).add(arc_content({0}, some_points(3))), "small");
  }
};

using ShapeMemoryDeathTest = ShapeMemoryTest;

TEST_F(ShapeMemoryDeathTest, NoMemoryForThePartsGives14) {
  const std::string base = write_sparse(3, arc_fixed_part(kMany, 5), kBytesOfLongs + 80);
  EXPECT_EXIT(
      {
        KZ_GIS_ESRI_Shape_c shape(base.c_str());
        ShapeRecord record;
        limit_growth(kBytesOfLongs / 2);
        check(record.read_arc(shape) == 14, 1);
        check(record.num_parts == kMany && record.num_points == 5, 2);
        check(record.parts == nullptr && record.parts_capacity == 0, 3);
        check(record.x == nullptr && record.y == nullptr && record.points_capacity == 0, 4);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(ShapeMemoryDeathTest, NoMemoryForEitherCoordinateGives14) {
  const std::string base = write_sparse(3, arc_fixed_part(1, kMany), 2 * kBytesOfDoubles + 4);
  EXPECT_EXIT(
      {
        KZ_GIS_ESRI_Shape_c shape(base.c_str());
        ShapeRecord record;
        limit_growth(kBytesOfDoubles / 2);
        check(record.read_polygon(shape) == 14, 1);
        check(record.parts != nullptr && record.parts_capacity == 1, 2);
        check(record.x == nullptr && record.y == nullptr && record.points_capacity == 0, 3);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(ShapeMemoryDeathTest, AMultiPointWithoutMemoryGives14) {
  const std::string base = write_sparse(8, multi_point_fixed_part(kMany), 2 * kBytesOfDoubles);
  EXPECT_EXIT(
      {
        KZ_GIS_ESRI_Shape_c shape(base.c_str());
        ShapeRecord record;
        limit_growth(kBytesOfDoubles / 2);
        check(record.read_multi_point(shape) == 14, 1);
        check(record.x == nullptr && record.y == nullptr && record.points_capacity == 0, 2);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "");
}

// The first array grows, the second is lost, and the capacity still tells of both.
TEST_F(ShapeMemoryDeathTest, MemoryForOneCoordinateAloneGives14AndTheArraysServeAgain) {
  const std::string big = write_sparse(3, arc_fixed_part(1, kMany), 2 * kBytesOfDoubles + 4);
  const std::string small = write_small();
  EXPECT_EXIT(
      {
        KZ_GIS_ESRI_Shape_c shape(small.c_str());
        ShapeRecord record;
        check(record.read_arc(shape) == 1 && record.points_capacity == 3, 1);
        shape.FileName(big.c_str());
        limit_growth(kBytesOfDoubles + kBytesOfDoubles / 2);
        check(record.read_arc(shape) == 14, 2);
        check(record.x != nullptr && record.y == nullptr, 3);
        check(record.points_capacity == 3 && record.num_points == kMany, 4);
        lift_limit();
        shape.FileName(small.c_str());
        check(record.read_arc(shape) == 1, 5);
        check(record.points_capacity == 3, 6);
        check(record.points(3) == some_points(3), 7);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
#endif
