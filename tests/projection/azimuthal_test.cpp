#include <gtest/gtest.h>

#include "kzgis/projection.h"
#include "projection/support.h"
#include "support/capture.h"

using namespace projection_test;

namespace {

using Forward = int (Projection::*)();

struct Operation {
  const char* name;
  Forward forward;
  projType type;
};

const Operation kOperations[] = {
    {"Gnomonic", &Projection::Gnomonic, GnomonicProj},
    {"Stereo", &Projection::Stereo, StereographicProj},
    {"Orthographic", &Projection::Orthographic, OrthographicProj},
    {"Postel", &Projection::Postel, PostelProj},
    {"LambertAzimuthal", &Projection::LambertAzimuthal, LambertAzimuthalProj},
};

TEST(AzimuthalTest, EachStoresItsTypeAndSucceeds) {
  StderrCapture err;
  for (const Operation& op : kOperations) {
    Projection p(WernerProj);
    p.setLLCoordinates(10.0, 20.0, 0.0);
    EXPECT_EQ((p.*op.forward)(), 1) << op.name;
    EXPECT_EQ(p.fetchProjection(), op.type) << op.name;
  }
  EXPECT_EQ(err.text(), "");
}

TEST(AzimuthalTest, ADirectCallWithoutWorldCoordinatesMakesThem) {
  for (const Operation& op : kOperations) {
    Projection p;
    EXPECT_EQ((p.*op.forward)(), 1) << op.name;
    WorldPoint w{};
    EXPECT_EQ(p.fetchWorldCoordinates(&w), 3) << op.name;
  }
}

TEST(AzimuthalTest, TheBasePointIsTheOriginAndZTheAltitude) {
  for (const Operation& op : kOperations) {
    Projection p;
    const WorldPoint w = run(p, op.forward, 0.0, 0.0, 12.0);
    EXPECT_EQ(w.x, 0.0) << op.name;
    EXPECT_EQ(w.y, 0.0) << op.name;
    EXPECT_EQ(w.z, 12.0) << op.name;
  }
}

TEST(AzimuthalTest, TheReferenceShiftsPointAndBaseAlike) {
  for (const Operation& op : kOperations) {
    Projection p(CartesianProj, 1.0, 0.0, 10.0);
    const WorldPoint plain = run(p, op.forward, 20.0, 40.0);
    ProjectionTestAccess::setReferenceLon(p, 25.0);
    const WorldPoint shifted = run(p, op.forward, 20.0, 40.0);
    EXPECT_NEAR(shifted.x, plain.x, 1e-15) << op.name;
    EXPECT_NEAR(shifted.y, plain.y, 1e-15) << op.name;
  }
}

TEST(AzimuthalTest, LongitudeDifferencesAreNotBroughtIntoHalfATurn) {
  // A whole turn too many is 2e-9 radians off with the short pi: seen from base 350 a
  // point at 10 lies that much off its mirror image, the point at 330.
  for (const Operation& op : kOperations) {
    Projection p(CartesianProj, 1.0, 0.0, 350.0);
    const double east = run(p, op.forward, 0.0, 10.0).x;
    const double west = run(p, op.forward, 0.0, 330.0).x;
    EXPECT_GT(east + west, 1.5e-9) << op.name;
    EXPECT_LT(east + west, 3e-9) << op.name;
  }
}

TEST(AzimuthalTest, NotANumberIsCarriedThrough) {
  for (const Operation& op : kOperations) {
    Projection p;
    EXPECT_TRUE(std::isnan(run(p, op.forward, kNaN, 0.0).y)) << op.name;
    EXPECT_TRUE(std::isnan(run(p, op.forward, 0.0, kInf).x)) << op.name;
  }
}

TEST(Gnomonic, NinetyDegreesAwayIsHugeAndNotAFailure) {
  Projection p;
  p.setLLCoordinates(0.0, 90.0, 0.0);
  EXPECT_EQ(p.Gnomonic(), 1);
  // R divided by the cosine of the short right angle, 5e-10 (mpmath).
  EXPECT_NEAR(world_of(p).x, 1.2755997382404908e+16, 1e10);
}

TEST(Gnomonic, TheFarSideComesOutMirrored) {
  Projection p(GnomonicProj, 1.0, 0.0, 0.0);
  const WorldPoint near_side = run(p, &Projection::Gnomonic, 20.0, 30.0);
  const WorldPoint far_side = run(p, &Projection::Gnomonic, -20.0, 210.0);
  EXPECT_NEAR(far_side.x, near_side.x, 1e-8);
  EXPECT_NEAR(far_side.y, near_side.y, 1e-8);
}

TEST(Gnomonic, IsTheTangentOfTheDistance) {
  Projection p(GnomonicProj, 1.0, 0.0, 0.0);
  EXPECT_NEAR(run(p, &Projection::Gnomonic, 45.0, 0.0).y, 0.9999999995, 1e-12);
}

TEST(Stereo, IsTwiceTheTangentOfHalfTheDistance) {
  Projection p(StereographicProj, 1.0, 20.0, 10.0);
  const WorldPoint w = run(p, &Projection::Stereo, 50.0, 10.0);
  EXPECT_EQ(w.x, 0.0);
  EXPECT_NEAR(w.y, 0.5358983846836126, 1e-15);
}

TEST(Stereo, TheAntipodeIsNotTested) {
  Projection p;
  p.setLLCoordinates(0.0, 180.0, 0.0);
  EXPECT_EQ(p.Stereo(), 1);
  EXPECT_GT(world_of(p).x, 1e15);  // 1 + cos of the short pi is 0 or a last bit of it
}

TEST(Orthographic, TheAntipodeFallsOnTheCentre) {
  Projection p;
  const WorldPoint w = run(p, &Projection::Orthographic, 0.0, 180.0);
  EXPECT_NEAR(w.x, 0.006378001308797815, 1e-9);  // sin of the short pi, mpmath
  EXPECT_EQ(w.y, 0.0);
}

TEST(Orthographic, FarPointsLandOnTheSameDisc) {
  Projection p(OrthographicProj, 1.0, 0.0, 0.0);
  const WorldPoint near_side = run(p, &Projection::Orthographic, 40.0, 60.0);
  const WorldPoint far_side = run(p, &Projection::Orthographic, 40.0, 120.0);
  EXPECT_NEAR(far_side.x, near_side.x, 2e-9);
  EXPECT_EQ(far_side.y, near_side.y);
}

TEST(Postel, TheBaseItselfIsTheOriginAndNotNaN) {
  // At one base latitude in thirty the rounded cosine of the distance is above 1.
  for (int step = -9000; step <= 9000; ++step) {
    const double lat = step / 100.0;
    Projection p(PostelProj, lat, 123.0);
    const WorldPoint w = run(p, &Projection::Postel, lat, 123.0);
    EXPECT_EQ(w.x, 0.0) << lat;
    EXPECT_EQ(w.y, 0.0) << lat;
  }
}

TEST(Postel, DistancesFromTheBaseAreTrue) {
  Projection p(PostelProj, 1.0, 0.0, 0.0);
  EXPECT_NEAR(run(p, &Projection::Postel, 90.0, 0.0).y, 1.5707963262948965, 1e-15);
  EXPECT_NEAR(run(p, &Projection::Postel, 0.0, 90.0).x, 1.5707963262948965, 1e-15);
}

TEST(LambertAzimuthal, TheNorthPolarAspectPutsTheBaseMeridianDown) {
  Projection p(LambertAzimuthalProj, 90.0, 40.0);
  const WorldPoint w = run(p, &Projection::LambertAzimuthal, 0.0, 40.0);
  EXPECT_EQ(w.x, 0.0);
  EXPECT_NEAR(w.y, -9019854.098560637, 1e-8);  // 2 R sin of the short pi/4, mpmath
}

TEST(LambertAzimuthal, TheSouthPolarAspectPutsTheBaseMeridianUp) {
  Projection p(LambertAzimuthalProj, -90.0, 40.0);
  const WorldPoint w = run(p, &Projection::LambertAzimuthal, 0.0, 40.0);
  EXPECT_EQ(w.x, 0.0);
  EXPECT_NEAR(w.y, 9019854.103070565, 1e-8);  // 2 R cos of the short pi/4, mpmath
}

TEST(LambertAzimuthal, ThePoleItselfIsTheCentreOfItsAspect) {
  Projection north(LambertAzimuthalProj, 90.0, 0.0);
  EXPECT_EQ(run(north, &Projection::LambertAzimuthal, 90.0, 50.0).x, 0.0);
  EXPECT_EQ(run(north, &Projection::LambertAzimuthal, 90.0, 50.0).y, 0.0);
  // The short pi leaves the south pole 6 mm off: 2 R cos(pi/2 - 5e-10).
  Projection south(LambertAzimuthalProj, -90.0, 0.0);
  EXPECT_NEAR(run(south, &Projection::LambertAzimuthal, -90.0, 0.0).y, 0.006378001308797815, 1e-9);
}

TEST(LambertAzimuthal, JustOffThePoleTheObliqueFormulasApply) {
  Projection polar(LambertAzimuthalProj, 1.0, 90.0, 0.0);
  Projection oblique(LambertAzimuthalProj, 1.0, 89.999, 0.0);
  const WorldPoint a = run(polar, &Projection::LambertAzimuthal, 0.0, 0.0);
  const WorldPoint b = run(oblique, &Projection::LambertAzimuthal, 0.0, 0.0);
  // From the base to the point are 89.999 degrees: 2 sin(44.9995 degrees), mpmath.
  EXPECT_NEAR(b.y, -1.4142012206241983, 1e-12);
  EXPECT_NEAR(a.y, -1.4142135620195415, 1e-12);
}

}  // namespace
