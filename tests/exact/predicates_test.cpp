// Signs against the compiler's 128-bit integers, at both ends of the range.

#include "exact/predicates.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>

namespace {

using kzgis::exact::in_range;
using kzgis::exact::Line;

__extension__ using Wide = __int128;

int orientation(double ax, double ay, double bx, double by, double cx, double cy) {
  return kzgis::exact::orientation({ax, ay}, {bx, by}, {cx, cy});
}

int sign(Wide value) { return value > 0 ? 1 : value < 0 ? -1 : 0; }

TEST(Orientation, LeftRightAndStraight) {
  EXPECT_EQ(orientation(0.0, 0.0, 1.0, 0.0, 0.5, 1.0), 1);
  EXPECT_EQ(orientation(0.0, 0.0, 1.0, 0.0, 0.5, -1.0), -1);
  EXPECT_EQ(orientation(0.0, 0.0, 1.0, 0.0, 7.0, 0.0), 0);
  EXPECT_EQ(orientation(3.0, 3.0, 3.0, 3.0, 7.0, 1.0), 0);
}

// From Kettner, Mehlhorn, Pion, Schirra, Yap, "Classroom examples of robustness problems in
// geometric computations" (2008): the naive determinant is wrong about most of these.
TEST(Orientation, SeparatesNeighbouringDoublesAlongADiagonal) {
  const double ulp = 0x1p-53;
  for (int i = 0; i < 256; ++i) {
    for (int j = 0; j < 256; ++j) {
      SCOPED_TRACE(testing::Message() << i << ", " << j);
      const double x = 0.5 + i * ulp;
      const double y = 0.5 + j * ulp;
      // (12, 12), (24, 24) and the point: left of the line y = x where y > x.
      ASSERT_EQ(orientation(x, y, 12.0, 12.0, 24.0, 24.0), j > i ? 1 : j < i ? -1 : 0);
    }
  }
}

TEST(Orientation, AgreesWithWholeNumberArithmetic) {
  constexpr std::uint64_t kSeed = 20261120;
  std::mt19937_64 random(kSeed);
  // Up to 2^53, so that products need 107 bits; two points in three lie near a line.
  std::uniform_int_distribution<std::int64_t> large(-(1LL << 52), 1LL << 52);
  std::uniform_int_distribution<std::int64_t> small(-2, 2);
  int straight = 0;
  for (int i = 0; i < 20000; ++i) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " case " << i);
    const std::int64_t ax = large(random);
    const std::int64_t ay = large(random);
    const std::int64_t bx = large(random) / 4;
    const std::int64_t by = large(random) / 4;
    const bool near = i % 3 != 0;
    const std::int64_t cx = near ? (ax + bx) / 2 + small(random) : large(random);
    const std::int64_t cy = near ? (ay + by) / 2 + small(random) : large(random);
    const int expected = sign(Wide{ax - cx} * (by - cy) - Wide{ay - cy} * (bx - cx));
    straight += expected == 0;
    const auto d = [](std::int64_t v) { return static_cast<double>(v); };
    ASSERT_EQ(orientation(d(ax), d(ay), d(bx), d(by), d(cx), d(cy)), expected);
    // The same at the ends of the range.
    for (const int scale : {-470, 440}) {
      const auto s = [&](std::int64_t v) { return std::ldexp(d(v), scale); };
      ASSERT_EQ(orientation(s(ax), s(ay), s(bx), s(by), s(cx), s(cy)), expected);
    }
  }
  EXPECT_GT(straight, 100);
}

TEST(Orientation, KeepsItsLaws) {
  constexpr std::uint64_t kSeed = 31;
  std::mt19937_64 random(kSeed);
  std::uniform_real_distribution<double> degree(-180.0, 180.0);
  for (int i = 0; i < 2000; ++i) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " case " << i);
    const double ax = degree(random), ay = degree(random);
    const double bx = degree(random), by = degree(random);
    const double t = degree(random) / 180.0;
    const double cx = ax + t * (bx - ax);  // on the line, but for rounding
    const double cy = ay + t * (by - ay);
    const int turn = orientation(ax, ay, bx, by, cx, cy);
    ASSERT_EQ(orientation(bx, by, cx, cy, ax, ay), turn);
    ASSERT_EQ(orientation(cx, cy, ax, ay, bx, by), turn);
    ASSERT_EQ(orientation(bx, by, ax, ay, cx, cy), -turn);
  }
}

