// Small files of every kind, cut at every byte, and with every byte of their headers
// replaced; every real layer and its index cut at their fields; files that change while they
// are open: every operation keeps to the statuses that it documents, and no array grows
// beyond what the file can fill.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "kzgis/shape.h"
#include "shape/shape_record.h"
#include "shape/shapefile_writer.h"
#include "support/time_limit.h"

namespace {

using testing::AnyOf;

struct Layer {
  std::int32_t type;
  std::vector<std::string> contents;

  ShapefileWriter writer() const {
    ShapefileWriter w(type);
    for (const std::string& content : contents) w.add(content);
    return w;
  }
};

std::vector<Layer> layers() {
  return {{1, {point_content(1, 2), point_content(3, 4)}},
          {3,
           {arc_content({0, 2}, some_points(5, 1)), null_content(),
            arc_content({0}, some_points(3, 2))}},
          {5,
           {arc_content({0}, some_points(4, 1), 5), arc_content({0, 3}, some_points(6, 2), 5),
            null_content()}},
          {8, {multi_point_content(some_points(3, 1)), multi_point_content(some_points(2, 2))}}};
}

std::string label(const Layer& layer, const char* file, std::size_t place) {
  return "type " + std::to_string(layer.type) + ", " + file + ", byte " + std::to_string(place);
}

class ShapeDamageTest : public ShapefileTest {
 protected:
  /// Reads every record with the reader of the layer's kind, in file order and from
  /// record to record, and asks for everything else there is to know.
  void read_everything(const std::string& base, std::int32_t type) {
    // A device has no size.
    const bool sized = std::filesystem::is_regular_file(base + ".shp");
    const auto bytes = static_cast<kz_long>(sized ? std::filesystem::file_size(base + ".shp") : 0);
    for (const bool by_index : {false, true}) {
      const LessThanASecond to_open_and_seek;
      KZ_GIS_ESRI_Shape_c shape(base.c_str());
      ShapeRecord record;
      for (int i = 1; i <= 5 && shape.ShapeFileIsOpen() == 1; ++i) {
        if (by_index) {
          EXPECT_THAT(shape.SeekToDataRecord(i), AnyOf(1u, 2u, 10u));
        }
        EXPECT_THAT(read(shape, type, record), AnyOf(1u, 2u, 4u, 10u, 11u));
        EXPECT_LE(record.parts_capacity, bytes / 4);
        EXPECT_LE(record.points_capacity, bytes / 16 + 1);
        EXPECT_THAT(info(shape, type), AnyOf(1u, 2u, 4u, 10u, 11u));
      }
    }
    for (auto count : {&KZ_GIS_ESRI_Shape_c::NumberOfParts, &KZ_GIS_ESRI_Shape_c::NumberOfPoints}) {
      KZ_GIS_ESRI_Shape_c shape(base.c_str());
      if (shape.ShapeFileIsOpen() == 0) continue;
      const LessThanASecond limit;
      kz_ulong total = 0;
      EXPECT_THAT((shape.*count)(&total), AnyOf(1u, 2u, 10u, 11u));
      EXPECT_EQ(shape.NumberOfDataRecords(&total), 1u);
      EXPECT_THAT(shape.ShapeHeader().ValidateFileHeader(), AnyOf(1u, 6u, 7u, 8u, 9u));
    }
  }

  static kz_ulong read(KZ_GIS_ESRI_Shape_c& shape, std::int32_t type, ShapeRecord& record) {
    const LessThanASecond limit;
    double x;
    double y;
    switch (type) {
      case 1:
        return shape.ReadPointShape(&record.number, &x, &y);
      case 3:
        return record.read_arc(shape);
      case 5:
        return record.read_polygon(shape);
      default:
        return record.read_multi_point(shape);
    }
  }

  static kz_ulong info(KZ_GIS_ESRI_Shape_c& shape, std::int32_t type) {
    kz_long number;
    kz_long parts;
    kz_long points;
    return type == 8 ? shape.GetMultiPointShapeInfo(&number, &points)
                     : shape.GetPolygonShapeInfo(&number, &parts, &points);
  }

