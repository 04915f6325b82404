#include "kzgis/latlon.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>
#include <type_traits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

std::string text_of(const LatLon& point) {
  std::ostringstream os;
  os << point;
  return os.str();
}

TEST(Direction, HasItsNumbers) {
  EXPECT_EQ(North, 0);
  EXPECT_EQ(NorthEast, 1);
  EXPECT_EQ(East, 2);
  EXPECT_EQ(SouthEast, 3);
  EXPECT_EQ(South, 4);
  EXPECT_EQ(SouthWest, 5);
  EXPECT_EQ(West, 6);
  EXPECT_EQ(NorthWest, 7);
  EXPECT_EQ(SamePlace, 8);
}

TEST(LatLonClass, HasNoDefaultConstructorAndNoVirtualOperations) {
  EXPECT_FALSE(std::is_default_constructible_v<LatLon>);
  EXPECT_FALSE(std::is_polymorphic_v<LatLon>);
  EXPECT_EQ(sizeof(LatLon), 3 * sizeof(double));
}

TEST(LatLonConstructor, TakesWholeArcSecondsOfAnyIntegerType) {
  for (const LatLon& p : {LatLon(324000L, -36000L), LatLon(324000, -36000), LatLon(324000L, -36000),
                          LatLon(324000, -36000L)}) {
    EXPECT_EQ(p.fetchLat(), 90.0);
    EXPECT_EQ(p.fetchLon(), 350.0);
    EXPECT_EQ(p.fetchAltitude(), 0.0);
  }
  const LatLon with_altitude(45000L, 3600L, 12.5);
  EXPECT_EQ(with_altitude.fetchLat(), 12.5);
  EXPECT_EQ(with_altitude.fetchLon(), 1.0);
  EXPECT_EQ(with_altitude.fetchAltitude(), 12.5);
  EXPECT_EQ(LatLon(45000, 3600, 12.5).fetchAltitude(), 12.5);
  EXPECT_EQ(LatLon(1, 1).fetchLat(), 1.0 / 3600.0);
}

TEST(LatLonConstructor, TakesDegreesWhenOneArgumentIsADouble) {
  EXPECT_EQ(LatLon(45, 10.5).fetchLat(), 45.0);
  EXPECT_EQ(LatLon(45.5, 10).fetchLon(), 10.0);
}

TEST(LatLonConstructor, ClampsTheLatitudeAndWrapsTheLongitude) {
  const LatLon north(95.0, 720.0);
  EXPECT_EQ(north.fetchLat(), 90.0);
  EXPECT_EQ(north.fetchLon(), 0.0);
  const LatLon south(-91.0, -0.5);
  EXPECT_EQ(south.fetchLat(), -90.0);
  EXPECT_EQ(south.fetchLon(), 359.5);
  const LatLon with_altitude(1.0, 2.0, -3.0);
  EXPECT_EQ(with_altitude.fetchLat(), 1.0);
  EXPECT_EQ(with_altitude.fetchLon(), 2.0);
  EXPECT_EQ(with_altitude.fetchAltitude(), -3.0);
}

TEST(LatLonConstructor, TakesTriplesWithASignEach) {
  const LatLon all_negative(-45.0, -30.0, 0.0, 10.0, 15.0, 36.0);
  EXPECT_EQ(all_negative.fetchLat(), -45.5);
  EXPECT_EQ(all_negative.fetchLon(), 10.26);
  EXPECT_EQ(all_negative.fetchAltitude(), 0.0);
  const LatLon mixed(-45.0, 30.0, 0.0, -10.0, 0.0, 0.0, 7.0);
  EXPECT_EQ(mixed.fetchLat(), -44.5);
  EXPECT_EQ(mixed.fetchLon(), 350.0);
  EXPECT_EQ(mixed.fetchAltitude(), 7.0);
}

