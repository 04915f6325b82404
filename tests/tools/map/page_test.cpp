#include "tools/map/page.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "lines.h"
#include "support/sanitized.h"
#include "tools/map/map_chart.h"

namespace kzgis::map {
namespace {

constexpr unsigned kSeed = 4711;
constexpr double kWidth = 1000.0;
constexpr double kHeight = 500.0;

/// A map that fills the page.
Page page_of(projType type, double lat, double lon, double width = kWidth,
             double height = kHeight) {
  MapRequest request;
  request.type = type;
  request.base = std::pair{lat, lon};
  return Page(map_chart(request), 0, 0, width, height);
}

Outline area(const Page& page, const std::vector<Line>& rings) {
  return page.area(outline(rings).rings());
}

Outline strokes(const Page& page, const std::vector<Line>& drawn) {
  return page.lines(outline(drawn).rings());
}

/// What rings enclose: boundaries less holes.
double area_of(const Outline& rings) {
  double sum = 0.0;
  for (const Line& ring : lines(rings)) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const auto& [ax, ay] = ring[i];
      const auto& [bx, by] = ring[(i + 1) % ring.size()];
      sum += ax * by - bx * ay;
    }
  }
  return 0.5 * std::fabs(sum);
}

bool filled(const std::vector<Line>& rings, double x, double y) {
  bool inside = false;
  for (const Line& ring : rings) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const auto& [ax, ay] = ring[i];
      const auto& [bx, by] = ring[(i + 1) % ring.size()];
      if ((ay > y) != (by > y) && x < ax + (y - ay) / (by - ay) * (bx - ax)) inside = !inside;
    }
  }
  return inside;
}

bool filled(const std::vector<Line>& rings, const Pixel& p) { return filled(rings, p.x, p.y); }
bool filled(const Outline& rings, double x, double y) { return filled(lines(rings), x, y); }
bool filled(const Outline& rings, const Pixel& p) { return filled(lines(rings), p); }

/// The longest stretch of a line that has no vertex within.
double longest_step(const Outline& drawn) {
  double longest = 0.0;
  for (const Line& line : lines(drawn)) {
    for (std::size_t i = 1; i < line.size(); ++i) {
      longest = std::max(longest, std::hypot(line[i].first - line[i - 1].first,
                                             line[i].second - line[i - 1].second));
    }
  }
  return longest;
}

Line cell(double west, double south, double width, double height) {
  return {
      {west, south}, {west, south + height}, {west + width, south + height}, {west + width, south}};
}

TEST(Page, FitsTheMapAndCentresIt) {
  const Page page = page_of(CartesianProj, 0.0, 10.0, 1000.0, 900.0);
  const Pixel west = page.place(-170.0, 0.0).value_or(Pixel{});
  EXPECT_NEAR(west.x, 0.0, 1e-9);
  EXPECT_NEAR(west.y, 450.0, 1e-9);
  const Pixel corner = page.place(100.0, 90.0).value_or(Pixel{});
  EXPECT_NEAR(corner.x, 750.0, 1e-9);
  EXPECT_NEAR(corner.y, 200.0, 1e-9);
}

TEST(Page, PlacesWhatTheMapShows) {
  EXPECT_FALSE(page_of(CassiniSoldnerProj, 0.0, 10.0).place(101.0, 45.0));
  EXPECT_TRUE(page_of(CassiniSoldnerProj, 0.0, 10.0).place(99.0 + 360.0, 45.0));
  EXPECT_FALSE(page_of(MercatorProj, 0.0, 10.0).place(0.0, 84.5));
  EXPECT_FALSE(page_of(GlobeProj, 0.0, 10.0).place(101.0, 0.0));
  EXPECT_TRUE(page_of(GlobeProj, 0.0, 10.0).place(99.0, 0.0));
  EXPECT_FALSE(page_of(StereographicProj, 0.0, 10.0).place(101.0, 0.0));
}

