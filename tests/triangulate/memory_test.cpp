// Allocations that fail, brought about by a limit on the address space of a child process.

#include <gtest/gtest.h>

#include "support/memory_limit.h"

#ifdef KZGIS_CAN_LIMIT_MEMORY
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "kzgis/triangulate.h"

namespace {

constexpr kz_long kSize = 1 << 20;
constexpr std::uintmax_t kMega = 1 << 20;

struct TableOfMany {
  const char* name;
  std::uintmax_t bytes_each;  ///< per segment record
};
// In the order of their allocation.
constexpr TableOfMany kTables[] = {
    {"seg", sizeof(kzgis::triangulation::Segment)},
    {"qs", 10 * sizeof(kzgis::triangulation::QueryNode)},
    {"tr", 6 * sizeof(kzgis::triangulation::Trapezoid)},
    {"permute", 4},
    {"mchain", 6 * sizeof(kzgis::triangulation::ChainLink)},
    {"vert", sizeof(kzgis::triangulation::VertexChain)},
    {"mon", 8},
    {"visited", 24},
};

TEST(InitilizeDeathTest, NamesTheTableThereIsNoMemoryFor) {
  std::uintmax_t before = 0;
  for (const TableOfMany& table : kTables) {
    EXPECT_EXIT(
        {
          limit_growth((before + table.bytes_each / 2) * kMega);
          check(initilize(kSize) == 1, 1);
          check(SEGSIZE == kSize, 2);
          check((seg != nullptr) == (before > 0), 3);
          check(visited == nullptr, 4);
          // What there is may not be used, and may be released.
          check(newtrap() == -1, 5);
          check(generate_random_ordering(5) == 0, 6);
          check(construct_trapezoids(5) == 0, 7);
          check(release_tables() == 0, 8);
          std::_Exit(0);
        },
        testing::ExitedWithCode(0),
        std::string("^initilize:  Error allocating space for ") + table.name +
            "\nnewtrap: Trapezoid-table overflow\n$");
    before += table.bytes_each;
  }
}

TEST(TriangulatePolygonDeathTest, EndsWhereThereIsNoMemory) {
  EXPECT_EXIT(
      {
        const kz_long counts[] = {kSize};
        std::vector<double> xy(2 * (kSize + 1));
        std::vector<kz_long> triangles(3 * kSize, -7);
        limit_growth(100 * kMega);
        check(triangulate_polygon(1, counts, reinterpret_cast<const double(*)[2]>(xy.data()),
                                  reinterpret_cast<kz_long(*)[3]>(triangles.data())) == 0,
              1);
        check(triangles[0] == -7, 2);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "^initilize:  Error allocating space for qs\n$");
}

TEST(GenerateRandomOrderingDeathTest, LeavesTheOrderWithoutMemoryForItsScratch) {
  EXPECT_EXIT(
      {
        check(initilize(kSize) == 0, 1);
        permute[1] = 77;
        limit_growth(2 * kMega);
        check(generate_random_ordering(kSize - 1) == 1, 2);
        check(permute[1] == 77 && permute[2] == 0, 3);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "^generate_random_ordering: error allocating space for st\n$");
}

constexpr kzgis::triangulation::Point kSlantedSquare[] = {{0, 0}, {4, 0}, {5, 4}, {1, 4}};

TEST(TriangulateMonotonePieceDeathTest, LeavesThePieceWithoutMemoryForItsStack) {
  EXPECT_EXIT(
      {
        check(initilize(kSize) == 0, 1);
        for (kz_long i = 1; i <= 4; ++i) {
          seg[i].start = kSlantedSquare[i - 1];
          seg[i].next_seg = i % 4 + 1;
          seg[i].prev_seg = (i + 2) % 4 + 1;
        }
        check(monotonate_trapezoids(4) == 1, 2);
        kz_long triangles[2][3];
        limit_growth(2 * kMega);
        check(triangulate_monotone_piece(4, 3, 2, triangles) == 1, 3);
        check(triangulate_monotone_polygons(4, 1, triangles) == 0, 4);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0),
      "^Error allocating space for rc\nError allocating space for rc\n$");
}

}  // namespace

#endif