TEST(LatLonConstructor, TakesArraysOfThree) {
  const double lat[3] = {-45.0, -30.0, 0.0};
  const double lon[3] = {400.0, 30.0, 0.0};
  const LatLon point(lat, lon);
  EXPECT_EQ(point.fetchLat(), -45.5);
  EXPECT_EQ(point.fetchLon(), 40.5);
  EXPECT_EQ(point.fetchAltitude(), 0.0);
  double writable_lat[3] = {1.0, 0.0, 0.0};
  double writable_lon[3] = {2.0, 0.0, 0.0};
  EXPECT_EQ(LatLon(writable_lat, writable_lon, 9.0).fetchAltitude(), 9.0);
}

TEST(LatLonConstructor, NormalisesTriplesAndArrays) {
  EXPECT_EQ(LatLon(89.0, 59.0, 61.0, 0.0, 0.0, 0.0).fetchLat(), 90.0);
  EXPECT_EQ(LatLon(0.0, 0.0, 0.0, 0.0, 0.0, -1.8).fetchLon(), 359.9995);
}

TEST(LatLonSetters, ChangeOneAngleAndKeepTheAltitude) {
  LatLon p(10.0, 20.0, 30.0);
  p.setLat(7200);
  EXPECT_EQ(p.fetchLat(), 2.0);
  p.setLat(10800L);
  EXPECT_EQ(p.fetchLat(), 3.0);
  p.setLat(static_cast<short>(3600));
  EXPECT_EQ(p.fetchLat(), 1.0);
  p.setLat(7200U);
  EXPECT_EQ(p.fetchLat(), 2.0);
  p.setLat(1.5F);
  EXPECT_EQ(p.fetchLat(), 1.5);
  p.setLat(-91.0);
  EXPECT_EQ(p.fetchLat(), -90.0);
  p.setLat(-1.0, -30.0, 0.0);
  EXPECT_EQ(p.fetchLat(), -1.5);
  const double lat[3] = {4.0, 15.0, 0.0};
  p.setLat(lat);
  EXPECT_EQ(p.fetchLat(), 4.25);
  EXPECT_EQ(p.fetchLon(), 20.0);

  p.setLon(-3600);
  EXPECT_EQ(p.fetchLon(), 359.0);
  p.setLon(-7200L);
  EXPECT_EQ(p.fetchLon(), 358.0);
  p.setLon(360.0);
  EXPECT_EQ(p.fetchLon(), 0.0);
  p.setLon(-1.0, -30.0, 0.0);
  EXPECT_EQ(p.fetchLon(), 358.5);
  const double lon[3] = {359.0, 60.0, 0.0};
  p.setLon(lon);
  EXPECT_EQ(p.fetchLon(), 0.0);
  EXPECT_EQ(p.fetchLat(), 4.25);
  EXPECT_EQ(p.fetchAltitude(), 30.0);
}

TEST(LatLonSetters, StoreAnyAltitude) {
  LatLon p(0.0, 0.0);
  p.setAlt(-1e300);
  EXPECT_EQ(p.fetchAltitude(), -1e300);
  p.setAlt(kNaN);
  EXPECT_TRUE(std::isnan(p.fetchAltitude()));
}

TEST(LatLonGetters, TruncateArcSecondsTowardZero) {
  long as_long = 1;
  int as_int = 1;
  LatLon(-0.00015, 0.0).fetchLat(&as_long);
  EXPECT_EQ(as_long, 0);
  LatLon(12.5, 0.0).fetchLat(&as_long);
  EXPECT_EQ(as_long, 45000);
  LatLon(-12.5, 350.25).fetchLat(&as_int);
  EXPECT_EQ(as_int, -45000);
  LatLon(0.0, 350.25).fetchLon(&as_long);
  EXPECT_EQ(as_long, 1260900);
  LatLon(0.0, 0.00055).fetchLon(&as_int);
  EXPECT_EQ(as_int, 1);
}

