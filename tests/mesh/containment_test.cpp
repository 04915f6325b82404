// Containment learnt step by step, against sets: a walk from point to point, each of which
// lies in a set of rings.  Two rings overlap when some points lie in both, and some in each of
// them alone; nothing else is an overlap.

#include "mesh/containment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

#include "support/sanitized.h"

namespace {

using kzgis::mesh::Containment;
using kzgis::mesh::kNone;

/// For each ring a bit.
using Set = std::uint32_t;

/// Walks from outside all rings to one point after the other, from any that was reached.
class Walk {
 public:
  Walk(std::size_t rings, const std::vector<Set>& points, std::mt19937_64& random)
      : containment(rings) {
    std::vector<Set> reached{0};
    std::vector<Containment::Chain> chains{kNone};
    for (const Set point : points) {
      const std::size_t from = random() % reached.size();
      std::vector<std::uint32_t> crossed;
      for (std::uint32_t ring = 0; ring < rings; ++ring) {
        if (((reached[from] ^ point) >> ring & 1U) != 0) crossed.push_back(ring);
      }
      std::shuffle(crossed.begin(), crossed.end(), random);
      const Containment::Chain chain = containment.across(chains[from], crossed);
      reached.push_back(point);
      chains.push_back(chain);
      if (containment.overlap()) break;
    }
    seen = reached;
  }

  /// Whether ring a has points that b has not.
  bool exceeds(std::uint32_t a, std::uint32_t b) const {
    return std::any_of(seen.begin(), seen.end(),
                       [=](Set point) { return (point >> a & 1U) != 0 && (point >> b & 1U) == 0; });
  }
  bool meet(std::uint32_t a, std::uint32_t b) const {
    return std::any_of(seen.begin(), seen.end(),
                       [=](Set point) { return (point >> a & 1U) != 0 && (point >> b & 1U) != 0; });
  }
  bool overlap(std::uint32_t a, std::uint32_t b) const {
    return meet(a, b) && exceeds(a, b) && exceeds(b, a);
  }

  Containment containment;
  std::vector<Set> seen;
};

void judge(const Walk& walk, std::uint32_t rings) {
  if (const auto& overlap = walk.containment.overlap()) {
    EXPECT_TRUE(walk.overlap(overlap->ring, overlap->other))
        << overlap->ring << " and " << overlap->other;
    return;
  }
  std::optional<Containment::Pair> repetition;
  for (std::uint32_t a = 0; a < rings; ++a) {
    EXPECT_EQ(walk.containment.has_inside(a), walk.meet(a, a)) << a;
    for (std::uint32_t b = 0; b < a; ++b) {
      EXPECT_FALSE(walk.overlap(a, b)) << a << " and " << b;
      if (!repetition && walk.meet(a, b) && !walk.exceeds(a, b) && !walk.exceeds(b, a)) {
        repetition = {b, a};
      }
    }
  }
  ASSERT_EQ(walk.containment.repetition().has_value(), repetition.has_value());
  if (repetition) {
    EXPECT_EQ(walk.containment.repetition()->ring, repetition->ring);
    EXPECT_EQ(walk.containment.repetition()->other, repetition->other);
    return;
  }
  const std::vector<std::uint32_t> parents = walk.containment.parents();
  for (std::uint32_t a = 0; a < rings; ++a) {
    // The one around it that no other one around it lies in.
    std::uint32_t parent = kNone;
    for (std::uint32_t b = 0; b < rings; ++b) {
      if (b == a || !walk.meet(a, a) || walk.exceeds(a, b)) continue;
      if (parent == kNone || walk.exceeds(parent, b)) parent = b;
    }
    EXPECT_EQ(parents[a], parent) << a;
  }
}

TEST(Containment, OfASquareInASquare) {
  Containment containment(2);
  const Containment::Chain outer = containment.across(kNone, std::vector<std::uint32_t>{1});
  const Containment::Chain inner = containment.across(outer, std::vector<std::uint32_t>{0});
  EXPECT_EQ(containment.across(inner, std::vector<std::uint32_t>{0, 1}), kNone);
  EXPECT_EQ(containment.parents(), (std::vector<std::uint32_t>{1, kNone}));
}

TEST(Containment, OfRingsThatPartLate) {
  Containment containment(3);
  const Containment::Chain all = containment.across(kNone, std::vector<std::uint32_t>{0, 1, 2});
  EXPECT_TRUE(containment.repetition());
  const Containment::Chain two = containment.across(all, std::vector<std::uint32_t>{1});
  containment.across(two, std::vector<std::uint32_t>{2});
  EXPECT_FALSE(containment.repetition());
  EXPECT_EQ(containment.parents(), (std::vector<std::uint32_t>{kNone, 2, 0}));
}

TEST(Containment, OfNothing) {
  const Containment containment(2);
  EXPECT_FALSE(containment.overlap());
  EXPECT_FALSE(containment.repetition());
  EXPECT_FALSE(containment.has_inside(1));
  EXPECT_EQ(containment.parents(), (std::vector<std::uint32_t>{kNone, kNone}));
}

TEST(ContainmentProperty, OfRandomSetsIsThatOfTheSets) {
  constexpr std::uint64_t kSeed = 20;
  std::mt19937_64 random(kSeed);
  int overlaps = 0;
  int forests = 0;
  for (int round = 0; round < 60000 / kWatchedShare; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " round " << round);
    const auto rings = static_cast<std::uint32_t>(1 + random() % 5);
    std::vector<Set> points;
    for (auto n = 1 + random() % 6; n > 0; --n) {
      points.push_back(static_cast<Set>(random() % (1U << rings)));
    }
    const Walk walk(rings, points, random);
    judge(walk, rings);
    ASSERT_FALSE(HasFailure());
    if (walk.containment.overlap()) ++overlaps;
    if (!walk.containment.overlap() && !walk.containment.repetition()) ++forests;
  }
  EXPECT_GT(overlaps, 10000 / kWatchedShare);
  EXPECT_GT(forests, 3000 / kWatchedShare);
}

TEST(ContainmentProperty, OfRandomForestsIsTheForest) {
  constexpr std::uint64_t kSeed = 21;
  std::mt19937_64 random(kSeed);
  for (int round = 0; round < 3000 / kWatchedShare; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " round " << round);
    // Every ring in one before it, or in none; points in the innermost parts, many times.
    const auto rings = static_cast<std::uint32_t>(1 + random() % 24);
    std::vector<Set> chain(rings);
    for (std::uint32_t ring = 0; ring < rings; ++ring) {
      const auto around = static_cast<std::uint32_t>(random() % (ring + 1));
      chain[ring] = (around == ring ? 0 : chain[around]) | 1U << ring;
    }
    std::vector<Set> points;
    for (int i = 0; i < 100; ++i) points.push_back(random() % 5 == 0 ? 0 : chain[random() % rings]);
    const Walk walk(rings, points, random);
    EXPECT_FALSE(walk.containment.overlap());
    judge(walk, rings);
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
