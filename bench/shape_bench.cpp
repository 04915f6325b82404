// Reading every record of a shapefile, beside shapelib in the same run, and beside taking the
// coordinates apart that one read has brought into memory.
//
// The files: the countries at 1:50m, 10,000 rings of 1,000 points, and a million records of two
// rings of 5 points.  They are opened once, outside the measurement; each round reads them from the
// first record to the last.

#include <benchmark/benchmark.h>
#include <shapefil.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "kzgis/shape.h"
#include "kzgis/shapefile.h"

namespace {

struct Layer {
  std::string path;
  kz_long records;
  std::int64_t points;
};

/// Arrays kept from record to record, as the readers are meant to be used, or released
/// after each.
enum class Arrays { kept, fresh };

void read_all(benchmark::State& state, const Layer& layer, Arrays arrays) {
  KZ_GIS_ESRI_Shape_c shape(layer.path.c_str());
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
    for (kz_long i = 0; i < layer.records; ++i) {
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
    if (points != layer.points) state.SkipWithError("points are missing");
  }
  release();
  state.SetItemsProcessed(state.iterations() * layer.points);
}

void classic(benchmark::State& state, const Layer& layer) { read_all(state, layer, Arrays::kept); }
void classic_fresh_arrays(benchmark::State& state, const Layer& layer) {
  read_all(state, layer, Arrays::fresh);
}

void classic_counts(benchmark::State& state, const Layer& layer) {
  KZ_GIS_ESRI_Shape_c shape(layer.path.c_str());
  for (auto _ : state) {
    kz_ulong points = 0;
    if (shape.NumberOfPoints(&points) != 1 || points != layer.points) {
      state.SkipWithError("points are missing");
    }
  }
}

void shapefile(benchmark::State& state, const Layer& layer) {
  kzgis::Shapefile file = kzgis::Shapefile::open(layer.path).value();
  for (auto _ : state) {
    std::int64_t points = 0;
    for (const auto& record : file) {
      benchmark::DoNotOptimize(record->x.data());
      points += static_cast<std::int64_t>(record->x.size());
    }
    if (points != layer.points) state.SkipWithError("points are missing");
  }
  state.SetItemsProcessed(state.iterations() * layer.points);
}

void shapelib(benchmark::State& state, const Layer& layer) {
  SHPInfo* const handle = SHPOpen(layer.path.c_str(), "rb");
  for (auto _ : state) {
    std::int64_t points = 0;
    for (int i = 0; i < layer.records; ++i) {
      SHPObject* const object = SHPReadObject(handle, i);
      benchmark::DoNotOptimize(object->padfX);
      points += object->nVertices;
      SHPDestroyObject(object);
    }
    if (points != layer.points) state.SkipWithError("points are missing");
  }
  SHPClose(handle);
  state.SetItemsProcessed(state.iterations() * layer.points);
}

/// Reads a quarter of a megabyte at a time and takes all of it for coordinates.
void split(benchmark::State& state, const Layer& layer) {
  constexpr std::size_t kPairs = 16384;
  std::vector<double> block(2 * kPairs);
  std::vector<double> x(kPairs);
  std::vector<double> y(kPairs);
  for (auto _ : state) {
    std::FILE* const file = std::fopen((layer.path + ".shp").c_str(), "rb");
    std::setvbuf(file, nullptr, _IONBF, 0);
    for (;;) {
      const std::size_t pairs = std::fread(block.data(), 16, kPairs, file);
      for (std::size_t i = 0; i < pairs; ++i) {
        x[i] = block[2 * i];
        y[i] = block[2 * i + 1];
      }
      benchmark::DoNotOptimize(x.data());
      benchmark::DoNotOptimize(y.data());
      benchmark::ClobberMemory();
      if (pairs < kPairs) break;
    }
    std::fclose(file);
  }
  state.SetItemsProcessed(state.iterations() * layer.points);
}

/// Files that are gone with the program.
class Written {
 public:
  Written() : folder_(std::filesystem::temp_directory_path() / "kzgis_bench_shape_XXXXXX") {
    std::string name = folder_.string();
    if (mkdtemp(name.data()) != nullptr) folder_ = name;
  }
  ~Written() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  Written(const Written&) = delete;
  Written& operator=(const Written&) = delete;

  Layer layer(const char* name, int records, int rings, int corners) const {
    const std::string path = (folder_ / name).string();
    SHPInfo* const handle = SHPCreate(path.c_str(), SHPT_POLYGON);
    std::vector<int> starts;
    std::vector<double> x;
    std::vector<double> y;
    for (int ring = 0; ring < rings; ++ring) {
      starts.push_back(ring * corners);
      for (int i = 0; i < corners; ++i) {
        x.push_back(ring + 0.001 * (i % (corners - 1)));
        y.push_back(ring + 0.002 * (i % (corners - 1)));
      }
    }
    SHPObject* const object =
        SHPCreateObject(SHPT_POLYGON, -1, rings, starts.data(), nullptr, rings * corners, x.data(),
                        y.data(), nullptr, nullptr);
    for (int i = 0; i < records; ++i) SHPWriteObject(handle, -1, object);
    SHPDestroyObject(object);
    SHPClose(handle);
    return {path, records, std::int64_t{records} * rings * corners};
  }

 private:
  std::filesystem::path folder_;
};

void add_all(const char* name, const Layer& layer) {
  const auto add = [&](const char* what, void (*subject)(benchmark::State&, const Layer&)) {
    benchmark::RegisterBenchmark((std::string(name) + '/' + what).c_str(), subject, layer);
  };
  add("split", split);
  add("classic", classic);
  add("classic, fresh arrays", classic_fresh_arrays);
  add("Shapefile", shapefile);
  add("shapelib", shapelib);
  add("classic counts", classic_counts);
}

}  // namespace

int main(int argc, char** argv) {
  const Written files;
  add_all("countries", {KZGIS_BENCH_DATA_DIR "/ne/ne_50m_countries", 241, 99593});
  add_all("rings of 1000", files.layer("large", 10000, 1, 1000));
  add_all("two rings of 5", files.layer("small", 1000000, 2, 5));
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
