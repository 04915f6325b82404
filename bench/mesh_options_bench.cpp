// What the options of kzgis::triangulate cost, and what triangulate_terrain does: refinement
// beside CGAL's, splitting of crossings beside GEOS.  Delaunay triangles without new vertices are
// in triangulate_bench.cpp.
//
// Answers are checked after the clock has stopped; who is wrong is marked instead of measured.  The
// polygons that cross are such that the areas of what they bound are known.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#ifdef KZGIS_BENCH_GEOS
#include <geos_c.h>
#endif

#ifdef KZGIS_BENCH_CGAL
#include "cgal_peer.h"
#endif
#include "kzgis/mesh.h"
#include "kzgis/terrain.h"
#include "triangulate/polygons.h"
#include "triangulate/tiling.h"

namespace {

struct Input {
  std::vector<double> x, y;
  std::vector<std::int32_t> starts, counts;
  double area = 0.0;   ///< of the odd-even region
  double faces = 0.0;  ///< of all that the sides enclose

  void add(double px, double py) {
    x.push_back(px);
    y.push_back(py);
  }
  kzgis::Rings rings() const { return {x, y, starts}; }
};

bool near(double value, double expected) { return std::abs(value - expected) <= 1e-9 * expected; }

double doubled_area_of(double ax, double ay, double bx, double by, double cx, double cy) {
  return (bx - ax) * (cy - ay) - (by - ay) * (cx - ax);
}

double area_of(const Input& input, const kzgis::Mesh& mesh) {
  std::vector<double> x = input.x, y = input.y;
  x.insert(x.end(), mesh.new_x.begin(), mesh.new_x.end());
  y.insert(y.end(), mesh.new_y.begin(), mesh.new_y.end());
  double sum = 0.0;
  for (std::size_t i = 0; i < mesh.triangles.size(); i += 3) {
    const std::uint32_t a = mesh.triangles[i], b = mesh.triangles[i + 1], c = mesh.triangles[i + 2];
    sum += doubled_area_of(x[a], y[a], x[b], y[b], x[c], y[c]);
  }
  return sum / 2.0;
}

void measure_mesh(benchmark::State& state, const Input& input, const kzgis::MeshOptions& options) {
  kzgis::Mesh mesh;
  for (auto _ : state) {
    mesh = kzgis::triangulate(input.rings(), options).value();
    benchmark::DoNotOptimize(mesh.triangles.data());
  }
  if (!near(area_of(input, mesh), input.area)) state.SkipWithError("wrong area");
  state.counters["crossings"] = static_cast<double>(mesh.crossings);
  state.counters["triangles"] = static_cast<double>(mesh.triangles.size() / 3);
}

// Refinement, of polygons that the tests know.

constexpr double kLeastAngleDeg = 20.0;

Input simple_polygon(const Family& family, int vertices) {
  std::mt19937_64 random(1);
  const IntPolygon polygon = family.make(vertices, random);
  Input input;
  for (const IntRing& ring : polygon.rings) {
    input.starts.push_back(static_cast<std::int32_t>(input.x.size()));
    input.counts.push_back(static_cast<std::int32_t>(ring.size()));
    for (const IntPoint& p : ring) input.add(static_cast<double>(p.x), static_cast<double>(p.y));
    input.area += static_cast<double>(doubled_area(ring)) / 2.0;
  }
  return input;
}

void refine(benchmark::State& state, const Family& family) {
  const Input input = simple_polygon(family, static_cast<int>(state.range(0)));
  measure_mesh(state, input, {.least_angle_deg = kLeastAngleDeg});
}

#ifdef KZGIS_BENCH_CGAL

void refine_by_cgal(benchmark::State& state, const Family& family) {
  const Input input = simple_polygon(family, static_cast<int>(state.range(0)));
  std::vector<CgalTriangle> triangles;
  for (auto _ : state) {
    triangles = cgal_triangles(input.x, input.y, input.counts, kLeastAngleDeg);
    benchmark::DoNotOptimize(triangles.data());
  }
  double sum = 0.0;
  for (const CgalTriangle& t : triangles) {
    sum += doubled_area_of(t[0], t[1], t[2], t[3], t[4], t[5]);
  }
  if (!near(sum / 2.0, input.area)) state.SkipWithError("wrong area");
  state.counters["triangles"] = static_cast<double>(triangles.size());
}

#endif

// Crossings.

/// A ring that runs from each of m places on a circle to the kth one after it, for k prime to m:
/// m (k - 1) crossings.
///
/// What it winds about at least k - j times is a star again: of each side, whose distance from the
/// centre is d, it has the two pieces that lie from j to j + 1 times pi / m off the foot.
Input star_of(int m, int k) {
  Input input;
  input.starts = {0};
  const double step = std::numbers::pi / m;
  for (int i = 0; i < m; ++i) {
    const auto at = static_cast<double>(std::int64_t{i} * k % m);
    input.add(std::cos(2.0 * step * at), std::sin(2.0 * step * at));
  }
  const double d = std::cos(k * step);
  for (int j = 0; j < k; ++j) {
    input.faces = m * d * d * (std::tan((j + 1) * step) - std::tan(j * step));
    input.area += (k - j) % 2 == 1 ? input.faces : -input.faces;
  }
  return input;
}

/// Two combs across each other, each with n teeth that are 1 wide and as far apart: 4 n n
/// crossings.
Input combs_of(int n) {
  Input input;
  const double width = 2.0 * n - 1.0;
  for (const bool upright : {true, false}) {
    input.starts.push_back(static_cast<std::int32_t>(input.x.size()));
    const auto add = [&](double x, double y) { upright ? input.add(x, y) : input.add(y, x); };
    add(width, -3.0);
    add(0.0, -3.0);
    for (int tooth = 0; tooth < n; ++tooth) {
      const double left = 2.0 * tooth;
      if (tooth > 0) add(left, -1.0);
      add(left, width + 1.0);
      add(left + 1.0, width + 1.0);
      if (tooth < n - 1) add(left + 1.0, -1.0);
    }
  }
  const double comb = 2.0 * width + n * (width + 2.0);
  const double both = static_cast<double>(n) * n;
  input.area = 2.0 * comb - 2.0 * both;
  input.faces = 2.0 * comb - both + (n - 1.0) * (n + 1.0);  // and what is enclosed between teeth
  return input;
}

struct Crossing {
  const char* name;
  Input input;
};

void split(benchmark::State& state, const Crossing& crossing) {
  measure_mesh(state, crossing.input, {.split_crossings = true});
}

/// Of a polygon in which nothing crosses; the counter is how many times as long as without.
void split_nothing(benchmark::State& state, const Family& family) {
  const Input input = simple_polygon(family, static_cast<int>(state.range(0)));
  const std::clock_t start = std::clock();
  measure_mesh(state, input, {.split_crossings = true});
  const std::clock_t between = std::clock();
  for (benchmark::IterationCount i = 0; i < state.iterations(); ++i) {
    benchmark::DoNotOptimize(kzgis::triangulate(input.rings()).value().triangles.data());
  }
  state.counters["of_plain"] =
      static_cast<double>(between - start) / static_cast<double>(std::clock() - between);
}

#ifdef KZGIS_BENCH_GEOS

/// Cuts the sides and puts polygons together of the pieces: all that they enclose, of which those
/// inside would have to be picked still, and cut into triangles.
void split_by_geos(benchmark::State& state, const Crossing& crossing) {
  const Input& input = crossing.input;
  const std::unique_ptr<GEOSContextHandle_HS, decltype(&GEOS_finish_r)> context(GEOS_init_r(),
                                                                                GEOS_finish_r);
  const GEOSContextHandle_t handle = context.get();
  const auto destroy = [handle](GEOSGeometry* g) { GEOSGeom_destroy_r(handle, g); };
  using Geometry = std::unique_ptr<GEOSGeometry, decltype(destroy)>;
  Geometry result(nullptr, destroy);
  for (auto _ : state) {
    std::vector<GEOSGeometry*> lines;
    for (std::size_t ring = 0; ring < input.starts.size(); ++ring) {
      const auto begin = static_cast<std::size_t>(input.starts[ring]);
      const std::size_t end = ring + 1 < input.starts.size()
                                  ? static_cast<std::size_t>(input.starts[ring + 1])
                                  : input.x.size();
      GEOSCoordSequence* const points =
          GEOSCoordSeq_create_r(handle, static_cast<unsigned>(end - begin) + 1, 2);
      for (std::size_t i = 0; i <= end - begin; ++i) {
        const std::size_t v = begin + i % (end - begin);
        GEOSCoordSeq_setXY_r(handle, points, static_cast<unsigned>(i), input.x[v], input.y[v]);
      }
      lines.push_back(GEOSGeom_createLineString_r(handle, points));
    }
    const Geometry all(GEOSGeom_createCollection_r(handle, GEOS_MULTILINESTRING, lines.data(),
                                                   static_cast<unsigned>(lines.size())),
                       destroy);
    const Geometry cut(GEOSUnaryUnion_r(handle, all.get()), destroy);
    const GEOSGeometry* const pieces = cut.get();
    result.reset(GEOSPolygonize_r(handle, &pieces, 1));
    benchmark::DoNotOptimize(result.get());
  }
  double area = 0.0;
  if (result) GEOSArea_r(handle, result.get(), &area);
  if (!near(area, input.faces)) state.SkipWithError("wrong area");
}

#endif

// Terrain.

/// Mountains of whole metres, smooth and rough by turns, on 1,201 x 1,201 points.
kzgis::ElevationGrid mountains() {
  kzgis::ElevationGrid grid;
  grid.columns = grid.rows = 1201;
  grid.step_x = grid.step_y = 30.0;
  std::mt19937_64 random(1);
  for (int row = 0; row < grid.rows; ++row) {
    for (int column = 0; column < grid.columns; ++column) {
      const double smooth = 1500.0 + 900.0 * std::sin(row * 0.011) * std::cos(column * 0.007) +
                            150.0 * std::sin(row * 0.13 + column * 0.09);
      const auto rough = static_cast<double>(random() % 8);
      grid.elevations.push_back(static_cast<float>(std::round(smooth + rough)));
    }
  }
  return grid;
}

void terrain(benchmark::State& state) {
  const kzgis::ElevationGrid grid = mountains();
  const auto tolerance = static_cast<double>(state.range(0));
  kzgis::Terrain result;
  for (auto _ : state) {
    result = kzgis::triangulate_terrain(grid, tolerance).value();
    benchmark::DoNotOptimize(result.triangles.data());
  }
  double sum = 0.0;
  for (std::size_t i = 0; i < result.triangles.size(); i += 3) {
    const std::uint32_t a = result.triangles[i], b = result.triangles[i + 1];
    const std::uint32_t c = result.triangles[i + 2];
    sum += doubled_area_of(result.x[a], result.y[a], result.x[b], result.y[b], result.x[c],
                           result.y[c]);
  }
  if (!near(sum, 2.0 * 36000.0 * 36000.0)) state.SkipWithError("wrong area");
  state.counters["triangles"] = static_cast<double>(result.triangles.size() / 3);
  state.SetItemsProcessed(state.iterations() * grid.columns * grid.rows);
}
BENCHMARK(terrain)->ArgName("tolerance")->Arg(0)->Arg(5)->Arg(20)->Unit(benchmark::kMillisecond);

constexpr Family kFamilies[] = {{"coast", coast}, {"holes", scattered_holes}};

const bool kRegistered = [] {
  for (const Family& family : kFamilies) {
    const auto add = [&](const char* who, void (*run)(benchmark::State&, const Family&)) {
      const std::string name = std::string("refine/") + family.name + "/" + who;
      benchmark::RegisterBenchmark(name.c_str(), run, family)
          ->RangeMultiplier(10)
          ->Range(100, 10000)
          ->Unit(benchmark::kMillisecond);
    };
    add("kzgis", refine);
    benchmark::RegisterBenchmark((std::string("split nothing/") + family.name).c_str(),
                                 split_nothing, family)
        ->RangeMultiplier(10)
        ->Range(100, 100000)
        ->Unit(benchmark::kMillisecond);
#ifdef KZGIS_BENCH_CGAL
    add("CGAL", refine_by_cgal);
#endif
  }
  for (const Crossing& crossing :
       {Crossing{"star of 49,999", star_of(49999, 3)}, Crossing{"star of 997", star_of(997, 101)},
        Crossing{"combs of 150 teeth", combs_of(150)}}) {
    const auto add = [&](const char* who, void (*run)(benchmark::State&, const Crossing&)) {
      const std::string name = std::string("split/") + crossing.name + "/" + who;
      benchmark::RegisterBenchmark(name.c_str(), run, crossing)->Unit(benchmark::kMillisecond);
    };
    add("kzgis", split);
#ifdef KZGIS_BENCH_GEOS
    add("GEOS", split_by_geos);
#endif
  }
  return true;
}();

}  // namespace
