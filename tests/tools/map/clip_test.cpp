#include "tools/map/clip.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace kzgis::map {
namespace {

constexpr unsigned kSeed = 20240607;
constexpr Window kWindow{-10, 10, -5, 5};

double signed_area(const GeoLine& ring) {
  double sum = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const Geo& a = ring[i];
    const Geo& b = ring[(i + 1) % ring.size()];
    sum += a.lon * b.lat - b.lon * a.lat;
  }
  return 0.5 * sum;
}

// Jagged and never self-crossing: a star round (0, 0).
GeoLine random_star(std::mt19937& random) {
  std::uniform_real_distribution<double> radius(5.0, 170.0);
  GeoLine ring;
  const int corners = std::uniform_int_distribution<int>(3, 60)(random);
  for (int i = 0; i < corners; ++i) {
    const double angle = 2.0 * std::numbers::pi * i / corners;
    const double r = radius(random);
    ring.push_back({r * std::cos(angle), 0.5 * r * std::sin(angle)});
  }
  return ring;
}

TEST(ClipRing, KeepsARingInside) {
  const GeoLine ring{{0, 0}, {0, 4}, {4, 0}};
  const GeoLine clipped = clip_ring(ring, kWindow);
  ASSERT_EQ(clipped.size(), 3u);
  EXPECT_EQ(signed_area(clipped), signed_area(ring));
}

TEST(ClipRing, LeavesNothingOfARingOutside) {
  EXPECT_TRUE(clip_ring({{20, 0}, {20, 4}, {24, 0}}, kWindow).empty());
  EXPECT_TRUE(clip_ring({}, kWindow).empty());
}

TEST(ClipRing, GivesTheWindowForARingAroundIt) {
  EXPECT_EQ(signed_area(clip_ring({{-50, -50}, {50, -50}, {50, 50}, {-50, 50}}, kWindow)), 200.0);
}

TEST(ClipRing, ConnectsPiecesAlongTheBorderOnly) {
  // A U whose arms reach into the window from the north.
  const GeoLine arms{{-8, 3}, {-6, 3}, {-6, 8}, {6, 8}, {6, 3}, {8, 3}, {8, 9}, {-8, 9}};
  const GeoLine clipped = clip_ring(arms, kWindow);
  EXPECT_EQ(std::fabs(signed_area(clipped)), 8.0);
  for (std::size_t i = 0; i < clipped.size(); ++i) {
    const Geo& a = clipped[i];
    const Geo& b = clipped[(i + 1) % clipped.size()];
    if (std::fabs(a.lon - b.lon) > 2.0) {
      EXPECT_EQ(a.lat, 5.0);
      EXPECT_EQ(b.lat, 5.0);
    }
  }
}

TEST(ClipRing, PiecesInAllWindowsAddUpToTheRing) {
  std::mt19937 random(kSeed);
  for (int round = 0; round < 300; ++round) {
    const GeoLine ring = random_star(random);
    const double x = std::uniform_real_distribution<double>(-100, 100)(random);
    const double y = std::uniform_real_distribution<double>(-50, 50)(random);
    double sum = 0.0;
    for (const Window& part : {Window{-180, x, -90, y}, Window{x, 180, -90, y},
                               Window{-180, x, y, 90}, Window{x, 180, y, 90}}) {
      const GeoLine piece = clip_ring(ring, part);
      for (const Geo& p : piece) EXPECT_TRUE(part.holds(p));
      sum += signed_area(piece);
    }
    EXPECT_NEAR(sum, signed_area(ring), 1e-8) << "seed " << kSeed << " round " << round;
  }
}

TEST(ClipSegment, KeepsASegmentInsideAsItIs) {
  const auto inside = clip_segment({-3, 1}, {4, 2}, kWindow);
  ASSERT_TRUE(inside);
  EXPECT_EQ(inside->first.lon, -3.0);
  EXPECT_EQ(inside->second.lat, 2.0);
}

TEST(ClipSegment, CutsBothEnds) {
  const auto inside = clip_segment({-20, 0}, {20, 4}, kWindow);
  ASSERT_TRUE(inside);
  EXPECT_EQ(inside->first.lon, -10.0);
  EXPECT_EQ(inside->first.lat, 1.0);
  EXPECT_EQ(inside->second.lon, 10.0);
  EXPECT_EQ(inside->second.lat, 3.0);
}

TEST(ClipSegment, MissesTheWindow) {
  EXPECT_FALSE(clip_segment({-20, 0}, {-11, 4}, kWindow));
  EXPECT_FALSE(clip_segment({8, 9}, {14, 0}, kWindow));  // past the corner
  EXPECT_FALSE(clip_segment({0, 7}, {0, 6}, kWindow));
}

TEST(ClipSegment, LeavesOutWhatRunsAlongTheBorder) {
  EXPECT_FALSE(clip_segment({10, -3}, {10, 3}, kWindow));
  EXPECT_FALSE(clip_segment({-4, -5}, {4, -5}, kWindow));
  EXPECT_TRUE(clip_segment({9.999, -3}, {9.999, 3}, kWindow));
}

}  // namespace
}  // namespace kzgis::map