  /// Replaces each byte of one of the two files, one after the other.
  void replace_bytes(const Layer& layer, bool in_index) {
    const std::string shp = layer.writer().shp();
    const std::string shx = layer.writer().shx();
    const std::string& whole = in_index ? shx : shp;
    for (std::size_t place = 0; place < whole.size(); ++place) {
      SCOPED_TRACE(label(layer, in_index ? ".shx" : ".shp", place));
      for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
        SCOPED_TRACE(value);
        std::string damaged = whole;
        damaged[place] = static_cast<char>(value);
        read_everything(in_index ? write(shp, damaged) : write(damaged, shx), layer.type);
        if (HasFailure()) return;
      }
    }
  }
};

TEST_F(ShapeDamageTest, ACutShapeFileGivesItsWholeRecordsAndThen11) {
  for (const Layer& layer : layers()) {
    const std::string shp = layer.writer().shp();
    for (std::size_t length = 0; length < shp.size(); ++length) {
      SCOPED_TRACE(label(layer, ".shp cut", length));
      const std::string base = write(shp.substr(0, length), layer.writer().shx());
      KZ_GIS_ESRI_Shape_c shape(base.c_str());
      ASSERT_EQ(shape.ShapeFileIsOpen(), length < 100 ? 0 : 1);
      if (length < 100) continue;

      ShapeRecord record;
      std::size_t end = 100;
      for (std::size_t i = 0; i < layer.contents.size(); ++i) {
        end += 8 + layer.contents[i].size();
        const bool null = layer.contents[i].size() == 4;
        const bool last = i + 1 == layer.contents.size();
        // A null record needs no more than its header, but one that follows it.
        const bool held = length >= (null ? end - 4 : end);
        const kz_ulong expected = !held || (null && last) ? 11 : null ? 2 : 1;
        ASSERT_EQ(read(shape, layer.type, record), expected) << "record " << i + 1;
        if (expected == 11) break;
      }
      read_everything(base, layer.type);
    }
  }
}

TEST_F(ShapeDamageTest, ACutIndexLeavesSequentialReadingAlone) {
  for (const Layer& layer : layers()) {
    const std::string shx = layer.writer().shx();
    for (std::size_t length = 0; length < shx.size(); ++length) {
      SCOPED_TRACE(label(layer, ".shx cut", length));
      const std::string base = write(layer.writer().shp(), shx.substr(0, length));
      KZ_GIS_ESRI_Shape_c shape(base.c_str());
      ASSERT_EQ(shape.ShapeFileIsOpen(), length < 100 ? 0 : 1);
      ASSERT_EQ(shape.IndexFileIsOpen(), length < 100 ? 0 : 1);
      if (length < 100) continue;

      ShapeRecord record;
      EXPECT_EQ(read(shape, layer.type, record), 1u);
      for (std::size_t i = 0; i < layer.contents.size(); ++i) {
        KZ_GIS_ESRI_Shape_c seeking(base.c_str());
        const bool held = length >= 100 + 8 * (i + 1);
        EXPECT_EQ(seeking.SeekToDataRecord(static_cast<kz_long>(i + 1)), held ? 1u : 2u);
      }
      read_everything(base, layer.type);
    }
  }
}

TEST_F(ShapeDamageTest, NoByteOfAShapeFileMakesAnUndocumentedStatus) {
  for (const Layer& layer : layers()) replace_bytes(layer, false);
}

TEST_F(ShapeDamageTest, NoByteOfAnIndexMakesAnUndocumentedStatus) {
  for (const Layer& layer : layers()) replace_bytes(layer, true);
}

TEST_F(ShapeDamageTest, EachReaderMeetsFilesOfEveryOtherKind) {
  for (const Layer& layer : layers()) {
    const std::string base = write(layer.writer());
    for (const std::int32_t type : {1, 3, 5, 8}) {
      SCOPED_TRACE(label(layer, "read as type", static_cast<std::size_t>(type)));
      read_everything(base, type);
    }
  }
}

