// Loading a data bank of some ten million points, made from the coasts at 1:50m repeated
// and shifted, beside the time to read the same bytes with fread and beside a bare loop
// that decodes them in memory and keeps nothing.
//
// The coasts of 500 points or more are taken, so that a coarse precision can leave out 99
// points in a hundred: of every line, the first and the last stay.

#include <benchmark/benchmark.h>
#include <kzgis/databank.h>
#include <kzgis/worldmap.h>
#include <malloc.h>
#include <shapefil.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using kzgis::Continent;
using kzgis::DatabankWriter;
using kzgis::Segment;
using kzgis::Theme;

constexpr std::size_t kPoints = 10'000'000;
constexpr int kShortest = 500;

/// The coasts, in segments of as many points as kzgis pack makes them of.
std::vector<Segment> long_coasts() {
  constexpr int kLongest = 1024;
  std::vector<Segment> segments;
  SHPInfo* const shapes = SHPOpen(KZGIS_BENCH_DATA_DIR "/wdb/cil", "rb");
  if (shapes == nullptr) throw std::runtime_error("the sample layer is missing");
  int records = 0;
  SHPGetInfo(shapes, &records, nullptr, nullptr, nullptr);
  for (int i = 0; i < records; ++i) {
    SHPObject* const shape = SHPReadObject(shapes, i);
    const int count = shape->nVertices >= kShortest ? shape->nVertices : 0;
    for (int first = 0; first + 1 < count; first += kLongest - 1) {
      Segment segment{Continent::europe, Theme::coasts, 1, {}, {}};
      for (int v = first; v < std::min(first + kLongest, count); ++v) {
        segment.lat.push_back(static_cast<std::int32_t>(std::lround(shape->padfY[v] * 3600.0)));
        const auto lon = static_cast<std::int32_t>(std::lround(shape->padfX[v] * 3600.0));
        segment.lon.push_back((lon + 1296000) % 1296000);
      }
      segments.push_back(std::move(segment));
    }
    SHPDestroyObject(shape);
  }
  SHPClose(shapes);
  return segments;
}

/// The bank on disk, for as long as the benchmarks run.
class Bank {
 public:
  Bank() {
    std::string name = (std::filesystem::temp_directory_path() / "kzgis_bench_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
    directory_ = name;
    const std::vector<Segment> coasts = long_coasts();
    DatabankWriter writer;
    for (int shift = 0; points_ < kPoints; ++shift) {
      for (Segment segment : coasts) {
        for (std::int32_t& lon : segment.lon) lon = (lon + 1009 * shift) % 1296000;
        if (writer.add(segment)) throw std::runtime_error("the bank is too long");
      }
      points_ = writer.size_of(Continent::europe, Theme::coasts).points;
    }
    if (writer.write(directory_)) throw std::runtime_error("the bank cannot be written");
  }
  ~Bank() {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
  }
  Bank(const Bank&) = delete;
  Bank& operator=(const Bank&) = delete;

  const std::string& directory() const { return directory_; }
  std::string file() const { return directory_ + "/europe.Map/cil.cbd"; }
  std::uint64_t points() const { return points_; }

 private:
  std::string directory_;
  std::uint64_t points_ = 0;
};

const Bank& bank() {
  static const Bank the_bank;
  return the_bank;
}

std::vector<unsigned char> read_bytes() {
  std::FILE* const file = std::fopen(bank().file().c_str(), "rb");
  std::vector<unsigned char> bytes(std::filesystem::file_size(bank().file()));
  if (std::fread(bytes.data(), 1, bytes.size(), file) != bytes.size()) std::abort();
  std::fclose(file);
  return bytes;
}

void fread_alone(benchmark::State& state) {
  const std::string path = bank().file();
  std::vector<unsigned char> block(65536);
  for (auto _ : state) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    while (std::fread(block.data(), 1, block.size(), file) > 0) benchmark::DoNotOptimize(block);
    std::fclose(file);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bank().points()));
}

