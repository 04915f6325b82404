#include "tools/map/path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "support/sanitized.h"
#include "tools/map/unwrap.h"

namespace kzgis::map {
namespace {

constexpr unsigned kSeed = 4711;
constexpr double kWidth = 1000.0;
constexpr double kHeight = 500.0;

PlaneRequest based(projType type, double lat, double lon) {
  PlaneRequest request;
  request.type = type;
  request.base = std::pair{lat, lon};
  return request;
}

double signed_area(const std::vector<Pixel>& ring) {
  double sum = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const Pixel& a = ring[i];
    const Pixel& b = ring[(i + 1) % ring.size()];
    sum += a.x * b.y - b.x * a.y;
  }
  return 0.5 * sum;
}

double total_area(const PagePath& path) {
  double sum = 0.0;
  for (const auto& piece : path) sum += std::fabs(signed_area(piece));
  return sum;
}

bool filled(const PagePath& path, const Pixel& p) {
  bool inside = false;
  for (const auto& ring : path) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const Pixel& a = ring[i];
      const Pixel& b = ring[(i + 1) % ring.size()];
      if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x)) {
        inside = !inside;
      }
    }
  }
  return inside;
}

double longest_step(const PagePath& path) {
  double longest = 0.0;
  for (const auto& piece : path) {
    for (std::size_t i = 1; i < piece.size(); ++i) {
      longest = std::max(longest, std::hypot(piece[i].x - piece[i - 1].x,  //
                                             piece[i].y - piece[i - 1].y));
    }
  }
  return longest;
}

GeoLine cell(double west, double south, double width, double height) {
  return {
      {west, south}, {west, south + height}, {west + width, south + height}, {west + width, south}};
}

TEST(FillPath, AreaSurvivesTheTearWhereverItRuns) {
  std::mt19937 random(kSeed);
  std::uniform_real_distribution<double> anywhere(-180.0, 180.0);
  for (int round = 0; round < 200; ++round) {
    Plane plane(based(CartesianProj, 0.0, anywhere(random)));
    const Page page(plane, 0, 0, kWidth, kHeight);
    // A star, its points written as a file would: wrapped into -180 to 180.
    const double middle = anywhere(random);
    GeoLine star;
    double area_deg2 = 0.0;
    Geo previous{};
    for (int i = 0; i <= 24; ++i) {
      const double angle = 2.0 * std::numbers::pi * (i % 24) / 24.0;
      const double radius = 20.0 + 15.0 * std::sin(7.0 * angle) + 5.0 * std::cos(round + angle);
      const Geo p{middle + radius * std::cos(angle), radius * std::sin(angle)};
      if (i > 0) area_deg2 += 0.5 * (previous.lon * p.lat - p.lon * previous.lat);
      previous = p;
      star.push_back({std::remainder(p.lon, 360.0), p.lat});
    }
    const PagePath path = fill_path(page, prepare_polygon({star}, plane.base_lon()).rings);
    const double pixels_per_degree = kWidth / 360.0;
    EXPECT_NEAR(total_area(path), std::fabs(area_deg2) * pixels_per_degree * pixels_per_degree,
                0.01)
        << "seed " << kSeed << " round " << round;
  }
}

TEST(FillPath, ARingRoundThePoleFillsTheCap) {
  const GeoLine ring{{-120, -60}, {-60, -60}, {0, -60}, {60, -60}, {120, -60}, {180, -60}};
  for (const double base_lon : {0.0, 90.0, -100.0}) {
    Plane plane(based(CartesianProj, 0.0, base_lon));
    const Page page(plane, 0, 0, kWidth, kHeight);
    const PagePath path = fill_path(page, prepare_polygon({ring}, base_lon).rings);
    EXPECT_NEAR(total_area(path), kWidth * kHeight / 6.0, 1.0) << base_lon;
    EXPECT_TRUE(filled(path, {500, 490}));
    EXPECT_FALSE(filled(path, {500, 400}));
  }
}

TEST(FillPath, HolesStayOpen) {
  Plane plane(based(MercatorProj, 0.0, 0.0));
  const Page page(plane, 0, 0, kWidth, kHeight);
  const PagePath path = fill_path(page, {cell(0, 0, 30, 30), cell(10, 10, 10, 10)});
  EXPECT_TRUE(filled(path, page.place({5, 5}).at));
  EXPECT_FALSE(filled(path, page.place({15, 15}).at));
}