TEST(LatLonGetters, GiveTheSmallestNumberForAnAngleThatIsNoFiniteNumber) {
  long arcsec = 0;
  LatLon(kNaN, kInf).fetchLat(&arcsec);
  EXPECT_EQ(arcsec, -2147483648L);
  arcsec = 0;
  LatLon(kNaN, kInf).fetchLon(&arcsec);
  EXPECT_EQ(arcsec, -2147483648L);
}

void expect_split(double lat, double deg, double min, double sec) {
  double d = 99.0;
  double m = 99.0;
  double s = 99.0;
  LatLon(lat, 0.0).fetchLat(&d, &m, &s);
  EXPECT_EQ(d, deg) << lat;
  EXPECT_EQ(m, min) << lat;
  EXPECT_EQ(s, sec) << lat;
}

TEST(LatLonGetters, SplitIntoDegreesMinutesSecondsWithTheSignInEach) {
  expect_split(45.5, 45.0, 30.0, 0.0);
  expect_split(-45.5, -45.0, -30.0, 0.0);
  expect_split(0.5, 0.0, 30.0, 0.0);
  expect_split(-0.5, 0.0, -30.0, 0.0);
  expect_split(-89.9990234375, -89.0, -59.0, -56.484375);
  double d = 0.0;
  double m = 0.0;
  double s = 0.0;
  LatLon(0.0, 350.2578125).fetchLon(&d, &m, &s);
  EXPECT_EQ(d, 350.0);
  EXPECT_EQ(m, 15.0);
  EXPECT_EQ(s, 28.125);
}

TEST(LatLonGetters, NeverGiveMinusZeroDegreesOrMinutes) {
  double d = 1.0;
  double m = 1.0;
  double s = 1.0;
  LatLon(-0.0009765625, 0.0).fetchLat(&d, &m, &s);
  EXPECT_FALSE(std::signbit(d));
  EXPECT_FALSE(std::signbit(m));
  EXPECT_EQ(s, -3.515625);
}

TEST(LatLonAssign, KeepsTheTargetsAltitude) {
  LatLon a(1.0, 2.0, 3.0);
  const LatLon b(4.0, 5.0, 6.0);
  LatLon& result = (a = b);
  EXPECT_EQ(&result, &a);
  EXPECT_EQ(a.fetchLat(), 4.0);
  EXPECT_EQ(a.fetchLon(), 5.0);
  EXPECT_EQ(a.fetchAltitude(), 3.0);
}

TEST(LatLonCopy, TakesTheAltitudeToo) {
  const LatLon a(1.0, 2.0, 3.0);
  const LatLon copy(a);
  EXPECT_EQ(copy.fetchAltitude(), 3.0);
}

TEST(LatLonAdd, NormalisesAndKeepsTheAltitude) {
  LatLon a(80.0, 350.0, 3.0);
  LatLon& result = (a += LatLon(20.0, 20.0, 6.0));
  EXPECT_EQ(&result, &a);
  EXPECT_EQ(a.fetchLat(), 90.0);
  EXPECT_EQ(a.fetchLon(), 10.0);
  EXPECT_EQ(a.fetchAltitude(), 3.0);
}

TEST(LatLonSubtract, NormalisesAndKeepsTheAltitude) {
  LatLon a(-80.0, 10.0, 3.0);
  LatLon& result = (a -= LatLon(20.0, 20.0, 6.0));
  EXPECT_EQ(&result, &a);
  EXPECT_EQ(a.fetchLat(), -90.0);
  EXPECT_EQ(a.fetchLon(), 350.0);
  EXPECT_EQ(a.fetchAltitude(), 3.0);
}

TEST(LatLonEquality, IsExactAndIgnoresTheAltitude) {
  const LatLon a(1.0, 2.0, 3.0);
  static_assert(std::is_same_v<decltype(a == a), int>);
  static_assert(std::is_same_v<decltype(a != a), int>);
  EXPECT_EQ((a == LatLon(1.0, 2.0, 99.0)), 1);
  EXPECT_EQ((a != LatLon(1.0, 2.0, 99.0)), 0);
  EXPECT_EQ((a == LatLon(1.0, std::nextafter(2.0, 3.0))), 0);
  EXPECT_EQ((a != LatLon(1.0, std::nextafter(2.0, 3.0))), 1);
  EXPECT_EQ((a == LatLon(std::nextafter(1.0, 2.0), 2.0)), 0);
  EXPECT_EQ((a != LatLon(std::nextafter(1.0, 2.0), 2.0)), 1);
}

