#include <gtest/gtest.h>

#include <type_traits>

#include "kzgis/polytree.h"

namespace {

const double kX[] = {1.0, 2.0, 3.0};
const double kY[] = {4.0, 5.0, 6.0};

void expect_names(const KZ_GIS_VertexList_c& list, kz_ulong count, const double* x,
                  const double* y) {
  kz_ulong got_count = 99;
  const double* got_x = nullptr;
  const double* got_y = nullptr;
  list.GetVertices(&got_count, &got_x, &got_y);
  EXPECT_EQ(got_count, count);
  EXPECT_EQ(got_x, x);
  EXPECT_EQ(got_y, y);
  EXPECT_EQ(list.NumberOfVertices(), count);
  EXPECT_EQ(list.XVertices(), x);
  EXPECT_EQ(list.YVertices(), y);
}

TEST(VertexList, BorrowsTheArraysItIsGiven) {
  const KZ_GIS_VertexList_c list(3, kX, kY);
  expect_names(list, 3, kX, kY);
}

TEST(VertexList, TakesOtherArrays) {
  KZ_GIS_VertexList_c list(3, kX, kY);
  list.SetVertices(2, kY, kX);
  expect_names(list, 2, kY, kX);
  list.SetVertices(0, nullptr, nullptr);
  expect_names(list, 0, nullptr, nullptr);
}

TEST(VertexList, CopiesNameTheSameArrays) {
  const KZ_GIS_VertexList_c list(3, kX, kY);
  const KZ_GIS_VertexList_c copy(list);
  expect_names(copy, 3, kX, kY);
  KZ_GIS_VertexList_c assigned(0, nullptr, nullptr);
  assigned = list;
  expect_names(assigned, 3, kX, kY);
}

TEST(VertexList, CanBeDestroyedThroughItsBase) {
  EXPECT_TRUE(std::has_virtual_destructor_v<KZ_GIS_VertexList_c>);
}

}  // namespace
