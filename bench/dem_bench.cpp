// Reading a DEM of 1,201 x 1,201 elevations whole, the size of a one-degree quadrangle at
// three arc-seconds, beside GDAL's driver and beside a bare loop that turns the same
// six-character fields into integers, from memory.
//
// The file is written here, block by block as the USGS lays it out; its elevations are a
// smooth made-up landscape.

#include <benchmark/benchmark.h>
#include <kzgis/dem.h>
#include <kzgis/elevation.h>
#include <unistd.h>
#ifdef KZGIS_BENCH_GDAL
#include <gdal.h>
#endif

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kSide = 1201;
constexpr int kBlock = 1024;
constexpr std::int64_t kElevations = std::int64_t{kSide} * kSide;

int elevation(int row, int column) {
  return static_cast<int>(1500.0 + 900.0 * std::sin(row * 0.011) * std::cos(column * 0.007) +
                          150.0 * std::sin(row * 0.13 + column * 0.09));
}

template <typename... Values>
void append(std::string& text, const char* format, Values... values) {
  char field[256];
  std::snprintf(field, sizeof field, format, values...);
  text += field;
}

/// Fills the block up; fields take its first 1,020 bytes.
void end_block(std::string& text) {
  text.resize((text.size() + kBlock - 1) / kBlock * kBlock, ' ');
}

void append_field(std::string& text, int value) {
  if (text.size() % kBlock + 6 > 1020) end_block(text);
  append(text, "%6d", value);
}

std::string record_a() {
  std::string text = "BENCHMARK";
  text.resize(144, ' ');
  append(text, "%6d%6d%6d%6d", 1, 1, 0, 0);  // level, pattern, geographic, zone
  for (int i = 0; i < 15; ++i) append(text, "%24s", "0.000000000000000D+00");
  append(text, "%6d%6d%6d", 3, 2, 4);  // arc-seconds, metres, sides
  const double south = 162000.0;
  const double west = -442800.0;
  for (const auto& [x, y] : {std::pair{0, 0}, {0, 1}, {1, 1}, {1, 0}}) {
    append(text, "%24.15E%24.15E", west + 3600.0 * x, south + 3600.0 * y);
  }
  append(text, "%24.15E%24.15E%24.15E%6d", 400.0, 2600.0, 0.0, 0);
  append(text, "%12.6E%12.6E%12.6E%6d%6d", 3.0, 3.0, 1.0, 1, kSide);
  end_block(text);
  return text;
}

std::string make_file() {
  std::string text = record_a();
  for (int column = 0; column < kSide; ++column) {
    append(text, "%6d%6d%6d%6d", 1, column + 1, kSide, 1);
    append(text, "%24.15E%24.15E%24.15E%24.15E%24.15E", -442800.0 + 3.0 * column, 162000.0, 0.0,
           400.0, 2600.0);
    for (int row = 0; row < kSide; ++row) append_field(text, elevation(row, column));
    end_block(text);
  }
  return text;
}

/// The file on disk, for as long as the benchmarks run.
class File {
 public:
  File() : bytes_(make_file()) {
    path_ = (std::filesystem::temp_directory_path() / "kzgis_bench_XXXXXX").string();
    const int descriptor = mkstemp(path_.data());
    if (descriptor < 0) std::abort();
    close(descriptor);
    std::ofstream(path_, std::ios::binary) << bytes_;
  }
  ~File() { std::remove(path_.c_str()); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  const std::string& bytes() const { return bytes_; }
  const std::string& path() const { return path_; }

 private:
  std::string bytes_;
  std::string path_;
};

const File& file() {
  static const File the_file;
  return the_file;
}

int parse_six(const char* field) {
  int value = 0;
  for (int i = 0; i < 6; ++i) {
    if (field[i] >= '0') value = 10 * value + (field[i] - '0');
  }
  return value;
}

/// Six characters after another, as many as the file has elevations, none negative.
void bare_loop(benchmark::State& state) {
  const std::string fields = [] {
    std::string text;
    for (int column = 0; column < kSide; ++column) {
      for (int row = 0; row < kSide; ++row) append(text, "%6d", elevation(row, column));
    }
    return text;
  }();
  std::vector<int> values(kElevations);
  for (auto _ : state) {
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = parse_six(&fields[6 * i]);
    benchmark::DoNotOptimize(values.data());
  }
  state.SetItemsProcessed(state.iterations() * kElevations);
}

void check(benchmark::State& state, const kzgis::Result<kzgis::ElevationGrid>& grid) {
  if (!grid || grid->rows != kSide || grid->at(0, 5) != static_cast<float>(elevation(1200, 5))) {
    state.SkipWithError("the grid is wrong");
  }
}

void read_dem_from_memory(benchmark::State& state) {
  for (auto _ : state) check(state, kzgis::read_dem(file().bytes(), "bench"));
  state.SetItemsProcessed(state.iterations() * kElevations);
}

void read_dem_from_disk(benchmark::State& state) {
  for (auto _ : state) check(state, kzgis::read_dem(file().path()));
  state.SetItemsProcessed(state.iterations() * kElevations);
}

void classic_records(benchmark::State& state) {
  for (auto _ : state) {
    DEM_LogicalRecord record{UtString(file().path())};
    int profiles = 1;  // the last one answers 0
    while (record.readRecord() == 1) ++profiles;
    if (profiles != kSide) state.SkipWithError("profiles are missing");
  }
  state.SetItemsProcessed(state.iterations() * kElevations);
}

BENCHMARK(bare_loop)->Unit(benchmark::kMillisecond);
BENCHMARK(read_dem_from_memory)->Unit(benchmark::kMillisecond);
BENCHMARK(read_dem_from_disk)->Unit(benchmark::kMillisecond);
BENCHMARK(classic_records)->Unit(benchmark::kMillisecond);

#ifdef KZGIS_BENCH_GDAL
void gdal(benchmark::State& state) {
  GDALAllRegister();
  std::vector<std::int16_t> values(kElevations);
  for (auto _ : state) {
    GDALDatasetH data = GDALOpen(file().path().c_str(), GA_ReadOnly);
    if (data == nullptr) {
      state.SkipWithError("GDAL cannot read the file");
      break;
    }
    if (GDALRasterIO(GDALGetRasterBand(data, 1), GF_Read, 0, 0, kSide, kSide, values.data(), kSide,
                     kSide, GDT_Int16, 0, 0) != CE_None ||
        values[5] != elevation(1200, 5)) {
      state.SkipWithError("GDAL's elevations differ");
    }
    GDALClose(data);
  }
  state.SetItemsProcessed(state.iterations() * kElevations);
}
BENCHMARK(gdal)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
