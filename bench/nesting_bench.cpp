// Finding which ring lies in which: one boundary, holes in it, an island in every hole.
// GEOS, where it is installed, builds the polygons from the same rings.
//
// Then 100,000 rings of 16 vertices side by side (islands), one in another (concentric), and in
// pairs within one more (lakes).
//
// After the clock has stopped everyone's answer is checked; a wrong one is marked instead of
// measured.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#ifdef KZGIS_BENCH_GEOS
#include <geos_c.h>
#endif

#include "kzgis/mesh.h"
#include "kzgis/polytree.h"

namespace {

constexpr std::size_t kCorners = 4;

/// Squares: the boundary, then hole and island by turns, a hole in every cell of a grid.
struct Input {
  explicit Input(std::int64_t rings) {
    const std::int64_t cells = (rings - 1) / 2;
    const auto columns = static_cast<std::int64_t>(std::ceil(std::sqrt(cells)));
    add(0.0, 0.0, 9.0 * static_cast<double>(columns));
    for (std::int64_t cell = 0; cell < cells; ++cell) {
      const auto left = static_cast<double>(9 * (cell % columns));
      const auto low = static_cast<double>(9 * (cell / columns));
      add(left + 1.0, low + 1.0, 7.0);
      add(left + 3.0, low + 3.0, 3.0);
    }
    area = 81.0 * static_cast<double>(columns * columns) - 40.0 * static_cast<double>(cells);
  }

  std::vector<double> x, y;
  std::vector<kz_long> starts;
  double area;

 private:
  void add(double left, double low, double side) {
    starts.push_back(static_cast<kz_long>(x.size()));
    x.insert(x.end(), {left, left, left + side, left + side});
    y.insert(y.end(), {low, low + side, low + side, low});
  }
};

void nest(benchmark::State& state) {
  const Input input(state.range(0));
  kzgis::Nesting nesting;
  for (auto _ : state) {
    nesting = kzgis::nest({input.x, input.y, input.starts}).value();
    benchmark::DoNotOptimize(nesting.depth.data());
  }
  for (std::size_t ring = 0; ring < nesting.depth.size(); ++ring) {
    const kz_long expected = ring == 0 ? 1 : ring % 2 != 0 ? 2 : 3;
    if (nesting.depth[ring] != expected) state.SkipWithError("wrong depth");
  }
  if (nesting.depth.size() != input.starts.size()) state.SkipWithError("no nesting");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(input.starts.size()));
}

void tree(benchmark::State& state) {
  const Input input(state.range(0));
  const std::vector<kz_ulong> starts(input.starts.begin(), input.starts.end());
  const auto rings = static_cast<kz_ulong>(starts.size());
  std::unique_ptr<KZ_GIS_PolygonTree_c> tree;
  for (auto _ : state) {
    tree = std::make_unique<KZ_GIS_PolygonTree_c>(0.0, 0.0, 0.0, 0.0, rings, starts.data(),
                                                  static_cast<kz_ulong>(input.x.size()),
                                                  input.x.data(), input.y.data());
    benchmark::DoNotOptimize(tree.get());
  }
  // The boundary with h holes has 4 + 6 h - 2 triangles, an island 2: 2 + 8 h in all.
  kz_ulong count = 0;
  if (tree) tree->NumberOfConnections(&count);
  if (count != 3 * (2 + 8 * ((rings - 1) / 2))) state.SkipWithError("wrong tree");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(input.starts.size()));
}

/// Rings of 16 vertices, and how many triangles they make with odd depths filled.
struct Round {
  enum Kind { islands, concentric, lakes };
  static constexpr int kRings = 100000;
  static constexpr int kVertices = 16;

  explicit Round(Kind kind) {
    const int columns = kind == islands ? 317 : 224;
    const auto place = [columns](int i, double step) {
      return std::pair(step * (i % columns), step * (i / columns));
    };
    if (kind == lakes) ring(450.0, 450.0, 2000.0);
    for (int i = 0; size() < kRings; ++i) {
      const auto [x0, y0] = kind == concentric ? std::pair(0.0, 0.0) : place(i, 4.0);
      if (kind == islands) ring(x0, y0, 1.5);
      if (kind == concentric) ring(x0, y0, kRings - i);
      if (kind == lakes) ring(x0, y0, 1.5);
      if (kind == lakes && size() < kRings) ring(x0, y0, 0.7);
    }
  }
  int size() const { return static_cast<int>(starts.size()); }

  std::vector<double> x, y;
  std::vector<kz_long> starts;

