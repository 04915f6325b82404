// The longitude rule: whatever adding +-360 again and again gives, to the last bit, at
// once for every double.  Plain additions are the yardstick wherever they are affordable.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "kzgis/latlon.h"

namespace {

constexpr unsigned kSeed = 20240611;

double wrapped(double lon) { return LatLon(0.0, lon).fetchLon(); }

/// The rule as it is stated.
double added(double lon) {
  while (lon < 0.0) lon += 360.0;
  while (lon >= 360.0) lon += -360.0;
  return lon;
}

::testing::AssertionResult same_bits(double a, double b) {
  if (std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b)) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << std::hexfloat << a << " is not " << b;
}

TEST(LongitudeWrap, WrapsWholeTurns) {
  EXPECT_EQ(wrapped(720.0), 0.0);
  EXPECT_EQ(wrapped(360.0), 0.0);
  EXPECT_EQ(wrapped(0.0), 0.0);
  EXPECT_EQ(wrapped(-720.5), 359.5);
}

TEST(LongitudeWrap, ReachesPlusZeroFromBelowAndKeepsMinusZero) {
  EXPECT_TRUE(same_bits(wrapped(-360.0), 0.0));
  EXPECT_TRUE(same_bits(wrapped(-720.0), 0.0));
  EXPECT_TRUE(same_bits(wrapped(-0.0), -0.0));
}

TEST(LongitudeWrap, RoundsATinyNegativeValueUpToATurnAndThenToZero) {
  EXPECT_TRUE(same_bits(wrapped(-1e-20), 0.0));
  EXPECT_TRUE(same_bits(wrapped(-std::numeric_limits<double>::denorm_min()), 0.0));
  EXPECT_TRUE(same_bits(wrapped(-2.8421709430404007e-14), 0.0));
  EXPECT_TRUE(same_bits(wrapped(-5.684341886080802e-14), 359.99999999999994));
}

TEST(LongitudeWrap, KeepsWhatIsInRange) {
  const double last = std::nextafter(360.0, 0.0);
  EXPECT_TRUE(same_bits(wrapped(last), last));
  EXPECT_TRUE(same_bits(wrapped(5e-324), 5e-324));
}

TEST(LongitudeWrap, EqualsTheAdditionsAtEveryScaleTheyCanReach) {
  std::mt19937_64 random(kSeed);
  std::uniform_real_distribution<double> exponent(-60.0, 26.0);
  std::uniform_real_distribution<double> mantissa(-2.0, 2.0);
  for (int i = 0; i < 3000; ++i) {
    const double lon = mantissa(random) * std::exp2(exponent(random));
    ASSERT_TRUE(same_bits(wrapped(lon), added(lon))) << "seed " << kSeed << " lon " << lon;
  }
  for (int turns = -50; turns <= 50; ++turns) {
    double lon = turns * 360.0;
    for (int i = 0; i < 8; ++i) lon = std::nextafter(lon, -1e9);
    for (int i = 0; i < 16; ++i, lon = std::nextafter(lon, 1e9)) {
      ASSERT_TRUE(same_bits(wrapped(lon), added(lon))) << std::hexfloat << lon;
    }
  }
}

// The additions cannot be afforded for huge values, but every one of them must leave the
// result as it is.
TEST(LongitudeWrap, DoesNotChangeWhenOneAdditionIsMade) {
  std::mt19937_64 random(kSeed);
  for (int binade = 40; binade < 62; ++binade) {
    std::uniform_real_distribution<double> across(std::exp2(binade), std::exp2(binade + 1));
    for (int i = 0; i < 200; ++i) {
      const double start = across(random);
      double lon = start;
      for (int step = 0; step < 5; ++step) {
        lon += -360.0;
        ASSERT_TRUE(same_bits(wrapped(lon), wrapped(start)))
            << "seed " << kSeed << std::hexfloat << " start " << start;
        ASSERT_TRUE(same_bits(wrapped(-lon), wrapped(-start)))
            << "seed " << kSeed << std::hexfloat << " start " << -start;
      }
    }
  }
}

// Where neighbouring doubles get closer, the rounding of a step changes.
TEST(LongitudeWrap, DoesNotChangeAcrossAPowerOfTwo) {
  for (int power = 50; power <= 62; ++power) {
    const double boundary = std::exp2(power);
    for (int above = 0; above < 60; ++above) {
      double start = boundary;
      for (int i = 0; i < above && power < 62; ++i) start = std::nextafter(start, 1e300);
      double lon = start;
      for (int step = 0; step < 300; ++step) lon += -360.0;
      ASSERT_TRUE(same_bits(wrapped(lon), wrapped(start))) << std::hexfloat << start;
      ASSERT_TRUE(same_bits(wrapped(-lon), wrapped(-start))) << std::hexfloat << start;
    }
  }
}

// A remainder would not do: from 2^56 on every addition is rounded.  The values were
// computed in Python, every change of step length found by exact integers.
TEST(LongitudeWrap, DiffersFromARemainderWhereAdditionsAreRounded) {
  EXPECT_EQ(wrapped(0x1p56), 256.0);
  EXPECT_EQ(wrapped(0x1.0000000000001p+56), 272.0);
  EXPECT_EQ(wrapped(0x1.00000000001p+56), 120.0);
  EXPECT_EQ(std::fmod(0x1.00000000001p+56, 360.0), 32.0);
  EXPECT_EQ(wrapped(1e17), 216.0);
  EXPECT_EQ(std::fmod(1e17, 360.0), 280.0);
  EXPECT_EQ(wrapped(0x1p57), 320.0);
  EXPECT_EQ(wrapped(0x1.0000000000001p+58), 152.0);
  EXPECT_EQ(wrapped(0x1p59), 352.0);
  EXPECT_EQ(wrapped(1e18), 88.0);
  EXPECT_EQ(wrapped(0x1p60), 88.0);
  EXPECT_EQ(wrapped(0x1p61), 352.0);
  EXPECT_EQ(wrapped(0x1p62), 352.0);
  EXPECT_EQ(wrapped(-1e17), 360.0 - 216.0);
  EXPECT_EQ(wrapped(-0x1p62), 360.0 - 352.0);
}

TEST(LongitudeWrap, AnswersAtOnceForEveryFiniteValue) {
  for (const double lon :
       {1e17, -1e17, 1e18, 0x1p62, 0x1.8p62, 1e30, -1e30, 1e300, -1e300,
        std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest()}) {
    EXPECT_GE(wrapped(lon), 0.0) << lon;
    EXPECT_LT(wrapped(lon), 360.0) << lon;
  }
}

TEST(LongitudeWrap, LeavesWhatIsNotFinite) {
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(wrapped(inf), inf);
  EXPECT_EQ(wrapped(-inf), -inf);
  EXPECT_TRUE(std::isnan(wrapped(std::numeric_limits<double>::quiet_NaN())));
}

TEST(LatitudeClamp, ClampsInfinitiesAndKeepsNaN) {
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(LatLon(inf, 0.0).fetchLat(), 90.0);
  EXPECT_EQ(LatLon(-inf, 0.0).fetchLat(), -90.0);
  EXPECT_TRUE(std::isnan(LatLon(std::numeric_limits<double>::quiet_NaN(), 0.0).fetchLat()));
}

}  // namespace
