// Distinct objects used by several threads at once give what they give one after the other.
// Meant for the thread sanitizer, which also sees the races that go well.

#include <gtest/gtest.h>

#include <barrier>
#include <functional>
#include <iostream>
#include <set>
#include <sstream>
#include <streambuf>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "kzgis/chart.h"
#include "kzgis/databank.h"
#include "kzgis/dem.h"
#include "kzgis/elevation.h"
#include "kzgis/filetools.h"
#include "kzgis/polytree.h"
#include "kzgis/projection.h"
#include "kzgis/shapefile.h"
#include "kzgis/terrain.h"
#include "kzgis/triangulate.h"
#include "kzgis/utdate.h"
#include "support/meshed.h"
#include "support/polygon_layer.h"
#include "support/sink.h"
#include "worldmap/bank.h"

namespace {

constexpr const char* kElevations = KZGIS_TEST_DATA_DIR "/dem/st_helens_crater.dem";
constexpr unsigned kThreads = 4;
constexpr int kRounds = 3;

// Each job makes its own objects, and tells all that they gave.

template <typename Range>
void put(std::ostream& os, const Range& numbers) {
  for (const auto& number : numbers) os << number << ' ';
}

std::string read_shapes() {
  std::ostringstream os;
  PolygonLayer layer("ne_110m_lakes");
  for (kz_ulong i = 0; i < layer.records(); ++i) {
    const PolygonLayer::Record record = layer.next();
    put(os, record.x);
    put(os, record.y);
    put(os, record.starts);
  }
  KZ_GIS_ESRI_Shape_c shape(KZGIS_TEST_DATA_DIR "/ne/ne_110m_countries");
  kz_ulong points = 0;
  os << shape.NumberOfPoints(&points) << points;
  shape.ShapeHeader().PrintFileHeader(os);
  KZ_GIS_ESRI_Shape_c missing("/nowhere/none.shp");
  os << int{missing.ShapeFileIsOpen()};
  return os.str();
}

/// Files of a thread's own, with an index and without.
std::string read_records() {
  std::ostringstream os;
  for (const char* const name : {"ne_110m_countries", "ne_50m_places_by_country"}) {
    auto file = kzgis::Shapefile::open(std::string(KZGIS_TEST_DATA_DIR "/ne/") + name).value();
    os << file.size() << ' ' << file.read(file.size()).error().message;
    for (const auto& record : file) {
      put(os, record->parts);
      put(os, record->x);
      put(os, record->y);
    }
  }
  os << kzgis::Shapefile::open("/nowhere/none").error().message;
  return os.str();
}

std::string project_points() {
  std::ostringstream os;
  os.precision(17);
  for (int type = 0; type < 20; ++type) {
    Projection projection(static_cast<projType>(type), 45.0, 10.0);
    projection.setFirstPar(30.0);
    projection.setSecondPar(60.0);
    for (int i = 0; i < 20; ++i) {
      double* xyz = nullptr;
      os << projection.FromTo(LatLon(20.0 + i, 5.0 + i), &xyz) << ' ';
      if (xyz != nullptr) {
        put(os, std::vector(xyz, xyz + 3));
        LatLon back(0.0, 0.0);
        if (projection.FromTo(xyz, &back) != 0) os << back;
      }
      delete[] xyz;
    }
    projection.setFirstPar(91.0);  // refused, which std::cerr is told
    os << projection.fetchProjectionName();
    os << projection.setProjection(UtString("Lambert conic conformal")) << ' '
       << projection.fetchProjectionName() << projection.setProjection(static_cast<projType>(15));
  }
  return os.str();
}

std::string project_arrays() {
  std::ostringstream os;
  os.precision(17);
  std::vector<double> lat;
  std::vector<double> lon;
  for (int i = 0; i < 200; ++i) {
    lat.push_back(-89.0 + 0.9 * i);
    lon.push_back(-180.0 + 1.7 * i);
  }
  for (int type = 0; type < 16; ++type) {
    kzgis::ChartParameters parameters;
    parameters.base_lat = 45.0;
    const auto chart = kzgis::Chart::make(static_cast<projType>(type), parameters);
    if (!chart) {
      os << chart.error().message;
      continue;
    }
    std::vector<double> x = lat;
    std::vector<double> y = lon;
    std::vector<double> z = lat;
    os << chart->project(x, y, z, x, y, z) << ' ';
    put(os, x);
    os << chart->unproject(x, y, z, x, y, z) << ' ';
    put(os, y);
  }
  Projection classic(PostelProj, 45.0, 10.0);
  std::vector<double> z(lat.size());
  os << kzgis::project_classic(classic, lat, lon, z, lat, lon, z);
  put(os, lat);
  return os.str();
}

std::string compute_positions() {
  std::ostringstream os;
  LatLon position(0.0, 0.0);
  for (int i = 0; i < 200; ++i) {
    position += LatLon(0.37 * i, 1.9 * i);
    os << position << position.distanceSQ(LatLon(10.0, 20.0))
       << position.whichWay(LatLon(1.0, 2.0));
  }
  return os.str();
}

std::string read_profiles() {
  std::ostringstream os;
  DEM_LogicalRecord record{UtString(kElevations)};
  os << static_cast<const DEM_LRA&>(record);
  int more = 1;
  while (more == 1) {
    more = record.readRecord();
    os << record;
    put(os, std::vector(record.fetchElevations(),
                        record.fetchElevations() + record.fetchElevationCount()));
  }
  return os.str();
}

std::string read_grid() {
  std::ostringstream os;
  const kzgis::ElevationGrid grid = kzgis::read_dem(kElevations).value();
  os << kzgis::read_dem("/nowhere/none").error().message;
  os << grid.rows << ' ' << grid.columns << ' ' << grid.lowest;
  put(os, grid.elevations);
  return os.str();
}

std::string cover_terrain() {
  std::ostringstream os;
  const kzgis::ElevationGrid grid = kzgis::read_dem(kElevations).value();
  for (const double tolerance : {0.0, 5.0, 20.0}) {
    const kzgis::Terrain terrain = kzgis::triangulate_terrain(grid, tolerance).value();
    put(os, terrain.z);
    put(os, terrain.triangles);
  }
  os << kzgis::triangulate_terrain(grid, -1.0).error().message;
  return os.str();
}

std::string mesh_polygons() {
  std::ostringstream os;
  PolygonLayer layer("ne_50m_lakes_with_islands");
  for (kz_ulong i = 0; i < layer.records(); ++i) {
    const PolygonLayer::Record record = layer.next();
    const kzgis::Rings rings{record.x, record.y, record.starts};
    put(os, nested(rings).depth);
    put(os, meshed(rings).triangles);
    put(os, kzgis::triangulate(rings, {.delaunay = true, .split_crossings = true})->triangles);
    os << kzgis::find_flaws(rings).size();
    const Meshed refined = meshed(rings, {.longest_side = 1, .least_angle_deg = 20});
    put(os, refined.triangles);
    put(os, refined.new_x);
  }
  return os.str();
}

/// Nesting and counting, but for triangulation, which works on the tables of the process.
std::string nest_polygons() {
  std::ostringstream os;
  PolygonLayer layer("ne_50m_lakes_with_islands");
  for (kz_ulong i = 0; i < layer.records(); ++i) {
    const PolygonLayer::Record record = layer.next();
    const std::vector<kz_ulong> starts(record.starts.begin(), record.starts.end());
    const KZ_GIS_PolygonTree_c tree(0, 0, 0, 0, static_cast<kz_ulong>(starts.size()), starts.data(),
                                    static_cast<kz_ulong>(record.x.size()), record.x.data(),
                                    record.y.data());
    const KZ_GIS_PolygonTree_c copy(tree);
    kz_ulong count = 0;
    os << copy.NumberOfConnections(&count) << ' ' << count << ' ';
  }
  KZ_GIS_PolygonNode_c node;
  os << node.VertexList().NumberOfVertices();
  return os.str();
}

/// What of the triangulator's functions needs no tables.
std::string compare_points() {
  std::ostringstream os;
  for (int i = 0; i < 300; ++i) {
    const kzgis::triangulation::Point a{1.0 * i, 0.01 * i};
    const kzgis::triangulation::Point b{300.0 - i, 1.5};
    os << _equal_to(&a, &b) << _less_than(&a, &b) << _greater_than(&a, &b)
       << _greater_than_equal_to(&a, &b);
  }
  os << print_error("%s %d\n", "a line of one of several threads", 12);
  return os.str();
}

std::string handle_texts() {
  std::ostringstream os;
  UtString text("A longer text than is kept inside of a string object");
  for (int i = 0; i < 50; ++i) text = text + "x";
  os << text.lower() << UtDate(1987, 8, 1);
  char buffer[1024];
  os << FILEmap_variables("$KZGIS_THREADS<1>/$KZGIS_THREADS_NONE<0>/file", buffer);
  return os.str();
}

class Threads : public BankTest {
 protected:
  Threads() : cerr_(std::cerr.rdbuf(&sink_)) {
    // Before any thread reads it.
    setenv("KZGIS_THREADS", "/one:/two", 1);
    ArcLine line;
    for (int i = 0; i < 300; ++i) line.emplace_back(3 * i, 5 * i);
    write("africa.Map/cil.cbd", cbd_file(std::vector<Segment>(30, segment_through(line))));
  }

