#include "polytree/ring_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "polytree/rings.h"
#include "support/sanitized.h"

namespace {

using kzgis::polytree::Box;
using kzgis::polytree::BoxIndex;
using kzgis::polytree::RingTree;

/// An axis-parallel rectangle of whole coordinates.
struct Rectangle {
  int x0, y0, x1, y1;

  bool holds(const Rectangle& other) const {
    return x0 < other.x0 && y0 < other.y0 && other.x1 < x1 && other.y1 < y1;
  }
};

/// The tree as text, children in order: "1(3 2(4))".  Rings count from 1, as in a RingTree.
std::string text(const RingTree& nesting, kz_ulong ring = 0) {
  std::string result;
  for (kz_ulong c = nesting.first_child(ring); c != 0; c = nesting.next_sibling(c)) {
    if (!result.empty()) result += ' ';
    result += std::to_string(c);
    EXPECT_EQ(nesting.parent(c), ring);
    const std::string below = text(nesting, c);
    if (!below.empty()) result += '(' + below + ')';
  }
  return result;
}

/// Nodes for the rings, behind an empty root.  The rings must outlive them.
class Nodes {
 public:
  explicit Nodes(const Rings& rings)
      : list_(static_cast<kz_ulong>(rings.x.size()), rings.x.data(), rings.y.data()) {
    nodes.reserve(rings.starts.size() + 1);
    nodes.emplace_back();
    for (std::size_t p = 0; p < rings.starts.size(); ++p) {
      const std::size_t end = p + 1 < rings.starts.size() ? rings.starts[p + 1] : rings.x.size();
      std::vector<kz_ulong> indices(end - rings.starts[p]);
      std::iota(indices.begin(), indices.end(), rings.starts[p]);
      nodes.emplace_back(list_, static_cast<kz_ulong>(indices.size()), indices.data(), 0.0, 0.0,
                         0.0, 0.0);
    }
  }
  Nodes(const Nodes&) = delete;
  Nodes& operator=(const Nodes&) = delete;

  std::vector<KZ_GIS_PolygonNode_c> nodes;

 private:
  KZ_GIS_VertexList_c list_;
};

std::string nest(const std::vector<Rectangle>& rectangles) {
  Rings rings;
  for (const Rectangle& r : rectangles) rings.add(boundary(r.x0, r.y0, r.x1, r.y1));
  Nodes nodes(rings);
  return text(RingTree(nodes.nodes));
}

/// The rule once more, plainly: lists of children and a scan by position.
class PlainTree {
 public:
  using Contains = std::function<bool(std::size_t outer, std::size_t inner)>;

  PlainTree(std::size_t rings, Contains contains)
      : contains_(std::move(contains)), children_(rings + 1) {
    for (std::size_t ring = 1; ring <= rings; ++ring) insert(ring);
  }
  std::string text(std::size_t ring = 0) const {
    std::string result;
    for (const std::size_t c : children_[ring]) {
      if (!result.empty()) result += ' ';
      result += std::to_string(c);
      if (!children_[c].empty()) result += '(' + text(c) + ')';
    }
    return result;
  }

 private:
  void insert(std::size_t ring) {
    std::size_t level = 0;
    for (;;) {
      std::vector<std::size_t>& list = children_[level];
      bool moved = false;
      for (std::size_t i = 0; i < list.size(); ++i) {
        if (!contains_(ring, list[i])) continue;
        children_[ring].push_back(list[i]);
        list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
        moved = true;
      }
      const auto around =
          std::find_if(list.begin(), list.end(), [&](std::size_t c) { return contains_(c, ring); });
      if (moved || around == list.end()) {
        list.push_back(ring);
        return;
      }
      level = *around;
    }
  }

