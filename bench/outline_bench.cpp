// Countries drawn on the plane, beside the projection of their vertices alone.
//
// Half a pixel of a map 1,600 pixels wide is the tolerance.  `of_project` is how many times longer
// than `Chart::project` of the same vertices an area takes, with its cutting, resampling and proof
// of validity.  What is drawn is checked first: nothing is refused, and `nest` accepts it.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <numbers>
#include <string>
#include <vector>

#include "kzgis/outline.h"
#include "kzgis/shapefile.h"

namespace {

struct Polygon {
  std::vector<double> x, y;
  std::vector<std::int32_t> starts;
  kzgis::Rings rings() const { return {x, y, starts}; }
};

const std::vector<Polygon>& countries() {
  static const std::vector<Polygon> polygons = [] {
    std::vector<Polygon> result;
    auto file = kzgis::Shapefile::open(KZGIS_BENCH_DATA_DIR "/ne/ne_50m_countries.shp");
    if (!file) return result;
    for (auto record : *file) {
      if (!record) continue;
      const kzgis::Rings rings = record->rings();
      result.push_back({{rings.x.begin(), rings.x.end()},
                        {rings.y.begin(), rings.y.end()},
                        {rings.starts.begin(), rings.starts.end()}});
    }
    return result;
  }();
  return polygons;
}

kzgis::Chart chart_of(projType type) {
  kzgis::ChartParameters parameters;
  parameters.base_lat = type == BonneProj || type == WernerProj ? 45.0 : 0.0;
  parameters.base_lon = 180.0;  // Russia, Fiji and Antarctica are whole, the rest of Africa torn
  return kzgis::Chart::make(type, parameters).value();
}

double seconds(const auto& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void draw_countries(benchmark::State& state, projType type) {
  const kzgis::Chart chart = chart_of(type);
  const double tolerance = 2.0 * std::numbers::pi * chart.parameters().radius / 1600.0 / 2.0;
  std::size_t vertices = 0;
  std::size_t drawn = 0;
  std::vector<double> x, y;
  for (const Polygon& polygon : countries()) {
    const auto outline = kzgis::project_area(chart, polygon.rings(), tolerance);
    if (!outline || !kzgis::nest(outline->rings())) {
      state.SkipWithError("an area is refused, or not valid");
      return;
    }
    vertices += polygon.x.size();
    drawn += outline->x.size();
    x.resize(std::max(x.size(), polygon.x.size()));
    y.resize(x.size());
  }
  double areas_s = 1e9;
  double points_s = 1e9;
  for (auto _ : state) {
    areas_s = std::min(
        areas_s, seconds([&] {
          for (const Polygon& polygon : countries()) {
            benchmark::DoNotOptimize(kzgis::project_area(chart, polygon.rings(), tolerance));
          }
        }));
    points_s = std::min(points_s, seconds([&] {
                          for (const Polygon& polygon : countries()) {
                            benchmark::DoNotOptimize(chart.project(polygon.y, polygon.x, x, y));
                          }
                        }));
  }
  state.counters["ns_per_vertex"] = 1e9 * areas_s / static_cast<double>(vertices);
  state.counters["of_project"] = areas_s / points_s;
  state.counters["vertices_out"] = static_cast<double>(drawn);
}

const bool registered = [] {
  for (int type = CartesianProj; type < GlobeProj; ++type) {
    const auto projection = static_cast<projType>(type);
    benchmark::RegisterBenchmark(
        ("countries/" + std::string(kzgis::projection_name(projection))).c_str(),
        [projection](benchmark::State& state) { draw_countries(state, projection); })
        ->Unit(benchmark::kMillisecond);
  }
  return true;
}();

}  // namespace
