// Elevation models without memory.

#include "kzgis/dem.h"

#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kzgis/elevation.h"
#include "kzgis/terrain.h"
#include "memory/failing.h"

namespace {

constexpr const char* kElevations = KZGIS_TEST_DATA_DIR "/dem/st_helens_crater.dem";
constexpr int kBlockBytes = 1024;

/// Opens what is for readers of the format alone.
template <typename Record>
class Opened : public Record {
 public:
  Opened() = default;
  explicit Opened(const UtString& name) : Record(name) {}
  using Record::addByteCount;
  using Record::moveToNextBlock;
  using Record::readFile;
  using Record::resetByteCount;
  using Record::skipFile;

  /// Stands at the first byte of a block, whatever a failure has left.
  Opened& at_block(int block) {
    this->clear();
    this->seekg(block * kBlockBytes);
    resetByteCount();
    return *this;
  }
};

using Header = Opened<DEM_LRA>;
using Profile = Opened<DEM_LogicalRecord>;

// Opening fails in two ways: without the host's own stream the file cannot be opened, and
// the buffer or a text throws.

std::vector<Operation> headers() {
  static const UtString name(kElevations);
  static Header file(name);
  file.ingest();
  const auto text_of = [](const char* operation, UtString (DEM_LRA::*fetch)() const,
                          bool long_text) -> Operation {
    return {operation, long_text ? 1 : 0, long_text ? std::set<long>{kThrew} : std::set<long>{},
            [fetch] { return static_cast<long>((file.*fetch)().size()); }};
  };
  return {
      {"DEM_LRA", 3, {kThrew, 0}, [] { return long{DEM_LRA(name).is_open()}; }},
      {"setFN",
       3,
       {kThrew, -1},
       [] {
         DEM_LRA record;
         const int result = record.setFN(name);
         return result == (record.is_open() ? 1 : -1) ? long{result} : -2;
       }},
      {"closeFN",
       0,
       {},
       [] {
         static DEM_LRA closed(name);
         return long{closed.closeFN()};
       }},
      {"ingest",
       4,
       {kThrew},
       [] {
         file.at_block(0).setLRAIngest(0);
         return long{file.ingest()};
       }},
      text_of("fetchFileName", &DEM_LRA::fetchFileName, true),
      text_of("fetchQuadrangle", &DEM_LRA::fetchQuadrangle, true),
      text_of("fetchInfo", &DEM_LRA::fetchInfo, true),
      text_of("fetchSI", &DEM_LRA::fetchSI, false),
      text_of("fetchMCorigin", &DEM_LRA::fetchMCorigin, false),
      {"Numbers",
       0,
       {},
       [] {
         char flag = ' ';
         file.fetchRevisionDate(&flag);
         return long{file.fetchRows() + file.fetchColumns() + file.fetchSourceData().year()};
       }},
      {"Report",
       0,
       {},
       [] {
         nowhere() << file << &file;
         return 1L;
       }},
      {"readFile_Character",
       0,
       {},
       [] {
         char c = ' ';
         return long{file.at_block(0).readFile(&c)};
       }},
      {"readFile_Text",
       1,
       {kThrew},
       [] {
         UtString text;
         return long{file.at_block(0).readFile(&text, 40)};
       }},
      {"readFile_Integer",
       1,
       {kThrew},
       [] {
         int value = 0;
         return long{file.at_block(0).readFile(&value, 40)};
       }},
      {"readFile_Real",
       1,
       {kThrew},
       [] {
         double value = 0.0;
         return long{file.at_block(0).readFile(&value, 24)};
       }},
      {"readFile_Date",
       1,
       {kThrew},
       [] {
         UtDate value(0, 0, 0);
         return long{file.at_block(0).readFile(&value, 40)};
       }},
      {"Moves",
       0,
       {},
       [] {
         const int skipped = file.at_block(0).skipFile(10);
         file.moveToNextBlock();
         return long{skipped + file.addByteCount(7)};
       }},
  };
}

std::vector<Operation> profiles() {
  static const UtString name(kElevations);
  static Profile file(name);
  static std::unique_ptr<DEM_LogicalRecord> fresh;
  return {
      {"DEM_LogicalRecord",
       3,
       {kThrew, 0},
       [] { return long{DEM_LogicalRecord(name).fetchLRAIngest()}; }},
      {"setFN",
       3,
       {kThrew, -1},
       [] {
         DEM_LogicalRecord record;
         return long{record.setFN(name)};
       }},
      {"readRecord",
       4,
       {kThrew, -1},
       [] {
         const auto read = std::move(fresh);
         return long{read->readRecord()};
       },
       [] { fresh = std::make_unique<DEM_LogicalRecord>(name); }},
      {"Report",
       0,
       {},
       [] {
         nowhere() << file << &file;
         return long{file.fetchElevation(0, 0) + file.ElevIndex(1, 0) + file.fetchRowID()};
       },
       [] { file.at_block(1).readRecord(); }},
  };
}

long kind_of(const kzgis::Result<kzgis::ElevationGrid>& grid) {
  if (!grid) return static_cast<long>(grid.error().kind);
  return 100 + static_cast<long>(grid->elevations.size());
}

long kind_of(const kzgis::Result<kzgis::Terrain>& terrain) {
  if (!terrain) return static_cast<long>(terrain.error().kind);
  return 100 + static_cast<long>(terrain->triangles.size());
}

std::vector<Operation> grids() {
  using kzgis::ErrorKind;
  static const std::string path(kElevations);
  static const std::string missing("/nowhere/a file that is not there");
  static const std::string bytes = [] {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  }();
  static const kzgis::ElevationGrid whole = kzgis::read_dem(path).value();
  const long no_memory = static_cast<long>(ErrorKind::out_of_memory);
  const long cannot_read = static_cast<long>(ErrorKind::cannot_read);
  return {
      {"read_dem", 10, {no_memory, cannot_read}, [] { return kind_of(kzgis::read_dem(path)); }},
      {"read_dem_Missing", 2, {no_memory}, [] { return kind_of(kzgis::read_dem(missing)); }},
      {"read_dem_Bytes", 8, {no_memory}, [] { return kind_of(kzgis::read_dem(bytes, kText)); }},
      {"read_dem_Refused",
       1,
       {no_memory},
       [] { return kind_of(kzgis::read_dem(std::span(bytes).first(100), kText)); }},
      {"triangulate_terrain",
       40,
       {no_memory},
       [] { return kind_of(kzgis::triangulate_terrain(whole, 20.0)); }},
      {"triangulate_terrain_Whole",
       10,
       {no_memory},
       [] { return kind_of(kzgis::triangulate_terrain(whole, 0.0)); }},
      {"ElevationGrid",
       0,
       {},
       [] { return static_cast<long>(whole.at(0, 0) + whole.x(0) + whole.y(0)); }},
  };
}

INSTANTIATE_TEST_SUITE_P(DemHeaders, FailingMemory, testing::ValuesIn(headers()), name_of);
INSTANTIATE_TEST_SUITE_P(DemProfiles, FailingMemory, testing::ValuesIn(profiles()), name_of);
INSTANTIATE_TEST_SUITE_P(DemGrids, FailingMemory, testing::ValuesIn(grids()), name_of);

TEST(DemWithoutMemory, OpensAndReadsAgain) {
  static const UtString name(kElevations);
  expect_usable_again<DEM_LogicalRecord>(
      [](DEM_LogicalRecord& record) {
        record.setFN(name);
        record.readRecord();
      },
      [](DEM_LogicalRecord& record) {
        ASSERT_EQ(record.setFN(name), 1);
        ASSERT_EQ(record.readRecord(), 1);
      });
}

}  // namespace