  Contains contains_;
  std::vector<std::vector<std::size_t>> children_;
};

/// Rectangles that are disjoint or nested, parents before children: each is cut into a grid
/// and rectangles are placed in some of its cells.  `parents` gets the number of each one's
/// parent, from 1; 0 for none.
std::vector<Rectangle> random_nest(std::mt19937_64& random, std::size_t count,
                                   std::vector<std::size_t>& parents) {
  std::vector<Rectangle> result;
  parents.clear();
  const Rectangle plane{0, 0, 1 << 28, 1 << 28};
  for (std::size_t p = 0; p <= result.size() && result.size() < count; ++p) {
    const Rectangle outer = p == 0 ? plane : result[p - 1];
    const int grid = std::uniform_int_distribution<int>(1, p == 0 ? 20 : 4)(random);
    const int step_x = (outer.x1 - outer.x0) / grid;
    const int step_y = (outer.y1 - outer.y0) / grid;
    if (std::min(step_x, step_y) < 4) continue;
    for (int cell = 0; cell < grid * grid && result.size() < count; ++cell) {
      if (p > 0 && random() % 3 == 0) continue;
      const int x = outer.x0 + cell % grid * step_x;
      const int y = outer.y0 + cell / grid * step_y;
      result.push_back({x + 1, y + 1, x + step_x - 1, y + step_y - 1});
      parents.push_back(p);
    }
  }
  return result;
}

TEST(RingTree, OneRing) { EXPECT_EQ(nest({{0, 0, 9, 9}}), "1"); }

TEST(RingTree, NoRing) { EXPECT_EQ(nest({}), ""); }

TEST(RingTree, DisjointRingsStayInOrder) {
  EXPECT_EQ(nest({{5, 0, 6, 1}, {0, 0, 1, 1}, {3, 3, 4, 4}}), "1 2 3");
}

TEST(RingTree, HoleBehindOrBeforeItsBoundary) {
  EXPECT_EQ(nest({{0, 0, 9, 9}, {3, 3, 6, 6}}), "1(2)");
  EXPECT_EQ(nest({{3, 3, 6, 6}, {0, 0, 9, 9}}), "2(1)");
}

TEST(RingTree, ThreeDeepInEveryOrder) {
  const Rectangle a{0, 0, 9, 9}, b{1, 1, 8, 8}, c{2, 2, 7, 7};
  EXPECT_EQ(nest({a, b, c}), "1(2(3))");
  EXPECT_EQ(nest({a, c, b}), "1(3(2))");
  EXPECT_EQ(nest({b, a, c}), "2(1(3))");
  EXPECT_EQ(nest({b, c, a}), "3(1(2))");
  EXPECT_EQ(nest({c, a, b}), "2(3(1))");
  EXPECT_EQ(nest({c, b, a}), "3(2(1))");
}

TEST(RingTree, ARingThatTakesChildrenGoesBehindTheRest) {
  EXPECT_EQ(nest({{3, 3, 4, 4}, {20, 0, 21, 1}, {0, 0, 9, 9}}), "2 3(1)");
}

TEST(RingTree, PassesOverTheChildBehindOneTaken) {
  const Rectangle outer{0, 0, 99, 9};
  const Rectangle a{1, 1, 2, 2}, b{3, 1, 4, 2}, c{5, 1, 6, 2}, d{7, 1, 8, 2}, e{9, 1, 10, 2};
  EXPECT_EQ(nest({a, b, outer}), "2 3(1)");
  EXPECT_EQ(nest({a, b, c, outer}), "2 4(1 3)");
  EXPECT_EQ(nest({a, b, c, d, e, outer}), "2 4 6(1 3 5)");
  // One that stays does not cost the next its turn.
  EXPECT_EQ(nest({a, {200, 0, 201, 1}, b, c, outer}), "2 4 5(1 3)");
  // The wrong tree stays wrong: the last ring holds both on its level, and takes one.
  EXPECT_EQ(nest({a, b, outer, {-1, -1, 100, 10}}), "3(1) 4(2)");
}

TEST(RingTree, GoesDownIntoTheFirstThatHoldsIt) {
  // Two overlapping rings hold the third.
  EXPECT_EQ(nest({{0, 0, 9, 9}, {1, -1, 10, 8}, {2, 2, 3, 3}}), "1(3) 2");
  EXPECT_EQ(nest({{1, -1, 10, 8}, {0, 0, 9, 9}, {2, 2, 3, 3}}), "1(3) 2");
}

TEST(RingTree, ParentsBeforeChildrenGiveTheTrueTree) {
  constexpr std::uint64_t kSeed = 63;
  std::mt19937_64 random(kSeed);
  for (int run = 0; run < 60; ++run) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " run " << run);
    std::vector<std::size_t> parents;
    const auto rectangles = random_nest(random, 1 + random() % 300, parents);
    // A ring joins its parent's children as it comes.
    std::vector<std::string> below(rectangles.size() + 1);
    for (std::size_t ring = rectangles.size(); ring-- > 0;) {
      const std::string inner = below[ring + 1].empty() ? "" : '(' + below[ring + 1] + ')';
      std::string& list = below[parents[ring]];
      list = std::to_string(ring + 1) + inner + (list.empty() ? "" : ' ' + list);
    }
    ASSERT_EQ(nest(rectangles), below[0]);
  }
}