TEST(FillPath, LongEdgesCurve) {
  Plane plane(based(LambertAzimuthalProj, 90.0, 0.0));
  const Page page(plane, 0, 0, kHeight, kHeight);
  // The cap within 30 degrees of the pole, by four corners.
  const PagePath path = fill_path(page, {{{0, 60}, {90, 60}, {180, 60}, {270, 60}}});
  ASSERT_EQ(path.size(), 1u);
  const Pixel c = page.centre();
  const double radius = std::hypot(path[0][0].x - c.x, path[0][0].y - c.y);
  for (const Pixel& p : path[0]) EXPECT_NEAR(std::hypot(p.x - c.x, p.y - c.y), radius, 1e-6);
  EXPECT_GT(path[0].size(), 100u);
}

// On every disc map, a cell or the globe less a cell is filled where it should be, with the
// antipode inside the record or out.
TEST(FillPath, DiscsAreFilledRightWhereverTheAntipodeLies) {
  std::mt19937 random(kSeed);
  std::uniform_real_distribution<double> uniform(0.0, 1.0);
  for (std::size_t round = 0; round < 300; ++round) {
    const projType type = std::vector{GnomonicProj, StereographicProj,    OrthographicProj,
                                      PostelProj,   LambertAzimuthalProj, GlobeProj}[round % 6];
    const double base_lat = std::vector{-90.0, -30.0, 0.0, 45.0, 90.0}[round / 6 % 5];
    Plane plane(based(type, base_lat, 0.0));
    const Page page(plane, 0, 0, kHeight, kHeight);
    const double west = -180.0 + 360.0 * uniform(random);
    const double south = -89.0 + 120.0 * uniform(random);
    const double width = 20.0 + 300.0 * uniform(random);
    const double height = 10.0 + (78.0 - south) * uniform(random);
    std::vector<GeoLine> rings{cell(west, south, width, height)};
    const bool outside_in = round % 2 == 1;
    if (outside_in) rings.push_back(cell(-180, -90, 360, 180));
    const PagePath path = fill_path(page, rings);

    int probed = 0;
    for (int probe = 0; probe < 60; ++probe) {
      const Geo p = plane.position_at(0.97 * plane.limb_deg() * std::sqrt(uniform(random)),
                                      360.0 * uniform(random));
      const double from_west = std::remainder(p.lon - west - 0.5 * width, 360.0);
      const double edge =
          std::min(std::fabs(std::fabs(from_west) - 0.5 * width),
                   std::min(std::fabs(p.lat - south), std::fabs(p.lat - south - height)));
      if (edge < 0.5 || 90.0 - std::fabs(p.lat) < 2.0) continue;  // too close to call
      ++probed;
      const bool in_cell =
          std::fabs(from_west) < 0.5 * width && south < p.lat && p.lat < south + height;
      EXPECT_EQ(filled(path, page.place(p).at), in_cell != outside_in)
          << "seed " << kSeed << " round " << round << " type " << type << " base " << base_lat
          << " at " << p.lon << ", " << p.lat;
    }
    EXPECT_GT(probed, 20) << "round " << round;
  }
}

TEST(StrokePath, NothingIsDrawnAcrossTheMap) {
  for (int type = 0; type <= 14; ++type) {
    for (const double base_lat : {-90.0, -30.0, 45.0, 90.0}) {
      for (const double base_lon : {0.0, 90.0, 180.0, -100.0}) {
        Plane plane(based(static_cast<projType>(type), base_lat, base_lon));
        const Page page(plane, 0, 0, kWidth, kWidth);
        std::vector<GeoLine> lines = graticule(15.0, base_lon);
        // A route that goes round the globe twice and over the middle latitudes.
        GeoLine route;
        for (int i = 0; i <= 144; ++i) {
          route.push_back({std::remainder(5.0 * i, 360.0), 50.0 * std::sin(0.2 * i)});
        }
        const auto routes = prepare_lines({route}, base_lon);
        lines.insert(lines.end(), routes.begin(), routes.end());
        const PagePath path = stroke_path(page, lines);
        EXPECT_GE(path.size(), 20u);
        EXPECT_LT(longest_step(path), 0.045 * kWidth)
            << "type " << type << " base " << base_lat << ", " << base_lon;
      }
    }
  }
}

