#include "kzgis/byteutil.h"

#include <gtest/gtest.h>

#include <bit>
#include <string>
#include <type_traits>

namespace {

template <typename ByteUtil>
class ByteUtilTest : public testing::Test {
 protected:
  ByteUtil util;
};
using BothByteUtils = testing::Types<GIS_ByteUtil_c, DBF_ByteUtil_c>;
TYPED_TEST_SUITE(ByteUtilTest, BothByteUtils);

TYPED_TEST(ByteUtilTest, TellsTheHostsByteOrder) {
  EXPECT_EQ(this->util.ByteOrder(), std::endian::native == std::endian::little ? 1 : 0);
}

TYPED_TEST(ByteUtilTest, CopiesAndAssignmentsKeepTheByteOrder) {
  const TypeParam copy(this->util);
  TypeParam assigned;
  assigned = copy;
  EXPECT_EQ(copy.ByteOrder(), this->util.ByteOrder());
  EXPECT_EQ(assigned.ByteOrder(), this->util.ByteOrder());
}

TYPED_TEST(ByteUtilTest, IsAPlainValueOfOneMember) {
  EXPECT_FALSE(std::is_polymorphic_v<TypeParam>);
  EXPECT_EQ(sizeof(TypeParam), sizeof(kz_ulong));
}

TYPED_TEST(ByteUtilTest, SwapsPairs) {
  std::string bytes = "abcdef";
  EXPECT_EQ(this->util.SwapBytes2(4, bytes.data()), bytes.data());
  EXPECT_EQ(bytes, "badcef");
}

TYPED_TEST(ByteUtilTest, SwapsGroupsOfFour) {
  std::string bytes = "abcdefghij";
  EXPECT_EQ(this->util.SwapBytes4(8, bytes.data()), bytes.data());
  EXPECT_EQ(bytes, "dcbahgfeij");
}

TYPED_TEST(ByteUtilTest, SwapsGroupsOfEight) {
  std::string bytes = "abcdefghijklmnopqr";
  EXPECT_EQ(this->util.SwapBytes8(16, bytes.data()), bytes.data());
  EXPECT_EQ(bytes, "hgfedcbaponmlkjiqr");
}

TYPED_TEST(ByteUtilTest, RefusesACountThatIsNoMultipleOfTheGroup) {
  std::string bytes = "abcdefghijklmnop";
  EXPECT_EQ(this->util.SwapBytes2(3, bytes.data()), nullptr);
  EXPECT_EQ(this->util.SwapBytes4(6, bytes.data()), nullptr);
  EXPECT_EQ(this->util.SwapBytes8(12, bytes.data()), nullptr);
  EXPECT_EQ(bytes, "abcdefghijklmnop");
}

TYPED_TEST(ByteUtilTest, RefusesANullBuffer) {
  EXPECT_EQ(this->util.SwapBytes2(2, nullptr), nullptr);
  EXPECT_EQ(this->util.SwapBytes4(4, nullptr), nullptr);
  EXPECT_EQ(this->util.SwapBytes8(8, nullptr), nullptr);
  EXPECT_EQ(this->util.SwapBytes4(0, nullptr), nullptr);
}

TYPED_TEST(ByteUtilTest, ACountOfZeroGivesTheBufferUntouched) {
  std::string bytes = "abcdefgh";
  EXPECT_EQ(this->util.SwapBytes2(0, bytes.data()), bytes.data());
  EXPECT_EQ(this->util.SwapBytes4(0, bytes.data()), bytes.data());
  EXPECT_EQ(this->util.SwapBytes8(0, bytes.data()), bytes.data());
  EXPECT_EQ(bytes, "abcdefgh");
}

TYPED_TEST(ByteUtilTest, SwapsABufferOfAnyAlignment) {
  std::string bytes = "xabcd";
  this->util.SwapBytes4(4, bytes.data() + 1);
  EXPECT_EQ(bytes, "xdcba");
}

TEST(ByteUtil, TheTwoClassesAreDistinctTypes) {
  EXPECT_FALSE((std::is_convertible_v<DBF_ByteUtil_c, GIS_ByteUtil_c>));
  EXPECT_FALSE((std::is_convertible_v<GIS_ByteUtil_c, DBF_ByteUtil_c>));
}

}  // namespace
