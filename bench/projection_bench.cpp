// Projecting one point at a time, forward, beside PROJ in the same run.
//
// Ours starts from decimal degrees and ends in an array that the caller owns; PROJ
// starts from radians and ends in a value.  Both see the same points on the same sphere,
// within 60 degrees of the base (45 N, 180 E), where all fifteen projections have a
// value.  Time is per point.

#include <benchmark/benchmark.h>
#include <proj.h>

#include <cstddef>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <vector>

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

const bool kRegistered = [] {
  for (const Subject& subject : kSubjects) {
    const std::string name = Projection(subject.type).fetchProjectionName().str();
    benchmark::RegisterBenchmark((name + "/kzgis").c_str(), ours, subject);
    benchmark::RegisterBenchmark((name + "/PROJ").c_str(), proj, subject);
  }
  return true;
}();

}  // namespace