  ~Threads() override { std::cerr.rdbuf(cerr_); }

  std::string load_outlines() const {
    WorldMap map;
    ask_for_all(map);
    map.readData();
    std::ostringstream os;
    os << map;
    for (const ArcLine& line : lines_of(map)) {
      for (const auto& [lat, lon] : line) os << lat << ' ' << lon << ' ';
    }
    return os.str();
  }

  std::string copy_bank() const {
    std::ostringstream os;
    kzgis::DatabankWriter writer;
    const kzgis::Databank bank = kzgis::read_databank(root_).value();
    for (const kzgis::Segment& segment : bank.segments) {
      EXPECT_EQ(writer.add(segment).kind, kzgis::ErrorKind::none);
    }
    const std::string name =
        kzgis::databank_file_name(kzgis::Continent::africa, kzgis::Theme::coasts);
    os << kzgis::inspect_databank_file(root_ + "/" + name)->total.points << ' ' << name << ' ';
    writer.write_file(kzgis::Continent::africa, kzgis::Theme::coasts, os);
    return os.str();
  }

  std::vector<std::function<std::string()>> jobs() const {
    return {read_shapes,
            read_records,
            project_points,
            project_arrays,
            compute_positions,
            read_profiles,
            read_grid,
            cover_terrain,
            mesh_polygons,
            nest_polygons,
            compare_points,
            handle_texts,
            [this] { return load_outlines(); },
            [this] { return copy_bank(); }};
  }

