// Projecting, beside PROJ and beside the bare formulas in the same run.
//
// One point at a time, forward: ours starts from decimal degrees and ends in an array that the
// caller owns; PROJ starts from radians and ends in a value.  Both see the same points on the same
// sphere, within 60 degrees of the base (45 N, 180 E), where all fifteen projections have a
// value.
//
// A million points in arrays, there and back: the formulas in a loop, which is about what the
// host's sine and logarithm cost; `Chart`, which checks every point as well and keeps its digits
// everywhere, by both arithmetics; PROJ, from radians and back to them.  The base is 45 N, 0 E.
// After the clock has stopped, places are compared with those of the formulas: a wrong one is
// marked instead of measured.

#include <benchmark/benchmark.h>
#include <proj.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "bare_formulas.h"
#include "kzgis/chart.h"
#include "kzgis/projection.h"

namespace {

constexpr double kBaseLat_deg = 45.0;
constexpr double kBaseLon_deg = 180.0;
constexpr std::size_t kPoints = 1024;

struct Subject {
  projType type;
  const char* peer;
};

const Subject kSubjects[] = {
    {CartesianProj, "+proj=eqc +lat_0=45 +lon_0=180"},
    {MercatorProj, "+proj=merc +lon_0=180"},
    {LambertCylindricalProj, "+proj=cea +lon_0=180"},
    {GnomonicProj, "+proj=gnom +lat_0=45 +lon_0=180"},
    {StereographicProj, "+proj=stere +lat_0=45 +lon_0=180"},
    {OrthographicProj, "+proj=ortho +lat_0=45 +lon_0=180"},
    {PostelProj, "+proj=aeqd +lat_0=45 +lon_0=180"},
    {LambertAzimuthalProj, "+proj=laea +lat_0=45 +lon_0=180"},
    {LambertConicProj, "+proj=lcc +lat_0=45 +lon_0=180 +lat_1=30 +lat_2=60"},
    {AlbersProj, "+proj=aea +lat_0=45 +lon_0=180 +lat_1=30 +lat_2=60"},
    {CassiniSoldnerProj, "+proj=cass +lat_0=45 +lon_0=180"},
    {BonneProj, "+proj=bonne +lat_1=45 +lon_0=180"},
    {WernerProj, "+proj=bonne +lat_1=90 +lon_0=180"},
    {SansonFlamsteedProj, "+proj=sinu +lon_0=180"},
    {GlobeProj, "+proj=cart"},
};

/// Points about the base, the same for both sides.
std::vector<LatLon> sample_points() {
  std::mt19937 rng(1987);
  std::uniform_real_distribution<double> lat(5.0, 85.0);
  std::uniform_real_distribution<double> lon(150.0, 210.0);
  std::vector<LatLon> points;
  for (std::size_t i = 0; i < kPoints; ++i) {
    const double lat_deg = lat(rng);
    points.emplace_back(lat_deg, lon(rng));
  }
  return points;
}

void ours(benchmark::State& state, const Subject& subject) {
  Projection projection(subject.type, kBaseLat_deg, kBaseLon_deg);
  projection.setFirstPar(30.0);
  projection.setSecondPar(60.0);
  const std::vector<LatLon> points = sample_points();
  double* xyz = nullptr;
  std::size_t i = 0;
  for (auto _ : state) {
    if (projection.FromTo(points[i], &xyz) != 3) {
      state.SkipWithError("refused");
      break;
    }
    benchmark::DoNotOptimize(xyz[0]);
    i = (i + 1) % kPoints;
  }
  delete[] xyz;
  state.SetItemsProcessed(state.iterations());
}

void proj(benchmark::State& state, const Subject& subject) {
  const std::unique_ptr<PJ_CONTEXT, decltype(&proj_context_destroy)> context(proj_context_create(),
                                                                             proj_context_destroy);
  const std::unique_ptr<PJ, decltype(&proj_destroy)> projection(
      proj_create(context.get(), (std::string(subject.peer) + " +R=6378000").c_str()),
      proj_destroy);
  if (!projection) {
    state.SkipWithError("PROJ does not know this projection");
    return;
  }
  std::vector<PJ_COORD> points;
  for (const LatLon& point : sample_points()) {
    constexpr double kRadians = std::numbers::pi / 180.0;
    points.push_back(proj_coord(point.fetchLon() * kRadians, point.fetchLat() * kRadians, 0, 0));
  }
  std::size_t i = 0;
  for (auto _ : state) {
    const PJ_COORD out = proj_trans(projection.get(), PJ_FWD, points[i]);
    benchmark::DoNotOptimize(out.v[0]);
    i = (i + 1) % kPoints;
  }
  state.SetItemsProcessed(state.iterations());
}

/// A projection in arrays.  The globe's peer is left out: PROJ's starts from geodetic latitudes.
struct ArraySubject {
  projType type;
  bare::Loop forward, inverse;
  const char* peer;
};

template <class Formula>
ArraySubject subject_of(projType type, const char* peer) {
  return {type, bare::forward<Formula>, bare::inverse<Formula>, peer};
}

const ArraySubject kArraySubjects[] = {
    subject_of<bare::Cartesian>(CartesianProj, "eqc +lat_0=45"),
    subject_of<bare::Mercator>(MercatorProj, "merc"),
    subject_of<bare::LambertCylindrical>(LambertCylindricalProj, "cea"),
    subject_of<bare::Azimuthal<bare::Gnomonic>>(GnomonicProj, "gnom +lat_0=45"),
    subject_of<bare::Azimuthal<bare::Stereographic>>(StereographicProj, "stere +lat_0=45"),
    subject_of<bare::Azimuthal<bare::Orthographic>>(OrthographicProj, "ortho +lat_0=45"),
    subject_of<bare::Azimuthal<bare::Postel>>(PostelProj, "aeqd +lat_0=45"),
    subject_of<bare::Azimuthal<bare::LambertAzimuthal>>(LambertAzimuthalProj, "laea +lat_0=45"),
    subject_of<bare::LambertConic>(LambertConicProj, "lcc +lat_0=45 +lat_1=30 +lat_2=60"),
    subject_of<bare::Albers>(AlbersProj, "aea +lat_0=45 +lat_1=30 +lat_2=60"),
    subject_of<bare::CassiniSoldner>(CassiniSoldnerProj, "cass +lat_0=45"),
    subject_of<bare::PseudoConic<false>>(BonneProj, "bonne +lat_1=45"),
    subject_of<bare::PseudoConic<true>>(WernerProj, "bonne +lat_1=90"),
    subject_of<bare::SansonFlamsteed>(SansonFlamsteedProj, "sinu"),
};

constexpr std::size_t kArrayPoints = 1000000;

/// Latitudes and longitudes, and where the formulas have them.
struct Sample {
  explicit Sample(const ArraySubject& subject)
      : lat(kArrayPoints), lon(kArrayPoints), x(kArrayPoints), y(kArrayPoints) {
    std::mt19937 rng(1987);
    std::uniform_real_distribution<double> lats(5.0, 85.0);
    std::uniform_real_distribution<double> lons(-30.0, 30.0);
    for (std::size_t i = 0; i < kArrayPoints; ++i) {
      lat[i] = lats(rng);
      lon[i] = lons(rng);
    }
    subject.forward({}, lat, lon, x, y);
  }

