#include <gtest/gtest.h>

#include "kzgis/projection.h"
#include "projection/support.h"
#include "support/capture.h"

using namespace projection_test;

namespace {

using Inverse = int (Projection::*)();

struct Operation {
  const char* name;
  Inverse inverse;
  projType type;
};

const Operation kWorking[] = {
    {"inverseCartesian", &Projection::inverseCartesian, CartesianProj},
    {"inverseMercator", &Projection::inverseMercator, MercatorProj},
    {"inverseLambertCylindric", &Projection::inverseLambertCylindric, LambertCylindricalProj},
    {"inverseStereo", &Projection::inverseStereo, StereographicProj},
    {"inverseOrthographic", &Projection::inverseOrthographic, OrthographicProj},
    {"inverseLambertAzimuthal", &Projection::inverseLambertAzimuthal, LambertAzimuthalProj},
    {"inverseLambertConical", &Projection::inverseLambertConical, LambertConicProj},
    {"inverseAlbers", &Projection::inverseAlbers, AlbersProj},
    {"inverseGlobe", &Projection::inverseGlobe, GlobeProj},
};

const Operation kAzimuthal[] = {kWorking[3], kWorking[4], kWorking[5]};

Projection with_parallels(double first, double second, double base_lat, double base_lon) {
  Projection p(CartesianProj, 1.0, base_lat, base_lon);
  p.setFirstPar(first);
  p.setSecondPar(second);
  return p;
}

TEST(InverseTest, EachStoresItsTypeAndSucceeds) {
  StderrCapture err;
  for (const Operation& op : kWorking) {
    Projection p(WernerProj);
    p.setWorldCoordinates(0.1, 0.2, 0.3);
    EXPECT_EQ((p.*op.inverse)(), 1) << op.name;
    EXPECT_EQ(p.fetchProjection(), op.type) << op.name;
  }
  EXPECT_EQ(err.text(), "");
}

TEST(InverseTest, TheSixEmptyOnesChangeNothingAndReturnZero) {
  for (const Inverse inverse : {&Projection::inverseGnomonic, &Projection::inversePostel,
                                &Projection::inverseCassiniSoldner, &Projection::inverseBonne,
                                &Projection::inverseWerner, &Projection::inverseSansonFlamsteed}) {
    Projection p(CartesianProj, 1.0, 10.0, 20.0);
    p.setLLCoordinates(30.0, 40.0, 50.0);
    p.setWorldCoordinates(0.1, 0.2, 0.3);
    StderrCapture err;
    EXPECT_EQ((p.*inverse)(), 0);
    EXPECT_EQ(p.fetchProjection(), CartesianProj);
    EXPECT_EQ(p.fetchLLCoordinates()->fetchLat(), 30.0);
    EXPECT_EQ(p.fetchLLCoordinates()->fetchLon(), 40.0);
    EXPECT_EQ(p.fetchLLCoordinates()->fetchAltitude(), 0.0);
    EXPECT_EQ(world_of(p).x, 0.1);
    EXPECT_EQ(err.text(), "");
  }
}

TEST(InverseTest, TheAltitudeGoesIntoThePointAndTheObjectsStays) {
  for (const Operation& op : kWorking) {
    Projection p = with_parallels(30.0, 60.0, 40.0, 10.0);
    p.setLLCoordinates(0.0, 0.0, 5.0);
    const LatLon& point = run_inverse(p, op.inverse, 0.6, 0.0, 0.8);
    double altitude = 0.0;
    p.fetchLLCoordinates(&altitude);
    EXPECT_EQ(altitude, 5.0) << op.name;
    if (op.type == GlobeProj) {
      EXPECT_NEAR(point.fetchAltitude(), 0.0, 1e-15);
    } else {
      EXPECT_EQ(point.fetchAltitude(), 0.8) << op.name;
    }
  }
}

TEST(InverseTest, WithoutWorldCoordinatesAllThreeAreZeroAndNoneAreMade) {
  for (const Operation& op : kWorking) {
    Projection fresh = with_parallels(30.0, 60.0, 40.0, 10.0);
    Projection zeros = with_parallels(30.0, 60.0, 40.0, 10.0);
    zeros.setWorldCoordinates(0.0, 0.0, 0.0);
    EXPECT_EQ((fresh.*op.inverse)(), 1) << op.name;
    (zeros.*op.inverse)();
    EXPECT_FALSE(ProjectionTestAccess::has_world(fresh)) << op.name;
    const LatLon& a = *fresh.fetchLLCoordinates();
    const LatLon& b = *zeros.fetchLLCoordinates();
    if (op.type == GlobeProj) {
      EXPECT_TRUE(std::isnan(a.fetchLat()) && std::isnan(b.fetchLat()));
      EXPECT_EQ(a.fetchAltitude(), -1.0) << "the centre lies a radius below the surface";
    } else {
      EXPECT_TRUE(a == b) << op.name;
    }
  }
}

TEST(InverseTest, TheReferenceIsTakenOffTheLongitude) {
  for (const Operation& op : kWorking) {
    Projection p = with_parallels(30.0, 60.0, 40.0, 10.0);
    const LatLon plain = run_inverse(p, op.inverse, 0.3, 0.1, 0.2);
    ProjectionTestAccess::setReferenceLon(p, 25.0);
    const LatLon& shifted = run_inverse(p, op.inverse, 0.3, 0.1, 0.2);
    EXPECT_EQ(shifted.fetchLat(), plain.fetchLat()) << op.name;
    // The base's longitude takes the reference on and the result takes it off; without a
    // base in the formula, or with one added after, 25 degrees are missing.
    const bool no_base = op.type == GlobeProj || op.type == CartesianProj;
    EXPECT_NEAR(shifted.fetchLon(),
                no_base ? std::fmod(plain.fetchLon() + 335.0, 360.0) : plain.fetchLon(), 1e-12)
        << op.name;
  }
}

TEST(InverseTest, ImpossibleInputGivesNaNAndSucceeds) {
  for (const Inverse inverse :
       {&Projection::inverseLambertCylindric, &Projection::inverseOrthographic,
        &Projection::inverseLambertAzimuthal, &Projection::inverseAlbers}) {
    Projection p = with_parallels(30.0, 60.0, 40.0, 10.0);
    p.setWorldCoordinates(0.0, 50.0, 0.0);
    EXPECT_EQ((p.*inverse)(), 1);
    EXPECT_TRUE(std::isnan(p.fetchLLCoordinates()->fetchLat()));
  }
}

TEST(InverseTest, NotANumberAndInfinityDoNotLoop) {
  for (const Operation& op : kWorking) {
    for (const double value : {kNaN, kInf, -kInf}) {
      Projection p = with_parallels(30.0, 60.0, 40.0, 10.0);
      p.setWorldCoordinates(value, value, value);
      EXPECT_EQ((p.*op.inverse)(), 1) << op.name;
    }
  }
}

TEST(InverseTest, WithParallelsAtZeroTheConicsGiveNaNAndSucceed) {
  for (const Inverse inverse : {&Projection::inverseLambertConical, &Projection::inverseAlbers}) {
    Projection p;
    p.setWorldCoordinates(1000.0, 2000.0, 3.0);
    StderrCapture err;
    EXPECT_EQ((p.*inverse)(), 1);
    EXPECT_TRUE(std::isnan(p.fetchLLCoordinates()->fetchLat()));
    EXPECT_TRUE(std::isnan(p.fetchLLCoordinates()->fetchLon()));
    EXPECT_EQ(p.fetchLLCoordinates()->fetchAltitude(), 3.0);
    EXPECT_EQ(err.text(), "");
  }
}

TEST(InverseTest, TheCentreOfAnAzimuthalProjectionIsTheBasePoint) {
  for (const Operation& op : kAzimuthal) {
    for (const double lat : {0.0, 45.0, -30.0, 90.0, -90.0}) {
      Projection p(CartesianProj, lat, 36.0);
      const LatLon& point = run_inverse(p, op.inverse, 0.0, 0.0, 7.0);
      EXPECT_NEAR(point.fetchLat(), lat, 1e-13) << op.name << lat;
      EXPECT_NEAR(point.fetchLon(), 36.0, 1e-13) << op.name << lat;
      EXPECT_EQ(point.fetchAltitude(), 7.0) << op.name << lat;
    }
    Projection p(CartesianProj, 90.0, 36.0);
    EXPECT_NEAR(run_inverse(p, op.inverse, -0.0, -0.0).fetchLon(), 36.0, 1e-13) << op.name;
  }
}

TEST(InverseTest, OneArgumentArcTangentFoldsTheFarHalf) {
  // 120 degrees of longitude from the base come back as 120 - 180 = -60.
  const std::pair<int (Projection::*)(), Inverse> pairs[] = {
      {&Projection::Stereo, &Projection::inverseStereo},
      {&Projection::LambertAzimuthal, &Projection::inverseLambertAzimuthal},
      {&Projection::Orthographic, &Projection::inverseOrthographic}};
  for (const auto& [forward, inverse] : pairs) {
    Projection p(CartesianProj, 1.0, 60.0, 0.0);
    const WorldPoint w = run(p, forward, 50.0, 120.0);
    const LatLon& point = run_inverse(p, inverse, w.x, w.y);
    EXPECT_NEAR(point.fetchLat(), 50.0, 1e-7);
    EXPECT_NEAR(point.fetchLon(), 300.0, 1e-6);
  }
}

TEST(InverseTest, StereoMirrorsLongitudesAtThePoles) {
  for (const double pole : {90.0, -90.0}) {
    Projection p(StereographicProj, 1.0, pole, 100.0);
    const WorldPoint w = run(p, &Projection::Stereo, pole / 2.0, 130.0);
    const LatLon& point = run_inverse(p, &Projection::inverseStereo, w.x, w.y);
    EXPECT_NEAR(point.fetchLat(), pole / 2.0, 1e-6);
    EXPECT_NEAR(point.fetchLon(), 70.0, 1e-6) << "30 degrees west, and not east";
  }
}

TEST(InverseTest, TheOtherTwoDoNotMirrorAtThePoles) {
  const std::pair<int (Projection::*)(), Inverse> pairs[] = {
      {&Projection::LambertAzimuthal, &Projection::inverseLambertAzimuthal},
      {&Projection::Orthographic, &Projection::inverseOrthographic}};
  for (const auto& [forward, inverse] : pairs) {
    for (const double pole : {90.0, -90.0}) {
      Projection p(CartesianProj, 1.0, pole, 100.0);
      const WorldPoint w = run(p, forward, pole / 2.0, 130.0);
      const LatLon& point = run_inverse(p, inverse, w.x, w.y);
      EXPECT_NEAR(point.fetchLat(), pole / 2.0, 1e-6);
      EXPECT_NEAR(point.fetchLon(), 130.0, 1e-6);
    }
  }
}

TEST(InverseCartesian, AddsTheBaseAfterNormalising) {
  Projection p(CartesianProj, 1.0, 30.0, 350.0);
  const LatLon& point = run_inverse(p, &Projection::inverseCartesian, rad(20.0), rad(100.0));
  EXPECT_NEAR(point.fetchLon(), 10.0, 1e-13);
  EXPECT_EQ(point.fetchLat(), 90.0) << "100 is clamped to 90, plus 30 to 90 again";
  const LatLon& south = run_inverse(p, &Projection::inverseCartesian, 0.0, rad(-130.0));
  EXPECT_EQ(south.fetchLat(), -60.0) << "clamped to -90 before the base is added";
}

TEST(InverseCartesian, AnInfiniteLatitudeIsClamped) {
  Projection p;
  EXPECT_EQ(run_inverse(p, &Projection::inverseCartesian, 0.0, kInf).fetchLat(), 90.0);
  EXPECT_EQ(run_inverse(p, &Projection::inverseCartesian, 0.0, -kInf).fetchLat(), -90.0);
}

TEST(InverseMercator, IgnoresTheBaseLatitudeAndUndoesTheScale) {
  Projection p = with_parallels(60.0, 20.0, 77.0, 10.0);
  const WorldPoint w = run(p, &Projection::Mercator, 45.0, 40.0);
  const LatLon& point = run_inverse(p, &Projection::inverseMercator, w.x, w.y);
  EXPECT_NEAR(point.fetchLat(), 45.0, 1e-7);
  EXPECT_NEAR(point.fetchLon(), 40.0, 1e-13);
}

TEST(InverseMercator, InfinityIsThePole) {
  Projection p;
  EXPECT_EQ(run_inverse(p, &Projection::inverseMercator, 0.0, kInf).fetchLat(), 90.0);
  EXPECT_EQ(run_inverse(p, &Projection::inverseMercator, 0.0, -kInf).fetchLat(), -90.0);
}

TEST(InverseGlobe, OnTheEquatorTheLatitudeIsATraceSouth) {
  Projection p;
  const LatLon& point = run_inverse(p, &Projection::inverseGlobe, 6378000.0, 0.0, 0.0);
  EXPECT_NEAR(point.fetchLat(), -2.8647895644351746e-08, 2e-14);  // mpmath
  EXPECT_EQ(point.fetchLon(), 0.0);
  EXPECT_EQ(point.fetchAltitude(), 0.0);
}

TEST(InverseGlobe, TheSignBitOfXChoosesTheHalf) {
  Projection p;
  EXPECT_EQ(run_inverse(p, &Projection::inverseGlobe, -6378000.0, 0.0, 0.0).fetchLon(), 180.0);
  // asin(1) is the true right angle, and the short pi stands in the difference.
  EXPECT_NEAR(run_inverse(p, &Projection::inverseGlobe, 0.0, 1.0, 1.0).fetchLon(),
              90.00000002864789, 1e-13);
  EXPECT_NEAR(run_inverse(p, &Projection::inverseGlobe, -0.0, 1.0, 1.0).fetchLon(),
              89.99999997135211, 1e-13);
}

TEST(InverseGlobe, TheSignBitOfTheArcTangentChoosesTheHemisphere) {
  Projection p(GlobeProj, 1.0, 0.0, 0.0);
  EXPECT_NEAR(run_inverse(p, &Projection::inverseGlobe, 1.0, 0.0, 1.0).fetchLat(), 45.0, 1e-7);
  EXPECT_NEAR(run_inverse(p, &Projection::inverseGlobe, 1.0, 0.0, -1.0).fetchLat(), -45.0, 1e-7);
  // On the axis below, the quotient is -0.0: negative, though equal to 0.
  EXPECT_EQ(run_inverse(p, &Projection::inverseGlobe, 0.0, 0.0, -1.0).fetchLat(), -90.0);
  // On the equator -0.0 turns the trace around.
  EXPECT_GT(run_inverse(p, &Projection::inverseGlobe, 1.0, 0.0, -0.0).fetchLat(), 2.8e-8);
}

TEST(InverseGlobe, OnTheAxisTheLongitudeIsNaN) {
  Projection p;
  const LatLon& point = run_inverse(p, &Projection::inverseGlobe, 0.0, 0.0, 6378000.0);
  EXPECT_TRUE(std::isnan(point.fetchLon()));
  EXPECT_EQ(point.fetchLat(), 90.0);
  EXPECT_EQ(point.fetchAltitude(), 0.0);
}

TEST(InverseLambertConical, EqualParallelsHaveNoInverse) {
  Projection p = with_parallels(45.0, 45.0, 40.0, 10.0);
  EXPECT_TRUE(std::isnan(run_inverse(p, &Projection::inverseLambertConical, 0.1, 0.1).fetchLat()));
}

TEST(InverseLambertConical, ASouthernBaseOnANorthernConeComesBack) {
  Projection p = with_parallels(30.0, 60.0, -40.0, 10.0);
  const WorldPoint w = run(p, &Projection::LambertConical, -50.0, 30.0);
  const LatLon& point = run_inverse(p, &Projection::inverseLambertConical, w.x, w.y);
  EXPECT_NEAR(point.fetchLat(), -50.0, 1e-6);
  EXPECT_NEAR(point.fetchLon(), 30.0, 1e-6);
}

TEST(InverseAlbers, EqualParallelsStillTakeTheTwoParallelFormula) {
  // The base is the origin of that formula, as it is not of the forward projection.
  Projection p = with_parallels(45.0, 45.0, 40.0, 10.0);
  const LatLon& point = run_inverse(p, &Projection::inverseAlbers, 0.0, 0.0);
  EXPECT_NEAR(point.fetchLat(), 40.0, 1e-12);
  EXPECT_NEAR(point.fetchLon(), 10.0, 1e-12);
}

}  // namespace
