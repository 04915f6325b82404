#include "tools/support/shape_records.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/temporary_directory.h"
#include "tools/support/command_error.h"

namespace {

using kzgis::tools::CommandError;
using kzgis::tools::RecordState;
using kzgis::tools::ShapeRecord;
using kzgis::tools::ShapeRecords;
using Doubles = std::vector<double>;

const std::string kData = KZGIS_TEST_DATA_DIR "/ne/";

TEST(ShapeRecords, WalksPolygons) {
  ShapeRecords shapes(kData + "ne_110m_countries.shp");
  EXPECT_EQ(shapes.type(), 5);
  ASSERT_EQ(shapes.count(), 177);
  std::size_t parts = 0;
  std::size_t points = 0;
  ShapeRecord record;
  for (kz_long n = 1; n <= shapes.count(); ++n) {
    ASSERT_EQ(shapes.read(n, record), RecordState::read) << n;
    EXPECT_EQ(record.number, n);
    const auto rings = ShapeRecords::split(record, record.x);
    ASSERT_TRUE(rings.has_value());
    for (const auto& ring : *rings) EXPECT_EQ(ring.front(), ring.back());
    parts += record.parts.size();
    points += record.x.size();
  }
  EXPECT_EQ(parts, 289U);
  EXPECT_EQ(points, 10654U);
}

TEST(ShapeRecords, WalksPointsAndMultiPoints) {
  ShapeRecords places(kData + "ne_110m_places");
  ShapeRecord record;
  ASSERT_EQ(places.count(), 243);
  ASSERT_EQ(places.read(1, record), RecordState::read);
  ASSERT_EQ(record.x.size(), 1U);
  EXPECT_EQ(record.x_min, record.x[0]);
  EXPECT_EQ(record.y_max, record.y[0]);

  ShapeRecords by_country(kData + "ne_50m_places_by_country.shx");
  ASSERT_EQ(by_country.count(), 217);
  std::size_t points = 0;
  for (kz_long n = 1; n <= by_country.count(); ++n) {
    ASSERT_EQ(by_country.read(n, record), RecordState::read);
    points += record.x.size();
  }
  EXPECT_EQ(points, 1249U);
}

/// Works on a copy of a sample file that may be damaged.
class DamagedShapefile : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* const ending : {".shp", ".shx"}) {
      std::filesystem::copy_file(kData + "ne_110m_lakes" + ending, path(ending));
    }
  }

  std::filesystem::path path(const std::string& ending) const {
    return directory_.path() / ("lakes" + ending);
  }
  void cut(const std::string& ending, std::uintmax_t bytes) const {
    std::filesystem::resize_file(path(ending), std::filesystem::file_size(path(ending)) - bytes);
  }
  std::string refusal() const {
    try {
      ShapeRecords shapes(path(".shp").string());
    } catch (const CommandError& error) {
      return error.what();
    }
    return "(opened)";
  }

  const TemporaryDirectory directory_;
};

TEST_F(DamagedShapefile, GoesOnBehindARecordThatCannotBeRead) {
  {
    // The third index entry leads out of the file.
    std::fstream index(path(".shx"), std::ios::in | std::ios::out | std::ios::binary);
    index.seekp(100 + 2 * 8);
    index.write("\x7F\xFF\xFF\xFF", 4);
  }
  ShapeRecords shapes(path(".shp").string());
  ShapeRecord record;
  EXPECT_EQ(shapes.read(2, record), RecordState::read);
  EXPECT_EQ(shapes.read(3, record), RecordState::failed);
  EXPECT_EQ(shapes.failure(), "a seek failed");
  EXPECT_EQ(shapes.read(4, record), RecordState::read);
  EXPECT_EQ(record.number, 4);
}

TEST_F(DamagedShapefile, ReportsTheRecordThatTheFileEndsIn) {
  cut(".shp", 1);
  ShapeRecords shapes(path(".shp").string());
  ShapeRecord record;
  EXPECT_EQ(shapes.read(24, record), RecordState::read);
  EXPECT_EQ(shapes.read(25, record), RecordState::failed);
  EXPECT_EQ(shapes.failure(), "the file ends inside it");
}

TEST_F(DamagedShapefile, CountsWhatTheIndexReallyHolds) {
  cut(".shx", 12);
  const ShapeRecords shapes(path(".shp").string());
  EXPECT_TRUE(shapes.index_is_cut());
  EXPECT_EQ(shapes.count(), 23);
}

TEST_F(DamagedShapefile, SaysWhyItCannotBeOpened) {
  std::filesystem::resize_file(path(".shx"), 99);
  EXPECT_EQ(refusal(), path(".shx").string() + ": too short for a shapefile header");
  std::filesystem::remove(path(".shx"));
  EXPECT_EQ(refusal(), path(".shx").string() + ": No such file or directory");
  std::filesystem::create_directory(path(".shx"));
  EXPECT_EQ(refusal(), path(".shx").string() + ": not a regular file");
}

TEST(SplitParts, RefusesStartsThatDecreaseOrLeaveThePoints) {
  const Doubles x{0.0, 1.0, 2.0, 3.0};
  const auto sizes = [&x](std::vector<kz_long> parts) {
    ShapeRecord record;
    record.parts = parts;
    const auto split = ShapeRecords::split(record, x);
    std::vector<long> result;
    if (!split) return std::vector<long>{-1};
    for (const auto& part : *split) result.push_back(static_cast<long>(part.size()));
    return result;
  };
  EXPECT_EQ(sizes({0}), (std::vector<long>{4}));
  EXPECT_EQ(sizes({0, 3}), (std::vector<long>{3, 1}));
  EXPECT_EQ(sizes({0, 2, 2}), (std::vector<long>{2, 0, 2}));
  EXPECT_EQ(sizes({}), (std::vector<long>{}));
  EXPECT_EQ(sizes({-1, 2}), (std::vector<long>{-1}));
  EXPECT_EQ(sizes({3, 2}), (std::vector<long>{-1}));
  EXPECT_EQ(sizes({0, 5}), (std::vector<long>{-1}));
}

}  // namespace