TEST_F(ShapeDamageTest, AnIndexOfAnotherFileIsSurvived) {
  for (const Layer& layer : layers()) {
    for (const Layer& other : layers()) {
      SCOPED_TRACE(label(layer, "index of type", static_cast<std::size_t>(other.type)));
      read_everything(write(layer.writer().shp(), other.writer().shx()), layer.type);
    }
  }
}

TEST_F(ShapeDamageTest, AFileWithoutEndTakesNoMoreThanOthers) {
  if (!std::filesystem::exists("/dev/zero")) GTEST_SKIP() << "no /dev/zero";
  for (const Layer& layer : layers()) {
    for (const char* const endless : {".shp", ".shx"}) {
      SCOPED_TRACE(label(layer, endless, 0));
      const std::string base = write(layer.writer());
      std::filesystem::remove(base + endless);
      std::filesystem::create_symlink("/dev/zero", base + endless);
      read_everything(base, layer.type);
      std::filesystem::remove(base + endless);
    }
  }
}

// Real layers.

std::string bytes_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t big_at(const std::string& bytes, std::size_t place) {
  std::size_t value = 0;
  for (std::size_t i = place; i < place + 4; ++i) {
    value = value << 8 | static_cast<unsigned char>(bytes.at(i));
  }
  return value;
}

std::size_t little_at(const std::string& bytes, std::size_t place) {
  std::size_t value = 0;
  for (std::size_t i = place + 4; i-- > place;) {
    value = value << 8 | static_cast<unsigned char>(bytes.at(i));
  }
  return value;
}

/// One of the sample layers: its bytes, and where its records lie by the index.
struct RealLayer {
  explicit RealLayer(const std::filesystem::path& shape_file)
      : name(shape_file.stem().string()),
        shp(bytes_of(shape_file.string())),
        shx(bytes_of(std::filesystem::path(shape_file).replace_extension(".shx").string())),
        type(static_cast<std::int32_t>(little_at(shp, 32))) {
    for (std::size_t place = 100; place < shx.size(); place += 8) {
      starts.push_back(2 * big_at(shx, place));
    }
  }
  std::size_t end_of(std::size_t record) const {
    return starts[record] + 8 + 2 * big_at(shp, starts[record] + 4);
  }
  std::size_t points_of(std::size_t record) const {
    return type == 1 ? 1 : little_at(shp, starts[record] + (type == 8 ? 44 : 48));
  }

  std::string name;
  std::string shp;
  std::string shx;
  std::int32_t type;
  std::vector<std::size_t> starts;
};

std::vector<RealLayer> real_layers() {
  std::vector<RealLayer> found;
  for (const char* const directory : {"/ne", "/wdb"}) {
    for (const auto& entry :
         std::filesystem::directory_iterator(std::string(KZGIS_TEST_DATA_DIR) + directory)) {
      if (entry.path().extension() == ".shp") found.emplace_back(entry.path());
    }
  }
  return found;
}

/// A place between two fields of a record, in bytes of the file.
struct Cut {
  std::size_t place;
  std::size_t record;
  bool operator<(const Cut& other) const { return place < other.place; }
};

/// Adds `most` of the cuts at most, from all over them.  Their distance is odd: of two
/// coordinates by turns, both are met.
void add_some(std::vector<Cut>& chosen, const std::vector<Cut>& cuts, std::size_t most) {
  const std::size_t step = (cuts.size() / most + 1) | 1U;
  for (std::size_t i = 0; i < cuts.size(); i += step) chosen.push_back(cuts[i]);
}

