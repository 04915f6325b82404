// One chart used by eight threads at once gives each what it gives one.

#include "kzgis/chart.h"

#include <gtest/gtest.h>

#include <barrier>
#include <cstddef>
#include <cstring>
#include <thread>
#include <vector>

namespace {

constexpr int kThreads = 8;
constexpr std::size_t kPoints = 5000;

struct Given {
  std::vector<double> a = std::vector<double>(kPoints);
  std::vector<double> b = std::vector<double>(kPoints);
  std::vector<double> c = std::vector<double>(kPoints);
  std::size_t without_place = 0;

  bool operator==(const Given& other) const {
    const auto same = [](const std::vector<double>& p, const std::vector<double>& q) {
      return std::memcmp(p.data(), q.data(), kPoints * sizeof(double)) == 0;
    };
    return same(a, other.a) && same(b, other.b) && same(c, other.c) &&
           without_place == other.without_place;
  }
};

TEST(ChartInThreads, EightThreadsShareOne) {
  Given points;
  for (std::size_t i = 0; i < kPoints; ++i) {
    const auto number = static_cast<double>(i);
    points.a[i] = -91.0 + number * (182.0 / kPoints);
    points.b[i] = -180.0 + 7.3 * number;
    points.c[i] = number;
  }
  for (int type = CartesianProj; type <= GlobeProj; ++type) {
    kzgis::ChartParameters parameters;
    parameters.base_lat = -35.0;
    const auto made = kzgis::Chart::make(static_cast<projType>(type), parameters);
    ASSERT_TRUE(made);
    const kzgis::Chart& chart = *made;
    const auto there_and_back = [&] {
      Given there;
      there.without_place = chart.project(points.a, points.b, points.c, there.a, there.b, there.c);
      Given back;
      back.without_place = there.without_place;
      back.without_place += chart.unproject(there.a, there.b, there.c, back.a, back.b, back.c);
      return back;
    };
    const Given expected = there_and_back();
    EXPECT_GT(expected.without_place, 0U);
    EXPECT_LT(expected.without_place, 2 * kPoints);
    std::vector<Given> given(kThreads);
    std::barrier together(kThreads);
    std::vector<std::thread> threads;
    for (Given& mine : given) {
      threads.emplace_back([&] {
        together.arrive_and_wait();
        mine = there_and_back();
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (const Given& one : given) EXPECT_TRUE(one == expected) << "type " << type;
  }
}

}  // namespace
