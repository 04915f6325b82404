// Areas and lines on the plane, held against positions, areas and places that are known.

#include "kzgis/outline.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "chart/support.h"
#include "kzgis/shapefile.h"
#include "support/sanitized.h"

namespace {

using chart_test::based;
using chart_test::kDegree;
using chart_test::kEarth;
using chart_test::kFlat;
using chart_test::made;
using chart_test::Random;
using chart_test::told;
using chart_test::turned;
using kzgis::Box;
using kzgis::Chart;
using kzgis::Outline;
using kzgis::Rings;

using Ring = std::vector<std::pair<double, double>>;  // longitude and latitude

Outline in_degrees(const std::vector<Ring>& rings) {
  Outline outline;
  for (const Ring& ring : rings) {
    outline.starts.push_back(static_cast<std::int32_t>(outline.x.size()));
    for (const auto& [lon, lat] : ring) {
      outline.x.push_back(lon);
      outline.y.push_back(lat);
    }
  }
  return outline;
}

Ring box(double west, double south, double east, double north) {
  return {{west, south}, {east, south}, {east, north}, {west, north}};
}

Outline area(const Chart& chart, const std::vector<Ring>& rings, double tolerance) {
  const Outline given = in_degrees(rings);
  auto outline = kzgis::project_area(chart, given.rings(), tolerance);
  if (!outline) {
    ADD_FAILURE() << outline.error().message;
    return {};
  }
  return std::move(*outline);
}

/// Rings of a polygon, ring by ring.
template <class Visit>
void for_each_ring(const Rings& rings, Visit visit) {
  for (std::size_t r = 0; r < rings.starts.size(); ++r) {
    const auto first = static_cast<std::size_t>(rings.starts[r]);
    visit(first, r + 1 < rings.starts.size() ? static_cast<std::size_t>(rings.starts[r + 1])
                                             : rings.x.size());
  }
}

double signed_area(const Rings& rings) {
  double sum = 0.0;
  for_each_ring(rings, [&](std::size_t first, std::size_t end) {
    for (std::size_t i = first, j = end - 1; i < end; j = i++) {
      sum += (rings.x[j] - rings.x[first]) * (rings.y[i] - rings.y[first]) -
             (rings.x[i] - rings.x[first]) * (rings.y[j] - rings.y[first]);
    }
  });
  return 0.5 * sum;
}

bool holds(const Rings& rings, double x, double y) {
  bool inside = false;
  for_each_ring(rings, [&](std::size_t first, std::size_t end) {
    for (std::size_t i = first, j = end - 1; i < end; j = i++) {
      if ((rings.y[i] > y) == (rings.y[j] > y)) continue;
      const double t = (y - rings.y[i]) / (rings.y[j] - rings.y[i]);
      if (x < rings.x[i] + t * (rings.x[j] - rings.x[i])) inside = !inside;
    }
  });
  return inside;
}

double distance(double x, double y, double ax, double ay, double bx, double by) {
  const double ux = bx - ax;
  const double uy = by - ay;
  const double length2 = ux * ux + uy * uy;
  const double t =
      length2 > 0.0 ? std::clamp(((x - ax) * ux + (y - ay) * uy) / length2, 0.0, 1.0) : 0.0;
  return std::hypot(x - ax - t * ux, y - ay - t * uy);
}

double distance(const Rings& rings, double x, double y) {
  double least = 1e300;
  for_each_ring(rings, [&](std::size_t first, std::size_t end) {
    for (std::size_t i = first, j = end - 1; i < end; j = i++) {
      least = std::min(least, distance(x, y, rings.x[j], rings.y[j], rings.x[i], rings.y[i]));
    }
  });
  return least;
}

/// How far to the east a side of a polygon in degrees goes.
double way(double lon, double lat, double end_lon, double end_lat) {
  const double d = end_lon - lon;
  const bool on_poles = std::fabs(lat) == 90.0 && std::fabs(end_lat) == 90.0;
  return std::fabs(d) <= 180.0 || on_poles ? d : d - 360.0 * std::round(d / 360.0);
}

/// Whether a position lies in a polygon in degrees: by the sides south of it on its meridian, and
/// the south pole.
bool holds_in_degrees(const Rings& rings, double lat, double lon) {
  bool inside = false;
  for_each_ring(rings, [&](std::size_t first, std::size_t end) {
    double eastwards = 0.0;
    double lats = 0.0;
    while (end - first > 1 && rings.x[end - 1] == rings.x[first] &&
           rings.y[end - 1] == rings.y[first]) {
      --end;
    }
    for (std::size_t i = end - 1, j = first; j < end; i = j++) {
      const double d = way(rings.x[i], rings.y[i], rings.x[j], rings.y[j]);
      const double from = rings.x[i] - lon - 360.0 * std::floor((rings.x[i] - lon) / 360.0);
      const double low = std::min(std::floor(from / 360.0), std::floor((from + d) / 360.0));
      const double high = std::max(std::floor(from / 360.0), std::floor((from + d) / 360.0));
      for (double turn = low + 1.0; turn <= high; ++turn) {
        const double t = (360.0 * turn - from) / d;
        if (rings.y[i] + t * (rings.y[j] - rings.y[i]) < lat) inside = !inside;
      }
      eastwards += d;
      lats += rings.y[i];
    }
    if (std::lround(eastwards / 360.0) % 2 != 0 && lats < 0.0) inside = !inside;
  });
  return inside;
}

/// Whether the map has a position, away from its edge.
bool is_shown(const Chart& chart, double lat, double lon) {
  const kzgis::ChartParameters& p = chart.parameters();
  if (p.reach_deg) {
    return chart_test::apart_deg(lat, lon, p.base_lat, p.base_lon) < *p.reach_deg - 1e-4;
  }
  const double from_base = turned(lon - p.base_lon);
  return p.window->min_x < from_base && from_base < p.window->max_x && p.window->min_y < lat &&
         lat < p.window->max_y;
}

/// Polygons of several kinds, most of which cross themselves, seams, poles and limbs.
std::vector<Ring> random_rings(unsigned kind, Random& random) {
  std::vector<Ring> rings(1 + random.below(3));
  for (Ring& ring : rings) {
    const unsigned n = 3 + random.below(8);
    const double lon = random.between(-180.0, 180.0);
    const double lat = random.between(-80.0, 80.0);
    const double size = random.between(1.0, 60.0);
    for (unsigned i = 0; i < n; ++i) {
      const double angle = 2.0 * M_PI * i / n;
      switch (kind) {
        case 0:  // on seams, limbs and poles
          ring.emplace_back(30.0 * random.below(13) - 180.0, 15.0 * random.below(13) - 90.0);
          break;
        case 1:
          ring.emplace_back(lon + size * std::cos(angle),
                            std::clamp(lat + size * std::sin(angle), -90.0, 90.0));
          break;
        case 2:  // round a pole
          ring.emplace_back(turned(lon + 360.0 * i / n), lat + random.between(-5.0, 5.0));
          break;
        default:
          ring.emplace_back(random.between(-400.0, 400.0), random.between(-90.0, 90.0));
      }
    }
  }
  if (kind == 2) {  // as shapefiles have Antarctica
    Ring& ring = rings[0];
    const double pole = ring[0].second < 0.0 ? -90.0 : 90.0;
    const double last = ring.back().second;
    const double first = ring[0].second;
    ring.insert(ring.end(), {{180.0, last}, {180.0, pole}, {-180.0, pole}, {-180.0, first}});
  }
  return rings;
}

void expect_right_positions(const Chart& chart, const Rings& degrees, const Rings& outline,
                            double tolerance, Random& random) {
  for (int i = 0; i < 25; ++i) {
    double lat = std::asin(random.between(-1.0, 1.0)) / kDegree;
    double lon = random.between(-180.0, 180.0);
    if (i % 3 == 0) {
      const std::size_t v = random.below(static_cast<unsigned>(degrees.x.size()));
      lon = degrees.x[v] + random.between(-3.0, 3.0);
      lat = std::clamp(degrees.y[v] + random.between(-3.0, 3.0), -89.9, 89.9);
    }
    const chart_test::Pair p = chart_test::projected(chart, lat, lon);
    if (!p.placed || !is_shown(chart, lat, lon)) continue;
    if (distance(outline, p.a, p.b) <= 1.001 * tolerance) continue;
    ASSERT_EQ(holds(outline, p.a, p.b), holds_in_degrees(degrees, lat, lon))
        << "latitude " << lat << " longitude " << lon;
  }
}

TEST(ProjectAreaProperty, HoldsWhatThePolygonHoldsInDegrees) {
  Random random(1569);
  for (int round = 0; round < 24 / kWatchedShare; ++round) {
    for (const projType type : kFlat) {
      const Chart chart = made(type, chart_test::parameters_for(type, random));
      const std::vector<Ring> rings = random_rings(random.below(4), random);
      SCOPED_TRACE("round " + std::to_string(round) + ": " + told(chart));
      const double tolerance = std::pow(10.0, random.between(1.0, 5.3));
      const Outline degrees = in_degrees(rings);
      const Outline outline = area(chart, rings, tolerance);
      expect_right_positions(chart, degrees.rings(), outline.rings(), tolerance, random);
      if (HasFatalFailure() || HasNonfatalFailure()) return;
    }
  }
}

TEST(ProjectAreaProperty, HoldsWhatTheSampleCountriesHold) {
  auto countries = kzgis::Shapefile::open(KZGIS_TEST_DATA_DIR "/ne/ne_110m_countries.shp");
  ASSERT_TRUE(countries);
  Random random(1772);
  for (auto record : *countries) {
    ASSERT_TRUE(record);
    for (int i = 0; i < 2; ++i) {
      const projType type = kFlat[random.below(14)];
      const Chart chart = made(type, chart_test::parameters_for(type, random));
      SCOPED_TRACE("record " + std::to_string(record->number) + ": " + told(chart));
      constexpr double kTolerance = 5000.0;
      const auto outline = kzgis::project_area(chart, record->rings(), kTolerance);
      ASSERT_TRUE(outline) << outline.error().message;
      ASSERT_TRUE(kzgis::nest(outline->rings()));
      expect_right_positions(chart, record->rings(), outline->rings(), kTolerance, random);
      if (HasFatalFailure()) return;
    }
  }
}

// Rounding and needles aside, which the edge of a map makes of what it cuts, curves about borders
// cross nowhere that the borders do not.
TEST(ProjectArea, SampleCountriesNeedNoMending) {
  auto file = kzgis::Shapefile::open(KZGIS_TEST_DATA_DIR "/ne/ne_50m_countries.shp");
  ASSERT_TRUE(file);
  const double half_pixel = std::numbers::pi * kEarth / 5000.0;
  for (auto record : *file) {
    ASSERT_TRUE(record);
    for (const projType type : {CartesianProj, MercatorProj, LambertCylindricalProj, PostelProj,
                                SansonFlamsteedProj, BonneProj, WernerProj}) {
      const auto base = based(type == BonneProj || type == WernerProj ? 45.0 : 0.0, 0.0);
      const auto outline = kzgis::project_area(made(type, base), record->rings(), half_pixel);
      ASSERT_TRUE(outline) << outline.error().message;
      EXPECT_EQ(outline->crossings, 0U) << "record " << record->number << " type " << type;
    }
  }
}

TEST(ProjectArea, CutsAtTheSeam) {
  const Chart chart = made(CartesianProj, based(0, 0, 1.0 / kDegree));  // a degree is a unit
  const Outline outline = area(chart, {box(170, -10, -170, 20)}, 0.5);
  EXPECT_EQ(outline.starts, (std::vector<std::int32_t>{0, 4}));
  const std::vector<double> x{-180, -170, -170, -180, 170, 180, 180, 170};
  const std::vector<double> y{-10, -10, 20, 20, -10, -10, 20, 20};
  ASSERT_EQ(outline.x.size(), x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    EXPECT_NEAR(outline.x[i], x[i], 1e-12);
    EXPECT_NEAR(outline.y[i], y[i], 1e-12);
  }
}

TEST(ProjectArea, WhatTouchesTheSeamIsNotTorn) {
  const Chart chart = made(CartesianProj, based(0, 0, 1.0 / kDegree));
  // With a vertex, with a side, and from the other end of the map.
  EXPECT_NEAR(signed_area(area(chart, {{{180, 0}, {170, 5}, {170, -5}}}, 1).rings()), 50, 1e-9);
  EXPECT_NEAR(signed_area(area(chart, {box(170, -5, 180, 5)}, 1).rings()), 100, 1e-9);
  EXPECT_NEAR(signed_area(area(chart, {box(-180, -5, -170, 5)}, 1).rings()), 100, 1e-9);
  EXPECT_EQ(area(chart, {box(-180, -5, -170, 5), box(170, -5, 180, 5)}, 1).starts.size(), 2U);
  // In the middle of another map the two are one.
  const Chart pacific = made(CartesianProj, based(0, 180, 1.0 / kDegree));
  const Outline joined = area(pacific, {box(-180, -5, -170, 5), box(170, -5, 180, 5)}, 1);
  EXPECT_EQ(joined.starts.size(), 1U);
  EXPECT_NEAR(signed_area(joined.rings()), 200, 1e-9);
}

TEST(ProjectArea, ARingRoundTheGlobeHoldsThePoleOfItsHemisphere) {
  const Chart chart = made(CartesianProj, based(0, 30, 1.0 / kDegree));
  for (const double lat : {-60.0, 60.0}) {
    const Ring ring{{-120, lat}, {0, lat}, {120, lat}};
    const Outline outline = area(chart, {ring}, 1);
    EXPECT_NEAR(signed_area(outline.rings()), 360 * 30, 1e-6);
    EXPECT_TRUE(holds(outline.rings(), 3, lat < 0 ? -85 : 85));
  }
  // With its way along the pole, as files have it.
  const Outline antarctica =
      area(chart, {{{-180, -70}, {0, -60}, {180, -70}, {180, -90}, {-180, -90}}}, 1);
  EXPECT_NEAR(signed_area(antarctica.rings()), 360 * 25, 1e-6);
  // A band, given by its corners.
  EXPECT_NEAR(signed_area(area(chart, {box(-180, 10, 180, 20)}, 1).rings()), 3600, 1e-6);
}

TEST(ProjectArea, TheWholeGlobeIsTheFrame) {
  Random random(1805);
  for (const projType type : kFlat) {
    for (int i = 0; i < 5; ++i) {
      const Chart chart = made(type, chart_test::parameters_for(type, random));
      SCOPED_TRACE(told(chart));
      const auto frame = kzgis::chart_frame(chart, 1000.0);
      ASSERT_TRUE(frame);
      const Outline all = area(chart, {box(-180, -90, 180, 90)}, 1000.0);
      const double size = signed_area(frame->rings());
      EXPECT_GT(size, 0.0);
      EXPECT_NEAR(signed_area(all.rings()), size, 1e-3 * size);
      // And what is no land is sea.
      const std::vector<Ring> land{box(-30, -40, 60, 50), box(150, -80, -160, 10)};
      std::vector<Ring> sea = land;
      sea.push_back(box(-180, -90, 180, 90));
      EXPECT_NEAR(signed_area(area(chart, land, 1000.0).rings()) +
                      signed_area(area(chart, sea, 1000.0).rings()),
                  size, 1e-3 * size);
    }
  }
}

TEST(ProjectArea, HemispheresEndAtTheLimb) {
  // Their border runs along the limb, where rounding has it on both sides.
  const double disc = M_PI * kEarth * kEarth;
  const Chart pole = made(OrthographicProj, based(90, 0));
  EXPECT_NEAR(signed_area(area(pole, {box(-180, 0, 180, 90)}, 100.0).rings()), disc, 1e-3 * disc);
  EXPECT_EQ(area(pole, {box(-180, -90, 180, 0)}, 100.0).x.size(), 0U);
  const Chart side = made(OrthographicProj, based(0, 33));
  EXPECT_NEAR(signed_area(area(side, {box(-57, -90, 123, 90)}, 100.0).rings()), disc, 1e-3 * disc);
  EXPECT_NEAR(signed_area(area(side, {box(-57, -90, 33, 90)}, 100.0).rings()), 0.5 * disc,
              1e-3 * disc);
}

TEST(ProjectArea, TheAntipodeIsTheWholeLimb) {
  const Chart chart = made(PostelProj, based(20, 50));
  const Outline outline = area(chart, {box(-140, -30, -120, -10)}, 1000.0);
  // The box is a ring along the limb, with a hole.
  ASSERT_EQ(outline.starts.size(), 2U);
  EXPECT_FALSE(holds(outline.rings(), 0.0, 0.0));
  EXPECT_TRUE(holds(outline.rings(), 3.14 * kEarth, 0.0));
  EXPECT_TRUE(holds(outline.rings(), 0.0, -3.14 * kEarth));
}

/// The area of a polygon on a globe of radius 1, by the strips under its sides down to the equator.
double area_on_globe(const Ring& ring) {
  double sum = 0.0;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
    const double d = way(ring[j].first, ring[j].second, ring[i].first, ring[i].second) * kDegree;
    const double a = ring[j].second * kDegree;
    const double b = ring[i].second * kDegree;
    // The mean of the sine between two latitudes.
    const double half = 0.5 * (b - a);
    sum -= d * std::sin(0.5 * (a + b)) * (half != 0.0 ? std::sin(half) / half : 1.0);
  }
  return std::fabs(sum);
}