TEST(PageArea, SurvivesTheTearWhereverItRuns) {
  std::mt19937 random(kSeed);
  std::uniform_real_distribution<double> anywhere(-180.0, 180.0);
  for (int round = 0; round < 200; ++round) {
    const Page page = page_of(CartesianProj, 0.0, anywhere(random));
    // A star, its points written as a file would: wrapped into -180 to 180.
    const double middle = anywhere(random);
    Line star;
    double area_deg2 = 0.0;
    Position previous{};
    for (int i = 0; i <= 24; ++i) {
      const double angle = 2.0 * std::numbers::pi * (i % 24) / 24.0;
      const double radius = 20.0 + 15.0 * std::sin(7.0 * angle) + 5.0 * std::cos(round + angle);
      const Position p{middle + radius * std::cos(angle), radius * std::sin(angle)};
      if (i > 0) area_deg2 += 0.5 * (previous.first * p.second - p.first * previous.second);
      previous = p;
      star.emplace_back(std::remainder(p.first, 360.0), p.second);
    }
    const double pixels_per_degree = kWidth / 360.0;
    EXPECT_NEAR(area_of(area(page, {star})),
                std::fabs(area_deg2) * pixels_per_degree * pixels_per_degree, 0.01)
        << "seed " << kSeed << " round " << round;
  }
}

TEST(PageArea, OfARingRoundThePoleIsTheCap) {
  const Line ring{{-120, -60}, {-60, -60}, {0, -60}, {60, -60}, {120, -60}, {180, -60}};
  for (const double base_lon : {0.0, 90.0, -100.0}) {
    const Outline path = area(page_of(CartesianProj, 0.0, base_lon), {ring});
    EXPECT_NEAR(area_of(path), kWidth * kHeight / 6.0, 1.0) << base_lon;
    EXPECT_TRUE(filled(path, 500, 490));
    EXPECT_FALSE(filled(path, 500, 400));
  }
}

// As files have it: its long sides look like crossings of the antimeridian.
TEST(PageArea, OfABandRoundTheGlobeIsTheBand) {
  for (const double base_lon : {0.0, 90.0, 180.0}) {
    const Outline path = area(page_of(CartesianProj, 0.0, base_lon), {cell(-180, -20, 360, 40)});
    EXPECT_NEAR(area_of(path), kWidth * kHeight * 40.0 / 180.0, 0.01) << base_lon;
    EXPECT_TRUE(filled(path, 500, 250));
  }
}

TEST(PageArea, HasItsHoles) {
  const Page page = page_of(MercatorProj, 0.0, 0.0);
  const Outline path = area(page, {cell(0, 0, 30, 30), cell(10, 10, 10, 10)});
  EXPECT_TRUE(filled(path, page.place(5, 5).value()));
  EXPECT_FALSE(filled(path, page.place(15, 15).value()));
}

TEST(PageArea, LongEdgesCurve) {
  const Page page = page_of(LambertAzimuthalProj, 90.0, 0.0, kHeight, kHeight);
  // The cap within 30 degrees of the pole, by four corners.
  const std::vector<Line> rings = lines(area(page, {{{0, 60}, {90, 60}, {180, 60}, {270, 60}}}));
  ASSERT_EQ(rings.size(), 1u);
  const Pixel c = page.centre();
  // The distance is 2 sin(15 degrees) on a map whose radius is 2.
  const double radius = 0.5 * kHeight * std::sin(std::numbers::pi / 12.0);
  for (const auto& [x, y] : rings[0]) EXPECT_NEAR(std::hypot(x - c.x, y - c.y), radius, 1e-3);
  // No chord is an eighth of a pixel away: at least so many are needed.
  EXPECT_GT(rings[0].size(), std::numbers::pi / std::acos(1.0 - 0.125 / radius));
}

