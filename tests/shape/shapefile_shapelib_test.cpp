// `Shapefile` against shapelib, to the bit: what shapelib writes of every type, and every record
// of every sample layer.

#include <gtest/gtest.h>
#include <shapefil.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "kzgis/shapefile.h"
#include "shape/record_text.h"
#include "support/temporary_directory.h"

namespace {

struct CloseHandle {
  void operator()(SHPInfo* handle) const { SHPClose(handle); }
};
struct DestroyObject {
  void operator()(SHPObject* object) const { SHPDestroyObject(object); }
};
using Handle = std::unique_ptr<SHPInfo, CloseHandle>;
using Object = std::unique_ptr<SHPObject, DestroyObject>;

bool has_z(int type) { return type > 10 && type < 20; }
bool is_point(int type) { return type % 10 == 1; }

::testing::AssertionResult same_bits(std::span<const double> ours, const double* theirs,
                                     int count) {
  if (ours.size() != static_cast<std::size_t>(count)) {
    return ::testing::AssertionFailure() << ours.size() << " numbers against " << count;
  }
  for (std::size_t i = 0; i < ours.size(); ++i) {
    if (std::bit_cast<std::uint64_t>(ours[i]) != std::bit_cast<std::uint64_t>(theirs[i])) {
      return ::testing::AssertionFailure()
             << "number " << i << ": " << ours[i] << " against " << theirs[i];
    }
  }
  return ::testing::AssertionSuccess();
}

void compare(const kzgis::Result<kzgis::ShapeRecord>& ours, const SHPObject& theirs) {
  ASSERT_TRUE(ours) << ours.error().message;
  EXPECT_EQ(static_cast<int>(ours->type), theirs.nSHPType);
  EXPECT_EQ(ours->number, static_cast<std::uint32_t>(theirs.nShapeId + 1));
  if (theirs.nSHPType == SHPT_NULL) {
    EXPECT_TRUE(ours->x.empty() && ours->y.empty() && ours->z.empty() && ours->m.empty());
    return;
  }
  EXPECT_TRUE(same_bits({&ours->box.min_x, 1}, &theirs.dfXMin, 1));
  EXPECT_TRUE(same_bits({&ours->box.min_y, 1}, &theirs.dfYMin, 1));
  EXPECT_TRUE(same_bits({&ours->box.max_x, 1}, &theirs.dfXMax, 1));
  EXPECT_TRUE(same_bits({&ours->box.max_y, 1}, &theirs.dfYMax, 1));
  const std::vector<int> starts(theirs.panPartStart, theirs.panPartStart + theirs.nParts);
  EXPECT_EQ(std::vector<int>(ours->parts.begin(), ours->parts.end()), starts);
  ASSERT_TRUE(same_bits(ours->x, theirs.padfX, theirs.nVertices));
  ASSERT_TRUE(same_bits(ours->y, theirs.padfY, theirs.nVertices));
  ASSERT_TRUE(same_bits(ours->z, theirs.padfZ, has_z(theirs.nSHPType) ? theirs.nVertices : 0));
  ASSERT_TRUE(same_bits(ours->m, theirs.padfM, theirs.bMeasureIsUsed ? theirs.nVertices : 0));
}

/// Compares every record, in file order, through the index and without, and backwards.
void compare_files(const std::string& base) {
  SCOPED_TRACE(base);
  const Handle handle(SHPOpen(base.c_str(), "rb"));
  ASSERT_NE(handle, nullptr);
  int records = 0;
  int type = 0;
  double low[4];
  double high[4];
  SHPGetInfo(handle.get(), &records, &type, low, high);

  const TemporaryDirectory directory;
  std::filesystem::copy(base + ".shp", directory.path() / "alone.shp");
  for (const std::string& name : {base, (directory.path() / "alone").string()}) {
    kzgis::Shapefile ours = opened(name);
    EXPECT_EQ(static_cast<int>(ours.type()), type);
    EXPECT_TRUE(same_bits({&ours.box().min_x, 1}, low, 1));
    EXPECT_TRUE(same_bits({&ours.box().min_y, 1}, low + 1, 1));
    EXPECT_TRUE(same_bits({&ours.box().max_x, 1}, high, 1));
    EXPECT_TRUE(same_bits({&ours.box().max_y, 1}, high + 1, 1));
    ASSERT_EQ(ours.size(), static_cast<std::uint32_t>(records));
    int i = 0;
    for (const auto& record : ours) {
      SCOPED_TRACE(i);
      const Object theirs(SHPReadObject(handle.get(), i++));
      ASSERT_NE(theirs, nullptr);
      compare(record, *theirs);
      if (testing::Test::HasFatalFailure()) return;
    }
    EXPECT_EQ(i, records);
    while (i-- > 0) {
      const Object theirs(SHPReadObject(handle.get(), i));
      compare(ours.read(static_cast<std::uint32_t>(i)), *theirs);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(ShapefileAndShapelib, AgreeOnEverySampleLayer) {
  int layers = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(KZGIS_TEST_DATA_DIR)) {
    if (entry.path().extension() != ".shp") continue;
    compare_files(std::filesystem::path(entry.path()).replace_extension().string());
    ++layers;
  }
  EXPECT_GE(layers, 15);
}

TEST(ShapefileAndShapelib, AgreeOnWhatShapelibWritesOfEveryType) {
  constexpr unsigned kSeed = 7;
  std::mt19937 random(kSeed);
  std::uniform_real_distribution<double> number(-1e6, 1e6);
  const TemporaryDirectory directory;
  for (const int type : {1, 3, 5, 8, 11, 13, 15, 18, 21, 23, 25, 28}) {
    const std::string base = (directory.path() / std::to_string(type)).string();
    {
      const Handle handle(SHPCreate(base.c_str(), type));
      ASSERT_NE(handle, nullptr);
      for (int record = 0; record < 40; ++record) {
        const int points = is_point(type) ? 1 : 1 + static_cast<int>(random() % 3000);
        std::vector<int> starts{0};
        if (type % 10 != 8 && !is_point(type)) {
          while (random() % 3 != 0 && starts.back() + 1 < points) {
            starts.push_back(starts.back() + 1 +
                             static_cast<int>(random() % static_cast<unsigned>(points)));
            if (starts.back() >= points) starts.back() = points - 1;
          }
        }
        std::vector<double> values[4];
        for (auto& list : values) {
          for (int i = 0; i < points; ++i) list.push_back(number(random));
        }
        const bool with_m = type > 20 || record % 3 != 0;
        const bool null = record % 10 == 9;
        const Object object(null ? SHPCreateSimpleObject(SHPT_NULL, 0, nullptr, nullptr, nullptr)
                                 : SHPCreateObject(type, -1, static_cast<int>(starts.size()),
                                                   starts.data(), nullptr, points, values[0].data(),
                                                   values[1].data(), values[2].data(),
                                                   with_m ? values[3].data() : nullptr));
        ASSERT_EQ(SHPWriteObject(handle.get(), -1, object.get()), record);
      }
    }
    compare_files(base);
  }
}

TEST(ShapefileAndShapelib, AgreeThatAMultipatchIsOne) {
  const TemporaryDirectory directory;
  const std::string base = (directory.path() / "patches").string();
  {
    const Handle handle(SHPCreate(base.c_str(), SHPT_MULTIPATCH));
    const double xs[] = {0, 1, 1};
    const double ys[] = {0, 0, 1};
    const int start = 0;
    const int part_type = SHPP_RING;
    const Object object(
        SHPCreateObject(SHPT_MULTIPATCH, -1, 1, &start, &part_type, 3, xs, ys, ys, nullptr));
    ASSERT_EQ(SHPWriteObject(handle.get(), -1, object.get()), 0);
  }
  kzgis::Shapefile file = opened(base);
  EXPECT_EQ(file.type(), kzgis::ShapeType::multipatch);
  EXPECT_EQ(told(file.read(0)), "record 1: a multipatch, which is not read");
}

}  // namespace
