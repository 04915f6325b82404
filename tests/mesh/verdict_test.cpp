// kzgis::triangulate and kzgis::nest on rings that touch, cross, coincide and turn back in every
// way, against a judge in whole numbers.  All eight symmetries of an input get one verdict.

#include <gtest/gtest.h>
#include <kzgis/mesh.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "mesh/judge.h"
#include "support/sanitized.h"

namespace {

using judge::Ring;
using judge::Verdict;

std::string text(const std::vector<Ring>& rings) {
  std::string result;
  for (const Ring& ring : rings) {
    for (const judge::Point& p : ring) {
      result += '(' + std::to_string(p.x) + ',' + std::to_string(p.y) + ')';
    }
    result += '\n';
  }
  return result;
}

/// The kind of verdict that a message is.
Verdict::Kind kind_of(const std::string& message) {
  if (message.find(" crosses ") != std::string::npos) return Verdict::crosses;
  if (message.find(" overlaps ") != std::string::npos) return Verdict::overlaps;
  if (message.find(" repeats ") != std::string::npos) return Verdict::repeats;
  return Verdict::polygon;
}

/// Asks for mesh and nesting of the rings and holds both against the verdict.
void expect(const Verdict& verdict, const std::vector<Ring>& rings) {
  SCOPED_TRACE(text(rings));
  std::vector<double> x, y;
  std::vector<std::int32_t> starts;
  for (const Ring& ring : rings) {
    starts.push_back(static_cast<std::int32_t>(x.size()));
    for (const judge::Point& p : ring) {
      x.push_back(static_cast<double>(p.x));
      y.push_back(static_cast<double>(p.y));
    }
  }
  const auto mesh = kzgis::triangulate({x, y, starts});
  const auto nesting = kzgis::nest({x, y, starts});
  ASSERT_EQ(mesh.has_value(), nesting.has_value());
  if (!mesh) {
    EXPECT_EQ(mesh.error().kind, kzgis::ErrorKind::bad_data);
    EXPECT_EQ(mesh.error().message, nesting.error().message);
    EXPECT_EQ(kind_of(mesh.error().message), verdict.kind) << mesh.error().message;
    return;
  }
  ASSERT_EQ(verdict.kind, Verdict::polygon);
  EXPECT_EQ(nesting->parent, verdict.parent);
  EXPECT_EQ(nesting->depth, verdict.depth);
  EXPECT_EQ(judge::flaw_of(rings, mesh->triangles), "");
}

void expect_in_all_symmetries(const std::vector<Ring>& rings) {
  const Verdict verdict = judge::verdict_on(rings);
  for (int symmetry = 0; symmetry < 8; ++symmetry) {
    SCOPED_TRACE(testing::Message() << "symmetry " << symmetry);
    expect(verdict, judge::turned(rings, symmetry));
  }
}

Verdict::Kind kind(const std::vector<Ring>& rings) {
  expect_in_all_symmetries(rings);
  return judge::verdict_on(rings).kind;
}

TEST(Verdict, SidesMayCrossWhereAThirdStrandHasAVertex) {
  EXPECT_EQ(kind({{{1, 1}, {1, 0}, {0, 0}, {2, 2}, {1, 2}, {1, 0}, {2, 0}}}), Verdict::polygon);
}

TEST(Verdict, ARingInOneLoopOfAFigureOfEightOverlapsNothing) {
  EXPECT_EQ(kind({{{0, 0}, {2, 1}, {0, 4}}, {{0, 0}, {4, 2}, {8, 4}, {8, 0}, {4, 2}, {0, 4}}}),
            Verdict::polygon);
}

TEST(Verdict, ALoopOfAFigureOfEightIsNoRepetitionOfIt) {
  EXPECT_EQ(kind({{{0, 0}, {2, 1}, {4, 0}, {4, 2}, {2, 1}, {0, 2}}, {{0, 0}, {2, 1}, {0, 2}}}),
            Verdict::polygon);
}

TEST(Verdict, ARingTracedTwiceHasNoInside) {
  EXPECT_EQ(kind({{{0, 0}, {2, 0}, {0, 2}, {0, 0}, {2, 0}, {0, 2}}}), Verdict::polygon);
  EXPECT_EQ(judge::verdict_on({{{0, 0}, {2, 0}, {0, 2}, {0, 0}, {2, 0}, {0, 2}}}).depth,
            std::vector<std::int32_t>{0});
  // And in a ring traced once it takes nothing away.
  EXPECT_EQ(kind({{{0, 0}, {4, 0}, {0, 4}}, {{1, 1}, {2, 1}, {1, 2}, {1, 1}, {2, 1}, {1, 2}}}),
            Verdict::polygon);
}

// A line drawn there and back cancels; what lies above it still lies in the face around both.
TEST(Verdict, AHoleAboveTheWayToAnother) {
  const Ring with_a_way{{0, 0},   {20, 0},  {20, 20}, {0, 20}, {0, 10}, {8, 10},
                        {10, 12}, {12, 10}, {10, 8},  {8, 10}, {0, 10}};
  EXPECT_EQ(kind({with_a_way, {{3, 11}, {5, 11}, {4, 13}}}), Verdict::polygon);
  EXPECT_EQ(kind({with_a_way, {{3, 10}, {5, 11}, {4, 13}}, {{9, 10}, {11, 10}, {10, 11}}}),
            Verdict::polygon);
}

TEST(Verdict, ACrossingComesBeforeAnOverlapAndThatBeforeARepetition) {
  const Ring square{{0, 0}, {2, 0}, {2, 2}, {0, 2}};
  const Ring wide{{5, 0}, {7, 0}, {7, 1}, {5, 1}};
  const Ring beside{{6, 0}, {8, 0}, {8, 1}, {6, 1}};
  const Ring across{{10, 0}, {12, 2}, {12, 0}, {10, 3}};
  EXPECT_EQ(kind({square, square}), Verdict::repeats);
  EXPECT_EQ(kind({square, square, wide, beside}), Verdict::overlaps);
  EXPECT_EQ(kind({square, square, wide, beside, across}), Verdict::crosses);
}

/// A ring of corners on a grid of `size` by `size`.
Ring random_ring(std::mt19937_64& random, std::uint64_t size, std::uint64_t corners) {
  Ring ring;
  for (; corners > 0; --corners) {
    ring.push_back(
        {static_cast<std::int64_t>(random() % size), static_cast<std::int64_t>(random() % size)});
  }
  return ring;
}

TEST(VerdictProperty, OfRandomRingsOnASmallGrid) {
  constexpr std::uint64_t kSeed = 1976;
  std::mt19937_64 random(kSeed);
  std::array<int, 4> kinds{};
  for (int round = 0; round < 12000 / kWatchedShare; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " round " << round);
    std::vector<Ring> rings;
    const std::uint64_t size = 3 + random() % 3;
    for (auto count = 1 + random() % 3; count > 0; --count) {
      rings.push_back(random_ring(random, size, 3 + random() % 5));
    }
    expect_in_all_symmetries(rings);
    ASSERT_FALSE(HasFailure());
    ++kinds[judge::verdict_on(rings).kind];
  }
  EXPECT_GT(kinds[Verdict::polygon], 1000 / kWatchedShare);
  EXPECT_GT(kinds[Verdict::crosses], 1000 / kWatchedShare);
  EXPECT_GT(kinds[Verdict::overlaps], 30 / kWatchedShare);
}

