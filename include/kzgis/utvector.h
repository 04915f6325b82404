#ifndef KZGIS_UTVECTOR_H
#define KZGIS_UTVECTOR_H

#include <algorithm>
#include <cstddef>

#include "kzgis/export.h"
#include "kzgis/latlon.h"

struct UtVectorTestAccess;

/// The growable array of the world map.
///
/// A polyline is a `UtVector<LatLon*>`, a run of points; each theme of a map is a
/// `UtVector<UtVector<LatLon*>*>`, a run of polylines.  The array never owns what its
/// pointers point to: their owner, `WorldMap` for its own, deletes them first.
///
/// It starts with one slot and doubles when it is full: 1, 2, 4, 8, ...  A failed
/// allocation throws what `operator new[]` throws, and leaves the array as it was.
/// It cannot be copied: two arrays would share one storage.
///
/// The library holds the two instantiations named above.
template <typename T>
class KZGIS_EXPORT UtVector {
 public:
  /// No elements, room for one.
  UtVector() : array_(new T[1]()), capacity_(1) {}
  UtVector(const UtVector&) = delete;
  UtVector& operator=(const UtVector&) = delete;
  /// Releases the storage, and nothing that the elements point to.
  ~UtVector() { delete[] array_; }

  /// Appends a copy of `value`, which may be an element of this array.
  void push_back(const T& value) {
    const T copy = value;  // growing releases the storage that `value` may lie in
    if (size_ == capacity_) alloc_copy(2 * capacity_);
    array_[size_++] = copy;
  }

  /// Element `i`, counted from 0; `i` must be less than `size()`.
  T& operator[](std::size_t i) { return array_[i]; }
  /// Number of elements.
  std::size_t size() const { return size_; }
  /// The first element; the range [begin, end) holds until the next `push_back`.
  T* begin() { return array_; }
  /// One past the last element.
  T* end() { return array_ + size_; }
  /// The first element; of an empty array, the first slot.
  T& front() { return array_[0]; }
  /// The last element; of an empty array, the first slot.
  T& back() { return array_[size_ == 0 ? 0 : size_ - 1]; }

  /// Removes all elements and keeps the storage.  Every used slot becomes null first.
  void clear() {
    destroy_elements(0, size_);
    size_ = 0;
  }

 private:
  friend struct UtVectorTestAccess;

  /// Moves to storage of `n` slots with the first min(size, n) elements.
  void alloc_copy(std::size_t n) {
    T* const grown = new T[n]();
    size_ = std::min(size_, n);
    std::copy(array_, array_ + size_, grown);
    delete[] array_;
    array_ = grown;
    capacity_ = n;
  }

  /// Overwrites the slots from `first` up to `last`, not included, with an empty value.
  void destroy_elements(std::size_t first, std::size_t last) {
    for (std::size_t i = first; i < last; ++i) array_[i] = T();
  }

  T* array_;
  std::size_t size_ = 0;
  std::size_t capacity_;
};

extern template class KZGIS_EXPORT UtVector<LatLon*>;
extern template class KZGIS_EXPORT UtVector<UtVector<LatLon*>*>;

#endif