 private:
  Sink sink_;
  std::streambuf* cerr_;
};

TEST_F(Threads, GiveWhatOneGives) {
  const auto work = jobs();
  std::vector<std::string> expected;
  for (const auto& job : work) {
    expected.push_back(job());
    ASSERT_GT(expected.back().size(), 40U);
  }
  // Every job meets itself and each of the others at some time.
  std::set<std::pair<std::size_t, std::size_t>> met;
  for (const std::size_t shift : {0U, 1U, 2U, 5U, 7U}) {
    std::barrier together(kThreads);
    std::vector<std::vector<std::string>> given(kThreads);
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        for (int round = 0; round < kRounds; ++round) {
          for (std::size_t i = 0; i < work.size(); ++i) {
            together.arrive_and_wait();
            given[t].push_back(work[(i + shift * t) % work.size()]());
          }
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (unsigned t = 0; t < kThreads; ++t) {
      for (std::size_t i = 0; i < given[t].size(); ++i) {
        const std::size_t job = (i + shift * t) % work.size();
        EXPECT_EQ(given[t][i], expected[job]) << "job " << job << " of thread " << t;
        for (unsigned other = 0; other < kThreads; ++other) {
          if (other != t) met.emplace(job, (i + shift * other) % work.size());
        }
      }
    }
  }
  EXPECT_EQ(met.size(), work.size() * work.size());
}

// Eight at once, each with objects of its own on the same files.
TEST(EightThreads, EachReadALayerOfItsOwn) {
  const std::string expected = read_records();
  ASSERT_GT(expected.size(), 10000U);
  std::barrier together(8);
  std::vector<std::string> given(8);
  std::vector<std::thread> threads;
  for (std::string& mine : given) {
    threads.emplace_back([&together, &mine] {
      together.arrive_and_wait();
      mine = read_records();
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& theirs : given) EXPECT_EQ(theirs, expected);
}

}  // namespace