TEST(ProjectArea, KeepsAreasWhereTheProjectionDoes) {
  const std::vector<Ring> polygons{{{10, 20}, {40, 15}, {35, 60}, {-20, 45}},
                                   {{-80, -60}, {-20, -50}, {30, 10}, {-100, 0}}};
  for (const projType type : {LambertCylindricalProj, LambertAzimuthalProj, AlbersProj, BonneProj,
                              WernerProj, SansonFlamsteedProj}) {
    for (const Ring& ring : polygons) {
      kzgis::ChartParameters parameters = based(45, 130);  // the seam goes through both
      if (type == AlbersProj) parameters.window = Box{-180, -90, 180, 90};
      const Chart chart = made(type, parameters);
      SCOPED_TRACE(told(chart));
      const double expected = area_on_globe(ring) * kEarth * kEarth;
      EXPECT_NEAR(signed_area(area(chart, {ring}, 10.0).rings()), expected, 1e-5 * expected);
    }
  }
}

TEST(ProjectArea, NeighboursShareTheirBorder) {
  Random random(1909);
  for (int round = 0; round < 8; ++round) {
    for (const projType type : kFlat) {
      // Where the map is torn, or ends, along a curve, each polygon has chords of its own: so
      // curved edges are kept away.
      const bool straight =
          type == CartesianProj || type == MercatorProj || type == LambertCylindricalProj;
      kzgis::ChartParameters parameters =
          based(random.between(5.0, 15.0), random.between(-1.0, 1.0) * (straight ? 180.0 : 10.0));
      if (type == GnomonicProj) parameters.reach_deg = 85.0;
      const Chart chart = made(type, parameters);
      SCOPED_TRACE("round " + std::to_string(round) + ": " + told(chart));
      Ring border;
      for (double lat = -20.0; lat <= 40.0; lat += 20.0) {
        border.emplace_back(random.between(-25.0, 25.0), lat);
      }
      Ring west = border;
      west.insert(west.end(), {{-50, 40}, {-50, -20}});
      Ring east(border.rbegin(), border.rend());
      east.insert(east.end(), {{50, -20}, {50, 40}});
      constexpr double kTolerance = 5000.0;
      const Outline one = area(chart, {west}, kTolerance);
      const Outline other = area(chart, {east}, kTolerance);
      const Outline both = area(chart, {west, east}, kTolerance);
      EXPECT_NEAR(signed_area(one.rings()) + signed_area(other.rings()), signed_area(both.rings()),
                  1e-12 * signed_area(both.rings()));
      const std::size_t torn = both.starts.size();  // in two where the seam goes through
      EXPECT_LE(torn, 2U);
    }
  }
}