/// No checks, no box, no thinning: the bytes are known to be sound.
template <typename Use>
void decode(const std::vector<unsigned char>& bytes, Use use) {
  const auto u16 = [&](std::size_t at) { return bytes[at] | bytes[at + 1] << 8; };
  const auto u32 = [&](std::size_t at) {
    return static_cast<std::uint32_t>(u16(at)) | static_cast<std::uint32_t>(u16(at + 2)) << 16;
  };
  const auto part = [](int high) { return high >= 0x8000 ? (high | 0x4000) - 0x10000 : high; };
  const std::uint32_t dictionary = u32(4);
  const std::uint32_t segments = u32(8);
  for (std::uint32_t n = 0; n < segments; ++n) {
    std::size_t at = u32(dictionary + 28 * n + 20);
    int lon = static_cast<int>(u32(at));
    int lat = static_cast<int>(u32(at + 4));
    const std::uint32_t count = u32(at + 12);
    at += 18;
    for (std::uint32_t i = 1; i < count; ++i) {
      use(lat, lon);
      const int word = u16(at);
      if ((word & 0x4000) != 0) {
        const int high = word >> 8;
        lon += high >= 0x80 ? high - 0x100 : high - 0x40;
        lat += static_cast<signed char>(word & 0xFF);
        at += 2;
      } else {
        lon += part(word) * 0x10000 + u16(at + 2);
        lat += part(u16(at + 4)) * 0x10000 + u16(at + 6);
        at += 8;
      }
      if (lon >= 1296000) lon -= 1296000;
      if (lon < 0) lon += 1296000;
    }
  }
}

std::int64_t decode_and_add(const std::vector<unsigned char>& bytes) {
  std::int64_t sum = 0;
  decode(bytes, [&sum](int lat, int lon) { sum += lat ^ lon; });
  return sum;
}

void decode_alone(benchmark::State& state) {
  const std::vector<unsigned char> bytes = read_bytes();
  for (auto _ : state) benchmark::DoNotOptimize(decode_and_add(bytes));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bank().points()));
}

void read_and_decode(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(decode_and_add(read_bytes()));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bank().points()));
}

/// The bare loop's work, each point made a `LatLon` of its own as a map keeps it.
void decode_to_points(benchmark::State& state) {
  const std::vector<unsigned char> bytes = read_bytes();
  for (auto _ : state) {
    std::vector<LatLon*> points;
    decode(bytes, [&points](int lat, int lon) { points.push_back(new LatLon(lat, lon)); });
    state.PauseTiming();
    for (LatLon* const point : points) delete point;
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bank().points()));
}

void load(benchmark::State& state, kz_long precision_arcsec) {
  std::uint64_t kept = 0;
  double heap_bytes = 0.0;
  for (auto _ : state) {
    const std::size_t before = mallinfo2().uordblks;
    WorldMap map(bank().directory().c_str());
    *map.fetchLowLeftBoundary() = LatLon(-90.0, 0.0);
    *map.fetchUpRightBoundary() = LatLon(90.0, 359.9999);
    map.setPOI(Coastal, Level1, 1);
    map.setPrecision(precision_arcsec);
    map.readData();
    state.PauseTiming();  // clearing is another story
    kept = 0;
    for (UtVector<LatLon*>* const line : map.fetchPolygonCollection(Coastal)) kept += line->size();
    heap_bytes = static_cast<double>(mallinfo2().uordblks - before);
    if (precision_arcsec == 0 && kept != bank().points()) state.SkipWithError("points are missing");
    map.clearMaps();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bank().points()));
  state.counters["kept_percent"] =
      100.0 * static_cast<double>(kept) / static_cast<double>(bank().points());
  state.counters["heap_bytes_per_kept_point"] = heap_bytes / static_cast<double>(kept);
}

void worldmap_every_point(benchmark::State& state) { load(state, 0); }
void worldmap_one_in_a_hundred(benchmark::State& state) { load(state, 40000); }

/// Whole segments as plain numbers.
void read_databank_every_point(benchmark::State& state) {
  double heap_bytes = 0.0;
  for (auto _ : state) {
    const std::size_t before = mallinfo2().uordblks;
    const auto read = kzgis::read_databank(bank().directory());
    heap_bytes = static_cast<double>(mallinfo2().uordblks - before);
    std::uint64_t points = 0;
    for (const Segment& segment : read->segments) points += segment.lat.size();
    if (points != bank().points()) state.SkipWithError("points are missing");
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bank().points()));
  state.counters["heap_bytes_per_kept_point"] = heap_bytes / static_cast<double>(bank().points());
}

BENCHMARK(fread_alone)->Unit(benchmark::kMillisecond);
BENCHMARK(decode_alone)->Unit(benchmark::kMillisecond);
BENCHMARK(read_and_decode)->Unit(benchmark::kMillisecond);
BENCHMARK(decode_to_points)->Unit(benchmark::kMillisecond);
BENCHMARK(worldmap_every_point)->Unit(benchmark::kMillisecond);
BENCHMARK(worldmap_one_in_a_hundred)->Unit(benchmark::kMillisecond);
BENCHMARK(read_databank_every_point)->Unit(benchmark::kMillisecond);

}  // namespace
