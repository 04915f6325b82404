#include "tools/dem/tint.h"

#include <gtest/gtest.h>

namespace {

using kzgis::tools::Colour;
using kzgis::tools::lit;
using kzgis::tools::tint;

void expect_near(const Colour& a, const Colour& b) {
  EXPECT_NEAR(a.red, b.red, 1e-12);
  EXPECT_NEAR(a.green, b.green, 1e-12);
  EXPECT_NEAR(a.blue, b.blue, 1e-12);
}

TEST(Tint, RunsFromGreenToWhiteAndStaysThere) {
  expect_near(tint(0.0), {0.545, 0.690, 0.541});
  expect_near(tint(-1.0), tint(0.0));
  expect_near(tint(1.0), {0.953, 0.945, 0.937});
  expect_near(tint(2.0), tint(1.0));
}

TEST(Tint, ChangesWithoutSteps) {
  for (double share = 0.0; share < 1.0; share += 0.001) {
    const Colour a = tint(share);
    const Colour b = tint(share + 0.001);
    EXPECT_LT(std::abs(a.red - b.red) + std::abs(a.green - b.green) + std::abs(a.blue - b.blue),
              0.01)
        << share;
  }
}

TEST(Lit, DarkensInShadowAndPalesInTheSun) {
  const Colour ground{0.6, 0.5, 0.4};
  expect_near(lit(ground, 0.0), {0.168, 0.14, 0.112});
  expect_near(lit(ground, 0.75), ground);
  const Colour bright = lit(ground, 1.0);
  EXPECT_GT(bright.blue, ground.blue);
  EXPECT_LE(bright.red, 1.0);
}

}  // namespace
