// Reading every record of the countries at 1:50m (241 polygons, 99,593 points), beside
// shapelib in the same run.  Files are opened once, outside the measurement; each round
// reads them from the first record to the last.

#include <benchmark/benchmark.h>
#include <shapefil.h>

#include <cstdint>
#include <cstdlib>

#include "kzgis/shape.h"

namespace {

constexpr const char* kLayer = KZGIS_BENCH_DATA_DIR "/ne/ne_50m_countries";
constexpr kz_long kRecords = 241;
constexpr std::int64_t kPoints = 99593;

/// Arrays kept from record to record, as the readers are meant to be used, or released
/// after each.
enum class Arrays { kept, fresh };

void read_all(benchmark::State& state, Arrays arrays) {
  KZ_GIS_ESRI_Shape_c shape(kLayer);
  kz_long number = 0, num_parts = 0, num_points = 0;
  kz_long parts_capacity = 0, points_capacity = 0;
  kz_long* parts = nullptr;
  double* x = nullptr;
  double* y = nullptr;
  double box[4] = {};
  const auto release = [&] {
    std::free(parts);
    std::free(x);
    std::free(y);
    parts = nullptr;
    x = y = nullptr;
    parts_capacity = points_capacity = 0;
  };
  for (auto _ : state) {
    std::int64_t points = 0;
    shape.SeekToFirstDataRecord();
    for (kz_long i = 0; i < kRecords; ++i) {
      if (shape.ReadPolygonShape(&number, &box[0], &box[1], &box[2], &box[3], &num_parts,
                                 &parts_capacity, &parts, &num_points, &points_capacity, &x,
                                 &y) != 1) {
        state.SkipWithError("a record could not be read");
        break;
      }
      benchmark::DoNotOptimize(x);
      points += num_points;
      if (arrays == Arrays::fresh) release();
    }
    if (points != kPoints) state.SkipWithError("points are missing");
  }
  release();
  state.SetItemsProcessed(state.iterations() * kPoints);
}

void kzgis_kept_arrays(benchmark::State& state) { read_all(state, Arrays::kept); }
void kzgis_fresh_arrays(benchmark::State& state) { read_all(state, Arrays::fresh); }

void kzgis_counts(benchmark::State& state) {
  KZ_GIS_ESRI_Shape_c shape(kLayer);
  for (auto _ : state) {
    kz_ulong points = 0;
    if (shape.NumberOfPoints(&points) != 1 || points != kPoints) {
      state.SkipWithError("points are missing");
    }
  }
}

void shapelib(benchmark::State& state) {
  SHPInfo* const handle = SHPOpen(kLayer, "rb");
  for (auto _ : state) {
    std::int64_t points = 0;
    for (int i = 0; i < kRecords; ++i) {
      SHPObject* const object = SHPReadObject(handle, i);
      benchmark::DoNotOptimize(object->padfX);
      points += object->nVertices;
      SHPDestroyObject(object);
    }
    if (points != kPoints) state.SkipWithError("points are missing");
  }
  SHPClose(handle);
  state.SetItemsProcessed(state.iterations() * kPoints);
}

BENCHMARK(kzgis_kept_arrays);
BENCHMARK(kzgis_fresh_arrays);
BENCHMARK(shapelib);
BENCHMARK(kzgis_counts);

}  // namespace
