
#include "kzgis/exact.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

using kzgis::exact::in_range;
using kzgis::exact::orientation;
using kzgis::exact::Product;

__extension__ using Wide = __int128;

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

TEST(SignOfSum, CountsEveryBit) {
  using kzgis::exact::sign_of_sum;
  EXPECT_EQ(sign_of_sum({}), 0);
  EXPECT_EQ(sign_of_sum(std::vector<Product>{{0.0, 5.0}}), 0);
  EXPECT_EQ(sign_of_sum(std::vector<Product>{{-3.0, 5.0}, {2.0, 7.0}}), -1);
  EXPECT_EQ(sign_of_sum(std::vector<Product>{{1e150, 1e150}, {1e-140, -1e-140}}), 1);
  EXPECT_EQ(sign_of_sum(std::vector<Product>{{1e90, 1e90}, {1e-99, -1e-99}, {-1e90, 1e90}}), -1);
  // (1 + 2^-52)^2 is 1 + 2^-51 + 2^-104.
  const double one = 1.0 + 0x1p-52;
  EXPECT_EQ(sign_of_sum(std::vector<Product>{{one, one}, {-1.0, 1.0 + 0x1p-51}}), 1);
  EXPECT_EQ(
      sign_of_sum(std::vector<Product>{{one, one}, {-1.0, 1.0 + 0x1p-51}, {-0x1p-52, 0x1p-52}}), 0);
}

TEST(SignOfSum, OfManyProducts) {
  std::vector<Product> products(100000, {0.1, 0.1});
  products.push_back({-0.1, 10000.0});
  EXPECT_EQ(kzgis::exact::sign_of_sum(products), 1);  // 0.1 is a little more than a tenth
  products.push_back({-0.1, 0.1});
  EXPECT_EQ(kzgis::exact::sign_of_sum(products), -1);
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