TEST(StrokePath, ALineIsCutInTwoAtTheTear) {
  Plane plane(based(CartesianProj, 0.0, 0.0));
  const Page page(plane, 0, 0, kWidth, kHeight);
  const PagePath path = stroke_path(page, prepare_lines({{{170, 0}, {-170, 0}}}, 0.0));
  ASSERT_EQ(path.size(), 2u);
  EXPECT_NEAR(std::max(path[0].back().x, path[1].back().x), 1000.0, 1e-3);
  EXPECT_NEAR(std::min(path[0].front().x, path[1].front().x), 0.0, 1e-3);
}

// A satellite's track: a line may go round the globe as often as it likes, and costs no more
// than its length.
TEST(StrokePath, ALineMayGoRoundAThousandTimes) {
  Plane plane(based(CartesianProj, 0.0, 33.0));
  const Page page(plane, 0, 0, kWidth, kHeight);
  for (const double step : {10.0, -10.0}) {
    GeoLine track;
    for (int i = 0; i <= 36000; ++i) {
      track.push_back({std::remainder(step * i, 360.0), 60.0 * std::sin(0.01 * i)});
    }
    const PagePath path = stroke_path(page, prepare_lines({track}, 33.0));
    EXPECT_EQ(path.size(), 1001u);
    EXPECT_LT(longest_step(path), 0.01 * kWidth);
  }
}

TEST(FillPath, ARingThatWindsRoundTheGlobeStaysBounded) {
  Plane flat(based(CartesianProj, 0.0, 0.0));
  Plane round(based(OrthographicProj, 30.0, 0.0));
  GeoLine ring;
#ifdef KZGIS_SANITIZED
  constexpr int kSteps = 4000;
#else
  constexpr int kSteps = 20000;
#endif
  for (int i = 0; i <= kSteps; ++i) {
    ring.push_back({std::remainder(170.0 * i, 360.0), 20.0 * i / kSteps});
  }
  const Shape shape = prepare_polygon({ring}, 0.0);
  EXPECT_LE(fill_path(Page(flat, 0, 0, kWidth, kHeight), shape.rings).size(), 8u);
  EXPECT_FALSE(fill_path(Page(round, 0, 0, kWidth, kHeight), shape.rings).empty());
}

TEST(StrokePath, LinesEndAtTheLimb) {
  Plane plane(based(OrthographicProj, 0.0, 0.0));
  const Page page(plane, 0, 0, kHeight, kHeight);
  EXPECT_TRUE(stroke_path(page, {{{120, 0}, {240, 10}}}).empty());
  const PagePath path = stroke_path(page, {{{0, 0}, {180, 0}}});
  ASSERT_EQ(path.size(), 1u);
  EXPECT_GE(path[0].back().x, 500.0 - 1e-6);
  EXPECT_LT(path[0].back().x, 500.7);
}

TEST(FramePath, IsTheWindowOrTheLimb) {
  Plane flat(based(CartesianProj, 0.0, 0.0));
  EXPECT_NEAR(total_area(frame_path(Page(flat, 0, 0, kWidth, kHeight))), kWidth * kHeight, 0.01);
  Plane round(based(GlobeProj, 20.0, 0.0));
  EXPECT_NEAR(total_area(frame_path(Page(round, 0, 0, kWidth, kHeight))),
              std::numbers::pi * 250.0 * 250.0, 5.0);
}

TEST(Graticule, OnlyTheQuartersReachThePoles) {
  int to_pole = 0;
  int meridians = 0;
  int parallels = 0;
  for (const GeoLine& line : graticule(15.0, 10.0)) {
    if (line[0].lat == line[1].lat) {
      ++parallels;
      EXPECT_LT(std::fabs(line[0].lat), 90.0);
    } else {
      ++meridians;
      if (line[1].lat == 90.0) ++to_pole;
      EXPECT_TRUE(line[1].lat == 90.0 || line[1].lat == 75.0);
    }
  }
  EXPECT_EQ(meridians, 24);
  EXPECT_EQ(to_pole, 4);
  EXPECT_EQ(parallels, 11);
}

TEST(Graticule, TakesStepsThatDoNotDivideTheQuarter) {
  for (const GeoLine& line : graticule(7.0, 0.0)) {
    for (const Geo& p : line) EXPECT_LE(std::fabs(p.lat), 90.0);
  }
  EXPECT_EQ(graticule(90.0, 0.0).size(), 5u);  // four meridians and the equator
}

}  // namespace
}  // namespace kzgis::map