 private:
  void ring(double x0, double y0, double radius) {
    starts.push_back(static_cast<kz_long>(x.size()));
    for (int i = 0; i < kVertices; ++i) {
      const double angle = 2.0 * std::numbers::pi * i / kVertices;
      x.push_back(x0 + radius * std::cos(angle));
      y.push_back(y0 + radius * std::sin(angle));
    }
  }
};

void nest_round(benchmark::State& state, Round::Kind kind) {
  const Round input(kind);
  kz_long deepest = 0;
  for (auto _ : state) {
    const kzgis::Nesting nesting = kzgis::nest({input.x, input.y, input.starts}).value();
    deepest = *std::max_element(nesting.depth.begin(), nesting.depth.end());
  }
  const kz_long expected[] = {1, Round::kRings, 3};
  if (deepest != expected[kind]) state.SkipWithError("wrong depth");
}

void tree_round(benchmark::State& state, Round::Kind kind) {
  const Round input(kind);
  const std::vector<kz_ulong> starts(input.starts.begin(), input.starts.end());
  kz_ulong count = 0;
  for (auto _ : state) {
    const KZ_GIS_PolygonTree_c tree(0.0, 0.0, 0.0, 0.0, Round::kRings, starts.data(),
                                    static_cast<kz_ulong>(input.x.size()), input.x.data(),
                                    input.y.data());
    tree.NumberOfConnections(&count);
  }
  // A filled ring has its vertices and those of its holes, two more for each hole, less two.
  constexpr kz_ulong kAll = Round::kRings * Round::kVertices;
  const kz_ulong expected[] = {kAll - 2 * Round::kRings, kAll, kAll};
  if (count != 3 * expected[kind]) state.SkipWithError("wrong tree");
}

#ifdef KZGIS_BENCH_GEOS

void geos(benchmark::State& state) {
  const Input input(state.range(0));
  const std::unique_ptr<GEOSContextHandle_HS, decltype(&GEOS_finish_r)> context(GEOS_init_r(),
                                                                                GEOS_finish_r);
  const GEOSContextHandle_t handle = context.get();
  const auto destroy = [handle](GEOSGeometry* g) { GEOSGeom_destroy_r(handle, g); };
  std::unique_ptr<GEOSGeometry, decltype(destroy)> result(nullptr, destroy);
  for (auto _ : state) {
    std::vector<GEOSGeometry*> lines;
    for (const kz_long start : input.starts) {
      GEOSCoordSequence* const points = GEOSCoordSeq_create_r(handle, kCorners + 1, 2);
      for (std::size_t i = 0; i <= kCorners; ++i) {
        const std::size_t v = static_cast<std::size_t>(start) + i % kCorners;
        GEOSCoordSeq_setXY_r(handle, points, static_cast<unsigned>(i), input.x[v], input.y[v]);
      }
      lines.push_back(GEOSGeom_createLineString_r(handle, points));
    }
    const std::unique_ptr<GEOSGeometry, decltype(destroy)> all(
        GEOSGeom_createCollection_r(handle, GEOS_MULTILINESTRING, lines.data(),
                                    static_cast<unsigned>(lines.size())),
        destroy);
    result.reset(GEOSBuildArea_r(handle, all.get()));
    benchmark::DoNotOptimize(result.get());
  }
  double area = 0.0;
  if (result) GEOSArea_r(handle, result.get(), &area);
  if (area != input.area) state.SkipWithError("wrong area");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(input.starts.size()));
}

#endif

const bool kRegistered = [] {
  const auto add = [](const char* name, void (*subject)(benchmark::State&), int largest) {
    benchmark::RegisterBenchmark(name, subject)
        ->RangeMultiplier(10)
        ->Range(10, largest)
        ->Unit(benchmark::kMicrosecond);
  };
  add("nesting/kzgis", nest, 100000);
  add("nesting/kzgis PolygonTree", tree, 100000);
  constexpr const char* kNames[] = {"islands", "concentric", "lakes"};
  for (const Round::Kind kind : {Round::islands, Round::concentric, Round::lakes}) {
    const std::string name = kNames[kind];
    benchmark::RegisterBenchmark((name + "/kzgis").c_str(), nest_round, kind)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "/kzgis PolygonTree").c_str(), tree_round, kind)
        ->Unit(benchmark::kMillisecond);
  }
#ifdef KZGIS_BENCH_GEOS
  add("nesting/GEOS", geos, 10000);  // two minutes for ten times as many
#endif
  return true;
}();

}  // namespace
