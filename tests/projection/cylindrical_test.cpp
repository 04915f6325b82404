#include <gtest/gtest.h>

#include "kzgis/projection.h"
#include "projection/support.h"
#include "support/capture.h"

using namespace projection_test;

namespace {

constexpr double kPoleY = 21.416412812301328;  // ln(tan(pi/2 - 5e-10)), mpmath at 40 digits

using Forward = int (Projection::*)();

struct Operation {
  const char* name;
  Forward forward;
  projType type;
};

const Operation kOperations[] = {
    {"Cartesian", &Projection::Cartesian, CartesianProj},
    {"Mercator", &Projection::Mercator, MercatorProj},
    {"LambertCylindric", &Projection::LambertCylindric, LambertCylindricalProj},
    {"CassiniSoldner", &Projection::CassiniSoldner, CassiniSoldnerProj},
    {"SansonFlamsteed", &Projection::SansonFlamsteed, SansonFlamsteedProj},
    {"Globe", &Projection::Globe, GlobeProj},
};

TEST(CylindricalTest, EachStoresItsTypeAndSucceeds) {
  StderrCapture err;
  for (const Operation& op : kOperations) {
    Projection p(WernerProj);
    p.setLLCoordinates(10.0, 20.0, 0.0);
    EXPECT_EQ((p.*op.forward)(), 1) << op.name;
    EXPECT_EQ(p.fetchProjection(), op.type) << op.name;
  }
  EXPECT_EQ(err.text(), "");
}

TEST(CylindricalTest, ADirectCallWithoutWorldCoordinatesMakesThem) {
  for (const Operation& op : kOperations) {
    Projection p;
    EXPECT_EQ((p.*op.forward)(), 1) << op.name;
    WorldPoint w{};
    EXPECT_EQ(p.fetchWorldCoordinates(&w), 3) << op.name;
    p.removeCoords();
    EXPECT_EQ((p.*op.forward)(), 1) << op.name;
    EXPECT_TRUE(ProjectionTestAccess::has_world(p)) << op.name;
  }
}

TEST(CylindricalTest, ZIsTheAltitudeExceptOnTheGlobe) {
  for (const Operation& op : kOperations) {
    Projection p(CartesianProj, 1.0, 0.0, 0.0);
    const WorldPoint w = run(p, op.forward, 0.0, 0.0, 0.75);
    EXPECT_EQ(w.z, op.type == GlobeProj ? 0.0 : 0.75) << op.name;
  }
}

TEST(CylindricalTest, LongitudeDifferencesAreNotBroughtIntoHalfATurn) {
  const double want = rad(10.0) - rad(350.0);
  for (const Forward forward : {&Projection::Mercator, &Projection::LambertCylindric,
                                &Projection::SansonFlamsteed, &Projection::CassiniSoldner}) {
    Projection p(CartesianProj, 1.0, 0.0, 350.0);
    EXPECT_EQ(run(p, forward, 0.0, 10.0).x, want);
    EXPECT_LT(want, -5.9);
  }
}

TEST(CylindricalTest, TheReferenceIsAddedToEveryLongitudeBeforeWrapping) {
  for (const Forward forward : {&Projection::Mercator, &Projection::LambertCylindric,
                                &Projection::SansonFlamsteed, &Projection::CassiniSoldner}) {
    Projection p(CartesianProj, 1.0, 0.0, 350.0);
    ProjectionTestAccess::setReferenceLon(p, 15.0);
    EXPECT_EQ(run(p, forward, 0.0, 10.0).x, rad(25.0) - rad(5.0));
  }
  Projection p(CartesianProj, 1.0, 0.0, 10.0);
  ProjectionTestAccess::setReferenceLon(p, 15.0);
  EXPECT_EQ(run(p, &Projection::Cartesian, 0.0, 30.0).x, rad(35.0)) << "once, not twice";
  EXPECT_NEAR(run(p, &Projection::Globe, 0.0, 75.0).y, 1.0, 1e-15);
}

TEST(Cartesian, WrapsTheDifference) {
  Projection at_zero;
  EXPECT_EQ(run(at_zero, &Projection::Cartesian, 0.0, 359.0).x,
            359.0 / 180.0 * 3.141592652589793 * 6378000.0);
  Projection at_ten(CartesianProj, 0.0, 10.0);
  EXPECT_EQ(run(at_ten, &Projection::Cartesian, 0.0, 5.0).x,
            355.0 / 180.0 * 3.141592652589793 * 6378000.0);
  Projection at_350(CartesianProj, 0.0, 350.0);
  EXPECT_EQ(run(at_350, &Projection::Cartesian, 0.0, 10.0).x,
            20.0 / 180.0 * 3.141592652589793 * 6378000.0);
}

TEST(Cartesian, ClampsTheDifference) {
  Projection p(CartesianProj, -30.0, 0.0);
  EXPECT_EQ(run(p, &Projection::Cartesian, 80.0, 0.0).y,
            90.0 / 180.0 * 3.141592652589793 * 6378000.0);
  EXPECT_EQ(run(p, &Projection::Cartesian, -90.0, 0.0).y,
            -60.0 / 180.0 * 3.141592652589793 * 6378000.0);
}

TEST(Mercator, HasTheKnownValues) {
  Projection p(MercatorProj, 1.0, 0.0, 0.0);
  EXPECT_NEAR(run(p, &Projection::Mercator, 45.0, 0.0).y, 0.8813735859588826,
              ulps(0.8813735859588826, 2));
  EXPECT_NEAR(run(p, &Projection::Mercator, 0.0, 0.0).y, -5.000001026025254e-10, 2e-16)
      << "the equator is not quite 0";
}

TEST(Mercator, TheNorthPoleIsFiniteAndTheSouthPoleIsNot) {
  Projection p(MercatorProj);
  // The tangent at the pole is as sensitive as it is large: 2e9 times the last bit.
  EXPECT_NEAR(run(p, &Projection::Mercator, 90.0, 0.0).y, kPoleY * 6378000.0, 1e-6 * 6378000.0);
  EXPECT_EQ(run(p, &Projection::Mercator, -90.0, 0.0).y, -kInf);
}

TEST(Mercator, IgnoresTheBaseLatitude) {
  Projection a(MercatorProj, 0.0, 10.0);
  Projection b(MercatorProj, 60.0, 10.0);
  EXPECT_EQ(run(a, &Projection::Mercator, 45.0, 30.0).y,
            run(b, &Projection::Mercator, 45.0, 30.0).y);
}

TEST(Mercator, TheFirstParallelScalesBothAxes) {
  Projection p(MercatorProj, 1.0, 0.0, 0.0);
  const WorldPoint whole = run(p, &Projection::Mercator, 45.0, 30.0);
  p.setFirstPar(60.0);
  p.setSecondPar(20.0);
  const WorldPoint scaled = run(p, &Projection::Mercator, 45.0, 30.0);
  const double cos_60 = 0.5000000002886752;  // of the short 60 degrees, mpmath
  EXPECT_NEAR(scaled.x, whole.x * cos_60, 1e-15);
  EXPECT_NEAR(scaled.y, whole.y * cos_60, 1e-15);
}

TEST(LambertCylindric, TheBaseLatitudeIsTheZeroOfY) {
  Projection p(LambertCylindricalProj, 30.0, 0.0);
  EXPECT_EQ(run(p, &Projection::LambertCylindric, 30.0, 50.0).y, 0.0);
}

TEST(LambertCylindric, YIsTheHeightOnTheSphere) {
  Projection p(LambertCylindricalProj, 2.0, 0.0, 0.0);
  EXPECT_EQ(run(p, &Projection::LambertCylindric, 90.0, 0.0).y, 2.0);
  EXPECT_EQ(run(p, &Projection::LambertCylindric, -90.0, 0.0).y, -2.0);
}

TEST(SansonFlamsteed, ParallelsAreTrue) {
  Projection p(SansonFlamsteedProj, 1.0, 15.0, 10.0);
  const WorldPoint w = run(p, &Projection::SansonFlamsteed, 60.0, 70.0);
  EXPECT_NEAR(w.x, 0.5235987757339321, 1e-15);  // mpmath
  EXPECT_EQ(w.y, rad(60.0) - rad(15.0));
}

TEST(CassiniSoldner, OnTheBaseMeridianYIsTheArc) {
  Projection p(CassiniSoldnerProj, 1.0, 15.0, 10.0);
  const WorldPoint w = run(p, &Projection::CassiniSoldner, 60.0, 10.0);
  EXPECT_EQ(w.x, 0.0);
  EXPECT_EQ(w.y, rad(60.0) - rad(15.0));
}

TEST(CassiniSoldner, FarFromTheBaseMeridianIsTheSeriesAllTheSame) {
  // The closed form for the sphere cannot exceed pi/2 here; the series does.
  Projection p(CassiniSoldnerProj, 1.0, 0.0, 0.0);
  const WorldPoint w = run(p, &Projection::CassiniSoldner, 45.0, 180.0);
  EXPECT_NEAR(w.x, -2.761287900124133, 1e-13);
  EXPECT_NEAR(w.y, 7.31151138614208, 1e-13);  // both from mpmath
}

TEST(Globe, AxesPointToLongitudeZeroNinetyEastAndTheNorthPole) {
  Projection p(GlobeProj, 30.0, 40.0);  // the base point does not count
  WorldPoint w = run(p, &Projection::Globe, 0.0, 0.0);
  EXPECT_EQ(w.x, 6378000.0);
  EXPECT_EQ(w.y, 0.0);
  EXPECT_EQ(w.z, 0.0);
  w = run(p, &Projection::Globe, 0.0, 90.0);
  EXPECT_NEAR(w.x, 0.0031890006543989075, 1e-9);  // 3 mm short of the axis
  EXPECT_EQ(w.y, 6378000.0);
  w = run(p, &Projection::Globe, 90.0, 0.0);
  EXPECT_NEAR(w.x, 0.0031890006543989075, 1e-9);
  EXPECT_GT(w.x, 0.0);
  EXPECT_EQ(w.z, 6378000.0);
}

TEST(Globe, TheAltitudeLiftsThePoint) {
  Projection p(GlobeProj, 1.0, 0.0, 0.0);
  EXPECT_EQ(run(p, &Projection::Globe, 0.0, 0.0, 0.5).x, 1.5);
  EXPECT_EQ(run(p, &Projection::Globe, 90.0, 0.0, 0.5).z, 1.5);
}

TEST(CylindricalTest, NotANumberIsCarriedThrough) {
  for (const Operation& op : kOperations) {
    Projection p;
    const WorldPoint w = run(p, op.forward, kNaN, kNaN, 1.0);
    EXPECT_TRUE(std::isnan(w.x)) << op.name;
    EXPECT_TRUE(std::isnan(w.y)) << op.name;
  }
}

}  // namespace