// On every round map, a cell or the globe less a cell is filled where it should be, with the
// antipode inside the record or out.
TEST(PageArea, IsRightWhereverTheAntipodeLies) {
  std::mt19937 random(kSeed);
  std::uniform_real_distribution<double> uniform(0.0, 1.0);
  for (std::size_t round = 0; round < 150; ++round) {
    const projType type = std::vector{GnomonicProj, StereographicProj,    OrthographicProj,
                                      PostelProj,   LambertAzimuthalProj, GlobeProj}[round % 6];
    const double base_lat = std::vector{-90.0, -30.0, 0.0, 45.0, 90.0}[round / 6 % 5];
    const Page page = page_of(type, base_lat, 0.0, kHeight, kHeight);
    const double west = -180.0 + 360.0 * uniform(random);
    const double south = -89.0 + 120.0 * uniform(random);
    const double width = 20.0 + 300.0 * uniform(random);
    const double height = 10.0 + (78.0 - south) * uniform(random);
    // With a vertex in the middle of long sides, which would else go the other way.
    std::vector<Line> rings{{{west, south},
                             {west, south + height},
                             {west + 0.5 * width, south + height},
                             {west + width, south + height},
                             {west + width, south},
                             {west + 0.5 * width, south}}};
    const bool outside_in = round % 2 == 1;
    if (outside_in) rings.push_back(cell(-180, -90, 360, 180));
    const std::vector<Line> path = lines(area(page, rings));

    int probed = 0;
    for (int probe = 0; probe < 120; ++probe) {
      const double lon = 360.0 * uniform(random) - 180.0;
      const double lat = 180.0 / std::numbers::pi * std::asin(2.0 * uniform(random) - 1.0);
      const std::optional<Pixel> p = page.place(lon, lat);
      const double from_west = std::remainder(lon - west - 0.5 * width, 360.0);
      const double edge =
          std::min(std::fabs(std::fabs(from_west) - 0.5 * width),
                   std::min(std::fabs(lat - south), std::fabs(lat - south - height)));
      if (!p || edge < 0.5 || 90.0 - std::fabs(lat) < 2.0) continue;  // too close to call
      if (std::hypot(p->x - page.centre().x, p->y - page.centre().y) > 0.97 * page.radius()) {
        continue;
      }
      ++probed;
      const bool in_cell =
          std::fabs(from_west) < 0.5 * width && south < lat && lat < south + height;
      EXPECT_EQ(filled(path, *p), in_cell != outside_in)
          << "seed " << kSeed << " round " << round << " type " << type << " base " << base_lat
          << " at " << lon << ", " << lat;
    }
    EXPECT_GT(probed, 10) << "round " << round;
  }
}

TEST(PageArea, OfARingThatWindsRoundTheGlobeStaysBounded) {
  Line ring;
#ifdef KZGIS_SANITIZED
  constexpr int kSteps = 300;
#else
  constexpr int kSteps = 2000;
#endif
  for (int i = 0; i <= kSteps; ++i) {
    ring.emplace_back(std::remainder(170.0 * i, 360.0), 20.0 * i / kSteps);
  }
  EXPECT_LE(area(page_of(CartesianProj, 0.0, 0.0), {ring}).x.size(), 10u * kSteps);
  EXPECT_LE(area(page_of(OrthographicProj, 30.0, 0.0), {ring}).x.size(), 200u * kSteps);
}

// Longitudes of any size are places on the globe.
TEST(PageArea, TakesEnormousLongitudes) {
  const Page page = page_of(CartesianProj, 0.0, 0.0);
  const double far = 360.0 * 1e12;
  const Outline path = area(page, {{{far, 0}, {far + 30, 0}, {far + 30, 30}, {far, 30}}});
  EXPECT_TRUE(filled(path, page.place(15, 15).value()));
  EXPECT_NEAR(area_of(path), kWidth * kHeight / 72.0, 1.0);
  area(page, {{{-1e300, 0}, {1e300, 10}, {1e17, 80}, {-1e308, -80}}});
}