// Ways along the lines of a grid: sides lie on top of each other all over, cross in vertices and
// are traced several times, and hardly ever cross elsewhere.
TEST(VerdictProperty, OfWaysAlongAGrid) {
  constexpr std::uint64_t kSeed = 1983;
  std::mt19937_64 random(kSeed);
  std::array<int, 4> kinds{};
  for (int round = 0; round < 12000 / kWatchedShare; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " round " << round);
    std::vector<Ring> rings;
    for (auto count = 1 + random() % 3; count > 0; --count) {
      judge::Point here{static_cast<std::int64_t>(random() % 3),
                        static_cast<std::int64_t>(random() % 3)};
      Ring ring{here};
      const bool slanted = random() % 2 == 0;
      for (auto steps = 4 + random() % 8; steps > 0; --steps) {
        const auto way = static_cast<std::int64_t>(random() % 3) - 1;
        const auto other = slanted ? static_cast<std::int64_t>(random() % 3) - 1 : 0;
        (random() % 2 == 0 ? here.x : here.y) += way;
        here.x += other;
        here.y += slanted ? other : 0;
        ring.push_back(here);
      }
      // Back in whole sides: along x, then along y.
      ring.push_back({ring.front().x, here.y});
      rings.push_back(ring);
    }
    expect_in_all_symmetries(rings);
    ASSERT_FALSE(HasFailure());
    ++kinds[judge::verdict_on(rings).kind];
  }
  EXPECT_GT(kinds[Verdict::polygon], 3000 / kWatchedShare);
  EXPECT_GT(kinds[Verdict::overlaps], 300 / kWatchedShare);
  EXPECT_GE(kinds[Verdict::repeats], 10 / kWatchedShare);
}