TEST(ProjectArea, ChordsAreAsLongAsTheToleranceLets) {
  Random random(1924);
  for (const projType type : kFlat) {
    const Chart chart = made(type, based(40, 10));
    SCOPED_TRACE(told(chart));
    for (int i = 0; i < 5; ++i) {
      const double lon = random.between(-30.0, 30.0);
      const Ring ring{{lon, 20}, {lon + 30, 35}, {lon + 5, 60}};
      constexpr double kTolerance = 2000.0;
      const Outline outline = area(chart, {ring}, kTolerance);
      ASSERT_EQ(outline.starts.size(), 1U);
      const std::size_t n = outline.x.size();
      // Of every side, points of the curve lie near to the outline.
      std::size_t corners = 0;
      for (std::size_t k = 0; k < 3; ++k) {
        const auto& [lon0, lat0] = ring[k];
        const auto& [lon1, lat1] = ring[(k + 1) % 3];
        for (int t = 0; t < 200; ++t) {
          const auto p = chart_test::projected(chart, lat0 + (lat1 - lat0) * t / 200,
                                               lon0 + (lon1 - lon0) * t / 200);
          ASSERT_LE(distance(outline.rings(), p.a, p.b), kTolerance);
        }
        const auto corner = chart_test::projected(chart, lat0, lon0);
        for (std::size_t v = 0; v < n; ++v) {
          corners += outline.x[v] == corner.a && outline.y[v] == corner.b ? 1U : 0U;
        }
      }
      EXPECT_EQ(corners, 3U);
      // Without any of the new vertices, a point of the curve would be too far away: near it, the
      // curve runs through the vertex itself or beyond the tolerance of the longer chord.
      for (std::size_t v = 0; v < n; ++v) {
        const std::size_t before = (v + n - 1) % n;
        const std::size_t after = (v + 1) % n;
        double lat = 0.0;
        double lon_v = 0.0;
        chart.unproject({&outline.x[v], 1}, {&outline.y[v], 1}, {&lat, 1}, {&lon_v, 1});
        double farthest = 0.0;
        for (std::size_t k = 0; k < 3; ++k) {
          const auto& [lon0, lat0] = ring[k];
          const auto& [lon1, lat1] = ring[(k + 1) % 3];
          const double t = std::fabs(lat1 - lat0) > 0 ? (lat - lat0) / (lat1 - lat0) : -1.0;
          if (t <= 1e-9 || t >= 1 - 1e-9 || std::fabs(lon0 + t * (lon1 - lon0) - lon_v) > 1e-6) {
            continue;
          }
          for (double s = t - 0.3; s <= t + 0.3; s += 0.002) {
            const auto p =
                chart_test::projected(chart, lat0 + (lat1 - lat0) * s, lon0 + (lon1 - lon0) * s);
            const double along =
                (p.a - outline.x[before]) * (outline.x[after] - outline.x[before]) +
                (p.b - outline.y[before]) * (outline.y[after] - outline.y[before]);
            const double whole = std::pow(outline.x[after] - outline.x[before], 2) +
                                 std::pow(outline.y[after] - outline.y[before], 2);
            if (along < 0.0 || along > whole) continue;
            farthest = std::max(farthest, distance(p.a, p.b, outline.x[before], outline.y[before],
                                                   outline.x[after], outline.y[after]));
          }
          EXPECT_GE(farthest, 0.85 * kTolerance) << "vertex " << v << " of " << n;
        }
      }
    }
  }
}

