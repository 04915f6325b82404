// Sine, logarithm and the like against those of the host in long double.

#include "chart/elementary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "chart/support.h"

using namespace kzgis::chart;
using chart_test::kInf;
using chart_test::Random;

namespace {

constexpr int kRounds = 200000;
// That of the standard library is a rounded double in libc++ 14.
constexpr long double kPiLong = 3.141592653589793238462643383279502884L;

/// The distance from the right value in units of its last place.
double units(double value, long double right) {
  const double nearest = static_cast<double>(right);
  const double place = std::nextafter(std::fabs(nearest), kInf) - std::fabs(nearest);
  return static_cast<double>(std::fabs(static_cast<long double>(value) - right) /
                             static_cast<long double>(place));
}

struct Worst {
  double units = 0.0;
  double at = 0.0;

  void take(double value, long double right, double where) {
    const double u = ::units(value, right);
    if (!(u <= units)) {
      units = u;
      at = where;
    }
  }
};

#define EXPECT_WITHIN(worst, most) EXPECT_LE((worst).units, most) << "at " << (worst).at

/// From a thousandth of a millionth up to `most`, of either sign, every size as often.
double any_size(Random& random, double most) {
  const double size = most * std::pow(10.0, random.between(-12.0, 0.0));
  return random.below(2) == 0 ? size : -size;
}

TEST(Elementary, SinesOfDegreesAreRightToTheEndsOfTheQuarters) {
  Random random(1);
  Worst sine;
  Worst cosine;
  for (int i = 0; i < kRounds; ++i) {
    const double quarter = 90.0 * (static_cast<int>(random.below(9)) - 4);
    const double deg = quarter + any_size(random, 90.0);
    const SinesOf<double> s = sines_of_degrees(deg);
    const long double rest = (static_cast<long double>(deg) - quarter) * kPiLong / 180.0L;
    const int turn = static_cast<int>(quarter / 90.0) & 3;
    const long double values[] = {std::sin(rest), std::cos(rest), -std::sin(rest), -std::cos(rest)};
    sine.take(s.sin, values[turn], deg);
    cosine.take(s.cos, values[(turn + 1) & 3], deg);
  }
  EXPECT_WITHIN(sine, 2.0);
  EXPECT_WITHIN(cosine, 2.0);
}

TEST(Elementary, MultiplesOf90DegreesAreTheirOwnSines) {
  const double sines[] = {0, 1, 0, -1};
  for (int quarter = -4; quarter <= 4; ++quarter) {
    const SinesOf<double> s = sines_of_degrees(90.0 * quarter);
    EXPECT_EQ(s.sin, sines[quarter & 3]) << quarter;
    EXPECT_EQ(s.cos, sines[(quarter + 1) & 3]) << quarter;
    EXPECT_FALSE(std::signbit(s.sin) && s.sin == 0.0) << quarter;
    EXPECT_FALSE(std::signbit(s.cos) && s.cos == 0.0) << quarter;
  }
}

TEST(Elementary, SinesWithinAQuarter) {
  Random random(2);
  Worst sine;
  Worst cosine;
  for (int i = 0; i < kRounds; ++i) {
    const double deg = any_size(random, 90.0);
    sine.take(sine_to_quarter(deg), std::sin(deg * kPiLong / 180.0L), deg);
    const double near_pole = 90.0 - std::fabs(deg);
    cosine.take(cosine_to_quarter(near_pole),
                std::sin((90.0L - static_cast<long double>(near_pole)) * kPiLong / 180.0L),
                near_pole);
  }
  EXPECT_WITHIN(sine, 2.0);
  EXPECT_WITHIN(cosine, 2.0);
}

TEST(Elementary, SinesOfRadiansLoseNothingButTheEndsOfTheirQuarters) {
  Random random(3);
  double worst = 0.0;
  Worst small;
  for (int i = 0; i < kRounds; ++i) {
    const double angle = random.between(-4.0, 4.0);
    const SinesOf<double> s = sines_of(angle);
    worst = std::max(worst, std::fabs(static_cast<double>(s.sin - std::sin(1.0L * angle))));
    worst = std::max(worst, std::fabs(static_cast<double>(s.cos - std::cos(1.0L * angle))));
    const double little = any_size(random, 0.7);
    small.take(sines_of(little).sin, std::sin(1.0L * little), little);
  }
  EXPECT_LE(worst, 2e-16);
  EXPECT_WITHIN(small, 2.0);
}

TEST(Elementary, DirectionsInEveryQuadrant) {
  Random random(4);
  Worst worst;
  for (int i = 0; i < kRounds; ++i) {
    const double x = any_size(random, 1.0);
    const double y = any_size(random, 1.0);
    worst.take(direction_of(y, x), std::atan2(1.0L * y, 1.0L * x), y / x);
  }
  EXPECT_WITHIN(worst, 2.5);
  EXPECT_EQ(direction_of(0.0, 0.0), 0.0);
  EXPECT_EQ(direction_of(0.0, -1.0), std::numbers::pi);
  EXPECT_EQ(direction_of(1.0, 0.0), std::numbers::pi / 2);
  EXPECT_EQ(direction_of(-1.0, 0.0), -std::numbers::pi / 2);
  EXPECT_EQ(direction_of(1.0, 1.0), std::numbers::pi / 4);
}

TEST(Elementary, GrowthKeepsItsDigitsNear0) {
  Random random(5);
  Worst worst;
  for (int i = 0; i < kRounds; ++i) {
    const double x = any_size(random, 40.0);
    worst.take(growth(x), std::expm1(1.0L * x), x);
  }
  EXPECT_WITHIN(worst, 2.5);
  EXPECT_EQ(growth(-1e4), -1.0);
  EXPECT_EQ(growth(-kInf), -1.0);
  EXPECT_FALSE(std::isfinite(growth(1e4)));
  EXPECT_FALSE(std::isfinite(growth(kInf)));
}

TEST(Elementary, LogarithmsOfRatiosKeepTheirDigitsNear1) {
  Random random(6);
  Worst near;
  Worst far;
  for (int i = 0; i < kRounds; ++i) {
    const double apart = std::clamp(any_size(random, 1.0), -0.5, 1.0);
    near.take(logarithm_of_ratio(1.0 + apart, 1.0, apart), std::log1p(1.0L * apart), apart);
    const double n = std::fabs(any_size(random, 100.0));
    const double d = std::fabs(any_size(random, 100.0));
    if (std::fabs(n - d) < 0.2 * d) continue;
    far.take(logarithm_of_ratio(n, d, n - d), std::log(1.0L * n / d), n / d);
  }
  EXPECT_WITHIN(near, 3.0);
  EXPECT_WITHIN(far, 3.0);
}

// ln tan(lat/2 + 45 degrees) by the angle from the nearer end, which long double has exactly.
TEST(Elementary, IsometricLatitudesFromTheEquatorToThePoles) {
  Random random(7);
  Worst worst;
  Worst back;
  for (int i = 0; i < kRounds; ++i) {
    const double small = std::fabs(any_size(random, 45.0));
    const double from_pole = 90.0 - std::fabs(any_size(random, 45.0));
    const double lat = random.below(2) == 0 ? small : from_pole;
    const long double half = (90.0L - lat) * kPiLong / 360.0L;
    const long double rad = lat * kPiLong / 180.0L;
    const long double right = lat < 45.0 ? std::asinh(std::tan(rad)) : -std::log(std::tan(half));
    const double sign = random.below(2) == 0 ? 1.0 : -1.0;
    worst.take(sign * isometric(sines_of_degrees(sign * lat)), right, lat);
    const auto psi = static_cast<double>(right);
    back.take(sign * latitude_of(sign * psi), std::atan(std::sinh(1.0L * psi)), psi);
  }
  EXPECT_WITHIN(worst, 5.0);
  EXPECT_WITHIN(back, 3.0);
  EXPECT_EQ(isometric(sines_of_degrees(90.0)), kInf);
  EXPECT_EQ(isometric(sines_of_degrees(-90.0)), -kInf);
  EXPECT_EQ(latitude_of(1e300), std::numbers::pi / 2);
}

TEST(Elementary, DistancesOfAnySize) {
  for (const double size : {1e-320, 1e-200, 1e-90, 1.0, 1e90, 1e200, 1e307}) {
    EXPECT_NEAR(distance(3.0 * size, 4.0 * size) / size, 5.0, size < 1e-300 ? 0.1 : 1e-15) << size;
    EXPECT_EQ(distance(0.0, size), size);
  }
  EXPECT_EQ(distance(0.0, 0.0), 0.0);
}

}  // namespace
