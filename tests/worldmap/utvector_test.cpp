#include "kzgis/utvector.h"

#include <gtest/gtest.h>

#include <new>
#include <type_traits>

#include "kzgis/latlon.h"

/// Reaches what only the array itself uses.
struct UtVectorTestAccess {
  template <typename T>
  static std::size_t capacity(const UtVector<T>& v) {
    return v.capacity_;
  }
  template <typename T>
  static void alloc_copy(UtVector<T>& v, std::size_t n) {
    v.alloc_copy(n);
  }
  template <typename T>
  static void destroy_elements(UtVector<T>& v, std::size_t first, std::size_t last) {
    v.destroy_elements(first, last);
  }
};

namespace {

using Access = UtVectorTestAccess;

/// Both instantiations, with things to point to.
template <typename T>
class UtVectorTest : public ::testing::Test {
 protected:
  using Element = T;

  void fill(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) v.push_back(&things[i]);
  }
  static constexpr std::size_t kThings = 9;
  UtVector<T> v;
  struct Things {
    Things() : storage(static_cast<std::remove_pointer_t<T>*>(make())) {}
    ~Things() { destroy(storage); }
    std::remove_pointer_t<T>& operator[](std::size_t i) { return storage[i]; }
    static void* make() {
      if constexpr (std::is_same_v<T, LatLon*>) {
        auto* const points = static_cast<LatLon*>(::operator new(kThings * sizeof(LatLon)));
        for (std::size_t i = 0; i < kThings; ++i) new (points + i) LatLon(static_cast<int>(i), 0);
        return points;
      } else {
        return new UtVector<LatLon*>[kThings];
      }
    }
    static void destroy(LatLon* points) { ::operator delete(points); }
    static void destroy(UtVector<LatLon*>* lines) { delete[] lines; }
    Things(const Things&) = delete;
    Things& operator=(const Things&) = delete;
    std::remove_pointer_t<T>* storage;
  } things;
};

using Elements = ::testing::Types<LatLon*, UtVector<LatLon*>*>;
TYPED_TEST_SUITE(UtVectorTest, Elements);

TYPED_TEST(UtVectorTest, IsNewWithRoomForOne) {
  EXPECT_EQ(this->v.size(), 0U);
  EXPECT_EQ(Access::capacity(this->v), 1U);
  EXPECT_EQ(this->v.begin(), this->v.end());
  EXPECT_NE(this->v.begin(), nullptr);
}

TYPED_TEST(UtVectorTest, DoublesItsCapacity) {
  const std::size_t capacities[] = {1, 2, 4, 4, 8, 8, 8, 8, 16};
  for (std::size_t i = 0; i < 9; ++i) {
    this->v.push_back(&this->things[i]);
    EXPECT_EQ(this->v.size(), i + 1);
    EXPECT_EQ(Access::capacity(this->v), capacities[i]) << i + 1 << " elements";
  }
  for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(this->v[i], &this->things[i]);
}

TYPED_TEST(UtVectorTest, GivesItsEndsAndItsRange) {
  this->fill(3);
  EXPECT_EQ(&this->v.front(), this->v.begin());
  EXPECT_EQ(this->v.front(), &this->things[0]);
  EXPECT_EQ(this->v.back(), &this->things[2]);
  EXPECT_EQ(this->v.end() - this->v.begin(), 3);
  this->v[1] = nullptr;
  EXPECT_EQ(this->v.begin()[1], nullptr);
}

TYPED_TEST(UtVectorTest, RefersToSlot0WhenEmpty) {
  EXPECT_EQ(&this->v.back(), this->v.begin());
  EXPECT_EQ(&this->v.front(), this->v.begin());
  EXPECT_EQ(this->v.back(), nullptr);
}

TYPED_TEST(UtVectorTest, PushesItsOwnElementWhileGrowing) {
  this->fill(1);
  for (int i = 0; i < 8; ++i) this->v.push_back(this->v.front());
  for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(this->v[i], &this->things[0]);
}

TYPED_TEST(UtVectorTest, ClearKeepsTheStorageAndNullsTheSlots) {
  this->fill(5);
  auto* const storage = this->v.begin();
  this->v.clear();
  EXPECT_EQ(this->v.size(), 0U);
  EXPECT_EQ(Access::capacity(this->v), 8U);
  for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(storage[i], nullptr);
  this->v.push_back(&this->things[6]);
  EXPECT_EQ(this->v.begin(), storage);
  EXPECT_EQ(this->v.front(), &this->things[6]);
}

TYPED_TEST(UtVectorTest, AllocCopyToLessKeepsTheFirstElements) {
  this->fill(5);
  Access::alloc_copy(this->v, 2);
  EXPECT_EQ(this->v.size(), 2U);
  EXPECT_EQ(Access::capacity(this->v), 2U);
  EXPECT_EQ(this->v[0], &this->things[0]);
  EXPECT_EQ(this->v[1], &this->things[1]);
}

TYPED_TEST(UtVectorTest, AllocCopyToMoreKeepsAll) {
  this->fill(3);
  Access::alloc_copy(this->v, 7);
  EXPECT_EQ(this->v.size(), 3U);
  EXPECT_EQ(Access::capacity(this->v), 7U);
  EXPECT_EQ(this->v[2], &this->things[2]);
}

TYPED_TEST(UtVectorTest, DestroyElementsNullsARangeAndDeletesNothing) {
  this->fill(4);
  Access::destroy_elements(this->v, 1, 3);
  EXPECT_EQ(this->v.size(), 4U);
  EXPECT_EQ(this->v[0], &this->things[0]);
  EXPECT_EQ(this->v[1], nullptr);
  EXPECT_EQ(this->v[2], nullptr);
  EXPECT_EQ(this->v[3], &this->things[3]);
  Access::destroy_elements(this->v, 3, 3);
  Access::destroy_elements(this->v, 3, 0);
  EXPECT_EQ(this->v[3], &this->things[3]);
}

TYPED_TEST(UtVectorTest, CannotBeCopied) {
  EXPECT_FALSE(std::is_copy_constructible_v<UtVector<TypeParam>>);
  EXPECT_FALSE(std::is_copy_assignable_v<UtVector<TypeParam>>);
}

TEST(UtVector, LeavesWhatItPointsToAlive) {
  const LatLon point(1.0, 2.0);
  {
    UtVector<LatLon*> v;
    LatLon copy(point);
    v.push_back(&copy);
    v.clear();
    EXPECT_EQ(copy.fetchLat(), 1.0);
  }
  auto* const on_heap = new LatLon(3.0, 4.0);
  {
    UtVector<LatLon*> v;
    v.push_back(on_heap);
  }
  EXPECT_EQ(on_heap->fetchLon(), 4.0);
  delete on_heap;
}

}  // namespace
