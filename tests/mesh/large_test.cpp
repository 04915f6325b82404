// Large input through kzgis::triangulate and kzgis::nest.  Coordinates are whole numbers, so
// that areas, known from the rings, compare exactly.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/meshed.h"
#include "support/sanitized.h"
#include "triangulate/polygons.h"
#include "triangulate/tiling.h"

#if defined(__GLIBC__) && !defined(KZGIS_SANITIZED)
#include <malloc.h>
#endif

namespace {

constexpr std::uint64_t kSeed = 20030417;

#ifdef KZGIS_SANITIZED
constexpr int kShare = 20;  // everything takes so many times longer
#else
constexpr int kShare = 1;
#endif

/// A polygon as a file would hold it, and its area.
class Record {
 public:
  void add(const IntRing& ring) {
    starts_.push_back(static_cast<kz_long>(x_.size()));
    for (const IntPoint& p : ring) {
      x_.push_back(static_cast<double>(p.x));
      y_.push_back(static_cast<double>(p.y));
    }
    points_.insert(points_.end(), ring.begin(), ring.end());
  }

  kzgis::Rings rings() const { return {x_, y_, starts_}; }

  /// Expects triangles that run counter-clockwise and add up to twice the area given.
  void expect_tiled(Int128 doubled) const {
    const Meshed mesh = meshed(rings());
    ASSERT_EQ(mesh.flaw.message, "");
    ASSERT_EQ(mesh.triangles.size() % 3, 0U);
    Int128 sum = 0;
    for (std::size_t i = 0; i < mesh.triangles.size(); i += 3) {
      const IntPoint a = points_.at(mesh.triangles[i]);
      const IntPoint b = points_.at(mesh.triangles[i + 1]);
      const IntPoint c = points_.at(mesh.triangles[i + 2]);
      ASSERT_GE(turn(a, b, c), 0) << "triangle " << i / 3;
      sum += doubled_area({a, b, c});
    }
    EXPECT_TRUE(sum == doubled) << static_cast<double>(sum) << " instead of "
                                << static_cast<double>(doubled);
  }