TEST(RingTree, FollowsTheRuleInEveryOrder) {
  constexpr std::uint64_t kSeed = 64;
  std::mt19937_64 random(kSeed);
  for (int run = 0; run < 200 / kWatchedShare; ++run) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " run " << run);
    std::vector<std::size_t> parents;
    auto rectangles = random_nest(random, 1 + random() % 400, parents);
    std::shuffle(rectangles.begin(), rectangles.end(), random);
    const PlainTree expected(rectangles.size(), [&](std::size_t outer, std::size_t inner) {
      return rectangles[outer - 1].holds(rectangles[inner - 1]);
    });
    ASSERT_EQ(nest(rectangles), expected.text());
  }
}

/// Rings around the origin, of half the width given: squares, diamonds, and circles of
/// differing numbers of vertices, turned by any angle.
Points around_origin(std::mt19937_64& random, int shape, double radius) {
  if (shape == 0) return boundary(-radius, -radius, radius, radius);
  const int corners = shape == 1 ? 4 : 3 + static_cast<int>(random() % 30);
  const double turned = shape == 1 ? 0.0 : static_cast<double>(random() % 6283) / 1000.0;
  Points ring;
  for (int i = 0; i < corners; ++i) {
    const double angle = turned + 6.283185307179586 * i / corners;
    ring.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
  }
  return ring;
}

TEST(RingTree, FollowsTheRuleInDeepNests) {
  // One ring in another, now and then with a sibling, a touch, a crossing or a vertex a
  // few units in the last place from a side; outermost first, or in parts, or anyhow.
  constexpr std::uint64_t kSeed = 67;
  std::mt19937_64 random(kSeed);
  for (int run = 0; run < 600 / kWatchedShare; ++run) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " run " << run);
    const int shape = static_cast<int>(random() % 3);
    const int odd = run % 3 == 0 ? 0 : 1 + static_cast<int>(random() % 30);
    std::vector<Points> made;
    double radius = 1000.0;
    for (auto depth = 2 + random() % 80; depth > 0; --depth) {
      // Circles of few corners only lie in each other when they shrink fast.
      radius *= shape == 2 && random() % 2 == 0 ? 0.6 : 0.98;
      made.push_back(around_origin(random, shape, radius));
      if (odd == 0 || random() % static_cast<unsigned>(odd) != 0) continue;
      Points other = around_origin(random, shape, radius * 0.99);
      const auto choice = random() % 4;
      if (choice == 0) {  // small, beside the next
        for (auto& [x, y] : other) x = 0.985 * radius + x * 1e-3, y *= 1e-3;
      } else if (choice == 1) {  // crosses
        for (auto& [x, y] : other) x += 0.3 * radius;
      } else if (choice == 2) {  // touches, or nearly
        other[0] = made.back()[0];
        if (random() % 2 == 0) other[0].first = std::nextafter(other[0].first, 0.0);
      } else {
        other = made.back();  // the same again
        std::rotate(other.begin(), other.begin() + 1, other.end());
      }
      made.push_back(other);
    }
    std::vector<std::size_t> order(made.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    if (run % 4 == 1) {  // from both ends in turn
      for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = i % 2 == 0 ? i / 2 : made.size() - 1 - i / 2;
      }
    } else if (run % 4 == 2) {  // some of the inner ones too late
      for (auto late = random() % 8; late > 0; --late) {
        std::swap(order[random() % order.size()], order[random() % order.size()]);
      }
    } else if (run % 4 == 3) {
      std::shuffle(order.begin(), order.end(), random);
    }
    Rings rings;
    for (const std::size_t ring : order) rings.add(made[ring]);
    Nodes nodes(rings);
    Nodes asked(rings);
    const PlainTree expected(made.size(), [&](std::size_t outer, std::size_t inner) {
      return asked.nodes[outer].Contains(asked.nodes[inner]) == 1;
    });
    ASSERT_EQ(text(RingTree(nodes.nodes)), expected.text());
  }
}

