#include "polytree/winding.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

using Numbers = std::vector<std::uint32_t>;

/// Contours, and whether triangles of their vertices cover what they wind round.
struct Contours {
  Numbers sizes;
  std::vector<double> x, y;

  bool wind_as(const Numbers& triangles) const {
    std::vector<kzgis::exact::Point> vertices;
    for (std::size_t i = 0; i < x.size(); ++i) vertices.push_back({x[i], y[i]});
    return kzgis::polytree::wind_as_covered(sizes, vertices, triangles);
  }
};

const Contours kSquare{{4}, {0, 9, 9, 0}, {0, 0, 9, 9}};

TEST(WindAsCovered, ASquareInTwo) {
  EXPECT_TRUE(kSquare.wind_as({0, 1, 2, 0, 2, 3}));
  EXPECT_TRUE(kSquare.wind_as({1, 2, 3, 3, 0, 1}));
}

TEST(WindAsCovered, NotWhatIsMissingOrTwice) {
  EXPECT_FALSE(kSquare.wind_as({}));
  EXPECT_FALSE(kSquare.wind_as({0, 1, 2}));
  EXPECT_FALSE(kSquare.wind_as({0, 1, 2, 0, 2, 3, 0, 1, 2}));
  EXPECT_FALSE(kSquare.wind_as({0, 1, 2, 0, 1, 3}));
}

TEST(WindAsCovered, NotAContourThatRunsTheOtherWay) {
  const Contours clockwise{{4}, {0, 0, 9, 9}, {0, 9, 9, 0}};
  EXPECT_FALSE(clockwise.wind_as({0, 2, 1, 0, 3, 2}));
}

TEST(WindAsCovered, SidesCutByVerticesOfOthers) {
  // A hole (3, 0), (3, 4), (6, 4), clockwise, with a corner on the square's lowest side; the
  // triangles are cut there.
  const Contours touched{{4, 3}, {0, 9, 9, 0, 3, 3, 6}, {0, 0, 9, 9, 0, 4, 4}};
  const Numbers cut{0, 4, 5, 4, 1, 6, 1, 2, 6, 6, 2, 5, 2, 3, 5, 3, 0, 5};
  EXPECT_TRUE(touched.wind_as(cut));
  Numbers filled = cut;
  filled.insert(filled.end(), {4, 6, 5});
  EXPECT_FALSE(touched.wind_as(filled));
}

TEST(WindAsCovered, SidesOnTopOfEachOther) {
  // Two squares side by side, the second's side half as long, so that the common stretch cancels.
  const Contours both{{4, 4}, {0, 4, 4, 0, 4, 8, 8, 4}, {0, 0, 4, 4, 1, 1, 3, 3}};
  EXPECT_TRUE(both.wind_as({0, 1, 4, 0, 4, 7, 0, 7, 3, 7, 2, 3, 4, 5, 6, 4, 6, 7}));
  // The second clockwise: on the common stretch both run the same way.
  const Contours wrong{{4, 4}, {0, 4, 4, 0, 4, 4, 8, 8}, {0, 0, 4, 4, 1, 3, 3, 1}};
  EXPECT_FALSE(wrong.wind_as({0, 1, 4, 0, 4, 5, 0, 5, 3, 5, 2, 3, 4, 7, 6, 4, 6, 5}));
}

TEST(WindAsCovered, ManySidesOfOneLine) {
  // Along one line from 0 to 7 and back, turning at every number on the way: nothing.
  Contours comb{{8}, {0, 5, 2, 7, 1, 6, 3, 4}, {0, 10, 4, 14, 2, 12, 6, 8}};
  EXPECT_TRUE(comb.wind_as({}));
  // Back over a vertex beside the line: a triangle.
  comb.sizes[0] = 9;
  comb.x.push_back(1);
  comb.y.push_back(7);
  EXPECT_FALSE(comb.wind_as({}));
  EXPECT_TRUE(comb.wind_as({0, 7, 8}));
}

TEST(WindAsCovered, AnyOfSeveralVerticesInOnePlace) {
  const Contours twice{{5}, {0, 9, 9, 9, 0}, {0, 0, 0, 9, 9}};
  EXPECT_TRUE(twice.wind_as({0, 1, 3, 0, 3, 4}));
  EXPECT_TRUE(twice.wind_as({0, 2, 3, 0, 3, 4}));
  EXPECT_TRUE(twice.wind_as({0, 2, 3, 0, 3, 4, 1, 2, 1}));
}

TEST(WindAsCovered, NotLoopsWhoseAreasMakeUpForEachOther) {
  // Twice round a square of 4, once the wrong way round another: by the odd-even rule the second
  // alone is inside, and its area is the sum of the windings' areas.
  const Contours loops{
      {12}, {0, 2, 2, 0, 0, 2, 2, 0, 0, 0, -2, -2}, {0, 0, 2, 2, 0, 0, 2, 2, 0, -2, -2, 0}};
  EXPECT_FALSE(loops.wind_as({8, 10, 9, 8, 11, 10}));
}

TEST(WindAsCovered, SidesThatPlainArithmeticWouldTakeForOneLine) {
  // A sliver: the middle of the lowest side is lifted by less than its coordinates can tell in a
  // product.
  const double tiny = 0x1p-60;
  const Contours sliver{{4}, {0, 1, 2, 1}, {0, tiny, 0, 5}};
  EXPECT_TRUE(sliver.wind_as({0, 1, 3, 1, 2, 3}));
  EXPECT_FALSE(sliver.wind_as({0, 2, 3}));
}

}  // namespace