TEST(ProjectLines, CutsAtSeamAndLimb) {
  const Outline line = in_degrees({{{150, 0}, {-150, 0}, {-150, 40}}});
  const Chart chart = made(CartesianProj, based(0, 0, 1.0 / kDegree));
  const auto cut = kzgis::project_lines(chart, line.rings(), 1.0);
  ASSERT_TRUE(cut);
  EXPECT_EQ(cut->starts, (std::vector<std::int32_t>{0, 2}));
  ASSERT_EQ(cut->x.size(), 5U);
  EXPECT_NEAR(cut->x[1], 180.0, 1e-12);
  EXPECT_NEAR(cut->x[2], -180.0, 1e-12);
  EXPECT_NEAR(cut->y[4], 40.0, 1e-12);
  // The equator, all round: a half of it can be seen.
  const Outline equator = in_degrees({{{-180, 0}, {-60, 0}, {60, 0}, {180, 0}}});
  const Chart globe = made(OrthographicProj, based(0, 180));
  const auto seen = kzgis::project_lines(globe, equator.rings(), 1.0);
  ASSERT_TRUE(seen);
  EXPECT_EQ(seen->starts.size(), 2U);
  for (const double y : seen->y) EXPECT_NEAR(y, 0.0, 1e-6);
  EXPECT_NEAR(*std::max_element(seen->x.begin(), seen->x.end()), kEarth, 1e-3);
  EXPECT_NEAR(*std::min_element(seen->x.begin(), seen->x.end()), -kEarth, 1e-3);
}

