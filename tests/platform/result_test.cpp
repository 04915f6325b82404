// A value or an error, and never by default.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kzgis/result.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

using kzgis::Error;
using kzgis::ErrorKind;
using kzgis::Result;

namespace {

Result<std::string> greeting(bool works) {
  if (!works) return Error{ErrorKind::bad_data, "nobody is there"};
  return std::string("hello");
}

}  // namespace

TEST(Result, HoldsTheValueThatItWasMadeFrom) {
  const Result<std::string> result = greeting(true);
  ASSERT_TRUE(result);
  EXPECT_TRUE(result.has_value());
  EXPECT_EQ(*result, "hello");
  EXPECT_EQ(result->size(), 5U);
  EXPECT_EQ(result.value(), "hello");
}

TEST(Result, HoldsTheErrorThatItWasMadeFrom) {
  const Result<std::string> result = greeting(false);
  ASSERT_FALSE(result);
  EXPECT_FALSE(result.has_value());
  EXPECT_EQ(result.error().kind, ErrorKind::bad_data);
  EXPECT_EQ(result.error().message, "nobody is there");
}

TEST(Result, IsNoSuccessByDefault) {
  EXPECT_FALSE((std::is_default_constructible_v<Result<int>>));
  // Not even of an error of no kind.
  EXPECT_FALSE(Result<int>(Error{}).has_value());
}

TEST(Result, CarriesWhatCanOnlyBeMoved) {
  Result<std::unique_ptr<int>> result = std::make_unique<int>(7);
  const std::unique_ptr<int> taken = std::move(result).value();
  EXPECT_EQ(*taken, 7);
}

TEST(Result, CanBeChanged) {
  Result<std::string> result = greeting(true);
  *result += '!';
  EXPECT_EQ(result.value(), "hello!");
  result = greeting(false);
  EXPECT_FALSE(result);
  result.error().message += " at all";
  EXPECT_EQ(std::as_const(result).error().message, "nobody is there at all");
}

TEST(ResultDeathTest, ValueOfAnErrorEndsTheProgramWithItsMessage) {
  const Result<std::string> result = greeting(false);
  EXPECT_DEATH((void)result.value(), "nobody is there");
}
