#include "tools/map/map_chart.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "tools/support/command_error.h"

namespace kzgis::map {
namespace {

using testing::ThrowsMessage;

MapRequest request(projType type) {
  MapRequest r;
  r.type = type;
  return r;
}

MapRequest based(projType type, double lat, double lon) {
  MapRequest r = request(type);
  r.base = std::pair{lat, lon};
  return r;
}

Box window(const MapRequest& r) { return *map_chart(r).parameters().window; }

void expect_box(const Box& box, const Box& expected) {
  EXPECT_EQ(box.min_x, expected.min_x);
  EXPECT_EQ(box.min_y, expected.min_y);
  EXPECT_EQ(box.max_x, expected.max_x);
  EXPECT_EQ(box.max_y, expected.max_y);
}

TEST(MapChart, ShowsWhatIsWorthLookingAt) {
  expect_box(window(request(CartesianProj)), {-180, -90, 180, 90});
  expect_box(window(request(MercatorProj)), {-180, -78, 180, 84});
  expect_box(window(request(LambertConicProj)), {-180, -30, 180, 90});
  expect_box(window(request(AlbersProj)), {-180, -60, 180, 90});
  expect_box(window(request(CassiniSoldnerProj)), {-90, -90, 90, 90});
}

TEST(MapChart, ConesOfTheSouthReachAsFarNorthAsThoseOfTheNorthReachSouth) {
  MapRequest parallels = request(AlbersProj);
  parallels.parallels = std::pair{-20.0, -60.0};
  expect_box(window(parallels), {-180, -90, 180, 60});
  expect_box(window(based(LambertConicProj, -40.0, 0.0)), {-180, -90, 180, 30});
}

TEST(MapChart, OfTheGlobeIsOrthographicOnTheUnitSphere) {
  const Chart chart = map_chart(based(GlobeProj, 20.0, 30.0));
  EXPECT_EQ(chart.type(), OrthographicProj);
  EXPECT_EQ(chart.parameters().base_lat, 20.0);
  EXPECT_EQ(chart.parameters().base_lon, 30.0);
  EXPECT_EQ(chart.parameters().radius, 1.0);
  EXPECT_EQ(chart.parameters().reach_deg, 90.0);
}

TEST(MapChart, HorizonIsTheReach) {
  MapRequest near = request(PostelProj);
  EXPECT_EQ(map_chart(near).parameters().reach_deg, 180.0);
  near.horizon_deg = 35.0;
  EXPECT_EQ(map_chart(near).parameters().reach_deg, 35.0);
}

TEST(MapChart, BoxGivesWindowAndMiddleMeridian) {
  MapRequest boxed = request(AlbersProj);
  boxed.box = Box{170.0, 34.0, -150.0, 71.0};
  EXPECT_EQ(map_chart(boxed).parameters().base_lon, -170.0 + 360.0);
  expect_box(window(boxed), {-20, 34, 20, 71});
  // About another meridian, and cut where the projection shows nothing.
  boxed = based(MercatorProj, 0.0, 20.0);
  boxed.box = Box{10.0, 60.0, 50.0, 90.0};
  expect_box(window(boxed), {-10, 60, 30, 84});
}

TEST(MapChart, BoxOfTheWholeTurnIsTheWholeMap) {
  MapRequest boxed = request(CartesianProj);
  boxed.box = Box{-180.0, -90.0, 180.0, 90.0};
  expect_box(window(boxed), {-180, -90, 180, 90});
}

TEST(MapChart, RefusesWhatMakesNoMap) {
  const auto make = [](const MapRequest& r) { return [r] { map_chart(r); }; };
  EXPECT_THAT(make(based(BonneProj, 0.0, 10.0)),
              ThrowsMessage<tools::UsageError>(
                  "Bonne needs a base latitude other than 0: on the equator it is "
                  "Sanson-Flamsteed"));
  MapRequest far = request(GnomonicProj);
  far.horizon_deg = 90.0;
  EXPECT_THAT(make(far), ThrowsMessage<tools::UsageError>(
                             "--horizon: the reach 90 does not lie above 0 and below 90"));
  far.horizon_deg = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(make(far)(), tools::UsageError);
  far.type = MercatorProj;
  EXPECT_THAT(make(far), ThrowsMessage<tools::UsageError>(
                             "--horizon: only azimuthal maps and the globe have one"));
  MapRequest boxed = request(GlobeProj);
  boxed.box = Box{0, 0, 10, 10};
  EXPECT_THAT(make(boxed), ThrowsMessage<tools::UsageError>(
                               "--box: azimuthal maps are round; --base and --horizon set them"));
  boxed.type = MercatorProj;
  boxed.box = Box{0, 86, 10, 90};
  EXPECT_THAT(make(boxed),
              ThrowsMessage<tools::UsageError>("--box: this projection shows nothing of it"));
  boxed.box = Box{170, 0, -170, 10};
  boxed.base = std::pair{0.0, 0.0};
  EXPECT_THAT(make(boxed), ThrowsMessage<tools::UsageError>(
                               "--box: the map is torn opposite to --base, inside the box"));
}

}  // namespace
}  // namespace kzgis::map