TEST(ProjectLines, ALineAlongTheSeamIsDrawnOnce) {
  const Outline line = in_degrees({{{180, -30}, {180, 30}}});
  const Chart chart = made(CartesianProj, based(0, 0, 1.0 / kDegree));
  const auto drawn = kzgis::project_lines(chart, line.rings(), 1.0);
  ASSERT_TRUE(drawn);
  EXPECT_EQ(drawn->starts.size(), 1U);
}

TEST(Graticule, ThinsMeridiansTowardsThePoles) {
  const Chart chart = made(CartesianProj, based(0, 0, 1.0 / kDegree));
  const auto lines = kzgis::graticule(chart, 15.0, 1.0);
  ASSERT_TRUE(lines);
  // 24 meridians and 11 parallels.
  EXPECT_EQ(lines->starts.size(), 35U);
  const auto at_pole = [&] {
    std::size_t count = 0;
    for (const double y : lines->y) count += std::fabs(y - 90.0) < 1e-9 ? 1U : 0U;
    return count;
  };
  EXPECT_EQ(at_pole(), 4U);
  const auto minutes = kzgis::graticule(chart, 20.0 / 60.0, 1.0);
  ASSERT_TRUE(minutes);
  EXPECT_EQ(minutes->starts.size(), 1080U + 539U);
}

