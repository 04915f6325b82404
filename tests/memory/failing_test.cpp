// Each allocation of each public operation fails in turn, alone and with all that follow:
// the operation throws std::bad_alloc or gives what its header documents, leaves nothing
// allocated, and does its work when it is called again.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <new>
#include <ostream>
#include <set>
#include <streambuf>
#include <string>
#include <vector>

#include "kzgis/dem.h"
#include "kzgis/elevation.h"
#include "kzgis/exact.h"
#include "kzgis/filetools.h"
#include "kzgis/mesh.h"
#include "kzgis/polytree.h"
#include "kzgis/projection.h"
#include "kzgis/shape.h"
#include "kzgis/triangulate.h"
#include "kzgis/utdate.h"
#include "kzgis/utvector.h"
#include "support/failing_memory.h"

namespace {

constexpr long kThrew = -1000;
constexpr const char* kText = "a text that is longer than what a string keeps inside itself";
constexpr const char* kLayer = KZGIS_TEST_DATA_DIR "/ne/ne_110m_lakes";
constexpr const char* kElevations = KZGIS_TEST_DATA_DIR "/dem/st_helens_crater.dem";

/// Swallows what is written to it, without memory.
class Sink : public std::streambuf {
 protected:
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
  std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

/// An operation whose number tells how it went.
struct Operation {
  const char* name;
  std::set<long> failures;  ///< that its header documents; `kThrew` for an exception
  std::function<long()> run;
};

// Squares: a boundary with a hole, then an island; boundaries clockwise.
constexpr double kX[] = {0, 0, 9, 9, 1, 8, 8, 1, 3, 3, 6, 6};
constexpr double kY[] = {0, 9, 9, 0, 1, 1, 8, 8, 3, 6, 6, 3};
constexpr kz_ulong kStarts[] = {0, 4, 8};
constexpr kz_long kRingStarts[] = {0, 4, 8};

KZ_GIS_PolygonTree_c tree() { return {0, 0, 0, 0, 3, kStarts, 12, kX, kY}; }

long corners(const KZ_GIS_PolygonTree_c& t) {
  kz_ulong count = 0;
  t.NumberOfConnections(&count);
  return static_cast<long>(count);
}

long triangulate_tree() {
  const KZ_GIS_PolygonTree_c t = tree();
  if (corners(t) == 0) return 14;  // empty
  kz_ulong connections[64];
  kz_ulong count = 0;
  const kz_ulong status = t.Triangulate(&count, connections);
  release_tables();  // which stay otherwise
  return status == 1 && count != 30 ? -1 : static_cast<long>(status);
}

long triangulate_classic() {
  const kz_long contour = 4;
  const double xy[5][2] = {{0, 0}, {0, 0}, {9, 0}, {9, 9}, {0, 9}};
  kz_long triangles[2][3] = {};
  triangulate_polygon(1, &contour, xy, triangles);
  release_tables();
  return triangles[1][0] != 0 ? 2 : triangles[0][0] != 0 ? 1 : 0;
}

// The classic functions one by one, on a square with a hole.
constexpr kz_long kBlockContours[] = {4, 4};
constexpr kz_long kBlockVertices = 8;
constexpr double kBlocks[][2] = {{0, 0}, {0, 0}, {9, 0}, {9, 9}, {0, 9},
                                 {3, 3}, {3, 6}, {6, 6}, {6, 3}};

/// Allocates the tables and fills the segments as `triangulate_polygon` does; false without
/// the memory.
bool set_up_tables() {
  if (initilize(kBlockVertices + 1) != 0) return false;
  kz_long first = 1;
  for (const kz_long count : kBlockContours) {
    for (kz_long i = 0; i < count; ++i) {
      const kz_long next = first + (i + 1) % count;
      kzgis::triangulation::Segment& segment = seg[first + i];
      segment.start = {kBlocks[first + i][0], kBlocks[first + i][1]};
      segment.end = {kBlocks[next][0], kBlocks[next][1]};
      segment.next_seg = next;
      segment.prev_seg = first + (i + count - 1) % count;
    }
    first += count;
  }
  return true;
}

long initilize_tables() {
  const kz_long status = initilize(kBlockVertices + 1);
  release_tables();
  return status;
}

/// Which stage of the triangulation of the blocks failed, from 1; 0 when none did.
long triangulate_stage_by_stage() {
  long failed = 0;
  kz_long triangles[10][3] = {};
  if (!set_up_tables()) {
    failed = 1;
  } else if (generate_random_ordering(kBlockVertices) != 0) {
    failed = 2;
  } else {
    construct_trapezoids(kBlockVertices);
    const kz_long pieces = monotonate_trapezoids(kBlockVertices);
    if (pieces < 2) {
      failed = 3;
    } else if (triangulate_monotone_polygons(kBlockVertices, pieces, triangles) < 8) {
      failed = 4;
    }
  }
  release_tables();
  return failed;
}

long triangulate_in_a_workspace() {
  const kz_long contour = 4;
  const kzgis::triangulation::Point points[] = {{0, 0}, {9, 0}, {9, 9}, {0, 9}};
  kz_long triangles[6];
  kzgis::triangulation::Workspace workspace;
  return static_cast<long>(workspace.run({&contour, 1}, points, 0.0, 1, triangles).outcome);
}

/// Reads one record by `SeekToDataRecord`; 13 when the files could not be opened.
long read_shape(KZ_GIS_ESRI_Shape_c& shape) {
  kz_long number = 0, parts = 0, part_room = 0, points = 0, room = 0;
  kz_long* starts = nullptr;
  double box[4];
  double* x = nullptr;
  double* y = nullptr;
  kz_ulong status = shape.SeekToDataRecord(3);
  if (status == 1) {
    status = shape.ReadPolygonShape(&number, &box[0], &box[1], &box[2], &box[3], &parts, &part_room,
                                    &starts, &points, &room, &x, &y);
  }
  std::free(starts);
  std::free(x);
  std::free(y);
  return static_cast<long>(status);
}

long read_profile() {
  DEM_LogicalRecord record{UtString(kElevations)};
  return record.readRecord();
}

/// An array that a conversion makes.
struct Triple {
  Triple() = default;
  Triple(const Triple&) = delete;
  Triple& operator=(const Triple&) = delete;
  ~Triple() { delete[] xyz; }
  double* xyz = nullptr;
};

long convert(Projection& projection) {
  Triple there;
  const int count = projection.FromTo(LatLon(20.0, 30.0), &there.xyz);
  LatLon back(0.0, 0.0);
  if (there.xyz != nullptr) projection.FromTo(there.xyz, &back);
  Triple copy;
  projection.fetchWorldCoordinates(&copy.xyz);
  return there.xyz != nullptr && copy.xyz != nullptr ? count : -1;
}

std::vector<Operation> operations() {
  static Sink sink;
  static std::ostream out(&sink);
  static const std::string model(KZGIS_TEST_DATA_DIR "/dem/st_helens_crater.dem");
  static const kzgis::Rings rings{kX, kY, kRingStarts};
  const long no_memory = static_cast<long>(kzgis::ErrorKind::out_of_memory);
  const long workspace_full = static_cast<long>(kzgis::triangulation::Outcome::out_of_memory);
  return {
      {"UtString",
       {kThrew},
       [] {
         UtString text(kText);
         text.append(kText).append('c');
         text += UtString(kText);
         text.reserve(1000);
         text = text + kText;
         out << text.lower() << UtDate(1987, 8, 1);
         return static_cast<long>(text.size());
       }},
      {"LatLon",
       {},
       [] {
         LatLon point(1.0, 2.0);
         point += LatLon(3.0, 4.0);
         out << point;
         return static_cast<long>(point.fetchLat());
       }},
      {"UtVector",
       {kThrew},
       [] {
         static LatLon point(1, 1);
         UtVector<LatLon*> line;
         for (int i = 0; i < 20; ++i) line.push_back(&point);
         return static_cast<long>(line.size());
       }},
      {"Projection",
       {kThrew},
       [] {
         Projection projection(OrthographicProj, 10.0, 20.0);
         Projection copy(projection);
         copy = projection;
         copy.setProjection(UtString("a name that stands for no projection of the fifteen"));
         return convert(copy);
       }},
      {"FILEmap_variables",
       {kThrew, 0},
       [] {
         char buffer[1024];
         return FILEmap_variables("$HOME/$NONE<3>/a long name of a file, to be expanded", buffer) !=
                        nullptr
                    ? 1L
                    : 0L;
       }},
      {"FILEfopen",
       {kThrew, 0},
       [] {
         std::FILE* const file = FILEfopen(kElevations, "rb");
         if (file == nullptr) return 0L;
         std::fclose(file);
         return 1L;
       }},
      {"KZ_GIS_PolygonTree_c",
       {0},
       [] {
         const KZ_GIS_PolygonTree_c t = tree();
         const KZ_GIS_PolygonTree_c copy(t);
         KZ_GIS_PolygonTree_c assigned;
         assigned = copy;
         return corners(assigned);
       }},
      {"KZ_GIS_PolygonTree_c::Triangulate", {14}, triangulate_tree},
      {"KZ_GIS_PolygonNode_c::SetVertices",
       {14},
       [] {
         KZ_GIS_PolygonNode_c node;
         const long status = node.SetVertices(3, kStarts);
         KZ_GIS_PolygonNode_c copy(node);
         copy = node;
         return copy.NumberOfVertices() == 3 ? status : 14L;
       }},
      {"KZ_GIS_TreeNode_c::InsertChild",
       {14},
       [] {
         static std::vector<KZ_GIS_PolygonNode_c> nodes(30);
         KZ_GIS_PolygonNode_c parent;
         for (KZ_GIS_PolygonNode_c& node : nodes) {
           const kz_ulong status = parent.InsertChild(node);
           if (status != 1) return static_cast<long>(status);
         }
         return 1L;
       }},
      {"kzgis::triangulate",
       {no_memory},
       [] {
         const kzgis::Mesh mesh = kzgis::triangulate(rings);
         return mesh.flaw ? static_cast<long>(mesh.flaw.kind)
                          : 100 + static_cast<long>(mesh.triangles.size());
       }},
      {"kzgis::nest",
       {no_memory},
       [] {
         const kzgis::Nesting nesting = kzgis::nest(rings);
         return nesting.flaw ? static_cast<long>(nesting.flaw.kind) : 100L + nesting.depth[2];
       }},
      {"triangulate_polygon", {0, 1}, triangulate_classic},
      {"initilize", {1}, initilize_tables},
      {"triangulate_monotone_polygons", {1, 2, 3, 4}, triangulate_stage_by_stage},
      {"print_error", {}, [] { return static_cast<long>(print_error("%300d\n", 7)); }},
      {"kzgis::exact::sign_of_sum",
       {kThrew},
       [] {
         const kzgis::exact::Product products[] = {{1.0, 2.0}, {-3.0, 1.0}};
         return static_cast<long>(kzgis::exact::sign_of_sum(products));
       }},
      {"Workspace", {workspace_full, kThrew}, triangulate_in_a_workspace},
      {"KZ_GIS_ESRI_Shape_c",
       {13, 14, 2, 4, 10, 11},
       [] {
         KZ_GIS_ESRI_Shape_c shape(kLayer);
         shape.ShapeHeader().PrintFileHeader(out);
         KZ_GIS_ESRI_Shape_c copy(shape);
         kz_ulong points = 0;
         copy.NumberOfPoints(&points);
         return read_shape(copy);
       }},
      {"DEM_LogicalRecord", {kThrew, -1}, read_profile},
      {"read_dem",
       {no_memory, static_cast<long>(kzgis::ErrorKind::cannot_read)},
       [] {
         const kzgis::ElevationGrid grid = kzgis::read_dem(model);
         return grid.error ? static_cast<long>(grid.error.kind)
                           : 100 + static_cast<long>(grid.elevations.size());
       }},
  };
}

/// How an operation went, exceptions included.
long result_of(const Operation& operation) {
  try {
    return operation.run();
  } catch (const std::bad_alloc&) {
    return kThrew;
  }
}

class FailingMemory : public testing::TestWithParam<bool> {
 protected:
  FailingMemory() : cout_(std::cout.rdbuf(&sink_)), cerr_(std::cerr.rdbuf(&sink_)) {}
  ~FailingMemory() override {
    std::cout.rdbuf(cout_);
    std::cerr.rdbuf(cerr_);
  }

