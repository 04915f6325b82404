#include "tools/map/plane.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <stdexcept>

#include "tools/support/command_error.h"

namespace kzgis::map {
namespace {

using testing::ThrowsMessage;

constexpr double kPi = std::numbers::pi;

std::vector<projType> all_types() {
  std::vector<projType> types;
  for (int type = 0; type <= 14; ++type) types.push_back(static_cast<projType>(type));
  return types;
}

PlaneRequest request(projType type) {
  PlaneRequest r;
  r.type = type;
  return r;
}

PlaneRequest based(projType type, double lat, double lon) {
  PlaneRequest r = request(type);
  r.base = std::pair{lat, lon};
  return r;
}

TEST(Plane, IsFiniteAllOverWhatItShows) {
  for (const projType type : all_types()) {
    for (const double base_lat : {-90.0, -30.0, 10.0, 45.0, 90.0}) {
      Plane plane(based(type, base_lat, 20.0));
      for (int i = 0; i <= 72; ++i) {
        for (int j = 0; j <= 36; ++j) {
          Geo p{-180.0 + 5.0 * i, -90.0 + 5.0 * j};
          if (plane.is_disc()) {
            p = plane.position_at(plane.limb_deg() * j / 36.001, 5.0 * i);
          } else {
            const Window& w = plane.window();
            p = {w.west + (w.east - w.west) * i / 72.0, w.south + (w.north - w.south) * j / 36.0};
          }
          const PlanePoint at = plane.place(p);
          ASSERT_TRUE(std::isfinite(at.x) && std::isfinite(at.y))
              << "type " << type << " base " << base_lat << " at " << p.lon << ", " << p.lat;
          ASSERT_LT(std::hypot(at.x, at.y), 30.0) << "type " << type;
        }
      }
    }
  }
}

TEST(Plane, WindowsRunFromWestToEastWithoutAJump) {
  for (const projType type : all_types()) {
    Plane plane(request(type));
    if (plane.is_disc()) continue;
    const Window& w = plane.window();
    const double lat = 30.0;
    double width = 0.0;
    double longest = 0.0;
    PlanePoint previous = plane.place({w.west, lat});
    for (int i = 1; i <= 360; ++i) {
      const PlanePoint next = plane.place({w.west + (w.east - w.west) * i / 360.0, lat});
      const double step = std::hypot(next.x - previous.x, next.y - previous.y);
      width += step;
      longest = std::max(longest, step);
      previous = next;
    }
    EXPECT_LT(longest, 1.7 * width / 360.0) << "type " << type;
  }
}

// Equal-area projections keep the area of a cell of the graticule, which on the unit sphere
// is the longitude difference times the difference of the latitudes' sines.
TEST(Plane, EqualAreaProjectionsKeepAreas) {
  const auto cell_area = [](Plane& plane, double west, double south) {
    constexpr int kSteps = 400;
    GeoLine border;
    for (int i = 0; i < kSteps; ++i) border.push_back({west + 10.0 * i / kSteps, south});
    for (int i = 0; i < kSteps; ++i) border.push_back({west + 10.0, south + 10.0 * i / kSteps});
    for (int i = 0; i < kSteps; ++i) border.push_back({west + 10 - 10. * i / kSteps, south + 10});
    for (int i = 0; i < kSteps; ++i) border.push_back({west, south + 10 - 10. * i / kSteps});
    double sum = 0.0;
    for (std::size_t i = 0; i < border.size(); ++i) {
      const PlanePoint a = plane.place(border[i]);
      const PlanePoint b = plane.place(border[(i + 1) % border.size()]);
      sum += a.x * b.y - b.x * a.y;
    }
    return 0.5 * sum;
  };
  for (const projType type : {LambertCylindricalProj, LambertAzimuthalProj, AlbersProj, BonneProj,
                              WernerProj, SansonFlamsteedProj}) {
    for (const double base_lat : {-90.0, -30.0, 45.0, 90.0}) {
      Plane plane(based(type, base_lat, 0.0));
      for (const double south : {-50.0, -10.0, 0.0, 60.0, 70.0}) {
        for (const double west : {-170.0, -40.0, 0.0, 60.0, 165.0}) {
          const double expected =
              10.0 * kPi / 180.0 *
              (std::sin((south + 10) * kPi / 180) - std::sin(south * kPi / 180));
          EXPECT_NEAR(cell_area(plane, west, south), expected, 2e-3 * expected)
              << "type " << type << " base " << base_lat << " cell " << west << ", " << south;
        }
      }
    }
  }
}

TEST(Plane, EqualParallelsMakeAConeToo) {
  for (const projType type : {LambertConicProj, AlbersProj}) {
    for (const double parallel : {1.0, 30.0, 89.0}) {
      PlaneRequest equal = request(type);
      equal.parallels = std::pair{parallel, parallel};
      Plane plane(equal);
      const PlanePoint north = plane.place({0.0, 60.0});
      const PlanePoint south = plane.place({0.0, 20.0});
      EXPECT_NEAR(north.x, south.x, 1e-9) << "type " << type << " parallel " << parallel;
      EXPECT_GT(north.y - south.y, 0.1) << "type " << type << " parallel " << parallel;
    }
  }
}

TEST(Plane, ConesOfTheSouthReachAsFarNorthAsThoseOfTheNorthReachSouth) {
  for (const projType type : {LambertConicProj, AlbersProj}) {
    const Plane north(based(type, 40.0, 0.0));
    for (const Plane& south : {Plane(based(type, -40.0, 0.0)), Plane([&] {
                                 PlaneRequest r = request(type);
                                 r.parallels = std::pair{-20.0, -60.0};
                                 return r;
                               }())}) {
      EXPECT_EQ(south.window().south, -90.0);
      EXPECT_EQ(south.window().north, -north.window().south);
      EXPECT_NEAR(south.place({50.0, -30.0}).x, north.place({50.0, 30.0}).x, 1e-14);
    }
  }
}

// Half the globe fills a square, whose side is half a turn.
TEST(Plane, CassiniSoldnerShowsHalfTheGlobe) {
  const Plane plane(request(CassiniSoldnerProj));
  EXPECT_NEAR(plane.place({89.99, 0.0}).x, kPi / 2, 2e-4);
  EXPECT_NEAR(plane.place({-89.99, 0.0}).x, -kPi / 2, 2e-4);
  EXPECT_NEAR(plane.place({89.99, 45.0}).y, kPi / 2, 3e-4);
  EXPECT_TRUE(plane.place({89.0, -45.0}).visible);
  EXPECT_FALSE(plane.place({91.0, -45.0}).visible);
}

TEST(Plane, DiscsPutTheBaseInTheMiddleAndTheLimbAround) {
  for (const projType type : all_types()) {
    for (const double base_lat : {-90.0, -30.0, 0.0, 45.0, 90.0}) {
      if (type == BonneProj && base_lat == 0.0) continue;
      Plane plane(based(type, base_lat, 77.0));
      if (!plane.is_disc()) continue;
      const PlanePoint middle = plane.place({0.0, base_lat});
      EXPECT_NEAR(std::hypot(middle.x, middle.y), 0.0, 1e-8) << "type " << type;
      EXPECT_TRUE(middle.visible);
      for (double azimuth = 3.0; azimuth < 360.0; azimuth += 10.0) {
        const PlanePoint in = plane.place(plane.position_at(plane.limb_deg() - 1e-4, azimuth));
        const PlanePoint out =
            plane.place(plane.position_at(std::min(179.9999, plane.limb_deg() + 1e-4), azimuth));
        EXPECT_TRUE(in.visible);
        EXPECT_FALSE(out.visible);
        // Just inside and just outside meet, and in the right direction.
        const double r = plane.limb_radius();
        EXPECT_NEAR(std::hypot(in.x, in.y), r, 1e-4 * r) << "type " << type;
        EXPECT_NEAR(std::hypot(out.x, out.y), r, 2e-3 * r) << "type " << type;
        EXPECT_NEAR(in.x, r * std::sin(azimuth * kPi / 180), 1e-3 * r) << "type " << type;
        EXPECT_NEAR(in.y, r * std::cos(azimuth * kPi / 180), 1e-3 * r) << "type " << type;
        EXPECT_NEAR(out.x, r * std::sin(azimuth * kPi / 180), 3e-3 * r) << "type " << type;
      }
    }
  }
}

TEST(Plane, DiscsGoOnBeyondTheLimbUpToTwiceItsRadius) {
  Plane plane(based(OrthographicProj, 30.0, 0.0));
  double previous = 0.0;
  for (double angle = 1.0; angle < 180.0; angle += 1.0) {
    const PlanePoint p = plane.place(plane.position_at(angle, 200.0));
    const double radius = std::hypot(p.x, p.y);
    EXPECT_GT(radius, previous) << angle;
    previous = radius;
  }
  EXPECT_NEAR(previous, 2.0, 0.02);
}

TEST(Plane, GlobeIsSeenAsTheOrthographicProjectionShowsIt) {
  for (const double base_lat : {-90.0, -40.0, 0.0, 45.0, 90.0}) {
    Plane globe(based(GlobeProj, base_lat, 20.0));
    Plane flat(based(OrthographicProj, base_lat, 20.0));
    for (double azimuth = 0.0; azimuth < 360.0; azimuth += 15.0) {
      const Geo p = globe.position_at(70.0, azimuth);
      EXPECT_NEAR(globe.place(p).x, flat.place(p).x, 1e-8);
      EXPECT_NEAR(globe.place(p).y, flat.place(p).y, 1e-8);
    }
  }
}

TEST(Plane, BoxGivesWindowAndMiddleMeridian) {
  PlaneRequest boxed = request(AlbersProj);
  boxed.box = Window{170.0, -150.0, 34.0, 71.0};
  const Plane plane(boxed);
  EXPECT_EQ(plane.base_lon(), -170.0);
  EXPECT_EQ(plane.window().west, -20.0);
  EXPECT_EQ(plane.window().east, 20.0);
  EXPECT_EQ(plane.window().south, 34.0);
  EXPECT_EQ(plane.window().north, 71.0);
}

TEST(Plane, BoxOfTheWholeTurnIsTheWholeMap) {
  PlaneRequest boxed = request(CartesianProj);
  boxed.box = Window{-180.0, 180.0, -90.0, 90.0};
  const Plane plane(boxed);
  EXPECT_EQ(plane.window().west, -180.0);
  EXPECT_EQ(plane.window().east, 180.0);
}

TEST(Plane, RefusesWhatMakesNoMap) {
  const auto make = [](const PlaneRequest& r) { return [r] { Plane plane(r); }; };
  EXPECT_THAT(make(based(BonneProj, 0.0, 10.0)),
              ThrowsMessage<tools::UsageError>(
                  "Bonne needs a base latitude other than 0: on the equator it is "
                  "Sanson-Flamsteed"));
  PlaneRequest far = request(GnomonicProj);
  far.horizon_deg = 90.0;
  EXPECT_THAT(make(far), ThrowsMessage<tools::UsageError>(
                             "--horizon: the reach 90 does not lie above 0 and below 90"));
  far.horizon_deg = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(make(far)(), tools::UsageError);
  far.type = MercatorProj;
  EXPECT_THAT(make(far), ThrowsMessage<tools::UsageError>(
                             "--horizon: only azimuthal maps and the globe have one"));
  PlaneRequest boxed = request(GlobeProj);
  boxed.box = Window{0, 10, 0, 10};
  EXPECT_THAT(make(boxed), ThrowsMessage<tools::UsageError>(
                               "--box: azimuthal maps are round; --base and --horizon set them"));
  boxed.type = MercatorProj;
  boxed.box = Window{0, 10, 86, 90};
  EXPECT_THAT(make(boxed),
              ThrowsMessage<tools::UsageError>("--box: this projection shows nothing of it"));
  boxed.box = Window{170, -170, 0, 10};
  boxed.base = std::pair{0.0, 0.0};
  EXPECT_THAT(make(boxed), ThrowsMessage<tools::UsageError>(
                               "--box: the map is torn opposite to --base, inside the box"));
}

}  // namespace
}  // namespace kzgis::map