TEST(RingTree, AsksWhatTheNodesWouldAnswer) {
  // Rings that cross, touch, are closed or open, level or nothing, and now and then no
  // numbers; small ones and ones of several stretches.
  constexpr std::uint64_t kSeed = 66;
  std::mt19937_64 random(kSeed);
  for (int run = 0; run < 1500; ++run) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " run " << run);
    const int extent = 2 + static_cast<int>(random() % 12);
    std::uniform_int_distribution<int> at(0, extent);
    Rings rings;
    for (int r = 1 + static_cast<int>(random() % 12); r > 0; --r) {
      const bool is_long = random() % 5 == 0;
      Points ring;
      for (auto v = random() % (is_long ? 300 : 7); v > 0; --v) {
        ring.emplace_back(at(random), at(random));
        if (random() % 400 == 0) ring.back().first = std::nan("");
        if (random() % 400 == 0) ring.back().second = std::nan("");
        if (random() % 400 == 0) ring.back().first = -std::numeric_limits<double>::infinity();
        if (random() % 400 == 0) ring.back().second = std::numeric_limits<double>::infinity();
      }
      rings.add(!ring.empty() && random() % 2 == 0 ? closed(ring) : ring);
    }
    Nodes nodes(rings);
    Nodes asked(rings);
    const PlainTree expected(rings.starts.size(), [&](std::size_t outer, std::size_t inner) {
      return asked.nodes[outer].Contains(asked.nodes[inner]) == 1;
    });
    ASSERT_EQ(text(RingTree(nodes.nodes)), expected.text());
  }
}

TEST(BoxIndex, FindsWhatALookAtEachFinds) {
  constexpr std::uint64_t kSeed = 65;
  std::mt19937_64 random(kSeed);
  // Few distinct values, so that many boxes touch.
  std::uniform_int_distribution<int> at(0, 60);
  std::uniform_int_distribution<int> size(-1, 6);  // -1: inverted, the box of nothing
  const auto box = [&] {
    const int x = at(random);
    const int y = at(random);
    return Box{static_cast<double>(x), static_cast<double>(y),
               static_cast<double>(x + size(random)), static_cast<double>(y + size(random))};
  };
  BoxIndex index;
  std::vector<Box> boxes;
  for (kz_ulong number = 0; number < 700; ++number) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " size " << number);
    const Box wanted = box();
    std::vector<kz_ulong> expected;
    for (kz_ulong i = 0; i < boxes.size(); ++i) {
      const Box& b = boxes[i];
      if (b.x_min <= wanted.x_max && wanted.x_min <= b.x_max && b.y_min <= wanted.y_max &&
          wanted.y_min <= b.y_max) {
        expected.push_back(i);
      }
    }
    std::vector<kz_ulong> found;
    index.find(wanted, found);
    std::sort(found.begin(), found.end());
    ASSERT_EQ(found, expected);
    boxes.push_back(box());
    index.insert(boxes.back(), number);
  }
}

}  // namespace