/// Cuts at the fields of all records: those that every record has, the starts of parts, the
/// coordinates.  In a large layer, some of each.
std::vector<Cut> cuts_of(const RealLayer& layer) {
  constexpr std::size_t kMost = 3000;  // of either
  std::vector<Cut> fixed;
  std::vector<Cut> arrays;
  for (std::size_t record = 0; record < layer.starts.size(); ++record) {
    const std::size_t start = layer.starts[record];
    const std::size_t end = layer.end_of(record);
    std::vector<std::size_t> fields{0, 4, 8, 12, 20};
    if (layer.type != 1) fields.insert(fields.end(), {28, 36, 44});
    if (layer.type == 3 || layer.type == 5) fields.push_back(48);
    for (const std::size_t field : fields) fixed.push_back({start + field, record});
    fixed.push_back({end, record});
    if (layer.type == 1) continue;
    std::size_t place = end - 16 * layer.points_of(record);
    for (std::size_t part = start + 52; part < place; part += 4) arrays.push_back({part, record});
    for (; place < end; place += 8) arrays.push_back({place, record});
  }
  std::vector<Cut> chosen;
  add_some(chosen, fixed, kMost);
  add_some(chosen, arrays, kMost);
  std::sort(chosen.begin(), chosen.end());
  return chosen;
}

TEST_F(ShapeDamageTest, ARealLayerCutAtAnyFieldGives11ThereAndAllBeforeIt) {
  const std::vector<RealLayer> layers = real_layers();
  ASSERT_GE(layers.size(), 15U);
  for (const RealLayer& layer : layers) {
    ASSERT_TRUE(std::is_sorted(layer.starts.begin(), layer.starts.end())) << layer.name;
    const std::string base = write(layer.shp, layer.shx);
    // From the back, so that each cut shortens the same file.
    const std::vector<Cut> cuts = cuts_of(layer);
    for (auto cut = cuts.rbegin(); cut != cuts.rend(); ++cut) {
      SCOPED_TRACE(layer.name + ", record " + std::to_string(cut->record + 1) + " cut at byte " +
                   std::to_string(cut->place));
      std::filesystem::resize_file(base + ".shp", cut->place);
      KZ_GIS_ESRI_Shape_c shape(base.c_str());
      const auto number = static_cast<kz_long>(cut->record + 1);
      if (number > 1) {
        ShapeRecord before;
        ASSERT_EQ(shape.SeekToDataRecord(number - 1), 1u);
        ASSERT_EQ(read(shape, layer.type, before), 1u);
      }
      ShapeRecord last;
      ASSERT_EQ(shape.SeekToDataRecord(number), 1u);
      ASSERT_EQ(read(shape, layer.type, last), cut->place < layer.end_of(cut->record) ? 11u : 1u);
      const auto room = static_cast<kz_long>(cut->place - layer.starts[cut->record]);
      ASSERT_LE(last.parts_capacity, room / 4);
      ASSERT_LE(last.points_capacity, room / 16);
    }
  }
}

TEST_F(ShapeDamageTest, ARealIndexCutAtAnyFieldKnowsTheRecordsBeforeIt) {
  for (const RealLayer& layer : real_layers()) {
    const std::string base = write(layer.shp, layer.shx);
    const std::size_t records = layer.starts.size();
    std::vector<kz_ulong> points{0};  // in so many records from the first
    for (std::size_t i = 0; i < records; ++i) {
      points.push_back(points.back() + static_cast<kz_ulong>(layer.points_of(i)));
    }
    const std::size_t counted = 4 * (1 + records / 25);  // counts walk through all the index
    for (std::size_t length = layer.shx.size(); length > 0;) {
      length -= 4;
      SCOPED_TRACE(layer.name + ", index cut at byte " + std::to_string(length));
      std::filesystem::resize_file(base + ".shx", length);
      KZ_GIS_ESRI_Shape_c shape(base.c_str());
      ASSERT_EQ(shape.IndexFileIsOpen(), length < 100 ? 0 : 1);
      ASSERT_EQ(shape.ShapeFileIsOpen(), length < 100 ? 0 : 1);
      if (length < 100) continue;

      kz_ulong count = 0;
      ASSERT_EQ(shape.NumberOfDataRecords(&count), 1u);
      ASSERT_EQ(count, records);
      const std::size_t held = (length - 100) / 8;
      const auto last = static_cast<kz_long>(held);
      if (last > 0) {
        ASSERT_EQ(shape.SeekToDataRecord(last), 1u);
        ShapeRecord record;
        ASSERT_EQ(read(shape, layer.type, record), 1u);
        if (layer.type != 1) {
          ASSERT_EQ(record.num_points, static_cast<kz_long>(layer.points_of(held - 1)));
        }
      }
      if (layer.type != 1 && length % counted == 0) {
        const LessThanASecond limit;
        ASSERT_EQ(shape.NumberOfPoints(&count), 11u);
        ASSERT_EQ(count, points[held]);
      }
      ASSERT_EQ(shape.SeekToDataRecord(last + 1), 2u);
    }
  }
}

