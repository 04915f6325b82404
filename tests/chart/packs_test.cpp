// Packs of every width that this processor has, beside the same points one by one.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "chart/elementary.h"
#include "chart/families.h"
#include "chart/support.h"

using namespace kzgis::chart;
using chart_test::kInf;
using chart_test::kNaN;
using chart_test::Random;
using kzgis::Arithmetic;
using kzgis::ChartConstants;

namespace {

struct Width {
  const char* name;
  Convert convert;
  bool fused;
};

std::vector<Width> widths() {
  std::vector<Width> all{{"plain", convert_plain, false}};
#if defined(KZGIS_CHART_WIDE)
  if (__builtin_cpu_supports("avx2")) all.push_back({"avx2", convert_avx2, false});
  if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
    all.push_back({"avx2 fused", convert_avx2_fused, true});
  }
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq")) {
    all.push_back({"avx512", convert_avx512, false});
    all.push_back({"avx512 fused", convert_avx512_fused, true});
  }
#endif
  return all;
}

/// Constants that have something for every projection.
ChartConstants constants_about(double base_lat, double base_lon) {
  ChartConstants k;
  k.base_lat_deg = base_lat;
  k.base_lon_deg = base_lon;
  k.radius = 6378000.0;
  const SinesOf<double> base = sines_of_degrees(base_lat);
  k.sin_base = base.sin;
  k.cos_base = base.cos;
  k.mirror = base_lat < 0.0 ? -1.0 : 1.0;
  k.cone = 0.6;
  k.scale = 0.9;
  k.gap = 0.3;
  k.origin = 0.5;
  k.reference = 0.4;
  return k;
}

struct Points {
  std::vector<double> a, b, c;

  explicit Points(std::size_t n) : a(n), b(n), c(n) {}
  std::size_t size() const { return a.size(); }
};

/// Mostly points, now and then something else.
Points random_points(Random& random, std::size_t n, Way way) {
  constexpr double kOdd[] = {kNaN, kInf,  -kInf, 1e300, -1e300, 1e-300, 0.0,
                             -0.0, 90.0,  -90.0, 180.0, -180.0, 720.0,  -5000.0,
                             1e17, 1e160, 1e120, 91.0,  540.0};
  constexpr std::size_t kOdds = sizeof kOdd / sizeof *kOdd;
  const auto odd_or = [&](double value) {
    return random.below(12) == 0 ? kOdd[random.below(kOdds)] : value;
  };
  Points points(n);
  const double size = way == Way::there ? 1.0 : 6378000.0 * kDegree;
  for (std::size_t i = 0; i < n; ++i) {
    points.a[i] = odd_or(size * random.between(-90.0, 90.0));
    points.b[i] = odd_or(size * random.between(-360.0, 360.0));
    points.c[i] = odd_or(random.between(-1e3, 1e3));
  }
  return points;
}

std::size_t converted(Convert convert, projType type, Way way, const ChartConstants& k,
                      const Points& from, Points& to, bool has_c) {
  return convert(type, way, k, {from.a, from.b, from.c, to.a, to.b, to.c, has_c});
}

bool same_bits(const std::vector<double>& a, const std::vector<double>& b) {
  return a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

// Of numbers of points with every rest, with and without altitudes, in place and not.
TEST(Packs, GiveTheBitsOfOnePointAfterAnother) {
  Random random(41);
  for (int round = 0; round < 60; ++round) {
    const ChartConstants k =
        constants_about(random.between(-90.0, 90.0), random.between(-180.0, 180.0));
    for (int type = CartesianProj; type <= GlobeProj; ++type) {
      for (const Way way : {Way::there, Way::back}) {
        const bool has_c = random.below(2) == 0;
        const Points points = random_points(random, random.below(40), way);
        Points singly(points.size());
        std::size_t without_place = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
          const Spans one{{&points.a[i], 1},
                          {&points.b[i], 1},
                          {&points.c[i], 1},
                          {&singly.a[i], 1},
                          {&singly.b[i], 1},
                          {&singly.c[i], 1},
                          has_c};
          without_place += convert_plain(static_cast<projType>(type), way, k, one);
        }
        for (const Width& width : widths()) {
          if (width.fused) continue;
          SCOPED_TRACE(std::string(width.name) + " type " + std::to_string(type) + " round " +
                       std::to_string(round));
          Points together(points.size());
          ASSERT_EQ(converted(width.convert, static_cast<projType>(type), way, k, points, together,
                              has_c),
                    without_place);
          ASSERT_TRUE(same_bits(together.a, singly.a));
          ASSERT_TRUE(same_bits(together.b, singly.b));
          ASSERT_TRUE(same_bits(together.c, singly.c));
          Points in_place = points;
          converted(width.convert, static_cast<projType>(type), way, k, in_place, in_place, has_c);
          ASSERT_TRUE(same_bits(in_place.a, singly.a));
          ASSERT_TRUE(same_bits(in_place.b, singly.b));
        }
      }
    }
  }
}

// What is wider must not be taken where there is no such processor: at least it is taken here.
TEST(Packs, TheFastestOfThisProcessorAreTaken) {
  const Width widest = widths().back();
  EXPECT_EQ(fastest_convert(Arithmetic::fast), widest.convert);
  const Convert exact = fastest_convert(Arithmetic::exact);
  for (const Width& width : widths()) {
    EXPECT_FALSE(width.fused && width.convert == exact);
  }
}

}  // namespace
