// Every record of every sample layer, against shapelib's reading of it: boxes, part
// starts and vertices must agree to the bit.

#include <gtest/gtest.h>
#include <shapefil.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "kzgis/shape.h"
#include "shape/shape_record.h"

namespace {

struct CloseHandle {
  void operator()(SHPInfo* handle) const { SHPClose(handle); }
};
struct DestroyObject {
  void operator()(SHPObject* object) const { SHPDestroyObject(object); }
};

::testing::AssertionResult same_bits(double ours, double theirs) {
  if (std::bit_cast<std::uint64_t>(ours) == std::bit_cast<std::uint64_t>(theirs)) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << ours << " against " << theirs;
}

/// Compares record `number`, which `shape` stands at, with `theirs`.
void compare_record(KZ_GIS_ESRI_Shape_c& shape, kz_long number, const SHPObject& theirs) {
  ShapeRecord ours;
  switch (shape.ShapeHeader().ShapeType()) {
    case kzgis::shape_type::point: {
      double x = 0;
      double y = 0;
      ASSERT_EQ(shape.ReadPointShape(&ours.number, &x, &y), 1u);
      ASSERT_EQ(theirs.nVertices, 1);
      EXPECT_TRUE(same_bits(x, theirs.padfX[0]));
      EXPECT_TRUE(same_bits(y, theirs.padfY[0]));
      EXPECT_EQ(ours.number, number);
      return;
    }
    case kzgis::shape_type::multi_point:
      ASSERT_EQ(ours.read_multi_point(shape), 1u);
      break;
    case kzgis::shape_type::arc:
      ASSERT_EQ(ours.read_arc(shape), 1u);
      break;
    default:
      ASSERT_EQ(ours.read_polygon(shape), 1u);
  }
  EXPECT_EQ(ours.number, number);
  EXPECT_TRUE(same_bits(ours.x_min, theirs.dfXMin));
  EXPECT_TRUE(same_bits(ours.y_min, theirs.dfYMin));
  EXPECT_TRUE(same_bits(ours.x_max, theirs.dfXMax));
  EXPECT_TRUE(same_bits(ours.y_max, theirs.dfYMax));
  if (shape.ShapeHeader().ShapeType() != kzgis::shape_type::multi_point) {
    ASSERT_EQ(ours.num_parts, theirs.nParts);
    for (int i = 0; i < theirs.nParts; ++i) EXPECT_EQ(ours.parts[i], theirs.panPartStart[i]);
  }
  ASSERT_EQ(ours.num_points, theirs.nVertices);
  for (int i = 0; i < theirs.nVertices; ++i) {
    ASSERT_TRUE(same_bits(ours.x[i], theirs.padfX[i])) << "x of point " << i;
    ASSERT_TRUE(same_bits(ours.y[i], theirs.padfY[i])) << "y of point " << i;
  }
}

TEST(Shapelib, AgreesOnEveryRecordOfEverySampleLayer) {
  int layers = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(KZGIS_TEST_DATA_DIR)) {
    if (entry.path().extension() != ".shp") continue;
    SCOPED_TRACE(entry.path());
    const std::unique_ptr<SHPInfo, CloseHandle> handle(SHPOpen(entry.path().c_str(), "rb"));
    ASSERT_NE(handle, nullptr);
    KZ_GIS_ESRI_Shape_c shape(entry.path().c_str());
    ASSERT_EQ(shape.ShapeFileIsOpen(), 1);
    int records = 0;
    int type = 0;
    SHPGetInfo(handle.get(), &records, &type, nullptr, nullptr);
    EXPECT_EQ(shape.ShapeHeader().ShapeType(), type);
    kz_ulong count = 0;
    EXPECT_EQ(shape.NumberOfDataRecords(&count), 1u);
    ASSERT_EQ(count, static_cast<kz_ulong>(records));
    for (int i = 0; i < records; ++i) {
      SCOPED_TRACE(i + 1);
      const std::unique_ptr<SHPObject, DestroyObject> theirs(SHPReadObject(handle.get(), i));
      ASSERT_NE(theirs, nullptr);
      compare_record(shape, i + 1, *theirs);  // in file order
      if (HasFatalFailure()) return;
    }
    for (int i = records; i-- > 0;) {
      SCOPED_TRACE(i + 1);
      const std::unique_ptr<SHPObject, DestroyObject> theirs(SHPReadObject(handle.get(), i));
      ASSERT_EQ(shape.SeekToDataRecord(i + 1), 1u);
      compare_record(shape, i + 1, *theirs);  // through the index, backwards
      if (HasFatalFailure()) return;
    }
    ++layers;
  }
  EXPECT_GE(layers, 11);
}

}  // namespace
