// A polygon of a million vertices, and a grid of elevations, on a thread with a stack of 256 KiB:
// nothing recurses by the size of its input, and memory stays below a stated number of bytes per
// vertex or elevation.

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "kzgis/polytree.h"
#include "kzgis/shape.h"
#include "kzgis/terrain.h"
#include "kzgis/triangulate.h"
#include "robustness/process_memory.h"
#include "shape/shapefile_writer.h"
#include "support/meshed.h"
#include "support/temporary_directory.h"
#include "triangulate/polygons.h"

namespace {

constexpr std::size_t kStackBytes = std::size_t{256} << 10;

/// Runs `work` on a thread with that stack, and gives the bytes per vertex that it took at
/// its peak.
std::size_t bytes_per_vertex(std::size_t vertices, const std::function<void()>& work) {
  release_tables();
  give_back_free_memory();
  forget_peak();
  const std::size_t before = resident_bytes();
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  EXPECT_EQ(pthread_attr_setstacksize(&attributes, kStackBytes), 0);
  pthread_t thread{};
  const auto run = [](void* argument) -> void* {
    (*static_cast<const std::function<void()>*>(argument))();
    return nullptr;
  };
  // pthread_create only passes the pointer on.
  const int failed =
      pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work));
  pthread_attr_destroy(&attributes);
  EXPECT_EQ(failed, 0);
  if (failed == 0) pthread_join(thread, nullptr);
  return (peak_resident_bytes() - before) / vertices;
}

/// A polygon as both interfaces take it: boundary clockwise, hole counter-clockwise.
struct Input {
  std::vector<double> x, y;
  std::vector<kz_long> starts;

  explicit Input(const IntPolygon& polygon) {
    for (const IntRing& ring : polygon.rings) {
      starts.push_back(static_cast<kz_long>(x.size()));
      for (auto p = ring.rbegin(); p != ring.rend(); ++p) {
        x.push_back(static_cast<double>(p->x));
        y.push_back(static_cast<double>(p->y));
      }
    }
  }
};

void report(const char* what, std::size_t bytes, std::size_t limit) {
  std::printf("%s: %zu bytes per vertex\n", what, bytes);
  if (kMemoryIsTheProgramsOwn) {
    EXPECT_LE(bytes, limit) << what;
  }
}

class MillionVertices : public testing::Test {
 protected:
  std::mt19937_64 random_{20030417};
  Input spiral_{transformed(spiral(kManyVertices, random_), 5, -3, 3, 5)};
  // A comb's teeth make long monotone chains and deep query structures.
  Input comb_{comb(kManyVertices, random_)};
};

TEST_F(MillionVertices, AreTriangulatedByTheMesh) {
  for (const Input* input : {&spiral_, &comb_}) {
    const std::size_t bytes = bytes_per_vertex(input->x.size(), [&] {
      const Meshed mesh = meshed({input->x, input->y, input->starts});
      EXPECT_EQ(mesh.flaw.message, "");
      EXPECT_EQ(mesh.triangles.size(), 3 * (input->x.size() - 2));
    });
    report("kzgis::triangulate", bytes, 130);
  }
}

TEST_F(MillionVertices, AreNested) {
  const std::size_t bytes = bytes_per_vertex(spiral_.x.size(), [&] {
    const Nested nesting = nested({spiral_.x, spiral_.y, spiral_.starts});
    EXPECT_EQ(nesting.flaw.message, "");
    EXPECT_EQ(nesting.depth, std::vector<kz_long>{1});
  });
  report("kzgis::nest", bytes, 200);
}

TEST_F(MillionVertices, AreTriangulatedByTheTree) {
  const std::size_t bytes = bytes_per_vertex(spiral_.x.size(), [&] {
    const auto vertices = static_cast<kz_ulong>(spiral_.x.size());
    const kz_ulong start = 0;
    const KZ_GIS_PolygonTree_c tree(0, 0, 0, 0, 1, &start, vertices, spiral_.x.data(),
                                    spiral_.y.data());
    kz_ulong count = 0;
    EXPECT_EQ(tree.NumberOfConnections(&count), 1U);
    EXPECT_EQ(count, 3 * (vertices - 2));
    std::vector<kz_ulong> connections(count);
    EXPECT_EQ(tree.Triangulate(&count, connections.data()), 1U);
  });
  report("KZ_GIS_PolygonTree_c", bytes, 1300);
}

TEST_F(MillionVertices, AreReadFromAShapefile) {
  // On the heap while it is written only: what is read is all that is measured.
  const TemporaryDirectory directory;
  const std::string name = (directory.path() / "spiral").string();
  {
    std::vector<std::pair<double, double>> points;
    for (std::size_t i = 0; i < spiral_.x.size(); ++i) {
      points.emplace_back(spiral_.x[i], spiral_.y[i]);
    }
    ShapefileWriter writer(5);
    writer.add(arc_content({0}, points, 5));
    write_file(name + ".shp", writer.shp());
    write_file(name + ".shx", writer.shx());
  }
  kz_long number = 0, parts = 0, part_room = 0, points = 0, room = 0;
  kz_long* starts = nullptr;
  double box[4];
  double* x = nullptr;
  double* y = nullptr;
  const std::size_t bytes = bytes_per_vertex(spiral_.x.size(), [&] {
    KZ_GIS_ESRI_Shape_c shape(name.c_str());
    kz_ulong total = 0;
    EXPECT_EQ(shape.NumberOfPoints(&total), 1U);
    EXPECT_EQ(total, spiral_.x.size());
    EXPECT_EQ(shape.SeekToDataRecord(1), 1U);
    EXPECT_EQ(shape.ReadPolygonShape(&number, &box[0], &box[1], &box[2], &box[3], &parts,
                                     &part_room, &starts, &points, &room, &x, &y),
              1U);
  });
  ASSERT_EQ(points, static_cast<kz_long>(spiral_.x.size()));
  EXPECT_EQ(std::vector<double>(x, x + points), spiral_.x);
  EXPECT_EQ(std::vector<double>(y, y + points), spiral_.y);
  std::free(starts);
  std::free(x);
  std::free(y);
  report("KZ_GIS_ESRI_Shape_c", bytes, 20);  // the coordinates, and little more
}

TEST(QuarterMillionElevations, AreCoveredByTriangles) {
  // Noise, of which nearly every point is wanted: the most that there can be to do.
  std::mt19937_64 random(20030417);
  kzgis::ElevationGrid grid;
  grid.rows = grid.columns = kManyVertices >= 1000000 ? 500 : 100;
  grid.step_x = grid.step_y = 1.0;
  for (kz_long i = 0; i < grid.rows * grid.columns; ++i) {
    grid.elevations.push_back(static_cast<float>(random() % 1000000));
  }
  for (const double tolerance : {0.0, 1.0}) {
    const std::size_t bytes = bytes_per_vertex(grid.elevations.size(), [&grid, tolerance] {
      const auto terrain = kzgis::triangulate_terrain(grid, tolerance);
      ASSERT_TRUE(terrain) << terrain.error().message;
      EXPECT_GT(terrain->x.size(), grid.elevations.size() / 10 * 9);
    });
    report("kzgis::triangulate_terrain", bytes, 300);
  }
}

}  // namespace