TEST(LatLonEquality, HoldsForNoNaN) {
  const LatLon a(kNaN, 2.0);
  EXPECT_EQ((a == a), 0);
  EXPECT_EQ((a != a), 1);
}

TEST(LatLonDistanceSQ, IsFlatAndInSquareArcSeconds) {
  const LatLon origin(0.0, 0.0, 5.0);
  EXPECT_EQ(origin.distanceSQ(LatLon(0.0, 1.0)), 12960000.0);
  EXPECT_EQ(origin.distanceSQ(LatLon(3.0, 4.0, 1000.0)), 25.0 * 12960000.0);
  // No cosine of the latitude.
  EXPECT_EQ(LatLon(80.0, 0.0).distanceSQ(LatLon(80.0, 1.0)), 12960000.0);
}

TEST(LatLonDistanceSQ, TakesTheLongWayAcrossLongitudeZero) {
  EXPECT_EQ(LatLon(0.0, 359.0).distanceSQ(LatLon(0.0, 1.0)), 1661005440000.0);
}

TEST(LatLonWhichWay, KnowsAllNineDirections) {
  const LatLon p(10.0, 20.0);
  EXPECT_EQ(p.whichWay(LatLon(11.0, 20.0)), North);
  EXPECT_EQ(p.whichWay(LatLon(11.0, 21.0)), NorthEast);
  EXPECT_EQ(p.whichWay(LatLon(10.0, 21.0)), East);
  EXPECT_EQ(p.whichWay(LatLon(9.0, 21.0)), SouthEast);
  EXPECT_EQ(p.whichWay(LatLon(9.0, 20.0)), South);
  EXPECT_EQ(p.whichWay(LatLon(9.0, 19.0)), SouthWest);
  EXPECT_EQ(p.whichWay(LatLon(10.0, 19.0)), West);
  EXPECT_EQ(p.whichWay(LatLon(11.0, 19.0)), NorthWest);
  EXPECT_EQ(p.whichWay(p), SamePlace);
}

TEST(LatLonWhichWay, ComparesLongitudesAsStored) {
  EXPECT_EQ(LatLon(0.0, 359.0).whichWay(LatLon(0.0, 1.0)), West);
}

TEST(LatLonWhichWay, GivesSamePlaceForANaN) {
  EXPECT_EQ(LatLon(kNaN, 0.0).whichWay(LatLon(1.0, 1.0)), SamePlace);
  EXPECT_EQ(LatLon(0.0, 0.0).whichWay(LatLon(1.0, kNaN)), SamePlace);
}

TEST(LatLonText, IsOneLineWithoutAnEnd) {
  EXPECT_EQ(text_of(LatLon(45.5, 350.25)), "Lat: 45d 30m 0s, Lon: 350d 15m 0s Altitude: 0");
  EXPECT_EQ(text_of(LatLon(-0.5, 0.0, 12.25)), "Lat: 0d -30m 0s, Lon: 0d 0m 0s Altitude: 12.25");
}

TEST(LatLonText, FollowsTheStreamsFormat) {
  std::ostringstream os;
  os << std::fixed << std::setprecision(1) << LatLon(45.5, 350.25);
  EXPECT_EQ(os.str(), "Lat: 45.0d 30.0m 0.0s, Lon: 350.0d 15.0m 0.0s Altitude: 0.0");
}

TEST(LatLonText, ChainsOnTheStream) {
  std::ostringstream os;
  LatLon p(0.0, 0.0);
  os << p << "!";
  EXPECT_EQ(os.str(), "Lat: 0d 0m 0s, Lon: 0d 0m 0s Altitude: 0!");
}

}  // namespace
