// Signs against the compiler's 128-bit integers, at both ends of the range.

#include "exact/predicates.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
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

int in_circle(const std::int64_t (&p)[8], double scale) {
  const auto s = [scale](std::int64_t v) { return static_cast<double>(v) * scale; };
  return kzgis::exact::in_circle({s(p[0]), s(p[1])}, {s(p[2]), s(p[3])}, {s(p[4]), s(p[5])},
                                 {s(p[6]), s(p[7])});
}

// With coordinates below 2^27 the determinant fits 128 bits.  Every other time the four points are
// images of one in the symmetries of a circle, and the last is moved by a little or not at all.
TEST(InCircle, AgreesWithWholeNumberArithmetic) {
  constexpr std::uint64_t kSeed = 1934;
  std::mt19937_64 random(kSeed);
  int on = 0;
  for (int i = 0; i < 20000; ++i) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " case " << i);
    const std::int64_t size = i % 4 < 2 ? 20 : 1 << 26;
    const auto number = [&] {
      return static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(2 * size)) - size;
    };
    std::int64_t p[8];
    for (std::int64_t& v : p) v = number();
    if (i % 2 == 0) {
      const std::int64_t cx = number() / 2, cy = number() / 2, a = number() / 2, b = number() / 2;
      const std::int64_t images[8][2] = {{a, b}, {-a, b}, {a, -b}, {-a, -b},
                                         {b, a}, {-b, a}, {b, -a}, {-b, -a}};
      for (std::size_t k = 0; k < 4; ++k) {
        const auto& image = images[random() % 8];
        p[2 * k] = cx + image[0];
        p[2 * k + 1] = cy + image[1];
      }
      p[6] += static_cast<std::int64_t>(random() % 3) - 1;
    }
    const auto turn = [&](std::size_t a, std::size_t b, std::size_t c) {
      return Wide{p[2 * a] - p[2 * c]} * (p[2 * b + 1] - p[2 * c + 1]) -
             Wide{p[2 * a + 1] - p[2 * c + 1]} * (p[2 * b] - p[2 * c]);
    };
    if (turn(0, 1, 2) <= 0) continue;
    Wide determinant = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      const std::int64_t dx = p[2 * k] - p[6], dy = p[2 * k + 1] - p[7];
      determinant += (Wide{dx} * dx + Wide{dy} * dy) * turn((k + 1) % 3, (k + 2) % 3, 3);
    }
    on += determinant == 0;
    for (const double scale : {1.0, 0x1p-470, 0x1p+440}) {
      ASSERT_EQ(in_circle(p, scale), sign(determinant));
    }
  }
  EXPECT_GT(on, 300);
}

// The circle through (5, 0), (3, 4), (-3, 4) about the origin: differences from a point a hair
// beside (0, -5) fit no double.
TEST(InCircle, SeparatesTheDoublesOnBothSidesOfACircle) {
  const auto place = [](double x, double y) {
    return kzgis::exact::in_circle({5.0, 0.0}, {3.0, 4.0}, {-3.0, 4.0}, {x, y});
  };
  for (const double hair : {0x1p-60, 0x1p-400}) {
    EXPECT_EQ(place(0.0, -5.0), 0);
    EXPECT_EQ(place(hair, -5.0), -1);
    EXPECT_EQ(place(-4.0, std::nextafter(-3.0, 0.0)), 1);
    EXPECT_EQ(place(-4.0, std::nextafter(-3.0, -4.0)), -1);
  }
}

// Stretches with whole ends, whose crossing is a quotient of 64-bit numbers, far below the bits of
// doubles: multiplied out, the distance is less than one last place of the largest coordinate.
TEST(Crossing, IsWithinALastPlaceAndBetweenTheEnds) {
  constexpr std::uint64_t kSeed = 1979;
  std::mt19937_64 random(kSeed);
  int crossed = 0;
  for (int i = 0; i < 60000; ++i) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " case " << i);
    const std::int64_t size = i % 3 == 0 ? 30 : 1 << 24;
    const auto number = [&] {
      return static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(2 * size)) - size;
    };
    std::int64_t ax = number(), ay = number(), bx = number(), by = number();
    std::int64_t cx = number(), cy = number(), dx = number(), dy = number();
    if (i % 3 == 1) {  // almost parallel
      const std::int64_t few = 5;
      cx = ax + static_cast<std::int64_t>(random() % few) - 2;
      cy = ay + static_cast<std::int64_t>(random() % few) - 2;
      dx = bx + static_cast<std::int64_t>(random() % few) - 2;
      dy = by + static_cast<std::int64_t>(random() % few) - 2;
    }
    const auto turn = [](std::int64_t px, std::int64_t py, std::int64_t qx, std::int64_t qy,
                         std::int64_t rx, std::int64_t ry) {
      return Wide{px - rx} * (qy - ry) - Wide{py - ry} * (qx - rx);
    };
    const Wide c_side = turn(ax, ay, bx, by, cx, cy), d_side = turn(ax, ay, bx, by, dx, dy);
    const Wide a_side = turn(cx, cy, dx, dy, ax, ay), b_side = turn(cx, cy, dx, dy, bx, by);
    if (sign(c_side) * sign(d_side) >= 0 || sign(a_side) * sign(b_side) >= 0) continue;
    ++crossed;
    for (const double scale : {1.0, 0x1p-470, 0x1p+440}) {
      const auto s = [scale](std::int64_t v) { return static_cast<double>(v) * scale; };
      const kzgis::exact::Point p = kzgis::exact::crossing(Line{{s(ax), s(ay)}, {s(bx), s(by)}},
                                                           Line{{s(cx), s(cy)}, {s(dx), s(dy)}});
      // x = ax + (bx - ax) a_side / (a_side - b_side): held against it in units of 2^-52 of `unit`,
      // a power of two above all coordinates.
      const auto check = [&](double got, std::int64_t start, std::int64_t end, std::int64_t other,
                             std::int64_t last) {
        const double unscaled = got / scale;
        ASSERT_LE(unscaled,
                  static_cast<double>(std::min(std::max(start, end), std::max(other, last))));
        ASSERT_GE(unscaled,
                  static_cast<double>(std::max(std::min(start, end), std::min(other, last))));
        const auto whole = static_cast<std::int64_t>(std::floor(unscaled));
        const double fraction = unscaled - std::floor(unscaled);
        // (whole + fraction - start) * w - (end - start) * a_side, in pieces that fit.
        const Wide w = a_side - b_side;
        const Wide rough = Wide{whole - start} * w - Wide{end - start} * a_side;
        const double error = (static_cast<double>(rough) + fraction * static_cast<double>(w)) /
                             static_cast<double>(w);
        const std::int64_t largest =
            std::max({std::abs(ax), std::abs(bx), std::abs(cx), std::abs(dx), std::abs(ay),
                      std::abs(by), std::abs(cy), std::abs(dy)});
        const double last_place = std::ldexp(1.0, std::ilogb(static_cast<double>(largest)) - 52);
        ASSERT_LE(std::fabs(error), last_place * 1.01);
      };
      check(p.x, ax, bx, cx, dx);
      check(p.y, ay, by, cy, dy);
    }
  }
  EXPECT_GT(crossed, 5000);
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