 private:
  std::vector<double> x_, y_;
  std::vector<kz_long> starts_;
  std::vector<IntPoint> points_;
};

/// The ring from another vertex on, either way, closed or not: all the same to a reader.
IntRing rewritten(IntRing ring, std::mt19937_64& random) {
  if (random() % 2 != 0) std::reverse(ring.begin(), ring.end());
  std::rotate(ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(random() % ring.size()),
              ring.end());
  if (random() % 2 != 0) ring.push_back(ring.front());
  return ring;
}

Int128 doubled_area_of(const IntPolygon& polygon) {
  Int128 sum = 0;
  for (const IntRing& ring : polygon.rings) sum += doubled_area(ring);
  return sum;
}

IntRing rectangle(std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1) {
  return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

TEST(LargeLayer, OfAHundredThousandRecordsIsTiled) {
  std::mt19937_64 random(kSeed);
  for (std::size_t number = 0; number < 100000 / kShare; ++number) {
    const Family& family = families()[number % families().size()];
    IntPolygon polygon = family.make(3 + static_cast<int>(random() % 22), random);
    // Turned by all angles, and a little sheared; the outer ring is not always the first.
    const auto a = static_cast<std::int64_t>(1 + random() % 9);
    const auto b = static_cast<std::int64_t>(random() % 9);
    polygon = transformed(std::move(polygon), a, -b, b, a + 1);
    const Int128 expected = doubled_area_of(polygon);
    std::shuffle(polygon.rings.begin(), polygon.rings.end(), random);
    Record record;
    for (const IntRing& ring : polygon.rings) record.add(rewritten(ring, random));
    SCOPED_TRACE("seed " + std::to_string(kSeed) + " record " + std::to_string(number) + ", " +
                 polygon.label);
    record.expect_tiled(expected);
    if (HasFailure()) break;
  }
}

TEST(LargeRing, OfMoreThanAMillionVerticesIsTiled) {
  // A corridor wound up: every edge sees others close by on both sides, all the way in.
  std::mt19937_64 random(kSeed);
  const IntPolygon polygon =
      transformed(spiral(1200000 / kShare, random), 5, -3, 3, 5);  // no edge axis-parallel
  Record record;
  record.add(polygon.rings[0]);
  record.expect_tiled(doubled_area_of(polygon));
}

TEST(LargeRing, OfAFractalCoastIsTiled) {
  std::mt19937_64 random(kSeed);
  const IntPolygon polygon = coast(100000 / kShare, random);
  Record record;
  record.add(polygon.rings[0]);
  record.expect_tiled(doubled_area_of(polygon));
}

// Many rings.

/// Vertices on the same 16 rays from a centre, at random distances.  With `nearer` taken
/// from all distances alike the ring lies inside the one without.
struct Burst {
  IntPoint centre;
  std::vector<std::int64_t> reach;

  IntRing ring(std::int64_t nearer) const {
    constexpr IntPoint kRays[] = {{7, 0},  {7, 3},  {5, 5},  {3, 7},   {0, 7},   {-3, 7},
                                  {-5, 5}, {-7, 3}, {-7, 0}, {-7, -3}, {-5, -5}, {-3, -7},
                                  {0, -7}, {3, -7}, {5, -5}, {7, -3}};
    IntRing ring;
    for (std::size_t i = 0; i < reach.size(); ++i) {
      const std::int64_t r = reach[i] - nearer;
      ring.push_back({centre.x + r * kRays[i].x, centre.y + r * kRays[i].y});
    }
    return ring;
  }
};

TEST(LargeRecord, OfFourThousandRingsNestedThreeDeep) {
  std::mt19937_64 random(kSeed);
  constexpr std::int64_t kCell = 200;
  constexpr std::int64_t kColumns = 51;
  constexpr std::int64_t kHoles = 1998;

  std::vector<IntRing> made{rectangle(-kCell, -kCell, kCell * kColumns, kCell * kColumns)};
  std::vector<std::size_t> parent{made.size()};  // past the end: none
  Int128 expected = doubled_area(made[0]);
  for (std::int64_t i = 0; i < kHoles; ++i) {
    Burst burst{{kCell * (i % kColumns), kCell * (i / kColumns)}, std::vector<std::int64_t>(16)};
    for (std::int64_t& reach : burst.reach) reach = static_cast<std::int64_t>(6 + random() % 8);
    parent.push_back(0);
    made.push_back(burst.ring(0));
    expected -= doubled_area(made.back());
    parent.push_back(made.size() - 1);
    made.push_back(burst.ring(1));
    expected += doubled_area(made.back());
  }
  // And a hole with two islands, which touch each other in a corner.
  const std::size_t wide = made.size();
  made.push_back(rectangle(0, 8400, 2000, 9400));
  parent.push_back(0);
  expected -= doubled_area(made.back());
  for (const IntRing& island :
       {rectangle(100, 8500, 900, 8900), rectangle(900, 8900, 1700, 9300)}) {
    made.push_back(island);
    parent.push_back(wide);
    expected += doubled_area(island);
  }
  ASSERT_EQ(made.size(), 4000U);

  std::vector<std::size_t> order(made.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::shuffle(order.begin(), order.end(), random);
  std::vector<kz_long> place(made.size() + 1, -1);
  Record record;
  for (std::size_t i = 0; i < order.size(); ++i) {
    place[order[i]] = static_cast<kz_long>(i);
    record.add(rewritten(made[order[i]], random));
  }

  const Nested nesting = nested(record.rings());
  ASSERT_EQ(nesting.flaw.message, "");
  ASSERT_EQ(nesting.parent.size(), made.size());
  for (std::size_t ring = 0; ring < made.size(); ++ring) {
    const auto at = static_cast<std::size_t>(place[ring]);
    const std::size_t around = ring == 0 ? made.size() : parent[ring];
    ASSERT_EQ(nesting.parent[at], place[around]) << "ring " << at;
    ASSERT_EQ(nesting.depth[at], ring == 0 ? 1 : around == 0 ? 2 : 3) << "ring " << at;
  }
  record.expect_tiled(expected);
}

// Rings that touch.

TEST(LargeRecord, OfSquaresInAChainCornerToCorner) {
  constexpr std::int64_t kSquares = 20000 / kShare;
  Record record;
  for (std::int64_t i = 0; i < kSquares; ++i) record.add(rectangle(i, i, i + 1, i + 1));
  record.expect_tiled(2 * kSquares);
}

TEST(LargeRing, ThatPassesTwiceThroughEveryCornerOfAChain) {
  // Out along the lower right of the squares and back along their upper left.
  constexpr std::int64_t kSquares = 20000 / kShare;
  IntRing ring;
  for (std::int64_t i = 0; i < kSquares; ++i) {
    ring.push_back({i, i});
    ring.push_back({i + 1, i});
  }
  for (std::int64_t i = kSquares; i > 0; --i) {
    ring.push_back({i, i});
    ring.push_back({i - 1, i});
  }
  Record record;
  record.add(ring);
  record.expect_tiled(2 * kSquares);
}

TEST(LargeRecord, OfACheckerboard) {
  constexpr std::int64_t kSide = 200;
  std::mt19937_64 random(kSeed);
  std::vector<IntPoint> cells;
  for (std::int64_t i = 0; i < kSide * kSide; ++i) {
    if ((i % kSide + i / kSide) % 2 == 0) cells.push_back({i % kSide, i / kSide});
  }
  cells.resize(cells.size() / kShare);
  std::shuffle(cells.begin(), cells.end(), random);
  Record record;
  for (const IntPoint& p : cells) {
    record.add(rewritten(rectangle(p.x, p.y, p.x + 1, p.y + 1), random));
  }
  record.expect_tiled(2 * static_cast<Int128>(cells.size()));
}

TEST(LargeRecord, OfAHoleThatTouchesTheBoundaryAllAlong) {
  // The boundary's teeth reach up to the hole, which hangs down between them: below the
  // hole there is a row of rhombi, each an inside of its own.
  constexpr std::int64_t kTeeth = 20000 / kShare;
  IntRing outer;
  IntRing hole;
  for (std::int64_t i = 0; i < kTeeth; ++i) {
    outer.push_back({2 * i, 0});
    outer.push_back({2 * i + 1, 1});
    hole.push_back({2 * i + 1, 1});
    if (i + 1 < kTeeth) hole.push_back({2 * i + 2, 2});
  }
  outer.insert(outer.end(), {{2 * kTeeth, 0}, {2 * kTeeth, 9}, {0, 9}});
  hole.insert(hole.end(), {{2 * kTeeth - 1, 5}, {1, 5}});
  const Int128 expected = doubled_area(outer) - doubled_area(hole);
  for (const bool hole_first : {false, true}) {
    Record record;
    record.add(hole_first ? hole : outer);
    record.add(hole_first ? outer : hole);
    record.expect_tiled(expected);
    const Nested nesting = nested(record.rings());
    ASSERT_EQ(nesting.flaw.message, "");
    EXPECT_EQ(nesting.depth,
              (hole_first ? std::vector<kz_long>{2, 1} : std::vector<kz_long>{1, 2}));
  }
}

// Where every vertex lies on a side of all the rings around it, a sweep that looks at each of
// those sides anew would be at work for an hour, and CTest would end it.

TEST(LargeRecord, OfRingsThatLieOnTopOfEachOther) {
  constexpr std::int64_t kRings = 100000 / kShare;
  Record diamonds;
  for (std::int64_t r = 1; r <= kRings; ++r) diamonds.add({{0, 0}, {r, -r}, {2 * r, 0}, {r, r}});
  // 2 r^2 each, the next one taken off: 2 (1 + 2 + ... + n), doubled.
  diamonds.expect_tiled(Int128{2} * kRings * (kRings + 1));
}

TEST(LargeRecord, OfOneSideWithManyRingsOnItAndManyVertices) {
  constexpr std::int64_t kRings = 50000 / kShare;
  Record record;
  Int128 doubled = 0;
  for (std::int64_t height = 1; height <= kRings; ++height) {
    const IntRing tent{{0, 0}, {4 * kRings, 0}, {2 * kRings, height}};
    record.add(tent);
    doubled = doubled_area(tent) - doubled;
  }
  IntRing comb{{4 * kRings - 1, -5}, {1, -5}};
  for (std::int64_t i = 1; i < 2 * kRings; ++i) comb.push_back({2 * i, i % 2 == 0 ? -1 : 0});
  std::reverse(comb.begin(), comb.end());
  if (doubled_area(comb) < 0) std::reverse(comb.begin(), comb.end());
  record.add(comb);
  record.expect_tiled(doubled + doubled_area(comb));
}

TEST(LargeRecord, OfHolesThatShareOneVertexOfTheBoundary) {
  // A fan: every blade starts in the same corner.
  constexpr std::int64_t kBlades = 5000 / kShare;
  Record record;
  const IntRing outer = rectangle(0, 0, 4 * kBlades, 4 * kBlades);
  record.add(outer);
  Int128 expected = doubled_area(outer);
  for (std::int64_t i = 0; i < kBlades; ++i) {
    const IntRing blade{{0, 0}, {3 * kBlades, 2 * i + 1}, {3 * kBlades, 2 * i + 2}};
    expected -= doubled_area(blade);
    record.add(blade);
  }
  record.expect_tiled(expected);
}

#if defined(__GLIBC__) && !defined(KZGIS_SANITIZED)

TEST(Memory, IsAllGivenBack) {
  std::mt19937_64 random(kSeed);
  Record star_record;
  star_record.add(star(5000, random).rings[0]);
  Record holes_record;
  for (const IntRing& ring : scattered_holes(5000, random).rings) holes_record.add(ring);
  Record refused_record;
  refused_record.add({{0, 0}, {2, 2}, {2, 0}, {0, 2}});
  const auto run = [&] {
    EXPECT_FALSE(meshed(star_record.rings()).flaw);
    EXPECT_FALSE(meshed(holes_record.rings()).flaw);
    EXPECT_FALSE(nested(holes_record.rings()).flaw);
    EXPECT_TRUE(meshed(refused_record.rings()).flaw);
  };
  const auto in_use = [] {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
  };
  run();  // what is allocated once, by whomever, is there after this
  const std::size_t before = in_use();
  for (int round = 0; round < 20; ++round) run();
  // The heap keeps small blocks at hand and counts them as used; a leak would be twenty
  // times the records.
  EXPECT_LT(in_use(), before + 16384);
}

#endif

}  // namespace