  std::vector<double> lat, lon, x, y;
};

enum class Direction { there, back };

kzgis::Chart chart_of(projType type) {
  kzgis::ChartParameters parameters;
  parameters.base_lat = 45.0;
  parameters.radius = bare::kRadius;
  if (type == LambertConicProj || type == AlbersProj) {
    parameters.first_parallel = 30.0;
    parameters.second_parallel = 60.0;
  }
  return kzgis::Chart::make(type, parameters).value();
}

void check(benchmark::State& state, const std::vector<double>& a, const std::vector<double>& b,
           double most) {
  double apart = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!(std::fabs(a[i] - b[i]) <= apart)) apart = std::fabs(a[i] - b[i]);
  }
  if (!(apart <= most)) state.SkipWithError("wrong places");
}

/// Runs `convert(from a, from b, to a, to b)` over the sample.
template <class Convert>
void run_arrays(benchmark::State& state, const ArraySubject& subject, Direction direction,
                const Convert& convert) {
  const Sample sample(subject);
  std::vector<double> a(kArrayPoints);
  std::vector<double> b(kArrayPoints);
  const bool there = direction == Direction::there;
  for (auto _ : state) {
    if (there) {
      convert(sample.lat, sample.lon, a, b);
    } else {
      convert(sample.x, sample.y, a, b);
    }
    benchmark::DoNotOptimize(a.data());
    benchmark::ClobberMemory();
  }
  constexpr double kMetres = 1e-5;
  constexpr double kDegrees = 1e-9;
  check(state, a, there ? sample.x : sample.lat, there ? kMetres : kDegrees);
  check(state, b, there ? sample.y : sample.lon, there ? kMetres : kDegrees);
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kArrayPoints));
}

