#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "kzgis/projection.h"
#include "projection/support.h"
#include "support/capture.h"

using namespace projection_test;
using testing::ElementsAre;

namespace {

/// The pointer variable that the forward overloads want, released at the end.
struct Out {
  double* xyz = nullptr;
  Out() = default;
  Out(const Out&) = delete;
  Out& operator=(const Out&) = delete;
  ~Out() { delete[] xyz; }
  std::vector<double> values() const { return {xyz, xyz + 3}; }
};

constexpr bool has_inverse(int type) {
  return type == 0 || type == 1 || type == 2 || type == 4 || type == 5 || type == 7 || type == 8 ||
         type == 9 || type == 14;
}

/// Settings under which all fifteen projections have a value.
Projection any_projection(int type) {
  Projection p(static_cast<projType>(type), 1.0, 45.0, 20.0);
  p.setFirstPar(30.0);
  p.setSecondPar(60.0);
  return p;
}

TEST(ForwardFromTo, OnANewObjectGivesThreeAndAnArray) {
  Projection p;
  Out out;
  EXPECT_EQ(p.FromTo(LatLon(0.0, 0.0, 5.0), &out.xyz), 3);
  EXPECT_THAT(out.values(), ElementsAre(0.0, 0.0, 5.0));
}

TEST(ForwardFromTo, ReleasesTheFormerArrayAndGivesANewOne) {
  Projection p;
  p.setGlobeRadius(1.0);
  Out out;
  p.FromTo(LatLon(0.0, 0.0), &out.xyz);
  EXPECT_EQ(p.FromTo(LatLon(0.0, 180.0), &out.xyz), 3);  // the leak checker sees the first
  EXPECT_THAT(out.values(), ElementsAre(3.141592652589793, 0.0, 0.0));
}

TEST(ForwardFromTo, TakesThePositionsOwnAltitudeOrTheGivenOne) {
  Projection p;
  Out out;
  p.FromTo(LatLon(0.0, 0.0, 5.0), &out.xyz);
  EXPECT_EQ(out.xyz[2], 5.0);
  double altitude = 0.0;
  p.fetchLLCoordinates(&altitude);
  EXPECT_EQ(altitude, 5.0);
  p.FromTo(LatLon(0.0, 0.0, 5.0), 6.0, &out.xyz);
  EXPECT_EQ(out.xyz[2], 6.0);
  p.FromTo(LatLon(0.0, 0.0, 5.0), 7.0, MercatorProj, &out.xyz);
  EXPECT_EQ(out.xyz[2], 7.0);
  EXPECT_EQ(p.fetchLLCoordinates()->fetchAltitude(), 0.0) << "the point's own one stays";
}

TEST(ForwardFromTo, AnExplicitTypeBecomesTheStoredOne) {
  Projection p;
  Out out;
  EXPECT_EQ(p.FromTo(LatLon(10.0, 20.0), 0.0, StereographicProj, &out.xyz), 3);
  EXPECT_EQ(p.fetchProjection(), StereographicProj);
}

TEST(ForwardFromTo, RunsTheProjectionOfEachType) {
  using Forward = int (Projection::*)();
  const Forward operations[] = {
      &Projection::Cartesian, &Projection::Mercator,         &Projection::LambertCylindric,
      &Projection::Gnomonic,  &Projection::Stereo,           &Projection::Orthographic,
      &Projection::Postel,    &Projection::LambertAzimuthal, &Projection::LambertConical,
      &Projection::Albers,    &Projection::CassiniSoldner,   &Projection::Bonne,
      &Projection::Werner,    &Projection::SansonFlamsteed,  &Projection::Globe};
  std::vector<double> seen_y;
  for (int type = 0; type <= 14; ++type) {
    SCOPED_TRACE(type);
    Projection direct = any_projection(0);
    const WorldPoint want = run(direct, operations[type], 50.0, 30.0, 0.25);
    EXPECT_EQ(static_cast<int>(direct.fetchProjection()), type);

    Projection stored = any_projection(type);
    Projection given = any_projection(type == 0 ? 1 : 0);
    Out a;
    Out b;
    EXPECT_EQ(stored.FromTo(LatLon(50.0, 30.0, 0.25), &a.xyz), 3);
    EXPECT_EQ(given.FromTo(LatLon(50.0, 30.0), 0.25, static_cast<projType>(type), &b.xyz), 3);
    EXPECT_THAT(a.values(), ElementsAre(want.x, want.y, want.z));
    EXPECT_THAT(b.values(), ElementsAre(want.x, want.y, want.z));
    EXPECT_EQ(static_cast<int>(given.fetchProjection()), type);
    EXPECT_THAT(seen_y, testing::Not(testing::Contains(want.y))) << "no two types share a formula";
    // Cartesian and Sanson-Flamsteed share their y.
    if (type != 0) seen_y.push_back(want.y);
  }
}

TEST(ForwardFromTo, ARefusalIsMinusTenAndLeavesTheCallersPointer) {
  Projection p;
  Out out;
  p.FromTo(LatLon(0.0, 0.0), 5.0, CartesianProj, &out.xyz);
  double* const before = out.xyz;
  for (const projType type : {LambertConicProj, AlbersProj}) {
    StderrCapture err;
    EXPECT_EQ(p.FromTo(LatLon(1.0, 2.0), 3.0, type, &out.xyz), -10);
    EXPECT_EQ(out.xyz, before);
    EXPECT_THAT(out.values(), ElementsAre(0.0, 0.0, 5.0));
    EXPECT_EQ(p.fetchProjection(), type) << "the type is switched even so";
    EXPECT_EQ(p.fetchLLCoordinates()->fetchLat(), 1.0) << "and the point is loaded";
  }
}

TEST(ForwardFromTo, ATypeOutOfRangeProjectsNothing) {
  for (const int type : {15, -1}) {
    Projection p(static_cast<projType>(type));
    StderrCapture err;
    Out out;
    EXPECT_EQ(p.FromTo(LatLon(10.0, 20.0, 30.0), &out.xyz), 3);
    EXPECT_THAT(out.values(), ElementsAre(0.0, 0.0, 0.0));
    EXPECT_EQ(static_cast<int>(p.fetchProjection()), type);
    EXPECT_EQ(p.fetchLLCoordinates()->fetchLat(), 10.0);
    Projection q;
    EXPECT_EQ(q.FromTo(LatLon(10.0, 20.0), 30.0, static_cast<projType>(type), &out.xyz), 3);
    EXPECT_EQ(q.fetchProjection(), CartesianProj);
    EXPECT_EQ(err.text(), "");
  }
}

TEST(ForwardFromTo, RestoresTheCountAfterRemoveCoords) {
  Projection p;
  p.removeCoords();
  Out out;
  EXPECT_EQ(p.FromTo(LatLon(0.0, 0.0), &out.xyz), 3);
}

TEST(InverseFromTo, WritesThePositionAndKeepsTheCallersAltitude) {
  Projection p;
  p.setGlobeRadius(1.0);
  const double xyz[3] = {1.5707963262948965, 0.7853981631474483, 12.0};
  LatLon position(1.0, 2.0, 77.0);
  EXPECT_EQ(p.FromTo(xyz, &position), 1);
  EXPECT_EQ(position.fetchLat(), 45.0);
  EXPECT_EQ(position.fetchLon(), 90.0);
  EXPECT_EQ(position.fetchAltitude(), 77.0);
  EXPECT_EQ(p.fetchLLCoordinates()->fetchAltitude(), 12.0) << "the inverse's own result";
}

TEST(InverseFromTo, TheAltitudeHandedOutIsTheObjectsOwn) {
  Projection p;
  const double xyz[3] = {0.0, 0.0, 12.0};
  LatLon position(0.0, 0.0, 77.0);
  double altitude = -1.0;
  EXPECT_EQ(p.FromTo(xyz, &position, &altitude), 1);
  EXPECT_EQ(altitude, 0.0) << "0 on a new object";
  p.setLLCoordinates(0.0, 0.0, 5.0);
  EXPECT_EQ(p.FromTo(xyz, &position, &altitude), 1);
  EXPECT_EQ(altitude, 5.0) << "the last one set";
  EXPECT_EQ(p.FromTo(xyz, GlobeProj, &position, &altitude), 1);
  EXPECT_EQ(altitude, 5.0);
  EXPECT_EQ(position.fetchAltitude(), 77.0);
}

TEST(InverseFromTo, RunsTheInverseOfEachTypeInEveryOverload) {
  using Inverse = int (Projection::*)();
  const std::pair<int, Inverse> working[] = {{0, &Projection::inverseCartesian},
                                             {1, &Projection::inverseMercator},
                                             {2, &Projection::inverseLambertCylindric},
                                             {4, &Projection::inverseStereo},
                                             {5, &Projection::inverseOrthographic},
                                             {7, &Projection::inverseLambertAzimuthal},
                                             {8, &Projection::inverseLambertConical},
                                             {9, &Projection::inverseAlbers},
                                             {14, &Projection::inverseGlobe}};
  const double xyz[3] = {0.1, 0.2, 0.3};
  for (const auto& [type, inverse] : working) {
    SCOPED_TRACE(type);
    Projection direct = any_projection(type == 0 ? 1 : 0);
    const LatLon want = run_inverse(direct, inverse, 0.1, 0.2, 0.3);
    EXPECT_EQ(static_cast<int>(direct.fetchProjection()), type);

    Projection p = any_projection(type);
    LatLon position(0.0, 0.0);
    double altitude = 0.0;
    EXPECT_EQ(p.FromTo(xyz, &position), 1);
    EXPECT_TRUE(position == want);
    position = LatLon(0.0, 0.0);
    EXPECT_EQ(p.FromTo(xyz, &position, &altitude), 1);
    EXPECT_TRUE(position == want);
    for (const LatLon* point :
         {p.FromTo(0.1, 0.2, 0.3), p.FromTo(xyz), p.FromTo(WorldPoint{0.1, 0.2, 0.3})}) {
      ASSERT_EQ(point, p.fetchLLCoordinates());
      EXPECT_TRUE(*point == want);
      EXPECT_EQ(point->fetchAltitude(), want.fetchAltitude());
    }
    Projection given = any_projection(type == 0 ? 1 : 0);
    position = LatLon(0.0, 0.0);
    EXPECT_EQ(given.FromTo(xyz, static_cast<projType>(type), &position, &altitude), 1);
    EXPECT_TRUE(position == want);
    EXPECT_EQ(static_cast<int>(given.fetchProjection()), type) << "the inverse stores its type";
  }
}

TEST(InverseFromTo, AProjectionWithoutOneFailsAndTouchesNothing) {
  const double xyz[3] = {1.0, 2.0, 3.0};
  for (int type = 0; type <= 14; ++type) {
    if (has_inverse(type)) continue;
    SCOPED_TRACE(type);
    Projection p(static_cast<projType>(type));
    p.fetchLLCoordinates()->setLat(12.0);
    LatLon position(1.0, 2.0, 3.0);
    double altitude = 4.0;
    StderrCapture err;
    EXPECT_EQ(p.FromTo(xyz, &position), -10);
    EXPECT_EQ(p.FromTo(xyz, &position, &altitude), -10);
    EXPECT_EQ(p.FromTo(1.0, 2.0, 3.0), nullptr);
    EXPECT_EQ(p.FromTo(xyz), nullptr);
    EXPECT_EQ(p.FromTo(WorldPoint{1.0, 2.0, 3.0}), nullptr);
    Projection q(CartesianProj);
    EXPECT_EQ(q.FromTo(xyz, static_cast<projType>(type), &position, &altitude), -10);
    EXPECT_EQ(q.fetchProjection(), CartesianProj);
    EXPECT_EQ(position.fetchLat(), 1.0);
    EXPECT_EQ(position.fetchLon(), 2.0);
    EXPECT_EQ(position.fetchAltitude(), 3.0);
    EXPECT_EQ(altitude, 4.0);
    EXPECT_EQ(p.fetchLLCoordinates()->fetchLat(), 12.0);
    EXPECT_EQ(world_of(p).y, 2.0) << "the world coordinates keep the caller's values";
    EXPECT_EQ(err.text(), "");
  }
}

TEST(InverseFromTo, ATypeOutOfRangeConvertsNothingAndSucceeds) {
  const double xyz[3] = {1.0, 2.0, 3.0};
  for (const int type : {15, -1}) {
    Projection p(static_cast<projType>(type));
    p.setLLCoordinates(10.0, 20.0, 30.0);
    LatLon position(1.0, 2.0, 3.0);
    double altitude = 4.0;
    EXPECT_EQ(p.FromTo(xyz, &position, &altitude), 1);
    EXPECT_EQ(position.fetchLat(), 10.0);
    EXPECT_EQ(position.fetchLon(), 20.0);
    EXPECT_EQ(position.fetchAltitude(), 3.0);
    EXPECT_EQ(altitude, 30.0);
    EXPECT_EQ(p.FromTo(xyz, &position), 1);
    EXPECT_EQ(p.FromTo(xyz), p.fetchLLCoordinates());
    EXPECT_EQ(p.FromTo(xyz, static_cast<projType>(type), &position, &altitude), 1);
    EXPECT_EQ(static_cast<int>(p.fetchProjection()), type);
  }
}

/// What a conversion there and back gives.
std::vector<double> there_and_back(Projection& p, int type) {
  Out out;
  EXPECT_EQ(p.FromTo(LatLon(50.0, 30.0), 0.25, static_cast<projType>(type), &out.xyz), 3);
  std::vector<double> all = out.values();
  LatLon back(0.0, 0.0);
  p.FromTo(out.xyz, &back);
  all.push_back(back.fetchLat());
  all.push_back(back.fetchLon());
  return all;
}

// What the settings alone decide is kept between conversions.
TEST(FromTo, EveryChangeOfASettingCountsFromTheNextPointOn) {
  for (int type = 0; type < 15; ++type) {
    Projection p = any_projection(type);
    const auto as_if_new = [&](const char* changed) {
      Projection fresh(static_cast<projType>(type), p.fetchGlobeRadius(), p.fetchBaseLat(),
                       p.fetchBaseLon());
      fresh.setFirstPar(p.fetchFirstPar());
      fresh.setSecondPar(p.fetchSecondPar());
      EXPECT_EQ(there_and_back(p, type), there_and_back(fresh, type)) << type << ' ' << changed;
    };
    as_if_new("nothing");
    p.setGlobeRadius(2.0);
    as_if_new("the radius");
    p.setFirstPar(10.0);
    as_if_new("the first parallel");
    p.setSecondPar(70.0);
    as_if_new("the second parallel");
    Projection other(GlobeProj, 3.0, -20.0, 70.0);
    other.setFirstPar(15.0);
    other.setSecondPar(65.0);
    p = other;
    as_if_new("all, by assignment");
    const Projection copy(p);
    p.setGlobeRadius(4.0);
    p = copy;
    as_if_new("all, by assignment of a copy");
  }
}

TEST(InverseFromTo, ReplacesTheWorldCoordinates) {
  Projection p;
  p.setLLCoordinates(0.0, 0.0, 0.0);
  const double xyz[3] = {1.0, 2.0, 3.0};
  LatLon position(0.0, 0.0);
  p.FromTo(xyz, &position);
  EXPECT_EQ(world_of(p).x, 1.0);
  p.FromTo(4.0, 5.0, 6.0);
  EXPECT_EQ(world_of(p).x, 4.0);
  EXPECT_EQ(world_of(p).y, 5.0);
  EXPECT_EQ(world_of(p).z, 6.0);
}

TEST(InverseFromTo, AfterRemoveCoordsConvertsAndLeavesTheCountAtZero) {
  Projection p;
  p.setGlobeRadius(1.0);
  p.removeCoords();
  const double xyz[3] = {1.5707963262948965, 0.7853981631474483, 12.0};
  LatLon position(0.0, 0.0);
  EXPECT_EQ(p.FromTo(xyz, &position), 1);
  EXPECT_EQ(position.fetchLat(), 45.0);
  EXPECT_EQ(position.fetchLon(), 90.0);
  WorldPoint w{};
  EXPECT_EQ(p.fetchWorldCoordinates(&w), 0);
  EXPECT_EQ(w.z, 12.0);
}

TEST(InverseFromTo, OnANewObjectTheCountIsThree) {
  Projection p;
  WorldPoint w{};
  p.FromTo(1.0, 2.0, 3.0);
  EXPECT_EQ(p.fetchWorldCoordinates(&w), 3);
}

TEST(InverseFromTo, MayWriteIntoTheObjectsOwnPoint) {
  Projection p;
  p.setGlobeRadius(1.0);
  const double xyz[3] = {1.5707963262948965, 0.7853981631474483, 12.0};
  EXPECT_EQ(p.FromTo(xyz, p.fetchLLCoordinates()), 1);
  EXPECT_EQ(p.fetchLLCoordinates()->fetchLat(), 45.0);
  EXPECT_EQ(p.fetchLLCoordinates()->fetchAltitude(), 12.0);
}

}  // namespace
