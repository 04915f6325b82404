// Whole numbers against the compiler's 128-bit integers and against identities.

#include "exact/whole_number.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

namespace {

using kzgis::exact::last_bit;
using kzgis::exact::WholeNumber;

__extension__ using Wide = __int128;

int sign(Wide value) { return value > 0 ? 1 : value < 0 ? -1 : 0; }

WholeNumber whole(std::int64_t value) { return {static_cast<double>(value), 0}; }

TEST(WholeNumber, OfZeroHasNoSign) {
  EXPECT_EQ(WholeNumber().sign(), 0);
  EXPECT_EQ(WholeNumber(0.0, -1000).sign(), 0);
  EXPECT_EQ(WholeNumber(-0.0, 0).sign(), 0);
  EXPECT_EQ((whole(7) - whole(7)).sign(), 0);
  EXPECT_EQ((whole(0) * whole(-7)).sign(), 0);
  EXPECT_EQ((whole(0) + whole(-7)).sign(), -1);
}

TEST(WholeNumber, CalculatesAsIntegersDo) {
  constexpr std::uint64_t kSeed = 4301;
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 20000; ++i) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " case " << i);
    // Every length up to the 53 bits of a double.
    const auto number = [&] {
      const auto bits = static_cast<int>(random() % 53);
      const auto value = static_cast<std::int64_t>(random() >> (63 - bits));
      return random() % 2 == 0 ? value : -value;
    };
    const std::int64_t a = number(), b = number(), c = number(), d = number();
    ASSERT_EQ((whole(a) + whole(b)).sign(), sign(Wide{a} + b));
    ASSERT_EQ((whole(a) - whole(b)).sign(), sign(Wide{a} - b));
    ASSERT_EQ((whole(a) * whole(b) - whole(c) * whole(d)).sign(), sign(Wide{a} * b - Wide{c} * d));
    // (a + b) (a - b) = a a - b b, and a bit more or less shows.
    const WholeNumber left = (whole(a) + whole(b)) * (whole(a) - whole(b));
    const WholeNumber right = whole(a) * whole(a) - whole(b) * whole(b);
    ASSERT_EQ((left - right).sign(), 0);
    ASSERT_EQ((left + whole(1) - right).sign(), 1);
    ASSERT_EQ((left - whole(1) - right).sign(), -1);
  }
}

TEST(WholeNumber, CarriesAndBorrowsThroughEveryDigit) {
  const WholeNumber one(1.0, 0);
  for (int bits = 1; bits < 2000; bits += 37) {
    SCOPED_TRACE(bits);
    WholeNumber power = one;  // 2^bits
    for (int i = 0; i < bits; ++i) power = power + power;
    const WholeNumber below = power - one;
    ASSERT_EQ((below + one - power).sign(), 0);
    ASSERT_EQ((below - power).sign(), -1);
    // (2^b - 1)^2 = 2^2b - 2^(b+1) + 1
    ASSERT_EQ((below * below - (power * power - power - power + one)).sign(), 0);
  }
}

TEST(WholeNumber, TakesEveryBitOfADouble) {
  constexpr std::uint64_t kSeed = 4302;
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 5000; ++i) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " case " << i);
    const double value = std::ldexp(static_cast<double>(random() >> 11) + 1.0,
                                    static_cast<int>(random() % 900) - 480);
    const double next = std::nextafter(value, INFINITY);
    const int exponent =
        std::min(last_bit(value), last_bit(next)) - static_cast<int>(random() % 70);
    ASSERT_EQ((WholeNumber(next, exponent) - WholeNumber(value, exponent)).sign(), 1);
    ASSERT_EQ((WholeNumber(-value, exponent) + WholeNumber(value, exponent)).sign(), 0);
    // next - value is one ulp, a power of two that doubles hold.
    const WholeNumber ulp(next - value, exponent);
    ASSERT_EQ((WholeNumber(value, exponent) + ulp - WholeNumber(next, exponent)).sign(), 0);
  }
}

}  // namespace
