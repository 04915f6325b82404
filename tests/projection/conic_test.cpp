#include <gtest/gtest.h>

#include "kzgis/projection.h"
#include "projection/support.h"
#include "support/capture.h"

using namespace projection_test;

namespace {

const char kLambertRefusal[] =
    "Projection::Lambert: First and Second Parallels must be non-zero. Projection aborted.\n";
const char kAlbersRefusal[] =
    "Projection::Albers: First and Second Parallels must be non-zero. Projection aborted.\n";

struct Conic {
  int (Projection::*forward)();
  projType type;
  const char* refusal;
};

const Conic kConics[] = {{&Projection::LambertConical, LambertConicProj, kLambertRefusal},
                         {&Projection::Albers, AlbersProj, kAlbersRefusal}};

Projection with_parallels(double first, double second, double base_lat, double base_lon = 0.0) {
  Projection p(CartesianProj, 1.0, base_lat, base_lon);
  ProjectionTestAccess::setParallels(p, first, second);
  return p;
}

TEST(ConicTest, ANewObjectRefusesOnceAndIsSwitchedAllTheSame) {
  for (const Conic& conic : kConics) {
    Projection p;
    StderrCapture err;
    EXPECT_EQ((p.*conic.forward)(), 0);
    EXPECT_EQ(err.text(), conic.refusal);
    EXPECT_EQ(p.fetchProjection(), conic.type);
  }
}

TEST(ConicTest, EitherParallelAtZeroIsRefused) {
  for (const Conic& conic : kConics) {
    for (const auto& [first, second] : {std::pair{0.0, 30.0}, std::pair{30.0, 0.0}}) {
      Projection p = with_parallels(first, second, 40.0);
      StderrCapture err;
      EXPECT_EQ((p.*conic.forward)(), 0);
      EXPECT_EQ(err.text(), conic.refusal);
    }
  }
}

TEST(ConicTest, ARefusalLeavesZeros) {
  for (const Conic& conic : kConics) {
    Projection p;
    p.setWorldCoordinates(1.0, 2.0, 3.0);
    StderrCapture err;
    (p.*conic.forward)();
    WorldPoint w{9.0, 9.0, 9.0};
    EXPECT_EQ(p.fetchWorldCoordinates(&w), 3);
    EXPECT_EQ(w.x, 0.0);
    EXPECT_EQ(w.y, 0.0);
    EXPECT_EQ(w.z, 0.0);
  }
}

TEST(ConicTest, ANaNParallelIsNotZeroAndPasses) {
  for (const Conic& conic : kConics) {
    Projection p = with_parallels(kNaN, kNaN, 40.0);
    p.setLLCoordinates(50.0, 10.0, 4.0);
    StderrCapture err;
    EXPECT_EQ((p.*conic.forward)(), 1);
    EXPECT_EQ(err.text(), "");
    EXPECT_TRUE(std::isnan(world_of(p).x));
    // NaN differs from itself, so that this is the case of two parallels.
    EXPECT_EQ(world_of(p).z, conic.type == AlbersProj ? 0.0 : 4.0);
  }
}

TEST(ConicTest, ADirectCallWithoutWorldCoordinatesMakesThem) {
  using Forward = int (Projection::*)();
  for (const Forward forward : {&Projection::LambertConical, &Projection::Albers,
                                &Projection::Bonne, &Projection::Werner}) {
    Projection p = with_parallels(30.0, 60.0, 40.0);
    EXPECT_EQ((p.*forward)(), 1);
    WorldPoint w{};
    EXPECT_EQ(p.fetchWorldCoordinates(&w), 3);
    p.removeCoords();
    EXPECT_EQ((p.*forward)(), 1);
    EXPECT_TRUE(ProjectionTestAccess::has_world(p));
  }
}

TEST(ConicTest, ZIsTheAltitudeExceptInAlbersWithTwoParallels) {
  Projection two = with_parallels(30.0, 60.0, 40.0);
  EXPECT_EQ(run(two, &Projection::LambertConical, 50.0, 10.0, 8.0).z, 8.0);
  EXPECT_EQ(run(two, &Projection::Albers, 50.0, 10.0, 8.0).z, 0.0);
  EXPECT_EQ(run(two, &Projection::Bonne, 50.0, 10.0, 8.0).z, 8.0);
  EXPECT_EQ(run(two, &Projection::Werner, 50.0, 10.0, 8.0).z, 8.0);
  Projection one = with_parallels(45.0, 45.0, 40.0);
  EXPECT_EQ(run(one, &Projection::LambertConical, 50.0, 10.0, 8.0).z, 8.0);
  EXPECT_EQ(run(one, &Projection::Albers, 50.0, 10.0, 8.0).z, 8.0);
}

TEST(ConicTest, LongitudeDifferencesAreNotBroughtIntoHalfATurn) {
  // 10 seen from 350 lies 340 degrees to the west: n times that, not n times 20 east.
  Projection p = with_parallels(30.0, 60.0, 40.0, 350.0);
  Projection same = with_parallels(30.0, 60.0, 40.0, 340.0);
  for (const auto forward : {&Projection::LambertConical, &Projection::Albers}) {
    const WorldPoint w = run(p, forward, 50.0, 10.0);
    const WorldPoint v = run(same, forward, 50.0, 0.0);
    EXPECT_NEAR(w.x, v.x, 1e-14);
    EXPECT_NEAR(w.y, v.y, 1e-14);
    EXPECT_GT(w.y, 1.0) << "over the top of the cone";
  }
}

TEST(ConicTest, TheReferenceShiftsPointAndBaseAlike) {
  using Forward = int (Projection::*)();
  for (const Forward forward : {&Projection::LambertConical, &Projection::Albers,
                                &Projection::Bonne, &Projection::Werner}) {
    Projection p = with_parallels(30.0, 60.0, 40.0, 10.0);
    const WorldPoint plain = run(p, forward, 50.0, 30.0);
    ProjectionTestAccess::setReferenceLon(p, 25.0);
    const WorldPoint shifted = run(p, forward, 50.0, 30.0);
    EXPECT_NEAR(shifted.x, plain.x, 1e-15);
    EXPECT_NEAR(shifted.y, plain.y, 1e-15);
  }
}

TEST(ConicTest, OneParallelUsesBaseLatitude) {
  // cot(30 degrees) and not cot(45 degrees), times the ratio of tangents (mpmath).
  constexpr double kRho = 1.2729047906999365;
  constexpr double kN = 0.7071067810097708;  // sin of the short 45 degrees
  Projection p = with_parallels(45.0, 45.0, 30.0);
  const WorldPoint w = run(p, &Projection::LambertConical, 60.0, 40.0);
  EXPECT_NEAR(w.x, std::sin(kN * rad(40.0)) * kRho, 1e-15);
  EXPECT_NEAR(w.y, kRho - std::cos(kN * rad(40.0)) * kRho, 1e-15);
}

TEST(ConicTest, OneParallelPutsTheBaseMeridianOnTheXAxis) {
  Projection p = with_parallels(45.0, 45.0, 30.0, 15.0);
  for (const double lat : {-60.0, 0.0, 30.0, 45.0, 80.0}) {
    EXPECT_EQ(run(p, &Projection::LambertConical, lat, 15.0).y, 0.0) << lat;
  }
}

TEST(LambertConical, TwoParallelsPutTheBaseAtTheOrigin) {
  Projection p = with_parallels(30.0, 60.0, 40.0, 15.0);
  const WorldPoint w = run(p, &Projection::LambertConical, 40.0, 15.0);
  EXPECT_EQ(w.x, 0.0);
  EXPECT_EQ(w.y, 0.0);
}

TEST(LambertConical, TheOrderOfTheParallelsDoesNotMatter) {
  Projection a = with_parallels(30.0, 60.0, 40.0);
  Projection b = with_parallels(60.0, 30.0, 40.0);
  const WorldPoint v = run(a, &Projection::LambertConical, 50.0, 70.0);
  const WorldPoint w = run(b, &Projection::LambertConical, 50.0, 70.0);
  EXPECT_NEAR(v.x, w.x, 1e-14);
  EXPECT_NEAR(v.y, w.y, 1e-14);
}

TEST(LambertConical, ThePoleOfTheConeIsFinite) {
  Projection p = with_parallels(30.0, 60.0, 40.0);
  const WorldPoint w = run(p, &Projection::LambertConical, 90.0, 100.0);
  EXPECT_NEAR(w.x, 0.0, 1e-5);
  EXPECT_TRUE(std::isfinite(w.y));
}

TEST(Albers, TwoParallelsPutTheBaseAtTheOrigin) {
  Projection p = with_parallels(30.0, 60.0, 40.0, 15.0);
  const WorldPoint w = run(p, &Projection::Albers, 40.0, 15.0);
  EXPECT_EQ(w.x, 0.0);
  EXPECT_NEAR(w.y, 0.0, 1e-15);
}

TEST(ConicTest, AlbersHasNoValueAtBaseLatitudeZero) {
  Projection p = with_parallels(30.0, 60.0, 0.0);
  p.setLLCoordinates(40.0, 10.0, 0.0);
  EXPECT_EQ(p.Albers(), 1);
  EXPECT_TRUE(std::isfinite(world_of(p).x));
  EXPECT_TRUE(std::isnan(world_of(p).y));
}

TEST(ConicTest, AlbersWithOneParallelBendsAllOfY) {
  Projection p = with_parallels(30.0, 30.0, 77.0);
  const WorldPoint w = run(p, &Projection::Albers, 50.0, 40.0);
  EXPECT_NEAR(w.x, 0.4758657201544435, 1e-15);  // mpmath
  EXPECT_NEAR(w.y, 0.3201650417719599, 1e-15);
}

TEST(Albers, WithOneParallelTheBaseLatitudeDoesNotCount) {
  Projection a = with_parallels(30.0, 30.0, 0.0);
  Projection b = with_parallels(30.0, 30.0, 77.0);
  EXPECT_EQ(run(a, &Projection::Albers, 50.0, 40.0).y, run(b, &Projection::Albers, 50.0, 40.0).y);
}

TEST(Bonne, TheBaseIsTheOrigin) {
  Projection p(BonneProj, 45.0, 20.0);
  const WorldPoint w = run(p, &Projection::Bonne, 45.0, 20.0);
  EXPECT_EQ(w.x, 0.0);
  EXPECT_EQ(w.y, 0.0);
  EXPECT_EQ(p.fetchProjection(), BonneProj);
}

TEST(Bonne, AtBaseLatitudeZeroNothingIsFinite) {
  Projection p(BonneProj);
  p.setLLCoordinates(10.0, 20.0, 0.0);
  EXPECT_EQ(p.Bonne(), 1);
  EXPECT_FALSE(std::isfinite(world_of(p).y));
}

TEST(Werner, AtTheEquatorTheBaseIsTheOrigin) {
  Projection p(WernerProj, 0.0, 30.0);
  const WorldPoint w = run(p, &Projection::Werner, 0.0, 30.0);
  EXPECT_EQ(w.x, 0.0);
  EXPECT_EQ(w.y, 0.0);
  EXPECT_EQ(p.fetchProjection(), WernerProj);
}

TEST(Werner, TheSignOfTheBaseLatitudeChoosesThePole) {
  // On the base meridian both hearts are true to scale, measured from the base.
  Projection north(WernerProj, 1.0, 20.0, 0.0);
  Projection south(WernerProj, 1.0, -20.0, 0.0);
  EXPECT_NEAR(run(north, &Projection::Werner, 65.0, 0.0).y, 0.7853981631474483, 1e-15);
  EXPECT_NEAR(run(south, &Projection::Werner, -65.0, 0.0).y, -0.7853981631474483, 1e-15);
  // Off it they mirror one another.
  const WorldPoint n = run(north, &Projection::Werner, 50.0, 100.0);
  const WorldPoint s = run(south, &Projection::Werner, -50.0, 100.0);
  EXPECT_NEAR(s.x, n.x, 1e-15);
  EXPECT_NEAR(s.y, -n.y, 1e-15);
}

TEST(Werner, MinusZeroCountsAsNorth) {
  Projection plus(WernerProj, 1.0, 0.0, 0.0);
  Projection minus(WernerProj, 1.0, -0.0, 0.0);
  EXPECT_EQ(run(plus, &Projection::Werner, 50.0, 100.0).y,
            run(minus, &Projection::Werner, 50.0, 100.0).y);
}

TEST(Werner, ThePoleOfTheHeartHasNoValue) {
  Projection p(WernerProj, 45.0, 0.0);
  p.setLLCoordinates(90.0, 10.0, 0.0);
  EXPECT_EQ(p.Werner(), 1);
  EXPECT_TRUE(std::isnan(world_of(p).x));
  EXPECT_TRUE(std::isnan(world_of(p).y));
}

}  // namespace
