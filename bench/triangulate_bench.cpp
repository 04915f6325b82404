// Triangulating one polygon of 10 to 1,000,000 vertices, beside CGAL (constrained Delaunay,
// faces outside taken away), GEOS (cut ears, then made Delaunay) and the GLU tessellator,
// each where it is installed.
//
// Everyone starts from plain coordinates and ends with a list of triangles; what a library
// needs in between, its own geometry objects for one, is part of its time.  The area of the
// last result is compared with the polygon's after the clock has stopped; who is wrong, or
// gives no triangles, is marked instead of measured.  kzgis::triangulate proves
// every result as part of its time; no one else does.

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <vector>

#ifdef KZGIS_BENCH_GEOS
#include <geos_c.h>
#endif
#ifdef KZGIS_BENCH_GLU
#include <GL/glu.h>
#endif

#ifdef KZGIS_BENCH_CGAL
#include "cgal_peer.h"
#endif
#include "kzgis/mesh.h"
#include "kzgis/triangulate.h"
#include "triangulate/polygons.h"
#include "triangulate/tiling.h"

namespace {

using kzgis::triangulation::Point;

struct Input {
  std::vector<double> x, y;
  std::vector<kz_long> starts;
  std::vector<kz_long> counts;
  std::vector<Point> points;
  std::size_t triangles = 0;
  double doubled_area = 0.0;
};

Input make_input(const Family& family, int vertices) {
  std::mt19937_64 random(1);
  const IntPolygon polygon = family.make(vertices, random);
  Input input;
  Int128 area = 0;
  for (const IntRing& ring : polygon.rings) {
    input.starts.push_back(static_cast<kz_long>(input.x.size()));
    for (const IntPoint& p : ring) {
      input.x.push_back(static_cast<double>(p.x));
      input.y.push_back(static_cast<double>(p.y));
    }
    area += doubled_area(ring);
  }
  input.counts = polygon.vertex_counts();
  input.points = polygon.points();
  input.triangles = static_cast<std::size_t>(polygon.triangle_count());
  input.doubled_area = static_cast<double>(area);
  return input;
}

double doubled_area_of(const Point& a, const Point& b, const Point& c) {
  return std::abs((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x));
}

/// Twice the area of triangles whose corners are numbered from `first`.
template <class Index>
double doubled_area_of(const Input& input, const std::vector<Index>& corners, Index first) {
  double sum = 0.0;
  for (std::size_t i = 0; i + 2 < corners.size(); i += 3) {
    const auto at = [&](std::size_t k) {
      return input.points[static_cast<std::size_t>(corners[i + k] - first)];
    };
    sum += doubled_area_of(at(0), at(1), at(2));
  }
  return sum;
}

// The subjects.  Each runs the measured loop and gives twice the area of its last result.

double mesh(benchmark::State& state, const Input& input) {
  kzgis::Mesh result;
  for (auto _ : state) {
    result = kzgis::triangulate({input.x, input.y, input.starts}).value();
    benchmark::DoNotOptimize(result.triangles.data());
  }
  return doubled_area_of(input, result.triangles, kz_ulong{0});
}

/// The counter is how many times as long as without it: plain ones follow, just as many.
double delaunay(benchmark::State& state, const Input& input) {
  const kzgis::Rings rings{input.x, input.y, input.starts};
  kzgis::Mesh result;
  const std::clock_t start = std::clock();
  for (auto _ : state) {
    result = kzgis::triangulate(rings, {.delaunay = true}).value();
    benchmark::DoNotOptimize(result.triangles.data());
  }
  const std::clock_t between = std::clock();
  for (benchmark::IterationCount i = 0; i < state.iterations(); ++i) {
    benchmark::DoNotOptimize(kzgis::triangulate(rings).value().triangles.data());
  }
  state.counters["of_plain"] =
      static_cast<double>(between - start) / static_cast<double>(std::clock() - between);
  return doubled_area_of(input, result.triangles, kz_ulong{0});
}

double classic(benchmark::State& state, const Input& input) {
  const std::size_t n = input.points.size();
  const auto vertices = std::make_unique<double[][2]>(n + 1);
  for (std::size_t i = 0; i < n; ++i) {
    vertices[i + 1][0] = input.points[i].x;
    vertices[i + 1][1] = input.points[i].y;
  }
  const auto triangles = std::make_unique<kz_long[][3]>(input.triangles);
  const auto contours = static_cast<kz_long>(input.counts.size());
  for (auto _ : state) {
    std::memset(triangles.get(), 0, input.triangles * sizeof triangles[0]);
    triangulate_polygon(contours, input.counts.data(), vertices.get(), triangles.get());
    benchmark::DoNotOptimize(triangles.get());
  }
  // A run that came up short leaves zeros: no triangle.
  std::vector<kz_long> corners;
  for (std::size_t i = 0; i < input.triangles; ++i) {
    if (triangles[i][0] > 0) corners.insert(corners.end(), triangles[i], triangles[i] + 3);
  }
  return doubled_area_of(input, corners, kz_long{1});
}

#ifdef KZGIS_BENCH_CGAL

double cgal(benchmark::State& state, const Input& input) {
  const std::vector<std::int32_t> counts(input.counts.begin(), input.counts.end());
  std::vector<CgalTriangle> result;
  for (auto _ : state) {
    result = cgal_triangles(input.x, input.y, counts);
    benchmark::DoNotOptimize(result.data());
  }
  double sum = 0.0;
  for (const CgalTriangle& t : result) {
    sum += doubled_area_of({t[0], t[1]}, {t[2], t[3]}, {t[4], t[5]});
  }
  return sum;
}

#endif
#ifdef KZGIS_BENCH_GEOS

double geos(benchmark::State& state, const Input& input) {
  const std::unique_ptr<GEOSContextHandle_HS, decltype(&GEOS_finish_r)> context(GEOS_init_r(),
                                                                                GEOS_finish_r);
  const GEOSContextHandle_t handle = context.get();
  const auto destroy = [handle](GEOSGeometry* g) { GEOSGeom_destroy_r(handle, g); };
  std::unique_ptr<GEOSGeometry, decltype(destroy)> result(nullptr, destroy);
  for (auto _ : state) {
    std::vector<GEOSGeometry*> rings;
    std::size_t begin = 0;
    for (const kz_long count : input.counts) {
      GEOSCoordSequence* const points =
          GEOSCoordSeq_create_r(handle, static_cast<unsigned>(count) + 1, 2);
      for (kz_long i = 0; i <= count; ++i) {
        const Point& p = input.points[begin + static_cast<std::size_t>(i % count)];
        GEOSCoordSeq_setXY_r(handle, points, static_cast<unsigned>(i), p.x, p.y);
      }
      rings.push_back(GEOSGeom_createLinearRing_r(handle, points));
      begin += static_cast<std::size_t>(count);
    }
    const std::unique_ptr<GEOSGeometry, decltype(destroy)> polygon(
        GEOSGeom_createPolygon_r(handle, rings[0], rings.data() + 1,
                                 static_cast<unsigned>(rings.size() - 1)),
        destroy);
    result.reset(GEOSConstrainedDelaunayTriangulation_r(handle, polygon.get()));
    benchmark::DoNotOptimize(result.get());
  }
  double area = 0.0;
  if (result) GEOSArea_r(handle, result.get(), &area);
  return 2.0 * area;
}

#endif
#ifdef KZGIS_BENCH_GLU

/// What the tessellator's callbacks fill.
struct Tessellation {
  std::vector<kz_ulong> corners;
  bool failed = false;
};

double glu(benchmark::State& state, const Input& input) {
  Tessellation result;
  std::vector<std::array<double, 3>> points;
  std::vector<kz_ulong> numbers(input.points.size());
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<kz_ulong>(i);
  for (auto _ : state) {
    result.corners.clear();
    points.clear();
    for (const Point& p : input.points) points.push_back({p.x, p.y, 0.0});
    const std::unique_ptr<GLUtesselator, decltype(&gluDeleteTess)> tess(gluNewTess(),
                                                                        gluDeleteTess);
    const auto set = [&](GLenum which, auto* callback) {
      gluTessCallback(tess.get(), which, reinterpret_cast<_GLUfuncptr>(callback));
    };
    set(
        GLU_TESS_VERTEX_DATA, +[](void* vertex, void* tessellation) {
          static_cast<Tessellation*>(tessellation)
              ->corners.push_back(*static_cast<const kz_ulong*>(vertex));
        });
    // Who asks for edge flags gets triangles, no fans or strips.
    set(
        GLU_TESS_EDGE_FLAG_DATA, +[](GLboolean, void*) {});
    set(
        GLU_TESS_ERROR_DATA, +[](GLenum, void* tessellation) {
          static_cast<Tessellation*>(tessellation)->failed = true;
        });
    gluTessProperty(tess.get(), GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_ODD);
    gluTessNormal(tess.get(), 0.0, 0.0, 1.0);
    gluTessBeginPolygon(tess.get(), &result);
    std::size_t i = 0;
    for (const kz_long count : input.counts) {
      gluTessBeginContour(tess.get());
      for (kz_long k = 0; k < count; ++k, ++i) {
        gluTessVertex(tess.get(), points[i].data(), &numbers[i]);
      }
      gluTessEndContour(tess.get());
    }
    gluTessEndPolygon(tess.get());
    benchmark::DoNotOptimize(result.corners.data());
  }
  return result.failed ? 0.0 : doubled_area_of(input, result.corners, kz_ulong{0});
}

#endif

struct Subject {
  const char* name;
  double (*run)(benchmark::State& state, const Input& input);
  int largest;  ///< vertices; above, a round of some family takes minutes
};

constexpr Subject kSubjects[] = {
    {"kzgis", mesh, 1000000},
    {"kzgis Delaunay", delaunay, 1000000},
    {"kzgis classic", classic, 1000000},
#ifdef KZGIS_BENCH_CGAL
    {"CGAL", cgal, 1000000},
#endif
#ifdef KZGIS_BENCH_GEOS
    {"GEOS", geos, 1000},
#endif
#ifdef KZGIS_BENCH_GLU
    {"GLU", glu, 10000},
#endif
};

/// Rows of holes that stood, lying: a sweep meets them in another order.
IntPolygon holes_turned(int n, std::mt19937_64& random) {
  return transformed(scattered_holes(n, random), 0, -1, 1, 0);
}

constexpr Family kFamilies[] = {
    {"star", star},   {"spiral", spiral},         {"comb", comb},
    {"coast", coast}, {"holes", scattered_holes}, {"holes turned", holes_turned}};

void measure(benchmark::State& state, const Subject& subject, const Family& family) {
  const Input input = make_input(family, static_cast<int>(state.range(0)));
  const double area = subject.run(state, input);
  if (!(std::abs(area - input.doubled_area) <= 1e-9 * input.doubled_area)) {
    state.SkipWithError(area == 0.0 ? "no triangles" : "wrong area");
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(input.points.size()));
}

const bool kRegistered = [] {
  for (const Family& family : kFamilies) {
    for (const Subject& subject : kSubjects) {
      const std::string name = std::string(family.name) + "/" + subject.name;
      benchmark::RegisterBenchmark(name.c_str(), measure, subject, family)
          ->RangeMultiplier(10)
          ->Range(10, subject.largest)
          ->Unit(benchmark::kMicrosecond);
    }
  }
  return true;
}();

}  // namespace