// Lines through whole points and x from all over, and right at the crossing: with whole
// coordinates below 2^20 the sign of the polynomial fits 128 bits.
TEST(CompareWithCrossing, AgreesWithWholeNumberArithmetic) {
  constexpr std::uint64_t kSeed = 1976;
  std::mt19937_64 random(kSeed);
  int equal = 0;
  for (int i = 0; i < 8000; ++i) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " case " << i);
    const std::int64_t size = i % 2 == 0 ? 8 : 1 << 20;
    const auto number = [&] {
      return static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(2 * size)) - size;
    };
    const std::int64_t ax = number(), ay = number(), bx = number(), by = number();
    const std::int64_t cx = number(), cy = number(), dx = number(), dy = number();
    const std::int64_t whole = (bx - ax) * (dy - cy) - (by - ay) * (dx - cx);
    if (whole == 0) continue;
    const std::int64_t along = (cx - ax) * (dy - cy) - (cy - ay) * (dx - cx);
    // Every other time the whole number next to the crossing.
    const auto near = static_cast<std::int64_t>(
        static_cast<double>(ax) +
        static_cast<double>(along) / static_cast<double>(whole) * static_cast<double>(bx - ax));
    const std::int64_t x = random() % 2 == 0 || std::abs(near) > size ? number() : near;
    const int expected = sign(Wide{x - ax} * whole - Wide{along} * (bx - ax)) * sign(whole);
    equal += expected == 0;
    for (const int scale : {0, -470, 440}) {
      const auto s = [&](std::int64_t v) { return std::ldexp(static_cast<double>(v), scale); };
      const Line one{{s(ax), s(ay)}, {s(bx), s(by)}};
      const Line other{{s(cx), s(cy)}, {s(dx), s(dy)}};
      ASSERT_EQ(kzgis::exact::compare_with_crossing(s(x), one, other), expected);
      ASSERT_EQ(kzgis::exact::compare_with_crossing(s(x), other, one), expected);
    }
  }
  EXPECT_GT(equal, 50);
}

// y = t x and y = 1 cross at 1 / t, which no double is for most t.
TEST(CompareWithCrossing, SeparatesTheDoublesOnBothSidesOfAQuotient) {
  for (const double t : {3.0, 7.0, 10.0, 49.0, 1e5 + 1.0}) {
    SCOPED_TRACE(t);
    const Line slope{{0.0, 0.0}, {1.0, t}};
    const Line level{{-1.0, 1.0}, {1.0, 1.0}};
    const double x = 1.0 / t;
    const double error = std::fma(x, t, -1.0);  // x t - 1, exactly
    ASSERT_NE(error, 0.0);
    EXPECT_EQ(kzgis::exact::compare_with_crossing(x, slope, level), error > 0.0 ? 1 : -1);
    const double other = std::nextafter(x, error > 0.0 ? 0.0 : 1.0);
    EXPECT_EQ(kzgis::exact::compare_with_crossing(other, slope, level), error > 0.0 ? -1 : 1);
  }
  const Line half{{0.0, 0.0}, {1.0, 2.0}};
  EXPECT_EQ(kzgis::exact::compare_with_crossing(0.5, half, {{-1.0, 1.0}, {1.0, 1.0}}), 0);
}

TEST(InRange, IsZeroOrFromTwoToTheMinus480ToTwoToThe500) {
  EXPECT_TRUE(in_range(0.0));
  EXPECT_TRUE(in_range(-0.0));
  EXPECT_TRUE(in_range(0x1p-480));
  EXPECT_TRUE(in_range(-0x1p+500));
  EXPECT_FALSE(in_range(0x1p-481));
  EXPECT_FALSE(in_range(0x1.8p+500));
  EXPECT_FALSE(in_range(INFINITY));
  EXPECT_FALSE(in_range(NAN));
}

}  // namespace