 private:
  Sink sink_;
  std::streambuf* cout_;
  std::streambuf* cerr_;
};

INSTANTIATE_TEST_SUITE_P(OneOrAllLater, FailingMemory, testing::Bool(), [](const auto& all_later) {
  return all_later.param ? "AllLater" : "One";
});

TEST_P(FailingMemory, IsDocumentedLeaksNothingAndIsOver) {
  for (const Operation& operation : operations()) {
    SCOPED_TRACE(operation.name);
    const long complete = result_of(operation);  // and what is allocated once, is
    ASSERT_EQ(result_of(operation), complete);
    ASSERT_FALSE(operation.failures.contains(complete)) << complete;
    long k = 0;
    for (bool failed = true; failed; ++k) {
      ASSERT_LT(k, 100000);
      const long before = failing_memory::live_blocks();
      failing_memory::fail_from(k, GetParam());
      const long result = result_of(operation);
      failed = failing_memory::succeed();
      EXPECT_EQ(failing_memory::live_blocks(), before) << "allocation " << k;
      EXPECT_TRUE(result == complete || (failed && operation.failures.contains(result)))
          << "allocation " << k << " gives " << result;
      if (HasFailure()) break;
    }
    EXPECT_EQ(result_of(operation), complete);
    RecordProperty(operation.name, static_cast<int>(k) - 1);
  }
}

// An object that met the failure serves again once there is memory.

TEST_P(FailingMemory, LeavesAShapefileThatOpensAgain) {
  for (long k = 0;; ++k) {
    SCOPED_TRACE(k);
    KZ_GIS_ESRI_Shape_c shape(nullptr);
    failing_memory::fail_from(k, GetParam());
    try {
      shape.FileName(kLayer);
      read_shape(shape);
    } catch (const std::bad_alloc&) {
    }
    const bool failed = failing_memory::succeed();
    ASSERT_NE(shape.FileName(kLayer), nullptr);
    ASSERT_EQ(read_shape(shape), 1);
    if (!failed) break;
  }
}

TEST_P(FailingMemory, LeavesAnElevationFileThatOpensAgain) {
  static const UtString name(kElevations);
  for (long k = 0;; ++k) {
    SCOPED_TRACE(k);
    DEM_LogicalRecord record;
    failing_memory::fail_from(k, GetParam());
    try {
      record.setFN(name);
      record.readRecord();
    } catch (const std::bad_alloc&) {
    }
    const bool failed = failing_memory::succeed();
    ASSERT_EQ(record.setFN(name), 1);
    ASSERT_EQ(record.readRecord(), 1);
    if (!failed) break;
  }
}

TEST_P(FailingMemory, LeavesAProjectionThatConvertsAgain) {
  for (long k = 0;; ++k) {
    SCOPED_TRACE(k);
    Projection projection(OrthographicProj, 10.0, 20.0);
    failing_memory::fail_from(k, GetParam());
    try {
      projection.setLLCoordinates(1.0, 2.0, 3.0);
      convert(projection);
    } catch (const std::bad_alloc&) {
    }
    const bool failed = failing_memory::succeed();
    ASSERT_EQ(convert(projection), 3);
    if (!failed) break;
  }
}

}  // namespace