// Slivers on one side whose areas, summed in doubles, come out as anything.
TEST(VerdictProperty, OfSliversThatShareASide) {
  constexpr std::uint64_t kSeed = 240;
  std::mt19937_64 random(kSeed);
  int nested = 0;
  for (int round = 0; round < 3000 / kWatchedShare; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " round " << round);
    const auto far = [&] { return static_cast<std::int64_t>(random() % (1U << 28)); };
    const judge::Point end{far(), far()};
    const auto near_it = [&] {
      const double share = static_cast<double>(random() % 1000) / 1000.0;
      return judge::Point{static_cast<std::int64_t>(share * static_cast<double>(end.x)),
                          static_cast<std::int64_t>(share * static_cast<double>(end.y))};
    };
    const std::vector<Ring> rings{{{0, 0}, end, near_it()}, {{0, 0}, end, near_it()}};
    const Verdict verdict = judge::verdict_on(rings);
    expect(verdict, rings);
    ASSERT_FALSE(HasFailure());
    nested +=
        verdict.kind == Verdict::polygon && verdict.parent != std::vector<std::int32_t>{-1, -1};
  }
  EXPECT_GT(nested, 500 / kWatchedShare);
}

// On a decimal grid hardly a coordinate is what it was meant to be: a vertex that lies on a side by
// the decimals is an ulp beside it, on either hand.  No judge in whole numbers here; but mirroring
// and turning change no double, and so nothing may change but the order of triangles.
TEST(VerdictProperty, OfDecimalsIsTheSameInAllSymmetries) {
  constexpr std::uint64_t kSeed = 1991;
  std::mt19937_64 random(kSeed);
  int taken = 0;
  int refused = 0;
  for (int round = 0; round < 6000 / kWatchedShare; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " round " << round);
    const auto n = 4 + random() % 4;
    const double step = std::array{0.1, 0.01, 1e-9, 0.3, 1.0 / 3.0, 1e7 / 7.0}[random() % 6];
    const double offset = step * static_cast<double>(random() % 5) * 0.7;
    std::vector<double> x, y;
    std::vector<std::int32_t> starts;
    const auto add = [&](std::uint64_t i, std::uint64_t j) {
      x.push_back(offset + static_cast<double>(i) * step);
      y.push_back(static_cast<double>(j) * step - offset);
    };
    for (auto rings = 1 + random() % 4; rings > 0; --rings) {
      starts.push_back(static_cast<std::int32_t>(x.size()));
      if (starts.size() == 1) {
        for (const auto& [i, j] : {std::pair{0UL, 0UL}, {n, 0UL}, {n, n}, {0UL, n}}) add(i, j);
      } else {
        for (int corner = 0; corner < 3; ++corner) add(random() % (n + 1), random() % (n + 1));
      }
    }
    const auto first = kzgis::triangulate({x, y, starts});
    ++(first ? taken : refused);
    for (int symmetry = 1; symmetry < 8; ++symmetry) {
      std::vector<double> u = x, v = y;
      for (double& c : u) c = (symmetry & 1) != 0 ? -c : c;
      for (double& c : v) c = (symmetry & 2) != 0 ? -c : c;
      if ((symmetry & 4) != 0) std::swap(u, v);
      const auto other = kzgis::triangulate({u, v, starts});
      ASSERT_EQ(other.has_value(), first.has_value()) << "symmetry " << symmetry;
      if (!first) {
        ASSERT_EQ(other.error().kind, kzgis::ErrorKind::bad_data);
        ASSERT_EQ(kind_of(other.error().message), kind_of(first.error().message));
      } else {
        ASSERT_EQ(other->triangles.size(), first->triangles.size());
      }
    }
  }
  EXPECT_GT(taken, 500 / kWatchedShare);
  EXPECT_GT(refused, 500 / kWatchedShare);
}

}  // namespace