using In = const std::vector<double>&;
using Out = std::vector<double>&;

void array_bare(benchmark::State& state, const ArraySubject& subject, Direction direction) {
  const bare::Constants constants;
  const bare::Loop loop = direction == Direction::there ? subject.forward : subject.inverse;
  run_arrays(state, subject, direction,
             [&](In a, In b, Out c, Out d) { loop(constants, a, b, c, d); });
}

void array_chart(benchmark::State& state, const ArraySubject& subject, Direction direction,
                 kzgis::Arithmetic arithmetic) {
  const kzgis::Chart chart = chart_of(subject.type);
  run_arrays(state, subject, direction, [&](In a, In b, Out c, Out d) {
    if (direction == Direction::there) {
      chart.project(a, b, c, d, arithmetic);
    } else {
      chart.unproject(a, b, c, d, arithmetic);
    }
  });
}

void array_proj(benchmark::State& state, const ArraySubject& subject, Direction direction) {
  const std::unique_ptr<PJ_CONTEXT, decltype(&proj_context_destroy)> context(proj_context_create(),
                                                                             proj_context_destroy);
  const std::string definition = std::string("+proj=") + subject.peer + " +R=6378000";
  const std::unique_ptr<PJ, decltype(&proj_destroy)> projection(
      proj_create(context.get(), definition.c_str()), proj_destroy);
  const Sample sample(subject);
  const bool there = direction == Direction::there;
  std::vector<double> first = there ? sample.lon : sample.x;
  std::vector<double> second = there ? sample.lat : sample.y;
  // Some of PROJ's count y from the equator, and Bonne's for the pole from there.
  const bool moved = subject.type == LambertCylindricalProj || subject.type == WernerProj ||
                     subject.type == SansonFlamsteedProj;
  double origin = 0.0;
  if (moved) {
    const PJ_COORD base =
        proj_trans(projection.get(), PJ_FWD, proj_coord(0.0, 45.0 * bare::kDegree, 0.0, 0.0));
    origin = base.v[1];
  }
  for (std::size_t i = 0; i < kArrayPoints; ++i) {
    if (there) {
      first[i] *= bare::kDegree;
      second[i] *= bare::kDegree;
    } else {
      second[i] += origin;
    }
  }
  std::vector<double> a;
  std::vector<double> b;
  for (auto _ : state) {
    // PROJ converts in place.
    state.PauseTiming();
    a = first;
    b = second;
    state.ResumeTiming();
    proj_trans_generic(projection.get(), there ? PJ_FWD : PJ_INV, a.data(), sizeof(double),
                       kArrayPoints, b.data(), sizeof(double), kArrayPoints, nullptr, 0, 0, nullptr,
                       0, 0);
    benchmark::ClobberMemory();
  }
  for (std::size_t i = 0; i < kArrayPoints; ++i) {
    if (there) {
      b[i] -= origin;
    } else {
      a[i] /= bare::kDegree;
      b[i] /= bare::kDegree;
    }
  }
  check(state, a, there ? sample.x : sample.lon, there ? 1e-5 : 1e-9);
  check(state, b, there ? sample.y : sample.lat, there ? 1e-5 : 1e-9);
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kArrayPoints));
}

const bool kRegistered = [] {
  for (const Subject& subject : kSubjects) {
    const std::string name = Projection(subject.type).fetchProjectionName().str();
    benchmark::RegisterBenchmark((name + "/kzgis").c_str(), ours, subject);
    benchmark::RegisterBenchmark((name + "/PROJ").c_str(), proj, subject);
  }
  for (const Direction direction : {Direction::there, Direction::back}) {
    for (const ArraySubject& subject : kArraySubjects) {
      const std::string name = (direction == Direction::there ? "arrays/there/" : "arrays/back/") +
                               std::string(kzgis::projection_name(subject.type)) + '/';
      const auto add = [&](const char* what, auto function, auto... more) {
        benchmark::RegisterBenchmark((name + what).c_str(), function, subject, direction, more...)
            ->Unit(benchmark::kMillisecond);
      };
      add("bare", array_bare);
      add("kzgis exact", array_chart, kzgis::Arithmetic::exact);
      add("kzgis fast", array_chart, kzgis::Arithmetic::fast);
      add("PROJ", array_proj);
    }
  }
  return true;
}();

}  // namespace