TEST(PageLines, AreNotDrawnAcrossTheMap) {
  // A route that goes round the globe twice and over the middle latitudes.
  Line route;
  for (int i = 0; i <= 288; ++i) {
    route.emplace_back(std::remainder(2.5 * i, 360.0), 50.0 * std::sin(0.1 * i));
  }
  // And one that ends and turns where most maps are torn.
  const Line turning{{176, 6}, {178, 8}, {180, 10}, {178, 12}, {180, 14}, {180, 16}, {-178, 18}};
  const Line ending{{-176, -6}, {-178, -8}, {-180, -10}};
  for (int type = 0; type <= 14; ++type) {
    if (type == CassiniSoldnerProj) continue;  // where a place on the equator is a side of the map
    for (const double base_lat : {-90.0, -30.0, 45.0, 90.0}) {
      for (const double base_lon : {0.0, 90.0, 180.0, -100.0}) {
        const Page page = page_of(static_cast<projType>(type), base_lat, base_lon, kWidth, kWidth);
        const Outline drawn = strokes(page, {route, turning, ending});
        EXPECT_GE(drawn.starts.size(), 1u);
        EXPECT_LT(longest_step(drawn), 0.12 * kWidth)
            << "type " << type << " base " << base_lat << ", " << base_lon;
      }
    }
  }
}

TEST(PageLines, AreCutInTwoAtTheTear) {
  const std::vector<Line> path =
      lines(strokes(page_of(CartesianProj, 0.0, 0.0), {{{170, 0}, {-170, 0}}}));
  ASSERT_EQ(path.size(), 2u);
  EXPECT_NEAR(std::max(path[0].back().first, path[1].back().first), 1000.0, 1e-3);
  EXPECT_NEAR(std::min(path[0].front().first, path[1].front().first), 0.0, 1e-3);
}

// A satellite's track: a line may go round the globe as often as it likes, and costs no more
// than its length.
TEST(PageLines, MayGoRoundAThousandTimes) {
  const Page page = page_of(CartesianProj, 0.0, 33.0);
  for (const double step : {10.0, -10.0}) {
    Line track;
    for (int i = 0; i <= 36000; ++i) {
      track.emplace_back(std::remainder(step * i, 360.0), 60.0 * std::sin(0.01 * i));
    }
    const Outline path = strokes(page, {track});
    EXPECT_EQ(path.starts.size(), 1001u);
    EXPECT_LT(longest_step(path), 0.03 * kWidth);
  }
}

TEST(PageLines, EndAtTheLimb) {
  const Page page = page_of(OrthographicProj, 0.0, 0.0, kHeight, kHeight);
  EXPECT_TRUE(strokes(page, {{{120, 0}, {240, 10}}}).x.empty());
  const std::vector<Line> path = lines(strokes(page, {{{0, 0}, {180, 0}}}));
  ASSERT_EQ(path.size(), 1u);
  EXPECT_NEAR(path[0].back().first, kHeight, 1e-3);
}

TEST(PageFrame, IsTheWindowOrTheLimb) {
  EXPECT_NEAR(area_of(page_of(CartesianProj, 0.0, 0.0).frame()), kWidth * kHeight, 0.01);
  EXPECT_NEAR(area_of(page_of(GlobeProj, 20.0, 0.0).frame()), std::numbers::pi * 250.0 * 250.0,
              20.0);
}

// However small the part of the globe, the map fills the page.
TEST(Page, OfATinyBoxIsAsSharpAsAnother) {
  MapRequest request;
  request.type = AlbersProj;
  request.box = Box{10.0, 50.0, 10.0001, 50.0001};
  const Page page(map_chart(request), 0, 0, kWidth, kWidth);
  const Pixel corner = page.place(10.0, 50.0).value();
  EXPECT_NEAR(corner.y, kWidth, 1.0);
  EXPECT_NEAR(corner.y - page.place(10.0, 50.0001).value().y, kWidth, 1.0);
}

}  // namespace
}  // namespace kzgis::map
