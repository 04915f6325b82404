#include "kzgis/projection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <memory>
#include <string>
#include <type_traits>

#include "projection/angles.h"
#include "projection/support.h"
#include "support/capture.h"

using namespace projection_test;

namespace {

TEST(ProjType, NumbersAre32BitsWide) {
  EXPECT_EQ(sizeof(projType), 4U);
  EXPECT_TRUE((std::is_same_v<std::underlying_type_t<projType>, std::int32_t>));
}

TEST(WorldPoint, IsThreeDoublesInOrder) {
  const WorldPoint w{1.0, 2.0, 3.0};
  EXPECT_EQ(sizeof(WorldPoint), 3 * sizeof(double));
  EXPECT_EQ(w.x, 1.0);
  EXPECT_EQ(w.y, 2.0);
  EXPECT_EQ(w.z, 3.0);
}

TEST(Angles, PiIsStoredShort) {
  using namespace kzgis::projection;
  EXPECT_EQ(std::bit_cast<std::uint64_t>(kPi), 0x400921FB5421D100U);
  EXPECT_EQ(kPi, 3.141592652589793);
  EXPECT_EQ(kQuarterPi, 0.7853981631474483);
  EXPECT_EQ(kHalfPi, 1.5707963262948965);
  EXPECT_EQ(kPi / 4.0, kQuarterPi);
  EXPECT_EQ(kPi / 2.0, kHalfPi);
  EXPECT_NE(kPi, std::numbers::pi);
}

TEST(Construct, DefaultsAreCartesianOnTheEarth) {
  const Projection p;
  EXPECT_EQ(p.fetchProjection(), CartesianProj);
  EXPECT_EQ(p.fetchGlobeRadius(), 6378000.0);
  EXPECT_EQ(p.fetchBaseLat(), 0.0);
  EXPECT_EQ(p.fetchBaseLon(), 0.0);
  EXPECT_EQ(p.fetchFirstPar(), 0.0);
  EXPECT_EQ(p.fetchSecondPar(), 0.0);
  double altitude = 7.0;
  const LatLon* point = p.fetchLLCoordinates(&altitude);
  EXPECT_EQ(altitude, 0.0);
  EXPECT_EQ(point->fetchLat(), 0.0);
  EXPECT_EQ(point->fetchLon(), 0.0);
  EXPECT_EQ(point->fetchAltitude(), 0.0);
  EXPECT_FALSE(ProjectionTestAccess::has_world(p));
}

TEST(Construct, TypeAloneKeepsTheOtherDefaults) {
  const Projection p(BonneProj);
  EXPECT_EQ(p.fetchProjection(), BonneProj);
  EXPECT_EQ(p.fetchGlobeRadius(), 6378000.0);
  EXPECT_EQ(p.fetchBaseLat(), 0.0);
  EXPECT_EQ(p.fetchBaseLon(), 0.0);
}

TEST(Construct, BasePointIsNormalised) {
  const Projection p(StereographicProj, 95.0, -10.0);
  EXPECT_EQ(p.fetchProjection(), StereographicProj);
  EXPECT_EQ(p.fetchGlobeRadius(), 6378000.0);
  EXPECT_EQ(p.fetchBaseLat(), 90.0);
  EXPECT_EQ(p.fetchBaseLon(), 350.0);
}

TEST(Construct, RadiusComesBeforeTheBasePointAndIsNotTested) {
  StderrCapture err;
  const Projection p(GlobeProj, -2.0, 12.0, 34.0);
  EXPECT_EQ(p.fetchProjection(), GlobeProj);
  EXPECT_EQ(p.fetchGlobeRadius(), -2.0);
  EXPECT_EQ(p.fetchBaseLat(), 12.0);
  EXPECT_EQ(p.fetchBaseLon(), 34.0);
  EXPECT_EQ(err.text(), "");
}

TEST(Construct, TypeIsStoredUntested) {
  for (const int type : {15, -1, 1000000, std::numeric_limits<std::int32_t>::min()}) {
    const Projection p(static_cast<projType>(type));
    EXPECT_EQ(static_cast<int>(p.fetchProjection()), type);
    EXPECT_STREQ(p.fetchProjectionName().c_str(), "Unknown");
  }
}

// -- copies -----------------------------------------------------------------------------

Projection full_object() {
  Projection p(AlbersProj, 2.0, 40.0, 10.0);
  p.setFirstPar(30.0);
  p.setSecondPar(50.0);
  p.setWorldCoordinates(0.125, 0.25, 0.5);
  p.FromTo(WorldPoint{0.125, 0.25, 0.5});  // gives the geographic point an altitude
  p.setProjection(AlbersProj);
  return p;
}

void expect_full_object(const Projection& p) {
  EXPECT_EQ(p.fetchProjection(), AlbersProj);
  EXPECT_EQ(p.fetchGlobeRadius(), 2.0);
  EXPECT_EQ(p.fetchBaseLat(), 40.0);
  EXPECT_EQ(p.fetchBaseLon(), 10.0);
  EXPECT_EQ(p.fetchFirstPar(), 30.0);
  EXPECT_EQ(p.fetchSecondPar(), 50.0);
  EXPECT_EQ(p.fetchLLCoordinates()->fetchAltitude(), 0.5);
  const WorldPoint w = world_of(p);
  EXPECT_EQ(w.x, 0.125);
  EXPECT_EQ(w.y, 0.25);
  EXPECT_EQ(w.z, 0.5);
}

TEST(Copy, ConstructionIsDeepAndTakesBothAltitudes) {
  Projection original = full_object();
  const Projection copy(original);
  EXPECT_NE(copy.fetchLLCoordinates(), original.fetchLLCoordinates());
  original.setWorldCoordinates(9.0, 9.0, 9.0);
  original.fetchLLCoordinates()->setAlt(9.0);
  original.setGlobeRadius(9.0);
  expect_full_object(copy);
}

TEST(Copy, AssignmentIsDeepAndKeepsThePointsPlace) {
  Projection target;
  target.setLLCoordinates(1.0, 2.0, 3.0);
  const LatLon* place = target.fetchLLCoordinates();
  {
    const Projection original = full_object();
    target = original;
  }
  EXPECT_EQ(target.fetchLLCoordinates(), place);
  expect_full_object(target);
}

TEST(Copy, TakesTheObjectsAltitude) {
  Projection original;
  original.setLLCoordinates(1.0, 2.0, 3.0);
  const Projection built(original);
  Projection assigned;
  assigned = original;
  double altitude = 0.0;
  built.fetchLLCoordinates(&altitude);
  EXPECT_EQ(altitude, 3.0);
  assigned.fetchLLCoordinates(&altitude);
  EXPECT_EQ(altitude, 3.0);
}

TEST(Copy, TakesTheAbsenceOfWorldCoordinatesAndTheirCount) {
  Projection original;
  original.removeCoords();
  Projection assigned;
  assigned.setLLCoordinates(1.0, 2.0, 3.0);
  assigned = original;
  Projection built(original);
  for (Projection* p : {&assigned, &built}) {
    EXPECT_FALSE(ProjectionTestAccess::has_world(*p));
    p->setWorldCoordinates(1.0, 2.0, 3.0);
    WorldPoint w{};
    EXPECT_EQ(p->fetchWorldCoordinates(&w), 0);
  }
}

TEST(Copy, AssignmentToItselfChangesNothing) {
  Projection p = full_object();
  const Projection& same = p;
  p = same;
  expect_full_object(p);
}

// -- geographic point -------------------------------------------------------------------

TEST(SetLLCoordinates, NormalisesBothAnglesAndStoresTheAltitude) {
  Projection p;
  p.setLLCoordinates(-91.0, -0.5, 1234.5);
  double altitude = 0.0;
  const LatLon* point = p.fetchLLCoordinates(&altitude);
  EXPECT_EQ(point->fetchLat(), -90.0);
  EXPECT_EQ(point->fetchLon(), 359.5);
  EXPECT_EQ(altitude, 1234.5);
  EXPECT_EQ(point->fetchAltitude(), 0.0) << "the altitude is the object's, not the point's";
}

TEST(SetLLCoordinates, TakesDegreesMinutesAndSeconds) {
  Projection p;
  p.setLLCoordinates(-45.0, -30.0, 0.0, 10.0, 15.0, 36.0, 5.0);
  double altitude = 0.0;
  const LatLon* point = p.fetchLLCoordinates(&altitude);
  EXPECT_EQ(point->fetchLat(), -45.5);
  EXPECT_EQ(point->fetchLon(), 10.26);
  EXPECT_EQ(altitude, 5.0);
  EXPECT_TRUE(ProjectionTestAccess::has_world(p));
}

TEST(SetLLCoordinates, ReplacesTheWorldCoordinatesAndRestoresTheirCount) {
  Projection p;
  p.setLLCoordinates(1.0, 2.0, 3.0);
  p.setWorldCoordinates(4.0, 5.0, 6.0);
  p.setLLCoordinates(1.0, 2.0, 3.0);
  WorldPoint w{9.0, 9.0, 9.0};
  EXPECT_EQ(p.fetchWorldCoordinates(&w), 3);
  EXPECT_EQ(w.x, 0.0);
  EXPECT_EQ(w.y, 0.0);
  EXPECT_EQ(w.z, 0.0);
  p.setWorldCoordinates(4.0, 5.0, 6.0);
  p.setLLCoordinates(1.0, 0.0, 0.0, 2.0, 0.0, 0.0, 3.0);
  EXPECT_EQ(world_of(p).y, 0.0);
  p.removeCoords();
  p.setLLCoordinates(1.0, 0.0, 0.0, 2.0, 0.0, 0.0, 3.0);
  EXPECT_EQ(p.fetchWorldCoordinates(&w), 3);
}

TEST(FetchLLCoordinates, KeepsItsPlaceOverEveryConversion) {
  Projection p;
  const LatLon* place = p.fetchLLCoordinates();
  p.setLLCoordinates(1.0, 2.0, 3.0);
  EXPECT_EQ(p.fetchLLCoordinates(), place);
  EXPECT_EQ(p.FromTo(1.0, 2.0, 3.0), place);
  double altitude = 0.0;
  EXPECT_EQ(p.fetchLLCoordinates(&altitude), place);
  p.removeCoords();
  EXPECT_EQ(p.fetchLLCoordinates(), place);
}

// -- world coordinates ------------------------------------------------------------------

TEST(SetWorldCoordinates, AreThereOnANewObjectAfterwards) {
  Projection p;
  p.setWorldCoordinates(1.0, 2.0, 3.0);
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  EXPECT_EQ(p.fetchWorldCoordinates(&x, &y, &z), 3);
  EXPECT_EQ(x, 1.0);
  EXPECT_EQ(y, 2.0);
  EXPECT_EQ(z, 3.0);
}

TEST(SetWorldCoordinates, ReplacesTheFormerOnes) {
  Projection p;
  p.setLLCoordinates(0.0, 0.0, 0.0);
  const double xyz[3] = {1.0, 2.0, 3.0};
  p.setWorldCoordinates(xyz);
  EXPECT_EQ(world_of(p).x, 1.0);
  EXPECT_EQ(world_of(p).y, 2.0);
  EXPECT_EQ(world_of(p).z, 3.0);
  p.setWorldCoordinates(WorldPoint{4.0, 5.0, 6.0});
  EXPECT_EQ(world_of(p).x, 4.0);
  EXPECT_EQ(world_of(p).y, 5.0);
  EXPECT_EQ(world_of(p).z, 6.0);
}

TEST(FetchWorldCoordinates, OnANewObjectIsZerosAndZero) {
  const Projection p;
  double x = 1.0;
  double y = 1.0;
  double z = 1.0;
  EXPECT_EQ(p.fetchWorldCoordinates(&x, &y, &z), 0);
  EXPECT_EQ(x, 0.0);
  EXPECT_EQ(y, 0.0);
  EXPECT_EQ(z, 0.0);
}

TEST(FetchWorldCoordinates, IntoAPointWritesNothingWithoutAnArray) {
  const Projection p;
  WorldPoint w{1.0, 2.0, 3.0};
  EXPECT_EQ(p.fetchWorldCoordinates(&w), 0);
  EXPECT_EQ(w.x, 1.0);
  EXPECT_EQ(w.y, 2.0);
  EXPECT_EQ(w.z, 3.0);
}

TEST(FetchWorldCoordinates, HandsOutACopyThatTheCallerOwns) {
  Projection p;
  p.setWorldCoordinates(1.0, 2.0, 3.0);
  double* out = nullptr;
  ASSERT_EQ(p.fetchWorldCoordinates(&out), 3);
  p.removeCoords();
  EXPECT_THAT(std::vector<double>(out, out + 3), testing::ElementsAre(1.0, 2.0, 3.0));
  delete[] out;
}

TEST(FetchWorldCoordinates, ReleasesTheArrayOfTheFormerCall) {
  Projection p;
  p.setWorldCoordinates(1.0, 2.0, 3.0);
  double* out = nullptr;
  ASSERT_EQ(p.fetchWorldCoordinates(&out), 3);
  p.setWorldCoordinates(4.0, 5.0, 6.0);
  ASSERT_EQ(p.fetchWorldCoordinates(&out), 3);  // the leak checker sees the first array
  EXPECT_THAT(std::vector<double>(out, out + 3), testing::ElementsAre(4.0, 5.0, 6.0));
  p.removeCoords();
  EXPECT_EQ(p.fetchWorldCoordinates(&out), 0);
  EXPECT_EQ(out, nullptr);
}

TEST(RemoveCoords, TakesTheWorldCoordinatesAndLeavesThePoint) {
  Projection p;
  p.setLLCoordinates(12.0, 34.0, 56.0);
  p.removeCoords();
  EXPECT_FALSE(ProjectionTestAccess::has_world(p));
  double altitude = 0.0;
  EXPECT_EQ(p.fetchLLCoordinates(&altitude)->fetchLat(), 12.0);
  EXPECT_EQ(p.fetchLLCoordinates()->fetchLon(), 34.0);
  EXPECT_EQ(altitude, 56.0);
}

TEST(RemoveCoords, TheCountStaysZeroWhileCoordinatesAreStillStoredWhole) {
  Projection p;
  p.removeCoords();
  p.setWorldCoordinates(1.0, 2.0, 3.0);
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  EXPECT_EQ(p.fetchWorldCoordinates(&x, &y, &z), 0);
  EXPECT_EQ(x, 1.0);
  EXPECT_EQ(y, 2.0);
  EXPECT_EQ(z, 3.0);
  WorldPoint w{};
  EXPECT_EQ(p.fetchWorldCoordinates(&w), 0);
  EXPECT_EQ(w.z, 3.0);
  double* out = nullptr;
  EXPECT_EQ(p.fetchWorldCoordinates(&out), 0);
  EXPECT_NE(out, nullptr) << "an array of no doubles";
  delete[] out;
}

TEST(RemoveCoords, ADirectProjectionAfterItStoresAWholePoint) {
  using Forward = int (Projection::*)();
  for (const Forward forward :
       {&Projection::Cartesian, &Projection::SansonFlamsteed, &Projection::Globe}) {
    Projection p(CartesianProj, 1.0, 0.0, 0.0);
    p.setLLCoordinates(0.0, 0.0, 8.0);
    p.removeCoords();
    EXPECT_EQ((p.*forward)(), 1);
    double x = 9.0;
    double y = 9.0;
    double z = 9.0;
    EXPECT_EQ(p.fetchWorldCoordinates(&x, &y, &z), 0);
    EXPECT_EQ(y, 0.0);
    EXPECT_EQ(x + z, forward == &Projection::Globe ? 9.0 : 8.0);
  }
}

// -- settings ---------------------------------------------------------------------------

TEST(SetProjection, StoresEveryLegalType) {
  Projection p;
  StderrCapture err;
  for (int type = 0; type <= 14; ++type) {
    EXPECT_EQ(p.setProjection(static_cast<projType>(type)), 1);
    EXPECT_EQ(static_cast<int>(p.fetchProjection()), type);
  }
  EXPECT_EQ(err.text(), "");
}

TEST(SetProjection, RefusesOtherNumbersAndKeepsTheOldType) {
  Projection p(BonneProj);
  {
    StderrCapture err;
    EXPECT_EQ(p.setProjection(static_cast<projType>(15)), 0);
    EXPECT_EQ(err.text(), "Projection::setProjection: 15 illegal projection type\n");
  }
  StderrCapture err;
  EXPECT_EQ(p.setProjection(static_cast<projType>(-1)), 0);
  EXPECT_EQ(err.text(), "Projection::setProjection: -1 illegal projection type\n");
  EXPECT_EQ(p.fetchProjection(), BonneProj);
}

struct NameRow {
  int type;
  const char* accepted;
  const char* display;
};

const NameRow kNameRows[] = {
    {0, "cartesian", "Cartesian"},
    {1, "mercator", "Mercator"},
    {2, "lambert cylindrical", "Lambert Cylindrical"},
    {3, "gnomonic", "Gnomonic"},
    {4, "stereographic", "Stereographic"},
    {5, "orthographic", "Orthographic"},
    {6, "postel", "Postel"},
    {7, "lambert azimuthal", "Lambert Azimuthal"},
    {8, "lambert conic conformal", "Lambert Conic Conformal"},
    {9, "albers", "Albers"},
    {10, "cassini-soldner", "Cassini-Soldner"},
    {11, "bonne", "Bonne"},
    {12, "werner", "Werner"},
    {13, "sanson-flamsteed", "Sanson-Flamsteed"},
    {14, "globe", "Globe"},
};

TEST(SetProjection, KnowsEveryName) {
  for (const NameRow& row : kNameRows) {
    Projection p(row.type == 0 ? GlobeProj : CartesianProj);
    EXPECT_EQ(p.setProjection(UtString(row.accepted)), 1);
    EXPECT_EQ(static_cast<int>(p.fetchProjection()), row.type);
    EXPECT_STREQ(p.fetchProjectionName().c_str(), row.display);
    Projection q(row.type == 0 ? GlobeProj : CartesianProj);
    EXPECT_EQ(q.setProjection(UtString(row.display)), 1);
    EXPECT_EQ(static_cast<int>(q.fetchProjection()), row.type) << "any case will do";
  }
}

TEST(SetProjection, LeavesTheCallersNameAsItWas) {
  Projection p;
  const UtString name("Lambert CONIC Conformal");
  EXPECT_EQ(p.setProjection(name), 1);
  EXPECT_EQ(p.fetchProjection(), LambertConicProj);
  EXPECT_STREQ(name.c_str(), "Lambert CONIC Conformal");
}

TEST(SetProjection, AnyOtherNameIsCartesianInSilence) {
  for (const char* name : {"LAMBERT-CONIC", "", " mercator", "mercator ", "cassini soldner",
                           "lambert  cylindrical", "mercato", "unknown"}) {
    Projection p(GlobeProj);
    StderrCapture err;
    EXPECT_EQ(p.setProjection(UtString(name)), 1) << name;
    EXPECT_EQ(p.fetchProjection(), CartesianProj) << name;
    EXPECT_EQ(err.text(), "");
  }
}

TEST(SetGlobeRadius, RefusesNegativeAndKeepsTheOldRadius) {
  Projection p;
  StderrCapture err;
  EXPECT_EQ(p.setGlobeRadius(-1.0), 0);
  EXPECT_EQ(err.text(), "Projection::setGlobeRadius: -1 is illegal. No negative radii\n");
  EXPECT_EQ(p.fetchGlobeRadius(), 6378000.0);
}

TEST(SetGlobeRadius, StoresEverythingElse) {
  Projection p;
  StderrCapture err;
  EXPECT_EQ(p.setGlobeRadius(0.0), 1);
  EXPECT_EQ(p.fetchGlobeRadius(), 0.0);
  EXPECT_EQ(p.setGlobeRadius(-0.0), 1);
  EXPECT_TRUE(std::signbit(p.fetchGlobeRadius()));
  EXPECT_EQ(p.setGlobeRadius(kInf), 1);
  EXPECT_EQ(p.fetchGlobeRadius(), kInf);
  EXPECT_EQ(p.setGlobeRadius(kNaN), 1);
  EXPECT_TRUE(std::isnan(p.fetchGlobeRadius()));
  EXPECT_EQ(err.text(), "");
}

TEST(SetGlobeRadius, LeavesAPointAlreadyProjected) {
  Projection p(MercatorProj);
  const WorldPoint before = run(p, &Projection::Mercator, 45.0, 45.0);
  p.setGlobeRadius(1.0);
  EXPECT_EQ(world_of(p).x, before.x);
}

TEST(SetParallels, TakeZeroToNinety) {
  Projection p;
  StderrCapture err;
  for (const double parallel : {0.0, 33.5, 90.0}) {
    EXPECT_EQ(p.setFirstPar(parallel), 1);
    EXPECT_EQ(p.fetchFirstPar(), parallel);
    EXPECT_EQ(p.setSecondPar(parallel), 1);
    EXPECT_EQ(p.fetchSecondPar(), parallel);
  }
  EXPECT_EQ(err.text(), "");
}

TEST(SetParallels, AreIndependentOfOneAnother) {
  Projection p;
  p.setFirstPar(20.0);
  p.setSecondPar(60.0);
  EXPECT_EQ(p.fetchFirstPar(), 20.0);
  EXPECT_EQ(p.fetchSecondPar(), 60.0);
}

TEST(SetParallels, RefuseEverythingElseAndKeepTheOldParallel) {
  Projection p;
  p.setFirstPar(20.0);
  p.setSecondPar(60.0);
  const std::pair<double, const char*> refused[] = {
      {-0.5, "-0.5"}, {90.5, "90.5"}, {1e300, "1e+300"}, {-kInf, "-inf"}, {kNaN, "nan"}};
  for (const auto& [value, shown] : refused) {
    const std::string rest = std::string(shown) + " is illegal. Parallels lie between 0 and 90\n";
    {
      StderrCapture err;
      EXPECT_EQ(p.setFirstPar(value), 0);
      EXPECT_EQ(err.text(), "Projection::setFirstPar: " + rest);
    }
    StderrCapture err;
    EXPECT_EQ(p.setSecondPar(value), 0);
    EXPECT_EQ(err.text(), "Projection::setSecondPar: " + rest);
  }
  EXPECT_EQ(p.fetchFirstPar(), 20.0);
  EXPECT_EQ(p.fetchSecondPar(), 60.0);
}

// -- angle conversions ------------------------------------------------------------------

TEST(AngleConversions, LatitudesAreClamped) {
  const Projection p;
  EXPECT_EQ(p.LatToDeg(2.0), 90.0);
  EXPECT_EQ(p.LatToDeg(-2.0), -90.0);
  EXPECT_EQ(p.LatToDeg(1.5707963262948965), 90.0);
  EXPECT_EQ(p.LatToRad(90.0), 1.5707963262948965);
  EXPECT_EQ(p.LatToRad(100.0), 1.5707963262948965);
  EXPECT_EQ(p.LatToRad(-45.0), -0.7853981631474483);
}

TEST(AngleConversions, LongitudesAreWrapped) {
  const Projection p;
  EXPECT_EQ(p.LonToDeg(-1.5707963262948965), 270.0);
  EXPECT_EQ(p.LonToDeg(3.141592652589793), 180.0);
  EXPECT_EQ(p.LonToRad(-90.0), 4.7123889788846895);  // 1.5 times the stored pi
  EXPECT_EQ(p.LonToRad(720.0), 0.0);
}

TEST(AngleConversions, OnlyLongitudesKnowTheReference) {
  Projection p;
  ProjectionTestAccess::setReferenceLon(p, 30.0);
  EXPECT_EQ(p.LonToRad(60.0), 1.5707963262948965) << "added on the way to radians";
  EXPECT_EQ(p.LonToRad(345.0), rad(15.0)) << "wrapped after adding";
  EXPECT_EQ(p.LonToDeg(1.5707963262948965), 60.0) << "subtracted on the way to degrees";
  EXPECT_EQ(p.LonToDeg(0.0), 330.0) << "wrapped after subtracting";
  EXPECT_EQ(p.LatToRad(90.0), 1.5707963262948965);
  EXPECT_EQ(p.LatToDeg(1.5707963262948965), 90.0);
}

TEST(AngleConversions, LeaveTheObjectAlone) {
  Projection p;
  p.setLLCoordinates(1.0, 2.0, 3.0);
  p.LatToDeg(1.0);
  p.LatToRad(1.0);
  p.LonToDeg(1.0);
  p.LonToRad(1.0);
  EXPECT_EQ(p.fetchLLCoordinates()->fetchLat(), 1.0);
  EXPECT_EQ(p.fetchLLCoordinates()->fetchLon(), 2.0);
}

TEST(AngleConversions, NotANumberStaysOne) {
  const Projection p;
  EXPECT_TRUE(std::isnan(p.LatToDeg(kNaN)));
  EXPECT_TRUE(std::isnan(p.LonToRad(kNaN)));
  EXPECT_EQ(p.LonToDeg(kInf), kInf) << "an infinite longitude must not loop";
  EXPECT_EQ(p.LatToDeg(kInf), 90.0);
}

}  // namespace
