// Charts beside the classic class: the same points where both mean the same, and the class's own
// meaning for arrays.

#include <gtest/gtest.h>

#include <cstring>
#include <iostream>
#include <sstream>
#include <vector>

#include "chart/support.h"
#include "kzgis/chart.h"

using namespace chart_test;
using kzgis::Chart;
using kzgis::ChartParameters;
using kzgis::project_classic;

namespace {

constexpr unsigned kSeed = 5;
constexpr int kTypes = 15;

struct Points {
  std::vector<double> lat, lon, alt;
};

Points some_points() {
  Random random(kSeed);
  Points points;
  for (int i = 0; i < 500; ++i) {
    points.lat.push_back(random.between(-95, 95));
    points.lon.push_back(random.between(-400, 800));
    points.alt.push_back(random.between(-10, 1000));
  }
  const double odd[] = {0.0, -0.0, 90.0, -90.0, 180.0, 359.999, kNaN, kInf, -kInf, 1e300};
  for (const double a : odd) {
    for (const double b : odd) {
      points.lat.push_back(a);
      points.lon.push_back(b);
      points.alt.push_back(a);
    }
  }
  return points;
}

bool same_bits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

class QuietErrors {
 public:
  QuietErrors() : old_(std::cerr.rdbuf(text_.rdbuf())) {}
  ~QuietErrors() { std::cerr.rdbuf(old_); }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;
  std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::streambuf* old_;
};

TEST(ProjectClassic, GivesWhatFromToGives) {
  const Points points = some_points();
  const std::size_t n = points.lat.size();
  for (int type = 0; type < kTypes + 1; ++type) {
    Projection projection(static_cast<projType>(type), 1000.0, 45.0, 350.0);
    projection.setFirstPar(30.0);
    projection.setSecondPar(type % 2 == 0 ? 60.0 : 30.0);
    projection.setLLCoordinates(1.0, 2.0, 3.0);
    std::vector<double> x(n);
    std::vector<double> y(n);
    std::vector<double> z(n);
    EXPECT_EQ(project_classic(projection, points.lat, points.lon, points.alt, x, y, z), 0U);
    EXPECT_EQ(projection.fetchLLCoordinates()->fetchLat(), 1.0);
    Projection judge(projection);
    double* xyz = nullptr;
    for (std::size_t i = 0; i < n; ++i) {
      ASSERT_EQ(judge.FromTo(LatLon(points.lat[i], points.lon[i]), points.alt[i], &xyz), 3);
      EXPECT_TRUE(same_bits(x[i], xyz[0]) && same_bits(y[i], xyz[1]) && same_bits(z[i], xyz[2]))
          << "type " << type << " of " << points.lat[i] << ' ' << points.lon[i];
    }
    delete[] xyz;
    std::vector<double> a = points.lat;
    std::vector<double> b = points.lon;
    std::vector<double> c = points.alt;
    EXPECT_EQ(project_classic(projection, a, b, c, b, c, a), 0U);
    for (std::size_t i = 0; i < n; ++i) {
      EXPECT_TRUE(same_bits(b[i], x[i]) && same_bits(c[i], y[i]) && same_bits(a[i], z[i]));
    }
  }
}

TEST(ProjectClassic, ARefusalIsOneLineAndCountsEveryPoint) {
  for (const projType type : {LambertConicProj, AlbersProj}) {
    const std::vector<double> lat{1, 2, 3};
    std::vector<double> x(3);
    std::vector<double> y(3);
    std::vector<double> z(3);
    const QuietErrors errors;
    EXPECT_EQ(project_classic(Projection(type), lat, lat, lat, x, y, z), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_TRUE(std::isnan(x[i]) && std::isnan(y[i]) && std::isnan(z[i]));
    }
    EXPECT_EQ(errors.text(),
              type == AlbersProj
                  ? "Projection::Albers: First and Second Parallels must be non-zero. Projection "
                    "aborted.\n"
                  : "Projection::Lambert: First and Second Parallels must be non-zero. Projection "
                    "aborted.\n");
  }
}

// Its pi is short by 1e-9, which on the Earth is millimetres, and more where a map is stretched.
TEST(ChartBesideProjection, IsLessThanFiveCentimetresAway) {
  Random random(kSeed);
  for (int type = 0; type < kTypes; ++type) {
    int compared = 0;
    for (int round = 0; round < 2000 && !testing::Test::HasFailure(); ++round) {
      ChartParameters p = based(random.between(5, 80), random.between(100, 250));
      // Only cones with two parallels are the same, and Cartesian only clamps from the equator.
      p.first_parallel = random.between(10, 35);
      p.second_parallel = random.between(40, 70);
      if (type == CartesianProj) p.base_lat = 0.0;
      const double lat = random.between(-80, 80);
      double lon = p.base_lon + random.between(-90, 90);
      if (type == CartesianProj)
        lon = p.base_lon + random.between(0, 90);  // its base is in the west
      // A series that is good near the base meridian; it moves 2 cm by the seventh power at 1.5.
      if (type == CassiniSoldnerProj) lon = p.base_lon + random.between(-1.5, 1.5);
      const double cos_c = cosine_between(p.base_lat, p.base_lon, lat, lon);
      if ((type == GnomonicProj || type == OrthographicProj) && cos_c < 0.3) continue;
      const Chart chart = made(static_cast<projType>(type), p);
      Projection classic(static_cast<projType>(type), kEarth, p.base_lat, p.base_lon);
      classic.setFirstPar(*p.first_parallel);
      classic.setSecondPar(*p.second_parallel);
      const double alt = 7.0;
      double ours[3];
      double theirs[3];
      ASSERT_EQ(chart.project({&lat, 1}, {&lon, 1}, {&alt, 1}, {&ours[0], 1}, {&ours[1], 1},
                              {&ours[2], 1}),
                0U);
      ASSERT_EQ(project_classic(classic, {&lat, 1}, {&lon, 1}, {&alt, 1}, {&theirs[0], 1},
                                {&theirs[1], 1}, {&theirs[2], 1}),
                0U);
      // Where a map is stretched, so is the difference.
      if (std::hypot(ours[0], ours[1]) > 3.0 * kEarth) continue;
      const bool without_z = type == AlbersProj;  // the classic one writes 0
      for (int i = 0; i < (without_z ? 2 : 3); ++i) {
        EXPECT_NEAR(ours[i], theirs[i], 0.05) << told(chart) << " of " << lat << ' ' << lon;
      }
      ++compared;
    }
    EXPECT_GT(compared, 500);
  }
}

}  // namespace