// Files that change while they are open.

class ChangingShapeFile : public ShapeDamageTest {
 protected:
  static constexpr const char* kSource = KZGIS_TEST_DATA_DIR "/ne/ne_110m_countries";

  ChangingShapeFile()
      : shp_(bytes_of(std::string(kSource) + ".shp")),
        shx_(bytes_of(std::string(kSource) + ".shx")) {}

  /// Reads records until one fails, and gives its status.
  static kz_ulong read_to_failure(KZ_GIS_ESRI_Shape_c& shape, ShapeRecord& record, int* whole) {
    for (;; ++*whole) {
      const LessThanASecond limit;
      const kz_ulong status = record.read_polygon(shape);
      if (status != 1) return status;
    }
  }

  std::string shp_;
  std::string shx_;
};

TEST_F(ChangingShapeFile, ThatGotShorterEndsEarlier) {
  for (const std::size_t length : {std::size_t{0}, std::size_t{60}, std::size_t{100},
                                   std::size_t{5000}, shp_.size() / 2, shp_.size() - 1}) {
    SCOPED_TRACE(length);
    const std::string base = write(shp_, shx_);
    KZ_GIS_ESRI_Shape_c shape(base.c_str());
    std::filesystem::resize_file(base + ".shp", length);
    std::filesystem::resize_file(base + ".shx", 200);
    ShapeRecord record;
    int whole = 0;
    EXPECT_EQ(read_to_failure(shape, record, &whole), 11u);
    EXPECT_LT(whole, 177);
    EXPECT_LE(record.points_capacity, static_cast<kz_long>(shp_.size() / 16));
    const LessThanASecond limit;
    kz_ulong count = 0;
    EXPECT_THAT(shape.NumberOfPoints(&count), AnyOf(1u, 2u, 4u, 10u, 11u));
    EXPECT_THAT(shape.SeekToDataRecord(170), AnyOf(1u, 2u, 10u));

    // The object is whole: it takes other files.
    ASSERT_NE(shape.FileName(kSource), nullptr);
    EXPECT_EQ(record.read_polygon(shape), 1u);
  }
}

TEST_F(ChangingShapeFile, ThatGotLongerGivesTheRecordsItHad) {
  const std::string base = write(shp_, shx_);
  KZ_GIS_ESRI_Shape_c shape(base.c_str());
  std::ofstream(base + ".shp", std::ios::binary | std::ios::app) << std::string(100000, '\x7F');
  ShapeRecord record;
  int whole = 0;
  EXPECT_THAT(read_to_failure(shape, record, &whole), AnyOf(2u, 4u, 10u, 11u));
  EXPECT_EQ(whole, 177);
}

TEST_F(ChangingShapeFile, WhoseBytesAreOtherOnesIsSurvived) {
  for (const char byte : {'\0', '\x7F', '\x80', '\xFF'}) {
    const std::string base = write(shp_, shx_);
    KZ_GIS_ESRI_Shape_c shape(base.c_str());
    write_file(base + ".shp", std::string(shp_.size(), byte));
    write_file(base + ".shx", std::string(shx_.size(), byte));
    ShapeRecord record;
    for (kz_long n = 177; n > 0; n -= 11) {
      const LessThanASecond limit;
      EXPECT_THAT(shape.SeekToDataRecord(n), AnyOf(1u, 2u, 10u));
      EXPECT_THAT(record.read_polygon(shape), AnyOf(1u, 2u, 4u, 10u, 11u));
      EXPECT_LE(record.points_capacity, static_cast<kz_long>(shp_.size() / 16));
    }
  }
}

}  // namespace