TEST(ProjectArea, RefusesWhatMakesNoArea) {
  const double nan = chart_test::kNaN;
  const Outline square = in_degrees({box(0, 0, 10, 10)});
  const Chart chart = made(MercatorProj);
  for (const double tolerance : {0.0, -1.0, nan, chart_test::kInf}) {
    EXPECT_EQ(kzgis::project_area(chart, square.rings(), tolerance).error().kind,
              kzgis::ErrorKind::bad_argument);
    EXPECT_FALSE(kzgis::chart_frame(chart, tolerance));
    EXPECT_FALSE(kzgis::graticule(chart, 10, tolerance));
  }
  EXPECT_FALSE(kzgis::project_area(made(GlobeProj), square.rings(), 1.0));
  EXPECT_FALSE(kzgis::graticule(chart, 0.001, 1.0));
  EXPECT_FALSE(kzgis::graticule(chart, nan, 1.0));
  const Outline hole = in_degrees({box(0, 0, 10, 10), {{1, 1}, {2, nan}, {3, 3}}});
  const auto refused = kzgis::project_area(chart, hole.rings(), 1.0);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().kind, kzgis::ErrorKind::bad_data);
  EXPECT_EQ(refused.error().ring, 1);
  EXPECT_EQ(refused.error().vertex, 5);
  const std::vector<double> x{0, 1, 1};
  const std::vector<double> y{0, 0};
  const std::vector<std::int32_t> starts{0};
  EXPECT_FALSE(kzgis::project_area(chart, {x, y, starts}, 1.0));
  EXPECT_TRUE(kzgis::project_area(chart, {}, 1.0)->x.empty());
}

TEST(ProjectArea, EnormousLongitudesAndSlightlyFarLatitudes) {
  const Chart chart = made(CartesianProj, based(0, 0, 1.0 / kDegree));
  EXPECT_NEAR(signed_area(area(chart, {box(3600, -10, 3610, 10)}, 1).rings()), 200, 1e-6);
  EXPECT_NEAR(signed_area(area(chart, {box(0, 80, 10, 90.5)}, 1).rings()), 100, 1e-6);
  const auto wild =
      kzgis::project_area(chart, in_degrees({{{1e300, 0}, {-1e300, 5}, {1e17, 50}}}).rings(), 1);
  EXPECT_TRUE(wild);
}

}  // namespace
